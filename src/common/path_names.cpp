#include "common/path_names.h"

namespace vort {

std::string path_in(const std::string& folder, std::string_view name) {
    if (name.starts_with('/')) return std::string(name);
    std::string path = folder;
    if (!path.empty() && path.back() != '/') path += '/';
    return path += name;
}

std::string folder_of(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return ".";
    return std::string(path.substr(0, slash == 0 ? 1 : slash));
}

std::string_view name_of(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

}  // namespace vort
