// Small studies for the builder and what stands on it, and a fixture that leaves the process as it
// found it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "csm/csm.h"
#include "csm/globals.h"
#include "ensemble/globals.h"
#include "numeric/random.h"
#include "support/console_capture.h"
#include "support/program_end.h"
#include "support/study.h"
#include "support/temporary_folder.h"

namespace vort::testing {

inline char no_prefix[1] = "";

// A fresh folder to work in; nothing on the console that no test looks at; every global of the
// builder and the ensemble stage at its start value.
class BuilderTest : public ::testing::Test {
  protected:
    BuilderTest() { reset(); }
    ~BuilderTest() override { reset(); }

  private:
    static void reset() {
        init_rand1();
        clustermethod = 0;
        clustermethod_print = test_method_print = 1;
        hostname = no_prefix;
        ns = 400;
        nm = 20;
        missingrepeat = 10;
        repeat = 1;
        permutation = 200;
        base_learner.clear();
    }

    TemporaryFolder folder_;
    ConsoleCapture quiet_;
};

inline std::array<int, 3> random_state() {
    return {RX, RY, RZ};
}

// A NaN has any sign and payload.
inline std::uint64_t bits(double value) {
    return std::isnan(value) ? ~0ULL : std::bit_cast<std::uint64_t>(value);
}

struct Settings {
    int individuals;
    int markers;
    int retain = 10;
    int permutations = 0;
    const char* cutoff = "1";
};

inline void write_settings(const Settings& s) {
    write_file("parameter.txt",
               "Sample_size " + std::to_string(s.individuals) + "\nBest_m " +
                   std::to_string(s.markers) + "\nMax_retain " + std::to_string(s.retain) +
                   "\nNumber_of_permutation " + std::to_string(s.permutations) +
                   "\nFDR_cutoff_for_candidate_locus_combinations " + s.cutoff + "\n");
}

inline std::unique_ptr<CSM> builder_of(const Settings& settings) {
    write_settings(settings);
    return std::make_unique<CSM>(no_prefix);
}

// Takes a data set in without searching it: the members of the search can then be called.
inline void take_in(CSM& csm, Study& study, int current = 0) {
    const ConsoleCapture console;
    const int method = csm.test_method;
    csm.test_method = 4;
    csm.run(current, 0, 0, study.x(), study.y(), study.rankings(), 0, 1);
    csm.test_method = method;
}

inline std::unique_ptr<CSM> builder_with(Study& study, const Settings& settings) {
    auto csm = builder_of(settings);
    take_in(*csm, study);
    return csm;
}
inline std::unique_ptr<CSM> builder_with(Study& study) {
    return builder_with(study, {study.individuals(), study.markers()});
}

// Markers with an effect, missing genotypes and rare codes at random.
inline std::vector<std::string> random_genotypes(std::mt19937_64& random, int n, int m,
                                                 unsigned missing_in_1000,
                                                 const std::vector<short>& phenotype) {
    std::vector<std::string> rows(static_cast<std::size_t>(n), std::string(m, '0'));
    for (int j = 0; j < m; ++j) {
        const std::uint64_t rarity = 1 + random() % 5;
        const bool effect = random() % 3 == 0;
        for (int i = 0; i < n; ++i) {
            int code = static_cast<int>(random() % 3 * (random() % rarity == 0 ? 1 : 0));
            if (effect && phenotype[i] == 1 && random() % 2 == 0) code = 2;
            const bool missing = random() % 1000 < missing_in_1000;
            rows[i][j] = missing ? '-' : static_cast<char>('0' + code);
        }
    }
    return rows;
}

struct Shape {
    Study study;
    Settings settings;
};

// A study of any awkward shape: few individuals, one group empty, nearly everything missing, a
// phenotype of three values. `n` 0 leaves the number of individuals to chance.
inline Shape random_shape(std::uint64_t seed, int n = 0) {
    std::mt19937_64 random(seed);
    if (n == 0) n = 1 + static_cast<int>(random() % 70);
    const int m = 1 + static_cast<int>(random() % 12);
    const unsigned kind = random() % 8;
    std::vector<short> phenotype;
    for (int i = 0; i < n; ++i) {
        phenotype.push_back(static_cast<short>(random() % (kind == 0 ? 3 : 2)));
        if (kind == 1 || kind == 2) phenotype.back() = static_cast<short>(kind - 1);
    }
    const unsigned missing[] = {0, 0, 30, 150, 600, 1000};
    const unsigned share = missing[random() % 6];
    Study study(random_genotypes(random, n, m, share, phenotype), phenotype);
    const int retain = static_cast<int>(random() % 6);
    return {std::move(study), {n, m, retain, 0, random() % 2 == 0 ? "1" : "0.3"}};
}

}  // namespace vort::testing
