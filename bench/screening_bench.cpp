// Kernels of the screening: rows into codes, genotypes into counts, counts into p-values.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "screening/counted_data_sets.h"
#include "screening/genotype_row.h"
#include "screening/globals.h"
#include "screening/marker_pvalues.h"
#include "screening/minimum_screening.h"

namespace vort {
namespace {

constexpr int kMarkers = 2048;
constexpr int kDataSets = 101;

// A study in the globals, as loaded, with permuted phenotypes.
class LoadedStudy {
  public:
    explicit LoadedStudy(int individuals) {
        std::mt19937 random(3);
        codes_.resize(static_cast<std::size_t>(individuals) * kMarkers);
        for (char& code : codes_) {
            code = static_cast<char>((random() % 10 < 3) + (random() % 10 < 3));
            if (random() % 200 == 0) code = -1;
        }
        std::vector<short> phenotype(static_cast<std::size_t>(individuals));
        for (int i = 0; i < individuals; ++i) {
            phenotype[i] = static_cast<short>(i % 2);
            rows_.push_back(codes_.data() + static_cast<std::size_t>(i) * kMarkers);
        }
        for (int d = 0; d < kDataSets; ++d) {
            std::shuffle(phenotype.begin(), phenotype.end(), random);
            phenotypes_.push_back(phenotype);
            rankings_.emplace_back(kMarkers);
        }
        for (auto& row : phenotypes_) phenotype_rows.push_back(row.data());
        for (auto& row : rankings_) ranking_rows.push_back(row.data());
        Sample = individuals;
        Marker = kMarkers;
        X = rows_.data();
        Y = phenotype_rows[0];
        samplesize[1] = individuals / 2;
        samplesize[0] = individuals - samplesize[1];
    }

    CountedDataSets count() const {
        return {X, Sample, Marker, phenotype_rows, ranking_rows, best_instructions()};
    }

    std::vector<short*> phenotype_rows;
    std::vector<int*> ranking_rows;

  private:
    std::vector<char> codes_;
    std::vector<char*> rows_;
    std::vector<std::vector<short>> phenotypes_;
    std::vector<std::vector<int>> rankings_;
};

// Items are markers in one data set.
void screening_plain(benchmark::State& state) {
    const LoadedStudy study(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(result_of(test_all_markers()).minimum.data());
    state.SetItemsProcessed(state.iterations() * kMarkers);
}
BENCHMARK(screening_plain)->Arg(500)->Arg(1000)->Arg(2000);

void counts_of_all_data_sets(benchmark::State& state) {
    const LoadedStudy study(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(study.count().ready());
    state.SetItemsProcessed(state.iterations() * kMarkers * kDataSets);
}
BENCHMARK(counts_of_all_data_sets)->Arg(500)->Arg(1000)->Arg(2000);

void screening_from_counts(benchmark::State& state) {
    const LoadedStudy study(1000);
    const CountedDataSets counts = study.count();
    const Instructions set = state.range(0) != 0 ? best_instructions() : Instructions::kPortable;
    MinimumScreening screening(counts, Marker, {samplesize[1], samplesize[0]}, missing_limits(),
                               set);
    for (auto _ : state) {
        benchmark::DoNotOptimize(screening.screen(study.ranking_rows[0]).minimum.data());
    }
    state.SetItemsProcessed(state.iterations() * kMarkers);
}
BENCHMARK(screening_from_counts)->ArgName("wide")->Arg(0)->Arg(1);

std::string row_text(int genotypes) {
    std::mt19937 random(4);
    std::string text;
    for (int j = 0; j < genotypes; ++j) {
        text += random() % 300 == 0 ? std::string("-1") : std::to_string(random() % 3);
        text += ' ';
    }
    return text;
}

// The rule of the format, a character at a time.
int parse_plain(const std::string& text, int markers, char* codes) {
    std::size_t at = 0;
    int j = 0;
    for (; j < markers; ++j) {
        while (text[at] == ' ') ++at;
        if (text[at] == '-') {
            codes[j] = -1;
            at += 2;
        } else if (text[at] >= '0' && text[at] <= '2') {
            codes[j] = static_cast<char>(text[at++] - '0');
        } else {
            break;
        }
    }
    return j;
}

void row_plain(benchmark::State& state) {
    const std::string text = row_text(100000);
    std::vector<char> codes(100000);
    for (auto _ : state) benchmark::DoNotOptimize(parse_plain(text, 100000, codes.data()));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(row_plain);

void row_fast(benchmark::State& state) {
    const std::string text = row_text(100000);
    std::vector<char> codes(100000);
    for (auto _ : state) {
        benchmark::DoNotOptimize(parse_genotypes(text, 100000, codes.data()).count);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(row_fast);

}  // namespace
}  // namespace vort
