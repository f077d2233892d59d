#include "cli/progress.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vort {

namespace {

constexpr double kBetweenLines = 1;  // seconds
constexpr auto kBetweenTicks = std::chrono::milliseconds(250);

const char* name_of(Stage stage) {
    constexpr std::array kNames = {"screening", "searching", "modelling"};
    return kNames[static_cast<std::size_t>(stage)];
}

std::array<double, kStages> numbers(const StageCounts& counts) {
    std::array<double, kStages> numbers{};
    std::ranges::copy(counts, numbers.begin());
    return numbers;
}

}  // namespace

std::string clock_text(double seconds) {
    const auto whole = static_cast<long>(std::lround(std::max(seconds, 0.0)));
    const auto two_digits = [](long number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    const std::string end = ':' + two_digits(whole % 60);
    if (whole < 3600) return std::to_string(whole / 60) + end;
    return std::to_string(whole / 3600) + ':' + two_digits(whole / 60 % 60) + end;
}

Progress::Progress(const RunSize& size, int data_sets, const StageCounts& todo, Terminal& terminal,
                   bool quiet)
    : terminal_(terminal), quiet_(quiet), data_sets_(data_sets), estimate_(size, numbers(todo)) {
    for (std::size_t s = 0; s < kStages; ++s) before_[s] = data_sets - todo[s];
    if (quiet_ || !terminal_.is_terminal()) return;
    ticker_ = std::jthread([this](const std::stop_token& stop) { tick(stop); });
}

TellWork Progress::tell() {
    return [this](Stage stage, double data_sets) { working(stage, data_sets); };
}

void Progress::next_task() {
    const std::scoped_lock lock(mutex_);
    for (std::size_t s = 0; s < kStages; ++s) of_tasks_[s] += of_task_[s];
    of_task_ = {};
}

void Progress::drop(Stage stage) {
    const std::scoped_lock lock(mutex_);
    estimate_.drop(stage);
}

double Progress::seconds(Stage stage) const {
    const std::scoped_lock lock(mutex_);
    return estimate_.seconds(stage);
}

double Progress::seconds() const {
    return std::chrono::duration<double>(Clock::now() - start_).count();
}

void Progress::working(Stage stage, double data_sets) {
    const std::scoped_lock lock(mutex_);
    stage_ = stage;
    const auto s = static_cast<std::size_t>(stage);
    of_task_[s] = data_sets;
    estimate_.update(stage, of_tasks_[s] + data_sets, seconds());
    tell_tenth();
}

// Parts of data sets, of which none is complete, add up to some that are.
int Progress::stage_done() const {
    const auto s = static_cast<std::size_t>(stage_);
    return std::min(before_[s] + static_cast<int>(of_tasks_[s] + of_task_[s] + 1e-6), data_sets_);
}

void Progress::tell_tenth() {
    if (quiet_ || terminal_.is_terminal()) return;
    const int tenths = static_cast<int>(10 * estimate_.done());
    const double now = seconds();
    if (tenths <= tenths_told_ || tenths >= 10) return;
    if (now < told_at_ + kBetweenLines) return;
    tenths_told_ = tenths;
    told_at_ = now;
    terminal_.say(std::to_string(10 * tenths) + " %, " + name_of(stage_) + ' ' +
                  std::to_string(stage_done()) + " of " + std::to_string(data_sets_) +
                  " data sets, " + clock_text(now) + " elapsed, " +
                  clock_text(estimate_.remaining(now)) + " remaining");
}

std::string Progress::bar_line() const {
    constexpr int kWidth = 24;
    const std::scoped_lock lock(mutex_);
    const double now = seconds();
    const int filled = static_cast<int>(kWidth * estimate_.done());
    const double remaining = estimate_.remaining(now);
    return std::string(name_of(stage_)) + " [" + std::string(filled, '#') +
           std::string(kWidth - filled, '-') + "] " + std::to_string(stage_done()) + '/' +
           std::to_string(data_sets_) + "  " + clock_text(now) + " elapsed" +
           (remaining < 0 ? "" : "  " + clock_text(remaining) + " remaining");
}

void Progress::tick(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        terminal_.show_progress(bar_line());
        std::mutex waiting;
        std::unique_lock lock(waiting);
        finished_.wait_for(lock, stop, kBetweenTicks, [] { return false; });
    }
}

void Progress::finish() {
    if (ticker_.joinable()) {
        ticker_.request_stop();
        ticker_.join();
    }
    terminal_.clear_progress();
}

}  // namespace vort
