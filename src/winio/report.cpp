#include "winio/report.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "frame/link_name.h"
#include "platform/user/user.h"
#include "textwin/error_report.h"
#include "winio/procedures.h"
#include "winio/records.h"
#include "winio/scanner.h"

namespace tarn::winio {

namespace {

constexpr std::size_t text_room = 2048;

struct defered_state {
    char text[text_room];
    bool waiting, recoverable;
};
defered_state& defered() {
    static defered_state one;
    return one;
}

void report(const char* format, std::va_list arguments) {
    const bool recoverable = format[0] == '?';
    char text[text_room];
    std::vsnprintf(text, sizeof text, format + (recoverable ? 1 : 0), arguments);
    // While the question waits, windows that are open go on, and their call-backs may build others.
    const bool scanning = building().accumulator != nullptr;
    const std::size_t depth = suspended_constructions();
    textwin::report_error(text, recoverable);
    if (scanning) return_to_construction(depth);
}

}  // namespace

void quillpan_error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    report(format, arguments);
    va_end(arguments);
}

// One text is kept: the first, since what follows it is often its consequence.
void defered_quillpan_error(const char* format, ...) {
    defered_state& d = defered();
    if (d.waiting) return;
    std::va_list arguments;
    va_start(arguments, format);
    d.recoverable = format[0] == '?';
    std::vsnprintf(d.text, sizeof d.text, format + (d.recoverable ? 1 : 0), arguments);
    va_end(arguments);
    d.waiting = true;
    const fancy_window* window = current_window();
    if (window != nullptr && window->hwnd > 0)
        platform::PostMessageA(window->hwnd, msg_defered_error, 0, 0);
    else
        show_defered_error();
}

void show_defered_error() {
    defered_state& d = defered();
    if (!d.waiting) return;
    d.waiting = false;
    char text[text_room];
    std::memcpy(text, d.text, sizeof text);
    textwin::report_error(text, d.recoverable);
}

}  // namespace tarn::winio

extern "C" {

TARN_EXPORT void __quillpan_error(const char* format, ...);

void __quillpan_error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    tarn::winio::report(format, arguments);
    va_end(arguments);
}

}  // extern "C"
