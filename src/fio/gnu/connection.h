// How a gnu data transfer statement comes to its unit.
#pragma once

#include <cstdint>

#include "fio/gnu/fault.h"
#include "fio/modes.h"

namespace tarn::fio {

struct Unit;

// The unit of a number, locked for the statement: connected by an OPEN, preconnected, or connected
// now to `fort.N`. Null: there can't be one, and the caller has heard of it.
Unit* connect_implicitly(Caller& caller, std::int32_t number, bool reading, Form form,
                         Access access);

}  // namespace tarn::fio
