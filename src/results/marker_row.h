// One line of markers.tsv: what a run knows of one marker.
#pragma once

#include <array>
#include <limits>
#include <string_view>

namespace vort {

constexpr double kNotAvailable = std::numeric_limits<double>::quiet_NaN();

// A statistic and its p-value; not a number where there is none.
struct TestResult {
    double chisq = kNotAvailable;
    double p = kNotAvailable;
};

// Genotype counts of a group, by copies of A1, and individuals without a genotype.
struct GroupCounts {
    std::array<int, 3> copies{};
    int missing = 0;
};

struct MarkerRow {
    // The texts belong to whoever made the row.
    int chromosome = 0;  // 1 to 26
    std::string_view name;
    long position = 0;
    std::string_view a1;  // counted
    std::string_view a2;

    GroupCounts cases;
    GroupCounts controls;

    TestResult additive, dominant, recessive, genotype;
    int genotype_df = 0;
    std::string_view model;  // of the smallest p-value: ADD, DOM, REC or GENO; empty: none
    double p_min = kNotAvailable;
    int rank = 0;                 // from 1; 0: not known
    double emp1 = kNotAvailable;  // by this marker's permuted p-values
    double emp2 = kNotAvailable;  // by the smallest of each permuted data set
    bool in_model = false;

    // Too many genotypes are missing: not available in any test, and without a rank.
    bool dropped() const { return rank == 0 && !(p_min >= 0); }
};

}  // namespace vort
