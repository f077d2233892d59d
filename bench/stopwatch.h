// Times for the benchmarks.
#pragma once

#include <algorithm>
#include <chrono>

namespace vort::bench {

// Seconds of one run.
template <typename Work>
double seconds(const Work& work) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// The least of several runs, which is the one that was disturbed least.
template <typename Work>
double least_seconds(int runs, const Work& work) {
    double least = seconds(work);
    for (int r = 1; r < runs; ++r) least = std::min(least, seconds(work));
    return least;
}

}  // namespace vort::bench
