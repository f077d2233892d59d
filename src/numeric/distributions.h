// Chi-square, normal and incomplete gamma distribution functions, in double precision with a
// relative accuracy of about 3e-7.
//
// A series or continued fraction that has not converged after 200 terms gives what it has reached,
// with a warning; a NaN argument x ends there too. Functions that return a Tail leave it to the
// caller to say so. The others print it on standard output; an argument outside the domain prints
// a message there and ends the process with status 1.
#pragma once

namespace vort {

struct Tail {
    double value;
    const char* warning;  // a line with its end, of static storage; null where there is none
};

// What is said of an argument outside the domain of P(a, x).
inline constexpr const char* kGammaDomain = " error for the input parameter in gammp function\n";

// P(a, x), a > 0, x >= 0 or NaN.
Tail lower_tail_gamma(double a, double x);

// Lower tail of the chi-square distribution with df >= 1 degrees of freedom, x >= 0 or NaN.
Tail lower_tail_chi_square(int df, double x);

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
