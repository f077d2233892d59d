// Records of kept marker sets: queries, the text block and its way back, damaged files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::ExitedWithCode;

using BestCluster = BuilderTest;

// A single marker's record: cell 1 (code 2) and cell 3 (code 1) in group 0, cell 2 in group 1.
BestClusterInformation sample() {
    BestClusterInformation record(1, 2, 7);
    record.combination_index = 5;
    record.group_count_copy = 1;
    EXPECT_EQ(record.AddMemberInGroup(0, 1, 2), 0);
    EXPECT_EQ(record.AddMemberInGroup(1, 2, 0), 0);
    EXPECT_EQ(record.AddMemberInGroup(0, 3, 1), 0);
    EXPECT_EQ(record.WriteGroupFrequency(0, 1.0 / 3, 0.75), 0);
    EXPECT_EQ(record.WriteGroupFrequency(1, 2.0 / 3, 1e-7), 0);
    return record;
}

constexpr const char* kBlock =
    "<number 4>\n<Best Cluster Information>\n1 2 7 5 4 1\n<Cluster Information>\n0\n0101\n1\n0010\n"
    "\n<\\Cluster Information>\n<Genotype Code Information>\n0 2 0 1 \n"
    "<\\Genotype Code Information>\n<Group Frequency Information>\n0.333333 0.666667 \n"
    "<\\Group Frequency Information>\n<Group Average Information>\n0.75 1e-07 \n"
    "<\\Group Average Information>\n\n<\\Best Cluster Information>\n<\\number 4>\n";

TEST_F(BestCluster, Queries) {
    const BestClusterInformation record = sample();
    EXPECT_EQ(record.slots, 4U);
    for (const int code : {0, 1, 2, 7}) {
        EXPECT_EQ(record.getcluster_num(code), code == 0 ? 1 : 0) << code;
        EXPECT_EQ(record.IncludeInGroup(static_cast<unsigned>(code), 0), code == 1 || code == 2);
    }
    BestClusterInformation changed = sample();
    EXPECT_EQ(changed.AddMemberInGroup(2, 1, 1), -1);
    EXPECT_EQ(changed.WriteGroupFrequency(2, 1, 1), -1);
    const auto copy = changed.clone(&changed);
    changed.AddMemberInGroup(1, 1, 2);
    EXPECT_EQ(copy->IncludeInGroup(2, 1), 0) << "a clone stands on its own";
    EXPECT_EQ(copy->combination_index, 5);
    EXPECT_EQ(copy->group_count_copy, 1U);
}

TEST_F(BestCluster, CodesOfAGroup) {
    const struct {
        int q;
        int result;
        std::vector<int> codes;
        const char* printed;
    } cases[] = {
        {0, 2, {2, 1}, "GenotypeCode of group number=0\n2 1 \n"},
        {1, 1, {0}, "GenotypeCode of group number=1\n0 \n"},
        {2, 0, {}, "GenotypeCode of group number=2\n\n"},
        {3, -1, {}, "find getGenotypeCode input have error!\n"},
        {-1, -1, {}, "find getGenotypeCode input have error!\n"},
    };
    for (const auto& c : cases) {
        const ConsoleCapture console;
        int count = 99;
        std::vector<int> codes(10);
        EXPECT_EQ(sample().getGenotypeCode(c.q, &count, codes.data()), c.result);
        EXPECT_EQ(count, static_cast<int>(c.codes.size()));
        EXPECT_TRUE(std::equal(c.codes.begin(), c.codes.end(), codes.begin()));
        EXPECT_EQ(console.text(), c.printed);
    }
}

TEST_F(BestCluster, ShownLineByLine) {
    const ConsoleCapture console;
    sample().ShowMemberInGroup();
    EXPECT_EQ(console.text(),
              "1\n5\n2\n1\nCluster order number of group number=0\n1 3 \n"
              "Cluster order number of group number=1\n2 \nGenotypeCode of group number=0\n2 1 \n"
              "GenotypeCode of group number=1\n0 \nGroup Frequency of 2 group\n"
              "0.333333 0.666667 \nGroup Average of 2 group\n0.75 1e-07 \n");
}

TEST_F(BestCluster, StoredAndRestored) {
    write_file("store.txt", "0.5 1 \npara  1 1\n");
    EXPECT_EQ(sample().Store("store.txt", 4), 1);
    EXPECT_EQ(read_file("store.txt"), std::string("0.5 1 \npara  1 1\n") + kBlock);
    const auto record = BestClusterInformation::ReStore("store.txt", 4);
    ASSERT_NE(record, nullptr);
    record->Store("again.txt", 4);
    EXPECT_EQ(read_file("again.txt"), kBlock);
    EXPECT_EQ(BestClusterInformation::ReStore("store.txt", 0), nullptr);
    EXPECT_EQ(sample().Store("no-such-folder/store.txt", 4), 0);
}

TEST_F(BestCluster, FirstBlockOfANumberCounts) {
    for (const int combination : {1, 2}) {
        BestClusterInformation record = sample();
        for (const int number : {0, 3, 12}) {
            record.combination_index = 100 * combination + number;
            record.Store("store.txt", number);
        }
    }
    BestClusterInformationArray array;
    ASSERT_EQ(array.getbestmarker("store.txt"), 13);
    EXPECT_EQ(array.capacity, 13);
    for (int r = 0; r < 13; ++r) {
        if (r == 0 || r == 3 || r == 12) {
            ASSERT_NE(array.items[r], nullptr);
            EXPECT_EQ(array.items[r]->combination_index, 100 + r);
        } else {
            EXPECT_EQ(array.items[r], nullptr);
        }
    }
}

TEST_F(BestCluster, FilesWithoutRecords) {
    write_file("matrix.txt", "0.5 1 \npara  1 1\n");
    write_file("closing.txt", "<\\number 3>\n");
    write_file("huge.txt", "<number 2000000000>\n<number -4>\n");
    for (const char* name : {"matrix.txt", "closing.txt", "huge.txt", "missing.txt"}) {
        const ConsoleCapture console;
        BestClusterInformationArray array(3);
        auto record = std::make_unique<BestClusterInformation>(1U, 2U, 3);
        if (array.AddBestClusterInformation(record.get()) == 0) record.release();
        EXPECT_EQ(array.getbestmarker(name), 0) << name;
        EXPECT_EQ(array.count(), 0);
        EXPECT_EQ(console.text(), std::string(name) == "missing.txt"
                                      ? "file open find error for file=missing.txt"
                                      : "");
    }
}

TEST_F(BestCluster, DamagedBlocks) {
    const struct {
        const char* cut;
        const char* instead;
        const char* details;  // null: the record is null instead
    } cases[] = {
        {"<Best Cluster", "<Best", nullptr},
        {"<Cluster Inf", "<C", nullptr},
        {"<Genotype Code", "<G", nullptr},
        {"<Group Frequency", "<G", nullptr},
        {"<Group Average", "<G", nullptr},
        {"1 2 7 5", "0 2 7 5", "with 0 markers in 2 groups"},
        {"1 2 7 5", "25 2 7 5", "with 25 markers in 2 groups"},
        {"1 2 7 5", "1 11 7 5", "with 1 markers in 11 groups"},
        {"1 2 7 5", "1 x 7 5", "with 1 markers in 0 groups"},
        {"5 4 1", "5 10 1", "with 10 slots"},
        {"5 4 1", "5 4 3", "with 4 slots"},
        {"0\n0101", "0\n012101", "in group 0, slot 2"},
        {"1\n0010", "1\n00", "in group 1, slot 2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.instead);
        std::string text = kBlock;
        text.replace(text.find(c.cut), std::string(c.cut).size(), c.instead);
        write_file("store.txt", text);
        if (c.details == nullptr) {
            EXPECT_EQ(BestClusterInformation::ReStore("store.txt", 4), nullptr);
            continue;
        }
        const auto restore = [] {
            console_on_standard_error();
            BestClusterInformation::ReStore("store.txt", 4);
        };
        EXPECT_EXIT(restore(), ExitedWithCode(0),
                    std::string("^find error in BCI file ") + c.details + "\n$");
    }
    const std::string whole = kBlock;
    for (std::size_t length = 0; length < whole.size(); length += 40) {
        write_file("store.txt", whole.substr(0, length));
        const auto restore = [] {
            console_on_standard_error();
            static_cast<void>(BestClusterInformation::ReStore("store.txt", 4));
            std::exit(0);
        };
        EXPECT_EXIT(restore(), ExitedWithCode(0), "") << length;
    }
}

TEST_F(BestCluster, FullArrayLeavesTheRecordToTheCaller) {
    BestClusterInformationArray array(1);
    EXPECT_EQ(array.AddBestClusterInformation(new BestClusterInformation(1, 2, 3)), 0);
    BestClusterInformation more(1, 2, 3);
    const ConsoleCapture console;
    EXPECT_EQ(array.AddBestClusterInformation(&more), -1);
    EXPECT_EQ(array.count(), 1);
    EXPECT_EQ(console.text(), "There are some error for BestClusterInformationArray size\n");
}

}  // namespace
}  // namespace vort::testing
