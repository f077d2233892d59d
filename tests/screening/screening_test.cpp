// Screenings of many data sets against marker by marker, one data set at a time, to the last byte.
#include "screening/screening.h"

#include <gtest/gtest.h>

#include "screening/plain_screening.h"
#include "support/instruction_sets.h"
#include "support/random_study.h"
#include "support/told.h"

namespace vort::testing {
namespace {

std::vector<PlainScreening> screen_plainly(const Genotypes& genotypes, const PhenotypeRows& rows) {
    std::vector<PlainScreening> plain;
    for (int d = 0; d < rows.count(); ++d) plain.emplace_back(genotypes, rows.row(d));
    return plain;
}

void expect_plain(const Genotypes& genotypes, const PhenotypeRows& rows,
                  const std::vector<PlainScreening>& plain, const ScreeningOptions& options) {
    SCOPED_TRACE("threads " + std::to_string(options.threads) + ", batches of " +
                 std::to_string(options.batch_bytes) + " bytes, transcript " +
                 std::to_string(options.transcript) + ", kept " + std::to_string(options.kept));
    Told told;
    int next = 0;
    screen_data_sets(
        genotypes, rows, MarkerTable(), options, told.diagnostics,
        [&](int d, ScreenedDataSet&& screened) {
            ASSERT_EQ(d, next++);
            const PlainScreening& wanted = plain[d];
            const std::size_t kept = std::min(wanted.ranking.size(), std::size_t(options.kept));
            EXPECT_EQ(screened.best,
                      std::vector<int>(wanted.ranking.begin(),
                                       wanted.ranking.begin() + std::ptrdiff_t(kept)));
            EXPECT_EQ(
                screened.smallest_pvalue,
                wanted.ranking.empty() ? 1.0 : wanted.all.minimum[wanted.ranking.front() + 1]);
            // The first line tells the seconds.
            const std::string text(screened.transcript->text());
            EXPECT_EQ(text.substr(text.find('\n') + 1), options.transcript ? wanted.text : "");
        });
    EXPECT_EQ(next, rows.count());
}

TEST(Screening, AgreesWithThePlainFormOnRandomStudies) {
    for (unsigned seed = 1; seed <= 60 && !::testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const int n = 1 + static_cast<int>(random() % (seed % 3 == 0 ? 300 : 70));
        const int m = seed == 7 ? 0 : seed % 20 == 1 ? 2100 : 1 + static_cast<int>(random() % 150);
        const double missing[] = {0, 0.01, 0.045, 0.3};
        RandomStudy study(
            seed, {n, m, missing[seed % 4], seed % 10 == 4 ? 1.0 : 0.45, seed % 5 == 0 ? 3 : 2});
        PhenotypeRows rows(study.phenotypes);
        Generator generator;
        rows.permute(static_cast<int>(seed % 6), generator, 1);
        const auto plain = screen_plainly(study.genotypes, rows);
        const std::size_t row = static_cast<std::size_t>(m) * sizeof(double);
        for (const auto& [threads, bytes, transcript] : {std::tuple{1, row, true},
                                                         {2, 2 * row, true},
                                                         {5, 100 * row, true},
                                                         {1, 100 * row, false},
                                                         {5, row, false}}) {
            ScreeningOptions options;
            options.threads = threads;
            options.batch_bytes = static_cast<double>(bytes);
            options.transcript = transcript;
            options.kept = static_cast<int>(random() % (2 * static_cast<unsigned>(m) + 2));
            expect_plain(study.genotypes, rows, plain, options);
        }
    }
}

// 4 R S is beyond 2^31 from 46,341 individuals on; counts are added up over several stretches of
// words from 12,289 on.
TEST(Screening, ManyIndividuals) {
    for (const int n : {33000, 50000}) {
        SCOPED_TRACE(n);
        const RandomStudy study(static_cast<unsigned>(n), {n, 11, 0.02});
        PhenotypeRows rows(study.phenotypes);
        Generator generator;
        rows.permute(2, generator, 2);
        ScreeningOptions options;
        options.threads = 2;
        options.kept = 4;
        expect_plain(study.genotypes, rows, screen_plainly(study.genotypes, rows), options);
    }
}

TEST(StretchScreening, EverySetOfInstructionsAgreesWithThePlainForm) {
    for (const int n : {1, 9, 64, 300, 13000}) {
        const RandomStudy study(static_cast<unsigned>(n), {n, n > 1000 ? 20 : 200, 0.02});
        PhenotypeRows rows(study.phenotypes);
        Generator generator;
        rows.permute(5, generator, 1);
        const auto plain = screen_plainly(study.genotypes, rows);
        const auto markers = static_cast<std::size_t>(study.genotypes.markers());
        const int cases =
            static_cast<int>(std::count(study.phenotypes.begin(), study.phenotypes.end(), 1));
        const GroupSizes sizes{cases, n - cases};
        for (const Instructions set : instruction_sets()) {
            SCOPED_TRACE(std::to_string(n) + " individuals, instructions " +
                         std::to_string(static_cast<int>(set)));
            const ScreeningStudy shared{study.genotypes, sizes, missing_limits(sizes), set};
            const CasePlanes planes(rows, 0, rows.count());
            std::vector<double> minima(static_cast<std::size_t>(rows.count()) * markers);
            std::vector<Findings> findings(static_cast<std::size_t>(rows.count()));
            StretchScreening(shared, planes)
                .screen(0, study.genotypes.markers(), {minima.data(), markers}, findings);
            for (int d = 0; d < rows.count(); ++d) {
                const double* const found = minima.data() + static_cast<std::size_t>(d) * markers;
                EXPECT_TRUE(std::equal(found, found + markers, plain[d].all.minimum.begin() + 1));
                Transcript lists(true);
                print_plain_lists(lists, findings[d]);
                EXPECT_TRUE(plain[d].text.starts_with(lists.text()));
            }
        }
    }
}

}  // namespace
}  // namespace vort::testing
