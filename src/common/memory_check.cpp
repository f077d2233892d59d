#include "common/memory_check.h"

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

#include "common/number_text.h"
#include "common/parameter_file.h"
#include "common/stop.h"

namespace vort {

namespace {

void lower(MemoryLimit& limit, double bytes, const char* whose) {
    if (bytes < limit.bytes) limit = {bytes, whose};
}

// A number of bytes in a file; "max" and a file that is not there limit nothing.
void lower_by_file(MemoryLimit& limit, const std::string& path) {
    double bytes = 0;
    if (std::ifstream(path) >> bytes) lower(limit, bytes, "allowed by the cgroup");
}

// The group's own limit and those of the groups above it.
void lower_by_group(MemoryLimit& limit, const std::string& mount, std::string group,
                    const char* file) {
    for (;;) {
        lower_by_file(limit, mount + group + '/' + file);
        const std::size_t slash = group.rfind('/');
        if (slash == std::string::npos || group.size() <= 1) return;
        group.erase(slash);
    }
}

// Lines "0::/group" (one hierarchy) and "5:memory:/group" (one for each resource).
void lower_by_groups(MemoryLimit& limit, const std::string& root) {
    std::ifstream groups(root + "/proc/self/cgroup");
    for (std::string line; std::getline(groups, line);) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (second == std::string::npos) continue;
        const std::string resources = line.substr(first + 1, second - first - 1);
        const std::string group = line.substr(second + 1);
        if (resources.empty()) {
            lower_by_group(limit, root + "/sys/fs/cgroup", group, "memory.max");
        } else if ((',' + resources + ',').find(",memory,") != std::string::npos) {
            lower_by_group(limit, root + "/sys/fs/cgroup/memory", group, "memory.limit_in_bytes");
        }
    }
}

}  // namespace

MemoryLimit memory_limit(const std::string& root) {
    MemoryLimit limit{static_cast<double>(::sysconf(_SC_PHYS_PAGES)) *
                          static_cast<double>(::sysconf(_SC_PAGESIZE)),
                      "of this machine"};
    for (const auto resource : {RLIMIT_AS, RLIMIT_DATA}) {
        rlimit allowed{};
        if (::getrlimit(resource, &allowed) != 0 || allowed.rlim_cur == RLIM_INFINITY) continue;
        lower(limit, static_cast<double>(allowed.rlim_cur), "allowed by the resource limit");
    }
    lower_by_groups(limit, root);
    return limit;
}

void require_memory(double bytes, const std::string& what, Diagnostics& diagnostics) {
    const MemoryLimit limit = memory_limit();
    if (bytes <= limit.bytes) return;
    constexpr double kGigabyte = 1e9;
    diagnostics.say("sizes beyond the memory", kParameterFileName, 0,
                    what + " would take " + to_text(general(bytes / kGigabyte)) +
                        " GB, more than the " + to_text(general(limit.bytes / kGigabyte)) + " GB " +
                        limit.whose);
    stop("");
}

}  // namespace vort
