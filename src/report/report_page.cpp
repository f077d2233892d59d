#include "report/report_page.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "report/html.h"
#include "report/page_template.h"
#include "report/sections.h"

namespace vort {
namespace {

// What stands in the parts is not searched for marks again.
void write_filled(std::string_view page, const PageParts& parts, std::ostream& out) {
    static constexpr std::string_view kBegin = "<!--@", kEnd = "@-->";
    for (;;) {
        const std::size_t begin = page.find(kBegin);
        out << page.substr(0, begin);
        if (begin == std::string_view::npos) return;
        page.remove_prefix(begin + kBegin.size());
        const std::size_t end = page.find(kEnd);
        out << parts.at(std::string(page.substr(0, end)));
        page.remove_prefix(end + kEnd.size());
    }
}

}  // namespace

ReportPage::ReportPage(long markers) : markers_(std::make_unique<MarkerSection>(markers)) {}
ReportPage::~ReportPage() = default;
ReportPage::ReportPage(ReportPage&&) noexcept = default;
ReportPage& ReportPage::operator=(ReportPage&&) noexcept = default;

void ReportPage::add(const MarkerRow& row) {
    markers_->add(row);
}

void ReportPage::write(const nlohmann::json& model, std::span<const DataSetRow> data_sets,
                       std::span<const QuantileRow> quantiles, std::ostream& out) const {
    const ModelView view = read_model_view(model);
    PageParts parts;
    nlohmann::json data = nlohmann::json::object();
    outcome_parts(view, parts);
    markers_->parts(view, data_sets, parts, data);
    chance_parts(view, data_sets, quantiles, parts, data);
    model_parts(view, parts, data);
    holdout_parts(view, parts);
    method_parts(view, parts);
    parts["data"] = json_for_script(data);
    write_filled(page_template(), parts, out);
}

}  // namespace vort
