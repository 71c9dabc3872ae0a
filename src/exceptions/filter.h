// The steps of the filter.
#pragma once

#include "exceptions/exceptions.h"

namespace tarn::exceptions {

// What other rooms give this one. Null: not there.
struct Hooks {
    // An access may have reached into storage that grows: true, it has grown, and the access is
    // tried again.
    bool (*grow_storage)(std::uintptr_t address) = nullptr;
};
Hooks& hooks();

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
