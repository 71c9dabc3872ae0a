// INTEGER and LOGICAL items as they lie in memory, at any address.
#pragma once

#include <cstdint>
#include <cstring>

#include "fio/gnu/item.h"

namespace tarn::fio {

// The value of an item of 1, 2, 4 or 8 bytes.
inline std::int64_t load_word(const char* item, int kind) {
    if (kind == 4) {
        std::int32_t value;
        std::memcpy(&value, item, sizeof value);
        return value;
    }
    if (kind == 8) {
        std::int64_t value;
        std::memcpy(&value, item, sizeof value);
        return value;
    }
    if (kind == 1) return static_cast<std::int8_t>(*item);
    std::int16_t value;
    std::memcpy(&value, item, sizeof value);
    return value;
}

// The value of an item of 1, 2, 4, 8 or 16 bytes.
inline Int128 load_integer(const char* item, int kind) {
    if (kind <= 8) return load_word(item, kind);
    Int128 value;
    std::memcpy(&value, item, sizeof value);
    return value;
}

}  // namespace tarn::fio
