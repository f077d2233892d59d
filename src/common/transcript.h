// The console text of one part of a run, held until it is that part's turn.
//
// What computes something writes about it here instead of to standard output, so that data sets can
// be worked on side by side and still be told in order. Where nobody wants the text, nothing is
// formatted:
//
//     transcript << "mean=" << general(mean) << '\n';
//
// Not for use from several threads at once; every part has its own.
#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "common/number_text.h"

namespace vort {

class Transcript {
  public:
    explicit Transcript(bool wanted) : wanted_(wanted) {}

    bool wanted() const { return wanted_; }

    template <typename T>
    Transcript& operator<<(const T& value) {
        if (wanted_) append(value);
        return *this;
    }

    // Room for `size` more characters, to be written in place; used(end) says how far.
    char* room(std::size_t size) {
        const std::size_t old = size_;
        if (text_.size() < old + size) text_.resize((old + size) + (old + size) / 4);
        return text_.data() + old;
    }
    void used(const char* end) { size_ = static_cast<std::size_t>(end - text_.data()); }

    std::string_view text() const { return {text_.data(), size_}; }
    void clear() { size_ = 0; }

    // Appends what another one holds.
    void add(const Transcript& other) {
        if (wanted_) append(other.text());
    }

  private:
    void append(std::string_view piece) {
        char* const at = room(piece.size());
        used(at + piece.copy(at, piece.size()));
    }
    void append(const char* piece) { append(std::string_view(piece)); }
    void append(char character) { append(std::string_view(&character, 1)); }
    void append(const General& number) { used(number.write(room(General::kLongest))); }
    void append(const Fixed& number) { used(number.write(room(Fixed::kLongest))); }
    template <std::integral T>
    void append(T number) {
        constexpr std::size_t kLongest = 24;
        char* const at = room(kLongest);
        used(std::to_chars(at, at + kLongest, number).ptr);
    }
    bool wanted_;
    std::string text_;
    std::size_t size_ = 0;
};

}  // namespace vort
