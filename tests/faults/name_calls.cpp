// The C library's calls on names of files and on directories, each passed on unless the ledger says
// otherwise.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdio>

#include "call.h"

namespace vort::faults {

namespace {

template <typename Status>
int stat_by(const char* function, const char* path, Status* status) {
    const auto real = next<int (*)(const char*, Status*)>(function);
    return call("stat", at(path), -1, [&] { return real(path, status); });
}

template <typename Status>
int fstat_by(const char* function, int file, Status* status) {
    const auto real = next<int (*)(int, Status*)>(function);
    return call("stat", of(file), -1, [&] { return real(file, status); });
}

}  // namespace

extern "C" {

int rename(const char* from, const char* to) noexcept {
    static const auto real = next<int (*)(const char*, const char*)>("rename");
    return call("rename", at(to), -1, [&] { return real(from, to); });
}

int renameat(int old_folder, const char* from, int new_folder, const char* to) noexcept {
    static const auto real = next<int (*)(int, const char*, int, const char*)>("renameat");
    return call("rename", at(to, new_folder), -1,
                [&] { return real(old_folder, from, new_folder, to); });
}

int renameat2(int old_folder, const char* from, int new_folder, const char* to,
              unsigned flags) noexcept {
    static const auto real =
        next<int (*)(int, const char*, int, const char*, unsigned)>("renameat2");
    return call("rename", at(to, new_folder), -1,
                [&] { return real(old_folder, from, new_folder, to, flags); });
}

int link(const char* from, const char* to) noexcept {
    static const auto real = next<int (*)(const char*, const char*)>("link");
    return call("link", at(to), -1, [&] { return real(from, to); });
}

int linkat(int old_folder, const char* from, int new_folder, const char* to, int flags) noexcept {
    static const auto real = next<int (*)(int, const char*, int, const char*, int)>("linkat");
    return call("link", at(to, new_folder), -1,
                [&] { return real(old_folder, from, new_folder, to, flags); });
}

int unlink(const char* path) noexcept {
    static const auto real = next<int (*)(const char*)>("unlink");
    return call("unlink", at(path), -1, [&] { return real(path); });
}

int unlinkat(int directory, const char* path, int flags) noexcept {
    static const auto real = next<int (*)(int, const char*, int)>("unlinkat");
    return call("unlink", at(path, directory), -1, [&] { return real(directory, path, flags); });
}

int rmdir(const char* path) noexcept {
    static const auto real = next<int (*)(const char*)>("rmdir");
    return call("unlink", at(path), -1, [&] { return real(path); });
}

int remove(const char* path) noexcept {
    static const auto real = next<int (*)(const char*)>("remove");
    return call("unlink", at(path), -1, [&] { return real(path); });
}

int mkdir(const char* path, mode_t mode) noexcept {
    static const auto real = next<int (*)(const char*, mode_t)>("mkdir");
    return call("mkdir", at(path), -1, [&] { return real(path, mode); });
}

int mkdirat(int directory, const char* path, mode_t mode) noexcept {
    static const auto real = next<int (*)(int, const char*, mode_t)>("mkdirat");
    return call("mkdir", at(path, directory), -1, [&] { return real(directory, path, mode); });
}

int stat(const char* path, struct stat* status) noexcept {
    return stat_by("stat", path, status);
}

int stat64(const char* path, struct stat64* status) noexcept {
    return stat_by("stat64", path, status);
}

int lstat(const char* path, struct stat* status) noexcept {
    return stat_by("lstat", path, status);
}

int lstat64(const char* path, struct stat64* status) noexcept {
    return stat_by("lstat64", path, status);
}

int fstat(int file, struct stat* status) noexcept {
    return fstat_by("fstat", file, status);
}

int fstat64(int file, struct stat64* status) noexcept {
    return fstat_by("fstat64", file, status);
}

int fstatat(int directory, const char* path, struct stat* status, int flags) noexcept {
    static const auto real = next<int (*)(int, const char*, struct stat*, int)>("fstatat");
    return call("stat", at(path, directory), -1,
                [&] { return real(directory, path, status, flags); });
}

int statx(int directory, const char* path, int flags, unsigned mask,
          struct statx* status) noexcept {
    static const auto real = next<int (*)(int, const char*, int, unsigned, struct statx*)>("statx");
    return call("stat", at(path, directory), -1,
                [&] { return real(directory, path, flags, mask, status); });
}

int access(const char* path, int mode) noexcept {
    static const auto real = next<int (*)(const char*, int)>("access");
    return call("stat", at(path), -1, [&] { return real(path, mode); });
}

int statvfs(const char* path, struct statvfs* status) noexcept {
    static const auto real = next<int (*)(const char*, struct statvfs*)>("statvfs");
    return call("statvfs", at(path), -1, [&] { return real(path, status); });
}

DIR* opendir(const char* path) {
    static const auto real = next<DIR* (*)(const char*)>("opendir");
    const Name name = at(path);
    DIR* const folder = call<DIR*>("opendir", name, nullptr, [&] { return real(path); });
    const Inside here;
    if (name && folder != nullptr) Ledger::instance().opened(::dirfd(folder), *name);
    return folder;
}

DIR* fdopendir(int file) {
    static const auto real = next<DIR* (*)(int)>("fdopendir");
    return call<DIR*>("opendir", of(file), nullptr, [&] { return real(file); });
}

dirent* readdir(DIR* folder) {
    static const auto real = next<dirent* (*)(DIR*)>("readdir");
    return call<dirent*>("readdir", of(::dirfd(folder)), nullptr, [&] { return real(folder); });
}

dirent64* readdir64(DIR* folder) {
    static const auto real = next<dirent64* (*)(DIR*)>("readdir64");
    return call<dirent64*>("readdir", of(::dirfd(folder)), nullptr, [&] { return real(folder); });
}

int closedir(DIR* folder) {
    static const auto real = next<int (*)(DIR*)>("closedir");
    return close_by(::dirfd(folder), [&] { return real(folder); });
}

}  // extern "C"

}  // namespace vort::faults
