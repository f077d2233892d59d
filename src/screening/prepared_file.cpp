// A prepared file holds the phenotypes in its first line, a digit and a blank each, then a line
// for each of the best markers: the 0-based column and the eight genotype counts of the five-model
// test, cases first, each followed by a tab. Its name tells the data set's number and the share
// of missing genotypes that the ranking allowed, e.g. "prepare_data0_0.050000.txt".
#include "screening/prepared_file.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>

#include "common/diagnostics.h"
#include "common/end_program.h"
#include "common/number_text.h"
#include "common/output_file.h"
#include "common/text_input.h"
#include "screening/five_model_test.h"
#include "screening/genotype_data.h"
#include "screening/globals.h"
#include "screening/screening.h"

namespace vort {

namespace {

int files_saved = 0;
int files_read = 0;

std::string prepared_file_name(int n) {
    std::string name = Datapath + "prepare_data" + std::to_string(n);
    if (not_over_missing_marker_drop_ratio != 1.0) {
        name += '_';
        name += fixed(not_over_missing_marker_drop_ratio).view();
    }
    return name + ".txt";
}

int prepared_length() {
    return std::min(Save_marker_length, Marker);
}

void write_marker(OutputFile& file, int column) {
    double pvalue[4];
    GenotypeCounts counts[2];
    calculate_pvalue4_and_freq(Y, X, Marker, Sample, column, pvalue, counts[0].count,
                               counts[1].count);
    file << column << '\t';
    for (const GenotypeCounts& group : counts) {
        for (const int count : group.count) file << count << '\t';
    }
    file << '\n';
}

void check_turn(int n) {
    if (n == files_read) return;
    std::cout << "find error when open prepare data file current num=" << files_read
              << " but permut=" << n << '\n';
    end_program();
}

void read_phenotypes(TextInput& input, const std::string& name) {
    std::string_view line;
    input.line(line);
    for (int i = 0; i < Sample; ++i) {
        const std::size_t at = 2 * static_cast<std::size_t>(i);
        if (at >= line.size()) {
            diagnose("phenotypes missing", name, 1,
                     std::to_string(i) + " phenotypes, " + std::to_string(Sample) +
                         " expected; the others are taken as 0");
            std::fill(Y + i, Y + Sample, static_cast<short>(0));
            return;
        }
        Y[i] = static_cast<short>(line[at] - '0');
        const bool followed = at + 1 == line.size() || line[at + 1] == ' ';
        if ((line[at] != '0' && line[at] != '1') || !followed) {
            diagnose("prepared phenotypes other than 0 and 1", name, 1,
                     "0 or 1 and a blank were expected for individual " + std::to_string(i + 1));
        }
    }
    if (line.find_first_not_of(' ', 2 * static_cast<std::size_t>(Sample)) != line.npos) {
        diagnose("prepared phenotypes too many", name, 1,
                 "more than the " + std::to_string(Sample) + " phenotypes expected");
    }
}

void read_ranking(TextInput& input, const std::string& name, int* ranking) {
    for (int k = 0; k < prepared_length(); ++k) {
        int column = 0;
        int count = 0;
        input.skip_space();
        const long line = input.line_number();
        input.integer(column);
        for (int c = 0; c < 8; ++c) input.integer(count);
        if (input.failed()) {
            diagnose("marker lines that cannot be used", name, line,
                     "a column and eight counts were expected; column 0 is taken from here on");
            std::fill(ranking + k, ranking + prepared_length(), 0);
            return;
        }
        if (column < 0 || column >= Marker) {
            diagnose("marker lines that cannot be used", name, line,
                     "a column below " + std::to_string(Marker) + " was expected, not " +
                         std::to_string(column) + "; column 0 is taken");
            column = 0;
        }
        ranking[k] = column;
    }
}

}  // namespace

void save_prepared_file(const std::vector<int>& order) {
    OutputFile file(prepared_file_name(files_saved++), OutputFile::Mode::kTruncate);
    if (!file.is_open()) {
        std::cout << "find error open f_prepare_data_for_VORT \n";
        end_program();
    }
    for (int i = 0; i < Sample; ++i) file << Y[i] << ' ';
    file << '\n';
    for (int k = 1; k <= prepared_length(); ++k) write_marker(file, order[k] - 1);
}

int single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare(int* ranking, int n) {
    check_turn(n);
    load_data_set_once();
    const std::string name = prepared_file_name(n);
    TextInput input(name);
    if (!input.is_open()) {
        std::cout << "find error when opening file " << name << '\n';
        end_program();
    }
    read_phenotypes(input, name);
    read_ranking(input, name, ranking);
    ++files_read;
    return 0;
}

void restart_prepared_files() {
    files_saved = 0;
    files_read = 0;
}

}  // namespace vort
