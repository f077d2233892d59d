"""A golden case's study in every format that the program reads."""
import random
import shutil
import subprocess
from pathlib import Path

GENOTYPE_BITS = {-1: 1, 0: 3, 1: 2, 2: 0}
GENOTYPE_TEXT = {-1: "./.", 0: "0/0", 1: "0/1", 2: "1/1"}


class StudyFiles:
    """study.bed and the others in `folder`: names, phenotypes and genotypes of the text study
    `case`, with alleles and positions made up."""

    def __init__(self, case, folder):
        self.folder = Path(folder)
        rows = [line.split() for line in (case / "dat1.txt").read_text().splitlines()[1:]]
        self.people = [row[0] for row in rows]
        self.phenotypes = [int(row[1]) for row in rows]
        self.genotypes = [[int(word) for word in row[2:]] for row in rows]
        table = (case / "Chromosome_SNP_Name.txt").read_text().split()
        alleles = random.Random(1)
        self.markers = [
            (int(chromosome), name, 1000 * (k + 1), *alleles.sample("ACGT", 2))
            for k, (chromosome, name) in enumerate(zip(table[::2], table[1::2]))
        ]
        self.write_bed()
        self.write_phenotypes()
        self.write_vcf()
        self.write_raw()
        shutil.copytree(case, self.folder / "text", ignore=shutil.ignore_patterns("expected"))

    def write(self, name, lines):
        (self.folder / name).write_text("".join(line + "\n" for line in lines))

    def column(self, j):
        return [row[j] for row in self.genotypes]

    def write_bed(self):
        columns = bytearray(b"\x6c\x1b\x01")
        for j in range(len(self.markers)):
            bits = [GENOTYPE_BITS[code] for code in self.column(j)]
            for i in range(0, len(bits), 4):
                columns.append(sum(two << 2 * k for k, two in enumerate(bits[i : i + 4])))
        (self.folder / "study.bed").write_bytes(columns)
        self.write("study.bim", (f"{c}\t{name}\t0\t{bp}\t{a1}\t{a2}"
                                 for c, name, bp, a1, a2 in self.markers))
        self.write("study.fam", (f"{p} {p} 0 0 0 {y + 1}"
                                 for p, y in zip(self.people, self.phenotypes)))

    def write_phenotypes(self):
        self.write("phenotypes.txt", ["FID IID other status"] + [
            f"{p} {p} -9 {y}" for p, y in zip(self.people, self.phenotypes)])

    def write_vcf(self):
        lines = ["##fileformat=VCFv4.2"]
        lines += [f"##contig=<ID=chr{c}>" for c in sorted({marker[0] for marker in self.markers})]
        lines += ['##FORMAT=<ID=GT,Number=1,Type=String,Description="Genotype">']
        titles = "#CHROM POS ID REF ALT QUAL FILTER INFO FORMAT".split()
        lines += ["\t".join(titles + self.people)]
        for j, (chromosome, name, bp, a1, a2) in enumerate(self.markers):
            fields = [f"chr{chromosome}", str(bp), name, a2, a1, ".", ".", ".", "GT"]
            lines += ["\t".join(fields + [GENOTYPE_TEXT[code] for code in self.column(j)])]
        self.write("study.vcf", lines)
        for kind, name in (("-Ob", "study.bcf"), ("-Oz", "study.vcf.gz")):
            subprocess.run(["bcftools", "view", "--no-version", kind, "-o", name, "study.vcf"],
                           cwd=self.folder, check=True)

    def write_raw(self):
        titles = "FID IID PAT MAT SEX PHENOTYPE".split()
        lines = [" ".join(titles + [f"{marker[1]}_{marker[3]}" for marker in self.markers])]
        for person, phenotype, row in zip(self.people, self.phenotypes, self.genotypes):
            words = [person, person, "0", "0", "0", str(phenotype + 1)]
            lines += [" ".join(words + ["NA" if code < 0 else str(code) for code in row])]
        self.write("study.raw", lines)
