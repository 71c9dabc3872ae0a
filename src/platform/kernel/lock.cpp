#include "platform/kernel/lock.h"

#include <linux/futex.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarn::platform {

constinit thread_local std::int32_t Lock::current_thread = 0;

std::int32_t Lock::find_thread_id() {
    // The one thread that lives on in a child process has a new number there. A lock it held
    // across the fork keeps the old one and stays taken, as any lock does.
    static pthread_once_t once = PTHREAD_ONCE_INIT;
    pthread_once(&once, [] { pthread_atfork(nullptr, nullptr, [] { current_thread = 0; }); });
    current_thread = static_cast<std::int32_t>(syscall(SYS_gettid));
    return current_thread;
}

void Lock::wait() {
    while (state_.exchange(contended, std::memory_order_acquire) != unlocked) {
        syscall(SYS_futex, &state_, FUTEX_WAIT_PRIVATE, contended, nullptr, nullptr, 0);
    }
}

void Lock::wake_one() {
    syscall(SYS_futex, &state_, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

}  // namespace tarn::platform
