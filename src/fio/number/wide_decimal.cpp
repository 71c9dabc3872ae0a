#include "fio/number/wide_decimal.h"

#include <algorithm>
#include <cstring>

#include "fio/number/integer_digits.h"
#include "fio/number/natural.h"

namespace tarn::fio {

namespace {

// The value as a fraction, numerator / denominator x 10^point, with the fraction from 0.1 to
// below 1, so that a multiplication of the numerator by 10^n gives n digits (Steele and White, "How
// to Print Floating-Point Numbers Accurately", PLDI 1990). Powers of two that both have are left
// out.
class Fraction {
  public:
    explicit Fraction(const BinaryReal& value)
        : numerator_(value.significand), denominator_(1), point_(least_point(value)) {
        std::int32_t twos = value.exponent - point_;
        if (point_ > 0) {
            denominator_.multiply_by_power_of_five(static_cast<unsigned>(point_));
        } else {
            numerator_.multiply_by_power_of_five(static_cast<unsigned>(-point_));
        }
        if (twos < 0) {
            denominator_.shift_left(static_cast<std::size_t>(-twos));
            twos = 0;
        }
        if (Natural::compare(shifted(twos), denominator_) >= 0) {
            denominator_.multiply_add(10, 0);
            ++point_;
        }
        const std::size_t up = (64 - denominator_.bit_length() % 64) % 64;
        denominator_.shift_left(up);
        numerator_.shift_left(up);
    }

    std::int32_t point() const { return point_; }
    bool is_zero() const { return numerator_.is_zero(); }

    // The next n digits (1 to 19) as a number.
    Word next(int n) {
        numerator_.multiply_add(powers_of_ten[n], 0);
        return numerator_.divide(denominator_);
    }

    // Of what no digit has been taken from.
    Tail tail() const {
        if (numerator_.is_zero()) return Tail::zero;
        const int order = Natural::compare_double(numerator_, denominator_);
        return order < 0 ? Tail::below_half : order == 0 ? Tail::half : Tail::above_half;
    }

  private:
    const Natural& shifted(std::int32_t bits) {
        numerator_.shift_left(static_cast<std::size_t>(bits));
        return numerator_;
    }

    Natural numerator_;
    Natural denominator_;
    std::int32_t point_;
};

// Adds one to the last digit. All nines become a single 1 one place further up.
void carry_up(DecimalDigits& result) {
    while (result.count != 0 && result.digits[result.count - 1] == '9') --result.count;
    if (result.count != 0) {
        ++result.digits[result.count - 1];
        return;
    }
    result.digits[0] = '1';
    result.count = 1;
    ++result.point;
}

// `count` digits of the fraction, rounded behind them.
DecimalDigits take_digits(Fraction& fraction, std::size_t count, const BinaryReal& value,
                          Rounding round, char* buffer) {
    DecimalDigits result{buffer, 0, fraction.point()};
    while (result.count < count && !fraction.is_zero()) {
        const int n = static_cast<int>(std::min<std::size_t>(count - result.count, 19));
        put_digits(buffer + result.count, fraction.next(n), n);
        result.count += static_cast<std::size_t>(n);
    }
    const bool odd = result.count != 0 && (buffer[result.count - 1] & 1) != 0;
    if (rounds_up(fraction.tail(), odd, value.negative, round)) carry_up(result);
    return result;
}

}  // namespace

DecimalDigits wide_significant_digits(const BinaryReal& value, std::size_t count, Rounding round,
                                      char* buffer) {
    Fraction fraction(value);
    return take_digits(fraction, std::min(count, max_significant_digits), value, round, buffer);
}

DecimalDigits wide_fraction_digits(const BinaryReal& value, std::int32_t places, Rounding round,
                                   char* buffer) {
    const std::int64_t least = std::int64_t{least_point(value)} + places;
    if (least < -1) {  // below a tenth of the half
        const bool up = rounds_up(Tail::below_half, false, value.negative, round);
        if (up) buffer[0] = '1';
        return {buffer, up ? 1U : 0U, -places + (up ? 1 : 0)};
    }
    Fraction fraction(value);
    const std::int64_t count = std::int64_t{fraction.point()} + places;
    if (count < 0) {
        const bool up = rounds_up(Tail::below_half, false, value.negative, round);
        if (up) buffer[0] = '1';
        return {buffer, up ? 1U : 0U, -places + (up ? 1 : 0)};
    }
    const auto most = static_cast<std::int64_t>(max_significant_digits);
    DecimalDigits result = take_digits(fraction, static_cast<std::size_t>(std::min(count, most)),
                                       value, round, buffer);
    if (result.count == 0) result.point = -places;
    return result;
}

std::int32_t wide_point(const BinaryReal& value) {
    return Fraction(value).point();
}

}  // namespace tarn::fio
