// Small utilities on numbers and 1-based vectors.
#pragma once

namespace vort {

int imin(int a, int b);
int imax(int a, int b);

// b where b <= a, else a.
double dmin(double a, double b);

// x multiplied n times, from 1 upward; 1 for n <= 0. ipower wraps around where int is too small.
double power(double x, int n);
int ipower(int a, int n);

// Copies elements 1 .. n.
void cpvec(double* dst, const double* src, int n);
void cpvec(int* dst, const int* src, int n);

// 1 where elements 1 .. n are equal one by one (n = 0 included), else 0.
int compvec(const double* a, const double* b, int n);
int compvec(const int* a, const int* b, int n);

// Density at x of the normal distribution with mean mu and variance var > 0; its 2 pi is
// 6.283185307.
double dennorm(double x, double mu, double var);

}  // namespace vort
