#include "legacy/distributions.h"

#include <cstdlib>
#include <iostream>

namespace vort {

namespace {

[[noreturn]] void domain_error(const char* text) {
    std::cout << text << std::flush;
    std::exit(1);
}

double told(const Tail& tail) {
    if (tail.warning != nullptr) std::cout << tail.warning;
    return tail.value;
}

}  // namespace

double pchisq(int df, double x) {
    return gammp(df / 2.0, x / 2.0);
}

double pnormal(double z) {
    const double t = z * z / 2.0;
    return z >= 0.0 ? 0.5 + 0.5 * gammp(0.5, t) : 0.5 - 0.5 * gammp(0.5, t);
}

double gammp(double a, double x) {
    if (x < 0.0 || a <= 0.0) domain_error(kGammaDomain);
    return told(lower_tail_gamma(a, x));
}

void gser(double* gamser, double a, double x, double* gln) {
    *gln = gammln(a);
    if (x < 0.0) domain_error("error input parameter in routing gser\n");
    *gamser = told(gamma_series(a, x));
}

void gcf(double* gammcf, double a, double x, double* gln) {
    *gln = gammln(a);
    *gammcf = told(upper_gamma_fraction(a, x));
}

}  // namespace vort
