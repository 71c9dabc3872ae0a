// The procedures of gfortran's modules ieee_arithmetic and ieee_exceptions. Its flags have the
// processor's bits. A flag is raised in the SSE unit, where it doesn't trap: compiled code looks at
// both units, and a flag of the x87's would trap at some later instruction.
#include <cfloat>
#include <cstdint>
#include <cstring>
#include <xmmintrin.h>

#include "frame/debug_info.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/float_unit.h"

namespace tarn::gcc {
namespace {

using Logical = std::int32_t;
// IEEE_CLASS_TYPE, IEEE_FLAG_TYPE and IEEE_ROUND_TYPE hold a number.
using Number = std::int32_t;

// ---- Classes ----

enum Class : Number {
    other_value,
    signaling_nan,
    quiet_nan,
    negative_infinity,
    negative_normal,
    negative_subnormal,
    negative_zero,
    positive_zero,
    positive_subnormal,
    positive_normal,
    positive_infinity,
};

template <class Real>
struct Format;
template <>
struct Format<float> {
    using Bits = std::uint32_t;
    static constexpr int fraction = 23;
};
template <>
struct Format<double> {
    using Bits = std::uint64_t;
    static constexpr int fraction = 52;
};
template <>
struct Format<__float128> {
    using Bits = unsigned __int128;
    static constexpr int fraction = 112;
};

template <class Real>
Number class_of(const Real& x) {
    using Bits = typename Format<Real>::Bits;
    constexpr int width = 8 * sizeof(Bits);
    constexpr int fraction = Format<Real>::fraction;
    Bits bits;
    std::memcpy(&bits, &x, sizeof bits);
    const bool negative = bits >> (width - 1) != 0;
    constexpr Bits top_exponent = (Bits{1} << (width - 1 - fraction)) - 1;
    const Bits exponent = bits >> fraction & top_exponent;
    const Bits rest = bits & ((Bits{1} << fraction) - 1);
    if (exponent == top_exponent) {
        if (rest == 0) return negative ? negative_infinity : positive_infinity;
        return (rest >> (fraction - 1)) != 0 ? quiet_nan : signaling_nan;
    }
    if (exponent != 0) return negative ? negative_normal : positive_normal;
    if (rest != 0) return negative ? negative_subnormal : positive_subnormal;
    return negative ? negative_zero : positive_zero;
}

// The x87 writes its numbers' highest bit. A number that lacks it where it should be there is
// refused by the processor, as a signaling NaN is.
Number class_of(const long double& x) {
    std::uint64_t fraction = 0;
    std::uint16_t top = 0;
    std::memcpy(&fraction, &x, sizeof fraction);
    std::memcpy(&top, reinterpret_cast<const char*>(&x) + sizeof fraction, sizeof top);
    constexpr std::uint16_t top_exponent = 0x7FFF;
    const bool negative = (top & 0x8000) != 0;
    const std::uint16_t exponent = top & top_exponent;
    const bool leading = fraction >> 63 != 0;
    if (exponent != 0 && !leading) return signaling_nan;
    if (exponent == top_exponent) {
        if (fraction << 1 == 0) return negative ? negative_infinity : positive_infinity;
        return (fraction >> 62 & 1) != 0 ? quiet_nan : signaling_nan;
    }
    if (leading) return negative ? negative_normal : positive_normal;
    if (fraction != 0) return negative ? negative_subnormal : positive_subnormal;
    return negative ? negative_zero : positive_zero;
}

// A number of a class: 42 for normal ones, half the smallest normal number for the subnormal.
template <class Real>
Real value_of(Number wanted, Real infinity, Real quiet, Real signaling, Real smallest) {
    switch (wanted) {
        case signaling_nan:
            return signaling;
        case quiet_nan:
            return quiet;
        case negative_infinity:
            return -infinity;
        case negative_normal:
            return -42;
        case negative_subnormal:
            return -smallest / 2;
        case negative_zero:
            return -Real{0};
        case positive_subnormal:
            return smallest / 2;
        case positive_normal:
            return 42;
        case positive_infinity:
            return infinity;
        default:
            return 0;
    }
}

// ---- The units' state ----

constexpr std::uint32_t flag_bits = platform::fp_all;
constexpr int sse_masks_shift = 7;
constexpr std::uint32_t sse_rounding = 0x6000;
constexpr std::uint16_t x87_rounding = 0x0C00;
constexpr std::uint32_t flush_to_zero = 0x8000;

void load_x87(std::uint16_t word) {
    __asm__ volatile("fldcw %0" : : "m"(word));
}

// The x87's flags go over to the SSE unit, so that a word for the x87 may be loaded.
void take_over_flags() {
    const std::uint32_t flags = platform::pending_exceptions();
    __asm__ volatile("fnclex");
    _mm_setcsr(_mm_getcsr() | flags);
}

void set_flags(std::uint32_t which, bool raised) {
    which &= flag_bits;
    take_over_flags();
    const std::uint32_t others = _mm_getcsr() & ~which;
    _mm_setcsr(raised ? others | which : others);
}

bool traps(std::uint32_t which) {
    const std::uint32_t masked =
        platform::control_word() & (platform::sse_control() >> sse_masks_shift);
    return (which & flag_bits & ~masked) != 0;
}

void set_traps(std::uint32_t which, bool wanted) {
    frame::ensure_up();
    which &= flag_bits;
    // Who asks for a trap on underflow wants to be told, not to have it repaired.
    if (wanted && (which & (platform::fp_underflow | platform::fp_denormal)) != 0)
        frame::debug_info().permit_underflow = 0;
    take_over_flags();
    const std::uint32_t x87 = platform::control_word();
    const std::uint32_t sse = platform::sse_control();
    load_x87(static_cast<std::uint16_t>(wanted ? x87 & ~which : x87 | which));
    which <<= sse_masks_shift;
    _mm_setcsr(wanted ? sse & ~which : sse | which);
}

// By the processor's two bits, which are the same in both units.
constexpr Number rounding_numbers[] = {2, 1, 4, 3};  // nearest, down, up, to zero

Number rounding() {
    return rounding_numbers[(platform::sse_control() & sse_rounding) >> 13];
}

void set_rounding(Number wanted) {
    std::uint32_t bits = 0;
    for (std::uint32_t i = 0; i < 4; ++i)
        if (rounding_numbers[i] == wanted) bits = i;
    take_over_flags();
    load_x87(static_cast<std::uint16_t>((platform::control_word() & ~x87_rounding) | bits << 10));
    _mm_setcsr((platform::sse_control() & ~sse_rounding) | bits << 13);
}

// Modes and flags, in the program's room for them, of 33 bytes.
struct Status {
    std::uint32_t sse;
    std::uint16_t x87;
};

void save(void* room) {
    take_over_flags();
    const Status status = {platform::sse_control(), platform::control_word()};
    std::memcpy(room, &status, sizeof status);
}

void restore(const void* room, std::uint32_t more_flags) {
    Status status;
    std::memcpy(&status, room, sizeof status);
    __asm__ volatile("fnclex");
    load_x87(status.x87);
    _mm_setcsr(status.sse | more_flags);
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

#define OF_KIND(kind, real, suffix, smallest)                                                     \
    TARN_EXPORT Number __ieee_arithmetic_MOD_ieee_class_##kind(const real* x) {                   \
        return class_of(*x);                                                                      \
    }                                                                                             \
    TARN_EXPORT real __ieee_arithmetic_MOD_ieee_value_##kind(const real*, const Number* wanted) { \
        return value_of<real>(*wanted, __builtin_inf##suffix(), __builtin_nan##suffix(""),        \
                              __builtin_nans##suffix(""), smallest);                              \
    }

// Everything is supported in every kind, but that numbers of the x87 and of software can't be
// flushed to zero.
#define SUPPORTED(module, name)                                  \
    TARN_EXPORT Logical __##module##_MOD_ieee_support_##name() { \
        return 1;                                                \
    }
#define SUPPORTED_FOR_ALL(module, name) \
    SUPPORTED(module, name##_4)         \
    SUPPORTED(module, name##_8)         \
    SUPPORTED(module, name##_10)        \
    SUPPORTED(module, name##_16)        \
    SUPPORTED(module, name##_noarg)
#define NOT_SUPPORTED(name)                                           \
    TARN_EXPORT Logical __ieee_arithmetic_MOD_ieee_support_##name() { \
        return 0;                                                     \
    }

extern "C" {

OF_KIND(4, float, f, FLT_MIN)
OF_KIND(8, double, , DBL_MIN)
OF_KIND(10, long double, l, LDBL_MIN)
OF_KIND(16, __float128, f128, LDBL_MIN)

TARN_EXPORT Logical __ieee_arithmetic_MOD_ieee_class_type_eq(const Number* x, const Number* y) {
    return *x == *y;
}
TARN_EXPORT Logical __ieee_arithmetic_MOD_ieee_class_type_ne(const Number* x, const Number* y) {
    return *x != *y;
}
TARN_EXPORT Logical __ieee_arithmetic_MOD_ieee_round_type_eq(const Number* x, const Number* y) {
    return *x == *y;
}
TARN_EXPORT Logical __ieee_arithmetic_MOD_ieee_round_type_ne(const Number* x, const Number* y) {
    return *x != *y;
}

SUPPORTED_FOR_ALL(ieee_arithmetic, datatype)
SUPPORTED_FOR_ALL(ieee_arithmetic, denormal)
SUPPORTED_FOR_ALL(ieee_arithmetic, divide)
SUPPORTED_FOR_ALL(ieee_arithmetic, inf)
SUPPORTED_FOR_ALL(ieee_arithmetic, io)
SUPPORTED_FOR_ALL(ieee_arithmetic, nan)
SUPPORTED_FOR_ALL(ieee_arithmetic, rounding)
SUPPORTED_FOR_ALL(ieee_arithmetic, sqrt)
SUPPORTED_FOR_ALL(ieee_arithmetic, standard)
SUPPORTED_FOR_ALL(ieee_arithmetic, subnormal)
SUPPORTED(ieee_arithmetic, underflow_control_4)
SUPPORTED(ieee_arithmetic, underflow_control_8)
NOT_SUPPORTED(underflow_control_10)
NOT_SUPPORTED(underflow_control_16)
NOT_SUPPORTED(underflow_control_noarg)
SUPPORTED_FOR_ALL(ieee_exceptions, flag)
SUPPORTED(ieee_exceptions, halting)

int _gfortran_selected_real_kind2008(const int* precision, const int* range, const int* radix);
TARN_EXPORT int __ieee_arithmetic_MOD_ieee_selected_real_kind(const int* precision,
                                                              const int* range, const int* radix) {
    return _gfortran_selected_real_kind2008(precision, range, radix);
}

TARN_EXPORT void __ieee_arithmetic_MOD_ieee_get_rounding_mode(Number* mode) {
    *mode = rounding();
}
TARN_EXPORT void __ieee_arithmetic_MOD_ieee_set_rounding_mode(const Number* mode) {
    set_rounding(*mode);
}
TARN_EXPORT void __ieee_arithmetic_MOD_ieee_get_underflow_mode(Logical* gradual) {
    *gradual = (_mm_getcsr() & flush_to_zero) == 0;
}
TARN_EXPORT void __ieee_arithmetic_MOD_ieee_set_underflow_mode(const Logical* gradual) {
    const std::uint32_t others = _mm_getcsr() & ~flush_to_zero;
    _mm_setcsr(*gradual != 0 ? others : others | flush_to_zero);
}

TARN_EXPORT extern const Number __ieee_exceptions_MOD_ieee_usual[3];
TARN_EXPORT extern const Number __ieee_exceptions_MOD_ieee_all[5];
const Number __ieee_exceptions_MOD_ieee_usual[3] = {
    tarn::platform::fp_overflow, tarn::platform::fp_zero_divide, tarn::platform::fp_invalid};
const Number __ieee_exceptions_MOD_ieee_all[5] = {
    tarn::platform::fp_overflow, tarn::platform::fp_zero_divide, tarn::platform::fp_invalid,
    tarn::platform::fp_underflow, tarn::platform::fp_precision};

TARN_EXPORT void __ieee_exceptions_MOD_ieee_get_flag(const Number* flag, Logical* raised) {
    *raised = (tarn::platform::pending_exceptions() & *flag) != 0;
}
TARN_EXPORT void __ieee_exceptions_MOD_ieee_set_flag(const Number* flag, const Logical* raised) {
    set_flags(static_cast<std::uint32_t>(*flag), *raised != 0);
}
TARN_EXPORT void __ieee_exceptions_MOD_ieee_get_halting_mode(const Number* flag, Logical* halts) {
    *halts = traps(static_cast<std::uint32_t>(*flag));
}
TARN_EXPORT void __ieee_exceptions_MOD_ieee_set_halting_mode(const Number* flag,
                                                             const Logical* halts) {
    set_traps(static_cast<std::uint32_t>(*flag), *halts != 0);
}
TARN_EXPORT void __ieee_exceptions_MOD_ieee_get_status(void* status) {
    save(status);
}
TARN_EXPORT void __ieee_exceptions_MOD_ieee_set_status(const void* status) {
    restore(status, 0);
}

// Around a procedure that uses the modules: it starts with quiet flags, and its caller finds those
// of both, and its own modes.
TARN_EXPORT void _gfortran_ieee_procedure_entry(void* room) {
    save(room);
    tarn::platform::clear_exceptions();
}
TARN_EXPORT void _gfortran_ieee_procedure_exit(const void* room) {
    restore(room, tarn::platform::pending_exceptions());
}
}
