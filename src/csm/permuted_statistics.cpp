#include "csm/permuted_statistics.h"

#include <algorithm>
#include <array>

#include "csm/one_marker_clustering.h"
#include "numeric/clustered_labels.h"
#include "numeric/random_order.h"
#include "screening/count_kernel.h"

namespace vort {

namespace {

constexpr int kBlocks = (kOrders + kLanes - 1) / kLanes;

class PlainStatistics : public PermutedStatistics {
  public:
    PlainStatistics(const BuilderData& data, const SetCells& cells, const GroupingRules& rules,
                    const Generator& start)
        : phenotype_(data.phenotype()),
          clusters_(data.clusters()),
          cells_(cells),
          rules_(rules),
          start_(start) {}

    void compute(int g, int first, double* statistic) override {
        for (int l = 0; l < kLanes && first + l < kOrders; ++l) {
            statistic[l] = compute_one(g, first + l);
        }
    }

    double compute_one(int g, int r) { return group_cells(tallies(r), rules_, g).statistic; }

  private:
    // Every g asks for the same orders again.
    const CellTallies& tallies(int r) {
        if (tallies_.empty()) tallies_.resize(kOrders);
        CellTallies& kept = tallies_[static_cast<std::size_t>(r)];
        if (kept.ncell != 0) return kept;
        order_.resize(phenotype_.size());
        permuted_.resize(phenotype_.size());
        Generator generator = start_;
        generator.skip(static_cast<std::uint64_t>(r) * phenotype_.size());
        space_.draw(generator, clusters_, order_);
        for (std::size_t i = 0; i < permuted_.size(); ++i) permuted_[i] = phenotype_[order_[i]];
        return kept = tally_cells(cells_, permuted_);
    }

    std::span<const double> phenotype_;
    const Clusters& clusters_;
    const SetCells& cells_;
    const GroupingRules& rules_;
    Generator start_;
    std::vector<CellTallies> tallies_;
    RandomOrder space_;
    std::vector<int> order_;
    std::vector<double> permuted_;
};

// Numbers of cases in the cells under every order. Bits of planes stand for draws.
class PermutedCounts {
  public:
    PermutedCounts(const BuilderData& data, const SetCells& cells, const Generator& start)
        : words_((plane_words(data.individuals()) + kWordBlock - 1) / kWordBlock * kWordBlock),
          groups_((static_cast<std::size_t>(cells.ncell) + 2) / 3),
          cells_(3 * groups_ * words_),
          ncell_(cells.ncell),
          counts_(kBlocks * block_size()) {
        const std::span<const int> members = data.clusters().all_members();
        for (std::size_t d = 0; d < cells.cell.size(); ++d) {
            const int cell = cells.cell[members.empty() ? d : static_cast<std::size_t>(members[d])];
            if (cell == 0) continue;
            cells_[static_cast<std::size_t>(cell - 1) * words_ + d / 64] |= std::uint64_t{1}
                                                                            << d % 64;
        }
        draw(data, start);
    }

    // cases[c * kLanes + l]: in cell c = 1 .. ncell, of order first + l.
    const double* block(int first) const {
        return counts_.data() + static_cast<std::size_t>(first / kLanes) * block_size();
    }

  private:
    std::size_t block_size() const { return static_cast<std::size_t>(ncell_ + 1) * kLanes; }

    void draw(const BuilderData& data, const Generator& start) {
        std::vector<unsigned char> label;
        for (const double y : data.phenotype()) label.push_back(y > 0 ? 1 : 0);
        const ClusteredLabels labels(label, data.clusters());
        constexpr int kAtOnce = ClusteredLabels::kOrdersAtOnce;
        std::vector<std::uint64_t> planes(kAtOnce * words_);
        const Generator::Skip skip(kAtOnce * label.size());
        Generator generator = start;
        for (int first = 0; first < kOrders; first += kAtOnce) {
            const int orders = std::min(kAtOnce, kOrders - first);
            labels.draw(generator, orders, planes.data(), words_);
            count(planes.data(), first, orders);
            generator.skip(skip);
        }
    }

    void count(const std::uint64_t* planes, int first, int orders) {
        const auto count_cases =
            kernel_for(best_instructions(), []<Instructions I>() { return CountKernel<I>::count; });
        std::vector<PlaneCounts> found(static_cast<std::size_t>(orders) * groups_);
        for (std::size_t w = 0; w < words_; w += kCountedWords) {
            count_cases({cells_.data() + w, words_, static_cast<int>(3 * groups_)},
                        {planes + w, words_, orders}, std::min(kCountedWords, words_ - w),
                        found.data(), groups_);
        }
        for (int r = 0; r < orders; ++r) {
            double* const out = counts_.data() +
                                static_cast<std::size_t>((first + r) / kLanes) * block_size() +
                                (first + r) % kLanes;
            for (int c = 1; c <= ncell_; ++c) {
                const PlaneCounts& three = found[r * groups_ + (c - 1) / 3];
                const std::array<int, 3> cases{three.one, three.two, three.missing};
                out[c * kLanes] = cases[static_cast<std::size_t>((c - 1) % 3)];
            }
        }
    }

    std::size_t words_;
    std::size_t groups_;  // of three cells
    std::vector<std::uint64_t> cells_;
    int ncell_;
    std::vector<double> counts_;
};

class PairStatistics : public PermutedStatistics {
  public:
    PairStatistics(const BuilderData& data, const SetCells& cells, const GroupingRules& rules,
                   const Generator& start)
        : size_(cells.size),
          counts_(data, cells, start),
          plain_(data, cells, rules, start),
          cells_{cells.ncell,
                 size_.data(),
                 nullptr,
                 {},
                 static_cast<double>(rules.cases),
                 static_cast<double>(rules.controls()),
                 tolerance(data)} {
        const auto [low, high] =
            std::minmax_element(data.phenotype().begin(), data.phenotype().end());
        cells_.value[0] = *low;
        cells_.value[1] = *high;
    }

    void compute(int g, int first, double* statistic) override {
        const auto cluster = kernel_for(
            best_instructions(), []<Instructions I>() { return ClusterKernel<I>::statistics; });
        cells_.cases = counts_.block(first);
        const unsigned unsure = cluster(cells_, g, statistic);
        for (int l = 0; l < kLanes && first + l < kOrders; ++l) {
            if ((unsure >> l & 1) != 0) statistic[l] = plain_.compute_one(g, first + l);
        }
    }

  private:
    // A mean of n values of at most 1 in size, added up one by one, is off by less than n rounding
    // errors of 2^-53; two distances between such means are each off by a few times as much.
    static double tolerance(const BuilderData& data) { return 16 * 0x1p-52 * data.individuals(); }

    std::vector<int> size_;
    PermutedCounts counts_;
    PlainStatistics plain_;
    PermutedCells cells_;
};

class MarkerStatistics : public PermutedStatistics {
  public:
    MarkerStatistics(const BuilderData& data, const SetCells& cells, const GroupingRules& rules,
                     const Generator& start)
        : cells_(cells), rules_(rules), counts_(data, cells, start) {}

    void compute(int g, int first, double* statistic) override {
        const double* const cases = counts_.block(first);
        CellTallies tallies;
        tallies.ncell = cells_.ncell;
        for (int l = 0; l < kLanes && first + l < kOrders; ++l) {
            for (int c = 1; c <= cells_.ncell; ++c) {
                tallies.cases[c] = static_cast<int>(cases[c * kLanes + l]);
                tallies.controls[c] = cells_.size[c] - tallies.cases[c];
            }
            statistic[l] = group_cells(tallies, rules_, g).statistic;
        }
    }

  private:
    const SetCells& cells_;
    const GroupingRules& rules_;
    PermutedCounts counts_;
};

}  // namespace

std::unique_ptr<PermutedStatistics> plain_statistics(const BuilderData& data, const SetCells& cells,
                                                     const GroupingRules& rules,
                                                     const Generator& start) {
    return std::make_unique<PlainStatistics>(data, cells, rules, start);
}

std::unique_ptr<PermutedStatistics> permuted_statistics(const BuilderData& data,
                                                        const SetCells& cells,
                                                        const GroupingRules& rules,
                                                        const Generator& start) {
    if (!data.is_case_control()) return plain_statistics(data, cells, rules, start);
    if (rules.set_size == 1) return std::make_unique<MarkerStatistics>(data, cells, rules, start);
    if (rules.clustering != 0) return plain_statistics(data, cells, rules, start);
    return std::make_unique<PairStatistics>(data, cells, rules, start);
}

}  // namespace vort
