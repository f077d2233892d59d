#include "screening/five_model_test.h"

#include "numeric/distributions.h"
#include "screening/five_model_statistics.h"

namespace vort {

namespace {

double upper_tail(int degrees_of_freedom, double statistic) {
    return 1 - lower_tail_chi_square(degrees_of_freedom, statistic).value;
}

}  // namespace

MarkerCounts count_genotypes(std::span<const signed char> codes,
                             std::span<const short> phenotypes) {
    MarkerCounts counts;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        GenotypeCounts& group = phenotypes[i] == 1 ? counts.cases : counts.controls;
        ++group.count[codes[i] == -1 ? 3 : codes[i]];
    }
    return counts;
}

std::array<double, kModels> five_model_pvalues(const MarkerCounts& counts, int cases,
                                               int controls) {
    const auto& a = counts.cases.count;
    const auto& b = counts.controls.count;
    const int R = cases - a[3];
    const int S = controls - b[3];
    if (R == 0 || S == 0) return {1.0, 1.0, 1.0, 1.0};
    const auto count = [](int c) { return static_cast<double>(c); };
    const GenotypeTable<double> table{count(a[0]), count(a[1]), count(a[2]), count(b[0]),
                                      count(b[1]), count(b[2]), count(R),    count(S)};
    ModelStatistics<double> statistics{};
    five_model_statistics<double>(table, statistics);
    const int classes = static_cast<int>(statistics.classes);
    return {upper_tail(1, statistics.additive), upper_tail(1, statistics.dominant),
            upper_tail(1, statistics.recessive),
            classes < 2 ? 1.0 : upper_tail(classes - 1, statistics.genotype)};
}

}  // namespace vort
