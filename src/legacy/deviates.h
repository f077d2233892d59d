// Random numbers of other distributions, made from rand1() and reproducible as it is.
#pragma once

namespace vort {

// Normal deviate with the given mean and standard deviation; draws an even number of uniforms.
double nrandom(double mean, double sd);

// Chi-square deviate with df degrees of freedom. df < 1 prints a message and ends the process with
// status 1.
double chisq(int df);

// Gamma deviate of integer shape a, divided by b. a < 1 prints a message and gives 0 / b.
double llgamma(int a, double b);

// Poisson deviate with mean lambda, at most max; -1, without a draw, for a negative max.
int rpoisson(double lambda, int max);

// Dirichlet vector p[1 .. k] with the parameters alpha[1 .. k], each at least 1.
void Dirichlet(double* p, int* alpha, int k);

// How many of n draws fall in each of k categories with probabilities p[1 .. k], in
// counts[1 .. k]. A draw equal to p[1] or above the sum of all p is counted nowhere.
void multinomial(int n, double* p, int* counts, int k);

}  // namespace vort
