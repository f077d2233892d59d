#include "screening/prepared_file.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "common/input_error.h"
#include "common/number_text.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "common/text_input.h"
#include "screening/five_model_test.h"

namespace vort {

namespace {

class PreparedFile {
  public:
    PreparedFile(const std::string& path, Diagnostics& diagnostics)
        : path_(path), input_(path), diagnostics_(diagnostics) {
        if (!input_.is_open()) stop("find error when opening file " + path + '\n');
    }

    std::vector<short> phenotypes(int individuals) {
        std::vector<short> read(static_cast<std::size_t>(individuals));
        std::string_view line;
        input_.line(line);
        for (std::size_t i = 0; i < read.size(); ++i) {
            const std::size_t at = 2 * i;
            if (at >= line.size()) {
                say("phenotypes missing", 1,
                    std::to_string(i) + " phenotypes, " + std::to_string(individuals) +
                        " expected; the others are taken as 0");
                return read;
            }
            read[i] = static_cast<short>(line[at] - '0');
            const bool followed = at + 1 == line.size() || line[at + 1] == ' ';
            if ((line[at] != '0' && line[at] != '1') || !followed) {
                say("prepared phenotypes other than 0 and 1", 1,
                    "0 or 1 and a blank were expected for individual " + std::to_string(i + 1));
            }
        }
        if (line.find_first_not_of(' ', 2 * read.size()) != std::string_view::npos) {
            say("prepared phenotypes too many", 1,
                "more than the " + std::to_string(individuals) + " phenotypes expected");
        }
        return read;
    }

    std::vector<int> ranking(int best, int markers) {
        std::vector<int> read(static_cast<std::size_t>(best));
        for (int& column : read) {
            int count = 0;
            input_.skip_space();
            const long line = input_.line_number();
            int found = 0;
            input_.integer(found);
            for (int c = 0; c < 8; ++c) input_.integer(count);
            if (input_.failed()) {
                say("marker lines that cannot be used", line,
                    "a column and eight counts were expected; column 0 is taken from here on");
                return read;
            }
            if (found < 0 || found >= markers) {
                say("marker lines that cannot be used", line,
                    "a column below " + std::to_string(markers) + " was expected, not " +
                        std::to_string(found) + "; column 0 is taken");
                found = 0;
            }
            column = found;
        }
        return read;
    }

    // A file that fails looks as if it were short.
    void require_sound() {
        if (input_.read_error() == 0) return;
        say("files that could not be read", input_.line_number(),
            "could not be read on (" + reason_text(input_.read_error()) + ')');
        stop("", 1);
    }

  private:
    void say(std::string_view kind, long line, const std::string& text) {
        diagnostics_.say(kind, path_, line, text);
    }

    const std::string& path_;
    TextInput input_;
    Diagnostics& diagnostics_;
};

// Everybody is one cluster where there are none.
std::vector<int> cases_of_clusters(std::span<const short> phenotypes, const Clusters& clusters) {
    std::vector<int> cases(static_cast<std::size_t>(clusters.none() ? 1 : clusters.count()));
    for (std::size_t i = 0; i < phenotypes.size(); ++i) {
        const int c = clusters.none() ? 0 : clusters.of(static_cast<int>(i));
        if (phenotypes[i] == 1) ++cases[static_cast<std::size_t>(c)];
    }
    return cases;
}

}  // namespace

std::string prepared_file_name(const std::string& prefix, int data_set) {
    return prefix + "prepare_data" + std::to_string(data_set) + '_' +
           to_text(fixed(kMissingShare)) + ".txt";
}

void write_prepared_file(const std::string& path, const Genotypes& genotypes,
                         std::span<const short> phenotypes, std::span<const int> best,
                         Diagnostics& diagnostics) {
    remove_file(path);  // a link that has the name, not what it leads to
    OutputFile file(path, OutputFile::Mode::kNew, diagnostics);
    if (!file.is_open()) stop("find error open f_prepare_data_for_VORT \n");
    for (const short phenotype : phenotypes) file << phenotype << ' ';
    file << '\n';
    std::vector<signed char> codes(phenotypes.size());
    for (const int column : best) {
        genotypes.unpack(column, codes.data());
        const MarkerCounts counts = count_genotypes(codes, phenotypes);
        file << column << '\t';
        for (const int count : counts.cases.count) file << count << '\t';
        for (const int count : counts.controls.count) file << count << '\t';
        file << '\n';
    }
    if (file.close()) return;
    remove_file(path);
    stop("", 1);
}

PreparedDataSet read_prepared_file(const std::string& path, int individuals, int best, int markers,
                                   Diagnostics& diagnostics) {
    PreparedFile file(path, diagnostics);
    PreparedDataSet read;
    read.phenotypes = file.phenotypes(individuals);
    read.best = file.ranking(best, markers);
    file.require_sound();
    return read;
}

void require_prepared_for(const std::string& path, std::span<const short> observed,
                          const Clusters& clusters, int best, int markers, bool is_observed) {
    std::ostringstream told;
    told.exceptions(std::ios::badbit);  // what is lost would be taken for nothing told
    Diagnostics diagnostics(told);
    PreparedDataSet read;
    try {
        read =
            read_prepared_file(path, static_cast<int>(observed.size()), best, markers, diagnostics);
    } catch (const Stop& stop) {
        const std::string text = told.str() + stop.text;
        throw InputError{text.substr(0, text.find('\n'))};
    }
    diagnostics.finish();
    const bool same = is_observed ? std::ranges::equal(read.phenotypes, observed)
                                  : cases_of_clusters(read.phenotypes, clusters) ==
                                        cases_of_clusters(observed, clusters);
    if (same && told.str().empty()) return;
    input_error(path, 0,
                std::string("is not of this study; one that --save-prepared made of the same "
                            "individuals and as many best markers") +
                    (clusters.none() ? "" : ", with the same --within,") + " expected");
}

}  // namespace vort
