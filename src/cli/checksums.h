// SHA-256 of the input files, computed beside the analysis.
#pragma once

#include <atomic>
#include <future>
#include <string>
#include <vector>

#include "parts/file_checksum.h"
#include "study/study.h"

namespace vort {

struct Checksum {
    InputFile file;
    std::string sha256;  // 64 hexadecimal digits, or in brackets why there is none
};

// Begins at once, in a thread of its own.
class Checksums {
  public:
    explicit Checksums(std::vector<InputFile> files);
    // Gives up what is not done.
    ~Checksums() { wanted_ = false; }
    Checksums(const Checksums&) = delete;
    Checksums& operator=(const Checksums&) = delete;

    // Waits for them.
    const std::vector<Checksum>& all() const { return made_.get(); }

  private:
    std::atomic<bool> wanted_{true};
    std::shared_future<std::vector<Checksum>> made_;
};

}  // namespace vort
