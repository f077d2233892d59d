#include "common/bitset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "support/console_capture.h"

namespace vort {
namespace {

TEST(Bitset, AgreesWithAPlainText) {
    std::mt19937 random(7);
    for (const std::size_t size : {0, 1, 7, 8, 9, 63, 64, 65, 200}) {
        SCOPED_TRACE("size " + std::to_string(size));
        bitset set(size);
        std::string plain(size, '0');
        for (int step = 0; step < 300; ++step) {
            const std::size_t i = random() % (size + 10);  // up to 9 positions outside
            const bool on = random() % 3 != 0;
            on ? set.SetbitOne(i) : set.SetbitZero(i);
            if (i < size) plain[i] = on ? '1' : '0';
        }
        for (std::size_t i = 0; i < size + 10; ++i) {
            const int mask = i < size && plain[i] == '1' ? 1 << i % 8 : 0;
            EXPECT_TRUE(set.GetAt(i) == mask && set[i] == mask) << i;
        }
        EXPECT_EQ(set.SizeofSet(), std::count(plain.begin(), plain.end(), '1'));
        const vort::testing::ConsoleCapture console;
        set.ShowBitSet();
        EXPECT_EQ(console.text(), plain + "\n");
        set.SetZero();
        EXPECT_EQ(set.SizeofSet(), 0);
    }
}

TEST(Bitset, InclusionNeedsEqualSizes) {
    bitset small(9), large(9), longer(10);
    small.SetbitOne(8);
    for (const unsigned long i : {0UL, 8UL}) {
        large.SetbitOne(i);
        longer.SetbitOne(i);
    }
    EXPECT_TRUE(small.ifincludein(&large) == 1 && small.ifincludein(&small) == 1);
    EXPECT_TRUE(large.ifincludein(&small) == 0 && small.ifincludein(&longer) == 0);
}

}  // namespace
}  // namespace vort
