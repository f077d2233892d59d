// The marker-set search.
//
// Which of the m markers, and which of their m (m - 1) / 2 pairs, are worth a permutation test? A
// quick test answers first: the spread of the cell means around the overall mean of the centred
// phenotype, in units of its variance,
//
//     S = sum over cells of (cell mean - ybar)^2 * cell count / sigma,
//
// referred to a chi-square distribution with one degree of freedom fewer than cells seen. A
// step-up rule then decides how many of the sets, in the order of their p-values, are kept:
//
//   order 1   Benjamini & Hochberg (1995): the largest j with p(j) / j < cutoff / N and
//             p(j) <= alpha
//   order 2   Benjamini & Yekutieli (2001): the largest j with H p(j) / j < cutoff / T and
//             p(j) < alpha, over the T pairs tested. H starts as 1 + 1/2 + ... + 1/T and loses 1/j
//             at every step down, where the published factor stays whole.
//
// At most `Max_retain` sets of each order are kept; each is scored and leaves its best clustering.
//
// ybar divides by all n individuals although those with an imputed genotype are in no cell; this is
// the method's way, and matters only where genotypes are missing.
//
// Cost: n steps for each set tested, then the scores (see csm_score.cpp).
#include <algorithm>
#include <array>
#include <iostream>
#include <span>
#include <vector>

#include "csm/csm.h"
#include "csm/pair_sums.h"
#include "numeric/combinations.h"
#include "numeric/distributions.h"
#include "numeric/index_sort.h"
#include "numeric/scalars.h"

namespace vort {

namespace {

// Stands for "not tested": sorts behind every p-value.
constexpr double kNotTested = 100.0;

// Sets are announced on the console by the hundred, pairs by the thousand.
constexpr int kAnnounceMarkers = 100;
constexpr int kAnnouncePairs = 1000;

// The quick test of a marker set, from the sums and counts of its cells.
double quick_pvalue(std::span<const double> cell_sum, std::span<const int> cell_count, int n,
                    double sigma) {
    double total = 0;
    for (const double sum : cell_sum) total += sum;
    const double ybar = total / n;
    double S = 0;
    int seen = 0;
    for (std::size_t cell = 0; cell < cell_sum.size(); ++cell) {
        if (cell_count[cell] == 0) continue;
        const double deviation = cell_sum[cell] / cell_count[cell] - ybar;
        S += (deviation * deviation) * cell_count[cell];
        ++seen;
    }
    S = S / sigma;
    return seen < 2 ? 0.5 : 1 - pchisq(seen - 1, S);
}

int number_of_sets(int m, int k, int** choose_table) {
    return m < k ? 0 : choose_table[m][k];
}

}  // namespace

void CSM::sortchoose(int c, int m, int k, int* out) const {
    decode_combination(c, m, k, out, [this](int a, int b) { return choose_table[a][b]; });
}

void CSM::sortchoose1(int c, int m, int k, int* out) const {
    vort::sortchoose1(c, m, k, out);
}

int CSM::cell_code(int i, int k, const int* marker) const {
    int code = 0;
    for (int p = 1; p <= k; ++p) code = code * 3 + Tgen[i][marker[p]];
    return code;
}

bool CSM::is_excluded(int i, int k, const int* marker) const {
    for (int p = 1; p <= k; ++p) {
        if (missing_set[i]->GetAt(static_cast<unsigned long>(marker[p])) != 0) return true;
    }
    return false;
}

double CSM::Test(int k, int c) {
    return test_quantitive(k, c);
}

double CSM::test_quantitive(int k, int c) {
    std::array<int, 4> marker{};
    if (data_ready != 0) {
        sortchoose(c, usable_markers(), k, marker.data());
    } else {
        sortchoose1(c, usable_markers(), k, marker.data());
    }
    const int cells = ipower(3, k);
    std::vector<double> cell_sum(cells);
    std::vector<int> cell_count(cells);
    for (int i = 1; i <= Sample_size; ++i) {
        if (is_excluded(i, k, marker.data())) continue;
        const int code = cell_code(i, k, marker.data());
        cell_sum[code] += yy[i];
        ++cell_count[code];
    }
    return quick_pvalue(cell_sum, cell_count, Sample_size, sigma);
}

// P-values of the single markers, elements 1 .. N.
std::vector<double> CSM::test_markers(int* tested) {
    const int N = number_of_sets(usable_markers(), 1, choose_table.data());
    std::vector<double> pvalue(static_cast<std::size_t>(N) + 1);
    for (int c = 1; c <= N; ++c) {
        if (c % kAnnounceMarkers == 0) std::cout << "j=" << c << '\n';
        pvalue[c] = Test(1, c);
    }
    *tested = N;
    return pvalue;
}

// P-values of the pairs, elements 1 .. N. A pair with a marker outside the filter is not tested.
std::vector<double> CSM::test_pairs(const bitset& filter, int* tested) {
    const int m = usable_markers();
    const int N = number_of_sets(m, 2, choose_table.data());
    std::vector<double> pvalue(static_cast<std::size_t>(N) + 1);
    PairSums sums(Tgen.data(), yy.data(), missing_set, Sample_size, m);
    std::array<PairCells, PairSums::kAtOnce> cells;
    *tested = 0;
    int c = 1;
    for (int a = 1; a < m; ++a) {
        for (int first = a + 1; first <= m; first += PairSums::kAtOnce) {
            const int size = std::min(PairSums::kAtOnce, m + 1 - first);
            sums.sum(a, first, std::span(cells).first(static_cast<std::size_t>(size)));
            for (int p = 0; p < size; ++p, ++c) {
                if (c % kAnnouncePairs == 0) std::cout << "j=" << c << '\n';
                if (filter[a] == 0 || filter[first + p] == 0) {
                    pvalue[c] = kNotTested;
                    continue;
                }
                pvalue[c] = quick_pvalue(cells[p].sum, cells[p].count, Sample_size, sigma);
                ++*tested;
            }
        }
    }
    return pvalue;
}

// Number of sets, in the order of their p-values, that pass the step-up rule.
int CSM::kept_by_step_up(int k, int tested, const std::vector<double>& pvalue,
                         const std::vector<int>& order) const {
    const auto p = [&](int j) { return pvalue[order[j]]; };
    const int T = tested;
    int j = T;
    if (k == 1) {
        while (j > 0 && (FDR_cutoff / T <= p(j) / j || p(j) > alpha)) --j;
        return j;
    }
    double H = 0;
    for (int t = 1; t <= T; ++t) H += 1.0 / t;
    while (j > 0 && (FDR_cutoff / T <= p(j) / j * H || p(j) >= alpha)) {
        H -= 1.0 / j;
        --j;
    }
    return j;
}

int CSM::bestsetper1(BestClusterInformationArray* array) {
    bitset filter(static_cast<unsigned long>(usable_markers()) + 1);
    int kept_of_all_orders = 0;
    for (int k = 1; k <= max_order; ++k) {
        int tested = 0;
        std::vector<double> pvalue = k == 1 ? test_markers(&tested) : test_pairs(filter, &tested);
        const int N = static_cast<int>(pvalue.size()) - 1;
        std::vector<int> order(pvalue.size());
        if (N > 0) Quickindex(pvalue.data(), order.data(), N);
        for (int j = 1; k == 1 && j <= std::min(Best_m, N); ++j) filter.SetbitOne(order[j]);
        const int kept = std::min(Max_retain, kept_by_step_up(k, tested, pvalue, order));
        for (int j = 1; j <= kept; ++j) {
            objectivefunction_quantitive(k, order[j], array, nullptr);
            ++kept_of_all_orders;
        }
    }
    if (kept_of_all_orders == 0) std::cout << "CSM get len=0\n";
    return 0;
}

}  // namespace vort
