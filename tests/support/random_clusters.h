// Clusters of any awkward shape: many and few, of one member, of one label, all items in one.
#pragma once

#include <map>
#include <random>
#include <vector>

#include "numeric/clusters.h"

namespace vort::testing {

// A label for each of n items, some alone.
inline std::vector<int> random_cluster_labels(std::mt19937& random, int n) {
    const unsigned kinds[] = {1, 2, 3, 7, static_cast<unsigned>(n) / 2 + 1};
    const unsigned count = kinds[random() % std::size(kinds)];
    const bool some_alone = count > 1 && random() % 2 == 0;
    std::vector<int> labels;
    for (int i = 0; i < n; ++i) {
        const bool alone = some_alone && random() % 5 == 0;
        labels.push_back(alone ? Clusters::kAlone : static_cast<int>(random() % count) * 10 - 7);
    }
    return labels;
}

// The members of each cluster, clusters in the order of their first.
inline std::vector<std::vector<int>> plain_clusters(const std::vector<int>& labels) {
    std::vector<std::vector<int>> clusters;
    std::map<int, std::size_t> place;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const auto fresh = clusters.size();
        const bool alone = labels[i] == Clusters::kAlone;
        const auto at = alone ? fresh : place.try_emplace(labels[i], fresh).first->second;
        if (at == fresh) clusters.emplace_back();
        clusters[at].push_back(static_cast<int>(i));
    }
    return clusters;
}

}  // namespace vort::testing
