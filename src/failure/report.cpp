#include "failure/report.h"

#include <atomic>
#include <cstdio>
#include <pthread.h>
#include <unistd.h>

#include "failure/failure.h"
#include "frame/console_lines.h"
#include "frame/end.h"
#include "frame/hooks.h"
#include "frame/state.h"
#include "platform/kernel/console.h"
#include "platform/kernel/debug_output.h"
#include "platform/kernel/float_unit.h"
#include "platform/kernel/message_box.h"
#include "traceback/traceback.h"

namespace tarn::failure {
namespace {

constinit State the_state;
constinit Hooks the_hooks;

// Who is reporting. A second failure finds it taken: on the same thread it struck while the first
// was writing the program's files out, on another one at the same moment.
struct Reporter {
    std::atomic<bool> taken{false};
    pthread_t thread{};
    std::atomic<bool> printed{false};
    std::string_view text;
    std::string_view callers;
};
constinit Reporter reporter;

constexpr unsigned other_thread_patience = 10;  // seconds

void print(std::string_view text) {
    bool to_output = (frame::traceback_flags() & frame::tb_kill_dialogbox) != 0;
    platform::write_descriptor(to_output ? STDOUT_FILENO : STDERR_FILENO, text);
}

void print_once() {
    if (reporter.printed.exchange(true)) return;
    print(reporter.text);
    print(reporter.callers);
}

// A C program's standard output is flushed too, unless another thread is inside it: the report
// must come out in any case.
void flush_c_output() {
    if (ftrylockfile(stdout) != 0) return;
    fflush_unlocked(stdout);
    funlockfile(stdout);
}

[[noreturn]] void fail_again(std::string_view text) {
    if (pthread_equal(reporter.thread, pthread_self())) {
        print_once();
        print(text);
    } else {
        // The first one ends the process. Should it hang, this one does.
        sleep(other_thread_patience);
        print_once();
    }
    _exit(1);
}

void send_to_debugger(const std::string& text) {
    platform::debug_output("TDBG: Kill all data breaks");
    if (__debugged == 1) {
        platform::debug_output(text.c_str());
        return;
    }
    frame::stop_in_debugger(text.c_str());
}

std::string numbered(int number, std::string_view sentence) {
    char start[32];
    int length = std::snprintf(start, sizeof start, "*** Error %4d, ", number);
    return std::string(start, static_cast<std::size_t>(length)).append(sentence);
}

}  // namespace

State& state() {
    return the_state;
}

Hooks& hooks() {
    return the_hooks;
}

std::string report_text(int number, std::string_view free, const char* routine,
                        const void* address) {
    bool debugged = __debugged != 0;
    std::string text;
    if (number == free_text || number == fortran_free_text) {
        if (debugged) text = number == free_text ? "CPPFAIL@ " : "ORV90FAIL@ ";
        return text.append(free);
    }
    if (routine) {
        char line[400];
        std::snprintf(line, sizeof line, "Call to missing routine : %.300s at 0x%016lx.\n", routine,
                      reinterpret_cast<unsigned long>(address));
        text = line;
    }
    std::string sentence = numbered(number, plain_text(number));
    if (debugged) return text.append("CPPFAIL@ ").append(sentence, 4);  // without the stars
    return text.append(sentence).append("\n");
}

void report(int number, std::string_view text) {
    const traceback::Registers here = traceback::registers_here();
    frame::ensure_up();  // the options say where a report goes
    if (reporter.taken.exchange(true)) fail_again(text);
    // The reports of the room above and of the system's library compute with floating-point
    // numbers too; a trap in here would hide what went wrong.
    platform::MaskedFloat masked;
    reporter.thread = pthread_self();
    reporter.text = text;
    the_state.last_failure = number;
    if (__debugged) send_to_debugger(std::string(text));
    if (the_hooks.flush_everything) the_hooks.flush_everything();
    flush_c_output();
    if ((frame::traceback_flags() & frame::tb_no_traceback) == 0)
        reporter.callers = traceback::console_text(here, false);
    bool console = (frame::traceback_flags() & frame::tb_kill_dialogbox) != 0;
    print_once();
    if (!console && the_hooks.report_dialog) the_hooks.report_dialog(text, reporter.callers);
    _exit(1);
}

void fail_at(int number, std::string_view free, const char* routine, const void* address) {
    if (the_state.managed_handler) {
        std::string text(number == free_text ? free : plain_text(number));
        the_state.managed_handler(number, text.c_str());
    }
    report(number, report_text(number, free, routine, address));
}

void c_fail(int number) {
    if (the_state.user_handler) {
        the_state.user_handler(number);
        frame::abort_program();
    }
    fail_at(number, {}, nullptr, __builtin_return_address(0));
}

void fortran_error(std::string_view text) {
    std::string line(frame::trimmed(text).substr(0, longest_free_text));
    line.push_back('\n');
    fail_at(free_text, line, nullptr, nullptr);
}

void fail(int number) {
    c_fail(number);
}

void fail(int number, std::string_view more_lines) {
    fail_sentence(number, plain_text(number), more_lines);
}

void fail_sentence(int number, std::string_view sentence, std::string_view more_lines) {
    if (the_state.user_handler) c_fail(number);
    std::string text = __debugged ? "CPPFAIL@ " : "";
    text.append(numbered(number, sentence), __debugged ? 4 : 0).append("\n").append(more_lines);
    report(number, text);
}

void fail_text(std::string_view text) {
    std::string line(text);
    if (!line.ends_with('\n')) line.push_back('\n');
    fail_at(free_text, line, nullptr, nullptr);
}

void warn(std::string_view text) {
    std::string line = "*** Warning: ";
    line.append(text);
    if (!line.ends_with('\n')) line.push_back('\n');
    if (platform::console_hooks().flush_output) platform::console_hooks().flush_output();
    platform::write_error_output(line);
}

}  // namespace tarn::failure
