// How it goes: a column is packed run after run, 28 individuals at a time, which a 64-bit word
// holds from any place in a byte on. Owned genotypes never need a second matrix: kept columns move
// towards the front in the order in which they lie, so that none is written over before it is read,
// and columns that change places do so along the cycles of their order. A file's pages are let go
// as soon as they are copied.
//
// Cost: one pass over the columns that are kept; for columns out of order, another one.
#include "study/compaction.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>

#include "common/parallel.h"
#include "study/cohort.h"

namespace vort {

namespace {

// Packs a run behind the `packed` genotypes of a column that began as zeros.
void append(std::span<const unsigned char> column, Run run, std::span<unsigned char> out,
            std::size_t packed) {
    constexpr std::size_t kAtOnce = 28;
    while (run.size > 0) {
        const std::size_t size = std::min(run.size, kAtOnce);
        const auto from = column.subspan(run.from / 4);
        const auto to = out.subspan(packed / 4);
        std::uint64_t word = 0;
        std::memcpy(&word, from.data(), std::min(sizeof word, from.size()));
        word = word >> 2 * (run.from % 4) & ((std::uint64_t{1} << 2 * size) - 1);
        std::uint64_t before = 0;
        std::memcpy(&before, to.data(), std::min(sizeof before, to.size()));
        before |= word << 2 * (packed % 4);
        std::memcpy(to.data(), &before, std::min(sizeof before, to.size()));
        run = {run.from + size, run.size - size};
        packed += size;
    }
}

bool are_first_numbers(std::span<const int> numbers, int count) {
    if (numbers.size() != static_cast<std::size_t>(count)) return false;
    for (int i = 0; i < count; ++i) {
        if (numbers[static_cast<std::size_t>(i)] != i) return false;
    }
    return true;
}

std::size_t bytes_of(int individuals, std::size_t markers) {
    return packed_size(individuals) * markers;
}

// Column j of the result is column order[j]; `order` is a permutation.
void put_in_order(unsigned char* columns, std::size_t stride, std::span<const std::size_t> order) {
    std::vector<unsigned char> held(stride);
    std::vector<char> done(order.size(), 0);
    const auto at = [&](std::size_t j) { return columns + j * stride; };
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (done[start] != 0) continue;
        std::memcpy(held.data(), at(start), stride);
        std::size_t j = start;
        for (; order[j] != start; j = order[j]) {
            std::memcpy(at(j), at(order[j]), stride);
            done[j] = 1;
        }
        std::memcpy(at(j), held.data(), stride);
        done[j] = 1;
    }
}

// Within their own memory.
Genotypes packed_in_place(Genotypes all, std::span<const int> rows, std::span<const int> columns) {
    const auto kept = static_cast<int>(rows.size());
    const std::vector<Run> runs = runs_of(rows);
    const std::size_t stride = packed_size(kept);
    std::vector<std::size_t> place(columns.size());  // place[k]: of the k-th column that is kept
    std::iota(place.begin(), place.end(), std::size_t{0});
    std::sort(place.begin(), place.end(),
              [&](std::size_t a, std::size_t b) { return columns[a] < columns[b]; });
    std::vector<unsigned char> packed(stride);
    const std::size_t from = all.stride();
    LargeArray<unsigned char> bytes = std::move(all).take_columns();
    for (std::size_t k = 0; k < place.size(); ++k) {
        const auto column = static_cast<std::size_t>(columns[place[k]]);
        pack_runs({bytes.data() + column * from, from}, runs, packed);
        std::memcpy(bytes.data() + k * stride, packed.data(), stride);
    }
    if (!std::is_sorted(place.begin(), place.end())) {
        std::vector<std::size_t> order(place.size());
        for (std::size_t k = 0; k < place.size(); ++k) order[place[k]] = k;
        put_in_order(bytes.data(), stride, order);
    }
    bytes.resize(bytes_of(kept, columns.size()));
    return {kept, static_cast<int>(columns.size()), std::move(bytes)};
}

}  // namespace

std::vector<Run> runs_of(std::span<const int> rows) {
    std::vector<Run> runs;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i == 0 || rows[i - 1] + 1 != rows[i]) {
            runs.push_back({static_cast<std::size_t>(rows[i]), 0});
        }
        ++runs.back().size;
    }
    return runs;
}

void pack_runs(std::span<const unsigned char> column, std::span<const Run> runs,
               std::span<unsigned char> out) {
    std::fill(out.begin(), out.end(), static_cast<unsigned char>(0));
    std::size_t packed = 0;
    for (const Run& run : runs) {
        append(column, run, out, packed);
        packed += run.size;
    }
}

// In stretches of some megabytes.
Genotypes copied(const Genotypes& all, std::span<const int> rows, std::span<const int> columns,
                 int threads) {
    const auto kept = static_cast<int>(rows.size());
    const std::vector<Run> runs = runs_of(rows);
    const std::size_t stride = packed_size(kept);
    LargeArray<unsigned char> out(bytes_of(kept, columns.size()));
    const std::size_t size = std::max<std::size_t>(1, (std::size_t{4} << 20) / all.stride());
    for_each_stretch(threads, columns.size(), size, [&](std::size_t begin, std::size_t end) {
        for (std::size_t j = begin; j < end; ++j) {
            pack_runs(all.column(columns[j]), runs, {out.data() + j * stride, stride});
        }
        const auto [first, last] =
            std::minmax_element(columns.begin() + static_cast<std::ptrdiff_t>(begin),
                                columns.begin() + static_cast<std::ptrdiff_t>(end));
        all.let_go(*first, *last + 1);
    });
    return {kept, static_cast<int>(columns.size()), std::move(out)};
}

Genotypes compacted(Genotypes genotypes, std::span<const int> rows, std::span<const int> columns,
                    int threads) {
    if (are_first_numbers(rows, genotypes.individuals()) &&
        are_first_numbers(columns, genotypes.markers())) {
        return genotypes;
    }
    if (!genotypes.is_owned()) return copied(genotypes, rows, columns, threads);
    return packed_in_place(std::move(genotypes), rows, columns);
}

}  // namespace vort
