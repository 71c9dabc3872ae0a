#include "exceptions/attempt.h"

#include <atomic>
#include <csetjmp>
#include <csignal>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarn::exceptions {
namespace {

class Watchdog;

struct Attempt {
    std::atomic<pid_t> thread{0};  // 0: nobody is in a step
    sigjmp_buf* back = nullptr;
    Watchdog* watchdog = nullptr;
};
constinit Attempt current;

pid_t this_thread() {
    return static_cast<pid_t>(syscall(SYS_gettid));
}

void on_time_out(int, siginfo_t*, void*) {
    leave_attempt();
}

// A timer of this thread. SIGALRM may have been the program's; the program doesn't go on.
class Watchdog {
  public:
    explicit Watchdog(unsigned seconds) {
        struct sigaction action = {};
        action.sa_sigaction = on_time_out;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
        sigaction(SIGALRM, &action, &before_);
        sigset_t only;
        sigemptyset(&only);
        sigaddset(&only, SIGALRM);
        pthread_sigmask(SIG_UNBLOCK, &only, &mask_);
        sigevent event = {};
        event.sigev_notify = SIGEV_THREAD_ID;
        event.sigev_signo = SIGALRM;
        event._sigev_un._tid = this_thread();
        // The C library's own routine may allocate.
        made_ = syscall(SYS_timer_create, CLOCK_MONOTONIC, &event, &timer_) == 0;
        set(seconds);
    }
    // 0 stops the clock.
    void set(unsigned seconds) {
        if (!made_) return;
        itimerspec when = {};
        when.it_value.tv_sec = static_cast<time_t>(seconds);
        syscall(SYS_timer_settime, timer_, 0, &when, nullptr);
    }
    void stop() {
        if (made_) syscall(SYS_timer_delete, timer_);
        sigaction(SIGALRM, &before_, nullptr);
        pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
    }

  private:
    int timer_ = 0;
    bool made_ = false;
    struct sigaction before_ = {};
    sigset_t mask_ = {};
};

}  // namespace

bool attempt(unsigned seconds, void (*step)(void* data), void* data) {
    sigjmp_buf back;
    sigjmp_buf* const outer = current.back;
    const pid_t outer_thread = current.thread;
    Watchdog* const outer_watchdog = current.watchdog;
    Watchdog watchdog(seconds);
    volatile bool done = false;
    if (sigsetjmp(back, 0) == 0) {
        current.back = &back;
        current.watchdog = &watchdog;
        current.thread = this_thread();
        step(data);
        done = true;
    }
    current.thread = outer_thread;
    current.back = outer;
    current.watchdog = outer_watchdog;
    watchdog.stop();
    return done;
}

void lift_limit() {
    if (current.thread == this_thread() && current.watchdog != nullptr) current.watchdog->set(0);
}

void leave_attempt() {
    if (current.thread == 0 || current.thread != this_thread()) return;
    siglongjmp(*current.back, 1);
}

}  // namespace tarn::exceptions
