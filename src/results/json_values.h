// Values out of a file of JSON that may be anybody's.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace vort {

// A whole number in a range; what json converts by itself may be any other. Throws
// std::out_of_range.
inline long whole_of(const nlohmann::json& value, const char* name, long least, long most) {
    const bool fits = value.is_number_unsigned()
                          ? value.get<std::uint64_t>() <= static_cast<std::uint64_t>(most)
                          : value.is_number_integer() && value.get<long>() <= most;
    if (fits && value.get<long>() >= least) return value.get<long>();
    throw std::out_of_range(std::string(name) + " is no whole number from " +
                            std::to_string(least) + " to " + std::to_string(most));
}

// A number in a range. Throws std::out_of_range, and what json throws for what is none.
inline double number_of(const nlohmann::json& value, const char* name, double least, double most) {
    const double number = value.get<double>();
    if (number >= least && number <= most) return number;
    throw std::out_of_range(std::string(name) + " is no number that it can be");
}

}  // namespace vort
