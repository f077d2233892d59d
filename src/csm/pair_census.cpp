#include "csm/pair_census.h"

#include <algorithm>

#include "common/parallel.h"

namespace vort {

namespace {

constexpr std::size_t kChunk = std::size_t{1} << 20;

std::size_t chunks(std::size_t size) {
    return (size + kChunk - 1) / kChunk;
}

}  // namespace

PairCensus::PairCensus(std::span<const PairCode> codes, const PairBounds& bounds, int threads)
    : codes_(codes), bounds_(bounds), threads_(threads), count_(kBinCount) {
    const auto count_chunk = [&](std::size_t chunk) {
        std::vector<std::uint32_t> count(kBinCount);
        const std::size_t end = std::min(codes.size(), (chunk + 1) * kChunk);
        for (std::size_t c = chunk * kChunk; c < end; ++c) ++count[bin_of(codes[c])];
        return count;
    };
    for_each_in_order(threads, chunks(codes.size()), count_chunk,
                      [&](std::size_t, const std::vector<std::uint32_t>& count) {
                          for (std::size_t b = 0; b < kBinCount; ++b) count_[b] += count[b];
                      });
}

std::vector<PvalueGroup> PairCensus::groups() const {
    std::vector<PvalueGroup> groups;
    for (std::size_t b = 0; b < kBinCount; ++b) {
        if (count_[b] == 0) continue;
        const PvalueBounds p = bounds_.of_bin(b);
        groups.push_back({p.low, p.high, count_[b]});
    }
    return groups;
}

std::int64_t PairCensus::below(double pvalue) const {
    std::int64_t count = 0;
    for (std::size_t b = 0; b < kBinCount; ++b) {
        if (count_[b] != 0 && bounds_.of_bin(b).high < pvalue) count += count_[b];
    }
    return count;
}

std::vector<int> PairCensus::collect(double low, double high) const {
    std::vector<unsigned char> wanted(kBinCount);
    for (std::size_t b = 0; b < kBinCount; ++b) {
        if (count_[b] == 0) continue;
        const PvalueBounds p = bounds_.of_bin(b);
        wanted[b] = p.high >= low && p.low <= high ? 1 : 0;
    }
    const auto collect_chunk = [&](std::size_t chunk) {
        std::vector<int> found;
        const std::size_t end = std::min(codes_.size(), (chunk + 1) * kChunk);
        for (std::size_t c = chunk * kChunk; c < end; ++c) {
            if (wanted[bin_of(codes_[c])] != 0) found.push_back(static_cast<int>(c) + 1);
        }
        return found;
    };
    std::vector<int> all;
    for_each_in_order(threads_, chunks(codes_.size()), collect_chunk,
                      [&](std::size_t, const std::vector<int>& found) {
                          all.insert(all.end(), found.begin(), found.end());
                      });
    return all;
}

}  // namespace vort
