// Kinds of characters, whatever the locale.
#pragma once

#include <span>
#include <utility>

namespace vort {

// A character, or a value of the kind that stands for the end of a file.
constexpr bool is_space(int c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr bool is_digit(int c) {
    return c >= '0' && c <= '9';
}
constexpr bool is_letter(int c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// A terminal obeys control characters; names and texts come out of other people's files. Some of
// them are two bytes of UTF-8, of which `before` was the first.
constexpr char visible(char c, char before) {
    const auto byte = static_cast<unsigned char>(c);
    const bool control = (byte < ' ' && c != '\n' && c != '\t') || byte == 0x7f ||
                         (before == '\xc2' && byte >= 0x80 && byte <= 0x9f);
    return control ? '?' : c;
}
inline void make_visible(std::span<char> text) {
    char before = '\0';
    for (char& c : text) {
        const char read = c;
        c = visible(read, std::exchange(before, read));
    }
}

}  // namespace vort
