// Nanoseconds a pair of the search of all pairs, for each set of instructions, and of the plain
// form; and how the searches were decided.
//
//     pairs_bench [threads]
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "csm/pair_numbers.h"
#include "csm/pair_search.h"
#include "csm/random_pair_study.h"

namespace vort::testing {

namespace {

double seconds(const auto& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void measure(const char* name, const RandomPairStudy::Shape& shape, int threads) {
    const RandomPairStudy study(1, shape);
    const double pairs = static_cast<double>(PairNumbers(shape.m).count());
    std::printf("%-28s n=%-6d m=%-6d", name, shape.n, shape.m);
    for (const Instructions set :
         {Instructions::kPortable, Instructions::kWide, Instructions::kWidest}) {
        if (set > best_instructions()) continue;
        PairSearchResult result;
        const double time = seconds([&] {
            Transcript nobody(false);
            result = search_pairs(study.input(), 0.75, 0.05, 100, threads, nobody, set);
        });
        std::printf("  %7.1f ns", time * 1e9 / pairs);
        if (set != best_instructions()) continue;
        std::printf("  kept %zu, step-up %d, order %d, p-values %lld", result.kept.size(),
                    static_cast<int>(result.statistics.step_up),
                    static_cast<int>(result.statistics.order),
                    static_cast<long long>(result.statistics.pvalues));
    }
    std::printf("\n");
}

}  // namespace

}  // namespace vort::testing

int main(int argc, char** argv) {
    using vort::testing::measure;
    const int threads = argc > 1 ? std::atoi(argv[1]) : 1;
    std::printf("%51s  portable        wide      widest\n", "");
    const auto shape = [](int n, int m, double missing, double duplicated, double effect) {
        return vort::testing::RandomPairStudy::Shape{.n = n,
                                                     .m = m,
                                                     .missing = missing,
                                                     .duplicated = duplicated,
                                                     .effect = effect,
                                                     .spread = true};
    };
    for (const int n : {1000, 10000}) {
        const int m = n == 1000 ? 3000 : 1000;
        measure("null", shape(n, m, 0, 0, 0), threads);
        measure("null, missing", shape(n, m, 0.02, 0, 0), threads);
        measure("null, missing, repeated", shape(n, m, 0.02, 0.3, 0), threads);
        measure("small effects", shape(n, m, 0.02, 0, 0.06), threads);
        measure("small effects, repeated", shape(n, m, 0.02, 0.3, 0.06), threads);
        measure("effects", shape(n, m, 0.02, 0, 0.2), threads);
        measure("strong effects", shape(n, m, 0.02, 0, 0.9), threads);
    }
    auto quantitative = shape(1000, 300, 0, 0, 0);
    quantitative.phenotype = vort::testing::RandomPairStudy::Phenotype::kQuantitative;
    measure("quantitative", quantitative, threads);
}
