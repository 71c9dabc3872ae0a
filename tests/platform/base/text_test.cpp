#include "platform/base/text.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarn::platform {
namespace {

std::string all_bytes() {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes.push_back(static_cast<char>(i));
    return bytes;
}

TEST(CodePage, EveryByteSurvivesTheWayToUnicodeAndBack) {
    EXPECT_EQ(page_from_utf8(utf8_from_page(all_bytes())), all_bytes());
    EXPECT_EQ(utf8_from_wide(wide_from_utf8(utf8_from_page(all_bytes()))),
              utf8_from_page(all_bytes()));
}

TEST(CodePage, Characters) {
    struct Case {
        const char *page, *utf8;
    };
    for (const Case& c : std::vector<Case>{{"\x80 5", "€ 5"},
                                           {"\x93q\x94", "“q”"},
                                           {"Stra\xDF"
                                            "e",
                                            "Straße"},
                                           {"\x85", "…"},
                                           {"\x9F", "Ÿ"}}) {
        EXPECT_EQ(utf8_from_page(c.page), c.utf8);
        EXPECT_EQ(page_from_utf8(c.utf8), c.page);
    }
    EXPECT_EQ(page_from_utf8("Ω→😀a"), "???a");
}

TEST(Utf8, BrokenSequencesBecomeReplacementsByteByByte) {
    struct Case {
        std::string utf8;
        std::u16string wide;
    };
    for (const Case& c : std::vector<Case>{{"\xC3", u"\xFFFD"},
                                           {"\xC3(", u"\xFFFD("},
                                           {"\xC0\x80", u"\xFFFD\xFFFD"},
                                           {"\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD"},
                                           {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},
                                           {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
                                           {"\xFFz", u"\xFFFDz"},
                                           {"\x80", u"\xFFFD"},
                                           {"\xF0\x9F\x98\x80", u"\xD83D\xDE00"}}) {
        EXPECT_EQ(wide_from_utf8(c.utf8), c.wide);
    }
    EXPECT_EQ(utf8_from_wide(u"\xD83D"), "\xEF\xBF\xBD");
    EXPECT_EQ(utf8_from_wide(u"\xDE00\xD83D\xDE00"), "\xEF\xBF\xBD😀");
}

TEST(Utf8, EveryCodePointIsReadAsItWasWritten) {
    for (char32_t code = 0; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 61) {
        if (code >= 0xD800 && code < 0xE000) continue;
        std::string text;
        append_utf8(text, code);
        std::size_t at = 0;
        ASSERT_EQ(next_code_point(text, at), code);
        ASSERT_EQ(at, text.size());
        ASSERT_EQ(utf8_from_wide(wide_from_utf8(text)), text);
    }
}

TEST(Conversions, SizesAndTerminators) {
    char16_t wide[8] = {};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP,
                                  "\x80"
                                  "ab",
                                  -1, nullptr, 0),
              4);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP,
                                  "\x80"
                                  "ab",
                                  2, wide, 8),
              2);
    EXPECT_EQ(std::u16string(wide, 2), u"€a");
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, "abc", -1, wide, 3), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, "€", 3, wide, 1), 1);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, nullptr, 3, wide, 8), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, "x", 0, wide, 8), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, "x", -2, wide, 8), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, "x", 1, wide, -1), 0);
    char page[8] = {};
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, u"€!", -1, page, 8), 3);
    EXPECT_STREQ(page, "\x80!");
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, u"€!", 2, page, 3), 0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, u"€!", 2, nullptr, 0), 4);
}

}  // namespace
}  // namespace tarn::platform
