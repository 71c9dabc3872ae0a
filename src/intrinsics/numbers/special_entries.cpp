// The entries of special functions. What each does is told in include/tarn/numbers.h.
#include "frame/link_name.h"
#include "intrinsics/numbers/special.h"
#include "tarn/numbers.h"

using namespace tarn::intrinsics::numbers;

namespace {

long double by_number(const Special& result) {
    if (result.problem != nullptr) fail_by_number(*result.problem);
    return result.value;
}
long double as_library(const Special& result) {
    if (result.problem != nullptr) fail_as_library(*result.problem);
    return result.value;
}

template <class Real, class Function>
void fill(Function function, std::int32_t first, std::int32_t last, Real x, Real* results) {
    // In 64 bits, so that the count ends after the largest order.
    for (std::int64_t order = first; order <= last; ++order)
        *results++ = static_cast<Real>(by_number(function(static_cast<std::int32_t>(order), x)));
}

}  // namespace

#define SPECIAL(name, numbered, library)                        \
    TARN_EXPORT long double D##name##_d(const double* x) {      \
        return by_number(numbered(*x));                         \
    }                                                           \
    TARN_EXPORT long double X##name##_d(const long double* x) { \
        return by_number(numbered(*x));                         \
    }                                                           \
    TARN_EXPORT long double D##name##_h(const double* x) {      \
        return as_library(library(*x));                         \
    }
#define SPECIAL_OF_REAL4(name, function)                      \
    TARN_EXPORT long double name##_dd(const float* x) {       \
        return by_number(function(static_cast<double>(*x)));  \
    }                                                         \
    TARN_EXPORT long double name##_h(const float* x) {        \
        return as_library(function(static_cast<double>(*x))); \
    }
#define BESSEL(name, function)                                                                     \
    TARN_EXPORT long double D##name##_d(const std::int32_t* order, const double* x) {              \
        return by_number(function(*order, *x));                                                    \
    }                                                                                              \
    TARN_EXPORT long double X##name##_d(const std::int32_t* order, const long double* x) {         \
        return by_number(function(*order, *x));                                                    \
    }                                                                                              \
    TARN_EXPORT long double D##name##_h(const std::int32_t* order, const double* x) {              \
        return as_library(function(*order, *x));                                                   \
    }                                                                                              \
    TARN_EXPORT void D##name##X_d(const std::int32_t* first, const std::int32_t* last,             \
                                  const double* x, double* results) {                              \
        fill([](auto order, auto at) { return function(order, at); }, *first, *last, *x, results); \
    }                                                                                              \
    TARN_EXPORT void X##name##X_d(const std::int32_t* first, const std::int32_t* last,             \
                                  const long double* x, long double* results) {                    \
        fill([](auto order, auto at) { return function(order, at); }, *first, *last, *x, results); \
    }

extern "C" {

TARN_SPECIAL_FUNCTIONS(SPECIAL)
TARN_SPECIAL_FUNCTIONS_OF_REAL4(SPECIAL_OF_REAL4)
TARN_BESSEL_FUNCTIONS(BESSEL)
}
