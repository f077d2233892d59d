// Two of the three readers of "parameter.txt"; the third is CSM::ReadPara.
#pragma once

#include "common/parameter_file.h"

namespace vort {

// The screening's settings. Only what the file gives is stored; fractions are cut. inputfilename
// has room for 100 characters. Ends the program where "Best_m" exceeds the number of markers.
void ReadPara_gw_vort3(int* Sample, int* Marker, int* Permutation, int* missingrepeat1, int* head,
                       int* record, int* Save_marker_length, char* inputfilename);

// The ensemble stage's settings. head and record are left alone.
void ReadPara(int* ns, int* nm, int* missingrepeat, int* head, int* record);

// The file, with what there is to say of it on the console.
ParameterFile read_parameters_on_console();

}  // namespace vort
