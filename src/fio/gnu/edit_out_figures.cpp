#include "fio/gnu/edit_out_figures.h"

#include <algorithm>
#include <cstring>

#include "fio/gnu/edit_out_general.h"

namespace tarn::fio {

namespace {

// The digits behind those shown on which a rounding of the text works; what lies further out was
// rounded to nearest before.
std::int64_t guard_digits(int kind) {
    return 2 * kind + 4;
}

bool text_rounds_up(const DecimalDigits& number, std::int64_t keep, bool negative, Rounding round) {
    const auto made = static_cast<std::int64_t>(number.count);
    if (keep >= made) return false;
    switch (round) {
        case Rounding::up:
            return !negative;
        case Rounding::down:
            return negative;
        case Rounding::zero:
            return false;
        default:
            break;
    }
    if (keep < 0) return false;
    const char next = number.digits[keep];
    if (next != '5' || round == Rounding::compatible || keep + 1 < made) return next >= '5';
    return keep != 0 && (number.digits[keep - 1] & 1) != 0;
}

// Whether gfortran's run-time leaves digits standing behind the last one shown, so that a field of
// no digits doesn't count as a zero.
bool cuts_unseen(const DecimalDigits& number, std::int64_t keep, bool negative, Rounding round) {
    switch (round) {
        case Rounding::up:
            return negative;
        case Rounding::down:
            return !negative;
        case Rounding::zero:
            return true;
        case Rounding::compatible:
            return false;
        default:
            return keep >= 0 && keep + 1 == static_cast<std::int64_t>(number.count) &&
                   number.digits[keep] == '5' && !text_rounds_up(number, keep, negative, round);
    }
}

// Keeps the first `keep` digits of a text whose last digit isn't '0'. With none to keep a carry
// becomes a digit of its own, one place above the one that was cut.
void round_text(DecimalDigits& number, std::int64_t keep, bool negative, Rounding round) {
    if (number.count == 0 || keep >= static_cast<std::int64_t>(number.count)) return;
    const bool up = text_rounds_up(number, keep, negative, round);
    if (keep < 0) {
        number.point -= static_cast<std::int32_t>(keep);
        keep = 0;
    }
    number.count = static_cast<std::size_t>(keep);
    if (!up) return;
    while (number.count != 0 && number.digits[number.count - 1] == '9') --number.count;
    if (number.count != 0) {
        ++number.digits[number.count - 1];
        return;
    }
    number.digits[0] = '1';
    number.count = 1;
    ++number.point;
}

void drop_trailing_zeros(DecimalDigits& number) {
    while (number.count != 0 && number.digits[number.count - 1] == '0') --number.count;
}

// `count` significant digits and the guard digits behind them.
DecimalDigits guarded_digits(const BinaryReal& value, int kind, std::int64_t count, char* buffer) {
    const auto made = static_cast<std::size_t>(count + guard_digits(kind));
    DecimalDigits number = significant_digits(value, made, Rounding::nearest, buffer);
    drop_trailing_zeros(number);
    return number;
}

// `count` significant digits under a rounding mode.
DecimalDigits shown_digits(const BinaryReal& value, int kind, std::int64_t count, Rounding round,
                           char* buffer) {
    if (!rounds_text(round)) {
        return significant_digits(value, static_cast<std::size_t>(count), Rounding::nearest,
                                  buffer);
    }
    DecimalDigits number = guarded_digits(value, kind, count, buffer);
    round_text(number, count, value.negative, round);
    return number;
}

// The exponent by which gfortran's run-time chooses how many digits of an EN field to make: that of
// the value rounded to one digit, corrected when a 9.5 or more has become 10. The comparison is
// made in the arithmetic of the item's type, so that far from 1 it can miss.
template <typename Real>
std::int32_t guessed_exponent(const void* item, const DecimalDigits& one) {
    const Real value = load_magnitude<Real>(item);
    const std::int32_t exponent = one.point - 1;
    if (*one.digits != '1') return exponent;
    const Real scaled = power_of_ten<Real>(-exponent) * value;
    return 1 - scaled > 0 ? exponent - 1 : exponent;
}

std::int32_t guessed_exponent(const BinaryReal& value, const void* item, int kind) {
    char digit[1];
    const DecimalDigits one = significant_digits(value, 1, Rounding::nearest, digit);
    switch (kind) {
        case 4:
            return guessed_exponent<float>(item, one);
        case 8:
            return guessed_exponent<double>(item, one);
        case 10:
            return guessed_exponent<long double>(item, one);
        default:
            return guessed_exponent<__float128>(item, one);
    }
}

Figures engineering_figures(const BinaryReal& value, const void* item, int kind, std::int64_t d,
                            Rounding round, char* buffer) {
    Figures figures;
    figures.letter = 'E';
    figures.before = 1;
    figures.after = d;
    if (value.significand == 0) return figures;
    const std::int64_t made = d + above_three(guessed_exponent(value, item, kind)) + 1;
    DecimalDigits number;
    if (rounds_text(round)) {
        number = guarded_digits(value, kind, made, buffer);
        round_text(number, d + above_three(number.point - 1) + 1, value.negative, round);
    } else {
        number =
            significant_digits(value, static_cast<std::size_t>(made), Rounding::nearest, buffer);
    }
    figures.before = above_three(number.point - 1) + 1;
    figures.exponent = number.point - static_cast<std::int32_t>(figures.before);
    figures.digits = number.digits;
    figures.made = number.count;
    return figures;
}

// What gfortran's run-time does to the digits of an F field as it shifts the point to the left past
// the first of them. `made`: digits behind the point.
void repeat_shift(DecimalDigits& number, std::int64_t made, std::int64_t d, std::int64_t scale) {
    const std::int64_t before = number.count == 0 ? 1 : std::max<std::int64_t>(number.point, 1);
    const std::int64_t zeros = -(before + scale);
    if (scale >= 0 || zeros <= 0) return;
    const std::int64_t all = before + made;
    const std::int64_t last = number.point + made;  // index of the digit behind the last
    if (zeros == d && d > 0) {
        // A zero comes in front, and the last digit but one gives way to the last.
        if (number.count == 0) return;
        const char lowest =
            last == static_cast<std::int64_t>(number.count) ? number.digits[number.count - 1] : '0';
        if (last == 1) {
            ++number.point;
            return;
        }
        const auto kept = static_cast<std::size_t>(last - 1);
        while (number.count < kept) number.digits[number.count++] = '0';
        number.count = kept;
        number.digits[kept - 1] = lowest;
        drop_trailing_zeros(number);
    } else if (zeros > d) {
        // All are replaced by a single 1 at the end, in front of what the last one was.
        const bool whole = number.count != 0 && last == static_cast<std::int64_t>(number.count);
        const char lowest = whole ? number.digits[number.count - 1] : '0';
        number.digits[0] = '1';
        number.digits[1] = lowest;
        number.count = 2;
        number.point = static_cast<std::int32_t>(2 - all - scale);
        if (all == 1) {
            number.digits[0] = lowest;
            number.count = 1;
            number.point = static_cast<std::int32_t>(-scale);
        }
        drop_trailing_zeros(number);
    }
}

}  // namespace

Figures fixed_figures(const BinaryReal& value, int kind, std::int64_t d, std::int64_t scale,
                      Rounding round, char* buffer) {
    Figures figures;
    const std::int64_t places = d + scale;
    DecimalDigits number{buffer, 0, 0};
    if (!rounds_text(round) && places >= 0) {
        if (value.significand != 0) {
            number = fraction_digits(value, static_cast<std::int32_t>(places), Rounding::nearest,
                                     buffer);
        }
    } else {
        if (!rounds_text(round)) round = Rounding::nearest;
        const std::int64_t made = std::max<std::int64_t>(places + guard_digits(kind), 0);
        if (value.significand != 0) {
            number =
                fraction_digits(value, static_cast<std::int32_t>(made), Rounding::nearest, buffer);
        }
        drop_trailing_zeros(number);
        repeat_shift(number, made, d, scale);
        if (value.significand != 0) {
            const std::int64_t keep = number.point + places;
            figures.cut_unseen =
                number.count != 0 && cuts_unseen(number, keep, value.negative, round);
            round_text(number, keep, value.negative, round);
        }
    }
    const std::int64_t point = number.point + scale;
    figures.digits = number.digits;
    figures.made = number.count;
    if (number.count == 0) {
        figures.zeros = d;
    } else if (point > 0) {
        figures.before = point;
        figures.after = d;
    } else {
        figures.zeros = std::min(d, -point);
        figures.after = d - figures.zeros;
    }
    return figures;
}

Figures exponent_figures(const BinaryReal& value, const void* item, int kind, Edit edit,
                         std::int64_t d, std::int64_t scale, Rounding round, char* buffer) {
    if (edit == Edit::EN) return engineering_figures(value, item, kind, d, round, buffer);
    if (edit == Edit::ES) scale = 1;
    Figures figures;
    figures.letter = edit == Edit::D ? 'D' : 'E';
    std::int64_t shown = d + 1;
    if (scale > 0) {
        figures.before = scale;
        figures.after = d - scale + 1;
    } else {
        figures.zeros = -scale;
        figures.after = d + scale;
        shown = d + scale;
    }
    if (value.significand == 0) return figures;
    const DecimalDigits number = shown_digits(value, kind, shown, round, buffer);
    figures.digits = number.digits;
    figures.made = number.count;
    figures.exponent = static_cast<std::int32_t>(number.point - scale);
    return figures;
}

}  // namespace tarn::fio
