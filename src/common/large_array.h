// Memory for the few tables that take most of it.
//
// A table of hundreds of megabytes is touched page by page for the first time, and each page is a
// call into the system. Such tables ask for large pages, of which there are five hundred times
// fewer; a system that has none gives ordinary ones. The elements start as zero, without being
// written to.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

namespace vort {

template <typename T>
class LargeArray {
    static_assert(std::is_trivial_v<T>);

  public:
    LargeArray() = default;

    // Throws std::bad_alloc where there is not that much memory.
    explicit LargeArray(std::size_t size) {
        if (size == 0) return;
        const std::size_t bytes = size * sizeof(T);
        void* const memory =
            ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        data_ = {static_cast<T*>(memory), Unmap{bytes}};
        ::madvise(memory, bytes, MADV_HUGEPAGE);  // a wish: whether it is granted changes nothing
    }

    T* data() { return data_.get(); }
    const T* data() const { return data_.get(); }

  private:
    struct Unmap {
        std::size_t bytes = 0;
        void operator()(T* memory) const { ::munmap(memory, bytes); }
    };

    std::unique_ptr<T, Unmap> data_;
};

}  // namespace vort
