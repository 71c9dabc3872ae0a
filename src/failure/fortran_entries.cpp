// The failure entries of Fortran code.
#include <cstdlib>
#include <string>

#include "failure/catalogue.h"
#include "failure/failure.h"
#include "failure/fortran_messages.h"
#include "failure/report.h"
#include "failure/system_messages.h"
#include "frame/console_lines.h"
#include "frame/end.h"
#include "frame/fortran_data.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/debug_output.h"

namespace tarn::failure {
namespace {

using frame::character;

constexpr std::size_t debugger_store = 600;
constexpr std::size_t error_text_limit = 113;
constexpr std::size_t user_error_limit = 598;
constexpr std::size_t type_text_limit = 120;

bool debugger_wants_failures() {
    if (frame::state().debugger_flag != 0) return true;
    const char* value = std::getenv("ORVALRUN77");
    return value && frame::trimmed(value) == "YES";
}

// Collects the words for a debugger and, with the last of them, shows them to it.
void tell_fortran_debugger(std::string_view text, bool fatal) {
    std::string*& store = state().debugger_text;
    if (!store) store = new std::string;
    if (store->size() + text.size() + 1 <= debugger_store) {
        store->append(text).push_back('\n');
    }
    if (!fatal) return;
    tarn_libcom.state = frame::lib_failed;
    tarn_libcom.text = store->c_str();
    std::string line = "ORVALFAIL@";
    if (frame::state().debugger_flag != 0) line.append(" ").append(*store);
    platform::debug_output(line.c_str());
    tarn_libcom.text = nullptr;
}

void error_text(std::string_view text, bool fatal) {
    frame::attach();
    if (debugger_wants_failures()) {
        tell_fortran_debugger(text, fatal);
        return;
    }
    fortran_error(text);
}

// The last step of every Fortran failure. A debugger may let error_text return; the program
// doesn't go on behind a failure.
[[noreturn]] void end_in(std::string_view prefix, std::string_view body) {
    std::string text(prefix);
    text.append(body);
    error_text(neaten(text, {state().error_string, state().error_string_length}), true);
    frame::exit_fortran(1);
}

[[noreturn]] void fortran_fail(int number) {
    frame::attach();
    std::int32_t unit = hooks().current_io_unit ? hooks().current_io_unit() : 0;
    end_in(io_prefix(unit), sentence(number));
}

void fail_with_text(int number, const char* text) {
    std::string line(std::string_view(text).substr(0, longest_free_text));
    line.push_back('\n');
    fail_at(number, line, nullptr, nullptr);
}

std::string user_error(std::intptr_t length, const char* text) {
    std::string body = "User defined error: ";
    body.append(character(text, length).substr(0, user_error_limit - body.size()));
    return body;
}

std::string too_few_elements(std::intptr_t argument) {
    return "Error: Attempt to call a routine with argument number " + std::to_string(argument) +
           " containing too few array elements";
}

std::uint8_t type_at(std::intptr_t address) {
    return address ? *reinterpret_cast<const std::uint8_t*>(address) : 0;
}

void install() {
    frame::hooks().fail = [](int number) { c_fail(number); };
    frame::hooks().fortran_fail = [](int number) { fortran_fail(number); };
    frame::hooks().fail_with_text = fail_with_text;
}
TARN_PREAMBLE(install)

}  // namespace
}  // namespace tarn::failure

using namespace tarn::failure;
using tarn::frame::character;

extern "C" {

[[noreturn]] TARN_EXPORT void FAIL_h(const std::int16_t* number) LINK_NAME("FAIL#");
void FAIL_h(const std::int16_t* number) {
    fortran_fail(*number);
}

// The address is where a traceback starts.
[[noreturn]] TARN_EXPORT void FAIL1_h(std::intptr_t number, const void* at) LINK_NAME("FAIL1#");
void FAIL1_h(std::intptr_t number, const void*) {
    fortran_fail(static_cast<int>(number));
}

// a to d are what the number needs: argument counts and type bytes, an argument, or a text.
[[noreturn]] TARN_EXPORT void FAIL_hh(std::intptr_t number, std::intptr_t a, std::intptr_t b,
                                      std::intptr_t c, std::intptr_t d) LINK_NAME("FAIL##");
void FAIL_hh(std::intptr_t number, std::intptr_t a, std::intptr_t b, std::intptr_t c,
             std::intptr_t d) {
    tarn::frame::attach();
    switch (number) {
        case 6: {
            bool same_count = a == b;
            CallMismatch mismatch{a, b, 0, 0, c - state().argument_base};
            if (same_count) {
                mismatch.caller = type_at(c);
                mismatch.routine = type_at(d);
            }
            end_in({}, call_mismatch(mismatch, false));
        }
        case 19:
            end_in({}, too_few_elements(a));
        case 114:
            end_in({}, user_error(a, reinterpret_cast<const char*>(b)));
        default:
            end_in({}, sentence(static_cast<int>(number)));
    }
}

[[noreturn]] TARN_EXPORT void FAIL95_hh(std::intptr_t number, std::intptr_t a, std::intptr_t b,
                                        std::intptr_t c, std::intptr_t d, std::intptr_t position)
    LINK_NAME("FAIL95##");
void FAIL95_hh(std::intptr_t number, std::intptr_t a, std::intptr_t b, std::intptr_t c,
               std::intptr_t d, std::intptr_t position) {
    tarn::frame::attach();
    switch (number) {
        case 6: {
            CallMismatch mismatch{a, b, 0, 0, position};
            if (a == b) {
                mismatch.caller = type_at(c);
                mismatch.routine = type_at(d);
            }
            end_in({}, call_mismatch(mismatch, true));
        }
        case 19:
            end_in({}, too_few_elements(a));
        case 114:
            end_in({}, user_error(a, reinterpret_cast<const char*>(b)));
        case 393: {
            std::string body = "Error: Attempt to call a routine with argument number ";
            auto text = [](std::intptr_t address, std::intptr_t length) {
                return character(reinterpret_cast<const char*>(address), length)
                    .substr(0, type_text_limit);
            };
            body.append(std::to_string(position)).append(" as ").append(text(c, a));
            body.append(" when ").append(text(d, b)).append(" was expected");
            end_in({}, body);
        }
        default:
            end_in({}, sentence(static_cast<int>(number)));
    }
}

[[noreturn]] TARN_EXPORT void RUNERR_h(const std::int16_t* number) LINK_NAME("RUNERR#");
void RUNERR_h(const std::int16_t* number) {
    fortran_error(sentence(*number));
}

[[noreturn]] TARN_EXPORT void ERROR_h(const char* text, std::ptrdiff_t length) LINK_NAME("ERROR#");
void ERROR_h(const char* text, std::ptrdiff_t length) {
    std::string body = "Error: ";
    error_text(body.append(character(text, length).substr(0, error_text_limit)), true);
    tarn::frame::exit_fortran(1);
}

TARN_EXPORT void ERRTEXT_h(const char* text, const std::int32_t* fatal, std::ptrdiff_t length)
    LINK_NAME("ERRTEXT#");
void ERRTEXT_h(const char* text, const std::int32_t* fatal, std::ptrdiff_t length) {
    error_text(tarn::frame::trimmed(character(text, length)), *fatal != 0);
}

[[noreturn]] TARN_EXPORT void __F2_FAIL(const char* text, std::ptrdiff_t length) {
    fortran_error(character(text, length));
}
[[noreturn]] TARN_EXPORT void ORV2_ERROR_h(const char* text, std::ptrdiff_t length)
    LINK_NAME("ORV2_ERROR#") TARN_ALIAS(__F2_FAIL);

TARN_EXPORT void SET_ERRSTRG_h(const char* text, std::ptrdiff_t length) LINK_NAME("SET_ERRSTRG#");
void SET_ERRSTRG_h(const char* text, std::ptrdiff_t length) {
    state().error_string_length =
        character(text, length).copy(state().error_string, sizeof state().error_string);
}

TARN_EXPORT void NEATEN_h(const char* text, char* out, std::ptrdiff_t length,
                          std::ptrdiff_t out_length) LINK_NAME("NEATEN#");
void NEATEN_h(const char* text, char* out, std::ptrdiff_t length, std::ptrdiff_t out_length) {
    copy_padded(
        neaten(character(text, length), {state().error_string, state().error_string_length}), out,
        out_length);
}

// A CHARACTER*20 function; the type is reduced to the number that its name has.
TARN_EXPORT void TYPENAME95_h(char* name, std::ptrdiff_t length, std::uint8_t* type)
    LINK_NAME("TYPENAME95#");
void TYPENAME95_h(char* name, std::ptrdiff_t length, std::uint8_t* type) {
    copy_padded(newer_type_name(*type), name, length);
}

TARN_EXPORT void FORTRAN_ERROR_MESSAGE_h(const std::int16_t* number, char* text,
                                         std::ptrdiff_t length) LINK_NAME("FORTRAN_ERROR_MESSAGE#");
void FORTRAN_ERROR_MESSAGE_h(const std::int16_t* number, char* text, std::ptrdiff_t length) {
    constexpr int system_numbers = 10000;
    if (*number > system_numbers) {
        std::string message = "Win32 ERROR: ";
        copy_padded(message.append(system_text(*number - system_numbers)), text, length);
    } else {
        copy_padded(fortran_text(*number), text, length);
    }
}
}
