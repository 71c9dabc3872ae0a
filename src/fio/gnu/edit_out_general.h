// Where a G field turns from one form to another. gfortran's run-time compares the value with
// limits that it computes in the arithmetic of the item's own type: 10^n (1 - r / 10^d), where r
// is what the rounding can add to the last digit. So do we, to choose as its programs know it even
// where a limit was itself rounded.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tarn::fio {

// 10^n as gfortran's run-time computes it in the type of an item: by repeated multiplication, and
// one division for n below 0.
template <typename Real>
Real power_of_ten(std::int64_t n) {
    Real power = 1;
    for (std::int64_t i = n < 0 ? -n : n; i > 0; --i) power *= 10;
    return n < 0 ? 1 / power : power;
}

template <typename Real>
Real load_magnitude(const void* item) {
    Real value;
    std::memcpy(&value, item, sizeof value);
    return value < 0 ? -value : value;
}

template <typename Real>
struct General {
    // The powers of ten that the type holds exactly.
    static constexpr int most = sizeof(Real) == 4              ? 10
                                : sizeof(Real) == 8            ? 22
                                : __is_same(Real, long double) ? 27
                                                               : 48;
    static constexpr std::array<Real, most + 1> tens = [] {
        std::array<Real, most + 1> table{};
        table[0] = 1;
        for (std::size_t i = 1; i < table.size(); ++i) table[i] = table[i - 1] * 10;
        return table;
    }();
    // What a limit is multiplied by when the last digit is rounded to nearest.
    static constexpr std::array<Real, most + 1> nearest_scales = [] {
        std::array<Real, most + 1> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            table[i] = static_cast<Real>(1 - static_cast<Real>(0.5) / tens[i]);
        }
        return table;
    }();

    // Whether the value is too small or too great for d digits without an exponent.
    static bool needs_exponent(Real value, Real r, Real scale, Real limit) {
        if (value < static_cast<Real>(0.1 * scale)) return true;
        return r < 1 ? r >= limit - value : 1 > limit - value;
    }

    // The digits before the point under rounding to nearest, or -1 where the exponent is shown.
    // d lies from 1 to `most`; `point` is the value's own, value = 0.d1d2... x 10^point.
    static int digits_before(Real value, int point, int d) {
        return digits_before(value, point, d, static_cast<Real>(0.5),
                             nearest_scales[static_cast<std::size_t>(d)]);
    }

    static int digits_before(Real value, int point, int d, Real r, Real scale) {
        if (needs_exponent(value, r, scale, tens[static_cast<std::size_t>(d)])) return -1;
        // The rounding may reach the next power.
        const int before = point < 0 ? 0 : point;
        const bool reaches =
            before < d &&
            value >= static_cast<Real>(tens[static_cast<std::size_t>(before)] * scale);
        return before + (reaches ? 1 : 0);
    }

    // The same for any d.
    static std::int64_t digits_before_slowly(Real value, std::int64_t d, Real r) {
        const Real limit = power_of_ten<Real>(d);
        const Real scale = 1 - r / limit;
        if (needs_exponent(value, r, scale, limit)) return -1;
        std::int64_t low = 0;
        std::int64_t high = d + 1;
        while (high - low > 1) {
            const std::int64_t middle = (low + high) / 2;
            if (value < static_cast<Real>(power_of_ten<Real>(middle - 1) * scale)) {
                high = middle;
            } else {
                low = middle;
            }
        }
        return low;
    }
};

}  // namespace tarn::fio
