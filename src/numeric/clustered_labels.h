// The labels that random orders within clusters give a phenotype of two values.
//
// An order draws the clusters in turn, from each its members without replacement; where nothing is
// in clusters this is an order of all items. The labels of a plane stand in the order of the draws:
// draw d is for the item all_members()[d], so whoever counts labels puts what they are counted in
// into that order, once for all planes.
//
// A cluster is drawn by its runs of labels (label_runs.h): where the items stand in few runs, so do
// the members of each cluster. Clusters of few members are drawn together (small_clusters.h). Where
// a cluster's draws begin is known, so large ones of one label take theirs without drawing.
//
// Cost: that of label_runs.h for clusters of hundreds, 4 nanoseconds a draw for the smallest.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "numeric/clusters.h"
#include "numeric/generator.h"
#include "numeric/instructions.h"
#include "numeric/label_runs.h"
#include "numeric/small_clusters.h"

namespace vort {

class ClusteredLabels {
  public:
    static constexpr int kOrdersAtOnce = LabelRuns::kOrdersAtOnce;

    // labels[i] != 0: item i has label 1.
    ClusteredLabels(std::span<const unsigned char> labels, const Clusters& clusters,
                    Instructions instructions = best_instructions());

    int n() const { return n_; }
    std::size_t plane_words() const { return constant_.size(); }

    // Draws `orders` orders, at most kOrdersAtOnce; order l starts n * l draws after `start`. Bit
    // d % 64 of planes[l * stride + d / 64] is the label that draw d of order l gives; the other
    // bits of the first plane_words() are 0.
    void draw(const Generator& start, int orders, std::uint64_t* planes, std::size_t stride) const;

  private:
    // Consecutive clusters, and their first draw.
    template <typename Labels>
    struct Part {
        Labels labels;
        std::size_t first;
    };

    void add_cluster(std::span<const unsigned char> labels, std::size_t first,
                     Instructions instructions);
    void draw_part(const Part<LabelRuns>& part, Generator start, int orders, std::uint64_t* planes,
                   std::size_t stride) const;

    int n_;
    Generator::Skip order_;
    std::vector<Part<LabelRuns>> large_;      // of both labels
    std::vector<Part<SmallClusters>> small_;  // of any
    std::vector<std::uint64_t> constant_;     // labels 1 of large clusters of one label
};

}  // namespace vort
