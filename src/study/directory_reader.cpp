// A study directory. The data set is read by the reader that the bare program uses; what that one
// would repair or guess at is an error here.
#include <filesystem>
#include <sstream>

#include "common/characters.h"
#include "common/input_error.h"
#include "common/path_names.h"
#include "common/stop.h"
#include "genotypes/text_data_set.h"
#include "study/chromosome_names.h"
#include "study/cohort.h"
#include "study/study_parameters.h"
#include "study/word_lines.h"

namespace vort {

namespace {

// Identifiers and phenotypes, row by row, as the reader of the data set finds them.
class RowNames {
  public:
    RowNames(const std::string& path, const ScreeningSettings& settings)
        : path_(path), has_name_(settings.record == 1), input_(path) {
        require_open(input_, path_);
        if (settings.head != 1) return;
        std::string title;
        const int titles = settings.markers + (has_name_ ? 2 : 1);
        for (int j = 0; j < titles && input_.good(); ++j) input_.word(title);
    }

    // Person i, from 0; false at the end of the file.
    bool next(int i, Person& person) {
        std::string& name = person.name.id;
        name = std::to_string(i + 1);
        if (has_name_) input_.word(name);
        person.name.family = name;
        input_.skip_space();
        person.line = input_.line_number();
        if (!input_.word(person.status)) return false;
        if (person.status != "0" && person.status != "1") {
            input_error(path_, person.line,
                        "phenotype " + person.status + "; 0 (control) or 1 (case) expected");
        }
        std::string_view genotypes;
        input_.line(genotypes);
        return true;
    }

    long line() const { return input_.line_number(); }

  private:
    const std::string& path_;
    bool has_name_;
    TextInput input_;
};

// The markers of a directory's table; positions count from 1 on each chromosome.
std::vector<MarkerInfo> read_marker_table(const std::string& path, int expected) {
    std::vector<MarkerInfo> markers;
    std::array<long, kChromosomeMT + 1> on_chromosome{};
    WordLines lines(path, "a chromosome and a name", 2);
    while (lines.next()) {
        lines.require(2);
        const int chromosome = chromosome_of(lines[0]);
        const long position = ++on_chromosome[static_cast<std::size_t>(chromosome)];
        markers.push_back({chromosome, std::string(lines[1]), position, ".", "."});
    }
    if (markers.size() == static_cast<std::size_t>(expected)) return markers;
    input_error(path, 0,
                counted(static_cast<long>(markers.size()), "marker", "markers") + "; " +
                    std::to_string(expected) + " expected, as Number_of_markers says");
}

// The first line that tells of a row, without what the bare program makes of it.
void require_nothing_told(const std::string& told, std::string path) {
    make_visible(path);  // as it is told
    std::istringstream lines(told);
    for (std::string line; std::getline(lines, line);) {
        const bool has_line = line.size() > path.size() + 1 && line.starts_with(path + ':') &&
                              line[path.size() + 1] != ' ';
        if (has_line) throw InputError{line.substr(0, line.rfind("; "))};
    }
}

class DirectoryReader : public CohortReader {
  public:
    DirectoryReader(const std::string& folder, int threads, Study& study)
        : folder_(folder), threads_(threads) {
        settings_ = read_study_parameters(path_in(folder_, "parameter.txt"), study).screening;
        data_ = path_in(folder_, settings_.input);
        study.inputs.push_back({"data set", data_});
        require_room();
    }

    People people() override {
        People people{data_, {}, true};
        RowNames rows(data_, settings_);
        Person person;
        for (int i = 0; i < settings_.individuals; ++i) {
            if (!rows.next(i, person)) {
                input_error(data_, rows.line(),
                            counted(i, "row", "rows") + "; " +
                                std::to_string(settings_.individuals) +
                                " expected, as Sample_size says");
            }
            people.all.push_back(person);
        }
        return people;
    }

    Cohort read(std::span<const int> wanted, MarkerChoice& choice, Study& study) override {
        const std::string table = path_in(folder_, "Chromosome_SNP_Name.txt");
        study.inputs.push_back({"marker table", table});
        Cohort cohort;
        cohort.markers = read_marker_table(table, settings_.markers);
        study.markers_read = static_cast<long>(cohort.markers.size());
        study.notes.emplace_back(
            "The study directory tells no positions and alleles; the markers of a chromosome are "
            "at 1, 2, ... in file order.");
        cohort.genotypes = load_genotypes();
        cohort.rows.assign(wanted.begin(), wanted.end());
        choice.apply(cohort.markers, cohort.columns);
        return cohort;
    }

  private:
    // A genotype takes a character at least, so the sizes cannot ask for much more memory than the
    // file has bytes.
    void require_room() const {
        std::error_code failure;
        if (std::filesystem::is_other(data_, failure)) {
            input_error(data_, 0, "is a pipe or a device; a file expected, which is read twice");
        }
        require_readable(data_);
        const auto size = std::filesystem::file_size(data_, failure);
        const std::uintmax_t least = static_cast<std::uintmax_t>(settings_.individuals) *
                                     (static_cast<std::uintmax_t>(settings_.markers) + 1);
        if (failure || size >= least) return;
        input_error(data_, 0,
                    std::to_string(size) + " bytes; at least " + std::to_string(least) +
                        " expected for " + std::to_string(settings_.individuals) +
                        " individuals and " + std::to_string(settings_.markers) +
                        " markers, as parameter.txt says");
    }

    Genotypes load_genotypes() const {
        std::ostringstream told;
        told.exceptions(std::ios::badbit);  // what is lost would be taken for nothing told
        try {
            Diagnostics diagnostics(told);
            Transcript nobody(false);
            DataSet data = load_text_data_set(
                {data_, settings_.individuals, settings_.markers, settings_.head, settings_.record},
                threads_, diagnostics, nobody);
            require_nothing_told(told.str(), data_);
            return std::move(data.genotypes);
        } catch (const Stop&) {
            require_nothing_told(told.str(), data_);
            input_error(data_, 0, "cannot be read");
        }
    }

    std::string folder_;
    int threads_;
    ScreeningSettings settings_;
    std::string data_;
};

}  // namespace

std::unique_ptr<CohortReader> directory_reader(const StudyFiles& files, int threads, Study& study) {
    return std::make_unique<DirectoryReader>(files.directory, threads, study);
}

}  // namespace vort
