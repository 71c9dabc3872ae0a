#include "platform/gdi/theme.h"

#include <gtest/gtest.h>

#include "platform/base/constants.h"
#include "platform/gdi/gdi.h"

namespace tarn::platform {
namespace {

struct ThemeTest : testing::TestWithParam<bool> {
    ThemeTest() { set_theme(GetParam()); }
    ~ThemeTest() override { set_theme(false); }
};

TEST_P(ThemeTest, TextsCanBeRead) {
    const Theme& look = theme();
    struct Pair {
        const char* what;
        COLORREF text, background;
        float least = 4.5F;
    };
    for (const Pair& p : {
             Pair{"field", look.text, look.window},
             Pair{"label", look.text, look.face},
             Pair{"note", look.text_muted, look.face},
             Pair{"note in a field", look.text_muted, look.window},
             Pair{"placeholder", look.text_placeholder, look.window},
             Pair{"button", look.text, look.button},
             Pair{"button under the pointer", look.text, look.button_hover},
             Pair{"pressed button", look.text, look.button_pressed},
             Pair{"default button", look.accent_text, look.accent},
             Pair{"default button under the pointer", look.accent_text, look.accent_hover},
             Pair{"pressed default button", look.accent_text, look.accent_pressed},
             Pair{"selection", look.selection_text, look.selection},
             Pair{"selection elsewhere", look.text, look.selection_inactive},
             Pair{"menu", look.text, look.menu},
             Pair{"menu item", look.text, look.menu_hover},
             Pair{"shortcut", look.text_muted, look.menu},
             Pair{"caption", look.caption_text, look.caption},
             Pair{"other caption", look.caption_inactive_text, look.caption_inactive},
             Pair{"tip", look.tooltip_text, look.tooltip},
             Pair{"error", look.danger, look.face},
             Pair{"link", look.accent, look.window},
             // What isn't text must be told from what is around it.
             Pair{"edge of a field", look.border_strong, look.window, 3.0F},
             Pair{"focus", look.focus_ring, look.face, 3.0F},
             Pair{"disabled", look.text_disabled, look.face, 2.0F},
         }) {
        EXPECT_GE(contrast(p.text, p.background), p.least) << p.what;
    }
}

TEST_P(ThemeTest, SystemColoursAreOfTheTheme) {
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), theme().window);
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), theme().face);
    EXPECT_EQ(GetSysColor(-1), 0u);
    EXPECT_EQ(GetSysColor(25), 0u);
    for (std::int32_t which = 0; which <= COLOR_INFOBK; ++which) {
        COLORREF colour = 0;
        ASSERT_TRUE(GetObjectBrush(GetSysColorBrush(which), colour));
        EXPECT_EQ(colour, GetSysColor(which));
    }
    struct Pair {
        std::int32_t text, background;
    };
    for (const Pair& p :
         {Pair{COLOR_WINDOWTEXT, COLOR_WINDOW}, Pair{COLOR_BTNTEXT, COLOR_BTNFACE},
          Pair{COLOR_MENUTEXT, COLOR_MENU}, Pair{COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHT},
          Pair{COLOR_INFOTEXT, COLOR_INFOBK}, Pair{COLOR_CAPTIONTEXT, COLOR_ACTIVECAPTION}}) {
        EXPECT_GE(contrast(GetSysColor(p.text), GetSysColor(p.background)), 4.5F) << p.text;
    }
}

INSTANTIATE_TEST_SUITE_P(Looks, ThemeTest, testing::Bool());

TEST(Colours, ContrastAndReadability) {
    EXPECT_NEAR(contrast(0, 0xFFFFFF), 21, 0.01);
    EXPECT_NEAR(contrast(0x808080, 0x808080), 1, 0.01);
    for (COLORREF background = 0; background < 0x1000000; background += 0x0A0B0D) {
        for (const COLORREF text : {0x000000u, 0x0000FFu, 0x808080u, 0xFFFFFFu}) {
            EXPECT_GE(contrast(readable(text, background), background), 4.5F);
        }
    }
    EXPECT_EQ(readable(0x0000C0, 0xFFFFFF), 0x0000C0u) << "a legible choice is left alone";
    EXPECT_EQ(blend(0x000000, 0x80FF40, 0.5F), 0x408020u);
    EXPECT_EQ(blend(0x123456, 0x654321, 0), 0x123456u);
    EXPECT_EQ(blend(0x123456, 0x654321, 2), 0x654321u);
}

}  // namespace
}  // namespace tarn::platform
