// The root of a sum of squares, which is taken in the type of the elements.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "intrinsics/numbers/failures.h"

namespace tarn::intrinsics::numbers {

template <class Real>
Real root_of_squares(Real sum) {
    const long double root = std::sqrt(static_cast<long double>(sum));
    if (sizeof(Real) == sizeof(float) && root > std::numeric_limits<float>::max())
        fail(norm_overflow);
    return static_cast<Real>(root);
}

template <class Real>
Real norm2(const Real* values, std::int64_t count) {
    Real sum = 0;
    for (std::int64_t i = 0; i < count; ++i) sum += values[i] * values[i];
    return root_of_squares(sum);
}

template <class Real>
Real hypotenuse(Real x, Real y) {
    const long double wide_x = x;
    const long double wide_y = y;
    return static_cast<Real>(std::sqrt(wide_x * wide_x + wide_y * wide_y));
}

}  // namespace tarn::intrinsics::numbers
