#include "parts/file_checksum.h"

#include <fcntl.h>

#include <filesystem>
#include <vector>

#include "common/file_descriptor.h"
#include "parts/sha256.h"

namespace vort {

std::string sha256_of(const std::string& path, const std::atomic<bool>& wanted) {
    std::error_code failure;
    const bool regular = std::filesystem::is_regular_file(path, failure);
    if (failure) return std::string(kNotReadAgain);
    if (!regular) return "(not a regular file)";
    FileDescriptor file(path, O_RDONLY);
    Sha256 digest;
    bool sound = file.is_open();
    std::vector<char> piece(std::size_t{1} << 18);
    for (std::size_t got = 1; sound && wanted && got > 0;) {
        got = file.read(piece.data(), piece.size());
        sound = file.error() == 0;
        digest.add({piece.data(), got});
    }
    return sound ? digest.text() : std::string(kNotReadAgain);
}

}  // namespace vort
