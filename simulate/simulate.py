#!/usr/bin/env python3
"""Simulate a case-control study: dat1.txt, Chromosome_SNP_Name.txt and parameter.txt, and with
--binary NAME the same study as NAME.bed, NAME.bim and NAME.fam beside them.

Genotypes follow Hardy-Weinberg proportions, each marker with a minor allele frequency of its
own. Disease follows a logistic model whose intercept is the median risk score, so that about
half of the individuals are cases:

  --single J:EFFECT      adds EFFECT for each copy of marker J's counted allele
  --pair J,K:EFFECT      adds EFFECT to who carries the counted alleles of both J and K

Markers are numbered from 1. The same arguments give the same bytes on every machine: all chance
comes from one seeded generator, drawn in a fixed order (frequencies, genotypes, status, other
phenotypes, markers of poor quality, missing genotypes), and what only the binary files show
(positions, alleles, sexes) from another one. Memory is one byte a genotype.

Example: 200 individuals, an effect of marker 3, an interaction of markers 5 and 9

  simulate.py study --samples 200 --markers 40 --single 3:0.8 --pair 5,9:1.2
"""
import argparse
import itertools
import math
import random
from pathlib import Path

MISSING = 3
GENOTYPE_TEXT = ("0", "1", "2", "-1")
POOR_MARKER_MISSING = 0.15
FIRST_NAME = 1000

# By genotype, MISSING included: the two bits that stand for it in a .bed file.
BED_CODES = (3, 2, 0, 1)
BED_MAGIC = b"\x6c\x1b\x01"
MARKER_SEED, PERSON_SEED = "markers", "people"
# Lengths of chromosomes 1 to 22 in millions of bases; further ones count as the last.
MEGABASES = (249, 242, 198, 190, 182, 171, 159, 145, 138, 134, 135, 133, 114, 107, 102, 90, 83, 80,
             59, 64, 47, 51)


def numbered_effect(marker_count):
    """A reader of "J:EFFECT" or "J,K:EFFECT": 0-based markers and the effect."""

    def read(text):
        markers, effect = text.split(":")
        numbers = [int(number) - 1 for number in markers.split(",")]
        if len(numbers) != marker_count or min(numbers) < 0:
            raise ValueError(text)
        return numbers, float(effect)

    read.__name__ = "effect"
    return read


def frequency_range(text):
    low, high = map(float, text.split(":"))
    if not 0 <= low <= high <= 1:
        raise ValueError(text)
    return low, high


def parse_arguments():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    add = parser.add_argument
    add("directory", type=Path)
    add("--samples", type=int, default=200)
    add("--markers", type=int, default=40)
    add("--chromosomes", type=int, default=3)
    add("--seed", type=int, default=1)
    add("--maf", type=frequency_range, default=(0.1, 0.5), metavar="LOW:HIGH",
        help="range of the minor allele frequencies (default 0.1:0.5)")
    add("--frequency", type=numbered_effect(1), action="append", default=[], metavar="J:F",
        help="allele frequency of one marker, in place of the drawn one")
    add("--ld", type=float, default=0.0, help="share of genotypes copied from the marker before")
    add("--single", type=numbered_effect(1), action="append", default=[], metavar="J:EFFECT")
    add("--pair", type=numbered_effect(2), action="append", default=[], metavar="J,K:EFFECT")
    add("--missing", type=float, default=0.0, help="share of genotypes missing")
    add("--bad-markers", type=int, default=0, help="markers with 15%% missing")
    add("--monomorphic", type=int, default=0, help="last markers with one genotype only")
    add("--other-phenotype", type=float, default=0.0, help="share of individuals coded 2")
    add("--head", type=int, default=1, help="1: a line of titles comes first")
    add("--record", type=int, default=1, help="1: every row begins with an identifier")
    add("--binary", metavar="NAME", help="write NAME.bed, NAME.bim and NAME.fam too")
    add("--best-m", type=int, default=10)
    add("--max-retain", type=int, default=3)
    add("--permutations", type=int, default=5)
    add("--fdr", default="0.75")
    options = parser.parse_args()
    named = [j for markers, _ in options.single + options.pair + options.frequency for j in markers]
    if named and max(named) >= options.markers:
        parser.error(f"marker {max(named) + 1} is beyond the last, {options.markers}")
    return options


def draw_frequencies(options, rng):
    low, high = options.maf
    frequencies = [low + (high - low) * rng.random() for _ in range(options.markers)]
    for (marker,), frequency in options.frequency:
        frequencies[marker] = frequency
    return frequencies


def draw_row(frequencies, linkage, draw):
    """One individual's genotypes. `linkage` is the chance to repeat the marker before."""
    row = bytearray(len(frequencies))
    genotype = 0
    for j, frequency in enumerate(frequencies):
        if j == 0 or draw() >= linkage:
            genotype = (draw() < frequency) + (draw() < frequency)
        row[j] = genotype
    return row


def draw_genotypes(options, rng):
    frequencies = draw_frequencies(options, rng)
    rows = [draw_row(frequencies, options.ld, rng.random) for _ in range(options.samples)]
    for row in rows:
        for j in range(options.monomorphic):
            row[options.markers - 1 - j] = 0
    return rows


def risk_score(row, options):
    risk = sum(effect * row[j] for (j,), effect in options.single)
    return risk + sum(effect for (j, k), effect in options.pair if row[j] and row[k])


def draw_phenotypes(rows, options, rng):
    risks = [risk_score(row, options) for row in rows]
    middle = sorted(risks)[len(risks) // 2] if risks else 0
    status = [int(rng.random() < 1 / (1 + math.exp(middle - risk))) for risk in risks]
    return [2 if rng.random() < options.other_phenotype else code for code in status]


def drop_genotypes(rows, options, rng):
    """Marks genotypes missing. Comes last: disease follows the true genotypes."""
    poor = set(rng.sample(range(options.markers), options.bad_markers))
    shares = [POOR_MARKER_MISSING if j in poor else options.missing for j in range(options.markers)]
    draw = rng.random
    for row in rows:
        for j, share in enumerate(shares):
            if draw() < share:
                row[j] = MISSING


def marker_name(marker):
    return f"rs{FIRST_NAME + marker}"


def chromosome_of(marker, markers, chromosomes):
    """Markers are spread evenly over the chromosomes, in ascending order."""
    return 1 + marker * chromosomes // markers


def write_data_set(path, rows, phenotypes, options):
    with open(path, "w", encoding="ascii", newline="\n") as out:
        if options.head == 1:
            titles = ["ID", "Status"] if options.record == 1 else ["Status"]
            print(*titles, *map(marker_name, range(options.markers)), file=out)
        for i, (row, phenotype) in enumerate(zip(rows, phenotypes)):
            identifier = f"ind{i + 1} " if options.record == 1 else ""
            genotypes = " ".join(map(GENOTYPE_TEXT.__getitem__, row))
            out.write(f"{identifier}{phenotype} {genotypes}\n")


def write_marker_table(path, options):
    with open(path, "w", encoding="ascii", newline="\n") as out:
        for j in range(options.markers):
            chromosome = chromosome_of(j, options.markers, options.chromosomes)
            out.write(f"{chromosome}\t{marker_name(j)}\n")


def write_bed(path, columns):
    """SNP-major; each column has one marker's genotypes. The last byte is filled up with zeros."""
    with open(path, "wb") as out:
        out.write(BED_MAGIC)
        for column in columns:
            codes = [BED_CODES[genotype] for genotype in column]
            codes += [0] * (-len(codes) % 4)
            quads = zip(codes[0::4], codes[1::4], codes[2::4], codes[3::4])
            out.write(bytes(a | b << 2 | c << 4 | d << 6 for a, b, c, d in quads))


def write_bim(path, markers, chromosomes):
    """The first allele is the counted one. Each marker lies in an even share of its chromosome."""
    rng = random.Random(MARKER_SEED)
    by_chromosome = itertools.groupby(
        range(markers), key=lambda marker: chromosome_of(marker, markers, chromosomes)
    )
    with open(path, "w", encoding="ascii", newline="\n") as out:
        for chromosome, group in by_chromosome:
            length = 1000000 * MEGABASES[min(chromosome, len(MEGABASES)) - 1]
            members = list(group)
            for k, j in enumerate(members):
                position = 1 + int(length * (k + rng.random()) / len(members))
                line = (chromosome, marker_name(j), 0, position, *rng.sample("ACGT", 2))
                print(*line, sep="\t", file=out)


def write_fam(path, phenotypes):
    rng = random.Random(PERSON_SEED)
    with open(path, "w", encoding="ascii", newline="\n") as out:
        for i, phenotype in enumerate(phenotypes):
            sex = 1 + int(2 * rng.random())
            out.write(f"ind{i + 1} ind{i + 1} 0 0 {sex} {phenotype + 1}\n")


def write_parameters(path, options):
    lines = [
        ("Inputfile", 5, "dat1.txt"),
        ("Head", 7, options.head),
        ("Recorder_num", 5, options.record),
        ("Sample_size", 5, options.samples),
        ("Number_of_markers", 3, options.markers),
        ("Symbol_of_missing_Gentype", 1, -1),
        ("Max_retain", 5, options.max_retain),
        ("FDR_cutoff_for_candidate_locus_combinations", 1, options.fdr),
        ("Number_of_permutation", 2, options.permutations),
        ("How_many_imputation_to_deal_with_missing", 3, 10),
        ("Best_m", 6, options.best_m),
    ]
    with open(path, "w", encoding="ascii", newline="\n") as out:
        for key, tabs, value in lines:
            out.write(key + "\t" * tabs + f"{value}\n")


def main():
    options = parse_arguments()
    rng = random.Random(options.seed)
    rows = draw_genotypes(options, rng)
    phenotypes = draw_phenotypes(rows, options, rng)
    drop_genotypes(rows, options, rng)

    folder = options.directory
    folder.mkdir(parents=True, exist_ok=True)
    write_data_set(folder / "dat1.txt", rows, phenotypes, options)
    write_marker_table(folder / "Chromosome_SNP_Name.txt", options)
    write_parameters(folder / "parameter.txt", options)
    if options.binary:
        prefix = str(folder / options.binary)
        write_bed(prefix + ".bed", zip(*rows))
        write_bim(prefix + ".bim", options.markers, options.chromosomes)
        write_fam(prefix + ".fam", phenotypes)


if __name__ == "__main__":
    main()
