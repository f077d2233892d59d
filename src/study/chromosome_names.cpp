#include "study/chromosome_names.h"

#include <algorithm>
#include <array>

#include "common/input_error.h"
#include "study/word_lines.h"

namespace vort {

namespace {

// In either case; `wanted` is in capitals.
bool starts_like(std::string_view name, std::string_view wanted) {
    const auto same = [](char capital, char c) {
        return c == capital || (c >= 'a' && c <= 'z' && c - 'a' + 'A' == capital);
    };
    return name.size() >= wanted.size() &&
           std::equal(wanted.begin(), wanted.end(), name.begin(), same);
}

struct NamedChromosome {
    std::string_view name;
    int number;
};

constexpr std::array<NamedChromosome, 5> kNamed = {{{"X", kChromosomeX},
                                                    {"Y", kChromosomeY},
                                                    {"XY", kChromosomeXY},
                                                    {"MT", kChromosomeMT},
                                                    {"M", kChromosomeMT}}};

}  // namespace

int chromosome_of(std::string_view name) {
    if (starts_like(name, "CHR")) name.remove_prefix(3);
    for (const NamedChromosome& named : kNamed) {
        if (name.size() == named.name.size() && starts_like(name, named.name)) return named.number;
    }
    long number = 0;
    const bool known = read_whole(name, number) && number >= 1 && number <= kChromosomeMT;
    return known ? static_cast<int>(number) : 0;
}

ChromosomeSet chromosomes_of(const std::string& list) {
    ChromosomeSet set;
    std::string_view rest = list;
    while (true) {
        const std::string_view item = rest.substr(0, rest.find(','));
        const std::size_t dash = item.find('-');
        const int first = chromosome_of(item.substr(0, dash));
        const int last =
            dash == std::string_view::npos ? first : chromosome_of(item.substr(dash + 1));
        if (first == 0 || last < first) {
            throw InputError{"--chr " + list + ": \"" + std::string(item) +
                             "\" is no chromosome; a list such as 1-4,22,X expected"};
        }
        for (int c = first; c <= last; ++c) set.set(static_cast<std::size_t>(c));
        if (item.size() == rest.size()) return set;
        rest.remove_prefix(item.size() + 1);
    }
}

}  // namespace vort
