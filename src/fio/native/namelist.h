// NAMELIST statements of the native dialect. The group's table tells the variables
// (namelist_table.h); the statement is over when its body returns.
#pragma once

namespace tarn::fio::native {

[[nodiscard]] bool WNML__();
[[nodiscard]] bool RNML__();

}  // namespace tarn::fio::native
