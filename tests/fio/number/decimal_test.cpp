// Properties of the conversions between binary and decimal, on random and on awkward values of all
// kinds.
#include "fio/number/decimal.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "fio/number/exact.h"
#include "fio/number/power_table.h"

namespace {

using namespace tarn::fio;

constexpr Rounding all_roundings[] = {Rounding::unspecified, Rounding::nearest,
                                      Rounding::compatible,  Rounding::up,
                                      Rounding::down,        Rounding::zero};

struct Value {
    int kind = 8;
    alignas(16) unsigned char bytes[16] = {};

    bool operator==(const Value& other) const {
        return std::memcmp(bytes, other.bytes, sizeof bytes) == 0;
    }
};

struct KindFacts {
    int kind;
    std::size_t bytes;
    int digits_of_round_trip;
    int greatest_exponent;  // decimal
};
constexpr KindFacts kinds[] = {
    {4, 4, 9, 38}, {8, 8, 17, 308}, {10, 10, 21, 4932}, {16, 16, 36, 4932}};

class Values {
  public:
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }

    // Any bits that are a finite value.
    Value any(const KindFacts& facts) {
        for (;;) {
            Value value;
            value.kind = facts.kind;
            const std::uint64_t words[2] = {random_(), random_()};
            std::memcpy(value.bytes, words, facts.bytes);
            if (facts.kind == 10) {  // the leading bit stands in the significand
                const bool normal = ((value.bytes[9] & 0x7F) | value.bytes[8]) != 0;
                value.bytes[7] = static_cast<unsigned char>(normal ? value.bytes[7] | 0x80
                                                                   : value.bytes[7] & 0x7F);
            }
            const BinaryReal real = take_apart(value.bytes, value.kind);
            if (real.kind == RealClass::finite && real.significand != 0) return value;
        }
    }

    // The neighbourhood of a decimal number of few digits.
    Value near_decimal(const KindFacts& facts) {
        const std::string digits =
            std::to_string(below(2) != 0 ? below(1000) + 1 : below(1u << 30) + 1);
        const int range = below(2) != 0 ? 20 : facts.greatest_exponent - 10;
        Value value;
        value.kind = facts.kind;
        const DecimalNumber number{below(2) != 0, digits.data(), digits.size(),
                                   static_cast<std::int64_t>(below(2 * range)) - range};
        to_binary(number, Rounding::nearest, value.kind, value.bytes);
        std::uint64_t low = 0;
        const std::size_t size = std::min<std::size_t>(facts.bytes, 8);
        std::memcpy(&low, value.bytes, size);
        if (facts.kind != 10 || low << 1 != 0) low += below(3) - 1;
        std::memcpy(value.bytes, &low, size);
        const BinaryReal real = take_apart(value.bytes, value.kind);
        return real.kind == RealClass::finite && real.significand != 0 ? value : any(facts);
    }

    // Halves, and integers.
    Value near_half(const KindFacts& facts) {
        const std::string digits = std::to_string(below(1u << below(22)) * 5 + 5);
        Value value;
        value.kind = facts.kind;
        to_binary(
            {below(2) != 0, digits.data(), digits.size(), -static_cast<std::int64_t>(below(3))},
            Rounding::nearest, value.kind, value.bytes);
        return value;
    }

    Value next(const KindFacts& facts) {
        switch (below(3)) {
            case 0:
                return any(facts);
            case 1:
                return near_decimal(facts);
            default:
                return near_half(facts);
        }
    }

  private:
    std::mt19937_64 random_{20240521};
};

std::string shown(const DecimalDigits& digits) {
    std::string text(digits.digits, digits.count);
    while (!text.empty() && text.back() == '0') text.pop_back();
    return text;
}

TEST(Decimal, DigitsAreThoseOfExactArithmetic) {
    Values values;
    std::vector<char> buffer(max_significant_digits);
    for (const KindFacts& facts : kinds) {
        const int cases = facts.kind <= 8 ? 3000 : 120;
        for (int i = 0; i < cases; ++i) {
            const Value value = values.next(facts);
            const BinaryReal real = take_apart(value.bytes, value.kind);
            const exact::Text text = exact::text_of(real.significand, real.exponent);
            ASSERT_EQ(decimal_exponent(real), text.point - 1);
            for (int j = 0; j < 8; ++j) {
                const Rounding round = all_roundings[values.below(6)];
                const std::size_t count = 1 + values.below(j == 0 ? 800 : 24);
                const exact::Text expected =
                    exact::rounded(text, static_cast<std::int64_t>(count), real.negative, round);
                const DecimalDigits digits = significant_digits(real, count, round, buffer.data());
                ASSERT_EQ(shown(digits), expected.digits)
                    << facts.kind << " " << count << " of " << text.digits;
                ASSERT_EQ(digits.point, expected.point);
                ASSERT_LE(digits.count, count);

                const auto keep = static_cast<std::int64_t>(values.below(24)) - 3;
                const std::int64_t places =
                    j == 0 ? static_cast<std::int64_t>(values.below(20)) - 10 : keep - text.point;
                const exact::Text fixed =
                    exact::rounded(text, text.point + places, real.negative, round);
                ASSERT_LE(fixed.digits.size(),
                          fraction_digits_bound(real, static_cast<std::int32_t>(places)));
                const DecimalDigits fraction =
                    fraction_digits(real, static_cast<std::int32_t>(places), round, buffer.data());
                ASSERT_EQ(shown(fraction), fixed.digits)
                    << facts.kind << " " << places << " places of " << text.digits << " x 10^"
                    << text.point;
                ASSERT_EQ(fraction.point, fixed.digits.empty() ? -places : fixed.point);
            }
        }
    }
}

TEST(Decimal, EnoughDigitsReadBackAsTheSameValue) {
    Values values;
    char buffer[64];
    for (const KindFacts& facts : kinds) {
        const int cases = facts.kind <= 8 ? 200000 : 3000;
        for (int i = 0; i < cases; ++i) {
            const Value value = values.next(facts);
            const BinaryReal real = take_apart(value.bytes, value.kind);
            const DecimalDigits digits =
                significant_digits(real, static_cast<std::size_t>(facts.digits_of_round_trip),
                                   Rounding::nearest, buffer);
            Value back;
            back.kind = value.kind;
            to_binary({real.negative, digits.digits, digits.count,
                       digits.point - static_cast<std::int64_t>(digits.count)},
                      Rounding::nearest, back.kind, back.bytes);
            ASSERT_EQ(back, value) << facts.kind << " " << std::string(digits.digits, digits.count)
                                   << " x 10^" << digits.point;
        }
    }
}

// The halfway points between neighbours, and the texts just beside them, go to the right side.
TEST(Decimal, HalfwayTextsRoundAsNamed) {
    Values values;
    for (const KindFacts& facts : kinds) {
        const int cases = facts.kind <= 8 ? 2000 : 60;
        for (int i = 0; i < cases; ++i) {
            Value value = values.any(facts);
            const BinaryReal real = take_apart(value.bytes, value.kind);
            Value above = value;  // the neighbour of greater magnitude
            std::uint64_t low = 0;
            const std::size_t size = std::min<std::size_t>(facts.bytes, 8);
            std::memcpy(&low, value.bytes, size);
            if (facts.kind == 4 ? (low & 0xFFFF) == 0xFFFF : (low & 0xFFFFFFFF) == 0xFFFFFFFF)
                continue;
            ++low;
            std::memcpy(above.bytes, &low, size);
            exact::Text half = exact::text_of(real.significand * 2 + 1, real.exponent - 1);
            half.digits.erase(half.digits.find_last_not_of('0') + 1);
            const bool even = (real.significand & 1) == 0;
            struct {
                std::string digits;
                int side;  // of the halfway point
            } texts[] = {
                {half.digits, 0}, {half.digits + std::string(30, '0') + "1", 1}, {half.digits, -1}};
            --texts[2].digits.back();
            texts[2].digits += "99999";
            for (const auto& text : texts) {
                for (const Rounding round : all_roundings) {
                    bool up = false;
                    switch (round) {
                        case Rounding::up:
                            up = !real.negative;
                            break;
                        case Rounding::down:
                            up = real.negative;
                            break;
                        case Rounding::zero:
                            break;
                        case Rounding::compatible:
                            up = text.side >= 0;
                            break;
                        default:
                            up = text.side > 0 || (text.side == 0 && !even);
                    }
                    Value back;
                    back.kind = value.kind;
                    to_binary(
                        {real.negative, text.digits.data(), text.digits.size(),
                         half.point - static_cast<std::int64_t>(half.digits.size()) -
                             static_cast<std::int64_t>(text.digits.size() - half.digits.size())},
                        round, back.kind, back.bytes);
                    ASSERT_EQ(back, up ? above : value)
                        << facts.kind << " " << static_cast<int>(round) << " " << text.digits;
                }
            }
        }
    }
}

double read(const std::string& digits, std::int64_t exponent, Rounding round = Rounding::nearest,
            ConvertResult expected = ConvertResult::ok, bool negative = false) {
    double value = 1;
    EXPECT_EQ(to_binary({negative, digits.data(), digits.size(), exponent}, round, 8, &value),
              expected)
        << digits << "E" << exponent;
    return value;
}

TEST(Decimal, RangeEnds) {
    constexpr double largest = std::numeric_limits<double>::max();
    constexpr double least = std::numeric_limits<double>::denorm_min();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    using enum ConvertResult;
    EXPECT_EQ(read("17976931348623157", 292), largest);
    EXPECT_EQ(read("17976931348623158", 292), largest);
    EXPECT_EQ(read("17976931348623159", 292, Rounding::nearest, overflow), infinity);
    EXPECT_EQ(read("17976931348623159", 292, Rounding::zero), largest);
    EXPECT_EQ(read("1", 309, Rounding::down, overflow), largest);
    EXPECT_EQ(read("1", 400, Rounding::down, overflow, true), -infinity);
    EXPECT_EQ(read("1", std::numeric_limits<std::int64_t>::max(), Rounding::nearest, overflow),
              infinity);
    EXPECT_EQ(read("1", std::numeric_limits<std::int64_t>::min(), Rounding::nearest, underflow),
              0.0);
    EXPECT_EQ(read("000", 5000), 0.0);
    EXPECT_TRUE(std::signbit(read("", 0, Rounding::nearest, ok, true)));
    EXPECT_EQ(read("5", -324, Rounding::nearest, underflow), least);
    EXPECT_EQ(read("24703282292062327", -340, Rounding::nearest, underflow), 0.0);
    EXPECT_EQ(read("24703282292062328", -340, Rounding::nearest, underflow), least);
    EXPECT_EQ(read("1", -400, Rounding::up, underflow), least);
    EXPECT_EQ(read("1", -400, Rounding::down, underflow), 0.0);
    EXPECT_EQ(read("22250738585072011", -324, Rounding::nearest, underflow),
              2.225073858507201e-308);
    EXPECT_EQ(read("22250738585072014", -324), 2.2250738585072014e-308);
    EXPECT_EQ(read("1" + std::string(400, '0'), -400), 1.0);
    EXPECT_EQ(read(std::string(400, '0') + "125", -3), 0.125);
}

TEST(Decimal, TakesApartWhatIsNoNumber) {
    EXPECT_EQ(take_apart(std::numeric_limits<double>::infinity()).kind, RealClass::infinite);
    EXPECT_EQ(take_apart(std::numeric_limits<float>::quiet_NaN()).kind, RealClass::nan);
    EXPECT_EQ(take_apart(-std::numeric_limits<long double>::infinity()).kind, RealClass::infinite);
    EXPECT_TRUE(take_apart(-0.0L).negative);
    // A significand without its leading bit is no number to the processor either.
    unsigned char bytes[16] = {1, 0, 0, 0, 0, 0, 0, 0x40, 0xFF, 0x3F};
    EXPECT_EQ(take_apart(bytes, 10).kind, RealClass::nan);
}

TEST(Decimal, Integers) {
    const auto text = [](auto value) {
        char buffer[40];
        char* const end = buffer + sizeof buffer;
        return std::string(put_decimal_backwards(value, end), end);
    };
    EXPECT_EQ(text(0ULL), "0");
    EXPECT_EQ(text(~0ULL), "18446744073709551615");
    EXPECT_EQ(text(~static_cast<unsigned __int128>(0)), "340282366920938463463374607431768211455");
    EXPECT_EQ(text(static_cast<unsigned __int128>(1) << 64), "18446744073709551616");
    unsigned long long power = 1;
    for (int i = 0; i < 18; ++i, power *= 10) {
        const std::string tail(static_cast<std::size_t>(i), '0');
        EXPECT_EQ(text(power), '1' + tail);
        EXPECT_EQ(text(power * 9), '9' + tail);
        EXPECT_EQ(text(power * 10 - 1), std::string(tail.size() + 1, '9'));
    }
}

// Each entry of the table of powers is the power cut after 128 bits, or rounded up where it says
// so.
TEST(PowerTable, EntriesAreNextToTheirPowers) {
    for (int k = least_power; k <= greatest_power; ++k) {
        const Power& power = power_of_ten_128(k);
        ASSERT_EQ(power.high >> 63, 1U) << k;
        const auto significand = static_cast<unsigned __int128>(power.high) << 64 | power.low;
        const int exponent = power_exponent(k) - 127;
        const bool raised = k < 0 && k >= first_exact_power;
        const exact::Text below = exact::text_of(significand - (raised ? 1 : 0), exponent);
        const exact::Text above = exact::text_of(significand + (raised ? 0 : 1), exponent);
        const auto less_than_power = [k](const exact::Text& text) { return text.point <= k; };
        const bool is_power = below.point == k + 1 && below.digits.front() == '1' &&
                              below.digits.find_first_not_of('0', 1) == std::string::npos;
        EXPECT_EQ(is_power, k >= 0 && k <= last_exact_power) << k;
        EXPECT_TRUE(is_power || less_than_power(below)) << k;
        EXPECT_FALSE(less_than_power(above)) << k;
    }
}

TEST(NativeDigits, TwentyTrueDigitsRoundedHalfUp) {
    struct {
        long double value;
        std::int32_t count;
        const char* digits;
        std::int32_t point;
    } const cases[] = {
        {0.25L, -1, "3", 0},
        {0.5L, 0, "1", 1},
        {0.4L, 0, "", 0},
        {0.05L, -1, "1", 0},  // just above the half in 64 bits
        {0.03L, -1, "", -1},
        {9.99L, -1, "100", 2},
        {-1.5L, 1, "2", 1},
        {1.0L, 25, "1000000000000000000000000", 1},
        {0.1L, 20, "10000000000000000000", 0},
        {0.1L, 30, "100000000000000000000000000000", 0},
        {1.0L / 3, 24, "333333333333333333340000", 0},
        {2.0L / 3, 22, "6666666666666666666800", 0},
        {123456789.0L, -3, "123456789000", 9},
        {1e22L, -2, "1000000000000000000000000", 23},
        {2.2250738585072014E-308, 17, "22250738585072014", -307},
        {2.2250738585072014E-308, 20, "22250738585072014831", -307},
        {0.0L, 4, "0000", 0},
        {-0.0L, -2, "00", 0},
    };
    char buffer[max_native_digits];
    for (const auto& test : cases) {
        const NativeDigits digits = native_digits(test.value, test.count, buffer);
        EXPECT_EQ(std::string(digits.digits, digits.count), test.digits)
            << static_cast<double>(test.value) << " " << test.count;
        EXPECT_EQ(digits.point, test.point) << static_cast<double>(test.value) << " " << test.count;
        EXPECT_EQ(digits.negative, std::signbit(test.value));
    }
    EXPECT_EQ(native_digits(1.0L, 9000, buffer).count, max_native_digits);
    EXPECT_EQ(native_digits(1e4900L, -900, buffer).count, max_native_digits);
}

}  // namespace
