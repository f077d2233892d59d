#include "numeric/instructions.h"

namespace vort {

Instructions best_instructions() {
    static const bool wide =
        __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("popcnt") != 0 &&
        __builtin_cpu_supports("bmi") != 0 && __builtin_cpu_supports("bmi2") != 0;
    return wide ? Instructions::kWide : Instructions::kPortable;
}

}  // namespace vort
