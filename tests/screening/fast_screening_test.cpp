// Screenings, from shared counts and marker by marker, against the plain form on random studies.
#include <algorithm>
#include <random>

#include "numeric/index_sort.h"
#include "screening/counted_data_sets.h"
#include "screening/five_model_test.h"
#include "screening/marker_pvalues.h"
#include "screening/minimum_screening.h"
#include "screening/screening.h"
#include "support/screening_fixture.h"
#include "support/study.h"

namespace vort::testing {
namespace {

// Markers of every frequency, some of them constant, missing everywhere, or missing in one group.
char draw_code(std::mt19937& random, int marker, bool is_case) {
    const auto kind = marker % 11;
    if (kind == 3) return '0';
    if (kind == 5 || (kind == 7 && is_case) || random() % 40 == 0) return '-';
    if (kind == 9) return is_case ? '2' : '0';
    const unsigned frequency = 1 + static_cast<unsigned>(marker) % 9;
    return static_cast<char>('0' + (random() % 10 < frequency) + (random() % 10 < frequency));
}

Study make_study(unsigned seed, int n, int m) {
    std::mt19937 random(seed);
    std::vector<short> phenotype(static_cast<std::size_t>(n), 1);
    const unsigned kinds = seed % 3 == 0 ? 3 : 2;  // a phenotype of 2 is a control
    for (short& y : phenotype) y = seed % 10 == 1 ? y : static_cast<short>(random() % kinds);
    std::vector<std::string> rows(phenotype.size());
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < m; ++j) rows[i] += draw_code(random, j, phenotype[i] == 1);
    }
    Study study(rows, phenotype);
    for (int d = 0; d < 2; ++d) {
        std::shuffle(phenotype.begin(), phenotype.end(), random);
        study.add_data_set(phenotype, std::vector<int>(static_cast<std::size_t>(m)));
    }
    return study;
}

ScreeningResult plain_screening() {
    ScreeningResult result;
    for (int j = 0; j < Marker; ++j) {
        double p[4];
        int a[4], b[4];
        calculate_pvalue4_and_freq(Y, X, Marker, Sample, j, p, a, b);
        const double share = not_over_missing_marker_drop_ratio;
        const bool drop = a[3] > static_cast<int>(samplesize[1] * share) ||
                          b[3] > static_cast<int>(samplesize[0] * share);
        result.dropped += drop;
        for (int model = 0; model < 4; ++model) {
            result.dropped_significant[model] += drop && p[model] <= 0.002;
            if (drop) p[model] = 1.0;
            if (p[model] <= 0.002) result.significant[model].push_back({j + 1, p[model]});
        }
        const double minimum = *std::min_element(p, p + 4);
        if (minimum <= 0.0005) result.minimum_significant.push_back({j + 1, minimum});
        result.minimum.push_back({minimum, j + 1});
    }
    return result;
}

// All of a result, for comparison to the bit.
std::vector<std::pair<int, double>> facts(const ScreeningResult& result) {
    std::vector<std::pair<int, double>> all;
    const auto add = [&](const std::vector<Finding>& findings) {
        all.emplace_back(findings.size(), 0);
        for (const Finding& f : findings) all.emplace_back(f.marker, f.pvalue);
    };
    for (const auto& findings : result.significant) add(findings);
    add(result.minimum_significant);
    for (const KeyedIndex& item : result.minimum) all.emplace_back(item.index, item.key);
    for (const int count : result.dropped_significant) all.emplace_back(result.dropped, count);
    return all;
}

std::vector<int> plain_ranking(const ScreeningResult& result) {
    std::vector<double> minimum = {0};
    for (const KeyedIndex& item : result.minimum) minimum.push_back(item.key);
    std::vector<int> order(minimum.size());
    Quickindex(minimum.data(), order.data(), Marker);  // ties as it leaves them
    for (int& column : order) --column;
    return {order.begin() + 1, order.end()};
}

class FastScreening : public ScreeningTest {
  protected:
    void use(Study& study) {
        set_sizes(study.individuals(), study.markers());
        y_.assign(study.y()[0], study.y()[0] + Sample);
        X = study.x();
        Y = y_.data();
        exist_X_Y_data = 1;
        samplesize[1] = static_cast<int>(std::count(y_.begin(), y_.end(), short{1}));
        samplesize[0] = Sample - samplesize[1];
    }
    void TearDown() override {
        X = nullptr;
        Y = nullptr;
        exist_X_Y_data = 0;
    }

    std::vector<short> y_;
};

TEST_F(FastScreening, AllFormsAgreeToTheBit) {
    // Individuals around the words and bytes of a plane, markers around tiles and blocks.
    unsigned seed = 0;
    for (const int n : {1, 7, 8, 9, 63, 64, 65, 127, 200, 513}) {
        for (const int m : {1, 2, 63, 64, 65, 127, 128, 129, 300}) {
            ++seed;
            SCOPED_TRACE(::testing::Message() << "seed " << seed << ", " << n << " x " << m);
            Study study = make_study(seed, n, m);
            not_over_missing_marker_drop_ratio = seed % 2 == 0 ? 0.05 : 1.0;
            use(study);
            const std::span phenotypes(study.y(), 3);
            const std::span rankings(study.rankings(), 3);
            for (const Instructions set :
                 {Instructions::kPortable, Instructions::kWide, Instructions::kWidest}) {
                if (set > best_instructions()) continue;
                const CountedDataSets counts(X, n, m, phenotypes, rankings, set);
                ASSERT_TRUE(counts.ready());
                MinimumScreening fast(counts, m, {samplesize[1], samplesize[0]}, missing_limits(),
                                      set);
                for (int d = 0; d < 3; ++d) {
                    std::copy_n(phenotypes[d], n, Y);
                    ASSERT_EQ(facts(fast.screen(rankings[d])), facts(plain_screening()));
                }
            }
            DataSetScreening screening(phenotypes, rankings);
            for (int d = 0; d < 3; ++d) {
                const ConsoleCapture console;
                screening.screen(d);
                const ScreeningResult plain = plain_screening();
                ASSERT_EQ(facts(result_of(test_all_markers())), facts(plain));
                ASSERT_EQ(std::vector<int>(rankings[d], rankings[d] + m), plain_ranking(plain));
            }
        }
    }
}

TEST_F(FastScreening, CountsThatNeedMoreThanTheirBitsAreLeftToThePlainForm) {
    // Half a million individuals, a third each with genotype 1, 2 and missing: 3 x 18 bits.
    constexpr int kIndividuals = 500000;
    std::vector<std::string> codes(kIndividuals, "-");
    for (int i = 0; i < kIndividuals; ++i) codes[i] = i % 3 == 0 ? "-" : std::to_string(i % 3);
    Study study(codes, std::vector<short>(kIndividuals, 1));
    const CountedDataSets counts(study.x(), kIndividuals, 1, std::span(study.y(), 1),
                                 std::span(study.rankings(), 1), best_instructions());
    EXPECT_FALSE(counts.ready());
    EXPECT_TRUE(MinimumScreening::fits({20000, 20000}));
    EXPECT_FALSE(MinimumScreening::fits({30000, 30000}));
}

}  // namespace
}  // namespace vort::testing
