// The fields that programs write most, straight from the bits of the value to the characters of the
// field: INTEGER of up to 16 digits; REAL(4) and REAL(8), no ROUND=, up to 18 digits.
#pragma once

#include <cstdint>
#include <cstring>

#include "fio/gnu/edit_out.h"
#include "fio/number/integer_digits.h"

namespace tarn::fio {

// As the put_ functions of edit_out.h; null where the general road has to be taken, for whatever
// reason.
char* quick_put_real(char* out, const void* value, int kind, const FieldEdit& edit,
                     const EditModes& modes);
char* quick_put_list_real(char* out, const void* value, int kind, const EditModes& modes);

// Eight digits in a word, with blanks in place of the leading zeros.
struct EightDigits {
    std::uint64_t text;
    int length;  // digits without the leading zeros, at least 1
};

inline EightDigits blank_padded(std::uint32_t value) {
    const std::uint64_t digits = eight_digits(value);
    // The lowest bit stands in the first digit to be shown, the last one if all are zeros. Bit 4
    // is what tells a zero from a blank.
    const std::uint64_t shown = digits | std::uint64_t{1} << 56;
    const std::uint64_t leading = (shown - 1) & ~shown & 0x1010'1010'1010'1010;
    return {(digits | 0x3030'3030'3030'3030) ^ leading, 8 - __builtin_ctzll(shown) / 8};
}

// An integer at the right end of a field of 1 to 32 columns, without a plus sign; null when it
// doesn't fit or has more than 16 digits. Up to 32 characters at `out` are overwritten.
inline constexpr int widest_quick_integer = 32;
inline char* quick_put_integer(char* out, std::int64_t value, int width) {
    constexpr std::uint32_t base = 100'000'000;
    const bool negative = value < 0;
    const std::uint64_t magnitude =
        negative ? -static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    char* const end = out + width;
    int length = 0;
    // What stands left of a word of digits is blank. A word longer than the field loses its first
    // characters, which are blanks or else don't fit.
    if (magnitude < base) {
        const EightDigits low = blank_padded(static_cast<std::uint32_t>(magnitude));
        length = low.length + (negative ? 1 : 0);
        if (length > width) return nullptr;
        if (width >= 8) {
            std::memset(out, ' ', widest_quick_integer);
            std::memcpy(end - 8, &low.text, 8);
        } else {
            const std::uint64_t text = low.text >> (8 * (8 - width));
            std::memcpy(out, &text, 8);
        }
    } else {
        const std::uint64_t upper = magnitude / base;
        if (upper >= base) return nullptr;
        const EightDigits high = blank_padded(static_cast<std::uint32_t>(upper));
        length = 8 + high.length + (negative ? 1 : 0);
        if (length > width) return nullptr;
        if (width >= 16) {
            std::memset(out, ' ', widest_quick_integer);
            std::memcpy(end - 16, &high.text, 8);
        } else {
            const std::uint64_t text = high.text >> (8 * (16 - width));
            std::memcpy(out, &text, 8);
        }
        put_eight(end - 8, static_cast<std::uint32_t>(magnitude % base));
    }
    if (negative) end[-length] = '-';
    return end;
}

}  // namespace tarn::fio
