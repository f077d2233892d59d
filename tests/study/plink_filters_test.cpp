// Filters against PLINK 1.9 itself, where it is installed: what it keeps of a messy study is,
// person by person and genotype by genotype, what is kept here, and its counts are the counts told
// here.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "study/study_files.h"

namespace vort::testing {
namespace {

// Nonfounders, unknown sexes, missing phenotypes, people and markers with few genotypes,
// frequencies and proportions of all kinds, X, Y, XY and MT with what does not belong there, odd
// chromosomes.
PlainStudy messy_study(unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    const auto happens = [&](int percent) { return below(100) < percent; };
    PlainStudy study;
    std::vector<int> sexes, gaps;
    for (int i = 0; i < 203; ++i) {
        const std::string n = std::to_string(i);
        sexes.push_back(below(5) % 3);
        gaps.push_back(happens(15) ? 15 : 1);
        study.people.push_back("F" + n + " I" + n + (happens(10) ? " P" : " 0") +
                               (happens(10) ? " M " : " 0 ") + std::to_string(sexes.back()) +
                               (i < 2         ? " 1"
                                : happens(20) ? " -9"
                                : happens(60) ? " 1"
                                              : " 2"));
    }
    study.people[0] = "F0 I0 0 0 1 2";
    constexpr int kChromosomes[] = {1, 1, 1, 1, 2, 7, 23, 23, 23, 24, 24, 25, 26, 26};
    for (int j = 0; j < 280; ++j) {
        const int c = kChromosomes[j / 20];
        study.markers.push_back({c, "m" + std::to_string(j), j + 1, "A", "C"});
        const int frequency = 2 + below(97), missing = below(4) * below(8);
        const int inbred = below(3) * 50, heterozygous = happens(15) ? 80 : 0;
        std::vector<int> column;
        for (std::size_t i = 0; i < sexes.size(); ++i) {
            const int one = happens(frequency), other = happens(inbred) ? one : happens(frequency);
            const bool single = c == 24 || c == 26 || (c == 23 && sexes[i] == 1);
            int code = happens(heterozygous) ? 1 : single && happens(90) ? 2 * one : one + other;
            if (happens(missing) || happens(gaps[i]) || j % 37 == 5) code = -1;
            if (c == 24 && sexes[i] == 2 && happens(70)) code = -1;
            column.push_back(code);
        }
        study.codes.push_back(column);
    }
    return study;
}

struct Options {
    std::string arguments;  // of PLINK
    void (*ask)(Filters&);
};

// The sum of the numbers in front of the log's phrases on what was removed.
long removed_in(const std::string& log, const std::string& phrase) {
    const std::size_t at = log.find(phrase);
    if (at == std::string::npos) return 0;
    std::size_t from = at;
    while (from > 0 && log[from - 1] >= '0' && log[from - 1] <= '9') --from;
    return std::stol(log.substr(from, at - from));
}

long told(const Study& study, const std::string& option) {
    for (const LeftOut& out : study.left_out) {
        if (out.why.starts_with(option)) return out.count;
    }
    return 0;
}

void expect_as_plink(const Options& options) {
    const std::string command =
        "plink1.9 --bfile s --allow-no-sex --keep-allele-order --make-bed "
        "--out p" +
        options.arguments + " > p.out 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << command << '\n' << read_file("p.out");
    StudyRequest request = bed_request("s");
    options.ask(request.filters);
    ASSERT_EQ(fault_of(request), "none") << command;
    const Study study = load_study(request);
    const Study expected = load_study(bed_request("p"));
    EXPECT_EQ(people_of(study), people_of(expected)) << command;
    EXPECT_EQ(markers_of(study), markers_of(expected)) << command;
    EXPECT_EQ(phenotypes_of(study), phenotypes_of(expected));
    EXPECT_EQ(codes_of(study.genotypes), codes_of(expected.genotypes));
    const std::string log = read_file("p.log");
    EXPECT_EQ(told(study, "--mind"), removed_in(log, " people removed due to missing") +
                                         removed_in(log, " person removed due to missing"));
    EXPECT_EQ(told(study, "--geno"), removed_in(log, " variants removed due to missing") +
                                         removed_in(log, " variant removed due to missing"));
    EXPECT_EQ(told(study, "--hwe"), removed_in(log, " variants removed due to Hardy") +
                                        removed_in(log, " variant removed due to Hardy"));
    EXPECT_EQ(told(study, "--maf"), removed_in(log, " variants removed due to minor") +
                                        removed_in(log, " variant removed due to minor"));
}

TEST(PlinkFilters, LeaveOutTheSame) {
    if (std::system("plink1.9 --version > /dev/null 2>&1") != 0) {
        GTEST_SKIP() << "plink1.9 is not installed";
    }
    const TemporaryFolder folder;
    const Options table[] = {
        {" --mind 0.12", [](Filters& f) { f.mind = 0.12; }},
        {" --mind 0.2", [](Filters& f) { f.mind = 0.2; }},
        {" --geno 0.1", [](Filters& f) { f.geno = 0.1; }},
        {" --maf 0.05", [](Filters& f) { f.maf = 0.05; }},
        {" --maf 0.25", [](Filters& f) { f.maf = 0.25; }},
        {" --hwe 0.05", [](Filters& f) { f.hwe = 0.05; }},
        {" --hwe 0.0001", [](Filters& f) { f.hwe = 1e-4; }},
        {" --mind 0.15 --geno 0.2 --maf 0.1 --hwe 0.01",
         [](Filters& f) { f.mind = 0.15, f.geno = 0.2, f.maf = 0.1, f.hwe = 0.01; }},
        {" --chr 1,23-25 --keep people --exclude markers --mind 0.3 --hwe 0.2",
         [](Filters& f) {
             f.chromosomes = "1,X-XY", f.keep = "people", f.exclude = "markers";
             f.mind = 0.3, f.hwe = 0.2;
         }},
        {" --extract markers --remove people --geno 0.15 --maf 0.02",
         [](Filters& f) {
             f.extract = "markers", f.remove = "people";
             f.geno = 0.15, f.maf = 0.02;
         }},
    };
    for (unsigned seed = 1; seed <= 8 && !::testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        write_bed(messy_study(seed), "s");
        std::string people = "F0 I0\nF1 I1\n", markers;
        for (int k = 3; k < 280; k += 2) markers += " m" + std::to_string(k) + "\n";
        for (int k = 2; k < 203; k += 2)
            people += "F" + std::to_string(k) + " I" + std::to_string(k) + '\n';
        write_file("people", people);
        write_file("markers", markers);
        for (const Options& options : table) expect_as_plink(options);
    }
}

}  // namespace
}  // namespace vort::testing
