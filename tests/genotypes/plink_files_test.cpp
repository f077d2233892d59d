#include "genotypes/plink_files.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "common/input_error.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

constexpr const char* kGoodFam =
    "f a 0 0 1 2\n\nf b 0 0 2 1\r\nf c 0 0 0 -9\nf d 0 0 0 2\nf e 0 0 0 1";
constexpr const char* kGoodBim = "1 rs1 0 100 A G\nchrX\trs2 0.5 -7 T C\nmt rs3 0 9 A C\n";
// Individuals a to e: 2 1 0 - 0, then - - 1 2 2, then 0 0 0 0 0; the padding is set.
const std::string kGoodBed("\x6C\x1B\x01\x78\xFF\x25\xFC\xFF\xFF", 9);

BedStudy load(const std::string& bed, const std::string& bim, const std::string& fam) {
    write_file("s.bed", bed);
    write_file("s.bim", bim);
    write_file("s.fam", fam);
    return load_bed("s.bed", "s.bim", "s.fam");
}

std::string codes_of(const Genotypes& genotypes) {
    std::string codes;
    for (int j = 0; j < genotypes.markers(); ++j) {
        if (j > 0) codes += ' ';
        for (int i = 0; i < genotypes.individuals(); ++i) codes += "-012"[genotypes.code(i, j) + 1];
    }
    return codes;
}

template <typename Act>
std::string fault_of(Act act) try {
    act();
    return "none";
} catch (const InputError& error) {
    return error.text;
}

TEST(LoadBed, AGoodStudyIsReadBack) {
    const TemporaryFolder folder;
    std::string all = kGoodFam;
    all.replace(all.find("-9"), 2, "1");
    BedStudy study = load(kGoodBed, kGoodBim, all);
    EXPECT_EQ(codes_of(study.genotypes), "210-0 --122 00000");
    EXPECT_EQ(study.phenotypes, (std::vector<short>{1, 0, 0, 1, 0}));
    EXPECT_EQ(study.without_phenotype, 0);
    std::string markers;
    for (const MarkerInfo& marker : study.markers) {
        markers += std::to_string(marker.chromosome) + ' ' + marker.name + ' ' +
                   std::to_string(marker.position) + ' ' + marker.a1 + marker.a2 + "; ";
    }
    EXPECT_EQ(markers, "1 rs1 100 AG; 23 rs2 -7 TC; 26 rs3 9 AC; ");
    for (const char* missing : {"-9", "0", "NA"}) {
        std::string fam = kGoodFam;
        study = load(kGoodBed, kGoodBim, fam.replace(fam.find("-9"), 2, missing));
        EXPECT_EQ(codes_of(study.genotypes), "21-0 --22 0000") << missing;
        EXPECT_EQ(study.phenotypes, (std::vector<short>{1, 0, 1, 0}));
        EXPECT_EQ(study.without_phenotype, 1);
    }
}

TEST(LoadBed, WhatIsWrongIsToldWithItsPlace) {
    const TemporaryFolder folder;
    const std::string fam = kGoodFam, bim = kGoodBim, bed = kGoodBed;
    const std::string six = "; FID IID PAT MAT SEX PHENOTYPE expected";
    const std::string no_bed =
        "s.bed: is no .bed file; one that begins with the bytes 6C 1B expected";
    const std::string bytes = " bytes; 9 expected for 5 individuals (.fam) and 3 markers (.bim)";
    const struct {
        std::string bed, bim, fam, fault;
    } rows[] = {
        {bed, bim, "f a 0 0 1 2\n\nf b 0 0 1\n", "s.fam:3: 5 columns" + six},
        {bed, bim, "f a 0 0 1 2 x\n", "s.fam:1: 7 columns" + six},
        {bed, bim, "f a 0 0 1 3\n",
         "s.fam:1: phenotype 3; 1 (control), 2 (case), or 0, -9 or NA (missing) expected"},
        {bed, bim, "f a 0 0 1 0\nf b 0 0 1 1\n",
         "s.fam: the phenotypes are 0 and 1; 1 (control) and 2 (case) expected; if 0 is a control "
         "and 1 a case, recode them as 1 and 2"},
        {bed, bim, "f a 0 0 1 2\n", "s.fam: 1 cases and 0 controls; both expected"},
        {bed, bim, "", "s.fam: 0 cases and 0 controls; both expected"},
        {bed, "1 rs1 0 1 A\n", fam, "s.bim:1: 5 columns; CHR ID CM BP A1 A2 expected"},
        {bed, "27 rs1 0 1 A C\n", fam, "s.bim:1: chromosome 27; 1 to 26, X, Y, XY or MT expected"},
        {bed, "1 rs1 0 1e5 A C\n", fam, "s.bim:1: position 1e5; a whole number expected"},
        {bed, "1 rs1 0 99999999999999999999 A C\n", fam,
         "s.bim:1: position 99999999999999999999; a whole number expected"},
        {bed, "\n", fam, "s.bim: no marker; at least one expected"},
        {"", bim, fam, no_bed},
        {"ab" + bed.substr(2), bim, fam, no_bed},
        {bed.substr(0, 2) + '\0' + bed.substr(3), bim, fam,
         "s.bed: is individual-major; a SNP-major file expected; convert it, for example by plink "
         "--make-bed"},
        {bed.substr(0, 8), bim, fam, "s.bed: 8" + bytes},
        {bed + 'x', bim, fam, "s.bed: 10" + bytes},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(fault_of([&] { load(row.bed, row.bim, row.fam); }), row.fault);
    }
    for (const char* name :
         {"s.fam: cannot be opened", "s.bim: cannot be opened", "s.bed: cannot be read"}) {
        load(bed, bim, fam);
        std::filesystem::remove(std::string(name, 5));
        EXPECT_EQ(fault_of([] { load_bed("s.bed", "s.bim", "s.fam"); }),
                  name + std::string(" (No such file or directory)"));
    }
}

}  // namespace
}  // namespace vort::testing
