// The additive recoding: a line of text for each individual. It is read twice, first for the names
// of the individuals and the sizes, then for the genotypes, which are packed eight rows at a time
// (genotypes/strip_packer.h).
#include <algorithm>
#include <array>

#include "common/characters.h"
#include "common/input_error.h"
#include "genotypes/strip_packer.h"
#include "study/cohort.h"
#include "study/fam_file.h"
#include "study/raw_header.h"
#include "study/word_lines.h"

namespace vort {

namespace {

constexpr std::size_t kNames = 6;  // words in front of the genotypes

struct RawRow {
    LongText text;
    long line = 0;

    std::string_view view() const { return {text.memory.data(), text.used}; }
};

// Lines that are not empty.
class RawLines {
  public:
    explicit RawLines(const std::string& path) : path_(path), input_(path) {
        require_open(input_, path_);
    }

    bool next(RawRow& row) {
        do {
            row.text.used = 0;
            row.line = input_.line_number();
            if (!input_.append_line(row.text)) {
                if (input_.read_error() == 0) return false;
                input_error(path_, row.line,
                            "cannot be read (" + reason_text(input_.read_error()) + ')');
            }
        } while (
            std::all_of(row.view().begin(), row.view().end(), [](char c) { return is_space(c); }));
        return true;
    }

  private:
    const std::string& path_;
    TextInput input_;
};

// Takes the first word off a text; empty at the end.
std::string_view take_word(std::string_view& text) {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at < end && is_space(*at)) ++at;
    const char* const from = at;
    while (at < end && !is_space(*at)) ++at;
    text = {at, static_cast<std::size_t>(end - at)};
    return {from, static_cast<std::size_t>(at - from)};
}

// The genotypes of one row, bits r of a strip.
class RowPacker {
  public:
    RowPacker(const std::string& path, const std::vector<MarkerInfo>& markers)
        : path_(path), markers_(markers) {}

    void pack(const RawRow& row, int r, PackedStrip& strip) const {
        std::string_view rest = row.view();
        for (std::size_t c = 0; c < kNames; ++c) take_word(rest);
        for (std::size_t j = 0; j < markers_.size(); ++j) {
            const unsigned bits = is_plain(rest) ? plain(rest) : read(rest, row.line, j);
            strip[j] = static_cast<std::uint16_t>(strip[j] | bits << 2 * r);
        }
        if (take_word(rest).empty()) return;
        input_error(path_, row.line,
                    "more columns than the header; " + counted_columns() + " expected");
    }

    [[noreturn]] void fail_short(long line, std::size_t given) const {
        input_error(path_, line,
                    counted(static_cast<long>(kNames + given), "column", "columns") + "; " +
                        counted_columns() + " expected, as in the header");
    }

  private:
    static constexpr std::array<unsigned, 3> kBits = {3, 2, 0};  // of 0, 1 and 2 copies

    // A separator, a digit and a separator behind it.
    static bool is_plain(std::string_view rest) {
        return rest.size() >= 3 && is_space(rest[0]) && rest[1] >= '0' && rest[1] <= '2' &&
               is_space(rest[2]);
    }
    static unsigned plain(std::string_view& rest) {
        const unsigned bits = kBits[static_cast<std::size_t>(rest[1] - '0')];
        rest.remove_prefix(2);
        return bits;
    }

    unsigned read(std::string_view& rest, long line, std::size_t j) const {
        const std::string_view word = take_word(rest);
        if (word == "NA") return 1;
        if (word.size() == 1 && word[0] >= '0' && word[0] <= '2') {
            return kBits[static_cast<std::size_t>(word[0] - '0')];
        }
        if (word.empty()) fail_short(line, j);
        input_error(path_, line,
                    "genotype " + std::string(word) + " of " + markers_[j].name +
                        "; 0, 1, 2 or NA expected");
    }

    std::string counted_columns() const { return std::to_string(kNames + markers_.size()); }

    const std::string& path_;
    const std::vector<MarkerInfo>& markers_;
};

// Rows to columns, sixteen strips at a time. On one thread: nearly all of the time goes into
// fetching the text.
class RawLoader {
  public:
    RawLoader(const std::string& path, const std::vector<MarkerInfo>& markers, int people)
        : lines_(path),
          packer_(path, markers),
          markers_(static_cast<int>(markers.size())),
          left_(people),
          strips_(kStripsAtOnce, packed_strip_for(markers_)) {}

    Genotypes load() {
        const int people = left_;
        const std::size_t stride = packed_size(people);
        LargeArray<unsigned char> columns(stride * static_cast<std::size_t>(markers_));
        lines_.next(row_);  // the header
        for (std::size_t first = 0; first < stride; first += kStripsAtOnce * kStripBytes) {
            std::vector<const PackedStrip*> strips;
            for (PackedStrip& strip : strips_) {
                if (left_ == 0) break;
                pack(strip);
                strips.push_back(&strip);
            }
            store_strips(strips, markers_,
                         {columns.data() + first, stride,
                          std::min(strips.size() * kStripBytes, stride - first)});
        }
        return {people, markers_, std::move(columns)};
    }

  private:
    void pack(PackedStrip& strip) {
        std::fill(strip.begin(), strip.end(), std::uint16_t{0});
        for (int r = 0; r < kStripRows && left_ > 0; ++r, --left_) {
            if (!lines_.next(row_)) packer_.fail_short(row_.line, 0);  // shorter than it was
            packer_.pack(row_, r, strip);
        }
    }

    RawLines lines_;
    RowPacker packer_;
    int markers_;
    int left_;  // rows to be read
    std::vector<PackedStrip> strips_;
    RawRow row_;
};

class RawReader : public CohortReader {
  public:
    RawReader(const StudyFiles& files, Study& study) : path_(files.raw), bim_(files.bim) {
        require_readable(path_);
        study.inputs.push_back({"raw", path_});
        if (!bim_.empty()) study.inputs.push_back({"bim", bim_});
    }

    People people() override {
        RawLines lines(path_);
        RawRow row;
        if (!lines.next(row)) input_error(path_, 0, "is empty; an additive recoding expected");
        markers_ = raw_markers(path_, row.view());
        People people{path_, {}, false};
        while (lines.next(row)) people.all.push_back(person(row));
        if (people.all.empty()) input_error(path_, 0, "no individual; at least one expected");
        people_ = static_cast<int>(people.all.size());
        return people;
    }

    Cohort read(std::span<const int> wanted, MarkerChoice& choice, Study& study) override {
        Cohort cohort;
        study.markers_read = static_cast<long>(markers_.size());
        cohort.genotypes = RawLoader(path_, markers_, people_).load();
        cohort.markers = std::move(markers_);
        if (bim_.empty()) {
            study.notes.emplace_back(
                "Without a .bim all markers are on chromosome 1, at 1, 2, ... in file order.");
        } else {
            place_by_bim(cohort.markers, path_, bim_);
        }
        cohort.rows.assign(wanted.begin(), wanted.end());
        choice.apply(cohort.markers, cohort.columns);
        return cohort;
    }

  private:
    // Also makes sure that the row is long enough for its genotypes, so that no more memory is
    // asked for than the file has bytes.
    Person person(const RawRow& row) const {
        std::string_view rest = row.view();
        std::vector<std::string_view> words;
        for (std::size_t c = 0; c < kNames; ++c) words.push_back(take_word(rest));
        if (rest.size() >= 2 * markers_.size()) return person_of(words, row.line);
        std::size_t given = 0;
        while (!take_word(rest).empty()) ++given;
        RowPacker(path_, markers_).fail_short(row.line, given);
    }

    std::string path_;
    std::string bim_;
    int people_ = 0;
    std::vector<MarkerInfo> markers_;
};

}  // namespace

std::unique_ptr<CohortReader> raw_reader(const StudyFiles& files, Study& study) {
    return std::make_unique<RawReader>(files, study);
}

}  // namespace vort
