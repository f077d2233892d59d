// Items in clusters, that change places with their like only.
//
// Clusters are numbered from 0 in the order of their first items; an item alone is a cluster of its
// own. No clusters at all stand for items that change places freely, as they do in a single cluster
// that holds them all.
#pragma once

#include <span>
#include <vector>

namespace vort {

class Clusters {
  public:
    static constexpr int kAlone = -1;

    // None.
    Clusters() = default;

    // Items with the same label are in a cluster; each of those labelled kAlone has its own.
    explicit Clusters(std::span<const int> labels);

    bool none() const { return of_.empty(); }
    int count() const { return static_cast<int>(starts_.size()) - 1; }
    int items() const { return static_cast<int>(of_.size()); }
    std::span<const int> numbers() const { return of_; }  // of each item
    int of(int item) const { return of_[static_cast<std::size_t>(item)]; }

    // Items of a cluster, and of all clusters in turn; ascending within each.
    std::span<const int> members(int cluster) const {
        const auto c = static_cast<std::size_t>(cluster);
        return all_members().subspan(static_cast<std::size_t>(starts_[c]),
                                     static_cast<std::size_t>(starts_[c + 1] - starts_[c]));
    }
    std::span<const int> all_members() const { return members_; }

    // The same clusters, in the same order, of items in other places: item order[p] is at place p.
    // Items that `order` leaves out are in none, so that a cluster may become empty.
    Clusters placed(std::span<const int> order) const;

  private:
    void list_members(int count);

    std::vector<int> of_;
    std::vector<int> members_;
    std::vector<int> starts_{0};  // of each cluster in members_, and their end
};

}  // namespace vort
