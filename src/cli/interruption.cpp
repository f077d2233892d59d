#include "cli/interruption.h"

#include <pthread.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "cli/exit_status.h"

namespace vort {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};
constexpr int kEnough = SIGUSR2;  // ends the waiting

bool is_ignored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t awaited() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : kSignals) {
        if (!is_ignored(signal)) sigaddset(&set, signal);
    }
    sigaddset(&set, kEnough);
    return set;
}

}  // namespace

Interruption::Interruption(std::function<void()> clean_up) : clean_up_(std::move(clean_up)) {
    const sigset_t set = awaited();
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
    waiter_ = std::thread([this, set] {
        int signal = 0;
        do {
            if (over_) return;
        } while (::sigwait(&set, &signal) != 0 || signal == kEnough);
        clean_up_();
        ::_exit(kSignalled + signal);
    });
}

Interruption::~Interruption() {
    over_ = true;
    ::pthread_kill(waiter_.native_handle(), kEnough);
    waiter_.join();
}

}  // namespace vort
