#include "genotypes/text_data_set.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "support/temporary_folder.h"
#include "support/told.h"

namespace vort::testing {
namespace {

constexpr const char* kFile = "dat1.txt";

struct Loaded {
    std::string codes;  // "0:012 1:--1", a phenotype and its row each; '-' is missing
    std::string said;
    bool operator==(const Loaded&) const = default;
};

Loaded load(const TextDataSet& settings, int threads) {
    Told told;
    Transcript transcript(true);
    const DataSet data = load_text_data_set(settings, threads, told.diagnostics, transcript);
    EXPECT_EQ(transcript.text(), "read data is finished\n");
    EXPECT_EQ(data.cases, std::count(data.phenotypes.begin(), data.phenotypes.end(), 1));
    EXPECT_EQ(data.cases + data.controls, settings.individuals);
    std::string codes;
    for (int i = 0; i < settings.individuals; ++i) {
        codes += (i > 0 ? " " : "") + std::to_string(data.phenotypes[i]) + ':';
        for (int j = 0; j < settings.markers; ++j) codes += "-012"[data.genotypes.code(i, j) + 1];
    }
    return {codes, told.take()};
}

// The same on any number of threads.
Loaded load_text(const std::string& text, const TextDataSet& settings) {
    write_file(kFile, text);
    Loaded loaded = load(settings, 1);
    for (const int threads : {2, 5}) EXPECT_EQ(load(settings, threads), loaded) << text;
    return loaded;
}

// Two individuals and three markers are expected of all files.
TEST(TextDataSet, WhatItTakesAndWhatItSays) {
    const TemporaryFolder folder;
    const std::string after = " is no genotype code (0, 1, 2, -1), after ";
    const std::string row_missing =
        " genotypes, 3 expected; the rest of the row is taken as missing\n";
    const std::string all_missing = " genotypes, 3 expected; the rest is taken as missing\n";
    const std::string minus =
        ": a missing genotype was expected to read -1; the minus sign takes the character behind "
        "it along\n";
    const std::string no_phenotype =
        ": a phenotype was expected (0 or 1); no row from here on is read\n";
    const std::string rows_missing =
        " rows could be read, 2 expected; the rest is taken as controls with missing genotypes\n";
    const std::string only = "cases and controls were expected, there are only ";
    const struct {
        std::string text;
        std::string expected;
        std::string said;  // without the file name
        int head = 0, record = 0;
    } rows[] = {
        {"0 0 1 2\r\n1 -1 1 0\r\n\r\n", "0:012 1:-10", ""},
        {"\n\n 0   0 1 2 \n1 -9-x0", "0:012 1:--0", "4" + minus},
        {"0 012\n1 -1-1-1", "0:012 1:---", ""},
        {"0\n1 0 0 0\n", "0:--- 1:000", "1: 0" + all_missing},
        {"0 0 1 2 2 1\n1 0 0 0\n", "0:012 1:000",
         "1: more than the 3 genotypes expected; ignored from '2 1' on\n"},
        {"0 1\t2\t0\n1 0 0 0\n", "0:1-- 1:000",
         "1: a tab after 1 genotypes, 3 expected with blanks between them; the rest of the row is "
         "taken as missing\n"},
        {"0 1 A 0\n1 0 3 0\n", "0:1-- 1:0--",
         "1: 'A'" + after + "1" + row_missing + "2: '3'" + after + "1" + row_missing},
        {"0.5 1 1 1\n1 0 0 0\n", "0:--- 1:000",
         "1: phenotype 0 has something behind it, a blank was expected; that is read as the first "
         "genotype\n1: '.'" +
             after + "0" + row_missing},
        {"x 0 1 2\n1 0 0 0\n", "0:--- 0:---",
         "1" + no_phenotype + "1: 0" + rows_missing + only + "controls\n"},
        {"1 0 1 2\n40000 0 0 0\n", "1:012 0:---", "2" + no_phenotype + "2: 1" + rows_missing},
        {"1 0 1 2\n2 0 0 0\n", "1:012 2:000",
         "2: phenotype 2, 0 or 1 expected; a control to the screening, a quantity to the model\n"},
        {"1 0 1 2\n", "1:012 0:---", "2: 1" + rows_missing},
        {"0 0 1 2\n1 0 0 0\n\n1 2 2 2\n", "0:012 1:000",
         "4: more than the 2 rows expected; ignored from here on\n"},
        {"1 0 1 2\n1 0 0 0\n", "1:012 1:000", only + "cases\n"},
        {"id status m1 m2 m3\na 0 1 2 0\nb 1 0 -1 0", "0:120 1:0-0", "", 1, 1},
        {"status m1 m2 m3\r\n0 1 2 0\n1 0 -1 0", "0:120 1:0-0", "", 1, 2},
        {"7 0 1 2 0\n8 1 0 -1 0", "0:120 1:0-0", "", 2, 1},
        {"status\nm1\nm2\nm3\n0 1 2 0\n1 0 -1 0", "0:120 1:0-0",
         "4: the header of 3 markers was expected to be one line; it ends here\n", 1, 0},
        {"status m1 m2 m3 0 1 2 0\n1 0 -1 0", "0:120 1:0-0",
         "1: the header has more titles than 3 markers; the rest is read as data\n", 1, 0},
    };
    for (const auto& row : rows) {
        const Loaded loaded = load_text(row.text, {kFile, 2, 3, row.head, row.record});
        EXPECT_EQ(loaded.codes, row.expected) << row.text;
        EXPECT_EQ(loaded.said, said_of(kFile, row.said)) << row.text;
    }
}

// Of many strips, and with lines longer than the reader's blocks; a row in three is short.
TEST(TextDataSet, ManyRowsOfRandomGenotypes) {
    const TemporaryFolder folder;
    const int sizes[][2] = {{1, 1}, {130, 3000}, {515, 7}, {9, 700000}};
    for (const auto& [n, m] : sizes) {
        SCOPED_TRACE(n);
        std::mt19937 random(static_cast<unsigned>(n));
        std::string text, codes, said;
        for (int i = 0; i < n; ++i) {
            codes += std::string(i > 0 ? " " : "") + "01"[i % 2] + ':';
            text += "01"[i % 2];
            const int given = i % 3 == 1 ? m - 1 : m;
            for (int j = 0; j < given; ++j) {
                codes += "-012"[random() % 4];
                text += codes.back() == '-' ? " -1" : std::string(" ") + codes.back();
            }
            text += i % 2 == 0 ? "\r\n" : "\n";
            if (given == m) continue;
            codes += '-';
            if (i > 28) continue;  // ten lines of a kind
            said += std::to_string(i + 1) + ": " + std::to_string(given) + " genotypes, " +
                    std::to_string(m) + " expected; the rest is taken as missing\n";
        }
        said = n > 1
                   ? said_of(kFile, said)
                   : said_of(kFile, "cases and controls were expected, there are only controls\n");
        if (n > 28)
            said += "... and " + std::to_string((n + 1) / 3 - 10) +
                    " more rows with too few genotypes\n";
        const Loaded loaded = load_text(text, {kFile, n, m});
        EXPECT_TRUE(loaded.codes == codes);
        EXPECT_EQ(loaded.said, said);
    }
}

TEST(TextDataSet, AFileThatCannotBeReadStopsTheRun) {
    const TemporaryFolder folder;
    Told told;
    Transcript transcript(true);
    std::filesystem::create_directory("folder");
    const struct {
        const char *file, *stop, *said;
    } rows[] = {
        {"absent", "0 file open absent not good\n", ""},
        {"folder", "0 file open folder not good\n",
         "folder: is a directory; a file was expected\n"},
        {"/proc/self/mem", "1 ",
         "/proc/self/mem:1: could not be read on (Input/output error); nothing is analysed without "
         "the whole file\n"}};
    for (const auto& row : rows) {
        for (const int head : {0, 1}) {
            const auto load = [&] {
                load_text_data_set({row.file, 20, 3, head}, 2, told.diagnostics, transcript);
            };
            EXPECT_EQ(stop_of(load), row.stop);
            EXPECT_EQ(told.take(), row.said);
        }
    }
    EXPECT_EQ(transcript.text(), "");
}

}  // namespace
}  // namespace vort::testing
