#include "vort/parameter_readers.h"

#include <initializer_list>
#include <iostream>
#include <string>

#include "common/end_program.h"
#include "common/parameter_file.h"

namespace vort {

namespace {

struct Target {
    Parameter parameter;
    int* store;
};

void dispatch(const ParameterFile& file, std::initializer_list<Target> targets) {
    for (const ParameterEntry& entry : file.dispatched()) {
        const Parameter parameter = parameter_of(entry.name);
        if (parameter == Parameter::kUnknown) print_needless_parameter(entry, file.letter_count);
        for (const Target& target : targets) {
            if (target.parameter == parameter) *target.store = cut_to_int(entry.value);
        }
    }
}

void store_input_name(const ParameterFile& file, char* inputfilename) {
    for (const ParameterEntry& entry : file.dispatched()) {
        if (parameter_of(entry.name) != Parameter::kInputFile) continue;
        inputfilename[entry.text.copy(inputfilename, entry.text.size())] = '\0';
    }
}

}  // namespace

void ReadPara_gw_vort3(int* Sample, int* Marker, int* Permutation, int* missingrepeat1, int* head,
                       int* record, int* Save_marker_length, char* inputfilename) {
    int Best_m = 0;
    if (const auto file = read_parameter_file()) {
        dispatch(*file, {{Parameter::kSampleSize, Sample},
                         {Parameter::kHead, head},
                         {Parameter::kRecorder, record},
                         {Parameter::kBestM, Save_marker_length},
                         {Parameter::kBestM, &Best_m},
                         {Parameter::kImputations, missingrepeat1},
                         {Parameter::kReplicates, Permutation},
                         {Parameter::kPermutations, Permutation},
                         {Parameter::kMarkers, Marker}});
        store_input_name(*file, inputfilename);
        diagnose_parameters(*file);
    }
    if (Best_m > *Marker) {
        std::cout << "find error for Best_m=" << Best_m << " and nmarker=" << *Marker;
        end_program();
    }
}

void ReadPara(int* ns, int* nm, int* missingrepeat, int* /*head*/, int* /*record*/) {
    if (const auto file = read_parameter_file()) {
        dispatch(*file, {{Parameter::kSampleSize, ns},
                         {Parameter::kBestM, nm},
                         {Parameter::kImputations, missingrepeat}});
    }
}

}  // namespace vort
