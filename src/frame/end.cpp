#include "frame/end.h"

#include <cstdio>
#include <new>
#include <stdlib.h>
#include <unistd.h>

#include "frame/file_numbers.h"
#include "frame/fortran_data.h"
#include "frame/hooks.h"
#include "frame/state.h"
#include "platform/kernel/control_events.h"
#include "platform/kernel/debug_output.h"

namespace tarn::frame {
namespace {

struct Node {
    Node* next;
    void (*routine)();
};

struct EndState {
    Node* exit_routines = nullptr;
    Node* cleanup_routines = nullptr;
    bool aborting = false;
};
constinit EndState end;

bool push(Node*& list, void (*routine)()) {
    Node* node = new (std::nothrow) Node{list, routine};
    if (!node) return false;
    list = node;
    return true;
}

// A routine is taken off before it is called: one that it adds runs next all the same, and one
// that calls exit doesn't meet itself again.
void run_list(Node*& list) {
    while (Node* node = list) {
        list = node->next;
        void (*routine)() = node->routine;
        delete node;
        routine();
    }
}

void call(void (*hook)()) {
    if (hook) hook();
}

void flush_c_streams() {
    if (state().windows_mode != 0 || state().window_output) return;
    std::fflush(stdout);
    std::fflush(stderr);
}

// Closes the system handles of numbers that the program left open. The standard streams and the
// console share descriptors 0, 1 and 2 with everybody else in the process and stay.
void close_file_numbers() {
    FileNumbers& numbers = file_numbers();
    for (int number = 6; number < file_number_count - 1; ++number) {
        if (numbers.flags[number] == 0) continue;
        close(static_cast<int>(numbers.slots[number].handle));
        give_back_file_number(number);
    }
}

[[gnu::destructor]] void at_the_very_end() {
    if (!state().ready.load(std::memory_order_acquire)) return;
    run_exit_chain();
    close_and_tidy();
}

}  // namespace

int add_exit_routine(void (*routine)()) {
    ensure_up();
    // The first of a row asks for a turn in the system's own order of exit handlers, so that the
    // row runs before the destructors of static objects, also with a plain exit.
    bool first = !end.exit_routines;
    if (!push(end.exit_routines, routine)) return 1;
    if (first && ::atexit(run_exit_routines) != 0) return 1;
    return 0;
}

void run_exit_routines() {
    run_list(end.exit_routines);
}

void add_cleanup_routine(void (*routine)()) {
    push(end.cleanup_routines, routine);
}

void run_cleanup_routines() {
    run_list(end.cleanup_routines);
}

void close_and_tidy() {
    call(hooks().close_fortran_units);
    tarn_libcom.state = lib_closed;
    call(hooks().flush_fortran_handles);
}

void run_exit_chain() {
    run_exit_routines();
    call(hooks().finish_scopes);
}

void join_system_exit() {
    ::atexit(run_exit_chain);
}

void exit_program(int status) {
    run_exit_chain();
    close_file_numbers();
    flush_c_streams();
    if (__debugged) platform::debug_output("MONWT32 Program termination");
    ::exit(status);
}

void exit_fortran(std::int16_t status) {
    run_exit_chain();
    close_file_numbers();
    flush_c_streams();
    if (__debugged) stop_in_debugger("MONWT32 Program termination");
    ::exit(status);
}

void abort_program() {
    // What completed statements wrote is worth more than the speed of this end; a second abort
    // from inside the writing leaves at once.
    if (!end.aborting) {
        end.aborting = true;
        call(hooks().flush_fortran_units);
        call(hooks().flush_fortran_handles);
    }
    _exit((traceback_flags() & tb_no_traceback) != 0 ? 0 : 1);
}

void zap_out() {
    if (__debugged) return;
    traceback_flags() |= tb_leaving;
    _exit(1);
}

void break_out() {
    // No break event is sent: it would reach the process group, and with it the user's shell
    // script or build.
    _exit(1);
}

int on_control_event(int event) {
    if (!__debugged) return 0;
    if (event != platform::ctrl_c_event && event != platform::ctrl_break_event) return 0;
    platform::debug_output("USER_BREAK");
    return 1;
}

void stop_in_debugger(const char* text) {
    std::uintptr_t first_mark = 0x4B534C31;
    std::uintptr_t second_mark = 0x52444331;
    __asm__ volatile("int3" : "+a"(first_mark), "+b"(second_mark) : "S"(text) : "memory");
}

}  // namespace tarn::frame
