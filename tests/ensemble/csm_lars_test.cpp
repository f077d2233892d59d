// Builder and selector coupled through their file.
#include "ensemble/csm_lars.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

using CsmLars = BuilderTest;

TEST_F(CsmLars, DimensionsOfTheMatrix) {
    constexpr unsigned kUntouched = 77;
    const struct {
        const char* text;
        int result;
        unsigned rows;
        unsigned cols;
    } cases[] = {
        {"0.5 1 \n-0.5 0 \npara  2 1\n<number 0>\n", 0, 2, 1},
        {"para 0 3", 0, 0, 3},
        {"  parables 4\n\n5", 0, 4, 5},
        {"1e5 2 para 6", 0, 6, 0},
        {"para x y", 0, 0, 0},
        {"para -1 3", 1, kUntouched, kUntouched},
        {"para 9 -3", 1, 9, kUntouched},
    };
    write_settings({2, 1});
    CSM_LARS model(prefix_);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        write_file("output_X_Y.txt", c.text);
        unsigned rows = kUntouched;
        unsigned cols = kUntouched;
        EXPECT_EQ(model.restorepara(&rows, &cols), c.result);
        EXPECT_EQ(rows, c.rows);
        EXPECT_EQ(cols, c.cols);
    }
}

TEST_F(CsmLars, FilesWithoutDimensionsEndTheProgram) {
    write_settings({2, 1});
    CSM_LARS model(prefix_);
    unsigned rows = 0;
    unsigned cols = 0;
    std::filesystem::remove("output_X_Y.txt");
    EXPECT_EXIT(model.restorepara(&rows, &cols), ExitedWithCode(0),
                "find error read output_X_Y.txt\n\n$");
    for (const char* text : {"", "0.5 1\n", "phenotype 1\npara 2 1\n", "p ar 2 1\n", "pAra 2 1"}) {
        write_file("output_X_Y.txt", text);
        EXPECT_EXIT(model.restorepara(&rows, &cols), ExitedWithCode(0),
                    "^find error read output_X_Y.txt\n\n$");
    }
}

// A builder that is passed over, or that keeps nothing, prints the same frame.
class CsmLarsRun : public BuilderTest {
  protected:
    CsmLarsRun() { write_settings({4, 2, 0}); }

    double run(CSM_LARS& model, int skip_build) {
        return model.run(0, 0, 0, study_.x(), study_.y(), study_.rankings(), 0, 1, skip_build,
                         &stat_[0], &stat_[1], &stat_[2], &stat_[3], &stat_[4]);
    }

    Study study_{{"01", "01", "12", "2-"}, {0, 1, 1, 0}};
    std::array<double, 5> stat_{-1, -1, -1, -1, -1};
};

TEST_F(CsmLarsRun, NoBaseLearnerIsNoStatistic) {
    CSM_LARS model(prefix_);
    model.first_codes.fill(8);
    const ConsoleCapture console;
    EXPECT_EQ(run(model, 0), 2147483647.0);
    EXPECT_EQ(stat_, (std::array<double, 5>{-1, -1, -1, -1, -1}));
    EXPECT_EQ(model.first_codes, (std::array<int, 10>{0, 1, 8, 8, 8, 8, 8, 8, 8, 8}));
    EXPECT_EQ(model.last_codes, (std::array<int, 10>{2, -1}));
    EXPECT_TRUE(console.text().starts_with("csm begin\nread data finished\n"));
    EXPECT_TRUE(console.text().ends_with("calculating 1-item\ncsm end\n"));
    EXPECT_FALSE(std::filesystem::exists("beta.txt"));
}

TEST_F(CsmLarsRun, WithoutBuildTheFileOfAnEarlierOneIsUsed) {
    CSM_LARS model(prefix_);
    write_file("output_X_Y.txt", "0.5 1 \n0.5 0 \n-0.5 0 \n-0.5 0 \npara  4 1\n");
    const ConsoleCapture console;
    // Residual 1 before and 2/3 after the only step: Cp 2 * 3/2 and 2 + 1/2.
    EXPECT_NEAR(run(model, 1), 2.5 / 3, 1e-12);
    EXPECT_TRUE(console.text().starts_with("csm begin\ncsm end\n"));
    EXPECT_TRUE(std::filesystem::exists("beta.txt"));
    EXPECT_EQ(stat_[0], 0.5);
}

TEST_F(CsmLarsRun, NegativeDimensionsEndTheProgram) {
    CSM_LARS model(prefix_);
    const auto run_on_file = [&] {
        console_on_standard_error();
        run(model, 1);
    };
    for (const auto& [text, message] :
         {std::pair{"para -4 1", "Row=1033 Col=152\n$"}, {"para 4 -1", "Row=4 Col=152\n$"}}) {
        write_file("output_X_Y.txt", text);
        EXPECT_EXIT(run_on_file(), ExitedWithCode(0),
                    std::string("^csm begin\ncsm end\nfind error in restore file "
                                "output_X_Y.txt\n") +
                        message);
    }
}

}  // namespace
}  // namespace vort::testing
