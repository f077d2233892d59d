#include "numeric/instructions.h"

namespace vort {

namespace {

bool has_wide() {
    return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("popcnt") != 0 &&
           __builtin_cpu_supports("bmi") != 0 && __builtin_cpu_supports("bmi2") != 0;
}

bool has_widest() {
    return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
           __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
           __builtin_cpu_supports("avx512vpopcntdq") != 0;
}

}  // namespace

Instructions best_instructions() {
    static const Instructions best = !has_wide()     ? Instructions::kPortable
                                     : !has_widest() ? Instructions::kWide
                                                     : Instructions::kWidest;
    return best;
}

}  // namespace vort
