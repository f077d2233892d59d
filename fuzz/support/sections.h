// One input that stands for several files, in a form that can be read and edited:
//
//     %%fam
//     f a 0 0 1 2
//     f b 0 0 2 1
//     %%bed
//     ...
//
// A section begins behind the line "%%NAME" and ends in front of the next line that begins with
// "%%". What stands in front of the first one has the empty name. Of sections of one name the first
// counts.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace vort::fuzz {

class Sections {
  public:
    // `input` is not owned.
    explicit Sections(std::string_view input);

    bool has(std::string_view name) const;
    // Empty where there is none.
    std::string_view operator[](std::string_view name) const;

  private:
    std::vector<std::pair<std::string_view, std::string_view>> sections_;
};

}  // namespace vort::fuzz
