// Is the selected model, as a whole, associated with the response?
#pragma once

namespace vort {

class ModelTest {
  public:
    ModelTest() = default;

    // `trials` a block and `blocks` make the number of trials that run() assumes; the
    // third number has no effect.
    ModelTest(int trials, int blocks, int /*count*/) : trials_(trials), blocks_(blocks) {}

    // p-value of the score test that all coefficients of the selected columns are 0. Selected is
    // every column whose coefficient exceeds 1e-6 in absolute value. X: n_col columns of n_row
    // doubles, Y: n_row, beta: n_col; none is changed. 0.5 where no column is selected or the
    // statistic is not positive. Columns that depend on each other make it meaningless.
    double run1(int n_row, int n_col, const double* beta, const double* Y,
                const double* const* X) const;

    // One-sided p-value of `count` successes in all trials, each of probability p0, by the normal
    // approximation. Keeps 1 - count / trials, see rate().
    double run(int count, double p0);

    // Share of failures that the last run() saw.
    double rate() const { return rate_; }

  private:
    int trials_ = 100;
    int blocks_ = 400;
    double rate_ = 0.0;
};

}  // namespace vort
