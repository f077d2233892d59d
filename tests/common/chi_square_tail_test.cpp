#include "common/chi_square_tail.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vort {
namespace {

TEST(ChiSquareUpperTail, TellsWarningsAndStopsOutsideItsDomain) {
    Transcript transcript(true);
    EXPECT_NEAR(chi_square_upper_tail(1, 3.841459, transcript), 0.05, 3e-7);
    EXPECT_EQ(transcript.text(), "");
    EXPECT_TRUE(std::isnan(chi_square_upper_tail(1, std::nan(""), transcript)));
    EXPECT_EQ(transcript.text(), "a too large, ITMAX too small in gcf\n");
    try {
        chi_square_upper_tail(0, 1, transcript);
        FAIL() << "no degrees of freedom";
    } catch (const Stop& end) {
        EXPECT_EQ(end.status, 1);
        EXPECT_EQ(end.text, " error for the input parameter in gammp function\n");
    }
}

}  // namespace
}  // namespace vort
