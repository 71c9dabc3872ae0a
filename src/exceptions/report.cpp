#include "exceptions/report.h"

#include "exceptions/attempt.h"
#include "exceptions/report_file.h"
#include "failure/failure.h"
#include "failure/report.h"
#include "failure/reporter.h"
#include "frame/state.h"
#include "traceback/registers.h"
#include "traceback/traceback.h"

namespace tarn::exceptions {
namespace {

// Long enough for disks that sleep, short enough for somebody who waits at a terminal.
constexpr unsigned flush_patience = 3;
constexpr unsigned traceback_patience = 10;
constexpr unsigned file_patience = 10;
constexpr unsigned dialog_patience = 5;  // until it is on the screen

traceback::Registers registers_of(const Context& context) {
    // The processor's numbers, in the order of a context.
    constexpr traceback::Register order[16] = {
        traceback::rax, traceback::rcx, traceback::rdx, traceback::rbx,
        traceback::rsp, traceback::rbp, traceback::rsi, traceback::rdi,
        traceback::r8,  traceback::r9,  traceback::r10, traceback::r11,
        traceback::r12, traceback::r13, traceback::r14, traceback::r15};
    traceback::Registers all;
    for (int i = 0; i < 16; ++i) all[order[i]] = context.integer[i];
    all[traceback::return_address] = context.instruction;
    return all;
}

void write_files(const Cause& cause) {
    const Exception& exception = *cause.exception;
    const bool is_signal = exception.record.code == 0;
    const std::int64_t number =
        is_signal ? exception.fault->signal : std::int64_t{exception.record.code};
    write_report_files({is_signal ? "signal" : "exception", cause.title, cause.text, number,
                        registers_of(exception.context), &exception.context});
}

constinit const Cause* the_reported = nullptr;

void tell(const Cause& cause) {
    const failure::FileLimitIgnored unlimited;
    failure::set_report(cause.text);
    failure::set_report_callers({});
    // What the program wrote comes first. The fault may have struck inside the library or the
    // system's heap, with a lock held or a list half linked.
    attempt(flush_patience, [] { failure::flush_for_report(); });
    const traceback::Registers registers = registers_of(cause.exception->context);
    const platform::Fault* fault = cause.exception->fault;
    const auto place =
        fault != nullptr && fault->was_sent() ? traceback::Place::signal : traceback::Place::fault;
    attempt(traceback_patience, [&] {
        const std::string_view callers = traceback::console_text(registers, place);
        if (failure::shows_callers()) failure::set_report_callers(callers);
    });
    failure::print_report();
    attempt(file_patience, [&] { write_files(cause); });
    if ((frame::traceback_flags() & frame::tb_kill_dialogbox) != 0) return;
    auto* const dialog = failure::hooks().report_dialog;
    if (dialog == nullptr) return;
    // It needs the heap, the fonts and the display. Where one of these is what broke, or a lock of
    // theirs is held by the code that faulted, no window comes, and the text above has to do.
    the_reported = &cause;
    attempt(dialog_patience, [&] { dialog(cause.text, failure::report_callers()); });
    the_reported = nullptr;
}

}  // namespace

const Cause* reported_cause() {
    return the_reported;
}

void add_at_address(traceback::TextBuffer& text, std::string_view what, const void* address) {
    text.add(what).add(" at address ");
    text.hexadecimal(reinterpret_cast<std::uintptr_t>(address), address_digits).add("\n");
}

bool report(const Cause& cause) {
    switch (failure::claim_report()) {
        case failure::Claim::first:
            tell(cause);
            return true;
        case failure::Claim::again:
            failure::print_report();
            failure::print_line(cause.text);
            return false;
        case failure::Claim::other:
            failure::wait_for_other_report();
    }
    return false;
}

void report_and_go_on(const Cause& cause) {
    if (report(cause)) failure::release_report();
}

}  // namespace tarn::exceptions
