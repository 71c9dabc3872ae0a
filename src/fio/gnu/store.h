// Integers and logicals of the kinds, as they lie in a program's memory.
#pragma once

#include <cstring>

#include "fio/gnu/item.h"

namespace tarn::fio {

// HUGE of an INTEGER kind.
constexpr UInt128 greatest_integer(int kind) {
    return ~UInt128{0} >> (129 - 8 * kind);
}

// The low bytes of `value` become the item of `kind` bytes.
inline void store_integer(void* item, int kind, UInt128 value) {
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
        case 8:
            std::memcpy(item, &value, 8);
            break;
        default:
            std::memcpy(item, &value, 16);
            break;
    }
}

}  // namespace tarn::fio
