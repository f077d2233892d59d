#include <algorithm>
#include <nlohmann/json.hpp>

#include "report/html.h"
#include "report/sections.h"
#include "report/wording.h"

namespace vort {
namespace {

constexpr std::size_t kTopMarkers = 10;
constexpr double kGenomeWide = 5e-8;

std::string model_name(const std::string& model) {
    if (model == "ADD") return "additive";
    if (model == "DOM") return "dominant";
    if (model == "REC") return "recessive";
    if (model == "GENO") return "genotype";
    return "none";
}

std::string swatch(const std::string& kind, const std::string& text) {
    return "<li><span class=\"key " + kind + "\" aria-hidden=\"true\"></span>" + escaped(text) +
           "</li>";
}

std::string legend(const ModelView& view, std::optional<double> line, std::size_t data_sets) {
    std::string html = "<ul class=\"legend\">";
    if (!view.weighed.empty()) html += swatch("model", "marker of the model");
    html += swatch("genome", "p = 5e-8, the customary genome-wide level");
    if (line) {
        html += swatch("study", "EMP2 = 0.05, reached at p = " + p_text(*line) +
                                    ": one in twenty permuted data sets has a smaller p anywhere");
    } else {
        html += "<li>" +
                escaped("No line at EMP2 = 0.05: that takes 19 permuted data sets, and there " +
                        std::string(data_sets == 1 ? "is " : "are ") +
                        (data_sets == 0 ? "none" : grouped(long(data_sets)))) +
                "</li>";
    }
    return html + "</ul>";
}

std::vector<double> permuted_minima(std::span<const DataSetRow> data_sets) {
    std::vector<double> minima;
    for (const DataSetRow& row : data_sets) {
        if (row.data_set > 0 && row.smallest_p >= 0) minima.push_back(row.smallest_p);
    }
    std::sort(minima.begin(), minima.end());
    return minima;
}

}  // namespace

// EMP2 = (c + 1)/(B + 1) with c of the minima <= p; c may be (B + 1)/20 - 1 at most.
std::optional<double> study_wide_p(std::span<const DataSetRow> data_sets) {
    const std::vector<double> minima = permuted_minima(data_sets);
    const std::size_t allowed = (minima.size() + 1) / 20;
    if (allowed == 0) return std::nullopt;
    return minima[allowed - 1];
}

void MarkerSection::add(const MarkerRow& row) {
    points_.add(row);
    if (!MarkerPoints::has_point(row)) return;
    genome_wide_ += row.p_min <= kGenomeWide;
    study_wide_ += row.emp2 <= 0.05;
    // The ranks say the same, but are not always known.
    const auto is_better = [](const MarkerRow& one, const MarkerRow& other) {
        return std::pair(one.p_min, one.rank) < std::pair(other.p_min, other.rank);
    };
    if (top_.size() == kTopMarkers && !is_better(row, top_.back().row)) return;
    const auto place =
        std::ranges::find_if(top_, [&](const TopMarker& top) { return is_better(row, top.row); });
    top_.insert(place, TopMarker{row, shortened(row.name, kLongestName), std::string(row.a1),
                                 std::string(row.a2), std::string(row.model)});
    if (top_.size() > kTopMarkers) top_.pop_back();
}

std::string MarkerSection::table(const ModelView& view) const {
    if (top_.empty()) return {};
    using Kind = RowTable::Kind;
    RowTable table(top_.size() == 1 ? "The best marker" : "The best markers",
                   {{"Rank", Kind::kNumber},
                    {"Marker", Kind::kHead},
                    {"p", Kind::kNumber},
                    {"EMP2", Kind::kNumber},
                    {"Smallest under"},
                    {"Chromosome", Kind::kNumber},
                    {"Position", Kind::kNumber},
                    {"A1/A2"},
                    {"In the model"}});
    for (const TopMarker& top : top_) {
        const MarkerRow& row = top.row;
        table.add({row.rank > 0 ? grouped(row.rank) : "\u2013", top.name, p_text(row.p_min),
                   view.permuted() ? p_text(row.emp2) : "\u2013", model_name(top.model),
                   chromosome_name(row.chromosome), grouped(row.position),
                   alleles_text(top.a1, top.a2), row.in_model ? "yes" : ""});
    }
    return table.html();
}

std::string MarkerSection::note(const ModelView& view) const {
    const auto markers = [](long number, const std::string& verbs) {
        const std::size_t bar = verbs.find('|');
        return counted(number, "markers") + " " +
               (number == 1 ? verbs.substr(0, bar) : verbs.substr(bar + 1));
    };
    std::string text = markers(genome_wide_, "reaches|reach") + " p = 5e-8";
    if (view.permuted()) text += "; " + markers(study_wide_, "has|have") + " EMP2 at most 0.05";
    text[0] = text[0] == 'n' ? 'N' : text[0];
    text += ".";
    if (points_.thinned()) {
        text += " Drawn are " + grouped(points_.shown()) + " of " + grouped(points_.seen()) +
                " markers: every one with p below 0.001 and of the model, and of the others, "
                "which would lie upon one another, an even part.";
    }
    return text;
}

void MarkerSection::parts(const ModelView& view, std::span<const DataSetRow> data_sets,
                          PageParts& parts, nlohmann::json& data) const {
    data["permuted"] = view.permuted();
    if (points_.seen() == 0) {
        parts["markers"] = element(
            "p", view.tested() > 0 ? "The rankings were taken from files, so there are no p-values "
                                     "of markers to draw."
                                   : "No marker was tested, so there is nothing to draw.");
        return;
    }
    const std::optional<double> line = study_wide_p(data_sets);
    const std::size_t permuted = permuted_minima(data_sets).size();
    const TopMarker& best = top_.front();
    const std::string heard = "Manhattan plot of " + counted(points_.seen(), "markers") + " on " +
                              counted(points_.chromosomes(), "chromosomes") +
                              ". The smallest p is " + p_text(best.row.p_min) + ", of " +
                              best.name + " on chromosome " + chromosome_name(best.row.chromosome) +
                              ". The best markers are in the table below.";
    parts["markers"] =
        "<p class=\"tools\"><label>Show <select id=\"region\"><option value=\"\">the whole "
        "genome</option></select></label> <button type=\"button\" id=\"reset\">Show all</button> "
        "<span class=\"hint\">Drag across the plot to zoom in, double-click to go "
        "back.</span></p>" +
        legend(view, line, permuted) + chart_figure("manhattan", heard, escaped(note(view))) +
        table(view);
    data["markers"] = points_.columns();
    data["study_wide"] = line ? nlohmann::json(*line) : nlohmann::json();
}

}  // namespace vort
