#include "cli/doomed_files.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "common/directory_names.h"
#include "common/file_descriptor.h"
#include "common/input_error.h"
#include "common/path_names.h"

namespace vort {

namespace {

void add_all_below(const std::string& path, std::vector<std::string>& found) {
    found.push_back(path);
    std::error_code failure;
    if (!std::filesystem::is_directory(std::filesystem::symlink_status(path, failure))) return;
    for_each_name(path, [&](int, const char* name) { add_all_below(path_in(path, name), found); });
}

}  // namespace

void require_apart(std::span<const std::string> inputs, std::span<const std::string> doomed) {
    std::vector<std::optional<FileIdentity>> there;
    for (const std::string& path : doomed) there.push_back(identity_of(path));
    for (const std::string& input : inputs) {
        const std::optional<FileIdentity> identity = identity_of(input);
        const auto found = identity ? std::ranges::find(there, identity) : there.end();
        if (found == there.end()) continue;
        const std::string& same = doomed[static_cast<std::size_t>(found - there.begin())];
        input_error(input, 0,
                    "is an input, and " + same +
                        " would be written or removed; name another directory, or move the input");
    }
}

std::vector<std::string> with_all_below(const std::string& path) {
    std::vector<std::string> found;
    add_all_below(path, found);
    return found;
}

}  // namespace vort
