#include <algorithm>
#include <cstring>

#include "fio/number/binary_format.h"
#include "fio/number/decimal.h"
#include "fio/number/integer_digits.h"
#include "fio/number/natural.h"
#include "fio/number/quick_binary.h"

namespace tarn::fio {

namespace {

// More digits than this don't move the value from one side of a halfway point to the other, apart
// from being there.
constexpr std::size_t most_digits = max_significant_digits + 2;

void append_digits(Natural& number, const char* digits, std::size_t count) {
    while (count != 0) {
        const std::size_t n = std::min<std::size_t>(count, 19);
        number.multiply_add(powers_of_ten[n], number_of_digits(digits, n));
        digits += n;
        count -= n;
    }
}

// Puts a normal value together, rounded to nearest. False for what is none.
template <typename Bits, int precision, int exponent_bits>
bool store_nearest(const ScaledDecimal& scaled, bool negative, void* target) {
    constexpr int top_exponent = (1 << exponent_bits) - 1;
    constexpr int bias = top_exponent / 2 + precision - 1;
    constexpr Word half = Word{1} << 63;
    const int drop = 64 - precision - static_cast<int>(scaled.significand >> 63 == 0);
    Word significand = scaled.significand >> drop;
    const Word rest = scaled.significand << (64 - drop);
    const bool odd_or_more = (significand & 1) != 0 || scaled.more;
    significand += rest > half || (rest == half && odd_or_more) ? 1 : 0;
    // A carry out of the significand raises the exponent field by itself.
    const int field = scaled.exponent + drop + bias;
    if (field < 1 || field >= top_exponent - 1) return false;
    const Bits bits =
        static_cast<Bits>(negative) << (8 * sizeof(Bits) - 1) |
        ((static_cast<Bits>(field - 1) << (precision - 1)) + static_cast<Bits>(significand));
    std::memcpy(target, &bits, sizeof bits);
    return true;
}

bool store_nearest(const ScaledDecimal& scaled, bool negative, int kind, void* target) {
    return kind == 8 ? store_nearest<std::uint64_t, 53, 11>(scaled, negative, target)
                     : store_nearest<std::uint32_t, 24, 8>(scaled, negative, target);
}

// REAL(4) and REAL(8) of up to 19 digits.
bool quick_to_binary(const DecimalNumber& number, Rounding round, int kind, void* target,
                     ConvertResult& result) {
    if (number.count > most_quick_input_digits) return false;
    ScaledDecimal scaled;
    if (!scale_decimal(number_of_digits(number.digits, number.count),
                       static_cast<int>(number.exponent), scaled)) {
        return false;
    }
    result = ConvertResult::ok;
    if (round <= Rounding::nearest && store_nearest(scaled, number.negative, kind, target)) {
        return true;
    }
    result = round_and_store(kind, number.negative, scaled.significand, scaled.exponent,
                             scaled.more, round, target);
    return true;
}

}  // namespace

ConvertResult wide_to_binary(const DecimalNumber& number, Rounding round, int kind, void* target) {
    const std::size_t count = std::min(number.count, most_digits);
    std::int64_t exponent = number.exponent + static_cast<std::int64_t>(number.count - count);
    Natural numerator;
    append_digits(numerator, number.digits, count);
    const char* const end = number.digits + number.count;
    if (std::any_of(number.digits + count, end, [](char digit) { return digit != '0'; })) {
        numerator.multiply_add(10, 1);
        --exponent;
    }
    Natural denominator(1);
    if (exponent >= 0) {
        numerator.multiply_by_power_of_five(static_cast<unsigned>(exponent));
    } else {
        denominator.multiply_by_power_of_five(static_cast<unsigned>(-exponent));
    }
    // The quotient is brought between 1/4 and 1; then two words of it hold every bit wanted.
    std::int64_t twos = exponent;
    const auto raise = [](Natural& value, std::size_t bits) { value.shift_left(bits); };
    const std::size_t up = (64 - denominator.bit_length() % 64) % 64;
    raise(denominator, up);
    twos += static_cast<std::int64_t>(up);
    const auto top = static_cast<std::int64_t>(numerator.bit_length());
    std::int64_t wanted = static_cast<std::int64_t>(denominator.bit_length()) - 1;
    if (top > wanted) {
        const std::int64_t words = (top - wanted + 63) / 64;
        raise(denominator, static_cast<std::size_t>(words * 64));
        twos += words * 64;
        wanted += words * 64;
    }
    raise(numerator, static_cast<std::size_t>(wanted - top));
    twos -= wanted - top;
    Wide quotient = 0;
    for (int i = 0; i < 2; ++i) {
        raise(numerator, 64);
        quotient = quotient << 64 | numerator.divide(denominator);
    }
    return round_and_store(kind, number.negative, quotient, twos - 128, !numerator.is_zero(), round,
                           target);
}

bool word_to_binary(std::uint64_t significand, std::int64_t exponent, bool negative, Rounding round,
                    int kind, void* target) {
    if (kind > 8 || round > Rounding::nearest) return false;
    if (significand == 0) {
        store_real(kind, negative, 0, binary_format(kind).least_exponent, target);
        return true;
    }
    if (exponent < least_power || exponent > greatest_power) return false;
    ScaledDecimal scaled;
    return scale_decimal(significand, static_cast<int>(exponent), scaled) &&
           store_nearest(scaled, negative, kind, target);
}

ConvertResult to_binary(const DecimalNumber& number, Rounding round, int kind, void* target) {
    const char* first = number.digits;
    const char* end = number.digits + number.count;
    while (first != end && *first == '0') ++first;
    if (first == end) {
        store_real(kind, number.negative, 0, binary_format(kind).least_exponent, target);
        return ConvertResult::ok;
    }
    while (end[-1] == '0') --end;
    DecimalNumber plain = number;
    plain.digits = first;
    plain.count = static_cast<std::size_t>(end - first);
    const auto cut = static_cast<std::int64_t>(number.digits + number.count - end);
    // An exponent from outside may be anything; far beyond every range it is beyond.
    constexpr std::int64_t far = std::int64_t{1} << 62;
    plain.exponent = std::clamp(number.exponent, -far, far) + cut;
    const BinaryFormat& format = binary_format(kind);
    const std::int64_t leading = plain.exponent + static_cast<std::int64_t>(plain.count) - 1;
    if (leading >= format.greatest_decimal) {
        return store_overflow(kind, number.negative, round, target);
    }
    if (leading < format.least_decimal) {
        return store_underflow(kind, number.negative, round, target);
    }
    ConvertResult result;
    if (kind <= 8 && quick_to_binary(plain, round, kind, target, result)) return result;
    return wide_to_binary(plain, round, kind, target);
}

}  // namespace tarn::fio
