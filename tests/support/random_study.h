// Random studies of any awkward shape, the same for the same seed.
#pragma once

#include <algorithm>
#include <random>
#include <vector>

#include "genotypes/genotypes.h"

namespace vort::testing {

using Columns = std::vector<std::vector<signed char>>;  // codes 0, 1, 2, or -1 for missing

inline Genotypes packed(int individuals, const Columns& columns) {
    constexpr int kBits[] = {1, 3, 2, 0};
    Genotypes genotypes(individuals, static_cast<int>(columns.size()));
    for (std::size_t j = 0; j < columns.size(); ++j) {
        const auto bytes = genotypes.owned_column(static_cast<int>(j));
        std::fill(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
        for (std::size_t i = 0; i < columns[j].size(); ++i) {
            bytes[i / 4] =
                static_cast<unsigned char>(bytes[i / 4] | kBits[columns[j][i] + 1] << 2 * (i % 4));
        }
    }
    return genotypes;
}

struct StudyShape {
    int individuals;
    int markers;
    double missing = 0;  // share of genotypes
    double case_share = 0.5;
    int values = 2;  // of the phenotype: 0, 1, ...
};

struct RandomStudy {
    RandomStudy(unsigned seed, const StudyShape& shape) : random(seed) {
        for (int i = 0; i < shape.individuals; ++i) {
            const int other = shape.values == 2 ? 0 : 2 * below(shape.values - 1);
            phenotypes.push_back(uniform() < shape.case_share ? short{1}
                                                              : static_cast<short>(other));
        }
        for (int j = 0; j < shape.markers; ++j) columns.push_back(draw_column(shape, j));
        genotypes = packed(shape.individuals, columns);
    }

    double uniform() { return static_cast<double>(random() >> 5) / (1 << 27); }
    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

    // Of every eleven markers one does not vary, one is missing throughout, one in the cases, one
    // follows the phenotype and one repeats its neighbour.
    std::vector<signed char> draw_column(const StudyShape& shape, int j) {
        const int kind = j % 11;
        if (kind == 10) return columns.back();
        const double frequency = 0.02 + 0.5 * uniform();
        const double effect = kind == 9 ? 1 : kind == 2 ? 0.3 : 0;
        std::vector<signed char> column;
        for (const short phenotype : phenotypes) {
            const bool is_case = phenotype == 1;
            int code = (uniform() < frequency ? 1 : 0) + (uniform() < frequency ? 1 : 0);
            if (uniform() < effect) code = is_case ? 2 : 0;
            if (kind == 3) code = j % 3;
            const bool gone = kind == 5 || (kind == 7 && is_case);
            if (gone || uniform() < shape.missing) code = -1;
            column.push_back(static_cast<signed char>(code));
        }
        return column;
    }

    std::mt19937 random;
    std::vector<short> phenotypes;
    Columns columns;
    Genotypes genotypes;
};

}  // namespace vort::testing
