// SHA-256 of a file.
#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace vort {

constexpr std::string_view kNotReadAgain = "(could not be read again)";

// 64 hexadecimal digits, or in brackets why there is none; stops early where `wanted` becomes
// false.
std::string sha256_of(const std::string& path, const std::atomic<bool>& wanted);

}  // namespace vort
