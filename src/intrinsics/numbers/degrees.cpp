#include "intrinsics/numbers/degrees.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

#include "intrinsics/numbers/elementary.h"

namespace tarn::intrinsics::numbers {
namespace {

constexpr long double pi = std::numbers::pi_v<long double>;
constexpr long double infinity = std::numeric_limits<long double>::infinity();
constexpr long double radians_in_degree = pi / 180;
constexpr long double degrees_in_radian = 180 / pi;

// The sine near 180 and the cosine near 90 are taken where they are small numbers' sines: x times
// pi loses what x still had there, and differences from 180 and 90 are exact.
long double plain_sine(long double degrees) {
    if (std::fabs(degrees) > 90) degrees = std::copysign(180, degrees) - degrees;
    return std::sin(degrees * radians_in_degree);
}
long double plain_cosine(long double degrees) {
    const long double size = std::fabs(degrees);
    if (size < 45) return std::cos(size * radians_in_degree);
    return std::sin((90 - size) * radians_in_degree);
}

// 0 to below 2.
long double within_turn(long double half_turns) {
    return half_turns - 2 * std::floor(half_turns / 2);
}

}  // namespace

long double reduced_degrees(long double x) {
    const long double nearest = std::rint(x);
    constexpr long double end = 9223372036854775808.0L;
    // Larger numbers have no fraction, and those that aren't finite have no turns.
    if (!(std::fabs(nearest) < end)) return std::remainder(x, 360.0L);
    const auto whole = static_cast<std::int64_t>(nearest);
    std::int64_t turned = whole % 360;
    if (turned < 0) turned += 360;
    if (turned > 180) turned -= 360;
    return x + static_cast<long double>(turned - whole);
}

long double reduced_half_turns(long double x) {
    long double size = std::fabs(x);
    long double whole = std::round(size);
    if (whole > 1) {
        if (std::fmod(whole, 2.0L) != 0) {
            whole -= 1;
        } else if (size > 2 || (x < 0 && size == 2)) {
            whole -= 2;
        }
        size -= whole;
    }
    return x < 0 ? 2 - size : size;
}

long double clean_result(long double value) {
    constexpr long double nothing = 5E-16L;
    const long double size = std::fabs(value);
    if (size < nothing) return 0;
    if (std::fabs(1 - size) < nothing) return std::copysign(1.0L, value);
    return value;
}

long double sine_of_degrees(long double& x) {
    x = reduced_degrees(x);
    if (std::fabs(x) == 30) return std::copysign(0.5L, x);
    return clean_result(plain_sine(x));
}

long double cosine_of_degrees(long double& x) {
    x = reduced_degrees(x);
    if (std::fabs(x) == 60) return 0.5L;
    return clean_result(plain_cosine(x));
}

long double tangent_of_degrees(long double& x) {
    x = reduced_degrees(x);
    if (std::fabs(x) == 90) return std::copysign(infinity, x);
    const long double cosine = plain_cosine(x);
    return clean_result(plain_sine(x) / cosine);
}

long double sine_of_half_turns(long double& x) {
    x = reduced_half_turns(x);
    return clean_result(plain_sine(std::remainder(x, 2.0L) * 180));
}

long double cosine_of_half_turns(long double& x) {
    x = reduced_half_turns(x);
    return clean_result(plain_cosine(std::remainder(x, 2.0L) * 180));
}

long double tangent_of_half_turns(long double& x) {
    x = reduced_half_turns(x);
    const long double turn = within_turn(x);
    if (turn == 0 || turn == 1) return 0;
    if (turn == 0.25L || turn == 1.25L) return 1;
    if (turn == 0.5L) return infinity;
    if (turn == 1.5L) return -infinity;
    const long double degrees = std::remainder(x, 2.0L) * 180;
    return plain_sine(degrees) / plain_cosine(degrees);
}

long double arc_sine_in_degrees(long double x) {
    return arc_sine(x) * degrees_in_radian;
}
long double arc_cosine_in_degrees(long double x) {
    return arc_cosine(x) * degrees_in_radian;
}
long double arc_tangent_in_degrees(long double x) {
    return std::atan(x) * degrees_in_radian;
}
long double arc_tangent_in_degrees(long double y, long double x) {
    return arc_tangent(y, x) * degrees_in_radian;
}
long double arc_sine_in_half_turns(long double x) {
    return arc_sine(x) / pi;
}
long double arc_cosine_in_half_turns(long double x) {
    return arc_cosine(x) / pi;
}
long double arc_tangent_in_half_turns(long double x) {
    return std::atan(x) / pi;
}
long double arc_tangent_in_half_turns(long double y, long double x) {
    return arc_tangent(y, x) / pi;
}

}  // namespace tarn::intrinsics::numbers
