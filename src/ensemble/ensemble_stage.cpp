// The model, its p-value and the importance of its markers: docs/method.md, sections 8 and 9.
//
// Example of importance: a coefficient of -0.5 on a pair in 100 individuals adds 0.5 / 2 / 0.01 =
// 25 to both markers, 0.01 being the mean square of a normalised column.
#include "ensemble/ensemble_stage.h"

#include <algorithm>
#include <cmath>

#include "common/stop.h"
#include "csm/marker_set.h"
#include "numeric/index_sort.h"

namespace vort {

namespace {

constexpr double kSignificant = 0.05;

}  // namespace

EnsembleStage::EnsembleStage(const ScreenedStudy& study, const Settings& settings,
                             EnsembleOptions options)
    : study_(study),
      settings_(settings),
      options_(std::move(options)),
      models_(study.genotypes, study.phenotypes, study.best, settings.builder, options_.threads,
              options_.transcript, options_.work),
      importance_(static_cast<std::size_t>(settings.builder.usable_markers()) + 1),
      selected_(static_cast<std::size_t>(std::max(settings.builder.markers + 1, 0))) {}

Result EnsembleStage::run() {
    announce();
    check_against_screening();
    analyse_observed();
    if (result_.has_model) {
        analyse_permutations();
    } else {
        result_.permuted.assign(
            static_cast<std::size_t>(std::max(settings_.builder.permutations, 0)),
            result_.observed);
    }
    list_markers();
    result_.columns = study_.best.front();
    return std::move(result_);
}

void EnsembleStage::announce() {
    Transcript out(options_.transcript);
    out << "nmarker=" << settings_.builder.markers << '\n'
        << "nsample=" << settings_.builder.individuals << '\n';
    say(out);
}

// The builder takes its sizes by rules of its own, so it may ask for more than there is.
void EnsembleStage::check_against_screening() const {
    const auto check = [](const char* what, int wanted, int there) {
        if (wanted <= there) return;
        stop("find error, the ensemble stage needs " + std::to_string(wanted) + ' ' + what +
             " but only " + std::to_string(there) + " were screened\n");
    };
    check("individuals (Sample_size)", settings_.builder.individuals,
          study_.genotypes.individuals());
    check("markers (Best_m)", settings_.builder.markers, study_.genotypes.markers());
    check("permuted data sets (Number_of_permutation)", settings_.builder.permutations,
          study_.phenotypes.count() - 1);
}

void EnsembleStage::tell(int d, const ModelledDataSet& modelled) const {
    if (!options_.progress) return;
    options_.progress(d, modelled.statistic, modelled.selection ? modelled.selection->nonzero : 0);
}

void EnsembleStage::keep_last(ModelledDataSet& modelled) {
    result_.pair_searches.add(modelled.pair_search);
    if (modelled.design) last_design_ = std::move(modelled.design);
    if (modelled.selection) last_selection_ = std::move(modelled.selection);
}

void EnsembleStage::analyse_observed() {
    Transcript out(options_.transcript);
    models_.run(0, 1, [&](int, ModelledDataSet&& modelled) {
        say(modelled.transcript);
        result_.observed = modelled.statistic;
        tell(0, modelled);
        keep_last(modelled);
    });
    if (last_design_->records().empty()) {
        out << "CSM Method find there aren't any model for the data\n";
    } else if (!last_selection_ || last_selection_->nonzero == 0) {
        if (last_selection_) read_coefficients(*last_selection_, out);
        out << "LARS Method find there aren't any model for the data\n";
    } else {
        const Coefficients read = read_coefficients(*last_selection_, out);
        record_base_learners(*last_design_, read, out);
        result_.has_model = select_markers();
    }
    if (!result_.has_model) result_.observed = Result().observed;
    say(out);
}

// Walks all groups of all records in the order of their columns.
void EnsembleStage::record_base_learners(const Design& design, const Coefficients& read,
                                         Transcript& out) {
    const int columns = static_cast<int>(read.beta.size());
    int b = 0;  // column
    for (std::size_t q = 0; q < design.records().size(); ++q) {
        const ClusterRecord& record = design.records()[q];
        out << "BCIpointer->Nozerogroupnum=" << record.nonempty_groups << '\n';
        record.show(out);
        int recorded = 0;
        for (int g = 0; g < record.candidate_columns(); ++g) {
            if (!record.is_column(g)) continue;
            if (b < columns && std::abs(read.beta[b]) != 0) {
                record_group(design, static_cast<int>(q), g, recorded, b, read, out);
                ++recorded;
            }
            ++b;
        }
        if (recorded > 0) record.show(out);
    }
    if (columns != b) out << "nC=" << columns << " q=" << b << '\n';
}

// The cells reported are those of the group whose number is how many base learners the set has had
// so far; that is group g unless an earlier group of the set has no part in the model.
void EnsembleStage::record_group(const Design& design, int q, int g, int recorded, int b,
                                 const Coefficients& read, Transcript& out) {
    const ClusterRecord& record = design.records()[q];
    const double beta = read.beta[b];
    const double share = std::abs(beta) / record.marker_count / read.mean_square[b];
    const MarkerSet set =
        marker_set(record.marker_count, record.combination_index, record.marker_total);
    BaseLearner learner;
    learner.id = static_cast<int>(result_.learners.size()) + 1;
    learner.markers = set.size;
    learner.beta = beta;
    learner.importance = share;
    learner.average = record.group_average[g];
    learner.group = g;
    const auto column = design.column(b);
    learner.carriers = static_cast<int>(std::count(column.begin(), column.end(), 1));
    for (int l = 0; l < set.size; ++l) {
        const int marker = set.marker[l] + 1;
        learner.marker[l] = marker;
        importance_[marker] += share;
        out << "importantfactor[" << marker << "]=" << general(importance_[marker])
            << " beta[q]=" << general(beta) << '\n';
    }
    learner.cells = record.show_codes(recorded, out);
    out << "group k=" << g << " beta[" << b << "]=>markerset=" << q << '\n';
    for (int code = 0; code < learner.cell_count(); ++code) {
        learner.cluster[code] = record.group_of(code);
    }
    result_.learners.push_back(std::move(learner));
}

// Whether there is any.
bool EnsembleStage::select_markers() {
    double max = 0;
    for (double& importance : importance_) {
        importance = std::abs(importance);
        if (importance > max) max = importance;
    }
    for (std::size_t i = 1; i < importance_.size(); ++i) selected_[i] = importance_[i] / max > 0;
    return std::any_of(selected_.begin(), selected_.end(), [](char in) { return in != 0; });
}

void EnsembleStage::analyse_permutations() {
    int stronger = 0;
    const int B = settings_.builder.permutations;
    models_.run(1, std::max(B, 0), [&](int d, ModelledDataSet&& modelled) {
        Transcript out(options_.transcript);
        out << "permutation = " << d - 1 << " \n";
        out.add(modelled.transcript);
        if (!modelled.stopped) tell(d, modelled);
        keep_last(modelled);
        if (modelled.stopped) return say(out);
        result_.permuted.push_back(modelled.statistic);
        if (modelled.statistic < result_.observed) ++stronger;
        out << "Cp0=" << general(result_.observed) << " Cp_per=" << general(modelled.statistic)
            << '\n';
        say(out);
    });
    result_.pvalue = static_cast<double>(stronger) / B;
    Transcript out(options_.transcript);
    out << "pvalue=" << general(result_.pvalue) << '\n';
    say(out);
}

void EnsembleStage::list_markers() {
    const int m = static_cast<int>(importance_.size()) - 1;
    std::vector<int> order(importance_.size());
    if (m > 0) Quickindex(importance_.data(), order.data(), m);
    for (int position = m; position >= 1; --position) {
        const int marker = order[position];
        if (selected_[marker] == 0) continue;
        result_.markers.push_back(marker);
        result_.importance.push_back(truncated(importance_[marker]));
    }
}

void EnsembleStage::print_markers(const Result& result) const {
    const bool significant = result.has_model && result.pvalue < kSignificant;
    Transcript out(options_.transcript);
    out << (significant ? "Best marker is " : "drop marker is ");
    for (const int marker : result.markers) out << marker << ' ';
    out << (significant ? "\nImportantmeasure is " : "\nimportantmeasure is ");
    for (const int measure : result.importance) out << measure << ' ';
    out << '\n';
    for (const char in : selected_) out << (in != 0 ? '1' : '0');
    out << '\n';
    say(out);
}

IntermediateTexts EnsembleStage::intermediate_texts() const {
    return {last_design_ ? last_design_->text() : "",
            last_selection_ ? coefficient_text(*last_selection_) : ""};
}

}  // namespace vort
