// Loops whose passes are spread over threads.
//
// Every pass is independent of the others, so which thread runs it never shows in a result. Threads
// take the next pass that is left, and are gone when the loop ends; `threads` is how many there may
// be, the caller's included. A pass that throws ends the loop: the exception of the lowest pass
// that threw is thrown on, and passes not yet begun may be left out.
//
//     for_each_index(threads, blocks, [&](std::size_t b) { count_block(b); });
//
// Loops do not nest: passes run on one thread what they call.
#pragma once

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

namespace vort {

namespace parallel {

// The exception of the lowest pass that threw.
class FirstFailure {
  public:
    void keep(std::size_t pass, std::exception_ptr failure) {
        const std::scoped_lock lock(mutex_);
        if (pass >= pass_) return;
        pass_ = pass;
        failure_ = std::move(failure);
    }
    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

  private:
    std::mutex mutex_;
    std::size_t pass_ = std::numeric_limits<std::size_t>::max();
    std::exception_ptr failure_;
};

// Runs `work` on `threads` threads, this one included.
template <typename Work>
void on_threads(std::size_t threads, Work work) {
    std::vector<std::jthread> others;
    for (std::size_t t = 1; t < threads; ++t) others.emplace_back([&work] { work(); });
    work();
}

}  // namespace parallel

// body(i) for i = 0 .. count-1, in any order.
template <typename Body>
void for_each_index(int threads, std::size_t count, Body body) {
    const std::size_t crew = std::min(static_cast<std::size_t>(threads), count);
    if (crew <= 1) {
        for (std::size_t i = 0; i < count; ++i) body(i);
        return;
    }
    std::atomic<std::size_t> next{0};
    parallel::FirstFailure failure;
    parallel::on_threads(crew, [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            try {
                body(i);
            } catch (...) {
                failure.keep(i, std::current_exception());
                next = count;
            }
        }
    });
    failure.rethrow();
}

// body(begin, end) for the stretches of at most `size` that 0 .. count-1 falls into, in any order:
// for passes that are short, or whose results lie side by side.
template <typename Body>
void for_each_stretch(int threads, std::size_t count, std::size_t size, Body body) {
    for_each_index(threads, (count + size - 1) / size,
                   [&](std::size_t s) { body(s * size, std::min(count, (s + 1) * size)); });
}

// deliver(i, make(i)) for i = 0 .. count-1: `make` in any order, `deliver` in ascending order and
// never twice at once. At most `threads` results wait for their turn.
template <typename Make, typename Deliver>
void for_each_in_order(int threads, std::size_t count, Make make, Deliver deliver) {
    const std::size_t crew = std::min(static_cast<std::size_t>(threads), count);
    if (crew <= 1) {
        for (std::size_t i = 0; i < count; ++i) deliver(i, make(i));
        return;
    }
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::condition_variable turn_changed;
    std::size_t turn = 0;
    bool failed = false;
    parallel::FirstFailure failure;
    parallel::on_threads(crew, [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            try {
                auto made = make(i);
                std::unique_lock lock(mutex);
                turn_changed.wait(lock, [&] { return turn == i || failed; });
                if (turn != i) return;
                deliver(i, std::move(made));
                ++turn;
            } catch (...) {
                // Passes before this one still get their turn.
                std::unique_lock lock(mutex);
                turn_changed.wait(lock, [&] { return turn == i || failed; });
                failure.keep(i, std::current_exception());
                failed = true;
                next = count;
            }
            turn_changed.notify_all();
        }
    });
    failure.rethrow();
}

}  // namespace vort
