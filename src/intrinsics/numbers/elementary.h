// Elementary functions in 80 bits with the failures that native programs expect. A REAL*4 or REAL*8
// result is one of these rounded, so that it is within 0.51 of its last place.
#pragma once

#include <cmath>

namespace tarn::intrinsics::numbers {

// 0 and below are failure 34.
long double natural_logarithm(long double x);
long double decimal_logarithm(long double x);
long double binary_logarithm(long double x);

// Arguments below -708.25 give 0; those from 709.5 up are failure 25.
long double exponential(long double x);
// The same for REAL*10, from -11355 to 11356.5.
long double exponential_extended(long double x);

// A magnitude above 1 is failure 26.
long double arc_sine(long double x);
long double arc_cosine(long double x);
// Both arguments 0 is failure 33.
long double arc_tangent(long double y, long double x);

// A magnitude above 11356.523406294144 is failure 20.
long double hyperbolic_sine(long double x);
long double hyperbolic_cosine(long double x);

// These have no failures.
inline long double sine(long double x) {
    return std::sin(x);
}
inline long double cosine(long double x) {
    return std::cos(x);
}
inline long double tangent(long double x) {
    return std::tan(x);
}
inline long double arc_tangent(long double x) {
    return std::atan(x);
}
inline long double hyperbolic_tangent(long double x) {
    return std::tanh(x);
}

}  // namespace tarn::intrinsics::numbers
