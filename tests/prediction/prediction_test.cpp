// A model read, its markers matched, applied and evaluated.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <random>

#include "common/input_error.h"
#include "prediction/evaluation.h"
#include "prediction/predictions.h"
#include "study/study_files.h"

namespace vort::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

MarkerInfo marker(const std::string& name, const char* a1, const char* a2, long position = 7) {
    return {1, name, position, a1, a2};
}

// Which copies are counted, for every way in which two studies may write a variant.
TEST(MatchMarkers, AllelesDecideWhatIsCounted) {
    using enum AlleleFit;
    const struct {
        const char *model_a1, *model_a2, *a1, *a2;
        AlleleFit fit;
        bool no_strand;
    } rows[] = {
        {"A", "G", "A", "G", kSame, false},
        {"A", "G", "a", "g", kSame, false},
        {"A", "G", "G", "A", kSwapped, false},
        {"A", "G", "T", "C", kFlipped, false},
        {"A", "G", "C", "T", kFlippedSwapped, false},
        {"A", "G", "A", "C", kOther, false},
        {"A", "G", "A", "T", kOther, false},
        {"A", "T", "A", "T", kSame, true},
        {"A", "T", "T", "A", kSwapped, true},
        {"C", "G", "G", "C", kSwapped, true},
        {"A", "T", "C", "G", kOther, false},
        // Nobody here has the other allele, so it has no name.
        {"A", "G", "0", "G", kSame, false},
        {"A", "G", "0", "A", kSwapped, false},
        {"A", "G", "0", "C", kFlipped, false},
        {"A", "G", "0", "T", kFlippedSwapped, false},
        {"A", "T", "0", "T", kSame, true},
        // A recoding knows the counted allele only; A and T might be the two of one variant.
        {"A", ".", "A", ".", kSame, false},
        {"A", ".", "G", "A", kSwapped, false},
        {"A", ".", "T", ".", kOther, false},
        {"A", ".", "T", "C", kOther, false},
        {".", ".", "A", "G", kNameless, false},
        {"A", "G", "", "0", kNameless, false},
        // No base, no other strand.
        {"AT", "A", "A", "AT", kSwapped, false},
        {"AT", "A", "TA", "T", kOther, false},
        {"1", "2", "2", "1", kSwapped, false},
    };
    for (const auto& row : rows) {
        const std::vector<MarkerInfo> model = {marker("m", row.model_a1, row.model_a2)};
        const std::vector<MarkerInfo> study = {marker("x", "A", "G"), marker("m", row.a1, row.a2)};
        const MarkerMatch match = match_markers(model, study, true).front();
        const std::string told = std::string(row.model_a1) + '/' + row.model_a2 + " and " + row.a1 +
                                 '/' + row.a2 + ": " + fit_text(match.fit);
        EXPECT_EQ(match.fit, row.fit) << told;
        EXPECT_EQ(match.no_strand, row.no_strand) << told;
        EXPECT_EQ(match.column, 1) << told;
    }
}

TEST(MatchMarkers, NamesPlacesAndWhatIsTold) {
    const std::vector<MarkerInfo> model = {
        marker("gone", "A", "G"),     marker("twice", "A", "G", 5), marker("unclear", "A", "G"),
        marker("moved", "A", "G", 9), marker("odd", "A", "G"),      marker("other", "A", "G"),
        marker("pal", "C", "G")};
    const std::vector<MarkerInfo> study = {
        marker("twice", "A", "G", 4), marker("twice", "A", "C", 5), marker("twice", "G", "A", 5),
        marker("unclear", "A", "G"),  marker("unclear", "A", "G"),  marker("moved", "A", "G", 8),
        marker("odd", "T", "C"),      marker("other", "A", "C"),    marker("pal", "C", "G")};
    const std::vector<MarkerMatch> matches = match_markers(model, study, true);
    EXPECT_EQ(matches[1].column, 2) << "place and alleles tell which of three it is";
    EXPECT_THAT(match_notes(model, study, matches),
                ::testing::ElementsAre(
                    "1 marker of the model is not here (gone).",
                    "1 marker of the model is here more than once (unclear), and place and alleles "
                    "do not tell which it is; counted as not found.",
                    "1 marker of the model has other alleles here (other: A/G in the model, A/C "
                    "here), which cannot be matched; counted as not found.",
                    "1 marker of the model is on the other strand here (odd: A/G in the model, T/C "
                    "here); read on the model's strand.",
                    "1 marker of the model counts the other allele here (twice); read as the model "
                    "counts.",
                    "1 marker of the model has alleles A/T or C/G (pal), which do not tell the "
                    "strand; taken to be on the model's.",
                    "1 marker of the model is at another place here (moved: 1:9 in the model, 1:8 "
                    "here), as in another build of the genome; the name decides."));
    EXPECT_FALSE(match_markers(model, study, false)[3].elsewhere);
}

// One learner of a pair, {p, q}, with the genotypes that `cells` say, and one of p alone.
json small_model(const json& cells) {
    const json p = {{"name", "p"}, {"chromosome", 1}, {"position", 5}, {"a1", "A"}, {"a2", "G"}};
    const json q = {{"name", "q"}, {"chromosome", 2}, {"position", 6}, {"a1", "C"}, {"a2", "T"}};
    const json people = {{"cases", 3}, {"controls", 1}};
    return {{"input",
             {{"format", "bed"}, {"individuals", {{"cases", 6}, {"controls", 4}}}, {"files", {}}}},
            {"model",
             {{"intercept", 0.25},
              {"base_learners",
               {{{"id", 4},
                 {"markers", {p, q}},
                 {"cells", cells},
                 {"risk_difference", 0.5},
                 {"inside", people},
                 {"outside", {{"cases", 4}, {"controls", 8}}}},
                {{"id", 2},
                 {"markers", {p}},
                 {"cells", {{2}}},
                 {"risk_difference", -0.125},
                 {"inside", people},
                 {"outside", people}}}}}}};
}

// By hand; the first learner holds of those with one copy at p, whatever q is, and of 2 and 2.
TEST(Predict, RisksOfEveryGenotype) {
    const RiskModel model =
        risk_model_of(small_model({{1, 0}, {1, 1}, {1, 2}, {2, 2}}), "model.json");
    EXPECT_EQ(model.study_share, 0.6);
    const struct {
        int p, q;
        signed char pair, single;
        double risk;
    } rows[] = {
        {0, 0, 0, 0, 0.25},   {1, 0, 1, 0, 0.75},      {2, 2, 1, 1, 0.625},
        {2, 0, 0, 1, 0.125},  {1, -1, 1, 0, 0.75},     {0, -1, 0, 0, 0.25},
        {2, -1, -1, 1, 0.25}, {-1, 0, -1, -1, 0.3125}, {-1, -1, -1, -1, 0.3125},
    };
    const int people = static_cast<int>(std::size(rows));
    Genotypes genotypes(people, 2);
    const auto write = [&](int i, int j, int code) {
        constexpr unsigned kBits[] = {1, 3, 2, 0};
        unsigned char& byte = genotypes.owned_column(j)[static_cast<std::size_t>(i / 4)];
        byte = static_cast<unsigned char>((byte & ~(3U << 2 * (i % 4))) | kBits[code + 1]
                                                                              << 2 * (i % 4));
    };
    for (int i = 0; i < people; ++i) {
        write(i, 1, rows[i].p);
        write(i, 0, rows[i].q < 0 ? -1 : 2 - rows[i].q);
    }
    const std::vector<MarkerInfo> study = {{2, "q", 6, "T", "C"}, {1, "p", 5, "A", "G"}};
    const auto matches = match_markers(model.markers, study, true);
    const Predictions all = predict(model, matches, genotypes);
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(all.has(i, 0), rows[i].pair) << i;
        EXPECT_EQ(all.has(i, 1), rows[i].single) << i;
        EXPECT_EQ(all.risk[i], rows[i].risk) << i;
        EXPECT_EQ(all.genotyped[i], (rows[i].p >= 0) + (rows[i].q >= 0)) << i;
    }
    // Without the marker everybody is as if without its genotype.
    const Predictions without = predict(model, std::vector<MarkerMatch>(2), genotypes);
    for (const double risk : without.risk) EXPECT_EQ(risk, 0.3125);
}

TEST(RiskModelOf, WhatIsNoModelIsAnError) {
    const json sound = small_model({{1, 0}});
    EXPECT_EQ(risk_model_of(sound, "m").markers.size(), 2U);
    const struct {
        const char *change, *said;
    } rows[] = {
        {R"({"op": "replace", "path": "/model", "value": null})", "m: holds no model"},
        {R"({"op": "remove", "path": "/model"})", "m: "},
        {R"({"op": "replace", "path": "/model", "value": [1]})", "m: "},
        {R"({"op": "replace", "path": "/model/intercept", "value": "x"})", "m: "},
        {R"({"op": "replace", "path": "/model/intercept", "value": true})", "m: "},
        {R"({"op": "replace", "path": "/model/base_learners", "value": []})", "no base learner"},
        {R"({"op": "replace", "path": "/model/base_learners", "value": {}})", "no base learner"},
        {R"({"op": "replace", "path": "/model/base_learners/0/id", "value": 2})",
         "base learner 2 is there twice"},
        {R"({"op": "replace", "path": "/model/base_learners/0/id", "value": 1e9})", "id is no"},
        {R"({"op": "replace", "path": "/model/base_learners/0/risk_difference", "value": 1e300})",
         "a risk difference"},
        {R"({"op": "replace", "path": "/model/base_learners/0/cells/0", "value": [1]})",
         "a genotype of other markers"},
        {R"({"op": "replace", "path": "/model/base_learners/0/cells/0", "value": [1, 3]})",
         "a genotype is no whole number from 0 to 2"},
        {R"({"op": "replace", "path": "/model/base_learners/0/cells/0", "value": [1, -1]})",
         "a genotype is no whole number"},
        {R"({"op": "replace", "path": "/model/base_learners/0/cells/0", "value": [1, 0.5]})",
         "a genotype is no whole number"},
        {R"({"op": "replace", "path": "/model/base_learners/0/markers", "value": []})",
         "neither one marker nor two"},
        {R"({"op": "copy", "path": "/model/base_learners/0/markers/1",
             "from": "/model/base_learners/1/markers/0"})",
         "neither one marker nor two"},
        {R"({"op": "replace", "path": "/model/base_learners/0/markers/1/chromosome", "value": 27})",
         "a chromosome is no"},
        {R"({"op": "replace", "path": "/model/base_learners/0/inside/cases", "value": -1})",
         "cases is no"},
        {R"({"op": "replace", "path": "/input/format", "value": "raw"})", ""},
    };
    for (const auto& row : rows) {
        std::string said;
        try {
            risk_model_of(sound.patch(json::array({json::parse(row.change)})), "m");
        } catch (const InputError& error) {
            said = error.text;
        }
        EXPECT_THAT(said, HasSubstr(row.said)) << row.change;
        EXPECT_EQ(said.empty(), *row.said == '\0') << row.change;
    }
    json pair_of_one = sound;
    json& markers = pair_of_one["model"]["base_learners"][0]["markers"];
    markers[1] = markers[0];
    EXPECT_THROW(risk_model_of(pair_of_one, "m"), InputError);
}

// Groups cover everybody once, in order, never dividing those of equal risk.
TEST(Evaluate, GroupsOfRisk) {
    const unsigned seed = 17;
    RecordProperty("seed", seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        const unsigned levels = 1U + unsigned(random()) % (round % 2 == 0 ? 8U : 500U);
        std::vector<double> risks(1 + random() % 200);
        std::vector<short> phenotypes(risks.size());
        for (std::size_t i = 0; i < risks.size(); ++i) {
            risks[i] = double(random() % levels) / 8;
            phenotypes[i] = static_cast<short>(int(random() % 3) - 1);
        }
        const Evaluation found = evaluate(risks, phenotypes, 0.5);
        const long n = found.individuals();
        EXPECT_EQ(n, std::ssize(risks) - std::ranges::count(phenotypes, kNoPhenotype));
        long people = 0, cases = 0;
        double squares = 0, before = -1;
        for (const RiskGroup& group : found.calibration) {
            EXPECT_GT(group.lowest, before) << "round " << round;
            EXPECT_LE(group.lowest, group.mean * (1 + 1e-12));
            EXPECT_LE(group.mean, group.highest * (1 + 1e-12));
            EXPECT_GE(20 * group.individuals, n) << "round " << round;
            before = group.highest;
            people += group.individuals;
            cases += group.cases;
        }
        EXPECT_LE(found.calibration.size(), 10U);
        EXPECT_EQ(people, n) << "seed " << seed << ", round " << round;
        EXPECT_EQ(cases, found.cases);
        for (std::size_t i = 0; i < risks.size(); ++i) {
            if (phenotypes[i] >= 0) squares += std::pow(risks[i] - phenotypes[i], 2);
        }
        if (n > 0) {
            EXPECT_NEAR(found.brier, squares / double(n), 1e-12);
            EXPECT_EQ(found.brier_without_model, 0.25);
        }
        const json written = evaluation_json(found);
        EXPECT_EQ(json(evaluation_json(read_evaluation(written))), written) << "round " << round;
    }
    std::vector<double> hundred(100);
    for (std::size_t i = 0; i < hundred.size(); ++i) hundred[i] = double(i);
    const Evaluation even = evaluate(hundred, std::vector<short>(100, 1), 0.5);
    ASSERT_EQ(even.calibration.size(), 10U);
    for (const RiskGroup& group : even.calibration) EXPECT_EQ(group.individuals, 10);
}

}  // namespace
}  // namespace vort::testing
