#include "numeric/clusters.h"

#include <numeric>
#include <unordered_map>

namespace vort {

Clusters::Clusters(std::span<const int> labels) {
    std::unordered_map<int, int> numbers;
    int count = 0;
    of_.reserve(labels.size());
    for (const int label : labels) {
        if (label == kAlone) {
            of_.push_back(count++);
            continue;
        }
        const auto [place, is_new] = numbers.try_emplace(label, count);
        if (is_new) ++count;
        of_.push_back(place->second);
    }
    list_members(count);
}

void Clusters::list_members(int count) {
    starts_.assign(static_cast<std::size_t>(count) + 1, 0);
    for (const int c : of_) ++starts_[static_cast<std::size_t>(c) + 1];
    std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
    std::vector<int> next(starts_.begin(), starts_.end() - 1);
    members_.resize(of_.size());
    for (std::size_t i = 0; i < of_.size(); ++i) {
        const auto c = static_cast<std::size_t>(of_[i]);
        members_[static_cast<std::size_t>(next[c]++)] = static_cast<int>(i);
    }
}

Clusters Clusters::placed(std::span<const int> order) const {
    Clusters out;
    if (none()) return out;
    out.of_.reserve(order.size());
    for (const int item : order) out.of_.push_back(of(item));
    out.list_members(count());
    return out;
}

}  // namespace vort
