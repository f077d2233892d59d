// Builder and selector coupled through their file.
#include "ensemble/csm_lars.h"

#include "support/builder_study.h"

namespace vort::testing {
namespace {

class CsmLars : public BuilderTest {
  protected:
    CsmLars() { write_settings({4, 2, 0}); }

    double run(CSM_LARS& model, int skip_build) {
        return model.run(0, 0, 0, study_.x(), study_.y(), study_.rankings(), 0, 1, skip_build,
                         &stat_[0], &stat_[1], &stat_[2], &stat_[3], &stat_[4]);
    }

    Study study_{{"01", "01", "12", "2-"}, {0, 1, 1, 0}};
    std::array<double, 5> stat_{-1, -1, -1, -1, -1};
};

TEST_F(CsmLars, DimensionsOfTheMatrix) {
    const struct {
        const char* text;
        int result;
        unsigned rows, cols;  // 77: not stored
    } cases[] = {
        {"0.5 1 \n-0.5 0 \npara  2 1\n<number 0>\n", 0, 2, 1},
        {"  parables 4\n\n5", 0, 4, 5},
        {"1e5 2 para 6", 0, 6, 0},
        {"para x y", 0, 0, 0},
        {"para -1 3", 1, 77, 77},
        {"para 9 -3", 1, 9, 77},
    };
    CSM_LARS model(no_prefix);
    unsigned rows = 0;
    unsigned cols = 0;
    for (const auto& c : cases) {
        write_file("output_X_Y.txt", c.text);
        rows = cols = 77;
        EXPECT_EQ(model.restorepara(&rows, &cols), c.result) << c.text;
        EXPECT_EQ(rows, c.rows) << c.text;
        EXPECT_EQ(cols, c.cols) << c.text;
    }
    for (const char* text : {"", "0.5 1\n", "phenotype 1\npara 2 1\n", "p ar 2 1\n", "pAra 2 1"}) {
        write_file("output_X_Y.txt", text);
        expect_end([&] { model.restorepara(&rows, &cols); },
                   "^find error read output_X_Y.txt\n\n$");
    }
    std::filesystem::remove("output_X_Y.txt");
    expect_end([&] { model.restorepara(&rows, &cols); }, "find error read output_X_Y.txt\n\n$");
}

TEST_F(CsmLars, WithoutBuildTheFileOfAnEarlierOneIsUsed) {
    CSM_LARS model(no_prefix);
    write_file("output_X_Y.txt", "0.5 1 \n0.5 0 \n-0.5 0 \n-0.5 0 \npara  4 1\n");
    const ConsoleCapture console;
    // Residual 1 before and 2/3 after the only step: Cp 2 * 3/2 and 2 + 1/2.
    EXPECT_NEAR(run(model, 1), 2.5 / 3, 1e-12);
    EXPECT_TRUE(console.text().starts_with("csm begin\ncsm end\n"));
    EXPECT_TRUE(std::filesystem::exists("beta.txt"));
    EXPECT_EQ(stat_[0], 0.5);
    const std::string message = "^csm begin\ncsm end\nfind error in restore file output_X_Y.txt\n";
    write_file("output_X_Y.txt", "para -4 1");
    expect_end([&] { run(model, 1); }, message + "Row=1033 Col=152\n$");
    write_file("output_X_Y.txt", "para 4 -1");
    expect_end([&] { run(model, 1); }, message + "Row=4 Col=152\n$");
}

}  // namespace
}  // namespace vort::testing
