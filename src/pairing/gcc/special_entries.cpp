// gfortran's special functions that it doesn't take from the C library: sequences of Bessel
// functions, the scaled error function, and trigonometry in degrees. Each is worked on in a wider
// type than its own, as far as there is one.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>
#include <type_traits>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/numbers/bessel_sequences.h"
#include "intrinsics/numbers/gnu_degrees.h"
#include "intrinsics/numbers/wide_functions.h"
#include "pairing/gcc/descriptor_runs.h"

namespace tarn::gcc {
namespace {

using namespace intrinsics::numbers;

constexpr int nonconformant = 389;
constexpr int out_of_memory = 408;

using r4 = float;
using r8 = double;
using r10 = Real10;
using r16 = Real16;

// The type that a function of a Real is worked on in.
template <class Real>
using Wide = std::conditional_t<(sizeof(Real) <= sizeof(double)), Real10, Real16>;

[[noreturn]] void fail_with(int number, const std::string& more) {
    frame::ensure_up();
    failure::fail(number, more);
}

// Makes room where the program has none yet; otherwise there must be exactly as much as is needed.
template <class Real>
void prepare_result(ArrayDescriptor& result, std::int64_t count) {
    Dimension& dimension = result.dimension[0];
    if (result.base != nullptr) {
        if (dimension.extent() == count) return;
        fail_with(nonconformant, "    The array for the orders has " +
                                     std::to_string(dimension.extent()) + " elements, and needs " +
                                     std::to_string(count) + "\n");
    }
    const auto bytes = static_cast<std::size_t>(std::max<std::int64_t>(count, 1)) * sizeof(Real);
    result.base = static_cast<char*>(std::malloc(bytes));
    if (result.base == nullptr) fail_with(out_of_memory, "");
    result.offset = 0;
    dimension = {1, 0, count - 1};
}

// The orders from n1 to n2; none where n2 is lower.
template <class Real, class Sequence>
void fill(ArrayDescriptor& result, std::int32_t n1, std::int32_t n2, Real x, Sequence sequence) {
    const std::int64_t count = std::max<std::int64_t>(std::int64_t{n2} - n1 + 1, 0);
    prepare_result<Real>(result, count);
    if (count == 0) return;
    sequence(n1, n2, static_cast<Wide<Real>>(x), [&](std::int64_t index, Wide<Real> value) {
        element<Real>(result, index) = static_cast<Real>(value);
    });
}

template <class Real>
void bessel_j(ArrayDescriptor& result, std::int32_t n1, std::int32_t n2, Real x) {
    fill(result, n1, n2, x, [](auto first, auto last, auto wide, auto store) {
        bessel_j_sequence(first, last, wide, store);
    });
}
template <class Real>
void bessel_y(ArrayDescriptor& result, std::int32_t n1, std::int32_t n2, Real x) {
    fill(result, n1, n2, x, [](auto first, auto last, auto wide, auto store) {
        bessel_y_sequence(first, last, wide, store);
    });
}

template <class Real, class Function>
Real worked_wide(Function function, Real x) {
    return static_cast<Real>(function(static_cast<Wide<Real>>(x)));
}

template <class Real>
Real erfc_scaled(Real x) {
    const auto value = scaled_erfc_of(static_cast<Wide<Real>>(x));
    // It grows without an end, and is infinite in silence.
    if constexpr (!std::is_same_v<Real, r16>)
        if (value > std::numeric_limits<Real>::max()) return std::numeric_limits<Real>::infinity();
    return static_cast<Real>(value);
}
template <class Real>
Real sine(Real x) {
    return worked_wide([](auto wide) { return gnu_sine(wide); }, x);
}
template <class Real>
Real cosine(Real x) {
    return worked_wide([](auto wide) { return gnu_cosine(wide); }, x);
}
template <class Real>
Real tangent(Real x) {
    return worked_wide([](auto wide) { return gnu_tangent(wide); }, x);
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

#define FOR_EACH_REAL(ENTRIES) ENTRIES(r4) ENTRIES(r8) ENTRIES(r10) ENTRIES(r16)

#define SPECIAL(real)                                                                     \
    TARN_EXPORT void _gfortran_bessel_jn_##real(ArrayDescriptor* result, std::int32_t n1, \
                                                std::int32_t n2, real x) {                \
        bessel_j(*result, n1, n2, x);                                                     \
    }                                                                                     \
    TARN_EXPORT void _gfortran_bessel_yn_##real(ArrayDescriptor* result, std::int32_t n1, \
                                                std::int32_t n2, real x) {                \
        bessel_y(*result, n1, n2, x);                                                     \
    }                                                                                     \
    TARN_EXPORT real _gfortran_erfc_scaled_##real(real x) {                               \
        return erfc_scaled(x);                                                            \
    }                                                                                     \
    TARN_EXPORT real _gfortran_sind_##real(real x) {                                      \
        return sine(x);                                                                   \
    }                                                                                     \
    TARN_EXPORT real _gfortran_cosd_##real(real x) {                                      \
        return cosine(x);                                                                 \
    }                                                                                     \
    TARN_EXPORT real _gfortran_tand_##real(real x) {                                      \
        return tangent(x);                                                                \
    }

extern "C" {
FOR_EACH_REAL(SPECIAL)
}
