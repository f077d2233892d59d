// Base learners and importance: docs/method.md, section 9.
//
// Example of importance: a coefficient of -0.5 on a pair in 100 individuals adds 0.5 / 2 / 0.01 =
// 25 to both markers, 0.01 being the mean square of a normalised column.
#include "ensemble/observed_model.h"

#include <algorithm>
#include <cmath>

#include "csm/marker_set.h"

namespace vort {

namespace {

class Recorder {
  public:
    Recorder(const BuilderSettings& settings, Transcript& out) : out_(out) {
        model_.importance.resize(static_cast<std::size_t>(settings.usable_markers()) + 1);
        model_.selected.resize(static_cast<std::size_t>(std::max(settings.markers + 1, 0)));
    }

    ObservedModel record(const ModelledDataSet& modelled);

  private:
    void record_base_learners(const Design& design, const Coefficients& read);
    void record_group(const Design& design, int q, int g, int recorded, int b,
                      const Coefficients& read);
    bool select_markers();

    Transcript& out_;
    ObservedModel model_;
};

ObservedModel Recorder::record(const ModelledDataSet& modelled) {
    const auto& selection = modelled.selection;
    if (!modelled.design || modelled.design->records().empty()) {
        out_ << "CSM Method find there aren't any model for the data\n";
    } else if (!selection || selection->nonzero == 0) {
        if (selection) read_coefficients(*selection, out_);
        out_ << "LARS Method find there aren't any model for the data\n";
    } else {
        record_base_learners(*modelled.design, read_coefficients(*selection, out_));
        model_.exists = select_markers();
    }
    if (model_.exists) model_.statistic = modelled.statistic;
    return std::move(model_);
}

// Walks all groups of all records in the order of their columns.
void Recorder::record_base_learners(const Design& design, const Coefficients& read) {
    const int columns = static_cast<int>(read.beta.size());
    int b = 0;  // column
    for (std::size_t q = 0; q < design.records().size(); ++q) {
        const ClusterRecord& record = design.records()[q];
        out_ << "BCIpointer->Nozerogroupnum=" << record.nonempty_groups << '\n';
        record.show(out_);
        int recorded = 0;
        for (int g = 0; g < record.candidate_columns(); ++g) {
            if (!record.is_column(g)) continue;
            if (b < columns && std::abs(read.beta[b]) != 0) {
                record_group(design, static_cast<int>(q), g, recorded, b, read);
                ++recorded;
            }
            ++b;
        }
        if (recorded > 0) record.show(out_);
    }
    if (columns != b) out_ << "nC=" << columns << " q=" << b << '\n';
}

// The cells reported are those of the group whose number is how many base learners the set has had
// so far; that is group g unless an earlier group of the set has no part in the model.
void Recorder::record_group(const Design& design, int q, int g, int recorded, int b,
                            const Coefficients& read) {
    const ClusterRecord& record = design.records()[q];
    const double beta = read.beta[b];
    const double share = std::abs(beta) / record.marker_count / read.mean_square[b];
    const MarkerSet set =
        marker_set(record.marker_count, record.combination_index, record.marker_total);
    BaseLearner learner;
    learner.id = static_cast<int>(model_.learners.size()) + 1;
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
        model_.importance[marker] += share;
        out_ << "importantfactor[" << marker << "]=" << general(model_.importance[marker])
             << " beta[q]=" << general(beta) << '\n';
    }
    learner.cells = record.show_codes(recorded, out_);
    out_ << "group k=" << g << " beta[" << b << "]=>markerset=" << q << '\n';
    for (int code = 0; code < learner.cell_count(); ++code) {
        learner.cluster[code] = record.group_of(code);
    }
    model_.learners.push_back(std::move(learner));
}

// Whether there is any.
bool Recorder::select_markers() {
    double max = 0;
    for (double& importance : model_.importance) {
        importance = std::abs(importance);
        if (importance > max) max = importance;
    }
    for (std::size_t i = 1; i < model_.importance.size(); ++i) {
        model_.selected[i] = model_.importance[i] / max > 0;
    }
    return std::any_of(model_.selected.begin(), model_.selected.end(),
                       [](char in) { return in != 0; });
}

}  // namespace

ObservedModel observed_model(const ModelledDataSet& modelled, const BuilderSettings& settings,
                             Transcript& out) {
    return Recorder(settings, out).record(modelled);
}

}  // namespace vort
