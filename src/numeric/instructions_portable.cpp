#include "numeric/instructions.h"

namespace vort {

Instructions best_instructions() {
    return Instructions::kPortable;
}

}  // namespace vort
