#include "csm/plain_kernels.h"

#include <algorithm>
#include <cmath>

#include "csm/globals.h"
#include "numeric/distributions.h"
#include "numeric/index_sort.h"
#include "numeric/random.h"

namespace vort::testing {

namespace {

constexpr int kOrders = 500;

// Joint genotype codes of individuals 1 .. n, in elements 0 .. n-1; -1 where one was imputed.
std::vector<int> plain_codes(const CSM& csm, int k, int c) {
    const std::vector<int> markers = plain_set(c, csm.marker_num, k);
    std::vector<int> codes;
    for (int i = 1; i <= csm.Sample_size; ++i) {
        int code = 0;
        bool imputed = false;
        for (const int j : markers) {
            code = 3 * code + csm.Tgen[i][j];
            if (csm.missing_set[i]->GetAt(static_cast<unsigned long>(j)) != 0) imputed = true;
        }
        codes.push_back(imputed ? -1 : code);
    }
    return codes;
}

// By individual, from 0: its joint code, and its cell, numbered in the order of appearance; cell 0
// is left out.
struct Cells {
    explicit Cells(std::vector<int> codes) : code(std::move(codes)) {
        std::vector<int> seen;
        for (const int x : code) {
            auto known = std::find(seen.begin(), seen.end(), x);
            if (known == seen.end() && x >= 0) known = seen.insert(known, x);
            cell.push_back(x < 0 ? 0 : static_cast<int>(known - seen.begin()) + 1);
        }
        ncell = static_cast<int>(seen.size());
    }

    int ncell = 0;
    std::vector<int> code, cell;
};

std::vector<int> plain_kmeans(const std::vector<double>& sum, const std::vector<int>& count,
                              int ncell, int g) {
    std::vector<double> mean(ncell), centre(g + 1);
    for (int c = 0; c < ncell; ++c) mean[c] = count[c + 1] > 0 ? sum[c + 1] / count[c + 1] : 0;
    const double max = *std::max_element(mean.begin(), mean.end());
    const double min = *std::min_element(mean.begin(), mean.end());
    for (int j = 1; j <= g; ++j) centre[j] = max - (j - 0.5) * (max - min) / g;
    std::vector<int> group(ncell + 1);
    for (int c = 1; c <= ncell; ++c) group[c] = c;
    for (int pass = 1; pass <= 99; ++pass) {
        std::vector<int> next = group;
        for (int c = 1; c <= ncell; ++c) {
            const auto distance = [&](int j) { return std::fabs(mean[c - 1] - centre[j]); };
            next[c] = 1;
            for (int j = 2; j <= g; ++j) {
                if (distance(j) < distance(next[c])) next[c] = j;
            }
        }
        if (next == group) break;
        group = next;
        for (int j = 1; j <= g; ++j) {
            double total = 0;
            int individuals = 0;
            for (int c = 1; c <= ncell; ++c) {
                if (group[c] != j) continue;
                total += sum[c];
                individuals += count[c];
            }
            centre[j] = individuals > 0 ? total / individuals : 0;
        }
    }
    return group;
}

// Observed or permuted phenotypes against the cells.
struct Tally {
    Tally(const Cells& cells, const std::vector<double>& y)
        : cases(std::max(cells.ncell, 3) + 1), controls(cases), count(cases), sum(cases.size()) {
        double total = 0;
        int individuals = 0;
        for (std::size_t i = 0; i < y.size(); ++i) {
            const int cell = cells.cell[i];
            if (cell == 0) continue;
            ++(y[i] > 0 ? cases : controls)[cell];
            ++count[cell];
            total += y[i];
            ++individuals;
        }
        for (std::size_t i = 0; i < y.size(); ++i) {
            if (cells.cell[i] != 0) sum[cells.cell[i]] += y[i] - total / individuals;
        }
    }

    std::vector<int> cases, controls, count;
    std::vector<double> sum;
};

std::vector<int> plain_clustering(CSM& csm, int k, int ncell, Tally& t, int g) {
    using Method = void (CSM::*)(double*, int*, int*, int*, int, int);
    const Method methods[] = {nullptr, &CSM::cluster1, &CSM::cluster2, &CSM::cluster3,
                              &CSM::cluster4};
    const Method method = k == 1 ? &CSM::OneMarkerCluster : methods[clustermethod];
    if (method == nullptr) return plain_kmeans(t.sum, t.count, ncell, g);
    std::vector<int> group(t.count.size());
    std::vector<double> nothing(t.count.size());
    (csm.*method)(nothing.data(), t.cases.data(), t.controls.data(), group.data(), ncell, g);
    return group;
}

// Cases and controls of groups 1 .. g.
struct Groups {
    Groups(const Tally& tally, const std::vector<int>& group, int ncell, int g)
        : cases(g + 1), controls(g + 1) {
        for (int c = 1; c <= ncell; ++c) {
            cases[group[c]] += tally.cases[c];
            controls[group[c]] += tally.controls[c];
        }
    }

    std::vector<int> cases, controls;
};

double plain_statistic(const CSM& csm, const Groups& groups) {
    const double n1 = csm.case_num;
    const double n0 = csm.Sample_size - csm.case_num;
    double all_cases = 0;
    for (const int cases : groups.cases) all_cases += cases;
    double statistic = 0;
    for (std::size_t q = 1; q < groups.cases.size(); ++q) {
        const double a = groups.cases[q];
        const double b = groups.controls[q];
        if (csm.quantitative_trait == 0) {
            const double p1 = a / n1;
            const double p0 = b / n0;
            if (p1 + p0 > 0) statistic += ((p1 - p0) * (p1 - p0)) / (p0 / n1 + p1 / n0);
        } else if (a + b > 0) {
            const double d = a / (a + b) - all_cases / csm.Sample_size;
            statistic += (d * d) * (a + b) / csm.sigma;
        }
    }
    return statistic;
}

std::unique_ptr<BestClusterInformation> plain_record(const CSM& csm, int k, int c,
                                                     const Cells& cells,
                                                     const std::vector<int>& group,
                                                     const Groups& groups, std::string& printed) {
    const int g = static_cast<int>(groups.cases.size()) - 1;
    auto record = std::make_unique<BestClusterInformation>(k, g, csm.marker_num);
    record->combination_index = c;
    for (std::size_t i = 0; i < cells.cell.size(); ++i) {
        const int cell = cells.cell[i];
        if (cell == 0) continue;
        record->group_members[group[cell] - 1].SetbitOne(static_cast<unsigned long>(cell));
        record->genotype_code[cell] = static_cast<unsigned>(cells.code[i]);
    }
    record->group_count_copy = 0;
    double covered = 0;
    for (int q = 1; q <= g && !(covered > 1.0); ++q) {
        printed += "nchoose=" + std::to_string(k) + "index=" + std::to_string(c) +
                   " ii=" + std::to_string(q) + "\n";
        const double size = groups.cases[q] + groups.controls[q];
        if (size == 0) continue;
        record->group_frequency[q - 1] = size / csm.Sample_size;
        record->group_average[q - 1] = groups.cases[q] / size;
        covered += record->group_frequency[q - 1];
        ++record->group_count_copy;
    }
    return record;
}

// Statistics of all orders under one g become empirical p-values.
void plain_pvalues(std::vector<double>& column) {
    std::vector<double> statistic(column.size() + 1);
    std::vector<int> order(column.size() + 1);
    std::copy(column.begin(), column.end(), statistic.begin() + 1);
    Quickindex(statistic.data(), order.data(), kOrders + 1);
    for (int t = 1; t <= kOrders + 1; ++t) {
        column[order[t] - 1] = static_cast<double>(kOrders - t + 1) / kOrders;
    }
}

// The g that row r's smallest p-value has, the largest g where there are several.
int plain_best(const std::vector<std::vector<double>>& table, int r) {
    int best = static_cast<int>(table.size()) - 1;
    for (int g = best - 1; g >= 2; --g) {
        if (table[g][r] < table[best][r]) best = g;
    }
    return best;
}

}  // namespace

std::vector<int> plain_set(int c, int m, int k) {
    for (int a = 1; a <= m; ++a) {
        if (k == 1 && --c == 0) return {a};
        for (int b = a + 1; k == 2 && b <= m; ++b) {
            if (--c == 0) return {a, b};
        }
    }
    return std::vector<int>(k, 0);
}

double plain_quick_test(const CSM& csm, int k, int c) {
    const std::vector<int> codes = plain_codes(csm, k, c);
    std::vector<double> sum(9);
    std::vector<int> count(9);
    for (int i = 1; i <= csm.Sample_size; ++i) {
        if (codes[i - 1] < 0) continue;
        sum[codes[i - 1]] += csm.yy[i];
        ++count[codes[i - 1]];
    }
    double total = 0;
    for (const double s : sum) total += s;
    double S = 0;
    int seen = 0;
    for (int cell = 0; cell < 9; ++cell) {
        if (count[cell] == 0) continue;
        const double d = sum[cell] / count[cell] - total / csm.Sample_size;
        S += (d * d) * count[cell];
        ++seen;
    }
    return seen < 2 ? 0.5 : 1 - pchisq(seen - 1, S / csm.sigma);
}

PlainScore plain_score(CSM& csm, int k, int c) {
    const std::array<int, 3> before = {RX, RY, RZ};
    const int n = csm.Sample_size;
    const Cells cells(plain_codes(csm, k, c));
    const int gmax = std::min(cells.ncell, 10);
    PlainScore score;
    if (k > 1 && gmax > 1 && clustermethod_print == 1) {
        score.printed = "clustermethod=" + std::to_string(clustermethod) + "\n";
    }
    const std::vector<double> saved(csm.yy.data() + 1, csm.yy.data() + n + 1);
    std::vector<std::unique_ptr<BestClusterInformation>> records(gmax + 1);
    std::vector<std::vector<double>> table(gmax + 1);
    for (int r = 0; r <= kOrders; ++r) {
        std::vector<double> y = saved;
        std::vector<int> order(n + 1);
        if (r > 0) randomsort(n, order.data());
        for (int i = 0; r > 0 && i < n; ++i) y[i] = saved[order[i + 1] - 1];
        Tally tally(cells, y);
        for (int g = 2; g <= gmax; ++g) {
            const std::vector<int> group = plain_clustering(csm, k, cells.ncell, tally, g);
            const Groups groups(tally, group, cells.ncell, g);
            if (r == 0) {
                records[g] = plain_record(csm, k, c, cells, group, groups, score.printed);
            }
            table[g].push_back(plain_statistic(csm, groups));
        }
    }
    score.random_state = {RX, RY, RZ};
    RX = before[0];
    RY = before[1];
    RZ = before[2];
    if (gmax < 2) return score;
    for (int g = 2; g <= gmax; ++g) plain_pvalues(table[g]);
    score.best_groups = plain_best(table, 0);
    score.record = std::move(records[score.best_groups]);
    int below = 0;
    for (int r = 0; r <= kOrders; ++r) {
        below += table[plain_best(table, r)][r] < table[score.best_groups][0] ? 1 : 0;
    }
    score.value = 1 - static_cast<double>(below) / kOrders;
    return score;
}

std::vector<std::pair<int, int>> plain_search(const CSM& csm) {
    const int m = std::max(csm.marker_num, 0);
    std::vector<std::pair<int, int>> kept;
    std::vector<bool> may_pair(m + 1, false);
    for (int k = 1; k <= csm.max_order; ++k) {
        std::vector<double> p = {0};
        int tested = 0;
        for (int c = 1; c <= (k == 1 ? m : m * (m - 1) / 2); ++c) {
            const std::vector<int> set = plain_set(c, m, k);
            const bool test = k == 1 || (may_pair[set[0]] && may_pair[set[1]]);
            p.push_back(test ? plain_quick_test(csm, k, c) : 100.0);
            tested += test ? 1 : 0;
        }
        const int N = static_cast<int>(p.size()) - 1;
        std::vector<int> order(p.size());
        Quickindex(p.data(), order.data(), N);
        for (int j = 1; k == 1 && j <= std::min(csm.Best_m, N); ++j) may_pair[order[j]] = true;
        double H = 0;
        for (int t = 1; t <= tested; ++t) H += 1.0 / t;
        int j = tested;
        const auto drops = [&] {  // not so where p is not a number
            const double share = csm.FDR_cutoff / tested;
            const double last = p[order[j]];
            if (k == 1) return share <= last / j || last > csm.alpha;
            return share <= last / j * H || last >= csm.alpha;
        };
        while (j > 0 && drops()) H -= 1.0 / j--;
        for (int e = 1; e <= std::min(csm.Max_retain, j); ++e) kept.emplace_back(k, order[e]);
    }
    return kept;
}

}  // namespace vort::testing
