// People who are held back from an analysis, to see how well its model does on them.
//
// The choice is made by the program's generator, in a sequence that begins 10^12 draws after the
// start, where no other use of it begins; so nothing else of a run changes by it, and the same
// study and share give the same people on any machine. Cases and controls are chosen apart, each by
// one draw for each individual, in their order (selection sampling: C. T. Fan, M. E. Muller and I.
// Rezucha, J. Am. Stat. Assoc. 1962; 57, 387-402), so that each choice of as many is equally
// likely.
#pragma once

#include <span>
#include <vector>

#include "study/study.h"

namespace vort {

// Their markers are those of the study that they come from.
struct HeldBack {
    double fraction = 0;  // that was asked for
    Genotypes genotypes;
    std::vector<short> phenotypes;  // 1 case, 0 control
    std::vector<Individual> individuals;
};

// Numbers of individuals, ascending from 0: of the cases, and of the controls, the share `fraction`
// (above 0 and below 1), rounded. Throws InputError unless that leaves both on both sides.
std::vector<int> choose_held_back(std::span<const short> phenotypes, double fraction);

// Takes them out of the study, whose account tells how many they are.
HeldBack hold_back(Study& study, double fraction, int threads);

}  // namespace vort
