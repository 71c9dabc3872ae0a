#include "failure/report.h"

#include <cstdio>
#include <unistd.h>

#include "failure/failure.h"
#include "failure/reporter.h"
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

// A second failure strikes while the first writes the program's files out.
[[noreturn]] void fail_again(std::string_view text) {
    print_report();
    print_line(text);
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

bool shows_callers() {
    return (frame::traceback_flags() & frame::tb_no_traceback) == 0 && !the_state.without_callers;
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
    const Claim claim = claim_report();
    if (claim == Claim::other) wait_for_other_report();
    if (claim == Claim::again) fail_again(text);
    // The reports of the room above and of the system's library compute with floating-point
    // numbers too; a trap in here would hide what went wrong.
    platform::MaskedFloat masked;
    FileLimitIgnored unlimited;
    set_report(text);
    the_state.last_failure = number;
    if (__debugged) send_to_debugger(std::string(text));
    flush_for_report();
    std::string_view callers = traceback::console_text(here, traceback::Place::call);
    if (!shows_callers()) callers = {};
    set_report_callers(callers);
    if (the_hooks.write_report) the_hooks.write_report(number, text, here);
    bool console = (frame::traceback_flags() & frame::tb_kill_dialogbox) != 0;
    print_report();
    if (!console && the_hooks.report_dialog) the_hooks.report_dialog(text, callers);
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

void set_statement(const char* file, int line) {
    if (file != nullptr && line > 0)
        traceback::set_statement(file, static_cast<std::uint32_t>(line));
}

void warn(std::string_view text) {
    std::string line = "*** Warning: ";
    line.append(text);
    if (!line.ends_with('\n')) line.push_back('\n');
    if (platform::console_hooks().flush_output) platform::console_hooks().flush_output();
    platform::write_error_output(line);
}

}  // namespace tarn::failure
