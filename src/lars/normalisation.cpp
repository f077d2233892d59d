#include "lars/normalisation.h"

#include <algorithm>
#include <cmath>

#include "common/number_text.h"
#include "lars/column_views.h"

namespace vort {

namespace {

// Subtracts the mean; returns the length of what is left.
double centre(std::span<double> values, double mean) {
    double squares = 0.0;
    for (double& value : values) {
        value -= mean;
        squares += value * value;
    }
    return std::sqrt(squares);
}

}  // namespace

bool normalise_column(std::size_t j, std::span<double> column, Transcript& transcript) {
    const double mean = mean_of(column);
    const double length = centre(column, mean);
    transcript << "i=" << j + 1 << "\nmean=" << fixed(mean) << "\nVarance=" << fixed(length)
               << '\n';
    if (!(length > 0.0)) return false;
    for (double& value : column) value /= length;
    return true;
}

void centre_response(std::span<double> response, Transcript& transcript) {
    const double mean = mean_of(response);
    const auto above =
        std::count_if(response.begin(), response.end(), [](double y) { return y > 0.0; });
    transcript << "Y >0 count=" << above << " mean=" << general(mean) << '\n';
    for (double& y : response) y -= mean;
}

}  // namespace vort
