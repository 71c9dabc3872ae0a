// Buttons, labels and scroll bars: what they tell, what state they come to.
#include <gtest/gtest.h>

#include "platform/controls/window.h"

namespace {
using namespace tarn::platform;

constexpr RECT place{10, 10, 110, 40};
constexpr POINT inside{20, 10}, outside{20, 60};

TEST(Button, AClickIsPressAndReleaseWithin) {
    const TestWindow w;
    const HWND button = w.add("button", "Go", BS_PUSHBUTTON, place, 5);
    press(button, inside);
    EXPECT_EQ(GetFocus(), button);
    EXPECT_NE(send(button, BM_GETSTATE) & BST_PUSHED, 0);
    EXPECT_TRUE(heard().commands.empty());
    move_to(button, outside, mod_left);
    EXPECT_EQ(send(button, BM_GETSTATE) & BST_PUSHED, 0);
    move_to(button, inside, mod_left);
    EXPECT_NE(send(button, BM_GETSTATE) & BST_PUSHED, 0);
    release(button, inside);
    EXPECT_EQ(heard().commands, (std::vector<Told>{{5, BN_CLICKED}}));
    press(button, inside);
    move_to(button, outside, mod_left);
    release(button, outside);
    EXPECT_EQ(heard().commands.size(), 1u);
    EXPECT_EQ(GetCapture(), HWND{});
    // Twice in quick succession is two clicks.
    click(button, inside);
    click(button, inside);
    EXPECT_EQ(heard().commands.size(), 3u);
}

TEST(Button, SpaceCountsWhenItIsLetGo) {
    const TestWindow w;
    const HWND button = w.add("button", "Go", BS_PUSHBUTTON, place, 5);
    SetFocus(button);
    send(button, WM_KEYDOWN, VK_SPACE);
    EXPECT_NE(send(button, BM_GETSTATE) & BST_PUSHED, 0);
    EXPECT_TRUE(heard().commands.empty());
    send(button, WM_KEYUP, VK_SPACE);
    EXPECT_EQ(heard().commands.size(), 1u);
    send(button, WM_KEYDOWN, VK_SPACE);
    send(button, WM_KEYDOWN, VK_ESCAPE);
    send(button, WM_KEYUP, VK_SPACE);
    EXPECT_EQ(heard().commands.size(), 1u);
    send(button, WM_KEYUP, VK_SPACE);
    EXPECT_EQ(heard().commands.size(), 1u);
    EnableWindow(button, false);
    send(button, BM_CLICK);
    EXPECT_EQ(heard().commands.size(), 1u);
}

TEST(Button, ChecksFollowTheirStyle) {
    const struct {
        std::uint32_t style;
        LRESULT states[4];  // before, and after each of three clicks
    } cases[] = {
        {BS_PUSHBUTTON, {0, 0, 0, 0}},   {BS_CHECKBOX, {0, 0, 0, 0}},
        {BS_AUTOCHECKBOX, {0, 1, 0, 1}}, {BS_AUTO3STATE, {0, 1, 2, 0}},
        {BS_RADIOBUTTON, {0, 0, 0, 0}},  {BS_AUTORADIOBUTTON, {0, 1, 1, 1}},
    };
    for (const auto& c : cases) {
        const TestWindow w;
        const HWND button = w.add("button", "x", c.style, place);
        for (const LRESULT state : c.states) {
            EXPECT_EQ(send(button, BM_GETCHECK), state) << c.style;
            send(button, BM_CLICK);
        }
        EXPECT_EQ(heard().commands.size(), 4u);
    }
}

TEST(Button, OneRadioButtonOfAGroupIsChosen) {
    const TestWindow w;
    HWND radio[5];
    for (int i = 0; i < 5; ++i) {
        const std::uint32_t group = i == 0 || i == 3 ? std::uint32_t{WS_GROUP} : 0;
        radio[i] =
            w.add("button", "x", BS_AUTORADIOBUTTON | group, {10, 10 + i * 20, 90, 28 + i * 20});
    }
    send(radio[4], BM_CLICK);
    send(radio[0], BM_CLICK);
    send(radio[2], BM_CLICK);
    const LRESULT expected[] = {0, 0, 1, 0, 1};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(send(radio[i], BM_GETCHECK), expected[i]) << i;
}

TEST(Button, ASplitButtonTellsOfItsArrow) {
    const TestWindow w;
    const HWND button = w.add("button", "Go", BS_SPLITBUTTON, place, 5);
    click(button, {95, 10});
    EXPECT_EQ(heard().notified, BCN_DROPDOWN);
    EXPECT_TRUE(heard().commands.empty());
    click(button, inside);
    EXPECT_EQ(heard().commands.size(), 1u);
}

TEST(Button, ItsOwnerDrawsIt) {
    const TestWindow w;
    static DRAWITEMSTRUCT drawn;
    drawn = {};
    heard().on_draw = [](const DRAWITEMSTRUCT& item) { drawn = item; };
    const HWND button = w.add("button", "Go", BS_OWNERDRAW, place, 5);
    settle();
    EXPECT_EQ(drawn.CtlID, 5u);
    EXPECT_EQ(drawn.CtlType, ODT_BUTTON);
    EXPECT_EQ(drawn.hwndItem, button);
    EXPECT_EQ(drawn.rcItem, (RECT{0, 0, 100, 30}));
    press(button, inside);
    EXPECT_EQ(drawn.itemState & ODS_SELECTED, ODS_SELECTED);
    release(button, inside);
    EXPECT_EQ(drawn.itemState & ODS_SELECTED, 0u);
    click(button, inside);
    EXPECT_EQ(heard().commands, (std::vector<Told>{{5, BN_CLICKED}, {5, BN_DOUBLECLICKED}}));
}

TEST(Button, ItsWindowMayGoInTheClick) {
    const TestWindow w;
    const HWND button = w.add("button", "Go", BS_AUTOCHECKBOX, place, 5);
    heard().on_command = [](HWND parent, std::int32_t id, std::int32_t) {
        DestroyWindow(GetDlgItem(parent, id));
    };
    click(button, inside);
    EXPECT_FALSE(IsWindow(button));
}

TEST(Label, LetsClicksThroughUnlessItIsAskedToTell) {
    const TestWindow w;
    const HWND under = w.add("button", "x", BS_PUSHBUTTON, place, 1);
    const HWND label = w.add("static", "Text", SS_LEFT, place, 2);
    BringWindowToTop(label);
    click(label, inside);
    EXPECT_EQ(heard().commands, (std::vector<Told>{{1, BN_CLICKED}}));
    heard().commands.clear();
    const HWND telling = w.add("static", "Text", SS_NOTIFY, place, 3);
    BringWindowToTop(telling);
    click(telling, inside);
    EXPECT_EQ(heard().commands, (std::vector<Told>{{3, STN_CLICKED}}));
    EnableWindow(under, false);
}

// Every control asks its parent for its colours, and one that gets a background alone keeps its
// text readable on it.
TEST(Colours, AreAskedOfTheParentAndStayReadable) {
    const struct {
        const char* name;
        std::uint32_t style;
        UINT message;
    } cases[] = {
        {"static", SS_LEFT, WM_CTLCOLORSTATIC},
        {"static", SS_GRAYRECT, WM_CTLCOLORSTATIC},
        {"static", SS_ICON, WM_CTLCOLORSTATIC},
        {"static", SS_ETCHEDHORZ, WM_CTLCOLORSTATIC},
        {"button", BS_PUSHBUTTON, WM_CTLCOLORBTN},
        {"button", BS_CHECKBOX, WM_CTLCOLORSTATIC},
        {"button", BS_OWNERDRAW, WM_CTLCOLORBTN},
        {"button", BS_GROUPBOX, WM_CTLCOLORSTATIC},
        {"edit", 0, WM_CTLCOLOREDIT},
        {"edit", ES_READONLY, WM_CTLCOLORSTATIC},
        {"edit", WS_DISABLED, WM_CTLCOLORSTATIC},
        {"listbox", 0, WM_CTLCOLORLISTBOX},
        {"combobox", CBS_DROPDOWNLIST, WM_CTLCOLOREDIT},
    };
    static HWND asked;
    static UINT with;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string{c.name} + " " + std::to_string(c.style));
        const TestWindow w;
        asked = HWND{};
        heard().on_colour = [](UINT message, HDC dc, HWND control) {
            asked = control;
            with = message;
            SetBkColor(dc, RGB(20, 20, 60));
            return static_cast<LRESULT>(GetStockObject(NULL_BRUSH));
        };
        const HWND hwnd = w.add(c.name, "MMMMMM", c.style, place);
        settle();
        EXPECT_EQ(asked, hwnd);
        EXPECT_EQ(with, c.message);
    }
    const TestWindow w;
    static HBRUSH dark;
    dark = CreateSolidBrush(RGB(20, 20, 60));
    heard().on_colour = [](UINT, HDC dc, HWND) {
        SetBkColor(dc, RGB(20, 20, 60));
        return static_cast<LRESULT>(dark);
    };
    w.add("static", "MMMMMM", SS_LEFT, place);
    settle();
    const Surface* surface = window_surface(w.hwnd);
    float best = 1;
    for (std::int32_t y = 12; y < 38; ++y) {
        for (std::int32_t x = 12; x < 90; ++x) {
            const std::uint32_t pixel = surface->pixels[y * surface->stride + x];
            const COLORREF colour = RGB(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF);
            best = std::max(best, contrast(colour, RGB(20, 20, 60)));
        }
    }
    EXPECT_GT(best, 3.0F);
}

TEST(ScrollBar, KeepsItsValuesAndTellsOfItsParts) {
    const TestWindow w;
    const HWND bar = w.add("scrollbar", "", SBS_VERT, {10, 10, 26, 210});
    SCROLLINFO info;
    info.fMask = SIF_ALL;
    info.nMax = 99;
    info.nPage = 10;
    info.nPos = 95;
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, info, true), 90);
    info = {};
    info.fMask = SIF_ALL;
    EXPECT_TRUE(GetScrollInfo(bar, SB_CTL, info));
    EXPECT_EQ(info.nPos, 90);
    EXPECT_EQ(info.nMax, 99);
    click(bar, {8, 4});
    click(bar, {8, 30});
    EXPECT_EQ(heard().scrolls,
              (std::vector<std::int32_t>{SB_LINEUP, SB_ENDSCROLL, SB_PAGEUP, SB_ENDSCROLL}));
}

TEST(Facts, TellWhatAControlIs) {
    const TestWindow w;
    const auto facts = [&w](const char* name, const char* text, std::uint32_t style) {
        return control_facts(w.add(name, text, style, place));
    };
    const ControlFacts check = facts("button", "&Save && go", BS_AUTOCHECKBOX);
    EXPECT_STREQ(check.role, "check box");
    EXPECT_EQ(check.name, "Save & go");
    EXPECT_FALSE(check.checked);
    EXPECT_STREQ(facts("button", "x", BS_AUTORADIOBUTTON | WS_DISABLED).role, "radio button");
    EXPECT_STREQ(facts("button", "x", BS_DEFPUSHBUTTON).role, "button");
    facts("static", "&Name:", SS_LEFT);
    const ControlFacts field = facts("edit", "Ada", 0);
    EXPECT_STREQ(field.role, "text field");
    EXPECT_EQ(field.name, "Name");
    EXPECT_EQ(field.value, "Ada");
    EXPECT_EQ(facts("edit", "secret", ES_PASSWORD).value, "******");
    EXPECT_STREQ(facts("combobox", "", CBS_DROPDOWNLIST).role, "combo box");
}

}  // namespace
