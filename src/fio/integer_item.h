// INTEGER and LOGICAL items as they lie in memory, at any address.
#pragma once

#include <cstdint>
#include <cstring>

#include "fio/gnu/item.h"

namespace tarn::fio {

// The value of an item of 1, 2, 4, 8 or 16 bytes.
inline Int128 load_integer(const char* item, int kind) {
    switch (kind) {
        case 1:
            return static_cast<std::int8_t>(*item);
        case 2: {
            std::int16_t value;
            std::memcpy(&value, item, sizeof value);
            return value;
        }
        case 4: {
            std::int32_t value;
            std::memcpy(&value, item, sizeof value);
            return value;
        }
        case 8: {
            std::int64_t value;
            std::memcpy(&value, item, sizeof value);
            return value;
        }
        default: {
            Int128 value;
            std::memcpy(&value, item, sizeof value);
            return value;
        }
    }
}

}  // namespace tarn::fio
