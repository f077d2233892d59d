// The design matrix file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::ExitedWithCode;

class CsmMatrixFile : public BuilderTest {
  protected:
    CsmMatrixFile() : study_({"012", "120", "201", "010"}, {0, 0, 0, 0}) {
        write_settings({4, 3});
        csm_ = std::make_unique<CSM>(prefix_);
        take_in(*csm_, study_);
        for (int i = 1; i <= 4; ++i) csm_->yy[i] = 0.5 * i - 1e6 / 3;
    }

    // A single-marker record whose codes 0, 1, 2 are in these groups.
    void add(int marker, std::array<unsigned, 3> group_of_code,
             const std::vector<double>& frequencies, unsigned counted) {
        auto* record = new BestClusterInformation(1, static_cast<unsigned>(frequencies.size()),
                                                  csm_->marker_num);
        record->combination_index = marker;
        record->group_count_copy = counted;
        for (unsigned code = 0; code < 3; ++code) {
            record->AddMemberInGroup(group_of_code[code], 3 - code, code);
        }
        for (unsigned q = 0; q < frequencies.size(); ++q) {
            record->WriteGroupFrequency(q, frequencies[q], 0.5);
        }
        array_.AddBestClusterInformation(record);
    }

    // The columns' text of each row, behind the phenotype, and the trailer.
    std::vector<std::string> written() {
        csm_->ProvideDataToNextProgram(&array_, "out.txt");
        std::istringstream text(read_file("out.txt"));
        std::vector<std::string> lines(5);
        for (std::string& line : lines) std::getline(text, line);
        for (int i = 0; i < 4; ++i) lines[i] = lines[i].substr(lines[i].find(' ') + 1);
        return lines;
    }

    Study study_;
    std::unique_ptr<CSM> csm_;
    BestClusterInformationArray array_{10};
};

TEST_F(CsmMatrixFile, NoRecords) {
    csm_->ProvideDataToNextProgram(&array_, "out.txt");
    EXPECT_EQ(read_file("out.txt"),
              "-333332.833333 \n-333332.333333 \n-333331.833333 \n-333331.333333 \npara  4 0\n");
}

TEST_F(CsmMatrixFile, GroupsThatBecomeColumns) {
    const struct {
        const char* name;
        std::vector<double> frequencies;
        unsigned counted;
        std::vector<std::string> lines;
    } cases[] = {
        {"all but the last", {0.5, 0.25, 0.25}, 3, {"1 0 ", "0 1 ", "0 0 ", "1 0 ", "para  4 2"}},
        {"not those of frequency 0", {0, 0.25, 0.25}, 3, {"0 ", "1 ", "0 ", "0 ", "para  4 1"}},
        {"nor of 1", {1, 0.25, 0}, 3, {"0 ", "1 ", "0 ", "0 ", "para  4 1"}},
        {"only up to the number counted",
         {0.5, 0.25, 0.25},
         2,
         {"1 ", "0 ", "0 ", "1 ", "para  4 1"}},
        {"one group", {0.5, 0.25, 0.25}, 1, {"", "", "", "", "para  4 0"}},
        {"no group", {0.5, 0.25, 0.25}, 0, {"", "", "", "", "para  4 0"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        array_.items.clear();
        add(1, {0, 1, 2}, c.frequencies, c.counted);
        EXPECT_EQ(written(), c.lines);
    }
}

TEST_F(CsmMatrixFile, RecordsSideBySideAndThenAsText) {
    add(3, {1, 0, 1}, {0.25, 0.75}, 2);
    auto* pair = new BestClusterInformation(2, 2, 3);
    pair->combination_index = 3;  // markers 2 and 3
    pair->AddMemberInGroup(0, 1, 5);
    pair->AddMemberInGroup(0, 2, 1);
    pair->AddMemberInGroup(1, 3, 6);
    pair->WriteGroupFrequency(0, 0.5, 0);
    pair->WriteGroupFrequency(1, 0.25, 0);
    array_.AddBestClusterInformation(pair);
    // Joint codes 5, 6, 1, 3; the last was not known to the record.
    EXPECT_EQ(written(), (std::vector<std::string>{"0 1 ", "0 0 ", "1 1 ", "0 0 ", "para  4 2"}));
    array_.items[0]->Store("records.txt", 0);
    array_.items[1]->Store("records.txt", 1);
    const std::string text = read_file("out.txt");
    EXPECT_EQ(text.substr(text.find("<number 0>")), read_file("records.txt"));
}

TEST_F(CsmMatrixFile, FileThatCannotBeOpenedEndsTheProgram) {
    const auto write = [&] {
        console_on_standard_error();
        csm_->ProvideDataToNextProgram(&array_, "no-such-folder/out.txt");
    };
    EXPECT_EXIT(write(), ExitedWithCode(0), "Don't open file no-such-folder/out.txt!\n$");
}

}  // namespace
}  // namespace vort::testing
