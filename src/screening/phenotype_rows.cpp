#include "screening/phenotype_rows.h"

#include <algorithm>

#include "common/parallel.h"
#include "genotypes/genotypes.h"
#include "numeric/random_order.h"

namespace vort {

namespace {

constexpr std::size_t kBits = 64;

// The values that occur where there are at most two, else none.
std::vector<short> two_values(std::span<const short> phenotypes) {
    std::vector<short> values;
    for (const short phenotype : phenotypes) {
        if (std::find(values.begin(), values.end(), phenotype) != values.end()) continue;
        if (values.size() == 2) return {};
        values.push_back(phenotype);
    }
    values.resize(2, values.empty() ? short{0} : values.front());
    return values;
}

}  // namespace

PhenotypeRows::PhenotypeRows(std::span<const short> observed, Clusters clusters)
    : individuals_(static_cast<int>(observed.size())),
      clusters_(std::move(clusters)),
      values_(two_values(observed)) {
    add(observed);
}

std::size_t PhenotypeRows::words() const {
    return plane_words(individuals_);
}

// Rows of bits no longer do.
void PhenotypeRows::unpack_all() {
    for (int r = 0; r < count_; ++r) {
        const std::vector<short> unpacked = row(r);
        phenotypes_.insert(phenotypes_.end(), unpacked.begin(), unpacked.end());
    }
    values_.clear();
    bits_.clear();
}

void PhenotypeRows::add(std::span<const short> phenotypes) {
    const auto known = [this](short p) { return p == values_[0] || p == values_[1]; };
    if (in_bits() && !std::all_of(phenotypes.begin(), phenotypes.end(), known)) unpack_all();
    last_.assign(phenotypes.begin(), phenotypes.end());
    if (in_bits()) {
        for (short& phenotype : last_) phenotype = phenotype == values_[1] ? 1 : 0;
    }
    add_codes();
}

// The last row as it stands.
void PhenotypeRows::add_codes() {
    ++count_;
    if (!in_bits()) {
        phenotypes_.insert(phenotypes_.end(), last_.begin(), last_.end());
        return;
    }
    for (std::size_t first = 0; first < last_.size(); first += kBits) {
        const std::size_t size = std::min(kBits, last_.size() - first);
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < size; ++i) {
            word |= static_cast<std::uint64_t>(last_[first + i]) << i;
        }
        bits_.push_back(word);
    }
}

void PhenotypeRows::permute(int count, Generator& generator, int threads) {
    const auto n = static_cast<std::size_t>(individuals_);
    const Generator start = generator;
    const auto draw = [&](std::size_t r) {
        Generator own = start;
        own.skip(r * n);
        std::vector<int> order(n);
        RandomOrder().draw(own, clusters_, order);
        return order;
    };
    std::vector<short> shuffled(n);
    for_each_in_order(threads, static_cast<std::size_t>(std::max(count, 0)), draw,
                      [&](std::size_t, const std::vector<int>& order) {
                          for (std::size_t i = 0; i < n; ++i) shuffled[i] = last_[order[i]];
                          last_.swap(shuffled);
                          add_codes();
                      });
    generator.skip(static_cast<std::uint64_t>(std::max(count, 0)) * n);
}

void PhenotypeRows::row(int r, std::span<short> out) const {
    if (!in_bits()) {
        const auto from = static_cast<std::size_t>(r) * static_cast<std::size_t>(individuals_);
        std::copy_n(phenotypes_.begin() + static_cast<std::ptrdiff_t>(from), out.size(),
                    out.begin());
        return;
    }
    const std::uint64_t* const plane = bits_.data() + static_cast<std::size_t>(r) * words();
    for (std::size_t i = 0; i < out.size(); ++i) {
        out[i] = values_[plane[i / kBits] >> i % kBits & 1];
    }
}

std::vector<short> PhenotypeRows::row(int r) const {
    std::vector<short> phenotypes(static_cast<std::size_t>(individuals_));
    row(r, phenotypes);
    return phenotypes;
}

void PhenotypeRows::cases(int r, std::uint64_t* plane) const {
    if (in_bits()) {
        const std::uint64_t one = values_[1] == 1 ? ~std::uint64_t{0} : 0;
        const std::uint64_t zero = values_[0] == 1 ? ~std::uint64_t{0} : 0;
        const std::uint64_t* const bits = bits_.data() + static_cast<std::size_t>(r) * words();
        for (std::size_t w = 0; w < words(); ++w) plane[w] = (bits[w] & one) | (~bits[w] & zero);
        if (const int rest = individuals_ % 64; rest != 0) {
            plane[words() - 1] &= (std::uint64_t{1} << rest) - 1;
        }
        return;
    }
    std::fill_n(plane, words(), 0);
    const std::vector<short> phenotypes = row(r);
    for (std::size_t i = 0; i < phenotypes.size(); ++i) {
        plane[i / kBits] |= static_cast<std::uint64_t>(phenotypes[i] == 1) << i % kBits;
    }
}

}  // namespace vort
