#include "common/bitset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "support/console_capture.h"

namespace vort {
namespace {

using vort::testing::ConsoleCapture;

void expect_same(const bitset& set, const std::vector<bool>& plain) {
    ASSERT_EQ(set.size, plain.size());
    std::string text;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        EXPECT_EQ(set.GetAt(i) != 0, plain[i]) << i;
        text += plain[i] ? '1' : '0';
    }
    EXPECT_EQ(set.SizeofSet(), std::count(plain.begin(), plain.end(), true));
    const ConsoleCapture console;
    set.ShowBitSet();
    EXPECT_EQ(console.text(), text + "\n");
}

TEST(Bitset, AgreesWithAPlainVector) {
    std::mt19937 random(7);
    for (const std::size_t size : {0, 1, 7, 8, 9, 63, 64, 65, 200}) {
        SCOPED_TRACE("size " + std::to_string(size));
        bitset set(size);
        std::vector<bool> plain(size);
        for (int step = 0; step < 300; ++step) {
            const std::size_t i = random() % (size + 10);  // up to 9 positions outside
            const bool on = random() % 3 != 0;
            on ? set.SetbitOne(i) : set.SetbitZero(i);
            if (i < size) plain[i] = on;
        }
        expect_same(set, plain);
        EXPECT_EQ(set.GetAt(size), 0);
        EXPECT_EQ(set[size + 1000], 0);
        set.SetZero();
        expect_same(set, std::vector<bool>(size));
    }
}

TEST(Bitset, ReadsAsTheMaskedBit) {
    bitset set(20);
    set.SetbitOne(0);
    set.SetbitOne(11);
    EXPECT_EQ(set[0], 1);
    EXPECT_EQ(set[11], 8);
}

TEST(Bitset, InclusionNeedsEqualSizes) {
    bitset small(9), large(9), longer(10);
    small.SetbitOne(8);
    for (const unsigned long i : {0UL, 8UL}) {
        large.SetbitOne(i);
        longer.SetbitOne(i);
    }
    EXPECT_EQ(small.ifincludein(&large), 1);
    EXPECT_EQ(small.ifincludein(&small), 1);
    EXPECT_EQ(large.ifincludein(&small), 0);
    EXPECT_EQ(small.ifincludein(&longer), 0);
    EXPECT_EQ(bitset(9).ifincludein(&small), 1);
}

}  // namespace
}  // namespace vort
