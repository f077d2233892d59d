// Kernels of the builder of base learners: pair tests, and scores of marker sets.
#include <benchmark/benchmark.h>

#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <vector>

#include "csm/cluster_kernel.h"
#include "csm/csm.h"
#include "csm/pair_sums.h"
#include "csm/plain_kernels.h"
#include "numeric/lanes.h"

namespace vort {
namespace {

constexpr int kMarkers = 40;

// A builder that has taken in a random study, with nothing on the console.
class Builder {
  public:
    explicit Builder(int individuals) : before_(std::cout.rdbuf(quiet_.rdbuf())) {
        std::ofstream("parameter.txt")
            << "Sample_size " << individuals << "\nBest_m " << kMarkers << "\nMax_retain 0\n";
        csm = std::make_unique<CSM>(prefix_);
        std::mt19937 random(5);
        std::vector<std::vector<char>> genotypes(static_cast<std::size_t>(individuals));
        std::vector<char*> rows;
        std::vector<short> phenotype;
        for (auto& row : genotypes) {
            for (int j = 0; j < kMarkers; ++j) {
                const bool missing = random() % 200 == 0;
                row.push_back(static_cast<char>(missing ? -1 : random() % 3));
            }
            rows.push_back(row.data());
            phenotype.push_back(static_cast<short>(random() % 2));
        }
        std::vector<int> ranking(kMarkers);
        for (int j = 0; j < kMarkers; ++j) ranking[j] = j;
        short* phenotypes[] = {phenotype.data()};
        int* rankings[] = {ranking.data()};
        csm->run(0, individuals, kMarkers, rows.data(), phenotypes, rankings, 0, 1);
    }
    ~Builder() {
        std::cout.rdbuf(before_);
        std::remove("parameter.txt");
        std::remove("output_X_Y.txt");
    }

    std::unique_ptr<CSM> csm;

  private:
    char prefix_[1] = "";
    std::ostringstream quiet_;
    std::streambuf* before_;
};

// Items are pairs.
void pair_tests_plain(benchmark::State& state) {
    const Builder builder(1000);
    for (auto _ : state) {
        for (int c = 1; c < kMarkers; ++c) {
            benchmark::DoNotOptimize(testing::plain_quick_test(*builder.csm, 2, c));
        }
    }
    state.SetItemsProcessed(state.iterations() * (kMarkers - 1));
}
BENCHMARK(pair_tests_plain);

void pair_sums_fast(benchmark::State& state) {
    const Builder builder(1000);
    CSM& csm = *builder.csm;
    PairSums sums(csm.Tgen.data(), csm.yy.data(), csm.missing_set, 1000, kMarkers);
    PairCells cells[PairSums::kAtOnce];
    for (auto _ : state) {
        for (int b = 2; b + PairSums::kAtOnce <= kMarkers; b += PairSums::kAtOnce) {
            sums.sum(1, b, cells);
            benchmark::DoNotOptimize(cells[0].sum[0]);
        }
    }
    state.SetItemsProcessed(state.iterations() * ((kMarkers - 2) / PairSums::kAtOnce) *
                            PairSums::kAtOnce);
}
BENCHMARK(pair_sums_fast);

// The nine cells of a pair under kLanes orders of a phenotype, to be clustered into 2 .. 9 groups.
struct PairCells {
    static constexpr int kCells = 9;

    PairCells() {
        std::mt19937 random(5);
        std::uniform_real_distribution<double> deviation(-0.2, 0.2);
        for (int c = 1; c <= kCells; ++c) {
            size[c] = 60 + 10 * c;
            for (int l = 0; l < kLanes; ++l) sum[c * kLanes + l] = size[c] * deviation(random);
        }
    }

    int size[kCells + 1] = {};
    double sum[(kCells + 1) * kLanes] = {};
    double mean[kLanes] = {};
};

// Items are clusterings; the fast form computes their statistics, too.
void clustering_plain(benchmark::State& state) {
    const Builder builder(100);
    PairCells cells;
    double sum[PairCells::kCells + 1] = {};
    int group[PairCells::kCells + 1] = {};
    for (auto _ : state) {
        for (int l = 0; l < kLanes; ++l) {
            for (int c = 1; c <= PairCells::kCells; ++c) sum[c] = cells.sum[c * kLanes + l];
            for (int g = 2; g <= PairCells::kCells; ++g) {
                builder.csm->cluster(sum, cells.size, group, PairCells::kCells, g);
                benchmark::DoNotOptimize(group);
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * kLanes * (PairCells::kCells - 1));
}
BENCHMARK(clustering_plain);

void clustering_fast(benchmark::State& state) {
    const PairCells cells;
    const PermutedCellSums sums{PairCells::kCells, cells.size, cells.sum, cells.mean,
                                {-0.5, 0.5},       500,        500};
    double statistic[(PairCells::kCells - 1) * kLanes];
    const Instructions set = state.range(0) != 0 ? best_instructions() : Instructions::kPortable;
    const auto compute =
        kernel_for(set, []<Instructions I>() { return ClusterKernel<I>::statistics; });
    for (auto _ : state) {
        compute(sums, PairCells::kCells, statistic);
        benchmark::DoNotOptimize(statistic);
    }
    state.SetItemsProcessed(state.iterations() * kLanes * (PairCells::kCells - 1));
}
BENCHMARK(clustering_fast)->ArgName("wide")->Arg(0)->Arg(1);

// Items are permuted orders. The second argument is the number of markers in the set.
void score_plain(benchmark::State& state) {
    const Builder builder(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            testing::plain_score(*builder.csm, static_cast<int>(state.range(1)), 1).value);
    }
    state.SetItemsProcessed(state.iterations() * 500);
}
BENCHMARK(score_plain)->Args({1000, 1})->Args({1000, 2})->Unit(benchmark::kMillisecond);

void score_fast(benchmark::State& state) {
    const Builder builder(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        BestClusterInformationArray kept(1);
        benchmark::DoNotOptimize(builder.csm->objectivefunction_quantitive(
            static_cast<int>(state.range(1)), 1, &kept, nullptr));
    }
    state.SetItemsProcessed(state.iterations() * 500);
}
BENCHMARK(score_fast)
    ->Args({250, 2})
    ->Args({1000, 1})
    ->Args({1000, 2})
    ->Args({4000, 2})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vort
