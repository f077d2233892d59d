// Numbering of marker sets.
//
// The sets of k out of m markers are numbered from 1 in lexicographic order of their ascending
// members. For m = 4, k = 2:
//
//     c     1     2     3     4     5     6
//     set  1 2   1 3   1 4   2 3   2 4   3 4
//
// Number c is decoded without walking the sets before it: for each position the candidates are
// tried in ascending order, and each accounts for as many sets as continue from it. That costs at
// most m counts altogether.
#pragma once

#include <algorithm>

namespace vort {

// Binomial coefficient of i over j, INT_MAX where it is larger than that. A j above i gives 1, not
// 0, and so does a negative j: tables of these numbers rely on it.
int choose(int i, int j);

// Decodes set number c of k out of m markers into out[1 .. k]. count(a, b) is to give the number
// of sets of b out of a; it is asked for 0 <= b < k and b <= a < m only. A number below 1 gives the
// first set; a number above the last gives 0 in every position, and so does any number where m < k.
template <typename Count>
void decode_combination(int c, int m, int k, int* out, Count count) {
    long remaining = c;
    int previous = 0;
    for (int p = 1; p <= k; ++p) {
        const int last = m - k + p;
        long passed = 0;
        int x = previous + 1;
        for (; x <= last; ++x) {
            const long total = passed + count(m - x, k - p);
            if (total >= remaining) break;
            passed = total;
        }
        if (x > last) {
            std::fill(out + p, out + k + 1, 0);
            return;
        }
        out[p] = x;
        remaining -= passed;
        previous = x;
    }
}

// The same with choose() as the count.
void sortchoose1(int c, int m, int k, int* out);

}  // namespace vort
