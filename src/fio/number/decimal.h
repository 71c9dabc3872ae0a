// Binary floating point to decimal digits, and back.
//
// All conversions are exact: the digits are those of the exact value, rounded once at the digit
// asked for in the direction asked for; a decimal text becomes the nearest value of the type (or
// the neighbour in the direction asked for). No allocation, no locale.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/modes.h"

namespace tarn::fio {

enum class RealClass : std::uint8_t { finite, infinite, nan };

// A value taken apart: (-1)^negative x significand x 2^exponent, with the significand an integer.
struct BinaryReal {
    RealClass kind = RealClass::finite;
    bool negative = false;
    unsigned __int128 significand = 0;  // 0 for a zero
    std::int32_t exponent = 0;
};

BinaryReal take_apart(float value);
BinaryReal take_apart(double value);
BinaryReal take_apart(long double value);
BinaryReal take_apart(__float128 value);
// `size`: the kind, 4, 8, 10 or 16.
BinaryReal take_apart(const void* value, int kind);

// Digits of a value: 0.d1d2d3... x 10^point. `count` digits were made; those behind them are zero
// as far as digits were asked for.
struct DecimalDigits {
    char* digits = nullptr;  // the caller's buffer
    std::size_t count = 0;
    std::int32_t point = 0;
};

// No value of any kind has more significant digits than this.
inline constexpr std::size_t max_significant_digits = 11563;

// `count` significant digits (1 or more) into `buffer`, which holds that many (or the greatest
// number, if that is less). Fewer are made where only zeros would follow. The value is finite and
// not zero. Rounding up and down take the sign into account. A carry out of the first digit moves
// `point`.
DecimalDigits significant_digits(const BinaryReal& value, std::size_t count, Rounding round,
                                 char* buffer);

// Digits up to the place 10^-places (places may be negative). The result may have no digit at all
// (count 0): the value rounds to zero there; `point` is then -places.
// The buffer must hold fraction_digits_bound(value, places) bytes.
DecimalDigits fraction_digits(const BinaryReal& value, std::int32_t places, Rounding round,
                              char* buffer);
std::size_t fraction_digits_bound(const BinaryReal& value, std::int32_t places);

// Decimal exponent x of the leading digit, with value = d.ddd x 10^x, before any rounding.
std::int32_t decimal_exponent(const BinaryReal& value);

// A number as it was read: the digits without point and leading zeros, up to the buffer's size,
// and the exponent of ten behind the last of them.
struct DecimalNumber {
    bool negative = false;
    const char* digits = nullptr;  // '0' to '9' only
    std::size_t count = 0;         // 0: the value is zero
    std::int64_t exponent = 0;     // value = digits x 10^exponent
};

enum class ConvertResult : std::uint8_t { ok, overflow, underflow };

// Decimal to binary, correctly rounded (`unspecified`, `processor`, `nearest`: to nearest even;
// the others as named). Stores the value of kind 4, 8, 10 or 16 at `target`; overflow stores
// infinity (or the largest value where the direction says so), underflow zero or a subnormal that
// is not the exact value. A REAL(10) is stored with its 10 bytes.
ConvertResult to_binary(const DecimalNumber& number, Rounding round, int kind, void* target);

// The quick road of to_binary by itself, for digits that were read into one word: the value
// significand x 10^exponent of kind 4 or 8, rounded to nearest. False, and nothing is stored, where
// that road doesn't lead: another kind or direction, or near the ends of the range.
bool word_to_binary(std::uint64_t significand, std::int64_t exponent, bool negative, Rounding round,
                    int kind, void* target);

// Decimal digits of an integer: writes the digits of `value` so that they end at `end`, and
// returns where they begin. Zero gives one digit.
char* put_decimal_backwards(unsigned long long value, char* end);
char* put_decimal_backwards(unsigned __int128 value, char* end);

// The digits that a native statement shows: at most 20 of them are true, zeros follow. Rounded
// half away from zero at the digit asked for.
struct NativeDigits {
    char* digits = nullptr;  // the caller's buffer
    std::size_t count = 0;   // digits written, zeros behind the true ones included
    std::int32_t point = 0;  // |value| = 0.d1d2d3... x 10^point; 0 for a zero
    bool negative = false;   // the sign, of a zero too
};

// No more digits than this are written.
inline constexpr std::size_t max_native_digits = 5000;

// `count` above 0: so many significant digits. Otherwise -`count` digits behind the point, which
// with the digits before it may be none. A zero gives the digits asked for, all '0'. The smallest
// normal REAL(8), 2.2250738585072014E-308, keeps its 17th digit whatever cut is made there. The
// value is finite; `buffer` holds max_native_digits bytes, or what the count can give.
NativeDigits native_digits(long double value, std::int32_t count, char* buffer);

}  // namespace tarn::fio
