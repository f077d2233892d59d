#include "genotypes/plink_files.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "common/characters.h"
#include "common/input_error.h"
#include "common/large_array.h"
#include "common/text_input.h"
#include "genotypes/mapped_file.h"

namespace vort {

namespace {

constexpr std::size_t kHeader = 3;
constexpr std::array<unsigned char, kHeader> kMagic = {0x6C, 0x1B, 0x01};

// Lines of six words.
class SixColumns {
  public:
    SixColumns(const std::string& path, std::string_view expected)
        : path_(path), expected_(expected), input_(path) {
        if (!input_.is_open()) {
            input_error(
                path_, 0,
                std::string("cannot be opened (") + std::strerror(input_.open_error()) + ')');
        }
    }

    // False at the end of the file; empty lines are passed over.
    bool next() {
        std::string_view text;
        do {
            line_ = input_.line_number();
            if (!input_.line(text)) {
                if (input_.read_error() == 0) return false;
                input_error(
                    path_, line_,
                    std::string("cannot be read (") + std::strerror(input_.read_error()) + ')');
            }
            split(text);
        } while (words_ == 0);
        if (words_ == column_.size()) return true;
        fail(std::to_string(words_) + " columns", std::string(expected_));
    }

    std::string_view operator[](std::size_t c) const { return column_[c]; }
    long line() const { return line_; }

    [[noreturn]] void fail(const std::string& found, const std::string& expected) const {
        input_error(path_, line_, found + "; " + expected + " expected");
    }

  private:
    void split(std::string_view text) {
        words_ = 0;
        const char* at = text.data();
        const char* const end = at + text.size();
        for (;;) {
            while (at < end && is_space(*at)) ++at;
            if (at == end) return;
            const char* const from = at;
            while (at < end && !is_space(*at)) ++at;
            if (words_ < column_.size()) column_[words_] = std::string_view(from, at);
            ++words_;
        }
    }

    const std::string& path_;
    std::string_view expected_;
    TextInput input_;
    std::array<std::string_view, 6> column_;  // of the line read last
    std::size_t words_ = 0;
    long line_ = 0;
};

struct Family {
    std::vector<short> phenotypes;  // 1 case, 0 control, -1 missing
    int cases = 0;
    int controls = 0;
};

Family read_fam(const std::string& path) {
    Family family;
    SixColumns lines(path, "FID IID PAT MAT SEX PHENOTYPE");
    int zeros = 0;
    while (lines.next()) {
        const std::string_view phenotype = lines[5];
        if (phenotype == "2") {
            ++family.cases;
        } else if (phenotype == "1") {
            ++family.controls;
        } else if (phenotype == "0") {
            ++zeros;
        } else if (phenotype != "-9" && phenotype != "NA") {
            lines.fail("phenotype " + std::string(phenotype),
                       "1 (control), 2 (case), or 0, -9 or NA (missing)");
        }
        family.phenotypes.push_back(phenotype == "2" ? 1 : phenotype == "1" ? 0 : -1);
    }
    if (family.cases == 0 && family.controls > 0 && zeros > 0) {
        input_error(path, 0,
                    "the phenotypes are 0 and 1; 1 (control) and 2 (case) expected; if 0 is a "
                    "control and 1 a case, recode them as 1 and 2");
    }
    if (family.cases == 0 || family.controls == 0) {
        input_error(path, 0,
                    std::to_string(family.cases) + " cases and " + std::to_string(family.controls) +
                        " controls; both expected");
    }
    return family;
}

// In either case; `wanted` is in capitals.
bool starts_like(std::string_view name, std::string_view wanted) {
    const auto same = [](char capital, char c) {
        return c == capital || (c >= 'a' && c <= 'z' && c - 'a' + 'A' == capital);
    };
    return name.size() >= wanted.size() &&
           std::equal(wanted.begin(), wanted.end(), name.begin(), same);
}

// 0 where the name is none.
int chromosome_of(std::string_view name) {
    if (starts_like(name, "CHR")) name.remove_prefix(3);
    constexpr std::array<std::string_view, 4> kNamed = {"X", "Y", "XY", "MT"};
    for (std::size_t k = 0; k < kNamed.size(); ++k) {
        if (name.size() == kNamed[k].size() && starts_like(name, kNamed[k])) {
            return 23 + static_cast<int>(k);
        }
    }
    int number = 0;
    const auto end = name.data() + name.size();
    const auto read = std::from_chars(name.data(), end, number);
    return read.ec == std::errc() && read.ptr == end && number >= 1 && number <= 26 ? number : 0;
}

std::vector<MarkerInfo> read_bim(const std::string& path) {
    std::vector<MarkerInfo> markers;
    SixColumns lines(path, "CHR ID CM BP A1 A2");
    while (lines.next()) {
        MarkerInfo marker{chromosome_of(lines[0]), std::string(lines[1]), 0, std::string(lines[4]),
                          std::string(lines[5])};
        if (marker.chromosome == 0) {
            lines.fail("chromosome " + std::string(lines[0]), "1 to 26, X, Y, XY or MT");
        }
        const std::string_view position = lines[3];
        const auto end = position.data() + position.size();
        const auto read = std::from_chars(position.data(), end, marker.position);
        if (read.ec != std::errc() || read.ptr != end) {
            lines.fail("position " + std::string(position), "a whole number");
        }
        markers.push_back(std::move(marker));
    }
    if (markers.empty()) input_error(path, 0, "no marker; at least one expected");
    return markers;
}

void check_bed(const MappedFile& file, std::size_t individuals, std::size_t markers) {
    const std::size_t shown = std::min(file.size(), kHeader);
    if (shown < kHeader || !std::equal(kMagic.begin(), kMagic.begin() + 2, file.bytes())) {
        input_error(file.path(), 0,
                    "is no .bed file; one that begins with the bytes 6C 1B expected");
    }
    if (file.bytes()[2] != kMagic[2]) {
        input_error(file.path(), 0,
                    "is individual-major; a SNP-major file expected; convert it, for example by "
                    "plink --make-bed");
    }
    const std::size_t expected = kHeader + (individuals + 3) / 4 * markers;
    if (file.size() == expected) return;
    input_error(file.path(), 0,
                std::to_string(file.size()) + " bytes; " + std::to_string(expected) +
                    " expected for " + std::to_string(individuals) + " individuals (.fam) and " +
                    std::to_string(markers) + " markers (.bim)");
}

// Consecutive individuals with a phenotype.
struct Run {
    std::size_t from;
    std::size_t size;
};

std::vector<Run> runs_of(std::span<const short> phenotypes) {
    std::vector<Run> runs;
    for (std::size_t i = 0; i < phenotypes.size(); ++i) {
        if (phenotypes[i] < 0) continue;
        if (i == 0 || phenotypes[i - 1] < 0) runs.push_back({i, 0});
        ++runs.back().size;
    }
    return runs;
}

// Packs the genotypes of a run behind the `packed` ones of a column that began as zeros; as many
// at a time as a word holds from any place in a byte on.
void append(std::span<const unsigned char> column, Run run, std::span<unsigned char> out,
            std::size_t packed) {
    constexpr std::size_t kAtOnce = 28;
    while (run.size > 0) {
        const std::size_t size = std::min(run.size, kAtOnce);
        const auto from = column.subspan(run.from / 4);
        const auto to = out.subspan(packed / 4);
        std::uint64_t word = 0;
        std::memcpy(&word, from.data(), std::min(sizeof word, from.size()));
        word = word >> 2 * (run.from % 4) & ((std::uint64_t{1} << 2 * size) - 1);
        std::uint64_t before = 0;
        std::memcpy(&before, to.data(), std::min(sizeof before, to.size()));
        before |= word << 2 * (packed % 4);
        std::memcpy(to.data(), &before, std::min(sizeof before, to.size()));
        run = {run.from + size, run.size - size};
        packed += size;
    }
}

// Without the individuals that have no phenotype.
Genotypes copy_of(const Genotypes& all, std::span<const short> phenotypes, int kept) {
    const std::size_t stride = packed_size(kept);
    LargeArray<unsigned char> columns(stride * static_cast<std::size_t>(all.markers()));
    const std::vector<Run> runs = runs_of(phenotypes);
    for (int j = 0; j < all.markers(); ++j) {
        const std::span<unsigned char> out(columns.data() + static_cast<std::size_t>(j) * stride,
                                           stride);
        std::size_t packed = 0;
        for (const Run& run : runs) {
            append(all.column(j), run, out, packed);
            packed += run.size;
        }
    }
    return {kept, all.markers(), std::move(columns)};
}

}  // namespace

BedStudy load_bed(const std::string& bed, const std::string& bim, const std::string& fam) {
    Family family = read_fam(fam);
    BedStudy study;
    study.markers = read_bim(bim);
    const auto file = std::make_shared<const MappedFile>(bed);
    check_bed(*file, family.phenotypes.size(), study.markers.size());
    const int individuals = static_cast<int>(family.phenotypes.size());
    study.genotypes = Genotypes(individuals, static_cast<int>(study.markers.size()), file, kHeader);
    const int kept = family.cases + family.controls;
    study.without_phenotype = individuals - kept;
    if (study.without_phenotype > 0) {
        study.genotypes = copy_of(study.genotypes, family.phenotypes, kept);
        std::erase(family.phenotypes, short{-1});
    }
    study.phenotypes = std::move(family.phenotypes);
    return study;
}

}  // namespace vort
