// What real items share with complex and business editing.
#pragma once

#include <cstdint>

namespace tarn::fio::native {

enum class RealKind : std::uint8_t {
    finite,
    nan,
    infinite,
    undefined,  // every byte is 0x80: a checking compilation filled it and nobody stored a value
};

struct RealValue {
    RealKind kind = RealKind::finite;
    long double value = 0;
};

// `size`: 4, 8 or 10.
RealValue load_real(const void* item, std::int32_t size);
void store_real(void* item, std::int32_t size, long double value);

// 10 to the power of n (0 or more), in the extended format; infinity where that has no such number.
long double power_of_ten(std::int64_t n);

}  // namespace tarn::fio::native
