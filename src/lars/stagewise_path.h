// The selection path, and where it is cut.
//
//     StagewisePath path(columns, response, beta, max_steps, transcript);
//     while (path.advance()) {
//     }
//     const double ratio = path.vanished() ? 0.0 : path.cut().ratio;
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "common/transcript.h"
#include "lars/column_views.h"

namespace vort {

class StagewisePath {
  public:
    // Normalised columns and the centred response of the same individuals; beta holds a 0 for each
    // column. None of them is owned; the path turns (negates) columns in place and writes the
    // coefficients to beta. max_steps is at most the number of columns.
    StagewisePath(ColumnViews columns, std::span<const double> response, std::span<double> beta,
                  int max_steps, Transcript& transcript);

    // Makes a step. False where the path has ended. A column that would enter with the coefficient
    // 0 stops the run.
    bool advance();

    // Whether the path ended before a step because the residual had become 0. There is then no
    // cut, and the columns turned so far stay turned.
    bool vanished() const { return vanished_; }

    // What the last step left of the response; the response itself before the first one.
    std::span<const double> residual() const { return residual_; }

    struct Cut {
        int step;      // number of steps whose columns stay in the model
        double ratio;  // Cp there, in units of the empty model's
    };

    // Cuts the path, once it has ended, at its smallest Cp: takes the columns that entered later
    // out of beta, and turns the negative columns back.
    Cut cut();

  private:
    void correlate(double scale);
    std::size_t strongest() const;
    double strongest_rest() const;
    void enter(std::size_t j, double scale);
    void turn(std::size_t j);
    void tell_entry(const char* sign, std::size_t j);
    void update_residual();
    void accept();
    bool stagnates(int k) const;
    int steps() const { return static_cast<int>(rss_.size()) - 1; }

    ColumnViews columns_;
    std::span<const double> response_;
    std::span<double> beta_;
    int max_steps_;
    Transcript& transcript_;

    std::vector<double> residual_;
    double residual_squares_;
    std::vector<double> rss_;           // [k] residual sum of squares after k accepted steps
    std::vector<double> largest_rest_;  // [k] largest |correlation| left after step k's entry
    std::vector<double> c_;             // correlation of each inactive column
    std::vector<int> order_;            // step, from 1, at which each active column entered
    std::vector<char> active_;
    std::vector<char> negative_;
    bool ended_ = false;
    bool vanished_ = false;
};

// Cp of step j of a path of `steps` steps in `n` individuals.
double path_cp(int n, int steps, int j, double rss_j, double rss_last);

}  // namespace vort
