#include "legacy/model_test.h"

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "lars/score_test.h"
#include "legacy/distributions.h"
#include "legacy/on_console.h"

namespace vort {

double ModelTest::run1(int n_row, int n_col, const double* beta, const double* Y,
                       const double* const* X) const {
    const auto n = static_cast<std::size_t>(n_row);
    std::vector<std::span<const double>> columns;
    for (const int j : tested_columns({beta, static_cast<std::size_t>(n_col)})) {
        columns.emplace_back(X[j], n);
    }
    return on_console(
        [&](Transcript& transcript) { return score_test(columns, std::span(Y, n), transcript); });
}

double ModelTest::run(int count, double p0) {
    const double n = static_cast<double>(trials_) * blocks_;
    rate_ = 1.0 - count / n;
    return 1.0 - pnormal((count - n * p0) / std::sqrt((1.0 - p0) * n * p0));
}

}  // namespace vort
