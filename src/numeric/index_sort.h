// Iterative quicksort, of values in place or of an index.
//
// An index sort leaves the values where they are and orders their element numbers. Equal values
// come out in the order that the partition leaves them in, which is not that of the input but is
// always the same for the same values. No random numbers are drawn. n < 1 does nothing.
#pragma once

namespace vort {

// Fills indx[1 .. n] with the element numbers 1 .. n so that a[indx[1]] <= ... <= a[indx[n]].
void Quickindex(double* a, int* indx, int n);
void iQuickindex(int* a, int* indx, int n);

// The same 0-based: indx[0 .. n - 1] with the element numbers 0 .. n - 1.
void Quickindex1(double* a, int* indx, int n);

// Sorts a[1 .. n] ascending.
void Quicksort(double* a, int n);
void iQuicksort(int* a, int n);

}  // namespace vort
