"""commands_test.py PROGRAM: whole runs of the commands, on a golden case in every format."""
import filecmp
import gzip
import json
import os
import pty
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

import jsonschema

from study_files import StudyFiles

PROGRAM = Path(sys.argv[1]).resolve()
ROOT = Path(__file__).resolve().parents[2]
CASE = ROOT / "tests/golden/linked"
REPORTS = ["P_value.txt", "Final_result.txt"]
TABLES = ["markers.tsv", "permutations.tsv", "quantiles.tsv"]
PHENOTYPES = ["--pheno", "phenotypes.txt", "--pheno-name", "status", "--1"]
BED = ["--bfile", "study"]
# Each with what its markers.tsv has of its own.
INPUTS = {
    "bed": (BED, []),
    "vcf": (["--vcf", "study.vcf", *PHENOTYPES], []),
    "vcf.gz": (["--vcf", "study.vcf.gz", *PHENOTYPES], []),
    "bcf": (["--vcf", "study.bcf", *PHENOTYPES], []),
    "raw": (["--raw", "study.raw", "--bim", "study.bim"], []),
    "raw alone": (["--raw", "study.raw"], ["CHR", "BP", "A2"]),
    "study": (["--study", "text"], ["BP", "A1", "A2"]),
}


def settings(permutations="4"):
    return ["--permutations", permutations, "--best-m", "12", "--max-retain", "10",
            "--fdr", "0.75"]


def table(path):
    titles, *rows = [line.split("\t") for line in path.read_text().splitlines()]
    return [dict(zip(titles, row)) for row in rows]


def without_columns(path, titles):
    return [{t: v for t, v in row.items() if t not in titles} for row in table(path)]


def with_masked_seconds(text):
    return re.sub(rb"(time of pvalue |Total time=)\d+", rb"\1", text)


def read_terminal(terminal):
    """What comes next; nothing when nobody writes to it any more."""
    try:
        return os.read(terminal, 1 << 12)
    except OSError:
        return b""


class Commands(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.work = Path(folder.name)
        self.study = StudyFiles(CASE, self.work)

    def vort(self, *words, status=0, said=None, cwd=None, **more):
        """Runs the program; standard error is to be one line with `said`, or nothing where that is
        empty."""
        done = subprocess.run([PROGRAM, *map(str, words)], cwd=cwd or self.work,
                              capture_output=True, **more)
        told = done.stderr.decode()
        self.assertEqual(done.returncode, status, f"{words}: {told}")
        if said is not None:
            self.assertRegex(told, f"^vort: [^\n]*{said}[^\n]*\n$" if said else "^$")
        return done

    def run_study(self, out, *more, permutations="4", **expected):
        return self.vort("run", *BED, *settings(permutations), "--out", out, *more, **expected)

    def assert_same(self, names, one, other):
        for name in names:
            same = filecmp.cmp(self.work / one / name, self.work / other / name, shallow=False)
            self.assertTrue(same, f"{one}/{name} differs from {other}/{name}")

    def assert_no_results(self, out):
        left = list((self.work / out).iterdir()) if (self.work / out).exists() else []
        self.assertEqual(left, [])

    def test_formats_give_the_same_results(self):
        for name, (words, own) in INPUTS.items():
            with self.subTest(name):
                self.vort("run", *words, *([] if name == "study" else settings()), "--out", name)
                self.assertEqual(without_columns(self.work / name / "markers.tsv", own),
                                 without_columns(self.work / "bed/markers.tsv", own))
                if "CHR" not in own:
                    self.assert_same(REPORTS, name, CASE / "expected")

    def test_threads_change_nothing(self):
        for threads in (1, 2, 7, 64):
            self.run_study(f"out{threads}", "--threads", threads, "--console")
            self.assert_same([*REPORTS, *TABLES, "report.html"], "out1", f"out{threads}")

    def test_import_gives_the_run_of_the_bare_program(self):
        for name, (words, _) in INPUTS.items():
            with self.subTest(name):
                given = [*words, *([] if name == "study" else settings())]
                self.vort("import", *given, "--out", name + ".d")
                bare = self.vort(cwd=self.work / (name + ".d"), said="")
                self.vort("run", *given, "--console", "--out", name)
                self.assert_same(REPORTS, name, name + ".d")
                console = (self.work / name / "console.txt").read_bytes()
                self.assertEqual(with_masked_seconds(console), with_masked_seconds(bare.stdout))

    def test_results_of_one_run_fit_together(self):
        summary = self.run_study("out", "--quiet", said="").stdout.decode()
        model = json.loads((self.work / "out/model.json").read_text())
        schema = json.loads((ROOT / "docs/model.schema.json").read_text())
        jsonschema.Draft202012Validator(schema).validate(model)
        markers = table(self.work / "out/markers.tsv")
        self.assertEqual({row["SNP"] for row in markers if row["IN_MODEL"] == "1"},
                         {marker["name"] for marker in model["model"]["markers"]})
        ranks = [int(row["RANK"]) for row in markers if row["RANK"] != "NA"]
        self.assertEqual(sorted(ranks), list(range(1, 1 + len(ranks))))
        stronger = sum(float(row["T"]) > model["result"]["T0"] + 1e-6
                       for row in table(self.work / "out/permutations.tsv")[1:])
        self.assertEqual(model["result"]["stronger"], stronger)
        self.assert_fitted_risk(model["model"])
        log = (self.work / "out/run.log").read_text()
        digest = subprocess.run(["sha256sum", self.work / "study.bed"], capture_output=True)
        for text in (summary, digest.stdout.decode()[:64], "--best-m 12", "models"):
            self.assertIn(text, log)
        self.assertIn(f"{len(self.study.people)} individuals", summary)

    def assert_fitted_risk(self, model):
        """The file alone gives everybody's fitted risk: its mean is the share of cases, nearly,
        since imputed genotypes are not in the file."""
        columns = {marker[1]: self.study.column(j) for j, marker in enumerate(self.study.markers)}
        risks = {0: [], 1: []}
        for i, phenotype in enumerate(self.study.phenotypes):
            risk = model["intercept"]
            for learner in model["base_learners"]:
                codes = [columns[marker["name"]][i] for marker in learner["markers"]]
                risk += learner["risk_difference"] * (codes in learner["cells"])
            risks[phenotype].append(risk)
        everybody = risks[0] + risks[1]
        self.assertAlmostEqual(sum(everybody) / len(everybody), len(risks[1]) / len(everybody),
                               delta=0.03)
        mean = {y: sum(of) / len(of) for y, of in risks.items()}
        self.assertGreater(mean[1], mean[0] + 0.05)

    def test_report_is_made_anew(self):
        bim = self.work / "study.bim"
        bim.write_bytes(bim.read_bytes().replace(b"\t0\t", b"\xe9\t0\t"))  # names are no UTF-8
        self.run_study("plain")
        self.run_study("gzip", "--gzip")
        for out in ("plain", "gzip"):
            first = (self.work / out / "report.html").read_bytes()
            (self.work / out / "report.html").unlink()
            self.vort("report", out, said="")
            self.assertEqual((self.work / out / "report.html").read_bytes(), first)
        self.assertEqual(gzip.open(self.work / "gzip/markers.tsv.gz").read(),
                         (self.work / "plain/markers.tsv").read_bytes())
        self.assertFalse((self.work / "gzip/markers.tsv").exists())

    def test_earlier_results_stay_until_new_ones_are_complete(self):
        self.run_study("out", "--console")
        before = (self.work / "out/P_value.txt").read_bytes()
        self.run_study("out", status=3, said="P_value.txt: is there already.*--force")
        self.vort("run", "--bfile", "absent", "--out", "out", "--force", status=3,
                  said="absent.fam: cannot be opened")
        self.assertEqual((self.work / "out/P_value.txt").read_bytes(), before)
        self.run_study("out", "--force", permutations="3")
        self.assertNotEqual((self.work / "out/P_value.txt").read_bytes(), before)
        self.assertFalse((self.work / "out/console.txt").exists())

    def test_misuse_and_bad_input(self):
        (self.work / "cut.bed").write_bytes((self.work / "study.bed").read_bytes()[:100])
        (self.work / "full/report.html").mkdir(parents=True)
        shutil.copytree(self.work / "text", self.work / "far")
        parameters = self.work / "far/parameter.txt"
        parameters.write_text(parameters.read_text().replace("dat1", "../text/dat1"))
        run = ["run", *BED, "--out", "x"]
        for words, status, said in [
            (["run", *BED], 2, "--out"),
            (["run", "--out", "x"], 2, "exactly one of --bfile, --vcf, --raw and --study"),
            ([*run, "--raw", "study.raw"], 2, "exactly one"),
            ([*run, "--permutatons", "4"], 2, "--permutatons: .*; did you mean --permutations[?]"),
            (["rnu", "--out", "x"], 2, "rnu: .*did you mean run[?]"),
            (["--colour"], 2, "--colour: is unknown"),
            ([*run, "--best-m", "many"], 2, "best-m"),
            ([*run, "--threads", "0"], 2, "threads"),
            ([*run, "--maf", "1.5"], 2, "maf.*0 to 1"),
            ([*run, "--fdr", "nan"], 2, "fdr"),
            ([*run, "--prepared", "nowhere"], 3, "nowhere/prepare_data0.*is not there"),
            (["run", *BED, "--out", "full", "--force"], 3, "full/report.html: is a directory"),
            (["run", "--vcf", "study.vcf", "--out", "x"], 2, "--vcf needs --pheno"),
            ([*run, "--1"], 3, "study.fam:[0-9]*: phenotype 2"),
            ([*run, "--bed", "cut.bed"], 3, "cut.bed: 100 bytes; [0-9]* expected"),
            (["run", *BED, "--out", "study.fam/x"], 3, "study.fam/x: cannot be made"),
            ([*run, "--maf", "0.5"], 3, "no marker"),
            (["report", ""], 2, "DIR: is an empty word"),
            (["report", "text"], 3, "text/model.json: cannot be opened"),
            (["import", "--bfile", "absent", "--out", "x/y/z"], 3, "absent.fam: cannot be opened"),
            (["run", "--study", "far", "--out", "x"], 3, "parameter.txt:1: Inputfile ../text/dat1"),
        ]:
            with self.subTest(words):
                told = self.vort(*words, status=status).stderr.decode().splitlines()
                self.assertRegex(told[-1], "^vort: .*" + said)
                self.assertFalse((self.work / "x").exists())

    def test_help_starts_no_analysis(self):
        with open("/dev/full", "w") as full:
            self.assertEqual(subprocess.run([PROGRAM, "--version"], stdout=full).returncode, 4)
        text = self.work / "text"
        for words in (["--help"], ["run", "--help"], ["import", "--help"], ["report", "--help"]):
            self.assertIn(b"--help", self.vort(*words, said="", cwd=text).stdout)
        self.assertRegex(self.vort("--version", cwd=text).stdout, rb"^vort \d+\.\d+\.\d+\n$")
        self.assertEqual({path.name for path in text.iterdir()},
                         {path.name for path in CASE.iterdir()} - {"expected"})

    def test_signals_leave_nothing_half_written(self):
        seed = 20261121
        print("seed", seed)
        moments = random.Random(seed)
        words = [PROGRAM, "run", *BED, *settings("20000"), "--out", "out"]
        statuses = {signal.SIGINT: 130, signal.SIGTERM: 143, signal.SIGKILL: -9}
        for sent in [*statuses] * 4:
            running = subprocess.Popen(words, cwd=self.work, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            while running.poll() is None and not (self.work / "out/.vort-unfinished").exists():
                time.sleep(0.01)
            time.sleep(moments.uniform(0.01, 0.5))
            running.send_signal(sent)
            self.assertEqual(running.wait(), statuses[sent])
            left = {path.name for path in (self.work / "out").iterdir()}
            killed = {".vort-unfinished"} if sent == signal.SIGKILL else set()
            plan = {"plan.json", "parts"} | ({"plan.json.unfinished"} if killed else set())
            self.assertIn(left - plan, [killed])
            shutil.rmtree(self.work / "out")
        (self.work / "out").mkdir()
        (self.work / "out/.vort-unfinished").mkdir()
        self.run_study("out")
        self.assertFalse((self.work / "out/.vort-unfinished").exists())

    def test_an_input_that_changes_is_told(self):
        words = [PROGRAM, "run", *BED, *settings("150"), "--out", "out"]
        for change in ("truncate -s 10 study.bed", "touch study.bim"):
            self.study.write_bed()
            shutil.rmtree(self.work / "out", ignore_errors=True)
            running = subprocess.Popen(words, cwd=self.work, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.PIPE)
            while running.poll() is None and not (self.work / "out/.vort-unfinished").exists():
                time.sleep(0.01)
            time.sleep(0.2)
            subprocess.run(change.split(), cwd=self.work, check=True)
            told = running.communicate()[1].decode()
            self.assertEqual(running.returncode, 3, told)
            self.assertRegex(told, "study.b[a-z]*: changed during the run|became shorter")
            self.assertFalse((self.work / "out/P_value.txt").exists())

    def test_a_full_disk_is_told(self):
        for size in (100, 500, 3000, 20000, 100000):
            with self.subTest(size):
                done = self.run_study(
                    "out", "--console", "--force", status=4,
                    preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size)))
                self.assertRegex(done.stderr.decode(), "could not be fully written")
                shutil.rmtree(self.work / "out/parts", ignore_errors=True)
                (self.work / "out/plan.json").unlink(missing_ok=True)
                self.assert_no_results("out")

    def test_progress_is_a_line_on_a_terminal(self):
        terminal, inside = pty.openpty()
        running = subprocess.Popen([PROGRAM, "run", *BED, *settings("100"), "--out", "out"],
                                   cwd=self.work, stdout=subprocess.DEVNULL, stderr=inside)
        os.close(inside)
        shown = "".join(piece.decode() for piece in iter(lambda: read_terminal(terminal), b""))
        self.assertEqual(running.wait(), 0)
        self.assertRegex(shown, r"\r(screening|searching|modelling) \[#*-*\] \d+/101  \d+:\d\d elapsed")
        self.assertTrue(shown.endswith("\r\x1b[K"), repr(shown[-40:]))

    def test_prepared_files_take_the_place_of_the_screening(self):
        self.run_study("saved", "--save-prepared", "prepared")
        self.run_study("again", "--prepared", "prepared")
        self.assert_same(REPORTS, "saved", "again")
        self.study.phenotypes.reverse()
        self.study.write_bed()
        self.run_study("other", "--prepared", "prepared", status=3, said="not of this study")
        shutil.copy(self.work / "phenotypes.txt", self.work / "prepared/prepare_data0_0.050000.txt")
        self.run_study("x", "--pheno", "prepared/prepare_data0_0.050000.txt", "--pheno-name",
                       "status", "--1", "--save-prepared", "prepared", status=3,
                       said="would be written or removed")

    def saved_phenotypes(self, folder):
        return [path.read_text().split("\n")[0].split()
                for path in sorted((self.work / folder).iterdir())]

    def test_permutations_keep_to_clusters(self):
        clusters = {person: f"c{k % 3}" if k % 7 else "NA"
                    for k, person in enumerate(self.study.people)}
        self.study.write("all.txt", (f"{p} {p} all" for p in self.study.people))
        self.study.write("some.txt", ["FID IID site", *(f"{p} {p} {c}"
                                                        for p, c in clusters.items())])
        self.run_study("free", "--console")
        self.run_study("all", "--console", "--within", "all.txt")
        self.assert_same([*REPORTS, *TABLES], "free", "all")
        for threads in (1, 5):
            self.run_study(f"some{threads}", "--within", "some.txt", "--within-name", "site",
                           "--threads", threads, "--save-prepared", f"prepared{threads}")
        self.assert_same([*REPORTS, *TABLES, "model.json", "report.html"], "some1", "some5")
        observed, *permuted = self.saved_phenotypes("prepared1")
        self.assertEqual(len({tuple(row) for row in permuted}), 4)
        for row in permuted:
            for cluster in ("c0", "c1", "c2"):
                places = [i for i, c in enumerate(clusters.values()) if c == cluster]
                self.assertEqual(sorted(row[i] for i in places),
                                 sorted(observed[i] for i in places))
            for i, cluster in enumerate(clusters.values()):
                self.assertTrue(cluster != "NA" or row[i] == observed[i])
        model = json.loads((self.work / "some1/model.json").read_text())
        schema = json.loads((ROOT / "docs/model.schema.json").read_text())
        jsonschema.Draft202012Validator(schema).validate(model)
        alone = sum(cluster == "NA" for cluster in clusters.values())
        self.assertEqual(model["within"], {"file": "some.txt", "name": "site", "clusters": 3,
                                           "fixed": 0, "unassigned": alone})
        self.assertIn("  within  some.txt", (self.work / "some1/run.log").read_text())
        self.vort("report", "some1", said="")
        self.assert_same(["report.html"], "some1", "some5")
        self.run_study("x", "--prepared", "prepared1", "--within", "all.txt")
        self.run_study("free", "--force", "--save-prepared", "prepared")
        done = self.run_study("y", "--prepared", "prepared", "--within", "some.txt", status=3)
        self.assertRegex(done.stderr, b"not of this study; .* with the same --within, expected\n$")
        self.vort("run", *BED, "--within-name", "site", "--out", "z", status=2,
                  said="--within-name names a column of --within FILE")

    def test_an_input_is_no_result(self):
        for command, name in (("run", "model.json"), ("import", "dat1.txt")):
            out = self.work / command
            out.mkdir()
            before = (self.work / "phenotypes.txt").read_text()
            (out / name).write_text(before)
            self.vort(command, "--vcf", "study.vcf", "--pheno", out / name, "--pheno-name",
                      "status", "--1", *settings(), "--out", command, "--force", status=3,
                      said="is an input, and")
            self.assertEqual((out / name).read_text(), before)
            self.assertEqual([path.name for path in out.iterdir()], [name])
        self.run_study("good")
        for name in ("model.json", "markers.tsv"):
            (self.work / "good/report.html").unlink()
            (self.work / "good/report.html").symlink_to(name)
            self.vort("report", "good", status=3, said="is an input, and")
        (self.work / "good/.vort-unfinished").mkdir()
        (self.work / "study.fam").rename(self.work / "good/.vort-unfinished/study.fam")
        self.run_study("good", "--force", "--fam", "good/.vort-unfinished/study.fam", status=3,
                       said="would be written or removed")
        self.assertTrue((self.work / "good/.vort-unfinished/study.fam").exists())

    def test_prepared_files_replace_links_not_what_they_lead_to(self):
        (self.work / "prepared").mkdir()
        before = (self.work / "study.fam").read_bytes()
        (self.work / "prepared/prepare_data0_0.050000.txt").symlink_to("../study.fam")
        self.run_study("out", "--save-prepared", "prepared")
        self.assertEqual((self.work / "study.fam").read_bytes(), before)

    def test_pipes_are_read_and_waited_for(self):
        os.mkfifo(self.work / "pipe")
        waiting = subprocess.Popen([PROGRAM, "run", *BED, "--fam", "pipe", *settings(), "--out",
                                    "out"], cwd=self.work, stderr=subprocess.PIPE,
                                   stdout=subprocess.DEVNULL)
        self.assertIn(b"pipe: is a pipe", waiting.stderr.readline())
        (self.work / "pipe").write_bytes((self.work / "study.fam").read_bytes())
        waiting.stderr.close()
        self.assertEqual(waiting.wait(), 0)
        self.assert_same(REPORTS, "out", CASE / "expected")

    def test_what_is_not_ours_stays(self):
        (self.work / "mine").mkdir()
        (self.work / "mine/file").write_text("x")
        (self.work / "out").mkdir()
        (self.work / "out/.vort-unfinished").symlink_to("../mine")
        self.run_study("out")
        self.assertEqual((self.work / "mine/file").read_text(), "x")

    def test_tables_of_another_run_make_no_page(self):
        self.run_study("one")
        self.run_study("two", "--chr", "1")
        for name, said in (("markers.tsv", "lines; "), ("model.json", "lines; ")):
            before = (self.work / "one" / name).read_bytes()
            (self.work / "one" / name).write_bytes((self.work / "two" / name).read_bytes())
            self.vort("report", "one", status=3, said=said)
            (self.work / "one" / name).write_bytes(before)
        for text in ('{"format": 1}', "[" * 100000, '{"format": "vort-model", "format_version": 1}'):
            (self.work / "one/model.json").write_text(text)
            self.vort("report", "one", status=3, said="model.json: ")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
