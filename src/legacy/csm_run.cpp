// One data set, from intake to matrix file: the best-ranked markers' genotypes and the phenotype,
// missing genotypes imputed by the marker's own frequencies, the cases spread over both halves, the
// phenotype centred, then the search.
//
// Random numbers are drawn marker by marker and, within a marker, individual by individual, one
// for each missing genotype; this order is part of the result.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "common/number_text.h"
#include "common/output_file.h"
#include "csm/design.h"
#include "legacy/csm.h"
#include "legacy/default_objects.h"
#include "legacy/random.h"

namespace vort {

namespace {

constexpr int kShown = 10;  // individuals, and markers of each, on the console

bool is_genotype(int code) {
    return code >= -1 && code <= 2;
}

bool is_near(double value, double target) {
    return !(std::abs(value - target) > 0.0001);
}

// Shares of codes 0 and 1 among the genotypes of a marker that are not missing; not a number where
// all are missing, which makes every draw a code 2.
struct Frequencies {
    double of_0;
    double of_1;
};

// False, after a message, on a code that is none.
bool count_frequencies(int** Tgen, int n, int j, bool quantitative, Frequencies& out) {
    int count[4] = {0, 0, 0, 0};  // missing, 0, 1, 2
    for (int i = 1; i <= n; ++i) {
        const int code = Tgen[i][j];
        if (!is_genotype(code)) {
            std::cout << "Tgen[" << i << "][" << j << "]=" << code
                      << "\t sample file to create XX maybe have"
                      << std::string(quantitative ? 19 : 21, ' ') << "some wrong data!";
            return false;
        }
        ++count[code + 1];
    }
    const double known = n - count[0];
    out = {count[1] / known, count[2] / known};
    return true;
}

int draw_code(const Frequencies& share) {
    const double u = rand1();
    if (u <= share.of_0) return 0;
    return u <= share.of_0 + share.of_1 ? 1 : 2;
}

bool read_phenotype(short value, double& y, int& quantitative_trait) {
    y = value;
    if (is_near(y, 0) || is_near(y, 1)) return true;
    std::cout << "yy[i]=" << fixed(y) << '\n';
    quantitative_trait = 1;
    return false;
}

}  // namespace

double CSM::run(int current, int /*Sample*/, int /*Marker*/, char** X, short** phenotypes,
                int** rankings, int /*Permutation*/, int /*Replication*/) {
    BestClusterInformationArray array(static_cast<long>(Max_retain) * max_order);
    fill_choose_table();
    if (skip_read == 0 && !take_data(current, X, phenotypes, rankings)) return 0.0;
    print_first_individuals();
    std::cout << (permutation_mode == 1 ? "permutation\n" : "bakeup\n");

    case_num = init(missing_set.data());
    calculate_sigma();
    print_first_individuals();

    if (test_method == 0 || test_method == 2) {
        bestsetper1(&array);
        std::cout << "first step finish at calculating 1-item\n";
    }
    ProvideDataToNextProgram(&array, (std::string(datapath) + "output_X_Y.txt").c_str());
    return 0.0;
}

// False where there is no genotype matrix; data that cannot be used end the program.
bool CSM::take_data(int current, char** X, short** phenotypes, int** rankings) {
    if (X == nullptr) {
        std::cout << "Don't read data from XX\n";
        return false;
    }
    const int result = ReadSampleData(current, 0, 0, X, phenotypes, rankings, 0, 0, Tgen.data(),
                                      yy.data(), missing_set.data());
    if (result < 0) std::exit(0);
    copy_raw_codes(X);
    return true;
}

// These show the genotype matrix as loaded: its first columns, not the best-ranked ones.
void CSM::copy_raw_codes(char** X) {
    if (Sample_size < 1) return;
    const int shown = std::min(kShown, usable_markers());
    std::copy_n(X[0], shown, first_codes.begin());
    std::copy_n(X[Sample_size - 1], shown, last_codes.begin());
}

void CSM::print_first_individuals() const {
    for (int i = 1; i <= std::min(kShown, Sample_size); ++i) {
        std::cout << "Y=" << general(yy[i]) << " X=";
        for (int j = 1; j <= std::min(kShown, usable_markers()); ++j)
            std::cout << Tgen[i][j] << ' ';
        std::cout << '\n';
    }
}

int CSM::ReadSampleData(int current, int /*Sample*/, int /*Marker*/, char** X, short** Y,
                        int** rank, int /*Permutation*/, int /*Replication*/, int** genotypes,
                        double* phenotype, bitset** missing) {
    const int n = Sample_size;
    const int m = usable_markers();
    for (int i = 1; i <= n; ++i) {
        missing[i]->SetZero();
        read_phenotype(Y[current][i - 1], phenotype[i], quantitative_trait);
        for (int j = 1; j <= m; ++j) {
            const int code = X[i - 1][rank[current][j - 1]];
            if (!is_genotype(code)) {
                std::cout << "Data XX or parameter file(=" << kParameterFileName
                          << ") have some wrong  read marker gene=" << code << '\n';
                return -1;
            }
            genotypes[i][j] = code;
        }
    }
    std::vector<Frequencies> share(static_cast<std::size_t>(m) + 1);
    for (int j = 1; j <= m; ++j) {
        if (!count_frequencies(genotypes, n, j, quantitative_trait != 0, share[j])) return -1;
    }
    for (int i = 1; i <= n && quantitative_trait == 0; ++i) {
        if (phenotype[i] == 0 || phenotype[i] == 1) continue;
        std::cout << "yy[" << i << "]=" << fixed(phenotype[i])
                  << "\t sample file to create XX maybe have some wrong data!";
        return -1;
    }
    for (int j = 1; j <= m; ++j) {
        for (int i = 1; i <= n; ++i) {
            if (genotypes[i][j] != -1) continue;
            missing[i]->SetbitOne(static_cast<unsigned long>(j));
            genotypes[i][j] = draw_code(share[j]);
        }
    }
    std::cout << "read data finished\n";
    return 0;
}

int CSM::init(bitset** missing) {
    const int n = Sample_size;
    int** rows = Tgen.data();
    const auto swap_individuals = [&](int a, int b) {
        std::swap(rows[a], rows[b]);
        std::swap(yy[a], yy[b]);
        std::swap(missing[a], missing[b]);
    };
    int c = 0;
    for (int i = 1; i <= n; ++i) c += yy[i] > 0 ? 1 : 0;

    int left = 1;
    int right = c + 1;
    for (;;) {
        while (left <= c && yy[left] > 0) ++left;
        while (right <= n && !(yy[right] > 0)) ++right;
        if (left > c || right > n) break;
        swap_individuals(left, right);
    }
    for (int l = c / 2 + 1, r = n / 2 + 1; l <= c && r <= n; ++l, ++r) swap_individuals(l, r);
    return c;
}

double CSM::calculate_sigma() {
    const int n = Sample_size;
    double sum = 0;
    for (int i = 1; i <= n; ++i) sum += yy[i];
    const double mean = sum / n;
    std::cout << "mean=" << general(mean) << '\n';
    double squares = 0;
    for (int i = 1; i <= n; ++i) {
        yy[i] -= mean;
        squares += yy[i] * yy[i];
    }
    sigma = squares / n;
    return sigma;
}

void CSM::bakeup(double* y, int direction) {
    static std::vector<double> yybak;
    yybak.resize(static_cast<std::size_t>(Sample_size) + 1);
    if (direction == 0) {
        std::copy_n(y + 1, Sample_size, yybak.begin() + 1);
    } else {
        std::copy_n(yybak.begin() + 1, Sample_size, y + 1);
    }
}

void CSM::mempermutation() {
    const int n = Sample_size;
    const int shown = std::min(n, 9);
    std::vector<int> order(static_cast<std::size_t>(n) + 1);
    randomsort(n, order.data());
    const std::vector<double> before(yy.data() + 1, yy.data() + n + 1);
    for (int i = 1; i <= n; ++i) yy[i] = before[order[i] - 1];
    for (int i = 1; i <= shown; ++i) std::cout << order[i] << ' ';
    std::cout << '\n';
    for (int i = 1; i <= shown; ++i) std::cout << general(yy[i]) << ' ';
    std::cout << '\n';
    for (int i = n - shown + 1; i <= n; ++i) std::cout << general(yy[i]) << ' ';
    std::cout << '\n';
}

void CSM::ProvideDataToNextProgram(const BestClusterInformationArray* array, const char* file) {
    std::vector<ClusterRecord> records;
    for (const auto& item : array->items) records.push_back(item->record());
    const BuilderData data = packed_data(true);
    const Design design(data, Imputation(data, Generator()), std::move(records));
    OutputFile out(file, OutputFile::Mode::kTruncate, default_objects().diagnostics);
    if (!out.is_open()) {
        std::cout << "Don't open file " << file << "!\n";
        std::exit(0);
    }
    out << design.text();
    if (!out.close()) std::exit(0);  // half a matrix would be read as a whole one
}

}  // namespace vort
