#include "csm/best_cluster.h"

#include <algorithm>
#include <iostream>

#include "common/number_text.h"
#include "numeric/scalars.h"

namespace vort {

namespace {

void print_list(const std::vector<double>& values) {
    for (const double value : values) std::cout << general(value) << ' ';
    std::cout << '\n';
}

}  // namespace

BestClusterInformation::BestClusterInformation(unsigned k, unsigned g, int m)
    : slots(static_cast<std::uint32_t>(ipower(3, static_cast<int>(k))) + 1),
      marker_total(m),
      group_count_copy(g),
      marker_count(k),
      group_num(g),
      group_members(g, bitset(slots)),
      genotype_code(slots),
      group_frequency(g),
      group_average(g) {}

int BestClusterInformation::AddMemberInGroup(unsigned q, unsigned cell, unsigned code) {
    if (q >= group_num || cell >= slots) return -1;
    group_members[q].SetbitOne(cell);
    genotype_code[cell] = code;
    return 0;
}

int BestClusterInformation::WriteGroupFrequency(unsigned q, double frequency, double average) {
    if (q >= group_num) return -1;
    group_frequency[q] = frequency;
    group_average[q] = average;
    return 0;
}

int BestClusterInformation::IncludeInGroup(unsigned code, unsigned q) const {
    for (std::uint32_t slot = 0; slot < slots; ++slot) {
        if (group_members[q].GetAt(slot) != 0 && genotype_code[slot] == code) return 1;
    }
    return 0;
}

int BestClusterInformation::getcluster_num(int code) const {
    for (std::uint32_t q = 0; q < group_num; ++q) {
        if (IncludeInGroup(static_cast<unsigned>(code), q) != 0) return static_cast<int>(q);
    }
    return 0;
}

int BestClusterInformation::getGenotypeCode(int q, int* count, int* codes) const {
    *count = 0;
    if (q < 0 || q > static_cast<int>(group_num)) {
        std::cout << "find getGenotypeCode input have error!\n";
        return -1;
    }
    std::cout << "GenotypeCode of group number=" << q << '\n';
    for (std::uint32_t slot = 0; slot < slots && q < static_cast<int>(group_num); ++slot) {
        if (group_members[q].GetAt(slot) == 0) continue;
        std::cout << genotype_code[slot] << ' ';
        codes[(*count)++] = static_cast<int>(genotype_code[slot]);
    }
    std::cout << '\n';
    return *count;
}

void BestClusterInformation::ShowMemberInGroup() const {
    std::cout << marker_count << '\n'
              << combination_index << '\n'
              << group_num << '\n'
              << group_count_copy << '\n';
    for (std::uint32_t q = 0; q < group_num; ++q) {
        std::cout << "Cluster order number of group number=" << q << '\n';
        for (std::uint32_t slot = 0; slot < slots; ++slot) {
            if (group_members[q].GetAt(slot) != 0) std::cout << slot << ' ';
        }
        std::cout << '\n';
    }
    for (std::uint32_t q = 0; q < group_num; ++q) {
        std::cout << "GenotypeCode of group number=" << q << '\n';
        for (std::uint32_t slot = 0; slot < slots; ++slot) {
            if (group_members[q].GetAt(slot) != 0) std::cout << genotype_code[slot] << ' ';
        }
        std::cout << '\n';
    }
    std::cout << "Group Frequency of " << group_num << " group\n";
    print_list(group_frequency);
    std::cout << "Group Average of " << group_num << " group\n";
    print_list(group_average);
}

std::unique_ptr<BestClusterInformation> BestClusterInformation::clone(
    const BestClusterInformation* source) const {
    return std::make_unique<BestClusterInformation>(*source);
}

BestClusterInformationArray::BestClusterInformationArray(long capacity_wanted)
    : capacity(capacity_wanted) {}

int BestClusterInformationArray::AddBestClusterInformation(BestClusterInformation* record) {
    if (count() >= capacity) {
        std::cout << "There are some error for BestClusterInformationArray size\n";
        return -1;
    }
    items.emplace_back(record);
    return 0;
}

}  // namespace vort
