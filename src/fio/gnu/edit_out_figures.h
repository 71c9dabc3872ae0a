// The digits of a REAL as an edit descriptor shows them: how many stand before the point, and the
// exponent. Shared by the sources of edit_out only.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/gnu/edit_out.h"
#include "fio/number/decimal.h"

namespace tarn::fio {

// A field's number: `before` digits, the point, `zeros` zeros, `after` digits, the exponent. The
// digits are taken from `digits`; where they end, zeros follow.
struct Figures {
    const char* digits = nullptr;
    std::size_t made = 0;
    std::int64_t before = 0;
    std::int64_t zeros = 0;
    std::int64_t after = 0;
    std::int32_t exponent = 0;
    char letter = 0;          // 'E', 'D'; 0: no exponent
    bool cut_unseen = false;  // digits were cut off by no rounding up or down
};

// Room for the digits of any value, with one in front for a carry.
inline constexpr std::size_t figures_room = max_significant_digits + 2;

// Whether gfortran's run-time rounds itself, on a text of more digits than the field shows,
// rather than leave it to the conversion.
constexpr bool rounds_text(Rounding round) {
    return round != Rounding::unspecified && round != Rounding::processor;
}

// F with `d` digits behind the point of value x 10^scale.
Figures fixed_figures(const BinaryReal& value, int kind, std::int64_t d, std::int64_t scale,
                      Rounding round, char* buffer);
// E, D, EN, ES; `d` and the scale factor have been checked.
Figures exponent_figures(const BinaryReal& value, const void* item, int kind, Edit edit,
                         std::int64_t d, std::int64_t scale, Rounding round, char* buffer);

// The digits of a kind that an edit descriptor without a d shows.
constexpr std::int32_t default_digits(int kind) {
    switch (kind) {
        case 4:
            return 9;
        case 8:
            return 17;
        case 10:
            return 21;
        default:
            return 36;
    }
}

// The width of a kind in list-directed output.
constexpr std::int32_t usual_width(int kind) {
    switch (kind) {
        case 4:
            return 16;
        case 8:
            return 25;
        case 10:
            return 30;
        default:
            return 45;
    }
}

// The digits before the point of an EN field, less one: the exponent above a multiple of three.
constexpr std::int32_t above_three(std::int32_t exponent) {
    const std::int32_t rest = exponent % 3;
    return rest < 0 ? rest + 3 : rest;
}

}  // namespace tarn::fio
