#include <cmath>
#include <nlohmann/json.hpp>

#include "report/html.h"
#include "report/sections.h"
#include "report/wording.h"

namespace vort {
namespace {

constexpr std::size_t kAllQuantiles = 1500;

// Of very many quantiles the first ones, then one of every so many: the plot is logarithmic.
std::vector<QuantileRow> drawn(std::span<const QuantileRow> quantiles) {
    std::vector<QuantileRow> some;
    double next = 0;
    for (const QuantileRow& row : quantiles) {
        const bool last = &row == &quantiles.back();
        if (quantiles.size() > kAllQuantiles && double(row.rank) < next && !last) continue;
        some.push_back(row);
        next = double(row.rank) * 1.01;
    }
    return some;
}

// To four digits after the point: far below a pixel.
double height(double p) {
    return std::round(-std::log10(std::max(p, 1e-300)) * 1e4) / 1e4;
}

nlohmann::json quantile_columns(const std::vector<QuantileRow>& quantiles) {
    using nlohmann::json;
    json rank = json::array(), observed = json::array(), expected = json::array();
    json low = json::array(), high = json::array();
    for (const QuantileRow& row : quantiles) {
        if (!std::isfinite(row.observed) || !std::isfinite(row.expected)) continue;
        rank.push_back(row.rank);
        observed.push_back(height(row.observed));
        expected.push_back(height(row.expected));
        low.push_back(height(row.low));
        high.push_back(height(row.high));
    }
    return {{"rank", rank},
            {"observed", observed},
            {"expected", expected},
            {"low", low},
            {"high", high}};
}

constexpr long kFewMarkers = 1000;

std::string inflation_text(const ModelView& view) {
    const std::string text =
        "This is the median chi-square of the additive test, divided by the one expected without "
        "any association. ";
    if (view.markers < kFewMarkers) {
        return text + "Of so few markers it can be far from 1 by chance alone.";
    }
    if (view.lambda_gc > 1.1) {
        return text +
               "Above 1.1 it suggests that cases and controls differ in ancestry or in how they "
               "were genotyped; see what not to conclude, below.";
    }
    if (view.lambda_gc < 0.9) {
        return text + "Below 0.9 it is lower than chance makes it in a study of many markers.";
    }
    return text +
           "Near 1 nothing speaks for differences in ancestry or genotyping that run "
           "through all markers.";
}

std::string lambda_html(const ModelView& view) {
    if (!std::isfinite(view.lambda_gc)) {
        return element("p", "There is no lambda GC without a tested marker.");
    }
    return "<p class=\"big\"><small>Lambda GC of the additive test</small>" +
           decimal(view.lambda_gc, 3) + "</p>" + element("p", inflation_text(view));
}

std::string quantiles_html(const ModelView& view, const nlohmann::json& columns) {
    const std::size_t points = columns["rank"].size();
    if (points == 0 && view.permuted()) return element("p", "There are no p-values of markers.");
    if (points == 0) {
        return element("p",
                       "There is no plot: what to expect of the smallest of four p-values comes "
                       "from permuted data sets, and there are none.");
    }
    long outside = 0;
    for (std::size_t i = 0; i < points; ++i) {
        outside += columns["observed"][i] > columns["low"][i];
    }
    const std::string heard =
        "Quantile plot of the observed p-values against those expected from the permuted data "
        "sets. " +
        std::string(outside == 0 ? "None of the points drawn is smaller than the band allows."
                                 : grouped(outside) + " of " + counted(long(points), "points") +
                                       " drawn lie above the band.");
    return chart_figure(
        "quantiles", heard,
        "<ul class=\"legend\"><li><span class=\"key dot\" aria-hidden=\"true\"></span>observed: "
        "the r-th smallest p of the study</li><li><span class=\"key band\" "
        "aria-hidden=\"true\"></span>where it lies in 95 % of the permuted data "
        "sets</li><li><span class=\"key line\" aria-hidden=\"true\"></span>their median</li></ul>");
}

std::string histogram_html(const ModelView& view, const std::vector<double>& permuted) {
    if (!view.has_model) {
        return element("p",
                       "Without a model of the study itself none was looked for in permuted data.");
    }
    if (permuted.empty()) {
        return element("p", "There are no permuted data sets. The study's own statistic is T0 = " +
                                decimal(view.T0, 4) + ".");
    }
    const auto [low, high] = std::minmax_element(permuted.begin(), permuted.end());
    const std::string stronger =
        view.stronger > 0
            ? counted(view.stronger, "permuted data sets") +
                  (view.stronger == 1 ? " has" : " have") + " a stronger model than the study"
        : permuted.size() == 1 ? "The one permuted data set has no stronger model than the study"
                               : "None of them has a stronger model than the study";
    const std::string heard = "Histogram of T in " +
                              counted(long(permuted.size()), "permuted data sets") + ", from " +
                              decimal(*low, 3) + " to " + decimal(*high, 3) +
                              ". The study has T0 = " + decimal(view.T0, 3) + ".";
    return chart_figure("histogram", heard,
                        escaped(stronger + ", T0 = " + decimal(view.T0, 3) + "."));
}

}  // namespace

void chance_parts(const ModelView& view, std::span<const DataSetRow> data_sets,
                  std::span<const QuantileRow> quantiles, PageParts& parts, nlohmann::json& data) {
    data["quantiles"] = quantile_columns(drawn(quantiles));
    parts["quantiles"] = quantiles_html(view, data["quantiles"]);
    parts["lambda"] = lambda_html(view);

    std::vector<double> permuted;
    for (const DataSetRow& row : data_sets) {
        if (row.data_set > 0 && std::isfinite(row.T)) permuted.push_back(row.T);
    }
    parts["histogram"] = histogram_html(view, permuted);
    data["T"] = permuted;
    data["T0"] = std::isfinite(view.T0) ? nlohmann::json(view.T0) : nlohmann::json();
}

}  // namespace vort
