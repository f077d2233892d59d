#include "legacy/importance.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "common/number_text.h"
#include "common/output_file.h"
#include "common/text_input.h"
#include "legacy/default_objects.h"
#include "numeric/combinations.h"

namespace vort {

namespace {

constexpr int kMarkersOfASet = 3;
constexpr int kEndByte = 0xFF;
constexpr int kMostColumns = 1 << 20;  // far above what a search keeps

}  // namespace

int readbeta(const char* path, double** coefficients, int* nonzero, double** second) {
    TextInput input{path};
    if (!input.is_open()) return 0;
    int columns = 0;
    int lines = 0;
    input.integer(columns);
    input.integer(lines);
    if (columns > kMostColumns) {
        default_objects().diagnostics.say("coefficient files that cannot be used", path, 1,
                                          std::to_string(columns) + " columns; at most " +
                                              std::to_string(kMostColumns) + " expected");
        return 0;
    }
    const std::size_t size = columns > 0 ? static_cast<std::size_t>(columns) : 0;
    auto beta = std::make_unique<double[]>(size);
    auto mean_square = std::make_unique<double[]>(size);
    std::string word;
    for (int line = 0; line < lines && input.good(); ++line) {
        int j = 0;
        double value = 0;
        double v = 0;
        if (!input.word(word)) break;
        input.integer(j);
        std::cout << word << j;
        input.word(word);
        std::cout << word;
        input.real(value);
        input.real(v);
        std::cout << general(value) << ' ';
        if (input.failed()) break;
        if (j < 0 || j >= columns) {
            default_objects().diagnostics.say("coefficients of no column", path,
                                              input.line_number(),
                                              "column " + std::to_string(j) + ", below " +
                                                  std::to_string(columns) + " expected; ignored");
            continue;
        }
        beta[j] = value;
        mean_square[j] = v;
    }
    std::cout << '\n';
    *nonzero = lines;
    *coefficients = beta.release();
    *second = mean_square.release();
    return columns;
}

void calculationimportfactor(BestClusterInformation* record, double* importance, double beta,
                             double v, int print, int* markers, int* ncell, int* cells, int group) {
    const int k = static_cast<int>(record->marker_count);
    int decoded[kMarkersOfASet + 1] = {};
    sortchoose1(record->combination_index, record->marker_total, k, decoded);
    for (int l = 1; l <= k; ++l) {
        const int i = decoded[l];
        markers[l] = i;
        if (i != 0) importance[i] += std::abs(beta) / k / v;
        if (print != 0 && i != 0) {
            std::cout << "importantfactor[" << i << "]=" << general(importance[i])
                      << " beta[q]=" << general(beta) << '\n';
        }
        if (i == 0) std::cout << "H[l] find problem";
    }
    record->getGenotypeCode(group, ncell, cells);
}

int filecopy(const char* source, const char* destination) {
    TextInput input{source};
    if (!input.is_open()) {
        std::cout << "Don't find file " << source << '\n';
        std::exit(0);
    }
    OutputFile output(destination, OutputFile::Mode::kTruncate, default_objects().diagnostics);
    if (!output.is_open()) return 1;
    input.skip_space();
    for (int c = input.get(); c != EOF && c != kEndByte; c = input.get()) {
        output.stream().put(static_cast<char>(c));
    }
    output << '\n';
    return 0;
}

}  // namespace vort
