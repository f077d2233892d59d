"""Small studies in folders, and the commands that the faults are forced on."""
import dataclasses
import random
import re
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/cli"))
from study_files import StudyFiles  # noqa: E402

REPORTS = ("P_value.txt", "Final_result.txt")
# In the order in which they get their names; the last one says that the set is whole.
RUN = (*REPORTS, "FDR_results.txt", "console.txt", "markers.tsv", "markers.tsv.gz",
       "quantiles.tsv", "permutations.tsv", "holdout.tsv", "model.json", "report.html", "run.log")
STUDY = ("dat1.txt", "Chromosome_SNP_Name.txt", "parameter.txt")
PHENOTYPES = ["--pheno", "phenotypes.txt", "--pheno-name", "status", "--1"]
SETTINGS = ["--permutations", "3", "--best-m", "5", "--fdr", "0.75"]
BED = ["study.bed", "study.bim", "study.fam"]
SECONDS = 20  # a run takes a fiftieth of one


@dataclasses.dataclass
class Scenario:
    name: str
    words: list  # of the command line; none is the bare program
    inputs: list  # files of the study, by name
    results: tuple = RUN
    out: str = "out"  # where they come
    extra: tuple = ()  # files that a run that succeeds leaves beside its results
    threads: int = 1
    before: list = None  # a command that leaves earlier results, or a list of commands
    killed_at: str = None  # where the last of these is killed; the position's kind and file
    watched_stdout: bool = False
    thorough: bool = True  # else few of its positions are tried
    only_inputs: bool = False  # faults of other files are those of another scenario
    each_allocation: bool = False  # else some of them fail
    base: str = "."  # where its study is among all
    # Filled in by prepare() and the reference run.
    folder: Path = None
    earlier: dict = None
    inputs_before: dict = None
    right: dict = None
    stdout: bytes = b""
    stderr: bytes = b""
    positions: list = None
    allocations: int = 0

    @property
    def bare(self):
        return not self.words

    def is_output(self, name):
        """Whether a run may write to the file of this name."""
        folder, _, last = name.rpartition("/")
        if ".vort-unfinished" in name or name.endswith(".unfinished"):
            return True
        at_home = folder == ("" if self.out == "." else self.out)
        return (at_home and last in self.results) or any(map(name.startswith, self.extra))


def run_words(*words, **more):
    return {"words": ["run", *words, *SETTINGS, "--out", "out"], **more}


def vcf(name):
    return {**run_words("--vcf", name, *PHENOTYPES), "inputs": [name, "phenotypes.txt"]}


EARLIER = ["run", "--bfile", "study", "--permutations", "2", "--best-m", "4", "--fdr", "0.75",
           "--console", "--fdr-report", "--gzip", "--maf", "0.3", "--out", "out"]
LONG = {"base": "long", "only_inputs": True}
TEXT = ["dat1.txt", "Chromosome_SNP_Name.txt", "parameter.txt"]


def scenarios():
    bed = run_words("--bfile", "study", inputs=BED)
    everything = run_words("--bfile", "study", "--force", "--console", "--fdr-report",
                           inputs=BED, before=EARLIER)
    prepared = ["run", "--bfile", "study", *SETTINGS, "--save-prepared", "prepared", "--out", "out"]
    imported = {"words": ["import", "--raw", "study.raw", *SETTINGS, "--out", "out"],
                "inputs": ["study.raw"], "results": STUDY}
    predicted = {"words": ["predict", "--model", "model", "--bfile", "study", "--out", "p.tsv"],
                 "inputs": BED, "results": ("p.json", "p.tsv"), "out": ".",
                 "before": [[*bed["words"][:-1], "model"]]}
    # Somebody is left out, so that all that tasks read is in the folder of the parts.
    kept = ["--bfile", "study", "--keep", "keep.txt", *SETTINGS, "--out", "out"]
    kept_inputs = [*BED, "keep.txt"]
    plan = ["plan", *kept, "--tasks", "2"]
    steps = [["task", step, "out", task] for step in ("screen", "model") for task in "01"]

    def task(step, *before):
        return {"words": ["task", step, "out", "1"], "inputs": kept_inputs, "out": "out/parts",
                "before": [plan, *before]}

    bare = {"words": [], "inputs": TEXT, "results": REPORTS, "out": "."}
    return [
        Scenario("bare", **bare, watched_stdout=True),
        Scenario("bare-again", **bare, before=["earlier"]),
        Scenario("bare-default", **{**bare, "inputs": TEXT[:2]}),
        Scenario("bare-2-threads", **bare, threads=2, thorough=False),
        Scenario("bare-long", **bare, **LONG),
        Scenario("run-bed", **bed),
        Scenario("run-bed-2-threads", **bed, threads=2, thorough=False),
        Scenario("run-force", **everything),
        Scenario("run-gzip", **run_words("--bfile", "study", "--gzip", inputs=BED)),
        Scenario("run-chosen", **run_words("--bfile", "study", "--keep", "keep.txt", "--exclude",
                                           "exclude.txt", "--within", "clusters.txt",
                                           inputs=[*BED, "keep.txt", "exclude.txt",
                                                   "clusters.txt"])),
        Scenario("run-vcf", **vcf("study.vcf")),
        Scenario("run-vcf.gz", **vcf("study.vcf.gz")),
        Scenario("run-bcf", **vcf("study.bcf")),
        Scenario("run-vcf.gz-long", **vcf("study.vcf.gz"), **LONG),
        Scenario("run-raw-long", **run_words("--raw", "study.raw", "--gzip", inputs=["study.raw"]),
                 **LONG),
        Scenario("run-raw", **run_words("--raw", "study.raw", "--bim", "study.bim",
                                        inputs=["study.raw", "study.bim"])),
        Scenario("run-study", words=["run", "--study", "text", "--out", "out"],
                 inputs=[f"text/{name}" for name in TEXT]),
        Scenario("run-save-prepared", words=prepared, inputs=BED, extra=("prepared",)),
        Scenario("run-prepared", **run_words("--bfile", "study", "--prepared", "prepared",
                                             inputs=BED), before=[*prepared[:-1], "other"]),
        Scenario("run-holdout", **run_words("--bfile", "study", "--holdout", "0.3", inputs=BED)),
        Scenario("run-resume", words=["run", "--resume", "--out", "out"], inputs=kept_inputs,
                 before=["run", *kept], killed_at="rename out/parts/screen-1.part",
                 extra=("out/parts", "out/plan.json")),
        Scenario("plan", words=plan, inputs=kept_inputs, results=("plan.json",),
                 extra=("out/parts",)),
        Scenario("plan-extend", words=["plan", "--extend", "out", "--permutations", "5"],
                 inputs=kept_inputs, before=[plan, *steps[:1]], results=("plan.json",),
                 extra=("out/parts",)),
        Scenario("task-screen", **task("screen", *steps[:1]),
                 results=("screen-1.part", "draws-1.part")),
        Scenario("task-model", **task("model", *steps[:2]), results=("model-1.part",)),
        Scenario("merge", words=["merge", "out"], inputs=kept_inputs, before=[plan, *steps]),
        Scenario("predict", **predicted),
        Scenario("predict-force", **{**predicted, "words": [*predicted["words"], "--force"],
                                     "inputs": [*BED, "keep.txt"],
                                     "before": [*predicted["before"],
                                                [*predicted["words"], "--keep", "keep.txt"]]}),
        Scenario("import", **imported),
        # Read by a library, which may go on where it lacks memory.
        Scenario("import-bcf", words=["import", "--vcf", "study.bcf", *PHENOTYPES, *SETTINGS,
                                      "--out", "out"],
                 inputs=["study.bcf", "phenotypes.txt"], results=STUDY, only_inputs=True,
                 each_allocation=True),
        Scenario("import-force", **{**imported, "words": [*imported["words"], "--force"],
                                    "inputs": ["study.raw", *BED]},
                 before=["import", "--bfile", "study", "--maf", "0.3", "--out", "out"]),
        Scenario("report", words=["report", "out"], inputs=BED, results=("report.html",),
                 before=[*bed["words"], "--gzip"]),
    ]


def contents(folder):
    """Every file below a folder, by its name from there on."""
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in sorted(folder.rglob("*")) if path.is_file()}


def prepare(scenario, base, folder, run):
    """Makes the folder in which the scenario's command is to be run."""
    scenario.folder = folder
    for name in scenario.inputs:
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        source = base / scenario.base / ("text" if scenario.bare else ".") / name
        shutil.copyfile(source, folder / name)
    if scenario.before == ["earlier"]:
        for name in REPORTS:
            (folder / name).write_text(f"an earlier {name}\n")
    elif scenario.before:
        commands = scenario.before if isinstance(scenario.before[0], list) else [scenario.before]
        for words in commands:
            killed_at = scenario.killed_at if words is commands[-1] else None
            run(words, folder, killed_at).check_returncode()
        if scenario.name == "run-prepared":
            shutil.rmtree(folder / "other")
        if scenario.name == "report":
            (folder / "out/report.html").write_text("an earlier page\n")
    files = contents(folder)
    place = "" if scenario.out == "." else scenario.out + "/"
    scenario.earlier = {name: files[place + name] for name in scenario.results
                        if place + name in files}
    scenario.inputs_before = {name: text for name, text in files.items()
                              if not scenario.is_output(name)}


def write_long_case(folder):
    """A study whose files take several calls to read."""
    draw = random.Random(7)
    people, markers = range(1, 101), range(1, 1501)
    rows = [" ".join(["ID", "Status", *(f"rs{j}" for j in markers)])]
    for person in people:
        codes = (str(draw.choice((0, 0, 1, 1, 2))) for _ in markers)
        rows.append(" ".join([f"ind{person}", str(person % 2), *codes]))
    folder.mkdir()
    (folder / "dat1.txt").write_text("\n".join(rows) + "\n")
    (folder / "Chromosome_SNP_Name.txt").write_text("".join(f"1\trs{j}\n" for j in markers))
    values = {"Inputfile": "dat1.txt", "Head": 1, "Recorder_num": 1, "Sample_size": len(people),
              "Number_of_markers": len(markers), "Max_retain": 2, "Number_of_permutation": 1,
              "FDR_cutoff_for_candidate_locus_combinations": 0.75, "Best_m": 4}
    (folder / "parameter.txt").write_text("".join(f"{k}\t{v}\n" for k, v in values.items()))


def make_base(folder):
    study = StudyFiles(ROOT / "tests/golden/small", folder)
    study.write("keep.txt", (f"{person} {person}" for person in study.people[:-2]))
    study.write("clusters.txt", (f"{person} {person} {k // 4 % 2}"
                                 for k, person in enumerate(study.people)))
    study.write("exclude.txt", [study.markers[1][1]])
    write_long_case(folder / "case")
    (folder / "long").mkdir()
    StudyFiles(folder / "case", folder / "long")


RESUMED = rb"(?m)^vort: goes on where .*\n"
# What differs between two runs of the same command.
CHANGING = {
    "run.log": [rb"(?m)^(started|ended|host|memory) .*$", rb"(?m)^ +\d+\.\d{3}(?=  )",
                rb"(?m)^(Time|Report) .*$", RESUMED],
    "console.txt": [rb"(?m)^(time of pvalue |Total time=).*$"],
    "<stdout>": [rb"(?m)^(time of pvalue |Total time=|(Time|Report) +).*$"],
    # Plans know where they were made, and parts of which plan they are.
    "plan.json": [rb'"(directory|fingerprint|modified)": .*'],
    ".part": [rb"[0-9a-f]{64}"],
}


def masked(name, text):
    for pattern in CHANGING.get(".part" if name.endswith(".part") else name, []):
        text = re.sub(pattern, b"" if pattern is RESUMED else b"*", text)
    return text
