#include "screening/genotype_data.h"

#include <algorithm>
#include <random>

#include "screening/genotype_row.h"
#include "support/screening_fixture.h"

namespace vort::testing {
namespace {

// The rule, a character at a time; buffers of exactly the row's sizes, so that a sanitizer sees a
// step outside.
void expect_plain_parse(const std::string& row, std::size_t markers) {
    constexpr char kUntouched = 99;
    const std::string padded = row + std::string(2, '\0');  // means nothing
    std::vector<char> expected;
    std::size_t at = 0;
    while (expected.size() < markers) {
        while (padded[at] == ' ') ++at;
        const char c = padded[at];
        if (c != '-' && c != '0' && c != '1' && c != '2') break;
        expected.push_back(static_cast<char>(c == '-' ? -1 : c - '0'));
        at += c == '-' ? 2 : 1;
    }
    const std::vector<char> text(row.begin(), row.end());
    std::vector<char> codes(markers, kUntouched);
    const ParsedRow parsed =
        parse_genotypes({text.data(), text.size()}, static_cast<int>(markers), codes.data());
    ASSERT_EQ(parsed.count, static_cast<int>(expected.size()));
    ASSERT_EQ(parsed.behind - text.data(), static_cast<std::ptrdiff_t>(std::min(at, row.size())));
    expected.resize(markers, kUntouched);
    ASSERT_EQ(codes, expected);
}

TEST(ParseGenotypes, RandomCharacters) {
    for (unsigned seed = 1; seed <= 20000 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const std::string alphabet = seed % 2 == 0 ? "012-  " : "0000111222-  --   \t3";
        std::string row(random() % 90, ' ');
        for (char& c : row) c = alphabet[random() % alphabet.size()];
        expect_plain_parse(row, random() % 60);
    }
}

// One fault at every place of a row that is mostly read eight genotypes at a time.
TEST(ParseGenotypes, AFaultAtEveryPlace) {
    std::string clean;
    for (int j = 0; j < 70; ++j) clean += j % 23 == 22 ? " -1" : " " + std::to_string(j % 3);
    for (std::size_t at = 0; at <= clean.size() && !HasFatalFailure(); ++at) {
        SCOPED_TRACE(at);
        for (const char fault : std::string("-\t3A \r\xb0") + '\0') {
            std::string row = clean;
            expect_plain_parse(row.insert(at, 1, fault), 70);
            expect_plain_parse(row.erase(at + 1, 1), 70);
        }
        expect_plain_parse(clean.substr(0, at), 70);
        expect_plain_parse(clean, at);
    }
}

class ReadData : public ScreeningTest {
  protected:
    // "0:012 1:--1", a phenotype and its row each; '-' is missing.
    static std::string loaded() {
        std::string text;
        for (int i = 0; i < Sample; ++i) {
            if (i > 0) text += ' ';
            text += std::to_string(Y[i]) + ':';
            for (int j = 0; j < Marker; ++j) text += X[i][j] == -1 ? "-" : std::to_string(X[i][j]);
        }
        return text;
    }
};

// Two individuals and three markers are expected of all files.
TEST_F(ReadData, WhatItTakesAndWhatItSays) {
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
    } rows[] = {
        {"0 0 1 2\r\n1 -1 1 0\r\n\r\n", "0:012 1:-10", ""},
        {"\n\n 0   0 1 2 \n1 -9-x0", "0:012 1:--0", "4" + minus},
        {"0 012\n1 -1-1-1", "0:012 1:---", ""},
        {"0 1 2\n1 0 0 0\n", "0:12- 1:000", "1: 2" + all_missing},
        {"0\n1 0 0 0\n", "0:--- 1:000", "1: 0" + all_missing},
        {"0 0 1 2 2 1\n1 0 0 0\n", "0:012 1:000",
         "1: more than the 3 genotypes expected; ignored from '2 1' on\n"},
        {"0 1\t2\t0\n1 0 0 0\n", "0:1-- 1:000",
         "1: a tab after 1 genotypes, 3 expected with blanks between them; the rest of the row is "
         "taken as missing\n"},
        {"0 1 A 0\n1 0 3 0\n", "0:1-- 1:0--",
         "1: 'A'" + after + "1" + row_missing + "2: '3'" + after + "1" + row_missing},
        {"0 - 1 2\n1 0 0 0\n", "0:-12 1:000", "1" + minus},
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
        {"0 0 1 2\n0 0 0 0\n", "0:012 0:000", only + "controls\n"},
        {"1 0 1 2\n1 0 0 0\n", "1:012 1:000", only + "cases\n"},
    };
    set_sizes(2, 3);
    for (const auto& row : rows) {
        const ConsoleCapture console;
        DiagnosticsCapture diagnostics;
        load(row.text);
        load_data_set_once();  // does nothing
        EXPECT_EQ(loaded(), row.expected) << row.text;
        EXPECT_EQ(diagnostics.take(), said_of(kDataFile, row.said)) << row.text;
        EXPECT_EQ(console.text(), "read data is finished\n");
        EXPECT_EQ(samplesize[1], (Y[0] == 1) + (Y[1] == 1)) << row.text;
        EXPECT_EQ(samplesize[0] + samplesize[1], 2);
    }
    release_data_set();
    EXPECT_EQ(X, nullptr);
    EXPECT_EQ(exist_X_Y_data, 0);
}

TEST_F(ReadData, HeaderAndIdentifiers) {
    const struct {
        int head, record;
        const char* text;
        const char* said;
    } rows[] = {
        {1, 1, "id status m1 m2\na 0 1 2\nb 1 0 -1", ""},
        {1, 0, "status m1 m2\n0 1 2\n1 0 -1", ""},
        {0, 1, "7 0 1 2\n8 1 0 -1", ""},
        {2, 0, "0 1 2\n1 0 -1", ""},
        {1, 2, "status m1 m2\r\n0 1 2\n1 0 -1", ""},
        {1, 0, "status\nm1\nm2\n0 1 2\n1 0 -1",
         "dat1.txt:3: the header of 2 markers was expected to be one line; it ends here\n"},
        {1, 0, "status m1 m2 0 1 2\n1 0 -1",
         "dat1.txt:1: the header has more titles than 2 markers; the rest is read as data\n"},
    };
    set_sizes(2, 2);
    for (const auto& row : rows) {
        const ConsoleCapture console;
        DiagnosticsCapture diagnostics;
        head = row.head;
        record = row.record;
        load(row.text);
        EXPECT_EQ(loaded(), "0:12 1:0-") << row.text;
        EXPECT_EQ(diagnostics.take(), row.said) << row.text;
    }
}

TEST_F(ReadData, ManyFaultsOfAKindAreCounted) {
    set_sizes(28, 2);
    std::string text;
    for (int i = 0; i < 28; ++i) text += i % 2 == 0 ? "0 1\n" : "1 1 1 1\n";
    const ConsoleCapture console;
    DiagnosticsCapture diagnostics;
    load(text);
    const std::string said = diagnostics.take();
    EXPECT_THAT(said, ::testing::EndsWith("... and 4 more rows with too few genotypes\n"
                                          "... and 4 more rows with too many genotypes\n"));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 22);
}

TEST_F(ReadData, LongRowsAreReadWhole) {
    constexpr int kMarkers = 700000;  // 1.4 million characters
    set_sizes(2, kMarkers);
    std::string row;
    for (int j = 0; j < kMarkers; ++j) row += j % 3 == 0 ? " 2" : " 0";
    const ConsoleCapture console;
    DiagnosticsCapture diagnostics;
    load("0" + row + "\n1" + row + "\n");
    EXPECT_EQ(diagnostics.take(), "");
    EXPECT_EQ(X[1][kMarkers - 1], 2);
}

TEST_F(ReadData, AFileThatCannotBeOpenedEndsTheProgram) {
    set_sizes(2, 1);
    expect_end(load_data_set_once, "^file open dat1.txt not good\n$");
    std::filesystem::create_directory("dat1.txt");
    expect_end(load_data_set_once, "^file open dat1.txt not good\n$");
}

}  // namespace
}  // namespace vort::testing
