#include "platform/kernel/workers.h"

#include <algorithm>
#include <csignal>
#include <pthread.h>
#include <sched.h>
#include <xmmintrin.h>

namespace tarn::platform {
namespace {

constexpr unsigned raised_exceptions = 0x3F;  // in the control and status word
constexpr int most_helpers = 63;
constexpr std::size_t stack_bytes = std::size_t{512} * 1024;

struct Workers {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t wanted = PTHREAD_COND_INITIALIZER;
    pthread_cond_t done = PTHREAD_COND_INITIALIZER;
    bool registered = false;  // with fork
    bool busy = false;
    int helpers = 0;  // that were started
    int may_help = 0;
    // The computation that is under way.
    void (*part)(void*, int) = nullptr;
    void* context = nullptr;
    int count = 0;
    int next = 0;
    int running = 0;
    unsigned control = 0;
    unsigned raised = 0;
};
constinit Workers workers;

// A child has the memory of its parent but none of its helpers, and perhaps a lock that one of them
// held.
void forget_helpers() {
    workers = Workers{};
    workers.registered = true;
}

// Under the lock. Takes parts as long as there are any.
void take_parts() {
    while (workers.next < workers.count) {
        const int index = workers.next++;
        ++workers.running;
        pthread_mutex_unlock(&workers.lock);
        workers.part(workers.context, index);
        pthread_mutex_lock(&workers.lock);
        --workers.running;
    }
}

void* help(void*) {
    pthread_mutex_lock(&workers.lock);
    for (;;) {
        while (workers.next >= workers.count || workers.may_help == 0)
            pthread_cond_wait(&workers.wanted, &workers.lock);
        --workers.may_help;
        _mm_setcsr(workers.control);
        take_parts();
        workers.raised |= _mm_getcsr() & raised_exceptions;
        if (workers.running == 0) pthread_cond_signal(&workers.done);
    }
    return nullptr;
}

// Signals of the program are for its own threads; but a fault in a part is reported where it
// happens.
bool start_helper() {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    pthread_attr_setstacksize(&attributes, stack_bytes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP}) sigdelset(&all, fault);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread{};
    const bool started = pthread_create(&thread, &attributes, help, nullptr) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    pthread_attr_destroy(&attributes);
    return started;
}

// Whether the caller has the helpers, up to `wanted` of them.
bool engage(int wanted) {
    pthread_mutex_lock(&workers.lock);
    const bool free = !workers.busy;
    if (free) {
        workers.busy = true;
        if (!workers.registered) {
            pthread_atfork(nullptr, nullptr, forget_helpers);
            workers.registered = true;
        }
        while (workers.helpers < std::min(wanted, most_helpers) && start_helper())
            ++workers.helpers;
        workers.may_help = std::min(wanted, workers.helpers);
    }
    pthread_mutex_unlock(&workers.lock);
    return free;
}

}  // namespace

int processor_count() {
    cpu_set_t mine;
    if (sched_getaffinity(0, sizeof mine, &mine) != 0) return 1;
    return std::max(1, CPU_COUNT(&mine));
}

void run_parts(int count, int threads, void (*part)(void* context, int index), void* context) {
    if (count < 2 || threads < 2 || !engage(std::min(threads, count) - 1)) {
        for (int i = 0; i < count; ++i) part(context, i);
        return;
    }
    pthread_mutex_lock(&workers.lock);
    workers.part = part;
    workers.context = context;
    workers.control = _mm_getcsr() & ~raised_exceptions;
    workers.raised = 0;
    workers.next = 0;
    workers.count = count;
    pthread_cond_broadcast(&workers.wanted);
    take_parts();
    workers.may_help = 0;
    while (workers.running > 0) pthread_cond_wait(&workers.done, &workers.lock);
    const unsigned raised = workers.raised;
    workers.busy = false;
    pthread_mutex_unlock(&workers.lock);
    _mm_setcsr(_mm_getcsr() | raised);
}

}  // namespace tarn::platform
