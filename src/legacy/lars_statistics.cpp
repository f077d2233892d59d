// How well the fitted and the leave-one-out predicted values separate cases from controls.
//
// Leaving an individual out of a least-squares fit needs no second fit. With A the selected
// columns, H = (A'A)^-1 and h = a'Ha the individual's leverage, the prediction without it is
//     (fit - h * y) / (1 - h),     its error     (fit - y) / (1 - h).
// The coefficients here come from the stagewise path, so that both are approximations unless the
// columns are orthogonal. Cost: n * s^2 for s selected columns. Source: R. D. Cook, S. Weisberg,
// "Residuals and Influence in Regression" (1982), section 2.2.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "lars/fitted_model.h"
#include "legacy/lars.h"
#include "math/matrix1.h"

namespace vort {

namespace {

using Matrix = math::matrix1<double>;

Matrix design(double** X, int n_row, std::span<const int> selected) {
    Matrix A(static_cast<std::size_t>(n_row), selected.size());
    for (std::size_t i = 0; i < A.RowNo(); ++i) {
        for (std::size_t q = 0; q < A.ColNo(); ++q) A(i, q) = X[selected[q]][i];
    }
    return A;
}

// (a'H)a for every row a. The sums of a'H run side by side, each in the order of its terms.
std::vector<double> leverages(double** X, int n_row, std::span<const int> selected) {
    std::vector<double> result(static_cast<std::size_t>(n_row), 0.0);
    if (selected.empty()) return result;
    const std::size_t s = selected.size();
    const Matrix A = design(X, n_row, selected);
    const Matrix H = !(~A * A);
    std::vector<double> h;
    for (std::size_t p = 0; p < s; ++p) {
        for (std::size_t q = 0; q < s; ++q) h.push_back(H(p, q));
    }
    std::vector<double> row_by_column(s);
    for (std::size_t i = 0; i < result.size(); ++i) {
        std::fill(row_by_column.begin(), row_by_column.end(), 0.0);
        for (std::size_t p = 0; p < s; ++p) {
            const double a = X[selected[p]][i];
            for (std::size_t q = 0; q < s; ++q) row_by_column[q] += a * h[p * s + q];
        }
        for (std::size_t q = 0; q < s; ++q) result[i] += row_by_column[q] * X[selected[q]][i];
    }
    return result;
}

struct Group {
    int size = 0;
    double mean = 0.0;
    double squares = 0.0;  // of the deviations from the mean
};

// The individuals whose response is above 0, or those whose is not.
Group summarise(std::span<const double> values, const double* Y, bool above) {
    Group group;
    double sum = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if ((Y[i] > 0.0) != above) continue;
        ++group.size;
        sum += values[i];
    }
    if (group.size > 0) group.mean = sum / group.size;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if ((Y[i] > 0.0) != above) continue;
        const double d = values[i] - group.mean;
        group.squares += d * d;
    }
    return group;
}

// Distance of the group means in units of the pooled standard deviation: an effect size, with no
// regard to the group sizes.
double separation(std::span<const double> values, const double* Y) {
    const Group cases = summarise(values, Y, true);
    const Group controls = summarise(values, Y, false);
    const double degrees = cases.size + controls.size - 2;
    const double pooled = (cases.squares + controls.squares) / degrees;
    return pooled > 0.0 ? std::fabs(cases.mean - controls.mean) / std::sqrt(pooled) : 0.0;
}

}  // namespace

void LARS::calculationT(double** X, double* Y, int n_row, int n_col, double* beta, double* stat1,
                        double* stat2, double* stat4, double* stat5) {
    const auto n = static_cast<std::size_t>(n_row);
    const std::span<const double> coefficients(beta, static_cast<std::size_t>(n_col));
    const std::vector<int> selected = selected_columns(coefficients);
    std::vector<std::span<double>> columns;
    for (int j = 0; j < n_col; ++j) columns.emplace_back(X[j], n);
    std::vector<double> fitted(n);
    fit(columns, coefficients, fitted);
    const std::vector<double> h = leverages(X, n_row, selected);
    std::vector<double> left_out(fitted.size());
    double squared_errors = 0.0;
    for (std::size_t i = 0; i < fitted.size(); ++i) {
        const double error = (fitted[i] - Y[i]) / (1.0 - h[i]);
        squared_errors += error * error;
        left_out[i] = (fitted[i] - h[i] * Y[i]) / (1.0 - h[i]);
    }
    *stat1 = 0.5;
    *stat2 = separation(fitted, Y);
    *stat4 = squared_errors;
    *stat5 = separation(left_out, Y);
}

}  // namespace vort
