#include "study/holdout.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "common/input_error.h"
#include "common/number_text.h"
#include "numeric/generator.h"
#include "study/cohort.h"
#include "study/compaction.h"
#include "study/within.h"
#include "study/word_lines.h"

namespace vort {

namespace {

constexpr std::uint64_t kBegin = 1'000'000'000'000;

// Cases or controls, of whom some are still to be chosen.
struct Group {
    long left = 0;
    long wanted = 0;

    bool takes(double u) {
        const bool taken = u * static_cast<double>(left) < static_cast<double>(wanted);
        --left;
        wanted -= taken ? 1 : 0;
        return taken;
    }
};

std::string option_text(double fraction) {
    return "--holdout " + to_text(general(fraction));
}

Group group_of(long size, const char* one, const char* many, double fraction) {
    const Group group{size, std::lround(fraction * static_cast<double>(size))};
    if (group.wanted > 0 && group.wanted < size) return group;
    throw InputError{option_text(fraction) + ": of " + counted(size, one, many) +
                     " it holds back " + std::to_string(group.wanted) +
                     "; at least one is expected on both sides; ask for another share"};
}

template <typename T>
std::vector<T> taken(std::vector<T>& from, std::span<const int> places) {
    std::vector<T> out;
    out.reserve(places.size());
    for (const int i : places) out.push_back(std::move(from[static_cast<std::size_t>(i)]));
    return out;
}

std::vector<int> others(std::span<const int> chosen, std::size_t count) {
    std::vector<int> rest;
    const std::vector<int> all = first_numbers(count);
    std::ranges::set_difference(all, chosen, std::back_inserter(rest));
    return rest;
}

}  // namespace

std::vector<int> choose_held_back(std::span<const short> phenotypes, double fraction) {
    const auto cases = std::ranges::count(phenotypes, short{1});
    Group case_group = group_of(cases, "case", "cases", fraction);
    Group control_group = group_of(std::ssize(phenotypes) - cases, "control", "controls", fraction);
    Generator generator;
    generator.skip(kBegin);
    std::vector<int> chosen;
    for (std::size_t i = 0; i < phenotypes.size(); ++i) {
        Group& group = phenotypes[i] == 1 ? case_group : control_group;
        if (group.takes(generator.next())) chosen.push_back(static_cast<int>(i));
    }
    return chosen;
}

HeldBack hold_back(Study& study, double fraction, int threads) {
    const std::vector<int> chosen = choose_held_back(study.phenotypes, fraction);
    const std::vector<int> rest = others(chosen, study.individuals.size());
    const std::vector<int> columns = first_numbers(study.markers.size());
    HeldBack held{fraction, copied(study.genotypes, chosen, columns, threads),
                  taken(study.phenotypes, chosen), taken(study.individuals, chosen)};
    study.genotypes = compacted(std::move(study.genotypes), rest, columns, threads);
    study.phenotypes = taken(study.phenotypes, rest);
    study.individuals = taken(study.individuals, rest);
    leave_out(study, LeftOut::What::kIndividuals, std::ssize(chosen), option_text(fraction));
    retake_clusters(rest, study);
    return held;
}

}  // namespace vort
