// Parameters by name, and the switches.
#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "tarn/winio_run.h"
#include "winio/callbacks.h"
#include "winio/form.h"

namespace tarn::winio {
namespace {

using test::w;

class Parameters : public testing::Test {
  protected:
    Parameters() { setenv("TARN_DISPLAY", "memory", 1); }
};

TEST_F(Parameters, AProgramMakesItsOwn) {
    __set_quillpan_info("MY_VALUE", 5);
    EXPECT_EQ(__quillpan_info("my_value"), 5);
    __set_quillpan_info("My_Value", std::intptr_t{1} << 40);
    EXPECT_EQ(__quillpan_info("MY_VALUE"), std::intptr_t{1} << 40);
    __set_quillpan_float("MY_FLOAT", 2.5);
    EXPECT_EQ(__quillpan_float("my_float"), 2.5);
    __set_quillpan_string("MY_TEXT", "first");
    __set_quillpan_string("MY_TEXT", __quillpan_string("MY_TEXT"));
    EXPECT_STREQ(__quillpan_string("MY_TEXT"), "first");
    __set_quillpan_string("MY_TEXT", nullptr);
    EXPECT_STREQ(__quillpan_string("MY_TEXT"), "");
}

TEST_F(Parameters, TheTypeIsThatOfTheLastValue) {
    __set_quillpan_info("CHANGING", 5);
    __set_quillpan_string("CHANGING", "text");
    EXPECT_STREQ(__quillpan_string("CHANGING"), "text");
    EXPECT_EXIT(__quillpan_info("changing"), testing::ExitedWithCode(1),
                "The string CHANGING\nis not known to quillpan_info");
    __set_quillpan_float("CHANGING", 1.5);
    EXPECT_EQ(__quillpan_float("CHANGING"), 1.5);
    __set_quillpan_info("CHANGING", 6);
    EXPECT_EQ(__quillpan_info("CHANGING"), 6);
}

TEST_F(Parameters, WhatIsNotKnownIsReported) {
    EXPECT_EXIT(__quillpan_info("NO_SUCH_NAME"), testing::ExitedWithCode(1),
                "The string NO_SUCH_NAME\nis not known to quillpan_info");
    EXPECT_EXIT(__quillpan_string("ACTION_X"), testing::ExitedWithCode(1),
                "is not known to quillpan_string");
    EXPECT_EXIT(__quillpan_float("NO_SUCH_NAME"), testing::ExitedWithCode(1),
                "is not known to quillpan_float");
    EXPECT_EXIT(__quillpan_info("THIS"), testing::ExitedWithCode(1), "The string THIS");
    EXPECT_EXIT(__set_quillpan_info("USER_WINDOW_DATA", 1), testing::ExitedWithCode(1),
                "This parameter may not be altered");
    // A name of 100 characters is unknown, not cut to one that is known.
    const std::string longest(99, 'N');
    __set_quillpan_info(longest.c_str(), 3);
    EXPECT_EQ(__quillpan_info(longest.c_str()), 3);
    const std::string too_long(100, 'N');
    EXPECT_EXIT(__quillpan_info(too_long.c_str()), testing::ExitedWithCode(1), "is not known");
    EXPECT_EXIT(__set_quillpan_info(too_long.c_str(), 1), testing::ExitedWithCode(1),
                "is not known");
    EXPECT_EQ(__quillpan_float("RF_EXP_LIMIT"), 0.0);
}

TEST_F(Parameters, TwoNamesOfOneField) {
    __set_quillpan_info("INTERMEDIATE_SCROLL", 1);
    EXPECT_EQ(__quillpan_info("GRAPHICS_MOUSEWHEEL_ROTATION"), 1);
    EXPECT_EQ(callbacks().context.mousewheel_rotation, 1);
    callbacks().context.mousewheel_rotation = -120;
    EXPECT_EQ(__quillpan_info("intermediate_scroll"), -120);
    EXPECT_EQ(__quillpan_float("intermediate_scroll"), -120.0);
}

TEST_F(Parameters, TheSystemTellsItsSizes) {
    EXPECT_EQ(__quillpan_info("PIXELS_PER_H_UNIT"), 8);
    EXPECT_EQ(__quillpan_info("PIXELS_PER_V_UNIT"), 16);
    EXPECT_EQ(__quillpan_info("SCREEN_WIDTH"), platform::GetSystemMetrics(platform::SM_CXSCREEN));
    EXPECT_GT(__quillpan_info("SYSTEM_FONT_HEIGHT"), 8);
    EXPECT_STREQ(__quillpan_string("PRINTER_DOCUMENT"), "Quillpan+ Output");
}

TEST_F(Parameters, ALinkIsToldOnce) {
    callbacks().context.url_name = strdup("https://example.org/");
    EXPECT_STREQ(__quillpan_string("URL_NAME"), "https://example.org/");
    EXPECT_STREQ(__quillpan_string("URL_NAME"), "");
    callbacks().context.url_name = strdup(std::string(1000, 'u').c_str());
    EXPECT_EQ(std::strlen(__quillpan_string("URL_NAME")), 255u);
}

TEST_F(Parameters, TextsForCallersBuffers) {
    __set_quillpan_string("MY_TEXT", "abcdef");
    char buffer[8] = "xxxxxxx";
    __quillpan_string1(buffer, "MY_TEXT", 4);
    EXPECT_STREQ(buffer, "abc");
    __quillpan_string1(buffer, "MY_TEXT", 0);
    EXPECT_STREQ(buffer, "abc");
    char fortran[10];
    QUILLPAN_STRING_h(fortran, 9, "my_text   ", 10);
    EXPECT_EQ(std::string(fortran, 9), "abcdef   ");
    QUILLPAN_STRING_h(fortran, 2, "MY_TEXT", 7);
    EXPECT_EQ(std::string(fortran, 9), "abcdef   ");
    __set_quillpan_info("MY_VALUE", 17);
    EXPECT_EQ(QUILLPAN_INFO_h("my_value  ", 10), 17);
}

std::int32_t number, window_variable;
word seen;

TEST_F(Parameters, ThisIsTheValueOfTheControlAtWork) {
    number = 5;
    const call_back ask = +[]() -> std::int32_t {
        number = 77;
        seen = __quillpan_info("this");
        return 2;
    };
    const word words[] = {w(&window_variable), w(&number), w(ask)};
    internal_winio("%lw%^rd", "*I*I*E", words, 3);
    test::type(test::nth(test::newest(), control_type::integer_box), "12");
    EXPECT_EQ(seen, 77) << "the variable as it is when it is asked for";
    test::close_all();
}

TEST_F(Parameters, SwitchesByWord) {
    const auto set = [](const char* text) { __quillpan_option(text); };
    set("undef");
    EXPECT_TRUE(options().undefined_tests);
    set("_undef, fatal_error");
    EXPECT_FALSE(options().undefined_tests);
    EXPECT_EQ(options().error_level, 2);
    set("hide_error");
    set("gdi+images");
    EXPECT_TRUE(options().gdi_images);
    EXPECT_TRUE(options().trust_descriptor_callbacks) << "on by default";
    set("old_resize");
    EXPECT_TRUE(records().old_resize);
    set("_old_resize");
    testing::internal::CaptureStderr();
    set("no_such_word");
    EXPECT_NE(testing::internal::GetCapturedStderr().find(
                  "[no_such_word] is an invalid quillpan_option@ option"),
              std::string::npos);
}

TEST_F(Parameters, TheMapsSizeIsFixedByTheFirstWindow) {
    const word words[] = {w(&window_variable)};
    internal_winio("%lwtext", "*I", words, 1);
    test::close_all();
    EXPECT_EXIT(__set_max_dialog_size(2000, 2000), testing::ExitedWithCode(1),
                "SET_MAX_DIALOG_SIZE@ must be called before WINIO@");
}

}  // namespace
}  // namespace tarn::winio
