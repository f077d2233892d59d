#include "csm/builder.h"

#include <algorithm>

#include "common/parallel.h"
#include "csm/quick_pvalue.h"
#include "csm/set_score.h"
#include "csm/step_up.h"
#include "numeric/index_sort.h"

namespace vort {

namespace {

constexpr int kShown = 10;             // individuals, and markers of each, on the console
constexpr int kAnnounceMarkers = 100;  // single markers are announced by the hundred

// The quick test of a single marker.
double test_marker(const BuilderData& data, int marker, Transcript& transcript) {
    std::array<double, 3> sum{};
    std::array<int, 3> count{};
    const std::span<const double> y = data.phenotype();
    for (int i = 0; i < data.individuals(); ++i) {
        const int code = data.planes().code(i, marker);
        if (code < 0) continue;
        sum[static_cast<std::size_t>(code)] += y[i];
        ++count[static_cast<std::size_t>(code)];
    }
    return quick_pvalue(sum, count, data.individuals(), data.sigma(), transcript);
}

std::vector<int> search_markers(const BuilderData& data, const BuilderSettings& settings,
                                int threads, Transcript& transcript) {
    const int m = data.markers();
    std::vector<double> pvalue(static_cast<std::size_t>(m) + 1);
    constexpr std::size_t kAtOnce = kAnnounceMarkers;
    const auto stretches = (static_cast<std::size_t>(m) + kAtOnce - 1) / kAtOnce;
    std::vector<Transcript> texts(stretches, Transcript(transcript.wanted()));
    const auto test = [&](std::size_t j, std::size_t end) {
        Transcript& text = texts[j / kAtOnce];
        for (; j < end; ++j) {
            if ((j + 1) % kAnnounceMarkers == 0) text << "j=" << j + 1 << '\n';
            pvalue[j + 1] = test_marker(data, static_cast<int>(j), text);
        }
    };
    for_each_stretch(threads, static_cast<std::size_t>(m), kAtOnce, test);
    for (const Transcript& text : texts) transcript.add(text);
    std::vector<int> order(pvalue.size());
    if (m > 0) Quickindex(pvalue.data(), order.data(), m);
    const StepUpRule rule{settings.fdr_cutoff, settings.alpha, m};
    const int kept = std::min(settings.max_retain, kept_by_step_up(1, rule, pvalue, order));
    return {order.begin() + 1, order.begin() + 1 + std::max(kept, 0)};
}

class BuildPrinter {
  public:
    BuildPrinter(const BuilderData& data, const BuilderInput& input, const Imputation& imputation,
                 Transcript& out)
        : data_(data),
          input_(input),
          place_(static_cast<std::size_t>(data.individuals())),
          shown_(std::min(kShown, data.individuals())),
          out_(out) {
        for (int i = 0; i < data.individuals(); ++i) place_[data.order()[i]] = i;
        for (int j = 0; j < std::min(kShown, data.markers()); ++j) {
            codes_.push_back(imputation.codes(j));
        }
    }

    void print_intake() {
        for (int i = 0; i < data_.individuals(); ++i) {
            if (!is_quantity(input_.phenotypes[i])) continue;
            out_ << "yy[i]=" << fixed(input_.phenotypes[i]) << '\n';
        }
        out_ << "read data finished\n";
        for (int i = 0; i < shown_; ++i) print_individual(input_.phenotypes[i], place_[i]);
    }

    void print_centred() {
        out_ << "mean=" << general(data_.mean()) << '\n';
        for (int i = 0; i < shown_; ++i) print_individual(data_.phenotype()[i], i);
    }

  private:
    void print_individual(double phenotype, int place) {
        out_ << "Y=" << general(phenotype) << " X=";
        for (const auto& codes : codes_) out_ << static_cast<int>(codes[place]) << ' ';
        out_ << '\n';
    }

    const BuilderData& data_;
    const BuilderInput& input_;
    std::vector<int> place_;  // of each individual
    int shown_;
    std::vector<std::vector<signed char>> codes_;  // of the first markers, by place
    Transcript& out_;
};

}  // namespace

MarkerSet KeptSets::set(int s, int m) const {
    const auto singles = static_cast<int>(markers.size());
    return s < singles ? marker_set(1, markers[s], m) : marker_set(2, pairs[s - singles], m);
}

KeptSets search_sets(const BuilderData& data, const BuilderSettings& settings, int threads,
                     bool wanted, PairCodeRoom& room) {
    KeptSets kept;
    kept.marker_text = kept.pair_text = Transcript(wanted);
    kept.markers = search_markers(data, settings, threads, kept.marker_text);
    if (!settings.takes_pairs()) return kept;
    PairSearchResult found =
        search_pairs({data.planes(), data.phenotype(), data.sigma(), &room}, settings.fdr_cutoff,
                     settings.alpha, settings.max_retain, threads, kept.pair_text);
    kept.pairs = std::move(found.kept);
    kept.pair_statistics = found.statistics;
    return kept;
}

std::int64_t builder_draws(const BuilderData& data, const KeptSets& kept) {
    return data.missing_before(data.markers()) + kept.count() * score_draws(data.individuals());
}

ScoredSet score_set(const BuilderData& data, const BuilderSettings& settings, const KeptSets& kept,
                    int s, const Generator& start, bool announce, bool wanted) {
    Generator generator = start;
    generator.skip(static_cast<std::uint64_t>(data.missing_before(data.markers()) +
                                              s * score_draws(data.individuals())));
    Transcript text(wanted);
    ClusterRecord record =
        best_clustering(data, settings, kept.set(s, data.markers()), generator, announce, text);
    return {std::move(record), std::move(text)};
}

void print_build(const BuilderData& data, const BuilderInput& input, const Imputation& imputation,
                 const KeptSets& kept, const std::vector<ScoredSet>& scored, bool permuted,
                 Transcript& out) {
    if (!out.wanted()) return;
    BuildPrinter printer(data, input, imputation, out);
    printer.print_intake();
    out << (permuted ? "permutation\n" : "bakeup\n");
    printer.print_centred();
    out.add(kept.marker_text);
    for (std::size_t s = 0; s < scored.size(); ++s) {
        if (s == kept.markers.size()) out.add(kept.pair_text);
        out.add(scored[s].text);
    }
    if (scored.size() == kept.markers.size()) out.add(kept.pair_text);
    if (static_cast<int>(scored.size()) < kept.count()) return;
    if (scored.empty()) out << "CSM get len=0\n";
    out << "first step finish at calculating 1-item\n";
}

}  // namespace vort
