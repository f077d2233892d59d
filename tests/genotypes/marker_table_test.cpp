#include "genotypes/marker_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "support/told.h"

namespace vort::testing {
namespace {

using enum MarkerTable::Numbering;
constexpr const char* kFile = "Chromosome_SNP_Name.txt";

std::string place(const MarkerTable& table, int m, MarkerTable::Numbering numbering) {
    const auto [chromosome, locus] = table.locate(m, numbering);
    return std::to_string(chromosome) + ':' + std::to_string(locus);
}

std::string entry(const MarkerTable& table, int m, MarkerTable::Numbering numbering) {
    const auto [name, chromosome, locus] = table.find(m, numbering);
    return std::string(name) + '@' + std::to_string(chromosome) + ':' + std::to_string(locus);
}

TEST(MarkerTable, NumbersFromZeroAndFromOne) {
    const TemporaryFolder folder;
    write_file(kFile, "1 rs1\n1\trs2\n3 rs3 3 rs4\n3 rs5\n26 rs6\n");
    const MarkerTable table = MarkerTable::from_file(kFile, 6);
    const struct {
        int m;
        const char *from_zero, *from_one, *name_from_zero, *name_from_one;
    } rows[] = {
        {0, "1:1", "1:0", "@0:1", "@0:0"},           {1, "1:2", "1:1", "rs1@1:2", "rs1@1:1"},
        {2, "3:1", "1:2", "rs2@1:1", "rs2@1:2"},  // the locus is that of the next line
        {4, "3:3", "3:2", "rs4@3:3", "rs4@3:2"},     {5, "26:1", "3:3", "rs5@3:1", "rs5@3:3"},
        {6, "26:2", "26:1", "rs6@26:2", "rs6@26:1"}, {9, "26:5", "26:4", "@0:5", "@0:4"},
    };
    std::vector<MarkerInfo> markers;
    for (const int chromosome : {1, 1, 3, 3, 3, 26}) {
        markers.push_back({chromosome, "rs" + std::to_string(markers.size() + 1), 7, "A", "C"});
    }
    const MarkerTable same = MarkerTable::from_markers(markers);
    EXPECT_EQ(same.text(), table.text());
    for (const auto& row : rows) {
        EXPECT_EQ(place(table, row.m, kFromZero), row.from_zero) << row.m;
        EXPECT_EQ(place(table, row.m, kFromOne), row.from_one) << row.m;
        EXPECT_EQ(entry(table, row.m, kFromZero), row.name_from_zero) << row.m;
        EXPECT_EQ(entry(same, row.m, kFromOne), row.name_from_one) << row.m;
    }
    EXPECT_EQ(entry(table, -1, kFromZero).substr(0, 3), "@0:");
}

TEST(MarkerTable, WhatIsWrongWithATable) {
    const TemporaryFolder folder;
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
        {"1 a\n2 b\n2 c\n3 d\n", 3, "4: more than the 3 entries expected; ignored from here on\n",
         "c@2:3"},
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
    };
    for (const auto& row : rows) {
        Told told;
        write_file(kFile, row.text);
        const MarkerTable table = MarkerTable::from_file(kFile, row.markers);
        table.check(told.diagnostics);
        EXPECT_EQ(entry(table, 3, kFromZero), row.third) << row.text;
        EXPECT_EQ(told.take(), said_of(kFile, row.said)) << row.text;
    }
}

TEST(MarkerTable, OneThatCannotBeUsedStopsTheRunWhenItIsLookedAt) {
    Told told;
    for (const std::string path : {"/absent", "/proc"}) {
        const MarkerTable table = MarkerTable::from_file(path, 3);
        table.check(told.diagnostics);
        EXPECT_EQ(told.take().find(path + ": cannot be opened ("), 0U);
        const std::string expected = "0 open file " + path + " have some error\n";
        EXPECT_EQ(stop_of([&] { place(table, 0, kFromOne); }), expected);
        EXPECT_EQ(stop_of([&] { entry(table, 0, kFromOne); }), expected);
    }
}

}  // namespace
}  // namespace vort::testing
