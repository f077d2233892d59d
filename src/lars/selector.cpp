#include "lars/selector.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "common/number_text.h"
#include "common/stop.h"
#include "lars/column_views.h"
#include "lars/fitted_model.h"
#include "lars/normalisation.h"
#include "lars/score_test.h"
#include "lars/stagewise_path.h"

namespace vort {

namespace {

constexpr std::size_t kMaxSteps = 49;

void require_numbers(const DesignColumns& design) {
    const std::vector<double>& y = design.response;
    if (std::all_of(y.begin(), y.end(), [](double value) { return std::isfinite(value); })) return;
    stop("find error input file=" + design.name + '\n');
}

double walk(ColumnViews columns, std::span<const double> response, std::span<double> beta,
            Transcript& transcript) {
    const std::size_t max_steps = std::min({kMaxSteps, columns.size(), response.size()});
    StagewisePath path(columns, response, beta, static_cast<int>(max_steps), transcript);
    while (path.advance()) {
    }
    return path.vanished() ? 0.0 : path.cut().ratio;
}

// The score test's value is shown nowhere, only its warning.
void tell_model(ColumnViews columns, std::span<const double> response, std::span<const double> beta,
                Transcript& transcript) {
    for (const int j : selected_columns(beta)) {
        transcript << "beta[" << j << "]=" << general(beta[j]) << " \n";
    }
    transcript << '\n';
    correct_rate(columns, beta, response, transcript);
    std::vector<std::span<const double>> tested;
    for (const int j : tested_columns(beta)) tested.emplace_back(columns[j]);
    score_test(tested, response, transcript);
}

}  // namespace

Selection select_model(DesignColumns design, Transcript& transcript) {
    Selection selection;
    if (design.response.empty() || design.columns.empty()) {
        transcript << "There are error for reading input data\n";
        return selection;
    }
    require_numbers(design);
    const std::vector<std::span<double>> columns(design.columns.begin(), design.columns.end());
    for (std::size_t j = 0; j < columns.size(); ++j) normalise_column(j, columns[j], transcript);
    centre_response(design.response, transcript);

    selection.beta.assign(columns.size(), 0.0);
    selection.ratio = walk(columns, design.response, selection.beta, transcript);
    if (transcript.wanted()) tell_model(columns, design.response, selection.beta, transcript);
    selection.mean_square = mean_squares(columns, selection.beta);
    selection.nonzero = static_cast<int>(selected_columns(selection.beta).size());
    return selection;
}

// The blanks inside the brackets keep the index a word of its own for whoever reads this.
std::string coefficient_text(const Selection& selection) {
    Transcript text(true);
    if (selection.beta.empty()) return {};
    text << selection.beta.size() << '\n' << selection.nonzero << '\n';
    for (const int j : selected_columns(selection.beta)) {
        text << "beta[ " << j << " ]= " << general(selection.beta[j]) << ' '
             << general(selection.mean_square[j]) << '\n';
    }
    return std::string(text.text());
}

Coefficients read_coefficients(const Selection& selection, Transcript& transcript) {
    const std::size_t size = selection.beta.size();
    Coefficients read{std::vector<double>(size), std::vector<double>(size)};
    for (const int j : selected_columns(selection.beta)) {
        const double beta = selection.beta[j];
        const bool finite = std::isfinite(beta);
        const double value = finite ? as_read_back(general(beta)) : 0.0;
        transcript << "beta[" << j << "]=" << general(value) << ' ';
        if (!finite || !std::isfinite(selection.mean_square[j])) break;
        read.beta[j] = value;
        read.mean_square[j] = as_read_back(general(selection.mean_square[j]));
    }
    if (size > 0) transcript << '\n';
    return read;
}

}  // namespace vort
