// The specific names of gfortran's intrinsic functions, as a program hands them on as arguments:
// `call integrate(dsin, ...)`. Arguments come by reference. With -ff2c a REAL(4) is returned as a
// double, and a complex number in a place that the caller names first.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "frame/link_name.h"
#include "pairing/gcc/number_types.h"

using namespace tarn::gcc;

// The C library's, which C++ doesn't declare for these types.
#define C_REAL_FUNCTION(name) r16 name##f128(r16) noexcept;
#define C_COMPLEX_FUNCTION(name) \
    c4 name##f(c4) noexcept;     \
    c8 name(c8) noexcept;        \
    c10 name##l(c10) noexcept;   \
    c16 name##f128(c16) noexcept;
#define C_PARTS_FUNCTION(name) \
    r4 name##f(c4) noexcept;   \
    r8 name(c8) noexcept;      \
    r10 name##l(c10) noexcept; \
    r16 name##f128(c16) noexcept;

extern "C" {
C_REAL_FUNCTION(fabs)
C_REAL_FUNCTION(acos)
C_REAL_FUNCTION(acosh)
C_REAL_FUNCTION(trunc)
C_REAL_FUNCTION(round)
C_REAL_FUNCTION(asin)
C_REAL_FUNCTION(asinh)
C_REAL_FUNCTION(atan)
C_REAL_FUNCTION(atanh)
C_REAL_FUNCTION(cos)
C_REAL_FUNCTION(cosh)
C_REAL_FUNCTION(exp)
C_REAL_FUNCTION(log)
C_REAL_FUNCTION(log10)
C_REAL_FUNCTION(sin)
C_REAL_FUNCTION(sinh)
C_REAL_FUNCTION(sqrt)
C_REAL_FUNCTION(tan)
C_REAL_FUNCTION(tanh)
long lroundf128(r16) noexcept;
r16 atan2f128(r16, r16) noexcept;
r16 fmodf128(r16, r16) noexcept;
r16 copysignf128(r16, r16) noexcept;
C_COMPLEX_FUNCTION(ccos)
C_COMPLEX_FUNCTION(cexp)
C_COMPLEX_FUNCTION(clog)
C_COMPLEX_FUNCTION(csin)
C_COMPLEX_FUNCTION(csqrt)
C_PARTS_FUNCTION(cabs)

std::size_t _gfortran_string_index(std::size_t, const char*, std::size_t, const char*, i4);
}

namespace {

// As the compiler's own code for DIM: the difference wraps around, and one that is no number stays.
template <class Number>
Number difference(Number x, Number y) {
    Number left;
    if constexpr (std::is_floating_point_v<Number> || std::is_same_v<Number, r16>) {
        left = x - y;
    } else {
        __builtin_sub_overflow(x, y, &left);
    }
    return left <= 0 ? 0 : left;
}

// Of the most negative number there is none; it stays itself.
template <class Integer>
Integer negated(Integer x) {
    Integer wrapped;
    __builtin_sub_overflow(Integer{0}, x, &wrapped);
    return wrapped;
}
template <class Integer>
Integer absolute(Integer x) {
    return x < 0 ? negated(x) : x;
}
template <class Integer>
Integer with_sign_of(Integer x, Integer y) {
    return (x < 0) == (y < 0) ? x : negated(x);
}

// To the nearest whole number, halves away from zero. As in the compiler's own code, of a number
// that doesn't fit in 32 bits the lowest stay.
template <class Integer>
Integer nearest(r4 x) {
    if (sizeof(Integer) == sizeof(i4)) return static_cast<Integer>(lroundf(x));
    return static_cast<Integer>(roundf(x));
}
template <class Integer>
Integer nearest(r8 x) {
    if (sizeof(Integer) == sizeof(i4)) return static_cast<Integer>(lround(x));
    return static_cast<Integer>(round(x));
}
template <class Integer>
Integer nearest(r10 x) {
    if (sizeof(Integer) == sizeof(i4)) return static_cast<Integer>(lroundl(x));
    return static_cast<Integer>(roundl(x));
}
template <class Integer>
Integer nearest(r16 x) {
    if (sizeof(Integer) == sizeof(i4)) return static_cast<Integer>(lroundf128(x));
    return static_cast<Integer>(roundf128(x));
}

}  // namespace

#define OF_ONE(result, name, letters, type, call)                           \
    TARN_EXPORT result _gfortran_specific__##name##letters(const type* x) { \
        return call;                                                        \
    }
#define OF_TWO(result, name, letters, type, call)                                          \
    TARN_EXPORT result _gfortran_specific__##name##letters(const type* x, const type* y) { \
        return call;                                                                       \
    }

#define REAL_FUNCTION(name, function)                                 \
    OF_ONE(r4, name, _r4, r4, function##f(*x))                        \
    OF_ONE(r8, name, _r8, r8, function(*x))                           \
    OF_ONE(r10, name, _r10, r10, function##l(*x))                     \
    OF_ONE(r16, name, _r16, r16, function##f128(*x))                  \
    TARN_EXPORT r8 _gfortran_f2c_specific__##name##_r4(const r4* x) { \
        return function##f(*x);                                       \
    }

#define REAL_PAIR(name, call4, call8, call10, call16)                              \
    OF_TWO(r4, name, _r4, r4, call4(*x, *y))                                       \
    OF_TWO(r8, name, _r8, r8, call8(*x, *y))                                       \
    OF_TWO(r10, name, _r10, r10, call10(*x, *y))                                   \
    OF_TWO(r16, name, _r16, r16, call16(*x, *y))                                   \
    TARN_EXPORT r8 _gfortran_f2c_specific__##name##_r4(const r4* x, const r4* y) { \
        return call4(*x, *y);                                                      \
    }

#define COMPLEX_FUNCTION(name, letter, call4, call8, call10, call16)                          \
    OF_ONE(c4, name, _##letter##4, c4, call4(*x))                                             \
    OF_ONE(c8, name, _##letter##8, c8, call8(*x))                                             \
    OF_ONE(c10, name, _##letter##10, c10, call10(*x))                                         \
    OF_ONE(c16, name, _##letter##16, c16, call16(*x))                                         \
    TARN_EXPORT void _gfortran_f2c_specific__##name##_##letter##4(c4 * result, const c4* x) { \
        *result = call4(*x);                                                                  \
    }                                                                                         \
    TARN_EXPORT void _gfortran_f2c_specific__##name##_##letter##8(c8 * result, const c8* x) { \
        *result = call8(*x);                                                                  \
    }

#define INTEGER_FUNCTIONS(integer)                                \
    OF_ONE(integer, abs, _##integer, integer, absolute(*x))       \
    OF_TWO(integer, dim, _##integer, integer, difference(*x, *y)) \
    OF_TWO(integer, mod, _##integer, integer, *x % *y)            \
    OF_TWO(integer, sign, _##integer, integer, with_sign_of(*x, *y))

#define NEAREST(kind)                                              \
    OF_ONE(i##kind, nint, _##kind##_4, r4, nearest<i##kind>(*x))   \
    OF_ONE(i##kind, nint, _##kind##_8, r8, nearest<i##kind>(*x))   \
    OF_ONE(i##kind, nint, _##kind##_10, r10, nearest<i##kind>(*x)) \
    OF_ONE(i##kind, nint, _##kind##_16, r16, nearest<i##kind>(*x))

#define OF_CHARACTERS(integer)                                                                 \
    TARN_EXPORT void _gfortran_specific__char_1_##integer(char* result, std::size_t,           \
                                                          const integer* code) {               \
        *result = static_cast<char>(*code);                                                    \
    }                                                                                          \
    TARN_EXPORT integer _gfortran_specific__len_1_##integer(const char*, std::size_t length) { \
        return static_cast<integer>(length);                                                   \
    }                                                                                          \
    TARN_EXPORT integer _gfortran_specific__index_1_##integer(                                 \
        const char* text, const char* part, std::size_t length, std::size_t part_length) {     \
        return _gfortran_string_index(length, text, part_length, part, 0);                     \
    }

extern "C" {

REAL_FUNCTION(abs, fabs)
REAL_FUNCTION(acos, acos)
REAL_FUNCTION(acosh, acosh)
REAL_FUNCTION(aint, trunc)
REAL_FUNCTION(anint, round)
REAL_FUNCTION(asin, asin)
REAL_FUNCTION(asinh, asinh)
REAL_FUNCTION(atan, atan)
REAL_FUNCTION(atanh, atanh)
REAL_FUNCTION(cos, cos)
REAL_FUNCTION(cosh, cosh)
REAL_FUNCTION(exp, exp)
REAL_FUNCTION(log, log)
REAL_FUNCTION(log10, log10)
REAL_FUNCTION(sin, sin)
REAL_FUNCTION(sinh, sinh)
REAL_FUNCTION(sqrt, sqrt)
REAL_FUNCTION(tan, tan)
REAL_FUNCTION(tanh, tanh)

REAL_PAIR(atan2, atan2f, atan2, atan2l, atan2f128)
REAL_PAIR(dim, difference, difference, difference, difference)
REAL_PAIR(mod, fmodf, fmod, fmodl, fmodf128)
REAL_PAIR(sign, copysignf, copysign, copysignl, copysignf128)

COMPLEX_FUNCTION(conjg, , ~, ~, ~, ~)
COMPLEX_FUNCTION(cos, c, ccosf, ccos, ccosl, ccosf128)
COMPLEX_FUNCTION(exp, c, cexpf, cexp, cexpl, cexpf128)
COMPLEX_FUNCTION(log, c, clogf, clog, clogl, clogf128)
COMPLEX_FUNCTION(sin, c, csinf, csin, csinl, csinf128)
COMPLEX_FUNCTION(sqrt, c, csqrtf, csqrt, csqrtl, csqrtf128)

OF_ONE(r4, abs, _c4, c4, cabsf(*x))
OF_ONE(r8, abs, _c8, c8, cabs(*x))
OF_ONE(r10, abs, _c10, c10, cabsl(*x))
OF_ONE(r16, abs, _c16, c16, cabsf128(*x))
OF_ONE(r4, aimag, _c4, c4, __imag__* x)
OF_ONE(r8, aimag, _c8, c8, __imag__* x)
OF_ONE(r10, aimag, _c10, c10, __imag__* x)
OF_ONE(r16, aimag, _c16, c16, __imag__* x)
TARN_EXPORT r8 _gfortran_f2c_specific__abs_c4(const c4* x) {
    return cabsf(*x);
}
TARN_EXPORT r8 _gfortran_f2c_specific__aimag_c4(const c4* x) {
    return __imag__ * x;
}
TARN_EXPORT r8 _gfortran_f2c_specific__aimag_c8(const c8* x) {
    return __imag__ * x;
}

INTEGER_FUNCTIONS(i4)
INTEGER_FUNCTIONS(i8)
INTEGER_FUNCTIONS(i16)
NEAREST(4)
NEAREST(8)
NEAREST(16)
TARN_EXPORT r8 _gfortran_specific__dprod_r8(const r4* x, const r4* y) {
    return static_cast<r8>(*x) * static_cast<r8>(*y);
}
OF_CHARACTERS(i4)
OF_CHARACTERS(i8)
OF_CHARACTERS(i16)
}
