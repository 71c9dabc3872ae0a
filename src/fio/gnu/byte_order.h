// Numbers of the other byte order.
#pragma once

#include <cstddef>

namespace tarn::fio {

// Copies `count` numbers of `unit` bytes (2, 4, 8 or 16; others stay as they are) with the bytes of
// each in the other order. `to` may be `from`, and neither need be aligned. REAL(10) is turned with
// the bytes that pad it.
void copy_turned(char* to, const char* from, std::size_t unit, std::size_t count);

}  // namespace tarn::fio
