// One marker of a study.
#pragma once

#include <string>

namespace vort {

struct MarkerInfo {
    int chromosome = 0;  // 1 to 26; X, Y, XY and MT are 23 to 26
    std::string name;
    long position = 0;  // in base pairs
    std::string a1;     // the counted allele
    std::string a2;
};

}  // namespace vort
