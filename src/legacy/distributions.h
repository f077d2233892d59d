// The distribution functions of numeric/distributions.h in forms that print and end the process: a
// warning goes to standard output; an argument outside the domain prints a message there and ends
// the process with status 1.
#pragma once

#include "numeric/distributions.h"

namespace vort {

// Lower tail of the chi-square distribution with df >= 1 degrees of freedom, x >= 0.
double pchisq(int df, double x);

// Standard normal distribution function.
double pnormal(double z);

// Regularised lower incomplete gamma function P(a, x), a > 0, x >= 0.
double gammp(double a, double x);

// P(a, x) by its series, which converges fast for x < a + 1; ln Gamma(a) goes to gln.
void gser(double* gamser, double a, double x, double* gln);

// Q(a, x) = 1 - P(a, x) by its continued fraction, for x >= a + 1; ln Gamma(a) goes to gln.
void gcf(double* gammcf, double a, double x, double* gln);

}  // namespace vort
