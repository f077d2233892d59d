#include "cli/results.h"

#include <filesystem>

#include "cli/trial.h"
#include "common/input_error.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "report/model_view.h"
#include "report/report_page.h"
#include "results/data_set_files.h"
#include "results/marker_file.h"

namespace vort {

namespace {

constexpr int kIndent = 2;

void write_text(const std::string& path, const std::string& text, Diagnostics& diagnostics) {
    OutputFile file(path, OutputFile::Mode::kTruncate, diagnostics);
    file << text;
    if (!file.close()) stop("", 1);
}

void write_page(const ReportPage& page, const nlohmann::json& model,
                std::span<const DataSetRow> data_sets, std::span<const QuantileRow> quantiles,
                const std::string& folder, Diagnostics& diagnostics) {
    OutputFile file(folder + "report.html", OutputFile::Mode::kTruncate, diagnostics);
    page.write(model, data_sets, quantiles, file.stream());
    if (!file.close()) stop("", 1);
}

std::string marker_file_in(const std::string& folder) {
    const std::string plain = folder + "markers.tsv";
    const std::string gzip = plain + ".gz";
    return std::filesystem::exists(gzip) && !std::filesystem::exists(plain) ? gzip : plain;
}

// So that no page is made of tables that do not belong together.
void require_rows(const std::string& path, long found, long expected) {
    if (found == expected) return;
    input_error(path, 0,
                std::to_string(found) + " lines; " + std::to_string(expected) +
                    " expected by model.json; make the results anew by vort run");
}

}  // namespace

std::string json_text(const nlohmann::ordered_json& value) {
    return value.dump(kIndent, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

nlohmann::json write_results(ModelDescription run, const std::string& folder, bool gzip,
                             int threads, Diagnostics& diagnostics,
                             const std::optional<HeldBack>& held_back) {
    ReportPage page(static_cast<long>(run.rows.size()));
    std::vector<double> additive;
    write_marker_file(folder + (gzip ? "markers.tsv.gz" : "markers.tsv"), run.rows, gzip, threads,
                      diagnostics, [&](const MarkerRow& row) {
                          page.add(row);
                          additive.push_back(row.additive.chisq);
                      });
    run.lambda_gc = lambda_gc(std::move(additive));
    const std::vector<DataSetRow> data_sets =
        data_set_rows(run.record, run.study.markers, run.result.has_model);
    write_data_set_file(folder + "permutations.tsv", data_sets, diagnostics);
    const std::vector<QuantileRow> quantiles = run.record.quantiles.rows();
    write_quantile_file(folder + "quantiles.tsv", quantiles, diagnostics);
    nlohmann::ordered_json ordered = model_json(run);
    if (held_back) {
        const Trial trial = try_model(run, ordered, *held_back);
        write_text(folder + "holdout.tsv", trial.table, diagnostics);
        ordered["holdout"] = trial.description;
    }
    const std::string text = json_text(ordered);
    write_text(folder + "model.json", text, diagnostics);
    // As `vort report` will read it.
    nlohmann::json model = nlohmann::json::parse(text);
    write_page(page, model, data_sets, quantiles, folder, diagnostics);
    return model;
}

void write_report_page(const std::string& from, const std::string& folder,
                       Diagnostics& diagnostics) {
    const nlohmann::json model = read_model(from + "model.json");
    const ModelView view = read_model_view(model);
    const std::vector<DataSetRow> data_sets = read_data_set_file(from + "permutations.tsv");
    require_rows(from + "permutations.tsv", std::ssize(data_sets), view.permutations + 1);
    const std::vector<QuantileRow> quantiles = read_quantile_file(from + "quantiles.tsv");
    ReportPage page(view.markers);
    long rows = 0;
    long in_model = 0;
    read_marker_file(marker_file_in(from), [&](const MarkerRow& row) {
        page.add(row);
        ++rows;
        in_model += row.in_model ? 1 : 0;
    });
    require_rows(marker_file_in(from), rows, view.markers);
    require_rows(marker_file_in(from) + ", markers in the model", in_model,
                 std::ssize(view.weighed));
    write_page(page, model, data_sets, quantiles, folder, diagnostics);
}

}  // namespace vort
