// Ranges of option values; a value that is not a number is in none.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <type_traits>

#include "common/number_text.h"

namespace vort {

template <typename T>
CLI::Validator within(T low, T high) {
    const auto check = [low, high](const std::string& text) {
        T value{};
        if (CLI::detail::lexical_cast(text, value) && value >= low && value <= high) {
            return std::string();
        }
        const auto number = [](T limit) {
            if constexpr (std::is_integral_v<T>) return std::to_string(limit);
            return to_text(general(static_cast<double>(limit)));
        };
        return text + "; a number from " + number(low) + " to " + number(high) + " expected";
    };
    return {check, ""};
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
