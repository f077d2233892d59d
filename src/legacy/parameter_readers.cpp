#include "legacy/parameter_readers.h"

#include <initializer_list>

#include "common/settings.h"
#include "legacy/default_objects.h"
#include "legacy/on_console.h"

namespace vort {

namespace {

struct Target {
    Parameter parameter;
    int* store;
};

void dispatch(const ParameterFile& file, std::initializer_list<Target> targets) {
    for (const ParameterEntry& entry : file.dispatched()) {
        const Parameter parameter = parameter_of(entry.name);
        for (const Target& target : targets) {
            if (target.parameter == parameter) *target.store = cut_to_int(entry.value);
        }
    }
}

}  // namespace

ParameterFile read_parameters_on_console() {
    return on_console([](Transcript& transcript) {
        ParameterFile file = read_parameter_file(default_objects().diagnostics);
        print_warnings(file, transcript);
        return file;
    });
}

void ReadPara_gw_vort3(int* Sample, int* Marker, int* Permutation, int* missingrepeat1, int* head,
                       int* record, int* Save_marker_length, char* inputfilename) {
    const ParameterFile file = read_parameters_on_console();
    dispatch(file, {{Parameter::kSampleSize, Sample},
                    {Parameter::kHead, head},
                    {Parameter::kRecorder, record},
                    {Parameter::kBestM, Save_marker_length},
                    {Parameter::kImputations, missingrepeat1},
                    {Parameter::kReplicates, Permutation},
                    {Parameter::kPermutations, Permutation},
                    {Parameter::kMarkers, Marker}});
    ScreeningSettings checked = settings_of(file).screening;
    if (!checked.input.empty()) {
        inputfilename[checked.input.copy(inputfilename, checked.input.size())] = '\0';
    }
    if (file.found) diagnose_parameters(file, default_objects().diagnostics);
    checked.markers = *Marker;
    on_console([&](Transcript&) {
        check_best_markers(checked);
        return 0;
    });
}

void ReadPara(int* ns, int* nm, int* missingrepeat, int* /*head*/, int* /*record*/) {
    dispatch(read_parameters_on_console(), {{Parameter::kSampleSize, ns},
                                            {Parameter::kBestM, nm},
                                            {Parameter::kImputations, missingrepeat}});
}

}  // namespace vort
