// Forward stagewise selection with a Cp stop.
//
// The path starts from the empty model with the response as its residual. A step looks for the
// column most correlated with the residual, gives it the coefficient that fits the residual best
// (their inner product: columns have mean 0 and length 1) and takes the new residual from the
// response. A coefficient is never touched again, so the path is greedier than least angle
// regression, and a column enters at most once.
//
//     X0 = (1, -1, 0, 0) / sqrt 2,  X1 = (0, 0, 1, -1) / sqrt 2,  Y = (3, -3, 1, -1)
//     step 0: X0 enters with 3 sqrt 2, sum of squares 20 -> 2
//     step 1: X1 enters with 1 sqrt 2, sum of squares  2 -> 0
//
// A column with a negative correlation is turned (negated) as it enters, so that every column
// enters with its own sign made positive. Whether it is turned depends on the negative set, which
// remembers every column that was ever negatively correlated with a residual: one that has become
// positive meanwhile is turned all the same and enters with a negative coefficient. At the end
// every column of that set is turned (back) together with its coefficient, which changes no fitted
// value: a column that had entered now stands as it was read, one that had not is left negated.
//
// The path ends when all columns are in, after max_steps steps, when the residual sum of squares
// grows, or when over the last ten steps either it or the largest correlation left has hardly
// moved. The path is then cut at the step with the smallest
//     Cp(j) = (n - K - 1) * rss(j) / rss(K) + j / 2        for a path of K steps,
// a criterion of its own, with a penalty of half a unit a step instead of two.
//
// Cost: a step of the path reads every inactive column once (its inner product with the residual)
// and every active one once (the new residual): n * p for a step, n * p * steps for the path.
// Every sum starts at 0 and takes its terms in increasing index, so that results are the same
// everywhere; speed comes from working on several sums at a time instead.
//
// T. Hastie, R. Tibshirani, J. Friedman, "The Elements of Statistical Learning", 2nd ed. (2009),
// section 3.3.3; C. L. Mallows (1973), "Some comments on Cp", Technometrics 15, 661-675.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <span>
#include <vector>

#include "common/bitset.h"
#include "common/end_program.h"
#include "common/number_text.h"
#include "lars/lars.h"

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

void negate(std::span<double> values) {
    for (double& value : values) value = -value;
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

class StagewisePath {
  public:
    StagewisePath(double** X, const double* Y, double** E, double* beta, int n_row, int n_col,
                  int max_steps);

    // Walks the path to its end. False, after a message, where a residual vanished.
    bool walk();

    // Number of accepted steps.
    int steps() const { return accepted_; }
    // Residual sum of squares after `step` steps.
    double rss(int step) const { return rss_[static_cast<std::size_t>(step)]; }
    double sigma2() const { return sigma2_; }

    // Takes the columns out of the model that entered after `stop` steps.
    void cut(int stop);
    // Turns every column that was ever negatively correlated, with its coefficient.
    void restore_signs();

  private:
    std::span<double> column(int j) const { return {X_[j], n_}; }
    std::span<double> residual(int k) const { return {E_[k], n_}; }
    double& rest(int k) { return largest_rest_[static_cast<std::size_t>(k)]; }

    void correlate(int k, double scale);
    int strongest() const;
    double strongest_rest() const;
    void enter(int j, int k, double scale);
    void turn(int j);
    void print_entry(const char* sign, int j) const;
    void update_residual(int k);
    void accept(int k);
    bool stagnates(int k);

    double** X_;
    std::span<const double> Y_;
    double** E_;
    double* beta_;
    std::size_t n_;
    int n_col_;
    int max_steps_;

    std::vector<double> rss_;           // [k] before step k
    std::vector<double> largest_rest_;  // [k] largest |correlation| left after step k's entry
    std::vector<double> c_;             // correlation of each inactive column
    std::vector<double> fitted_;
    std::vector<int> order_;  // step, from 1, at which each column entered
    bitset active_;
    bitset negative_;
    double sigma2_;
    int accepted_ = 0;
};

StagewisePath::StagewisePath(double** X, const double* Y, double** E, double* beta, int n_row,
                             int n_col, int max_steps)
    : X_(X),
      Y_(Y, static_cast<std::size_t>(n_row)),
      E_(E),
      beta_(beta),
      n_(static_cast<std::size_t>(n_row)),
      n_col_(n_col),
      max_steps_(max_steps),
      rss_(static_cast<std::size_t>(max_steps) + 1),
      largest_rest_(static_cast<std::size_t>(max_steps)),
      c_(static_cast<std::size_t>(n_col)),
      fitted_(n_),
      order_(static_cast<std::size_t>(n_col), std::max(n_row, n_col)),
      active_(static_cast<unsigned long>(n_col)),
      negative_(static_cast<unsigned long>(n_col)) {
    active_.SetZero();
    negative_.SetZero();
    std::copy(Y_.begin(), Y_.end(), E_[0]);
    rss_[0] = sum_of_squares(residual(0));
    sigma2_ = rss_[0] / n_row;
}

bool StagewisePath::walk() {
    const double degrees = static_cast<double>(n_) - 1.0;
    for (int k = 0; k < max_steps_; ++k) {
        const double scale = std::sqrt(rss(k) / degrees);
        if (scale == 0.0) {
            std::cout << "Residual prediction error vector E[" << k << "] is zero, at " << k
                      << " step !\n";
            return false;
        }
        correlate(k, scale);
        enter(strongest(), k, scale);
        update_residual(k);
        if (k > 0 && rss(k) < rss(k + 1)) return true;
        accept(k);
        if (stagnates(k)) return true;
    }
    return true;
}

// Correlations of the inactive columns with residual k, in units of `scale`.
void StagewisePath::correlate(int k, double scale) {
    std::array<const double*, kChains> columns{};
    std::array<int, kChains> index{};
    std::size_t filled = 0;
    const auto evaluate = [&] {
        std::fill(columns.begin() + filled, columns.end(), columns[0]);
        const std::array<double, kChains> sums = inner_products(columns, residual(k));
        for (std::size_t c = 0; c < filled; ++c) {
            if (sums[c] < 0.0) negative_.SetbitOne(static_cast<unsigned long>(index[c]));
            c_[static_cast<std::size_t>(index[c])] = sums[c] / scale;
        }
        filled = 0;
    };
    for (int j = 0; j < n_col_; ++j) {
        if (active_[static_cast<unsigned long>(j)] != 0) continue;
        columns[filled] = X_[j];
        index[filled++] = j;
        if (filled == kChains) evaluate();
    }
    if (filled > 0) evaluate();
}

// The inactive column of the largest |correlation|, the first of equals. There is one, as there
// are never more steps than columns.
int StagewisePath::strongest() const {
    int best = -1;
    double largest = 0.0;
    for (int j = 0; j < n_col_; ++j) {
        if (active_[static_cast<unsigned long>(j)] != 0) continue;
        const double size = std::fabs(c_[static_cast<std::size_t>(j)]);
        if (best < 0 || size > largest) {
            best = j;
            largest = size;
        }
    }
    return best;
}

double StagewisePath::strongest_rest() const {
    double largest = 0.0;
    for (int j = 0; j < n_col_; ++j) {
        if (active_[static_cast<unsigned long>(j)] != 0) continue;
        const double size = std::fabs(c_[static_cast<std::size_t>(j)]);
        if (size > largest) largest = size;
    }
    return largest;
}

// A turned column would win a second search with the very same size of correlation, so there is
// none.
void StagewisePath::enter(int j, int k, double scale) {
    const auto bit = static_cast<unsigned long>(j);
    active_.SetbitOne(bit);
    rest(k) = strongest_rest();
    beta_[j] = c_[bit] * scale;
    if (beta_[j] == 0.0) {
        std::cout << "maybe have some error, because beta[j]==0 where |c_hat[j]| be max\n";
        end_program();
    }
    if (negative_[bit] != 0) {
        print_entry("negative", j);
        turn(j);
    }
    print_entry("positive", j);
    order_[bit] = k + 1;
}

void StagewisePath::turn(int j) {
    negate(column(j));
    beta_[j] = -beta_[j];
}

void StagewisePath::print_entry(const char* sign, int j) const {
    std::cout << "find " << sign << " coefficient at " << j << " beta[" << j
              << "]=" << general(beta_[j]) << '\n';
}

// Column by column into all fitted values at once: each value's additions keep their order.
void StagewisePath::update_residual(int k) {
    std::fill(fitted_.begin(), fitted_.end(), 0.0);
    for (int j = 0; j < n_col_; ++j) {
        const double coefficient = beta_[j];
        if (coefficient == 0.0) continue;
        const double* values = X_[j];
        for (std::size_t i = 0; i < n_; ++i) fitted_[i] += coefficient * values[i];
    }
    const std::span<double> next = residual(k + 1);
    for (std::size_t i = 0; i < n_; ++i) next[i] = Y_[i] - fitted_[i];
    rss_[static_cast<std::size_t>(k) + 1] = sum_of_squares(next);
}

void StagewisePath::accept(int k) {
    accepted_ = k + 1;
    std::cout << "k=" << k + 1 << ",error=" << fixed(rss(k + 1), 13, 15) << " nRow=" << n_
              << " E2[k] =" << fixed(rss(k)) << " sigma2=" << fixed(sigma2_) << "\n\n";
}

// Looks at the sum of squares before step k, not after it.
bool StagewisePath::stagnates(int k) {
    if (k <= kLookBack) return false;
    return rest(k - kLookBack) - rest(k) < kStagnantCorrelation * rest(0) ||
           rss(k - kLookBack) - rss(k) < kStagnantRss * rss(0);
}

void StagewisePath::cut(int stop) {
    for (int j = 0; j < n_col_; ++j) {
        if (order_[static_cast<std::size_t>(j)] > stop) beta_[j] = 0.0;
    }
}

void StagewisePath::restore_signs() {
    for (int j = 0; j < n_col_; ++j) {
        if (negative_[static_cast<unsigned long>(j)] != 0) turn(j);
    }
}

// Position of the smallest value, the first of equals; 0 where the first is not a number.
int smallest(std::span<const double> values) {
    std::size_t best = 0;
    for (std::size_t j = 1; j < values.size(); ++j) {
        if (values[j] < values[best]) best = j;
    }
    return static_cast<int>(best);
}

}  // namespace

double LARS::Cp_Calcul1(int n_row, int /*n_col*/, int j, double rss_j, double /*rss_0*/,
                        double rss_last, double /*n_sigma2*/, int K) {
    return (n_row - K - 1) * rss_j / rss_last + 0.5 * j;
}

double LARS::fos(double** X, double* Y, double** E, double* beta, int* stopstep) {
    StagewisePath path(X, Y, E, beta, n_row_, n_col_, max_steps());
    const bool whole = path.walk();
    const int steps = path.steps();
    last_rss_ = path.rss(steps);
    if (!whole) return 0.0;

    std::vector<double> cp;
    for (int j = 0; j <= steps; ++j) {
        cp.push_back(Cp_Calcul1(n_row_, n_col_, j, path.rss(j), path.rss(0), last_rss_,
                                n_row_ * path.sigma2(), steps));
        std::cout << "Cp[" << j << "]=" << general(cp.back()) << '\n';
    }
    const int stop = smallest(cp);
    const double ratio = cp[static_cast<std::size_t>(stop)] / cp[0];
    path.cut(stop);
    path.restore_signs();
    *stopstep = stop;
    std::cout << "stopstep=" << stop << "\nCp return value=" << general(ratio) << '\n';
    return ratio;
}

}  // namespace vort
