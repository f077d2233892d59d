#include "ensemble/model_stage.h"

#include <algorithm>

#include "common/parallel.h"
#include "common/stop.h"

namespace vort {

namespace {

constexpr int kMostAtOnce = 64;
constexpr double kWindowBytes = 64e6;

// Of one search of all pairs, at most.
double pair_bytes(double markers) {
    return 8 * markers * (markers - 1) / 2;
}

}  // namespace

// One data set on its way.
struct ModelStage::Work {
    int row = 0;
    bool quantitative_before = false;
    std::vector<short> phenotypes;
    std::optional<BuilderInput> input;
    std::optional<BuilderData> data;
    KeptSets kept;
    Generator start;
    bool announce = false;
    std::vector<std::optional<ScoredSet>> scored;
    std::vector<std::optional<Stop>> score_stops;
    std::optional<Stop> stopped;
    ModelledDataSet result;
};

ModelStage::ModelStage(const Genotypes& genotypes, const PhenotypeRows& phenotypes,
                       std::span<const std::vector<int>> best, const BuilderSettings& settings,
                       int threads, bool wanted, std::function<void(double)> work)
    : genotypes_(genotypes),
      phenotypes_(phenotypes),
      best_(best),
      settings_(settings),
      threads_(threads),
      wanted_(wanted),
      meter_(std::move(work)),
      rooms_([] { return PairCodeRoom(); }) {}

int ModelStage::window_size() const {
    const double one = BuilderData::bytes(settings_.individuals, settings_.usable_markers());
    const int fitting = static_cast<int>(std::min<double>(kWindowBytes / one, kMostAtOnce));
    return std::max(fitting, std::min(threads_, kMostAtOnce));
}

// Of the time that a data set takes, roughly: a pair is one look at each individual in bit planes,
// a kept set 500 draws of each.
double ModelStage::share_of_search() const {
    constexpr double kPair = 0.025;
    constexpr double kSet = 500;
    const double m = settings_.usable_markers();
    const double pairs = m * (m - 1) / 2;
    const double sets =
        std::min<double>(settings_.max_retain, m) + std::min<double>(settings_.max_retain, pairs);
    return (kPair * pairs + 1) / (kPair * pairs + kSet * std::max(sets, 0.0) + 1);
}

double ModelStage::bytes(double individuals, double markers, double columns, int threads) {
    const double one = BuilderData::bytes(individuals, markers);
    // A design in work: columns as bytes and as numbers, and the vectors of the selection.
    const double design = individuals * (9 * columns + 64);
    const double pairs = std::max(pair_bytes(markers), threads * kWindowBytes);
    return std::max(kWindowBytes, threads * one) + threads * (design + 32 * individuals) +
           std::min(pairs, threads * pair_bytes(markers));
}

void ModelStage::run(int first, int count, const Take& take) {
    const int at_once = window_size();
    for (int done = 0; done < count; done += at_once) {
        run_window(first + done, std::min(at_once, count - done), take);
    }
}

void ModelStage::run_window(int first, int count, const Take& take) {
    std::vector<Work> window(static_cast<std::size_t>(count));
    for (int w = 0; w < count; ++w) window[w].row = first + w;
    take_data(window);
    search(window);
    place_draws(window);
    score(window);
    for_each_index(threads_, window.size(), [&](std::size_t w) { finish(window[w]); });
    for (Work& work : window) {
        work.result.stopped = work.stopped.has_value();
        take(work.row, std::move(work.result));
        if (work.stopped) throw Stop(*work.stopped);
    }
}

template <typename Body>
void ModelStage::for_each_work(std::vector<Work>& window, bool apart, Body body) {
    if (!apart && window.size() >= 2 * static_cast<std::size_t>(threads_)) {
        for_each_index(threads_, window.size(), [&](std::size_t w) { body(window[w], 1); });
    } else {
        for (Work& work : window) body(work, threads_);
    }
}

void ModelStage::take_data(std::vector<Work>& window) {
    for (Work& work : window) {
        work.phenotypes.resize(static_cast<std::size_t>(settings_.individuals));
        phenotypes_.row(work.row, work.phenotypes);
        work.quantitative_before = quantitative_;
        quantitative_ = quantitative_ ||
                        std::any_of(work.phenotypes.begin(), work.phenotypes.end(), is_quantity);
    }
    for_each_work(window, false, [this](Work& work, int threads) {
        work.input.emplace(BuilderInput{genotypes_, work.phenotypes, best_[work.row]});
        work.data.emplace(*work.input, settings_, work.quantitative_before, threads);
    });
}

// One data set at a time where the codes of all pairs take much memory.
void ModelStage::search(std::vector<Work>& window) {
    const bool large = pair_bytes(settings_.usable_markers()) > kWindowBytes;
    for_each_work(window, large, [this](Work& work, int threads) {
        work.kept = search_sets(*work.data, settings_, threads, wanted_, *rooms_.borrow());
        work.result.pair_search = work.kept.pair_statistics;
        meter_.add(work.kept.count() == 0 ? 1 : share_of_search());
    });
}

void ModelStage::place_draws(std::vector<Work>& window) {
    for (Work& work : window) {
        work.start = next_draw_;
        next_draw_.skip(static_cast<std::uint64_t>(builder_draws(*work.data, work.kept)));
        work.announce = !method_told_ && !work.kept.pairs.empty();
        method_told_ = method_told_ || work.announce;
        work.scored.resize(static_cast<std::size_t>(work.kept.count()));
        work.score_stops.resize(work.scored.size());
    }
}

// All sets of all data sets of the window.
void ModelStage::score(std::vector<Work>& window) {
    struct Item {
        Work* work;
        int set;
    };
    std::vector<Item> items;
    for (Work& work : window) {
        for (int s = 0; s < work.kept.count(); ++s) items.push_back({&work, s});
    }
    for_each_index(threads_, items.size(), [&](std::size_t i) {
        const auto [work, s] = items[i];
        const bool announce = work->announce && s == static_cast<int>(work->kept.markers.size());
        try {
            work->scored[s] =
                score_set(*work->data, settings_, work->kept, s, work->start, announce, wanted_);
        } catch (const Stop& stop) {
            work->score_stops[s] = stop;
        }
        meter_.add((1 - share_of_search()) / work->kept.count());
    });
}

void ModelStage::finish(Work& work) {
    Transcript& out = work.result.transcript = Transcript(wanted_);
    std::vector<ScoredSet> scored;
    std::vector<ClusterRecord> records;
    for (std::size_t s = 0; s < work.scored.size() && !work.stopped; ++s) {
        work.stopped = work.score_stops[s];
        if (work.stopped) break;
        scored.push_back(std::move(*work.scored[s]));
        records.push_back(std::move(scored.back().record));
    }
    const Imputation imputation(*work.data, work.start);
    out << "csm begin\n";
    print_build(*work.data, *work.input, imputation, work.kept, scored, work.row > 0, out);
    if (work.stopped) return;
    out << "csm end\n";
    const Design& design = work.result.design.emplace(*work.data, imputation, records);
    work.data.reset();
    if (design.columns() == 0) return;
    DesignColumns columns;
    columns.response.assign(design.response().begin(), design.response().end());
    for (int b = 0; b < design.columns(); ++b) {
        columns.columns.emplace_back(design.column(b).begin(), design.column(b).end());
    }
    try {
        work.result.selection = select_model(std::move(columns), out);
        work.result.statistic = work.result.selection->ratio;
    } catch (const Stop& stop) {
        work.stopped = stop;
    }
}

}  // namespace vort
