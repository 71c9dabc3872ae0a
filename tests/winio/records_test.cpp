#include "winio/records.h"

#include <gtest/gtest.h>

#include "platform/gdi/gdi.h"
#include "scanner_call.h"
#include "winio/text_layer.h"

namespace tarn::winio::test {
namespace {

TEST(Records, ControlsAreNamedByTheirCodeAndNumber) {
    checking check;
    std::int32_t number = 0;
    for (int i = 0; i < 1001; ++i) check.call("%rd&", "*I", {address(&number)});
    EXPECT_EQ(check.report(), "");
    const std::vector<window_control*> all = controls();
    ASSERT_EQ(all.size(), 1001U);
    EXPECT_STREQ(all[0]->name, "RD001");
    EXPECT_STREQ(all[998]->name, "RD999");
    EXPECT_STREQ(all[999]->name, "RD100");  // the fourth digit is cut away
    EXPECT_EQ(all[0]->code, code_of('R', 'D'));
    EXPECT_EQ(all[1]->id - all[0]->id, 1);
}

TEST(Records, APassivePassChainsNothing) {
    checking check;
    check.call("text&");
    const std::size_t before = controls().size();
    records().passive = true;
    window_control* control = new_window_control(control_type::integer_box);
    records().passive = false;
    EXPECT_EQ(controls().size(), before);
    std::free(control);
}

TEST(Records, NumbersRunOutAndComeBack) {
    char report[check_report_size];
    winio_check(report, nullptr, false);
    std::vector<std::int32_t> taken;
    for (std::int32_t id = get_id(); id != 0; id = get_id()) taken.push_back(id);
    EXPECT_EQ(taken.front(), 4000);
    EXPECT_EQ(taken.back(), 23999);
    EXPECT_EQ(taken.size(), 20000U);
    EXPECT_STREQ(report, "Maximum number of controls/menu items exceeded ");
    free_id(12345);
    free_id(3999);
    free_id(24000);
    EXPECT_EQ(get_id(), 12345);
    for (const std::int32_t id : taken) free_id(id);
    winio_check(nullptr, nullptr, false);
}

TEST(Records, OneDescriptionOneFont) {
    initialise_quillpan_plus();
    LOGFONT first = records().default_spec;
    first.lfHeight = -31;
    LOGFONT second = first;
    std::memset(first.lfFaceName, 0, sizeof first.lfFaceName);
    std::strcpy(first.lfFaceName, "Arial");
    std::memset(second.lfFaceName, 'x', sizeof second.lfFaceName);
    std::strcpy(second.lfFaceName, "Arial");
    const std::int32_t before = records().font_count;
    const HFONT font = get_font(first);
    EXPECT_EQ(get_font(second), font);
    EXPECT_EQ(records().font_count, before + 1);
    EXPECT_GE(font_metric(font).tmHeight, 31);
    second.lfWeight = 700;
    EXPECT_NE(get_font(second), font);
}

TEST(Records, ALimitDropsBrushesAndPensButNoFonts) {
    initialise_quillpan_plus();
    records().gdi_limit = 0;
    const HBRUSH brush = get_brush(0x123456);
    EXPECT_EQ(get_brush(0x123456), brush);
    get_pen(platform::PS_SOLID, 1, 0x654321);
    const std::int32_t fonts = records().font_count;
    const HFONT font = get_font(records().default_spec);
    records().gdi_limit = 1;
    monitor_gdi_resources();
    EXPECT_EQ(records().brush_and_pen_count, 0);
    EXPECT_FALSE(platform::IsGdiObject(brush));
    EXPECT_GE(records().font_count, fonts);
    EXPECT_TRUE(platform::IsGdiObject(font));
    records().gdi_limit = 0;
}

TEST(Records, WhatAWindowOwnsDiesWithIt) {
    initialise_quillpan_plus();
    fancy_window* window = new_fancy_window();
    window->previous = current_window();
    current_window() = window;
    char* text = window_text_copy("abc", 2);
    EXPECT_STREQ(text, "ab");
    auto* fresh = static_cast<char*>(std::malloc(8));
    discard_with_window(fresh, text);  // the old text goes now
    EXPECT_EQ(window->garbage->storage, fresh);
    EXPECT_EQ(window->garbage->next, nullptr);
    auto* other = static_cast<char*>(std::malloc(8));
    EXPECT_EQ(discard_with_garbage(other, fresh), other);
    EXPECT_EQ(window->garbage->storage, other);
    const std::int32_t number = window->window_number;
    destroy_fancy_window(window);
    EXPECT_EQ(records().next_window_number, number - 1);
    EXPECT_FALSE(fancy_window_exists(window));
}

TEST(TextLayer, CountsTheBytesOfCharacters) {
    initialise_quillpan_plus();
    const bool before = records().utf8_default;
    records().utf8_default = false;
    EXPECT_EQ(uchrlen(0xF0), 1);
    records().utf8_default = true;
    const std::pair<unsigned char, std::int32_t> cases[] = {
        {'a', 1}, {0x7F, 1}, {0x80, 1}, {0xBF, 1}, {0xC3, 2}, {0xE2, 3}, {0xF0, 4}, {0xF8, 5}};
    for (const auto& [byte, length] : cases) EXPECT_EQ(uchrlen(byte), length) << int{byte};
    EXPECT_EQ(ustrnlen("a\xC3\xA9\xE2\x82\xAC!", 3), 6);
    EXPECT_EQ(ustrnlen("\xE2\x82", 5), 2);  // it stops at the end of the text
    records().utf8_default = before;
}

}  // namespace
}  // namespace tarn::winio::test
