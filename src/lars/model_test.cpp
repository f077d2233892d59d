// The score test of a linear model.
//
// Under the null hypothesis every response is drawn around the common mean with variance sigma2.
// The score vector U of the selected columns, U = sum over i of (y_i - y_mean) * d_i with d_i the
// individual's centred row, then has covariance sigma2 * sum d_i d_i', and T = U' S^-1 U is about
// chi-square with as many degrees of freedom as there are columns. For one column T is n times the
// squared correlation of column and response. The test needs no fitted model: the coefficients
// only say which columns are meant.
//
// Cost: n_row * s^2 for s columns. Source: C. R. Rao (1948), "Large sample tests of statistical
// hypotheses concerning several parameters", Proc. Cambridge Phil. Soc. 44, 50-57.

#include "lars/model_test.h"

#include <cmath>
#include <cstddef>
#include <vector>

#include "math/matrix1.h"
#include "numeric/distributions.h"

namespace vort {

namespace {

using Matrix = math::matrix1<double>;

constexpr double kSelected = 1e-6;

double mean_of(const double* values, int n) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) sum += values[i];
    return sum / n;
}

struct SelectedColumn {
    const double* values;
    double mean;
};

std::vector<SelectedColumn> select_columns(int n_row, int n_col, const double* beta,
                                           const double* const* X) {
    std::vector<SelectedColumn> selected;
    for (int j = 0; j < n_col; ++j) {
        if (std::fabs(beta[j]) > kSelected) selected.push_back({X[j], mean_of(X[j], n_row)});
    }
    return selected;
}

double variance_of(const double* values, double mean, int n) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        const double d = values[i] - mean;
        sum += d * d;
    }
    return sum / n;
}

double score_statistic(const std::vector<SelectedColumn>& columns, const double* Y, int n_row) {
    const std::size_t s = columns.size();
    const double y_mean = mean_of(Y, n_row);
    std::vector<double> squares(s * s);  // row after row
    Matrix U(s, 1);
    std::vector<double> d(s);
    for (int i = 0; i < n_row; ++i) {
        for (std::size_t p = 0; p < s; ++p) d[p] = columns[p].values[i] - columns[p].mean;
        for (std::size_t p = 0; p < s; ++p) {
            for (std::size_t q = 0; q < s; ++q) squares[p * s + q] += d[p] * d[q];
            U(p, 0) += (Y[i] - y_mean) * d[p];
        }
    }
    Matrix S(s, s);
    for (std::size_t p = 0; p < s; ++p) {
        for (std::size_t q = 0; q < s; ++q) S(p, q) = squares[p * s + q];
    }
    S *= variance_of(Y, y_mean, n_row);
    const Matrix T = ~U * !S * U;
    return T(0, 0);
}

}  // namespace

double ModelTest::run1(int n_row, int n_col, const double* beta, const double* Y,
                       const double* const* X) const {
    const std::vector<SelectedColumn> columns = select_columns(n_row, n_col, beta, X);
    if (columns.empty()) return 0.5;
    const double statistic = score_statistic(columns, Y, n_row);
    if (statistic <= 0.0) return 0.5;
    return 1.0 - pchisq(static_cast<int>(columns.size()), statistic);
}

double ModelTest::run(int count, double p0) {
    const double n = static_cast<double>(trials_) * blocks_;
    rate_ = 1.0 - count / n;
    return 1.0 - pnormal((count - n * p0) / std::sqrt((1.0 - p0) * n * p0));
}

}  // namespace vort
