#include "screening/snp_index.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "common/diagnostics.h"
#include "common/end_program.h"
#include "common/text_input.h"
#include "screening/globals.h"

namespace vort {

namespace {

constexpr const char* kTableName = "Chromosome_SNP_Name.txt";
constexpr int kChromosomes = 26;
constexpr int kNameSlots = 1000000;
constexpr std::size_t kNameLength = 14;

using NameSlot = std::array<char, kNameLength + 1>;  // ended by NUL

// Slot i holds line i of the table.
struct NameTable {
    std::vector<NameSlot> all_SNP_name;
    std::vector<signed char> all_CHR_name;
};

// Markers on each chromosome, elements 1 to 26.
struct ChromosomeLengths {
    bool loaded = false;
    std::array<int, kChromosomes + 1> count{};
};

struct SnpIndex {
    NameTable names;
    bool names_loaded = false;
    bool names_loaded1 = false;
    ChromosomeLengths lengths;
    ChromosomeLengths lengths1;
    bool diagnosed = false;
};

SnpIndex& snp_index() {
    static SnpIndex held;
    return held;
}

struct TableEntry {
    int chromosome = 0;
    std::string name;
    long line = 0;
};

// The entry's chromosome is kept where the file ends before its name.
bool read_entry(TextInput& input, TableEntry& entry) {
    input.skip_space();
    entry.line = input.line_number();
    if (!input.integer(entry.chromosome)) return false;
    input.word(entry.name);
    return true;
}

void diagnose_entry(const TableEntry& entry, int chromosome_before) {
    if (entry.chromosome < 1 || entry.chromosome > kChromosomes) {
        diagnose("chromosomes out of range", kTableName, entry.line,
                 "chromosome " + std::to_string(entry.chromosome) + ", 1 to 26 expected");
    } else if (entry.chromosome < chromosome_before) {
        diagnose("chromosomes out of order", kTableName, entry.line,
                 "chromosome " + std::to_string(entry.chromosome) + " after " +
                     std::to_string(chromosome_before) +
                     ", ascending order expected; loci are counted as if it were");
    }
    if (entry.name.empty()) {
        diagnose("markers without a name", kTableName, entry.line, "a name was expected");
    } else if (entry.name.size() > kNameLength) {
        diagnose("names cut", kTableName, entry.line,
                 entry.name + " is longer than 14 characters and is cut");
    }
}

// The table ended too early, or at an entry that is none.
void diagnose_end(TextInput& input, long line, int entries) {
    if (input.peek() != EOF) {
        diagnose("chromosomes that are no number", kTableName, line,
                 "a chromosome number was expected; no entry from here on is read");
        return;
    }
    diagnose("tables that are short", kTableName, input.line_number(),
             std::to_string(entries) + " entries (a chromosome number and a name each), " +
                 std::to_string(Marker) + " expected; the other markers have no name");
}

// Hands the table's entries to `take`, numbered from 1, and diagnoses them the first time.
template <typename Take>
void read_table(TextInput& input, Take take) {
    const bool first_time = !std::exchange(snp_index().diagnosed, true);
    TableEntry entry;
    int chromosome_before = 0;
    for (int i = 1; i <= Marker; ++i) {
        if (!read_entry(input, entry)) {
            if (first_time) diagnose_end(input, entry.line, i - 1);
            return;
        }
        if (first_time) diagnose_entry(entry, chromosome_before);
        if (entry.chromosome <= kChromosomes) {
            chromosome_before = std::max(chromosome_before, entry.chromosome);
        }
        take(i, entry);
    }
    input.skip_space();
    if (first_time && input.peek() != EOF) {
        diagnose(
            "entries too many", kTableName, input.line_number(),
            "more than the " + std::to_string(Marker) + " entries expected; ignored from here on");
    }
}

void load_lengths(ChromosomeLengths& lengths) {
    if (lengths.loaded) return;
    TextInput input{kTableName};
    if (!input.is_open()) {
        std::cout << "open file " << kTableName << " have some error\n";
        end_program();
    }
    read_table(input, [&lengths](int, const TableEntry& entry) {
        if (entry.chromosome >= 1 && entry.chromosome <= kChromosomes) {
            ++lengths.count[entry.chromosome];
        }
    });
    lengths.loaded = true;
}

void load_names(bool& loaded) {
    if (std::exchange(loaded, true)) return;
    TextInput input{kTableName, "r+"};
    if (!input.is_open()) {
        std::cout << "open file " << kTableName << " find error\n";
        end_program();
    }
    NameTable& table = snp_index().names;
    const std::size_t slots = std::clamp(Marker, 0, kNameSlots - 1) + 1;
    table.all_SNP_name.assign(slots, NameSlot{});
    table.all_CHR_name.assign(slots, 0);
    if (Marker >= kNameSlots) {
        diagnose("names not kept", kTableName, kNameSlots,
                 "at most " + std::to_string(kNameSlots - 1) + " markers are named");
    }
    read_table(input, [&table, slots](int i, const TableEntry& entry) {
        if (static_cast<std::size_t>(i) >= slots) return;
        table.all_CHR_name[i] = static_cast<signed char>(entry.chromosome);
        entry.name.copy(table.all_SNP_name[i].data(), kNameLength);
    });
}

struct Place {
    int chromosome;
    int markers_before;  // on the chromosomes before it
};

Place place_of(const ChromosomeLengths& lengths, int index) {
    Place last{0, 0};  // of those with markers
    int total = 0;
    for (int c = 1; c <= kChromosomes; ++c) {
        const int before = total;
        total += lengths.count[c];
        if (index < total) return {c, before};
        if (total > before) last = {c, before};
    }
    return last;
}

const char* find_name(int m, int* chromosome, bool& loaded, int (*locate)(int, int*, int*),
                      int* locus) {
    load_names(loaded);
    locate(m, chromosome, locus);
    const NameTable& table = snp_index().names;
    if (m < 0 || static_cast<std::size_t>(m) >= table.all_CHR_name.size()) {
        *chromosome = 0;
        return "";
    }
    *chromosome = table.all_CHR_name[m];
    return table.all_SNP_name[m].data();
}

}  // namespace

int return_chromosome_and_locus(int m, int* chromosome, int* locus) {
    load_lengths(snp_index().lengths);
    const Place place = place_of(snp_index().lengths, m);
    *chromosome = place.chromosome;
    *locus = m - place.markers_before + 1;
    return *chromosome;
}

int return_chromosome_and_locus1(int m, int* chromosome, int* locus) {
    load_lengths(snp_index().lengths1);
    const Place place = place_of(snp_index().lengths1, m - 1);
    *chromosome = place.chromosome;
    *locus = m - place.markers_before;
    return *chromosome;
}

const char* findSNPname(int m, int* chromosome, int* locus) {
    return find_name(m, chromosome, snp_index().names_loaded, return_chromosome_and_locus, locus);
}

const char* findSNPname1(int m, int* chromosome, int* locus) {
    return find_name(m, chromosome, snp_index().names_loaded1, return_chromosome_and_locus1, locus);
}

void check_marker_table() {
    TextInput input{kTableName};
    if (input.is_open()) read_table(input, [](int, const TableEntry&) {});
}

void forget_snp_index() {
    snp_index() = SnpIndex();
}

}  // namespace vort
