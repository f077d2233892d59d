// The exact test of Hardy-Weinberg proportions.
#pragma once

namespace vort {

// The probability, given the alleles' counts, of a number of heterozygotes that is no more likely
// than the one seen; 1 where nobody has a genotype. Not the mid-p value. Wigginton, Cutler and
// Abecasis, Am J Hum Genet 76:887 (2005).
double hardy_weinberg_p(int heterozygotes, int homozygotes, int other_homozygotes);

}  // namespace vort
