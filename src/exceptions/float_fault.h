// Exceptions of the two floating-point units: which of them, what it raised, and the repairs.
#pragma once

#include "exceptions/exceptions.h"
#include "platform/kernel/float_unit.h"

namespace tarn::exceptions {

enum class FloatUnit : std::uint8_t { x87, sse };

FloatUnit faulting_unit(const Context& context);
// The exceptions that are raised and not masked, in the bits of platform/kernel/float_unit.h. A
// masked one that was raised before is no news.
std::uint16_t raised_exceptions(const tarn_float_area& area, FloatUnit unit);

// Puts a zero in place of the result of an underflow, for either unit. For SSE the instruction is
// carried out with small numbers flushed to zero. `machine` is what the context was read from; null
// where nobody knows.
bool recover_from_underflow(Context& context, ucontext_t* machine);
// The x87's: the bytes of the instruction decide where its result is.
bool recover_x87(const std::uint8_t (&code)[2], tarn_float_area& area);

// Ends the flushing of that one instruction; false where none is going on.
bool end_flushed_step(ucontext_t& context);

// Invalid operations: repairs those that have a result (true), and of others may tell a reason.
bool repair_invalid(const Context& context, tarn_float_area& area, const char*& reason);

}  // namespace tarn::exceptions
