// The failure entries of the C side and of the library's own code.
#include <cstdarg>
#include <cstdio>
#include <string>

#include "failure/failure.h"
#include "failure/report.h"
#include "frame/hooks.h"
#include "frame/link_name.h"

using namespace tarn::failure;

extern "C" {

[[noreturn]] TARN_EXPORT void C_FAIL_h(const std::int32_t* number) LINK_NAME("C_FAIL#");
void C_FAIL_h(const std::int32_t* number) {
    tarn::frame::attach();
    c_fail(*number);
}

[[noreturn]] TARN_EXPORT void interrupt7f_h(std::int32_t number) LINK_NAME("interrupt7f#");
void interrupt7f_h(std::int32_t number) {
    tarn::frame::attach();
    state().last_failure = number;
    c_fail(number);
}
[[noreturn]] TARN_EXPORT void INTERRUPT7F_h(std::int32_t number) LINK_NAME("INTERRUPT7F#");
void INTERRUPT7F_h(std::int32_t number) {
    tarn::frame::attach();
    state().last_failure = number;
    c_fail(number);
}

[[noreturn]] TARN_EXPORT void NT_FAIL_AT(const void* address, const char* routine,
                                         const std::int32_t* number) {
    tarn::frame::attach();
    fail_at(*number, {}, routine, address);
}

// A stub that no library resolved. The call that led to it is five bytes long.
[[noreturn]] TARN_EXPORT void __undefined_function(const char* routine) {
    constexpr int missing_routine = 29;
    tarn::frame::attach();
    state().last_failure = missing_routine;
    fail_at(missing_routine, {}, routine,
            static_cast<const char*>(__builtin_return_address(0)) - 5);
}

[[noreturn]] TARN_EXPORT void __f90_failure(const char* text) {
    std::string line(std::string_view(text).substr(0, longest_free_text));
    line.push_back('\n');
    fail_at(fortran_free_text, line, nullptr, nullptr);
}

[[noreturn]] TARN_EXPORT void text_error(const char* format, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    fortran_error(text);
}

TARN_EXPORT const char* getRuntimeErrorMessage(std::int32_t number) {
    return tarn::failure::text(number);
}

TARN_EXPORT void __set_user_failure_handler(void (*handler)(int number)) {
    state().user_handler = handler;
}
TARN_EXPORT void __setup_error_handler(void (*handler)(int number, const char* text)) {
    state().managed_handler = handler;
}
}
