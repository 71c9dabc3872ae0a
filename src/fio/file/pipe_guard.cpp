#include "fio/file/pipe_guard.h"

#include <atomic>
#include <signal.h>
#include <unistd.h>

namespace tarn::fio {
namespace {

thread_local int guarded = 0;
std::atomic<bool> installed{false};

void on_closed_pipe(int) {
    if (guarded > 0) return;
    signal(SIGPIPE, SIG_DFL);
    raise(SIGPIPE);
}

// Only in place of the system's default: a program's own handling stays.
void install() {
    if (installed.exchange(true)) return;
    struct sigaction current {};
    if (sigaction(SIGPIPE, nullptr, &current) != 0) return;
    if (current.sa_handler != SIG_DFL) return;
    struct sigaction ours {};
    ours.sa_handler = on_closed_pipe;
    ours.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &ours, nullptr);
}

}  // namespace

PipeGuard::PipeGuard(bool wanted) : wanted_(wanted) {
    if (!wanted_) return;
    if (!installed.load(std::memory_order_relaxed)) install();
    ++guarded;
}

PipeGuard::~PipeGuard() {
    if (wanted_) --guarded;
}

void die_of_closed_pipe() {
    signal(SIGPIPE, SIG_DFL);
    raise(SIGPIPE);
    _exit(1);
}

}  // namespace tarn::fio
