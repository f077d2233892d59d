#include "lars/lars.h"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <string>
#include <vector>

#include "common/end_program.h"
#include "common/number_text.h"
#include "lars/model_test.h"

namespace vort {

namespace {

// Pointers to the consecutive vectors of `length` values that `values` holds.
std::vector<double*> pointers_into(std::vector<double>& values, std::size_t count,
                                   std::size_t length) {
    values.resize(count * length);
    std::vector<double*> pointers(count);
    for (std::size_t v = 0; v < count; ++v) pointers[v] = values.data() + v * length;
    return pointers;
}

void list_model(const std::vector<double>& beta) {
    for (std::size_t j = 0; j < beta.size(); ++j) {
        if (beta[j] != 0.0) std::cout << "beta[" << j << "]=" << general(beta[j]) << " \n";
    }
    std::cout << '\n';
}

}  // namespace

LARS::LARS(int rows, int cols, int limit, int source)
    : n_row_(std::max(rows, 0)),
      n_col_(std::max(cols, 0)),
      limit_(std::max(limit, 1)),
      source_(source) {
    const auto n = static_cast<std::size_t>(n_row_);
    x_ = pointers_into(x_values_, static_cast<std::size_t>(n_col_), n);
    e_ = pointers_into(residual_values_, static_cast<std::size_t>(max_steps()) + 1, n);
    y_.resize(n);
}

int LARS::max_steps() const {
    return std::min({limit_ - 1, n_col_, n_row_});
}

double LARS::run(int /*ignored*/, double* stat1, double* stat2, double* model_test_value,
                 double* stat4, double* stat5) {
    double** X = x_.data();
    double* Y = y_.data();
    if (source_ == 1) {
        GenerateModelData(X, Y);
    } else {
        const std::string path = std::string(datapath) + "output_X_Y.txt";
        if (ReadDatafromfile(X, Y, path.c_str(), n_row_) < 0) {
            std::cout << "There are error for reading input data\n";
            return kNoResult;
        }
    }
    if (lars_init(X, Y, 0) < 0) end_program();

    std::vector<double> beta(x_.size(), 0.0);
    int stop = 0;
    const double ratio = fos(X, Y, e_.data(), beta.data(), &stop);
    list_model(beta);
    correct_error_rate(X, Y, beta.data());
    *model_test_value = ModelTest().run1(n_row_, n_col_, beta.data(), Y, X);
    writebetatofile(beta.data());
    calculationT(X, Y, n_row_, n_col_, beta.data(), stat1, stat2, stat4, stat5);
    return ratio;
}

}  // namespace vort
