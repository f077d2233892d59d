// Model selection: a sparse linear model over the base learners, by forward stagewise selection.
//
// One object serves one run:
//
//     LARS selector(rows, cols, 50, 0);
//     selector.datapath = prefix;
//     const double ratio = selector.run(1, &stat1, &stat2, &p_value, &stat4, &stat5);
//
// reads prefix + "output_X_Y.txt", centres and scales what it read, walks the selection path,
// cuts it where the Cp value is smallest and writes prefix + "beta.txt".
//
// Shapes, throughout: X is nCol pointers to columns of nRow doubles each, X[j][i] being base
// learner j of individual i; Y holds nRow doubles, beta holds nCol; everything is 0-based. The
// functions below work in place on the arrays they are given, of the sizes the object was built
// with; run() gives them the object's own.
//
// Console output is part of the interface. Unreadable data, and a path that cannot go on, end the
// program with status 0 after their message. Thin callers of lars/selector.h and what it is made
// of; reading the file, the generator and the leave-one-out statistics are only here.
#pragma once

#include <cstddef>
#include <vector>

namespace vort {

class LARS {
  public:
    // What run() returns when there was nothing to select from.
    static constexpr double kNoResult = 2147483647.0;

    // `rows` individuals, `cols` base learners, at most `limit` - 1 steps of the path. source 1
    // generates synthetic data, any other value reads the file. Sizes below what makes sense
    // (rows and cols 0, limit 1) are raised to that.
    LARS(int rows, int cols, int limit, int source);

    // Its column pointers point into itself.
    LARS(const LARS&) = delete;
    LARS& operator=(const LARS&) = delete;

    // The whole selection, once an object. The first argument is ignored. Returns
    // Cp(stop) / Cp(0): 1 for an empty model, the smaller the more the model explains, 0 where the
    // residual vanishes on the way; kNoResult, with the five values untouched, where there are no
    // rows or no columns. See calculationT for stat1, stat2, stat4, stat5; model_test_value is the
    // p-value of ModelTest::run1.
    double run(int ignored, double* stat1, double* stat2, double* model_test_value, double* stat4,
               double* stat5);

    // Fills Y and X from a text file of `nrow` rows, response first. 0, or -1 where there is
    // nothing to read. A file that cannot be opened, or that ends early, ends the program.
    int ReadDatafromfile(double** X, double* Y, const char* file, int nrow);

    // Gives every column mean 0 and length 1, a constant one all zeros; centres Y. 0, or -1 at the
    // first constant column when `strict` is not 0.
    int lars_init(double** X, double* Y, int strict);

    // Fills X and Y with a synthetic model, drawn from rand2(). Returns 0.
    int GenerateModelData(double** X, double* Y);

    // The path, on normalised data. E: min(limit - 1, nCol, nRow) + 1 vectors of nRow doubles; E[k]
    // receives the residual before step k. beta is zero on entry and receives the coefficients of
    // the model. Returns Cp(stop) / Cp(0). Where a residual vanishes it returns 0 at once:
    // *stopstep is not set and the columns turned so far stay turned.
    double fos(double** X, double* Y, double** E, double* beta, int* stopstep);

    // Cp of step j of a path of K steps: rss_j is its residual sum of squares, rss_last the one of
    // step K. The other arguments are not used.
    static double Cp_Calcul1(int n_row, int n_col, int j, double rss_j, double rss_0,
                             double rss_last, double n_sigma2, int K);

    // Share of the individuals whose fitted value and centred response agree in sign; a fitted
    // value of 0 counts as positive. Prints it, too.
    double correct_error_rate(double** X, double* Y, double* beta);

    // beta.txt: nCol, the number of non-zero coefficients, and for each of these the line
    // "beta[ j ]= coefficient mean-square-of-column". 0, or -1 where it cannot be opened.
    int writebetatofile(double* beta);

    // stat1: 0.5. stat2: distance of the mean fitted values of cases (Y > 0) and controls, in
    // units of their pooled standard deviation. stat4: sum of squared leave-one-out prediction
    // errors. stat5: as stat2, of the leave-one-out predictions. The model's columns must be
    // linearly independent; where they are not the last two are meaningless.
    void calculationT(double** X, double* Y, int n_row, int n_col, double* beta, double* stat1,
                      double* stat2, double* stat4, double* stat5);

    const char* datapath = "";  // put in front of both file names; not owned
    int header_flag = 0;        // 1: the file begins with nCol + 2 words to skip
    int row_label_flag = 0;     // 1: every row begins with a word to skip
    int csm_count = 5;          // carried for the builder, not read here
    int csm_flag_b = 0;         // carried for the builder, not read here

  private:
    int max_steps() const;

    int n_row_;
    int n_col_;
    int limit_;
    int source_;

    std::vector<double> x_values_;  // column after column
    std::vector<double> y_;
    std::vector<double> residual_values_;
    std::vector<double*> x_;  // into x_values_
    std::vector<double*> e_;  // into residual_values_
};

}  // namespace vort
