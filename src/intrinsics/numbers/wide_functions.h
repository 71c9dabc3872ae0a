// The C library's functions for the two types that special functions are worked on in, under one
// name each, and what is made of them for any of the types.
#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

// Not every compiler finds them declared in <cmath>.
extern "C" {
__float128 fabsf128(__float128) noexcept;
__float128 expf128(__float128) noexcept;
__float128 sinf128(__float128) noexcept;
__float128 cosf128(__float128) noexcept;
__float128 tanf128(__float128) noexcept;
__float128 erff128(__float128) noexcept;
__float128 erfcf128(__float128) noexcept;
__float128 tgammaf128(__float128) noexcept;
__float128 asinhf128(__float128) noexcept;
__float128 acoshf128(__float128) noexcept;
__float128 atanhf128(__float128) noexcept;
__float128 j0f128(__float128) noexcept;
__float128 j1f128(__float128) noexcept;
__float128 y0f128(__float128) noexcept;
__float128 y1f128(__float128) noexcept;
__float128 fmodf128(__float128, __float128) noexcept;
__float128 lgammaf128_r(__float128, int*) noexcept;
__float128 jnf128(int, __float128) noexcept;
__float128 ynf128(int, __float128) noexcept;
}

namespace tarn::intrinsics::numbers {

using Real10 = long double;
using Real16 = __float128;

inline Real10 absolute_value(Real10 x) {
    return __builtin_fabsl(x);
}
inline Real16 absolute_value(Real16 x) {
    return fabsf128(x);
}
inline Real10 exp_of(Real10 x) {
    return expl(x);
}
inline Real16 exp_of(Real16 x) {
    return expf128(x);
}
inline Real10 sine_of(Real10 x) {
    return sinl(x);
}
inline Real16 sine_of(Real16 x) {
    return sinf128(x);
}
inline Real10 cosine_of(Real10 x) {
    return cosl(x);
}
inline Real16 cosine_of(Real16 x) {
    return cosf128(x);
}
inline Real10 tangent_of(Real10 x) {
    return tanl(x);
}
inline Real16 tangent_of(Real16 x) {
    return tanf128(x);
}
inline Real10 remainder_by(Real10 x, Real10 y) {
    return fmodl(x, y);
}
inline Real16 remainder_by(Real16 x, Real16 y) {
    return fmodf128(x, y);
}
inline Real10 erf_of(Real10 x) {
    return erfl(x);
}
inline Real16 erf_of(Real16 x) {
    return erff128(x);
}
inline Real10 erfc_of(Real10 x) {
    return erfcl(x);
}
inline Real16 erfc_of(Real16 x) {
    return erfcf128(x);
}
inline Real10 gamma_of(Real10 x) {
    return tgammal(x);
}
inline Real16 gamma_of(Real16 x) {
    return tgammaf128(x);
}
inline Real10 log_gamma_of(Real10 x) {
    int sign;
    return lgammal_r(x, &sign);
}
inline Real16 log_gamma_of(Real16 x) {
    int sign;
    return lgammaf128_r(x, &sign);
}
inline Real10 asinh_of(Real10 x) {
    return asinhl(x);
}
inline Real16 asinh_of(Real16 x) {
    return asinhf128(x);
}
inline Real10 acosh_of(Real10 x) {
    return acoshl(x);
}
inline Real16 acosh_of(Real16 x) {
    return acoshf128(x);
}
inline Real10 atanh_of(Real10 x) {
    return atanhl(x);
}
inline Real16 atanh_of(Real16 x) {
    return atanhf128(x);
}
inline Real10 bessel_j_of(int order, Real10 x) {
    if (order == 0) return j0l(x);
    return order == 1 ? j1l(x) : jnl(order, x);
}
inline Real16 bessel_j_of(int order, Real16 x) {
    if (order == 0) return j0f128(x);
    return order == 1 ? j1f128(x) : jnf128(order, x);
}
inline Real10 bessel_y_of(int order, Real10 x) {
    if (order == 0) return y0l(x);
    return order == 1 ? y1l(x) : ynl(order, x);
}
inline Real16 bessel_y_of(int order, Real16 x) {
    if (order == 0) return y0f128(x);
    return order == 1 ? y1f128(x) : ynf128(order, x);
}

// exp(x^2) erfc(x). The square is taken in two parts, since exp makes its rounding error large.
// Above the limit erfc is about to underflow, or to lose bits, and the asymptotic series has
// converged long before its terms grow again.
template <class Wide>
Wide scaled_erfc_of(Wide x) {
    constexpr bool wider = std::is_same_v<Wide, Real16>;
    const Wide limit = wider ? 100 : 12;
    if (x < -200) return std::numeric_limits<Real10>::infinity();
    if (absolute_value(x) < static_cast<Wide>(1e-36L)) return 1;
    if (x < limit) {
        const auto head = static_cast<Wide>(static_cast<float>(x));
        const Wide tail = (x - head) * (x + head);
        return exp_of(head * head) * erfc_of(x) * exp_of(tail);
    }
    const Wide step = (1 / x) * (1 / x) / 2;
    const Wide enough = wider ? static_cast<Wide>(1e-36L) : static_cast<Wide>(1e-22L);
    Wide sum = 1;
    Wide term = 1;
    for (int k = 1; absolute_value(term) > enough; ++k) {
        term *= -static_cast<Wide>(2 * k - 1) * step;
        sum += term;
    }
    return sum * static_cast<Wide>(0.56418958354775628694807945156077258584Q) / x;
}

}  // namespace tarn::intrinsics::numbers
