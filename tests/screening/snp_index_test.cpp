#include "screening/snp_index.h"

#include "support/screening_fixture.h"

namespace vort::testing {
namespace {

class SnpIndexTest : public ScreeningTest {
  protected:
    static void use_table(const std::string& text, int markers) {
        forget_snp_index();
        write_file(kMarkerTable, text);
        Marker = markers;
    }

    using Locate = int (*)(int, int*, int*);
    static std::string place(Locate locate, int m) {
        int chromosome = -7;
        int locus = -7;
        EXPECT_EQ(locate(m, &chromosome, &locus), chromosome);
        return std::to_string(chromosome) + ':' + std::to_string(locus);
    }

    using Name = const char* (*)(int, int*, int*);
    static std::string name(Name find, int m) {
        int chromosome = -7;
        int locus = -7;
        const std::string found = find(m, &chromosome, &locus);
        return found + '@' + std::to_string(chromosome) + ':' + std::to_string(locus);
    }
};

constexpr const char* kTable = "1 rs1\n1\trs2\n3 rs3 3 rs4\n3 rs5\n26 rs6\n";

TEST_F(SnpIndexTest, NumbersFromZeroAndFromOne) {
    use_table(kTable, 6);
    const struct {
        int m;
        const char *from_zero, *from_one, *name_from_zero, *name_from_one;
    } rows[] = {
        {0, "1:1", "1:0", "@0:1", "@0:0"},           {1, "1:2", "1:1", "rs1@1:2", "rs1@1:1"},
        {2, "3:1", "1:2", "rs2@1:1", "rs2@1:2"},  // the locus is that of the next line
        {4, "3:3", "3:2", "rs4@3:3", "rs4@3:2"},     {5, "26:1", "3:3", "rs5@3:1", "rs5@3:3"},
        {6, "26:2", "26:1", "rs6@26:2", "rs6@26:1"}, {9, "26:5", "26:4", "@0:5", "@0:4"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(place(return_chromosome_and_locus, row.m), row.from_zero) << row.m;
        EXPECT_EQ(place(return_chromosome_and_locus1, row.m), row.from_one) << row.m;
        EXPECT_EQ(name(findSNPname, row.m), row.name_from_zero) << row.m;
        EXPECT_EQ(name(findSNPname1, row.m), row.name_from_one) << row.m;
    }
    EXPECT_EQ(name(findSNPname, -1).substr(0, 3), "@0:");
    write_file(kMarkerTable, "5 a 5 b 5 c 5 d 5 e 5 f");
    EXPECT_EQ(name(findSNPname, 2), "rs2@1:1") << "a table is read once";
    EXPECT_EQ(place(return_chromosome_and_locus1, 3), "3:1");
}

TEST_F(SnpIndexTest, WhatIsWrongWithATable) {
    const std::string entries = " entries (a chromosome number and a name each), ";
    const std::string no_name = " expected; the other markers have no name\n";
    const std::string disorder =
        ": chromosome 1 after 2, ascending order expected; loci are counted as if it were\n";
    const struct {
        std::string text;
        int markers;
        std::string said;  // without the file name
        std::string third;
    } rows[] = {
        {kTable, 3, "3: more than the 3 entries expected; ignored from here on\n", "rs3@3:2"},
        {"1 a\n2 b\n", 4, "3: 2" + entries + "4" + no_name, "@0:3"},
        {"1 a\n1 b\n7", 3, "3: a name was expected\n", "@7:2"},
        {"1 a\nX b\n1 c\n", 3,
         "2: a chromosome number was expected; no entry from here on is read\n", "@0:4"},
        {"", 3, "1: 0" + entries + "3" + no_name, "@0:4"},
        {"2 a\n1 b\n\n1 c\n", 3, "2" + disorder + "4" + disorder, "c@1:2"},
        {"0 a\n27 b\n-3 c\n1 d\n", 4,
         "1: chromosome 0, 1 to 26 expected\n2: chromosome 27, 1 to 26 expected\n"
         "3: chromosome -3, 1 to 26 expected\n",
         "c@-3:4"},
        {"1 a\n1 b\n1 abcdefghijklmno\n", 3,
         "3: abcdefghijklmno is longer than 14 characters and is cut\n", "abcdefghijklmn@1:4"},
        {"1 a\n1 b\n1 abcdefghijklmn\n", 3, "", "abcdefghijklmn@1:4"},
    };
    for (const auto& row : rows) {
        DiagnosticsCapture diagnostics;
        use_table(row.text, row.markers);
        EXPECT_EQ(name(findSNPname, 3), row.third) << row.text;
        name(findSNPname1, 3);  // the second reading repeats nothing
        EXPECT_EQ(diagnostics.take(), said_of(kMarkerTable, row.said)) << row.text;
    }
}

TEST_F(SnpIndexTest, ATableThatCannotBeOpenedEndsTheProgram) {
    const std::string message = "^open file Chromosome_SNP_Name.txt ";
    for (const bool folder : {false, true}) {
        if (folder) std::filesystem::create_directory(kMarkerTable);
        for (const Locate locate : {return_chromosome_and_locus, return_chromosome_and_locus1}) {
            expect_end([&] { place(locate, 0); }, message + "have some error\n$");
        }
        for (const Name find : {findSNPname, findSNPname1}) {
            expect_end([&] { name(find, 0); }, message + "find error\n$");
        }
    }
}

}  // namespace
}  // namespace vort::testing
