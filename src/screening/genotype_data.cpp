#include "screening/genotype_data.h"

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "common/diagnostics.h"
#include "common/end_program.h"
#include "common/large_array.h"
#include "common/output_file.h"
#include "common/text_input.h"
#include "screening/genotype_row.h"
#include "screening/globals.h"

namespace vort {

namespace {

// What `X` and `Y` point into.
struct DataSet {
    LargeArray<char> codes;
    std::vector<char*> rows;
    std::vector<short> phenotypes;
};

DataSet& data_set() {
    static DataSet held;
    return held;
}

void read_header(TextInput& input) {
    std::string title;
    const long first_line = input.line_number();
    if (record == 1) input.word(title);
    input.word(title);
    for (int j = 0; j < Marker && input.good(); ++j) input.word(title);
    if (input.line_number() != first_line) {
        diagnose("headers that are no single line", inputfilename, input.line_number(),
                 "the header of " + std::to_string(Marker) +
                     " markers was expected to be one line; it ends here");
    } else if (int next = input.peek(); next != '\n' && next != '\r' && next != EOF) {
        diagnose("headers that are no single line", inputfilename, first_line,
                 "the header has more titles than " + std::to_string(Marker) +
                     " markers; the rest is read as data");
    }
}

std::string expected_genotypes(int count) {
    return std::to_string(count) + " genotypes, " + std::to_string(Marker) + " expected";
}

// In quotes, with a question mark for what cannot be printed.
std::string shown(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c >= ' ' && c <= '~' ? c : '?';
    return quoted + '\'';
}

// The character that ended a row too early.
void diagnose_stop(long line, int count, char c) {
    const std::string rest = "; the rest of the row is taken as missing";
    if (c == '\t') {
        diagnose("tabs between genotypes", inputfilename, line,
                 "a tab after " + expected_genotypes(count) + " with blanks between them" + rest);
    } else {
        diagnose("characters that are no genotype", inputfilename, line,
                 shown(std::string_view(&c, 1)) + " is no genotype code (0, 1, 2, -1), after " +
                     expected_genotypes(count) + rest);
    }
}

void diagnose_row(long line, std::string_view text, const ParsedRow& row) {
    if (row.lone_minus) {
        diagnose("minus signs without a digit", inputfilename, line,
                 "a missing genotype was expected to read -1; "
                 "the minus sign takes the character behind it along");
    }
    const char* end = text.data() + text.size();
    const char* behind =
        std::find_if(row.behind, end, [](char c) { return c != ' ' && c != '\r'; });
    if (row.count < Marker) {
        if (behind != end) return diagnose_stop(line, row.count, *behind);
        diagnose("rows with too few genotypes", inputfilename, line,
                 expected_genotypes(row.count) + "; the rest is taken as missing");
    } else if (behind != end) {
        diagnose("rows with too many genotypes", inputfilename, line,
                 "more than the " + std::to_string(Marker) + " genotypes expected; ignored from " +
                     shown(std::string_view(behind, end).substr(0, 12)) + " on");
    }
}

// False when the file has no readable row for this individual; nothing more is to be read then.
bool read_row(TextInput& input, char* codes, short& phenotype, int& given) {
    std::string identifier;
    if (record == 1) input.word(identifier);
    input.skip_space();
    const long line = input.line_number();
    if (!input.integer(phenotype)) {
        if (input.peek() != EOF) {
            diagnose("phenotypes that are no number", inputfilename, line,
                     "a phenotype was expected (0 or 1); no row from here on is read");
        }
        return false;
    }
    if (phenotype != 0 && phenotype != 1) {
        diagnose("phenotypes other than 0 and 1", inputfilename, line,
                 "phenotype " + std::to_string(phenotype) +
                     ", 0 or 1 expected; a control to the screening, a quantity to the model");
    }
    if (const int next = input.peek();
        next != EOF && next != ' ' && !(next >= '\t' && next <= '\r')) {
        diagnose("phenotypes that are no number", inputfilename, line,
                 "phenotype " + std::to_string(phenotype) +
                     " has something behind it, a blank was "
                     "expected; that is read as the first genotype");
    }
    std::string_view text;
    input.line(text);
    const ParsedRow row = parse_genotypes(text, Marker, codes);
    given = row.count;
    diagnose_row(line, text, row);
    return true;
}

void diagnose_rest(TextInput& input, int rows) {
    if (rows < Sample) {
        diagnose("rows missing", inputfilename, input.line_number(),
                 std::to_string(rows) + " rows could be read, " + std::to_string(Sample) +
                     " expected; the rest is taken as controls with missing genotypes");
        return;
    }
    input.skip_space();
    if (input.peek() != EOF) {
        diagnose(
            "rows too many", inputfilename, input.line_number(),
            "more than the " + std::to_string(Sample) + " rows expected; ignored from here on");
    }
}

void diagnose_groups(int cases) {
    if (Sample > 0 && (cases == 0 || cases == Sample)) {
        diagnose("data sets of one group", inputfilename, 0,
                 cases == 0 ? "cases and controls were expected, there are only controls"
                            : "cases and controls were expected, there are only cases");
    }
}

void dump_group(std::ostream& out, bool cases) {
    for (int i = 0; i < Sample; ++i) {
        if ((Y[i] == 1) != cases) continue;
        out << Y[i];
        for (int j = 0; j < std::min(Marker, 100); ++j) out << ' ' << static_cast<int>(X[i][j]);
        out << '\n';
    }
}

void dump_data_set(const char* announcement, const char* path) {
    std::ostringstream text;
    dump_group(text, true);
    dump_group(text, false);
    std::cout << announcement << text.str();
    OutputFile file(path, OutputFile::Mode::kTruncate);
    file << text.str();
}

}  // namespace

int read_data(char** genotypes, short* phenotypes) {
    TextInput input{inputfilename};
    if (!input.is_open()) {
        std::cout << "file open " << inputfilename << " not good\n";
        end_program();
    }
    if (head == 1) read_header(input);
    int cases = 0;
    int rows = 0;
    for (int i = 0; i < Sample; ++i) {
        int given = 0;
        phenotypes[i] = 0;
        if (rows == i && read_row(input, genotypes[i], phenotypes[i], given)) ++rows;
        std::fill(genotypes[i] + given, genotypes[i] + std::max(Marker, 0), static_cast<char>(-1));
        if (phenotypes[i] == 1) ++cases;
    }
    diagnose_rest(input, rows);
    diagnose_groups(cases);
    samplesize[0] = Sample - cases;
    samplesize[1] = cases;
    std::cout << "read data is finished\n" << std::flush;
    write_current(0);
    write_input(0);
    return 0;
}

void load_data_set_once() {
    if (exist_X_Y_data != 0) return;
    DataSet& data = data_set();
    const auto markers = static_cast<std::size_t>(std::max(Marker, 0));
    const auto individuals = static_cast<std::size_t>(std::max(Sample, 0));
    data.rows.reserve(individuals);
    data.codes = LargeArray<char>(individuals * markers);
    for (std::size_t i = 0; i < individuals; ++i) {
        data.rows.push_back(data.codes.data() + i * markers);
    }
    data.phenotypes.assign(individuals + 1, 0);
    X = data.rows.data();
    Y = data.phenotypes.data();
    exist_X_Y_data = 1;
    read_data(X, Y);
}

void release_data_set() {
    data_set() = DataSet();
    X = nullptr;
    Y = nullptr;
    exist_X_Y_data = 0;
}

void write_input(int wanted) {
    if (wanted != 0) dump_data_set("begin print inputfile for readme ", "inputfile.txt");
}

void write_current(int wanted) {
    if (wanted != 0) dump_data_set("begin print current for readme file", "current_file.txt");
}

}  // namespace vort
