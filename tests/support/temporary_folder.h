// A fresh working directory for one test, left and removed at its end.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace vort::testing {

class TemporaryFolder {
  public:
    TemporaryFolder() : before_(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "vort-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = name;
        std::filesystem::current_path(path_);
    }
    ~TemporaryFolder() {
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;

  private:
    std::filesystem::path before_;
    std::filesystem::path path_;
};

inline void write_file(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string read_file(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace vort::testing
