// The entries of elementary functions, norms, truncation and sign. What each does is told in
// include/tarn/numbers.h.
#include "frame/link_name.h"
#include "intrinsics/numbers/elementary.h"
#include "intrinsics/numbers/norms.h"
#include "intrinsics/numbers/rounding.h"
#include "tarn/numbers.h"

using namespace tarn::intrinsics::numbers;

// An elementary function in 80 bits, rounded.
#define ELEMENTARY(name, Real, function)                                  \
    TARN_EXPORT Real name##_h(const Real* x) {                            \
        return static_cast<Real>(function(static_cast<long double>(*x))); \
    }
#define CONVERSION(name, Result, Value)           \
    TARN_EXPORT Result name##_h(const Value* x) { \
        return nearest_integer<Result>(*x);       \
    }
#define UNARY(name, Value, function)             \
    TARN_EXPORT Value name##_h(const Value* x) { \
        return function(*x);                     \
    }
#define BINARY(name, Value, function)                            \
    TARN_EXPORT Value name##_h(const Value* x, const Value* y) { \
        return function(*x, *y);                                 \
    }

extern "C" {

TARN_EXPORT long double ALOG_hX(long double x) {
    return natural_logarithm(x);
}
TARN_EXPORT long double AL10_hX(long double x) {
    return decimal_logarithm(x);
}
TARN_EXPORT long double ALG2_hX(long double x) {
    return binary_logarithm(x);
}
TARN_EXPORT long double EXP_hX(long double x) {
    return exponential(x);
}
TARN_EXPORT long double EXPL_hX(long double x) {
    return exponential_extended(x);
}
TARN_EXPORT long double ASIN_hX(long double x) {
    return arc_sine(x);
}
TARN_EXPORT long double ACOS_hX(long double x) {
    return arc_cosine(x);
}
TARN_EXPORT long double SINH_hX(long double x) {
    return hyperbolic_sine(x);
}
TARN_EXPORT long double COSH_hX(long double x) {
    return hyperbolic_cosine(x);
}
TARN_EXPORT long double DTN2_hX(long double y, long double x) {
    return arc_tangent(y, x);
}

TARN_ELEMENTARY_FUNCTIONS(ELEMENTARY)
TARN_TRUNCATIONS(UNARY)
TARN_NEAREST_INTEGERS(CONVERSION)
TARN_MAGNITUDES(UNARY)
TARN_BINARY_FUNCTIONS(BINARY)

TARN_EXPORT float ATAN2_h(const float* y, const float* x) {
    return static_cast<float>(arc_tangent(*y, *x));
}
TARN_EXPORT double DATN2_h(const double* y, const double* x) {
    return static_cast<double>(arc_tangent(*y, *x));
}
TARN_EXPORT float SQRT_h(const float* x) {
    return std::sqrt(*x);
}
TARN_EXPORT double DSQRT_h(const double* x) {
    return std::sqrt(*x);
}
TARN_EXPORT float HYPOT_h(const float* x, const float* y) {
    return hypotenuse(*x, *y);
}
TARN_EXPORT double HYPOTR8_h(const double* x, const double* y) {
    return hypotenuse(*x, *y);
}
TARN_EXPORT double DHYPOT_h(const double* x, const double* y) {
    return hypotenuse(*x, *y);
}
TARN_EXPORT float NORM2_h(const float* values, std::intptr_t count) {
    return norm2(values, count);
}
TARN_EXPORT double DNORM2_h(const double* values, std::intptr_t count) {
    return norm2(values, count);
}

TARN_EXPORT double NEAREST_hh(double x, double direction) {
    return nearest(x, direction);
}
TARN_EXPORT double MODULO_hh(double x, double y) {
    return modulo(x, y);
}

TARN_EXPORT tarn_complex8 CONJ_h(const tarn_complex8* z) {
    return ~*z;
}
TARN_EXPORT tarn_complex16 DCONJ_h(const tarn_complex16* z) {
    return ~*z;
}
TARN_EXPORT float AIMAG_h(const tarn_complex8* z) {
    return __imag__(*z);
}
TARN_EXPORT double DIMAG_h(const tarn_complex16* z) {
    return __imag__(*z);
}
TARN_EXPORT double DPROD_h(const float* x, const float* y) {
    return static_cast<double>(*x) * *y;
}
}
