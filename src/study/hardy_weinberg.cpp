// The likelihood of h heterozygotes among n, with r copies of the rarer allele, comes from that of
// h - 2 by one multiplication and one division. All are taken relative to the one near the mean, so
// that none overflows and only those underflow that do not matter:
//
//     L(h + 2) / L(h) = 4 rare common / ((h + 2)(h + 1))
//
// where `rare` and `common` are the homozygotes that belong to h. Equal likelihoods differ in their
// last bits by the way that they were reached, so what is within a billionth counts as equal.
//
// Cost: r / 2 steps.
#include "study/hardy_weinberg.h"

#include <algorithm>

namespace vort {

namespace {

// Sums up likelihoods, all of them and those that are at most that of the genotypes seen.
struct Sums {
    double most;
    double all = 0;
    double tail = 0;

    void add(double likelihood) {
        all += likelihood;
        if (likelihood <= most) tail += likelihood;
    }
};

// Visits (heterozygotes, likelihood), the one of `mean` being 1.
template <typename Visit>
void visit_likelihoods(int n, int rare_alleles, int mean, Visit visit) {
    const auto up = [](double h, double rare, double common) {
        return 4 * rare * common / ((h + 2) * (h + 1));
    };
    const int rare = (rare_alleles - mean) / 2;
    const int common = n - mean - rare;
    double likelihood = 1;
    visit(mean, likelihood);
    for (int h = mean, step = 0; h >= 2; h -= 2, ++step) {
        likelihood /= up(h - 2, rare + step + 1, common + step + 1);
        visit(h - 2, likelihood);
    }
    likelihood = 1;
    for (int h = mean, step = 0; h + 2 <= rare_alleles; h += 2, ++step) {
        likelihood *= up(h, rare - step, common - step);
        visit(h + 2, likelihood);
    }
}

}  // namespace

double hardy_weinberg_p(int heterozygotes, int homozygotes, int other_homozygotes) {
    const int n = heterozygotes + homozygotes + other_homozygotes;
    if (n == 0) return 1;
    const int rare_alleles = 2 * std::min(homozygotes, other_homozygotes) + heterozygotes;
    const double expected =
        static_cast<double>(rare_alleles) * (2.0 * n - rare_alleles) / (2.0 * n);
    int mean = static_cast<int>(expected);
    if ((mean ^ rare_alleles) & 1) ++mean;
    double seen = 0;
    visit_likelihoods(n, rare_alleles, mean, [&](int h, double likelihood) {
        if (h == heterozygotes) seen = likelihood;
    });
    Sums sums{seen * (1 + 1e-9)};
    visit_likelihoods(n, rare_alleles, mean, [&](int, double likelihood) { sums.add(likelihood); });
    return sums.tail / sums.all;
}

}  // namespace vort
