// Faults of the processor and the signals that end a program, as the system delivers them.
//
// Each thread gets a small stack of its own for them, so that a stack that overflowed can be
// reported. The handler runs on it and may be interrupted by a fault of its own.
#pragma once

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <ucontext.h>

namespace tarn::platform {

struct Fault {
    int signal;
    const siginfo_t* info;
    ucontext_t* context;

    // Sent by a process, also by this one, and not by the processor.
    bool was_sent() const { return info->si_code <= 0; }
};

// True: the program goes on with what the context holds by then. False: the signal does what it
// does by default.
using FaultHandler = bool (*)(const Fault& fault);

// Watches, from the first call on, the signals that nobody else handles or ignores.
void watch_faults(FaultHandler handler);
bool faults_are_watched();
// Whether a signal still comes to the handler: a program may have taken it since.
bool is_watched(int signal);

// For the handler of such a signal that finds it isn't meant: what would have happened without it.
void pass_on_signal(int number, siginfo_t* info, void* context);

// The calling thread's stack for handlers; it ends with the thread. A thread that has one keeps it.
void give_handler_stack();

// Whether a fault struck in a handler: on the stack for them.
bool struck_in_handler(const Fault& fault);

// The addresses that the calling thread's own stack may take up; false where they aren't known.
struct StackBounds {
    std::uintptr_t low, high;
};
bool stack_bounds(StackBounds& bounds);
// For a thread that starts: its first frame, and the size it was made with.
void set_stack_bounds(const void* first_frame, std::size_t size);

// "SIGSEGV", "Segmentation fault"; empty for one that isn't watched.
struct SignalName {
    const char* name;
    const char* text;
};
SignalName signal_name(int signal);

// The end by a signal, as the system would have ended the program without us.
[[noreturn]] void die_of(int signal);

}  // namespace tarn::platform
