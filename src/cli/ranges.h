// Ranges of option values; a value that is not a number is in none.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <string>

#include "common/number_text.h"

namespace vort {

inline CLI::Validator within(double low, double high) {
    const auto check = [low, high](const std::string& text) {
        double value = 0;
        if (CLI::detail::lexical_cast(text, value) && value >= low && value <= high) {
            return std::string();
        }
        return text + "; a number from " + to_text(general(low)) + " to " + to_text(general(high)) +
               " expected";
    };
    return {check, ""};
}

// A whole number, for transform(): noughts in front go, since to the library 010 is eight.
inline CLI::Validator whole(int low, int high) {
    const auto take = [low, high](std::string& text) {
        int value = 0;
        const char* const end = text.data() + text.size();
        const auto read = std::from_chars(text.data(), end, value);
        if (read.ec == std::errc() && read.ptr == end && value >= low && value <= high) {
            text = std::to_string(value);
            return std::string();
        }
        return text + "; a number from " + std::to_string(low) + " to " + std::to_string(high) +
               " expected";
    };
    return {take, ""};
}

// Neither 0 nor 1.
inline CLI::Validator proper_share() {
    const auto check = [](const std::string& text) {
        double value = 0;
        if (CLI::detail::lexical_cast(text, value) && value > 0 && value < 1) return std::string();
        return text + "; a share above 0 and below 1 expected";
    };
    return {check, ""};
}

}  // namespace vort
