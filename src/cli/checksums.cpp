#include "cli/checksums.h"

namespace vort {

Checksums::Checksums(std::vector<InputFile> files)
    : made_(std::async(std::launch::async, [this, files = std::move(files)] {
          std::vector<Checksum> made;
          for (const InputFile& file : files) made.push_back({file, sha256_of(file.path, wanted_)});
          return made;
      })) {}

}  // namespace vort
