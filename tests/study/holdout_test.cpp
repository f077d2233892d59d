// People held back: who they are, and that the study is then the one without them.
#include "study/holdout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "study/study_files.h"

namespace vort::testing {
namespace {

std::string fault_of_choice(const std::vector<short>& phenotypes, double fraction) try {
    choose_held_back(phenotypes, fraction);
    return "none";
} catch (const InputError& error) {
    return error.text;
}

TEST(ChooseHeldBack, CasesAndControlsInTheSameShare) {
    const unsigned seed = 3;
    RecordProperty("seed", seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 100; ++round) {
        std::vector<short> phenotypes(20 + random() % 400);
        for (short& phenotype : phenotypes) phenotype = random() % 3 == 0 ? 1 : 0;
        const double fraction = 0.2 + 0.6 * double(random() % 100) / 100;
        const auto cases = std::ranges::count(phenotypes, short{1});
        const auto controls = std::ssize(phenotypes) - cases;
        const std::vector<int> chosen = choose_held_back(phenotypes, fraction);
        EXPECT_TRUE(std::ranges::is_sorted(chosen, std::less_equal<>())) << "round " << round;
        const auto held = std::ranges::count_if(chosen, [&](int i) { return phenotypes[i] == 1; });
        EXPECT_EQ(held, std::lround(fraction * double(cases))) << "round " << round;
        EXPECT_EQ(std::ssize(chosen) - held, std::lround(fraction * double(controls)));
    }
}

// The people of a fraction are part of what a user may rely on, so they must not change (four of
// sixteen, by a few lines in another language); and no place in the file may be favoured.
TEST(ChooseHeldBack, AnyPlaceAlikeAndAlwaysTheSame) {
    std::vector<short> phenotypes(16, 0);
    for (std::size_t i = 0; i < 8; ++i) phenotypes[2 * i] = 1;
    EXPECT_THAT(choose_held_back(phenotypes, 0.25), ::testing::ElementsAre(2, 3, 4, 11));
    std::vector<int> quarters(4, 0);
    const std::vector<short> many(40000, 1);
    std::vector<short> large = many;
    large.resize(80000, 0);
    for (const int i : choose_held_back(large, 0.5))
        ++quarters[static_cast<std::size_t>(i / 20000)];
    for (const int quarter : quarters) EXPECT_NEAR(quarter, 10000, 4 * std::sqrt(5000.0));
}

TEST(ChooseHeldBack, BothOnBothSides) {
    const std::vector<short> phenotypes = {1, 1, 1, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(fault_of_choice(phenotypes, 0.5), "none");
    EXPECT_EQ(fault_of_choice(phenotypes, 0.1),
              "--holdout 0.1: of 3 cases it holds back 0; at least one is expected on both sides; "
              "ask for another share");
    EXPECT_THAT(fault_of_choice(phenotypes, 0.9),
                ::testing::HasSubstr("of 3 cases it holds back 3"));
    EXPECT_THAT(fault_of_choice({1, 1, 1, 0}, 0.5), ::testing::HasSubstr("of 1 control it"));
}

PlainStudy random_study(std::mt19937& random, int people, int markers) {
    PlainStudy study;
    for (int i = 0; i < people; ++i) {
        study.people.push_back("f p" + std::to_string(i) + " 0 0 1 " + (i % 3 == 0 ? "2" : "1"));
    }
    for (int j = 0; j < markers; ++j) {
        study.markers.push_back({1, "m" + std::to_string(j), j + 1, "A", "G"});
        std::vector<int>& column = study.codes.emplace_back();
        for (int i = 0; i < people; ++i) column.push_back(static_cast<int>(random() % 4) - 1);
    }
    return study;
}

// Against loading the two parts by name, from genotypes that are mapped and from others in memory.
TEST(HoldBack, BothPartsAreThoseThatNamesWouldGive) {
    const TemporaryFolder folder;
    const unsigned seed = 8;
    RecordProperty("seed", seed);
    std::mt19937 random(seed);
    for (const int people : {9, 64, 133}) {
        write_bed(random_study(random, people, 37), "s");
        write_file("chr", "m1\nm30\nm2\n");
        for (const char* exclude : {"", "chr"}) {
            StudyRequest request = bed_request("s");
            request.filters.exclude = exclude;
            Study study = load_study(request);
            const HeldBack held = hold_back(study, 0.4, 2);
            std::string names;
            for (const Individual& person : held.individuals) names += "f " + person.id + '\n';
            write_file("names", names);
            StudyRequest same = request;
            same.filters.remove = "names";
            Study expected = load_study(same);
            EXPECT_EQ(codes_of(study.genotypes), codes_of(expected.genotypes));
            EXPECT_EQ(phenotypes_of(study) + people_of(study),
                      phenotypes_of(expected) + people_of(expected));
            same.filters = {};
            same.filters.keep = "names";
            same.filters.exclude = exclude;
            expected = load_study(same);
            EXPECT_EQ(codes_of(held.genotypes), codes_of(expected.genotypes));
            EXPECT_EQ(held.phenotypes, expected.phenotypes);
            EXPECT_THAT(left_out_of(study),
                        ::testing::HasSubstr(std::to_string(held.individuals.size()) +
                                             " people --holdout 0.4; "));
        }
    }
}

TEST(LoadStudy, PhenotypesMayBeOptionalAndMarkersNamed) {
    const TemporaryFolder folder;
    std::mt19937 random(1);
    PlainStudy plain = random_study(random, 3, 3);
    plain.people = {"f a 0 0 1 -9", "f b 0 0 1 2", "f c 0 0 1 0"};
    write_bed(plain, "s");
    StudyRequest request = bed_request("s");
    request.phenotype.optional = true;
    request.only_markers = {"m2", "m0", "absent"};
    const Study study = load_study(request);
    EXPECT_EQ(study.phenotypes, (std::vector<short>{kNoPhenotype, 1, kNoPhenotype}));
    EXPECT_EQ(markers_of(study), "1:1:m0:AG 1:3:m2:AG ");
    EXPECT_EQ(left_out_of(study) + notes_of(study), "");
    request.only_markers = {"absent"};
    EXPECT_EQ(
        fault_of(request),
        "s.bim: none of the markers is there by its name; at least one expected, called as in "
        "the model");
    request = bed_request("s");
    request.phenotype.optional = true;
    request.filters.remove = "all";
    write_file("all", "f a\nf b\nf c\n");
    EXPECT_EQ(fault_of(request),
              "s.fam: no individual is left; at least one expected; loosen the filters");
}

}  // namespace
}  // namespace vort::testing
