// Files that a command writes, replaces or removes, and inputs among them.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace vort {

// Throws InputError where an input is one of the files, under whatever name, link or second path.
void require_apart(std::span<const std::string> inputs, std::span<const std::string> doomed);

// The path and, where it is a folder and no link to one, all that is below it.
std::vector<std::string> with_all_below(const std::string& path);

}  // namespace vort
