#include "prediction/predictions.h"

#include "results/table_text.h"

namespace vort {

namespace {

using Codes = std::vector<signed char>;  // of each individual, copies of the model's A1

Codes codes_of(const MarkerMatch& match, const Genotypes& genotypes) {
    Codes codes(static_cast<std::size_t>(genotypes.individuals()), -1);
    if (!match.found()) return codes;
    genotypes.unpack(match.column, codes.data());
    if (!match.counts_other()) return codes;
    for (signed char& code : codes) {
        if (code >= 0) code = static_cast<signed char>(2 - code);
    }
    return codes;
}

// Cells that a genotype may be in, by one marker's code: all where it is missing.
unsigned possible(int code) {
    return code < 0 ? 7U : 1U << code;
}

// Whether whoever is in one of the possible cells has the learner.
signed char has_learner(const RiskLearner& learner, unsigned first, unsigned second) {
    bool some = false;
    bool all = true;
    for (unsigned a = 0; a < 3; ++a) {
        for (unsigned b = 0; b < 3; ++b) {
            if ((first >> a & second >> b & 1U) == 0) continue;
            const bool in = learner.cells[learner.size == 2 ? 3 * a + b : a];
            some = some || in;
            all = all && in;
        }
    }
    if (some != all) return -1;
    return all ? 1 : 0;
}

double risk_of(const RiskModel& model, const Predictions& predictions, std::size_t i) {
    double sum = 0;
    for (std::size_t b = 0; b < model.learners.size(); ++b) {
        const RiskLearner& learner = model.learners[b];
        const signed char has = predictions.has(i, b);
        sum += has < 0 ? learner.difference * learner.share : has * learner.difference;
    }
    return as_written(model.intercept + sum);
}

}  // namespace

Predictions predict(const RiskModel& model, std::span<const MarkerMatch> matches,
                    const Genotypes& genotypes) {
    const auto people = static_cast<std::size_t>(genotypes.individuals());
    std::vector<Codes> codes;
    codes.reserve(matches.size());
    for (const MarkerMatch& match : matches) codes.push_back(codes_of(match, genotypes));
    Predictions out(people, model.learners.size());
    for (std::size_t i = 0; i < people; ++i) {
        for (const Codes& marker : codes) out.genotyped[i] += marker[i] >= 0 ? 1 : 0;
        for (std::size_t b = 0; b < model.learners.size(); ++b) {
            const RiskLearner& learner = model.learners[b];
            const auto at = [&](int l) { return possible(codes[learner.marker[l]][i]); };
            out.has(i, b) = has_learner(learner, at(0), learner.size == 2 ? at(1) : 1U);
        }
        out.risk[i] = risk_of(model, out, i);
    }
    return out;
}

}  // namespace vort
