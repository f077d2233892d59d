// Studies in binary files: what is read, what is left out, and what is wrong with them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "study/study.h"
#include "study/study_files.h"

namespace vort::testing {
namespace {

constexpr const char* kFam = "f a 0 0 1 2\n\nf b 0 0 2 1\r\nf c 0 0 0 -9\nf d a 0 0 2\nf e 0 0 0 1";
constexpr const char* kBim = "1 rs1 0 100 A G\nchrX\trs2 0.5 7 T C\nmt rs3 0 9 A C\n";
// Individuals a to e: 2 1 0 - 0, then - - 1 2 2, then 0 0 0 0 0; the padding is set.
const std::string kBed("\x6C\x1B\x01\x78\xFF\x25\xFC\xFF\xFF", 9);

// The files "s.*" are written first; `act` makes the request.
struct Files {
    std::string bed = kBed, bim = kBim, fam = kFam, list;

    void write() const {
        write_file("s.bed", bed);
        write_file("s.bim", bim);
        write_file("s.fam", fam);
        write_file("list", list);
    }
};

TEST(LoadStudy, BinaryFilesAreReadBack) {
    const TemporaryFolder folder;
    Files files;
    files.fam.replace(files.fam.find("-9"), 2, "1");
    files.write();
    Study study = load_study(bed_request("s"));
    EXPECT_EQ(codes_of(study.genotypes), "210-0 --122 00000");
    EXPECT_FALSE(study.genotypes.is_owned()) << "a .bed as it is stays mapped";
    EXPECT_EQ(phenotypes_of(study), "10010");
    EXPECT_EQ(markers_of(study), "1:100:rs1:AG 23:7:rs2:TC 26:9:rs3:AC ");
    EXPECT_EQ(people_of(study), "f/a f/b f/c f/d f/e ");
    EXPECT_EQ(study.individuals[1].sex, 2);
    EXPECT_EQ(left_out_of(study), "");
    for (const char* missing : {"-9", "0", "NA"}) {
        files.fam = kFam;
        files.fam.replace(files.fam.find("-9"), 2, missing);
        files.write();
        study = load_study(bed_request("s"));
        EXPECT_EQ(codes_of(study.genotypes), "21-0 --22 0000") << missing;
        EXPECT_EQ(phenotypes_of(study), "1010");
        EXPECT_EQ(left_out_of(study), "1 people no phenotype; ");
        EXPECT_EQ(study.individuals_read, 5);
    }
}

TEST(LoadStudy, WhatIsOddIsTold) {
    const TemporaryFolder folder;
    Files files;
    files.bim =
        "2 rs1 0 5 A G\n0 x 0 5 A G\n1 rs1 0 9 A G\nchrUn y 0 5 A G\n1 n 0 -1 A G\nY z 0 1 A C\n";
    files.bed = kBed.substr(0, 3) + "\x78\xFF\x25\xFC\xFF\xFF\x25\xFC\x25\xFC\xFF\xFF";
    files.write();
    const Study study = load_study(bed_request("s"));
    EXPECT_EQ(markers_of(study), "1:9:rs1:AG 2:5:rs1:AG 24:1:z:AC ");
    EXPECT_EQ(codes_of(study.genotypes), "0000 21-0 0000");
    EXPECT_EQ(left_out_of(study),
              "2 markers not on chromosomes 1 to 26; 1 markers negative position; "
              "1 people no phenotype; ");
    EXPECT_EQ(notes_of(study),
              "s.bed has something behind the last of 5 individuals; see whether the .fam has lost "
              "a line.\n"
              "The markers were out of order; they are sorted by chromosome and position.\n"
              "1 marker name occurs more than once, rs1 for one.\n"
              "1 marker is on chromosomes 23 to 26 (Y 1); males' genotypes there are used as they "
              "are coded.\n");
    EXPECT_EQ(study.markers_read, 6);
}

// Phenotype files: who is a case (1), a control (0), left out (.), or the error.
TEST(LoadStudy, PhenotypesComeFromFiles) {
    const TemporaryFolder folder;
    const struct {
        const char* text;
        const char* name;
        bool control_is_0;
        const char* expected;
    } rows[] = {
        {"f a 1\nf b 2\nf c NA\n", "", false, "01..."},
        {"f a 0\nf b 1\nf d -9\n", "", true, "01..."},
        {"#FID IID x y\nf a 9 1\nf e 9 2 extra\nf z 9 2\n", "y", false, "0...1"},
        {"FID\tIID\tx\nf\tc\t1\nf\tb\t2\n", "", false, ".10.."},
        {"f a 0\nf b 1\n", "", false,
         "list: the phenotypes are 0 and 1; 1 (control) and 2 (case) expected; if 0 is a control "
         "and 1 a case, say so by --1"},
        {"f a 1\nf b 2\n", "", true,
         "list:2: phenotype 2; 0 (control), 1 (case), or -9 or NA (missing) expected; where 1 is a "
         "control and 2 a case leave out --1"},
        {"f a 1\nf b 2.5\n", "", false,
         "list:2: phenotype 2.5; 1 (control), 2 (case), or 0, -9 or NA (missing) expected"},
        {"f a 1\nf b 2\n\nf a 2\n", "", false,
         "list:4: individual f a, as in line 1; each individual once expected; take one of them "
         "out"},
        {"f a 1\nf b 2\n", "y", false,
         "list:1: no header; one that begins with FID IID expected, to find --pheno-name y"},
        {"FID IID x\nf a 1\n", "y", false,
         "list:1: no column y; one of that name expected; correct --pheno-name"},
        {"FID IID x y\nf a 1\n", "y", false, "list:2: 3 columns; FID IID and a phenotype expected"},
        {"f a\n", "", false, "list:1: 2 columns; FID IID and a phenotype expected"},
        {"\n", "", false, "list: is empty; phenotypes expected"},
        {"f a 1\nf b 1\n", "", false, "list: 0 cases and 2 controls; both expected"},
    };
    for (const auto& row : rows) {
        Files files;
        files.list = row.text;
        files.write();
        StudyRequest request = bed_request("s");
        request.phenotype = {"list", row.name, row.control_is_0};
        const std::string fault = fault_of(request);
        if (fault != "none") {
            EXPECT_EQ(fault, row.expected);
            continue;
        }
        const Study study = load_study(request);
        std::string groups = ".....";
        for (std::size_t i = 0; i < study.individuals.size(); ++i) {
            groups[static_cast<std::size_t>(study.individuals[i].id[0] - 'a')] =
                phenotypes_of(study)[i];
        }
        EXPECT_EQ(groups, row.expected);
        const bool stranger = std::string(row.text).find(" z ") != std::string::npos;
        EXPECT_EQ(notes_of(study).find("1 individual of list is not in the study.") == 0, stranger);
    }
}

// Cluster files over a (case), b and e (controls) and d (case), c having no phenotype: who is with
// whom, or the error, and the end of what is told.
TEST(LoadStudy, ClustersComeFromFiles) {
    const TemporaryFolder folder;
    const std::string shuffled = "Phenotypes are shuffled within the ";
    const struct {
        const char* text;
        const char* name;
        const char* expected;
        std::string told;
    } rows[] = {
        {"f a x\nf b x\nf c y\nf d x\nf e x", "", "0000", shuffled + "1 cluster of list only."},
        {"f e 7\nf a 7\nf d NA\nf b NA\nz z 8", "", "0120",
         shuffled + "1 cluster of list only.\n2 individuals are in no cluster and keep their "
                    "phenotypes."},
        {"#FID IID x site\nf d 1 south\nf b 2 north more\nf a 3 north\nf e 4 east\nf c 5 west",
         "site", "0012",
         shuffled + "3 clusters of list only.\n2 clusters have cases only or controls only, so "
                    "nothing is shuffled there."},
        {"FID IID x\nf d 0\nf e 0\nf b -9\n", "", "0122",
         shuffled + "2 clusters of list only.\n1 cluster has"},
        {"f a x\nf b y\nf d x\nf c x\n", "",
         "list: 2 clusters of individuals in the study, none with both cases and controls; one "
         "expected, since phenotypes are shuffled within clusters only",
         ""},
        {"f a NA\nf b NA\n", "",
         "list: 0 clusters of individuals in the study, none with both cases and controls; one "
         "expected, since phenotypes are shuffled within clusters only",
         ""},
        {"f a x\n\nf b\n", "", "list:3: 2 columns; FID IID and a cluster expected", ""},
        {"f a x\nf b x\nf a y\n", "",
         "list:3: individual f a, as in line 1; each individual once expected; take one of them "
         "out",
         ""},
        {"FID IID x\nf a 1\n", "y",
         "list:1: no column y; one of that name expected; correct --within-name", ""},
        {"f a x\n", "x",
         "list:1: no header; one that begins with FID IID expected, to find --within-name x", ""},
        {"", "", "list: is empty; clusters expected", ""},
    };
    for (const auto& row : rows) {
        Files files;
        files.list = row.text;
        files.write();
        StudyRequest request = bed_request("s");
        request.within = {"list", row.name};
        const std::string fault = fault_of(request);
        if (fault != "none") {
            EXPECT_EQ(fault, row.expected);
            continue;
        }
        const Study study = load_study(request);
        std::string clusters;
        for (int i = 0; i < study.clusters.items(); ++i) {
            clusters += std::to_string(study.clusters.of(i));
        }
        EXPECT_EQ(clusters, row.expected);
        EXPECT_THAT(notes_of(study), ::testing::HasSubstr(row.told));
    }
}

// Lists and rates, counted by hand.
TEST(LoadStudy, FiltersLeaveOutWhatTheySay) {
    const TemporaryFolder folder;
    const std::string none = "1 people no phenotype; ";
    const struct {
        const char* list;
        void (*ask)(Filters&);
        std::string markers, people, left_out, note;
    } rows[] = {
        {"", [](Filters& f) { f.chromosomes = "1-4,MT"; }, "rs1 rs3", "abde",
         "1 markers --chr 1-4,MT; " + none, ""},
        {"rs2 rs9\nrs3", [](Filters& f) { f.extract = "list"; }, "rs2 rs3", "abde",
         "1 markers --extract; " + none, "1 name of --extract is not among the markers."},
        {"rs2", [](Filters& f) { f.exclude = "list"; }, "rs1 rs3", "abde",
         "1 markers --exclude; " + none, ""},
        {"f a\nf c x\nf e\ng a", [](Filters& f) { f.keep = "list"; }, "rs1 rs2 rs3", "ae",
         "2 people --keep; " + none, "1 line of --keep names nobody in the study."},
        {"f c\nf b", [](Filters& f) { f.remove = "list"; }, "rs1 rs2 rs3", "ade",
         "2 people --remove; ", ""},
        // d misses one of three genotypes, a and b another one.
        {"", [](Filters& f) { f.mind = 0.3; }, "rs1 rs2 rs3", "e", "",
         "s.fam: 0 cases and 1 control are left; both expected; loosen the filters"},
        {"", [](Filters& f) { f.mind = 1.0 / 3; }, "rs1 rs2 rs3", "abde", none, ""},
        // 1, 2 and 0 of five are missing; c counts.
        {"", [](Filters& f) { f.geno = 0.2; }, "rs1 rs3", "abde", "1 markers --geno 0.2; " + none,
         ""},
        // Founders a b c e: 3 of 8; c 1 of 2 and e 2 of 2, a is male and missing; 0 of 8.
        {"", [](Filters& f) { f.maf = 0.3; }, "rs1", "abde", "2 markers --maf 0.3; " + none, ""},
        {"", [](Filters& f) { f.maf = 0.25; }, "rs1 rs2", "abde", "1 markers --maf 0.25; " + none,
         ""},
        {"", [](Filters& f) { f.maf = 0.51; }, "", "", "",
         "s.bim: no marker is left; at least one expected; loosen the filters"},
        {"", [](Filters& f) { f.chromosomes = "3,5-4"; }, "", "", "",
         "--chr 3,5-4: \"5-4\" is no chromosome; a list such as 1-4,22,X expected"},
        {"", [](Filters& f) { f.keep = "none"; }, "", "", "",
         "none: cannot be opened (No such file or directory)"},
        {"f\n", [](Filters& f) { f.keep = "list"; }, "", "", "",
         "list:1: 1 column; FID IID expected"},
    };
    for (const auto& row : rows) {
        Files files;
        files.list = row.list;
        files.write();
        StudyRequest request = bed_request("s");
        row.ask(request.filters);
        const std::string fault = fault_of(request);
        if (fault != "none") {
            EXPECT_EQ(fault, row.note);
            continue;
        }
        const Study study = load_study(request);
        std::string markers, people;
        for (const auto& marker : study.markers)
            markers += (markers.empty() ? "" : " ") + marker.name;
        for (const auto& person : study.individuals) people += person.id;
        EXPECT_EQ(markers, row.markers);
        EXPECT_EQ(people, row.people);
        EXPECT_EQ(left_out_of(study), row.left_out);
        EXPECT_THAT(notes_of(study), ::testing::HasSubstr(row.note));
    }
}

TEST(LoadStudy, WhatIsWrongIsToldWithItsPlace) {
    const TemporaryFolder folder;
    const Files good;
    const std::string &fam = good.fam, &bim = good.bim, &bed = good.bed;
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
         "and 1 a case, say so by --1"},
        {bed, bim, "f a 0 0 1 2\nf b 0 0 1 1\nf a 0 0 1 1\n",
         "s.fam:3: individual f a, as in line 1; each individual once expected; take one of them "
         "out"},
        {bed, bim, "f a 0 0 1 2\n", "s.fam: 1 case and 0 controls; both expected"},
        {bed, bim, "", "s.fam:1: no individual; at least one expected"},
        {bed, "1 rs1 0 1 A\n", fam, "s.bim:1: 5 columns; CHR ID CM BP A1 A2 expected"},
        {bed, "1 rs1 0 1e5 A C\n", fam, "s.bim:1: position 1e5; a whole number expected"},
        {bed, "1 rs1 0 99999999999999999999 A C\n", fam,
         "s.bim:1: position 99999999999999999999; a whole number expected"},
        {bed, "\n", fam, "s.bim:2: no marker; at least one expected"},
        {bed, "27 a 0 1 A C\n0 b 0 1 A C\n1 c 0 -1 A C", fam,
         "s.bim: no marker is left; at least one expected; loosen the filters"},
        {"", bim, fam, no_bed},
        {"ab" + bed.substr(2), bim, fam, no_bed},
        {bed.substr(0, 2) + '\0' + bed.substr(3), bim, fam,
         "s.bed: is individual-major; a SNP-major file expected; convert it, for example by plink "
         "--make-bed"},
        {bed.substr(0, 8), bim, fam, "s.bed: 8" + bytes},
        {bed + 'x', bim, fam, "s.bed: 10" + bytes},
    };
    for (const auto& row : rows) {
        Files{row.bed, row.bim, row.fam, ""}.write();
        EXPECT_EQ(fault_of(bed_request("s")), row.fault);
    }
    for (const char* fault :
         {"s.fam: cannot be opened", "s.bim: cannot be opened", "s.bed: cannot be read"}) {
        good.write();
        std::filesystem::remove(std::string(fault, 5));
        EXPECT_EQ(fault_of(bed_request("s")), fault + std::string(" (No such file or directory)"));
    }
}

}  // namespace
}  // namespace vort::testing
