#include "cli/time_estimate.h"

#include <algorithm>

namespace vort {

namespace {

constexpr double kNanosecond = 1e-9;

}  // namespace

// The rates are those of docs/performance.md; only their proportions matter here.
std::array<double, kStages> expected_seconds(const RunSize& size) {
    const double pairs = size.best_m * (size.best_m - 1) / 2;
    const double sets = std::min(size.max_retain, size.best_m) + std::min(size.max_retain, pairs);
    const double orders = 500;
    const double screen = size.markers * (60 + 0.0085 * size.individuals + (size.console ? 30 : 0));
    const double search = size.individuals * (0.025 * pairs + 3 * size.best_m);
    const double model = size.individuals * (0.85 * orders * sets + 3 * size.best_m) + 60000 * sets;
    const double unit = kNanosecond / size.threads;
    return {screen * unit, search * unit, model * unit};
}

double pass_seconds(const RunSize& size) {
    const double bytes = size.individuals / 4 * size.markers;
    return 0.3 * bytes * kNanosecond / size.threads;
}

TimeEstimate::TimeEstimate(const RunSize& size, const std::array<double, kStages>& todo) {
    const std::array<double, kStages> expected = expected_seconds(size);
    for (std::size_t s = 0; s < kStages; ++s) {
        stages_[s].expected = expected[s];
        stages_[s].todo = todo[s];
    }
}

void TimeEstimate::update(Stage stage, double data_sets, double seconds) {
    StageTime& current = stages_[static_cast<std::size_t>(stage)];
    current.busy += seconds - updated_;
    current.worked = std::min(data_sets, current.todo);
    updated_ = seconds;
    done_ = std::max(done_, seconds / (seconds + left() + 1e-9));
}

void TimeEstimate::drop(Stage stage) {
    StageTime& dropped = stages_[static_cast<std::size_t>(stage)];
    dropped.todo = dropped.worked;
}

// Times slower than expected; a little work tells little.
double TimeEstimate::pace(const StageTime& stage) const {
    constexpr double kPrior = 0.1;  // of all data sets
    double others_busy = 0;
    double others_expected = 0;
    for (const StageTime& other : stages_) {
        if (&other == &stage) continue;
        others_busy += other.busy;
        others_expected += other.worked * other.expected;
    }
    const bool alone = others_expected <= 0;
    const double others = alone ? 1 : std::clamp(others_busy / others_expected, 0.1, 10.0);
    if (stage.worked <= 0) return others;
    const double own = stage.busy / (stage.worked * stage.expected + 1e-12);
    const double weight = alone ? 1 : stage.worked / (stage.worked + kPrior * stage.todo);
    return weight * own + (1 - weight) * others;
}

double TimeEstimate::left() const {
    double left = 0;
    for (const StageTime& stage : stages_) {
        left += (stage.todo - stage.worked) * stage.expected * pace(stage);
    }
    return left;
}

double TimeEstimate::remaining(double seconds) const {
    if (updated_ <= 0) return -1;
    return std::max(left() - (seconds - updated_), 0.0);
}

}  // namespace vort
