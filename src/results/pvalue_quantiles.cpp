// Ranks are kept one by one up to twenty, then some twenty-four to each power of ten, and the last.
//
// The observed data set is ranked in any case. Permuted ones are not beyond their best markers, and
// sorting each would cost more than its screening, so its p-values are counted in bins: the bits of
// a double, cut behind the seventh of the mantissa, number bins whose width is 1/128 of their lower
// end or less (0.003 on the scale of log10). Going up through the counts gives the bin of each
// rank, whose middle stands for it. Example: 0.0375 is 1.2 x 2^-5; its bin goes from 0.037354 to
// 0.037598.
//
// Cost: an addition to a table that lies in the first cache for each p-value, and one look at each
// bin of each data set.
#include "results/pvalue_quantiles.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "results/table_text.h"

namespace vort {

namespace {

constexpr int kMantissaBits = 7;
constexpr int kShift = 52 - kMantissaBits;
constexpr double kSmallest = 1e-300;
constexpr std::uint64_t kFirst = std::bit_cast<std::uint64_t>(kSmallest) >> kShift;
constexpr std::uint64_t kLast = std::bit_cast<std::uint64_t>(1.0) >> kShift;

std::size_t bin_of(double pvalue) {
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(pvalue) >> kShift;
    return std::clamp(bits, kFirst, kLast) - kFirst;
}

double middle_of(std::size_t bin) {
    if (bin == kLast - kFirst) return 1;
    const double low = std::bit_cast<double>((kFirst + bin) << kShift);
    const double high = std::bit_cast<double>((kFirst + bin + 1) << kShift);
    return std::sqrt(low) * std::sqrt(high);
}

std::vector<long> ranks_up_to(int markers) {
    constexpr double kStep = 1.1;
    std::vector<long> ranks;
    for (double r = 1; r <= markers; r = std::max(std::floor(r * kStep), r + 1)) {
        ranks.push_back(static_cast<long>(r));
    }
    if (!ranks.empty() && ranks.back() != markers) ranks.push_back(markers);
    return ranks;
}

// Of sorted values, between neighbours in proportion.
double quantile(const std::vector<float>& sorted, double share) {
    const double place = share * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (place - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

}  // namespace

PvalueQuantiles::PvalueQuantiles(int markers)
    : ranks_(ranks_up_to(markers)), permuted_(ranks_.size()) {}

void PvalueQuantiles::set_observed(std::span<const double> pvalues, std::span<const int> ranking) {
    observed_.clear();
    for (const long r : ranks_) observed_.push_back(pvalues[ranking[r - 1]]);
}

void PvalueQuantiles::add_permuted(std::span<const double> pvalues) {
    bins_.assign(kLast - kFirst + 1, 0);
    for (const double pvalue : pvalues) ++bins_[bin_of(pvalue)];
    std::size_t bin = 0;
    long counted = bins_.front();
    for (std::size_t i = 0; i < ranks_.size(); ++i) {
        while (counted < ranks_[i]) counted += bins_[++bin];
        permuted_[i].push_back(static_cast<float>(std::log10(middle_of(bin))));
    }
}

void PvalueQuantiles::append(const PvalueQuantiles& next) {
    if (observed_.empty()) observed_ = next.observed_;
    if (ranks_.empty()) ranks_ = next.ranks_;
    permuted_.resize(ranks_.size());
    for (std::size_t i = 0; i < next.permuted_.size(); ++i) {
        permuted_[i].insert(permuted_[i].end(), next.permuted_[i].begin(), next.permuted_[i].end());
    }
}

std::vector<float> PvalueQuantiles::permuted() const {
    std::vector<float> all;
    for (const std::vector<float>& of_rank : permuted_) {
        all.insert(all.end(), of_rank.begin(), of_rank.end());
    }
    return all;
}

bool PvalueQuantiles::restore(std::vector<double> observed, std::span<const float> permuted) {
    if (!observed.empty() && observed.size() != ranks_.size()) return false;
    const std::size_t data_sets = ranks_.empty() ? 0 : permuted.size() / ranks_.size();
    if (data_sets * ranks_.size() != permuted.size()) return false;
    observed_ = std::move(observed);
    for (std::size_t i = 0; i < ranks_.size(); ++i) {
        const auto values = permuted.subspan(i * data_sets, data_sets);
        permuted_[i].assign(values.begin(), values.end());
    }
    return true;
}

std::vector<QuantileRow> PvalueQuantiles::rows() const {
    std::vector<QuantileRow> rows;
    for (std::size_t i = 0; i < observed_.size(); ++i) {
        QuantileRow row{.rank = ranks_[i], .observed = as_written(observed_[i])};
        std::vector<float> sorted = permuted_[i];
        if (!sorted.empty()) {
            std::ranges::sort(sorted);
            row.low = as_written(std::pow(10, quantile(sorted, 0.025)));
            row.expected = as_written(std::pow(10, quantile(sorted, 0.5)));
            row.high = as_written(std::pow(10, quantile(sorted, 0.975)));
        }
        rows.push_back(row);
    }
    return rows;
}

}  // namespace vort
