// Integers and logicals of the kinds, as they lie in a program's memory.
#pragma once

#include <cstdint>
#include <cstring>

#include "fio/gnu/item.h"

namespace tarn::fio {

// HUGE of an INTEGER kind.
constexpr UInt128 greatest_integer(int kind) {
    return ~UInt128{0} >> (129 - 8 * kind);
}

// The low bytes of `value` become the item of 1, 2, 4 or 8 bytes.
inline void store_word(void* item, int kind, std::uint64_t value) {
    switch (kind) {
        case 1:
            std::memcpy(item, &value, 1);
            break;
        case 2:
            std::memcpy(item, &value, 2);
            break;
        case 4:
            std::memcpy(item, &value, 4);
            break;
        default:
            std::memcpy(item, &value, 8);
            break;
    }
}

// The same of up to 16 bytes.
inline void store_integer(void* item, int kind, UInt128 value) {
    if (kind <= 8) return store_word(item, kind, static_cast<std::uint64_t>(value));
    std::memcpy(item, &value, 16);
}

}  // namespace tarn::fio
