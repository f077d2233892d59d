// Individuals without a phenotype left out of a .bed, against reading it genotype by genotype.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "genotypes/plink_files.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

void expect_copy(unsigned seed) {
    std::mt19937_64 generator(seed);
    const auto random = [&] { return static_cast<unsigned>(generator()); };
    const unsigned individuals = 2 + random() % (seed % 10 == 0 ? 1000 : 150);
    const unsigned without = random() % 4;  // quarters
    std::string fam;
    std::vector<unsigned> kept;
    for (unsigned i = 0; i < individuals; ++i) {
        const bool keep = i < 2 || random() % 4 >= without;
        if (keep) kept.push_back(i);
        fam += keep ? "f i 0 0 0 " + std::to_string(1 + i % 2) + '\n' : "f i 0 0 0 -9\n";
    }
    const unsigned markers = 1 + random() % 9;
    const unsigned stride = (individuals + 3) / 4;
    std::string bim;
    for (unsigned j = 0; j < markers; ++j) bim += "1 r 0 1 A C\n";
    std::string bed("\x6C\x1B\x01", 3);
    for (unsigned b = 0; b < markers * stride; ++b) bed += static_cast<char>(random() & 255);
    write_file("s.bed", bed);
    write_file("s.bim", bim);
    write_file("s.fam", fam);
    const BedStudy study = load_bed("s.bed", "s.bim", "s.fam");
    ASSERT_EQ(study.genotypes.individuals(), static_cast<int>(kept.size()));
    constexpr int kCode[] = {2, -1, 1, 0};
    for (unsigned j = 0; j < markers; ++j) {
        for (unsigned k = 0; k < kept.size(); ++k) {
            const auto four = static_cast<unsigned char>(bed[3 + j * stride + kept[k] / 4]);
            ASSERT_EQ(study.genotypes.code(static_cast<int>(k), static_cast<int>(j)),
                      kCode[four >> 2 * (kept[k] % 4) & 3]);
        }
    }
}

TEST(BedCopy, HoldsTheGenotypesOfThoseWithAPhenotype) {
    const TemporaryFolder folder;
    for (unsigned seed = 1; seed <= 300 && !::testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        expect_copy(seed);
    }
}

}  // namespace
}  // namespace vort::testing
