// List-directed statements.
#include <cmath>
#include <gtest/gtest.h>

#include "transfer.h"

namespace tarn::fio::native::test {
namespace {

std::string blanks(int n) {
    return std::string(static_cast<std::size_t>(n), ' ');
}

TEST(ListOutput, FieldsOfEveryType) {
    const std::complex<float> c8(1, -2.5F);
    EXPECT_EQ(written(""), "");
    EXPECT_EQ(written("", "Hello", 42), " Hello          42");
    EXPECT_EQ(written("", std::int8_t{1}, std::int16_t{-2}, std::int64_t{3}),
              " " + blanks(11) + "1" + blanks(10) + "-2" + blanks(20) + "3");
    EXPECT_EQ(written("", Logical{1}, Logical{0}), "   T  F");
    EXPECT_EQ(written("", 1.5F, "<"), "      1.50000    <");
    EXPECT_EQ(written("", -0.5F, "<"), "    -0.500000    <");
    EXPECT_EQ(written("", 123456.7F, "<"), "      123457.    <");
    EXPECT_EQ(written("", 1e7F, "<"), "     1.000000E+07<");
    EXPECT_EQ(written("", 0.05F, "<"), "     5.000000E-02<");
    EXPECT_EQ(written("", 0.0F, "<"), "      0.00000    <");
    EXPECT_EQ(written("", 1.5, "<"), blanks(11) + "1.50000000000    <");
    EXPECT_EQ(written("", 1.5e12, "<"), blanks(8) + "1.500000000000E+12  <");
    EXPECT_EQ(written("", 1.5e100, "<"), blanks(8) + "1.500000000000E+0100<");
    EXPECT_EQ(written("", 1.5e-300, "<"), blanks(8) + "1.500000000000E-0300<");
    EXPECT_EQ(written("", 0.0, "<"), blanks(9) + "0.00000000000      <");
    EXPECT_EQ(written("", -1.5e-300, "<"), blanks(7) + "-1.500000000000E-0300<");
    EXPECT_EQ(written("", 1.5L, "<"), blanks(6) + "1.5000000000000000    <");
    EXPECT_EQ(written("", -1e4000L, "<"), "  -1.00000000000000000E+4000<");
    EXPECT_EQ(written("", std::nan(""), "<"), blanks(25) + "NaN<");
    EXPECT_EQ(written("", c8, c8, "<"), "  (1.00000,-2.50000)  (1.00000,-2.50000) <");
    EXPECT_EQ(written("", std::complex<float>(0.5F, 1e10F)), "  (0.500000,1.000000E+10)");
    EXPECT_EQ(written("", std::complex<double>(0.5, 1e-10)),
              "  (0.500000000000,1.000000000000E-10)");
    EXPECT_EQ(written("", std::complex<float>(std::nanf(""), -INFINITY)), "  (NaN,-Infinity)");
}

TEST(ListOutput, Wraps) {
    // 1 + 9 x 12 = 109: the tenth begins a new line.
    EXPECT_EQ(
        written("", std::vector<std::int32_t>(10, 7)), " " + [] {
            std::string line;
            for (int i = 0; i < 9; ++i) line += blanks(11) + "7";
            return line;
        }() + "| " + blanks(11) + "7");
    EXPECT_EQ(written("", std::string(130, 'x')),
              " " + std::string(119, 'x') + "| " + std::string(11, 'x'));
    EXPECT_EQ(written("", std::string(119, 'x'), "y"), " " + std::string(119, 'x') + "| y");
    // A complex value is broken at its comma if at all.
    EXPECT_EQ(written("", std::string(99, 'x'), std::complex<float>(1, 2)),
              " " + std::string(99, 'x') + " (1.00000,| 2.00000)");
    EXPECT_EQ(written("", std::string(101, 'x'), std::complex<float>(1, 2)),
              " " + std::string(101, 'x') + "|  (1.00000,2.00000)");
    EXPECT_EQ(written("", std::string(93, 'x'), std::complex<float>(-1e-7F, 2)),
              " " + std::string(93, 'x') + " (-1.000000E-07,| 2.00000)");
}

// What reading three integers that were 91, 92, 93 leaves.
std::string three(std::initializer_list<std::string_view> lines) {
    std::int32_t i = 91;
    std::int32_t j = 92;
    std::int32_t k = 93;
    const std::int32_t iostat = read(lines, "", i, j, k);
    if (iostat != 0) return message(iostat);
    return std::to_string(i) + " " + std::to_string(j) + " " + std::to_string(k);
}

TEST(ListInput, SeparatorsNullsAndRepeats) {
    EXPECT_EQ(three({"1 2 3"}), "1 2 3");
    EXPECT_EQ(three({"1,2,3"}), "1 2 3");
    EXPECT_EQ(three({"  1  ,  2  ,3"}), "1 2 3");
    EXPECT_EQ(three({"5,,7"}), "5 92 7");
    EXPECT_EQ(three({",,7"}), "91 92 7");
    EXPECT_EQ(three({"1,2,/"}), "1 2 93");
    EXPECT_EQ(three({"1 2 / 3"}), "1 2 93");
    EXPECT_EQ(three({"1/"}), "1 92 93");
    EXPECT_EQ(three({"/"}), "91 92 93");
    EXPECT_EQ(three({"3*7"}), "7 7 7");
    EXPECT_EQ(three({"2* 5"}), "91 92 5");
    EXPECT_EQ(three({"2*,5"}), "91 92 5");
    EXPECT_EQ(three({"3*"}), "91 92 93");
    EXPECT_EQ(three({"1 2*-4 9"}), "1 -4 -4");
    EXPECT_EQ(three({"2*8/"}), "8 8 93");
    EXPECT_EQ(three({"1", "", "2", "   ", "3"}), "1 2 3");
    EXPECT_EQ(three({"1,", "2", ",3"}), "1 2 3");
    EXPECT_EQ(three({"1\t2\t3"}), "1 2 3");
    EXPECT_EQ(three({"1 2"}), "#-1");
    EXPECT_EQ(three({"*5 1 1"}), "#62");
    EXPECT_EQ(three({"0*5 1 1"}), "#62");
    EXPECT_EQ(three({"2x*5"}), "#62");
    EXPECT_EQ(three({"2*3*4"}), "#52");
    EXPECT_EQ(three({"1.5 2 3"}), "#52");
    EXPECT_EQ(three({"1 2 99999999999"}), "#53");
    EXPECT_EQ(three({"Z'FF' O'17' b\"101\""}), "255 15 5");
    EXPECT_EQ(three({"!FF :17 2*"}), "255 15 93");
    EXPECT_EQ(three({"2*Z'1F' 3"}), "31 31 3");
    EXPECT_EQ(three({"Q'1F' 3"}), "#52");
    EXPECT_EQ(three({"Z'1F 3"}), "#52");
    EXPECT_EQ(three({"Z'' 3"}), "#52");
    EXPECT_EQ(three({"'AB' 2*\"C\""}), "538985025 538976323 538976323");
    EXPECT_EQ(three({"'A''B' 1 2"}), "541206337 1 2");
}

TEST(ListInput, RealsAndLogicals) {
    float x = 0;
    double y = 0;
    long double z = 0;
    Logical l;
    Logical m;
    EXPECT_EQ(read({"1.5 2D3,-3 .TRUE. f"}, "", x, y, z, l, m), 0);
    EXPECT_EQ(x, 1.5F);
    EXPECT_EQ(y, 2000);
    EXPECT_EQ(z, -3);
    EXPECT_EQ(l.value, 1);
    EXPECT_EQ(m.value, 0);
    std::int32_t i = 0;
    EXPECT_EQ(read({"3*2.5"}, "", x, y, z), 0);
    EXPECT_EQ(x + y + z, 7.5L);
    EXPECT_EQ(read({"2*7"}, "", i, y), 0);
    EXPECT_EQ(i + y, 14);
    EXPECT_EQ(read({"2*T"}, "", l, m), 0);
    EXPECT_EQ(l.value + m.value, 2);
    EXPECT_EQ(read({"Z'10'"}, "", y), 0);
    EXPECT_EQ(y, 16);
    EXPECT_EQ(read({"'T'"}, "", l), 52);
    EXPECT_EQ(read({"12x"}, "", y), 52);
}

TEST(ListInput, Complex) {
    using C = std::complex<double>;
    const struct {
        std::vector<std::string_view> lines;
        const char* result;
    } cases[] = {
        {{"(1.0,2.0) 5"}, "1 2 5"}, {{"(1.0,2.0),5"}, "1 2 5"}, {{" ( 1 , 2 ) 5"}, "1 2 5"},
        {{"(1", ",2) 5"}, "1 2 5"}, {{"(1,", "2) 5"}, "1 2 5"}, {{"(", "1,2) 5"}, "#52"},
        {{"1.0"}, "#93"},           {{"(1.0 2.0)"}, "#52"},     {{"(1.0,2.0"}, "#91"},
        {{"(1.0)"}, "#52"},         {{"((1,2)"}, "#52"},        {{"(,2)"}, "#52"},
        {{"(1,)"}, "#52"},          {{"(1,2,3)"}, "#52"},       {{"(1/2)"}, "#52"},
        {{"(1 2,3)"}, "#52"},       {{",5"}, "8 9 5"},          {{"/"}, "8 9 7"},
        {{"(1,x)"}, "#52"},         {{"(1.0"}, "#-1"},
    };
    for (const auto& c : cases) {
        C item(8, 9);
        std::int32_t i = 7;
        Internal file(40, static_cast<std::int32_t>(c.lines.size()));
        file.text.assign(file.text.size(), ' ');
        for (std::size_t r = 0; r < c.lines.size(); ++r)
            file.text.replace(r * 40, c.lines[r].size(), c.lines[r]);
        // A record of 40 blanks behind the text would end it otherwise.
        if (c.lines.size() == 1) {
            file.text.resize(c.lines[0].size());
            file.length = static_cast<std::int32_t>(c.lines[0].size());
        }
        Packed statement;
        file.give_to(statement);
        const std::int32_t iostat = transfer(statement, RSF1_hh, [&] { get(item), get(i); });
        char shown[64];
        std::snprintf(shown, sizeof shown, "%g %g %d", item.real(), item.imag(), i);
        EXPECT_EQ(iostat == 0 ? shown : message(iostat), c.result) << c.lines[0];
    }
    std::vector<C> two(2);
    std::complex<float> third(8, 9);
    EXPECT_EQ(read({"2*(1,-2) /"}, "", two, third), 0);
    EXPECT_EQ(two, std::vector<C>(2, C(1, -2)));
    EXPECT_EQ(third, std::complex<float>(8, 9));
    EXPECT_EQ(read({"2*(1,", "-3) 1*(4,5)"}, "", two, third), 0);
    EXPECT_EQ(two, std::vector<C>(2, C(1, -3)));
    EXPECT_EQ(third, std::complex<float>(4, 5));
    EXPECT_EQ(read({"3*(1,2)"}, "", two, third), 0);
    EXPECT_EQ(third, std::complex<float>(1, 2));
}

TEST(ListInput, Strings) {
    const struct {
        std::vector<std::string_view> lines;
        const char* result;  // two items of five characters and an integer that was 7
    } cases[] = {
        {{"ab cd 5"}, "ab   |cd   |5"},
        {{"'ab cd' 'x' 5"}, "ab cd|x    |5"},
        {{"'it''s',\"\"\"q\"\"\",5"}, "it's |\"q\"  |5"},
        {{"abcdefgh,ij,5"}, "abcde|ij   |5"},
        {{"ab,,5"}, "ab   |12345|5"},
        {{",x,5"}, "12345|x    |5"},
        {{"ab/ 5"}, "ab   |12345|7"},
        {{"'ab'/ 5"}, "ab   |12345|7"},
        {{"2*ab 5"}, "ab   |ab   |5"},
        {{"2*'a b' 5"}, "a b  |a b  |5"},
        {{"2* 5"}, "12345|12345|5"},
        {{"a*b 2x*y 5"}, "a*b  |2x*y |5"},
        {{"ab\tcd\t5"}, "ab   |cd   |5"},
        {{"1.5 (x) 5"}, "1.5  |(x)  |5"},
        {{"'ab", "cd' x 5"}, "abcd |x    |5"},
        {{"2*'ab", "cd' 5"}, "#85"},
        {{"'' x 5"}, "     |x    |5"},
        {{"'abc"}, "#-1"},
    };
    for (const auto& c : cases) {
        std::string a = "12345";
        std::string b = "12345";
        std::int32_t i = 7;
        Folder folder;
        std::string text;
        for (const auto& line : c.lines) text.append(line).append("\r\n");
        put_file("in", text);
        ASSERT_EQ(Packed().unit(40).text(IOCode::file, "in").run(OPEN_hh), 0);
        // Tabs would be expanded to blanks.
        UnitList_getUnit(40)->file.keep_tabs = true;
        Packed statement;
        statement.unit(40);
        const std::int32_t iostat = transfer(statement, RSF1_hh, [&] { get(a), get(b), get(i); });
        const std::string result = a + "|" + b + "|" + std::to_string(i);
        EXPECT_EQ(iostat == 0 ? result : message(iostat), c.result) << c.lines[0];
        close_unit(40);
    }
}

TEST(ListInput, StrictMode) {
    for (const char* text : {"Z'FF'", "'AB'", "!FF"}) {
        std::int32_t i = 0;
        Internal file({text});
        Packed statement;
        file.give_to(statement);
        statement.add(IOCode::strict, TypeCode::none, nullptr);
        EXPECT_EQ(transfer(statement, RSF1_hh, [&] { get(i); }), 52) << text;
    }
}

}  // namespace
}  // namespace tarn::fio::native::test
