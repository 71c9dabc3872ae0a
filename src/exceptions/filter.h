// The steps of the filter.
#pragma once

#include "exceptions/exceptions.h"

namespace tarn::exceptions {

inline constexpr const char* unknown_processor =
    "Tarnick run-time library.\nUnknown processor type\n";

// The trap that an exception has, or null.
Trap trap_for(const Exception& exception);
Decision call_trap(Trap trap, Exception& exception);

Decision handle_generic(Exception& exception);
Decision handle_access_violation(Exception& exception);
Decision handle_floating_point(Exception& exception);
Decision handle_single_step(Exception& exception);
// A signal that the processor didn't send.
Decision handle_signal(Exception& exception);
// A code that nobody knows.
Decision handle_unknown(Exception& exception);
// A few words of the library's own, and the end.
Decision end_with(Exception& exception, const char* text);

}  // namespace tarn::exceptions
