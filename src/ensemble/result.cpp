#include "ensemble/result.h"

#include "common/transcript.h"

namespace vort {

void PairSearchCounts::add(const PairSearchStatistics& search) {
    using StepUp = PairSearchStatistics::StepUp;
    using Order = PairSearchStatistics::Order;
    ++searches;
    if (search.step_up == StepUp::kBounds || search.step_up == StepUp::kPvalues) ++refined;
    if (search.order == Order::kTies) ++ties;
    if (search.order == Order::kPlain) ++plain;
    pvalues += search.pvalues;
}

std::string pvalue_text(const Result& result) {
    Transcript out(true);
    out << "P-value information\n===================\nOverall P-value=" << general(result.pvalue)
        << "\n\nThe value of statistics in original data set\nT0=" << general(1 - result.observed)
        << "\n\nThe values of the statistics in permuted data sets\n\n";
    for (std::size_t k = 0; k < result.permuted.size(); ++k) {
        const double S = result.permuted[k];
        out << "T0=" << general(1 - result.observed) << "\t T" << k + 1 << '='
            << general(S >= 0 && S < 1 ? 1 - S : 0) << '\n';
    }
    return std::string(out.text());
}

}  // namespace vort
