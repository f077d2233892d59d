// Records of kept marker sets: queries and the text block.
#include "csm/cluster_record.h"

#include <gtest/gtest.h>

namespace vort::testing {
namespace {

// A single marker's record: cell 1 (code 2) and cell 3 (code 1) in group 0, cell 2 in group 1.
ClusterRecord sample() {
    ClusterRecord record(1, 2, 7);
    record.combination_index = 5;
    record.nonempty_groups = 1;
    record.members[0][1] = record.members[0][3] = record.members[1][2] = true;
    record.genotype_code = {0, 2, 0, 1};
    record.group_frequency = {1.0 / 3, 2.0 / 3};
    record.group_average = {0.75, 1e-7};
    return record;
}

TEST(ClusterRecord, TextBlock) {
    EXPECT_EQ(
        sample().text(4),
        "<number 4>\n<Best Cluster Information>\n1 2 7 5 4 1\n<Cluster Information>\n0\n0101\n1\n"
        "0010\n\n<\\Cluster Information>\n<Genotype Code Information>\n0 2 0 1 \n"
        "<\\Genotype Code Information>\n<Group Frequency Information>\n0.333333 0.666667 \n"
        "<\\Group Frequency Information>\n<Group Average Information>\n0.75 1e-07 \n"
        "<\\Group Average Information>\n\n<\\Best Cluster Information>\n<\\number 4>\n");
    EXPECT_EQ(sample().as_read_back().group_frequency, (std::vector{0.333333, 0.666667}));
}

TEST(ClusterRecord, Queries) {
    const ClusterRecord record = sample();
    for (const int code : {0, 1, 2, 7}) {
        EXPECT_EQ(record.group_of(code), code == 0 ? 1 : 0) << code;
        EXPECT_EQ(record.includes(code, 0), code == 1 || code == 2) << code;
    }
    Transcript out(true);
    EXPECT_EQ(record.show_codes(0, out), (std::vector{2, 1}));
    EXPECT_TRUE(record.show_codes(2, out).empty()) << "past the last group";
    EXPECT_EQ(out.text(),
              "GenotypeCode of group number=0\n2 1 \nGenotypeCode of group number=2\n\n");
}

}  // namespace
}  // namespace vort::testing
