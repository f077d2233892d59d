// The text data set: four bytes say what is expected (individuals, markers, whether there is a
// header, whether there are identifiers, and one or two threads), the rest is the file.
#include "genotypes/text_data_set.h"

#include <bit>
#include <sstream>
#include <vector>

#include "support/files.h"
#include "support/harness.h"

namespace vort::fuzz {

namespace {

constexpr std::size_t kSizes = 4;

TextDataSet expected_in(std::string_view sizes) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(sizes[i]); };
    TextDataSet expected;
    expected.markers = byte(1) + (byte(2) & 15) * 256;
    expected.individuals = expected.markers < 256 ? byte(0) : byte(0) & 31;  // many are slow
    expected.head = byte(3) & 1;
    expected.record = byte(3) >> 1 & 1;
    return expected;
}

// Every individual has one of four genotypes, by codes as well as by planes.
void check_column(const Genotypes& genotypes, int j) {
    const int n = genotypes.individuals();
    std::vector<signed char> codes(static_cast<std::size_t>(n));
    genotypes.unpack(j, codes.data());
    std::vector<std::uint64_t> one(plane_words(n)), two(one), missing(one);
    genotypes.planes(j, {one.data(), two.data(), missing.data()});
    for (int i = 0; i < n; ++i) {
        const auto w = static_cast<std::size_t>(i) / 64;
        const auto bit = [&](const auto& plane) {
            return static_cast<int>(plane[w] >> i % 64 & 1);
        };
        const int code = codes[static_cast<std::size_t>(i)];
        require(code == genotypes.code(i, j), "codes are the same one by one");
        require(bit(one) == (code == 1) && bit(two) == (code == 2) && bit(missing) == (code == -1),
                "planes are the same as codes");
    }
    // Those past the last one mean nothing in a column, and are no genotype in a plane.
    for (const auto* plane : {&one, &two, &missing}) {
        if (n % 64 != 0) require(plane->back() >> n % 64 == 0, "a plane ends with zeros");
    }
}

void check(const DataSet& data, const TextDataSet& expected) {
    require(data.genotypes.individuals() == expected.individuals, "all individuals are there");
    require(data.genotypes.markers() == expected.markers, "all markers are there");
    require(data.cases + data.controls == expected.individuals, "who is no case is a control");
    for (int j = 0; j < expected.markers; j += 1 + expected.markers / 16) {
        check_column(data.genotypes, j);
    }
}

std::string load(const TextDataSet& expected, int threads, bool whole) {
    std::ostringstream told;
    Diagnostics diagnostics(told);
    Transcript nobody(false);
    accepts([&] {
        const DataSet data = load_text_data_set(expected, threads, diagnostics, nobody);
        if (whole) check(data, expected);
    });
    diagnostics.finish();
    return told.str();
}

void run(std::string_view input) {
    static Files files;
    if (input.size() < kSizes) return;
    TextDataSet expected = expected_in(input);
    expected.file = files.put("dat1.txt", input.substr(kSizes));
    const std::string told = load(expected, 1, true);
    const bool two_threads = (input[3] & 4) != 0;
    if (two_threads) {
        require(load(expected, 2, false) == told, "threads do not change what is told");
    }
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
