// Files for readers that take paths.
//
// They lie in a folder for this process alone: the one that VORT_FUZZ_FILES names, else a new one,
// in memory where there is a file system for that (/dev/shm). A file is made once and stays open;
// every execution writes it anew, which takes two system calls.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace vort::fuzz {

class Files {
  public:
    Files();
    ~Files();
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    // Writes the file of that name and returns its path.
    std::string put(const std::string& name, std::string_view bytes);

    void remove(const std::string& name);

    // An empty folder below the own one; it is there from then on.
    std::string folder(const std::string& name);

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    std::map<std::string, int> open_;
};

// The whole of a file.
std::string read_file(const std::string& path);

}  // namespace vort::fuzz
