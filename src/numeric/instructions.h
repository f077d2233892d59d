// Which machine instructions the kernels may use.
//
// The program is built for the oldest processors of its architecture. Kernels that gain from newer
// instructions are compiled a second time with them, and the machine decides which is run; both
// give the same bytes.
#pragma once

namespace vort {

enum class Instructions { kPortable, kWide };

// kWide where this processor has what the wide kernels were compiled for, and the build has them.
Instructions best_instructions();

}  // namespace vort
