// Inputs that change while they are in use.
#pragma once

#include <filesystem>
#include <span>
#include <vector>

#include "study/study.h"

namespace vort {

// A .bed is mapped, not copied, for as long as a run takes: what somebody writes to it meanwhile
// would come into the results.
class InputGuard {
  public:
    InputGuard() = default;
    // Notes sizes and times of regular files.
    explicit InputGuard(std::span<const InputFile> files);

    // Throws InputError where one of them has changed since.
    void require_unchanged() const;

  private:
    struct Seen {
        std::string path;
        std::uintmax_t size;
        std::filesystem::file_time_type time;
    };

    std::vector<Seen> seen_;
};

// Memory of a mapped file that has become shorter cannot be read: from now on the process then ends
// with a line on standard error and the status of input that cannot be used.
void tell_shrunken_inputs();

}  // namespace vort
