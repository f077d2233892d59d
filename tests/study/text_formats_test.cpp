// What is odd or wrong in VCF files, additive recodings and study directories.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "study/study_directory.h"
#include "study/study_files.h"

namespace vort::testing {
namespace {

using ::testing::HasSubstr;

constexpr const char* kVcfHead =
    "##fileformat=VCFv4.2\n##FORMAT=<ID=GT,Number=1,Type=String,Description=\"\">\n"
    "#CHROM\tPOS\tID\tREF\tALT\tQUAL\tFILTER\tINFO\tFORMAT\ta\tb\tf_c\td\n";

// Markers with four calls each: "CHR POS ID REF ALT FORMAT a b c d".
std::string vcf_of(const std::string& lines) {
    std::string text = kVcfHead;
    int column = 0;
    for (const char c : lines) {
        column = c == '\n' ? 0 : column + (c == ' ' ? 1 : 0);
        text += c == ' ' ? '\t' : c;
        if (c == ' ' && column == 5) text += ".\t.\t.\t";
    }
    return text;
}

StudyRequest vcf_request(const std::string& fam = "") {
    StudyRequest request;
    request.files.format = StudyFormat::kVcf;
    request.files.vcf = "s.vcf";
    request.files.fam = fam;
    if (fam.empty()) request.phenotype.file = "phenotypes";
    return request;
}

TEST(Vcf, CallsAndNamesAreTakenAsTheyAreMeant) {
    const TemporaryFolder folder;
    write_file("phenotypes", "a a 1\n0 b 2\nf c 2\nd d 1\nx d 2\n");
    const struct {
        const char* line;
        const char* codes;    // empty: the marker is left out
        const char* markers;  // with the line's number as a position
        const char* told;
    } rows[] = {
        {"chrX 5 r A G GT 0 1 . 0|1", "02-1", "23:5:r:GA ", "1 marker is on chromosomes 23 to 26"},
        {"M 5 r A G GT 1/. ./0 ./. .", "----", "26:5:r:GA ", "(MT 1)"},
        {"1 5 . A <DEL> GT 0/0 1/0 1|1 0", "0120", "1:5:1:5:A:<DEL>:<DEL>A ", ""},
        {"1 5 r A . GT 0/0 ./0 0|0 0", "0-00", "1:5:r:.A ", ""},
        {"1 5 r A G GT 0/0/1 0/1 1/1 0/0", "-120", "1:5:r:GA ",
         "1 genotype of more than two alleles count as missing."},
        {"1 5 r A G DP 3 4 5 6", "----", "1:5:r:GA ",
         "1 marker has no GT; all genotypes there are missing."},
        {"1 5 r A G DP:GT:AD 3:0/1:7 4 5:.|.|1:9 6:01", "1--2", "1:5:r:GA ", "more than two"},
        {"1 5 q A G,T GT 0/2 0/1 1/1 0/0\n1 6 r A G GT 0/0 0/1 1/1 0/0", "0120", "1:6:r:GA ",
         "1 markers more than one ALT allele; "},
        {"HLA-A 5 q A G GT 0/0 0/1 1/1 0/0\n1 6 r A G GT 0/0 0/1 1/1 0/0", "0120", "1:6:r:GA ",
         "1 markers not on chromosomes 1 to 26; "},
    };
    for (const auto& row : rows) {
        write_file("s.vcf", vcf_of(row.line + std::string("\n")));
        ASSERT_EQ(fault_of(vcf_request()), "none") << row.line;
        const Study study = load_study(vcf_request());
        EXPECT_EQ(codes_of(study.genotypes), row.codes);
        EXPECT_EQ(markers_of(study), row.markers);
        EXPECT_EQ(phenotypes_of(study), "0110");
        EXPECT_THAT(left_out_of(study) + notes_of(study), HasSubstr(row.told));
        EXPECT_THAT(notes_of(study), HasSubstr("1 individual of phenotypes is not in the study."));
    }
}

TEST(Vcf, AFamTellsWhoTheSamplesAre) {
    const TemporaryFolder folder;
    write_file("s.vcf", vcf_of("1 5 r A G GT 0/0 0/1 1/1 0/0\n"));
    write_file("s.fam", "f d 0 0 1 2\nf c 0 0 2 1\nf a 0 0 0 2\ng b 0 0 1 -9\n");
    const Study study = load_study(vcf_request("s.fam"));
    EXPECT_EQ(people_of(study), "f/a f/c f/d ");
    EXPECT_EQ(codes_of(study.genotypes), "020");
    EXPECT_EQ(study.individuals[1].sex, 2);
    write_file("s.fam", "f d 0 0 1 2\nf c 0 0 2 1\nf a 0 0 0 2\n");
    EXPECT_EQ(fault_of(vcf_request("s.fam")),
              "s.fam: has no individual b; every sample of s.vcf expected, by IID or FID_IID");
}

TEST(Vcf, WhatCannotBeReadIsTold) {
    const TemporaryFolder folder;
    write_file("phenotypes", "a a 1\nb b 2\n");
    write_file("sound.vcf", vcf_of("1 5 r A G GT 0/0 0/1 1/1 0/0\n"));
    const std::string record = "record 1 cannot be read; a record of 4 individuals expected";
    const struct {
        std::string text, fault;
    } rows[] = {
        {"", "s.vcf: is no VCF or BCF file; one of the two expected"},
        {"FID IID\n", "s.vcf: is no VCF or BCF file; one of the two expected"},
        // A ticket, which the library would follow to other files or machines.
        {R"({"htsget": {"format": "VCF", "urls": [{"url": "file:sound.vcf"}]}})",
         "s.vcf: is no VCF or BCF file; one of the two expected"},
        {"##fileformat=VCFv4.2\nx\n",
         "s.vcf: has no header that can be read; that of a VCF expected"},
        {"##fileformat=VCFv4.2\n#CHROM\tPOS\tID\tREF\tALT\tQUAL\tFILTER\tINFO\n",
         "s.vcf: has no samples; genotypes expected"},
        {"##fileformat=VCFv4.2\n#CHROM\tPOS\tID\tREF\tALT\tQUAL\tFILTER\tINFO\tFORMAT\ta\t\tc\n",
         "s.vcf: sample 2 has no name; one expected"},
        {vcf_of("1 5 r A G GT 0/0 0/1 1/1\n"), "s.vcf:4: " + record},
        {vcf_of("1 5 r A\n"), "s.vcf:4: " + record},
        // Of three alleles: left out, but not before it is whole.
        {vcf_of("1 5 r A G,T GT 0/0 0/1 1/1\n"), "s.vcf:4: " + record},
        {"##fileformat=VCFv4.2\n##contig=<ID=1,IDX=\"2000000000\">\n#CHROM\n",
         "s.vcf: its header numbers an entry 2000000000 by IDX; at most 65597 expected in one of "
         "61 bytes"},
        {vcf_of("1 5 r A G GT 0/0 0/1 a/b 0/0\n"), "s.vcf:4: " + record},
        {vcf_of("1 5 r A G DP:GT 3:0/0 4:0/1 5:0/0 6:1/0/\n"), "s.vcf:4: " + record},
        {vcf_of("1 5 r A G DP:GT 3:0/0 4:0/1 5:\n"), "s.vcf:4: " + record},
        {vcf_of("1 5 r A G DP 3 4 5\n"), "s.vcf:4: " + record},
        {vcf_of("1 5 r A G DP:GT 3:0/0 4:0/2147483648 5:0/0 6:0/0\n"),
         "s.vcf:4: record 1 calls an allele that it does not have"},
        {vcf_of("1 5x r A G GT 0/0 0/1 1/1 0/0\n"),
         "s.vcf:4: record 1 has position 5x; a whole number expected"},
        {vcf_of("1 5 r A G GT 0/0 0/1 1/1 0/0\n1 6 q A G GT 0/0 0/2 1/1 0/0\n"),
         "s.vcf:5: record 2 calls an allele that it does not have"},
        {vcf_of(""), "s.vcf: no marker is left; at least one expected; loosen the filters"},
        {std::string("\x1f\x8b\x08\x04\0\0\0\0\0\xff\x06\0BC\x02\0\x40\0", 18),
         "s.vcf: is no VCF or BCF file; one of the two expected"},
    };
    for (const auto& row : rows) {
        write_file("s.vcf", row.text);
        EXPECT_EQ(fault_of(vcf_request()), row.fault);
    }
    std::filesystem::remove("s.vcf");
    EXPECT_EQ(fault_of(vcf_request()), "s.vcf: cannot be opened (No such file or directory)");
    StudyRequest request = vcf_request();
    request.phenotype.file.clear();
    write_file("s.vcf", vcf_of("1 5 r A G GT 0/0 0/1 1/1 0/0\n"));
    EXPECT_EQ(fault_of(request), "s.vcf: has no phenotypes; name a file that does by --pheno");
}

TEST(Raw, IsReadWithItsMarkersPlaces) {
    const TemporaryFolder folder;
    const std::string rows = "f a 0 0 1 2 0 NA 2\nf\tb 0 0 2 1\t1 0  2 \r\n\nf c 0 0 0 -9 2 2 2";
    write_file("s.raw", "FID IID PAT MAT SEX PHENOTYPE r_s_A r_C q_G(/T)\n" + rows);
    StudyRequest request;
    request.files.format = StudyFormat::kRaw;
    request.files.raw = "s.raw";
    const Study alone = load_study(request);
    EXPECT_EQ(markers_of(alone), "1:1:r_s:A0 1:2:r:C0 1:3:q:GT ");
    EXPECT_EQ(codes_of(alone.genotypes), "01 -0 22");
    EXPECT_THAT(notes_of(alone), HasSubstr("Without a .bim all markers are on chromosome 1"));
    write_file("s.bim", "2 r 0 7 C T\nX q 0 8 T G\n0 x 0 8 T G\n1 r_s 0 9 A C\n");
    request.files.bim = "s.bim";
    EXPECT_EQ(markers_of(load_study(request)), "1:9:r_s:AC 2:7:r:CT 23:8:q:GT ");

    const std::string head = "FID IID PAT MAT SEX PHENOTYPE ";
    const struct {
        std::string raw, fault;
    } faults[] = {
        {head + "r_C q_G x_A\n" + rows,
         "s.bim: marker x has alleles T and G; A expected, which "
         "s.raw counts"},
        {head + "r_C q_G y_A\n" + rows, "s.bim: has no marker y; each of s.raw expected"},
        {head + "r_C r_C q_G\n" + rows, "s.bim: has no marker r; each of s.raw expected"},
        {head + "r_C q_G r_HET\n",
         "s.raw:1: column r_HET; counts of an allele alone expected; recode additively, for "
         "example by plink --recode A"},
        {head + "r_C q r_A\n", "s.raw:1: column q; ID_ALLELE expected"},
        {head, "s.raw:1: no marker; at least one expected"},
        {"1 2 3\n",
         "s.raw:1: is no header of an additive recoding; FID IID PAT MAT SEX PHENOTYPE "
         "and a column for each marker expected"},
        {"", "s.raw: is empty; an additive recoding expected"},
        {head + "r_C\n", "s.raw: no individual; at least one expected"},
        {head + "r_C q_G\nf a 0 0 1 2 0 1\nf b 0 0 1 1 0\n",
         "s.raw:3: 7 columns; 8 expected, as in the header"},
        {head + "r_C q_G\nf a 0 0 1 2 0 1\nf b 0 0 1 1 0    \n",
         "s.raw:3: 7 columns; 8 expected, as in the header"},
        {head + "r_C q_G\nf a 0 0 1 2 0 1\nf b 0 0 1 1 0 1 2\n",
         "s.raw:3: more columns than the header; 8 expected"},
        {head + "r_C q_G\nf a 0 0 1 2 0 1\nf b 0 0 1 1 0 1.5\n",
         "s.raw:3: genotype 1.5 of q; 0, 1, 2 or NA expected"},
        {head + "r_C q_G\nf a 0 0 1 2 0 1\nf a 0 0 1 1 0 1\n",
         "s.raw:3: individual f a, as in line 2; each individual once expected; take one of them "
         "out"},
    };
    for (const auto& row : faults) {
        write_file("s.raw", row.raw);
        EXPECT_EQ(fault_of(request), row.fault);
    }
}

const std::string kParameters = parameter_text({5, 2, 1, 0.5}, 4, 3);
constexpr const char* kRows = "x 1 0 1 2\ny 0 -1 0 1\nz 1 0 0 0\nf_w 0 2 2 2\n";

void write_directory(const std::string& parameters, const std::string& data,
                     const std::string& table) {
    write_file("parameter.txt", parameters);
    write_file("dat1.txt", "ID Status r1 r2 r3\n" + data);
    write_file("Chromosome_SNP_Name.txt", table);
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    return at == std::string::npos ? text + to : text.replace(at, from.size(), to);
}

TEST(StudyDirectory, IsReadAsItStands) {
    const TemporaryFolder folder;
    const std::string long_name = "a_name_of_more_than_14_characters";
    write_directory(kParameters, kRows, "2 r1\n1 " + long_name + "\n2 r3\n");
    const Study study = load_study(directory_request("."));
    EXPECT_EQ(people_of(study), "x/x y/y z/z f_w/f_w ");
    EXPECT_EQ(phenotypes_of(study), "1010");
    EXPECT_EQ(markers_of(study), "1:1:" + long_name + ":.. 2:1:r1:.. 2:2:r3:.. ");
    EXPECT_EQ(codes_of(study.genotypes), "1002 0-02 2102");
    EXPECT_EQ(study.parameters->max_retain, 1);
    // Another phenotype file finds the identifiers that were put together.
    write_file("phenotypes", "x x 1\nf w 2\n");
    StudyRequest request = directory_request(".");
    request.phenotype.file = "phenotypes";
    EXPECT_EQ(people_of(load_study(request)), "x/x f_w/f_w ");
    // Without identifiers individuals are numbered.
    write_directory(replaced(kParameters, "Recorder_num\t\t\t\t\t1", "Recorder_num 0"),
                    "1 012\n0 0-10\n1 000\n0 222\n", "1 r1\n1 r2\n1 r3\n");
    write_file("dat1.txt", replaced(read_file("dat1.txt"), "ID ", ""));
    EXPECT_EQ(people_of(load_study(directory_request("."))), "1/1 2/2 3/3 4/4 ");
}

TEST(StudyDirectory, WhatTheBareProgramWouldRepairIsAnError) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    const std::string table = "1 r1\n1 r2\n1 r3\n", data = "./dat1.txt", file = "./parameter.txt";
    const auto with = [](const std::string& from, const std::string& to) {
        return replaced(kParameters, from, to);
    };
    const struct {
        std::string parameters, rows, table, fault;
    } rows[] = {
        {with("Best_m\t\t\t\t\t\t2", "Best_m 2.6"), kRows, table,
         file + ":11: Best_m 2.6; a whole number from 1 on expected"},
        {with("Max_retain", "Mix_retain"), kRows, table,
         file + ": Max_retain is not given; a whole number from 0 on expected"},
        {with("Sample_size\t\t\t\t\t4", "Sample_size 16777217"), kRows, table,
         file + ":4: Sample_size 16777217; a whole number from 1 on expected"},
        {with("0.5", "1.5"), kRows, table,
         file + ":8: FDR_cutoff_for_candidate_locus_combinations 1.5; a number above 0 and at most "
                "1 expected"},
        {with("Number_of_permutation", "Prmutations"), kRows, table,
         file + ":9: Prmutations would be taken as Number_of_permutation by the screening alone; "
                "that name expected; correct it"},
        {with("Inputfile", "Anputfile"), kRows, table,
         file + ": Inputfile is not given; the data set's name expected"},
        {with("dat1.txt", "none.txt"), kRows, table,
         "./none.txt: cannot be opened (No such file or directory)"},
        {with("dat1.txt", "pipe"), kRows, table,
         "./pipe: is a pipe or a device; a file expected, which is read twice"},
        {with("Sample_size\t\t\t\t\t4", "Sample_size 2000000"), kRows, table,
         data + ": 62 bytes; at least 8000000 expected for 2000000 individuals and 3 markers, as "
                "parameter.txt says"},
        {with("Sample_size\t\t\t\t\t4", "Sample_size 5"), kRows, table,
         data + ":6: 4 rows; 5 expected, as Sample_size says"},
        {with("Sample_size\t\t\t\t\t4", "Sample_size 3"), kRows, table,
         data + ":5: more than the 3 rows expected"},
        {kParameters, replaced(kRows, "y 0", "y 2"), table,
         data + ":3: phenotype 2; 0 (control) or 1 (case) expected"},
        {kParameters, replaced(kRows, "-1 0 1", "-1 0"), table,
         data + ":3: 2 genotypes, 3 expected"},
        {kParameters, replaced(kRows, "z 1", "x 1"), table,
         data + ":4: individual x, as in line 2; each individual once expected; take one of them "
                "out"},
        {kParameters, kRows, "1 r1\n1 r2\n",
         "./Chromosome_SNP_Name.txt: 2 markers; 3 expected, as Number_of_markers says"},
        {kParameters, kRows, "1 r1\n1\n",
         "./Chromosome_SNP_Name.txt:2: 1 column; a chromosome and a name expected"},
    };
    for (const auto& row : rows) {
        write_directory(row.parameters, row.rows, row.table);
        EXPECT_EQ(fault_of(directory_request(".")), row.fault);
    }
}

TEST(StudyDirectory, IsWrittenWithOneWordForAName) {
    const TemporaryFolder folder;
    Study study;
    study.genotypes = Genotypes(2, 1);
    study.phenotypes = {1, 0};
    study.individuals = {{"f 1", "a", 0}, {"b c", "b c", 0}};
    study.markers = {{23, "a name", 5, "A", "C"}};
    write_study_directory(study, "p\n", ".");
    EXPECT_EQ(read_file("dat1.txt"), "ID Status a_name\nf_1_a 1 -1\nb_c 0 -1\n");
    EXPECT_EQ(read_file("Chromosome_SNP_Name.txt"), "23\ta_name\n");
    EXPECT_EQ(read_file("parameter.txt"), "p\n");
    EXPECT_THROW(write_study_directory(study, "", "none"), std::runtime_error);
    EXPECT_EQ(shared_identifiers(study), 0);
    study.individuals = {{"a_b", "c", 0}, {"0", "x", 0}, {"a", "b_c", 0}, {"x", "x", 0}};
    EXPECT_EQ(shared_identifiers(study), 2);
}

}  // namespace
}  // namespace vort::testing
