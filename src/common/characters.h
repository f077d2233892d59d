// Kinds of characters, whatever the locale.
#pragma once

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

// A terminal obeys control characters; names and texts come out of other people's files.
constexpr char visible(char c) {
    return static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t' ? '?' : c;
}

}  // namespace vort
