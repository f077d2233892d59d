// Small studies for the builder and what stands on it, and a fixture that leaves the process as it
// found it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "csm/csm.h"
#include "csm/globals.h"
#include "ensemble/globals.h"
#include "numeric/random.h"
#include "support/console_capture.h"
#include "support/temporary_folder.h"

namespace vort::testing {

// A fresh folder to work in; nothing on the console that no test looks at; every global of the
// builder and the ensemble stage at its start value.
class BuilderTest : public ::testing::Test {
  protected:
    BuilderTest() { reset(); }
    ~BuilderTest() override { reset(); }

    char prefix_[1] = "";

  private:
    static void reset() {
        init_rand1();
        clustermethod = 0;
        clustermethod_print = test_method_print = 1;
        static char no_prefix[1] = "";
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

// For the ends of the program: death tests look at standard error.
inline void console_on_standard_error() {
    std::cout.rdbuf(std::cerr.rdbuf());
}

inline std::array<int, 3> random_state() {
    return {RX, RY, RZ};
}

// A NaN has any sign and payload.
inline std::uint64_t bits(double value) {
    return std::isnan(value) ? ~0ULL : std::bit_cast<std::uint64_t>(value);
}

// What the screening hands over: genotypes by individual and column, and for every data set a row
// of phenotypes and a ranking of the columns.
class Study {
  public:
    // A string for each individual, a character for each column: 0, 1, 2, or '-' for missing. One
    // data set, its ranking the order of the columns.
    Study(const std::vector<std::string>& genotypes, std::vector<short> phenotype) {
        for (const std::string& row : genotypes) {
            std::string codes;
            for (const char c : row) codes.push_back(static_cast<char>(c == '-' ? -1 : c - '0'));
            genotypes_.push_back(codes);
        }
        std::vector<int> ranking(genotypes.empty() ? 0 : genotypes[0].size());
        std::iota(ranking.begin(), ranking.end(), 0);
        add_data_set(std::move(phenotype), std::move(ranking));
    }

    void add_data_set(std::vector<short> phenotype, std::vector<int> ranking) {
        phenotypes_.push_back(std::move(phenotype));
        rankings_.push_back(std::move(ranking));
        x_.clear();
        y_.clear();
        r_.clear();
        for (auto& row : genotypes_) x_.push_back(row.data());
        for (auto& row : phenotypes_) y_.push_back(row.data());
        for (auto& row : rankings_) r_.push_back(row.data());
    }
    Study(const Study&) = delete;
    Study& operator=(const Study&) = delete;

    int individuals() const { return static_cast<int>(genotypes_.size()); }
    int markers() const { return static_cast<int>(rankings_[0].size()); }
    int data_sets() const { return static_cast<int>(rankings_.size()); }
    const std::vector<short>& phenotype(int r) const { return phenotypes_[r]; }
    const std::vector<int>& ranking(int r) const { return rankings_[r]; }
    char** x() { return x_.data(); }
    short** y() { return y_.data(); }
    int** rankings() { return r_.data(); }

  private:
    std::vector<std::string> genotypes_;
    std::vector<std::vector<short>> phenotypes_;
    std::vector<std::vector<int>> rankings_;
    std::vector<char*> x_;
    std::vector<short*> y_;
    std::vector<int*> r_;
};

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

// Takes a data set in without searching it: the members of the search can then be called.
inline void take_in(CSM& csm, Study& study, int current = 0) {
    const ConsoleCapture console;
    const int method = csm.test_method;
    csm.test_method = 4;
    csm.run(current, 0, 0, study.x(), study.y(), study.rankings(), 0, 1);
    csm.test_method = method;
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

// A study of any awkward shape: few individuals, one group empty, nearly everything missing, a
// phenotype of three values. `individuals` 0 leaves their number to chance.
struct Shape {
    explicit Shape(std::uint64_t seed, int individuals = 0) : random(seed), n(individuals) {
        if (n == 0) n = 1 + static_cast<int>(random() % 70);
        m = 1 + static_cast<int>(random() % 12);
        const unsigned kind = random() % 8;
        for (int i = 0; i < n; ++i) {
            const unsigned values = kind == 0 ? 3 : 2;
            phenotype.push_back(static_cast<short>(random() % values));
            if (kind == 1) phenotype.back() = 0;
            if (kind == 2) phenotype.back() = 1;
        }
        const unsigned missing[] = {0, 0, 30, 150, 600, 1000};
        genotypes = random_genotypes(random, n, m, missing[random() % 6], phenotype);
        write_settings({n, m, static_cast<int>(random() % 6), 0, random() % 2 == 0 ? "1" : "0.3"});
    }

    std::mt19937_64 random;
    int n;
    int m;
    std::vector<short> phenotype;
    std::vector<std::string> genotypes;
};

}  // namespace vort::testing
