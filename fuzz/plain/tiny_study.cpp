#include "plain/tiny_study.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <random>

namespace vort::fuzz {

namespace {

using testing::Columns;

constexpr int kMostIndividuals = 80;
constexpr int kMostMarkers = 46;  // more than a thousand pairs
// An order of a kept set costs a draw for each individual, and its clusterings.
constexpr double kOrders = 500;
constexpr double kClusterings = 60;
constexpr double kMostWork = 350000;

class Bytes {
  public:
    explicit Bytes(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    int next() {
        if (at_ >= bytes_.size()) return 0;
        return bytes_[at_++];
    }
    // 0 .. limit - 1.
    int below(int limit) { return next() % limit; }
    short next_short() {
        const int low = next();
        return static_cast<short>(low + 256 * next());
    }
    // The bits of as many bytes as it takes, `width` bits each.
    std::vector<int> numbers(int count, int width) {
        std::vector<int> out;
        int byte = 0;
        for (int i = 0; i < count; ++i) {
            const int bit = i * width % 8;
            if (bit == 0) byte = next();
            out.push_back(byte >> bit & ((1 << width) - 1));
        }
        return out;
    }

  private:
    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

constexpr std::array<const char*, 8> kRetained = {"1", "2",  "3",   "4",
                                                  "0", "-5", "1.6", "2000000000"};
constexpr std::array<const char*, 12> kCutoffs = {"0.75", "1",  "0.05", "0.5", "0.01",  "0.3",
                                                  "0",    "-1", "2",    "nan", "1e-30", "0.999"};
constexpr std::array<const char*, 10> kOddNumbers = {
    "-1", "0", "2147483647", "1e30", "nan", "65536.7", "x", "65537", "1e-30", "4294967297"};

// The parameters that decide about sizes and sets, as words of the file.
struct Words {
    std::array<std::string, 6> word;
    std::string& individuals = word[0];
    std::string& markers = word[1];
    std::string& permutations = word[2];
    std::string& best = word[3];
    std::string& retained = word[4];
    std::string& cutoff = word[5];

    std::string text() const {
        return "Inputfile\tdat1.txt\nHead\t0\nRecorder_num\t0\nSample_size\t" + individuals +
               "\nNumber_of_markers\t" + markers + "\nSymbol_of_missing_Gentype\t-1\nMax_retain\t" +
               retained + "\nFDR_cutoff_for_candidate_locus_combinations\t" + cutoff +
               "\nNumber_of_permutation\t" + permutations +
               "\nHow_many_imputation_to_deal_with_missing\t10\nBest_m\t" + best + "\n";
    }
};

// At most, of one data set.
double kept_sets(int m, int retained) {
    const double most = std::max(retained, 0);
    return std::min<double>(most, m) + std::min(most, m / 2.0 * (m - 1));
}

// As many permutations, down to two, and sets as the work allows.
Settings bounded_settings(Words& words, int individuals) {
    const auto parse = [&] { return settings_of(parse_parameters(words.text())); };
    const Settings asked = parse();
    const int m = asked.builder.usable_markers();
    int permutations = std::max(asked.builder.permutations, 0);
    int retained = std::min(asked.builder.max_retain, kMostMarkers * kMostMarkers);
    const auto work = [&] {
        return kOrders * (individuals + kClusterings) * kept_sets(m, retained) *
               (permutations + 1.0);
    };
    if (work() <= kMostWork) return asked;
    while (permutations > 2 && work() > kMostWork) permutations = std::min(permutations - 1, 6);
    while (retained > 1 && work() > kMostWork) --retained;
    while (permutations > 0 && work() > kMostWork) --permutations;
    words.permutations = std::to_string(permutations);
    words.retained = std::to_string(retained);
    return parse();
}

std::vector<short> phenotypes_of(int kind, int n, Bytes& bytes) {
    std::vector<short> phenotypes(static_cast<std::size_t>(n));
    const auto any = [&] { return static_cast<std::size_t>(bytes.below(n)); };
    switch (kind) {
        case 4:  // few cases, or few controls
            phenotypes.assign(phenotypes.size(), static_cast<short>(bytes.next() & 1));
            for (int c = bytes.below(4); c > 0; --c) phenotypes[any()] ^= 1;
            return phenotypes;
        case 5:  // a quantity
            for (short& p : phenotypes) p = static_cast<short>(bytes.below(8) - 2);
            return phenotypes;
        case 6: {  // any two values
            const short value[] = {bytes.next_short(), bytes.next_short()};
            const std::vector<int> which = bytes.numbers(n, 1);
            std::ranges::transform(which, phenotypes.begin(), [&](int w) { return value[w]; });
            return phenotypes;
        }
        default: {
            const std::vector<int> bits = bytes.numbers(n, 1);
            std::ranges::transform(bits, phenotypes.begin(),
                                   [](int bit) { return static_cast<short>(bit); });
            if (kind == 7) phenotypes[any()] = bytes.next_short();
            return phenotypes;
        }
    }
}

// Random genotypes of a frequency, and missing ones of a share, in eighths.
std::vector<signed char> drawn_column(int n, int frequency, int missing, int seed) {
    std::minstd_rand random(static_cast<unsigned>(seed) + 1);
    const auto in_eighths = [&](int share) { return static_cast<int>(random() >> 8 & 7) < share; };
    std::vector<signed char> column;
    for (int i = 0; i < n; ++i) {
        const int code = (in_eighths(frequency) ? 1 : 0) + (in_eighths(frequency) ? 1 : 0);
        column.push_back(static_cast<signed char>(in_eighths(missing) ? -1 : code));
    }
    return column;
}

std::vector<signed char> column_of(const Columns& before, const std::vector<short>& phenotypes,
                                   Bytes& bytes) {
    const int n = static_cast<int>(phenotypes.size());
    const int recipe = bytes.next();
    const int detail = recipe >> 3;  // 0 .. 31
    const auto earlier = [&] {
        if (before.empty()) return std::vector<signed char>(phenotypes.size());
        return before[before.size() - 1 - static_cast<std::size_t>(detail) % before.size()];
    };
    std::vector<signed char> column(phenotypes.size());
    switch (recipe & 7) {
        case 1:  // a twin
            return earlier();
        case 2:  // a twin by the other allele
            column = earlier();
            for (signed char& code : column)
                code = static_cast<signed char>(code < 0 ? -1 : 2 - code);
            return column;
        case 3:  // no variation
            column.assign(column.size(), static_cast<signed char>(detail % 4 - 1));
            return column;
        case 4:
            return drawn_column(n, detail % 8, 0, bytes.next());
        case 5:
            return drawn_column(n, detail % 8, 1 + detail / 8, bytes.next());
        case 6:  // follows the phenotype
            for (int i = 0; i < n; ++i) {
                column[i] = static_cast<signed char>(phenotypes[i] > 0 ? 2 : detail & 1);
            }
            for (int c = detail >> 1; c > 0; --c) {
                const int i = bytes.below(n);
                column[i] = static_cast<signed char>(bytes.below(4) - 1);
            }
            return column;
        case 7:  // one genotype from a twin
            column = earlier();
            column[static_cast<std::size_t>(bytes.below(n))] =
                static_cast<signed char>(detail % 4 - 1);
            return column;
        default: {
            const std::vector<int> codes = bytes.numbers(n, 2);
            const int fourth = detail % 4 - 1;  // what a fourth code stands for
            std::ranges::transform(codes, column.begin(), [&](int code) {
                return static_cast<signed char>(code == 3 ? fourth : code);
            });
            return column;
        }
    }
}

}  // namespace

TinyStudy tiny_study(std::span<const std::uint8_t> data) {
    Bytes bytes(data);
    TinyStudy study;
    const int n = 1 + bytes.below(kMostIndividuals);
    const int M = bytes.below(kMostMarkers + 1);
    Words words;
    words.individuals = std::to_string(n);
    words.markers = std::to_string(M);
    words.best = std::to_string(bytes.below(M + 1));
    words.retained = kRetained[static_cast<std::size_t>(bytes.below(kRetained.size()))];
    words.cutoff = kCutoffs[static_cast<std::size_t>(bytes.below(kCutoffs.size()))];
    const int run = bytes.next();
    words.permutations = std::to_string(run % 7);
    study.threads = 1 + run / 7 % 3;
    const int kinds = bytes.next();
    const int odd = bytes.next();
    if (odd >= 192) {  // a number of the parameter file is another one, or has a fraction
        std::string& word = words.word[static_cast<std::size_t>(odd) % words.word.size()];
        const int which = (odd - 192) / 6;
        study.odd_sizes = true;
        word = which == 10 ? word + ".5" : kOddNumbers[static_cast<std::size_t>(which)];
    }
    study.detail = odd;
    study.settings = bounded_settings(words, n);
    study.settings.builder.clustering = std::max(kinds % 8 - 3, 0);
    study.parameters = study.settings.file.text;
    study.phenotypes = phenotypes_of(kinds / 8 % 8, n, bytes);
    for (int j = 0; j < M; ++j) {
        study.columns.push_back(column_of(study.columns, study.phenotypes, bytes));
    }
    return study;
}

MarkerTable table_of(const TinyStudy& study) {
    std::vector<MarkerInfo> markers;
    for (int j = 0; j < study.markers(); ++j) {
        MarkerInfo& marker = markers.emplace_back();
        marker.chromosome = 1 + 3 * j / study.markers();
        marker.name = 'm' + std::to_string(j + 1);
    }
    return MarkerTable::from_markers(markers);
}

void write_study(const TinyStudy& study, const std::string& folder) {
    std::ofstream(folder + "parameter.txt") << study.parameters;
    std::ofstream(folder + "Chromosome_SNP_Name.txt") << table_of(study).text();
    std::ofstream data(folder + "dat1.txt");
    for (int i = 0; i < study.individuals(); ++i) {
        data << study.phenotypes[i];
        for (const auto& column : study.columns) data << ' ' << static_cast<int>(column[i]);
        data << '\n';
    }
}

}  // namespace vort::fuzz
