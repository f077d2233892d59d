#include "prediction/marker_match.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <unordered_map>

#include "study/word_lines.h"

namespace vort {

namespace {

struct Alleles {
    std::string a1, a2;
};

bool is_known(std::string_view allele) {
    return !allele.empty() && allele != "0" && allele != ".";
}

// A, C, G and T in capitals, whatever else as it is.
std::string allele_of(const std::string& text) {
    const std::size_t base = std::string_view("acgt").find(text.size() == 1 ? text[0] : ' ');
    return base == std::string_view::npos ? text : std::string(1, "ACGT"[base]);
}

Alleles alleles_of(const MarkerInfo& marker) {
    return {allele_of(marker.a1), allele_of(marker.a2)};
}

// Of the other strand; what is no base stays.
std::string complement(const std::string& allele) {
    const std::size_t base = std::string_view("ACGT").find(allele.size() == 1 ? allele[0] : ' ');
    return base == std::string_view::npos ? allele : std::string(1, "TGCA"[base]);
}

Alleles complement(const Alleles& alleles) {
    return {complement(alleles.a1), complement(alleles.a2)};
}

Alleles swapped(const Alleles& alleles) {
    return {alleles.a2, alleles.a1};
}

bool are_known(const Alleles& alleles) {
    return is_known(alleles.a1) && is_known(alleles.a2);
}

bool has_any(const Alleles& alleles) {
    return is_known(alleles.a1) || is_known(alleles.a2);
}

// Nothing against it, and something for it.
bool agree(const Alleles& one, const Alleles& other) {
    const bool first = is_known(one.a1) && is_known(other.a1);
    const bool second = is_known(one.a2) && is_known(other.a2);
    if ((first && one.a1 != other.a1) || (second && one.a2 != other.a2)) return false;
    return first || second;
}

bool is_own_complement(const Alleles& alleles) {
    return are_known(alleles) && complement(alleles.a1) == alleles.a2;
}

AlleleFit fit_of(const Alleles& model, const Alleles& here) {
    if (!has_any(model) || !has_any(here)) return AlleleFit::kNameless;
    if (agree(model, here)) return AlleleFit::kSame;
    if (agree(model, swapped(here))) return AlleleFit::kSwapped;
    if (!are_known(model)) return AlleleFit::kOther;
    const Alleles flipped = complement(here);
    if (agree(model, flipped)) return AlleleFit::kFlipped;
    if (agree(model, swapped(flipped))) return AlleleFit::kFlippedSwapped;
    return AlleleFit::kOther;
}

bool is_at(const MarkerInfo& one, const MarkerInfo& other) {
    return one.chromosome == other.chromosome && one.position == other.position;
}

MarkerMatch match_of(const MarkerInfo& model, const MarkerInfo& here, int column, bool places) {
    const Alleles alleles = alleles_of(model);
    MarkerMatch match{fit_of(alleles, alleles_of(here)), column};
    match.no_strand = match.found() && is_own_complement(alleles);
    match.elsewhere = places && !is_at(model, here);
    return match;
}

MarkerMatch best_of(const MarkerInfo& model, std::span<const MarkerInfo> study,
                    const std::vector<int>& columns, bool places) {
    const auto match_with = [&](int column) {
        return match_of(model, study[static_cast<std::size_t>(column)], column, places);
    };
    if (columns.size() == 1) return match_with(columns.front());
    MarkerMatch only{AlleleFit::kTwice};
    for (const int column : columns) {
        const MarkerMatch match = match_with(column);
        if (!match.found() || match.elsewhere) continue;
        if (only.found()) return {AlleleFit::kTwice};
        only = match;
    }
    return only;
}

std::string alleles_text(const MarkerInfo& marker) {
    const auto text = [](const std::string& allele) { return is_known(allele) ? allele : "?"; };
    return text(marker.a1) + '/' + text(marker.a2);
}

std::string place_text(const MarkerInfo& marker) {
    return std::to_string(marker.chromosome) + ':' + std::to_string(marker.position);
}

// Sentences about those of the matches of which something holds.
class Teller {
  public:
    Teller(std::span<const MarkerInfo> model, std::span<const MarkerInfo> study,
           std::span<const MarkerMatch> matches)
        : model_(model), study_(study), matches_(matches) {}

    using Holds = std::function<bool(const MarkerMatch&)>;
    using Text = std::function<std::string(const MarkerInfo&)>;

    // "2 markers WHAT (rs1: A/G in the model, A/C here; ...)CONSEQUENCE."
    void tell(const Holds& holds, std::string_view one, std::string_view many,
              std::string_view consequence, const Text& shown = nullptr) {
        constexpr long kNamed = 5;
        long count = 0;
        std::string named;
        for (std::size_t k = 0; k < matches_.size(); ++k) {
            if (!holds(matches_[k]) || ++count > kNamed) continue;
            named.append(named.empty() ? "" : shown ? "; " : ", ").append(model_[k].name);
            if (!shown) continue;
            named.append(": ").append(shown(model_[k])).append(" in the model, ");
            named.append(shown(study_[static_cast<std::size_t>(matches_[k].column)]));
            named.append(" here");
        }
        if (count == 0) return;
        if (count > kNamed) named += ", ...";
        std::string note = counted(count, "marker of the model ", "markers of the model ");
        note.append(count == 1 ? one : many).append(" (").append(named).append(")");
        notes_.push_back(note.append(consequence).append("."));
    }

    void tell_fit(AlleleFit fit, std::string_view one, std::string_view many,
                  std::string_view consequence, const Text& shown = nullptr) {
        tell([fit](const MarkerMatch& match) { return match.fit == fit; }, one, many, consequence,
             shown);
    }

    std::vector<std::string> take() { return std::move(notes_); }

  private:
    std::span<const MarkerInfo> model_;
    std::span<const MarkerInfo> study_;
    std::span<const MarkerMatch> matches_;
    std::vector<std::string> notes_;
};

bool is_flipped(const MarkerMatch& match) {
    return match.fit == AlleleFit::kFlipped || match.fit == AlleleFit::kFlippedSwapped;
}

}  // namespace

std::vector<MarkerMatch> match_markers(std::span<const MarkerInfo> model,
                                       std::span<const MarkerInfo> study, bool places) {
    std::unordered_map<std::string_view, std::vector<int>> by_name;
    for (const MarkerInfo& marker : model) by_name[marker.name];
    for (std::size_t j = 0; j < study.size(); ++j) {
        const auto wanted = by_name.find(study[j].name);
        if (wanted != by_name.end()) wanted->second.push_back(static_cast<int>(j));
    }
    std::vector<MarkerMatch> matches;
    matches.reserve(model.size());
    for (const MarkerInfo& marker : model) {
        const std::vector<int>& columns = by_name[marker.name];
        matches.push_back(columns.empty() ? MarkerMatch{}
                                          : best_of(marker, study, columns, places));
    }
    return matches;
}

std::string fit_text(AlleleFit fit) {
    switch (fit) {
        case AlleleFit::kSame:
            return "same";
        case AlleleFit::kSwapped:
            return "swapped";
        case AlleleFit::kFlipped:
            return "flipped";
        case AlleleFit::kFlippedSwapped:
            return "flipped and swapped";
        case AlleleFit::kNameless:
            return "alleles not known";
        case AlleleFit::kOther:
            return "other alleles";
        case AlleleFit::kTwice:
            return "name not unique";
        case AlleleFit::kAbsent:
            break;
    }
    return "not found";
}

std::vector<std::string> match_notes(std::span<const MarkerInfo> model,
                                     std::span<const MarkerInfo> study,
                                     std::span<const MarkerMatch> matches) {
    Teller teller(model, study, matches);
    const auto is_swapped = [](const MarkerMatch& match) { return match.counts_other(); };
    teller.tell_fit(AlleleFit::kAbsent, "is not here", "are not here", "");
    teller.tell_fit(AlleleFit::kTwice, "is here more than once", "are here more than once",
                    ", and place and alleles do not tell which it is; counted as not found");
    teller.tell_fit(AlleleFit::kOther, "has other alleles here", "have other alleles here",
                    ", which cannot be matched; counted as not found", alleles_text);
    teller.tell(is_flipped, "is on the other strand here", "are on the other strand here",
                "; read on the model's strand", alleles_text);
    teller.tell(is_swapped, "counts the other allele here", "count the other allele here",
                "; read as the model counts");
    teller.tell([](const MarkerMatch& match) { return match.no_strand; }, "has alleles A/T or C/G",
                "have alleles A/T or C/G",
                ", which do not tell the strand; taken to be on the model's");
    teller.tell_fit(AlleleFit::kNameless, "has no alleles to go by", "have no alleles to go by",
                    "; taken to count the same allele as the model");
    teller.tell([](const MarkerMatch& match) { return match.found() && match.elsewhere; },
                "is at another place here", "are at another place here",
                ", as in another build of the genome; the name decides", place_text);
    return teller.take();
}

}  // namespace vort
