// An open file of the operating system, closed when it is no longer needed.
//
// Calls that a signal interrupts are repeated, and what is written in part is written on, so that
// callers see only success or a reason.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vort {

// What a name leads to: two names of one file have the same.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;

    bool operator==(const FileIdentity&) const = default;
};

// Of what a link leads to, or of the link itself; nothing where there is nothing.
std::optional<FileIdentity> identity_of(const std::string& path);
std::optional<FileIdentity> identity_of_name(const std::string& path);

class FileDescriptor {
  public:
    FileDescriptor() = default;
    // `flags` as open() takes them. A file that cannot be opened leaves is_open() false and the
    // reason in error().
    FileDescriptor(const std::string& path, int flags);
    ~FileDescriptor() { close(); }
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;

    int number() const { return number_; }
    bool is_open() const { return number_ >= 0; }
    bool is_regular_file() const;
    std::optional<FileIdentity> identity() const;
    // Another one of the same file, closed by itself; none is open where there is no number for it.
    FileDescriptor duplicate() const;
    // Of the first call that failed, a value of errno; 0 where none has.
    int error() const { return error_; }

    // How many bytes were read, 0 at the end of the file; also 0, and an error, where it failed.
    std::size_t read(char* to, std::size_t size);

    // False where not all of it could be written, or be brought to the disk, or the file be closed.
    bool write(std::string_view text);
    bool sync();
    bool close();
    // Somebody else closes it.
    int release() { return std::exchange(number_, -1); }

  private:
    bool note(bool done);

    int number_ = -1;
    int error_ = 0;
};

}  // namespace vort
