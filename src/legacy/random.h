// The process-wide uniform generator (numeric/generator.h) and the shuffles built on it.
//
// Every run draws the same numbers: the state starts at fixed seeds and only init_rand1() resets
// it. How many numbers a function draws is therefore part of what it promises.
#pragma once

#include "numeric/generator.h"

namespace vort {

// State of rand1(), one residue for each of its three parts: 1, 3 and 5 at the start. Written by
// rand1() and init_rand1(); read by nothing else.
extern int RX;
extern int RY;
extern int RZ;

// The state as a generator, and back.
Generator default_generator();
void store_generator(const Generator& generator);

// Uniform number in [0, 1).
double rand1();

// Puts the state back to 1, 3, 5.
void init_rand1();

// The C library's rand() divided by 2147483647, so in [0, 1].
double rand2();

// A random permutation of 1 .. n in out[1 .. n]; draws n numbers, for n = 1 too.
void randomsort(int n, int* out);

// Shuffles y[0 .. n - 1] in place by a permutation of randomsort(); returns 0.
int permutation1(short* y, int n);

}  // namespace vort
