// Powers as the native dialect has them: with failures, where the gnu ones wrap around or give
// infinities. Reals are computed in 80 bits.
#pragma once

#include <type_traits>

#include "intrinsics/numbers/complex_pairs.h"
#include "intrinsics/numbers/failures.h"

namespace tarn::intrinsics::numbers {

template <class Integer>
Integer checked_product(Integer a, Integer b) {
    Integer product;
    if (__builtin_mul_overflow(a, b, &product)) fail(integer_overflow);
    return product;
}

// In the width of the wider operand. Nothing is squared that isn't used, so that a result which
// just fits doesn't fail.
template <class Left, class Right>
auto integer_power(Left base, Right exponent) {
    using Integer = std::conditional_t<(sizeof(Left) > sizeof(Right)), Left, Right>;
    auto square = static_cast<Integer>(base);
    if (exponent <= 0 && base == 0) fail(zero_to_power);
    if (exponent < 0) {
        if (base == 1 || base == -1) return (exponent & 1) != 0 ? square : Integer{1};
        return Integer{0};
    }
    Integer result = 1;
    for (;;) {
        if ((exponent & 1) != 0) result = checked_product(result, square);
        exponent >>= 1;
        if (exponent == 0) return result;
        square = checked_product(square, square);
    }
}

template <class Integer>
std::make_unsigned_t<Integer> magnitude(Integer value) {
    const auto bits = static_cast<std::make_unsigned_t<Integer>>(value);
    return value < 0 ? static_cast<std::make_unsigned_t<Integer>>(0 - bits) : bits;
}

// `exponent` isn't 0.
template <class Value, class Exponent>
Value binary_power(Value square, Exponent exponent) {
    while ((exponent & 1) == 0) {
        square = square * square;
        exponent >>= 1;
    }
    Value result = square;
    while ((exponent >>= 1) != 0) {
        square = square * square;
        if ((exponent & 1) != 0) result = result * square;
    }
    return result;
}

template <class Integer>
long double real_power(long double base, Integer exponent) {
    if (exponent <= 0 && base == 0) fail(zero_to_power);
    if (exponent == 0) return 1;
    return binary_power(exponent < 0 ? 1 / base : base, magnitude(exponent));
}

template <class Real, class Integer>
Pair<Real> complex_power(const Pair<Real>& base, Integer exponent) {
    constexpr Pair<Real> one{1, 0};
    if (exponent == 0) return one;
    return binary_power(exponent < 0 ? one / base : base, magnitude(exponent));
}

// What the range of a result is judged by: up to REAL*8, or REAL*10.
enum class PowerRange { real8, extended };

struct Power {
    long double value;
    int failure;  // or no_failure
};
Power power(long double base, long double exponent, PowerRange range);
// The same, failing.
long double power_or_failure(long double base, long double exponent, PowerRange range);
// For C programs: errno tells what a failure would have, and the value is the C library's.
long double c_power(long double base, long double exponent, PowerRange range);

Pair<long double> complex_power(const Pair<long double>& base, const Pair<long double>& exponent);

}  // namespace tarn::intrinsics::numbers
