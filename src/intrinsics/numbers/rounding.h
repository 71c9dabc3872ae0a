// Truncation, remainders, signs and neighbours.
#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

#include "intrinsics/numbers/failures.h"

namespace tarn::intrinsics::numbers {

template <class Real>
Real truncated(Real x) {
    return std::trunc(x);
}
// Halves away from 0.
template <class Real>
Real rounded(Real x) {
    return std::round(x);
}

// To the nearest integer, halves away from 0. What doesn't fit becomes the lowest integer, as the
// processor's own conversion has it.
template <class Integer, class Real>
Integer nearest_integer(Real x) {
    const Real whole = rounded(x);
    constexpr Real end = -static_cast<Real>(std::numeric_limits<Integer>::min());
    if (whole >= -end && whole < end) return static_cast<Integer>(whole);
    return std::numeric_limits<Integer>::min();
}

template <class Value>
Value absolute(Value x) {
    if constexpr (std::is_integral_v<Value>) {
        // The lowest integer stays what it is.
        using Bits = std::make_unsigned_t<Value>;
        return x < 0 ? static_cast<Value>(0 - static_cast<Bits>(x)) : x;
    } else {
        return std::fabs(x);
    }
}

// The magnitude of x with the sign of y; REAL zeros have one.
template <class Value>
Value with_sign(Value x, Value y) {
    if constexpr (std::is_integral_v<Value>) {
        using Bits = std::make_unsigned_t<Value>;
        return (x < 0) == (y < 0) ? x : static_cast<Value>(0 - static_cast<Bits>(x));
    } else {
        return std::copysign(x, y);
    }
}

// x - y, but not below 0. A difference that doesn't fit wraps around.
template <class Value>
Value positive_difference(Value x, Value y) {
    if constexpr (std::is_integral_v<Value>) {
        using Bits = std::make_unsigned_t<Value>;
        return x > y ? static_cast<Value>(static_cast<Bits>(x) - static_cast<Bits>(y)) : Value{0};
    } else {
        return x <= y ? Value{0} : x - y;  // a NaN stays one
    }
}

// The remainder with the sign of x; a divisor of 0 is failure 32.
template <class Value>
Value remainder_of(Value x, Value y) {
    if (y == 0) fail(mod_by_zero);
    if constexpr (std::is_integral_v<Value>) {
        return y == -1 ? Value{0} : static_cast<Value>(x % y);
    } else {
        return std::fmod(x, y);
    }
}

// The remainder with the sign of y.
template <class Real>
Real modulo(Real x, Real y) {
    const Real remainder = remainder_of(x, y);
    if (remainder == 0) return std::copysign(remainder, y);
    return (remainder < 0) == (y < 0) ? remainder : remainder + y;
}

// The next number in the direction of `direction`'s sign; 0 there is failure 384.
template <class Real>
Real nearest(Real x, Real direction) {
    if (direction == 0) fail(nearest_to_zero);
    return std::nextafter(x, std::copysign(std::numeric_limits<Real>::infinity(), direction));
}

}  // namespace tarn::intrinsics::numbers
