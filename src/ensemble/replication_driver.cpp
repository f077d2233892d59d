// The ensemble stage.
//
// One CSM_LARS builds and selects a model on the observed data set; its statistic S0 is
// Cp(stop) / Cp(0), the smaller the more the model explains. The coefficients become importance
// measures of the markers. The same build and selection on every permuted data set gives the
// statistics S_k that the model has to be better than: p = #{k : S_k < S0} / B, without the usual
// +1 in numerator and denominator, so p can be 0, and is not a number where B is 0.
//
// Where the observed data give no model at all, nothing is permuted: p is 1 and every statistic
// is reported as 0.5.
#include "ensemble/replication_driver.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "common/diagnostics.h"
#include "common/end_program.h"
#include "common/number_text.h"
#include "common/output_file.h"
#include "common/text_input.h"
#include "ensemble/csm_lars.h"
#include "ensemble/final_report.h"
#include "ensemble/globals.h"
#include "ensemble/importance.h"
#include "numeric/combinations.h"
#include "numeric/index_sort.h"
#include "numeric/offset_owner.h"
#include "numeric/random.h"

namespace vort {

namespace {

constexpr double kStatisticWithoutModel = 0.5;
constexpr double kSignificant = 0.05;

// What was screened and loaded, as the stage gets it.
struct ScreenedData {
    int Sample;
    int Marker;
    char** X;
    short** phenotypes;
    int** rankings;
    int Permutation;
    int Replication;
};

struct Coefficients {
    int columns = 0;
    int nonzero = 0;
    std::unique_ptr<double[]> beta;
    std::unique_ptr<double[]> mean_square;
};

Coefficients read_coefficients(const std::string& path) {
    Coefficients read;
    double* beta = nullptr;
    double* mean_square = nullptr;
    read.columns = readbeta(path.c_str(), &beta, &read.nonzero, &mean_square);
    read.beta.reset(beta);
    read.mean_square.reset(mean_square);
    return read;
}

class EnsembleStage {
  public:
    explicit EnsembleStage(const ScreenedData& data)
        : data_(data),
          store_path_(std::string(hostname) + "output_X_Y.txt"),
          beta_path_(std::string(hostname) + "beta.txt"),
          model_(remove_leftovers()),
          markers_(std::max(model_.marker_num, 0)),
          importance_(1, markers_),
          selected_(static_cast<unsigned long>(std::max(model_.marker_num + 1, 0))) {
        repeat = model_.csm_replicate;
        permutation = model_.Number_of_permutation;
        base_learner.clear();
    }

    void announce() const;
    void check_against_screening() const;
    bool analyse_observed();
    void take_no_model_outcome();
    void analyse_permutations();
    void write_pvalues() const;
    void list_markers();
    int* report(int* count);

  private:
    char* remove_leftovers() const;
    double run_data_set(int row);
    void record_base_learners(const BestClusterInformationArray& records,
                              const Coefficients& coefficients);
    void check_record(const BestClusterInformation& record) const;
    void record_group(BestClusterInformation& record, int q, int g, int c_q, int b,
                      const Coefficients& coefficients);
    void select_markers();

    ScreenedData data_;
    std::string store_path_;
    std::string beta_path_;
    CSM_LARS model_;
    int markers_;
    OffsetVector<double> importance_;  // per marker 1 .. m
    bitset selected_;                  // markers of positive importance
    double observed_ = kStatisticWithoutModel;
    std::vector<double> permuted_;
    double pvalue_ = 1.0;
    double bestp_ = 1.0;
    std::vector<int> marker_list_;  // by decreasing importance
    std::vector<int> importance_list_;
};

// What an earlier run left must not be taken for a result of this one.
char* EnsembleStage::remove_leftovers() const {
    for (const std::string& path : {store_path_, beta_path_}) {
        remove_file(path);
        if (!TextInput(path).is_open()) continue;
        diagnose("leftover files", path, 0, "is left from an earlier run and cannot be removed");
        end_program();
    }
    return hostname;
}

void EnsembleStage::announce() const {
    std::cout << "nmarker=" << model_.marker_num << '\n';
    std::cout << "nsample=" << model_.Sample_size << '\n';
}

// The stage reads "parameter.txt" by rules of its own, so it may ask for more than there is.
void EnsembleStage::check_against_screening() const {
    const auto check = [](const char* what, int wanted, int there) {
        if (wanted <= there) return;
        std::cout << "find error, the ensemble stage needs " << wanted << ' ' << what
                  << " but only " << there << " were screened\n";
        end_program();
    };
    check("individuals (Sample_size)", model_.Sample_size, data_.Sample);
    check("markers (Best_m)", model_.marker_num, data_.Marker);
    check("permuted data sets (Number_of_permutation)", permutation, data_.Permutation);
}

double EnsembleStage::run_data_set(int row) {
    double stat1 = 0.5;
    double stat2 = 0;
    double model_test_value = 0.5;
    double stat4 = std::numeric_limits<int>::max();
    double stat5 = 0;
    return model_.run(row, data_.Sample, data_.Marker, data_.X, data_.phenotypes, data_.rankings,
                      data_.Permutation, data_.Replication, 0, &stat1, &stat2, &model_test_value,
                      &stat4, &stat5);
}

// Returns whether there is a model.
bool EnsembleStage::analyse_observed() {
    init_rand1();
    std::srand(0);
    model_.csm.permutation_mode = 0;
    observed_ = run_data_set(0);

    BestClusterInformationArray records;
    if (records.getbestmarker(store_path_.c_str()) == 0) {
        std::cout << "CSM Method find there aren't any model for the data\n";
        return false;
    }
    const Coefficients coefficients = read_coefficients(beta_path_);
    if (coefficients.nonzero == 0) {
        std::cout << "LARS Method find there aren't any model for the data\n";
        return false;
    }
    record_base_learners(records, coefficients);
    select_markers();
    return selected_.SizeofSet() > 0;
}

// Walks all groups of all records in the order in which their columns were written.
void EnsembleStage::record_base_learners(const BestClusterInformationArray& records,
                                         const Coefficients& coefficients) {
    int b = 0;  // column
    for (int q = 0; q < records.count(); ++q) {
        if (records.items[q] == nullptr) continue;
        BestClusterInformation& record = *records.items[q];
        check_record(record);
        std::cout << "BCIpointer->Nozerogroupnum=" << record.group_count_copy << '\n';
        record.ShowMemberInGroup();
        int c_q = 0;
        for (int g = 0; g + 1 < static_cast<int>(record.group_count_copy); ++g) {
            if (!(record.group_frequency[g] > 0 && record.group_frequency[g] < 1)) continue;
            if (b < coefficients.columns && std::abs(coefficients.beta[b]) != 0) {
                record_group(record, q, g, c_q, b, coefficients);
                ++c_q;
            }
            ++b;
        }
        if (c_q > 0) record.ShowMemberInGroup();
    }
    if (coefficients.columns != b) {
        std::cout << "nC=" << coefficients.columns << " q=" << b << '\n';
    }
}

// The record must be one of this stage's marker sets.
void EnsembleStage::check_record(const BestClusterInformation& record) const {
    const int k = static_cast<int>(record.marker_count);
    const int set = record.combination_index;
    if (record.marker_total == markers_ && set >= 1 && set <= choose(markers_, k)) return;
    std::cout << "find error in BCI file with set " << set << " of " << record.marker_total
              << " markers\n";
    end_program();
}

// The cells reported are those of the set's c_q-th group, c_q being the number of base learners
// recorded for the set so far; that is group g unless an earlier group of the set has no part in
// the model.
void EnsembleStage::record_group(BestClusterInformation& record, int q, int g, int c_q, int b,
                                 const Coefficients& coefficients) {
    output_information learner;
    const double beta = coefficients.beta[b];
    const double v = coefficients.mean_square[b];
    calculationimportfactor(&record, importance_.data(), beta, v, 1, learner.marker.data(),
                            &learner.ncell, learner.cell.data(), c_q);
    std::cout << "group k=" << g << " beta[" << b << "]=>markerset=" << q << '\n';
    learner.id = static_cast<int>(base_learner.size()) + 1;
    learner.nmarker = static_cast<int>(record.marker_count);
    learner.beta = beta;
    learner.importance = std::abs(beta) / learner.nmarker / v;
    learner.average = record.group_average[g];
    const int cells = learner.nmarker == 1 ? 3 : 9;
    for (int code = 0; code < cells; ++code) learner.cluster[code] = record.getcluster_num(code);
    base_learner.push_back(learner);
}

void EnsembleStage::select_markers() {
    double max = 0;
    for (int i = 1; i <= markers_; ++i) {
        importance_[i] = std::abs(importance_[i]);
        if (importance_[i] > max) max = importance_[i];
    }
    for (int i = 1; i <= markers_; ++i) {
        if (importance_[i] / max > 0) selected_.SetbitOne(static_cast<unsigned long>(i));
    }
}

void EnsembleStage::take_no_model_outcome() {
    pvalue_ = 1.0;
    observed_ = kStatisticWithoutModel;
    permuted_.assign(static_cast<std::size_t>(std::max(permutation, 0)), kStatisticWithoutModel);
}

void EnsembleStage::analyse_permutations() {
    model_.csm.permutation_mode = 1;
    int stronger = 0;
    for (int k = 0; k < permutation; ++k) {
        std::cout << "permutation = " << k << " \n";
        permuted_.push_back(run_data_set(data_.Replication + k));
        if (permuted_.back() < observed_) ++stronger;
        std::cout << "Cp0=" << general(observed_) << " Cp_per=" << general(permuted_.back())
                  << '\n';
    }
    pvalue_ = static_cast<double>(stronger) / permutation;
    std::cout << "pvalue=" << general(pvalue_) << '\n';
    if (pvalue_ < bestp_) bestp_ = pvalue_;
}

void EnsembleStage::write_pvalues() const {
    OutputFile file("P_value.txt", OutputFile::Mode::kTruncate);
    if (!file.is_open()) end_program();
    file << "P-value information\n===================\nOverall P-value=" << general(pvalue_)
         << "\n\nThe value of statistics in original data set\nT0=" << general(1 - observed_)
         << "\n\nThe values of the statistics in permuted data sets\n\n";
    for (std::size_t k = 0; k < permuted_.size(); ++k) {
        const double S = permuted_[k];
        file << "T0=" << general(1 - observed_) << "\t T" << k + 1 << '=';
        file << general(S >= 0 && S < 1 ? 1 - S : 0) << '\n';
    }
}

void EnsembleStage::list_markers() {
    const bool significant = bestp_ < kSignificant;
    std::vector<int> order(static_cast<std::size_t>(markers_) + 1);
    if (markers_ > 0) Quickindex(importance_.data(), order.data(), markers_);
    std::cout << (significant ? "Best marker is " : "drop marker is ");
    for (int position = markers_; position >= 1; --position) {
        const int marker = order[position];
        if (selected_[static_cast<unsigned long>(marker)] == 0) continue;
        std::cout << marker << ' ';
        marker_list_.push_back(marker);
        importance_list_.push_back(truncated(importance_[marker]));
    }
    std::cout << (significant ? "\nImportantmeasure is " : "\nimportantmeasure is ");
    for (const int measure : importance_list_) std::cout << measure << ' ';
    std::cout << '\n';
    selected_.ShowBitSet();
}

int* EnsembleStage::report(int* count) {
    *count = static_cast<int>(base_learner.size());
    int* const first_codes = model_.first_codes.data();
    int* const last_codes = model_.last_codes.data();
    if (*count > 0) {
        return Final_result(0, data_.Sample, data_.Marker, data_.X, data_.phenotypes,
                            data_.rankings, data_.Permutation, data_.Replication, ns, nm, *count,
                            base_learner.data(), importance_list_.data(),
                            static_cast<int>(marker_list_.size()), marker_list_.data(), first_codes,
                            last_codes);
    }
    begin_report(nm, first_codes, last_codes);
    return new int[1]{-1};
}

}  // namespace

int* permutation_simulation1(int Sample, int Marker, char** X, short** phenotypes, int** rankings,
                             int Permutation, int Replication, int* count) {
    EnsembleStage stage({Sample, Marker, X, phenotypes, rankings, Permutation, Replication});
    stage.announce();
    stage.check_against_screening();
    if (stage.analyse_observed()) {
        stage.analyse_permutations();
    } else {
        stage.take_no_model_outcome();
    }
    stage.write_pvalues();
    stage.list_markers();
    return stage.report(count);
}

}  // namespace vort
