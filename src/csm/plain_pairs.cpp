#include "csm/plain_pairs.h"

#include <algorithm>

#include "common/parallel.h"
#include "csm/pair_numbers.h"
#include "csm/pair_sums.h"
#include "csm/quick_pvalue.h"
#include "numeric/index_sort.h"

namespace vort {

namespace {

// Tests the pairs of row `a`; pvalue[c] is that of pair c.
void test_row(const PairSearchInput& input, const PairSums& sums, int a, std::span<double> pvalue,
              Transcript& transcript) {
    const int m = input.markers.markers();
    const int n = input.markers.individuals();
    std::array<PairCells, PairSums::kAtOnce> cells;
    std::int64_t c = PairNumbers(m).before_row(a) + 1;
    for (int first = a + 1; first < m; first += PairSums::kAtOnce) {
        const int size = std::min(PairSums::kAtOnce, m - first);
        sums.sum(a, first, std::span(cells).first(static_cast<std::size_t>(size)));
        for (int p = 0; p < size; ++p, ++c) {
            announce_pair(c, transcript);
            pvalue[c] = quick_pvalue(cells[p].sum, cells[p].count, n, input.sigma, transcript);
        }
    }
}

// Elements 1 .. N.
std::vector<double> test_pairs(const PairSearchInput& input, int threads, Transcript& transcript) {
    const int m = input.markers.markers();
    const PairSums sums(input.markers, input.phenotype);
    std::vector<double> pvalue(static_cast<std::size_t>(PairNumbers(m).count()) + 1);
    const auto test = [&](std::size_t a) {
        Transcript row(transcript.wanted());
        test_row(input, sums, static_cast<int>(a), pvalue, row);
        return row;
    };
    for_each_in_order(threads, static_cast<std::size_t>(m), test,
                      [&](std::size_t, const Transcript& row) { transcript.add(row); });
    return pvalue;
}

}  // namespace

std::vector<int> search_plainly(const PairSearchInput& input, const StepUpRule& rule,
                                int max_retain, int threads, Transcript& transcript) {
    std::vector<double> pvalue = test_pairs(input, threads, transcript);
    std::vector<int> order(pvalue.size());
    Quickindex(pvalue.data(), order.data(), static_cast<int>(rule.tests));
    const int kept = std::min(max_retain, kept_by_step_up(2, rule, pvalue, order));
    if (kept <= 0) return {};
    return {order.begin() + 1, order.begin() + 1 + kept};
}

}  // namespace vort
