// The formula of docs/many-machines.md, with the numbers of the study at hand.
#include "cli/plan_text.h"

#include <algorithm>
#include <cmath>

#include "common/number_text.h"
#include "report/wording.h"

namespace vort {

namespace {

std::string title(std::string_view name) {
    constexpr std::size_t kWidth = 14;
    std::string text(name);
    text.resize(kWidth, ' ');
    return text;
}

// Long enough for a queue to be told.
std::string duration(double seconds) {
    if (seconds < 90) return "about " + std::to_string(std::lround(std::max(seconds, 1.0))) + " s";
    if (seconds < 5400) return "about " + std::to_string(std::lround(seconds / 60)) + " min";
    return "about " + decimal(seconds / 3600, 1) + " h";
}

std::string size_text(double bytes) {
    if (bytes < 1e9) return std::to_string(std::lround(std::ceil(bytes / 1e6))) + " MB";
    return decimal(bytes / 1e9, 1) + " GB";
}

}  // namespace

// Every task screens the observed data set as well, to compare the others with.
TaskNeeds task_needs(const LoadedAnalysis& analysis, const Plan& plan, const RunOptions& options) {
    const int most = plan.most_data_sets();
    const auto [screen, search, model] = expected_seconds(run_size(analysis, options));
    const double program = 20e6;
    const double bytes =
        analysis_bytes(analysis.settings, analysis_options(options, ""), true, most + 1.0);
    return {options.threads, (most + 1) * screen + most * search, most * model, bytes + program};
}

std::string plan_summary(const Plan& plan, const std::string& folder) {
    const int most = plan.most_data_sets();
    const double genotypes = 0.25 * plan.individuals * plan.markers;
    const std::string last = std::to_string(plan.tasks.size() - 1);
    const std::string threads = counted(plan.needs.threads, "threads");
    return title("Plan") + counted(plan.data_sets(), "data sets") + " in " +
           counted(std::ssize(plan.tasks), "tasks") + ", " + grouped(most) + " at most in each\n" +
           title("Screening") + duration(plan.needs.screen_seconds) + " for each task, on " +
           threads + '\n' + title("Models") + duration(plan.needs.model_seconds) +
           " for each task, on " + threads + '\n' + title("Memory") + size_text(plan.needs.bytes) +
           " for each task, and " + size_text(genotypes) + " of genotypes, mapped\n" +
           title("Next") + "vort task screen " + folder + " I, for I from 0 to " + last +
           " in any order;\n" + title("") + "then vort task model " + folder +
           " I likewise; then vort merge " + folder + '\n';
}

}  // namespace vort
