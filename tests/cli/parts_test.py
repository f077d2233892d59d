"""parts_test.py PROGRAM: runs cut into tasks at random, killed, damaged, extended and gone on with,
all of which are to give the bytes of a run that nothing happens to. Seeds are printed."""
import fcntl
import filecmp
import json
import os
import random
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from study_files import StudyFiles

PROGRAM = Path(sys.argv[1]).resolve()
CASE = Path(__file__).resolve().parents[2] / "tests/golden/linked"
BED = ["--bfile", "study"]
VCF = ["--vcf", "study.vcf.gz", "--pheno", "phenotypes.txt", "--pheno-name", "status", "--1"]
ANALYSIS = ["--best-m", "12", "--fdr", "0.75"]
ALL_RESULTS = ["--console", "--fdr-report", "--gzip"]
SEED = 20261122


def results(folder):
    """Names of the results that do not tell the time of day."""
    return {path.name for path in folder.iterdir() if path.is_file()} - {"plan.json", "run.log"}


def comparable(path):
    text = path.read_bytes()
    if path.name != "console.txt":
        return text
    return [line for line in text.split(b"\n")
            if not line.startswith((b"time of pvalue", b"Total time"))]


class Parts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.work = Path(folder.name)
        self.study = StudyFiles(CASE, self.work)
        self.random = random.Random(SEED)
        print(self.id(), "seed", SEED)

    def vort(self, *words, status=0, said="", **more):
        done = subprocess.run([PROGRAM, *map(str, words)], cwd=self.work, capture_output=True,
                              text=True, errors="replace", **more)
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr}")
        if said:
            self.assertRegex(done.stderr, said)
        return done

    def run_uncut(self, out, permutations, *more, study=BED):
        retain = [] if "--max-retain" in more else ["--max-retain", "3"]
        self.vort("run", *study, *ANALYSIS, *retain, "--permutations", permutations, *more, "--out",
                  out, "--quiet")

    def plan(self, out, permutations, tasks, *more, study=BED):
        self.vort("plan", *study, *ANALYSIS, "--max-retain", "3", "--permutations", permutations,
                  *more, "--out", out, "--tasks", tasks)

    def do_tasks(self, out, step, tasks):
        """In any order, two at a time."""
        tasks = list(tasks)
        self.random.shuffle(tasks)
        while tasks:
            pair, tasks = tasks[:2], tasks[2:]
            running = [subprocess.Popen([PROGRAM, "task", step, out, str(task), "--quiet",
                                         "--threads", str(self.random.randint(1, 3))],
                                        cwd=self.work) for task in pair]
            self.assertEqual([process.wait() for process in running], [0] * len(pair))

    def do_all(self, out, *merge):
        tasks = len(json.loads((self.work / out / "plan.json").read_text())["tasks"])
        for step in ("screen", "model"):
            self.do_tasks(out, step, range(tasks))
        self.vort("merge", out, *merge)

    def assert_same(self, out, expected):
        one, other = self.work / out, self.work / expected
        self.assertEqual(results(one), results(other))
        for name in results(one):
            self.assertEqual(comparable(one / name), comparable(other / name), name)

    def test_any_cut_gives_the_bytes_of_the_uncut_run(self):
        people = [line.split()[:2] for line in (self.work / "study.fam").read_text().splitlines()]
        (self.work / "batches.txt").write_text("".join(
            f"{family} {person} {self.random.randint(1, 9)}\n" for family, person in people[3:]))
        within = ["--within", "batches.txt"]
        for study in (BED, VCF, [*VCF, "--maf", "0.2"], ["--study", "text"], [*BED, *within],
                      [*BED, *within, "--holdout", "0.3"]):
            permutations = self.random.randint(0, 40)
            more = ALL_RESULTS if self.random.random() < 0.7 else []
            tasks = self.random.choice([1, 2, 7, permutations + 1, permutations + 9])
            with self.subTest(study=study, permutations=permutations, tasks=tasks):
                self.run_uncut("whole", permutations, *more, study=study)
                self.plan("cut", permutations, tasks, *more, study=study)
                if study[:2] != BED:  # what was planned is all that tasks need
                    (self.work / study[1]).rename(self.work / "elsewhere")
                self.do_all("cut")
                self.assert_same("cut", "whole")
                if study[:2] != BED:
                    (self.work / "elsewhere").rename(self.work / study[1])
            for folder in ("whole", "cut"):
                shutil.rmtree(self.work / folder)

    def test_without_a_model_only_the_observed_data_set_is_modelled(self):
        strict = ["--fdr", "1e-9", "--best-m", "12"]
        self.vort("run", *BED, *strict, "--permutations", "9", "--console", "--out", "whole")
        self.vort("plan", *BED, *strict, "--permutations", "9", "--console", "--out", "cut",
                  "--tasks", "3")
        self.do_tasks("cut", "screen", range(3))
        self.vort("task", "model", "cut", "0")
        self.vort("task", "model", "cut", "2")
        self.vort("merge", "cut")
        self.assert_same("cut", "whole")

    def test_more_permutations_later(self):
        self.run_uncut("whole", 30, *ALL_RESULTS)
        first = self.random.randint(0, 20)
        self.plan("cut", first, self.random.randint(1, 4), *ALL_RESULTS)
        self.do_all("cut")
        for permutations in (self.random.randint(first + 1, 29), 30):
            self.vort("plan", "--extend", "cut", "--permutations", permutations)
            os.utime(self.work / "cut/run.log")
            status = json.loads(self.vort("status", "cut", "--json").stdout)
            self.assertEqual({task["state"] for task in status["screen"]}, {"done", "missing"})
            self.assertFalse(status["results"])
            self.do_all("cut", "--force")
        self.assert_same("cut", "whole")
        plan = (self.work / "cut/plan.json").read_bytes()
        self.vort("plan", "--extend", "cut", "--permutations", 30)  # said again: nothing to add
        self.vort("plan", "--extend", "cut", "--permutations", 29, status=3, said="or more")
        self.assertEqual((self.work / "cut/plan.json").read_bytes(), plan)

    def test_killed_runs_go_on_to_the_same_bytes(self):
        permutations = 500
        begun = time.monotonic()
        self.run_uncut("whole", permutations, "--max-retain", "1")
        length = time.monotonic() - begun
        words = [PROGRAM, "run", *BED, *ANALYSIS, "--permutations", str(permutations),
                 "--max-retain", "1", "--out", "killed", "--quiet"]
        kills = resumed = 0
        while kills < 50:
            first = not (self.work / "killed/plan.json").exists()
            again = [PROGRAM, "run", "--resume", "--out", "killed", "--quiet"]
            running = subprocess.Popen(words if first else again, cwd=self.work,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            resumed += 0 if first else 1
            time.sleep(self.random.uniform(0, 0.5 * length))
            running.send_signal(self.random.choice([signal.SIGKILL, signal.SIGKILL,
                                                    signal.SIGTERM]))
            status = running.wait()
            kills += 1 if status != 0 else 0
            if status == 0:
                self.assert_same("killed", "whole")
                shutil.rmtree(self.work / "killed")
        print(kills, "kills,", resumed, "of them of resumed runs")
        self.vort(*words[1:], "--resume")
        self.assert_same("killed", "whole")
        self.assertEqual({path.name for path in (self.work / "killed").iterdir()},
                         results(self.work / "whole") | {"run.log"})

    def test_what_is_resumed_is_what_was_begun(self):
        def begin(*more, study=BED, cwd=self.work):
            shutil.rmtree(self.work / "out", ignore_errors=True)
            running = subprocess.Popen([PROGRAM, "run", *study, *ANALYSIS, "--max-retain", "1",
                                        "--permutations", "300", *more, "--out",
                                        os.path.relpath(self.work / "out", cwd)], cwd=cwd,
                                       stderr=subprocess.PIPE)
            while not (self.work / "out/parts/model-0.part").exists():
                time.sleep(0.01)
            running.terminate()
            self.assertRegex(running.communicate()[1].decode(), "--resume --out .*out goes on")

        self.run_uncut("whole", 300, "--max-retain", "1", "--save-prepared", "prepared")
        begin()
        for words, status, said in [
            ([*BED], 3, "a run was begun there"),
            (["--resume", "--best-m", "11"], 3, "--best-m 11 was given, .* --best-m 12"),
            (["--resume", "--maf", "0.1"], 3, "--maf 0.1 was given, .* with no --maf"),
        ]:
            self.vort("run", *words, "--out", "out", status=status, said=said)
        (self.work / "study.bim").write_text((self.work / "study.bim").read_text() + "\n")
        self.vort("run", "--resume", "--out", "out", status=3, said="study.bim: has changed")
        self.study.write_bed()
        begin("--prepared", "prepared")
        os.utime(self.work / "prepared/prepare_data7_0.050000.txt")
        self.vort("run", "--resume", "--out", "out", status=3, said="data7_.* has changed")
        begin("--save-prepared", "more")
        self.vort("run", "--resume", "--out", "out", status=3, said="again: --save-prepared more")
        gone = self.work / "gone"
        gone.mkdir()
        begin(study=["--bfile", self.work / "study"], cwd=gone)
        gone.rmdir()
        os.utime(self.work / "study.fam")  # the same bytes
        self.vort("run", "--resume", "--out", "out")
        self.assertEqual((self.work / "out/permutations.tsv").read_bytes(),
                         (self.work / "whole/permutations.tsv").read_bytes())
        begin()
        inside = self.work / "inside"
        inside.mkdir()
        done = subprocess.run([PROGRAM, "run", "--resume", "--out", "../out", "--quiet"],
                              cwd=inside, capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_parts_that_cannot_be_used_are_named_and_never_merged(self):
        self.run_uncut("whole", 9)
        self.plan("other", 9, 3, "--clustering", "1")
        self.do_all("other")
        self.plan("cut", 9, 3)
        self.do_all("cut")
        shutil.rmtree(self.work / "other/parts/start-0.part", ignore_errors=True)
        parts = self.work / "cut/parts"
        for path in sorted(parts.glob("*.part")):
            if path.name.startswith("start"):
                continue
            whole = path.read_bytes()
            place = self.random.randrange(len(whole))
            another = path.with_name(path.name.replace("-0", "-1") if "-0" in path.name else
                                     path.name.replace("-1", "-0").replace("-2", "-0"))
            for what, damaged in [
                ("flipped", whole[:place] + bytes([whole[place] ^ 4]) + whole[place + 1:]),
                ("short", whole[:place]),
                ("empty", b""),
                ("longer", whole + b"\n"),
                ("of another plan", (self.work / "other/parts" / path.name).read_bytes()),
                ("of another task", another.read_bytes()),
            ]:
                if "-" not in path.name and what == "of another task":
                    continue
                with self.subTest(path=path.name, what=what, place=place):
                    path.write_bytes(damaged)
                    words = ["merge", "cut", "--force"]
                    if path.name.startswith("draws"):
                        words = ["task", "screen", "cut", path.stem.split("-")[1]]
                    if path.name == "people.part":
                        words = ["plan", "--extend", "cut", "--permutations", "12"]
                    self.vort(*words, status=3, said=f"{path.name}: .*; (remove it|make the same)")
                    if "-" in path.name and what != "flipped":
                        self.assertRegex(self.vort("status", "cut").stdout,
                                         f"unusable .*/{path.name}: .*; remove it")
            path.write_bytes(whole)
        for name in ("model-1.part", "draws-2.part", "screen-2.part"):
            (parts / name).unlink()
        self.vort("merge", "cut", "--force", status=3, said="lacks the screen parts of tasks 2;")
        self.vort("task", "model", "cut", "1", status=3, said="screen parts of tasks 2;")
        self.do_all("cut", "--force")
        self.assert_same("cut", "whole")

    def test_inputs_that_change_after_the_plan(self):
        self.plan("cut", 9, 2)
        os.utime(self.work / "study.bed")  # the same bytes
        self.vort("task", "screen", "cut", "0")
        for name in ("study.bed", "study.fam"):
            sound = (self.work / name).read_bytes()
            (self.work / name).write_bytes(sound[:-1] + b" ")
            self.vort("task", "screen", "cut", "1", status=3, said=f"{name}: has changed")
            (self.work / name).write_bytes(sound)
        (self.work / "study.bed").rename(self.work / "gone.bed")
        self.vort("task", "screen", "cut", "1", status=3, said="study.bed: cannot be found")
        (self.work / "gone.bed").rename(self.work / "study.bed")
        plan = self.work / "cut/plan.json"
        plan.write_text(plan.read_text().replace('"max_retain": 3', '"max_retain": 4'))
        self.vort("task", "screen", "cut", "1", status=3, said="a plan that has been changed")

    def test_genotypes_that_are_spoilt_without_a_trace_are_not_merged(self):
        self.plan("cut", 9, 2, study=VCF)
        path = self.work / "cut/parts/genotypes.bed"
        whole, times = bytearray(path.read_bytes()), path.stat()
        whole[self.random.randrange(3, len(whole))] ^= 1
        path.write_bytes(whole)
        os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
        for step in ("screen", "model"):
            self.do_tasks("cut", step, range(2))
        self.vort("merge", "cut", status=3, said="genotypes.bed: has changed")

    def test_a_part_of_the_plan_is_made_again_by_the_same_plan(self):
        self.run_uncut("whole", 9)
        for out in ("cut", "again"):
            self.plan(out, 9, 2, "--force")
        for name in ("people", "start-1"):
            path = self.work / f"cut/parts/{name}.part"
            path.write_bytes(path.read_bytes()[:-1])
            self.vort("task", "screen", "cut", "1", status=3,
                      said=f"{name}.part: is damaged.*; make the same plan in another directory")
            shutil.copy(self.work / f"again/parts/{name}.part", path)
        self.do_all("cut")
        self.assert_same("cut", "whole")

    def test_a_full_disk_costs_the_part_at_work_alone(self):
        self.run_uncut("whole", 9)
        self.plan("cut", 9, 2)
        self.vort("task", "screen", "cut", "0")
        done = self.work / "cut/parts/screen-0.part"
        before = done.read_bytes()
        for size in (0, 700):
            for step, task in (("screen", 1), ("model", 0)):
                if step == "model":
                    self.vort("task", "screen", "cut", 1)
                self.vort("task", step, "cut", task, status=4, said="could not be fully written",
                          preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE,
                                                                (size, size)))
                self.assertFalse((self.work / f"cut/parts/{step}-{task}.part").exists())
                for path in (self.work / "cut/parts").glob("*-1.part"):
                    if not path.name.startswith("start"):
                        path.unlink()
        self.assertEqual(done.read_bytes(), before)
        self.do_all("cut")
        self.assert_same("cut", "whole")

    def test_one_task_is_done_by_one_process(self):
        self.plan("cut", 20000, 1)
        running = subprocess.Popen([PROGRAM, "task", "screen", "cut", "0", "--quiet"],
                                   cwd=self.work)
        mark = self.work / "cut/parts/screen-0.running"
        while not mark.exists() or mark.stat().st_size == 0:
            time.sleep(0.01)
        self.assertRegex(self.vort("status", "cut").stdout, r"screen +0 .*running since 20")
        self.vort("task", "screen", "cut", "0", status=3, said="another process is at work")
        running.kill()
        running.wait()
        state = json.loads(self.vort("status", "cut", "--json").stdout)["screen"][0]
        self.assertEqual(state["state"], "stopped")

    def test_what_is_not_ours_stays(self):
        mine = self.work / "out/parts/mine.txt"
        mine.parent.mkdir(parents=True)
        mine.write_text("mine")
        self.run_uncut("out", 3)
        self.plan("out", 3, 2, "--force")
        self.assertEqual(mine.read_text(), "mine")
        shutil.copy(self.work / "study.bed", self.work / "out/parts/genotypes.bed")
        self.vort("run", *BED, "--bed", "out/parts/genotypes.bed", "--out", "out", "--force",
                  status=3, said="genotypes.bed: is an input")

    def test_no_input_is_lost_under_any_name(self):
        place = "out/.vort-unfinished"
        for name, moved, linked, words in [
            ("study.fam", f"{place}/study.fam", True, BED),
            ("study.fam", f"{place}/deep/study.fam", False, [*BED, "--fam", f"{place}/deep/study.fam"]),
            ("study.fam", place, False, [*BED, "--fam", place]),
            ("study.bed", "out/parts/genotypes.bed", True, BED),
            ("study.bed", "out/parts/screen-0.part", True, BED),
            ("study.bed", "kept/prepare_data0_0.050000.txt", True, [*BED, "--save-prepared", "kept"]),
            ("phenotypes.txt", "out/plan.json.unfinished", True, VCF),
            ("phenotypes.txt", "out/plan.json", True, VCF),
        ]:
            before = (self.work / name).read_bytes()
            with self.subTest(moved):
                target = self.work / moved
                target.parent.mkdir(parents=True)
                (self.work / name).rename(target)
                if linked:
                    (self.work / name).symlink_to(moved)
                said = "is no plan" if moved.endswith(".json") else "would be written or removed"
                self.vort("run", *words, "--permutations", "2", "--out", "out", "--force",
                          status=3, said=said)
                self.assertEqual(target.read_bytes(), before)
            (self.work / name).unlink(missing_ok=True)
            (self.work / name).write_bytes(before)
            for folder in ("out", "kept"):
                shutil.rmtree(self.work / folder, ignore_errors=True)

    def test_a_folder_of_others_leads_nowhere_else(self):
        elsewhere = self.work / "elsewhere"
        elsewhere.mkdir()
        (elsewhere / "screen-0.part").write_text("theirs")
        self.plan("cut", 9, 2)
        (self.work / "cut/parts/screen-0.running").symlink_to(elsewhere / "screen-0.part")
        self.vort("task", "screen", "cut", "0", status=3, said="is no file that a task has left")
        (self.work / "out").mkdir()
        (self.work / "out/parts").symlink_to(elsewhere)
        self.vort("run", *BED, "--out", "out", status=3, said="out/parts: is a link")
        self.assertEqual((elsewhere / "screen-0.part").read_text(), "theirs")
        (self.work / "cut/plan.json").unlink()
        os.mkfifo(self.work / "cut/plan.json")
        self.vort("status", "cut", status=3, said="plan.json: is a pipe or a device", timeout=60)

    def test_one_extension_at_a_time(self):
        self.plan("cut", "09", 2)
        self.assertEqual(json.loads((self.work / "cut/plan.json").read_text())["data_sets"], 10)
        folder = os.open(self.work / "cut", os.O_RDONLY)
        fcntl.flock(folder, fcntl.LOCK_EX)
        self.vort("plan", "--extend", "cut", "--permutations", "12", status=3,
                  said="cut: another process is at work there")
        os.close(folder)
        self.vort("plan", "--extend", "cut", "--permutations", "12")

    def test_misuse(self):
        (self.work / "odd").mkdir()
        (self.work / "odd/plan.json").write_text('{"format": 5}')
        self.plan("cut", 9, 2)
        for end in ("bed", "bim", "fam"):
            shutil.copy(self.work / f"study.{end}", self.work / f"st\udcffdy.{end}")
        for words, status, said in [
            (["task", "screen", "cut", "2"], 2, "has tasks 0 to 1, not 2"),
            (["task", "sing", "cut", "0"], 2, "sing not in"),
            (["task", "screen", "nowhere", "0"], 3, "nowhere/plan.json: cannot be opened"),
            (["merge", "cut"], 3, "lacks the screen parts of tasks 0-1"),
            (["status", "text"], 3, "text/plan.json: cannot be opened"),
            (["status", "odd"], 3, "odd/plan.json: is no plan"),
            (["plan", *BED, "--out", "cut", "--tasks", "2"], 3, "plan.json: is there already"),
            (["plan", *BED, "--out", "new"], 2, "--tasks K is required"),
            (["plan", *BED, "--tasks", "2"], 2, "--out DIR is required"),
            (["plan", "--bfile", "st\udcffdy", "--out", "x", "--tasks", "2"], 3, "is not UTF-8"),
            (["plan", "--extend", "cut", "--permutations", "12", "--best-m", "3"], 3,
             "--best-m 3 was given"),
            (["run", *BED, "--out", "cut"], 3, "is a plan of vort plan; .* or replace it by --force"),
            (["run", "--resume", "--out", "cut"], 3, "is a plan of vort plan"),
            (["run", "--resume", "--out", "new"], 2, "new: no run was begun there, or it has ended"),
        ]:
            with self.subTest(words):
                self.vort(*words, status=status, said=said)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
