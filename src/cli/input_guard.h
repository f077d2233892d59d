// Inputs that change while they are in use.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace vort {

// A .bed is mapped, not copied, for as long as a run takes: what somebody writes to it meanwhile
// would come into the results.
class InputGuard {
  public:
    InputGuard() = default;
    // Notes sizes and times of regular files, which are to be read from now on.
    explicit InputGuard(std::span<const std::string> paths) { add(paths); }
    void add(std::span<const std::string> paths);
    // All that is in a folder.
    void add_folder(const std::string& folder);

    // Throws InputError where one of them has changed since.
    void require_unchanged() const;
    bool are_unchanged() const { return first_changed() == nullptr; }

  private:
    struct Seen {
        std::string path;
        std::uintmax_t size;
        std::filesystem::file_time_type time;
    };

    const Seen* first_changed() const;

    std::vector<Seen> seen_;
};

// Memory of a mapped file that has become shorter cannot be read: from now on the process then ends
// with a line on standard error and the status of input that cannot be used.
void tell_shrunken_inputs();

}  // namespace vort
