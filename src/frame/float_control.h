// Exception masks, precision and rounding for the whole process.
//
// Compiled code never builds a control word: it loads one of eight ready words from the table of
// its image. A change therefore rewrites every registered table and the library's own, and then
// loads the new first word for the calling thread; other threads meet it at their next load.
#pragma once

#include <cstdint>

#include "frame/state.h"

namespace tarn::frame {

// To nearest, toward zero, down, up, and the four again. All exceptions but the inexact one trap.
inline constexpr ControlWords default_words{0x0320, 0x0F20, 0x0720, 0x0B20,
                                            0x0320, 0x0F20, 0x0720, 0x0B20};
// The same with underflow and denormals masked.
inline constexpr ControlWords underflow_masked_words{0x0332, 0x0F32, 0x0732, 0x0B32,
                                                     0x0332, 0x0F32, 0x0732, 0x0B32};
// A managed program's: everything masked, double then extended precision.
inline constexpr ControlWords managed_words{0x027F, 0x0E7F, 0x067F, 0x0A7F,
                                            0x037F, 0x0F7F, 0x077F, 0x0B7F};

void copy_words(const ControlWords& words);
void or_words(std::uint16_t mask);
void and_words(std::uint16_t mask);

void unmask_all();           // back to default_words
void undo_underflow_mask();  // only while the live table is underflow_masked_words
void set_permit_underflow(std::int32_t value);

// False when there is no room for another image's table.
bool register_control_words(std::uint16_t* table);

// A system on which an underflow can't be repaired in its trap, so that it stays masked.
bool underflow_repair_missing();

}  // namespace tarn::frame
