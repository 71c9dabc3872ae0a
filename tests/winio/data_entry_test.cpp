// Boxes in windows: what edits do to variables, and variables to fields.
#include "winio/data_entry.h"

#include <cstring>
#include <gtest/gtest.h>

#include "winio/callbacks.h"
#include "winio/form.h"
#include "winio/procedures.h"

namespace tarn::winio {
namespace {

using namespace platform;
using namespace test;

class Boxes : public testing::Test {
  protected:
    void TearDown() override { close_all(); }

    // A window with one box, which stays up while the test goes on.
    window_control* box(const std::string& format, const char* types,
                        std::initializer_list<word> words, control_type type) {
        std::string all = "%lw" + format;
        std::string descriptor = std::string("*I") + types;
        word list[16] = {w(&window_)};
        std::size_t count = 1;
        for (word each : words) list[count++] = each;
        setenv("TARN_DISPLAY", "memory", 1);
        internal_winio(all.c_str(), descriptor.c_str(), list, static_cast<std::int32_t>(count));
        settle();
        return nth(newest(), type);
    }

    std::int32_t window_ = 0;
};

TEST_F(Boxes, IntegerFollowsTheField) {
    std::int32_t value = 7;
    window_control* control = box("%rd", "*I", {w(&value)}, control_type::integer_box);
    ASSERT_TRUE(control && control->hwnd);
    EXPECT_EQ(field(control), "7");
    type(control, "42");
    EXPECT_EQ(value, 42);
    type(control, "-");
    EXPECT_EQ(value, 0);
    type(control, "-3");
    EXPECT_EQ(value, -3);
    type(control, "");
    EXPECT_EQ(value, 0);
    value = 99;
    window_update(&value);
    EXPECT_EQ(field(control), "99");
}

struct limits_case {
    std::int32_t low, high;
    const char* typed;
    std::int32_t stored;
    const char* shown;
};

TEST_F(Boxes, IntegerLimits) {
    const limits_case cases[] = {
        {5, 10, "", 5, ""},         {-3, -1, "", -1, ""},   {0, 100, "250", 25, "25"},
        {0, 100, "12x", 12, "12"},  {-10, 10, "-", 0, "-"}, {5, 10, "-", 5, "-"},
        {0, 9999, "007", 7, "007"},
    };
    for (const limits_case& each : cases) {
        std::int32_t value = each.low;
        window_control* control =
            box("%il%rd", "II*I", {each.low, each.high, w(&value)}, control_type::integer_box);
        ASSERT_TRUE(control);
        type(control, each.typed);
        EXPECT_EQ(value, each.stored) << each.typed;
        EXPECT_EQ(field(control), each.shown) << each.typed;
        close_all();
    }
}

TEST_F(Boxes, BoundLimitsMarkTheBox) {
    std::int32_t value = 5;
    window_control* control = box("%~il%rd", "II*I", {1, 10, w(&value)}, control_type::integer_box);
    COLORREF colour = control->text_colour;
    type(control, "50");
    EXPECT_TRUE(control->alert);
    EXPECT_EQ(control->text_colour, 0x0000FFu);
    EXPECT_EQ(field(control), "50");
    HWND mark = control->alert;
    type(control, "8");
    EXPECT_FALSE(control->alert);
    EXPECT_FALSE(IsWindow(mark));
    EXPECT_EQ(control->text_colour, colour);
    EXPECT_EQ(value, 8);
}

TEST_F(Boxes, Radix) {
    std::int32_t value = 255;
    window_control* control = box("%rd[radix=16]", "*I", {w(&value)}, control_type::integer_box);
    EXPECT_EQ(field(control), "ff");
    type(control, "1gFz0");
    EXPECT_EQ(field(control), "1F0");
    EXPECT_EQ(value, 0x1F0);
}

TEST_F(Boxes, FloatFollowsTheField) {
    double value = 0.5;
    window_control* control = box("%rf", "*F", {w(&value)}, control_type::float_box);
    EXPECT_EQ(field(control), "0.5");
    type(control, "2,25");
    EXPECT_EQ(field(control), "2.25");
    EXPECT_EQ(value, 2.25);
    type(control, "1.2.3");
    EXPECT_EQ(field(control), "1.3");
    EXPECT_EQ(value, 1.3);
    type(control, "1e5");
    EXPECT_EQ(value, 1.0E5);
    type(control, "-.5");
    EXPECT_EQ(value, -0.5);
    type(control, "abc");
    EXPECT_EQ(value, -0.5);
}

TEST_F(Boxes, AKeyInAFullFractionPushesTheLastDigitOut) {
    double value = 1.0 / 3.0;
    window_control* control = box("%rf", "*F", {w(&value)}, control_type::float_box);
    type(control, "0.123456789");
    ASSERT_EQ(field(control), "0.123456789");
    SendMessageA(control->hwnd, EM_SETSEL, 2, 2);
    SendMessageA(control->hwnd, WM_CHAR, '9', 0);
    EXPECT_EQ(field(control), "0.912345678");
    EXPECT_EQ(value, 0.912345678);
}

TEST_F(Boxes, StringsStayInTheirBuffer) {
    char text[11] = "abc\0xxxxx!";
    window_control* control = box("%rs", "*CI", {w(text), 10}, control_type::string_box);
    EXPECT_EQ(field(control), "abc");
    type(control, "0123456789abc");
    EXPECT_STREQ(text, "012345678");
    EXPECT_EQ(text[10], 0);
    std::strcpy(text, "new");
    window_update(text);
    EXPECT_EQ(field(control), "new");
}

TEST_F(Boxes, InitiallyBlank) {
    std::int32_t value = 0;
    window_control* control =
        box("%rd[initially_blank]", "*I", {w(&value)}, control_type::integer_box);
    EXPECT_EQ(field(control), "");
    initialise_controls(control->window->hwnd, false);
    EXPECT_EQ(field(control), "");
    value = 3;
    window_update(&value);
    EXPECT_EQ(field(control), "3");
}

TEST_F(Boxes, PromptGivesWayAndComesBack) {
    char text[21] = "";
    window_control* control =
        box("%rs%pr", "*CI*CI", {w(text), 20, w("your name"), 0x808080}, control_type::string_box);
    ASSERT_TRUE(control);
    EXPECT_EQ(field(control), "your name");
    EXPECT_STREQ(text, "");
    SetFocus(control->hwnd);
    SendMessageA(control->hwnd, EM_SETSEL, 0, 0);
    SendMessageA(control->hwnd, WM_CHAR, 'J', 0);
    EXPECT_EQ(field(control), "J");
    EXPECT_STREQ(text, "J");
    SendMessageA(control->hwnd, WM_CHAR, 8, 0);
    EXPECT_EQ(field(control), "your name");
    EXPECT_STREQ(text, "");
}

TEST_F(Boxes, PromptOfANumber) {
    std::int32_t value = 0;
    window_control* control =
        box("%rd%pr", "*I*CI", {w(&value), w("years"), 0x808080}, control_type::integer_box);
    EXPECT_EQ(field(control), "years");
    initialise_controls(control->window->hwnd, false);
    EXPECT_EQ(field(control), "years");
    SetFocus(control->hwnd);
    SendMessageA(control->hwnd, EM_SETSEL, 2, 2);
    SendMessageA(control->hwnd, EM_SETSEL, 0, 0);
    SendMessageA(control->hwnd, WM_CHAR, '4', 0);
    EXPECT_EQ(field(control), "4");
    EXPECT_EQ(value, 4);
}

TEST_F(Boxes, CheckOnFocusLossWaits) {
    std::int32_t value = 1, other = 2;
    window_control* control = box("%co[check_on_focus_loss]%rd%rd", "*I*I", {w(&value), w(&other)},
                                  control_type::integer_box);
    type(control, "77");
    EXPECT_EQ(value, 1);
    SetFocus(nth(newest(), control_type::integer_box, 1)->hwnd);
    EXPECT_EQ(value, 77);
}

// A button doesn't close the window over an entry that was refused, by the mouse or by a key.
TEST_F(Boxes, ARefusedEntryStopsTheButton) {
    std::int32_t value = 7;
    window_control* control = box("%co[check_on_focus_loss]%il%rd%`bt[OK]", "II*I",
                                  {5, 10, w(&value)}, control_type::integer_box);
    window_control* button = nth(newest(), control_type::button);
    const auto by_mouse = [&] {
        SendMessageA(button->hwnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
        SendMessageA(button->hwnd, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
        settle();
    };
    const auto by_key = [&] {
        PostMessageA(control->hwnd, WM_KEYDOWN, VK_RETURN, 0);
        settle();
    };
    type(control, "99");
    by_mouse();
    EXPECT_EQ(open_windows(), 1);
    EXPECT_EQ(field(control), "7");
    EXPECT_EQ(GetFocus(), control->hwnd);
    type(control, "4");
    by_key();
    EXPECT_EQ(open_windows(), 1);
    type(control, "9");
    by_key();
    EXPECT_EQ(open_windows(), 0);
    EXPECT_EQ(value, 9);
}

TEST_F(Boxes, SpinStepsAndServesOneBox) {
    std::int32_t value = 7, other = 0;
    window_control* control =
        box("%il%dd%rd%rd", "III*I*I", {0, 12, 5, w(&value), w(&other)}, control_type::integer_box);
    ASSERT_TRUE(control->spin && control->spin->hwnd);
    EXPECT_FALSE(nth(newest(), control_type::integer_box, 1)->spin);
    auto press = [&](std::int32_t y) {
        LPARAM at = MAKELPARAM(3, y);
        SendMessageA(control->spin->hwnd, WM_LBUTTONDOWN, MK_LBUTTON, at);
        SendMessageA(control->spin->hwnd, WM_LBUTTONUP, 0, at);
    };
    press(2);
    EXPECT_EQ(value, 10);
    press(2);
    EXPECT_EQ(value, 12);
    press(18);
    EXPECT_EQ(value, 10);
    EXPECT_EQ(field(control), "10");
    EXPECT_EQ(set_increment(control->hwnd, 1), 5);
    press(18);
    EXPECT_EQ(value, 9);
}

// One call for a step, and none for a step that a limit stops.
TEST_F(Boxes, SpinRunsTheCallBackAndSaysSo) {
    static std::int32_t value;
    static std::vector<std::int32_t> seen;
    value = 9;
    seen.clear();
    const call_back note = +[]() -> std::int32_t {
        seen.push_back(value * 10 + static_cast<std::int32_t>(quillpan_info("SPIN_CONTROL_USED")));
        return 2;
    };
    window_control* control =
        box("%il%dd%^rd", "III*I*E", {0, 10, 1, w(&value), w(note)}, control_type::integer_box);
    for (const std::int32_t y : {2, 2, 18}) {
        LPARAM at = MAKELPARAM(3, y);
        SendMessageA(control->spin->hwnd, WM_LBUTTONDOWN, MK_LBUTTON, at);
        SendMessageA(control->spin->hwnd, WM_LBUTTONUP, 0, at);
    }
    EXPECT_EQ(seen, (std::vector<std::int32_t>{101, 91}));
    type(control, "4");
    EXPECT_EQ(seen.back(), 40);
}

TEST_F(Boxes, LiveLimits) {
    std::int32_t value = 7;
    window_control* control = box("%rd", "*I", {w(&value)}, control_type::integer_box);
    set_integer_limits(control->hwnd, 0, 5);
    type(control, "9");
    EXPECT_EQ(value, 5);
    set_integer_limits(control->hwnd, 1, 0);
    type(control, "-99");
    EXPECT_EQ(value, -99);
}

// ---- Call-backs that do their worst

std::int32_t calls;
std::int32_t* watched;

std::int32_t store_three() {
    ++calls;
    *watched = 3;
    return 2;
}

std::int32_t destroy_own_window() {
    ++calls;
    DestroyWindow(HWND{callbacks().context.window_handle});
    return 1;
}

std::int32_t close_by_result() {
    ++calls;
    return 0;
}

TEST_F(Boxes, CallbackStoresIntoTheVariable) {
    calls = 0;
    std::int32_t value = 0;
    watched = &value;
    window_control* control =
        box("%^rd", "*I*E", {w(&value), w(store_three)}, control_type::integer_box);
    SetFocus(control->hwnd);
    SendMessageA(control->hwnd, EM_SETSEL, 0, -1);
    SendMessageA(control->hwnd, WM_CHAR, '8', 0);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(value, 3);
}

TEST_F(Boxes, CallbackEndsItsWindow) {
    for (call_back end : {call_back{destroy_own_window}, call_back{close_by_result}}) {
        for (const char* code : {"%^rd", "%^rf", "%^rs"}) {
            calls = 0;
            double storage[4] = {};
            std::int32_t before = open_windows();
            bool text = code[3] == 's';
            window_control* control =
                text ? box(code, "*CI*E", {w(storage), 20, w(end)}, control_type::string_box)
                : code[3] == 'd'
                    ? box(code, "*I*E", {w(storage), w(end)}, control_type::integer_box)
                    : box(code, "*F*E", {w(storage), w(end)}, control_type::float_box);
            ASSERT_TRUE(control) << code;
            SetFocus(control->hwnd);
            SendMessageA(control->hwnd, WM_CHAR, '5', 0);
            settle();
            EXPECT_EQ(calls, 1) << code;
            EXPECT_EQ(open_windows(), before) << code;
        }
    }
}

}  // namespace
}  // namespace tarn::winio
