#include "study/word_lines.h"

#include <charconv>

#include "common/characters.h"
#include "common/input_error.h"

namespace vort {

std::size_t split_words(std::string_view text, std::size_t most,
                        std::vector<std::string_view>& words) {
    words.clear();
    std::size_t count = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;; ++count) {
        while (at < end && is_space(*at)) ++at;
        if (at == end) return count;
        const char* const from = at;
        while (at < end && !is_space(*at)) ++at;
        if (count < most) words.emplace_back(from, static_cast<std::size_t>(at - from));
    }
}

WordLines::WordLines(std::string path, std::string_view columns, std::size_t kept)
    : path_(std::move(path)), columns_(columns), kept_(kept), input_(path_) {
    require_open(input_, path_);
}

bool WordLines::next() {
    std::string_view text;
    do {
        line_ = input_.line_number();
        if (!input_.line(text)) {
            if (input_.read_error() == 0) return false;
            fail("cannot be read (" + reason_text(input_.read_error()) + ')');
        }
        // Editors put a byte order mark in front, which nobody sees.
        constexpr std::string_view kMark = "\xEF\xBB\xBF";
        if (line_ == 1 && text.starts_with(kMark)) text.remove_prefix(kMark.size());
        count_ = split_words(text, kept_, words_);
    } while (count_ == 0);
    return true;
}

void WordLines::require(std::size_t count) const {
    if (count_ == count) return;
    fail(counted(static_cast<long>(count_), "column", "columns") + "; " + std::string(columns_) +
         " expected");
}

void WordLines::require_at_least(std::size_t count) const {
    if (count_ < count) require(count);
}

void WordLines::fail(const std::string& what) const {
    input_error(path_, line_, what);
}

void require_open(const TextInput& input, const std::string& path) {
    if (input.is_open()) return;
    input_error(path, 0, "cannot be opened (" + reason_text(input.open_error()) + ')');
}

std::string read_text(const std::string& path) {
    TextInput input(path);
    require_open(input, path);
    std::string text = input.rest();
    if (input.read_error() != 0) {
        input_error(path, 0, "cannot be read (" + reason_text(input.read_error()) + ')');
    }
    return text;
}

void require_readable(const std::string& path) {
    require_open(TextInput(path), path);
}

bool read_whole(std::string_view text, long& number) {
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end;
}

std::string counted(long count, std::string_view one, std::string_view many) {
    return std::to_string(count).append(" ").append(count == 1 ? one : many);
}

}  // namespace vort
