// What the edit descriptors make of values.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tarn/edit.h"
#include "transfer.h"

namespace tarn::fio::native::test {
namespace {

TEST(IntegerOutput, FieldsOfEverySize) {
    const struct {
        const char* format;
        std::int64_t value;
        int size;
        const char* text;
    } cases[] = {
        {"(I3,'<')", 1000, 4, "***<"},
        {"(I3.3)", 5, 4, "005"},
        {"(I3.0,'<')", 0, 4, "   <"},
        {"(I0.0,'<')", 0, 4, " <"},
        {"(I0,'<')", -12, 4, "-12<"},
        {"(I5)", -12, 2, "  -12"},
        {"(SP,I5,'<')", 12, 1, "  +12<"},
        {"(SP,I0,SS,I0)", 7, 4, "+7"},
        {"(I4.3)", -7, 4, "-007"},
        {"(I3.3)", -7, 4, "***"},
        {"(I12)", std::numeric_limits<std::int32_t>::min(), 4, " -2147483648"},
        {"(I0)", std::numeric_limits<std::int64_t>::min(), 8, "-9223372036854775808"},
        {"(I4)", -128, 1, "-128"},
        {"(G6.2)", 42, 4, "    42"},
        {"(G0.3)", 42, 4, "42"},
        {"(B8)", -3, 1, "11111101"},
        {"(B8)", 5, 1, "     101"},
        {"(B0)", -1, 2, "1111111111111111"},
        {"(Z0)", 255, 4, "FF"},
        {"(Z8.4)", 255, 4, "    00FF"},
        {"(Z4)", -1, 4, "****"},
        {"(Z0)", -1, 8, "FFFFFFFFFFFFFFFF"},
        {"(O6)", -1, 2, "177777"},
        {"(O0)", -1, 4, "37777777777"},
        {"(O0)", -1, 8, "1777777777777777777777"},
        {"(O3)", -1, 1, "377"},
        {"(SP,Z4)", 10, 4, "   A"},
        {"(Z0.0,'<')", 0, 4, " <"},
        {"(Z2)", 0, 4, " 0"},
        {"(A2,'<')", 0x44434241, 4, "AB<"},
        {"(A,'<')", 0x44434241, 4, "ABCD<"},
        {"(A6,'<')", 0x44434241, 4, "  ABCD<"},
        {"(F5.1)", 3, 4, "#51"},
        {"(L3)", 3, 4, "#51"},
        {"(I3.4)", 3, 4, "#54"},
        {"(O3.4)", 3, 4, "#55"},
    };
    for (const auto& c : cases) {
        std::string text;
        switch (c.size) {
            case 1:
                text = written(c.format, static_cast<std::int8_t>(c.value));
                break;
            case 2:
                text = written(c.format, static_cast<std::int16_t>(c.value));
                break;
            case 4:
                text = written(c.format, static_cast<std::int32_t>(c.value));
                break;
            default:
                text = written(c.format, c.value);
                break;
        }
        EXPECT_EQ(text, c.text) << c.format << " " << c.value;
    }
}

TEST(RealOutput, Real8) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    const struct {
        const char* format;
        double value;
        const char* text;
    } cases[] = {
        // F
        {"(F2.1)", 0.25, ".3"},
        {"(F3.1)", 0.25, "0.3"},
        {"(F0.2,'<')", -1.5, "-1.50<"},
        {"(F0.2,'<')", 0.996, "1.00<"},
        {"(F0.2,'<')", 0.5, "0.50<"},
        {"(F0.0,'<')", 5.0, "5.<"},
        {"(F5.2)", -0.004, " 0.00"},
        {"(F5.2)", -0.006, "-0.01"},
        {"(F6.2)", 123.456, "123.46"},
        {"(F5.2)", 123.456, "*****"},
        {"(F8.3)", 0.0, "   0.000"},
        {"(SP,F8.3)", 1.5, "  +1.500"},
        {"(2PF8.2)", 1.5, "  150.00"},
        {"(-2PF8.4)", 150.0, "  1.5000"},
        {"(F10.0)", 2.5, "        3."},
        {"(F4.0)", -0.2, "  0."},
        {"(F30.1)", 1e22, "     10000000000000000000000.0"},
        {"(F40.3)", 123456789012345678901234567890.0, "      123456789012345677870000000000.000"},
        {"(F25.22)", 0.1, " 0.1000000000000000055500"},
        // E and D
        {"(E12.4)", 0.0, "  0.0000E+00"},
        {"(E12.4)", 1234.5, "  0.1235E+04"},
        {"(1PE12.4)", 1234.5, "  1.2345E+03"},
        {"(3PE12.4)", 1234.5, "  123.45E+01"},
        {"(-2PE12.4)", 1234.5, "  0.0012E+06"},
        {"(-5PE12.4)", 1234.5, "#61"},
        {"(5PE12.3)", 1234.5, "#61"},
        {"(4PE12.3)", 1234.5, "   1235.E+00"},
        {"(E10.0)", 1.0, "#61"},
        {"(D12.4)", -1234.5, " -0.1235D+04"},
        {"(E14.6)", 1e300, "  0.100000+301"},
        {"(E14.6)", 1e-300, "  0.100000-299"},
        {"(E14.6E3)", 1e300, " 0.100000E+301"},
        {"(E14.6E2)", 1e300, "**************"},
        {"(E10.4)", 1234.5, "0.1235E+04"},
        {"(E9.4)", 1234.5, ".1235E+04"},
        {"(E9.4)", -1234.5, "*********"},
        {"(E20.3E12)", 1.0, " 0.100E+000000000001"},
        {"(SP,E12.4)", 1.0, " +0.1000E+01"},
        {"(E0)", 1.0, "#447"},
        // EN and ES
        {"(EN12.3)", 12345.0, "  12.345E+03"},
        {"(EN12.3)", 0.0, "   0.000E+00"},
        {"(EN12.3)", 0.00123, "   1.230E-03"},
        {"(EN12.3)", 0.0123, "  12.300E-03"},
        {"(EN12.3)", 999.9999, "   1.000E+03"},
        {"(ES12.3)", 12345.0, "   1.235E+04"},
        {"(ES12.3)", -0.012345, "  -1.235E-02"},
        {"(ES12.3E4)", 1.0, " 1.000E+0000"},
        // G
        {"(G12.4,'<')", 0.05, "  0.5000E-01<"},
        {"(G12.4,'<')", 5.0, "   5.000    <"},
        {"(G12.4,'<')", 0.1, "  0.1000    <"},
        {"(G12.4,'<')", 9999.0, "   9999.    <"},
        {"(G12.4,'<')", 10000.0, "  0.1000E+05<"},
        {"(G12.4,'<')", 9999.9, "  0.1000E+05<"},
        {"(G12.4,'<')", 0.0, "   0.000    <"},
        {"(G14.4E3,'<')", 5.0, "    5.000     <"},
        {"(1PG12.4,'<')", 5.0, "   5.000    <"},
        {"(1PG12.4,'<')", 5e8, "  5.0000E+08<"},
        {"(G0.0)", 1.5, "1.500000000000000"},
        {"(G0.0)", 1e-7, ".1000000000000000E-06"},
        // Not numbers
        {"(F3.0)", std::nan(""), "NaN"},
        {"(F2.0)", std::nan(""), "Na"},
        {"(F10.3)", inf, "  Infinity"},
        {"(E12.3)", -inf, "   -Infinity"},
        {"(F0.3)", inf, "Infinity"},
        {"(Z0)", 1.0, "3FF0000000000000"},
        {"(I5)", 1.0, "#51"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(written(c.format, c.value), c.text) << c.format << " " << c.value;
}

TEST(RealOutput, OtherSizes) {
    EXPECT_EQ(written("(F8.5)", 0.1F), " 0.10000");
    EXPECT_EQ(written("(F20.17)", 0.1F), " 0.10000000149011612");
    EXPECT_EQ(written("(Z0)", 1.0F), "3F800000");
    EXPECT_EQ(written("(Z0)", 1.0L), "3FFF8000000000000000");
    EXPECT_EQ(written("(E13.4)", 1e4000L), "   0.1000$400");
    EXPECT_EQ(written("(E13.4)", 1e-4000L), "   0.1000=399");
    EXPECT_EQ(written("(E14.4E4)", 1e4000L), "  0.1000E+4001");
    float undefined;
    std::memset(&undefined, 0x80, sizeof undefined);
    EXPECT_EQ(written("(F6.2,E4.1)", undefined, undefined), "??????????");
}

// Another library's digits of the same values, where a tie is out of the question.
TEST(RealOutput, AgreesWithAnotherConversion) {
    std::uint64_t seed = 0x9E3779B97F4A7C15U;
    for (int i = 0; i < 3000; ++i) {
        seed = seed * 6364136223846793005U + 1442695040888963407U;
        const double mantissa = 1 + static_cast<double>(seed >> 12) / 4503599627370496.0;
        const double value =
            std::ldexp(i % 2 == 0 ? mantissa : -mantissa, static_cast<int>(seed % 1900) - 950);
        if (std::abs(value) > 1e13 && std::abs(value) < 1e17) continue;  // halves end there
        char expected[400];
        std::snprintf(expected, sizeof expected, "%.15E", value);
        char* const e = std::strchr(expected, 'E');
        const int exponent = std::atoi(e + 1);
        std::snprintf(e, 8, "E%c%03d", exponent < 0 ? '-' : '+', std::abs(exponent));
        const std::string text = written("(ES30.15E3)", value);
        EXPECT_EQ(text.substr(text.find_first_not_of(' ')), expected);
        if (std::abs(value) > 1e13 || std::abs(value) < 1e-3) continue;
        std::snprintf(expected, sizeof expected, "%30.5f", value);
        EXPECT_EQ(written("(F30.5)", value), expected);
    }
}

TEST(RealOutput, DigitsForCompiledCode) {
    char digits[40] = {};
    std::int16_t sign = 0;
    std::int32_t exponent = 99;
    const auto convert = [&](long double value, std::int32_t count) {
        std::memset(digits, 0, sizeof digits);
        CVDL_h(value, &sign, digits, &exponent, count);
        return (sign < 0 ? "-" : "") + std::string(digits) + "," + std::to_string(exponent);
    };
    EXPECT_EQ(convert(-123.456L, 4), "-1235,3");
    EXPECT_EQ(convert(123.456L, -1), "1235,3");
    EXPECT_EQ(convert(0.0625L, -3), "63,-1");
    EXPECT_EQ(convert(999.96L, -1), "10000,4");
    EXPECT_EQ(convert(0, 3), "000,0");
    EXPECT_EQ(convert(std::numeric_limits<double>::min(), 17), "22250738585072014,-307");
    EXPECT_EQ(convert(1.0L / 3, 25), "3333333333333333333400000,0");
}

TEST(LogicalAndCharacterOutput, Fields) {
    EXPECT_EQ(written("(L3,L1,G4.2,G0.0,A1)", Logical{1}, Logical{0}, Logical{5}, Logical{0},
                      Logical{'x'}),
              "  TF   TFx");
    EXPECT_EQ(written("(I3)", Logical{1}), "#51");
    EXPECT_EQ(written("(A5,A2,A,G5.1,'<')", "abc", "abc", "abc", "abc"), "  abcababc  abc<");
    EXPECT_EQ(written("(I3)", "abc"), "#51");
    EXPECT_EQ(written("(B'##')", "abc"), "#51");
    EXPECT_EQ(written("(A)", std::string(81, 'x')), "#67");
}

TEST(ComplexOutput, TwoDescriptorsEach) {
    const std::complex<float> c(1.5F, -2);
    EXPECT_EQ(written("(F5.1,E10.2)", c), "  1.5 -0.20E+01");
    EXPECT_EQ(written("('(',F4.1,',',F4.1,')')", std::complex<long double>(1, 2)), "( 1.0, 2.0)");
}

TEST(BusinessEditing, Pictures) {
    const struct {
        const char* picture;
        double value;
        const char* text;
    } cases[] = {
        {"$$,$$#.##", 12.5, "   $12.50"},
        {"$$,$$#.##", 1234.5, "$1,234.50"},
        {"$$,$$#.##", 123.5, "  $123.50"},
        {"$$,$$#.##", 0.5, "    $0.50"},
        {"$$,$$#.##", 12345.5, "*********"},
        {"----#", -7.0, "   -7"},
        {"----#", 7.0, "    7"},
        {"++++#", 7.0, "   +7"},
        {"-###", -7.0, "-007"},
        {"-###", -1234.0, "****"},
        {"ZZ,ZZ#", 7.0, "     7"},
        {"zz,zz#", 1234.0, " 1,234"},
        {"**,**#.##", 7.25, "*****7.25"},
        {"$**,**#.##", 1234.0, "$*1,234.00"},
        {"####", 7.0, "0007"},
        {"#.##", 0.004, "0.00"},
        {"#.##", 0.05, "0.05"},
        {"Z.##", 0.05, " .05"},
        {"#.##", 9.999, "****"},
        {"##CR", -7.0, "07CR"},
        {"##CR", 7.0, "07"},
        {"##-", -7.0, "07-"},
        {"##-", 7.0, "07"},
        {"##+", 7.0, "07+"},
        {"-+##", 7.0, "#135"},
        {"##-#", 7.0, "#159"},
        {"##C", 7.0, "#159"},
        {"--$#", 7.0, "#160"},
        {"#$", 7.0, "#160"},
        {"#*", 7.0, "#161"},
        {"#.#Z", 7.0, "#163"},
        {"#.#.", 7.0, "#164"},
        {",#", 7.0, "#165"},
        {"#X", 7.0, "#166"},
    };
    for (const auto& c : cases) {
        const std::string format = std::string("(B'") + c.picture + "')";
        EXPECT_EQ(written(format, c.value), c.text) << c.picture << " " << c.value;
    }
    EXPECT_EQ(written("(B'ZZ#',B'$$#')", std::int32_t{12}, std::int64_t{34}), " 12$34");
}

}  // namespace
}  // namespace tarn::fio::native::test
