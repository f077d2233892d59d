#include "screening/snp_index.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/screening_fixture.h"

namespace vort {
namespace {

using vort::testing::console_to_stderr;
using vort::testing::DiagnosticsCapture;
using vort::testing::kMarkerTable;
using vort::testing::said_of;
using vort::testing::ScreeningTest;
using vort::testing::status_zero;
using vort::testing::write_file;

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
}

TEST_F(SnpIndexTest, NegativeNumbersStayInTheTable) {
    use_table(kTable, 6);
    EXPECT_EQ(name(findSNPname, -1).substr(0, 3), "@0:");
    EXPECT_EQ(name(findSNPname1, -1).substr(0, 3), "@0:");
}

TEST_F(SnpIndexTest, EachTableIsReadOnce) {
    use_table(kTable, 6);
    EXPECT_EQ(name(findSNPname, 1), "rs1@1:2");
    EXPECT_EQ(place(return_chromosome_and_locus1, 3), "3:1");
    write_file(kMarkerTable, "5 a 5 b 5 c 5 d 5 e 5 f");
    EXPECT_EQ(name(findSNPname, 2), "rs2@1:1");
    EXPECT_EQ(place(return_chromosome_and_locus1, 3), "3:1");
    forget_snp_index();
    EXPECT_EQ(name(findSNPname, 2), "b@5:3");
}

TEST_F(SnpIndexTest, WhatIsWrongWithATable) {
    const struct {
        std::string text;
        int markers;
        std::string said;  // without the file name
        std::string third;
    } rows[] = {
        {kTable, 6, "", "rs3@3:2"},
        {kTable, 3, "", "rs3@3:2"},
        {"1 a\n2 b\n", 4,
         "3: 2 entries (a chromosome number and a name each), 4 expected; the other markers have "
         "no name\n",
         "@0:3"},
        {"1 a\n1 b\n7", 3, "3: a name was expected\n", "@7:2"},
        {"1 a\nX b\n1 c\n", 3,
         "2: 1 entries (a chromosome number and a name each), 3 expected; the other markers have "
         "no name\n",
         "@0:4"},
        {"", 3,
         "1: 0 entries (a chromosome number and a name each), 3 expected; the other markers have "
         "no name\n",
         "@0:4"},
        {"2 a\n1 b\n\n1 c\n", 3,
         "2: chromosome 1 after 2, ascending order expected; loci are counted as if it were\n"
         "4: chromosome 1 after 2, ascending order expected; loci are counted as if it were\n",
         "c@1:2"},
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
    const auto from_zero = [](Locate locate) {
        console_to_stderr();
        int chromosome = 0;
        int locus = 0;
        locate(0, &chromosome, &locus);
    };
    const auto find = [](Name find_name) {
        console_to_stderr();
        int chromosome = 0;
        int locus = 0;
        find_name(0, &chromosome, &locus);
    };
    for (const bool folder : {false, true}) {
        if (folder) std::filesystem::create_directory(kMarkerTable);
        const char* no_places = "^open file Chromosome_SNP_Name.txt have some error\n$";
        const char* no_names = "^open file Chromosome_SNP_Name.txt find error\n$";
        EXPECT_EXIT(from_zero(return_chromosome_and_locus), status_zero(), no_places);
        EXPECT_EXIT(from_zero(return_chromosome_and_locus1), status_zero(), no_places);
        EXPECT_EXIT(find(findSNPname), status_zero(), no_names);
        EXPECT_EXIT(find(findSNPname1), status_zero(), no_names);
    }
}

}  // namespace
}  // namespace vort
