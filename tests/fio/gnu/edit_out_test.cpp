// Fields as gfortran 12 prints them: every expected text was printed by a program of it.
#include "fio/gnu/edit_out.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>

#include "fio/number/decimal.h"

namespace {

using namespace tarn::fio;

// A list of control edit descriptors and one data edit descriptor: "RU,-2P,E12.4E3".
struct Descriptor {
    FieldEdit edit;
    EditModes modes;
};

Edit edit_named(std::string_view name) {
    constexpr std::string_view names[] = {"I", "B",  "O",  "Z",  "F", "E",
                                          "D", "EN", "ES", "EX", "G", "L"};
    for (std::size_t i = 0; i < std::size(names); ++i) {
        if (names[i] == name) return static_cast<Edit>(i);
    }
    ADD_FAILURE() << name;
    return Edit::G;
}

void apply_control(std::string_view text, EditModes& modes) {
    if (text.back() == 'P') modes.scale = std::atoi(std::string(text).c_str());
    if (text == "SP") modes.sign = SignMode::plus;
    if (text == "DC") modes.decimal = DecimalMark::comma;
    if (text == "RU") modes.round = Rounding::up;
    if (text == "RD") modes.round = Rounding::down;
    if (text == "RZ") modes.round = Rounding::zero;
    if (text == "RN") modes.round = Rounding::nearest;
    if (text == "RC") modes.round = Rounding::compatible;
}

Descriptor parse(std::string_view text) {
    Descriptor result;
    for (std::size_t comma; (comma = text.find(',')) != text.npos; text.remove_prefix(comma + 1)) {
        apply_control(text.substr(0, comma), result.modes);
    }
    const std::size_t width = text.find_first_of("0123456789");
    result.edit.edit = edit_named(text.substr(0, width));
    const std::string numbers(text.substr(width));
    char* end = nullptr;
    result.edit.w = static_cast<std::int32_t>(std::strtol(numbers.c_str(), &end, 10));
    if (*end == '.') result.edit.d = static_cast<std::int32_t>(std::strtol(end + 1, &end, 10));
    if (*end == 'E') result.edit.e = static_cast<std::int32_t>(std::strtol(end + 1, &end, 10));
    return result;
}

// The value of a kind that a text stands for, twice: the parts of a COMPLEX.
struct Real {
    alignas(16) unsigned char bytes[32] = {};

    Real(int kind, std::string_view text) {
        const bool negative = text.front() == '-';
        if (negative) text.remove_prefix(1);
        std::string digits;
        std::int64_t exponent = 0;
        if (text == "inf" || text == "nan") {
            digits = "1";
            exponent = 9999;
        } else {
            const std::size_t e = text.find('e');
            const std::string_view number = text.substr(0, e);
            for (const char c : number) {
                if (c != '.') digits += c;
            }
            if (number.find('.') != number.npos) {
                exponent = static_cast<std::int64_t>(number.find('.') + 1) -
                           static_cast<std::int64_t>(number.size());
            }
            if (e != text.npos) exponent += std::atoi(std::string(text.substr(e + 1)).c_str());
        }
        const std::size_t size = kind == 10 ? 16 : static_cast<std::size_t>(kind);
        for (unsigned char* at : {bytes, bytes + size}) {
            to_binary({negative, digits.data(), digits.size(), exponent}, Rounding::nearest, kind,
                      at);
            if (text == "nan") at[kind == 10 ? 7 : kind == 16 ? 13 : kind == 8 ? 5 : 2] |= 0x40;
        }
    }
};

std::string field(int kind, std::string_view value, std::string_view format) {
    const Descriptor descriptor = parse(format);
    const Real real(kind, value);
    std::string buffer(real_field_bound(descriptor.edit, real.bytes, kind, descriptor.modes), '~');
    char* const end = put_real(buffer.data(), real.bytes, kind, descriptor.edit, descriptor.modes);
    if (end == nullptr) return "?";
    buffer.resize(static_cast<std::size_t>(end - buffer.data()));
    return buffer;
}

TEST(RealField, AsGfortranPrintsIt) {
    // "?": the descriptor's numbers don't go together.
    struct {
        int kind;
        const char* value;
        const char* format;
        const char* expected;
    } const cases[] = {
        // F
        {8, "1234.5678", "F12.4", "   1234.5678"},
        {8, "-1234.5678", "F12.4", "  -1234.5678"},
        {8, "1234.5678", "F8.4", "********"},
        {8, "0.5", "F0.0", "0."},
        {8, "0.5", "F3.1", "0.5"},
        {8, "0.5", "F2.1", ".5"},
        {8, "-0.5", "F3.1", "-.5"},
        {8, "0.05", "F0.1", ".1"},
        {8, "0.04", "F0.1", ".0"},
        {8, "-0.04", "F6.1", "  -0.0"},
        {8, "-0.04", "F0.0", "-0."},
        {8, "0", "F0.0", "0."},
        {8, "-0", "F0.3", "-.000"},
        {8, "2.5", "F4.0", "  2."},
        {8, "3.5", "F4.0", "  4."},
        {8, "0.125", "F6.2", "  0.12"},
        {8, "0.375", "F6.2", "  0.38"},
        {8, "1.005", "F8.2", "    1.00"},
        {8, "9.995", "F8.2", "    9.99"},
        {8, "99.9995", "F8.3", "  99.999"},
        {8, "999999.5", "F7.0", "*******"},
        {8, "1e22", "F0.2", "10000000000000000000000.00"},
        {8, "1e23", "F30.1", "     99999999999999991611392.0"},
        {8, "1.7976931348623157e308", "F0.1",
         "17976931348623157081452742373170435679807056752584499659891747680315726078002853876058955"
         "86327668781715404589535143824642343213268894641827684675467035375169860499105765512820762"
         "45490090389328944075868508455133942304583236903222948165808559332123348274797826204144723"
         "168738177180919299881250404026184124858368.0"},
        {8, "4.9e-324", "F20.10", "        0.0000000000"},
        {8, "123456789012345678", "F25.3", "   123456789012345680.000"},
        {4, "0.1", "F20.15", "   0.100000001490116"},
        {4, "16777216", "F12.1", "  16777216.0"},
        {10, "0.1", "F30.25", "   0.1000000000000000000013553"},
        {16, "0.1", "F45.40", "   0.1000000000000000000000000000000000048148"},
        {8, "0.3", "F1.0", "*"},
        {8, "7", "F1.0", "*"},
        {8, "7", "F2.0", "7."},
        {8, "-7", "F2.0", "**"},
        {8, "1e-5", "SP,F10.3", "    +0.000"},
        {8, "3.25", "DC,F8.3", "   3,250"},
        // scale
        {8, "1234.5678", "2P,F12.4", " 123456.7800"},
        {8, "1234.5678", "-2P,F12.4", "     12.3457"},
        {8, "0.0625", "-1P,F8.2", "    0.01"},
        {8, "0.0625", "3P,F8.2", "   62.50"},
        {8, "5", "-1P,F5.0", "   0."},
        {8, "15", "-1P,F5.0", "   2."},
        {8, "0", "2P,F8.3", "   0.000"},
        {8, "123456789", "-12P,F10.2", "      0.00"},
        // E, D
        {8, "1234.5678", "E12.4", "  0.1235E+04"},
        {8, "1234.5678", "1P,E12.4", "  1.2346E+03"},
        {8, "1234.5678", "3P,E12.4", "  123.46E+01"},
        {8, "1234.5678", "-2P,E12.4", "  0.0012E+06"},
        {8, "1234.5678", "E24.16", "  0.1234567800000000E+04"},
        {8, "-1234.5678", "E10.4", "-.1235E+04"},
        {8, "-1234.5678", "E11.4", "-0.1235E+04"},
        {8, "1234.5678", "D12.4", "  0.1235D+04"},
        {8, "1e100", "E12.4", "  0.1000+101"},
        {8, "1e-100", "E12.4", "  0.1000E-99"},
        {8, "1e100", "E12.4E3", " 0.1000E+101"},
        {8, "1e100", "E12.4E2", "************"},
        {8, "9.9999e99", "E10.3", " 0.100+101"},
        {8, "9.9999", "E10.3", " 0.100E+02"},
        {8, "0", "E12.4", "  0.0000E+00"},
        {8, "-0", "E12.4", " -0.0000E+00"},
        {8, "0", "1P,E12.4", "  0.0000E+00"},
        {8, "1e-308", "E14.6", "  0.100000-307"},
        {10, "1e4000", "E14.6", "**************"},
        {10, "1e4000", "E14.6E4", "0.100000E+4001"},
        {10, "1e4000", "E14.6E5", ".100000E+04001"},
        {10, "1e4000", "E6.1", ".1+401"},
        {16, "1e-4000", "ES40.30E4", "  1.000000000000000000000000000000E-4000"},
        {4, "3.4028235e38", "E15.7", "  0.3402823E+39"},
        {4, "1.4e-45", "E15.7", "  0.1401298E-44"},
        {8, "12.5", "DC,E12.4", "  0,1250E+02"},
        {8, "12.5", "SP,E12.4", " +0.1250E+02"},
        {8, "1234.5678", "E12.4E0", "   0.1235E+4"},
        {8, "1234.5678", "5P,E12.4", "  12346.E-01"},
        {8, "1234.5678", "4P,E12.3", "   1235.E+00"},
        {8, "1234.5678", "-3P,E12.3", "?"},
        {8, "1234.5678", "E12.0", "?"},
        {8, "1234.5678", "6P,E12.3", "?"},
        // ES, EN
        {8, "1234.5678", "ES12.3", "   1.235E+03"},
        {8, "9.9996", "ES10.3", " 1.000E+01"},
        {8, "0", "ES10.3", " 0.000E+00"},
        {8, "1e-200", "ES10.3", " 1.000-200"},
        {8, "12345.678", "EN12.3", "  12.346E+03"},
        {8, "-0.0012345", "EN12.3", "  -1.234E-03"},
        {8, "999.9996", "EN12.3", "   1.000E+03"},
        {8, "9.9996", "EN12.3", "  10.000E+00"},
        {8, "99.9996", "EN12.3", " 100.000E+00"},
        {8, "1e215", "EN25.18", "99.999999999999990660+213"},
        {8, "0", "EN12.3", "   0.000E+00"},
        {8, "1e99", "EN9.1", "  1.0E+99"},
        {10, "6.461e-3001", "EN6.0", "6.-300"},
        {4, "0.99999994", "EN15.7", "999.9999404E-03"},
        // G
        {8, "0.05", "G12.4", "  0.5000E-01"},
        {8, "0.1", "G12.4", "  0.1000    "},
        {8, "0.099995", "G12.4", "  0.1000    "},
        {8, "0.0999949", "G12.4", "  0.9999E-01"},
        {8, "5", "G12.4", "   5.000    "},
        {8, "9999.5", "G12.4", "  0.1000E+05"},
        {8, "9999.49", "G12.4", "   9999.    "},
        {8, "99999", "G12.4", "  0.1000E+06"},
        {8, "0", "G12.4", "   0.000    "},
        {8, "-0", "G12.4", "  -0.000    "},
        {8, "5", "G12.4E3", "  5.000     "},
        {8, "0.05", "G12.4E3", " 0.5000E-001"},
        {8, "5", "2P,G12.4", "   5.000    "},
        {8, "0.05", "2P,G12.4", "  50.000E-03"},
        {8, "5", "G6.4", "******"},
        {8, "5", "G10.0", "?"},
        {4, "0.1", "G15.7", "  0.1000000    "},
        {4, "9999999", "G15.7", "   9999999.    "},
        {16, "123.456", "G45.36", "    123.455999999999999999999999999999998    "},
        {8, "-9999999.999999996", "RU,G24.12", "      -9999999.99999    "},
        {8, "-99999999.99999997", "RD,G22.11", "     -100000000.00    "},
        {8, "0.0999999", "RZ,G12.4", "  0.9999E-01"},
        {8, "0.09999999", "RU,G12.4", "  0.1000    "},
        // without a width
        {8, "0.1", "G0", "0.10000000000000001"},
        {8, "100", "G0", "100.00000000000000"},
        {8, "1e20", "G0", "0.10000000000000000E+21"},
        {8, "1e-20", "1P,G0", "9.9999999999999995E-21"},
        {8, "0", "G0", "0.0000000000000000"},
        {8, "-1.5", "SP,G0", "-1.5000000000000000"},
        {8, "1.5", "SP,G0", "+1.5000000000000000"},
        {4, "0.1", "G0", "0.100000001"},
        {10, "0.1", "G0", "0.100000000000000000001"},
        {16, "0.1", "G0", "0.100000000000000000000000000000000005"},
        {8, "9.996", "G0.3", "10.0"},
        {8, "1e100", "G0.3", "0.100E+101"},
        {8, "1e100", "G0.3E4", "0.100E+0101"},
        {8, "9.996", "E0.3", "0.100E+2"},
        {8, "0", "E0.3", "0.000"},
        {8, "1e100", "E0.3E2", "****"},
        {8, "185.5", "E0.15", "0.185500000000000E+3"},
        {8, "185.5", "E0.25", ".1855000000000000000000000E+3"},
        {4, "185.5", "E0.12", ".185500000000E+3"},
        {8, "9.996", "E0", "0.99960000000000004E+1"},
        {8, "9.996", "ES0", "9.99600000000000044"},
        {8, "1e100", "EN0", "10.00000000000000020E+99"},
        {8, "9.996", "D0", "0.99960000000000004D+1"},
        {8, "9.996", "F0", "10."},
        // rounding
        {8, "0.25", "RN,F4.1", " 0.2"},
        {8, "0.35", "RN,F4.1", " 0.3"},
        {8, "0.25", "RC,F4.1", " 0.3"},
        {8, "0.75", "RC,F4.1", " 0.8"},
        {8, "0.75", "RN,F4.1", " 0.8"},
        {8, "-0.25", "RC,F4.1", "-0.3"},
        {8, "1.01", "RU,F4.1", " 1.1"},
        {8, "-1.01", "RU,F5.1", " -1.0"},
        {8, "1.01", "RD,F4.1", " 1.0"},
        {8, "-1.01", "RD,F5.1", " -1.1"},
        {8, "1.99", "RZ,F4.1", " 1.9"},
        {8, "1e-21", "RU,F0.1", ".1"},
        {8, "1e-22", "RU,F0.1", ".0"},
        {4, "1e-13", "RU,F0.1", ".1"},
        {4, "1e-14", "RU,F0.1", ".0"},
        {16, "1e-36", "RU,F0.1", ".1"},
        {16, "1e-38", "RU,F0.1", ".0"},
        {8, "0.5", "RN,F0.0", "0."},
        {8, "-0.5", "RN,F0.0", "**"},
        {8, "-0.5", "RZ,F0.0", "**"},
        {8, "1.5", "RN,F0.0", "2."},
        {8, "1.2345", "RU,E10.3", " 0.124E+01"},
        {8, "1.2345", "RD,E10.3", " 0.123E+01"},
        {8, "9.9991", "RU,ES10.3", " 1.000E+01"},
        {8, "9.9991", "RU,EN10.3", "10.000E+00"},
        {8, "12345", "RC,-1P,F8.0", "   1235."},
        {8, "1e-10", "RU,-2P,F8.3", "   0.001"},
        // what is no number
        {8, "inf", "F12.4", "    Infinity"},
        {8, "-inf", "F12.4", "   -Infinity"},
        {8, "inf", "F8.1", "Infinity"},
        {8, "-inf", "F8.1", "    -Inf"},
        {8, "-inf", "F9.1", "-Infinity"},
        {8, "inf", "F3.1", "Inf"},
        {8, "-inf", "F3.1", "***"},
        {8, "inf", "F2.1", "**"},
        {8, "inf", "SP,F12.1", "   +Infinity"},
        {8, "inf", "SP,F8.1", "    +Inf"},
        {8, "inf", "SP,F3.1", "Inf"},
        {8, "nan", "F12.4", "         NaN"},
        {8, "nan", "SP,E3.1", "NaN"},
        {8, "nan", "E2.1", "**"},
        {8, "nan", "G0", "NaN"},
        {8, "-inf", "G0", "-Inf"},
        {8, "inf", "F0.2", "Inf"},
        {16, "inf", "ES20.10", "            Infinity"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(field(test.kind, test.value, test.format), test.expected)
            << "REAL(" << test.kind << ") " << test.value << " in " << test.format;
    }
}

TEST(ListItem, RealAndComplex) {
    struct {
        int kind;
        const char* value;
        bool complex;
        const char* modes;
        const char* expected;
    } const cases[] = {
        {4, "0.1", false, "G0", " 0.100000001    "},
        {4, "1e10", false, "G0", "  1.00000000E+10"},
        {4, "-3.4028235e38", false, "G0", " -3.40282347E+38"},
        {4, "0", false, "G0", "  0.00000000    "},
        {8, "0", false, "G0", "  0.0000000000000000     "},
        {8, "0.1", false, "G0", " 0.10000000000000001     "},
        {8, "-0.1", false, "G0", "-0.10000000000000001     "},
        {8, "123456789.123", false, "G0", "  123456789.12300000     "},
        {8, "1e17", false, "G0", "  1.0000000000000000E+017"},
        {8, "1e16", false, "G0", "  10000000000000000.     "},
        {8, "99999999999999999", false, "G0", "  1.0000000000000000E+017"},
        {8, "1e-100", false, "G0", "  1.0000000000000000E-100"},
        {8, "1.5", false, "SP,G0", " +1.5000000000000000     "},
        {8, "1.5", false, "DC,G0", "  1,5000000000000000     "},
        {8, "1.1", false, "RU,G0", "  1.1000000000000001     "},
        {8, "inf", false, "G0", "                 Infinity"},
        {8, "nan", false, "G0", "                      NaN"},
        {10, "0.1", false, "G0", "  1.00000000000000000001E-0001"},
        {10, "1e4000", false, "G0", "  9.99999999999999999997E+3999"},
        {16, "0.1", false, "G0", "  1.00000000000000000000000000000000005E-0001"},
        {16, "1e-4000", false, "G0", "  1.00000000000000000000000000000000008E-4000"},
        {4, "1.5", true, "G0", "            (1.50000000,1.50000000)"},
        {8, "1.5", true, "G0", "              (1.5000000000000000,1.5000000000000000)"},
        {8, "-1e20", true, "G0", "(-1.00000000000000000E+020,-1.00000000000000000E+020)"},
        {8, "1.5", true, "DC,G0", "              (1,5000000000000000;1,5000000000000000)"},
        {8, "-inf", true, "G0", "                                          (-Inf,-Inf)"},
        {10, "0", true, "G0", "                (0.00000000000000000000,0.00000000000000000000)"},
        {16, "0.1", true, "G0",
         "  "
         "(1.000000000000000000000000000000000048E-0001,1.000000000000000000000000000000000048E-"
         "0001)"},
    };
    for (const auto& test : cases) {
        const EditModes modes = parse(test.modes).modes;
        const Real real(test.kind, test.value);
        char buffer[list_item_bound];
        char* const end = test.complex ? put_list_complex(buffer, real.bytes, test.kind, modes)
                                       : put_list_real(buffer, real.bytes, test.kind, modes);
        EXPECT_EQ(std::string(buffer, end), test.expected) << test.kind << " " << test.value;
    }
}

// A G field turns from one form to the other, and from d to d - 1 decimals, where the rounded value
// does.
TEST(RealField, GeneralFormTurnsAtTheRoundedValue) {
    EXPECT_EQ(field(8, "99999.4999", "G12.5"), "  99999.    ");
    EXPECT_EQ(field(8, "99999.5001", "G12.5"), " 0.10000E+06");
    EXPECT_EQ(field(8, "9.99995", "G12.5"), "  10.000    ");
    EXPECT_EQ(field(8, "9.999949", "G12.5"), "  9.9999    ");
}

TEST(RealField, Hexadecimal) {
    EXPECT_EQ(field(8, "1", "EX0.0"), "0X1.P+0");
    EXPECT_EQ(field(8, "0.15625", "EX0.0"), "0X1.4P-3");
    EXPECT_EQ(field(8, "-0.1", "EX0.0"), "-0X1.999999999999AP-4");
    EXPECT_EQ(field(8, "0.1", "EX16.3"), "      0X1.99AP-4");
    EXPECT_EQ(field(8, "1.96875", "EX12.1E3"), "  0X1.0P+001");
    EXPECT_EQ(field(8, "1.96875", "EX12.1E2"), "   0X1.0P+01");
    EXPECT_EQ(field(8, "1.96875", "RZ,EX9.1"), " 0X1.FP+0");
    EXPECT_EQ(field(8, "0", "EX0.2"), "0X0.00P+0");
    EXPECT_EQ(field(8, "4.9e-324", "EX0.0"), "0X1.P-1074");
    EXPECT_EQ(field(8, "4.9e-324", "EX0.0E3"), "*********");
    EXPECT_EQ(field(10, "0.1", "DC,EX0.0"), "0X1,999999999999999AP-4");
    EXPECT_EQ(field(16, "0.1", "EX40.28"), "     0X1.999999999999999999999999999AP-4");
    EXPECT_EQ(field(8, "0.1", "EX7.3"), "*******");
    EXPECT_EQ(field(8, "-inf", "EX12.3"), "   -Infinity");
}

std::string integer(Int128 value, std::string_view format, int kind = 4) {
    const Descriptor descriptor = parse(format);
    std::string buffer(integer_field_bound(descriptor.edit, kind), '~');
    char* const end = put_integer(buffer.data(), value, kind, descriptor.edit, descriptor.modes);
    return {buffer.data(), end};
}

TEST(IntegerField, DecimalDigits) {
    const auto least = static_cast<Int128>(static_cast<UInt128>(1) << 127);
    EXPECT_EQ(integer(1000, "I3"), "***");
    EXPECT_EQ(integer(5, "I3.3"), "005");
    EXPECT_EQ(integer(0, "I3.0"), "   ");
    EXPECT_EQ(integer(0, "I0.0"), " ");
    EXPECT_EQ(integer(0, "SP,I3"), " +0");
    EXPECT_EQ(integer(-12, "I0"), "-12");
    EXPECT_EQ(integer(-12, "I0.4"), "-0012");
    EXPECT_EQ(integer(-12, "I6.4"), " -0012");
    EXPECT_EQ(integer(12, "SP,I2"), "**");
    EXPECT_EQ(integer(12, "G0"), "12");
    EXPECT_EQ(integer(least, "I0", 16), "-170141183460469231731687303715884105728");
}

std::string bits(long long value, std::string_view format, std::size_t size) {
    const Descriptor descriptor = parse(format);
    std::string buffer(bits_field_bound(descriptor.edit, size), '~');
    char* const end = put_bits(buffer.data(), &value, size, descriptor.edit);
    return {buffer.data(), end};
}

TEST(BitsField, DigitsOfAPowerOfTwo) {
    EXPECT_EQ(bits(255, "Z0", 4), "FF");
    EXPECT_EQ(bits(255, "Z6.4", 4), "  00FF");
    EXPECT_EQ(bits(-1, "B8", 1), "11111111");
    EXPECT_EQ(bits(-1, "O6", 2), "177777");
    EXPECT_EQ(bits(-1, "O0", 8), "1777777777777777777777");
    EXPECT_EQ(bits(-1, "Z7", 4), "*******");
    EXPECT_EQ(bits(0, "B4.0", 4), "    ");
    EXPECT_EQ(bits(0, "O0.0", 4), " ");
    EXPECT_EQ(bits(1LL << 40, "Z12.0", 8), "            ");  // the low 32 bits decide
    EXPECT_EQ(bits(1LL << 40, "Z12", 8), " 10000000000");
}

TEST(ListItem, IntegerAndLogical) {
    const auto list = [](Int128 value, int kind, SignMode sign = SignMode::processor) {
        EditModes modes;
        modes.sign = sign;
        char buffer[list_item_bound];
        return std::string(buffer, put_list_integer(buffer, value, kind, modes));
    };
    EXPECT_EQ(list(-128, 1), "-128");
    EXPECT_EQ(list(7, 2), "     7");
    EXPECT_EQ(list(42, 4), "         42");
    EXPECT_EQ(list(42, 4, SignMode::plus), "        +42");
    EXPECT_EQ(list(std::numeric_limits<std::int64_t>::min(), 8), "-9223372036854775808");
    EXPECT_EQ(list(1, 16), std::string(39, ' ') + "1");
    char buffer[8];
    EXPECT_EQ(std::string(buffer, put_logical(buffer, true, {Edit::L, 3})), "  T");
    EXPECT_EQ(std::string(buffer, put_logical(buffer, false, {Edit::G, 0})), "F");
    EXPECT_EQ(std::string(buffer, put_list_logical(buffer, true, 4)), "T");
}

}  // namespace
