#include "legacy/genotype_data.h"

#include <algorithm>
#include <iostream>
#include <numeric>
#include <vector>

#include "common/output_file.h"
#include "genotypes/text_data_set.h"
#include "legacy/default_objects.h"
#include "legacy/globals.h"
#include "legacy/on_console.h"

namespace vort {

namespace {

void dump_group(Transcript& out, bool cases) {
    for (int i = 0; i < Sample; ++i) {
        if ((Y[i] == 1) != cases) continue;
        out << Y[i];
        for (int j = 0; j < std::min(Marker, 100); ++j) out << ' ' << static_cast<int>(X[i][j]);
        out << '\n';
    }
}

void dump_data_set(const char* announcement, const char* path) {
    Transcript text(true);
    dump_group(text, true);
    dump_group(text, false);
    std::cout << announcement << text.text();
    OutputFile file(path, OutputFile::Mode::kTruncate, default_objects().diagnostics);
    file << text.text();
}

}  // namespace

int read_data(char** genotypes, short* phenotypes) {
    const DataSet data = on_console([](Transcript& transcript) {
        return load_text_data_set({inputfilename, Sample, Marker, head, record}, 1,
                                  default_objects().diagnostics, transcript);
    });
    std::cout.flush();
    for (int i = 0; i < Sample; ++i) {
        for (int j = 0; j < Marker; ++j) {
            genotypes[i][j] = static_cast<char>(data.genotypes.code(i, j));
        }
        phenotypes[i] = data.phenotypes[i];
    }
    samplesize[0] = data.controls;
    samplesize[1] = data.cases;
    return 0;
}

void load_data_set_once() {
    if (exist_X_Y_data != 0) return;
    DefaultObjects& held = default_objects();
    const auto markers = static_cast<std::size_t>(std::max(Marker, 0));
    const auto individuals = static_cast<std::size_t>(std::max(Sample, 0));
    held.codes.assign(individuals * markers, 0);
    held.rows.clear();
    for (std::size_t i = 0; i < individuals; ++i) {
        held.rows.push_back(held.codes.data() + i * markers);
    }
    held.phenotypes.assign(individuals + 1, 0);
    X = held.rows.data();
    Y = held.phenotypes.data();
    exist_X_Y_data = 1;
    read_data(X, Y);
}

void release_data_set() {
    DefaultObjects& held = default_objects();
    held.codes = {};
    held.rows = {};
    held.phenotypes = {};
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

Genotypes packed_columns(const char* const* rows, int individuals, std::span<const int> columns) {
    constexpr unsigned kBits[] = {1, 3, 2, 0};  // of codes -1, 0, 1, 2
    Genotypes genotypes(individuals, static_cast<int>(columns.size()));
    for (std::size_t j = 0; j < columns.size(); ++j) {
        const std::span<unsigned char> column = genotypes.owned_column(static_cast<int>(j));
        std::fill(column.begin(), column.end(), static_cast<unsigned char>(0));
        for (int i = 0; i < individuals; ++i) {
            unsigned char& four = column[static_cast<std::size_t>(i) / 4];
            four = static_cast<unsigned char>(four | kBits[rows[i][columns[j]] + 1] << 2 * (i % 4));
        }
    }
    return genotypes;
}

Genotypes packed(const char* const* rows, int individuals, int markers) {
    std::vector<int> columns(static_cast<std::size_t>(std::max(markers, 0)));
    std::iota(columns.begin(), columns.end(), 0);
    return packed_columns(rows, std::max(individuals, 0), columns);
}

}  // namespace vort
