// What a directory has in it.
#pragma once

#include <functional>
#include <string>

namespace vort {

// Gives the name of each entry but "." and "..", which may be removed meanwhile, and the number of
// the open directory. Nothing where there is none. Asks for no memory, where the standard library's
// iterators end the process if there is none to be had.
void for_each_name(const std::string& directory,
                   const std::function<void(int directory, const char* name)>& take);

}  // namespace vort
