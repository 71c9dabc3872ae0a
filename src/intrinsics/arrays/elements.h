// Element types and their arithmetic.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

namespace tarn::arrays {

using Integer16 = __int128;
using Real10 = long double;
using Real16 = __float128;

// Complex numbers by the plain rules: no detours for infinities and NaNs.
template <class T>
struct Complex {
    T re, im;

    friend Complex operator+(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }
    friend Complex operator*(Complex a, Complex b) {
        return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
    }
    friend bool operator==(Complex a, Complex b) { return a.re == b.re && a.im == b.im; }
};

template <class T>
inline constexpr bool is_integer = T(0.5) == T(0);
template <class T>
inline constexpr bool is_integer<Complex<T>> = false;
template <class T>
inline constexpr bool is_complex = false;
template <class T>
inline constexpr bool is_complex<Complex<T>> = true;

// The unsigned twin of an integer: sums and products wrap in it.
template <class T>
struct WrappingOf {
    using Type = T;
};
template <>
struct WrappingOf<std::int8_t> {
    using Type = std::uint8_t;
};
template <>
struct WrappingOf<std::int16_t> {
    using Type = std::uint16_t;
};
template <>
struct WrappingOf<std::int32_t> {
    using Type = std::uint32_t;
};
template <>
struct WrappingOf<std::int64_t> {
    using Type = std::uint64_t;
};
template <>
struct WrappingOf<Integer16> {
    using Type = unsigned __int128;
};
template <class T>
using Wrapping = typename WrappingOf<T>::Type;

// Whether vector instructions do anything for the type.
template <class T>
inline constexpr bool vectors_help = sizeof(T) <= 8;

// The largest finite value and the smallest. (No numeric_limits: its extremes of the 16-byte types
// depend on the dialect of the compiler.)
template <class T>
constexpr T largest_finite() {
    if constexpr (is_integer<T>) {
        return static_cast<T>(static_cast<Wrapping<T>>(~Wrapping<T>(0)) >> 1);
    } else if constexpr (sizeof(T) == 16 && !std::is_same_v<T, Real10>) {
        // 2^16383 x (2 - 2^-112)
        T high = 1;
        for (int i = 0; i < 16383; ++i) high *= 2;
        T ulp = high;
        for (int i = 0; i < 112; ++i) ulp /= 2;
        return (high - ulp) + high;
    } else {
        return std::numeric_limits<T>::max();
    }
}
template <class T>
constexpr T smallest_finite() {
    if constexpr (is_integer<T>) {
        return static_cast<T>(-largest_finite<T>() - 1);
    } else {
        return -largest_finite<T>();
    }
}
template <class T>
constexpr T infinity() {
    return static_cast<T>(std::numeric_limits<double>::infinity());
}

}  // namespace tarn::arrays
