#include "legacy/best_cluster.h"

#include <iostream>

#include "common/output_file.h"
#include "legacy/default_objects.h"
#include "legacy/on_console.h"
#include "legacy/scalars.h"

namespace vort {

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

BestClusterInformation::BestClusterInformation(const ClusterRecord& record)
    : BestClusterInformation(static_cast<unsigned>(record.marker_count),
                             static_cast<unsigned>(record.groups()), record.marker_total) {
    group_count_copy = static_cast<std::uint32_t>(record.nonempty_groups);
    combination_index = record.combination_index;
    for (std::uint32_t q = 0; q < group_num; ++q) {
        for (std::uint32_t slot = 0; slot < slots; ++slot) {
            if (record.members[q][slot]) group_members[q].SetbitOne(slot);
        }
    }
    genotype_code = record.genotype_code;
    group_frequency = record.group_frequency;
    group_average = record.group_average;
}

ClusterRecord BestClusterInformation::record() const {
    ClusterRecord record(static_cast<int>(marker_count), static_cast<int>(group_num), marker_total);
    record.nonempty_groups = static_cast<int>(group_count_copy);
    record.combination_index = combination_index;
    for (std::uint32_t q = 0; q < group_num; ++q) {
        record.members[q].assign(slots, false);
        for (std::uint32_t slot = 0; slot < slots; ++slot) {
            record.members[q][slot] = group_members[q].GetAt(slot) != 0;
        }
    }
    record.genotype_code = genotype_code;
    record.group_frequency = group_frequency;
    record.group_average = group_average;
    return record;
}

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
    return record().includes(static_cast<int>(code), static_cast<int>(q)) ? 1 : 0;
}

int BestClusterInformation::getcluster_num(int code) const {
    return record().group_of(code);
}

int BestClusterInformation::getGenotypeCode(int q, int* count, int* codes) const {
    *count = 0;
    if (q < 0 || q > static_cast<int>(group_num)) {
        std::cout << "find getGenotypeCode input have error!\n";
        return -1;
    }
    for (const int code :
         on_console([&](Transcript& out) { return record().show_codes(q, out); })) {
        codes[(*count)++] = code;
    }
    return *count;
}

void BestClusterInformation::ShowMemberInGroup() const {
    on_console([this](Transcript& out) {
        record().show(out);
        return 0;
    });
}

int BestClusterInformation::Store(const char* file, int number) const {
    OutputFile out(file, OutputFile::Mode::kAppend, default_objects().diagnostics);
    if (!out.is_open()) return 0;
    out << record().text(number);
    return 1;
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
