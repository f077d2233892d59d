#include "lars/selector.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <fstream>
#include <limits>
#include <random>

#include "common/stop.h"
#include "lars/normalisation.h"
#include "lars/plain_path.h"
#include "lars/score_test.h"
#include "lars/stagewise_path.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// False where it stops, with the stop's text behind the transcript's.
template <typename Act>
bool goes_on(Transcript& transcript, Act act) {
    try {
        act();
        return true;
    } catch (const Stop& end) {
        EXPECT_EQ(end.status, 0);
        transcript << end.text;
        return false;
    }
}

void walk(Path& p) {
    const std::vector<std::span<double>> x(p.x.begin(), p.x.end());
    const auto steps = static_cast<int>(std::min({p.max_steps, x.size(), p.y.size()}));
    StagewisePath path(x, p.y, p.beta, steps, p.text);
    while (path.advance()) p.residual.assign(path.residual().begin(), path.residual().end());
    if (path.vanished()) return;
    const StagewisePath::Cut cut = path.cut();
    p.step = cut.step;
    p.ratio = cut.ratio;
}

// On sixteen rows, columns with a single 1, which are orthonormal: the response lists the
// coefficients, and every number on the way is exact.
TEST(StagewisePath, WorkedByHand) {
    const auto column = [](std::size_t row, double value = 1.0) {
        Values result(16, 0.0);
        result[row] = value;
        return result;
    };
    const std::vector<Values> x = {column(0), column(1), column(2)};
    const struct {
        std::vector<Values> x;
        Values y;
        std::size_t max_steps;
        double ratio;
        int step;
        Values beta;
    } cases[] = {// Sums of squares 85, 21, 5, 1, so Cp = 1020, 252.5, 61, 13.5.
                 {x, {8, -4, 2, 1}, 49, 13.5 / 1020, 3, {8, -4, 2}},
                 {x, {8, -4, 2, 1}, 1, 14.5 / (14.0 * 85 / 21), 1, {8, 0, 0}},
                 // A tie, of different signs.
                 {{x[1], x[0]}, {4, -4, 0, 1}, 49, 14.0 / 429, 2, {-4, 4}},
                 // Equal Cp: 14 * 29 / 28 = 14 * 28 / 28 + 0.5.
                 {{x[0]}, {1, 5, 1, 1, 1}, 49, 1.0, 0, {0}},
                 // The residual vanishes, and the turned column stays turned.
                 {{x[0], x[1]}, {-8}, 49, -1.0, -1, {8, 0}}};
    for (const auto& c : cases) {
        Path path{c.x, c.y, c.max_steps};
        path.y.resize(16, 0.0);
        walk(path);
        EXPECT_DOUBLE_EQ(path.ratio, c.ratio);
        EXPECT_EQ(path.step, c.step);
        EXPECT_EQ(path.beta, c.beta);
        EXPECT_EQ(path.x[0], c.step < 0 ? column(0, -1) : c.x[0]);
    }
}

// Columns of zeros and ones, some of them copies or complements of an earlier one; a response of
// zeros and ones, or of three values, now and then with a NaN.
Path random_path(std::mt19937_64& random) {
    const std::size_t n = 1 + random() % 70;
    std::vector<Values> x(1 + random() % 40, Values(n));
    Values y(n);
    const std::uint64_t levels = 2 + random() % 2;
    for (double& value : y) value = static_cast<double>(random() % levels);
    if (random() % 50 == 0) y[random() % n] = kNan;
    Transcript quiet(false);
    for (std::size_t j = 0; j < x.size(); ++j) {
        const std::uint64_t kind = random() % 10;
        const std::uint64_t rarity = 2 + random() % 6;
        for (double& value : x[j]) value = random() % rarity == 0 ? 1.0 : 0.0;
        if (kind < 2) x[j] = x[j / 2];
        for (double& value : x[j]) value = kind == 0 ? 1.0 - value : value;
        normalise_column(j, x[j], quiet);
    }
    centre_response(y, quiet);
    return {x, y, random() % 4 == 0 ? random() % 20 : 49};
}

// To the bit; a NaN has any sign.
std::vector<std::uint64_t> bits(const Path& p) {
    std::vector<Values> all = p.x;
    all.insert(all.end(), {p.beta, p.residual, {p.ratio, static_cast<double>(p.step)}});
    std::vector<std::uint64_t> result;
    for (const Values& values : all) {
        for (const double v : values) {
            result.push_back(std::isnan(v) ? ~0ULL : std::bit_cast<std::uint64_t>(v));
        }
    }
    return result;
}

TEST(StagewisePath, AgreesWithThePlainPathToTheBit) {
    std::vector<int> endings(5, 0);
    for (std::uint64_t seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937_64 random(seed);
        Path plain = random_path(random), fast = plain;
        const End end = plain_walk(plain);
        ++endings[static_cast<std::size_t>(end)];
        const bool enters = end != End::kNoCoefficient;
        if (!enters)
            plain.text << "maybe have some error, because beta[j]==0 where |c_hat[j]| be max\n";
        ASSERT_EQ(goes_on(fast.text, [&] { walk(fast); }), enters);
        ASSERT_EQ(fast.text.text(), plain.text.text());
        ASSERT_EQ(bits(fast), bits(plain));
    }
    for (const int paths : endings) EXPECT_GT(paths, 0) << "a way to end that no path took";
}

// Around the means of x0 and x1: products 0.5 and 1, squares 1.5 and 4/3, of y 1.5; the two are
// uncorrelated, x2 is constant. Upper tails of the chi-square distribution in closed form.
TEST(ScoreTest, WorkedByHand) {
    const Values x[] = {{0, 0, 1, 1, 0, 1}, {0, 1, 0, 1, 0, 0}, Values(6, 5.0), Values(6, kNan)};
    const Values y = {0, 1, 1, 1, 0, 0};
    const struct {
        Values beta;
        double pvalue;
    } cases[] = {{{2, 0, 0, 0}, std::erfc(std::sqrt(6.0 / 9 / 2))},
                 {{0, 1.1e-6, 0, 0}, std::erfc(std::sqrt(3.0 / 2))},
                 {{1, -1, 0, 0}, std::exp(-4 * (0.25 / 1.5 + 0.75) / 2)},
                 {{1e-6, -1e-6, 1, 0}, 0.5},
                 {{0, 0, 0, 1}, kNan}};
    for (const auto& c : cases) {
        std::vector<std::span<const double>> tested;
        for (const int j : tested_columns(c.beta)) tested.emplace_back(x[j]);
        Transcript transcript(true);
        const double p = score_test(tested, y, transcript);
        EXPECT_TRUE(std::isnan(c.pvalue) ? std::isnan(p) : std::fabs(p - c.pvalue) < 1e-6) << p;
        EXPECT_EQ(transcript.text(), std::isnan(p) ? "a too large, ITMAX too small in gcf\n" : "");
    }
}

TEST(SelectModel, KnownRun) {
    const std::string data = VORT_TEST_DATA "/lars/data/";
    DesignColumns design{Values(40), std::vector<Values>(10, Values(40))};
    std::ifstream file(data + "output_X_Y.txt");
    for (std::size_t i = 0; i < 40; ++i) {
        file >> design.response[i];
        for (Values& values : design.columns) file >> values[i];
    }
    Transcript told(true), quiet(false);
    const Selection model = select_model(design, told);
    EXPECT_NEAR(model.ratio, 0.468898, 5e-7);
    EXPECT_EQ(told.text(), read_file(data + "console.txt"));
    EXPECT_EQ(coefficient_text(model), read_file(data + "beta.txt"));
    EXPECT_EQ(coefficient_text(select_model(design, quiet)), coefficient_text(model));
}

// Pairs of rows; column j is 1 and -1 in pair j, the response 60 - j times that, and 300 times in a
// last pair of its own. Cp falls by 72 * 2 * (60 - j)^2 / 181012 - 0.5 at step j, up to j = 34.
// The unfitted individuals of a positive response count as correct.
TEST(SelectModel, MakesAtMost49Steps) {
    DesignColumns design{Values(122), std::vector<Values>(60, Values(122))};
    for (std::size_t i = 0; i < 122; ++i) {
        const double sign = i % 2 == 0 ? 1 : -1;
        if (i < 120) design.columns[i / 2][i] = sign;
        design.response[i] = sign * (i < 120 ? 60 - static_cast<double>(i / 2) : 300);
    }
    Transcript text(true);
    EXPECT_EQ(select_model(design, text).nonzero, 35);
    EXPECT_NE(text.text().find("\nk=49,"), std::string::npos);
    EXPECT_EQ(text.text().find("\nk=50,"), std::string::npos);
    EXPECT_NE(text.text().find("\ncorrect rate=0.786885\n"), std::string::npos);
}

TEST(SelectModel, DegenerateDesigns) {
    const std::string constant = "i=1\nmean=1.000000\nVarance=0.000000\n";
    const struct {
        DesignColumns design;
        double ratio;  // -1 where it stops
        std::string coefficients, text;
    } cases[] = {
        {{{}, {{}, {}}}, 2147483647.0, "", "There are error for reading input data\n"},
        {{{kNan, 0}, {{0, 1}}, "a"}, -1, "", "find error input file=a\n"},
        {{{1, 3}, {{1, 1}}},
         -1,
         "",
         constant + "Y >0 count=2 mean=2\n"
                    "maybe have some error, because beta[j]==0 where |c_hat[j]| be max\n"},
        {{{5, 5}, {{1, 1}}},
         0,
         "1\n0\n",
         constant + "Y >0 count=2 mean=5\nResidual prediction error vector E[0] is zero, at 0 "
                    "step !\n\ncorrect rate=0\n"}};
    for (const auto& c : cases) {
        Transcript transcript(true);
        Selection model{-1, {}, {}, 0};
        const auto select = [&] { model = select_model(c.design, transcript); };
        EXPECT_EQ(goes_on(transcript, select), c.ratio >= 0);
        EXPECT_EQ(transcript.text(), c.text);
        EXPECT_DOUBLE_EQ(model.ratio, c.ratio);
        EXPECT_EQ(coefficient_text(model), c.coefficients);
    }
}

TEST(ReadCoefficients, SixDigitsUpToWhatIsNoNumber) {
    const Selection model{1, {0, 1.0 / 3, kNan, 2}, {0, 0.25, 0.25, 0.25}, 3};
    Transcript transcript(true);
    const Coefficients read = read_coefficients(model, transcript);
    EXPECT_EQ(transcript.text(), "beta[1]=0.333333 beta[2]=0 \n");
    EXPECT_EQ(read.beta, (Values{0, 0.333333, 0, 0}));
    EXPECT_EQ(read.mean_square, (Values{0, 0.25, 0, 0}));
}

}  // namespace
}  // namespace vort::testing
