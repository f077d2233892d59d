#include "genotypes/genotypes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "genotypes/genotype_row.h"
#include "genotypes/mapped_file.h"
#include "genotypes/plane_kernel.h"
#include "support/instruction_sets.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

using Codes = std::vector<signed char>;

// A column, with anything in its padding.
std::string packed(const Codes& column, std::mt19937& random) {
    std::string bytes(packed_size(static_cast<int>(column.size())), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    for (std::size_t i = 0; i < column.size(); ++i) {
        const int bits[] = {1, 3, 2, 0};  // missing, 0, 1, 2
        const int others = bytes[i / 4] & ~(3 << 2 * (i % 4));
        bytes[i / 4] = static_cast<char>(others | bits[column[i] + 1] << 2 * (i % 4));
    }
    return bytes;
}

void expect_column(const Genotypes& genotypes, int j, const Codes& column) {
    Codes codes(column.size());
    genotypes.unpack(j, codes.data());
    EXPECT_EQ(codes, column);
    const std::size_t words = plane_words(genotypes.individuals());
    std::vector<std::uint64_t> expected(3 * words), planes(3 * words, 7);
    for (std::size_t i = 0; i < column.size(); ++i) {
        ASSERT_EQ(genotypes.code(static_cast<int>(i), j), column[i]);
        const std::size_t plane = column[i] == -1 ? 2 : column[i] - 1;
        if (column[i] != 0) expected[plane * words + i / 64] |= std::uint64_t{1} << i % 64;
    }
    const GenotypePlanes out{planes.data(), planes.data() + words, planes.data() + 2 * words};
    genotypes.planes(j, out);
    EXPECT_EQ(planes, expected);
    // From memory that ends with the column.
    const std::vector<unsigned char> bytes(genotypes.column(j).begin(), genotypes.column(j).end());
    for (const Instructions set : instruction_sets()) {
        planes.assign(3 * words, 7);
        const auto take = kernel_for(set, []<Instructions I>() { return PlaneKernel<I>::planes; });
        take(bytes.data(), genotypes.individuals(), out);
        EXPECT_EQ(planes, expected) << "set " << static_cast<int>(set);
    }
}

// The file's last byte is the last one of a page, and nothing is mapped behind it.
TEST(Genotypes, EveryWayOfReadingGivesTheSame) {
    const TemporaryFolder folder;
    std::mt19937 random(11);
    for (int n = 1; n <= 71; ++n) {
        const int individuals = n == 71 ? 1000 : n;
        SCOPED_TRACE(individuals);
        std::string bytes;
        std::vector<Codes> columns(5, Codes(static_cast<std::size_t>(individuals)));
        Genotypes owned(individuals, 6);
        for (int j = 0; j < 5; ++j) {
            for (signed char& code : columns[j]) code = static_cast<signed char>(random() % 4) - 1;
            const std::string column = packed(columns[j], random);
            std::copy(column.begin(), column.end(), owned.owned_column(j).begin());
            bytes += column;
        }
        const std::size_t offset = 4096 - bytes.size() % 4096;
        write_file("bed", std::string(offset, 'x') + bytes);
        const Genotypes mapped(individuals, 5, std::make_shared<const MappedFile>("bed"), offset);
        columns.emplace_back(static_cast<std::size_t>(individuals), -1);
        for (int j = 0; j < 6; ++j) expect_column(owned, j, columns[j]);
        for (int j = 0; j < 5; ++j) expect_column(mapped, j, columns[j]);
    }
}

// The rule, a character at a time; buffers of exactly the row's sizes, so that a sanitizer sees a
// step outside.
void expect_plain_parse(const std::string& row, std::size_t markers) {
    const std::string padded = row + std::string(2, '\0');  // means nothing
    Codes expected;
    std::size_t at = 0;
    bool lone_minus = false;
    while (expected.size() < markers) {
        while (padded[at] == ' ') ++at;
        const char c = padded[at];
        if (c != '-' && c != '0' && c != '1' && c != '2') break;
        expected.push_back(static_cast<signed char>(c == '-' ? -1 : c - '0'));
        if (c == '-' && (padded[at + 1] < '0' || padded[at + 1] > '9')) lone_minus = true;
        at += c == '-' ? 2 : 1;
    }
    const std::vector<char> text(row.begin(), row.end());
    Codes codes(markers);
    RowParser parser({text.data(), text.size()});
    const int count = parser.parse(static_cast<int>(markers), codes.data());
    codes.resize(static_cast<std::size_t>(count));
    ASSERT_EQ(codes, expected);
    while (padded[at] == ' ') ++at;  // may be used or not
    const auto blanks = std::min(parser.rest().find_first_not_of(' '), parser.rest().size());
    ASSERT_EQ(parser.rest().substr(blanks), std::string_view(row).substr(std::min(at, row.size())));
    ASSERT_EQ(parser.lone_minus(), lone_minus);
}

// Rows are mostly read eight genotypes at a time.
TEST(RowParser, FollowsThePlainRule) {
    for (unsigned seed = 1; seed <= 20000 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        // Like a usual row with a few faults, or anything.
        const std::string alphabet = seed % 2 == 0 ? "012-  " : "0000111222-  --\r  \t3A";
        std::string row(random() % 150, ' ');
        for (std::size_t at = 0; at < row.size(); ++at) {
            const bool fault = random() % (1 + seed % 60) == 0;
            if (fault || at % 2 == 0) row[at] = alphabet[random() % (fault ? alphabet.size() : 3)];
        }
        expect_plain_parse(row, random() % 80);
    }
}

}  // namespace
}  // namespace vort::testing
