// A design matrix from a file, or from the generator.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <span>
#include <vector>

#include "common/diagnostics.h"
#include "common/number_text.h"
#include "lars/column_views.h"
#include "legacy/design_file.h"
#include "legacy/lars.h"
#include "legacy/on_console.h"
#include "legacy/random.h"

namespace vort {

namespace {

// The generator's own scaling, by the corrected sum of squares of the values as drawn.
void standardise(std::span<double> values) {
    double squares = 0.0;
    for (const double value : values) squares += value * value;
    const double mean = mean_of(values);
    const auto n = static_cast<double>(values.size());
    const double length = std::sqrt(squares - n * (mean * mean));
    for (double& value : values) value = (value - mean) / length;
}

std::vector<double> draw_coefficients(int n_col) {
    std::vector<double> b(static_cast<std::size_t>(std::min(1, n_col)));
    std::cout << "\n model_var_number=" << b.size() << '\n';
    for (std::size_t k = 0; k < b.size(); ++k) {
        b[k] = 5.0 * rand2() - 2.5;
        std::cout << "b[" << k << "]=" << fixed(b[k]) << '\n';
    }
    return b;
}

// Nineteen in twenty individuals respond to the model's own columns, smoothly and without sign;
// the others linearly to columns drawn at random.
double draw_response(std::span<const double> b, double** X, int n_col, int i) {
    const double u = rand2();
    double y = 1.05 * rand2();
    if (u < 0.95) {
        double model = 0.0;
        for (std::size_t k = 0; k < b.size(); ++k) model += b[k] * X[k][i];
        return y + std::exp(-(model * model));
    }
    for (const double coefficient : b) {
        const long column = std::lround(static_cast<double>(n_col) * rand2());
        y += coefficient * X[std::min<long>(column, n_col - 1)][i];
    }
    return y;
}

}  // namespace

int LARS::ReadDatafromfile(double** X, double* Y, const char* file, int nrow) {
    if (n_col_ == 0 || nrow == 0) return -1;
    const DesignLayout layout{{nrow, n_col_}, header_flag == 1, row_label_flag == 1};
    return on_console([&](Transcript&) {
        Diagnostics diagnostics(std::cerr);
        read_design(file, layout, X, Y, diagnostics);
        return 0;
    });
}

int LARS::GenerateModelData(double** X, double* Y) {
    const std::vector<double> b = draw_coefficients(n_col_);
    const auto n = static_cast<std::size_t>(n_row_);
    for (int j = 0; j < n_col_; ++j) {
        const std::span<double> column(X[j], n);
        for (double& value : column) value = rand2();
        standardise(column);
    }
    for (int i = 0; i < n_row_; ++i) Y[i] = draw_response(b, X, n_col_, i);
    standardise(std::span<double>(Y, n));

    double squares = 0.0;
    for (const double coefficient : b) squares += coefficient * coefficient;
    std::cout << "Ratio of Information and Noise = " << general(squares / (1.05 * 1.05)) << '\n';
    return 0;
}

}  // namespace vort
