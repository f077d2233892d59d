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
                       int threads, bool wanted, const TellWork& work)
    : genotypes_(genotypes),
      phenotypes_(phenotypes),
      best_(best),
      settings_(settings),
      threads_(threads),
      wanted_(wanted),
      search_meter_(Stage::kSearch, work),
      model_meter_(Stage::kModel, work),
      rooms_([] { return PairCodeRoom(); }) {}

int ModelStage::window_size() const {
    const double one = BuilderData::bytes(settings_.individuals, settings_.usable_markers());
    const int fitting = static_cast<int>(std::min<double>(kWindowBytes / one, kMostAtOnce));
    return std::max(fitting, std::min(threads_, kMostAtOnce));
}

double ModelStage::bytes(double individuals, double markers, double columns, int threads) {
    const double one = BuilderData::bytes(individuals, markers);
    // A design in work: columns as bytes and as numbers, and the vectors of the selection.
    const double design = individuals * (9 * columns + 64);
    const double pairs = std::max(pair_bytes(markers), threads * kWindowBytes);
    return std::max(kWindowBytes, threads * one) + threads * (design + 32 * individuals) +
           std::min(pairs, threads * pair_bytes(markers));
}

void ModelStage::begin_at(const ModelStart& start) {
    data_set_ = start.data_set;
    next_draw_ = start.draws;
    method_told_ = start.method_told;
}

void ModelStage::take_searched(std::function<KeptSets(int row)> searched) {
    searched_ = std::move(searched);
}

template <typename Body>
void ModelStage::for_each_window(int first, int count, Body body) {
    const int at_once = window_size();
    for (int done = 0; done < count; done += at_once) {
        std::vector<Work> window = take_data(first + done, std::min(at_once, count - done));
        body(window);
    }
}

void ModelStage::search(int first, int count, const TakeKept& take) {
    for_each_window(first, count, [&](std::vector<Work>& window) {
        find(window);
        hand_on_kept(window, take);
    });
}

void ModelStage::hand_on_kept(std::vector<Work>& window, const TakeKept& take) const {
    for (Work& work : window) {
        const std::int64_t draws = builder_draws(*work.data, work.kept);
        take(data_set_ + work.row, std::move(work.kept), draws);
    }
}

void ModelStage::run(int first, int count, const Take& take) {
    for_each_window(first, count, [&](std::vector<Work>& window) {
        if (!searched_) find(window);
        run_window(window, take);
    });
}

void ModelStage::run_window(std::vector<Work>& window, const Take& take) {
    for (Work& work : window) {
        if (searched_) work.kept = searched_(work.row);
        work.result.pair_search = work.kept.pair_statistics;
    }
    place_draws(window);
    score(window);
    for_each_index(threads_, window.size(), [&](std::size_t w) { finish(window[w]); });
    for (Work& work : window) {
        work.result.stopped = work.stopped.has_value();
        take(data_set_ + work.row, std::move(work.result));
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

std::vector<ModelStage::Work> ModelStage::take_data(int first, int count) {
    std::vector<Work> window(static_cast<std::size_t>(count));
    for (int w = 0; w < count; ++w) {
        Work& work = window[w];
        work.row = first + w;
        work.phenotypes.resize(static_cast<std::size_t>(settings_.individuals));
        phenotypes_.row(work.row, work.phenotypes);
        work.quantitative_before = quantitative_;
        quantitative_ = quantitative_ ||
                        std::any_of(work.phenotypes.begin(), work.phenotypes.end(), is_quantity);
    }
    for_each_work(window, false, [this](Work& work, int threads) {
        work.input.emplace(
            BuilderInput{genotypes_, work.phenotypes, best_[work.row], &phenotypes_.clusters()});
        work.data.emplace(*work.input, settings_, work.quantitative_before, threads);
    });
    return window;
}

// One data set at a time where the codes of all pairs take much memory.
void ModelStage::find(std::vector<Work>& window) {
    const bool large = pair_bytes(settings_.usable_markers()) > kWindowBytes;
    for_each_work(window, large, [this](Work& work, int threads) {
        work.kept = search_sets(*work.data, settings_, threads, wanted_, *rooms_.borrow());
        search_meter_.add(1);
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
        if (work.kept.count() == 0) model_meter_.add(1);
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
        model_meter_.add(1.0 / work->kept.count());
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
    print_build(*work.data, *work.input, imputation, work.kept, scored, data_set_ + work.row > 0,
                out);
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
