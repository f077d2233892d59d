#include "common/memory_check.h"

#include <unistd.h>

#include "common/diagnostics.h"
#include "common/end_program.h"
#include "common/number_text.h"
#include "common/parameter_file.h"

namespace vort {

void require_memory(double bytes, const std::string& what) {
    const double memory = static_cast<double>(::sysconf(_SC_PHYS_PAGES)) *
                          static_cast<double>(::sysconf(_SC_PAGESIZE));
    if (bytes <= memory) return;
    constexpr double kGigabyte = 1e9;
    diagnose("sizes beyond the memory", kParameterFileName, 0,
             what + " would take " + std::string(general(bytes / kGigabyte).view()) +
                 " GB, more than the " + std::string(general(memory / kGigabyte).view()) +
                 " GB of this machine");
    end_program();
}

}  // namespace vort
