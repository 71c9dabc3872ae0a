// Instructions of SSE and AVX whose result or operand is too small, carried out here with small
// numbers as zeros.
#pragma once

#include <ucontext.h>

#include "exceptions/exceptions.h"

namespace tarn::exceptions {

// Carries out the instruction at the context's place and goes on behind it. `machine` is what the
// context was read from; null where nobody knows. False, with nothing changed, for an instruction
// that isn't known here or that raises something else too.
bool carry_out_flushed(Context& context, ucontext_t* machine);

}  // namespace tarn::exceptions
