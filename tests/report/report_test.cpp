// What the page says of numbers and genotypes, where its marks stand, and results that do not fit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "common/input_error.h"
#include "report/html.h"
#include "report/sections.h"
#include "report/wording.h"

namespace vort {
namespace {

using nlohmann::json;

TEST(Wording, Numbers) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {counted(0, "markers"), "no markers"},
        {counted(1, "permuted data sets"), "1 permuted data set"},
        {counted(541'325, "markers"), "541,325 markers"},
        {grouped(-1000), "-1,000"},
        {grouped(-100), "-100"},
        {p_text(1), "1"},
        {p_text(0.99951), "1"},
        {p_text(0.0149), "0.015"},
        {p_text(0.00096), "0.00096"},
        {p_text(0.00094), "9.4e-4"},
        {p_text(3.21e-9), "3.2e-9"},
        {p_text(9.99e-10), "1.0e-9"},
        {p_text(1e-300), "1.0e-300"},
        {p_text(kUnknown), "not available"},
        {share_text(97, 117), "83\u00a0%"},
        {shortened("caf\u00e9s", 5), "caf\u2026"},
        {chromosome_name(26), "MT"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(text, expected);
}

TEST(Wording, RulesOfGenotypes) {
    const Locus first{"rs1", 4, 1000, "A", "G", 32}, second{"rs2", 8, 500, "C", "T", 21};
    const Locus nameless{"m1", 1, 1, "0", "0", 1};
    struct Case {
        std::vector<Locus> markers;
        std::vector<std::vector<int>> cells;
        std::string rule;
    };
    const std::vector<Case> cases = {
        {{first}, {{0}}, "people with no A at rs1"},
        {{first}, {{2}, {1}}, "carriers of at least one A at rs1"},
        {{first}, {{0}, {2}}, "people with none or two A at rs1"},
        {{nameless}, {{2}}, "carriers of two copies of the counted allele at m1"},
        {{first, second},
         {{1, 1}, {1, 2}, {2, 1}, {2, 2}},
         "carriers of at least one A at rs1 and of at least one C at rs2"},
        {{first, second}, {{0, 2}, {1, 2}, {2, 2}}, "carriers of two C at rs2"},
        {{first, second}, {{2, 0}, {2, 1}, {2, 2}}, "carriers of two A at rs1"},
        // Fewer clauses by columns than by rows.
        {{first, second},
         {{0, 1}, {1, 1}, {2, 1}, {1, 2}},
         "carriers of one C at rs2, or of one A at rs1 and of two C at rs2"},
        {{first, second},
         {{1, 1}, {1, 2}, {2, 1}},
         "carriers of one A at rs1 and of at least one C at rs2, or of two A at rs1 and of one C "
         "at rs2"},
    };
    for (const Case& each : cases) EXPECT_EQ(rule_text(each.markers, each.cells), each.rule);
    EXPECT_EQ(genotype_letters(first, 1), "AG");
    EXPECT_EQ(genotype_letters({"i", 1, 1, "A", "ATG", 1}, 0), "ATG/ATG");
    EXPECT_EQ(genotype_letters(nameless, 0), "");
    EXPECT_EQ(alleles_text("A", "G") + ", " + alleles_text("A", "0") + alleles_text(".", ""),
              "A/G, A");
}

// Every rule holds of exactly its cells: the clauses of all 511 groups of a pair are read back.
TEST(Wording, EveryGroupOfAPairIsToldByItsCells) {
    const std::vector<Locus> markers = {{"p", 1, 1, "A", "G", 1}, {"q", 1, 2, "A", "G", 2}};
    // Longer wordings come before those that they end with.
    const std::vector<std::pair<std::string, std::string>> copies = {
        {"at least one", "12"}, {"at most one", "01"}, {"none or two", "02"}, {"no", "0"},
        {"one", "1"},           {"two", "2"}};
    const auto holds = [&](const std::string& clause, const std::string& marker, int genotype) {
        const std::string before = clause.substr(0, clause.find(" A at " + marker));
        if (before == clause) return true;
        const auto number = std::ranges::find_if(
            copies, [&](const auto& each) { return before.ends_with(" " + each.first); });
        return number->second.find(char('0' + genotype)) != std::string::npos;
    };
    for (int group = 1; group < 512; ++group) {
        std::vector<std::vector<int>> cells;
        for (int cell = 0; cell < 9; ++cell) {
            if (group >> cell & 1) cells.push_back({cell / 3, cell % 3});
        }
        const std::string rule = rule_text(markers, cells);
        std::vector<std::string> clauses;
        for (std::size_t begin = 0; begin < rule.size();) {
            const std::size_t end = std::min(rule.find(", or ", begin), rule.size());
            clauses.push_back(rule.substr(begin, end - begin));
            begin = end + 5;
        }
        for (int cell = 0; cell < 9; ++cell) {
            const bool told = std::any_of(clauses.begin(), clauses.end(), [&](auto& clause) {
                return holds(clause, "p", cell / 3) && holds(clause, "q", cell % 3);
            });
            EXPECT_EQ(told, bool(group >> cell & 1)) << rule << ", cell " << cell;
        }
    }
}

// The line at EMP2 = 0.05 against the definition: below it EMP2 is at most 0.05, at it more.
TEST(StudyWideP, IsWhereEmp2ReachesOneInTwenty) {
    constexpr unsigned kSeed = 4;
    RecordProperty("seed", kSeed);
    std::mt19937_64 random(kSeed);
    for (const int permutations : {0, 1, 18, 19, 20, 38, 39, 100, 199, 200}) {
        std::vector<DataSetRow> rows{{0, 0.2, 1e-9, "m", 1}};
        for (int k = 1; k <= permutations; ++k) {
            rows.push_back({k, 0.1, double(random() % 60 + 1) / 1000, "m", 1});
        }
        const auto emp2 = [&](double p) {
            int as_small = 1;
            for (int k = 1; k <= permutations; ++k) as_small += rows[k].smallest_p <= p;
            return double(as_small) / (permutations + 1);
        };
        const std::optional<double> line = study_wide_p(rows);
        ASSERT_EQ(line.has_value(), permutations >= 19) << permutations;
        if (!line) continue;
        EXPECT_LE(emp2(*line * 0.999), 0.05) << "seed " << kSeed << ", B = " << permutations;
        EXPECT_GT(emp2(*line), 0.05) << "seed " << kSeed << ", B = " << permutations;
    }
}

TEST(Html, NamesStayText) {
    EXPECT_EQ(escaped("<a href='x'>&\""), "&lt;a href=&#39;x&#39;&gt;&amp;&quot;");
    const std::string name = "</script>\xff";
    EXPECT_EQ(json_for_script(json{{"name", name}}), "{\"name\":\"\\u003c/script>\ufffd\"}");
}

TEST(ModelView, ResultsOfAnotherShapeAreAnError) {
    const json sound = json::parse(R"({
        "program": {"version": "1"}, "parameters": {}, "screening": {"lambda_gc": null},
        "input": {"format": "bed", "individuals":
                  {"read": 2, "analysed": 2, "cases": 1, "controls": 1},
                  "markers": {"read": 1, "analysed": 1, "dropped": 0}},
        "result": {"has_model": true, "T0": 0.1, "permutations": 0, "p": null,
                   "p_plus_one": null, "p_interval": null},
        "model": {"intercept": 0.5, "base_learners": [], "markers": [], "marker_sets":
                  [{"id": 1, "markers": ["m"], "cells":
                    [{"genotype": [2], "cases": 1, "controls": 0, "group": null}]}]}})");
    EXPECT_EQ(read_model_view(sound).sets.at(0).cells.at(2).people.cases, 1);
    for (const char* change :
         {R"([{"op": "remove", "path": "/program"}])",
          R"([{"op": "replace", "path": "/result/T0", "value": "x"}])",
          R"([{"op": "replace", "path": "/model/marker_sets/0/cells/0/genotype",
                                    "value": [3]}])",
          R"([{"op": "replace", "path": "/model/marker_sets/0/markers", "value": []}])",
          R"([{"op": "replace", "path": "/model/marker_sets/0/cells/0/genotype",
                                    "value": [1e300]}])",
          R"([{"op": "replace", "path": "/model/marker_sets/0/cells/0/cases",
                                    "value": 2147483648}])",
          R"([{"op": "replace", "path": "/result/permutations", "value": 1e300}])",
          R"([{"op": "replace", "path": "/input/markers/dropped", "value": -1}])"}) {
        try {
            read_model_view(sound.patch(json::parse(change)));
            ADD_FAILURE() << change;
        } catch (const InputError& error) {
            EXPECT_THAT(error.text, testing::StartsWith("model.json: "));
            EXPECT_THAT(error.text, testing::HasSubstr("; run the analysis again"));
        }
    }
}

}  // namespace
}  // namespace vort
