#include "intrinsics/numbers/powers.h"

#include <cerrno>
#include <cmath>
#include <limits>

#include "intrinsics/numbers/complex_functions.h"
#include "platform/kernel/float_unit.h"

namespace tarn::intrinsics::numbers {
namespace {

// A result below this becomes 0. In REAL*10 that is where the exponent of 2 passes -16384, which
// denormal numbers still could hold.
long double smallest(PowerRange range) {
    return range == PowerRange::real8 ? std::numeric_limits<double>::min()
                                      : std::numeric_limits<long double>::min() / 4;
}
long double largest(PowerRange range) {
    return range == PowerRange::real8 ? std::numeric_limits<double>::max()
                                      : std::numeric_limits<long double>::max();
}

}  // namespace

// y * log2(x) rounded to 80 bits would cost large results their last bit in REAL*8; the C library
// carries the logarithm further. The range is judged by the result.
Power power(long double base, long double exponent, PowerRange range) {
    if (base == 0) {
        if (std::isnan(exponent)) return {exponent, no_failure};
        return {0, exponent > 0 ? no_failure : zero_to_power};
    }
    if (base < 0) return {0, negative_to_power};
    const platform::MaskedFloat masked;
    const long double value = std::pow(base, exponent);
    if (value > largest(range)) return {value, floating_overflow};
    return {value < smallest(range) ? 0 : value, no_failure};
}

long double power_or_failure(long double base, long double exponent, PowerRange range) {
    const Power result = power(base, exponent, range);
    if (result.failure != no_failure) fail(result.failure);
    return result.value;
}

long double c_power(long double base, long double exponent, PowerRange range) {
    const Power result = power(base, exponent, range);
    if (result.failure == no_failure) return result.value;
    const platform::MaskedFloat masked;
    const long double value = std::pow(base, exponent);
    const bool overflow = result.failure == floating_overflow;
    errno = overflow ? ERANGE : EDOM;
    return overflow ? std::numeric_limits<long double>::infinity() : value;
}

Pair<long double> complex_power(const Pair<long double>& base, const Pair<long double>& exponent) {
    if (base.re == 0 && base.im == 0) {
        if (exponent.re == 0 && exponent.im == 0) fail(zero_to_power);
        return {0, 0};
    }
    return complex_exp(exponent * complex_log(base));
}

}  // namespace tarn::intrinsics::numbers
