#include "common/settings.h"

#include <array>

#include "common/stop.h"

namespace vort {

namespace {

// Where a parameter goes, for a struct of settings.
template <typename View>
struct Target {
    Parameter parameter;
    int View::*field;
};

constexpr std::array<Target<ScreeningSettings>, 9> kScreeningTargets = {{
    {Parameter::kSampleSize, &ScreeningSettings::individuals},
    {Parameter::kHead, &ScreeningSettings::head},
    {Parameter::kRecorder, &ScreeningSettings::record},
    {Parameter::kBestM, &ScreeningSettings::best_markers},
    {Parameter::kBestM, &ScreeningSettings::best_markers_given},
    {Parameter::kImputations, &ScreeningSettings::imputations},
    {Parameter::kReplicates, &ScreeningSettings::permutations},
    {Parameter::kPermutations, &ScreeningSettings::permutations},
    {Parameter::kMarkers, &ScreeningSettings::markers},
}};

constexpr std::array<Target<ReportSettings>, 3> kReportTargets = {{
    {Parameter::kSampleSize, &ReportSettings::individuals},
    {Parameter::kBestM, &ReportSettings::markers},
    {Parameter::kImputations, &ReportSettings::imputations},
}};

constexpr std::array<Target<BuilderSettings>, 4> kBuilderTargets = {{
    {Parameter::kSampleSize, &BuilderSettings::individuals},
    {Parameter::kMaxRetain, &BuilderSettings::max_retain},
    {Parameter::kBestM, &BuilderSettings::markers},
    {Parameter::kPermutations, &BuilderSettings::permutations},
}};

template <typename View, std::size_t kSize>
void store(View& view, const std::array<Target<View>, kSize>& targets, Parameter parameter,
           int value) {
    for (const Target<View>& target : targets) {
        if (target.parameter == parameter) view.*target.field = value;
    }
}

}  // namespace

Settings settings_of(ParameterFile file) {
    Settings settings;
    double cutoff = 0;
    for (const ParameterEntry& entry : file.dispatched()) {
        const Parameter parameter = parameter_of(entry.name);
        store(settings.screening, kScreeningTargets, parameter, cut_to_int(entry.value));
        store(settings.report, kReportTargets, parameter, cut_to_int(entry.value));
        store(settings.builder, kBuilderTargets, parameter, rounded_to_int(entry.value));
        if (parameter == Parameter::kInputFile) settings.screening.input = entry.text;
        if (parameter == Parameter::kFdrCutoff) cutoff = static_cast<double>(entry.value);
    }
    if (cutoff > 0 && cutoff <= 1) settings.builder.fdr_cutoff = cutoff;
    settings.file = std::move(file);
    return settings;
}

void check_best_markers(const ScreeningSettings& settings) {
    if (settings.best_markers_given <= settings.markers) return;
    stop("find error for Best_m=" + std::to_string(settings.best_markers_given) +
         " and nmarker=" + std::to_string(settings.markers));
}

}  // namespace vort
