// The body of FiveModelKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/lanes.h"
#include "screening/five_model_kernel.h"
#include "screening/five_model_statistics.h"

namespace vort {

namespace five_model {

template <Instructions kInstructions>
void make_tables(const PlaneCounts* everybody, const PlaneCounts* in_cases, GroupSizes sizes,
                 TableBlock& out) {
    for (int c = 0; c < kMarkerBlock; ++c) {
        const PlaneCounts& all = everybody[c];
        const PlaneCounts& cases = in_cases[c];
        const int R = sizes.cases - cases.missing;
        const int S = sizes.controls - (all.missing - cases.missing);
        const int b1 = all.one - cases.one;
        const int b2 = all.two - cases.two;
        out.a0[c] = R - cases.one - cases.two;
        out.a1[c] = cases.one;
        out.a2[c] = cases.two;
        out.b0[c] = S - b1 - b2;
        out.b1[c] = b1;
        out.b2[c] = b2;
        out.R[c] = R;
        out.S[c] = S;
    }
}

// kSize markers at a time.
template <Instructions kInstructions, typename Doubles, int kSize>
void compute_statistics(const TableBlock& in, StatisticsBlock& out) {
    constexpr std::size_t kBytes = sizeof(Doubles);
    for (int first = 0; first < kMarkerBlock; first += kSize) {
        GenotypeTable<Doubles> table;
        std::memcpy(&table.a0, in.a0 + first, kBytes);
        std::memcpy(&table.a1, in.a1 + first, kBytes);
        std::memcpy(&table.a2, in.a2 + first, kBytes);
        std::memcpy(&table.b0, in.b0 + first, kBytes);
        std::memcpy(&table.b1, in.b1 + first, kBytes);
        std::memcpy(&table.b2, in.b2 + first, kBytes);
        std::memcpy(&table.R, in.R + first, kBytes);
        std::memcpy(&table.S, in.S + first, kBytes);
        ModelStatistics<Doubles> statistics;
        five_model_statistics<Doubles>(table, statistics);
        std::memcpy(out.additive + first, &statistics.additive, kBytes);
        std::memcpy(out.dominant + first, &statistics.dominant, kBytes);
        std::memcpy(out.recessive + first, &statistics.recessive, kBytes);
        std::memcpy(out.genotype + first, &statistics.genotype, kBytes);
        std::memcpy(out.classes + first, &statistics.classes, kBytes);
    }
}

template <Instructions kInstructions>
void find_leaders(const StatisticsBlock& in, LeadersBlock& out) {
    using Doubles = typename Register<kInstructions>::Doubles;
    constexpr std::size_t kBytes = sizeof(Doubles);
    for (int first = 0; first < kMarkerBlock; first += Register<kInstructions>::kSize) {
        Doubles statistic[4];
        Doubles classes;
        std::memcpy(&statistic[0], in.additive + first, kBytes);
        std::memcpy(&statistic[1], in.dominant + first, kBytes);
        std::memcpy(&statistic[2], in.recessive + first, kBytes);
        std::memcpy(&statistic[3], in.genotype + first, kBytes);
        std::memcpy(&classes, in.classes + first, kBytes);
        // Statistics are not negative, so that -1 never is the largest, nor close to it.
        statistic[3] = select(classes == 2.0, statistic[3], Doubles{} - 1.0);
        Doubles largest{};
        for (const Doubles& s : statistic) largest = select(s > largest, s, largest);
        const Doubles from = lower_end_of_close<Doubles>(largest);
        Doubles close{};
        for (const Doubles& s : statistic) close += select(s >= from, Doubles{} + 1.0, Doubles{});
        std::memcpy(out.largest + first, &largest, kBytes);
        std::memcpy(out.close + first, &close, kBytes);
    }
}

}  // namespace five_model

template <Instructions kInstructions>
void FiveModelKernel<kInstructions>::compute(const PlaneCounts* everybody, const PlaneCounts* cases,
                                             GroupSizes sizes, MarkerBlock& out) {
    five_model::make_tables<kInstructions>(everybody, cases, sizes, out.table);
    using Types = Register<kInstructions>;
    if (fits(sizes.cases, sizes.controls)) {
        five_model::compute_statistics<kInstructions, typename Types::Doubles, Types::kSize>(
            out.table, out.statistics);
    } else {
        five_model::compute_statistics<kInstructions, double, 1>(out.table, out.statistics);
    }
    five_model::find_leaders<kInstructions>(out.statistics, out.leaders);
}

}  // namespace vort
