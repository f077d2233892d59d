// Records of kept marker sets: queries, the text block and its way back, damaged files.
#include "support/builder_study.h"

namespace vort::testing {
namespace {

using BestCluster = BuilderTest;

// A single marker's record: cell 1 (code 2) and cell 3 (code 1) in group 0, cell 2 in group 1.
BestClusterInformation sample(int combination = 5) {
    BestClusterInformation record(1, 2, 7);
    record.combination_index = combination;
    record.group_count_copy = 1;
    record.AddMemberInGroup(0, 1, 2);
    record.AddMemberInGroup(1, 2, 0);
    record.AddMemberInGroup(0, 3, 1);
    record.WriteGroupFrequency(0, 1.0 / 3, 0.75);
    record.WriteGroupFrequency(1, 2.0 / 3, 1e-7);
    return record;
}

constexpr const char* kBlock =
    "<number 4>\n<Best Cluster Information>\n1 2 7 5 4 1\n<Cluster Information>\n0\n0101\n1\n0010\n"
    "\n<\\Cluster Information>\n<Genotype Code Information>\n0 2 0 1 \n"
    "<\\Genotype Code Information>\n<Group Frequency Information>\n0.333333 0.666667 \n"
    "<\\Group Frequency Information>\n<Group Average Information>\n0.75 1e-07 \n"
    "<\\Group Average Information>\n\n<\\Best Cluster Information>\n<\\number 4>\n";

TEST_F(BestCluster, Queries) {
    BestClusterInformation record = sample();
    for (const int code : {0, 1, 2, 7}) {
        EXPECT_EQ(record.getcluster_num(code), code == 0 ? 1 : 0) << code;
        EXPECT_EQ(record.IncludeInGroup(static_cast<unsigned>(code), 0), code == 1 || code == 2);
    }
    EXPECT_EQ(record.AddMemberInGroup(2, 1, 1), -1);
    EXPECT_EQ(record.WriteGroupFrequency(2, 1, 1), -1);
    const auto copy = record.clone(&record);
    record.AddMemberInGroup(1, 1, 2);
    EXPECT_EQ(copy->IncludeInGroup(2, 1), 0) << "a clone stands on its own";
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
    for (const int combination : {100, 200}) {
        for (const int r : {0, 3, 12}) sample(combination + r).Store("store.txt", r);
    }
    BestClusterInformationArray array;
    ASSERT_EQ(array.getbestmarker("store.txt"), 13);
    for (int r = 0; r < 13; ++r) {
        const auto& item = array.items[r];
        EXPECT_EQ(item == nullptr ? 0 : item->combination_index,
                  r == 0 || r == 3 || r == 12 ? 100 + r : 0);
    }
    const std::pair<const char*, const char*> none[] = {
        {"0.5 1 \npara  1 1\n", ""},
        {"<\\number 3>\n", ""},
        {"<number 2000000000>\n<number -4>\n", ""},
        {"", "file open find error for file=missing.txt"}};
    for (const auto& [text, printed] : none) {
        const ConsoleCapture console;
        write_file("store.txt", text);
        EXPECT_EQ(array.getbestmarker(*text == 0 ? "missing.txt" : "store.txt"), 0) << text;
        EXPECT_EQ(array.count(), 0);
        EXPECT_EQ(console.text(), printed);
    }
}

TEST_F(BestCluster, DamagedBlocks) {
    const struct {
        const char *cut, *instead;
        const char* details;  // null: the record is null instead
    } cases[] = {
        {"<Best Cluster", "<Best", nullptr},
        {"<Cluster Inf", "<C", nullptr},
        {"<Genotype Code", "<G", nullptr},
        {"<Group Frequency", "<G", nullptr},
        {"<Group Average", "<G", nullptr},
        {"1 2 7 5", "0 2 7 5", "with 0 markers in 2 groups"},
        {"1 2 7 5", "25 2 7 5", "with 25 markers in 2 groups"},
        {"1 2 7 5", "1 x 7 5", "with 1 markers in 0 groups"},
        {"5 4 1", "5 10 1", "with 10 slots"},
        {"5 4 1", "5 4 3", "with 4 slots"},
        {"0\n0101", "0\n012101", "in group 0, slot 2"},
        {"1\n0010", "1\n00", "in group 1, slot 2"},
    };
    const auto restore = [] { return BestClusterInformation::ReStore("store.txt", 4); };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.instead);
        std::string text = kBlock;
        text.replace(text.find(c.cut), std::string(c.cut).size(), c.instead);
        write_file("store.txt", text);
        if (c.details == nullptr) {
            EXPECT_EQ(restore(), nullptr);
        } else {
            expect_end(restore, std::string("^find error in BCI file ") + c.details + "\n$");
        }
    }
    const std::string whole = kBlock;
    for (std::size_t length = 0; length < whole.size(); length += 40) {
        write_file("store.txt", whole.substr(0, length));
        expect_end([&] { return restore(), std::exit(0); }, "");  // no crash
    }
}

}  // namespace
}  // namespace vort::testing
