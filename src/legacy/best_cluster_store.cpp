// Records read back from their text blocks (csm/cluster_record.cpp).
#include <cstdlib>
#include <iostream>
#include <map>
#include <string>

#include "legacy/best_cluster.h"
#include "legacy/tagged_file.h"

namespace vort {

namespace {

constexpr const char* kNumberTag = "<number ";

// More markers in a set, or more groups, than any search makes.
constexpr unsigned kMostMarkers = 2;
constexpr unsigned kMostGroups = 10;

[[noreturn]] void end_on_malformed_record(const std::string& details) {
    std::cout << "find error in BCI file " << details << '\n';
    std::exit(0);
}

void read_members(Myfstream& file, BestClusterInformation& record) {
    for (bitset& members : record.group_members) {
        int group = 0;
        file >> group;
        char character = ' ';
        while (file.get(character) && character != '0' && character != '1') {
        }
        for (std::uint32_t slot = 0; slot < record.slots; ++slot) {
            if (!file || (character != '0' && character != '1')) {
                end_on_malformed_record("in group " + std::to_string(group) + ", slot " +
                                        std::to_string(slot));
            }
            if (character == '1') members.SetbitOne(slot);
            if (slot + 1 < record.slots) file.get(character);
        }
    }
}

// Reads one record from behind its number tag on.
std::unique_ptr<BestClusterInformation> read_record(Myfstream& file) {
    if (file.find("<Best Cluster Information>") == 0) return nullptr;
    unsigned k = 0;
    unsigned g = 0;
    int m = 0;
    file >> k >> g >> m;
    if (!file || k < 1 || k > kMostMarkers || g > kMostGroups) {
        end_on_malformed_record("with " + std::to_string(k) + " markers in " + std::to_string(g) +
                                " groups");
    }
    auto record = std::make_unique<BestClusterInformation>(k, g, m);
    std::uint32_t slots = 0;
    file >> record->combination_index >> slots >> record->group_count_copy;
    if (!file || slots != record->slots || record->group_count_copy > g) {
        end_on_malformed_record("with " + std::to_string(slots) + " slots");
    }
    if (file.find("<Cluster Information>") == 0) return nullptr;
    read_members(file, *record);
    if (file.find("<Genotype Code Information>") == 0) return nullptr;
    for (std::uint32_t& code : record->genotype_code) file >> code;
    if (file.find("<Group Frequency Information>") == 0) return nullptr;
    for (double& frequency : record->group_frequency) file >> frequency;
    if (file.find("<Group Average Information>") == 0) return nullptr;
    for (double& average : record->group_average) file >> average;
    return record;
}

}  // namespace

std::unique_ptr<BestClusterInformation> BestClusterInformation::ReStore(const char* file,
                                                                        int number) {
    Myfstream input(file);
    if (input.find(kNumberTag + std::to_string(number) + ">") == 0) return nullptr;
    return read_record(input);
}

int BestClusterInformationArray::getbestmarker(const char* file) {
    items.clear();
    Myfstream input(file);
    if (!input.is_open()) return 0;
    std::map<int, long> behind_tag;  // the first block of each number counts
    for (long at = input.find(kNumberTag); at != 0; at = input.find(kNumberTag)) {
        int number = 0;
        if (!(input >> number)) continue;
        // A file cannot hold more blocks than characters; beyond that a number is damage.
        if (number >= 0 && number < input.size()) behind_tag.emplace(number, at);
    }
    if (behind_tag.empty()) return 0;
    items.resize(static_cast<std::size_t>(behind_tag.rbegin()->first) + 1);
    capacity = count();
    for (const auto& [number, position] : behind_tag) {
        input.go_to(position);
        items[number] = read_record(input);
    }
    return count();
}

}  // namespace vort
