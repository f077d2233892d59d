// What a user may have meant by a word that is not known.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vort {

// The name that the fewest insertions, deletions, changes and exchanges of characters lead to from
// `word` (F. J. Damerau 1964); empty where even that one needs more than a third of its characters.
std::string nearest_name(std::string_view word, std::span<const std::string> names);

}  // namespace vort
