// The C library's calls on open files and those that open and close them, each passed on unless the
// ledger says otherwise.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <vector>

#include "call.h"

namespace vort::faults {

namespace {

FILE* fopen_by(const char* path, const char* mode, const char* function) {
    const Name name = at(path);
    const auto real = next<FILE* (*)(const char*, const char*)>(function);
    FILE* const file = call<FILE*>("open", name, nullptr, [&] { return real(path, mode); });
    const Inside here;
    if (name && file != nullptr) Ledger::instance().opened(::fileno(file), *name);
    return file;
}

mode_t mode_of(int flags, std::va_list& more) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
}

// Half of what there was to read: the rest is left to the next call.
ssize_t half_read(int file, ssize_t got) {
    if (got < 2) return got;
    ::syscall(SYS_lseek, file, got / 2 - got, SEEK_CUR);
    return got / 2;
}

ssize_t half_writev(int file, const iovec* pieces, int count) {
    std::vector<iovec> half(pieces, pieces + count);
    std::size_t left = 0;
    for (const iovec& piece : half) left += piece.iov_len;
    left = std::max<std::size_t>(left / 2, 1);
    for (iovec& piece : half) {
        piece.iov_len = std::min(piece.iov_len, left);
        left -= piece.iov_len;
    }
    return ::syscall(SYS_writev, file, half.data(), half.size());
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = mode_of(flags, more);
    va_end(more);
    static const auto real = next<int (*)(const char*, int, ...)>("open");
    return open_by(at(path), [&] { return real(path, flags, mode); });
}

int open64(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = mode_of(flags, more);
    va_end(more);
    return open(path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = mode_of(flags, more);
    va_end(more);
    static const auto real = next<int (*)(int, const char*, int, ...)>("openat");
    return open_by(at(path, directory), [&] { return real(directory, path, flags, mode); });
}

int openat64(int directory, const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = mode_of(flags, more);
    va_end(more);
    return openat(directory, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
    return fopen_by(path, mode, "fopen");
}

FILE* fopen64(const char* path, const char* mode) {
    return fopen_by(path, mode, "fopen64");
}

int close(int file) {
    static const auto real = next<int (*)(int)>("close");
    return close_by(file, [&] { return real(file); });
}

int fclose(FILE* file) {
    static const auto real = next<int (*)(FILE*)>("fclose");
    return close_by(::fileno(file), [&] { return real(file); });
}

ssize_t read(int file, void* to, std::size_t size) {
    static const auto real = next<ssize_t (*)(int, void*, std::size_t)>("read");
    return call<ssize_t>(
        "read", of(file), -1, [&] { return real(file, to, size); },
        [&] { return half_read(file, real(file, to, size)); });
}

ssize_t pread(int file, void* to, std::size_t size, off_t offset) {
    static const auto real = next<ssize_t (*)(int, void*, std::size_t, off_t)>("pread");
    return call<ssize_t>(
        "read", of(file), -1, [&] { return real(file, to, size, offset); },
        [&] { return real(file, to, (size + 1) / 2, offset); });
}

ssize_t pread64(int file, void* to, std::size_t size, off64_t offset) {
    return pread(file, to, size, offset);
}

ssize_t write(int file, const void* from, std::size_t size) {
    static const auto real = next<ssize_t (*)(int, const void*, std::size_t)>("write");
    return call<ssize_t>(
        "write", of(file), -1, [&] { return real(file, from, size); },
        [&] { return real(file, from, (size + 1) / 2); });
}

ssize_t writev(int file, const iovec* pieces, int count) {
    static const auto real = next<ssize_t (*)(int, const iovec*, int)>("writev");
    return call<ssize_t>(
        "write", of(file), -1, [&] { return real(file, pieces, count); },
        [&] { return half_writev(file, pieces, count); });
}

ssize_t pwrite(int file, const void* from, std::size_t size, off_t offset) {
    static const auto real = next<ssize_t (*)(int, const void*, std::size_t, off_t)>("pwrite");
    return call<ssize_t>(
        "write", of(file), -1, [&] { return real(file, from, size, offset); },
        [&] { return real(file, from, (size + 1) / 2, offset); });
}

ssize_t pwrite64(int file, const void* from, std::size_t size, off64_t offset) {
    return pwrite(file, from, size, offset);
}

off_t lseek(int file, off_t offset, int whence) noexcept {
    static const auto real = next<off_t (*)(int, off_t, int)>("lseek");
    return call<off_t>("seek", of(file), -1, [&] { return real(file, offset, whence); });
}

off64_t lseek64(int file, off64_t offset, int whence) noexcept {
    return lseek(file, offset, whence);
}

int ftruncate(int file, off_t size) noexcept {
    static const auto real = next<int (*)(int, off_t)>("ftruncate");
    return call("truncate", of(file), -1, [&] { return real(file, size); });
}

int ftruncate64(int file, off64_t size) noexcept {
    return ftruncate(file, size);
}

int truncate(const char* path, off_t size) noexcept {
    static const auto real = next<int (*)(const char*, off_t)>("truncate");
    return call("truncate", at(path), -1, [&] { return real(path, size); });
}

int fsync(int file) {
    static const auto real = next<int (*)(int)>("fsync");
    return call("fsync", of(file), -1, [&] { return real(file); });
}

int fdatasync(int file) {
    static const auto real = next<int (*)(int)>("fdatasync");
    return call("fsync", of(file), -1, [&] { return real(file); });
}

int flock(int file, int operation) noexcept {
    static const auto real = next<int (*)(int, int)>("flock");
    return call("flock", of(file), -1, [&] { return real(file, operation); });
}

void* mmap(void* place, std::size_t size, int protection, int flags, int file,
           off_t offset) noexcept {
    static const auto real = next<void* (*)(void*, std::size_t, int, int, int, off_t)>("mmap");
    return call<void*>("mmap", of(file), MAP_FAILED,
                       [&] { return real(place, size, protection, flags, file, offset); });
}

void* mmap64(void* place, std::size_t size, int protection, int flags, int file,
             off64_t offset) noexcept {
    return mmap(place, size, protection, flags, file, offset);
}

}  // extern "C"

}  // namespace vort::faults
