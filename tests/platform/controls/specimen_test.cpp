// All controls in all states in one window. With TARN_SPECIMEN set to a folder it is written there
// as a picture for people to judge (TARN_THEME and TARN_SCALE choose which).
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

#include "platform/controls/window.h"

namespace {
using namespace tarn::platform;

RECT at(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h) {
    return {x, y, x + w, y + h};
}

void add_buttons(const TestWindow& w) {
    w.add("button", "&Cancel", BS_PUSHBUTTON, at(16, 16, 90, 28));
    w.add("button", "&OK", BS_DEFPUSHBUTTON, at(116, 16, 90, 28));
    w.add("button", "Disabled", BS_PUSHBUTTON | WS_DISABLED, at(216, 16, 90, 28));
    const HWND pressed = w.add("button", "Pressed", BS_PUSHBUTTON, at(316, 16, 90, 28));
    send(pressed, BM_SETSTATE, 1);
    w.add("button", "Split", BS_SPLITBUTTON, at(416, 16, 90, 28));
    w.add("button", "Split", BS_DEFSPLITBUTTON, at(516, 16, 90, 28));
    const HWND icon = w.add("button", "With icon", BS_PUSHBUTTON, at(616, 10, 120, 40));
    send(icon, BM_SETIMAGE, IMAGE_ICON, LoadSystemIcon(IDI_ASTERISK));
    w.add("button", "Small", BS_PUSHBUTTON, at(16, 52, 60, 20));
    w.add("button", "Tiny", BS_PUSHBUTTON, at(84, 54, 40, 16));
    w.add("button", "Two lines of\nlabel here", BS_PUSHBUTTON | BS_MULTILINE, at(132, 50, 100, 40));
    const HWND link = w.add("button", "Install the program", BS_COMMANDLINK, at(246, 50, 230, 56));
    send(link, BCM_SETNOTE, 0, "Copies the files and makes a menu entry");
    w.add("button", "Plain link", BS_COMMANDLINK, at(486, 60, 140, 32));
}

void add_marks(const TestWindow& w) {
    const struct {
        const char* text;
        std::uint32_t style;
        WPARAM check;
    } marks[] = {
        {"Check box", BS_AUTOCHECKBOX, 0},
        {"Checked", BS_AUTOCHECKBOX, 1},
        {"Mixed", BS_AUTO3STATE, 2},
        {"Off, disabled", BS_AUTOCHECKBOX | WS_DISABLED, 0},
        {"On, disabled", BS_AUTOCHECKBOX | WS_DISABLED, 1},
        {"Radio", BS_AUTORADIOBUTTON, 0},
        {"Radio, chosen", BS_AUTORADIOBUTTON, 1},
        {"Off, disabled", BS_AUTORADIOBUTTON | WS_DISABLED, 0},
        {"On, disabled", BS_AUTORADIOBUTTON | WS_DISABLED, 1},
        {"At the right", BS_AUTOCHECKBOX | BS_LEFTTEXT, 1},
    };
    std::int32_t i = 0;
    for (const auto& mark : marks) {
        const HWND hwnd =
            w.add("button", mark.text, mark.style, at(28 + i / 5 * 140, 134 + i % 5 * 21, 130, 18));
        send(hwnd, BM_SETCHECK, mark.check);
        ++i;
    }
    const HWND group = w.add("button", "Options", BS_GROUPBOX, at(16, 116, 300, 130));
    SetWindowPos(group, HWND{HWND_BOTTOM}, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

void add_labels(const TestWindow& w) {
    w.add("static", "&Left label", SS_LEFT, at(330, 116, 130, 16));
    w.add("static", "Centred", SS_CENTER, at(330, 134, 130, 16));
    w.add("static", "Right", SS_RIGHT, at(330, 152, 130, 16));
    w.add("static", "Disabled label", WS_DISABLED, at(330, 170, 130, 16));
    w.add("static", "A longer label that is wrapped into the lines there are.", SS_LEFT,
          at(330, 188, 130, 48));
    w.add("static", "", SS_ETCHEDHORZ, at(330, 240, 130, 2));
    w.add("static", "", SS_GRAYFRAME, at(476, 116, 40, 24));
    w.add("static", "", SS_BLACKFRAME, at(524, 116, 40, 24));
    w.add("static", "", SS_BLACKRECT, at(476, 146, 40, 16));
    w.add("static", "", SS_GRAYRECT, at(524, 146, 40, 16));
    const HWND icon = w.add("static", "", SS_ICON, at(580, 116, 32, 32));
    send(icon, STM_SETICON, static_cast<WPARAM>(LoadSystemIcon(IDI_EXCLAMATION)));
    const HWND image = w.add("static", "", SS_ICON, at(620, 116, 32, 32));
    send(image, STM_SETIMAGE, IMAGE_ICON, LoadSystemIcon(IDI_HAND));
}

void add_fields(const TestWindow& w) {
    constexpr std::uint32_t field = WS_BORDER | ES_AUTOHSCROLL;
    w.add("edit", "A field", field, at(16, 260, 140, 20), 200);
    const HWND focused = w.add("edit", "The field with focus", field, at(16, 286, 140, 20), 201);
    w.add("edit", "Read only", field | ES_READONLY, at(16, 312, 140, 20));
    w.add("edit", "Disabled", field | WS_DISABLED, at(16, 338, 140, 20));
    w.add("edit", "secret", field | ES_PASSWORD, at(16, 364, 140, 20));
    send(w.add("edit", "", field, at(16, 390, 140, 20)), EM_SETCUEBANNER, 0, "Search\xE2\x80\xA6");
    w.add("edit", "1234.5", field | ES_RIGHT, at(16, 416, 66, 20));
    w.add("edit", "12", field | ES_CENTER, at(90, 416, 66, 20));
    w.add("edit", "24 pixels high", field, at(16, 442, 140, 24));
    w.add("edit",
          "Words wrap at the edge of a field that does not scroll across, and lines end where "
          "they are told to.\r\n\r\nLast line\r\nand more\r\nand more\r\nand more",
          WS_BORDER | WS_VSCROLL | ES_MULTILINE | ES_AUTOVSCROLL, at(170, 260, 190, 96));
    w.add("edit", "Lines that are not wrapped go on and on behind the edge\nsecond\nthird",
          WS_BORDER | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_AUTOHSCROLL,
          at(170, 364, 190, 102));
    SetFocus(focused);
    send(focused, EM_SETSEL, 4, 9);
}

void fill(HWND hwnd, UINT message) {
    for (const char* text : {"Amsterdam", "Bergen", "Cádiz", "Dresden", "Évora", "Florence", "Graz",
                             "Hamburg", "Ioannina", "Jyväskylä", "Kraków", "Lyon"}) {
        send(hwnd, message, 0, text);
    }
}

void add_lists(const TestWindow& w) {
    constexpr std::uint32_t list = WS_BORDER | WS_VSCROLL | LBS_NOTIFY;
    const HWND single = w.add("listbox", "", list, at(374, 260, 130, 98));
    fill(single, LB_ADDSTRING);
    send(single, LB_SETCURSEL, 1);
    const HWND many = w.add("listbox", "", list | LBS_EXTENDEDSEL, at(374, 364, 130, 102));
    fill(many, LB_ADDSTRING);
    for (const int i : {0, 1, 3}) send(many, LB_SETSEL, 1, i);
    const HWND columns =
        w.add("listbox", "", WS_BORDER | WS_HSCROLL | LBS_MULTICOLUMN, at(518, 260, 218, 66));
    fill(columns, LB_ADDSTRING);
    send(columns, LB_SETCURSEL, 2);
    const HWND off = w.add("listbox", "", WS_BORDER | WS_DISABLED, at(518, 334, 100, 50));
    fill(off, LB_ADDSTRING);
    send(off, LB_SETCURSEL, 1);

    const HWND chosen = w.add("combobox", "", WS_BORDER | CBS_DROPDOWNLIST, at(518, 394, 100, 120));
    fill(chosen, CB_ADDSTRING);
    send(chosen, CB_SETCURSEL, 4);
    const HWND typed = w.add("combobox", "", WS_BORDER | CBS_DROPDOWN, at(626, 394, 110, 120));
    fill(typed, CB_ADDSTRING);
    send(typed, CB_SETCURSEL, 9);
    const HWND grey = w.add("combobox", "", CBS_DROPDOWNLIST | WS_DISABLED, at(518, 420, 100, 120));
    fill(grey, CB_ADDSTRING);
    send(grey, CB_SETCURSEL, 0);
    const HWND grey_typed =
        w.add("combobox", "", CBS_DROPDOWN | WS_DISABLED, at(626, 420, 110, 120));
    fill(grey_typed, CB_ADDSTRING);
    send(grey_typed, CB_SETCURSEL, 3);
    const HWND simple = w.add("combobox", "", CBS_SIMPLE, at(626, 334, 110, 54));
    fill(simple, CB_ADDSTRING);
    send(simple, CB_SETCURSEL, 2);
}

void add_scroll_bars(const TestWindow& w) {
    SCROLLINFO info;
    info.fMask = SIF_ALL;
    info.nMax = 99;
    info.nPage = 20;
    info.nPos = 30;
    const HWND across = w.add("scrollbar", "", SBS_HORZ, at(518, 450, 180, 16));
    SetScrollInfo(across, SB_CTL, info, true);
    const HWND down = w.add("scrollbar", "", SBS_VERT, at(720, 116, 16, 128));
    SetScrollInfo(down, SB_CTL, info, true);
}

void save(HWND hwnd, const std::string& name) {
    const char* folder = std::getenv("TARN_SPECIMEN");
    if (folder == nullptr) return;
    const Surface* surface = window_surface(hwnd);
    ASSERT_NE(surface, nullptr);
    EXPECT_TRUE(write_png((std::string{folder} + "/" + name + ".png").c_str(), *surface));
}

// Counts pixels that differ from the corner's on a ring just outside a control.
TEST(Specimen, EveryControlPaintsWithinItsWindow) {
    TestWindow w{752, 482};
    add_buttons(w);
    add_marks(w);
    add_labels(w);
    add_fields(w);
    add_lists(w);
    add_scroll_bars(w);
    settle();
    save(w.hwnd, "controls");
    const Surface* surface = window_surface(w.hwnd);
    ASSERT_NE(surface, nullptr);
    const auto pixel = [&](std::int32_t x, std::int32_t y) {
        return surface->pixels[std::size_t(surface->to_real(y)) * std::size_t(surface->stride) +
                               std::size_t(surface->to_real(x))];
    };
    // Between the controls there is nothing but the window's face.
    const std::uint32_t face = pixel(2, 2);
    for (const POINT gap :
         {POINT{111, 30}, {163, 300}, {366, 300}, {510, 300}, {8, 270}, {160, 20}}) {
        EXPECT_EQ(pixel(gap.x == 160 ? 750 : gap.x, gap.y), face) << gap.x << "," << gap.y;
    }

    // With a list down and a button under the pointer.
    HWND combo{};
    for (HWND c = GetWindow(w.hwnd, GW_CHILD); c != 0; c = GetWindow(c, GW_HWNDNEXT)) {
        char name[32];
        GetClassNameA(c, name, sizeof name);
        if (std::string{name} == "combobox" && combo == 0) combo = c;
    }
    ASSERT_NE(combo, HWND{});
    send(combo, CB_SHOWDROPDOWN, 1);
    settle();
    for (HWND top = first_window(); top != 0; top = next_top_level(top)) {
        char name[32];
        GetClassNameA(top, name, sizeof name);
        if (std::string{name} == "combolbox") save(top, "list");
    }
    send(combo, CB_SHOWDROPDOWN, 0);
    // The focus as the keyboard brings it, and the pointer over something else.
    key(VK_F10);
    std::int32_t shot = 0;
    for (HWND c = GetWindow(w.hwnd, GW_CHILD); c != 0; c = GetWindow(c, GW_HWNDNEXT)) {
        const std::string label = window_text(c);
        if (label != "&Cancel" && label != "Checked" && label != "Radio" &&
            label != "Install the program" && c != combo) {
            continue;
        }
        SetFocus(c);
        move_to(GetWindow(c, GW_HWNDNEXT), {5, 5});
        save(w.hwnd, "focus" + std::to_string(shot++));
        EXPECT_TRUE(control_facts(c).focused) << label;
    }
}

}  // namespace
