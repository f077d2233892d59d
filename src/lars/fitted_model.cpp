#include "lars/fitted_model.h"

#include <algorithm>
#include <cstddef>

#include "common/number_text.h"

namespace vort {

std::vector<int> selected_columns(std::span<const double> beta) {
    std::vector<int> selected;
    for (std::size_t j = 0; j < beta.size(); ++j) {
        if (beta[j] != 0.0) selected.push_back(static_cast<int>(j));
    }
    return selected;
}

// Column by column into all fitted values at once: each value's additions keep their order.
void fit(ColumnViews columns, std::span<const double> beta, std::span<double> fitted) {
    std::fill(fitted.begin(), fitted.end(), 0.0);
    for (std::size_t j = 0; j < columns.size(); ++j) {
        const double coefficient = beta[j];
        if (coefficient == 0.0) continue;
        const double* values = columns[j].data();
        for (std::size_t i = 0; i < fitted.size(); ++i) fitted[i] += coefficient * values[i];
    }
}

double correct_rate(ColumnViews columns, std::span<const double> beta,
                    std::span<const double> response, Transcript& transcript) {
    std::vector<double> fitted(response.size());
    fit(columns, beta, fitted);
    const auto n = static_cast<double>(response.size());
    double sum = 0.0;
    for (const double y : response) sum += y;
    const double mean = sum / n;
    int correct = 0;
    for (std::size_t i = 0; i < fitted.size(); ++i) {
        const double centred = response[i] - mean;
        if ((fitted[i] >= 0.0 && centred > 0.0) || (fitted[i] < 0.0 && centred < 0.0)) ++correct;
    }
    const double rate = correct / n;
    transcript << "correct rate=" << general(rate) << '\n';
    return rate;
}

std::vector<double> mean_squares(ColumnViews columns, std::span<const double> beta) {
    std::vector<double> result(beta.size(), 0.0);
    for (const int j : selected_columns(beta)) {
        double squares = 0.0;
        for (const double value : columns[j]) squares += value * value;
        result[j] = squares / static_cast<double>(columns[j].size());
    }
    return result;
}

}  // namespace vort
