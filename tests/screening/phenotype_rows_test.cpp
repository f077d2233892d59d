// Rows of phenotypes against shuffling by single draws; prepared files that are damaged.
#include "screening/phenotype_rows.h"

#include <gtest/gtest.h>

#include "screening/plain_screening.h"
#include "screening/prepared_file.h"
#include "support/random_clusters.h"
#include "support/random_study.h"
#include "support/temporary_folder.h"
#include "support/told.h"

namespace vort::testing {
namespace {

// Each cluster by itself, one after the other.
std::vector<short> shuffled_within(const std::vector<std::vector<int>>& clusters,
                                   const std::vector<short>& phenotypes,
                                   PlainGenerator& generator) {
    std::vector<short> out(phenotypes.size());
    for (const std::vector<int>& members : clusters) {
        std::vector<short> own;
        for (const int i : members) own.push_back(phenotypes[i]);
        own = shuffled(std::move(own), generator);
        for (std::size_t k = 0; k < own.size(); ++k) out[members[k]] = own[k];
    }
    return out;
}

TEST(PhenotypeRows, AreShuffledWithinClustersByPlainDraws) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 random(seed);
        const int n = 1 + static_cast<int>(random() % (seed % 10 == 0 ? 3000 : 100));
        SCOPED_TRACE("seed " + std::to_string(seed) + ", " + std::to_string(n) + " individuals");
        const RandomStudy study(seed, {n, 0, 0, 0.4, 2 + static_cast<int>(seed % 2)});
        const std::vector<int> labels = random_cluster_labels(random, n);
        PhenotypeRows rows(study.phenotypes, Clusters(labels));
        Generator generator;
        PlainGenerator plain;
        rows.permute(5, generator, 2);
        std::vector<short> expected = study.phenotypes;
        for (int r = 1; r <= 5; ++r) {
            expected = shuffled_within(plain_clusters(labels), expected, plain);
            ASSERT_EQ(rows.row(r), expected) << r;
        }
        EXPECT_EQ(plain, generator);
    }
}

TEST(PhenotypeRows, AreShuffledByPlainDraws) {
    for (const int n : {1, 2, 63, 64, 65, 700}) {
        for (const int values : {1, 2, 3}) {
            const RandomStudy study(static_cast<unsigned>(n),
                                    {n, 0, 0, values == 1 ? 1.0 : 0.4, std::max(values, 2)});
            for (const int threads : {1, 2, 5}) {
                SCOPED_TRACE(std::to_string(n) + " individuals, values " + std::to_string(values) +
                             ", threads " + std::to_string(threads));
                PhenotypeRows rows(study.phenotypes);
                Generator generator;
                PlainGenerator plain;
                rows.permute(9, generator, threads);
                std::vector<short> expected = study.phenotypes;
                ASSERT_EQ(rows.count(), 10);
                for (int r = 0; r <= 9; ++r) {
                    if (r > 0) expected = shuffled(expected, plain);
                    ASSERT_EQ(rows.row(r), expected);
                    std::vector<std::uint64_t> plane(plane_words(n), ~std::uint64_t{0});
                    rows.cases(r, plane.data());
                    for (int i = 0; i < 64 * static_cast<int>(plane.size()); ++i) {
                        ASSERT_EQ(plane[i / 64] >> i % 64 & 1, i < n && expected[i] == 1 ? 1U : 0U);
                    }
                }
                EXPECT_EQ(plain, generator);
            }
        }
    }
}

// Rows in bits make room for a row with a third value.
TEST(PhenotypeRows, AThirdValueMayComeLate) {
    const std::vector<short> first = {2, 1, 1, 2}, second = {1, 2, 1, 2}, third = {7, 1, 2, 1};
    PhenotypeRows rows(first);
    for (const auto& row : {second, third, second}) rows.add(row);
    EXPECT_EQ(rows.row(0), first);
    EXPECT_EQ(rows.row(1), second);
    EXPECT_EQ(rows.row(2), third);
    EXPECT_EQ(rows.row(3), second);
    std::vector<short> two(2);
    rows.row(2, two);
    EXPECT_EQ(two, (std::vector<short>{7, 1}));
}

TEST(PreparedFile, WhatIsWrongWithAFile) {
    const TemporaryFolder folder;
    const std::string counts = "\t1\t2\t0\t0\t1\t2\t0\t0\t\n";
    const std::string lines = "3" + counts + "1" + counts;
    const std::string unusable =
        ": a column and eight counts were expected; column 0 is taken from here on\n";
    const std::string few = " phenotypes, 6 expected; the others are taken as 0\n";
    const struct {
        std::string text;
        std::vector<int> best;
        std::string said;
    } rows[] = {
        {"1 0 1 0 1 0 \n" + lines, {3, 1}, ""},
        {"1 0 1\n" + lines, {3, 1}, "1: 3" + few},
        {"1 0 1 0 1 0 \n4" + counts + "1" + counts,
         {0, 1},
         "2: a column below 4 was expected, not 4; column 0 is taken\n"},
        // A line that is too short takes its counts from the next.
        {"1 0 1 0 1 0 \n3\t1\t2\n1" + counts, {3, 0}, "3" + unusable},
        {"", {0, 0}, "1: 0" + few + "1" + unusable},
    };
    Told told;
    const auto read = [&] { return read_prepared_file("prepared", 6, 2, 4, told.diagnostics); };
    EXPECT_EQ(stop_of(read), "0 find error when opening file prepared\n");
    for (const auto& row : rows) {
        write_file("prepared", row.text);
        EXPECT_EQ(read().best, row.best) << row.text;
        EXPECT_EQ(told.take(), said_of("prepared", row.said)) << row.text;
    }
}

}  // namespace
}  // namespace vort::testing
