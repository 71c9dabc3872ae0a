// REWIND, BACKSPACE, ENDFILE, FLUSH and WAIT in the gnu dialect, and the moves behind them.
#pragma once

#include <cstdint>

#include "fio/gnu/fault.h"

namespace tarn::fio {

struct Unit;

// The statements. The unit's number is the caller's.
void rewind_unit(Caller& caller);
void backspace_unit(Caller& caller);
void end_file_of_unit(Caller& caller);
void flush_unit(Caller& caller);
void wait_for_unit(Caller& caller, const std::int32_t* id);

// Moves of a connected unit. An open record is ended first, and what was written last is where
// the file ends. err: an errno value.
void go_to_start(Unit& unit, int& err);
void go_to_end(Unit& unit, int& err);
void go_back_one_record(Unit& unit, int& err);
// Only the end of the output.
void end_output(Unit& unit, int& err);

}  // namespace tarn::fio
