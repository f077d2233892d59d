// The labels that random orders within many small clusters give, drawn label by label.
//
// A cluster's labels are the bits of a word, from which the drawn one is taken; those above it
// close the gap. Clusters of a few members, such as pairs and families, are drawn sooner in this
// way than as runs (label_runs.h), which takes the time of 64 draws for each.
//
// Cost: some 4 nanoseconds a draw.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "numeric/generator.h"

namespace vort {

class SmallClusters {
  public:
    static constexpr std::size_t kMostMembers = 12;

    // The next cluster, of 1 to kMostMembers members; labels[k] != 0: its member k has label 1.
    void add(std::span<const unsigned char> labels);

    int draws() const { return draws_; }

    // Draws all clusters in turn, from `start` on. Bit first + d of the plane is set where draw d
    // gives label 1.
    void draw(Generator start, std::uint64_t* plane, std::size_t first) const;

  private:
    struct Cluster {
        std::uint64_t labels;
        int members;
    };

    std::vector<Cluster> clusters_;
    int draws_ = 0;
};

}  // namespace vort
