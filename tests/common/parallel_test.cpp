// Loops over threads, and what their passes write about themselves.
#include "common/parallel.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "common/stop.h"
#include "common/transcript.h"

namespace vort {
namespace {

// A pass that throws from `first` on; passes take unlike times, and so end in another order than
// they began.
void pass(std::size_t i, std::size_t first = 1000) {
    std::this_thread::sleep_for(std::chrono::microseconds(i % 3 * 200));
    if (i >= first) throw Stop{static_cast<int>(i), ""};
}

// The lowest pass that failed, or 0.
template <typename Loop>
int failed(Loop loop) try {
    loop();
    return 0;
} catch (const Stop& failure) {
    return failure.status;
}

TEST(ForEachIndex, RunsEveryPassOnceAndThrowsTheLowestFailure) {
    for (const int threads : {1, 2, 5, 64}) {
        for (const std::size_t count : {0, 1, 2, 63, 300}) {
            std::vector<int> runs(count);
            for_each_index(threads, count, [&](std::size_t i) { pass(i), ++runs[i]; });
            EXPECT_EQ(runs, std::vector<int>(count, 1)) << threads;
        }
        const auto body = [](std::size_t i) { pass(i, 40); };
        EXPECT_EQ(failed([&] { for_each_index(threads, 100, body); }), 40) << threads;
    }
}

TEST(ForEachInOrder, DeliversInOrderUpToTheLowestFailure) {
    for (const int threads : {1, 2, 5, 64}) {
        for (const int failing : {0, 1, 2}) {  // nothing, making, delivering
            std::size_t next = 0;
            const auto make = [&](std::size_t i) { return pass(i, failing == 1 ? 40 : 1000), i; };
            const auto deliver = [&](std::size_t i, std::size_t made) {
                EXPECT_TRUE(i == next && made == i) << i;
                pass(i, failing == 2 ? 40 : 1000);
                ++next;
            };
            EXPECT_EQ(failed([&] { for_each_in_order(threads, 100, make, deliver); }),
                      failing == 0 ? 0 : 40);
            EXPECT_EQ(next, failing == 0 ? 100U : 40U) << threads;
        }
    }
}

TEST(Transcript, HoldsWhatItIsGivenWhereItIsWanted) {
    for (const bool wanted : {true, false}) {
        Transcript part(wanted), whole(wanted);
        part << "x=" << general(0.25) << ' ' << fixed(-2.0, 1, 5) << -7L << std::string(999, '.');
        whole.add(part);
        part.clear();
        whole.add(part << "end");
        EXPECT_EQ(whole.text(), wanted ? "x=0.25  -2.0-7" + std::string(999, '.') + "end" : "");
    }
}

}  // namespace
}  // namespace vort
