// What the builder keeps of a marker set: its genotype cells, and their division into groups.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/transcript.h"

namespace vort {

// Cells are numbered from 1, in slots 0 .. 3^k of which slot 0 is never a member; groups from 0.
struct ClusterRecord {
    // A set of k markers (1 or 2) out of m, its cells in g groups; everything else is 0.
    ClusterRecord(int k, int g, int m);

    int slots() const { return static_cast<int>(genotype_code.size()); }
    int groups() const { return static_cast<int>(members.size()); }

    // Whether a cell of group q has this joint genotype code.
    bool includes(int code, int q) const;
    // The first group with a cell of this code; 0 also where none has one.
    int group_of(int code) const;

    // The share of group q makes a column of the design matrix: all but the last group that is not
    // empty do whose share lies strictly between 0 and 1.
    bool is_column(int q) const { return group_frequency[q] > 0 && group_frequency[q] < 1; }
    // Groups that may be columns.
    int candidate_columns() const { return nonempty_groups - 1; }

    // As a reader of text() gets it: shares with six significant digits.
    ClusterRecord as_read_back() const;

    // The whole record, a value or a list in each line.
    void show(Transcript& out) const;
    // Prints the codes of group q's cells, and returns them. A q past the last group has none.
    std::vector<int> show_codes(int q, Transcript& out) const;

    // The record's text block as number `number` of a file; see cluster_record.cpp.
    std::string text(int number) const;

    int marker_count;                        // k
    int marker_total;                        // m
    int combination_index = 0;               // 1-based number of the marker set among the k-subsets
    int nonempty_groups;                     // g until that is known
    std::vector<std::vector<bool>> members;  // [group][slot]
    std::vector<std::uint32_t> genotype_code;  // of each slot
    std::vector<double> group_frequency;       // share of all individuals
    std::vector<double> group_average;         // share of cases
};

}  // namespace vort
