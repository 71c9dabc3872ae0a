// Complex functions in 80 bits. Branch cuts and the values of infinite arguments are the C
// library's; what native programs have otherwise is said here.
#pragma once

#include "intrinsics/numbers/complex_pairs.h"

namespace tarn::intrinsics::numbers {

using ExtendedPair = Pair<long double>;

// Both parts 0 is failure 385.
ExtendedPair complex_log(const ExtendedPair& z);
ExtendedPair complex_exp(const ExtendedPair& z);
// The argument's modulus unscaled, in 80 bits.
ExtendedPair complex_sqrt(const ExtendedPair& z);
ExtendedPair complex_sin(const ExtendedPair& z);
ExtendedPair complex_cos(const ExtendedPair& z);
ExtendedPair complex_tan(const ExtendedPair& z);
ExtendedPair complex_sinh(const ExtendedPair& z);
ExtendedPair complex_cosh(const ExtendedPair& z);
ExtendedPair complex_tanh(const ExtendedPair& z);
ExtendedPair complex_asin(const ExtendedPair& z);
ExtendedPair complex_acos(const ExtendedPair& z);
ExtendedPair complex_atan(const ExtendedPair& z);
ExtendedPair complex_asinh(const ExtendedPair& z);
ExtendedPair complex_acosh(const ExtendedPair& z);
ExtendedPair complex_atanh(const ExtendedPair& z);

// Scaled by the larger part.
long double complex_modulus(const ExtendedPair& z);

}  // namespace tarn::intrinsics::numbers
