#include "ensemble/conclusion.h"

#include <algorithm>

#include "numeric/index_sort.h"

namespace vort {

namespace {

constexpr double kSignificant = 0.05;

// By decreasing importance.
void list_markers(const ObservedModel& observed, Result& result) {
    const int m = static_cast<int>(observed.importance.size()) - 1;
    std::vector<double> importance = observed.importance;
    std::vector<int> order(importance.size());
    if (m > 0) Quickindex(importance.data(), order.data(), m);
    for (int position = m; position >= 1; --position) {
        const int marker = order[position];
        if (observed.selected[marker] == 0) continue;
        result.markers.push_back(marker);
        result.importance.push_back(truncated(importance[marker]));
    }
}

}  // namespace

Result conclude(const ObservedModel& observed, std::vector<double> permuted, int permutations,
                std::vector<int> best) {
    Result result;
    result.has_model = observed.exists;
    result.observed = observed.statistic;
    result.learners = observed.learners;
    result.columns = std::move(best);
    result.permuted = std::move(permuted);
    if (observed.exists) {
        const auto stronger = std::ranges::count_if(
            result.permuted, [&](double statistic) { return statistic < observed.statistic; });
        result.pvalue = static_cast<double>(stronger) / permutations;
    } else {
        result.permuted.assign(static_cast<std::size_t>(std::max(permutations, 0)),
                               result.observed);
    }
    list_markers(observed, result);
    return result;
}

void print_ensemble_sizes(const BuilderSettings& settings, Transcript& out) {
    out << "nmarker=" << settings.markers << '\n' << "nsample=" << settings.individuals << '\n';
}

void print_permutation(int d, std::string_view modelling, Transcript& out) {
    out << "permutation = " << d - 1 << " \n" << modelling;
}

void print_comparison(const ObservedModel& observed, double statistic, Transcript& out) {
    out << "Cp0=" << general(observed.statistic) << " Cp_per=" << general(statistic) << '\n';
}

void print_pvalue(const Result& result, Transcript& out) {
    if (result.has_model) out << "pvalue=" << general(result.pvalue) << '\n';
}

void print_markers(const ObservedModel& observed, const Result& result, Transcript& out) {
    const bool significant = result.has_model && result.pvalue < kSignificant;
    out << (significant ? "Best marker is " : "drop marker is ");
    for (const int marker : result.markers) out << marker << ' ';
    out << (significant ? "\nImportantmeasure is " : "\nimportantmeasure is ");
    for (const int measure : result.importance) out << measure << ' ';
    out << '\n';
    for (const char in : observed.selected) out << (in != 0 ? '1' : '0');
    out << '\n';
}

}  // namespace vort
