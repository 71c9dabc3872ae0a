// Powers with integer exponents as Fortran 2018 and gfortran have them: square and multiply from
// the lowest bit of the exponent, integers modulo 2^bits, no failures.
#pragma once

#include <cstdint>

namespace tarn::intrinsics {

// The integer types; std::make_unsigned doesn't know __int128 without the compiler's own dialect.
template <class Integer>
struct UnsignedOf;
template <>
struct UnsignedOf<std::int32_t> {
    using Type = std::uint32_t;
};
template <>
struct UnsignedOf<std::int64_t> {
    using Type = std::uint64_t;
};
template <>
struct UnsignedOf<__int128> {
    using Type = unsigned __int128;
};
template <class Integer>
using Unsigned = typename UnsignedOf<Integer>::Type;

// Both parts are computed by the plain formulas; Fortran has no rules for infinite ones.
template <class Real>
struct Complex {
    Real re;
    Real im;
};

template <class Real>
Complex<Real> operator*(const Complex<Real>& a, const Complex<Real>& b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// 1 / z, scaled so that no square overflows (R. L. Smith, Algorithm 116 of the CACM, 1962).
template <class Real>
Complex<Real> reciprocal(const Complex<Real>& z) {
    const auto magnitude = [](Real value) { return value < 0 ? -value : value; };
    constexpr Real one = 1;
    constexpr Real zero = 0;
    if (magnitude(z.re) < magnitude(z.im)) {
        const Real ratio = z.re / z.im;
        const Real divisor = z.re * ratio + z.im;
        return {(ratio + zero) / divisor, (zero * ratio - one) / divisor};
    }
    const Real ratio = z.im / z.re;
    const Real divisor = z.im * ratio + z.re;
    return {(zero * ratio + one) / divisor, (zero - ratio) / divisor};
}

template <class Value, class Exponent>
Value power_of_magnitude(Value base, Exponent exponent, Value result) {
    for (;;) {
        if ((exponent & 1) != 0) result = result * base;
        exponent >>= 1;
        if (exponent == 0) return result;
        base = base * base;
    }
}

template <class Integer>
Unsigned<Integer> magnitude_of(Integer value) {
    const auto bits = static_cast<Unsigned<Integer>>(value);
    return value < 0 ? 0 - bits : bits;
}

template <class Integer, class Exponent>
Integer integer_power(Integer base, Exponent exponent) {
    if (exponent < 0) {
        if (base == 1) return 1;
        if (base == -1) return (exponent & 1) != 0 ? -1 : 1;
        return 0;
    }
    using Bits = Unsigned<Integer>;
    return static_cast<Integer>(
        power_of_magnitude(static_cast<Bits>(base), magnitude_of(exponent), Bits{1}));
}

template <class Real, class Exponent>
Real real_power(Real base, Exponent exponent) {
    if (exponent < 0) base = 1 / base;
    return power_of_magnitude(base, magnitude_of(exponent), Real{1});
}

template <class Real, class Exponent>
Complex<Real> complex_power(Complex<Real> base, Exponent exponent) {
    if (exponent < 0) base = reciprocal(base);
    return power_of_magnitude(base, magnitude_of(exponent), Complex<Real>{1, 0});
}

}  // namespace tarn::intrinsics
