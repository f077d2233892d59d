// Loops over threads, and what their passes write about themselves.
#include "common/parallel.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>

#include "common/transcript.h"

namespace vort {
namespace {

// Passes that take unlike times, and so end in another order than they began.
void dawdle(std::size_t i) {
    std::this_thread::sleep_for(std::chrono::microseconds(i % 3 * 200));
}

// The loop's outcome, where `failing` passes throw their number.
template <typename Loop>
std::string outcome(Loop loop) {
    try {
        loop();
        return "done";
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
}

void fail_from(std::size_t first, std::size_t i) {
    if (i >= first) throw std::runtime_error(std::to_string(i));
}

TEST(ForEachIndex, RunsEveryPassOnceAndThrowsTheLowestFailure) {
    for (const int threads : {1, 2, 5, 64}) {
        for (const std::size_t count : {0, 1, 2, 63, 300}) {
            std::vector<int> runs(count);
            for_each_index(threads, count, [&](std::size_t i) { dawdle(i), ++runs[i]; });
            EXPECT_EQ(runs, std::vector<int>(count, 1)) << threads;
        }
        const auto failing = [&] {
            for_each_index(threads, 100, [](std::size_t i) { dawdle(i), fail_from(40, i); });
        };
        EXPECT_EQ(outcome(failing), "40") << threads;
    }
}

TEST(ForEachInOrder, DeliversInOrderUpToTheLowestFailure) {
    enum { kNever, kMaking, kDelivering };
    for (const int threads : {1, 2, 5, 64}) {
        for (const int failing : {kNever, kMaking, kDelivering}) {
            SCOPED_TRACE(::testing::Message() << threads << " threads, failing " << failing);
            std::vector<std::size_t> delivered;
            const auto loop = [&] {
                for_each_in_order(
                    threads, 100,
                    [&](std::size_t i) {
                        dawdle(i);
                        if (failing == kMaking) fail_from(40, i);
                        return i * i;
                    },
                    [&](std::size_t i, std::size_t made) {
                        EXPECT_TRUE(i == delivered.size() && made == i * i);
                        if (failing == kDelivering) fail_from(40, i);
                        delivered.push_back(i);
                    });
            };
            EXPECT_EQ(outcome(loop), failing == kNever ? "done" : "40");
            EXPECT_EQ(delivered.size(), failing == kNever ? 100U : 40U);
        }
    }
}

TEST(Transcript, HoldsWhatItIsGivenWhereItIsWanted) {
    for (const bool wanted : {true, false}) {
        Transcript part(wanted), whole(wanted);
        for (int i = 0; i < 1000; ++i) {
            part << "x=" << general(0.25) << ' ' << fixed(-2.0, 1, 5) << -7L << std::string("\n");
        }
        whole.add(part);
        part.clear();
        whole.add(part << "end");
        std::string expected;
        for (int i = 0; i < 1000; ++i) expected += "x=0.25  -2.0-7\n";
        EXPECT_EQ(whole.text(), wanted ? expected + "end" : "");
    }
}

}  // namespace
}  // namespace vort
