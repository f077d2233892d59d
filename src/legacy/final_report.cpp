#include "legacy/final_report.h"

#include <algorithm>
#include <iostream>
#include <span>
#include <vector>

#include "common/output_file.h"
#include "ensemble/final_report.h"
#include "legacy/default_objects.h"
#include "legacy/genotype_data.h"
#include "legacy/importance.h"
#include "legacy/on_console.h"

namespace vort {

namespace {

constexpr const char* kReportName = "Final_result.txt";
constexpr int kCodesShown = 10;

OutputFile open_report() {
    return OutputFile(kReportName, OutputFile::Mode::kAppend, default_objects().diagnostics);
}

// The last rank that a base learner has a marker of.
int last_rank(std::span<const BaseLearner> learners) {
    int last = 0;
    for (const BaseLearner& learner : learners) {
        last = std::max({last, learner.marker[0], learner.marker[1]});
    }
    return last;
}

int* listed_markers(int most, std::span<const int> markers) {
    if (most < 1) return new int[1]{-1};
    const std::size_t size = std::max(static_cast<std::size_t>(most), markers.size());
    auto* const list = new int[size + 1]();
    *std::copy(markers.begin(), markers.end(), list) = -1;
    return list;
}

}  // namespace

output_information information_of(const BaseLearner& learner) {
    output_information information;
    information.id = learner.id;
    information.nmarker = learner.markers;
    std::copy(learner.marker.begin(), learner.marker.end(), information.marker.begin() + 1);
    information.ncell = static_cast<int>(learner.cells.size());
    std::copy(learner.cells.begin(), learner.cells.end(), information.cell.begin());
    information.beta = learner.beta;
    information.importance = learner.importance;
    std::copy(learner.cluster.begin(), learner.cluster.end(), information.cluster.begin());
    information.average = learner.average;
    return information;
}

BaseLearner learner_of(const output_information& information) {
    BaseLearner learner;
    learner.id = information.id;
    learner.markers = information.nmarker;
    std::copy_n(information.marker.begin() + 1, 2, learner.marker.begin());
    learner.cells.assign(information.cell.begin(), information.cell.begin() + information.ncell);
    learner.beta = information.beta;
    learner.importance = information.importance;
    std::copy_n(information.cluster.begin(), learner.cluster.size(), learner.cluster.begin());
    learner.average = information.average;
    return learner;
}

void begin_report(int nm, const int* first_codes, const int* last_codes) {
    filecopy("parameter.txt", kReportName);
    OutputFile file = open_report();
    const int shown = std::min(kCodesShown, nm);
    file << "The first ten marker of first individual ";
    for (int j = 0; j < shown; ++j) file << first_codes[j] << ' ';
    file << "\nThe first ten marker of last  individual ";
    for (int j = 0; j < shown; ++j) file << last_codes[j] << ' ';
    file << '\n';
}

int* Final_result(int r, int /*Sample*/, int /*Marker*/, char** X, short** phenotypes,
                  int** rankings, int /*Permutation*/, int /*Replication*/, int individuals,
                  int ranked, int n_bl, output_information* learners, int* importance_list,
                  int marker_count, int* marker_list, int* first_codes, int* last_codes) {
    Result result;
    for (int b = 0; b < n_bl; ++b) {
        // A pair's group without cells reads as its first cell, from here on.
        if (learners[b].nmarker == 2) learners[b].ncell = std::max(learners[b].ncell, 1);
        result.learners.push_back(learner_of(learners[b]));
    }
    result.markers.assign(marker_list, marker_list + marker_count);
    result.importance.assign(importance_list, importance_list + marker_count);
    const int columns = last_rank(result.learners);
    for (int j = 0; j < columns; ++j) result.columns.push_back(j);
    const Genotypes genotypes =
        packed_columns(X, individuals, {rankings[r], static_cast<std::size_t>(columns)});
    Settings settings;
    settings.report.individuals = individuals;
    const std::span<const short> observed(phenotypes[r], static_cast<std::size_t>(individuals));

    begin_report(ranked, first_codes, last_codes);
    open_report() << '\n'
                  << on_console([&](Transcript& console) {
                         return report_body({settings, genotypes, observed}, result, console);
                     });
    return listed_markers(ranked, result.markers);
}

}  // namespace vort
