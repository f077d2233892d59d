#include "study/raw_header.h"

#include <algorithm>
#include <unordered_map>

#include "common/input_error.h"
#include "study/bim_file.h"
#include "study/word_lines.h"

namespace vort {

namespace {

constexpr std::string_view kTitles[] = {"FID", "IID", "PAT", "MAT", "SEX", "PHENOTYPE"};

// "rs1_A" or "rs1_A(/G)".
MarkerInfo marker_of(const std::string& path, std::string_view title, long position) {
    const std::size_t line = title.rfind('_');
    if (line == std::string_view::npos || line == 0 || line + 1 == title.size()) {
        input_error(path, 1, "column " + std::string(title) + "; ID_ALLELE expected");
    }
    std::string_view allele = title.substr(line + 1);
    if (allele == "HET") {
        input_error(path, 1,
                    "column " + std::string(title) +
                        "; counts of an allele alone expected; recode additively, for example by "
                        "plink --recode A");
    }
    std::string other = "0";
    const std::size_t bracket = allele.find("(/");
    if (bracket != std::string_view::npos && allele.back() == ')') {
        other = allele.substr(bracket + 2, allele.size() - bracket - 3);
        allele = allele.substr(0, bracket);
    }
    return {1, std::string(title.substr(0, line)), position, std::string(allele), other};
}

}  // namespace

std::vector<MarkerInfo> raw_markers(const std::string& path, std::string_view titles) {
    std::vector<std::string_view> words;
    const std::size_t count = split_words(titles, static_cast<std::size_t>(-1), words);
    if (count < std::size(kTitles) ||
        !std::equal(std::begin(kTitles), std::end(kTitles), words.begin())) {
        input_error(path, 1,
                    "is no header of an additive recoding; FID IID PAT MAT SEX PHENOTYPE and a "
                    "column for each marker expected");
    }
    if (count == std::size(kTitles)) {
        input_error(path, 1, "no marker; at least one expected");
    }
    std::vector<MarkerInfo> markers;
    markers.reserve(count - std::size(kTitles));
    for (std::size_t c = std::size(kTitles); c < count; ++c) {
        markers.push_back(marker_of(path, words[c], static_cast<long>(markers.size()) + 1));
    }
    return markers;
}

void place_by_bim(std::vector<MarkerInfo>& markers, const std::string& raw,
                  const std::string& bim) {
    const std::vector<MarkerInfo> places = read_bim(bim);
    std::unordered_map<std::string_view, std::vector<int>> by_name;  // the last one first
    for (std::size_t k = places.size(); k-- > 0;) {
        by_name[places[k].name].push_back(static_cast<int>(k));
    }
    for (MarkerInfo& marker : markers) {
        const auto found = by_name.find(marker.name);
        if (found == by_name.end() || found->second.empty()) {
            input_error(bim, 0, "has no marker " + marker.name + "; each of " + raw + " expected");
        }
        const MarkerInfo& place = places[static_cast<std::size_t>(found->second.back())];
        found->second.pop_back();
        if (marker.a1 != place.a1 && marker.a1 != place.a2) {
            input_error(bim, 0,
                        "marker " + marker.name + " has alleles " + place.a1 + " and " + place.a2 +
                            "; " + marker.a1 + " expected, which " + raw + " counts");
        }
        marker.a2 = marker.a1 == place.a1 ? place.a2 : place.a1;
        marker.chromosome = place.chromosome;
        marker.position = place.position;
    }
}

}  // namespace vort
