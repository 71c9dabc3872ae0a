// What the bodies of both NAMELIST statements begin with.
#pragma once

#include "fio/native/io_type.h"

namespace tarn::fio::native {

// Checks the unit and starts the first record. `mismatch`: the message for a unit whose records
// are no lines.
[[nodiscard]] bool begin_namelist(std::int32_t mismatch);

}  // namespace tarn::fio::native
