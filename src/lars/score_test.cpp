// The score test of a linear model (C. R. Rao 1948; docs/method.md, section 7).
//
// With d_i the centred row of individual i, U = sum over i of (y_i - y_mean) * d_i has the
// covariance sigma2 * sum d_i d_i' under the null hypothesis, and T = U' S^-1 U is about
// chi-square. For one column T is n times the squared correlation of column and response. The test
// needs no fitted model: the coefficients only say which columns are meant.
//
// Cost: n * s^2 / 2 for n individuals and s columns.
#include "lars/score_test.h"

#include <cmath>
#include <cstddef>

#include "common/chi_square_tail.h"
#include "lars/column_views.h"
#include "math/matrix1.h"

namespace vort {

namespace {

using Matrix = math::matrix1<double>;

constexpr double kSelected = 1e-6;

double variance_of(std::span<const double> values, double mean) {
    double sum = 0.0;
    for (const double value : values) {
        const double d = value - mean;
        sum += d * d;
    }
    return sum / static_cast<double>(values.size());
}

// Sums of products around the means; squares row after row, its upper half only.
struct Products {
    std::vector<double> squares;
    std::vector<double> with_response;
};

Products products_of(std::span<const std::span<const double>> columns,
                     std::span<const double> response, double response_mean) {
    const std::size_t s = columns.size();
    Products sum{std::vector<double>(s * s), std::vector<double>(s)};
    std::vector<double> mean;
    for (const std::span<const double> column : columns) mean.push_back(mean_of(column));
    std::vector<double> d(s);
    for (std::size_t i = 0; i < response.size(); ++i) {
        for (std::size_t p = 0; p < s; ++p) d[p] = columns[p][i] - mean[p];
        for (std::size_t p = 0; p < s; ++p) {
            for (std::size_t q = p; q < s; ++q) sum.squares[p * s + q] += d[p] * d[q];
            sum.with_response[p] += (response[i] - response_mean) * d[p];
        }
    }
    return sum;
}

double score_statistic(std::span<const std::span<const double>> columns,
                       std::span<const double> response) {
    const std::size_t s = columns.size();
    const double mean = mean_of(response);
    const Products sum = products_of(columns, response, mean);
    Matrix U(s, 1);
    Matrix S(s, s);
    for (std::size_t p = 0; p < s; ++p) {
        U(p, 0) = sum.with_response[p];
        for (std::size_t q = p; q < s; ++q) S(p, q) = S(q, p) = sum.squares[p * s + q];
    }
    S *= variance_of(response, mean);
    const Matrix T = ~U * !S * U;
    return T(0, 0);
}

}  // namespace

std::vector<int> tested_columns(std::span<const double> beta) {
    std::vector<int> tested;
    for (std::size_t j = 0; j < beta.size(); ++j) {
        if (std::fabs(beta[j]) > kSelected) tested.push_back(static_cast<int>(j));
    }
    return tested;
}

double score_test(std::span<const std::span<const double>> columns,
                  std::span<const double> response, Transcript& transcript) {
    if (columns.empty()) return 0.5;
    const double statistic = score_statistic(columns, response);
    if (statistic <= 0.0) return 0.5;
    return chi_square_upper_tail(static_cast<int>(columns.size()), statistic, transcript);
}

}  // namespace vort
