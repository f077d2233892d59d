#include "plain/selection.h"

#include <algorithm>
#include <cmath>

#include "common/stop.h"
#include "lars/plain_path.h"
#include "lars/score_test.h"

namespace vort::fuzz {

namespace {

using Values = std::vector<double>;

double mean_of(const Values& values) {
    double sum = 0;
    for (const double value : values) sum += value;
    return sum / static_cast<double>(values.size());
}

double squares(const Values& values) {
    double sum = 0;
    for (const double value : values) sum += value * value;
    return sum;
}

void normalise(std::size_t j, Values& column, Transcript& console) {
    const double mean = mean_of(column);
    for (double& value : column) value -= mean;
    const double length = std::sqrt(squares(column));
    console << "i=" << j + 1 << "\nmean=" << fixed(mean) << "\nVarance=" << fixed(length) << '\n';
    for (double& value : column) value = length > 0 ? value / length : value;
}

void centre(Values& response, Transcript& console) {
    const double mean = mean_of(response);
    console << "Y >0 count=" << std::ranges::count_if(response, [](double y) { return y > 0; })
            << " mean=" << general(mean) << '\n';
    for (double& y : response) y -= mean;
}

void tell_model(const testing::Path& path, Transcript& console) {
    for (std::size_t j = 0; j < path.beta.size(); ++j) {
        if (path.beta[j] == 0) continue;
        console << "beta[" << j << "]=" << general(path.beta[j]) << " \n";
    }
    const double mean = mean_of(path.y);
    int correct = 0;
    for (std::size_t i = 0; i < path.y.size(); ++i) {
        double fitted = 0;
        for (std::size_t j = 0; j < path.beta.size(); ++j) {
            if (path.beta[j] != 0) fitted += path.beta[j] * path.x[j][i];
        }
        const double yy = path.y[i] - mean;
        if (fitted >= 0 ? yy > 0 : fitted < 0 && yy < 0) ++correct;
    }
    console << "\ncorrect rate=" << general(correct / static_cast<double>(path.y.size())) << '\n';
    std::vector<std::span<const double>> tested;
    for (const int j : tested_columns(path.beta)) tested.emplace_back(path.x[j]);
    score_test(tested, path.y, console);
}

}  // namespace

Selection select_plainly(const Values& response, std::vector<Values> columns, Transcript& console) {
    for (std::size_t j = 0; j < columns.size(); ++j) normalise(j, columns[j], console);
    testing::Path path{std::move(columns), response};
    centre(path.y, console);
    path.residual = path.y;
    const testing::End end = testing::plain_walk(path);
    console.add(path.text);
    if (end == testing::End::kNoCoefficient) {
        stop("maybe have some error, because beta[j]==0 where |c_hat[j]| be max\n");
    }
    tell_model(path, console);
    Selection selection;
    selection.ratio = end == testing::End::kNoResidual ? 0 : path.ratio;
    selection.beta = path.beta;
    for (std::size_t j = 0; j < path.beta.size(); ++j) {
        const bool selected = path.beta[j] != 0;
        selection.mean_square.push_back(
            selected ? squares(path.x[j]) / static_cast<double>(path.y.size()) : 0);
        if (selected) ++selection.nonzero;
    }
    return selection;
}

}  // namespace vort::fuzz
