#include "support/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/harness.h"

namespace vort::fuzz {

namespace {

std::string own_folder() {
    if (const char* const given = std::getenv("VORT_FUZZ_FILES")) return given;
    std::string path =
        ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::filesystem::temp_directory_path();
    path += "/vort-fuzz-XXXXXX";
    require(::mkdtemp(path.data()) != nullptr, "there is a folder for files");
    return path;
}

}  // namespace

Files::Files() : path_(own_folder()) {}

Files::~Files() {
    for (const auto& [name, file] : open_) ::close(file);
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Files::put(const std::string& name, std::string_view bytes) {
    std::string path = path_ + '/' + name;
    const auto [place, fresh] = open_.try_emplace(name, -1);
    int& file = place->second;
    if (fresh) file = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const auto size = static_cast<ssize_t>(bytes.size());
    const bool written =
        ::ftruncate(file, 0) == 0 && ::pwrite(file, bytes.data(), bytes.size(), 0) == size;
    require(written, "files can be written");
    return path;
}

void Files::remove(const std::string& name) {
    const auto found = open_.find(name);
    if (found == open_.end()) return;
    ::close(found->second);
    ::unlink((path_ + '/' + name).c_str());
    open_.erase(found);
}

std::string Files::folder(const std::string& name) {
    std::string path = path_ + '/' + name;
    std::filesystem::create_directory(path);
    return path;
}

std::string read_file(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace vort::fuzz
