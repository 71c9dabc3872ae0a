// The head of the record that the compiler makes of each derived type.
#pragma once

#include <cstdint>

namespace tarn::gcc {

struct TypeRecord {
    std::int32_t hash;
    std::int64_t size;  // of an object, in bytes
    const TypeRecord* parent;
};

}  // namespace tarn::gcc
