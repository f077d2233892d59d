// Text files whose lines are words between white space: .fam, .bim, phenotypes, lists of names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "common/text_input.h"

namespace vort {

// The words of a text, at most `most` of them; how many there are is returned.
std::size_t split_words(std::string_view text, std::size_t most,
                        std::vector<std::string_view>& words);

class WordLines {
  public:
    // `columns`: what a line should hold, for messages. Of longer lines only the first `kept` words
    // are kept. Throws InputError where the file cannot be opened.
    WordLines(std::string path, std::string_view columns, std::size_t kept);

    // The next line that is not empty; false at the end. Throws InputError where reading fails.
    bool next();

    // Throws InputError unless the line has `count` words.
    void require(std::size_t count) const;
    void require_at_least(std::size_t count) const;

    std::size_t count() const { return count_; }  // of the line's words, those not kept too
    // Valid until the next line is read.
    std::string_view operator[](std::size_t c) const { return words_[c]; }
    const std::vector<std::string_view>& words() const { return words_; }

    const std::string& path() const { return path_; }
    long line() const { return line_; }  // 1-based

    [[noreturn]] void fail(const std::string& what) const;

  private:
    std::string path_;
    std::string_view columns_;
    std::size_t kept_;
    TextInput input_;
    std::vector<std::string_view> words_;
    std::size_t count_ = 0;
    long line_ = 0;
};

// Throw InputError where the file cannot be opened for reading. Files that are read twice are asked
// twice: there may be no descriptor left by then.
void require_open(const TextInput& input, const std::string& path);
std::string read_text(const std::string& path);
void require_readable(const std::string& path);

// A whole number; false where the text is none.
bool read_whole(std::string_view text, long& number);

// "1 case", "2 cases".
std::string counted(long count, std::string_view one, std::string_view many);

}  // namespace vort
