// Services of the native dialect beside its statements.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarn::fio::native {

// Connects a unit before the program starts, as an OPEN of four specifiers.
void preconnect(std::int32_t unit, std::string_view name, bool read_only, bool formatted);

// A unit of lines that go to a window (target 0) or an edit box (target 1).
void open_to_window(std::int32_t number, void* window, std::int32_t target);

void CloseAllFortranUnits();

// The unit of the last statement, -1 for an internal file; 0 before any.
std::int32_t current_unit_number();
// The unit that a failure's report names: -1 for an internal file, 0 outside statements.
std::int32_t unit_at_work();

}  // namespace tarn::fio::native
