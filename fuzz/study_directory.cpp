// A study directory: sections parameters, data and markers, and those of study_case.h. What
// `vort run` accepts without a filter, the bare program reads the same way.
#include <algorithm>
#include <sstream>

#include "common/settings.h"
#include "genotypes/marker_table.h"
#include "genotypes/text_data_set.h"
#include "support/harness.h"
#include "support/study_case.h"

namespace vort::fuzz {

namespace {

// As far as the bare program tells of rows, it would not be accepted at all.
void require_same_when_bare(const Study& study, const ScreeningSettings& settings,
                            const std::string& folder) {
    std::ostringstream told;
    Diagnostics diagnostics(told);
    Transcript nobody(false);
    const DataSet data = load_text_data_set({folder + '/' + settings.input, settings.individuals,
                                             settings.markers, settings.head, settings.record},
                                            1, diagnostics, nobody);
    require(told.str().empty(), "what is accepted the bare program does not remark on");
    require(data.phenotypes == study.phenotypes, "both see the same phenotypes");
    require(data.genotypes.markers() == study.genotypes.markers(), "both see the same markers");
    for (int j = 0; j < settings.markers; ++j) {
        for (int i = 0; i < settings.individuals; ++i) {
            require(data.genotypes.code(i, j) == study.genotypes.code(i, j),
                    "both see the same genotypes");
        }
    }
}

// Where nothing was left out, replaced or sorted.
bool is_as_it_lies(const Study& study, const StudyRequest& request) {
    const auto sorted = [](const std::string& note) {
        return note.find("out of order") != std::string::npos;
    };
    return study.left_out.empty() && request.phenotype.file.empty() &&
           std::ranges::none_of(study.notes, sorted);
}

void run(std::string_view text) {
    static Files files;
    static const std::string folder = files.folder("study");
    const Sections input(text);
    StudyRequest request = request_for(input, files);
    request.files.format = StudyFormat::kDirectory;
    request.files.directory = folder;
    files.put("study/parameter.txt", input["parameters"]);
    files.put("study/dat1.txt", input["data"]);
    files.put("study/Chromosome_SNP_Name.txt", input["markers"]);
    const Settings settings = settings_of(parse_parameters(std::string(input["parameters"])));
    // Of all files only those of this input.
    if (settings.screening.input.find('/') != std::string::npos) return;

    const auto study = check_study(request, files);
    if (!study || !is_as_it_lies(*study, request)) return;
    require_same_when_bare(*study, settings.screening, folder);
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
