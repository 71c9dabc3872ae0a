// Numbers as boxes write and read them.
#include <clocale>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "winio/data_entry.h"
#include "winio/procedures.h"

namespace tarn::winio {
namespace {

struct float_case {
    double value;
    std::int32_t width;
    const char* text;
};

TEST(BoxText, Floats) {
    const float_case cases[] = {
        {1.0, 11, "1"},
        {0.5, 11, "0.5"},
        {3.0, 11, "3"},
        {0.0, 11, "0"},
        {-0.25, 11, "-0.25"},
        {0.01, 11, "0.01"},
        {0.001, 11, "1.00000E-03"},
        {-0.001, 11, "-1.0000E-03"},
        {123456.123456789, 11, "123456.1234"},
        {1.0E10, 11, "1.00000E+10"},
        {1.0 / 3.0, 11, "0.33333333"},
        {1.0 / 3.0, 20, "0.333333333333333"},
        {1.0 / 3.0, 5, "0.333"},
        {100.0, 4, "100"},
        {100.0, 3, "1E+02"},
        {1.0E300, 11, "1.0000E+300"},
    };
    for (const float_case& each : cases)
        EXPECT_EQ(float_text(each.value, each.width), each.text) << each.value;
}

// A text never grows beyond its field where two digits fit, and reads back as what it shows.
TEST(BoxText, FloatsFitTheirField) {
    for (std::int32_t width = 9; width <= 24; ++width) {
        for (double value = 1.0E-12; value < 1.0E14; value *= 7.3) {
            std::string text = float_text(value, width);
            EXPECT_LE(static_cast<std::int32_t>(text.size()), width) << value;
            bool out_of_range = true;
            const char* rest = nullptr;
            double back = scan_float(text.c_str(), out_of_range, rest);
            EXPECT_FALSE(out_of_range);
            EXPECT_EQ(*rest, 0);
            EXPECT_NEAR(back / value, 1.0, 0.2) << text;
        }
    }
}

struct text_case {
    const char *before, *after;
};

TEST(BoxText, ExponentsAreShortened) {
    const text_case cases[] = {
        {"1.5E+003", "1.5E+03"},
        {"1.5E+010", "1.5E+10"},
        {"1.5E+100", "1.5E+100"},
        {"1.5E+03", "1.5E+03"},
        {"1.5e-007", "1.5e-07"},
        {"1.5", "1.5"},
        {"1000", "1000"},
        {"", ""},
        {"2E", "2E"},
    };
    for (const text_case& each : cases) {
        char text[40];
        std::strcpy(text, each.before);
        remove00(text);
        EXPECT_STREQ(text, each.after) << each.before;
    }
}

TEST(BoxText, IntegersInTheirRadix) {
    EXPECT_EQ(integer_text(-5, 10), "-5");
    EXPECT_EQ(integer_text(255, 16), "ff");
    EXPECT_EQ(integer_text(-1, 16), "ffffffff");
    EXPECT_EQ(integer_text(0, 2), "0");
    EXPECT_EQ(integer_text(35, 36), "z");
    EXPECT_EQ(integer_text(INT32_MIN, 2), "1" + std::string(31, '0'));
    EXPECT_EQ(integer_text(INT32_MIN, 10), "-2147483648");
}

TEST(BoxText, IntegersThatAreNone) {
    EXPECT_TRUE(scan_integer("99999999999999999999", 10).out_of_range);
    EXPECT_STREQ(scan_integer("12x", 10).rest, "x");
    EXPECT_EQ(scan_integer("7f", 16).value, 127);
    EXPECT_STREQ(scan_integer("129", 8).rest, "9");
}

TEST(BoxText, ThePointIsAPoint) {
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8")) GTEST_SKIP() << "no such locale here";
    bool out_of_range = false;
    const char* rest = nullptr;
    EXPECT_EQ(float_text(1.5, 11), "1.5");
    EXPECT_EQ(scan_float("2.5", out_of_range, rest), 2.5);
    std::setlocale(LC_NUMERIC, "C");
}

TEST(BoxText, FormatsThatReadNothingButOneDouble) {
    for (const char* good : {"%f", "%8.3f", "%-+12.4E", "about %g m", "%%%g", "%.0f"})
        EXPECT_TRUE(sound_float_format(good)) << good;
    for (const char* bad : {"", "%s", "%n", "%d", "%*f", "%f%f", "%Lf", "%999999f", "%.500f", "%",
                            "%8.", "plain", "%1$f"})
        EXPECT_FALSE(sound_float_format(bad)) << bad;
    EXPECT_FALSE(sound_float_format(nullptr));
    EXPECT_EQ(formatted_float("%.2f", 2.345), "2.35");
}

struct spin_case {
    double value, step;
    bool up;
    double low, high, result;
};

TEST(Spin, StepsToMultiples) {
    const double far = 1.0E308;
    const spin_case cases[] = {
        {5, 1, true, -far, far, 6},    {5, 1, false, -far, far, 4},
        {7, 5, true, -far, far, 10},   {7, 5, false, -far, far, 5},
        {10, 5, false, -far, far, 5},  {9, 5, true, 0, 10, 10},
        {10, 5, true, 0, 10, 10},      {0, 5, false, 0, 10, 0},
        {3, 10, true, -far, 5, 5},     {-5, 1, true, -far, far, -4},
        {-5, 1, false, -far, far, -6}, {-4.5, 1, true, -far, far, -4},
        {1, 0, true, -far, far, 1},    {far, 1.0E-10, true, -far, far, far},
    };
    for (const spin_case& each : cases)
        EXPECT_DOUBLE_EQ(spin_value(each.value, each.step, each.up, each.low, each.high),
                         each.result)
            << each.value << " by " << each.step;
    EXPECT_NEAR(spin_value(0.30000000000000004, 0.1, true, -far, far), 0.4, 1.0E-12);
    EXPECT_NEAR(spin_value(0.3, 0.1, true, -far, far), 0.4, 1.0E-12);
}

TEST(FortranText, TrimsAndPads) {
    char trimmed[8];
    copy_from_fstring(trimmed, "ab  ", 4);
    EXPECT_STREQ(trimmed, "ab");
    copy_from_fstring(trimmed, "    ", 4);
    EXPECT_STREQ(trimmed, "");
    copy_from_fstring(trimmed, "x", -1);
    EXPECT_STREQ(trimmed, "");
    char padded[4] = {'?', '?', '?', '!'};
    copy_to_fstring(padded, 3, "a");
    EXPECT_EQ(std::string(padded, 4), "a  !");
    copy_to_fstring(padded, 3, "abcdef");
    EXPECT_EQ(std::string(padded, 4), "abc!");
}

}  // namespace
}  // namespace tarn::winio
