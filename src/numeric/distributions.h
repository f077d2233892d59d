// Chi-square, normal and incomplete gamma distribution functions, in double precision with a
// relative accuracy of about 3e-7.
//
// An argument outside the domain prints a message on standard output and ends the process with
// status 1. A series or continued fraction that has not converged after 200 terms prints a warning
// and gives what it has reached; a NaN argument x ends there too.
#pragma once

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

// ln Gamma(x) for x > 0.
double gammln(double x);

}  // namespace vort
