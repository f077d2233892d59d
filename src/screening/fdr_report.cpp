#include "screening/fdr_report.h"

#include <algorithm>

#include "common/output_file.h"
#include "common/stop.h"
#include "numeric/index_sort.h"

namespace vort {

namespace {

constexpr double kLevel = 0.05;
constexpr int kListedWithoutFinding = 50;

// 1-based marker numbers in ascending order of their p-values, from element 1 on.
std::vector<int> order_by_pvalue(std::vector<double> pvalue) {
    std::vector<int> order(pvalue.size());
    Quickindex(pvalue.data(), order.data(), static_cast<int>(pvalue.size()) - 1);
    return order;
}

class FdrReport {
  public:
    FdrReport(const std::string& path, const MarkerTable& table, Transcript& transcript,
              Diagnostics& diagnostics)
        : table_(table),
          transcript_(transcript),
          file_(path, OutputFile::Mode::kTruncate, diagnostics) {
        if (!file_.is_open()) stop("find error to open FDR_results.txt\n");
    }

    // The marker table is first looked at behind the first heading, and may stop the run there.
    void write_heading(int model, int count) {
        put(std::string("model=") + kModelNames[model] +
            " # of satisfy FDR marker, i. e.  len=" + std::to_string(count) + '\n');
    }

    // `model_of` names the model that gave a marker's p-value.
    template <typename ModelOf>
    void write_list(std::span<const double> pvalue, std::span<const int> order, int count,
                    ModelOf model_of, MarkerTable::Numbering numbering) {
        const int markers = static_cast<int>(order.size()) - 1;
        const int listed = std::min(count >= 1 ? count : kListedWithoutFinding, markers);
        for (int k = 1; k <= listed; ++k) {
            const int number = order[k];
            const MarkerTable::Entry marker = table_.find(number, numbering);
            put(std::string(count < 1 ? "FDR reject Marker=" : "FDR find Marker=") +
                std::to_string(number) + "\t name = " + std::string(marker.name) + "\t locus=" +
                std::to_string(marker.locus) + "\t pvalue=" + to_text(general(pvalue[number])) +
                " corresponding  model=" + kModelNames[model_of(number)] + '\n');
        }
    }

    void finish() {
        if (!file_.close()) stop("", 1);
    }

  private:
    void put(const std::string& text) {
        transcript_ << text;
        file_ << text;
        file_.stream().flush();
    }

    const MarkerTable& table_;
    Transcript& transcript_;
    OutputFile file_;
};

}  // namespace

int false_discovery_count(std::span<const double> pvalue, std::span<const int> order, double level,
                          double divisor) {
    const int markers = static_cast<int>(order.size()) - 1;
    int k = markers;
    while (k > 0 && !(pvalue[order[k]] <= k * level / divisor / markers)) --k;
    return k;
}

void write_fdr_report(const std::string& path, const MarkerPvalues& all,
                      const std::vector<int>& minimum_order, const MarkerTable& table,
                      Transcript& transcript, Diagnostics& diagnostics) {
    FdrReport report(path, table, transcript, diagnostics);
    for (int model = 0; model < kModels; ++model) {
        const std::vector<double>& pvalue = all.model[model];
        const std::vector<int> order = order_by_pvalue(pvalue);
        const int count = false_discovery_count(pvalue, order, kLevel, 1);
        report.write_heading(model, count);
        report.write_list(
            pvalue, order, count, [model](int) { return model; },
            MarkerTable::Numbering::kFromZero);
    }
    const int count = false_discovery_count(all.minimum, minimum_order, kLevel, kModels);
    report.write_heading(kModels, count);
    report.write_list(
        all.minimum, minimum_order, count, [&all](int number) { return all.minimum_model[number]; },
        MarkerTable::Numbering::kFromOne);
    report.finish();
}

}  // namespace vort
