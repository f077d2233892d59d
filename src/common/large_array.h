// Memory for the few tables that take most of it.
//
// The elements start as zero without being written to: the system hands out pages of zeros, each
// when it is first touched, where a vector would touch every page once more.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
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
    explicit LargeArray(std::size_t size)
        : data_(static_cast<T*>(std::calloc(std::max<std::size_t>(size, 1), sizeof(T)))) {
        if (data_ == nullptr) throw std::bad_alloc();
    }

    T* data() { return data_.get(); }
    const T* data() const { return data_.get(); }

    // Keeps what fits; what is new is not cleared. Large arrays are moved by the system's tables of
    // pages, not copied. Throws std::bad_alloc, and is then as it was.
    void resize(std::size_t size) {
        T* const moved =
            static_cast<T*>(std::realloc(data_.get(), std::max<std::size_t>(size, 1) * sizeof(T)));
        if (moved == nullptr) throw std::bad_alloc();
        static_cast<void>(data_.release());
        data_.reset(moved);
    }

  private:
    struct Free {
        void operator()(T* memory) const { std::free(memory); }
    };

    std::unique_ptr<T, Free> data_;
};

}  // namespace vort
