// gfortran's powers with integer exponents. Small constant exponents and REALs to the power of an
// INTEGER(4) it compiles itself.
#include <cstdint>

#include "frame/link_name.h"
#include "intrinsics/numbers/gnu_powers.h"
#include "pairing/gcc/number_types.h"

using namespace tarn::gcc;

namespace {

template <class Result, class Real, class Exponent>
Result complex_power(Result base, Exponent exponent) {
    const auto power = tarn::intrinsics::complex_power(
        tarn::intrinsics::Complex<Real>{__real__ base, __imag__ base}, exponent);
    Result result;
    __real__ result = power.re;
    __imag__ result = power.im;
    return result;
}

}  // namespace

// An entry for each pair of types: its name is made of theirs.
#define INTEGER_POWER(base, exponent)                                        \
    TARN_EXPORT base _gfortran_pow_##base##_##exponent(base x, exponent n) { \
        return tarn::intrinsics::integer_power(x, n);                        \
    }
#define REAL_POWER(base, exponent)                                           \
    TARN_EXPORT base _gfortran_pow_##base##_##exponent(base x, exponent n) { \
        return tarn::intrinsics::real_power(x, n);                           \
    }
#define COMPLEX_POWER(base, real, exponent)                                  \
    TARN_EXPORT base _gfortran_pow_##base##_##exponent(base x, exponent n) { \
        return complex_power<base, real>(x, n);                              \
    }

extern "C" {

INTEGER_POWER(i4, i4)
INTEGER_POWER(i4, i8)
INTEGER_POWER(i4, i16)
INTEGER_POWER(i8, i4)
INTEGER_POWER(i8, i8)
INTEGER_POWER(i8, i16)
INTEGER_POWER(i16, i4)
INTEGER_POWER(i16, i8)
INTEGER_POWER(i16, i16)

REAL_POWER(r4, i8)
REAL_POWER(r4, i16)
REAL_POWER(r8, i8)
REAL_POWER(r8, i16)
REAL_POWER(r10, i8)
REAL_POWER(r10, i16)
REAL_POWER(r16, i4)
REAL_POWER(r16, i8)
REAL_POWER(r16, i16)

COMPLEX_POWER(c4, r4, i4)
COMPLEX_POWER(c4, r4, i8)
COMPLEX_POWER(c4, r4, i16)
COMPLEX_POWER(c8, r8, i4)
COMPLEX_POWER(c8, r8, i8)
COMPLEX_POWER(c8, r8, i16)
COMPLEX_POWER(c10, r10, i4)
COMPLEX_POWER(c10, r10, i8)
COMPLEX_POWER(c10, r10, i16)
COMPLEX_POWER(c16, r16, i4)
COMPLEX_POWER(c16, r16, i8)
COMPLEX_POWER(c16, r16, i16)
}
