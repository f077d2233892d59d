// Recursive quicksort with a random pivot.
//
// Each partition of three or more elements draws one rand1(); n < 3 draws nothing. Many equal
// values cost time with the square of their number.
#pragma once

namespace vort {

// Sorts a[0 .. n - 1] ascending.
void quicksort(double* a, int n);
void iquicksort(int* a, int n);

// Sorts a[1 .. n] ascending (Lquicksortsort: descending); b[1 .. n] moves along with it.
void quicksortsort(double* a, int* b, int n);
void Lquicksortsort(double* a, int* b, int n);

}  // namespace vort
