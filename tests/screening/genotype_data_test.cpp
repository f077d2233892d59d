#include "screening/genotype_data.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "screening/genotype_row.h"
#include "support/console_capture.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/screening_fixture.h"

namespace vort {
namespace {

using vort::testing::console_to_stderr;
using vort::testing::ConsoleCapture;
using vort::testing::DiagnosticsCapture;
using vort::testing::kDataFile;
using vort::testing::read_file;
using vort::testing::said_of;
using vort::testing::ScreeningTest;
using vort::testing::status_zero;

struct PlainRow {
    std::vector<int> codes;
    std::size_t used = 0;
};

// The rule, a character at a time, on a copy that ends in characters that mean nothing.
PlainRow plain_parse(const std::string& row, std::size_t markers) {
    const std::string text = row + std::string(2, '\0');
    PlainRow result;
    std::size_t at = 0;
    while (result.codes.size() < markers) {
        while (text[at] == ' ') ++at;
        if (text[at] == '-') {
            result.codes.push_back(-1);
            at += 2;
        } else if (text[at] == '0' || text[at] == '1' || text[at] == '2') {
            result.codes.push_back(text[at] - '0');
            at += 1;
        } else {
            break;
        }
    }
    result.used = std::min(at, row.size());
    return result;
}

// Buffers of exactly the row's sizes, so that a sanitizer sees a step outside.
void expect_plain_parse(const std::string& row, std::size_t markers) {
    constexpr char kUntouched = 99;
    const PlainRow expected = plain_parse(row, markers);
    const std::vector<char> text(row.begin(), row.end());
    std::vector<char> codes(markers, kUntouched);
    const ParsedRow parsed =
        parse_genotypes({text.data(), text.size()}, static_cast<int>(markers), codes.data());
    std::vector<int> wanted = expected.codes;
    wanted.resize(markers, kUntouched);
    ASSERT_EQ(parsed.count, static_cast<int>(expected.codes.size()));
    ASSERT_EQ(parsed.behind - text.data(), static_cast<std::ptrdiff_t>(expected.used));
    ASSERT_EQ(std::vector<int>(codes.begin(), codes.end()), wanted);
}

// Mostly a row as it should be; now and then other spacing and a stray character.
std::string random_row(std::mt19937& random, int genotypes) {
    static const std::string kStray = "-3\t\r9A. -\x80/3";
    const auto odd_spacing = random() % 4 == 0 ? 5 : 1000000;
    const auto strays = random() % 3 == 0 ? 60 : 1000000;
    const auto missing = 1 + random() % 20;
    std::string text;
    for (int j = 0; j < genotypes; ++j) {
        text.append(random() % odd_spacing == 0 ? random() % 4 : 1, ' ');
        if (random() % strays == 0) text += kStray[random() % kStray.size()];
        const auto digit = static_cast<char>('0' + random() % 3);
        text += random() % missing == 0 ? std::string("-") + digit : std::string(1, digit);
    }
    return text.append(random() % 8 == 0 ? random() % 20 : 0, ' ');
}

TEST(ParseGenotypes, RandomRowsOfAllLengths) {
    for (int genotypes = 0; genotypes <= 140; ++genotypes) {
        for (unsigned seed = 1; seed <= 40; ++seed) {
            SCOPED_TRACE("genotypes " + std::to_string(genotypes) + ", seed " +
                         std::to_string(seed));
            std::mt19937 random(1000U * static_cast<unsigned>(genotypes) + seed);
            const std::string row = random_row(random, genotypes);
            const auto fewer = random() % 3;
            const auto markers = static_cast<unsigned>(genotypes) + random() % 3;
            expect_plain_parse(row, markers < fewer ? 0 : markers - fewer);
            if (HasFatalFailure()) return;
        }
    }
}

// One fault at every place of a row as long as a few vector registers.
TEST(ParseGenotypes, AFaultAtEveryPlace) {
    std::string clean;
    for (int j = 0; j < 70; ++j) clean += j % 5 == 4 ? " -1" : " " + std::to_string(j % 3);
    for (std::size_t at = 0; at <= clean.size(); ++at) {
        SCOPED_TRACE(at);
        for (const char fault : std::string("-\t3A \r\xb0") + '\0') {
            std::string replaced = clean;
            if (at < clean.size()) replaced[at] = fault;
            expect_plain_parse(replaced, 70);
            std::string inserted = clean;
            expect_plain_parse(inserted.insert(at, 1, fault), 70);
        }
        expect_plain_parse(clean.substr(0, at), 70);
        expect_plain_parse(clean, at);
        if (HasFatalFailure()) return;
    }
}

TEST(ParseGenotypes, RandomCharacters) {
    for (unsigned seed = 1; seed <= 20000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const std::string alphabet = seed % 2 == 0 ? "012-  " : "0000111222-  --   \t3";
        std::string row(random() % 90, ' ');
        for (char& c : row) c = alphabet[random() % alphabet.size()];
        expect_plain_parse(row, random() % 60);
        if (HasFatalFailure()) return;
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
    const std::string all_missing = "; the rest is taken as missing";
    const std::string row_missing = "; the rest of the row is taken as missing";
    const struct {
        std::string text;
        std::string expected;
        std::string said;  // without the file name
    } rows[] = {
        {"0 0 1 2\n1 -1 1 0\n", "0:012 1:-10", ""},
        {"0 0 1 2\r\n1 -1 1 0\r\n\r\n", "0:012 1:-10", ""},
        {"\n\n 0   0 1 2 \n1 -9-x0", "0:012 1:--0",
         "4: a missing genotype was expected to read -1; the minus sign takes the character behind "
         "it along\n"},
        {"0 012\n1 -1-1-1", "0:012 1:---", ""},
        {"0 1 2\n1 0 0 0\n", "0:12- 1:000", "1: 2 genotypes, 3 expected" + all_missing + "\n"},
        {"0\n1 0 0 0\n", "0:--- 1:000", "1: 0 genotypes, 3 expected" + all_missing + "\n"},
        {"0 0 1 2 2 1\n1 0 0 0\n", "0:012 1:000",
         "1: more than the 3 genotypes expected; ignored from \"2 1\" on\n"},
        {"0 1\t2\t0\n1 0 0 0\n", "0:1-- 1:000",
         "1: a tab after 1 genotypes, 3 expected with blanks between them" + row_missing + "\n"},
        {"0 1 A 0\n1 0 3 0\n", "0:1-- 1:0--",
         "1: 'A' is no genotype code (0, 1, 2, -1), after 1 genotypes, 3 expected" + row_missing +
             "\n2: '3' is no genotype code (0, 1, 2, -1), after 1 genotypes, 3 expected" +
             row_missing + "\n"},
        {"0 - 1 2\n1 0 0 0\n", "0:-12 1:000",
         "1: a missing genotype was expected to read -1; the minus sign takes the character behind "
         "it along\n"},
        {"0.5 1 1 1\n1 0 0 0\n", "0:--- 1:000",
         "1: '.' is no genotype code (0, 1, 2, -1), after 0 genotypes, 3 expected" + row_missing +
             "\n"},
        {"x 0 1 2\n1 0 0 0\n", "0:--- 0:---",
         "1: a phenotype was expected (0 or 1); no row from here on is read\n"
         "1: 0 rows could be read, 2 expected; the rest is taken as controls with missing "
         "genotypes\ncases and controls were expected, there are only controls\n"},
        {"1 0 1 2\n40000 0 0 0\n", "1:012 0:---",
         "2: a phenotype was expected (0 or 1); no row from here on is read\n"
         "2: 1 rows could be read, 2 expected; the rest is taken as controls with missing "
         "genotypes\n"},
        {"1 0 1 2\n2 0 0 0\n", "1:012 2:000",
         "2: phenotype 2, 0 or 1 expected; a control to the screening, a quantity to the model\n"},
        {"1 0 1 2\n", "1:012 0:---",
         "2: 1 rows could be read, 2 expected; the rest is taken as controls with missing "
         "genotypes\n"},
        {"0 0 1 2\n1 0 0 0\n\n1 2 2 2\n", "0:012 1:000",
         "4: more than the 2 rows expected; ignored from here on\n"},
        {"0 0 1 2\n0 0 0 0\n", "0:012 0:000",
         "cases and controls were expected, there are only controls\n"},
        {"1 0 1 2\n1 0 0 0\n", "1:012 1:000",
         "cases and controls were expected, there are only cases\n"},
    };
    set_sizes(2, 3);
    for (const auto& row : rows) {
        const ConsoleCapture console;
        DiagnosticsCapture diagnostics;
        load(row.text);
        EXPECT_EQ(loaded(), row.expected) << row.text;
        EXPECT_EQ(diagnostics.take(), said_of(kDataFile, row.said)) << row.text;
        EXPECT_EQ(console.text(), "read data is finished\n");
        EXPECT_EQ(samplesize[1], (Y[0] == 1) + (Y[1] == 1)) << row.text;
        EXPECT_EQ(samplesize[0] + samplesize[1], 2);
    }
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
    set_sizes(14, 2);
    std::string text;
    for (int i = 0; i < 14; ++i) text += i % 2 == 0 ? "0 1\n" : "1 1 1 1\n";
    text += text;
    const ConsoleCapture console;
    DiagnosticsCapture diagnostics;
    load(text);
    EXPECT_EQ(diagnostics.take().find("... and"), std::string::npos);
    set_sizes(28, 2);
    load(text);
    const std::string said = diagnostics.take();
    EXPECT_NE(said.find("... and 4 more rows with too few genotypes\n"
                        "... and 4 more rows with too many genotypes\n"),
              std::string::npos)
        << said;
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
    EXPECT_EQ(X[0][kMarkers - 1], X[1][kMarkers - 1]);
    EXPECT_EQ(X[1][kMarkers - 1], kMarkers % 3 == 1 ? 2 : 0);
}

TEST_F(ReadData, IsLoadedOnceUntilReleased) {
    set_sizes(2, 1);
    const ConsoleCapture console;
    load("0 1\n1 2\n");
    char** before = X;
    load_data_set_once();
    EXPECT_EQ(X, before);
    EXPECT_EQ(console.text(), "read data is finished\n");
    release_data_set();
    EXPECT_EQ(X, nullptr);
    EXPECT_EQ(exist_X_Y_data, 0);
}

TEST_F(ReadData, DumpsCasesThenControls) {
    set_sizes(3, 2);
    const DiagnosticsCapture diagnostics;
    {
        const ConsoleCapture console;
        load("0 1 2\n1 -1 0\n2 0 0\n");
    }
    const ConsoleCapture console;
    write_input(0);
    write_current(0);
    EXPECT_FALSE(std::filesystem::exists("inputfile.txt"));
    write_input(1);
    write_current(1);
    const std::string rows = "1 -1 0\n0 1 2\n2 0 0\n";
    EXPECT_EQ(console.text(), "begin print inputfile for readme " + rows +
                                  "begin print current for readme file" + rows);
    EXPECT_EQ(read_file("inputfile.txt"), rows);
    EXPECT_EQ(read_file("current_file.txt"), rows);
}

TEST_F(ReadData, AFileThatCannotBeOpenedEndsTheProgram) {
    set_sizes(2, 1);
    EXPECT_EXIT((console_to_stderr(), load_data_set_once()), status_zero(),
                "^file open dat1.txt not good\n$");
    std::filesystem::create_directory("dat1.txt");
    EXPECT_EXIT((console_to_stderr(), load_data_set_once()), status_zero(),
                "^file open dat1.txt not good\n$");
}

}  // namespace
}  // namespace vort
