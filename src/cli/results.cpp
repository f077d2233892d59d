#include "cli/results.h"

#include <filesystem>

#include "common/output_file.h"
#include "common/stop.h"
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

}  // namespace

nlohmann::json write_results(const ModelDescription& run, const std::string& folder, bool gzip,
                             int threads, Diagnostics& diagnostics) {
    const MarkerRows& rows = run.rows;
    write_marker_file(folder + (gzip ? "markers.tsv.gz" : "markers.tsv"), rows, gzip, threads,
                      diagnostics);
    const std::vector<DataSetRow> data_sets =
        data_set_rows(run.record, run.study.markers, run.result.has_model);
    write_data_set_file(folder + "permutations.tsv", data_sets, diagnostics);
    const std::vector<QuantileRow> quantiles = run.record.quantiles.rows();
    write_quantile_file(folder + "quantiles.tsv", quantiles, diagnostics);
    const nlohmann::ordered_json ordered = model_json(run);
    write_text(folder + "model.json", ordered.dump(kIndent) + '\n', diagnostics);
    nlohmann::json model = ordered;
    ReportPage page(static_cast<long>(rows.size()));
    for (std::size_t j = 0; j < rows.size(); ++j) page.add(rows.row(j));
    write_page(page, model, data_sets, quantiles, folder, diagnostics);
    return model;
}

void write_report_page(const std::string& from, const std::string& folder,
                       Diagnostics& diagnostics) {
    const nlohmann::json model = read_model(from + "model.json");
    const std::vector<DataSetRow> data_sets = read_data_set_file(from + "permutations.tsv");
    const std::vector<QuantileRow> quantiles = read_quantile_file(from + "quantiles.tsv");
    ReportPage page(model.at("input").at("markers").at("analysed").get<long>());
    read_marker_file(marker_file_in(from), [&](const MarkerRow& row) { page.add(row); });
    write_page(page, model, data_sets, quantiles, folder, diagnostics);
}

}  // namespace vort
