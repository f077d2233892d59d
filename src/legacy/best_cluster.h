// Records of the base learners that a search kept.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "csm/cluster_record.h"
#include "legacy/bitset.h"

namespace vort {

// One kept marker set: the joint-genotype cells that occurred for it, and their division into
// groups. Cells are numbered from 1 (slot 0 is never a member), groups from 0. The engine's form of
// it is ClusterRecord, which does the work.
class BestClusterInformation {
  public:
    // A set of k markers out of m, its cells in g groups; everything else is 0.
    BestClusterInformation(unsigned k, unsigned g, int m);

    // From the engine's form, and to it.
    explicit BestClusterInformation(const ClusterRecord& record);
    ClusterRecord record() const;

    // Puts a cell, with its joint genotype code, into group q. 0, or -1 where there is no group q.
    int AddMemberInGroup(unsigned q, unsigned cell, unsigned code);

    // 0, or -1 where there is no group q.
    int WriteGroupFrequency(unsigned q, double frequency, double average);

    // 1 where a cell of group q has the code, else 0.
    int IncludeInGroup(unsigned code, unsigned q) const;

    // The first group with a cell of this code; 0 also where no group has one.
    int getcluster_num(int code) const;

    // Prints the codes of group q's cells and stores them in codes[0 .. *count-1]. Returns *count,
    // or -1 where q is negative or above the number of groups. q equal to that number is let pass
    // and finds nothing.
    int getGenotypeCode(int q, int* count, int* codes) const;

    // Prints the whole record, a value or a list in each line.
    void ShowMemberInGroup() const;

    // Appends the record's text block to a file, as number `number`. 1, or 0 where the file cannot
    // be opened.
    int Store(const char* file, int number) const;

    // The record of block `number` in a file; null where the block or a part of it is missing. A
    // block that contradicts itself ends the program.
    static std::unique_ptr<BestClusterInformation> ReStore(const char* file, int number);

    // A copy of `source`.
    std::unique_ptr<BestClusterInformation> clone(const BestClusterInformation* source) const;

    std::uint32_t slots;             // 3^k + 1
    int marker_total;                // m
    std::uint32_t group_count_copy;  // number of groups that are not empty, g until that is known
    std::uint32_t marker_count;      // k
    int combination_index = 0;       // 1-based number of the marker set among the k-subsets
    std::uint32_t group_num;         // g
    std::vector<bitset> group_members;         // g sets of `slots` positions
    std::vector<std::uint32_t> genotype_code;  // per slot
    std::vector<double> group_frequency;       // share of all individuals, per group
    std::vector<double> group_average;         // share of cases, per group
};

// The records of one search, in the order in which they were kept.
class BestClusterInformationArray {
  public:
    explicit BestClusterInformationArray(long capacity = 0);

    // Takes the record over and returns 0; where the array is full says so, returns -1, and the
    // record stays the caller's.
    int AddBestClusterInformation(BestClusterInformation* record);

    // Replaces the contents by the records of all blocks in a file, by number; a block that cannot
    // be read leaves a null. Returns how many there are, 0 where the file cannot be opened.
    int getbestmarker(const char* file);

    int count() const { return static_cast<int>(items.size()); }

    std::vector<std::unique_ptr<BestClusterInformation>> items;
    long capacity;  // most records that Add... takes; nothing is allocated for it
};

}  // namespace vort
