// The square root of the C library, which has a value for negative arguments.
#include <cerrno>
#include <cmath>

#include "frame/link_name.h"

namespace {

constexpr int negative_root = -1002;  // in errno
constexpr double recovery = 1.0e308;

template <typename Real>
Real square_root(Real value, Real of_negative) {
    if (value == 0) return 0;
    if (value < 0) {
        errno = negative_root;
        return of_negative;
    }
    return std::sqrt(value);
}

}  // namespace

extern "C" {

TARN_EXPORT double tarn_sqrt(double value) {
    return square_root(value, recovery);
}
TARN_EXPORT long double tarn_sqrtl(long double value) {
    return square_root(value, 1.0e308L);
}

// For compiled code that has met a negative argument itself.
TARN_EXPORT double __sqrt_recovery() {
    errno = negative_root;
    return recovery;
}
}
