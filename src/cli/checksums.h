// SHA-256 of the input files, computed beside the analysis.
#pragma once

#include <atomic>
#include <future>
#include <span>
#include <string>
#include <vector>

#include "study/study.h"

namespace vort {

struct Checksum {
    InputFile file;
    std::string sha256;  // 64 hexadecimal digits, or in brackets why there is none
};

// Of a file; stops early where `*wanted` becomes false.
std::string sha256_of(const std::string& path, const std::atomic<bool>& wanted);

// Begins at once, in a thread of its own.
class Checksums {
  public:
    explicit Checksums(std::vector<InputFile> files);
    // Gives up what is not done.
    ~Checksums() { wanted_ = false; }
    Checksums(const Checksums&) = delete;
    Checksums& operator=(const Checksums&) = delete;

    // Waits for them.
    std::vector<Checksum> take() { return made_.get(); }

  private:
    std::atomic<bool> wanted_{true};
    std::future<std::vector<Checksum>> made_;
};

}  // namespace vort
