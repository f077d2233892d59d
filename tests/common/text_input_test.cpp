#include "common/text_input.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <random>
#include <string>
#include <utility>

#include "support/temporary_folder.h"

namespace vort {
namespace {

using vort::testing::write_file;

// A kind of item: a word, a short, an int, a double, a line, or a line that is appended.
constexpr char kKinds[] = {'w', 's', 'i', 'd', 'l', 'a'};

// The same file through a standard stream and through a TextInput, item by item.
class BothReaders {
  public:
    BothReaders() : stream_("text", std::ios::binary), input_("text") {}

    void expect_same(char kind) {
        if (kind == 'w') read<std::string>([this](auto& out) { return input_.word(out); });
        if (kind == 's') read<short>([this](auto& out) { return input_.integer(out); });
        if (kind == 'i') read<int>([this](auto& out) { return input_.integer(out); });
        if (kind == 'd') read<double>([this](auto& out) { return input_.real(out); });
        if (kind != 'l' && kind != 'a') return;
        std::string theirs;
        std::string_view ours;
        std::getline(stream_, theirs);
        appended_.used = 5;  // of something else
        const bool read = kind == 'l' ? input_.line(ours) : input_.append_line(appended_);
        if (kind == 'a') ours = {appended_.memory.data() + 5, appended_.used - 5};
        compare(read, theirs, std::string(ours));
    }

  private:
    template <typename T, typename Read>
    void read(Read read_ours) {
        T theirs{}, ours{};
        stream_ >> theirs;
        const bool read = read_ours(ours);
        compare(read, stream_.fail() ? T{} : theirs, ours);
    }

    template <typename T>
    void compare(bool read, const T& theirs, const T& ours) {
        EXPECT_EQ(ours, theirs);
        EXPECT_TRUE(read == !stream_.fail() && input_.failed() == stream_.fail());
        EXPECT_EQ(input_.good(), stream_.good());
    }

    std::ifstream stream_;
    TextInput input_;
    LongText appended_{std::vector<char>(9), 0};
};

void compare_readers(const std::string& text, const std::string& kinds) {
    SCOPED_TRACE("items " + kinds + " of " + std::to_string(text.size()) +
                 " bytes: " + text.substr(0, 80));
    write_file("text", text);
    BothReaders readers;
    for (const char kind : kinds) readers.expect_same(kind);
}

TEST(TextInput, ReadsAsAStreamDoes) {
    const vort::testing::TemporaryFolder folder;
    for (const char* text :
         {"", "+7", "+-7", "- 7", "0x10", "32768", "-32768", "2147483648", "-2147483648", "5.", ".",
          "1e+", "-1e400", "1e-400", "4e-320", "nan"}) {
        for (const char kind : kKinds) compare_readers(text, std::string(1, kind) + "wl");
    }
    const std::string alphabet = "0123456789019 \t\n\r +-.eEaX";
    for (unsigned seed = 1; seed <= 500 && !HasFailure(); ++seed) {
        std::mt19937 random(seed);
        std::string text(random() % 60, ' '), kinds(64, ' ');  // reads past the end, too
        for (char& c : text) c = alphabet[random() % alphabet.size()];
        for (char& kind : kinds) kind = kKinds[random() % 6];
        compare_readers(text, kinds);
    }
}

TEST(TextInput, ItemsMayLieAcrossBlocks) {
    const vort::testing::TemporaryFolder folder;
    constexpr std::size_t kBlock = std::size_t{1} << 18;
    for (const std::size_t filler : {kBlock - 9, kBlock - 3, kBlock - 1, kBlock, 3 * kBlock + 5}) {
        const std::string text = std::string(filler, 'x') + "\nword -12345 1.25e-3 the last line\n";
        for (const char* kinds : {"lwidlll", "wwidaaa", "awidaaa"}) {
            compare_readers(text + "and one without an end", kinds);
        }
    }
}

TEST(TextInput, TellsWhatItCannotOpenOrRead) {
    std::string word = "before";
    std::string_view line;
    LongText text;
    for (const auto& [path, error] : {std::pair{"absent/file", ENOENT}, {"/proc", EISDIR}}) {
        TextInput input(path);
        EXPECT_FALSE(input.is_open() || input.good() || input.word(word)) << path;
        EXPECT_TRUE(word.empty() && input.get() == EOF && input.open_error() == error) << path;
    }
    TextInput input("/proc/self/mem");  // opens, and no read of its beginning succeeds
    EXPECT_TRUE(input.good() && input.read_error() == 0);
    EXPECT_FALSE(input.append_line(text) || input.line(line));
    EXPECT_EQ(input.read_error(), EIO);
}

}  // namespace
}  // namespace vort
