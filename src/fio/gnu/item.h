// The types of items in a gnu data list.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fio {

enum class ItemType : std::uint8_t { integer, logical, real, complex, character };

// REAL kinds by their compiled number: 4, 8, 10 (x87 extended, 16 bytes in memory), 16.
using Int128 = __int128;
using UInt128 = unsigned __int128;
using Quad = __float128;

}  // namespace tarn::fio
