// The design matrix file.
#include "support/builder_study.h"

namespace vort::testing {
namespace {

class CsmMatrixFile : public BuilderTest {
  protected:
    CsmMatrixFile() {
        for (int i = 1; i <= 4; ++i) csm_->yy[i] = 0.5 * i - 1e6 / 3;
    }

    // A record whose joint codes in groups[q], in each digit one, are in group q.
    void add(int k, int combination, const std::vector<std::string>& groups,
             const std::vector<double>& frequencies, unsigned counted) {
        auto record = std::make_unique<BestClusterInformation>(
            static_cast<unsigned>(k), static_cast<unsigned>(groups.size()), csm_->marker_num);
        record->combination_index = combination;
        record->group_count_copy = counted;
        unsigned cell = 0;
        for (unsigned q = 0; q < groups.size(); ++q) {
            for (const char c : groups[q]) {
                record->AddMemberInGroup(q, ++cell, static_cast<unsigned>(c - '0'));
            }
            record->WriteGroupFrequency(q, frequencies[q], 0.5);
        }
        array_.AddBestClusterInformation(record.release());
    }

    // The columns of each row behind the phenotype, without blanks, and the trailer.
    std::string written() {
        csm_->ProvideDataToNextProgram(&array_, "out.txt");
        std::istringstream text(read_file("out.txt"));
        std::string result, line;
        for (int i = 0; i < 5 && std::getline(text, line); ++i) {
            if (i < 4) line.erase(0, line.find(' ') + 1);
            result += line + '|';
        }
        return result;
    }

    Study study_{{"012", "120", "201", "010"}, {0, 0, 0, 0}};
    std::unique_ptr<CSM> csm_ = builder_with(study_);
    BestClusterInformationArray array_{10};
};

TEST_F(CsmMatrixFile, GroupsThatBecomeColumns) {
    csm_->ProvideDataToNextProgram(&array_, "out.txt");
    EXPECT_EQ(read_file("out.txt"),
              "-333332.833333 \n-333332.333333 \n-333331.833333 \n-333331.333333 \npara  4 0\n");
    const struct {
        const char* name;
        std::vector<double> frequencies;
        unsigned counted;
        const char* written;
    } cases[] = {
        {"all but the last", {0.5, 0.25, 0.25}, 3, "1 0 |0 1 |0 0 |1 0 |para  4 2|"},
        {"not those of frequency 0", {0, 0.25, 0.25}, 3, "0 |1 |0 |0 |para  4 1|"},
        {"nor of 1", {1, 0.25, 0}, 3, "0 |1 |0 |0 |para  4 1|"},
        {"only up to the number counted", {0.5, 0.25, 0.25}, 2, "1 |0 |0 |1 |para  4 1|"},
        {"one group", {0.5, 0.25, 0.25}, 1, "||||para  4 0|"},
        {"no group", {0.5, 0.25, 0.25}, 0, "||||para  4 0|"},
    };
    for (const auto& c : cases) {
        array_.items.clear();
        add(1, 1, {"0", "1", "2"}, c.frequencies, c.counted);
        EXPECT_EQ(written(), c.written) << c.name;
    }
}

TEST_F(CsmMatrixFile, RecordsSideBySideAndThenAsText) {
    add(1, 3, {"1", "02"}, {0.25, 0.75}, 2);
    // Markers 2 and 3 have the joint codes 5, 6, 1, 3; the last is not known to the record.
    add(2, 3, {"51", "6"}, {0.5, 0.25}, 2);
    EXPECT_EQ(written(), "0 1 |0 0 |1 1 |0 0 |para  4 2|");
    array_.items[0]->Store("records.txt", 0);
    array_.items[1]->Store("records.txt", 1);
    const std::string text = read_file("out.txt");
    EXPECT_EQ(text.substr(text.find("<number 0>")), read_file("records.txt"));
    expect_end([&] { csm_->ProvideDataToNextProgram(&array_, "no-such-folder/out.txt"); },
               "Don't open file no-such-folder/out.txt!\n$");
}

}  // namespace
}  // namespace vort::testing
