// Sines, cosines and tangents of degrees as gfortran's programs expect them: arguments are reduced
// exactly, and the angles with exact values have those, with the signs of the zeros kept.
#pragma once

#include "intrinsics/numbers/wide_functions.h"

namespace tarn::intrinsics::numbers {

template <class Wide>
inline constexpr Wide radians_in_one_degree =
    static_cast<Wide>(0.017453292519943295769236907684886127134Q);

// Of 0 to 90 degrees. From 45 on, the other function of the rest, which is exact.
template <class Wide>
Wide sine_in_quadrant(Wide degrees) {
    if (degrees == 30) return static_cast<Wide>(0.5);
    if (degrees > 45) return cosine_of((90 - degrees) * radians_in_one_degree<Wide>);
    return sine_of(degrees * radians_in_one_degree<Wide>);
}

template <class Wide>
Wide with_sign_of(Wide magnitude, bool negative) {
    return negative ? -magnitude : magnitude;
}

template <class Wide>
bool is_negative(Wide x) {
    return __builtin_signbit(x) != 0;
}

// What has no angle: a NaN.
template <class Wide>
bool has_angle(Wide degrees) {
    return degrees - degrees == 0;
}

template <class Wide>
Wide gnu_sine(Wide degrees) {
    if (!has_angle(degrees)) return degrees - degrees;
    bool negative = is_negative(degrees);
    Wide rest = remainder_by(absolute_value(degrees), Wide{360});
    if (rest >= 180) {
        rest -= 180;
        negative = !negative;
    }
    if (rest > 90) rest = 180 - rest;
    return with_sign_of(sine_in_quadrant(rest), negative);
}

template <class Wide>
Wide gnu_cosine(Wide degrees) {
    if (!has_angle(degrees)) return degrees - degrees;
    Wide rest = remainder_by(absolute_value(degrees), Wide{360});
    if (rest >= 180) rest = 360 - rest;
    const bool negative = rest > 90;
    if (negative) rest = 180 - rest;
    return with_sign_of(sine_in_quadrant(90 - rest), negative);
}

template <class Wide>
Wide gnu_tangent(Wide degrees) {
    if (!has_angle(degrees)) return degrees - degrees;
    bool negative = is_negative(degrees);
    Wide rest = remainder_by(absolute_value(degrees), Wide{360});
    // The pole of the third quadrant is met from below.
    if (rest == 270) negative = !negative;
    if (rest >= 180) rest -= 180;
    if (rest > 90) {
        rest = 180 - rest;
        negative = !negative;
    }
    if (rest == 90) return with_sign_of(Wide{std::numeric_limits<Real10>::infinity()}, negative);
    if (rest == 45) return with_sign_of(Wide{1}, negative);
    // Beside the pole, the distance from it decides.
    const bool steep = rest > 45;
    const Wide slope = tangent_of((steep ? 90 - rest : rest) * radians_in_one_degree<Wide>);
    return with_sign_of(steep ? 1 / slope : slope, negative);
}

}  // namespace tarn::intrinsics::numbers
