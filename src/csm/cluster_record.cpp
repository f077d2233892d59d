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
#include "csm/cluster_record.h"

namespace vort {

namespace {

void put_list(Transcript& out, const std::vector<double>& values) {
    for (const double value : values) out << general(value) << ' ';
    out << '\n';
}

void put_section(Transcript& out, const char* name, const std::vector<double>& values) {
    out << '<' << name << ">\n";
    put_list(out, values);
    out << "<\\" << name << ">\n";
}

}  // namespace

ClusterRecord::ClusterRecord(int k, int g, int m)
    : marker_count(k),
      marker_total(m),
      nonempty_groups(g),
      members(static_cast<std::size_t>(g), std::vector<bool>(k == 1 ? 4 : 10)),
      genotype_code(k == 1 ? 4 : 10),
      group_frequency(static_cast<std::size_t>(g)),
      group_average(static_cast<std::size_t>(g)) {}

bool ClusterRecord::includes(int code, int q) const {
    for (int slot = 0; slot < slots(); ++slot) {
        if (members[q][slot] && genotype_code[slot] == static_cast<std::uint32_t>(code)) {
            return true;
        }
    }
    return false;
}

int ClusterRecord::group_of(int code) const {
    for (int q = 0; q < groups(); ++q) {
        if (includes(code, q)) return q;
    }
    return 0;
}

ClusterRecord ClusterRecord::as_read_back() const {
    ClusterRecord read = *this;
    for (double& frequency : read.group_frequency)
        frequency = vort::as_read_back(general(frequency));
    for (double& average : read.group_average) average = vort::as_read_back(general(average));
    return read;
}

void ClusterRecord::show(Transcript& out) const {
    if (!out.wanted()) return;
    out << marker_count << '\n'
        << combination_index << '\n'
        << groups() << '\n'
        << nonempty_groups << '\n';
    for (int q = 0; q < groups(); ++q) {
        out << "Cluster order number of group number=" << q << '\n';
        for (int slot = 0; slot < slots(); ++slot) {
            if (members[q][slot]) out << slot << ' ';
        }
        out << '\n';
    }
    for (int q = 0; q < groups(); ++q) show_codes(q, out);
    out << "Group Frequency of " << groups() << " group\n";
    put_list(out, group_frequency);
    out << "Group Average of " << groups() << " group\n";
    put_list(out, group_average);
}

std::vector<int> ClusterRecord::show_codes(int q, Transcript& out) const {
    std::vector<int> codes;
    out << "GenotypeCode of group number=" << q << '\n';
    for (int slot = 0; slot < slots() && q < groups(); ++slot) {
        if (!members[q][slot]) continue;
        out << genotype_code[slot] << ' ';
        codes.push_back(static_cast<int>(genotype_code[slot]));
    }
    out << '\n';
    return codes;
}

std::string ClusterRecord::text(int number) const {
    Transcript out(true);
    out << "<number " << number << ">\n<Best Cluster Information>\n"
        << marker_count << ' ' << groups() << ' ' << marker_total << ' ' << combination_index << ' '
        << slots() << ' ' << nonempty_groups << '\n'
        << "<Cluster Information>\n";
    for (int q = 0; q < groups(); ++q) {
        out << q << '\n';
        for (int slot = 0; slot < slots(); ++slot) out << (members[q][slot] ? '1' : '0');
        out << '\n';
    }
    out << "\n<\\Cluster Information>\n<Genotype Code Information>\n";
    for (const std::uint32_t code : genotype_code) out << code << ' ';
    out << "\n<\\Genotype Code Information>\n";
    put_section(out, "Group Frequency Information", group_frequency);
    put_section(out, "Group Average Information", group_average);
    out << "\n<\\Best Cluster Information>\n<\\number " << number << ">\n";
    return std::string(out.text());
}

}  // namespace vort
