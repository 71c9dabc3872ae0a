// Expectations were taken from gfortran 12.
#include "fio/gnu/edit_in.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>

namespace tarn::fio {
namespace {

struct Settings {
    bool zeros = false;  // BZ
    bool comma = false;  // DECIMAL='COMMA'
    std::int32_t scale = 0;
    Rounding round = Rounding::unspecified;
    EditModes modes() const {
        EditModes modes;
        modes.blank = zeros ? Blank::zero : Blank::null;
        modes.decimal = comma ? DecimalMark::comma : DecimalMark::point;
        modes.scale = scale;
        modes.round = round;
        return modes;
    }
};
constexpr Settings plain{};
constexpr Settings bz{.zeros = true};
constexpr Settings dc{.comma = true};

// A copy that ends where the field ends, so that a sanitizer sees a look beyond it.
class Field {
  public:
    explicit Field(const std::string& text)
        : size_(text.size()), bytes_(std::make_unique<char[]>(size_ + 1)) {
        std::memcpy(bytes_.get() + 1, text.data(), size_);
    }
    const char* data() const { return bytes_.get() + 1; }
    std::size_t size() const { return size_; }

  private:
    std::size_t size_;
    std::unique_ptr<char[]> bytes_;
};

constexpr int bad = iostat_read_value;
constexpr int overflow = iostat_read_overflow;

TEST(GnuFieldIn, Integers) {
    const struct {
        const char* text;
        int kind;
        int iostat;
        long long value;
        Settings settings = plain;
    } table[] = {
        {"12345", 4, 0, 12345},
        {"  -12", 8, 0, -12},
        {"+7   ", 2, 0, 7},
        {"1 2 3", 4, 0, 123},
        {"1 2 3", 4, 0, 10203, bz},
        {"12   ", 4, 0, 12000, bz},
        {" -  1", 4, 0, -1},
        {"     ", 4, 0, 0},
        {"     ", 4, 0, 0, bz},
        {"  -  ", 4, 0, 0},
        {"", 4, 0, 0},
        {"    -", 4, bad, 0},
        {"--12 ", 4, bad, 0},
        {"1-2  ", 4, bad, 0},
        {"12a45", 4, bad, 0},
        {"1.5  ", 4, bad, 0},
        {"\t12  ", 4, bad, 0},
        {"12,45", 4, bad, 0},
        {"12;45", 4, bad, 0, dc},
        {" 2147483647", 4, 0, 2147483647},
        {"-2147483648", 4, 0, -2147483648LL},
        {" 2147483648", 4, overflow, 0},
        {"-2147483649", 4, overflow, 0},
        {"  127", 1, 0, 127},
        {"  128", 1, overflow, 0},
        {" -128", 1, 0, -128},
        {"32768", 2, overflow, 0},
        {"9223372036854775807", 8, 0, std::numeric_limits<long long>::max()},
        {"9223372036854775808", 8, overflow, 0},
        {"-9223372036854775808", 8, 0, std::numeric_limits<long long>::min()},
        {"00000000000000000000000000000000000000000012 ", 4, 0, 12},
        {"99999999999999999999999999999999999999999912 ", 4, overflow, 0},
    };
    for (const auto& row : table) {
        const Field field(row.text);
        Int128 item = -99;
        const FieldResult result =
            get_integer(field.data(), field.size(), &item, row.kind, row.settings.modes());
        EXPECT_EQ(result.fault.iostat, row.iostat) << '"' << row.text << '"';
        EXPECT_LE(result.position, field.size());
        if (row.iostat != 0) {
            EXPECT_TRUE(item == -99) << '"' << row.text << '"';
            continue;
        }
        const auto unused = static_cast<unsigned>(64 - 8 * row.kind);
        EXPECT_EQ(static_cast<long long>(item) << unused >> unused, row.value)
            << '"' << row.text << '"';
    }
    Int128 item = 0;
    const Field least("-170141183460469231731687303715884105728");
    EXPECT_EQ(get_integer(least.data(), least.size(), &item, 16, {}).fault.iostat, 0);
    EXPECT_TRUE(item == Int128{1} << 127);
    const Field beyond("170141183460469231731687303715884105728");
    EXPECT_EQ(get_integer(beyond.data(), beyond.size(), &item, 16, {}).fault.iostat, overflow);
}

TEST(GnuFieldIn, Bits) {
    const struct {
        const char* text;
        int base;
        std::size_t size;
        int iostat;
        unsigned long long value;
        Settings settings = plain;
    } table[] = {
        {"FFFFFFFF", 16, 4, 0, 0xFFFFFFFF},
        {"0fFFFFFFF", 16, 4, 0, 0xFFFFFFFF},
        {"FFFFFFFFF", 16, 4, overflow, 0},
        {" ff ff  ", 16, 4, 0, 0xFFFF},
        {"  ff ff  ", 16, 4, 0, 0x0FF0FF00, bz},
        {" -1", 16, 4, 0, 0xFFFFFFFF},
        {" +1", 16, 4, 0, 1},
        {" +  ", 16, 4, 0, 0},
        {"  +", 16, 4, bad, 0},
        {" xg", 16, 4, bad, 0},
        {"3FF0000000000000", 16, 8, 0, 0x3FF0000000000000},
        {"37777777777", 8, 4, 0, 0xFFFFFFFF},
        {"77777777777", 8, 4, overflow, 0},
        {"8", 8, 4, bad, 0},
        {"-11111111111111111111111111111111", 2, 4, 0, 1},
        {"2", 2, 4, bad, 0},
        {"    ", 16, 4, 0, 0},
        {"80", 16, 1, 0, 0x80},
        {"100", 16, 1, overflow, 0},
    };
    for (const auto& row : table) {
        const Field field(row.text);
        unsigned long long item = 0;
        const FieldResult result =
            get_bits(field.data(), field.size(), row.base, &item, row.size, row.settings.modes());
        EXPECT_EQ(result.fault.iostat, row.iostat) << '"' << row.text << '"';
        EXPECT_EQ(item, row.value) << '"' << row.text << '"';
    }
}

TEST(GnuFieldIn, Logicals) {
    const struct {
        const char* text;
        int number;
        int value;
    } table[] = {
        {"T", 0, 1},       {" .T. ", 0, 1}, {".true.1", 0, 1}, {".falsex", 0, 0}, {"t1 2 ,3", 0, 1},
        {"F      ", 0, 0}, {"", 70, 0},     {"      ", 70, 0}, {".x", 52, 0},     {"..T", 52, 0},
        {". T", 52, 0},    {"1", 52, 0},    {".", 52, 0},
    };
    for (const auto& row : table) {
        for (const int kind : {1, 2, 4, 8}) {
            const Field field(row.text);
            long long item = 0x7777777777777777;
            const FieldResult result = get_logical(field.data(), field.size(), &item, kind);
            EXPECT_EQ(result.fault.number, row.number) << '"' << row.text << '"';
            if (row.number != 0) continue;
            const long long mask = kind == 8 ? -1 : (1LL << 8 * kind) - 1;
            EXPECT_EQ(item & mask, row.value) << '"' << row.text << '"';
        }
    }
}

TEST(GnuFieldIn, Reals) {
    const double inf = std::numeric_limits<double>::infinity();
    const struct {
        const char* text;
        std::int32_t d;
        int iostat;
        double value;
        Settings settings = plain;
    } table[] = {
        {"   12345", 2, 0, 123.45},
        {"   123.5", 2, 0, 123.5},
        {"   12 45", 2, 0, 12.45},
        {"   12 45", 2, 0, 120.45, bz},
        {"12345   ", 2, 0, 123.45},
        {"12345   ", 2, 0, 123450.0, bz},
        {"        ", 2, 0, 0.0},
        {"", 2, 0, 0.0},
        {"   -    ", 2, 0, 0.0},
        {"   .    ", 2, 0, 0.0},
        {"  -.    ", 2, 0, -0.0},
        {" -0     ", 2, 0, -0.0},
        {"   - 1  ", 2, 0, -0.01},
        {"  .E3   ", 2, 0, 0.0},
        {"  E3    ", 2, 0, 0.0},
        {"   1E2  ", 2, 0, 1.0},
        {"  123-2 ", 2, 0, 0.0123},
        {"  1.5+3 ", 2, 0, 1500.0},
        {"  1.5D3 ", 2, 0, 1500.0},
        {"  1.5q3 ", 2, 0, 1500.0},
        {"  1.5E 3", 2, 0, 1500.0},
        {"  1.5 E3", 2, 0, 1500.0},
        {"1 - 1   ", 2, 0, 0.001},
        {"  1.5E+ ", 2, 0, 1.5},
        {"  1.5E+", 2, bad, 0},
        {"  1.5+", 2, bad, 0},
        {"  1.5E  ", 2, bad, 0},
        {"  1.5Ex ", 2, bad, 0},
        {"  1..5  ", 2, bad, 0},
        {"  1.5E3.", 2, bad, 0},
        {"  1.5E1  ", 2, 0, 1.5e100, bz},
        {"1 E- 1  ", 2, 0, 1e-101, bz},
        {"   1.  5", 2, 0, 1.005, bz},
        {"12\t     ", 2, bad, 0},
        {"1,5     ", 2, bad, 0},
        {"1,5     ", 2, 0, 1.5, dc},
        {"1.5     ", 2, 0, 1.5, dc},
        {"1,5;    ", 2, bad, 0, dc},
        {"   12345", 2, 0, 1.2345, {.scale = 2}},
        {"   123.5", 2, 0, 1.235, {.scale = 2}},
        {"  1.5E1 ", 2, 0, 15.0, {.scale = 2}},
        {"   123.5", 2, 0, 12350.0, {.scale = -2}},
        {"12345678", 30, 0, 1.2345678e-23},
        {"0.1", 0, 0, 0.1, {.round = Rounding::up}},
        {"0.1", 0, 0, 0.09999999999999999, {.round = Rounding::down}},
        {"-0.1", 0, 0, -0.09999999999999999, {.round = Rounding::zero}},
        {"1E400", 0, 0, inf},
        {"1E400", 0, 0, 1.7976931348623157e308, {.round = Rounding::down}},
        {"1E-400", 0, 0, 0.0},
        {"1E10000", 2, 0, inf},
        {"1E10002", 2, bad, 0},
        {"1E-9999", 2, bad, 0},
        {"0E99999999999999999999", 0, bad, 0},
        {"1E0000000000000000001", 0, 0, 10.0},
        {"  inf   ", 2, 0, inf},
        {"-Infinity", 2, 0, -inf},
        {"- inf x ", 2, 0, -inf},
        {"inf     ", 2, bad, 0, bz},
        {"     inf", 2, 0, inf, bz},
        {"Infinit ", 2, bad, 0},
        {"inf,    ", 2, bad, 0},
        {"nan(a.b)", 2, bad, 0},
        {"nan(12", 2, bad, 0},
        {"nanx", 2, bad, 0},
        {"0x1.8p3", 2, bad, 0},
        {"1797693134862315700000000000000000000000.25", 0, 0, 1.7976931348623157e39},
    };
    for (const auto& row : table) {
        const Field field(row.text);
        double item = -99;
        const FieldResult result =
            get_real(field.data(), field.size(), row.d, &item, 8, row.settings.modes());
        EXPECT_EQ(result.fault.iostat, row.iostat) << '"' << row.text << '"';
        EXPECT_LE(result.position, field.size());
        const double expected = row.iostat == 0 ? row.value : -99;
        EXPECT_EQ(item, expected) << '"' << row.text << '"';
        EXPECT_EQ(std::signbit(item), std::signbit(expected)) << '"' << row.text << '"';
    }
    for (const char* text : {"NaN", "-nan", "nan()", "NaN(123) ", "nan(a)x", "NaN (1)"}) {
        const Field field(text);
        double item = 0;
        EXPECT_EQ(get_real(field.data(), field.size(), 0, &item, 8, {}).fault.iostat, 0) << text;
        EXPECT_TRUE(std::isnan(item)) << text;
    }
}

TEST(GnuFieldIn, RealKinds) {
    const Field field(" 0.1");
    float r4 = 0;
    long double r10 = 0;
    Quad r16 = 0;
    EXPECT_EQ(get_real(field.data(), field.size(), 0, &r4, 4, {}).fault.iostat, 0);
    EXPECT_EQ(get_real(field.data(), field.size(), 0, &r10, 10, {}).fault.iostat, 0);
    EXPECT_EQ(get_real(field.data(), field.size(), 0, &r16, 16, {}).fault.iostat, 0);
    EXPECT_EQ(r4, 0.1F);
    EXPECT_EQ(r10, 0.1L);
    EXPECT_TRUE(r16 == 0.1Q);
}

// A value halfway between two others, and digits far behind that decide.
TEST(GnuFieldIn, DigitsOfAnyNumber) {
    const std::string halfway = "9007199254740993." + std::string(20000, '0');
    double item = 0;
    const Field even(halfway);
    ASSERT_EQ(get_real(even.data(), even.size(), 0, &item, 8, {}).fault.iostat, 0);
    EXPECT_EQ(item, 9007199254740992.0);
    const Field above(halfway + "1");
    ASSERT_EQ(get_real(above.data(), above.size(), 0, &item, 8, {}).fault.iostat, 0);
    EXPECT_EQ(item, 9007199254740994.0);
    const Field zeros(std::string(100000, '0') + "1.5");
    ASSERT_EQ(get_real(zeros.data(), zeros.size(), 0, &item, 8, {}).fault.iostat, 0);
    EXPECT_EQ(item, 1.5);
}

TEST(GnuFieldIn, CommaEndsField) {
    const std::string text = "12345678901,3";
    EXPECT_EQ(field_end(text.data(), text.size(), {}), 11U);
    EXPECT_EQ(field_end(text.data(), 11, {}), 11U);
    EXPECT_EQ(field_end(text.data() + 9, 4, {}), 2U);
    EXPECT_EQ(field_end(text.data(), text.size(), dc.modes()), text.size());
    EXPECT_EQ(field_end(text.data(), 0, {}), 0U);
}

}  // namespace
}  // namespace tarn::fio
