// What all harnesses share: whatever must hold is required, and a fault ends the process, so that
// the fuzzer keeps the input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/input_error.h"
#include "common/stop.h"

namespace vort::fuzz {

inline std::string_view text_of(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// Ends the process, with the message, unless `holds`.
void require(bool holds, std::string_view what);

// A refusal says something, in one line. With VORT_FUZZ_TELL in the environment it is shown.
void require_message(const InputError& refusal);

// Nothing that the code under test writes to standard output or standard error is wanted.
void silence_streams();

// Whether `act` comes to its end. Input is refused by InputError or Stop; anything else that is
// thrown is a fault, and is left to end the process.
template <typename Act>
bool accepts(Act act) try {
    act();
    return true;
} catch (const InputError& refusal) {
    require_message(refusal);
    return false;
} catch (const Stop&) {
    return false;
}

}  // namespace vort::fuzz
