#include "genotypes/genotypes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "common/input_error.h"
#include "genotypes/genotype_row.h"
#include "genotypes/mapped_file.h"
#include "genotypes/plane_kernel.h"
#include "support/instruction_sets.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

using Codes = std::vector<signed char>;

// Column after column, with anything in the padding.
std::string packed(const std::vector<Codes>& columns, std::mt19937& random) {
    std::string bytes;
    for (const Codes& column : columns) {
        std::string four(packed_size(static_cast<int>(column.size())), '\0');
        for (char& byte : four) byte = static_cast<char>(random());
        for (std::size_t i = 0; i < column.size(); ++i) {
            const int bits[] = {1, 3, 2, 0};  // missing, 0, 1, 2
            const auto shift = 2 * (i % 4);
            four[i / 4] =
                static_cast<char>((four[i / 4] & ~(3 << shift)) | bits[column[i] + 1] << shift);
        }
        bytes += four;
    }
    return bytes;
}

void expect_column(const Genotypes& genotypes, int j, const Codes& column) {
    const int n = genotypes.individuals();
    Codes codes(column.size());
    genotypes.unpack(j, codes.data());
    EXPECT_EQ(codes, column);
    for (int i = 0; i < n; ++i) ASSERT_EQ(genotypes.code(i, j), column[i]);
    const std::size_t words = plane_words(n);
    std::vector<std::uint64_t> expected(3 * words);
    for (std::size_t i = 0; i < column.size(); ++i) {
        const std::size_t plane = column[i] == 1 ? 0 : column[i] == 2 ? 1 : 2;
        if (column[i] != 0) expected[plane * words + i / 64] |= std::uint64_t{1} << i % 64;
    }
    std::vector<std::uint64_t> planes(3 * words, 7);
    const GenotypePlanes out{planes.data(), planes.data() + words, planes.data() + 2 * words};
    genotypes.planes(j, out);
    EXPECT_EQ(planes, expected);
    // In memory that ends with the column.
    const std::vector<unsigned char> bytes(genotypes.column(j).begin(), genotypes.column(j).end());
    for (const Instructions set : instruction_sets()) {
        planes.assign(3 * words, 7);
        kernel_for(set, []<Instructions I>() { return PlaneKernel<I>::planes; })(bytes.data(), n,
                                                                                 out);
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
        std::vector<Codes> columns(5, Codes(static_cast<std::size_t>(individuals)));
        for (Codes& column : columns) {
            for (signed char& code : column) code = static_cast<signed char>(random() % 4) - 1;
        }
        const std::string bytes = packed(columns, random);
        const std::size_t offset = 4096 - bytes.size() % 4096;
        write_file("bed", std::string(offset, 'x') + bytes);
        const Genotypes mapped(individuals, 5, std::make_shared<const MappedFile>("bed"), offset);
        Genotypes owned(individuals, 6);
        for (int j = 0; j < 5; ++j) {
            std::copy_n(bytes.begin() + j * owned.stride(), owned.stride(),
                        owned.owned_column(j).begin());
            expect_column(mapped, j, columns[j]);
            expect_column(owned, j, columns[j]);
        }
        expect_column(owned, 5, Codes(static_cast<std::size_t>(individuals), -1));
    }
}

TEST(MappedFile, TellsWhetherItsPathLeadsElsewhereByNow) {
    const TemporaryFolder folder;
    write_file("bed", "abc");
    const MappedFile file("bed");
    EXPECT_FALSE(file.changed());
    write_file("other", "abc");
    std::filesystem::rename("other", "bed");
    EXPECT_TRUE(file.changed());
    for (const char* path : {"absent", ".", "/dev/null"}) {
        EXPECT_THROW(MappedFile{path}, InputError) << path;
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
        const std::string alphabet = seed % 2 == 0 ? "012-  " : "0000111222-  --   \t3";
        std::string row(random() % 90, ' ');
        for (char& c : row) c = alphabet[random() % alphabet.size()];
        expect_plain_parse(row, random() % 60);
    }
    std::string clean;
    for (int j = 0; j < 70; ++j) clean += j % 23 == 22 ? " -1" : " " + std::to_string(j % 3);
    for (std::size_t at = 0; at <= clean.size() && !HasFatalFailure(); ++at) {
        SCOPED_TRACE(at);
        for (const char fault : std::string("-\t3A \r\xb0") + '\0') {
            expect_plain_parse(std::string(clean).insert(at, 1, fault), 70);
        }
        expect_plain_parse(clean, at);
    }
}

}  // namespace
}  // namespace vort::testing
