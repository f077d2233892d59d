// The main report.
//
// It begins with a copy of the parameter file, then says, section by section: the model, what each
// base learner is, how cases and controls spread over the genotypes of every marker and pair in
// the model, and how important each marker is. All but the beginning is echoed on the console as
// it is written.
//
// A genotype cell is compared with the whole study by
//
//     z = (cases / count - ybar) / sqrt(((n - count) SS / n / n) / count),
//
// ybar being the share of cases, SS the sum of squares of the 0/1 phenotype around it, n the
// individuals, count those in the cell: the cell's share of cases against its expectation, with
// the variance of a sample drawn without replacement. z^2 is referred to a chi-square
// distribution with one degree of freedom. An empty cell gets z = 0.00001.
#include "ensemble/final_report.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "ensemble/cell_counts.h"
#include "numeric/distributions.h"

namespace vort {

namespace {

constexpr int kCodesShown = 10;
constexpr double kEmptyCellStatistic = 0.00001;

// Collects the report and echoes it on the console.
class Report {
  public:
    explicit Report(Transcript& console) : console_(console) {}

    template <typename T>
    Report& operator<<(const T& value) {
        text_ << value;
        console_ << value;
        return *this;
    }
    std::string text() const { return std::string(text_.text()); }

  private:
    Transcript text_{true};
    Transcript& console_;
};

// The individuals as the report sees them.
struct ReportedStudy {
    const Genotypes& genotypes;
    std::span<const short> phenotype;
    const std::vector<int>& column;  // of each rank
    double ybar = 0;                 // share of cases
    double SS = 0;                   // sum of squares around it

    int n() const { return static_cast<int>(phenotype.size()); }
};

struct TableCell {
    double cases = 0;
    double count = 0;
    double z = kEmptyCellStatistic;
};

// The nine cells of a pair, or the three of a single marker.
using TableCells = std::vector<TableCell>;

double cell_statistic(const ReportedStudy& study, double cases, double count) {
    const double n = study.n();
    return (cases / count - study.ybar) / std::sqrt(((n - count) * study.SS / n / n) / count);
}

TableCells table_cells(const ReportedStudy& study, const BaseLearner& learner) {
    TableCells cells;
    for (const CellCount& counted :
         count_cells(study.genotypes, study.phenotype, learner, study.column)) {
        TableCell cell{static_cast<double>(counted.cases), static_cast<double>(counted.all())};
        if (cell.count > 0) cell.z = cell_statistic(study, cell.cases, cell.count);
        cells.push_back(cell);
    }
    return cells;
}

std::string cell_name(int code, bool pair) {
    return pair ? std::to_string(code / 3) + "/" + std::to_string(code % 3) : std::to_string(code);
}

double cut_to_three_decimals(double z) {
    return truncated(z * 1000) / 1000.0;
}

void write_statistics(Report& report, const TableCells& cells, bool pair) {
    report << "Statistic value\t\t\t ";
    for (const TableCell& cell : cells) {
        if (cell.z != 0) {
            report << general(cut_to_three_decimals(cell.z)) << "\t\t ";
        } else if (pair) {
            report << general(0.99999) << "\t ";
        } else {
            report << general(cell.z) << "\t\t";
        }
    }
    report << '\n' << "P-value\t\t\t\t ";
    for (const TableCell& cell : cells) {
        if (cell.z != 0) {
            report << general(1 - lower_tail_chi_square(1, cell.z * cell.z).value) << "\t ";
        } else if (pair) {
            report << general(0.99999) << "\t ";
        } else {
            report << "1"
                   << "\t\t ";
        }
    }
    report << '\n';
}

void write_clustering(Report& report, const BaseLearner& learner, int cells) {
    const auto begin = learner.cluster.begin();
    const auto end = begin + cells;
    int unused = 0;
    while (std::find(begin, end, unused) != end) ++unused;
    report << "Clustering results: " << unused << " groups \t ";
    int group = 0;
    for (auto cell = begin; cell != end; ++cell) {
        if (std::find(begin, cell, *cell) != cell) continue;
        report << 'S' << ++group << "={";
        const char* separator = "";
        for (auto member = cell; member != end; ++member) {
            if (*member != *cell) continue;
            report << separator << cell_name(static_cast<int>(member - begin), cells == 9);
            separator = ",";
        }
        report << "}\t";
    }
    report << '\n';
}

void write_marker_table(Report& report, const ReportedStudy& study, const BaseLearner& learner) {
    const bool pair = learner.markers == 2;
    const TableCells cells = table_cells(study, learner);
    if (pair) {
        report << "\nMarkers\t " << learner.marker[0] << ',' << learner.marker[1];
    } else {
        report << "\nMarker\t " << learner.marker[0];
    }
    report << "\nGenotype\t\t\t ";
    for (std::size_t code = 0; code < cells.size(); ++code) {
        report << cell_name(static_cast<int>(code), pair) << "\t\t";
    }
    report << '\n' << "# of cases/# of controls\t ";
    for (const TableCell& cell : cells) {
        report << general(cell.cases) << '/' << general(cell.count - cell.cases) << "\t\t";
    }
    report << '\n';
    write_statistics(report, cells, pair);
    write_clustering(report, learner, static_cast<int>(cells.size()));
}

// A table of the set of markers stands behind the base learner before already.
bool repeats(const std::vector<BaseLearner>& learners, std::size_t b) {
    if (b == 0) return false;
    const auto& mine = learners[b].marker;
    const auto& before = learners[b - 1].marker;
    return mine[0] == before[0] && (learners[b].markers == 1 || mine[1] == before[1]);
}

void write_tables(Report& report, const ReportedStudy& study,
                  const std::vector<BaseLearner>& learners, int markers) {
    for (std::size_t b = 0; b < learners.size(); ++b) {
        if (learners[b].markers == markers && !repeats(learners, b)) {
            write_marker_table(report, study, learners[b]);
        }
    }
}

void write_model(Report& report, const ReportedStudy& study,
                 const std::vector<BaseLearner>& learners) {
    report << "The final Model information\n===========================\n"
           << "Base Learner         "
           << "Intercept      ";
    double explained = 0;
    for (const BaseLearner& learner : learners) {
        report << 'X' << learner.id << (learner.id <= 10 ? "       " : "      ");
        explained += learner.beta * learner.average;
    }
    report << '\n' << "Coefficient          " << general(study.ybar - explained) << "    ";
    for (const BaseLearner& learner : learners) report << fixed(learner.beta, 3, 7) << "  ";
    report << '\n';
}

// The genotypes for which a base learner is 1, and blanks that fill the column. A pair's group
// without cells reads as its first cell.
void write_function(Report& report, const BaseLearner& learner) {
    const bool pair = learner.markers == 2;
    const std::vector<int> cells =
        pair && learner.cells.empty() ? std::vector<int>{0} : learner.cells;
    report << "I{ ";
    for (std::size_t c = 0; c < cells.size(); ++c) {
        if (pair && c > 0) report << " or ";
        report << cell_name(cells[c], pair);
        if (!pair) report << ' ';
    }
    const int missing = std::max(learner.cell_count() - static_cast<int>(cells.size()), 0);
    report << " }" << std::string(static_cast<std::size_t>(6 * missing), ' ')
           << (pair ? "\t\t " : "\t\t\t\t\t\t\t ");
}

void write_base_learners(Report& report, const std::vector<BaseLearner>& learners) {
    report << "\nVariable (Base learner) information in the final model\n"
           << "======================================================" << '\n'
           << "Base learner \t Marker involved \t Base learner function \t\t\t\t\t\t\t "
              "Important measure"
           << '\n';
    double total = 0;
    for (const BaseLearner& learner : learners) total += learner.importance;
    for (const BaseLearner& learner : learners) {
        report << 'X' << learner.id << "\t\t\t";
        for (int l = 0; l < learner.markers; ++l) report << learner.marker[l] << ' ';
        report << "\t\t";
        write_function(report, learner);
        report << general(100 * learner.importance / total) << '\n';
    }
}

void write_importance(Report& report, const std::vector<int>& markers,
                      const std::vector<int>& importance) {
    report << "\n\n\n\nImportant measure of the markers involved in the final model\n"
           << "============================================================\n"
           << "Marker   : ";
    double total = 0;
    for (std::size_t i = 0; i < markers.size(); ++i) {
        report << markers[i] << "\t ";
        total += importance[i];
    }
    report << '\n' << "Important: ";
    for (const int measure : importance) {
        report << general(truncated(measure / total * 1000) / 10.0) << "\t ";
    }
    report << '\n';
}

// A copy of the parameter file, without the white space that it begins with and up to the first
// byte 0xFF, then raw codes of the first columns.
void write_beginning(const ReportInput& input, Transcript& out) {
    const std::string& text = input.settings.file.text;
    const std::size_t begin = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
    out << std::string_view(text).substr(begin, text.find('\xFF', begin) - begin) << '\n';
    const int shown = std::min(kCodesShown, input.settings.report.markers);
    const int known = std::min(kCodesShown, input.settings.builder.usable_markers());
    const auto write_codes = [&](const char* title, int individual) {
        out << title;
        for (int j = 0; j < shown; ++j) {
            out << (j < known && individual >= 0 ? input.genotypes.code(individual, j) : 0) << ' ';
        }
        out << '\n';
    };
    const int last = input.settings.builder.individuals - 1;
    write_codes("The first ten marker of first individual ", std::min(0, last));
    write_codes("The first ten marker of last  individual ", last);
}

ReportedStudy make_study(const ReportInput& input, const Result& result) {
    const auto n = static_cast<std::size_t>(std::max(input.settings.report.individuals, 0));
    ReportedStudy study{input.genotypes, input.phenotypes.first(n), result.columns};
    double sum = 0;
    for (const short phenotype : study.phenotype) sum += phenotype;
    study.ybar = sum / study.n();
    for (const short phenotype : study.phenotype) {
        const double deviation = phenotype - study.ybar;
        study.SS += deviation * deviation;
    }
    return study;
}

}  // namespace

std::string report_text(const ReportInput& input, const Result& result, Transcript& console) {
    Transcript beginning(true);
    write_beginning(input, beginning);
    if (!result.learners.empty()) beginning << '\n' << report_body(input, result, console);
    return std::string(beginning.text());
}

std::string report_body(const ReportInput& input, const Result& result, Transcript& console) {
    const ReportedStudy study = make_study(input, result);
    const std::vector<BaseLearner>& learners = result.learners;
    Report report(console);
    write_model(report, study, learners);
    write_base_learners(report, learners);
    report << "\nMarkers or Marker combinations involved in the final model\n"
           << "\n==========================================================\n";
    console << "sigma1=" << general(study.SS) << " y_bar=" << general(study.ybar) << '\n';
    report << "Single Marker \n";
    write_tables(report, study, learners, 1);
    report << "\n\nTwo-locus combinations \n";
    write_tables(report, study, learners, 2);
    write_importance(report, result.markers, result.importance);
    return report.text();
}

std::string marker_names_text(const Settings& settings, const Result& result,
                              const MarkerTable& table) {
    Transcript out(true);
    if (settings.report.markers < 1 || result.learners.empty()) return "";
    for (const int rank : result.markers) {
        const MarkerTable::Entry marker =
            table.find(result.columns[rank - 1], MarkerTable::Numbering::kFromZero);
        out << "\n\nMarker \t" << rank << "\t name = " << marker.name
            << "\t Chromosome= " << marker.chromosome;
    }
    return std::string(out.text());
}

}  // namespace vort
