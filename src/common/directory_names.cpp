#include "common/directory_names.h"

#include <dirent.h>

#include <memory>
#include <string_view>

namespace vort {

namespace {

struct Closed {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

}  // namespace

void for_each_name(const std::string& directory,
                   const std::function<void(int directory, const char* name)>& take) {
    const std::unique_ptr<DIR, Closed> open(::opendir(directory.c_str()));
    if (!open) return;
    while (const dirent* const entry = ::readdir(open.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") take(::dirfd(open.get()), entry->d_name);
    }
}

}  // namespace vort
