// The sets of instructions that a kernel can be tested with here.
#pragma once

#include <vector>

#include "numeric/instructions.h"

namespace vort::testing {

// All that this processor and the build have.
inline std::vector<Instructions> instruction_sets() {
    std::vector<Instructions> sets;
    for (const auto set : {Instructions::kPortable, Instructions::kWide, Instructions::kWidest}) {
        if (set <= best_instructions()) sets.push_back(set);
    }
    return sets;
}

}  // namespace vort::testing
