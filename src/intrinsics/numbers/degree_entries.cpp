// The entries of trigonometry in degrees and units of pi. What each does is told in
// include/tarn/numbers.h.
#include "frame/link_name.h"
#include "intrinsics/numbers/degrees.h"
#include "intrinsics/numbers/elementary.h"
#include "tarn/numbers.h"

using namespace tarn::intrinsics::numbers;

#define FORWARD_ANGLE(name, function)                     \
    TARN_EXPORT double D##name##_d(const double* x) {     \
        long double reduced = *x;                         \
        return static_cast<double>(function(reduced));    \
    }                                                     \
    TARN_EXPORT long double X##name##_d(long double* x) { \
        return function(*x);                              \
    }
#define INVERSE_ANGLE(name, function)                                       \
    TARN_EXPORT double D##name##_d(const double* x) {                       \
        return static_cast<double>(function(static_cast<long double>(*x))); \
    }                                                                       \
    TARN_EXPORT long double X##name##_d(const long double* x) {             \
        return function(*x);                                                \
    }
#define ANGLE_OF_TWO(name, function)                                                  \
    TARN_EXPORT double D##name##_d(const double* y, const double* x) {                \
        return static_cast<double>(function(*y, *x));                                 \
    }                                                                                 \
    TARN_EXPORT long double X##name##_d(const long double* y, const long double* x) { \
        return function(*y, *x);                                                      \
    }

extern "C" {

TARN_FORWARD_ANGLES(FORWARD_ANGLE)
TARN_INVERSE_ANGLES(INVERSE_ANGLE)
TARN_ANGLES_OF_TWO(ANGLE_OF_TWO)
}
