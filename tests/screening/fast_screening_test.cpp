// Screenings from shared counts against the plain form, marker by marker, on random studies.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "screening/counted_data_sets.h"
#include "screening/five_model_test.h"
#include "screening/globals.h"
#include "screening/marker_pvalues.h"
#include "screening/minimum_screening.h"
#include "support/screening_fixture.h"

namespace vort {
namespace {

struct Study {
    std::vector<std::vector<char>> codes;
    std::vector<char*> rows;
    std::vector<std::vector<short>> phenotypes;  // of each data set
    std::vector<short*> phenotype_rows;
    std::vector<std::vector<int>> rankings;
    std::vector<int*> ranking_rows;
};

// Markers of every frequency, some of them constant, missing everywhere, or missing in one group.
char draw_code(std::mt19937& random, int marker, bool is_case) {
    switch (marker % 11) {
        case 3:
            return 0;
        case 5:
            return -1;
        case 7:
            return is_case ? -1 : static_cast<char>(random() % 3);
        case 9:
            return is_case ? 2 : 0;
        default:
            break;
    }
    if (random() % 40 == 0) return -1;
    const unsigned frequency = 1 + static_cast<unsigned>(marker) % 9;
    return static_cast<char>((random() % 10 < frequency) + (random() % 10 < frequency));
}

Study make_study(unsigned seed, int n, int m, int data_sets) {
    std::mt19937 random(seed);
    Study study;
    std::vector<short> phenotype(static_cast<std::size_t>(n));
    const unsigned kinds = seed % 3 == 0 ? 3 : 2;  // a phenotype of 2 is a control
    for (short& y : phenotype) y = static_cast<short>(random() % kinds);
    if (seed % 10 == 1) phenotype.assign(phenotype.size(), 1);
    for (int i = 0; i < n; ++i) {
        std::vector<char> row;
        for (int j = 0; j < m; ++j) row.push_back(draw_code(random, j, phenotype[i] == 1));
        study.codes.push_back(row);
    }
    for (int d = 0; d < data_sets; ++d) {
        study.phenotypes.push_back(phenotype);
        study.rankings.emplace_back(static_cast<std::size_t>(m));
        std::shuffle(phenotype.begin(), phenotype.end(), random);
    }
    for (auto& row : study.codes) study.rows.push_back(row.data());
    for (auto& row : study.phenotypes) study.phenotype_rows.push_back(row.data());
    for (auto& row : study.rankings) study.ranking_rows.push_back(row.data());
    return study;
}

class FastScreening : public testing::ScreeningTest {
  protected:
    // Points the globals at a study and at one of its data sets.
    void use(Study& study, int d) {
        Sample = static_cast<int>(study.codes.size());
        Marker = static_cast<int>(study.codes[0].size());
        X = study.rows.data();
        Y = study.phenotype_rows[d];
        samplesize[1] = static_cast<int>(
            std::count(study.phenotypes[0].begin(), study.phenotypes[0].end(), short{1}));
        samplesize[0] = Sample - samplesize[1];
    }
    void TearDown() override {
        X = nullptr;
        Y = nullptr;
    }
};

void expect_same(const std::vector<Finding>& fast, const std::vector<Finding>& plain) {
    ASSERT_EQ(fast.size(), plain.size());
    for (std::size_t k = 0; k < plain.size(); ++k) {
        EXPECT_EQ(fast[k].marker, plain[k].marker);
        EXPECT_EQ(fast[k].pvalue, plain[k].pvalue);
    }
}

TEST_F(FastScreening, ShowsWhatThePlainFormShows) {
    // Individuals around the words and bytes of a plane, markers around tiles and blocks.
    const int sizes[] = {1, 7, 8, 9, 63, 64, 65, 127, 200, 513};
    const int markers[] = {1, 2, 63, 64, 65, 127, 128, 129, 300};
    unsigned seed = 0;
    for (const int n : sizes) {
        for (const int m : markers) {
            ++seed;
            SCOPED_TRACE(::testing::Message() << "seed " << seed << ", " << n << " x " << m);
            Study study = make_study(seed, n, m, 3);
            not_over_missing_marker_drop_ratio = seed % 2 == 0 ? 0.05 : 1.0;
            use(study, 0);
            const GroupSizes groups{samplesize[1], samplesize[0]};
            for (const Instructions set : {Instructions::kPortable, best_instructions()}) {
                const CountedDataSets counts(X, Sample, Marker, study.phenotype_rows,
                                             study.ranking_rows, set);
                ASSERT_TRUE(counts.ready());
                MinimumScreening screening(counts, Marker, groups, missing_limits(), set);
                for (int d = 0; d < 3; ++d) {
                    use(study, d);
                    const ScreeningResult plain = result_of(test_all_markers());
                    const ScreeningResult& fast = screening.screen(study.ranking_rows[d]);
                    for (int model = 0; model < kModels; ++model) {
                        expect_same(fast.significant[model], plain.significant[model]);
                    }
                    expect_same(fast.minimum_significant, plain.minimum_significant);
                    EXPECT_EQ(fast.dropped, plain.dropped);
                    EXPECT_EQ(fast.dropped_significant, plain.dropped_significant);
                    ASSERT_EQ(fast.minimum.size(), plain.minimum.size());
                    for (std::size_t k = 0; k < plain.minimum.size(); ++k) {
                        ASSERT_EQ(fast.minimum[k].key, plain.minimum[k].key) << "marker " << k + 1;
                    }
                }
            }
        }
    }
}

TEST_F(FastScreening, CountsThatNeedMoreThanTheirBitsAreLeftToThePlainForm) {
    // Half a million individuals, a third each with genotype 1, 2 and missing: 3 x 18 bits.
    constexpr int kIndividuals = 500000;
    std::vector<char> codes(kIndividuals);
    std::vector<char*> rows;
    for (int i = 0; i < kIndividuals; ++i) {
        codes[i] = static_cast<char>(i % 3 == 0 ? -1 : i % 3);
        rows.push_back(&codes[i]);
    }
    std::vector<short> phenotype(kIndividuals, 1);
    short* phenotypes[] = {phenotype.data()};
    int ranking = 0;
    int* rankings[] = {&ranking};
    const CountedDataSets counts(rows.data(), kIndividuals, 1, phenotypes, rankings,
                                 best_instructions());
    EXPECT_FALSE(counts.ready());
    EXPECT_TRUE(MinimumScreening::fits({20000, 20000}));
    EXPECT_FALSE(MinimumScreening::fits({30000, 30000}));
}

}  // namespace
}  // namespace vort
