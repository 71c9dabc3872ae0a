#include "intrinsics/numbers/elementary.h"

#include <cmath>

#include "intrinsics/numbers/failures.h"

namespace tarn::intrinsics::numbers {
namespace {

void require_positive(long double x) {
    if (x <= 0) fail(log_out_of_range);
}

// Where the exponential ends: below -`zero` it is 0, from `overflow` up a failure.
struct ExponentialRange {
    long double zero;
    long double overflow;
};

long double exponential_in(const ExponentialRange& range, long double x) {
    if (x < -range.zero) return 0;
    if (x >= range.overflow) fail(exp_out_of_range);
    return std::exp(x);
}

void require_unit_interval(long double x) {
    if (std::fabs(x) > 1) fail(asin_out_of_range);
}

void require_hyperbolic(long double x) {
    if (std::fabs(x) > 11356.523406294144L) fail(sinh_out_of_range);
}

}  // namespace

long double natural_logarithm(long double x) {
    require_positive(x);
    return std::log(x);
}
long double decimal_logarithm(long double x) {
    require_positive(x);
    return std::log10(x);
}
long double binary_logarithm(long double x) {
    require_positive(x);
    return std::log2(x);
}

long double exponential(long double x) {
    return exponential_in({708.25L, 709.5L}, x);
}
long double exponential_extended(long double x) {
    return exponential_in({11355.0L, 11356.5L}, x);
}

long double arc_sine(long double x) {
    require_unit_interval(x);
    return std::asin(x);
}
long double arc_cosine(long double x) {
    require_unit_interval(x);
    return std::acos(x);
}
long double arc_tangent(long double y, long double x) {
    if (y == 0 && x == 0) fail(atan2_of_zeros);
    return std::atan2(y, x);
}

long double hyperbolic_sine(long double x) {
    require_hyperbolic(x);
    return std::sinh(x);
}
long double hyperbolic_cosine(long double x) {
    require_hyperbolic(x);
    return std::cosh(x);
}

}  // namespace tarn::intrinsics::numbers
