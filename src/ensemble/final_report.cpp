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
#include <iostream>
#include <string>
#include <vector>

#include "common/number_text.h"
#include "common/output_file.h"
#include "ensemble/importance.h"
#include "numeric/distributions.h"

namespace vort {

namespace {

constexpr const char* kReportName = "Final_result.txt";
constexpr int kCodesShown = 10;
constexpr double kEmptyCellStatistic = 0.00001;

// Writes to the report and echoes on the console.
class Report {
  public:
    Report() : file_(kReportName, OutputFile::Mode::kAppend) {}

    template <typename T>
    Report& operator<<(const T& value) {
        file_ << value;
        std::cout << value;
        return *this;
    }

  private:
    OutputFile file_;
};

// The individuals as the report sees them.
struct Study {
    char** X;
    const short* phenotype;
    const int* ranking;
    int n;
    double ybar;  // share of cases
    double SS;    // sum of squares around it

    // Genotype of individual i (from 0) at the j-th ranked marker (from 1).
    int genotype(int i, int j) const { return X[i][ranking[j - 1]]; }
};

struct Cell {
    double cases = 0;
    double count = 0;
    double z = kEmptyCellStatistic;
};

// The nine cells of a pair, or the three of a single marker.
using Cells = std::vector<Cell>;

Study make_study(char** X, const short* phenotype, const int* ranking, int n) {
    Study study{X, phenotype, ranking, n, 0, 0};
    double sum = 0;
    for (int i = 0; i < n; ++i) sum += phenotype[i];
    study.ybar = sum / n;
    for (int i = 0; i < n; ++i) {
        const double deviation = phenotype[i] - study.ybar;
        study.SS += deviation * deviation;
    }
    return study;
}

double cell_statistic(const Study& study, double cases, double count) {
    const double n = study.n;
    return (cases / count - study.ybar) / std::sqrt(((n - count) * study.SS / n / n) / count);
}

Cells count_cells(const Study& study, const output_information& learner) {
    const bool pair = learner.nmarker == 2;
    Cells cells(pair ? 9 : 3);
    for (int i = 0; i < study.n; ++i) {
        const int first = study.genotype(i, learner.marker[1]);
        const int second = pair ? study.genotype(i, learner.marker[2]) : 0;
        if (first < 0 || second < 0) continue;
        Cell& cell = cells[pair ? 3 * first + second : first];
        cell.count += 1;
        if (study.phenotype[i] > 0) cell.cases += 1;
    }
    for (Cell& cell : cells) {
        if (cell.count > 0) cell.z = cell_statistic(study, cell.cases, cell.count);
    }
    return cells;
}

std::string cell_name(int code, bool pair) {
    return pair ? std::to_string(code / 3) + "/" + std::to_string(code % 3) : std::to_string(code);
}

double cut_to_three_decimals(double z) {
    return truncated(z * 1000) / 1000.0;
}

void write_statistics(Report& report, const Cells& cells, bool pair) {
    report << "Statistic value\t\t\t ";
    for (const Cell& cell : cells) {
        if (cell.z != 0) {
            report << general(cut_to_three_decimals(cell.z)) << "\t\t ";
        } else if (pair) {
            report << general(0.99999) << "\t ";
        } else {
            report << general(cell.z) << "\t\t";
        }
    }
    report << '\n' << "P-value\t\t\t\t ";
    for (const Cell& cell : cells) {
        if (cell.z != 0) {
            report << general(1 - pchisq(1, cell.z * cell.z)) << "\t ";
        } else if (pair) {
            report << general(0.99999) << "\t ";
        } else {
            report << "1"
                   << "\t\t ";
        }
    }
    report << '\n';
}

void write_clustering(Report& report, const output_information& learner, int cells) {
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

void write_marker_table(Report& report, const Study& study, const output_information& learner) {
    const bool pair = learner.nmarker == 2;
    const Cells cells = count_cells(study, learner);
    if (pair) {
        report << "\nMarkers\t " << learner.marker[1] << ',' << learner.marker[2];
    } else {
        report << "\nMarker\t " << learner.marker[1];
    }
    report << "\nGenotype\t\t\t ";
    for (std::size_t code = 0; code < cells.size(); ++code) {
        report << cell_name(static_cast<int>(code), pair) << "\t\t";
    }
    report << '\n' << "# of cases/# of controls\t ";
    for (const Cell& cell : cells) {
        report << general(cell.cases) << '/' << general(cell.count - cell.cases) << "\t\t";
    }
    report << '\n';
    write_statistics(report, cells, pair);
    write_clustering(report, learner, static_cast<int>(cells.size()));
}

// A table of the set of markers stands behind the base learner before already.
bool repeats(const output_information* learners, int b) {
    if (b == 0) return false;
    const auto& mine = learners[b].marker;
    const auto& before = learners[b - 1].marker;
    return mine[1] == before[1] && (learners[b].nmarker == 1 || mine[2] == before[2]);
}

void write_tables(Report& report, const Study& study, const output_information* learners, int n_bl,
                  int nmarker) {
    for (int b = 0; b < n_bl; ++b) {
        if (learners[b].nmarker == nmarker && !repeats(learners, b)) {
            write_marker_table(report, study, learners[b]);
        }
    }
}

void write_model(Report& report, const Study& study, const output_information* learners, int n_bl) {
    report << "The final Model information\n===========================\n"
           << "Base Learner         "
           << "Intercept      ";
    double explained = 0;
    for (int b = 0; b < n_bl; ++b) {
        report << 'X' << learners[b].id << (b < 10 ? "       " : "      ");
        explained += learners[b].beta * learners[b].average;
    }
    report << '\n' << "Coefficient          " << general(study.ybar - explained) << "    ";
    for (int b = 0; b < n_bl; ++b) report << fixed(learners[b].beta, 3, 7) << "  ";
    report << '\n';
}

// The genotypes for which a base learner is 1, and blanks that fill the column.
void write_function(Report& report, output_information& learner) {
    const bool pair = learner.nmarker == 2;
    if (pair && learner.ncell == 0) learner.ncell = 1;
    report << "I{ ";
    for (int c = 0; c < learner.ncell; ++c) {
        if (pair && c > 0) report << " or ";
        report << cell_name(learner.cell[c], pair);
        if (!pair) report << ' ';
    }
    report << " }" << std::string(6 * std::max((pair ? 9 : 3) - learner.ncell, 0), ' ')
           << (pair ? "\t\t " : "\t\t\t\t\t\t\t ");
}

void write_base_learners(Report& report, output_information* learners, int n_bl) {
    report << "\nVariable (Base learner) information in the final model\n"
           << "======================================================" << '\n'
           << "Base learner \t Marker involved \t Base learner function \t\t\t\t\t\t\t "
              "Important measure"
           << '\n';
    double total = 0;
    for (int b = 0; b < n_bl; ++b) total += learners[b].importance;
    for (int b = 0; b < n_bl; ++b) {
        output_information& learner = learners[b];
        report << 'X' << learner.id << "\t\t\t";
        for (int l = 1; l <= learner.nmarker; ++l) report << learner.marker[l] << ' ';
        report << "\t\t";
        write_function(report, learner);
        report << general(100 * learner.importance / total) << '\n';
    }
}

void write_importance(Report& report, const int* markers, const int* importance, int count) {
    report << "\n\n\n\nImportant measure of the markers involved in the final model\n"
           << "============================================================\n"
           << "Marker   : ";
    double total = 0;
    for (int i = 0; i < count; ++i) {
        report << markers[i] << "\t ";
        total += importance[i];
    }
    report << '\n' << "Important: ";
    for (int i = 0; i < count; ++i) {
        report << general(truncated(importance[i] / total * 1000) / 10.0) << "\t ";
    }
    report << '\n';
}

int* listed_markers(int nm, const int* marker_list, int count) {
    if (nm < 1) return new int[1]{-1};
    auto* const list = new int[static_cast<std::size_t>(std::max(nm, count)) + 1]();
    std::copy_n(marker_list, count, list);
    list[count] = -1;
    return list;
}

}  // namespace

void begin_report(int nm, const int* first_codes, const int* last_codes) {
    filecopy("parameter.txt", kReportName);
    OutputFile file(kReportName, OutputFile::Mode::kAppend);
    const int shown = std::min(kCodesShown, nm);
    file << "The first ten marker of first individual ";
    for (int j = 0; j < shown; ++j) file << first_codes[j] << ' ';
    file << "\nThe first ten marker of last  individual ";
    for (int j = 0; j < shown; ++j) file << last_codes[j] << ' ';
    file << '\n';
}

int* Final_result(int r, int /*Sample*/, int /*Marker*/, char** X, short** phenotypes,
                  int** rankings, int /*Permutation*/, int /*Replication*/, int individuals,
                  int ranked, int n_bl, output_information* learners, int* importance_list,
                  int marker_count, int* marker_list, int* first_codes, int* last_codes) {
    const Study study = make_study(X, phenotypes[r], rankings[r], individuals);
    begin_report(ranked, first_codes, last_codes);
    OutputFile(kReportName, OutputFile::Mode::kAppend) << '\n';
    Report report;
    write_model(report, study, learners, n_bl);
    write_base_learners(report, learners, n_bl);
    report << "\nMarkers or Marker combinations involved in the final model\n"
           << "\n==========================================================\n";
    std::cout << "sigma1=" << general(study.SS) << " y_bar=" << general(study.ybar) << '\n';
    report << "Single Marker \n";
    write_tables(report, study, learners, n_bl, 1);
    report << "\n\nTwo-locus combinations \n";
    write_tables(report, study, learners, n_bl, 2);
    write_importance(report, marker_list, importance_list, marker_count);
    return listed_markers(ranked, marker_list, marker_count);
}

}  // namespace vort
