// The entries of powers and complex functions. What each does is told in include/tarn/numbers.h.
#include "frame/link_name.h"
#include "intrinsics/numbers/complex_functions.h"
#include "intrinsics/numbers/powers.h"
#include "tarn/numbers.h"

using namespace tarn::intrinsics::numbers;

#define INTEGER_POWER(name, Result, Base, Exponent)                  \
    TARN_EXPORT Result XX##name##_hh(Base base, Exponent exponent) { \
        return integer_power(base, exponent);                        \
    }
#define REAL_POWER(name, Base, Exponent)                                  \
    TARN_EXPORT long double XX##name##_hh(Base base, Exponent exponent) { \
        return real_power(base, exponent);                                \
    }
#define GENERAL_POWER(name, Base, Exponent)                                           \
    TARN_EXPORT long double XX##name##_hh(Base base, Exponent exponent) {             \
        constexpr bool extended = sizeof(Base) == sizeof(long double);                \
        return power_or_failure(base, exponent,                                       \
                                extended ? PowerRange::extended : PowerRange::real8); \
    }
#define COMPLEX_INTEGER_POWER(name, Base, Exponent)                             \
    TARN_EXPORT Base XX##name##_h(const Base* base, const Exponent* exponent) { \
        return complex_of<Base>(complex_power(pair_of(*base), *exponent));      \
    }
#define COMPLEX_POWER(name, Result, Base, Exponent)                                   \
    TARN_EXPORT Result XX##name##_h(const Base* base, const Exponent* exponent) {     \
        return complex_of<Result>(complex_power(widened(*base), widened(*exponent))); \
    }
#define COMPLEX_FUNCTION(name, function, Type)                    \
    TARN_EXPORT Type name##_h(const Type* z) {                    \
        return complex_of<Type>(complex_##function(widened(*z))); \
    }

extern "C" {

TARN_INTEGER_POWERS(INTEGER_POWER)
TARN_REAL_POWERS(REAL_POWER)
TARN_GENERAL_POWERS(GENERAL_POWER)
TARN_COMPLEX_INTEGER_POWERS(COMPLEX_INTEGER_POWER)
TARN_COMPLEX_POWERS(COMPLEX_POWER)

TARN_EXPORT long double C_POWER_FUNCTION_hh(double base, double exponent) {
    return c_power(base, exponent, PowerRange::real8);
}
TARN_EXPORT long double C_POWER_FUNCTIONL_hh(long double base, long double exponent) {
    return c_power(base, exponent, PowerRange::extended);
}

TARN_COMPLEX_FUNCTIONS(COMPLEX_FUNCTION)

TARN_EXPORT long double CABS_hX(long double re, long double im) {
    return complex_modulus({re, im});
}
TARN_EXPORT long double CABSCX_h(const tarn_complex20* z) {
    return complex_modulus(widened(*z));
}
TARN_EXPORT tarn_complex20 CDIV_hh(tarn_complex20 a, tarn_complex20 b) {
    return complex_of<tarn_complex20>(widened(a) / widened(b));
}
TARN_EXPORT tarn_complex20 CMPY_hh(tarn_complex20 a, tarn_complex20 b) {
    return complex_of<tarn_complex20>(widened(a) * widened(b));
}
}
