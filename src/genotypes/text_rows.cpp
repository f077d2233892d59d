#include "genotypes/text_rows.h"

#include <algorithm>
#include <cerrno>

#include "common/characters.h"
#include "common/odd_files.h"
#include "common/stop.h"

namespace vort {

namespace {

constexpr std::string_view kUnreadable = "files that cannot be read";
constexpr std::string_view kNoPhenotype = "phenotypes that are no number";

std::string expected_genotypes(int given, int markers) {
    return std::to_string(given) + " genotypes, " + std::to_string(markers) + " expected";
}

// In quotes, with a question mark for what cannot be printed.
std::string shown(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c >= ' ' && c <= '~' ? c : '?';
    return quoted + '\'';
}

// The character that ended a row too early.
Remark early_end(const TextDataSet& settings, long line, int given, char c) {
    const std::string number = expected_genotypes(given, settings.markers);
    const std::string rest = "; the rest of the row is taken as missing";
    if (c == '\t') {
        return {"tabs between genotypes", line,
                "a tab after " + number + " with blanks between them" + rest};
    }
    return {"characters that are no genotype", line,
            shown(std::string_view(&c, 1)) + " is no genotype code (0, 1, 2, -1), after " + number +
                rest};
}

}  // namespace

void remark_on_row(const TextDataSet& settings, long line, int given, bool lone_minus,
                   std::string_view rest, std::vector<Remark>& remarks) {
    if (lone_minus) {
        remarks.push_back({"minus signs without a digit", line,
                           "a missing genotype was expected to read -1; "
                           "the minus sign takes the character behind it along"});
    }
    rest.remove_prefix(std::min(rest.find_first_not_of(" \r"), rest.size()));
    if (given < settings.markers) {
        if (!rest.empty()) {
            remarks.push_back(early_end(settings, line, given, rest.front()));
        } else {
            remarks.push_back(
                {"rows with too few genotypes", line,
                 expected_genotypes(given, settings.markers) + "; the rest is taken as missing"});
        }
    } else if (!rest.empty()) {
        remarks.push_back({"rows with too many genotypes", line,
                           "more than the " + std::to_string(settings.markers) +
                               " genotypes expected; ignored from " + shown(rest.substr(0, 12)) +
                               " on"});
    }
}

TextInput TextRows::opened(const std::string& path, Diagnostics& diagnostics) {
    tell_pipe(path, diagnostics);
    return TextInput(path);
}

TextRows::TextRows(const TextDataSet& settings, Diagnostics& diagnostics)
    : settings_(settings), diagnostics_(diagnostics), input_(opened(settings.file, diagnostics)) {
    if (!input_.is_open()) {
        if (input_.open_error() == EISDIR) {
            say(kUnreadable, 0, "is a directory; a file was expected");
        } else if (input_.open_error() != ENOENT) {
            say(kUnreadable, 0, "cannot be opened (" + reason_text(input_.open_error()) + ')');
        }
        stop("file open " + settings_.file + " not good\n");
    }
    tell_byte_order_mark(input_, settings_.file, diagnostics_);
    if (settings_.head == 1) read_header();
}

void TextRows::say(std::string_view kind, long line, const std::string& text) {
    diagnostics_.say(kind, settings_.file, line, text);
}

void TextRows::fail(long line, int reason) {
    say(kUnreadable, line,
        "could not be read on (" + reason_text(reason) +
            "); nothing is analysed without the whole file");
    stop("", 1);
}

void TextRows::read_header() {
    std::string title;
    const long first_line = input_.line_number();
    if (settings_.record == 1) input_.word(title);
    input_.word(title);
    for (int j = 0; j < settings_.markers && input_.good(); ++j) input_.word(title);
    const long line = input_.line_number();
    const int next = input_.peek();
    if (input_.read_error() != 0) fail(line, input_.read_error());
    if (line != first_line) {
        say("headers that are no single line", line,
            "the header of " + std::to_string(settings_.markers) +
                " markers was expected to be one line; it ends here");
    } else if (next != '\n' && next != '\r' && next != EOF) {
        say("headers that are no single line", first_line,
            "the header has more titles than " + std::to_string(settings_.markers) +
                " markers; the rest is read as data");
    }
}

// False when the file has no readable row for this individual; nothing more is to be read then.
bool TextRows::read_row(RowStrip& strip, short& phenotype) {
    std::string identifier;
    if (settings_.record == 1) input_.word(identifier);
    input_.skip_space();
    const long line = input_.line_number();
    if (!input_.integer(phenotype)) {
        if (input_.peek() != EOF) {
            strip.remarks.push_back(
                {kNoPhenotype, line,
                 "a phenotype was expected (0 or 1); no row from here on is read"});
        }
        return false;
    }
    if (phenotype != 0 && phenotype != 1) {
        strip.remarks.push_back(
            {"phenotypes other than 0 and 1", line,
             "phenotype " + std::to_string(phenotype) +
                 ", 0 or 1 expected; a control to the screening, a quantity to the model"});
    }
    const int next = input_.peek();
    if (next != EOF && !is_space(next)) {
        strip.remarks.push_back({kNoPhenotype, line,
                                 "phenotype " + std::to_string(phenotype) +
                                     " has something behind it, a blank was "
                                     "expected; that is read as the first genotype"});
    }
    const std::size_t from = strip.text.used;
    input_.append_line(strip.text);
    strip.rows.push_back({from, strip.text.used - from, line, strip.remarks.size()});
    return true;
}

void TextRows::read(int most, RowStrip& strip, short* phenotypes) {
    strip.text.used = 0;
    strip.rows.clear();
    strip.remarks.clear();
    strip.read_error = 0;
    for (int r = 0; r < most && !ended_; ++r) {
        const std::size_t remarks = strip.remarks.size();
        short phenotype = 0;
        ended_ = !read_row(strip, phenotype);
        strip.read_error = input_.read_error();
        if (strip.read_error != 0) {  // half a row
            ended_ = true;
            strip.rows.resize(std::min(strip.rows.size(), static_cast<std::size_t>(r)));
            strip.remarks.resize(remarks);
        }
        if (ended_) return;
        phenotypes[r] = phenotype;
        ++rows_;
    }
}

void TextRows::diagnose_number_of_rows() {
    const int expected = std::max(settings_.individuals, 0);
    if (rows_ < expected) {
        say("rows missing", input_.line_number(),
            std::to_string(rows_) + " rows could be read, " +
                std::to_string(settings_.individuals) +
                " expected; the rest is taken as controls with missing genotypes");
        return;
    }
    input_.skip_space();
    const int next = input_.peek();
    if (input_.read_error() != 0) fail(input_.line_number(), input_.read_error());
    if (next != EOF) {
        say("rows too many", input_.line_number(),
            "more than the " + std::to_string(settings_.individuals) +
                " rows expected; ignored from here on");
    }
}

}  // namespace vort
