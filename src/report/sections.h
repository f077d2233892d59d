// The sections of the page, each as HTML for its marks in the template.
#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "report/marker_points.h"
#include "report/model_view.h"
#include "results/tables.h"

namespace vort {

using PageParts = std::map<std::string, std::string>;  // by the name of the mark

// A chart's place: its canvas, what a reader hears instead, and the caption below it.
std::string chart_figure(const std::string& id, const std::string& heard,
                         const std::string& caption);

// 1. What came out, and the study in numbers.
void outcome_parts(const ModelView& view, PageParts& parts);

// 2. Markers along the genome. Takes in the rows and keeps what the section shows of them.
class MarkerSection {
  public:
    explicit MarkerSection(long markers) : points_(markers) {}

    void add(const MarkerRow& row);
    void parts(const ModelView& view, std::span<const DataSetRow> data_sets, PageParts& parts,
               nlohmann::json& data) const;

  private:
    struct TopMarker {
        MarkerRow row;  // its texts are those below
        std::string name, a1, a2, model;
    };

    std::string table(const ModelView& view) const;
    std::string note(const ModelView& view) const;

    MarkerPoints points_;
    std::vector<TopMarker> top_;  // by p
    long genome_wide_ = 0;        // markers with p <= 5e-8
    long study_wide_ = 0;         // markers with EMP2 <= 0.05
};

// The p below which EMP2 is at most 0.05; none where there are fewer than 19 permuted data sets.
std::optional<double> study_wide_p(std::span<const DataSetRow> data_sets);

// 3. and 4. Quantiles of p, and T of the permuted data sets.
void chance_parts(const ModelView& view, std::span<const DataSetRow> data_sets,
                  std::span<const QuantileRow> quantiles, PageParts& parts, nlohmann::json& data);

// 5. Base learners, importance and cell maps.
void model_parts(const ModelView& view, PageParts& parts, nlohmann::json& data);

// 6. The model on people it has not seen, where some were held back.
void holdout_parts(const ModelView& view, PageParts& parts);

// 7. Parameters and versions.
void method_parts(const ModelView& view, PageParts& parts);

}  // namespace vort
