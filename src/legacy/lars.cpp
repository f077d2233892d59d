#include "legacy/lars.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "common/diagnostics.h"
#include "common/number_text.h"
#include "lars/fitted_model.h"
#include "lars/normalisation.h"
#include "lars/selector.h"
#include "lars/stagewise_path.h"
#include "legacy/model_test.h"
#include "legacy/on_console.h"

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

std::vector<std::span<double>> views_of(double* const* X, int n_row, int n_col) {
    std::vector<std::span<double>> views;
    for (int j = 0; j < n_col; ++j) views.emplace_back(X[j], static_cast<std::size_t>(n_row));
    return views;
}

void list_model(std::span<const double> beta) {
    for (const int j : selected_columns(beta)) {
        std::cout << "beta[" << j << "]=" << general(beta[j]) << " \n";
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
    lars_init(X, Y, 0);

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

int LARS::lars_init(double** X, double* Y, int strict) {
    return on_console([&](Transcript& transcript) {
        const std::vector<std::span<double>> columns = views_of(X, n_row_, n_col_);
        for (std::size_t j = 0; j < columns.size(); ++j) {
            if (normalise_column(j, columns[j], transcript) || strict == 0) continue;
            transcript << "There are some error for variable X_T[" << j
                       << "], all coordinate value are zero or one!\n";
            return -1;
        }
        centre_response({Y, static_cast<std::size_t>(n_row_)}, transcript);
        return 0;
    });
}

double LARS::Cp_Calcul1(int n_row, int /*n_col*/, int j, double rss_j, double /*rss_0*/,
                        double rss_last, double /*n_sigma2*/, int K) {
    return path_cp(n_row, K, j, rss_j, rss_last);
}

double LARS::fos(double** X, double* Y, double** E, double* beta, int* stopstep) {
    return on_console([&](Transcript& transcript) {
        const std::vector<std::span<double>> columns = views_of(X, n_row_, n_col_);
        StagewisePath path(columns, {Y, static_cast<std::size_t>(n_row_)}, {beta, columns.size()},
                           max_steps(), transcript);
        int k = 0;
        do {
            std::copy(path.residual().begin(), path.residual().end(), E[k++]);
        } while (path.advance());
        if (path.vanished()) return 0.0;
        const StagewisePath::Cut cut = path.cut();
        *stopstep = cut.step;
        return cut.ratio;
    });
}

double LARS::correct_error_rate(double** X, double* Y, double* beta) {
    return on_console([&](Transcript& transcript) {
        const std::vector<std::span<double>> columns = views_of(X, n_row_, n_col_);
        return correct_rate(columns, {beta, columns.size()}, {Y, static_cast<std::size_t>(n_row_)},
                            transcript);
    });
}

int LARS::writebetatofile(double* beta) {
    const std::string path = std::string(datapath) + "beta.txt";
    Diagnostics diagnostics(std::cerr);
    std::ofstream file(path);
    if (!file.is_open()) {
        diagnostics.say("files that could not be opened for writing", path, 0,
                        "could not be opened for writing");
        return -1;
    }
    Selection selection;
    selection.beta.assign(beta, beta + n_col_);
    selection.mean_square = mean_squares(views_of(x_.data(), n_row_, n_col_), selection.beta);
    selection.nonzero = static_cast<int>(selected_columns(selection.beta).size());
    file << coefficient_text(selection);
    file.close();
    if (file.good()) return 0;
    diagnostics.say("files that could not be written", path, 0,
                    "could not be fully written (is the disk full?)");
    std::exit(0);  // half a coefficient file would be read as a model
}

}  // namespace vort
