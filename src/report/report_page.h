// report.html: a run's results as one page that needs nothing but a browser.
//
// The page is a template, a style and scripts (src/report/page), put together with Chart.js when
// the program is built, into which write() puts sentences, tables and the data of the charts. What
// can be said without a script stands in the HTML itself. It makes no request, and its policy
// forbids any.
//
//     ReportPage page(markers);
//     for (...) page.add(row);                                    // in the order of markers.tsv
//     page.write(model, data_sets, quantiles, out);               // model as in model.json
//
// A page of 541,325 markers has at most 1.5 MB: see marker_points.h for what is left out.
#pragma once

#include <iosfwd>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <span>

#include "results/marker_row.h"
#include "results/tables.h"

namespace vort {

class MarkerSection;

class ReportPage {
  public:
    explicit ReportPage(long markers);  // how many will come
    ~ReportPage();
    ReportPage(ReportPage&&) noexcept;
    ReportPage& operator=(ReportPage&&) noexcept;

    void add(const MarkerRow& row);

    // `data_sets` and `quantiles` are empty where the run has none; row 0 of the data sets is the
    // observed one. InputError where `model` has not the shape of model.json.
    void write(const nlohmann::json& model, std::span<const DataSetRow> data_sets,
               std::span<const QuantileRow> quantiles, std::ostream& out) const;

  private:
    std::unique_ptr<MarkerSection> markers_;
};

}  // namespace vort
