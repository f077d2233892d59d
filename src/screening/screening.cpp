// Screenings: test, list, rank.
//
// Every marker is tested and ranked by its smallest p-value (docs/method.md, section 1). The
// console shows, in this order, the markers that pass a fixed threshold under each model and under
// the minimum, the counts of these lists, and the ranking of all markers, of which only the best
// are kept.
//
// The data sets of a run differ in who is a case, not in the genotypes, so a batch of them goes
// through the genotypes together, stretch of markers by stretch (stretch_screening.h). What a batch
// leaves is a p-value for each marker and data set; then each data set is ranked and told. Threads
// share the stretches first and the data sets then, and data sets are handed on in order. A batch
// has as many data sets as the memory for its p-values allows, so how many there are altogether
// does not count.
//
// Cost, for a marker and data set: three bits for each individual, one p-value, a share of the
// sort, and a line where somebody wants it. Without lines the sort goes only as deep as the markers
// that are kept.
#include "screening/screening.h"

#include <algorithm>
#include <ctime>
#include <memory>

#include "common/decimal_digits.h"
#include "common/large_array.h"
#include "common/parallel.h"
#include "common/workspaces.h"
#include "numeric/keyed_sort.h"
#include "screening/fdr_report.h"
#include "screening/prepared_file.h"

namespace vort {

namespace {

constexpr int kMinimum = kModels;  // the minimum's place among the model names
constexpr int kMostAtOnce = 64;    // data sets of a batch

void print_findings(Transcript& out, int model, const std::vector<Finding>& findings) {
    for (const auto& [marker, pvalue] : findings) {
        out << "model=" << kModelNames[model] << " i=" << marker << " pvalue=" << general(pvalue)
            << '\n';
    }
}

void print_lists(Transcript& out, const Findings& all) {
    for (int model = 0; model < kModels; ++model) {
        print_findings(out, model, all.significant[model]);
    }
    print_findings(out, kMinimum, all.minimum_significant);
    for (int model = 0; model < kModels; ++model) {
        out << "model=" << kModelNames[model]
            << " # of marker's pvalue<0.002=" << all.significant[model].size() << '\n';
    }
    out << "model=" << kModelNames[kMinimum]
        << " # of marker's pvalue<0.002/4=" << all.minimum_significant.size() << '\n';
    for (int model = 0; model < kModels; ++model) {
        out << "model=" << kModelNames[model]
            << " # of marker's missing num than 20=" << all.dropped_significant[model]
            << " total_count_drop_diseasemaker=" << all.dropped << '\n';
    }
}

char* put(std::string_view piece, char* at) {
    return at + piece.copy(at, piece.size());
}

// Half of what the console shows, so put together in place.
void print_ranking(Transcript& out, std::span<const KeyedIndex> ranked) {
    constexpr std::size_t kLongestLine = 128;
    DecimalDigits k(0);
    for (const auto& [pvalue, marker] : ranked) {
        const DecimalDigits ref(marker - 1);
        k = k.next();
        char* at = k.write(out.room(kLongestLine));
        at = ref.next().write(put(" index=", at));
        at = general(pvalue).write(put(" pvalue=", at));
        at = ref.write(put(" ref=", at));
        *at++ = '\n';
        out.used(at);
    }
}

// All data sets of one batch.
class Batch {
  public:
    Batch(const ScreeningStudy& study, const PhenotypeRows& phenotypes, int first, int count,
          double* minima)
        : study_(study),
          cases_(phenotypes, first, count),
          minima_{minima, static_cast<std::size_t>(study.genotypes.markers())} {}

    void test(int threads, WorkMeter& meter) {
        const int markers = study_.genotypes.markers();
        const std::time_t start = std::time(nullptr);
        const std::size_t stretches = (minima_.markers + kStretch - 1) / kStretch;
        findings_.resize(stretches);
        Workspaces<StretchScreening> spaces([this] { return StretchScreening(study_, cases_); });
        for_each_index(threads, stretches, [&](std::size_t s) {
            findings_[s].resize(static_cast<std::size_t>(cases_.count()));
            const int from = static_cast<int>(s) * kStretch;
            spaces.borrow()->screen(from, std::min(kStretch, markers - from), minima_,
                                    findings_[s]);
            meter.add(count() / static_cast<double>(stretches));
        });
        seconds_ = static_cast<long>(std::time(nullptr) - start);
    }

    int count() const { return cases_.count(); }
    long seconds() const { return seconds_; }
    std::span<const double> minima(int d) const { return {minima_.row(d), minima_.markers}; }
    Findings findings(int d) const {
        Findings all;
        for (const auto& stretch : findings_) all.add(stretch[static_cast<std::size_t>(d)]);
        return all;
    }

  private:
    static constexpr int kStretch = StretchScreening::kStretch;

    const ScreeningStudy& study_;
    CasePlanes cases_;
    MinimaRows minima_;
    std::vector<std::vector<Findings>> findings_;  // of each stretch, for each data set
    long seconds_ = 0;
};

class Screening {
  public:
    Screening(const Genotypes& genotypes, const PhenotypeRows& phenotypes, const MarkerTable& table,
              const ScreeningOptions& options, Diagnostics& diagnostics)
        : phenotypes_(phenotypes),
          table_(table),
          options_(options),
          diagnostics_(diagnostics),
          sizes_(group_sizes(phenotypes)),
          study_{genotypes, sizes_, missing_limits(sizes_), best_instructions()},
          rankings_([this] { return std::vector<KeyedIndex>(markers()); }),
          texts_([this] { return Transcript(options_.transcript); }) {}

    void run(const TakeScreened& take);

  private:
    static GroupSizes group_sizes(const PhenotypeRows& phenotypes) {
        const std::vector<short> observed = phenotypes.row(0);
        const auto cases = std::count(observed.begin(), observed.end(), 1);
        return {static_cast<int>(cases),
                static_cast<int>(static_cast<std::ptrdiff_t>(observed.size()) - cases)};
    }
    std::size_t markers() const { return static_cast<std::size_t>(study_.genotypes.markers()); }
    ScreenedDataSet rank(const Batch& batch, int first, int d);
    void report(int row, std::span<const KeyedIndex> ranked, ScreenedDataSet& out);

    const PhenotypeRows& phenotypes_;
    const MarkerTable& table_;
    const ScreeningOptions& options_;
    Diagnostics& diagnostics_;
    GroupSizes sizes_;
    ScreeningStudy study_;
    Workspaces<std::vector<KeyedIndex>> rankings_;
    Workspaces<Transcript> texts_;
};

ScreenedDataSet Screening::rank(const Batch& batch, int first, int d) {
    ScreenedDataSet out;
    out.transcript = texts_.borrow();
    out.transcript->clear();
    const auto ranked = rankings_.borrow();
    const std::span<const double> minima = batch.minima(d);
    for (std::size_t j = 0; j < minima.size(); ++j) {
        (*ranked)[j] = {minima[j], static_cast<int>(j) + 1};
    }
    const std::size_t kept = std::min(markers(), static_cast<std::size_t>(options_.kept));
    const bool rank_all = options_.rank_all && options_.data_set + first + d == 0;
    const bool whole = options_.transcript || rank_all || !options_.fdr_report.empty();
    sort_keyed(*ranked, whole ? markers() : std::max<std::size_t>(kept, 1));
    out.pvalues = minima;
    if (markers() > 0) out.smallest_pvalue = ranked->front().key;
    const auto columns = [&](std::size_t count) {
        std::vector<int> best(count);
        for (std::size_t k = 0; k < count; ++k) best[k] = (*ranked)[k].index - 1;
        return best;
    };
    out.best = columns(kept);
    if (rank_all) out.ranking = columns(markers());
    if (options_.transcript) {
        *out.transcript << "time of pvalue " << batch.seconds() << '\n';
        print_lists(*out.transcript, batch.findings(d));
        print_ranking(*out.transcript, *ranked);
    }
    report(first + d, *ranked, out);
    return out;
}

void Screening::report(int row, std::span<const KeyedIndex> ranked, ScreenedDataSet& out) {
    if (!options_.prepared_prefix.empty()) {
        write_prepared_file(prepared_file_name(options_.prepared_prefix, options_.data_set + row),
                            study_.genotypes, phenotypes_.row(row), out.best, diagnostics_);
    }
    if (options_.data_set + row > 0 || options_.fdr_report.empty()) return;
    std::vector<int> order{0};
    for (const KeyedIndex& item : ranked) order.push_back(item.index);
    write_fdr_report(options_.fdr_report, test_all_markers(study_.genotypes, phenotypes_.row(row)),
                     order, table_, *out.transcript, diagnostics_);
}

void Screening::run(const TakeScreened& take) {
    const int rows = phenotypes_.count();
    const int at_once = std::min(data_sets_at_once(static_cast<double>(markers()), options_),
                                 rows - options_.first_row);
    LargeArray<double> minima(static_cast<std::size_t>(at_once) * markers());
    WorkMeter meter(Stage::kScreen, options_.work);
    for (int first = options_.first_row; first < rows; first += at_once) {
        Batch batch(study_, phenotypes_, first, std::min(at_once, rows - first), minima.data());
        batch.test(options_.threads, meter);
        for_each_in_order(
            options_.threads, static_cast<std::size_t>(batch.count()),
            [&](std::size_t d) { return rank(batch, first, static_cast<int>(d)); },
            [&](std::size_t d, ScreenedDataSet screened) {
                take(options_.data_set + first + static_cast<int>(d), std::move(screened));
            });
    }
}

}  // namespace

MissingLimits missing_limits(GroupSizes sizes) {
    return {static_cast<int>(sizes.cases * kMissingShare),
            static_cast<int>(sizes.controls * kMissingShare)};
}

int data_sets_at_once(double markers, const ScreeningOptions& options) {
    const double row = 8 * std::max(markers, 1.0);
    return static_cast<int>(std::clamp<double>(options.batch_bytes / row, 1, kMostAtOnce));
}

double batch_bytes_for(double individuals, double markers) {
    return std::max(ScreeningOptions().batch_bytes, individuals / 4 * markers / 16);
}

double screening_bytes(double markers, double individuals, const ScreeningOptions& options) {
    const double batch =
        std::min(std::max(options.batch_bytes, 8 * markers), 8 * markers * kMostAtOnce);
    const double ranking = markers * (16 + (options.transcript ? 80 : 0));
    return batch + individuals / 8 * kMostAtOnce + options.threads * (ranking + 1e6);
}

void screen_data_sets(const Genotypes& genotypes, const PhenotypeRows& phenotypes,
                      const MarkerTable& table, const ScreeningOptions& options,
                      Diagnostics& diagnostics, const TakeScreened& take) {
    Screening(genotypes, phenotypes, table, options, diagnostics).run(take);
}

}  // namespace vort
