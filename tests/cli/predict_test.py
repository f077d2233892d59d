"""predict_test.py PROGRAM: models applied to other individuals, and to those held back from a run."""
import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import jsonschema

from study_files import GENOTYPE_BITS, StudyFiles

PROGRAM = Path(sys.argv[1]).resolve()
ROOT = Path(__file__).resolve().parents[2]
CASE = ROOT / "tests/golden/linked"
SETTINGS = ["--permutations", "3", "--best-m", "12", "--max-retain", "10"]
PHENOTYPES = ["--pheno", "phenotypes.txt", "--pheno-name", "status", "--1"]
BED = ["--bfile", "study"]
OTHER_STRAND = str.maketrans("ACGT", "TGCA")


def table(path):
    titles, *rows = [line.split("\t") for line in path.read_text().splitlines()]
    return [dict(zip(titles, row)) for row in rows]


def plain_auc(rows):
    risks = {y: [float(row["RISK"]) for row in rows if row["PHENO"] == y] for y in "12"}
    won = sum((case > control) + (case == control) / 2
              for case in risks["2"] for control in risks["1"])
    return won / len(risks["1"]) / len(risks["2"])


class Predict(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.work = Path(folder.name)
        self.study = StudyFiles(CASE, self.work)

    def vort(self, *words, status=0, said=None):
        """Runs the program and returns what it said; the last line of that is to have `said`."""
        done = subprocess.run([PROGRAM, *map(str, words)], cwd=self.work, capture_output=True)
        told = done.stderr.decode()
        self.assertEqual(done.returncode, status, f"{words}: {told}")
        if said is not None:
            self.assertRegex((told.splitlines() or [""])[-1], f"^vort: .*{said}" if said else "^$")
        return told

    def run_study(self, out, *more, fdr="0.75", **expected):
        return self.vort("run", *BED, *SETTINGS, "--fdr", fdr, *more, "--quiet", "--out", out, **expected)

    def predict(self, out, *more, model="run", **expected):
        return self.vort("predict", "--model", model, "--out", out, *more, **expected)

    def read(self, name):
        return (self.work / name).read_bytes()

    def description(self, name):
        return json.loads((self.work / name).read_text())

    def markers_of_model(self):
        return {marker["name"] for marker in self.description("run/model.json")["model"]["markers"]}

    def test_every_way_to_write_a_study_gives_the_same_table(self):
        self.run_study("run")
        self.predict("bed.tsv", *BED, said="" if not self.palindromes() else "A/T or C/G")
        expected = self.read("bed.tsv")
        self.write_the_other_way_round()
        for name, words in {"vcf": ["--vcf", "study.vcf.gz", *PHENOTYPES],
                            "bcf": ["--vcf", "study.bcf", *PHENOTYPES],
                            "raw": ["--raw", "study.raw", "--bim", "study.bim"],
                            "raw alone": ["--raw", "study.raw"],
                            "study": ["--study", "text"],
                            "turned": ["--bfile", "turned", "--threads", "7"]}.items():
            with self.subTest(name):
                told = self.predict(name + ".tsv", *words)
                self.assertEqual(self.read(name + ".tsv"), expected)
                self.assertEqual("other strand" in told, name == "turned")
                self.assertNotIn("another place", told)
        self.predict("blind.tsv", "--vcf", "study.vcf")
        for blind, row in zip(table(self.work / "blind.tsv"), table(self.work / "bed.tsv")):
            self.assertEqual(blind, {**row, "PHENO": "NA"})
        self.assertIsNone(self.description("blind.json")["evaluation"])

    def palindromes(self):
        return [name for _, name, _, a1, a2 in self.study.markers
                if name in self.markers_of_model() and a1.translate(OTHER_STRAND) == a2]

    def write_the_other_way_round(self):
        """Markers in another order, each second one with its alleles exchanged, on the other strand
        where that can be seen."""
        columns = bytearray(b"\x6c\x1b\x01")
        lines = []
        for j in reversed(range(len(self.study.markers))):
            chromosome, name, bp, a1, a2 = self.study.markers[j]
            codes = self.study.column(j)
            if j % 2 == 0:
                a1, a2 = a2, a1
                codes = [code if code < 0 else 2 - code for code in codes]
            if a1.translate(OTHER_STRAND) != a2:
                a1, a2 = a1.translate(OTHER_STRAND), a2.translate(OTHER_STRAND)
            lines.append(f"{chromosome} {name} 0 {bp} {a1} {a2}")
            bits = [GENOTYPE_BITS[code] for code in codes]
            for i in range(0, len(bits), 4):
                columns.append(sum(two << 2 * k for k, two in enumerate(bits[i : i + 4])))
        (self.work / "turned.bed").write_bytes(columns)
        self.study.write("turned.bim", lines)
        shutil.copy(self.work / "study.fam", self.work / "turned.fam")

    def test_risks_are_those_that_the_model_says(self):
        self.run_study("run")
        self.predict("p.tsv", *BED)
        model = self.description("run/model.json")["model"]
        columns = {marker[1]: self.study.column(j) for j, marker in enumerate(self.study.markers)}
        rows = table(self.work / "p.tsv")
        complete = 0
        for i, row in enumerate(rows):
            risk = model["intercept"]
            genotyped = sum(columns[marker["name"]][i] >= 0 for marker in model["markers"])
            share = genotyped / len(model["markers"])
            self.assertAlmostEqual(float(row["MARKERS_FOUND"]), share, delta=1e-6)
            for learner in model["base_learners"]:
                codes = [columns[marker["name"]][i] for marker in learner["markers"]]
                if min(codes) >= 0:
                    self.assertEqual(row[f"X{learner['id']}"], str(int(codes in learner["cells"])))
                risk += learner["risk_difference"] * (codes in learner["cells"])
            if share == 1:
                self.assertAlmostEqual(float(row["RISK"]), risk, delta=1e-5)
                complete += 1
        self.assertGreater(complete, len(rows) / 2)
        self.assertAlmostEqual(self.description("p.json")["evaluation"]["auc"], plain_auc(rows),
                               delta=1e-12)

    def test_holding_back_is_leaving_out_and_predicting(self):
        self.run_study("run", "--holdout", "0.4")
        people = [line.split("\t")[:2] for line in
                  (self.work / "run/holdout.tsv").read_text().splitlines()[1:]]
        self.study.write("held.txt", map(" ".join, people))
        self.predict("held.tsv", *BED, "--keep", "held.txt")
        self.assertEqual(self.read("held.tsv"), self.read("run/holdout.tsv"))
        self.run_study("rest", "--remove", "held.txt")
        for name in ("Final_result.txt", "P_value.txt", "markers.tsv", "permutations.tsv"):
            self.assertEqual(self.read(f"rest/{name}"), self.read(f"run/{name}"), name)
        model = self.description("run/model.json")
        schema = json.loads((ROOT / "docs/model.schema.json").read_text())
        jsonschema.Draft202012Validator(schema).validate(model)
        trial = model.pop("holdout")
        self.assertEqual(trial["evaluation"], self.description("held.json")["evaluation"])
        self.assertEqual(model["model"], self.description("rest/model.json")["model"])
        self.assertNotIn("holdout", self.description("rest/model.json"))
        self.predict("seen.tsv", *BED, "--remove", "held.txt")
        self.assertEqual(trial["training"], self.description("seen.json")["evaluation"])
        page = self.read("run/report.html")
        self.assertIn(b'<section id="holdout">', page)
        self.vort("report", "run")
        self.assertEqual(self.read("run/report.html"), page)
        self.run_study("again", "--holdout", "0.4", "--threads", "5")
        self.assertEqual(self.read("again/model.json"), self.read("run/model.json"))

    def test_a_plan_holds_the_same_people_back(self):
        self.run_study("run", "--holdout", "0.4", "--gzip")
        self.vort("plan", *BED, *SETTINGS, "--fdr", "0.75", "--holdout", "0.4", "--gzip", "--tasks",
                  "2", "--out", "plan")
        (self.work / "study.bed").unlink()
        for step in ("screen", "model"):
            for task in (0, 1):
                self.vort("task", step, "plan", task)
        self.vort("merge", "plan")
        for name in ("holdout.tsv", "model.json", "report.html", "Final_result.txt"):
            self.assertEqual(self.read(f"plan/{name}"), self.read(f"run/{name}"), name)

    def test_without_a_model_there_is_nothing_to_try(self):
        self.run_study("none", "--holdout", "0.3", fdr="1e-9")
        rows = table(self.work / "none/holdout.tsv")
        self.assertEqual({row["RISK"] for row in rows}, {"NA"})
        self.assertEqual({row["PHENO"] for row in rows}, {"1", "2"})
        trial = self.description("none/model.json")["holdout"]
        self.assertEqual((trial["cases"] + trial["controls"], trial["evaluation"]),
                         (len(rows), None))
        self.predict("p.tsv", *BED, model="none", status=3, said="none/model.json: holds no model")

    def test_markers_that_are_not_there(self):
        self.run_study("run")
        lost = sorted(self.markers_of_model())[0]
        bim = self.work / "study.bim"
        bim.write_text(bim.read_text().replace(f"\t{lost}\t", "\tanother\t"))
        told = self.predict("p.tsv", *BED)
        self.assertIn(f"1 marker of the model is not here ({lost}).", told)
        self.assertTrue(all(float(row["MARKERS_FOUND"]) < 1 for row in table(self.work / "p.tsv")))
        matches = {marker["name"]: marker["match"] for marker in self.description("p.json")["markers"]}
        self.assertEqual(matches.pop(lost), "not found")
        self.assertEqual(set(matches.values()), {"same"})

    def test_misuse_and_bad_input(self):
        self.run_study("run")
        (self.work / "foreign.json").write_text('{"format": "vort-model", "format_version": 1}')
        (self.work / "d.tsv").mkdir()
        predict = ["predict", *BED, "--out", "x.tsv"]
        for words, status, said in [
            (["predict", *BED, "--model", "run"], 2, "--out"),
            (predict, 2, "--model"),
            ([*predict, "--model", "run", "--maf", "0.1"], 2, "--maf: is unknown"),
            ([*predict, "--model", "absent"], 3, "absent: cannot be opened"),
            ([*predict, "--model", "text"], 3, "text/model.json: cannot be opened"),
            ([*predict, "--model", "study.fam"], 3, "study.fam: is no description of a model"),
            ([*predict, "--model", "foreign.json"], 3, "foreign.json: .*run the analysis again"),
            (["predict", "--model", "run", "--bfile", "absent", "--out", "x.tsv"], 3, "absent.fam"),
            (["predict", "--model", "run", *BED, "--out", "d.tsv"], 3, "d.tsv: is no regular file"),
            (["predict", "--model", "run", *BED, "--out", "no/x.tsv"], 3, "no: is no directory"),
            (["run", *BED, "--out", "x", "--holdout", "1"], 2, "holdout: 1; a share above 0"),
            (["run", *BED, "--out", "x", "--holdout", "nan"], 2, "holdout"),
            (["run", *BED, "--out", "x", "--holdout", "0.001"], 3, "it holds back 0; at least one"),
        ]:
            with self.subTest(words):
                self.vort(*words, status=status, said=said)
                self.assertEqual([path for path in self.work.glob("x*")], [])

    def test_files_that_are_there_stay(self):
        self.run_study("run")
        before = self.read("study.fam")
        for out in ("study.fam", "link.tsv"):
            if out == "link.tsv":
                (self.work / out).symlink_to("study.fam")
            self.predict(out, *BED, status=3, said=f"{out}: is there already")
            self.predict(out, *BED, "--force", status=3, said="is an input, and")
            self.assertEqual(self.read("study.fam"), before)
        (self.work / "run.json").write_bytes(self.read("run/model.json"))
        self.predict("run.tsv", *BED, "--force", model="run.json", status=3, said="is an input")
        (self.work / "mine").mkdir()
        (self.work / "mine/table").write_text("mine")
        (self.work / "p.tsv.vort-unfinished").symlink_to("mine")
        self.predict("p.tsv", *BED)
        self.assertEqual(self.read("mine/table"), b"mine")
        (self.work / "p.tsv").write_text("mine")
        self.predict("p.tsv", *BED, status=3, said="p.json: is there already.*--force")
        (self.work / "p.json").unlink()
        self.predict("p.tsv", *BED, status=3, said="p.tsv: is there already.*--force")
        self.predict("p.tsv", "--bfile", "absent", "--force", status=3)
        self.assertEqual(self.read("p.tsv"), b"mine")
        self.predict("p.tsv", *BED, "--force")
        self.assertEqual(len(table(self.work / "p.tsv")), len(self.study.people))
        self.assertEqual([path.name for path in self.work.glob("*unfinished*")], [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
