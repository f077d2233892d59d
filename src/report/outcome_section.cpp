#include "common/path_names.h"
#include "report/html.h"
#include "report/sections.h"
#include "report/wording.h"

namespace vort {
namespace {

// p = 0 says no more than that it is below one in the number of data sets.
std::string overall_p_text(const ModelView& view) {
    if (view.stronger == 0) return "below 1 in " + grouped(view.permutations);
    return p_text(view.p);
}

std::string permuted_sets(long number) {
    return number == 1 ? "the one permuted data set" : grouped(number) + " permuted data sets";
}

std::string headline_of_model(const ModelView& view, long better) {
    if (!view.permuted()) return "A model was found, and nothing yet to hold it against";
    if (view.permutations == 1) {
        return better == 1 ? "The model found here does better than the one permuted data set"
                           : "The model found here does no better than the one permuted data set";
    }
    if (better == 0) {
        return "The model found here does no better than any of " +
               permuted_sets(view.permutations);
    }
    if (better == view.permutations) {
        return "The model found here does better than all " + permuted_sets(view.permutations);
    }
    return "The model found here does better than " + grouped(better) + " of " +
           permuted_sets(view.permutations);
}

std::string headline(const ModelView& view, long better) {
    if (view.tested() <= 0) return "No marker could be tested";
    if (!view.has_model) return "No model was found in this study";
    return headline_of_model(view, better);
}

std::string interval_text(const ModelView& view) {
    if (view.stronger == 0) return "95 % interval up to " + p_text(view.p_high);
    return "95 % interval " + p_text(view.p_low) + " to " + p_text(view.p_high);
}

std::string why_nothing(const ModelView& view) {
    if (view.markers == 0) return "No marker was left to analyse.";
    if (view.tested() <= 0) {
        const std::string all = view.markers == 1
                                    ? "The only marker misses"
                                    : "All " + counted(view.markers, "markers") + " miss";
        return all + " genotypes in more than 5 % of the cases or of the controls.";
    }
    return "No marker and no pair of markers stood out enough to enter a model, or none of them "
           "explained anything. The overall p-value is 1.";
}

std::string verdict(const ModelView& view) {
    if (view.p > 0.05) {
        return "Chance alone does as well often enough: this model is no evidence that its markers "
               "have to do with the disease.";
    }
    if (view.p_high > 0.05) {
        return "Chance alone seldom does as well, but there are too few permuted data sets to be "
               "sure of it: the interval reaches beyond 0.05. More of them would narrow it.";
    }
    return "Chance alone seldom does as well: something in these markers goes with being a case. "
           "Which of them it is, the p-value does not say; it belongs to the model as a whole.";
}

// "Of its weight rs1 has 41 %, rs2 22 % and 3 more markers 37 %."
std::string markers_of_model(const ModelView& view) {
    constexpr std::size_t kNamed = 5;
    std::vector<std::pair<std::string, double>> shares;
    for (std::size_t i = 0; i < view.weighed.size(); ++i) {
        const WeighedMarker& marker = view.weighed[i];
        if (i < kNamed) {
            shares.emplace_back(marker.locus.name, marker.importance);
        } else if (i == kNamed) {
            const std::size_t more = view.weighed.size() - kNamed;
            shares.emplace_back(
                grouped(long(more)) + (more == 1 ? " more marker" : " more markers"),
                marker.importance);
        } else {
            shares.back().second += marker.importance;
        }
    }
    std::string text = "Of its weight ";
    for (std::size_t i = 0; i < shares.size(); ++i) {
        if (i > 0) text += i + 1 == shares.size() ? " and " : ", ";
        text += shares[i].first + (i == 0 ? " has\u00a0" : "\u00a0") +
                decimal(shares[i].second, 0) + "\u00a0%";
    }
    return shares.empty() ? "" : text + ".";
}

std::string lede(const ModelView& view) {
    if (view.tested() <= 0 || !view.has_model) {
        return element("p", why_nothing(view), "lede");
    }
    if (!view.permuted()) {
        return element("p",
                       "The study was analysed without permuted data sets. A search like this one "
                       "finds a model in almost any data, so without them there is no p-value and "
                       "no telling whether this one means anything. " +
                           markers_of_model(view),
                       "lede");
    }
    std::string html = "<p class=\"lede\"><strong>p " +
                       escaped((view.stronger == 0 ? "" : "= ") + overall_p_text(view)) +
                       "</strong>, " + escaped(interval_text(view)) + ". " +
                       escaped(verdict(view) + " " + markers_of_model(view)) + "</p>";
    std::string aside =
        "In a permuted data set the labels of cases and controls are shuffled, so that whatever is "
        "found in it is found by chance. The whole analysis, its search included, was repeated on "
        "each.";
    if (view.equal > 0) {
        aside += " " +
                 (view.equal == 1 ? "One of them does" : grouped(view.equal) + " of them do") +
                 " exactly as well as the study itself and counts neither way.";
    }
    return html + element("p", aside, "aside");
}

std::string figure_item(const std::string& name, const std::string& value,
                        const std::string& more) {
    return "<div>" + element("dt", name) + "<dd><b>" + escaped(value) + "</b>" +
           (more.empty() ? "" : " " + element("span", more)) + "</dd></div>";
}

std::string numbers(const ModelView& view) {
    std::string html = "<dl class=\"figures\">";
    html += figure_item("Individuals", grouped(view.individuals),
                        counted(view.cases, "cases") + ", " + counted(view.controls, "controls"));
    html += figure_item("Markers", grouped(view.markers),
                        view.dropped == 0 ? "all tested" : grouped(view.tested()) + " tested");
    html += figure_item("Permuted data sets", grouped(view.permutations),
                        !view.has_model || !view.permuted()
                            ? ""
                            : grouped(view.stronger) + " with a stronger model");
    if (view.has_model) {
        html += figure_item("Base learners", grouped(long(view.learners.size())),
                            "on " + counted(long(view.weighed.size()), "markers"));
        if (view.permuted()) {
            html += figure_item(
                "p, study included", p_text(view.p_plus_one),
                "(" + grouped(view.stronger) + " + 1) / " + grouped(view.permutations + 1));
        }
    }
    return html + "</dl>";
}

std::string left_out(const ModelView& view) {
    std::string items;
    for (const LeftOutLine& line : view.left_out) {
        items += element("li", counted(line.count, line.what) + ": " + line.why);
    }
    if (view.dropped > 0) {
        items += element("li", counted(view.dropped, "markers") +
                                   ": kept, but not tested, as genotypes are missing in more than "
                                   "5 % of the cases or of the controls");
    }
    const std::string read = "Read were " + counted(view.individuals_read, "individuals") +
                             " and " + counted(view.markers_read, "markers") + ". ";
    std::string html = element("h3", "What was left out") +
                       element("p", read + (items.empty() ? "Nothing was left out." : "")) +
                       (items.empty() ? "" : "<ul>" + items + "</ul>");
    if (!view.notes.empty()) {
        html += element("h3", "What to know about the input") + "<ul>";
        for (const std::string& note : view.notes) html += element("li", note);
        html += "</ul>";
    }
    return html;
}

// The name that the reader knows the study by: its genotype file, without folders.
std::string study_name(const ModelView& view) {
    if (view.files.empty()) return "";
    return std::string(name_of(view.files.front().second));
}

}  // namespace

std::string chart_figure(const std::string& id, const std::string& heard,
                         const std::string& caption) {
    return "<figure><div class=\"chart\" id=\"" + id + "\"><canvas role=\"img\" aria-label=\"" +
           escaped(heard) + "\">" + escaped(heard) + "</canvas></div>" +
           (caption.empty() ? "" : "<figcaption>" + caption + "</figcaption>") + "</figure>";
}

void outcome_parts(const ModelView& view, PageParts& parts) {
    const std::string head = headline(view, view.permutations - view.stronger - view.equal);
    const std::string name = study_name(view);
    parts["title"] = escaped(name.empty() ? head : name + ": " + head);
    parts["study"] = escaped(name);
    parts["headline"] = escaped(head) + ".";
    parts["lede"] = lede(view);
    parts["numbers"] = numbers(view);
    parts["left_out"] = left_out(view);
}

}  // namespace vort
