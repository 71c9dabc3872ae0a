#include "fio/gnu/edit_out_hexadecimal.h"

#include <algorithm>
#include <cstring>

#include "fio/gnu/edit_out_blanks.h"

namespace tarn::fio {

namespace {

// A leading digit, 1 or for a zero 0, the bits behind it at the top of `fraction`, and the exponent
// of two.
struct HexadecimalReal {
    UInt128 fraction = 0;
    std::int32_t exponent = 0;
    bool zero = false;
};

HexadecimalReal normalized(const BinaryReal& value) {
    if (value.significand == 0) return {0, 0, true};
    const auto high = static_cast<std::uint64_t>(value.significand >> 64);
    const auto low = static_cast<std::uint64_t>(value.significand);
    const int zeros = high != 0 ? __builtin_clzll(high) : 64 + __builtin_clzll(low);
    return {value.significand << zeros << 1, value.exponent + 127 - zeros, false};
}

// Keeps the first `digits` digits, fewer than there are.
void round_digits(HexadecimalReal& number, int digits, bool negative, Rounding round) {
    const int kept_bits = 4 * digits;
    const UInt128 rest = number.fraction << kept_bits;
    UInt128 kept = kept_bits == 0 ? 0 : number.fraction >> (128 - kept_bits);
    constexpr UInt128 half = UInt128{1} << 127;
    bool up = false;
    switch (round) {
        case Rounding::up:
            up = rest != 0 && !negative;
            break;
        case Rounding::down:
            up = rest != 0 && negative;
            break;
        case Rounding::zero:
            break;
        case Rounding::compatible:
            up = rest >= half;
            break;
        default: {
            const bool odd = digits == 0 || (kept & 1) != 0;  // the leading digit is a 1
            up = rest > half || (rest == half && odd);
        }
    }
    if (up) ++kept;
    if (kept >> kept_bits != 0) {  // 1.FF... has become 2
        kept = 0;
        ++number.exponent;
    }
    number.fraction = kept_bits == 0 ? 0 : kept << (128 - kept_bits);
}

constexpr int all_digits = 32;

}  // namespace

char* put_hexadecimal(char* out, const BinaryReal& value, const FieldEdit& edit,
                      const EditModes& modes) {
    HexadecimalReal number = normalized(value);
    std::int32_t d = std::max(edit.d, 0);
    if (d == 0) {
        for (UInt128 left = number.fraction; left != 0; left <<= 4) ++d;
    } else if (d < all_digits) {
        round_digits(number, d, value.negative, modes.round);
    }
    char exponent[8];
    char* const exponent_end = exponent + sizeof exponent;
    const std::int32_t magnitude = number.exponent < 0 ? -number.exponent : number.exponent;
    const char* first =
        put_decimal_backwards(static_cast<unsigned long long>(magnitude), exponent_end);
    const auto length = static_cast<std::int32_t>(exponent_end - first);
    const std::int32_t wanted = edit.e > 0 ? edit.e : length;
    const char sign = value.negative ? '-' : modes.sign == SignMode::plus ? '+' : '\0';
    // 0X, a digit, the point; P and a sign.
    const std::int32_t needed = (sign != 0 ? 1 : 0) + 4 + d + 2 + wanted;
    const std::int32_t w = edit.w > 0 ? edit.w : needed;
    if (needed > w || length > wanted) {
        std::memset(out, '*', static_cast<std::size_t>(w));
        return out + w;
    }
    out = put_blanks(out, w - needed);
    if (sign != 0) *out++ = sign;
    *out++ = '0';
    *out++ = 'X';
    *out++ = number.zero ? '0' : '1';
    *out++ = modes.decimal == DecimalMark::comma ? ',' : '.';
    for (std::int32_t i = 0; i < d; ++i, number.fraction <<= 4) {
        *out++ = "0123456789ABCDEF"[static_cast<int>(number.fraction >> 124)];
    }
    *out++ = 'P';
    *out++ = number.exponent < 0 ? '-' : '+';
    std::memset(out, '0', static_cast<std::size_t>(wanted - length));
    out += wanted - length;
    std::memcpy(out, first, static_cast<std::size_t>(length));
    return out + length;
}

std::size_t hexadecimal_field_bound(const FieldEdit& edit) {
    if (edit.w > 0) return static_cast<std::size_t>(edit.w);
    return 7 + static_cast<std::size_t>(std::max(edit.d, all_digits)) +
           static_cast<std::size_t>(std::max(edit.e, 5));
}

}  // namespace tarn::fio
