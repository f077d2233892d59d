// A golden case as the analysis gets it.
#pragma once

#include <string>
#include <vector>

#include "genotypes/text_data_set.h"
#include "support/temporary_folder.h"
#include "support/told.h"
#include "vort/analysis.h"

namespace vort::testing {

inline const std::vector<std::string> kGoldenCases = {
    "plain",    "missing", "linked", "no-permutation", "quantitative",
    "no-model", "small",   "wide",   "odd-parameters"};

struct GoldenStudy {
    explicit GoldenStudy(const std::string& name, int threads = 1)
        : folder(std::string(VORT_TEST_DATA) + "/golden/" + name + '/'),
          settings(settings_of(parse_parameters(read_file(folder + "parameter.txt")))) {
        const ScreeningSettings& asked = settings.screening;
        Told told;
        Transcript text(false);
        DataSet data = load_text_data_set(
            {folder + asked.input, asked.individuals, asked.markers, asked.head, asked.record},
            threads, told.diagnostics, text);
        study = {std::move(data.genotypes), std::move(data.phenotypes),
                 MarkerTable::from_file(folder + "Chromosome_SNP_Name.txt", asked.markers)};
    }

    std::string expected(const std::string& name) const {
        return read_file(folder + "expected/" + name);
    }

    std::string folder;
    Settings settings;
    StudyData study;
};

}  // namespace vort::testing
