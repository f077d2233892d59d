// Model selection: a sparse linear model over the base learners, by forward stagewise selection.
//
// The columns and the response are centred and scaled, the selection path is walked, and cut where
// its Cp value is smallest:
//
//     const Selection model = select_model({response, columns}, transcript);
//     report << coefficient_text(model);
//
// Individuals and columns are counted from 0.
#pragma once

#include <string>
#include <vector>

#include "common/transcript.h"

namespace vort {

// Individuals x base learners. Every column has a value for every value of the response.
struct DesignColumns {
    std::vector<double> response;  // as its text with six digits after the point is read back
    std::vector<std::vector<double>> columns;
    std::string name = "output_X_Y.txt";  // by which messages call it
};

struct Selection {
    // What `ratio` is where there are no individuals or no columns.
    static constexpr double kNoResult = 2147483647.0;

    // Cp(stop) / Cp(0): 1 for an empty model, the smaller the more the model explains, 0 where the
    // residual vanishes on the way.
    double ratio = kNoResult;
    // A value for each column; empty where there was nothing to select from.
    std::vector<double> beta;
    std::vector<double> mean_square;  // of the normalised column where beta is not 0, else 0
    int nonzero = 0;                  // coefficients that are not 0
};

// Selects the model and tells of it. Makes at most 49 steps; the columns are normalised in place,
// beyond them it needs one more vector of the response's length. A response that is not finite, and
// a path that cannot go on, stop the run.
Selection select_model(DesignColumns design, Transcript& transcript);

// The coefficient file: the number of columns, the number of non-zero coefficients, and for each
// of these the line "beta[ j ]= coefficient mean-square". Empty where there was nothing to select
// from.
std::string coefficient_text(const Selection& selection);

// A value for each column, 0 where the coefficient is 0.
struct Coefficients {
    std::vector<double> beta;
    std::vector<double> mean_square;
};

// What a reader of the coefficient text gets back: six significant digits of each, up to the first
// value that is not a finite number, which ends the reading. The transcript tells of each line.
Coefficients read_coefficients(const Selection& selection, Transcript& transcript);

}  // namespace vort
