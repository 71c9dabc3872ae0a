// Internal files: the records of a character variable or array, stepped through in array order.
#pragma once

#include <cstdint>
#include <cstring>

#include "fio/gnu/statement.h"

namespace tarn::fio {

// One 4-byte character, at any address.
inline void put_wide(char* at, char32_t value) {
    std::memcpy(at, &value, sizeof value);
}
inline char32_t get_wide(const char* at) {
    char32_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

// The dimensions behind the rank stay unset.
void copy_internal_file(const InternalFile& from, InternalFile& to);

// `record` becomes the first record, or null when the file has none.
void first_internal_record(InternalFile& file);
// The next one; `record` is null behind the last.
void next_internal_record(InternalFile& file);

}  // namespace tarn::fio
