// The C library's allocations, of which one can fail; operator new comes here, too. Those that
// libcrypto makes for itself are passed on: where its initialisation has no memory it ends the
// process, and nobody can mend that here.
#include <link.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "ledger.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace vort::faults {

namespace {

// Where libcrypto lies in memory.
struct Stretch {
    std::uintptr_t begin = UINTPTR_MAX;
    std::uintptr_t end = 0;

    bool holds(const void* place) const {
        const auto address = reinterpret_cast<std::uintptr_t>(place);
        return address >= begin && address < end;
    }
};

Stretch libcrypto;

int look_at(dl_phdr_info* library, std::size_t, void*) {
    if (std::string_view(library->dlpi_name).find("libcrypto.so") == std::string_view::npos)
        return 0;
    for (int k = 0; k < library->dlpi_phnum; ++k) {
        const auto& part = library->dlpi_phdr[k];
        if (part.p_type != PT_LOAD) continue;
        const std::uintptr_t begin = library->dlpi_addr + part.p_vaddr;
        libcrypto.begin = std::min(libcrypto.begin, begin);
        libcrypto.end = std::max(libcrypto.end, begin + part.p_memsz);
    }
    return 1;
}

[[gnu::constructor]] void find_libcrypto() {
    ::dl_iterate_phdr(look_at, nullptr);
}

template <typename Real>
void* allocate(const void* caller, const Real& real) {
    if (!inside && !libcrypto.holds(caller) &&
        allocations.counting.load(std::memory_order_relaxed)) {
        const long number = ++allocations.count;
        if (number >= allocations.first_failing && number <= allocations.last_failing) {
            if (number == allocations.first_failing) {
                const Inside here;
                Ledger::instance().log("!alloc " + std::to_string(number) + " -\n");
            }
            errno = ENOMEM;
            return nullptr;
        }
    }
    return real();
}

[[gnu::destructor]] void tell_allocations() {
    const Inside here;
    Ledger::instance().log("alloc " + std::to_string(allocations.count) + " -\n");
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept {
    return allocate(__builtin_return_address(0), [&] { return __libc_malloc(size); });
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return allocate(__builtin_return_address(0), [&] { return __libc_calloc(count, size); });
}

void* realloc(void* old, std::size_t size) noexcept {
    return allocate(__builtin_return_address(0), [&] { return __libc_realloc(old, size); });
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return allocate(__builtin_return_address(0), [&] { return __libc_memalign(alignment, size); });
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return memalign(alignment, size);
}

int posix_memalign(void** place, std::size_t alignment, std::size_t size) noexcept {
    void* const memory = memalign(alignment, size);
    if (memory == nullptr) return ENOMEM;
    *place = memory;
    return 0;
}

}  // extern "C"

}  // namespace vort::faults
