#include "results/marker_rows.h"

#include <algorithm>

#include "numeric/chi_square_upper.h"
#include "results/table_text.h"
#include "screening/five_model_statistics.h"
#include "screening/stretch_screening.h"

namespace vort {

namespace {

constexpr double kMedianChiSquare = 0.45493642311957;  // of one degree of freedom
constexpr std::array<std::string_view, kModels> kModelColumns = {"ADD", "DOM", "REC", "GENO"};

GroupCounts group_of(const GenotypeCounts& counted) {
    const auto& [none, one, two, missing] = counted.count;
    return {{none, one, two}, missing};
}

GenotypeTable<double> table_of(const MarkerCounts& counts) {
    const auto& a = counts.cases.count;
    const auto& b = counts.controls.count;
    const auto number = [](int count) { return static_cast<double>(count); };
    return {number(a[0]),
            number(a[1]),
            number(a[2]),
            number(b[0]),
            number(b[1]),
            number(b[2]),
            number(a[0] + a[1] + a[2]),
            number(b[0] + b[1] + b[2])};
}

TestResult test_of(int df, double statistic) {
    return {statistic, upper_tail_chi_square(df, statistic)};
}

// Over the genotypes that somebody has.
double genotype_statistic(const GenotypeTable<double>& t) {
    ModelStatistics<double> sum{};
    const auto add = [&](double cases, double controls) {
        if (cases + controls > 0) add_genotype<double>(cases / t.R, controls / t.S, t, sum);
    };
    add(t.a2, t.b2);
    add(t.a1, t.b1);
    add(t.a0, t.b0);
    return sum.genotype;
}

void pick_smallest(MarkerRow& row) {
    const std::array<const TestResult*, kModels> tests = {&row.additive, &row.dominant,
                                                          &row.recessive, &row.genotype};
    for (std::size_t m = 0; m < tests.size(); ++m) {
        // Also where nothing has been picked.
        if (!(tests[m]->p >= row.p_min) && tests[m]->p >= 0) {
            row.p_min = tests[m]->p;
            row.model = kModelColumns[m];
        }
    }
}

}  // namespace

void fill_tests(const MarkerCounts& counts, MarkerRow& row) {
    const GenotypeTable<double> t = table_of(counts);
    if (t.R == 0 || t.S == 0) return;
    const bool seen[3] = {t.a0 + t.b0 > 0, t.a1 + t.b1 > 0, t.a2 + t.b2 > 0};
    const int classes = static_cast<int>(std::count(seen, seen + 3, true));
    ModelStatistics<double> statistics{};
    five_model_statistics<double>(t, statistics);
    if (classes > 1 || seen[1]) row.additive = test_of(1, statistics.additive);
    if (seen[0] && classes > 1) row.dominant = test_of(1, statistics.dominant);
    if (seen[2] && classes > 1) row.recessive = test_of(1, statistics.recessive);
    if (classes > 1) {
        row.genotype_df = classes - 1;
        row.genotype = test_of(row.genotype_df, genotype_statistic(t));
    }
    pick_smallest(row);
}

MarkerRows::MarkerRows(std::span<const MarkerInfo> markers, std::vector<MarkerCounts> counts,
                       const RunRecord& record, std::span<const int> model)
    : markers_(markers),
      counts_(std::move(counts)),
      record_(record),
      rank_(markers.size()),
      in_model_(markers.size()) {
    for (std::size_t k = 0; k < record.ranking.size(); ++k) {
        rank_[record.ranking[k]] = static_cast<int>(k) + 1;
    }
    for (const int column : model) in_model_[column] = 1;
    for (std::size_t d = 1; d < record.data_sets.size(); ++d) {
        smallest_.push_back(record.data_sets[d].smallest_p);
    }
    std::ranges::sort(smallest_);
    if (counts_.empty()) return;
    const auto everybody = [](const GenotypeCounts& group) {
        return group.count[0] + group.count[1] + group.count[2] + group.count[3];
    };
    const MissingLimits limits =
        missing_limits({everybody(counts_.front().cases), everybody(counts_.front().controls)});
    most_missing_cases_ = limits.cases;
    most_missing_controls_ = limits.controls;
}

bool MarkerRows::is_dropped(std::size_t j) const {
    return counts_[j].cases.count[3] > most_missing_cases_ ||
           counts_[j].controls.count[3] > most_missing_controls_;
}

long MarkerRows::dropped() const {
    long dropped = 0;
    for (std::size_t j = 0; j < counts_.size(); ++j) dropped += is_dropped(j) ? 1 : 0;
    return dropped;
}

void MarkerRows::fill_ranks(std::size_t j, MarkerRow& row) const {
    row.rank = rank_[j];
    if (record_.observed.empty() || record_.permutations() == 0) return;
    const double permutations = record_.permutations();
    const auto as_small = std::upper_bound(smallest_.begin(), smallest_.end(), record_.observed[j]);
    row.emp1 = as_written((record_.no_weaker[j] + 1.0) / (permutations + 1));
    row.emp2 =
        as_written((static_cast<double>(as_small - smallest_.begin()) + 1) / (permutations + 1));
}

MarkerRow MarkerRows::row(std::size_t j) const {
    const MarkerInfo& marker = markers_[j];
    MarkerRow row;
    row.chromosome = marker.chromosome;
    row.name = marker.name;
    row.position = marker.position;
    row.a1 = marker.a1;
    row.a2 = marker.a2;
    row.cases = group_of(counts_[j].cases);
    row.controls = group_of(counts_[j].controls);
    row.in_model = in_model_[j] != 0;
    if (is_dropped(j)) return row;
    fill_tests(counts_[j], row);
    row.p_min = as_written(row.p_min);
    fill_ranks(j, row);
    return row;
}

double lambda_gc(std::vector<double> statistics) {
    std::erase_if(statistics, [](double statistic) { return !(statistic >= 0); });
    if (statistics.empty()) return kNotAvailable;
    const auto middle = statistics.begin() + static_cast<std::ptrdiff_t>(statistics.size() / 2);
    std::nth_element(statistics.begin(), middle, statistics.end());
    if (statistics.size() % 2 == 1) return *middle / kMedianChiSquare;
    const double below = *std::max_element(statistics.begin(), middle);
    return (below + *middle) / 2 / kMedianChiSquare;
}

}  // namespace vort
