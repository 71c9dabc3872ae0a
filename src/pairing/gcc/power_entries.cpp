// gfortran's powers with integer exponents. Small constant exponents and REALs to the power of an
// INTEGER(4) it compiles itself.
#include <cstdint>

#include "frame/link_name.h"
#include "intrinsics/numbers/gnu_powers.h"

namespace {

using i4 = std::int32_t;
using i8 = std::int64_t;
using i16 = __int128;
using r4 = float;
using r8 = double;
using r10 = long double;
using r16 = __float128;
// The compiler's own complex types are returned as compiled code expects them.
using c4 = __complex__ float;
using c8 = __complex__ double;
using c10 = __complex__ long double;
typedef __complex__ float c16 __attribute__((mode(TC)));  // NOLINT: `using` takes no mode

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
