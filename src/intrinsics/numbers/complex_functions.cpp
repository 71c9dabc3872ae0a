#include "intrinsics/numbers/complex_functions.h"

#include <algorithm>
#include <cmath>

#include "intrinsics/numbers/failures.h"
#include "platform/kernel/float_unit.h"

namespace tarn::intrinsics::numbers {
namespace {

using Extended = __complex__ long double;

// Masked: the C library meets exceptions on its way that are none of the program's.
template <class Function>
ExtendedPair with(Function function, const ExtendedPair& z) {
    const platform::MaskedFloat mask;
    return pair_of(function(complex_of<Extended>(z)));
}

}  // namespace

ExtendedPair complex_log(const ExtendedPair& z) {
    if (z.re == 0 && z.im == 0) fail(complex_log_of_zero);
    return with([](Extended w) { return __builtin_clogl(w); }, z);
}
ExtendedPair complex_exp(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_cexpl(w); }, z);
}
ExtendedPair complex_sin(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_csinl(w); }, z);
}
ExtendedPair complex_cos(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_ccosl(w); }, z);
}
ExtendedPair complex_tan(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_ctanl(w); }, z);
}
ExtendedPair complex_sinh(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_csinhl(w); }, z);
}
ExtendedPair complex_cosh(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_ccoshl(w); }, z);
}
ExtendedPair complex_tanh(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_ctanhl(w); }, z);
}
ExtendedPair complex_asin(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_casinl(w); }, z);
}
ExtendedPair complex_acos(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_cacosl(w); }, z);
}
ExtendedPair complex_atan(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_catanl(w); }, z);
}
ExtendedPair complex_asinh(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_casinhl(w); }, z);
}
ExtendedPair complex_acosh(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_cacoshl(w); }, z);
}
ExtendedPair complex_atanh(const ExtendedPair& z) {
    return with([](Extended w) { return __builtin_catanhl(w); }, z);
}

ExtendedPair complex_sqrt(const ExtendedPair& z) {
    const long double modulus = std::sqrt(z.re * z.re + z.im * z.im);
    if (modulus == 0) return {0, 0};
    const long double root = std::sqrt((std::fabs(z.re) + modulus) * 0.5L);
    if (z.re >= 0) return {root, z.im / (2 * root)};
    return {std::fabs(z.im) / (2 * root), std::copysign(root, z.im)};
}

long double complex_modulus(const ExtendedPair& z) {
    const long double larger = std::max(std::fabs(z.re), std::fabs(z.im));
    const long double smaller = std::min(std::fabs(z.re), std::fabs(z.im));
    if (larger == 0) return 0;
    const long double ratio = smaller / larger;
    return larger * std::sqrt(ratio * ratio + 1);
}

}  // namespace tarn::intrinsics::numbers
