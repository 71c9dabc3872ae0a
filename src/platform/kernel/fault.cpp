#include "platform/kernel/fault.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <pthread.h>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

// Those that end a program with a core file by default: somebody wants to know where it stood. The
// others (a break key, SIGTERM, a timer) are orders to stop, and stop the program as ever.
struct Watched {
    int signal;
    SignalName name;
};
constexpr Watched watched[] = {
    {SIGSEGV, {"SIGSEGV", "Segmentation fault"}},
    {SIGBUS, {"SIGBUS", "Bus error"}},
    {SIGFPE, {"SIGFPE", "Arithmetic exception"}},
    {SIGILL, {"SIGILL", "Illegal instruction"}},
    {SIGTRAP, {"SIGTRAP", "Breakpoint"}},
    {SIGABRT, {"SIGABRT", "Abort"}},
    {SIGSYS, {"SIGSYS", "Bad system call"}},
    {SIGQUIT, {"SIGQUIT", "Quit"}},
    {SIGXCPU, {"SIGXCPU", "CPU time limit exceeded"}},
    {SIGXFSZ, {"SIGXFSZ", "File size limit exceeded"}},
};

constexpr std::size_t handler_stack_size = 512 * 1024;
constexpr std::size_t page = 4096;

struct Faults {
    std::atomic<FaultHandler> handler{nullptr};
    pthread_key_t stack_key{};
    std::atomic<bool> has_key{false};
    // The main thread's. Pages of it exist once they are used.
    alignas(64) char main_stack[handler_stack_size] = {};
};
constinit Faults faults;

// A handler may run before a thread has touched its thread-local storage: it must be there.
[[gnu::tls_model("initial-exec")]] thread_local StackBounds thread_stack{0, 0};

bool on_main_thread() {
    return syscall(SYS_gettid) == getpid();
}

void use_default(int signal) {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
}

void on_signal(int number, siginfo_t* info, void* context) {
    const int kept = errno;
    const Fault fault{number, info, static_cast<ucontext_t*>(context)};
    if (!faults.handler.load(std::memory_order_relaxed)(fault)) die_of(number);
    errno = kept;
}

void watch(int number) {
    struct sigaction action = {};
    action.sa_sigaction = on_signal;
    // A fault inside the handler comes to it again, and a handler that is left by a jump leaves no
    // signal blocked.
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    struct sigaction before;
    if (sigaction(number, &action, &before) != 0) return;
    if ((before.sa_flags & SA_SIGINFO) != 0 || before.sa_handler != SIG_DFL)
        sigaction(number, &before, nullptr);
}

bool has_handler_stack() {
    stack_t present;
    return sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE) == 0;
}

void use_stack(char* low) {
    stack_t stack = {};
    stack.ss_sp = low;
    stack.ss_size = handler_stack_size;
    sigaltstack(&stack, nullptr);
}

void release_stack(void* region) {
    stack_t present;
    if (sigaltstack(nullptr, &present) == 0 && present.ss_sp == static_cast<char*>(region) + page) {
        stack_t none = {};
        none.ss_flags = SS_DISABLE;
        sigaltstack(&none, nullptr);
    }
    munmap(region, handler_stack_size + page);
}

bool main_stack_bounds(StackBounds& bounds) {
    const std::uintptr_t near_top = getauxval(AT_EXECFN);
    rlimit limit;
    if (near_top == 0 || getrlimit(RLIMIT_STACK, &limit) != 0) return false;
    bounds.high = (near_top | (page - 1)) + 1;
    bounds.low = limit.rlim_cur == RLIM_INFINITY || limit.rlim_cur > bounds.high
                     ? 0
                     : bounds.high - limit.rlim_cur;
    return true;
}

}  // namespace

void watch_faults(FaultHandler handler) {
    if (faults.handler.exchange(handler) != nullptr) return;
    faults.has_key = pthread_key_create(&faults.stack_key, release_stack) == 0;
    give_handler_stack();
    for (const Watched& each : watched) watch(each.signal);
}

bool faults_are_watched() {
    return faults.handler.load(std::memory_order_acquire) != nullptr;
}

void pass_on_signal(int number, siginfo_t* info, void* context) {
    if (faults_are_watched() && signal_name(number).name[0] != 0) {
        on_signal(number, info, context);
    } else {
        die_of(number);
    }
}

bool is_watched(int signal) {
    struct sigaction present;
    return sigaction(signal, nullptr, &present) == 0 && (present.sa_flags & SA_SIGINFO) != 0 &&
           present.sa_sigaction == on_signal;
}

void give_handler_stack() {
    if (has_handler_stack()) return;
    if (on_main_thread()) {
        use_stack(faults.main_stack);
        return;
    }
    if (!faults.has_key) return;
    void* region = mmap(nullptr, handler_stack_size + page, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (region == MAP_FAILED) return;
    // A handler that needs more is ended, rather than writing over what lies below.
    mprotect(region, page, PROT_NONE);
    if (pthread_setspecific(faults.stack_key, region) != 0) {
        munmap(region, handler_stack_size + page);
        return;
    }
    use_stack(static_cast<char*>(region) + page);
}

bool struck_in_handler(const Fault& fault) {
    stack_t present;
    if (sigaltstack(nullptr, &present) != 0 || (present.ss_flags & SS_DISABLE) != 0) return true;
    const auto pointer = static_cast<std::uintptr_t>(fault.context->uc_mcontext.gregs[REG_RSP]);
    const auto low = reinterpret_cast<std::uintptr_t>(present.ss_sp);
    return pointer >= low && pointer - low < present.ss_size;
}

bool stack_bounds(StackBounds& bounds) {
    if (on_main_thread()) return main_stack_bounds(bounds);
    bounds = thread_stack;
    return bounds.high != 0;
}

void set_stack_bounds(const void* first_frame, std::size_t size) {
    // A little lies above the first frame, which only makes the stack look larger than it is.
    thread_stack.high = (reinterpret_cast<std::uintptr_t>(first_frame) | (page - 1)) + 1;
    thread_stack.low = thread_stack.high - std::min<std::uintptr_t>(size, thread_stack.high);
}

SignalName signal_name(int signal) {
    for (const Watched& each : watched) {
        if (each.signal == signal) return each.name;
    }
    return {"", ""};
}

void die_of(int signal) {
    use_default(signal);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, signal);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    syscall(SYS_tgkill, getpid(), syscall(SYS_gettid), signal);
    _exit(128 + signal);
}

}  // namespace tarn::platform
