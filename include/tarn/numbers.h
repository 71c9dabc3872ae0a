/* Powers, elementary and special functions, rounding, bits and kinds, as compiled Fortran calls
 * them.
 *
 * Entries of one family differ only in their types, so each family is a list: a row has the name
 * and the types that its entry takes and gives. ENTRY stands for what is made of a row; here it is
 * a declaration. Names that end in `##` take values, those in `#` and `$` addresses; entries with
 * two leading underscores take values.
 *
 * A failure of the catalogue ends the program, with its number and sentence on standard error. */
#ifndef TARN_NUMBERS_H
#define TARN_NUMBERS_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* COMPLEX*8, *16 and *20; REAL*10 is long double. */
/* NOLINTBEGIN(modernize-use-using): this header is C. */
typedef __complex__ float tarn_complex8;
typedef __complex__ double tarn_complex16;
typedef __complex__ long double tarn_complex20;
/* NOLINTEND(modernize-use-using) */

/* ---- Powers. ---------------------------------------------------------------------------------
 * XX, a letter for the base, one for the exponent: H INTEGER*1, I INTEGER*2, J INTEGER*4,
 * K INTEGER*8, R REAL*4, D REAL*8, X REAL*10, C COMPLEX*8, Z COMPLEX*16, W COMPLEX*20. */

/* Integers, in the width of the wider one. Failure 2: the result doesn't fit. Failure 21: 0 to the
 * power of 0 or less. A negative exponent gives 0 unless the base is 1 or -1.
 * Rows: name, result, base, exponent. */
#define TARN_INTEGER_POWERS(ENTRY)       \
    ENTRY(HH, int8_t, int8_t, int8_t)    \
    ENTRY(HI, int16_t, int8_t, int16_t)  \
    ENTRY(IH, int16_t, int16_t, int8_t)  \
    ENTRY(II, int16_t, int16_t, int16_t) \
    ENTRY(HJ, int32_t, int8_t, int32_t)  \
    ENTRY(JH, int32_t, int32_t, int8_t)  \
    ENTRY(IJ, int32_t, int16_t, int32_t) \
    ENTRY(JI, int32_t, int32_t, int16_t) \
    ENTRY(JJ, int32_t, int32_t, int32_t) \
    ENTRY(KK, int64_t, int64_t, int64_t) \
    ENTRY(WW, int64_t, int64_t, int64_t)

/* Reals to an integer power, by multiplications in 80 bits; of a negative power the base is
 * inverted first. Failure 21: 0 to the power of 0 or less. Rows: name, base, exponent. */
#define TARN_REAL_POWERS(ENTRY)     \
    ENTRY(RH, float, int8_t)        \
    ENTRY(RI, float, int16_t)       \
    ENTRY(RJ, float, int32_t)       \
    ENTRY(DH, double, int8_t)       \
    ENTRY(DI, double, int16_t)      \
    ENTRY(DJ, double, int32_t)      \
    ENTRY(XH, long double, int8_t)  \
    ENTRY(XI, long double, int16_t) \
    ENTRY(XJ, long double, int32_t) \
    ENTRY(XK, long double, int64_t)

/* Anything to a real power. Failure 36: a base below 0, whatever the exponent. Failure 21: 0 to the
 * power of 0 or less. Failure 1: a result above the largest REAL*8; one below the smallest normal
 * REAL*8 is 0. (XX: the largest REAL*10, and 2^-16384.) Rows: name, base, exponent. */
#define TARN_GENERAL_POWERS(ENTRY) \
    ENTRY(RR, float, float)        \
    ENTRY(RD, float, double)       \
    ENTRY(DR, double, float)       \
    ENTRY(DD, double, double)      \
    ENTRY(HR, int8_t, float)       \
    ENTRY(HD, int8_t, double)      \
    ENTRY(IR, int16_t, float)      \
    ENTRY(ID, int16_t, double)     \
    ENTRY(JR, int32_t, float)      \
    ENTRY(JD, int32_t, double)     \
    ENTRY(XX, long double, long double)

/* Complex numbers to an integer power, by multiplications in the width of the parts; of a negative
 * power the base is inverted first, unscaled. The power 0 gives 1. Rows: name, base, exponent. */
#define TARN_COMPLEX_INTEGER_POWERS(ENTRY) \
    ENTRY(CH, tarn_complex8, int8_t)       \
    ENTRY(CI, tarn_complex8, int16_t)      \
    ENTRY(CJ, tarn_complex8, int32_t)      \
    ENTRY(CK, tarn_complex8, int64_t)      \
    ENTRY(ZH, tarn_complex16, int8_t)      \
    ENTRY(ZI, tarn_complex16, int16_t)     \
    ENTRY(ZJ, tarn_complex16, int32_t)     \
    ENTRY(ZK, tarn_complex16, int64_t)     \
    ENTRY(WH, tarn_complex20, int8_t)      \
    ENTRY(WI, tarn_complex20, int16_t)     \
    ENTRY(WJ, tarn_complex20, int32_t)     \
    ENTRY(WK, tarn_complex20, int64_t)

/* EXP(w * LOG(z)), in the wider complex type. z = 0 gives 0, but failure 21 when w is 0 too.
 * Rows: name, result, base, exponent. */
#define TARN_COMPLEX_POWERS(ENTRY)                            \
    ENTRY(HC, tarn_complex8, int8_t, tarn_complex8)           \
    ENTRY(IC, tarn_complex8, int16_t, tarn_complex8)          \
    ENTRY(JC, tarn_complex8, int32_t, tarn_complex8)          \
    ENTRY(RC, tarn_complex8, float, tarn_complex8)            \
    ENTRY(CR, tarn_complex8, tarn_complex8, float)            \
    ENTRY(CC, tarn_complex8, tarn_complex8, tarn_complex8)    \
    ENTRY(RZ, tarn_complex16, float, tarn_complex16)          \
    ENTRY(DZ, tarn_complex16, double, tarn_complex16)         \
    ENTRY(ZR, tarn_complex16, tarn_complex16, float)          \
    ENTRY(ZD, tarn_complex16, tarn_complex16, double)         \
    ENTRY(CZ, tarn_complex16, tarn_complex8, tarn_complex16)  \
    ENTRY(ZC, tarn_complex16, tarn_complex16, tarn_complex8)  \
    ENTRY(HZ, tarn_complex16, int8_t, tarn_complex16)         \
    ENTRY(IZ, tarn_complex16, int16_t, tarn_complex16)        \
    ENTRY(JZ, tarn_complex16, int32_t, tarn_complex16)        \
    ENTRY(DC, tarn_complex16, double, tarn_complex8)          \
    ENTRY(CD, tarn_complex16, tarn_complex8, double)          \
    ENTRY(ZZ, tarn_complex16, tarn_complex16, tarn_complex16) \
    ENTRY(RW, tarn_complex20, float, tarn_complex20)          \
    ENTRY(WR, tarn_complex20, tarn_complex20, float)          \
    ENTRY(DW, tarn_complex20, double, tarn_complex20)         \
    ENTRY(WD, tarn_complex20, tarn_complex20, double)         \
    ENTRY(XW, tarn_complex20, long double, tarn_complex20)    \
    ENTRY(WX, tarn_complex20, tarn_complex20, long double)    \
    ENTRY(HW, tarn_complex20, int8_t, tarn_complex20)         \
    ENTRY(IW, tarn_complex20, int16_t, tarn_complex20)        \
    ENTRY(JW, tarn_complex20, int32_t, tarn_complex20)        \
    ENTRY(CW, tarn_complex20, tarn_complex8, tarn_complex20)  \
    ENTRY(WC, tarn_complex20, tarn_complex20, tarn_complex8)  \
    ENTRY(ZW, tarn_complex20, tarn_complex16, tarn_complex20) \
    ENTRY(WZ, tarn_complex20, tarn_complex20, tarn_complex16) \
    ENTRY(WW, tarn_complex20, tarn_complex20, tarn_complex20)

#define TARN_DECLARE_INTEGER_POWER(name, Result, Base, Exponent) \
    Result XX##name##_hh(Base base, Exponent exponent) TARN_LINK_NAME("XX" #name "##");
#define TARN_DECLARE_REAL_POWER(name, Base, Exponent) \
    long double XX##name##_hh(Base base, Exponent exponent) TARN_LINK_NAME("XX" #name "##");
#define TARN_DECLARE_COMPLEX_INTEGER_POWER(name, Base, Exponent) \
    Base XX##name##_h(const Base* base, const Exponent* exponent) TARN_LINK_NAME("XX" #name "#");
#define TARN_DECLARE_COMPLEX_POWER(name, Result, Base, Exponent) \
    Result XX##name##_h(const Base* base, const Exponent* exponent) TARN_LINK_NAME("XX" #name "#");
TARN_INTEGER_POWERS(TARN_DECLARE_INTEGER_POWER)
TARN_REAL_POWERS(TARN_DECLARE_REAL_POWER)
TARN_GENERAL_POWERS(TARN_DECLARE_REAL_POWER)
TARN_COMPLEX_INTEGER_POWERS(TARN_DECLARE_COMPLEX_INTEGER_POWER)
TARN_COMPLEX_POWERS(TARN_DECLARE_COMPLEX_POWER)
#undef TARN_DECLARE_INTEGER_POWER
#undef TARN_DECLARE_REAL_POWER
#undef TARN_DECLARE_COMPLEX_INTEGER_POWER
#undef TARN_DECLARE_COMPLEX_POWER

/* General powers for C, which don't fail: errno becomes EDOM where the base is below 0, or 0 with
 * an exponent of 0 or less, and ERANGE where the result is too large; the value is then pow's. */
long double C_POWER_FUNCTION_hh(double base, double exponent) TARN_LINK_NAME("C_POWER_FUNCTION##");
long double C_POWER_FUNCTIONL_hh(long double base, long double exponent)
    TARN_LINK_NAME("C_POWER_FUNCTIONL##");

/* ---- Complex functions. ----------------------------------------------------------------------
 * C, CD and CX are COMPLEX*8, *16 and *20. CLOG and its like fail with 385 for 0.
 * Rows: name, function, type. */
#define TARN_COMPLEX_FUNCTIONS(ENTRY)     \
    ENTRY(CSIN, sin, tarn_complex8)       \
    ENTRY(CDSIN, sin, tarn_complex16)     \
    ENTRY(CXSIN, sin, tarn_complex20)     \
    ENTRY(CCOS, cos, tarn_complex8)       \
    ENTRY(CDCOS, cos, tarn_complex16)     \
    ENTRY(CXCOS, cos, tarn_complex20)     \
    ENTRY(CEXP, exp, tarn_complex8)       \
    ENTRY(CDEXP, exp, tarn_complex16)     \
    ENTRY(CXEXP, exp, tarn_complex20)     \
    ENTRY(CLOG, log, tarn_complex8)       \
    ENTRY(CDLOG, log, tarn_complex16)     \
    ENTRY(CXLOG, log, tarn_complex20)     \
    ENTRY(CSQRT, sqrt, tarn_complex8)     \
    ENTRY(CDSQR, sqrt, tarn_complex16)    \
    ENTRY(CXSQR, sqrt, tarn_complex20)    \
    ENTRY(CTAN, tan, tarn_complex8)       \
    ENTRY(CDTAN, tan, tarn_complex16)     \
    ENTRY(CSINH, sinh, tarn_complex8)     \
    ENTRY(CDSINH, sinh, tarn_complex16)   \
    ENTRY(CCOSH, cosh, tarn_complex8)     \
    ENTRY(CDCOSH, cosh, tarn_complex16)   \
    ENTRY(CTANH, tanh, tarn_complex8)     \
    ENTRY(CDTANH, tanh, tarn_complex16)   \
    ENTRY(CASIN, asin, tarn_complex8)     \
    ENTRY(CDASIN, asin, tarn_complex16)   \
    ENTRY(CACOS, acos, tarn_complex8)     \
    ENTRY(CDACOS, acos, tarn_complex16)   \
    ENTRY(CATAN, atan, tarn_complex8)     \
    ENTRY(CDATAN, atan, tarn_complex16)   \
    ENTRY(CASINH, asinh, tarn_complex8)   \
    ENTRY(CDASINH, asinh, tarn_complex16) \
    ENTRY(CACOSH, acosh, tarn_complex8)   \
    ENTRY(CDACOSH, acosh, tarn_complex16) \
    ENTRY(CATANH, atanh, tarn_complex8)   \
    ENTRY(CDATANH, atanh, tarn_complex16)

#define TARN_DECLARE_COMPLEX_FUNCTION(name, function, Type) \
    Type name##_h(const Type* z) TARN_LINK_NAME(#name "#");
TARN_COMPLEX_FUNCTIONS(TARN_DECLARE_COMPLEX_FUNCTION)
#undef TARN_DECLARE_COMPLEX_FUNCTION

/* Moduli, of two parts and of a COMPLEX*20. */
long double CABS_hX(long double re, long double im) TARN_LINK_NAME("CABS#X");
long double CABSCX_h(const tarn_complex20* z) TARN_LINK_NAME("CABSCX#");
/* a / b by the plain formula, unscaled; and a * b. */
tarn_complex20 CDIV_hh(tarn_complex20 a, tarn_complex20 b) TARN_LINK_NAME("CDIV##");
tarn_complex20 CMPY_hh(tarn_complex20 a, tarn_complex20 b) TARN_LINK_NAME("CMPY##");

/* ---- Elementary functions. -------------------------------------------------------------------
 * The 80-bit routines; failures where an argument lies outside the function's range. */
long double ALOG_hX(long double x) TARN_LINK_NAME("ALOG#X"); /* 34: 0 or below */
long double AL10_hX(long double x) TARN_LINK_NAME("AL10#X");
long double ALG2_hX(long double x) TARN_LINK_NAME("ALG2#X");
/* 25: from 709.5 up; below -708.25 the value is 0. EXPL: 11356.5 and -11355. */
long double EXP_hX(long double x) TARN_LINK_NAME("EXP#X");
long double EXPL_hX(long double x) TARN_LINK_NAME("EXPL#X");
long double ASIN_hX(long double x) TARN_LINK_NAME("ASIN#X"); /* 26: a magnitude above 1 */
long double ACOS_hX(long double x) TARN_LINK_NAME("ACOS#X");
/* 20: a magnitude above 11356.523406294144 */
long double SINH_hX(long double x) TARN_LINK_NAME("SINH#X");
long double COSH_hX(long double x) TARN_LINK_NAME("COSH#X");
long double DTN2_hX(long double y, long double x) TARN_LINK_NAME("DTN2#X"); /* 33: both 0 */

/* The same rounded to REAL*4 and REAL*8. ALOG1 and DLOG1 have base 10, ALOG2 and DLOG2 base 2.
 * A square root has no test. Rows: name, type, function. */
#define TARN_ELEMENTARY_FUNCTIONS(ENTRY)    \
    ENTRY(ALOG, float, natural_logarithm)   \
    ENTRY(DLOG, double, natural_logarithm)  \
    ENTRY(ALOG1, float, decimal_logarithm)  \
    ENTRY(DLOG1, double, decimal_logarithm) \
    ENTRY(ALOG2, float, binary_logarithm)   \
    ENTRY(DLOG2, double, binary_logarithm)  \
    ENTRY(EXP, float, exponential)          \
    ENTRY(DEXP, double, exponential)        \
    ENTRY(SIN, float, sine)                 \
    ENTRY(DSIN, double, sine)               \
    ENTRY(COS, float, cosine)               \
    ENTRY(DCOS, double, cosine)             \
    ENTRY(TAN, float, tangent)              \
    ENTRY(DTAN, double, tangent)            \
    ENTRY(ATAN, float, arc_tangent)         \
    ENTRY(DATAN, double, arc_tangent)       \
    ENTRY(ASIN, float, arc_sine)            \
    ENTRY(DASIN, double, arc_sine)          \
    ENTRY(ACOS, float, arc_cosine)          \
    ENTRY(DACOS, double, arc_cosine)        \
    ENTRY(SINH, float, hyperbolic_sine)     \
    ENTRY(DSINH, double, hyperbolic_sine)   \
    ENTRY(COSH, float, hyperbolic_cosine)   \
    ENTRY(DCOSH, double, hyperbolic_cosine) \
    ENTRY(TANH, float, hyperbolic_tangent)  \
    ENTRY(DTANH, double, hyperbolic_tangent)

#define TARN_DECLARE_FUNCTION(name, Real, function) \
    Real name##_h(const Real* x) TARN_LINK_NAME(#name "#");
TARN_ELEMENTARY_FUNCTIONS(TARN_DECLARE_FUNCTION)

float ATAN2_h(const float* y, const float* x) TARN_LINK_NAME("ATAN2#");
double DATN2_h(const double* y, const double* x) TARN_LINK_NAME("DATN2#");
float SQRT_h(const float* x) TARN_LINK_NAME("SQRT#");
double DSQRT_h(const double* x) TARN_LINK_NAME("DSQRT#");
/* sqrt(x^2 + y^2), unscaled in 80 bits. */
float HYPOT_h(const float* x, const float* y) TARN_LINK_NAME("HYPOT#");
double HYPOTR8_h(const double* x, const double* y) TARN_LINK_NAME("HYPOTR8#");
double DHYPOT_h(const double* x, const double* y) TARN_LINK_NAME("DHYPOT#");
/* The root of the sum of squares, which is taken in the elements' type. Failure 453: a REAL*4
 * result that doesn't fit. */
float NORM2_h(const float* values, intptr_t count) TARN_LINK_NAME("NORM2#");
double DNORM2_h(const double* values, intptr_t count) TARN_LINK_NAME("DNORM2#");

/* ---- Truncation and sign. --------------------------------------------------------------------
 * The Fortran functions of these names. H, I and J are INTEGER*1, *2 and *4, D is REAL*8. Halves
 * are rounded away from 0; what doesn't fit an integer becomes the lowest. Failure 32: a remainder
 * by 0. */
#define TARN_TRUNCATIONS(ENTRY)    \
    ENTRY(AINT, float, truncated)  \
    ENTRY(DINT, double, truncated) \
    ENTRY(ANINT, float, rounded)   \
    ENTRY(DNINT, double, rounded)
TARN_TRUNCATIONS(TARN_DECLARE_FUNCTION)
#undef TARN_DECLARE_FUNCTION

/* Rows: name, result, type. */
#define TARN_NEAREST_INTEGERS(ENTRY) \
    ENTRY(ININT, int16_t, float)     \
    ENTRY(IDNIN, int16_t, double)    \
    ENTRY(JNINT, int32_t, float)     \
    ENTRY(JDNIN, int32_t, double)
#define TARN_DECLARE_CONVERSION(name, Result, Value) \
    Result name##_h(const Value* x) TARN_LINK_NAME(#name "#");
TARN_NEAREST_INTEGERS(TARN_DECLARE_CONVERSION)
#undef TARN_DECLARE_CONVERSION

/* Rows: name, type, function. */
#define TARN_MAGNITUDES(ENTRY)     \
    ENTRY(HABS, int8_t, absolute)  \
    ENTRY(IABS, int16_t, absolute) \
    ENTRY(JABS, int32_t, absolute) \
    ENTRY(ABS, float, absolute)    \
    ENTRY(DABS, double, absolute)
#define TARN_DECLARE_UNARY(name, Value, function) \
    Value name##_h(const Value* x) TARN_LINK_NAME(#name "#");
TARN_MAGNITUDES(TARN_DECLARE_UNARY)
#undef TARN_DECLARE_UNARY

#define TARN_BINARY_FUNCTIONS(ENTRY)          \
    ENTRY(AMOD, float, remainder_of)          \
    ENTRY(DMOD, double, remainder_of)         \
    ENTRY(JMOD, int32_t, remainder_of)        \
    ENTRY(MODULORX, long double, modulo)      \
    ENTRY(HSIGN, int8_t, with_sign)           \
    ENTRY(ISIGN, int16_t, with_sign)          \
    ENTRY(JSIGN, int32_t, with_sign)          \
    ENTRY(SIGN, float, with_sign)             \
    ENTRY(DSIGN, double, with_sign)           \
    ENTRY(DIM, float, positive_difference)    \
    ENTRY(DDIM, double, positive_difference)  \
    ENTRY(HDIM, int8_t, positive_difference)  \
    ENTRY(IDIM, int16_t, positive_difference) \
    ENTRY(JDIM, int32_t, positive_difference) \
    ENTRY(NEARESTR4, float, nearest)          \
    ENTRY(NEARESTR8, double, nearest)         \
    ENTRY(NEARESTRX, long double, nearest)
#define TARN_DECLARE_BINARY(name, Value, function) \
    Value name##_h(const Value* x, const Value* y) TARN_LINK_NAME(#name "#");
TARN_BINARY_FUNCTIONS(TARN_DECLARE_BINARY)
#undef TARN_DECLARE_BINARY

/* NEAREST: the next number in the direction of the second argument's sign; 0 there is failure
 * 384. MODULO: the remainder with the sign of the divisor. */
double NEAREST_hh(double x, double direction) TARN_LINK_NAME("NEAREST##");
double MODULO_hh(double x, double y) TARN_LINK_NAME("MODULO##");

tarn_complex8 CONJ_h(const tarn_complex8* z) TARN_LINK_NAME("CONJ#");
tarn_complex16 DCONJ_h(const tarn_complex16* z) TARN_LINK_NAME("DCONJ#");
float AIMAG_h(const tarn_complex8* z) TARN_LINK_NAME("AIMAG#");
double DIMAG_h(const tarn_complex16* z) TARN_LINK_NAME("DIMAG#");
double DPROD_h(const float* x, const float* y) TARN_LINK_NAME("DPROD#");

/* ---- Degrees and units of pi. ----------------------------------------------------------------
 * The REAL*10 forms leave the reduced argument behind: -180 to 180 degrees, or less than one turn
 * and a quarter in units of pi. Results within 5E-16 of 0, 1 or -1 become that; the tangent of 90
 * degrees is infinite. Failure 26: ASIN or ACOS of a magnitude above 1. Failure 33: ATAN2 of two
 * zeros. Rows: name, function. */
#define TARN_FORWARD_ANGLES(ENTRY)     \
    ENTRY(SIND, sine_of_degrees)       \
    ENTRY(COSD, cosine_of_degrees)     \
    ENTRY(TAND, tangent_of_degrees)    \
    ENTRY(SINPI, sine_of_half_turns)   \
    ENTRY(COSPI, cosine_of_half_turns) \
    ENTRY(TANPI, tangent_of_half_turns)
#define TARN_INVERSE_ANGLES(ENTRY)          \
    ENTRY(ASIND, arc_sine_in_degrees)       \
    ENTRY(ACOSD, arc_cosine_in_degrees)     \
    ENTRY(ATAND, arc_tangent_in_degrees)    \
    ENTRY(ASINPI, arc_sine_in_half_turns)   \
    ENTRY(ACOSPI, arc_cosine_in_half_turns) \
    ENTRY(ATANPI, arc_tangent_in_half_turns)
#define TARN_ANGLES_OF_TWO(ENTRY)             \
    ENTRY(ATAN2D, arc_tangent_in_degrees)     \
    ENTRY(ATAN2PI, arc_tangent_in_half_turns) \
    ENTRY(ATAN2V, arc_tangent)
#define TARN_DECLARE_FORWARD_ANGLE(name, function)                     \
    double D##name##_d(const double* x) TARN_LINK_NAME("D" #name "$"); \
    long double X##name##_d(long double* x) TARN_LINK_NAME("X" #name "$");
#define TARN_DECLARE_INVERSE_ANGLE(name, function)                     \
    double D##name##_d(const double* x) TARN_LINK_NAME("D" #name "$"); \
    long double X##name##_d(const long double* x) TARN_LINK_NAME("X" #name "$");
#define TARN_DECLARE_ANGLE_OF_TWO(name, function)                                       \
    double D##name##_d(const double* y, const double* x) TARN_LINK_NAME("D" #name "$"); \
    long double X##name##_d(const long double* y, const long double* x)                 \
        TARN_LINK_NAME("X" #name "$");
TARN_FORWARD_ANGLES(TARN_DECLARE_FORWARD_ANGLE)
TARN_INVERSE_ANGLES(TARN_DECLARE_INVERSE_ANGLE)
TARN_ANGLES_OF_TWO(TARN_DECLARE_ANGLE_OF_TWO)
#undef TARN_DECLARE_FORWARD_ANGLE
#undef TARN_DECLARE_INVERSE_ANGLE
#undef TARN_DECLARE_ANGLE_OF_TWO

/* ---- Bits. -----------------------------------------------------------------------------------
 * Families have a member for INTEGER*1, *2, *4 and *8: H, I, J and Q.
 * Shifts: a count whose magnitude reaches the size gives 0 (SHIFTA too, which otherwise keeps the
 * sign); any other negative count is failure 457. Counts: leading and trailing zeros, bits set,
 * bits set modulo 2. Rows: name, function. */
#define TARN_INTEGER_TYPES(ENTRY, name, function) \
    ENTRY(H, name, int8_t, function)              \
    ENTRY(I, name, int16_t, function)             \
    ENTRY(J, name, int32_t, function)             \
    ENTRY(Q, name, int64_t, function)
#define TARN_SHIFTS(ENTRY)                         \
    TARN_INTEGER_TYPES(ENTRY, SHIFTL, shift_left)  \
    TARN_INTEGER_TYPES(ENTRY, SHIFTR, shift_right) \
    TARN_INTEGER_TYPES(ENTRY, SHIFTA, arithmetic_shift)
#define TARN_BIT_COUNTS(ENTRY)                        \
    TARN_INTEGER_TYPES(ENTRY, LEADZ, leading_zeros)   \
    TARN_INTEGER_TYPES(ENTRY, TRAILZ, trailing_zeros) \
    TARN_INTEGER_TYPES(ENTRY, POPCNT, population)     \
    TARN_INTEGER_TYPES(ENTRY, POPPAR, parity)
#define TARN_DECLARE_SHIFT(letter, name, Integer, function)              \
    Integer letter##name##_h(const Integer* value, const int32_t* count) \
        TARN_LINK_NAME(#letter #name "#");
#define TARN_DECLARE_BIT_COUNT(letter, name, Integer, function) \
    int32_t letter##name##_d(const Integer* value) TARN_LINK_NAME(#letter #name "$");
TARN_SHIFTS(TARN_DECLARE_SHIFT)
TARN_BIT_COUNTS(TARN_DECLARE_BIT_COUNT)
#undef TARN_DECLARE_SHIFT
#undef TARN_DECLARE_BIT_COUNT

/* The lowest `size` bits turn left by `shift`, or right by a negative one. Failure 217: a shift or
 * size outside the bits of the type; __ISHFTC takes any. */
int32_t __ISHFTC(int32_t value, int32_t shift, int32_t size);
int8_t __HISHFTC(int8_t value, int32_t shift, int32_t size);
int16_t __IISHFTC(int16_t value, int32_t shift, int32_t size);
int32_t __JISHFTC(int32_t value, int32_t shift, int32_t size);
int64_t __QISHFTC(int64_t value, int32_t shift, int32_t size);

/* `length` bits of `from` to a place in `to`. Failure 386: a place or length that is negative or
 * above the size. */
void MVBITSI1_h(const int8_t* from, const int32_t* from_place, const int32_t* length, int8_t* to,
                const int32_t* to_place) TARN_LINK_NAME("MVBITSI1#");
void MVBITSI2_h(const int16_t* from, const int32_t* from_place, const int32_t* length, int16_t* to,
                const int32_t* to_place) TARN_LINK_NAME("MVBITSI2#");
void MVBITSI4_h(const int32_t* from, const int32_t* from_place, const int32_t* length, int32_t* to,
                const int32_t* to_place) TARN_LINK_NAME("MVBITSI4#");

/* ---- Kinds. ----------------------------------------------------------------------------------
 * The plain forms number kinds from 1 by size; KIND1 knows INTEGER*8 as 4, KIND2 calls REAL*10 4,
 * and the A forms give bytes. -1: no such precision or range of integers; -2 no such range of
 * reals, -3 neither. A null pointer or the mark of an absent argument counts as 0. */
int32_t SELECTED_INT_KIND_h(const int32_t* range) TARN_LINK_NAME("SELECTED_INT_KIND#");
int32_t SELECTED_INT_KIND1_h(const int32_t* range) TARN_LINK_NAME("SELECTED_INT_KIND1#");
int32_t SELECTED_INT_KINDA_h(const int32_t* range) TARN_LINK_NAME("SELECTED_INT_KINDA#");
int32_t SELECTED_REAL_KIND_h(const int32_t* precision, const int32_t* range)
    TARN_LINK_NAME("SELECTED_REAL_KIND#");
int32_t SELECTED_REAL_KIND2_h(const int32_t* precision, const int32_t* range)
    TARN_LINK_NAME("SELECTED_REAL_KIND2#");
int32_t SELECTED_REAL_KINDA_h(const int32_t* precision, const int32_t* range)
    TARN_LINK_NAME("SELECTED_REAL_KINDA#");

/* ---- Special functions. ----------------------------------------------------------------------
 * For REAL*8 (D) and REAL*10 (X); results are REAL*10, in the range of the argument's type. The `$`
 * entries fail by the numbers below, those in `#` by 357 with the routine's name. How close results
 * are is told in docs/accuracy.md. No failure of the catalogue that speaks of lost precision can
 * happen, since none is lost.
 *
 * GAMMA        469 at 0, 470 at negative integers, 472 overflow, 473 underflow
 * LOG_GAMMA    476 for 0 and below (`#` has values there, and fails at 0 and negative integers),
 *              477 overflow
 * BESSEL_Y0    491 for 0 and below;  BESSEL_Y1 492, and 493 overflow
 * BESSEL_JN    489 for an order or argument below 0
 * BESSEL_YN    483 the same, 484 at 0, 485 overflow
 * ACOSH        495 below 1;  ATANH 496 from a magnitude of 1 up
 *
 * Rows: name, the function of `$`, the function of `#`. */
#define TARN_SPECIAL_FUNCTIONS(ENTRY)                                                            \
    ENTRY(ERF, error_function, error_function)                                                   \
    ENTRY(ERFC, complementary_error_function, complementary_error_function)                      \
    ENTRY(ERFC_SCALED, scaled_complementary_error_function, scaled_complementary_error_function) \
    ENTRY(GAMMA, gamma_function, gamma_function)                                                 \
    ENTRY(LOG_GAMMA, logarithm_of_gamma, logarithm_of_gamma_magnitude)                           \
    ENTRY(BESSEL_J0, bessel_j0, bessel_j0)                                                       \
    ENTRY(BESSEL_J1, bessel_j1, bessel_j1)                                                       \
    ENTRY(BESSEL_Y0, bessel_y0, bessel_y0)                                                       \
    ENTRY(BESSEL_Y1, bessel_y1, bessel_y1)                                                       \
    ENTRY(ASINH, inverse_hyperbolic_sine, inverse_hyperbolic_sine)                               \
    ENTRY(ACOSH, inverse_hyperbolic_cosine, inverse_hyperbolic_cosine)                           \
    ENTRY(ATANH, inverse_hyperbolic_tangent, inverse_hyperbolic_tangent)
#define TARN_DECLARE_SPECIAL(name, by_number, as_library)                        \
    long double D##name##_d(const double* x) TARN_LINK_NAME("D" #name "$");      \
    long double X##name##_d(const long double* x) TARN_LINK_NAME("X" #name "$"); \
    long double D##name##_h(const double* x) TARN_LINK_NAME("D" #name "#");
TARN_SPECIAL_FUNCTIONS(TARN_DECLARE_SPECIAL)
#undef TARN_DECLARE_SPECIAL

/* The inverse hyperbolic functions of REAL*4, with the failures of `$` and `#`. */
#define TARN_SPECIAL_FUNCTIONS_OF_REAL4(ENTRY) \
    ENTRY(ASINH, inverse_hyperbolic_sine)      \
    ENTRY(ACOSH, inverse_hyperbolic_cosine)    \
    ENTRY(ATANH, inverse_hyperbolic_tangent)
#define TARN_DECLARE_SPECIAL(name, function)                          \
    long double name##_dd(const float* x) TARN_LINK_NAME(#name "$$"); \
    long double name##_h(const float* x) TARN_LINK_NAME(#name "#");
TARN_SPECIAL_FUNCTIONS_OF_REAL4(TARN_DECLARE_SPECIAL)
#undef TARN_DECLARE_SPECIAL

/* Bessel functions of an order; the forms in X store those of all orders from `first` to `last`. */
#define TARN_BESSEL_FUNCTIONS(ENTRY) \
    ENTRY(BESSEL_JN, bessel_jn)      \
    ENTRY(BESSEL_YN, bessel_yn)
#define TARN_DECLARE_BESSEL(name, function)                                                        \
    long double D##name##_d(const int32_t* order, const double* x) TARN_LINK_NAME("D" #name "$");  \
    long double X##name##_d(const int32_t* order, const long double* x)                            \
        TARN_LINK_NAME("X" #name "$");                                                             \
    long double D##name##_h(const int32_t* order, const double* x) TARN_LINK_NAME("D" #name "#");  \
    void D##name##X_d(const int32_t* first, const int32_t* last, const double* x, double* results) \
        TARN_LINK_NAME("D" #name "X$");                                                            \
    void X##name##X_d(const int32_t* first, const int32_t* last, const long double* x,             \
                      long double* results) TARN_LINK_NAME("X" #name "X$");
TARN_BESSEL_FUNCTIONS(TARN_DECLARE_BESSEL)
#undef TARN_DECLARE_BESSEL

#ifdef __cplusplus
}
#endif

#endif
