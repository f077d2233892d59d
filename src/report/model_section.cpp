#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "report/html.h"
#include "report/sections.h"
#include "report/wording.h"

namespace vort {
namespace {

std::string joined_names(const std::vector<Locus>& markers) {
    std::string names;
    for (const Locus& locus : markers) {
        names += (names.empty() ? "" : " \u00d7 ") + locus.name;
    }
    return names;
}

std::string signed_points(double difference) {
    const long points = std::lround(100 * std::abs(difference));
    if (points == 0) return "0";
    return (difference > 0 ? "+" : "\u2212") + std::to_string(points);
}

std::string tally_text(const Tally& people) {
    return grouped(people.cases) + " / " + grouped(people.controls);
}

std::string learner_table(const ModelView& view) {
    using Kind = RowTable::Kind;
    RowTable table("Base learners", {{"", Kind::kHead},
                                     {"Group of people", Kind::kWords},
                                     {"Fitted risk, points", Kind::kNumber},
                                     {"Coefficient", Kind::kNumber},
                                     {"Cases / controls in it", Kind::kNumber},
                                     {"Outside", Kind::kNumber}});
    for (const Learner& learner : view.learners) {
        table.add(
            {"X" + std::to_string(learner.id), rule_text(learner.markers, learner.cells),
             signed_points(learner.risk_difference),
             (learner.coefficient < 0 ? "\u2212" : "") + decimal(std::abs(learner.coefficient), 3),
             tally_text(learner.inside), tally_text(learner.outside)});
    }
    return table.html();
}

std::string marker_table(const ModelView& view) {
    using Kind = RowTable::Kind;
    RowTable table("Markers of the model", {{"Marker", Kind::kHead},
                                            {"Importance", Kind::kNumber},
                                            {"Rank by itself", Kind::kNumber},
                                            {"p by itself", Kind::kNumber},
                                            {"EMP2", Kind::kNumber},
                                            {"Chromosome", Kind::kNumber},
                                            {"Position", Kind::kNumber}});
    for (const WeighedMarker& marker : view.weighed) {
        const Locus& locus = marker.locus;
        table.add({locus.name, decimal(marker.importance, 1) + "\u00a0%", grouped(locus.rank),
                   p_text(marker.p_min), view.permuted() ? p_text(marker.emp2) : "\u2013",
                   chromosome_name(locus.chromosome), grouped(locus.position)});
    }
    return table.html();
}

// One of nine steps of colour, by the difference from the study's share in points: "m4" to "p4".
std::string shade(const Tally& people, double study_share) {
    if (people.all() == 0) return "nobody";
    const double points = 100 * (double(people.cases) / people.all() - study_share);
    static constexpr std::array<double, 4> kSteps = {5, 10, 20, 30};
    const auto step = std::count_if(kSteps.begin(), kSteps.end(),
                                    [&](double least) { return std::abs(points) >= least; });
    if (step == 0) return "z";
    return (points > 0 ? "p" : "m") + std::to_string(step);
}

// Places of a set's cells as its table shows them: pairs as 3 x 3, single markers as a row.
class CellMap {
  public:
    CellMap(const ShownSet& set, const ModelView& view)
        : set_(set), view_(view), rows_(set.markers.size() == 2 ? 3 : 1) {}

    std::string html() const {
        std::string out = "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"" +
                          escaped("Genotypes at " + joined_names(set_.markers)) +
                          "\"><table class=\"cells\"><caption>" +
                          "Share of cases, and cases / controls</caption>" + head() + "<tbody>";
        for (int row = 0; row < rows_; ++row) {
            out += "<tr>" + row_head(row);
            for (int column = 0; column < 3; ++column) out += cell(row, column);
            out += "</tr>";
        }
        return out + "</tbody></table></div>";
    }

  private:
    static std::string genotype_head(const Locus& locus, int copies, const char* scope) {
        const std::string letters = genotype_letters(locus, copies);
        return "<th scope=\"" + std::string(scope) + "\">" +
               (letters.empty() ? "" : escaped(letters) + " ") +
               element("small", copies_text(locus, copies)) + "</th>";
    }

    std::string head() const {
        const Locus& across = set_.markers.back();
        std::string out = "<thead><tr>" + std::string(rows_ == 3 ? "<td></td>" : "") +
                          "<th scope=\"colgroup\" colspan=\"3\">" + escaped(across.name) +
                          "</th></tr><tr>";
        if (rows_ == 3) out += "<th scope=\"col\">" + escaped(set_.markers.front().name) + "</th>";
        for (int copies = 0; copies < 3; ++copies) out += genotype_head(across, copies, "col");
        return out + "</tr></thead>";
    }

    std::string row_head(int row) const {
        if (rows_ == 1) return {};
        return genotype_head(set_.markers.front(), row, "row");
    }

    const GenotypeCell& at(int row, int column) const { return set_.cells[3 * row + column]; }

    bool same_group(int row, int column, int other_row, int other_column) const {
        if (other_row < 0 || other_row >= rows_ || other_column < 0 || other_column > 2) {
            return false;
        }
        return at(row, column).group == at(other_row, other_column).group;
    }

    std::string outline(int row, int column) const {
        std::string classes;
        if (!same_group(row, column, row - 1, column)) classes += " t";
        if (!same_group(row, column, row, column + 1)) classes += " r";
        if (!same_group(row, column, row + 1, column)) classes += " b";
        if (!same_group(row, column, row, column - 1)) classes += " l";
        return classes;
    }

    // By letters in the order in which the table shows the groups: their numbers have gaps.
    std::string group_label(int group) const {
        std::vector<int> seen;
        for (const GenotypeCell& cell : set_.cells) {
            if (cell.group != GenotypeCell::kNobody && std::ranges::count(seen, cell.group) == 0) {
                seen.push_back(cell.group);
            }
        }
        const auto place = std::ranges::find(seen, group) - seen.begin();
        std::string label = std::string("group ") + char('A' + place);
        for (const Learner& learner : view_.learners) {
            if (learner.marker_set == set_.id && learner.group == group) {
                label += ", X" + std::to_string(learner.id);
            }
        }
        return label;
    }

    std::string cell(int row, int column) const {
        const GenotypeCell& here = at(row, column);
        const std::string open =
            "<td class=\"" + shade(here.people, view_.study_share()) + outline(row, column) + "\">";
        const std::string label =
            here.group == GenotypeCell::kNobody ? "" : element("i", group_label(here.group)) + " ";
        if (here.people.all() == 0) return open + label + element("span", "nobody") + "</td>";
        return open + label + element("b", share_text(here.people.cases, here.people.all())) + " " +
               element("span", tally_text(here.people)) + "</td>";
    }

    const ShownSet& set_;
    const ModelView& view_;
    int rows_;
};

std::string set_html(const ShownSet& set, const ModelView& view) {
    std::string sentences;
    int missing = 0;
    for (const Learner& learner : view.learners) {
        if (learner.marker_set != set.id) continue;
        sentences += "<li><b>X" + std::to_string(learner.id) + "</b> " +
                     escaped(learner_sentence(learner)) + "</li>";
        missing = learner.missing;
    }
    std::string html = "<section class=\"set\"><h4>" + escaped(joined_names(set.markers)) +
                       "</h4><div class=\"map\">" + CellMap(set, view).html() + "<div>";
    if (!sentences.empty()) html += "<ul class=\"rules\">" + sentences + "</ul>";
    if (missing > 0) {
        html += element(
            "p",
            counted(missing, "individuals") +
                (missing == 1 ? " without a genotype here is" : " without a genotype here are") +
                " in no cell.",
            "aside");
    }
    return html + "</div></div></section>";
}

std::string intro(const ModelView& view) {
    return element("p",
                   "The model adds up base learners, each a yes-or-no property: belonging to a "
                   "group of genotypes. The fitted risk of an individual, that is, the chance of "
                   "being a case in a study composed like this one, is " +
                       decimal(100 * view.intercept, 0) +
                       " % plus the differences of all groups that the individual is in. A "
                       "difference is in percentage points, the rest of the model being equal.");
}

std::string scale(const ModelView& view) {
    static constexpr std::array<const char*, 9> kShades = {"m4", "m3", "m2", "m1", "z",
                                                           "p1", "p2", "p3", "p4"};
    static constexpr std::array<const char*, 9> kTexts = {
        "\u2212"
        "30",
        "\u2212"
        "20",
        "\u2212"
        "10",
        "\u2212"
        "5",
        "\u00b10",
        "+5",
        "+10",
        "+20",
        "+30"};
    std::string html = "<p>" +
                       escaped(
                           "Colours compare a cell\u2019s share of cases with that of the "
                           "study, " +
                           share_text(view.cases, view.individuals) +
                           ". Heavy borders separate the groups into which the analysis "
                           "has put the genotypes; a group with an X beside it is a base "
                           "learner, the others are what it is compared with.") +
                       "</p><p class=\"scale\" aria-hidden=\"true\"><span>fewer cases</span>";
    for (std::size_t i = 0; i < kShades.size(); ++i) {
        html += "<i class=\"" + std::string(kShades[i]) + "\">" + kTexts[i] + "</i>";
    }
    return html + "<span>more cases, points</span></p>";
}

nlohmann::json bars(const ModelView& view) {
    nlohmann::json learners = nlohmann::json::array(), markers = nlohmann::json::array();
    for (const Learner& learner : view.learners) {
        learners.push_back({{"label", "X" + std::to_string(learner.id)},
                            {"markers", joined_names(learner.markers)},
                            {"value", learner.coefficient},
                            {"text", learner_sentence(learner)}});
    }
    for (const WeighedMarker& marker : view.weighed) {
        markers.push_back({{"label", marker.locus.name}, {"value", marker.importance}});
    }
    return {{"learners", learners}, {"markers", markers}};
}

std::string bars_html(const ModelView& view) {
    std::string coefficients = "Bars of the coefficients of the base learners:";
    for (const Learner& learner : view.learners) {
        coefficients += " X" + std::to_string(learner.id) + " " + decimal(learner.coefficient, 2);
    }
    std::string importance = "Bars of the importance of the markers:";
    for (const WeighedMarker& marker : view.weighed) {
        importance += " " + marker.locus.name + " " + decimal(marker.importance, 1) + " %";
    }
    return "<div class=\"halves\"><div>" + element("h3", "Coefficients of the base learners") +
           chart_figure(
               "coefficients", coefficients,
               "To the right: a higher fitted risk in the group; to the left: a lower one.") +
           "</div><div>" + element("h3", "Importance of the markers") +
           chart_figure("importance", importance,
                        "Per cent of the model\u2019s weight; a pair\u2019s is shared by its two "
                        "markers.") +
           "</div></div>";
}

}  // namespace

void model_parts(const ModelView& view, PageParts& parts, nlohmann::json& data) {
    if (!view.has_model || view.learners.empty()) {
        parts["model"] = element("p", "There is no model to show.");
        return;
    }
    std::string html = intro(view) + bars_html(view) + learner_table(view) + marker_table(view) +
                       element("h3", "Genotypes and risk") + scale(view);
    for (const ShownSet& set : view.sets) html += set_html(set, view);
    parts["model"] = html;
    data["model"] = bars(view);
}

}  // namespace vort
