// People and markers left out and markers sorted, on random studies, against doing it one by one;
// and the same study written as a directory and read again.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <random>

#include "study/study_directory.h"
#include "study/study_files.h"

namespace vort::testing {
namespace {

struct Expected {
    std::string people, markers, codes, phenotypes;
};

class RandomSelection {
  public:
    explicit RandomSelection(unsigned seed) : random_(seed) {
        const int people = 2 + below(seed % 10 == 0 ? 700 : 90);
        const int markers = 1 + below(60);
        const bool sorted = below(2) == 0;
        for (int i = 0; i < people; ++i) {
            const int status = i < 2 ? i + 1 : below(2 + below(2));
            study_.people.push_back("f i" + std::to_string(i) + " 0 0 0 " + std::to_string(status));
            statuses_.push_back(status);
        }
        for (int j = 0; j < markers; ++j) {
            study_.markers.push_back({sorted ? 1 + 26 * j / 60 : 1 + below(26),
                                      "m" + std::to_string(j), sorted ? j : below(9), "A", "C"});
            std::vector<int> column;
            for (int i = 0; i < people; ++i) column.push_back(below(4) - 1);
            study_.codes.push_back(column);
        }
        choose();
    }

    StudyRequest request(StudyRequest request) const {
        request.filters.remove = "removed";
        request.filters.exclude = "excluded";
        request.threads = 2;
        return request;
    }

    void write() const {
        write_bed(study_, "s");
        write_file("removed", removed_);
        write_file("excluded", excluded_);
    }

    Expected expected() const {
        Expected text;
        for (const int i : people_) {
            text.people += "f/i" + std::to_string(i) + ' ';
            text.phenotypes += statuses_[at(i)] == 2 ? '1' : '0';
        }
        for (const int j : markers_) {
            const MarkerInfo& m = study_.markers[at(j)];
            text.markers += std::to_string(m.chromosome) + ':' + std::to_string(m.position) + ':' +
                            m.name + ":AC ";
            if (!text.codes.empty()) text.codes += ' ';
            for (const int i : people_) text.codes += "-012"[study_.codes[at(j)][at(i)] + 1];
        }
        return text;
    }

  private:
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    void choose() {
        const int out = below(4);  // quarters
        for (int i = 0; i < static_cast<int>(study_.people.size()); ++i) {
            const bool removed = i >= 2 && below(4) < out;
            if (removed) removed_ += "f i" + std::to_string(i) + '\n';
            if (!removed && statuses_[at(i)] != 0) people_.push_back(i);
        }
        for (int j = 0; j < static_cast<int>(study_.markers.size()); ++j) {
            const bool excluded = j > 0 && below(4) < out;
            if (excluded) excluded_ += study_.markers[at(j)].name + '\n';
            if (!excluded) markers_.push_back(j);
        }
        std::stable_sort(markers_.begin(), markers_.end(), [&](int a, int b) {
            const MarkerInfo &x = study_.markers[at(a)], &y = study_.markers[at(b)];
            return std::pair(x.chromosome, x.position) < std::pair(y.chromosome, y.position);
        });
    }

    std::mt19937 random_;
    PlainStudy study_;
    std::vector<int> statuses_, people_, markers_;
    std::string removed_, excluded_;
};

void expect_selected(unsigned seed) {
    const RandomSelection selection(seed);
    selection.write();
    const Study study = load_study(selection.request(bed_request("s")));
    const Expected expected = selection.expected();
    EXPECT_EQ(people_of(study), expected.people);
    EXPECT_EQ(phenotypes_of(study), expected.phenotypes);
    EXPECT_EQ(markers_of(study), expected.markers);
    EXPECT_EQ(codes_of(study.genotypes), expected.codes);
    // In memory the same is done in place.
    StudyRequest all = bed_request("s");
    all.threads = 2;
    write_study_directory(load_study(all), parameter_text({7, 3, 2, 0.25}, 1, 1), ".");
    const Study whole = load_study(all);
    write_file("parameter.txt", parameter_text({7, 3, 2, 0.25}, whole.genotypes.individuals(),
                                               whole.genotypes.markers()));
    const Study again = load_study(selection.request(directory_request(".")));
    EXPECT_EQ(phenotypes_of(again), expected.phenotypes);
    EXPECT_EQ(codes_of(again.genotypes), expected.codes);
    EXPECT_EQ(again.parameters->permutations, 7);
    EXPECT_EQ(again.parameters->fdr, 0.25);
}

TEST(RandomSelection, LeavesWhatWasAskedFor) {
    const TemporaryFolder folder;
    for (unsigned seed = 1; seed <= 150 && !::testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        expect_selected(seed);
    }
}

}  // namespace
}  // namespace vort::testing
