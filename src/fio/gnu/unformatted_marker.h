// The markers around the parts of an unformatted sequential record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fio/gnu/options.h"

namespace tarn::fio {

inline std::size_t marker_size() {
    return gnu_options().record_marker == 8 ? 8 : 4;
}

inline std::int64_t load_marker(const char* bytes, std::size_t size, bool swapped) {
    if (size == 8) {
        std::uint64_t value = 0;
        std::memcpy(&value, bytes, sizeof value);
        return static_cast<std::int64_t>(swapped ? __builtin_bswap64(value) : value);
    }
    std::uint32_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return static_cast<std::int32_t>(swapped ? __builtin_bswap32(value) : value);
}

inline void store_marker(char* bytes, std::size_t size, bool swapped, std::int64_t length) {
    if (size == 8) {
        auto value = static_cast<std::uint64_t>(length);
        if (swapped) value = __builtin_bswap64(value);
        std::memcpy(bytes, &value, sizeof value);
        return;
    }
    auto value = static_cast<std::uint32_t>(length);
    if (swapped) value = __builtin_bswap32(value);
    std::memcpy(bytes, &value, sizeof value);
}

}  // namespace tarn::fio
