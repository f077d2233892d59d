// Sizes that a study may ask for, against what this process may use.
#pragma once

#include <string>

#include "common/diagnostics.h"

namespace vort {

struct MemoryLimit {
    double bytes;
    std::string whose;  // "of this machine", "allowed by the cgroup", ...
};

// The smallest of the machine's memory, the resource limits on address space and data, and the
// limits of the process's cgroup and those above it (memory.max, or memory.limit_in_bytes). `root`
// is put in front of /proc and /sys, for tests.
MemoryLimit memory_limit(const std::string& root = "");

// Stops the run, with a line on standard error that names `what`, where `bytes` exceed the limit. A
// double, so that no product of sizes can overflow on the way here.
void require_memory(double bytes, const std::string& what, Diagnostics& diagnostics);

}  // namespace vort
