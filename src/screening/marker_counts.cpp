#include "screening/marker_counts.h"

#include <algorithm>

#include "common/parallel.h"
#include "screening/count_kernel.h"
#include "screening/stretch_screening.h"

namespace vort {

namespace {

constexpr std::size_t kColumnsAtOnce = 256;

GenotypeCounts counts_of(PlaneCounts counted, int group) {
    const int none = group - counted.one - counted.two - counted.missing;
    return {{none, counted.one, counted.two, counted.missing}};
}

// Counts one column after the other, with room for the planes of one.
class ColumnCounter {
  public:
    ColumnCounter(const Genotypes& genotypes, const CasePlanes& cases, GroupSizes sizes)
        : genotypes_(genotypes),
          cases_(cases),
          sizes_(sizes),
          count_(kernel_for(best_instructions(),
                            []<Instructions I>() { return CountKernel<I>::count; })),
          planes_(3 * cases.words()) {}

    MarkerCounts count(int j) {
        const std::size_t words = cases_.words();
        genotypes_.planes(j, {planes_.data(), planes_.data() + words, planes_.data() + 2 * words});
        PlaneCounts all{};
        PlaneCounts cases{};
        for (std::size_t w = 0; w < words; w += kCountedWords) {
            const std::size_t size = std::min(kCountedWords, words - w);
            const PlaneRows column{planes_.data() + w, words, 3};
            count_(column, {cases_.everybody() + w, words, 1}, size, &all, 0);
            count_(column, {cases_.plane(0) + w, words, 1}, size, &cases, 0);
        }
        const PlaneCounts controls{all.one - cases.one, all.two - cases.two,
                                   all.missing - cases.missing};
        return {counts_of(cases, sizes_.cases), counts_of(controls, sizes_.controls)};
    }

  private:
    const Genotypes& genotypes_;
    const CasePlanes& cases_;
    GroupSizes sizes_;
    decltype(&CountKernel<Instructions::kPortable>::count) count_;
    std::vector<std::uint64_t> planes_;
};

}  // namespace

std::vector<MarkerCounts> count_all_genotypes(const Genotypes& genotypes,
                                              const PhenotypeRows& phenotypes, int threads) {
    const std::vector<short> observed = phenotypes.row(0);
    const int cases = static_cast<int>(std::count(observed.begin(), observed.end(), 1));
    const GroupSizes sizes{cases, phenotypes.individuals() - cases};
    const CasePlanes planes(phenotypes, 0, 1);
    std::vector<MarkerCounts> counts(static_cast<std::size_t>(genotypes.markers()));
    for_each_stretch(threads, counts.size(), kColumnsAtOnce,
                     [&](std::size_t begin, std::size_t end) {
                         ColumnCounter counter(genotypes, planes, sizes);
                         for (std::size_t j = begin; j < end; ++j) {
                             counts[j] = counter.count(static_cast<int>(j));
                         }
                     });
    return counts;
}

}  // namespace vort
