// Genotypes lie column after column and are written row after row: sixteen rows at a time, so that
// each visit to a column yields four bytes of it.
#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <unordered_set>

#include "common/characters.h"
#include "common/file_descriptor.h"
#include "common/number_text.h"
#include "common/path_names.h"
#include "common/transcript.h"
#include "study/study_directory.h"

namespace vort {

namespace {

class CheckedFile {
  public:
    explicit CheckedFile(std::string path)
        : path_(std::move(path)), file_(path_, O_WRONLY | O_CREAT | O_TRUNC) {
        check(file_.is_open());
    }

    void write(std::string_view text) {
        constexpr std::size_t kAtOnce = std::size_t{1} << 16;
        pending_.append(text);
        if (pending_.size() >= kAtOnce) hand_on();
    }
    void close() {
        hand_on();
        check(file_.close());
    }

  private:
    void hand_on() {
        check(file_.write(pending_));
        pending_.clear();
    }
    void check(bool done) const {
        if (done) return;
        throw std::runtime_error(path_ + ": cannot be written (" + std::strerror(file_.error()) +
                                 ')');
    }

    std::string path_;
    FileDescriptor file_;
    std::string pending_;
};

// One word, whatever the name.
std::string word(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return is_space(c); }, '_');
    return name.empty() ? "." : name;
}

std::string identifier(const Individual& individual) {
    const bool one = individual.family == individual.id || individual.family == "0";
    return word(one ? individual.id : individual.family + '_' + individual.id);
}

constexpr int kRowsAtOnce = 16;

// The text of consecutive rows, behind their phenotypes.
class RowTexts {
  public:
    RowTexts(const Genotypes& genotypes, int first, int rows) : rows_(rows) {
        constexpr std::size_t kLongest = 4;  // characters written for a genotype
        const auto markers = static_cast<std::size_t>(genotypes.markers());
        for (int r = 0; r < rows_; ++r) texts_[at(r)].resize(markers * 3 + kLongest);
        for (int j = 0; j < genotypes.markers(); ++j) {
            const auto column = genotypes.column(j).subspan(static_cast<std::size_t>(first) / 4);
            for (int r = 0; r < rows_; ++r) {
                add(at(r), column[at(r) / 4] >> 2 * (r % 4) & 3);
            }
        }
    }

    std::string_view operator[](int r) const { return {texts_[at(r)].data(), used_[at(r)]}; }

  private:
    static std::size_t at(int r) { return static_cast<std::size_t>(r); }

    void add(std::size_t r, int bits) {
        static constexpr char kTexts[] = " 2\0\0 -1\0 1\0\0 0\0";
        std::memcpy(texts_[r].data() + used_[r], kTexts + 4 * bits, 4);
        used_[r] += bits == 1 ? 3 : 2;
    }

    int rows_;
    std::array<std::string, kRowsAtOnce> texts_;
    std::array<std::size_t, kRowsAtOnce> used_{};
};

void write_data_set(const Study& study, const std::string& path) {
    CheckedFile file(path);
    file.write("ID Status");
    for (const MarkerInfo& marker : study.markers) file.write(' ' + word(marker.name));
    file.write("\n");
    for (int first = 0; first < study.genotypes.individuals(); first += kRowsAtOnce) {
        const int rows = std::min(kRowsAtOnce, study.genotypes.individuals() - first);
        const RowTexts texts(study.genotypes, first, rows);
        for (int r = 0; r < rows; ++r) {
            const auto i = static_cast<std::size_t>(first) + static_cast<std::size_t>(r);
            file.write(identifier(study.individuals[i]) + (study.phenotypes[i] == 1 ? " 1" : " 0"));
            file.write(texts[r]);
            file.write("\n");
        }
    }
    file.close();
}

void write_marker_table(const Study& study, const std::string& path) {
    CheckedFile file(path);
    for (const MarkerInfo& marker : study.markers) {
        file.write(std::to_string(marker.chromosome) + '\t' + word(marker.name) + '\n');
    }
    file.close();
}

}  // namespace

long shared_identifiers(const Study& study) {
    std::unordered_set<std::string> seen;
    long shared = 0;
    for (const Individual& individual : study.individuals) {
        shared += seen.insert(identifier(individual)).second ? 0 : 1;
    }
    return shared;
}

std::string parameter_text(const StudyParameters& parameters, int individuals, int markers) {
    Transcript text(true);
    text << "Inputfile\t\t\t\t\tdat1.txt\n"
         << "Head\t\t\t\t\t\t\t1\n"
         << "Recorder_num\t\t\t\t\t1\n"
         << "Sample_size\t\t\t\t\t" << individuals << '\n'
         << "Number_of_markers\t\t\t" << markers << '\n'
         << "Symbol_of_missing_Gentype\t-1\n"
         << "Max_retain\t\t\t\t\t" << parameters.max_retain << '\n'
         << "FDR_cutoff_for_candidate_locus_combinations\t" << general(parameters.fdr) << '\n'
         << "Number_of_permutation\t\t" << parameters.permutations << '\n'
         << "How_many_imputation_to_deal_with_missing\t\t\t10\n"
         << "Best_m\t\t\t\t\t\t" << parameters.best_m << '\n';
    return std::string(text.text());
}

void write_study_directory(const Study& study, const std::string& parameter_text,
                           const std::string& folder) {
    write_data_set(study, path_in(folder, "dat1.txt"));
    write_marker_table(study, path_in(folder, "Chromosome_SNP_Name.txt"));
    CheckedFile file(path_in(folder, "parameter.txt"));
    file.write(parameter_text);
    file.close();
}

}  // namespace vort
