// The numbers of a run, from counts and p-values to tables.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "common/input_error.h"
#include "results/data_set_files.h"
#include "results/fitted_risk.h"
#include "results/marker_rows.h"
#include "results/model_json.h"
#include "results/pvalue_quantiles.h"
#include "results/table_text.h"
#include "screening/marker_counts.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

using ::testing::HasSubstr;

MarkerRow tested(const std::array<int, 3>& cases, const std::array<int, 3>& controls) {
    const MarkerCounts counts{{{cases[0], cases[1], cases[2], 0}},
                              {{controls[0], controls[1], controls[2], 0}}};
    MarkerRow row;
    fill_tests(counts, row);
    return row;
}

// Dominant, recessive and genotypic statistics of R 4.2, chisq.test(correct = FALSE), p-values of
// pchisq(lower.tail = FALSE).
TEST(FillTests, PearsonStatisticsWithTailsThatDoNotEnd) {
    const MarkerRow row = tested({137, 157, 42}, {162, 86, 14});
    EXPECT_NEAR(row.dominant.chisq, 26.1122, 1e-4);
    EXPECT_NEAR(row.recessive.chisq, 8.88289, 1e-5);
    EXPECT_NEAR(row.genotype.chisq, 28.1084, 1e-4);
    EXPECT_NEAR(row.genotype.p / 7.87663e-07, 1, 1e-5);
    EXPECT_EQ(row.model, "ADD");
    EXPECT_EQ(row.p_min, row.additive.p);
    const MarkerRow extreme = tested({0, 0, 500}, {500, 0, 0});
    EXPECT_NEAR(extreme.dominant.chisq, 1000, 1e-9);
    EXPECT_NEAR(extreme.dominant.p / 1.79583e-219, 1, 1e-5);
    EXPECT_EQ(extreme.genotype_df, 1);
    EXPECT_EQ(extreme.genotype.p, extreme.dominant.p);
}

TEST(FillTests, WhatIsUndefinedIsNotAvailable) {
    struct Case {
        const char* name;
        std::array<int, 3> cases, controls;
        bool additive, dominant, recessive, genotype;
    };
    for (const Case& c : {Case{"one genotype", {9, 0, 0}, {7, 0, 0}, false, false, false, false},
                          Case{"heterozygous", {0, 9, 0}, {0, 7, 0}, true, false, false, false},
                          Case{"no copy twice", {5, 4, 0}, {6, 1, 0}, true, true, false, true},
                          Case{"copies only", {0, 4, 5}, {0, 1, 6}, true, false, true, true},
                          Case{"no controls", {5, 4, 1}, {0, 0, 0}, false, false, false, false}}) {
        const MarkerRow row = tested(c.cases, c.controls);
        EXPECT_EQ(row.additive.p >= 0, c.additive) << c.name;
        EXPECT_EQ(row.dominant.p >= 0, c.dominant) << c.name;
        EXPECT_EQ(row.recessive.p >= 0, c.recessive) << c.name;
        EXPECT_EQ(row.genotype.p >= 0, c.genotype) << c.name;
        EXPECT_EQ(row.p_min >= 0, !row.model.empty()) << c.name;
    }
}

TEST(CountAllGenotypes, AgreesWithCountingOneByOne) {
    const unsigned seed = 5;
    std::mt19937 random(seed);
    for (const int individuals : {1, 63, 64, 700, 13000}) {
        Genotypes genotypes(individuals, 7);
        std::vector<short> phenotypes(static_cast<std::size_t>(individuals));
        for (short& phenotype : phenotypes) phenotype = static_cast<short>(random() % 2);
        for (int j = 0; j < genotypes.markers(); ++j) {
            for (unsigned char& four : genotypes.owned_column(j)) {
                four = static_cast<unsigned char>(random());
            }
        }
        const auto fast = count_all_genotypes(genotypes, PhenotypeRows(phenotypes), 3);
        std::vector<signed char> codes(phenotypes.size());
        for (int j = 0; j < genotypes.markers(); ++j) {
            genotypes.unpack(j, codes.data());
            const MarkerCounts plain = count_genotypes(codes, phenotypes);
            EXPECT_EQ(fast[j].cases.count, plain.cases.count) << individuals << " seed " << seed;
            EXPECT_EQ(fast[j].controls.count, plain.controls.count) << individuals;
        }
    }
}

TEST(PvalueQuantiles, AreThoseOfSortedDataSets) {
    const unsigned seed = 11;
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> exponent(-12, 0);
    constexpr int kMarkers = 3000;
    constexpr int kDataSets = 41;
    PvalueQuantiles quantiles(kMarkers);
    std::vector<std::vector<double>> sorted;
    for (int d = 0; d < kDataSets; ++d) {
        std::vector<double> pvalues(kMarkers);
        for (double& p : pvalues) p = std::pow(10, exponent(random));
        quantiles.add_permuted(pvalues);
        std::ranges::sort(pvalues);
        sorted.push_back(pvalues);
    }
    std::vector<int> ranking(kMarkers);
    for (int k = 0; k < kMarkers; ++k) ranking[k] = k;
    quantiles.set_observed(sorted.front(), ranking);
    for (const QuantileRow& row : quantiles.rows()) {
        std::vector<double> at_rank;
        for (const auto& pvalues : sorted) at_rank.push_back(pvalues[row.rank - 1]);
        std::ranges::sort(at_rank);
        // Of 41 values the second is the 2.5 % point, the 21st the median.
        EXPECT_NEAR(row.low / at_rank[1], 1, 0.01) << row.rank << " seed " << seed;
        EXPECT_NEAR(row.expected / at_rank[20], 1, 0.01) << row.rank;
        EXPECT_NEAR(row.high / at_rank[39], 1, 0.01) << row.rank;
        EXPECT_NEAR(row.observed / sorted.front()[row.rank - 1], 1, 1e-5);
    }
}

// Of 100 people 25 carry, with 0.5 more risk: the column of length 1 has 0.75 / sqrt(18.75) for
// them, so the coefficient is 0.5 sqrt(18.75).
TEST(FittedRisk, IsOfThePlainColumn) {
    BaseLearner learner;
    learner.carriers = 25;
    learner.beta = 0.5 * std::sqrt(18.75);
    const FittedRisk risk = fitted_risk({&learner, 1}, 40, 60);
    EXPECT_NEAR(risk.difference.at(0), 0.5, 1e-12);
    EXPECT_NEAR(risk.intercept, 0.4 - 0.125, 1e-12);
}

TEST(TableReader, TellsWhatIsWrongWithItsPlace) {
    const TemporaryFolder folder;
    const std::string path = "permutations.tsv";
    const std::string header = "DATA_SET\tT\tP_MIN\tSNP\tLEARNERS\n";
    for (const auto& [text, told] : {
             std::pair<std::string, const char*>{"", ":1: another header"},
             {"DATA_SET\tT\n", ":1: another header; DATA_SET"},
             {header + "0\t0.5\t0.1\trs1\n", ":2: 4 columns; 5 expected"},
             {header + "0\t0.5\t0.1\trs1\t3\n1\tNA\tx\trs1\t3\n", ":3: x; a number or NA"},
             {header + "0\t0.5\t0.1\trs1\t3.5\n", ":2: 3.5; a whole number from 0 to "},
             {header + "4294967296\t0.5\t0.1\trs1\t3\n", ":2: 4294967296; a whole number from 0"},
             {std::string("\x1f\x8b\x08\0\0\0\0\0\0\x03\x03\0\0\0\0\0\0\0\0\0", 20),
              ": is compressed; text expected"},
             {header + "0\t0.5\t-0.1\trs1\t3\n", ":2: -0.1; a number from 0 to 1, or NA"},
         }) {
        write_file(path, text);
        try {
            read_data_set_file(path);
            ADD_FAILURE() << "read: " << text;
        } catch (const InputError& error) {
            EXPECT_THAT(error.text, HasSubstr(path + told));
        }
    }
    write_file(path, header + "0\tNA\t0.1\tNA\tNA\n");
    const DataSetRow row = read_data_set_file(path).at(0);
    EXPECT_TRUE(std::isnan(row.T));
    EXPECT_EQ(row.smallest_p, 0.1);
    EXPECT_EQ(row.marker, "");
    EXPECT_EQ(row.learners, -1);
}

// What is too deep to be walked through is refused, and no brackets of names count.
TEST(ReadModel, OnlyBracketsThatNestAreDepth) {
    const TemporaryFolder folder;
    const auto brackets = [](char c) { return std::string(100'000, c); };
    for (const auto& [value, is_read] : {
             std::pair<std::string, bool>{brackets('[') + brackets(']'), false},
             {"[\"" + brackets(']') + "\", " + brackets('[') + brackets(']') + "]", false},
             {R"(["\"", )" + brackets('[') + brackets(']') + "]", false},
             {"\"" + brackets('[') + "\"", true},
             {R"("\\\"{)" + brackets('{') + "\"", true},
         }) {
        write_file("model.json",
                   R"({"format": "vort-model", "format_version": 1, "x": )" + value + "}");
        const auto reads = [] {
            try {
                return read_model("model.json").is_object();
            } catch (const InputError&) {
                return false;
            }
        };
        EXPECT_EQ(reads(), is_read) << value.substr(0, 10);
    }
}

}  // namespace
}  // namespace vort::testing
