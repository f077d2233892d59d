// Paths put together and taken apart as words, without a look at any file.
//
// The standard library's own operator/ may end the process where memory lacks amid it; what is
// here throws std::bad_alloc as all else does.
#pragma once

#include <string>
#include <string_view>

namespace vort {

// "folder/name"; a name from the root stays as it is, as does one in the folder "".
std::string path_in(const std::string& folder, std::string_view name);

// What stands before the last slash: "/" at the root, "." where there is none.
std::string folder_of(std::string_view path);

// What stands behind the last slash.
std::string_view name_of(std::string_view path);

}  // namespace vort
