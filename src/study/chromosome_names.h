// Names of chromosomes, as the formats and --chr have them.
#pragma once

#include <bitset>
#include <string>
#include <string_view>

namespace vort {

constexpr int kChromosomeX = 23;
constexpr int kChromosomeY = 24;
constexpr int kChromosomeXY = 25;
constexpr int kChromosomeMT = 26;

// 1 to 26; X, Y, XY and MT (or M) are 23 to 26, in capitals or not, with "chr" in front or not. 0
// for any other name.
int chromosome_of(std::string_view name);

using ChromosomeSet = std::bitset<kChromosomeMT + 1>;

// A list such as "1-4,22,X". Throws InputError where it is none.
ChromosomeSet chromosomes_of(const std::string& list);

}  // namespace vort
