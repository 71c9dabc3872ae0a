#include "pairing/gcc/program.h"

#include <cstdlib>
#include <string_view>

#include "failure/failure.h"
#include "failure/report.h"
#include "fio/gnu/options.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/console.h"
#include "platform/kernel/fault.h"
#include "platform/kernel/float_unit.h"
#include "traceback/traceback.h"

namespace tarn::gcc {
namespace {

// The compiler numbers the exceptions as the processor does.
static_assert(fio::fpe_invalid == platform::fp_invalid &&
              fio::fpe_denormal == platform::fp_denormal);
static_assert(fio::fpe_zero == platform::fp_zero_divide &&
              fio::fpe_overflow == platform::fp_overflow);
static_assert(fio::fpe_underflow == platform::fp_underflow &&
              fio::fpe_inexact == platform::fp_precision);

// What the program wrote before goes out first; then the words, in one piece.
void say(std::string_view text) {
    if (platform::console_hooks().flush_output) platform::console_hooks().flush_output();
    platform::write_error_output(text);
}

std::string note() {
    return exception_note(platform::pending_exceptions(), fio::gnu_options().fpe_summary);
}

[[noreturn]] void stop(const std::string& words, int status, bool quiet) {
    frame::ensure_up();
    if (!quiet) {
        std::string text = note().append(words);
        if (!text.empty()) say(text);
    }
    std::exit(status);
}

// An error's stop tells where the program stood, as a failure does.
[[noreturn, gnu::noinline]] void error_stop(std::string words, int status, bool quiet) {
    frame::ensure_up();
    const traceback::Registers here = traceback::registers_here();
    const std::string_view callers = traceback::console_text(here, traceback::Place::call);
    if (failure::hooks().write_report) failure::hooks().write_report(status, words, here);
    if (!quiet && failure::shows_callers()) words.append(callers);
    stop(words, status, quiet);
}

std::string line(std::string_view keyword, const char* text, std::size_t length) {
    std::string words(keyword);
    words.push_back(' ');
    if (text) words.append(text, length);
    words.push_back('\n');
    return words;
}

void pause(const std::string& words) {
    frame::ensure_up();
    say(words);
    say("To resume execution, type go.  Other input will terminate the job.\n");
    std::string answer;
    if (!platform::read_input_line(answer) || answer != "go") std::exit(0);
    say("RESUMED\n");
}

}  // namespace

std::string exception_note(std::int32_t happened, std::int32_t summary) {
    struct Name {
        std::int32_t bit;
        const char* text;
    };
    constexpr Name names[] = {
        {fio::fpe_invalid, " IEEE_INVALID_FLAG"},   {fio::fpe_zero, " IEEE_DIVIDE_BY_ZERO"},
        {fio::fpe_overflow, " IEEE_OVERFLOW_FLAG"}, {fio::fpe_underflow, " IEEE_UNDERFLOW_FLAG"},
        {fio::fpe_denormal, " IEEE_DENORMAL"},      {fio::fpe_inexact, " IEEE_INEXACT_FLAG"},
    };
    happened &= summary;
    if (happened == 0) return {};
    std::string text = "Note: The following floating-point exceptions are signalling:";
    for (const Name& name : names) {
        if (happened & name.bit) text.append(name.text);
    }
    text.push_back('\n');
    return text;
}

}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

[[noreturn]] TARN_EXPORT void _gfortran_stop_numeric(std::int32_t code, bool quiet) {
    stop("STOP " + std::to_string(code) + "\n", code, quiet);
}
// STOP without a code passes no text and says nothing.
[[noreturn]] TARN_EXPORT void _gfortran_stop_string(const char* text, std::size_t length,
                                                    bool quiet) {
    stop(text ? line("STOP", text, length) : std::string(), 0, quiet);
}
[[noreturn]] TARN_EXPORT void _gfortran_error_stop_numeric(std::int32_t code, bool quiet) {
    error_stop("ERROR STOP " + std::to_string(code) + "\n", code, quiet);
}
[[noreturn]] TARN_EXPORT void _gfortran_error_stop_string(const char* text, std::size_t length,
                                                          bool quiet) {
    error_stop(line("ERROR STOP", text, length), 1, quiet);
}

TARN_EXPORT void _gfortran_pause_numeric(std::int32_t code) {
    pause("PAUSE " + std::to_string(code) + "\n");
}
TARN_EXPORT void _gfortran_pause_string(const char* text, std::size_t length) {
    pause(line("PAUSE", text, length));
}

[[noreturn]] TARN_EXPORT void _gfortran_exit_i4(const std::int32_t* status) {
    std::exit(status ? *status : 0);
}
[[noreturn]] TARN_EXPORT void _gfortran_exit_i8(const std::int64_t* status) {
    std::exit(status ? static_cast<int>(*status) : 0);
}

// Where the program stands and who called; it goes on.
TARN_EXPORT void _gfortran_backtrace() {
    tarn::frame::ensure_up();
    say(std::string(tarn::traceback::console_text(tarn::traceback::registers_here(),
                                                  tarn::traceback::Place::call)));
}

// The signal tells a debugger, a core file or a batch system; what was written comes out first.
[[noreturn]] TARN_EXPORT void _gfortran_abort() {
    tarn::frame::ensure_up();
    tarn::frame::Hooks& hooks = tarn::frame::hooks();
    if (hooks.flush_fortran_units) hooks.flush_fortran_units();
    // Where nobody else has the signal, its report says so.
    if (!tarn::platform::is_watched(SIGABRT)) say("Program aborted.\n");
    std::abort();
}
}
