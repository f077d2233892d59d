// Kernels of the numerical toolkit and of the text output.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <sstream>
#include <vector>

#include "common/line_writer.h"
#include "numeric/chi_square_lanes.h"
#include "numeric/distributions.h"
#include "numeric/index_sort.h"
#include "numeric/keyed_sort.h"

namespace vort {
namespace {

std::vector<double> random_keys(int n) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> uniform;
    std::vector<double> keys(static_cast<std::size_t>(n) + 1);
    for (double& key : keys) key = uniform(random);
    return keys;
}

void count_items(benchmark::State& state, std::int64_t each) {
    state.SetItemsProcessed(state.iterations() * each);
}

void sort_plain(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<double> keys = random_keys(n);
    std::vector<int> index(keys.size());
    for (auto _ : state) Quickindex(keys.data(), index.data(), n);
    count_items(state, n);
}
BENCHMARK(sort_plain)->Arg(1000)->Arg(100000)->Arg(541325);

void sort_fast(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<double> keys = random_keys(n);
    std::vector<KeyedIndex> items(static_cast<std::size_t>(n));
    for (auto _ : state) {
        for (int i = 1; i <= n; ++i) items[i - 1] = {keys[i], i};
        sort_keyed(items);
    }
    count_items(state, n);
}
BENCHMARK(sort_fast)->Arg(1000)->Arg(100000)->Arg(541325);

std::vector<double> random_statistics(int n) {
    std::mt19937 random(2);
    std::chi_squared_distribution<double> null_distribution(1);
    std::vector<double> statistics(static_cast<std::size_t>(n));
    for (double& statistic : statistics) statistic = null_distribution(random);
    return statistics;
}

void upper_tails_plain(benchmark::State& state) {
    const std::vector<double> statistics = random_statistics(1024);
    for (auto _ : state) {
        for (const double x : statistics) benchmark::DoNotOptimize(1 - lower_tail_chi_square(1, x).value);
    }
    count_items(state, 1024);
}
BENCHMARK(upper_tails_plain);

void upper_tails_fast(benchmark::State& state) {
    const std::vector<double> statistics = random_statistics(1024);
    ChiSquareQueue queue(state.range(0) != 0 ? best_instructions() : Instructions::kPortable, 1024);
    for (auto _ : state) {
        for (const double x : statistics) queue.add(1, x, 0);
        queue.take([](int, double pvalue) { benchmark::DoNotOptimize(pvalue); });
    }
    count_items(state, 1024);
}
BENCHMARK(upper_tails_fast)->ArgName("wide")->Arg(0)->Arg(1);

void ranking_lines_plain(benchmark::State& state) {
    const std::vector<double> pvalues = random_keys(1000);
    for (auto _ : state) {
        std::ostringstream out;
        for (int k = 1; k <= 1000; ++k) {
            out << k << " index=" << k << " pvalue=" << pvalues[k] << " ref=" << k - 1 << '\n';
        }
        benchmark::DoNotOptimize(out.str().size());
    }
    count_items(state, 1000);
}
BENCHMARK(ranking_lines_plain);

void ranking_lines_fast(benchmark::State& state) {
    const std::vector<double> pvalues = random_keys(1000);
    for (auto _ : state) {
        std::ostringstream text;
        {
            LineWriter out(text);
            for (int k = 1; k <= 1000; ++k) {
                const DecimalDigits ref(k - 1);
                out.end(out.begin()
                            .integer(ref.next())
                            .text(" index=")
                            .integer(ref.next())
                            .text(" pvalue=")
                            .general(pvalues[k])
                            .text(" ref=")
                            .integer(ref));
            }
        }
        benchmark::DoNotOptimize(text.str().size());
    }
    count_items(state, 1000);
}
BENCHMARK(ranking_lines_fast);

}  // namespace
}  // namespace vort
