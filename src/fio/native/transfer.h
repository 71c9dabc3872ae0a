// What the item routines ask of the engine besides io_type.h.
#pragma once

#include <cstdint>

#include "fio/native/io_type.h"

namespace tarn::fio::native {

// Makes room for, or brings in, a field of `width` characters at the cursor. IO_process_format
// does it for a descriptor with a width; an item that brings its own width does it itself.
[[nodiscard]] bool place_field(IO_type& io, std::int64_t width);

// Turns the unit to the direction of a sequential statement: what OPEN and earlier statements left
// is checked, and a WRITE ends the file behind itself.
[[nodiscard]] bool take_direction(IO_type& io);

}  // namespace tarn::fio::native
