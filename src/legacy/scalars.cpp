#include "legacy/scalars.h"

#include <algorithm>
#include <cmath>

namespace vort {

namespace {

template <typename T>
void copy_elements(T* dst, const T* src, int n) {
    for (int i = 1; i <= n; ++i) dst[i] = src[i];
}

template <typename T>
int same_elements(const T* a, const T* b, int n) {
    for (int i = 1; i <= n; ++i) {
        if (a[i] != b[i]) return 0;
    }
    return 1;
}

}  // namespace

int imin(int a, int b) {
    return std::min(a, b);
}
int imax(int a, int b) {
    return std::max(a, b);
}
double dmin(double a, double b) {
    return b <= a ? b : a;
}

double power(double x, int n) {
    double result = 1.0;
    for (int i = 0; i < n; ++i) result *= x;
    return result;
}

int ipower(int a, int n) {
    unsigned result = 1;
    for (int i = 0; i < n; ++i) result *= static_cast<unsigned>(a);
    return static_cast<int>(result);
}

void cpvec(double* dst, const double* src, int n) {
    copy_elements(dst, src, n);
}
void cpvec(int* dst, const int* src, int n) {
    copy_elements(dst, src, n);
}

int compvec(const double* a, const double* b, int n) {
    return same_elements(a, b, n);
}
int compvec(const int* a, const int* b, int n) {
    return same_elements(a, b, n);
}

double dennorm(double x, double mu, double var) {
    constexpr double kTwoPi = 6.283185307;  // the written precision is part of the results
    const double distance = x - mu;
    return std::exp(-(distance * distance) / 2.0 / var) / std::sqrt(var * kTwoPi);
}

}  // namespace vort
