#include "legacy/record_file.h"

#include <map>
#include <string>

#include "common/stop.h"

namespace vort {

namespace {

constexpr const char* kNumberTag = "<number ";

// More markers in a set, or more groups, than any search makes.
constexpr unsigned kMostMarkers = 2;
constexpr unsigned kMostGroups = 10;

[[noreturn]] void end_on_malformed_record(const std::string& details) {
    stop("find error in BCI file " + details + '\n');
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
std::unique_ptr<BestClusterInformation> read_block(Myfstream& file) {
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

std::unique_ptr<BestClusterInformation> read_record(Myfstream& file, int number) {
    if (file.find(kNumberTag + std::to_string(number) + ">") == 0) return nullptr;
    return read_block(file);
}

std::vector<std::unique_ptr<BestClusterInformation>> read_records(Myfstream& file) {
    std::map<int, long> behind_tag;  // the first block of each number counts
    for (long at = file.find(kNumberTag); at != 0; at = file.find(kNumberTag)) {
        int number = 0;
        if (!(file >> number)) continue;
        // A file cannot hold more blocks than characters; beyond that a number is damage.
        if (number >= 0 && number < file.size()) behind_tag.emplace(number, at);
    }
    std::vector<std::unique_ptr<BestClusterInformation>> records;
    if (behind_tag.empty()) return records;
    records.resize(static_cast<std::size_t>(behind_tag.rbegin()->first) + 1);
    for (const auto& [number, position] : behind_tag) {
        file.go_to(position);
        records[static_cast<std::size_t>(number)] = read_block(file);
    }
    return records;
}

}  // namespace vort
