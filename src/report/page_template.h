// The page without a study's data. Its definition is generated when the program is built.
#pragma once

#include <string>

namespace vort {

// Holds marks <!--@name@--> where the parts of a study go.
std::string page_template();

}  // namespace vort
