// Nanoseconds a draw, for orders of more and more items.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "numeric/generator.h"
#include "numeric/label_runs.h"
#include "numeric/random_order.h"

namespace vort {
namespace {

// The best of several measurements, each of some two million draws.
template <typename Draw>
double nanoseconds(std::int64_t draws, Draw draw) {
    using Clock = std::chrono::steady_clock;
    const auto rounds = std::max<std::int64_t>(1, 2'000'000 / draws);
    double best = 1e9;
    for (int measurement = 0; measurement < 15; ++measurement) {
        const auto start = Clock::now();
        for (std::int64_t r = 0; r < rounds; ++r) draw();
        const std::chrono::duration<double, std::nano> time = Clock::now() - start;
        best = std::min(best, time.count() / static_cast<double>(rounds * draws));
    }
    return best;
}

// A third are cases, spread over both halves.
std::vector<unsigned char> spread_labels(int n) {
    std::vector<unsigned char> labels(static_cast<std::size_t>(n));
    std::fill_n(labels.begin(), n / 6, 1);
    std::fill_n(labels.begin() + n / 2, n / 6, 1);
    return labels;
}

double label_runs(int n, Instructions instructions) {
    const LabelRuns runs(spread_labels(n), instructions);
    const Generator::Skip order(static_cast<std::uint64_t>(n));
    std::vector<std::uint64_t> planes(LabelRuns::kOrdersAtOnce * runs.plane_words());
    Generator generator;
    return nanoseconds(std::int64_t{n} * LabelRuns::kOrdersAtOnce, [&] {
        runs.draw(generator, order, LabelRuns::kOrdersAtOnce, planes.data());
        generator.skip(std::uint64_t{LabelRuns::kOrdersAtOnce} * static_cast<unsigned>(n));
    });
}

double random_order(int n, Instructions instructions) {
    RandomOrder space(instructions);
    std::vector<int> order(static_cast<std::size_t>(n));
    Generator generator;
    return nanoseconds(n, [&] { space.draw(generator, order); });
}

double positions(int n) {
    std::vector<int> out(static_cast<std::size_t>(n));
    Generator generator;
    return nanoseconds(n, [&] { generator.positions(n, n, out.data()); });
}

void print_table() {
    constexpr const char* kName[] = {"portable", "wide", "widest"};
    std::printf("%-9s %-9s", "items", "positions");
    for (const char* form : {"labels", "order"}) {
        for (int i = 0; i <= static_cast<int>(best_instructions()); ++i) {
            std::printf(" %6s %-8s", form, kName[i]);
        }
    }
    for (const int n : {1000, 4000, 16384, 65536, 262144, 2000000}) {
        std::printf("\n%-9d %9.2f", n, positions(n));
        for (const auto form : {label_runs, random_order}) {
            for (int i = 0; i <= static_cast<int>(best_instructions()); ++i) {
                std::printf(" %15.2f", form(n, static_cast<Instructions>(i)));
            }
        }
        std::fflush(stdout);
    }
    std::printf("\n");
}

}  // namespace
}  // namespace vort

int main() {
    vort::print_table();
    return 0;
}
