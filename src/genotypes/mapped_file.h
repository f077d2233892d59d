// A file as it lies on the disk, readable as memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vort {

// What tells a file from another one, and from its own later contents.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t seconds = 0;  // of the last change
    std::int64_t nanoseconds = 0;

    bool operator==(const FileIdentity&) const = default;
};

// Maps a regular file for reading, mostly from its beginning to its end; nothing is copied. The
// file must not become shorter while it is mapped.
class MappedFile {
  public:
    // Throws InputError, with the path and the reason, where the file cannot be opened or mapped.
    explicit MappedFile(std::string path);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    const std::string& path() const { return path_; }
    const unsigned char* bytes() const { return bytes_; }  // null where the file is empty
    std::size_t size() const { return static_cast<std::size_t>(identity_.size); }
    const FileIdentity& identity() const { return identity_; }

    // Whether the path now leads to something else than what was mapped.
    bool changed() const;

  private:
    std::string path_;
    FileIdentity identity_;
    const unsigned char* bytes_ = nullptr;
};

}  // namespace vort
