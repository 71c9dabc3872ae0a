// What input fields give to items.
#include <gtest/gtest.h>

#include "transfer.h"

namespace tarn::fio::native::test {
namespace {

template <typename T>
std::string read_one(const char* format, const char* text, T start = T{}) {
    T item = start;
    const std::int32_t iostat = read({text}, format, item);
    if (iostat != 0) return message(iostat);
    if constexpr (sizeof(T) > 8) {
        char shown[64];
        std::snprintf(shown, sizeof shown, "%.19Lg", static_cast<long double>(item));
        return shown;
    } else if constexpr (std::is_floating_point_v<T>) {
        char shown[64];
        std::snprintf(shown, sizeof shown, "%.17g", static_cast<double>(item));
        return shown;
    } else {
        return std::to_string(static_cast<long long>(item));
    }
}

TEST(IntegerInput, Fields) {
    const struct {
        const char* format;
        const char* text;
        const char* i1;
        const char* i4;
        const char* i8;
    } cases[] = {
        {"(I5)", "   12", "12", "12", "12"},
        {"(I5)", "  -12", "-12", "-12", "-12"},
        {"(I5)", " + 12", "12", "12", "12"},
        {"(I5)", "     ", "0", "0", "0"},
        {"(I5)", "12", "12", "12", "12"},
        {"(I5)", "1 2", "12", "12", "12"},
        {"(BZ,I2)", "1 ", "10", "10", "10"},
        {"(BZ,I5)", "  1  ", "100", "100", "100"},
        {"(I5)", "1 - 2", "#52", "#52", "#52"},
        {"(I5)", "  -", "#52", "#52", "#52"},
        {"(I5)", "1.5", "#52", "#52", "#52"},
        {"(I4)", "128", "#53", "128", "128"},
        {"(I4)", "-128", "-128", "-128", "-128"},
        {"(I11)", "2147483647", "#53", "2147483647", "2147483647"},
        {"(I11)", "2147483648", "#53", "#53", "2147483648"},
        {"(I11)", "-2147483648", "#53", "-2147483648", "-2147483648"},
        {"(I20)", "-9223372036854775808", "#53", "#53", "-9223372036854775808"},
        {"(I20)", "9223372036854775808", "#53", "#53", "#53"},
        {"(G5.1)", "   12", "12", "12", "12"},
        {"(Z2)", "FF", "-1", "255", "255"},
        {"(Z8)", "ffffffff", "#53", "-1", "4294967295"},
        {"(Z9)", "0FFFFFFFF", "#53", "-1", "4294967295"},
        {"(B8)", "1 0 1", "5", "5", "5"},
        {"(B8)", "102", "#51", "#51", "#51"},
        {"(O4)", "-7", "#51", "#51", "#51"},
        {"(O4)", "0377", "-1", "255", "255"},
        {"(Z4)", "", "0", "0", "0"},
        {"(I0)", "12", "#409", "#409", "#409"},
        {"(F5.1)", "12", "#51", "#51", "#51"},
        {"(A1)", "A", "65", "538976321", "2314885530818453569"},
        {"(A)", "A", "65", "538976321", "2314885530818453569"},
        {"(A3)", "xyA", "65", "541161848", "2314885530820639096"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(read_one<std::int8_t>(c.format, c.text), c.i1) << c.format << c.text;
        EXPECT_EQ(read_one<std::int32_t>(c.format, c.text), c.i4) << c.format << c.text;
        EXPECT_EQ(read_one<std::int64_t>(c.format, c.text), c.i8) << c.format << c.text;
    }
}

TEST(RealInput, Fields) {
    const struct {
        const char* format;
        const char* text;
        const char* r4;
        const char* r8;
    } cases[] = {
        {"(F5.2)", "123", "1.2300000190734863", "1.23"},
        {"(F5.2)", "1.5", "1.5", "1.5"},
        {"(F5.2)", "1E2", "1", "1"},
        {"(F5.2)", "1.E2", "100", "100"},
        {"(BZ,F2.0)", "1 ", "10", "10"},
        {"(F8.2)", "-1.5+2", "-150", "-150"},
        {"(F8.2)", "1.5D-2", "0.014999999664723873", "0.014999999999999999"},
        {"(F8.2)", "1.5d2", "150", "150"},
        {"(F8.0)", "", "0", "0"},
        {"(F8.0)", ".", "0", "0"},
        {"(F8.0)", "1.2.3", "#52", "#52"},
        {"(F8.0)", "+-1", "#52", "#52"},
        {"(F8.0)", "1E5+2", "#52", "#52"},
        {"(F8.0)", "1E+-2", "#52", "#52"},
        {"(F8.0)", "NaN", "#52", "#52"},
        {"(2PF8.0)", "150.", "1.5", "1.5"},
        {"(2PF8.0)", "150.E0", "150", "150"},
        {"(E8.0)", "1E38", "9.9999996802856925e+37", "9.9999999999999998e+37"},
        {"(E8.0)", "1E39", "#53", "9.9999999999999994e+38"},
        {"(E8.0)", "1E999", "#452", "9.9999999999999995e+999"},
        {"(E8.0)", "1E308", "#452", "1e+308"},
        {"(E8.0)", "1E309", "#452", "#53"},
        {"(E8.0)", "1E-126", "#452", "9.9999999999999995e-127"},
        {"(E8.0)", "1E9999", "#452", "#452"},
        {"(I5)", "12", "#51", "#51"},
        {"(EN8.1,ES8.1)", "12.5", "12.5", "12.5"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(read_one<float>(c.format, c.text), c.r4) << c.format << c.text;
        const std::string r8 = c.text == std::string("1E999") ? "#53" : c.r8;
        EXPECT_EQ(read_one<double>(c.format, c.text), r8) << c.format << c.text;
    }
    EXPECT_EQ(read_one<long double>("(F8.0)", "1E4932"), "1e+4932");
    EXPECT_EQ(read_one<long double>("(F8.0)", "1E4933"), "#53");
    EXPECT_EQ(read_one<long double>("(F8.0)", "1E16385"), "#452");
}

TEST(RealInput, ReadsBackWhatWasWritten) {
    std::uint64_t seed = 88172645463325252U;
    for (int i = 0; i < 2000; ++i) {
        seed ^= seed << 13;
        seed ^= seed >> 7;
        seed ^= seed << 17;
        double value;
        std::memcpy(&value, &seed, sizeof value);
        if (!(std::abs(value) < 1e290 && std::abs(value) > 1e-290)) continue;
        const std::string text = written("(E26.17E3)", value);
        double back = 0;
        ASSERT_EQ(read({text}, "(E26.0)", back), 0) << text;
        // The extended arithmetic may be off by the last bit.
        EXPECT_NEAR(back / value, 1.0, 2.3e-16) << text;
    }
}

TEST(LogicalInput, Fields) {
    const struct {
        const char* format;
        const char* text;
        const char* result;
    } cases[] = {
        {"(L3)", ".T.", "1"},   {"(L7)", " .FALSE", "0"}, {"(L1)", "t", "1"},
        {"(L2)", "f", "0"},     {"(L3)", "", "#70"},      {"(L3)", "X", "#52"},
        {"(L3)", "..T", "#52"}, {"(L3)", ".", "#52"},     {"(G3.0)", "T", "1"},
        {"(L5)", ",", "0"},     {"(I3)", "T", "#51"},
    };
    for (const auto& c : cases) {
        Logical item{7};
        const std::int32_t iostat = read({c.text}, c.format, item);
        EXPECT_EQ(iostat == 0 ? std::to_string(item.value) : message(iostat), c.result)
            << c.format << c.text;
    }
}

TEST(Input, CommasEndFields) {
    std::int32_t i = 0;
    std::int32_t j = 0;
    EXPECT_EQ(read({"12,34"}, "(I5,I5)", i, j), 0);
    EXPECT_EQ(i, 12);
    EXPECT_EQ(j, 34);
    double x = 0;
    Logical l;
    std::string rest(3, '?');
    EXPECT_EQ(read({"1.5,Tr,2,abc"}, "(F9.3,L5,I5,A3)", x, l, i, rest), 0);
    EXPECT_EQ(x, 1.5);
    EXPECT_EQ(l.value, 1);
    EXPECT_EQ(i, 2);
    EXPECT_EQ(rest, "abc");
    // Not in strict mode.
    Internal file({"12,34"});
    Packed statement;
    file.give_to(statement);
    statement.add(IOCode::strict, TypeCode::none, nullptr).format("(I5)");
    EXPECT_EQ(transfer(statement, RSF1_hh, [&] { get(i); }), 52);
}

TEST(Input, CharacterFields) {
    const struct {
        const char* format;
        const char* text;
        const char* item;
    } cases[] = {
        {"(A3)", "abcdef", "abc"},     {"(A)", "abcdef", "abc"},     {"(A2)", "abcdef", "ab "},
        {"(A5)", "abcdef", "cde"},     {"(A)", "a", "a  "},          {"(A5)", "abc", "c  "},
        {"(2X,A)", "abcdef", "cde"},   {"(T3,A2)", "abcdef", "cd "}, {"(T9,A)", "abcdef", "   "},
        {"(3X,TL2,A)", "abcd", "bcd"}, {"(G3.1)", "abcdef", "abc"},  {"(A)", "", "   "},
        {"(A3)", "a,b", "a,b"},
    };
    for (const auto& c : cases) {
        std::string item(3, '?');
        EXPECT_EQ(read({c.text}, c.format, item), 0) << c.format;
        EXPECT_EQ(item, c.item) << c.format << c.text;
    }
    std::string item(3, '?');
    EXPECT_EQ(read({"abc"}, "('x',A)", item), 71);
    EXPECT_EQ(read({"abc"}, "(B'x',A)", item), 136);
    EXPECT_EQ(read({"abc"}, "(A,$)", item), 142);
    EXPECT_EQ(read({"abc"}, "(I3)", item), 51);
}

TEST(Input, ComplexTakesTwoDescriptors) {
    std::complex<double> c;
    EXPECT_EQ(read({"1.52.5E1"}, "(F3.0,E5.0)", c), 0);
    EXPECT_EQ(c, std::complex<double>(1.5, 25));
    std::complex<long double> x;
    EXPECT_EQ(read({"1.5", "2.5"}, "(F3.0)", x), 0);
    EXPECT_EQ(x, std::complex<long double>(1.5L, 2.5L));
}

}  // namespace
}  // namespace tarn::fio::native::test
