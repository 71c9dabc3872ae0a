// List-directed input: finding the next value of the list in the records.
#pragma once

#include "fio/native/io_type.h"

namespace tarn::fio::native {

// Finds the value for the item at hand: sets `value_kind`, `field_width`, and the cursor.
[[nodiscard]] bool IO_process_list_directed_input();

// Goes on in the next record; a repeat count in force stays so.
[[nodiscard]] bool next_list_record(IO_type& io);

// The value kinds of a numeric or logical item that its own conversion doesn't see: null values
// are done with, and a kind that the item can't take is reported. `done`: the item is finished.
[[nodiscard]] bool settle_list_value(IO_type& io, void* item, bool& done);

}  // namespace tarn::fio::native
