// Where a marker lies and what it is called.
//
// The table has a line for each marker, in the order of the genotype columns and grouped by
// chromosome in ascending order: a chromosome number (1 to 26) and a name, of which 14 characters
// count.
//
// Two numberings meet here. Places count m from 0 or from 1, as the caller says. Names are those of
// slot m, and slots count from 1; slot 0 is empty, with chromosome 0. What that does to the names
// of the final report: docs/method.md, section 10.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/diagnostics.h"
#include "common/text_input.h"
#include "genotypes/marker_info.h"

namespace vort {

class MarkerTable {
  public:
    enum class Numbering { kFromZero, kFromOne };

    struct Place {
        int chromosome;  // the last one that has markers, for a marker past the table
        int locus;       // from 1, within the chromosome
    };
    struct Entry {
        std::string_view name;  // lives as long as the table
        int chromosome;         // of the slot; 0 outside the table
        int locus;
    };

    static constexpr std::size_t kNameLength = 14;
    static constexpr int kMostNamed = 999999;

    // Without markers.
    MarkerTable() = default;

    // Reads the first `markers` entries of a file, now; what is wrong with it is kept.
    static MarkerTable from_file(const std::string& path, int markers);
    static MarkerTable from_markers(std::span<const MarkerInfo> markers);

    // Says on standard error what is wrong with the table, so that nobody learns it after hours.
    // One that could not be read to its end stops the run.
    void check(Diagnostics& diagnostics) const;

    // A table that cannot be opened stops the run when it is first looked at: the places need it
    // to be readable, the names to be writable, too.
    Place locate(int m, Numbering numbering) const;
    Entry find(int m, Numbering numbering) const;

    // The table as a file.
    std::string text() const;

  private:
    static constexpr int kChromosomes = 26;

    struct Fault {
        std::string_view kind;
        long line;
        std::string text;
    };

    void read(int markers);
    void read_entries(TextInput& input, int markers);
    void fault_of_end(TextInput& input, long line, int entries, int markers);
    void add(int chromosome, std::string_view name);
    void check_entry(int chromosome, int before, std::string_view name, long line);
    void fault(std::string_view kind, long line, std::string text);

    std::string path_;
    int read_failure_ = 0;   // errno of opening it for reading
    int write_failure_ = 0;  // and for reading and writing
    int broken_off_ = 0;     // why reading ended before the file did
    long broken_line_ = 0;   // and where
    std::vector<Fault> faults_;
    std::vector<std::string> names_{""};  // by slot
    std::vector<signed char> chromosomes_{0};
    std::array<int, kChromosomes + 1> counts_{};  // markers on each chromosome
};

}  // namespace vort
