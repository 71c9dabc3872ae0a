// Signals by the library's own numbers, which lie over the table of traps.
#pragma once

#include "exceptions/exceptions.h"

namespace tarn::exceptions {

using SignalRoutine = tarn_signal_routine;

SignalRoutine set_signal(int number, SignalRoutine routine);
int raise_signal(int number);
// Index 0 is the handler of break keys, any other one a class of traps.
Trap set_trap_by_index(Trap routine, int index);

}  // namespace tarn::exceptions
