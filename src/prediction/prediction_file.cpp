#include "prediction/prediction_file.h"

#include "results/table_text.h"

namespace vort {

namespace {

std::string_view phenotype_text(short phenotype) {
    if (phenotype == kNoPhenotype) return kNA;
    return phenotype == 1 ? "2" : "1";
}

std::string_view has_text(signed char has) {
    if (has < 0) return kNA;
    return has == 0 ? "0" : "1";
}

void put_prediction(const RiskModel& model, const Predictions& predictions, std::size_t i,
                    Transcript& out) {
    put_number(out, predictions.risk[i]);
    put_number(out, predictions.genotyped[i] / static_cast<double>(model.markers.size()));
    for (std::size_t b = 0; b < predictions.learners(); ++b) {
        out << '\t' << has_text(predictions.has(i, b));
    }
}

}  // namespace

void put_predictions(std::span<const Individual> individuals, std::span<const short> phenotypes,
                     const RiskModel& model, const Predictions& predictions, Transcript& out) {
    out << "FID\tIID\tPHENO\tRISK\tMARKERS_FOUND";
    for (const RiskLearner& learner : model.learners) out << "\tX" << learner.id;
    out << '\n';
    for (std::size_t i = 0; i < individuals.size(); ++i) {
        out << individuals[i].family << '\t' << individuals[i].id << '\t'
            << phenotype_text(phenotypes[i]);
        put_prediction(model, predictions, i, out);
        out << '\n';
    }
}

}  // namespace vort
