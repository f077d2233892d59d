// How a call is passed on: counted by the ledger, and made, made by half, or failed.
#pragma once

#include <dlfcn.h>
#include <fcntl.h>

#include <cerrno>
#include <optional>
#include <string>

#include "ledger.h"

namespace vort::faults {

// The function that this library stands in front of.
template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

using Name = std::optional<std::string>;

// The name of a watched file by its path, or by its number.
inline Name at(const char* path, int directory = AT_FDCWD) {
    const Inside here;
    return Ledger::instance().watched(directory, path);
}

inline Name of(int file) {
    const Inside here;
    return Ledger::instance().name_of(file);
}

inline Verdict reach(const char* kind, const Name& name) {
    const Inside here;
    return name ? Ledger::instance().reach(kind, *name) : Verdict{};
}

// One call: `real` makes it, `less` makes half of it, `failed` is what it gives where it fails.
template <typename Result, typename Real, typename Less>
Result call(const char* kind, const Name& name, Result failed, const Real& real, const Less& less) {
    const Verdict verdict = reach(kind, name);
    if (verdict.deed == Deed::kKillBefore) die();
    if (verdict.deed == Deed::kFail) {
        errno = verdict.error;
        return failed;
    }
    const Result result = verdict.deed == Deed::kShort ? less() : real();
    if (verdict.deed == Deed::kKillAfter) die();
    return result;
}

template <typename Result, typename Real>
Result call(const char* kind, const Name& name, Result failed, const Real& real) {
    return call(kind, name, failed, real, real);
}

template <typename Real>
int open_by(const Name& name, const Real& real) {
    const int file = call("open", name, -1, real);
    const Inside here;
    if (name && file >= 0) Ledger::instance().opened(file, *name);
    return file;
}

// Closes in any case; `file` is no longer this file's number then.
template <typename Real>
int close_by(int file, const Real& real) {
    const Name name = of(file);
    const Verdict verdict = reach("close", name);
    if (verdict.deed == Deed::kKillBefore) die();
    if (name) {
        const Inside here;
        Ledger::instance().closed(file);
    }
    const int result = real();
    if (verdict.deed == Deed::kKillAfter) die();
    if (verdict.deed != Deed::kFail) return result;
    errno = verdict.error;
    return -1;
}

}  // namespace vort::faults
