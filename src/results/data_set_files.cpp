#include "results/data_set_files.h"

#include <limits>

#include "common/output_file.h"
#include "common/stop.h"
#include "results/table_text.h"

namespace vort {

namespace {

constexpr std::string_view kDataSetHeader = "DATA_SET\tT\tP_MIN\tSNP\tLEARNERS";
constexpr long kMostDataSets = std::numeric_limits<int>::max();
constexpr long kMostLearners = std::numeric_limits<int>::max();
constexpr std::string_view kQuantileHeader = "RANK\tP_MIN\tP_EXPECTED\tP_LOW\tP_HIGH";

// As "P_value.txt" shows it: 0 for no model.
double shown_statistic(double S) {
    return S >= 0 && S < 1 ? 1 - S : S >= 1 ? 0 : kNotAvailable;
}

void write_text(const std::string& path, const Transcript& text, Diagnostics& diagnostics) {
    OutputFile file(path, OutputFile::Mode::kTruncate, diagnostics);
    file << text.text();
    if (!file.close()) stop("", 1);
}

}  // namespace

std::vector<DataSetRow> data_set_rows(const RunRecord& record, std::span<const MarkerInfo> markers,
                                      bool has_model) {
    std::vector<DataSetRow> rows;
    for (const RunRecord::DataSet& data_set : record.data_sets) {
        DataSetRow row;
        row.data_set = static_cast<int>(rows.size());
        row.smallest_p = as_written(data_set.smallest_p);
        if (data_set.best >= 0) row.marker = markers[data_set.best].name;
        if (has_model) {
            row.T = as_written(shown_statistic(data_set.statistic));
            row.learners = data_set.learners;
        } else if (row.data_set == 0) {
            row.learners = 0;
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

void write_data_set_file(const std::string& path, std::span<const DataSetRow> rows,
                         Diagnostics& diagnostics) {
    Transcript out(true);
    out << kDataSetHeader << '\n';
    for (const DataSetRow& row : rows) {
        out << row.data_set;
        put_number(out, row.T);
        put_number(out, row.smallest_p);
        out << '\t' << (row.marker.empty() ? kNA : std::string_view(row.marker)) << '\t';
        if (row.learners >= 0) {
            out << row.learners << '\n';
        } else {
            out << kNA << '\n';
        }
    }
    write_text(path, out, diagnostics);
}

void write_quantile_file(const std::string& path, std::span<const QuantileRow> rows,
                         Diagnostics& diagnostics) {
    Transcript out(true);
    out << kQuantileHeader << '\n';
    for (const QuantileRow& row : rows) {
        out << row.rank;
        for (const double p : {row.observed, row.expected, row.low, row.high}) put_number(out, p);
        out << '\n';
    }
    write_text(path, out, diagnostics);
}

std::vector<DataSetRow> read_data_set_file(const std::string& path) {
    const std::string text = read_whole_file(path);
    TableReader table(path, text, kDataSetHeader);
    std::vector<DataSetRow> rows;
    while (table.next()) {
        DataSetRow row;
        row.data_set = static_cast<int>(table.whole(0, 0, 0, kMostDataSets));
        row.T = table.number(1);
        row.smallest_p = table.share(2);
        if (table.word(3) != kNA) row.marker = table.word(3);
        row.learners = static_cast<int>(table.whole(4, -1, 0, kMostLearners));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<QuantileRow> read_quantile_file(const std::string& path) {
    const std::string text = read_whole_file(path);
    TableReader table(path, text, kQuantileHeader);
    std::vector<QuantileRow> rows;
    while (table.next()) {
        rows.push_back({table.whole(0, 0, 0, std::numeric_limits<long>::max()), table.share(1),
                        table.share(2), table.share(3), table.share(4)});
    }
    return rows;
}

}  // namespace vort
