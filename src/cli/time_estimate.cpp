#include "cli/time_estimate.h"

#include <algorithm>

namespace vort {

namespace {

constexpr double kNanosecond = 1e-9;

// The rates are those of docs/performance.md; only their proportions matter.
double screening_seconds(const RunSize& size) {
    const double marker = 60 + 0.0085 * size.individuals + (size.console ? 30 : 0);
    return size.markers * marker * kNanosecond / size.threads;
}

double model_seconds(const RunSize& size) {
    const double pairs = size.best_m * (size.best_m - 1) / 2;
    const double sets = std::min(size.max_retain, size.best_m) + std::min(size.max_retain, pairs);
    const double orders = 500;
    const double individual = 0.025 * pairs + 0.85 * orders * sets + 3 * size.best_m;
    return (size.individuals * individual + 60000 * sets) * kNanosecond / size.threads;
}

}  // namespace

TimeEstimate::TimeEstimate(const RunSize& size) : data_sets_(size.data_sets) {
    stages_[0].expected = screening_seconds(size);
    stages_[1].expected = model_seconds(size);
}

void TimeEstimate::update(Stage stage, double data_sets, double seconds) {
    StageTime& current = stages_[static_cast<std::size_t>(stage)];
    // The stage before gave its end to this one.
    if (current.began < 0) current.began = stage == Stage::kScreen ? 0 : updated_;
    if (stage == Stage::kModel) stages_[0].worked = data_sets_;
    current.worked = std::min(data_sets, data_sets_);
    current.last = seconds;
    updated_ = seconds;
    done_ = std::max(done_, seconds / (seconds + left() + 1e-9));
}

// Times slower than expected; a little work tells little.
double TimeEstimate::pace(const StageTime& stage) const {
    constexpr double kPrior = 0.1;  // of all data sets
    const auto slowness = [&](const StageTime& of) {
        return of.began < 0 ? 1.0 : (of.last - of.began) / (of.worked * of.expected + 1e-12);
    };
    const double before = std::clamp(slowness(stages_[0]), 0.1, 10.0);
    if (&stage == &stages_[0]) return slowness(stage);
    const double weight = stage.worked / (stage.worked + kPrior * data_sets_);
    return stage.began < 0 ? before : weight * slowness(stage) + (1 - weight) * before;
}

double TimeEstimate::left() const {
    double left = 0;
    for (const StageTime& stage : stages_) {
        left += (data_sets_ - stage.worked) * stage.expected * pace(stage);
    }
    return left;
}

double TimeEstimate::remaining(double seconds) const {
    if (updated_ <= 0) return -1;
    return std::max(left() - (seconds - updated_), 0.0);
}

}  // namespace vort
