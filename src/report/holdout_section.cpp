#include <algorithm>
#include <cmath>

#include "report/html.h"
#include "report/sections.h"
#include "report/wording.h"

namespace vort {
namespace {

std::string percent(double share) {
    return decimal(100 * share, 0) + "\u00a0%";
}

std::string percents(double low, double high) {
    const std::string first = percent(low);
    return first == percent(high) ? first : first + " to " + percent(high);
}

std::string who(const HoldoutView& held) {
    return counted(held.cases + held.controls, "individuals") + " (" +
           counted(held.cases, "cases") + " and " + counted(held.controls, "controls") +
           ", a share of " + decimal(held.fraction, 2) +
           " of each) were held back before the analysis began and took no part in it.";
}

std::string verdict(const RocArea& roc) {
    if (std::isnan(roc.interval.low)) return "";
    if (roc.interval.low > 0.5) {
        return " The interval lies above 0.5: the model tells something about people it has not "
               "seen.";
    }
    return " The interval does not lie above 0.5: the model is not shown to tell anything about "
           "people "
           "it has not seen.";
}

std::string training_text(const HoldoutView& held) {
    if (!held.training) return "";
    return " On those that it was made from the AUC is " + decimal(held.training->roc.area, 3) +
           ". That is the model\u2019s fit to its own data; what to expect of it in others is the "
           "first number.";
}

std::string auc_html(const HoldoutView& held) {
    return "<p class=\"big\"><small>AUC on the people held back</small>" +
           decimal(held.unseen->roc.area, 3) + "</p>" +
           element("p", "AUC " + auc_text(held.unseen->roc) +
                            ": the chance that of a case and a control, both not seen before, the "
                            "case has the higher fitted risk. 0.5 is what tossing a coin gives." +
                            verdict(held.unseen->roc) + training_text(held)) +
           element("p", "Brier score " + decimal(held.unseen->brier, 3) +
                            ", the mean squared distance between fitted risk and outcome; " +
                            decimal(held.unseen->brier_without_model, 3) +
                            " if everybody had the same risk.");
}

// Fitted against observed shares, drawn without a script.
class CalibrationPlot {
  public:
    explicit CalibrationPlot(const std::vector<RiskGroup>& groups) {
        for (const RiskGroup& group : groups) {
            low_ = std::min(low_, group.mean);
            high_ = std::max(high_, group.mean);
        }
    }

    std::string html(const Evaluation& trial) const {
        std::string out =
            "<figure><svg viewBox=\"0 0 440 380\" role=\"img\" style=\"max-width:440px\" "
            "aria-label=\"Observed shares of cases against fitted risks; the table has the "
            "numbers.\">" +
            frame() + line(x(0), y(0), x(1), y(1), "muted");
        for (const RiskGroup& group : trial.calibration) out += point(group);
        return out + "</svg>" +
               element(
                   "figcaption",
                   "Share of cases (95 % intervals) against the mean fitted risk of each group. "
                   "On the line the two are the same.") +
               "</figure>";
    }

  private:
    static constexpr double kLeft = 50, kTop = 12, kWidth = 360, kHeight = 320;

    double x(double risk) const { return kLeft + kWidth * (risk - low_) / (high_ - low_); }
    static double y(double share) { return kTop + kHeight * (1 - share); }

    static std::string attribute(const char* name, double value) {
        return std::string(" ") + name + "=\"" + decimal(value, 1) + "\"";
    }

    static std::string line(double x1, double y1, double x2, double y2, const char* colour) {
        return "<line" + attribute("x1", x1) + attribute("y1", y1) + attribute("x2", x2) +
               attribute("y2", y2) + " style=\"stroke:var(--" + colour + ")\"/>";
    }

    static std::string text(double at_x, double at_y, const char* anchor,
                            const std::string& words) {
        return "<text" + attribute("x", at_x) + attribute("y", at_y) + " text-anchor=\"" + anchor +
               "\" style=\"font-size:13px;fill:var(--muted)\">" + escaped(words) + "</text>";
    }

    std::string frame() const {
        std::string out = line(kLeft, kTop, kLeft, kTop + kHeight, "muted") +
                          line(kLeft, kTop + kHeight, kLeft + kWidth, kTop + kHeight, "muted");
        for (const double share : {0.0, 0.5, 1.0}) {
            out += text(kLeft - 6, y(share) + 4, "end", percent(share)) +
                   text(x(share), kTop + kHeight + 18, "middle", percent(share));
        }
        return out + text(kLeft + kWidth, kTop + kHeight + 38, "end", "fitted risk") +
               text(kLeft + 8, kTop + 6, "start", "share of cases");
    }

    std::string point(const RiskGroup& group) const {
        const double share = double(group.cases) / double(group.individuals);
        return line(x(group.mean), y(group.observed.low), x(group.mean), y(group.observed.high),
                    "tone-a") +
               "<circle" + attribute("cx", x(group.mean)) + attribute("cy", y(share)) +
               " r=\"4\" style=\"fill:var(--accent)\"/>";
    }

    double low_ = 0;
    double high_ = 1;
};

std::string calibration_table(const Evaluation& trial) {
    using Kind = RowTable::Kind;
    RowTable table("Fitted and observed, by groups of fitted risk",
                   {{"Fitted risk", Kind::kHead},
                    {"Mean", Kind::kNumber},
                    {"Individuals", Kind::kNumber},
                    {"Cases", Kind::kNumber},
                    {"Share of cases", Kind::kNumber},
                    {"95 % interval", Kind::kNumber}});
    for (const RiskGroup& group : trial.calibration) {
        table.add({percents(group.lowest, group.highest), percent(group.mean),
                   grouped(group.individuals), grouped(group.cases),
                   share_text(group.cases, group.individuals),
                   percents(group.observed.low, group.observed.high)});
    }
    return table.html();
}

std::string section(const HoldoutView& held) {
    std::string html =
        "<section id=\"holdout\">\n<h2>On people it has not seen</h2>" + element("p", who(held));
    if (!held.unseen) {
        html += element("p", "There is no model to try on them.");
    } else {
        html += "<div class=\"beside\">" +
                CalibrationPlot(held.unseen->calibration).html(*held.unseen) + "<div>" +
                auc_html(held) + "</div></div>" + calibration_table(*held.unseen) +
                element("p",
                        "Fitted risks belong to a study with this share of cases. Where people are "
                        "drawn in other proportions, as in a population, they are too high or too "
                        "low for all alike; the AUC does not depend on it.",
                        "aside");
    }
    return html + "\n</section>\n\n";
}

}  // namespace

void holdout_parts(const ModelView& view, PageParts& parts) {
    parts["holdout"] = view.holdout ? section(*view.holdout) : "";
    parts["holdout_link"] =
        view.holdout ? "<a href=\"#holdout\">On people it has not seen</a>\n" : "";
}

}  // namespace vort
