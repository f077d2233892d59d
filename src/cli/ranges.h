// Ranges of option values, without a description in the help.
#pragma once

#include <CLI/CLI.hpp>

namespace vort {

template <typename T>
CLI::Validator within(T low, T high) {
    return CLI::Range(low, high).description("");
}

}  // namespace vort
