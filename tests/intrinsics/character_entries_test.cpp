// The native entries on characters, as compiled code calls them.
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/characters.h"

namespace {

std::intptr_t length_of(std::string_view text) {
    return static_cast<std::intptr_t>(text.size());
}

using Copy = void (*)(const char*, char*, std::intptr_t, std::intptr_t);

std::string copied(Copy copy, std::string_view source, std::size_t room) {
    std::string result(room, '#');
    copy(source.data(), result.data(), length_of(source), length_of(result));
    return result;
}

TEST(Assignment, PadsAndCuts) {
    for (const Copy copy : {__CCOPY, __CCOPY_U, CCOPY_h, CHECK_CCOPY_h}) {
        EXPECT_EQ(copied(copy, "AB", 4), "AB  ");
        EXPECT_EQ(copied(copy, "AB", 1), "A");
        EXPECT_EQ(copied(copy, "", 2), "  ");
        EXPECT_EQ(copied(copy, "AB", 0), "");
    }
    char one = '#';
    __CCOPY("A", &one, -5, 1);
    EXPECT_EQ(one, ' ');
    __CCOPY("A", &one, 1, -5);
    EXPECT_EQ(one, ' ');
}

TEST(Assignment, Overlap) {
    std::string text = "ABCDE";
    __CCOPY(text.data(), text.data() + 1, 4, 4);
    EXPECT_EQ(text, "AABCD");
    text = "ABCDE";
    CCOPY_h(text.data(), text.data() + 1, 4, 4);
    EXPECT_EQ(text, "AAAAA");
    text = "ABCDE";
    CCOPY_h(text.data() + 1, text.data(), 4, 5);
    EXPECT_EQ(text, "BCDE ");
    text = "ABCDE";
    EXPECT_EXIT(CHECK_CCOPY_h(text.data(), text.data() + 4, 5, 1), testing::ExitedWithCode(1),
                "Illegal character assignment");
    CHECK_CCOPY_h(text.data(), text.data() + 4, 4, 1);
    EXPECT_EQ(text, "ABCDA");
}

TEST(Assignment, UndefinedCharacters) {
    const char undefined[] = "A\x80";
    char room[2];
    EXPECT_EXIT(__CCOPY_U(undefined, room, 2, 2), testing::ExitedWithCode(1),
                "Reference to undefined character");
    __CCOPY_U(undefined, room, 2, 1);  // what isn't copied may be anything
    EXPECT_EXIT(__CCOPY_U(undefined + 1, room, 1, 1), testing::ExitedWithCode(1), "undefined");
    char single = 'A';
    __CCOPY_U(&single, room, 1, 1);
    single = '\x80';  // the same variable again is not looked at
    __CCOPY_U(&single, room, 1, 1);
    EXPECT_EQ(room[0], '\x80');
}

TEST(Concatenation, PiecesPaddingAndOverlap) {
    std::string text(8, '#');
    tarn_concat(3, text.data(), std::intptr_t{8}, "AB", std::intptr_t{2}, "", std::intptr_t{-1},
                "CD", std::intptr_t{2});
    EXPECT_EQ(text, "ABCD    ");
    tarn_concat(2, text.data(), std::intptr_t{3}, "XY", std::intptr_t{2}, "Z!", std::intptr_t{2});
    EXPECT_EQ(text, "XYZD    ");
    tarn_concat(1, text.data() + 1, std::intptr_t{4}, text.data(), std::intptr_t{4});
    EXPECT_EQ(text, "XXYZD   ");
    tarn_concat(1, text.data(), std::intptr_t{-1}, "A", std::intptr_t{1});
    EXPECT_EQ(text, "XXYZD   ");
    std::string piece = "12";
    tarn_characters values[] = {{text.data(), 8}, {piece.data(), 2}, {text.data() + 7, 1}};
    NCK_CONCAT_h(2, values);
    EXPECT_EQ(text, "12      ");
    EXPECT_EXIT(CONCAT_h(2, values), testing::ExitedWithCode(1), "R.H.S. overlaps L.H.S.");
    EXPECT_EXIT(tarn_concat_u(1, text.data(), std::intptr_t{2}, "\x80", std::intptr_t{1}),
                testing::ExitedWithCode(1), "undefined");
}

TEST(Comparison, BlanksAndHighBytes) {
    struct {
        std::string_view one, two;
        int order;
    } const rows[] = {
        {"AB", "AB  ", 0},    {"AB", "AB\x01", 1}, {"AB\x01", "AB", -1}, {"AB", "ABC", -1},
        {"A", "B", -1},       {"\x80", "A", 1},    {"", "", 0},          {"", " ", 0},
        {"AB\x90", "AB", -1},  // signed where the first is longer
        {"AB", "AB\x90", -1},  // unsigned where the second is
    };
    for (const auto& row : rows) {
        const int order =
            CCOMP_h(row.one.data(), row.two.data(), length_of(row.one), length_of(row.two));
        EXPECT_EQ(order < 0 ? -1 : order > 0, row.order) << row.one << '|' << row.two;
    }
}

TEST(Functions, Searches) {
    const std::int32_t back = 1;
    EXPECT_EQ(SCAN_h("FORTRAN", "TR", nullptr, 7, 2), 3);
    EXPECT_EQ(SCAN_h("FORTRAN", "TR", &back, 7, 2), 5);
    EXPECT_EQ(VERIFY_h("AAB", "A", nullptr, 3, 1), 3);
    EXPECT_EQ(VERIFY_h("AAA", "A", nullptr, 3, 1), 0);
    EXPECT_EQ(VERIFY_h("AAA", "", nullptr, 3, 0), 0);
    EXPECT_EQ(INDEX9_h("ABC", "", nullptr, 3, 0), 1);
    EXPECT_EQ(INDEX9_h("ABC", "", &back, 3, 0), 4);
    EXPECT_EQ(INDEX9_h("ABCABC", "BC", &back, 6, 2), 5);
    EXPECT_EQ(INDEX_h("ABCABC", "BC", 6, 2), 2);
    EXPECT_EQ(JNDEX_h("ABC", "ABCD", 3, 4), 0);
    EXPECT_EQ(JNDEX_h("ABC", "", 3, 0), 1);
    const auto* const absent = reinterpret_cast<const std::int32_t*>(0xF0F0F0F0);
    EXPECT_EQ(SCAN_h("FORTRAN", "R", absent, 7, 1), 3);
}

TEST(Functions, AdjustAndRepeat) {
    const auto adjusted = [](auto adjust, std::string_view text, std::size_t room) {
        std::string result(room, '#');
        adjust(result.data(), length_of(result), text.data(), length_of(text));
        return result;
    };
    EXPECT_EQ(adjusted(ADJUSTL_h, "  AB", 4), "AB  ");
    EXPECT_EQ(adjusted(ADJUSTR_h, "AB  ", 4), "  AB");
    EXPECT_EQ(adjusted(ADJUSTR_h, "    ", 4), "    ");
    EXPECT_EQ(adjusted(ADJUSTL_h, "  ABCD", 2), "AB");
    EXPECT_EQ(adjusted(ADJUSTR_h, "ABCD  ", 2), "CD");
    EXPECT_EQ(adjusted(ADJUSTL_h, "", 2), "##");
    std::string result(6, '#');
    const std::int32_t two = 2;
    REPEAT_h(result.data(), 0, "abc", &two, 3);
    EXPECT_EQ(result, "abcabc");
}

TEST(Texts, ChangedInPlace) {
    struct {
        void (*change)(char*, std::intptr_t);
        std::string_view before, after;
    } const rows[] = {
        {UPCASE_h, "aZ{`1z ", "AZ{`1Z "}, {LCASE_h, "aZ@[1A ", "az@[1a "}, {TRIM_h, "  AB", "AB  "},
        {TRIM_h, "   ", "   "},           {TRIMR_h, "AB  ", "  AB"},       {TRIMR_h, "", ""},
    };
    for (const auto& row : rows) {
        std::string text(row.before);
        row.change(text.data(), length_of(text));
        EXPECT_EQ(text, row.after);
    }
    std::string text = "ab    ";
    APPEND_STRING_h(text.data(), "cd", 6, 2);
    EXPECT_EQ(text, "abcd  ");
    APPEND_STRING_h(text.data(), "efgh", 6, 4);
    EXPECT_EQ(text, "abcdef");
    APPEND_STRING_h(text.data(), "x", 6, 1);
    EXPECT_EQ(text, "abcdef");
    CHAR_FILL_h(text.data(), "*", 6);
    EXPECT_EQ(text, "******");
    CHAR_FILL_h(text.data(), "-", -1);
    EXPECT_EQ(text, "******");
    EXPECT_EQ(NONBLK_h("  x ", 4), 3);
    EXPECT_EQ(NONBLK_h("    ", 4), 0);
}

TEST(Texts, Centre) {
    struct {
        std::string_view source;
        std::int16_t width;
        std::size_t room;
        std::string_view result;
    } const rows[] = {
        {"AB  ", 8, 8, "  AB    "}, {"AB", 2, 6, "AB    "}, {"ABCDEF", 2, 4, "ABCD"},
        {"AB", -9, 4, "AB  "},      {"AB", 20, 4, "    "},
    };
    for (const auto& row : rows) {
        std::string result(row.room, '#');
        CENTRE_h(result.data(), length_of(result), row.source.data(), &row.width,
                 length_of(row.source));
        EXPECT_EQ(result, row.result) << row.source << row.width;
    }
}

TEST(Texts, Numbers) {
    const auto shown = [](auto write, std::int32_t value, std::size_t room) {
        std::string result(room, '#');
        write(result.data(), length_of(result), &value);
        return result.substr(0, result.find_last_not_of(' ') + 1);
    };
    EXPECT_EQ(shown(CNUM_h, 0, 3), "0");
    EXPECT_EQ(shown(CNUM_h, -2147483647 - 1, 20), "-2147483648");
    EXPECT_EQ(shown(CNUM_h, 1234, 3), "***");
    EXPECT_EQ(shown(CNUM_h, 1234567890, 4), "****");
    struct {
        std::int32_t value;
        std::string_view words;
    } const rows[] = {
        {0, "ZERO"},
        {-20, "MINUS TWENTY"},
        {13, "THIRTEEN"},
        {101, "ONE HUNDRED AND ONE"},
        {1000, "ONE THOUSAND"},
        {1001, "ONE THOUSAND AND ONE"},
        {200000001, "TWO HUNDRED MILLION AND ONE"},
        {1000001, "ONE MILLION AND ONE"},
        {1000100, "ONE MILLION ONE HUNDRED"},
        {1234567, "ONE MILLION TWO HUNDRED AND THIRTY FOUR THOUSAND FIVE HUNDRED AND SIXTY SEVEN"},
        {-2147483647 - 1,
         "MINUS TWO THOUSAND ONE HUNDRED AND FORTY SEVEN MILLION FOUR HUNDRED AND EIGHTY THREE "
         "THOUSAND SIX HUNDRED AND FORTY EIGHT"},
    };
    for (const auto& row : rows) EXPECT_EQ(shown(SAYINT_h, row.value, 140), row.words);
    EXPECT_EQ(shown(SAYINT_h, 101, 10), "**********");
    EXPECT_EQ(shown(SAYINT_h, 101, 18), std::string(18, '*'));
}

template <class Value, class Sort>
void sorts(Sort sort, const std::vector<Value>& values) {
    const auto count = static_cast<std::int32_t>(values.size());
    std::vector<std::int32_t> index(values.size() + 2, -7);
    sort(index.data(), values.data(), &count);
    std::vector<bool> seen(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto at = static_cast<std::size_t>(index[i] - 1);
        ASSERT_LT(at, values.size());
        ASSERT_FALSE(seen[at]);
        seen[at] = true;
        if (i > 0) ASSERT_FALSE(values[at] < values[static_cast<std::size_t>(index[i - 1] - 1)]);
    }
    EXPECT_EQ(index[values.size()], -7);
}

TEST(Sorting, ManyShapes) {
    std::mt19937 random(7);
    for (std::size_t count = 0; count < 300; ++count) {
        std::vector<std::int32_t> values(count);
        const unsigned spread = count % 3 == 0 ? 3 : 1000;
        for (auto& value : values) value = static_cast<std::int32_t>(random() % spread) - 1;
        sorts(ISORT_h, values);
        sorts(DSORT_h, std::vector<double>(values.begin(), values.end()));
        std::ranges::sort(values);
        sorts(ISORT_h, values);
        std::ranges::reverse(values);
        sorts(RSORT_h, std::vector<float>(values.begin(), values.end()));
    }
    const std::int32_t three = 3;
    const std::int32_t values[] = {3, 1, 2};
    std::int32_t index[3];
    ISORT_h(index, values, &three);
    EXPECT_EQ(index[0], 2);
    EXPECT_EQ(index[1], 3);
    EXPECT_EQ(index[2], 1);
}

// Values without an order come out in some order, and nothing else is touched.
TEST(Sorting, NotANumber) {
    std::mt19937 random(9);
    for (int round = 0; round < 200; ++round) {
        std::vector<double> values(50);
        for (double& value : values)
            value = random() % 3 == 0 ? std::nan("") : static_cast<double>(random() % 20);
        const std::int32_t count = 50;
        std::vector<std::int32_t> index(50);
        DSORT_h(index.data(), values.data(), &count);
        std::ranges::sort(index);
        for (std::int32_t i = 0; i < 50; ++i) ASSERT_EQ(index[static_cast<std::size_t>(i)], i + 1);
    }
}

TEST(Sorting, CharactersAndTheirSearch) {
    for (std::int32_t count = 0; count < 40; ++count) {
        std::string values;
        for (std::int32_t i = 0; i < count; ++i)
            values += {static_cast<char>('a' + i * 7 % 26), static_cast<char>('0' + i * 7 / 26)};
        std::vector<std::int32_t> index(40);
        std::int32_t status = -1;
        CHSORT(index.data(), values.data(), &count, &status, 2);
        EXPECT_EQ(status, count < 1 ? 4 : 0);
        std::string sorted;
        for (std::int32_t i = 0; i < count; ++i)
            sorted += values.substr(
                2 * static_cast<std::size_t>(index[static_cast<std::size_t>(i)] - 1), 2);
        for (std::int32_t i = 1; i <= count; ++i) {
            std::int32_t place = -1;
            CHSEEK_h(sorted.data() + 2 * (i - 1), sorted.data(), &count, &place, 2, 2);
            EXPECT_EQ(place, i);
        }
        std::int32_t place = -1;
        CHSEEK_h("zz", sorted.data(), &count, &place, 2, 2);
        EXPECT_EQ(place, 0);
    }
}

}  // namespace
