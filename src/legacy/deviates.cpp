#include "legacy/deviates.h"

#include <cmath>
#include <cstdlib>
#include <iostream>

#include "legacy/offset_owner.h"
#include "legacy/random.h"

namespace vort {

// Polar form of the Box-Muller transform. It yields two deviates; the second is dropped, so that
// no state beyond that of rand1() is kept.
double nrandom(double mean, double sd) {
    double v1 = 0.0;
    double r = 0.0;
    do {
        v1 = 2.0 * rand1() - 1.0;
        const double v2 = 2.0 * rand1() - 1.0;
        r = v1 * v1 + v2 * v2;
    } while (!(r < 1.0 && r != 0.0));
    return v1 * std::sqrt(-2.0 * std::log(r) / r) * sd + mean;
}

double chisq(int df) {
    if (df < 1) {
        std::cout << "The freedom of chi-square must be positive integer!\n" << std::flush;
        std::exit(1);
    }
    double sum = 0.0;
    for (int i = 0; i < df; ++i) {
        const double z = nrandom(0.0, 1.0);
        sum += z * z;
    }
    return sum;
}

namespace {

// Waiting time of the a-th event: a sum of exponentials, taken as the log of one product.
double gamma_by_product(int a) {
    double product = 1.0;
    for (int i = 0; i < a; ++i) product *= rand1();
    return -std::log(product);
}

// Rejection from a Lorentzian, whose tangent v2 / v1 of a random angle needs no tan().
double gamma_by_rejection(int a) {
    const double am = a - 1;
    const double s = std::sqrt(2.0 * am + 1.0);
    for (;;) {
        const double v1 = rand1();
        const double v2 = 2.0 * rand1() - 1.0;
        if (v1 * v1 + v2 * v2 > 1.0) continue;
        const double y = v2 / v1;
        const double x = s * y + am;
        if (x <= 0.0) continue;
        const double e = (1.0 + y * y) * std::exp(am * std::log(x / am) - s * y);
        if (rand1() <= e) return x;
    }
}

}  // namespace

double llgamma(int a, double b) {
    if (a < 1) std::cout << "shape parameter must be greater than 1\n";
    return (a < 6 ? gamma_by_product(a) : gamma_by_rejection(a)) / b;
}

// Counts the events of a unit-rate process up to time lambda.
int rpoisson(double lambda, int max) {
    const double limit = std::exp(-lambda);
    double product = 1.0;
    int events = -1;
    while (events < max) {
        ++events;
        product *= rand1();
        if (product <= limit) break;
    }
    return events;
}

void Dirichlet(double* p, int* alpha, int k) {
    double sum = 0.0;
    for (int j = 1; j <= k; ++j) {
        p[j] = chisq(2 * alpha[j]);
        sum += p[j];
    }
    for (int j = 1; j <= k; ++j) p[j] = p[j] / sum;
}

void multinomial(int n, double* p, int* counts, int k) {
    if (k < 1) return;
    OffsetVector<double> bound(1, k);
    double sum = 0.0;
    for (int j = 1; j <= k; ++j) {
        sum += p[j];
        bound[j] = sum;
        counts[j] = 0;
    }
    for (int draw = 0; draw < n; ++draw) {
        const double u = rand1();
        if (u < bound[1]) ++counts[1];
        for (int j = 2; j <= k; ++j) {
            if (u > bound[j - 1] && u <= bound[j]) ++counts[j];
        }
    }
}

}  // namespace vort
