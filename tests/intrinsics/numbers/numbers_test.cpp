// Powers, rounding, bits, kinds and angles, through their entries: values that are exact, and which
// failure ends the program.
#include "tarn/numbers.h"

#include <bit>
#include <cerrno>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::nan("");
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

void fails(void (*call)(), const char* sentence) {
    EXPECT_EXIT(call(), testing::ExitedWithCode(1), sentence);
}

// ---- Powers ----

TEST(NumberPowers, OfIntegers) {
    struct {
        std::int32_t base, exponent, power;
    } const rows[] = {{2, 10, 1024}, {2, 30, 1 << 30},       {-2, 31, lowest},    {3, 0, 1},
                      {2, -1, 0},    {-1, -3, -1},           {-1, -4, 1},         {1, -5, 1},
                      {0, 5, 0},     {46340, 2, 2147395600}, {lowest, 1, lowest}, {-1, lowest, 1}};
    for (const auto& row : rows) {
        EXPECT_EQ(XXJJ_hh(row.base, row.exponent), row.power) << row.base << "**" << row.exponent;
        EXPECT_EQ(XXKK_hh(row.base, row.exponent), row.power) << row.base << "**" << row.exponent;
    }
    EXPECT_EQ(XXKK_hh(-2, 63), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(XXWW_hh(-8, 21), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(XXHH_hh(-2, 7), -128);
    EXPECT_EQ(XXHI_hh(2, 14), 16384);  // in 16 bits
    EXPECT_EQ(XXIH_hh(300, 1), 300);
    EXPECT_EQ(XXJI_hh(10, 9), 1000000000);
}

TEST(NumberPowers, OfRealsToIntegers) {
    EXPECT_EQ(XXDJ_hh(-8, 2), 64);
    EXPECT_EQ(XXDJ_hh(2, -2), 0.25L);
    EXPECT_EQ(XXRI_hh(-2, 3), -8);
    EXPECT_EQ(XXDJ_hh(5, 0), 1);
    EXPECT_EQ(XXDJ_hh(2, 1100), std::ldexp(1.0L, 1100));  // 80 bits hold it
    EXPECT_EQ(XXDJ_hh(-1, lowest), 1);
    EXPECT_TRUE(std::isnan(XXDJ_hh(not_a_number, 2)));
}

TEST(NumberPowers, OfRealsToReals) {
    EXPECT_EQ(XXDD_hh(2, 0.5), std::sqrt(2.0L));
    EXPECT_EQ(XXDD_hh(9, 0.5), 3);
    EXPECT_EQ(XXDD_hh(10, -400), 0);
    EXPECT_EQ(XXDD_hh(2, -1022), 0x1p-1022);
    EXPECT_EQ(XXDD_hh(2, -1022.5), 0);  // no denormal results
    EXPECT_EQ(XXXX_hh(10, 400), 1e400L);
    EXPECT_EQ(XXXX_hh(2, -16384), 0x1p-16384L);
    EXPECT_EQ(XXXX_hh(2, -16385), 0);
    EXPECT_EQ(XXDD_hh(0, 3), 0);
    EXPECT_EQ(XXJD_hh(3, 3), 27);
    EXPECT_TRUE(std::isnan(XXDD_hh(not_a_number, 2)));
    EXPECT_TRUE(std::isnan(XXDD_hh(0, not_a_number)));

    errno = 0;
    EXPECT_EQ(C_POWER_FUNCTION_hh(2, 10), 1024);
    EXPECT_EQ(errno, 0);
    C_POWER_FUNCTION_hh(-8, 2);
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(C_POWER_FUNCTION_hh(10, 400), infinity);
    EXPECT_EQ(errno, ERANGE);
}

TEST(NumberPowers, OfComplexNumbers) {
    const tarn_complex16 zero = 0;
    const tarn_complex16 z = 3.0 + 4.0i;
    const std::int32_t two = 2;
    const std::int32_t none = 0;
    EXPECT_EQ(XXZJ_h(&z, &two), -7.0 + 24.0i);
    EXPECT_EQ(XXZJ_h(&zero, &none), 1.0 + 0.0i);
    EXPECT_EQ(XXZZ_h(&zero, &z), 0.0 + 0.0i);
    // In the width of the parts, unscaled: the square of the modulus overflows.
    const tarn_complex16 large = 1e200;
    const std::int32_t inverse = -1;
    EXPECT_EQ(__real__ XXZJ_h(&large, &inverse), 0);
    EXPECT_EQ(CABS_hX(3e4000L, 4e4000L), 5e4000L);
    const tarn_complex16 minus_four = -4.0;
    EXPECT_EQ(CDSQR_h(&minus_four), 0.0 + 2.0i);
    const tarn_complex16 below = -4.0 - 0.0i;
    EXPECT_EQ(__imag__ CDSQR_h(&below), std::signbit(__imag__ below) ? -2 : 2);
}

TEST(NumberPowersDeath, Failures) {
    fails([] { XXJJ_hh(2, 31); }, "Error +2, Integer arithmetic overflow");
    fails([] { XXHH_hh(2, 7); }, "Error +2, Integer");
    fails([] { XXWW_hh(3, 40); }, "Error +2, Integer");
    fails([] { XXJJ_hh(0, 0); }, "Error +21, Zero raised to negative or zero power");
    fails([] { XXKK_hh(0, -1); }, "Error +21, ");
    fails([] { XXDJ_hh(0, -1); }, "Error +21, ");
    fails([] { XXDJ_hh(0, 0); }, "Error +21, ");
    fails([] { XXDD_hh(0, -1); }, "Error +21, ");
    fails([] { XXDD_hh(0, 0); }, "Error +21, ");
    fails([] { XXDD_hh(-8, 1.0 / 3); }, "Error +36, Negative number raised to non-integer power");
    fails([] { XXDD_hh(-8, 2); }, "Error +36, ");
    fails([] { XXDD_hh(10, 400); }, "Error +1, Floating point arithmetic overflow");
    fails([] { XXXX_hh(10, 5000); }, "Error +1, ");
    fails(
        [] {
            const tarn_complex8 zero = 0;
            XXCC_h(&zero, &zero);
        },
        "Error +21, ");
    fails(
        [] {
            const tarn_complex16 zero = 0;
            CDLOG_h(&zero);
        },
        "Error +385, Real and imaginary parts of the argument to complex LOG are both zero");
}

// ---- Elementary functions ----

TEST(NumberFunctions, WhereTheyEnd) {
    EXPECT_EQ(EXP_hX(-708.5L), 0);
    EXPECT_GT(EXP_hX(-708.25L), 0);
    EXPECT_GT(EXP_hX(709.49L), 1e308L);
    EXPECT_GT(EXPL_hX(11356.4L), 1e4931L);
    EXPECT_TRUE(std::isnan(EXP_hX(not_a_number)));
    EXPECT_TRUE(std::isnan(ALOG_hX(not_a_number)));
    const double minus_zero = -0.0;
    EXPECT_TRUE(std::signbit(DSIN_h(&minus_zero)));
    EXPECT_TRUE(std::signbit(DSQRT_h(&minus_zero)));
    const double one = 1;
    const double minus_one = -1;
    EXPECT_TRUE(std::isnan(DSQRT_h(&minus_one)));
    EXPECT_EQ(DATN2_h(&minus_zero, &minus_one), -M_PI);
    EXPECT_EQ(DASIN_h(&one), M_PI_2);

    const float values[] = {3, 4, 12};
    EXPECT_EQ(NORM2_h(values, 3), 13);
    EXPECT_EQ(NORM2_h(values, 0), 0);
    const double large[] = {1e200, 1};
    EXPECT_EQ(DNORM2_h(large, 2), infinity);
    EXPECT_EQ(DHYPOT_h(large, large + 1), 1e200);
}

TEST(NumberFunctionsDeath, Failures) {
    fails([] { ALOG_hX(0); }, "Error +34, Negative or zero argument to logarithm routine");
    fails([] { AL10_hX(-1); }, "Error +34, ");
    fails([] { ALG2_hX(-0.0L); }, "Error +34, ");
    fails([] { EXP_hX(709.5L); }, "Error +25, Argument to EXP out-of-range");
    fails([] { EXPL_hX(11356.5L); }, "Error +25, ");
    fails([] { ASIN_hX(1.0000001L); }, "Error +26, Argument to ASIN/ACOS out-of-range");
    fails([] { ACOS_hX(-2); }, "Error +26, ");
    fails([] { SINH_hX(-11357); }, "Error +20, Argument to SINH/COSH out of range");
    fails([] { DTN2_hX(0, -0.0L); }, "Error +33, Both arguments to ATAN2/DATAN2 zero");
    fails(
        [] {
            const float values[] = {3e38F, 3e38F};
            NORM2_h(values, 2);
        },
        "Error +453, Floating point overflow when computing NORM2");
}

// ---- Rounding ----

TEST(NumberRounding, HalvesEndsAndSigns) {
    struct {
        double x;
        std::int32_t nearest;
    } const rows[] = {{2.5, 3},
                      {-2.5, -3},
                      {0.49999999999999994, 0},
                      {-0.4, 0},
                      {2147483647, 2147483647},
                      {2147483647.5, lowest},
                      {-2147483648.4, lowest},
                      {1e300, lowest},
                      {not_a_number, lowest}};
    for (const auto& row : rows) EXPECT_EQ(JDNIN_h(&row.x), row.nearest) << row.x;
    const float short_end = 32768;
    EXPECT_EQ(ININT_h(&short_end), std::numeric_limits<std::int16_t>::min());

    const auto sign = [](double x, double y) { return DSIGN_h(&x, &y); };
    const auto dim = [](double x, double y) { return DDIM_h(&x, &y); };
    const auto mod = [](std::int32_t x, std::int32_t y) { return JMOD_h(&x, &y); };
    const auto jdim = [](std::int32_t x, std::int32_t y) { return JDIM_h(&x, &y); };
    EXPECT_EQ(sign(-3, 2), 3);
    EXPECT_EQ(sign(3, -0.0), -3);
    EXPECT_EQ(dim(5, 3), 2);
    EXPECT_EQ(dim(3, 5), 0);
    EXPECT_TRUE(std::isnan(dim(not_a_number, 1)));
    EXPECT_EQ(jdim(lowest, 1), 0);
    EXPECT_EQ(mod(-7, 3), -1);
    EXPECT_EQ(mod(lowest, -1), 0);
    EXPECT_EQ(JABS_h(&lowest), lowest);

    EXPECT_EQ(MODULO_hh(-7, 3), 2);
    EXPECT_EQ(MODULO_hh(7, -3), -2);
    EXPECT_EQ(MODULO_hh(-1e-20, 3), 3);
    EXPECT_TRUE(std::signbit(MODULO_hh(6, -3)));
    EXPECT_EQ(NEAREST_hh(1, 5), 1 + 0x1p-52);
    EXPECT_EQ(NEAREST_hh(0, -1), -std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(NEAREST_hh(std::numeric_limits<double>::max(), 1), infinity);
}

TEST(NumberRoundingDeath, Failures) {
    fails([] { NEAREST_hh(1, 0); }, "Error +384, Second argument to NEAREST is zero");
    fails([] { MODULO_hh(1, 0); }, "Error +32, Second argument to MOD is zero");
    fails(
        [] {
            const std::int32_t zero = 0;
            JMOD_h(&zero, &zero);
        },
        "Error +32, ");
}

// ---- Bits ----

TEST(NumberBits, Shifts) {
    struct {
        std::int16_t value;
        std::int32_t count;
        std::int16_t left, right, arithmetic;
    } const rows[] = {{-2, 0, -2, -2, -2},          {-2, 1, -4, 0x7FFF, -1},
                      {1, 15, lowest >> 16, 0, 0},  {-1, 16, 0, 0, 0},
                      {-1, -16, 0, 0, 0},           {-1, 1 << 30, 0, 0, 0},
                      {-1, 15, lowest >> 16, 1, -1}};
    for (const auto& row : rows) {
        EXPECT_EQ(ISHIFTL_h(&row.value, &row.count), row.left) << row.value << " " << row.count;
        EXPECT_EQ(ISHIFTR_h(&row.value, &row.count), row.right) << row.value << " " << row.count;
        EXPECT_EQ(ISHIFTA_h(&row.value, &row.count), row.arithmetic)
            << row.value << " " << row.count;
    }
    EXPECT_EQ(__ISHFTC(0x12345678, 8, 32), 0x34567812);
    EXPECT_EQ(__ISHFTC(0x12345678, -8, 99), 0x78123456);
    EXPECT_EQ(__ISHFTC(0x12345678, 4, 8), 0x12345687);
    EXPECT_EQ(__ISHFTC(0x12345678, lowest, 8), 0x12345678);
    EXPECT_EQ(__ISHFTC(5, 1, 0), 5);
    EXPECT_EQ(__HISHFTC(-127, 1, 8), 3);
    EXPECT_EQ(__IISHFTC(0x1234, -16, 12), 0x1423);
    EXPECT_EQ(__QISHFTC(1, -1, 64), std::numeric_limits<std::int64_t>::min());
}

TEST(NumberBits, Counts) {
    const std::int8_t none = 0;
    const std::int8_t all = -1;
    EXPECT_EQ(HLEADZ_d(&none), 8);
    EXPECT_EQ(HTRAILZ_d(&none), 8);
    EXPECT_EQ(HPOPCNT_d(&all), 8);
    EXPECT_EQ(HPOPPAR_d(&all), 0);
    const std::int16_t short_none = 0;
    EXPECT_EQ(ITRAILZ_d(&short_none), 16);
    const std::int64_t value = 0x700;
    EXPECT_EQ(QLEADZ_d(&value), 53);
    EXPECT_EQ(QTRAILZ_d(&value), 8);
    EXPECT_EQ(QPOPPAR_d(&value), 1);
}

TEST(NumberBits, Moves) {
    struct {
        std::int32_t from, from_place, length, to, to_place, result;
    } const rows[] = {
        {0xABCD, 4, 8, -1, 0, ~0xFF | 0xBC}, {-1, 0, 32, 0, 0, -1}, {-1, 31, 32, 0, 31, lowest},
        {-1, 32, 5, 0x3F, 0, 0x20},          {-1, 0, 0, 7, 32, 7},  {-1, 0, 4, 0, 32, 0}};
    for (const auto& row : rows) {
        std::int32_t to = row.to;
        MVBITSI4_h(&row.from, &row.from_place, &row.length, &to, &row.to_place);
        EXPECT_EQ(to, row.result);
    }
}

TEST(NumberBitsDeath, Failures) {
    fails(
        [] {
            const std::int32_t count = -1;
            const std::int16_t value = 1;
            ISHIFTL_h(&value, &count);
        },
        "Error +457, Negative SHIFT count for SHIFTL or SHIFTR");
    fails([] { __HISHFTC(1, 9, 8); }, "Error +217, ");
    fails([] { __JISHFTC(1, 1, 33); }, "Error +217, ");
    fails(
        [] {
            std::int8_t value = 1;
            const std::int32_t place = 0;
            const std::int32_t length = 9;
            MVBITSI1_h(&value, &place, &length, &value, &place);
        },
        "Error +386, The FROMPOS, LEN and TOPOS arguments of MVBITS must be nonnegative");
}

// ---- Kinds ----

TEST(NumberKinds, OfIntegersAndReals) {
    struct {
        std::int32_t range, kind, wide, bytes;
    } const integers[] = {{-1, 1, 1, 1},  {2, 1, 1, 1},   {3, 2, 2, 2},
                          {4, 2, 2, 2},   {5, 3, 3, 4},   {9, 3, 3, 4},
                          {10, -1, 4, 8}, {18, -1, 4, 8}, {19, -1, -1, -1}};
    for (const auto& row : integers) {
        EXPECT_EQ(SELECTED_INT_KIND_h(&row.range), row.kind) << row.range;
        EXPECT_EQ(SELECTED_INT_KIND1_h(&row.range), row.wide) << row.range;
        EXPECT_EQ(SELECTED_INT_KINDA_h(&row.range), row.bytes) << row.range;
    }
    struct {
        std::int32_t precision, range, kind, second, bytes;
    } const reals[] = {{6, 0, 1, 1, 4},      {7, 0, 2, 2, 8},       {15, 307, 2, 2, 8},
                       {0, 38, 2, 2, 8},     {18, 4931, 3, 4, 10},  {6, 308, 3, 4, 10},
                       {19, 10, -1, -1, -1}, {5, 5000, -2, -2, -2}, {19, 5000, -3, -3, -3}};
    for (const auto& row : reals) {
        EXPECT_EQ(SELECTED_REAL_KIND_h(&row.precision, &row.range), row.kind) << row.precision;
        EXPECT_EQ(SELECTED_REAL_KIND2_h(&row.precision, &row.range), row.second) << row.precision;
        EXPECT_EQ(SELECTED_REAL_KINDA_h(&row.precision, &row.range), row.bytes) << row.precision;
    }
    const std::int32_t precision = 7;
    EXPECT_EQ(SELECTED_REAL_KIND_h(&precision, nullptr), 2);
}

// ---- Angles ----

TEST(NumberAngles, ReducedAndCleaned) {
    struct {
        long double degrees, reduced, sine, cosine, tangent;
    } const rows[] = {{0, 0, 0, 1, 0},
                      {30, 30, 0.5L, std::sqrt(0.75L), std::sqrt(1 / 3.0L)},
                      {390, 30, 0.5L, std::sqrt(0.75L), std::sqrt(1 / 3.0L)},
                      {-330, 30, 0.5L, std::sqrt(0.75L), std::sqrt(1 / 3.0L)},
                      {45, 45, std::sqrt(0.5L), std::sqrt(0.5L), 1},
                      {60, 60, std::sqrt(0.75L), 0.5L, std::sqrt(3.0L)},
                      {90, 90, 1, 0, infinity},
                      {-90, -90, -1, 0, -infinity},
                      {180, 180, 0, -1, 0},
                      {-180, 180, 0, -1, 0},
                      {270, -90, -1, 0, -infinity},
                      {3.6e18L, 0, 0, 1, 0},
                      {3.6e40L, 0, 0, 1, 0}};
    const auto close = [](long double value, long double expected) {
        return value == expected || std::fabs(value - expected) < 1e-18L * std::fabs(expected);
    };
    for (const auto& row : rows) {
        long double x = row.degrees;
        if (row.degrees < 1e20L) {
            EXPECT_TRUE(close(XSIND_d(&x), row.sine)) << row.degrees;
            EXPECT_EQ(x, row.reduced) << row.degrees;
            x = row.degrees;
            EXPECT_TRUE(close(XCOSD_d(&x), row.cosine)) << row.degrees;
            x = row.degrees;
            EXPECT_TRUE(close(XTAND_d(&x), row.tangent)) << row.degrees;
        } else {
            XSIND_d(&x);
            EXPECT_LE(std::fabs(x), 180);
        }
    }
    long double x = 370.25L;
    XSIND_d(&x);
    EXPECT_EQ(x, 10.25L);
    const double kept = 390;
    EXPECT_EQ(DSIND_d(&kept), 0.5);
    x = infinity;
    EXPECT_TRUE(std::isnan(XSIND_d(&x)));
    const double half = 0.5;
    EXPECT_EQ(DASIND_d(&half), 30);
    EXPECT_EQ(DACOSPI_d(&half), 1 / 3.0);
}

TEST(NumberAngles, UnitsOfPi) {
    struct {
        long double x, reduced, sine, cosine, tangent;
    } const rows[] = {{0, 0, 0, 1, 0},
                      {0.5L, 0.5L, 1, 0, infinity},
                      {1, 1, 0, -1, 0},
                      {1.5L, -0.5L, -1, 0, -infinity},
                      {2, 0, 0, 1, 0},
                      {-2, 0, 0, 1, 0},
                      {-0.5L, 1.5L, -1, 0, -infinity},
                      {3, 1, 0, -1, 0},
                      {4, 2, 0, 1, 0},
                      {1e15L + 0.5L, 0.5L, 1, 0, infinity}};
    for (const auto& row : rows) {
        long double x = row.x;
        EXPECT_EQ(XSINPI_d(&x), row.sine) << row.x;
        EXPECT_EQ(x, row.reduced) << row.x;
        x = row.x;
        EXPECT_EQ(XCOSPI_d(&x), row.cosine) << row.x;
        x = row.x;
        EXPECT_EQ(XTANPI_d(&x), row.tangent) << row.x;
    }
    long double quarter = 5.25L;
    EXPECT_EQ(XTANPI_d(&quarter), 1);
}

TEST(NumberAnglesDeath, Failures) {
    fails(
        [] {
            const double x = 1.5;
            DASIND_d(&x);
        },
        "Error +26, ");
    fails(
        [] {
            const double zero = 0;
            DATAN2D_d(&zero, &zero);
        },
        "Error +33, ");
    fails(
        [] {
            const long double zero = 0;
            XATAN2V_d(&zero, &zero);
        },
        "Error +33, ");
}

}  // namespace
