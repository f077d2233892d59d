// Chi-square, normal and incomplete gamma distribution functions, in double precision with a
// relative accuracy of about 3e-7.
//
// A series or continued fraction that has not converged after 200 terms gives what it has reached,
// with a warning that the caller may tell; a NaN argument x ends there too. Arguments outside the
// domain are the caller's to refuse.
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

// The two forms of P(a, x), whichever converges: by its series, fast for x < a + 1, and by the
// continued fraction of Q(a, x) = 1 - P(a, x), which is what the second one gives, for x >= a + 1.
Tail gamma_series(double a, double x);
Tail upper_gamma_fraction(double a, double x);

// ln Gamma(x) for x > 0.
double gammln(double x);

}  // namespace vort
