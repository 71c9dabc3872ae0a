#include "intrinsics/numbers/special.h"

#include <string>
#include <string_view>
#include <type_traits>

#include "intrinsics/numbers/failures.h"
#include "intrinsics/numbers/wide_functions.h"
#include "platform/kernel/float_unit.h"

namespace tarn::intrinsics::numbers {
namespace {

constexpr Problem gamma_of_zero{469, "dgamma"};
constexpr Problem gamma_of_negative_integer{470, "dgamma"};
constexpr Problem gamma_overflows{472, "dgamma"};
constexpr Problem gamma_underflows{473, "dgamma"};
constexpr Problem log_gamma_below_zero{476, "dlgama"};
constexpr Problem log_gamma_overflows{477, "dlgama"};
constexpr Problem log_gamma_at_zero{469, "dlngam"};
constexpr Problem log_gamma_at_negative_integer{470, "dlngam"};
constexpr Problem y0_below_zero{491, "dbesy0"};
constexpr Problem y1_below_zero{492, "dbesy1"};
constexpr Problem y1_overflows{493, "dbesy1"};
constexpr Problem yn_out_of_range{483, "dbesyn"};
constexpr Problem yn_at_zero{484, "dbesyn"};
constexpr Problem yn_overflows{485, "dbesyn"};
constexpr Problem jn_out_of_range{489, "dbesjn"};
constexpr Problem acosh_below_one{acosh_out_of_range, "dacosh"};
constexpr Problem atanh_from_one{atanh_out_of_range, "datanh"};

// The type that a function of a Real is worked on in.
template <class Real>
using Wide = std::conditional_t<std::is_same_v<Real, double>, Real10, Real16>;

// Runs with the program's exceptions masked: what a working type meets on its way isn't the
// program's.
template <class Real, class Function>
long double worked(Function function, Real x) {
    const platform::MaskedFloat masked;
    return static_cast<long double>(function(static_cast<Wide<Real>>(x)));
}

// A Bessel function oscillates above its order, below an envelope that falls with the root of x;
// where it is much smaller, 80 bits have lost what cancels.
bool lost_bits(long double value, std::int32_t order, long double x) {
    if (!(x > order && x > 0.5L)) return false;
    constexpr long double much_smaller = 0x1p-7L;
    return value * value * x < much_smaller * much_smaller;
}

template <class Real, class Bessel>
long double bessel(Bessel function, std::int32_t order, Real x) {
    const platform::MaskedFloat masked;
    const auto value = static_cast<long double>(function(order, static_cast<Wide<Real>>(x)));
    if (std::is_same_v<Real, double> && lost_bits(value, order, x))
        return static_cast<long double>(function(order, static_cast<Real16>(x)));
    return value;
}

template <class Real>
long double bessel_j(std::int32_t order, Real x) {
    return bessel([](std::int32_t n, auto wide) { return bessel_j_of(n, wide); }, order, x);
}
template <class Real>
long double bessel_y(std::int32_t order, Real x) {
    return bessel([](std::int32_t n, auto wide) { return bessel_y_of(n, wide); }, order, x);
}

template <class Real>
bool overflows(long double value) {
    return std::fabs(value) > std::numeric_limits<Real>::max();
}

// What stands behind a catalogue sentence's routine, "GAMMA:x is zero".
std::string message_of(const Problem& problem) {
    const std::string_view sentence = failure::text(problem.number);
    const std::size_t colon = sentence.find(':');
    return std::string(colon == std::string_view::npos ? sentence : sentence.substr(colon + 1));
}

}  // namespace

template <class Real>
Special error_function(Real x) {
    return {worked([](auto wide) { return erf_of(wide); }, x)};
}
template <class Real>
Special complementary_error_function(Real x) {
    return {worked([](auto wide) { return erfc_of(wide); }, x)};
}
template <class Real>
Special scaled_complementary_error_function(Real x) {
    return {worked([](auto wide) { return scaled_erfc_of(wide); }, x)};
}

template <class Real>
Special gamma_function(Real x) {
    if (x == 0) return {0, &gamma_of_zero};
    if (x < 0 && x == std::floor(x)) return {0, &gamma_of_negative_integer};
    const long double value = worked([](auto wide) { return gamma_of(wide); }, x);
    if (overflows<Real>(value)) return {value, &gamma_overflows};
    if (std::fabs(value) < std::numeric_limits<Real>::min()) return {value, &gamma_underflows};
    return {value};
}

template <class Real>
Special logarithm_of_gamma(Real x) {
    if (x <= 0) return {0, &log_gamma_below_zero};
    return logarithm_of_gamma_magnitude(x);
}
template <class Real>
Special logarithm_of_gamma_magnitude(Real x) {
    if (x == 0) return {0, &log_gamma_at_zero};
    if (x < 0 && x == std::floor(x)) return {0, &log_gamma_at_negative_integer};
    const long double value = worked([](auto wide) { return log_gamma_of(wide); }, x);
    return {value, overflows<Real>(value) ? &log_gamma_overflows : nullptr};
}

template <class Real>
Special bessel_j0(Real x) {
    return {bessel_j(0, std::fabs(x))};
}
template <class Real>
Special bessel_j1(Real x) {
    const long double value = bessel_j(1, std::fabs(x));
    return {std::signbit(x) ? -value : value};
}
template <class Real>
Special bessel_y0(Real x) {
    if (x <= 0) return {0, &y0_below_zero};
    return {bessel_y(0, x)};
}
template <class Real>
Special bessel_y1(Real x) {
    if (x <= 0) return {0, &y1_below_zero};
    const long double value = bessel_y(1, x);
    return {value, overflows<Real>(value) ? &y1_overflows : nullptr};
}
template <class Real>
Special bessel_jn(std::int32_t order, Real x) {
    if (order < 0 || x < 0) return {0, &jn_out_of_range};
    return {bessel_j(order, x)};
}
template <class Real>
Special bessel_yn(std::int32_t order, Real x) {
    if (order < 0 || x < 0) return {0, &yn_out_of_range};
    if (x == 0) return {0, &yn_at_zero};
    const long double value = bessel_y(order, x);
    return {value, overflows<Real>(value) ? &yn_overflows : nullptr};
}

template <class Real>
Special inverse_hyperbolic_sine(Real x) {
    return {worked([](auto wide) { return asinh_of(wide); }, x)};
}
template <class Real>
Special inverse_hyperbolic_cosine(Real x) {
    if (x < 1) return {0, &acosh_below_one};
    return {worked([](auto wide) { return acosh_of(wide); }, x)};
}
template <class Real>
Special inverse_hyperbolic_tangent(Real x) {
    if (std::fabs(x) >= 1) return {0, &atanh_from_one};
    return {worked([](auto wide) { return atanh_of(wide); }, x)};
}

#define FOR_BOTH_TYPES(function)               \
    template Special function<double>(double); \
    template Special function<long double>(long double);
FOR_BOTH_TYPES(error_function)
FOR_BOTH_TYPES(complementary_error_function)
FOR_BOTH_TYPES(scaled_complementary_error_function)
FOR_BOTH_TYPES(gamma_function)
FOR_BOTH_TYPES(logarithm_of_gamma)
FOR_BOTH_TYPES(logarithm_of_gamma_magnitude)
FOR_BOTH_TYPES(bessel_j0)
FOR_BOTH_TYPES(bessel_j1)
FOR_BOTH_TYPES(bessel_y0)
FOR_BOTH_TYPES(bessel_y1)
FOR_BOTH_TYPES(inverse_hyperbolic_sine)
FOR_BOTH_TYPES(inverse_hyperbolic_cosine)
FOR_BOTH_TYPES(inverse_hyperbolic_tangent)
#undef FOR_BOTH_TYPES
template Special bessel_jn<double>(std::int32_t, double);
template Special bessel_jn<long double>(std::int32_t, long double);
template Special bessel_yn<double>(std::int32_t, double);
template Special bessel_yn<long double>(std::int32_t, long double);

void fail_by_number(const Problem& problem) {
    frame::ensure_up();
    failure::fail(problem.number, std::string("Error in call to ") + problem.routine + ": " +
                                      message_of(problem) + "\n");
}

void fail_as_library(const Problem& problem) {
    std::string routine = problem.routine;
    for (char& letter : routine)
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    frame::ensure_up();
    failure::fail(invalid_argument, "SLATEC " + routine + ": " + message_of(problem) + "\n");
}

}  // namespace tarn::intrinsics::numbers
