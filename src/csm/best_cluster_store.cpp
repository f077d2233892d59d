// Records as tagged text blocks.
//
// The blocks stand behind the design matrix in the same file. A block names its number at both
// ends, so that a reader finds it whatever surrounds it; every closing tag begins with a backslash:
//
//     <number 0>
//     <Best Cluster Information>
//     1 2 5 2 4 2                          k, groups, markers, set number, slots, groups not empty
//     <Cluster Information>
//     0                                    group 0 ...
//     0110                                 ... has cells 1 and 2
//     1
//     0001
//
//     <\Cluster Information>
//     ...                                  codes per slot, frequencies and averages per group
//     <\number 0>
#include <iostream>
#include <map>
#include <string>

#include "common/end_program.h"
#include "common/number_text.h"
#include "common/output_file.h"
#include "csm/best_cluster.h"
#include "csm/tagged_file.h"
#include "numeric/scalars.h"

namespace vort {

namespace {

constexpr const char* kNumberTag = "<number ";

// More markers in a set, or more groups, than any search makes.
constexpr unsigned kMostMarkers = 2;
constexpr unsigned kMostGroups = 10;

[[noreturn]] void end_on_malformed_record(const std::string& details) {
    std::cout << "find error in BCI file " << details << '\n';
    end_program();
}

void write_list(OutputFile& out, const char* name, const std::vector<double>& values) {
    out << '<' << name << ">\n";
    for (const double value : values) out << general(value) << ' ';
    out << "\n<\\" << name << ">\n";
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

int BestClusterInformation::Store(const char* file, int number) const {
    OutputFile out(file, OutputFile::Mode::kAppend);
    if (!out.is_open()) return 0;
    out << kNumberTag << number << ">\n<Best Cluster Information>\n";
    out << marker_count << ' ' << group_num << ' ' << marker_total << ' ' << combination_index
        << ' ' << slots << ' ' << group_count_copy << '\n';
    out << "<Cluster Information>\n";
    for (std::uint32_t q = 0; q < group_num; ++q) {
        out << q << '\n';
        for (std::uint32_t slot = 0; slot < slots; ++slot) {
            out << (group_members[q].GetAt(slot) != 0 ? '1' : '0');
        }
        out << '\n';
    }
    out << "\n<\\Cluster Information>\n<Genotype Code Information>\n";
    for (const std::uint32_t code : genotype_code) out << code << ' ';
    out << "\n<\\Genotype Code Information>\n";
    write_list(out, "Group Frequency Information", group_frequency);
    write_list(out, "Group Average Information", group_average);
    out << "\n<\\Best Cluster Information>\n<\\number " << number << ">\n";
    return 1;
}

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
