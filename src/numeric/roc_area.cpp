#include "numeric/roc_area.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace vort {

namespace {

constexpr double kNormalQuantile = 1.959963984540054;  // of 0.975

std::vector<double> sorted(std::span<const double> scores) {
    std::vector<double> out(scores.begin(), scores.end());
    std::ranges::sort(out);
    return out;
}

// Twice the number of others that each score exceeds, equal ones counting once.
std::vector<std::int64_t> twice_exceeded(std::span<const double> scores,
                                         std::span<const double> others) {
    std::vector<std::int64_t> wins;
    wins.reserve(scores.size());
    for (const double score : scores) {
        const auto [first, last] = std::equal_range(others.begin(), others.end(), score);
        wins.push_back((first - others.begin()) + (last - others.begin()));
    }
    return wins;
}

// Of the shares wins / scale over their number.
double variance_of_mean(std::span<const std::int64_t> wins, double scale, double mean) {
    double squares = 0;
    for (const std::int64_t win : wins) {
        const double distance = static_cast<double>(win) / scale - mean;
        squares += distance * distance;
    }
    const auto count = static_cast<double>(wins.size());
    return squares / (count - 1) / count;
}

}  // namespace

RocArea roc_area(std::span<const double> upper, std::span<const double> lower) {
    RocArea roc;
    if (upper.empty() || lower.empty()) return roc;
    const std::vector<double> high = sorted(upper);
    const std::vector<double> low = sorted(lower);
    const std::vector<std::int64_t> above = twice_exceeded(high, low);
    const std::vector<std::int64_t> below = twice_exceeded(low, high);
    std::int64_t all = 0;
    for (const std::int64_t wins : above) all += wins;
    const double m = static_cast<double>(high.size());
    const double n = static_cast<double>(low.size());
    roc.area = static_cast<double>(all) / (2 * m * n);
    if (high.size() < 2 || low.size() < 2) return roc;
    const double variance =
        variance_of_mean(above, 2 * n, roc.area) + variance_of_mean(below, 2 * m, 1 - roc.area);
    roc.standard_error = std::sqrt(variance);
    if (!(variance > 0)) return roc;
    const double reach = kNormalQuantile * roc.standard_error;
    roc.interval = {std::max(0.0, roc.area - reach), std::min(1.0, roc.area + reach)};
    return roc;
}

}  // namespace vort
