#include "common/text_input.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>

#include "support/temporary_folder.h"

namespace vort {
namespace {

using vort::testing::TemporaryFolder;
using vort::testing::write_file;

enum class Read { kWord, kShort, kInt, kReal, kLine };

// The same file through a standard stream and through a TextInput, item by item.
class BothReaders {
  public:
    BothReaders() : stream_("text", std::ios::binary), input_("text") {}

    void expect_same(Read what) {
        switch (what) {
            case Read::kWord: {
                std::string theirs, ours;
                stream_ >> theirs;
                compare(input_.word(ours), stream_.fail() ? std::string() : theirs, ours);
                break;
            }
            case Read::kShort:
                expect_same_number<short>([this](short& out) { return input_.integer(out); });
                break;
            case Read::kInt:
                expect_same_number<int>([this](int& out) { return input_.integer(out); });
                break;
            case Read::kReal:
                expect_same_number<double>([this](double& out) { return input_.real(out); });
                break;
            case Read::kLine: {
                std::string theirs;
                std::string_view ours;
                std::getline(stream_, theirs);
                const bool read = input_.line(ours);
                compare(read, theirs, std::string(ours));
                break;
            }
        }
    }

    bool more() const { return stream_.good(); }

  private:
    template <typename T, typename ReadNumber>
    void expect_same_number(ReadNumber read) {
        T theirs = 0;
        T ours = 7;
        stream_ >> theirs;
        compare(read(ours), stream_.fail() ? T{0} : theirs, ours);
    }

    template <typename T>
    void compare(bool read, const T& theirs, const T& ours) {
        EXPECT_EQ(read, !stream_.fail());
        EXPECT_EQ(ours, theirs);
        EXPECT_EQ(input_.failed(), stream_.fail());
        EXPECT_EQ(input_.good(), stream_.good());
    }

    std::ifstream stream_;
    TextInput input_;
};

class TextInputTest : public ::testing::Test {
  private:
    TemporaryFolder folder_;
};

std::string shown(const std::string& text) {
    return "text of " + std::to_string(text.size()) + " bytes: " + text.substr(0, 80);
}

TEST_F(TextInputTest, ReadsItemsAsAStreamDoes) {
    for (const char* text :
         {"",           " ",           "\n",          "7",      "7 ",          "-7\n",
          "+7",         "+-7",         "-",           "- 7",    "--7",         "007",
          "12abc",      "abc",         "32767 32768", "-32768", "99999",       "2147483647",
          "2147483648", "-2147483648", "0x10",        "1.5",    ".5",          "5.",
          ".",          "-.5e1",       "1e5",         "1e+5x",  "1e",          "1e+",
          "1e5e5",      "e5",          "1.2.3",       "1e400",  "-1e400",      "1e-400",
          "4e-320",     "inf",         "nan",         "1,5",    "\v7\f8\r\n9", "\t\t7"}) {
        for (const Read first : {Read::kWord, Read::kShort, Read::kInt, Read::kReal, Read::kLine}) {
            SCOPED_TRACE(shown(text) + ", item kind " + std::to_string(static_cast<int>(first)));
            write_file("text", text);
            BothReaders readers;
            for (const Read then : {first, Read::kWord, Read::kLine}) readers.expect_same(then);
        }
    }
}

TEST_F(TextInputTest, ReadsRandomTextAsAStreamDoes) {
    const std::string alphabet = "0123456789019 \t\n\r +-.eEaX";
    for (unsigned seed = 1; seed <= 500; ++seed) {
        std::mt19937 random(seed);
        std::string text(random() % 60, ' ');
        for (char& c : text) c = alphabet[random() % alphabet.size()];
        SCOPED_TRACE("seed " + std::to_string(seed) + ", " + shown(text));
        write_file("text", text);
        BothReaders readers;
        while (readers.more()) readers.expect_same(static_cast<Read>(random() % 5));
        readers.expect_same(static_cast<Read>(random() % 5));  // past the end, or failed before
        if (HasFailure()) return;
    }
}

TEST_F(TextInputTest, ItemsMayLieAcrossBlocks) {
    constexpr std::size_t kBlock = std::size_t{1} << 20;
    for (const std::size_t filler : {kBlock - 9, kBlock - 3, kBlock - 1, kBlock, 3 * kBlock + 5}) {
        SCOPED_TRACE(filler);
        const std::string tail = "word -12345 1.25e-3 the last line\nand one without an end";
        write_file("text", std::string(filler, 'x') + '\n' + tail);
        {
            BothReaders readers;
            for (const Read what : {Read::kLine, Read::kWord, Read::kInt, Read::kReal, Read::kLine,
                                    Read::kLine, Read::kLine}) {
                readers.expect_same(what);
            }
        }
        TextInput input("text");
        std::string word;
        EXPECT_TRUE(input.word(word));
        EXPECT_EQ(word, std::string(filler, 'x'));
        EXPECT_TRUE(input.word(word));
        EXPECT_EQ(word, "word");
    }
}

TEST_F(TextInputTest, KnowsItsLine) {
    write_file("text", "\n\none 2\r\n 3.5\nrest of it\nlast");
    TextInput input("text");
    std::string word;
    std::string_view line;
    int whole = 0;
    double real = 0.0;
    EXPECT_EQ(input.line_number(), 1);
    input.word(word);
    EXPECT_EQ(input.line_number(), 3);
    input.integer(whole);
    EXPECT_EQ(input.line_number(), 3);
    EXPECT_EQ(input.peek(), '\r');
    input.skip_space();
    EXPECT_EQ(input.line_number(), 4);
    input.real(real);
    EXPECT_EQ(input.get(), '\n');
    EXPECT_EQ(input.line_number(), 5);
    input.line(line);
    EXPECT_EQ(line, "rest of it");
    EXPECT_EQ(input.line_number(), 6);
    input.line(line);
    EXPECT_EQ(line, "last");
    EXPECT_EQ(input.line_number(), 6);
    EXPECT_EQ(input.get(), EOF);
}

TEST_F(TextInputTest, WhatIsNoFileIsNotOpen) {
    std::filesystem::create_directory("folder");
    for (const char* path : {"absent", "folder", ""}) {
        for (const char* mode : {"r", "r+"}) {
            TextInput input(path, mode);
            std::string word = "before";
            EXPECT_FALSE(input.is_open()) << path;
            EXPECT_FALSE(input.good());
            EXPECT_FALSE(input.word(word));
            EXPECT_EQ(word, "");
            EXPECT_EQ(input.get(), EOF);
        }
    }
}

}  // namespace
}  // namespace vort
