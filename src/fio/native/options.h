// Values behind a specifier's address.
#pragma once

#include <cstdint>

#include "fio/native/io_codes.h"

namespace tarn::fio::native {

// Reads an integer (or a logical as one) of the type; any other type reads 4 bytes.
std::int64_t load_integer(TypeCode type, const void* value);

}  // namespace tarn::fio::native
