#include "support/harness.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace vort::fuzz {

void require(bool holds, std::string_view what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

void require_message(const InputError& refusal) {
    require(!refusal.text.empty(), "a refusal has a text");
    static const bool told = std::getenv("VORT_FUZZ_TELL") != nullptr;
    if (told) std::fprintf(stderr, "refused: %s\n", refusal.text.c_str());
    require(refusal.text.find('\n') == std::string::npos, "a refusal is one line");
}

void silence_streams() {
    std::cout.rdbuf(nullptr);
    std::cerr.rdbuf(nullptr);
}

}  // namespace vort::fuzz
