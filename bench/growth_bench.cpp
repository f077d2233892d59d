// How the engine's times grow with the number of individuals; prints two tables.
//
//     growth_bench
//
// The first: screening at a constant number of genotypes, for each genotype and data set. The
// second: draws, for each label drawn: the permuted rows of the screening, and the scores of a
// single marker and of a pair, all that belongs to them included.
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <random>
#include <vector>

#include "bench/stopwatch.h"
#include "csm/builder_data.h"
#include "csm/set_score.h"
#include "screening/screening.h"

namespace vort::bench {

namespace {

constexpr std::int64_t kGenotypes = std::int64_t{1} << 26;
constexpr int kDataSets = 32;
constexpr int kSizes[] = {1000, 4096, 16384, 65536, 262144};

// Hardy-Weinberg genotypes of frequency 0.3, one in 500 missing; the alleles of a case carry an
// effect at the first two markers.
Genotypes random_genotypes(int n, int m, const std::vector<short>& phenotypes) {
    constexpr unsigned char kBits[] = {1, 3, 2, 0};  // missing, 0, 1, 2
    std::mt19937_64 random(7);
    Genotypes genotypes(n, m);
    for (int j = 0; j < m; ++j) {
        const std::span<unsigned char> column = genotypes.owned_column(j);
        std::fill(column.begin(), column.end(), static_cast<unsigned char>(0));
        for (int i = 0; i < n; ++i) {
            const std::uint64_t draw = random();
            const unsigned frequency = 77 + (j < 2 && phenotypes[i] == 1 ? 20U : 0U);
            const int code = static_cast<int>((draw & 255) < frequency) +
                             static_cast<int>((draw >> 8 & 255) < frequency);
            const int shown = (draw >> 16 & 511) == 0 ? -1 : code;
            column[i / 4] |= static_cast<unsigned char>(kBits[shown + 1] << 2 * (i % 4));
        }
    }
    return genotypes;
}

std::vector<short> halves(int n) {
    std::vector<short> phenotypes(static_cast<std::size_t>(n));
    for (int i = 0; i < n; i += 2) phenotypes[i] = 1;
    return phenotypes;
}

void measure_screening() {
    std::printf("| individuals | markers | ns for a genotype and data set |\n|---|---|---|\n");
    for (const int n : kSizes) {
        const int m = static_cast<int>(kGenotypes / n);
        const std::vector<short> observed = halves(n);
        const Genotypes genotypes = random_genotypes(n, m, observed);
        PhenotypeRows rows(observed);
        Generator generator;
        rows.permute(kDataSets - 1, generator, 1);
        Diagnostics diagnostics(std::cerr);
        ScreeningOptions options;
        options.transcript = false;
        options.kept = 1;
        const double time = least_seconds(5, [&] {
            screen_data_sets(genotypes, rows, MarkerTable(), options, diagnostics,
                             [](int, ScreenedDataSet&&) {});
        });
        std::printf("| %d | %d | %.4f |\n", n, m,
                    time * 1e9 / static_cast<double>(std::int64_t{n} * m * kDataSets));
    }
}

// Nanoseconds for each label that a score draws; every score of the set draws, whether it needs to
// or not, but for sets of two cells.
double score_time(const BuilderData& data, const MarkerSet& set) {
    Transcript nobody(false);
    const double time = least_seconds(
        5, [&] { best_clustering(data, BuilderSettings(), set, Generator(), false, nobody); });
    return time * 1e9 / static_cast<double>(score_draws(data.individuals()));
}

void measure_draws() {
    std::printf("\n| individuals | permuted row | single marker's score | pair's score |\n");
    std::printf("|---|---|---|---|\n");
    for (const int n : kSizes) {
        const std::vector<short> observed = halves(n);
        const Genotypes genotypes = random_genotypes(n, 2, observed);
        const double row = least_seconds(5, [&] {
            PhenotypeRows rows(observed);
            Generator generator;
            rows.permute(16, generator, 1);
        });
        BuilderSettings settings;
        settings.individuals = n;
        settings.markers = 2;
        const std::vector<int> best{0, 1};
        const BuilderData data({genotypes, observed, best}, settings, false, 1);
        std::printf("| %d | %.2f ns | %.2f ns | %.2f ns |\n", n, row * 1e9 / (16.0 * n),
                    score_time(data, marker_set(1, 1, 2)), score_time(data, marker_set(2, 1, 2)));
    }
}

}  // namespace

}  // namespace vort::bench

int main() {
    vort::bench::measure_screening();
    vort::bench::measure_draws();
}
