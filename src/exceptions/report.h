// The report of an exception: the cause, where the program stood and who called, on the console
// and, where the user asked for one, in a file.
#pragma once

#include <string_view>

#include "exceptions/exceptions.h"
#include "traceback/text_buffer.h"

namespace tarn::exceptions {

struct Cause {
    std::string_view title;  // "Access violation"
    std::string_view text;   // all lines above the callers, each with its line feed
    const Exception* exception = nullptr;
};

// False where this thread is reporting already: what struck now came of that report, which has been
// finished as well as it could. The process must end then.
bool report(const Cause& cause);
// The same for a place at which the program goes on afterwards.
void report_and_go_on(const Cause& cause);

// The exception that is being reported, for the window that shows it; null: none, or a failure of
// the catalogue.
const Cause* reported_cause();

// Appends "Access violation at address 00401136\n".
void add_at_address(traceback::TextBuffer& text, std::string_view what, const void* address);
inline constexpr unsigned address_digits = 8;

}  // namespace tarn::exceptions
