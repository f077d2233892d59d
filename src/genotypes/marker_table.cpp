#include "genotypes/marker_table.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

#include "common/stop.h"
#include "common/text_input.h"

namespace vort {

namespace {

// What is the matter with a table itself; other failures to open it, as a lack of descriptors, may
// not be there at the next attempt.
bool stays(int error) {
    constexpr std::array kReasons = {ENOENT, EACCES, EPERM, EROFS, EISDIR, ENOTDIR, ELOOP};
    return std::ranges::find(kReasons, error) != kReasons.end();
}

}  // namespace

MarkerTable MarkerTable::from_file(const std::string& path, int markers) {
    MarkerTable table;
    table.path_ = path;
    table.read(markers);
    return table;
}

MarkerTable MarkerTable::from_markers(std::span<const MarkerInfo> markers) {
    MarkerTable table;
    for (const MarkerInfo& marker : markers) table.add(marker.chromosome, marker.name);
    return table;
}

void MarkerTable::fault(std::string_view kind, long line, std::string text) {
    faults_.push_back({kind, line, std::move(text)});
}

void MarkerTable::add(int chromosome, std::string_view name) {
    if (chromosome >= 1 && chromosome <= kChromosomes) ++counts_[chromosome];
    if (names_.size() > kMostNamed) return;
    // A name ends at its first NUL, as the texts that it goes into did.
    names_.emplace_back(name.substr(0, std::min(name.find('\0'), kNameLength)));
    chromosomes_.push_back(static_cast<signed char>(chromosome));
}

void MarkerTable::check_entry(int chromosome, int before, std::string_view name, long line) {
    if (chromosome < 1 || chromosome > kChromosomes) {
        fault("chromosomes out of range", line,
              "chromosome " + std::to_string(chromosome) + ", 1 to 26 expected");
    } else if (chromosome < before) {
        fault("chromosomes out of order", line,
              "chromosome " + std::to_string(chromosome) + " after " + std::to_string(before) +
                  ", ascending order expected; loci are counted as if it were");
    }
    if (name.empty()) {
        fault("markers without a name", line, "a name was expected");
    } else if (name.size() > kNameLength) {
        fault("names cut", line, std::string(name) + " is longer than 14 characters and is cut");
    }
}

void MarkerTable::read(int markers) {
    // Opening a pipe and closing it again would cost its writer what it has to say.
    std::error_code unseen;
    if (!std::filesystem::is_fifo(path_, unseen)) {
        write_failure_ = TextInput(path_, "r+").open_error();
    }
    TextInput input(path_);
    read_failure_ = input.open_error();
    if (read_failure_ != 0) return;
    if (markers > kMostNamed) {
        fault("names not kept", kMostNamed + 1,
              "at most " + std::to_string(kMostNamed) + " markers are named");
    }
    if (input.has_byte_order_mark()) {
        fault("byte order marks", 1,
              "begins with a byte order mark, which is no part of a number; save the file as UTF-8 "
              "without one");
    }
    read_entries(input, markers);
    broken_off_ = input.read_error();
    broken_line_ = input.line_number();
}

void MarkerTable::read_entries(TextInput& input, int markers) {
    int before = 0;
    std::string name;
    for (int i = 1; i <= markers; ++i) {
        input.skip_space();
        const long line = input.line_number();
        int chromosome = 0;
        if (!input.integer(chromosome)) {
            fault_of_end(input, line, i - 1, markers);
            return;
        }
        input.word(name);
        check_entry(chromosome, before, name, line);
        if (chromosome <= kChromosomes) before = std::max(before, chromosome);
        add(chromosome, name);
    }
    input.skip_space();
    if (input.peek() != EOF) {
        fault(
            "entries too many", input.line_number(),
            "more than the " + std::to_string(markers) + " entries expected; ignored from here on");
    }
}

void MarkerTable::fault_of_end(TextInput& input, long line, int entries, int markers) {
    if (input.peek() != EOF) {
        fault("chromosomes that are no number", line,
              "a chromosome number was expected; no entry from here on is read");
    } else {
        fault("tables that are short", input.line_number(),
              std::to_string(entries) + " entries (a chromosome number and a name each), " +
                  std::to_string(markers) + " expected; the other markers have no name");
    }
}

void MarkerTable::check(Diagnostics& diagnostics) const {
    if (broken_off_ != 0) {
        diagnostics.say("tables that cannot be read", path_, broken_line_,
                        "could not be read on (" + reason_text(broken_off_) +
                            "); nothing is analysed without the whole file");
        stop("", 1);
    }
    for (const Fault& fault : faults_) diagnostics.say(fault.kind, path_, fault.line, fault.text);
    const int failure = read_failure_ != 0 ? read_failure_ : write_failure_;
    if (failure == 0) return;
    diagnostics.say("tables that cannot be used", path_, 0,
                    "cannot be opened (" + reason_text(failure) +
                        "), for reading and writing as expected" +
                        (stays(failure) ? "; a model would be reported without the names of its "
                                          "markers"
                                        : ""));
    if (!stays(failure)) stop("", 1);
}

MarkerTable::Place MarkerTable::locate(int m, Numbering numbering) const {
    if (read_failure_ != 0) stop("open file " + path_ + " have some error\n");
    const int index = numbering == Numbering::kFromOne ? m - 1 : m;
    Place last{0, 0};  // of those with markers
    int before = 0;
    for (int c = 1; c <= kChromosomes; ++c) {
        const int behind = before + counts_[c];
        if (behind > before || index < behind) last = {c, index - before + 1};
        if (index < behind) break;
        before = behind;
    }
    if (last.chromosome == 0) last.locus = index + 1;
    return last;
}

MarkerTable::Entry MarkerTable::find(int m, Numbering numbering) const {
    const int locus = locate(m, numbering).locus;
    if (write_failure_ != 0) stop("open file " + path_ + " find error\n");
    if (m < 0 || static_cast<std::size_t>(m) >= names_.size()) return {"", 0, locus};
    return {names_[m], chromosomes_[m], locus};
}

std::string MarkerTable::text() const {
    std::string text;
    for (std::size_t i = 1; i < names_.size(); ++i) {
        text += std::to_string(chromosomes_[i]) + '\t' + names_[i] + '\n';
    }
    return text;
}

}  // namespace vort
