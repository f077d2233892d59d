// Work space that passes of a parallel loop borrow, so that it is made once for each thread.
//
//     Workspaces<Buffer> buffers([] { return Buffer(size); });
//     const auto buffer = buffers.borrow();   // given back when it goes out of scope
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

namespace vort {

template <typename T>
class Workspaces {
  public:
    explicit Workspaces(std::function<T()> make) : make_(std::move(make)) {}

    struct GiveBack {
        Workspaces* owner;
        void operator()(T* lent) const { owner->take_back(std::unique_ptr<T>(lent)); }
    };
    // Must not outlive this object.
    using Loan = std::unique_ptr<T, GiveBack>;

    Loan borrow() {
        {
            const std::scoped_lock lock(mutex_);
            if (!idle_.empty()) {
                Loan loan(idle_.back().release(), GiveBack{this});
                idle_.pop_back();
                return loan;
            }
        }
        return Loan(new T(make_()), GiveBack{this});
    }

  private:
    // Without memory to note it by it is let go.
    void take_back(std::unique_ptr<T> lent) noexcept {
        const std::scoped_lock lock(mutex_);
        try {
            idle_.push_back(std::move(lent));
        } catch (const std::bad_alloc&) {
            lent.reset();
        }
    }

    std::function<T()> make_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<T>> idle_;
};

}  // namespace vort
