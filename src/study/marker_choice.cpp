#include "study/marker_choice.h"

#include <algorithm>

#include "study/cohort.h"
#include "study/word_lines.h"

namespace vort {

void MarkerChoice::NameList::read(const std::string& path, const std::string& role, Study& study) {
    if (path.empty()) return;
    WordLines lines(path, "marker names", static_cast<std::size_t>(-1));
    while (lines.next()) {
        for (const std::string_view name : lines.words()) met.emplace(name, false);
    }
    study.inputs.push_back({role, path});
}

bool MarkerChoice::NameList::holds(const std::string& name) {
    const auto found = met.find(name);
    if (found == met.end()) return false;
    found->second = true;
    return true;
}

void MarkerChoice::NameList::tell_unmet(Study& study) const {
    const auto unmet =
        std::count_if(met.begin(), met.end(), [](const auto& entry) { return !entry.second; });
    if (unmet == 0) return;
    study.notes.push_back(counted(unmet, "name", "names") + " of " + option +
                          (unmet == 1 ? " is" : " are") + " not among the markers.");
}

MarkerChoice::MarkerChoice(const StudyRequest& request, Study& study)
    : only_(request.only_markers),
      chr_(request.filters.chromosomes),
      extracts_(!request.filters.extract.empty()),
      excludes_(!request.filters.exclude.empty()) {
    if (chr_.empty()) {
        chromosomes_.set();
    } else {
        chromosomes_ = chromosomes_of(chr_);
    }
    extract_.read(request.filters.extract, "extract", study);
    exclude_.read(request.filters.exclude, "exclude", study);
}

bool MarkerChoice::takes(const MarkerInfo& marker) {
    if (only_ && !only_->contains(marker.name)) return false;
    long* fault = nullptr;
    if (marker.chromosome == 0) {
        fault = &no_chromosome_;
    } else if (marker.position < 0) {
        fault = &no_position_;
    } else if (!chromosomes_[static_cast<std::size_t>(marker.chromosome)]) {
        fault = &by_chr_;
    } else if (extracts_ && !extract_.holds(marker.name)) {
        fault = &by_extract_;
    } else if (excludes_ && exclude_.holds(marker.name)) {
        fault = &by_exclude_;
    }
    if (fault != nullptr) ++*fault;
    return fault == nullptr;
}

void MarkerChoice::apply(std::vector<MarkerInfo>& markers, std::vector<int>& columns) {
    columns.clear();
    for (std::size_t j = 0; j < markers.size(); ++j) {
        if (!takes(markers[j])) continue;
        if (columns.size() < j) markers[columns.size()] = std::move(markers[j]);
        columns.push_back(static_cast<int>(j));
    }
    markers.resize(columns.size());
}

void MarkerChoice::tell(Study& study) const {
    const auto out = [&](long count, std::string why) {
        leave_out(study, LeftOut::What::kMarkers, count, std::move(why));
    };
    out(no_chromosome_, "not on chromosomes 1 to 26");
    out(no_position_, "negative position");
    out(by_chr_, "--chr " + chr_);
    out(by_extract_, "--extract");
    out(by_exclude_, "--exclude");
    extract_.tell_unmet(study);
    exclude_.tell_unmet(study);
}

}  // namespace vort
