// Error, gamma and Bessel functions and the inverse hyperbolic ones, for REAL*8 and REAL*10.
//
// A REAL*8 argument is worked on in 80 bits, a REAL*10 one in 128. Near a zero of a Bessel function
// 80 bits aren't enough for REAL*8, and 128 are taken there too.
#pragma once

#include <cstdint>

namespace tarn::intrinsics::numbers {

// Why there is no value: the catalogue's number, and the name of the routine that is blamed.
struct Problem {
    int number;
    const char* routine;
};

// The value has more bits than the argument's type; its range is that type's.
struct Special {
    long double value;
    const Problem* problem = nullptr;  // null: the value is good
};

template <class Real>
Special error_function(Real x);
template <class Real>
Special complementary_error_function(Real x);
// exp(x^2) erfc(x); infinite where that is too large.
template <class Real>
Special scaled_complementary_error_function(Real x);
// Underflow is a problem as well: results below the smallest normal number.
template <class Real>
Special gamma_function(Real x);
// Of positive arguments.
template <class Real>
Special logarithm_of_gamma(Real x);
// Of |gamma|, for all arguments but the poles.
template <class Real>
Special logarithm_of_gamma_magnitude(Real x);

template <class Real>
Special bessel_j0(Real x);
template <class Real>
Special bessel_j1(Real x);
template <class Real>
Special bessel_y0(Real x);
template <class Real>
Special bessel_y1(Real x);
// Orders and arguments below 0 are problems; so is a result that overflows.
template <class Real>
Special bessel_jn(std::int32_t order, Real x);
template <class Real>
Special bessel_yn(std::int32_t order, Real x);

template <class Real>
Special inverse_hyperbolic_sine(Real x);
template <class Real>
Special inverse_hyperbolic_cosine(Real x);
template <class Real>
Special inverse_hyperbolic_tangent(Real x);

// Ends the program by the problem's own number, or by 357 with the routine of the published library
// that stands behind the function.
[[noreturn]] void fail_by_number(const Problem& problem);
[[noreturn]] void fail_as_library(const Problem& problem);

}  // namespace tarn::intrinsics::numbers
