// Forward stagewise selection with a Cp stop (docs/method.md, section 7).
//
// A step looks for the column most correlated with the residual, gives it the coefficient that fits
// the residual best (their inner product: columns have mean 0 and length 1) and takes the new
// residual from the response:
//
//     X0 = (1, -1, 0, 0) / sqrt 2,  X1 = (0, 0, 1, -1) / sqrt 2,  Y = (3, -3, 1, -1)
//     step 0: X0 enters with 3 sqrt 2, sum of squares 20 -> 2
//     step 1: X1 enters with 1 sqrt 2, sum of squares  2 -> 0
//
// A column that was ever negatively correlated with a residual is turned (negated) as it enters. At
// the end all such columns are turned together with their coefficients: one that had entered now
// stands as it was read, one that had not is left negated.
//
// Cost: a step of the path reads every inactive column once (its inner product with the residual)
// and every active one once (the new residual): n * p for a step, n * p * steps for the path. Every
// sum starts at 0 and takes its terms in increasing index; speed comes from working on several sums
// at a time.
#include "lars/stagewise_path.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "common/number_text.h"
#include "common/stop.h"
#include "lars/fitted_model.h"

namespace vort {

namespace {

constexpr int kLookBack = 10;
constexpr double kStagnantCorrelation = 0.05;  // share of the first step's value
constexpr double kStagnantRss = 0.01;          // share of the empty model's value

double sum_of_squares(std::span<const double> values) {
    double sum = 0.0;
    for (const double value : values) sum += value * value;
    return sum;
}

// One sum is a chain of additions, each waiting for the one before; eight chains side by side keep
// the processor busy.
constexpr std::size_t kChains = 8;

std::array<double, kChains> inner_products(const std::array<const double*, kChains>& columns,
                                           std::span<const double> e) {
    std::array<double, kChains> sums{};
    for (std::size_t i = 0; i < e.size(); ++i) {
        for (std::size_t c = 0; c < kChains; ++c) sums[c] += columns[c][i] * e[i];
    }
    return sums;
}

// Position of the smallest value, the first of equals; 0 where the first is not a number.
std::size_t smallest(std::span<const double> values) {
    std::size_t best = 0;
    for (std::size_t j = 1; j < values.size(); ++j) {
        if (values[j] < values[best]) best = j;
    }
    return best;
}

}  // namespace

StagewisePath::StagewisePath(ColumnViews columns, std::span<const double> response,
                             std::span<double> beta, int max_steps, Transcript& transcript)
    : columns_(columns),
      response_(response),
      beta_(beta),
      max_steps_(max_steps),
      transcript_(transcript),
      residual_(response.begin(), response.end()),
      residual_squares_(sum_of_squares(response)),
      rss_{residual_squares_},
      c_(columns.size()),
      order_(columns.size()),
      active_(columns.size()),
      negative_(columns.size()) {}

bool StagewisePath::advance() {
    const int k = steps();
    if (ended_ || k >= max_steps_) return false;
    const double scale = std::sqrt(residual_squares_ / (static_cast<double>(response_.size()) - 1));
    if (scale == 0.0) {
        transcript_ << "Residual prediction error vector E[" << k << "] is zero, at " << k
                    << " step !\n";
        ended_ = vanished_ = true;
        return false;
    }
    correlate(scale);
    enter(strongest(), scale);
    update_residual();
    if (k > 0 && rss_.back() < residual_squares_) {
        ended_ = true;
    } else {
        accept();
        ended_ = stagnates(k);
    }
    return true;
}

// Correlations of the inactive columns with the residual, in units of `scale`.
void StagewisePath::correlate(double scale) {
    std::array<const double*, kChains> columns{};
    std::array<std::size_t, kChains> index{};
    std::size_t filled = 0;
    const auto evaluate = [&] {
        std::fill(columns.begin() + filled, columns.end(), columns[0]);
        const std::array<double, kChains> sums = inner_products(columns, residual_);
        for (std::size_t c = 0; c < filled; ++c) {
            if (sums[c] < 0.0) negative_[index[c]] = 1;
            c_[index[c]] = sums[c] / scale;
        }
        filled = 0;
    };
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        if (active_[j] != 0) continue;
        columns[filled] = columns_[j].data();
        index[filled++] = j;
        if (filled == kChains) evaluate();
    }
    if (filled > 0) evaluate();
}

// The inactive column of the largest |correlation|, the first of equals. There is one, as there
// are never more steps than columns.
std::size_t StagewisePath::strongest() const {
    std::size_t best = columns_.size();
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        if (active_[j] != 0) continue;
        if (best == columns_.size() || std::fabs(c_[j]) > std::fabs(c_[best])) best = j;
    }
    return best;
}

double StagewisePath::strongest_rest() const {
    double largest = 0.0;
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        if (active_[j] == 0 && std::fabs(c_[j]) > largest) largest = std::fabs(c_[j]);
    }
    return largest;
}

// A turned column would win a second search with the very same size of correlation, so there is
// none.
void StagewisePath::enter(std::size_t j, double scale) {
    active_[j] = 1;
    largest_rest_.push_back(strongest_rest());
    beta_[j] = c_[j] * scale;
    if (beta_[j] == 0.0) {
        stop("maybe have some error, because beta[j]==0 where |c_hat[j]| be max\n");
    }
    if (negative_[j] != 0) {
        tell_entry("negative", j);
        turn(j);
    }
    tell_entry("positive", j);
    order_[j] = steps() + 1;
}

void StagewisePath::turn(std::size_t j) {
    for (double& value : columns_[j]) value = -value;
    beta_[j] = -beta_[j];
}

void StagewisePath::tell_entry(const char* sign, std::size_t j) {
    transcript_ << "find " << sign << " coefficient at " << j << " beta[" << j
                << "]=" << general(beta_[j]) << '\n';
}

void StagewisePath::update_residual() {
    fit(columns_, beta_, residual_);
    for (std::size_t i = 0; i < residual_.size(); ++i) residual_[i] = response_[i] - residual_[i];
    residual_squares_ = sum_of_squares(residual_);
}

void StagewisePath::accept() {
    transcript_ << "k=" << steps() + 1 << ",error=" << fixed(residual_squares_, 13, 15)
                << " nRow=" << response_.size() << " E2[k] =" << fixed(rss_.back())
                << " sigma2=" << fixed(rss_[0] / static_cast<double>(response_.size())) << "\n\n";
    rss_.push_back(residual_squares_);
}

// Looks at the sum of squares before step k, not after it.
bool StagewisePath::stagnates(int k) const {
    if (k <= kLookBack) return false;
    return largest_rest_[k - kLookBack] - largest_rest_[k] <
               kStagnantCorrelation * largest_rest_[0] ||
           rss_[k - kLookBack] - rss_[k] < kStagnantRss * rss_[0];
}

StagewisePath::Cut StagewisePath::cut() {
    const auto n = static_cast<int>(response_.size());
    std::vector<double> cp;
    for (int j = 0; j <= steps(); ++j) {
        cp.push_back(path_cp(n, steps(), j, rss_[j], rss_.back()));
        transcript_ << "Cp[" << j << "]=" << general(cp.back()) << '\n';
    }
    const std::size_t best = smallest(cp);
    const Cut result{static_cast<int>(best), cp[best] / cp[0]};
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        if (order_[j] > result.step) beta_[j] = 0.0;
        if (negative_[j] != 0) turn(j);
    }
    transcript_ << "stopstep=" << result.step << "\nCp return value=" << general(result.ratio)
                << '\n';
    return result;
}

double path_cp(int n, int steps, int j, double rss_j, double rss_last) {
    return (n - steps - 1) * rss_j / rss_last + 0.5 * j;
}

}  // namespace vort
