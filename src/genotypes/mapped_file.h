// A file as it lies on the disk, readable as memory.
#pragma once

#include <cstddef>
#include <string>

namespace vort {

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
    std::size_t size() const { return size_; }

    // The pages that lie within these bytes need not stay in memory; they are read again when they
    // are looked at.
    void let_go(const unsigned char* from, std::size_t size) const;

  private:
    std::string path_;
    std::size_t size_ = 0;
    const unsigned char* bytes_ = nullptr;
};

}  // namespace vort
