// List boxes and combo boxes: items, selection, and the order in which they tell.
#include <gtest/gtest.h>

#include "platform/controls/window.h"

namespace {
using namespace tarn::platform;

constexpr std::uint32_t list_style = WS_BORDER | WS_VSCROLL | LBS_NOTIFY;

std::string item(HWND list, std::int32_t index) {
    std::string text(static_cast<std::size_t>(send(list, LB_GETTEXTLEN, WPARAM(index))), '\0');
    send(list, LB_GETTEXT, WPARAM(index), reinterpret_cast<LPARAM>(text.data()));
    return text;
}
std::string selected(HWND list) {
    std::string marks;
    for (LRESULT i = 0; i < send(list, LB_GETCOUNT); ++i) {
        marks += send(list, LB_GETSEL, WPARAM(i)) > 0 ? '#' : '.';
    }
    return marks;
}
void add_items(HWND list, std::initializer_list<const char*> texts, UINT message = LB_ADDSTRING) {
    for (const char* text : texts) send(list, message, 0, text);
}
POINT on(HWND list, std::int32_t index) {
    RECT rect;
    send(list, LB_GETITEMRECT, WPARAM(index), reinterpret_cast<LPARAM>(&rect));
    return {rect.left + 10, rect.top + rect.height() / 2};
}
std::vector<std::int32_t> codes() {
    std::vector<std::int32_t> list;
    for (const Told& told : heard().commands) list.push_back(told.code);
    heard().commands.clear();
    return list;
}
using Codes = std::vector<std::int32_t>;

TEST(ListBox, ItemsComeAndGo) {
    const TestWindow w;
    const HWND list = w.add("listbox", "", list_style, {10, 10, 110, 100});
    add_items(list, {"one", "two", "three"});
    EXPECT_EQ(send(list, LB_INSERTSTRING, 1, "middle"), 1);
    EXPECT_EQ(send(list, LB_INSERTSTRING, WPARAM(-1), "end"), 4);
    EXPECT_EQ(send(list, LB_INSERTSTRING, 9, "nowhere"), LB_ERR);
    EXPECT_EQ(send(list, LB_SETCURSEL, 2), 2);
    EXPECT_EQ(send(list, LB_DELETESTRING, 0), 4);
    EXPECT_EQ(send(list, LB_GETCURSEL), 1);
    EXPECT_EQ(item(list, 1), "two");
    EXPECT_EQ(send(list, LB_FINDSTRING, WPARAM(-1), "TH"), 2);
    EXPECT_EQ(send(list, LB_FINDSTRINGEXACT, WPARAM(-1), "th"), LB_ERR);
    EXPECT_EQ(send(list, LB_DELETESTRING, 4), LB_ERR);
    EXPECT_EQ(send(list, LB_GETTEXTLEN, 99), LB_ERR);
    EXPECT_EQ(send(list, LB_SETCURSEL, WPARAM(-1)), LB_ERR);
    EXPECT_EQ(send(list, LB_GETCURSEL), LB_ERR);
    send(list, LB_RESETCONTENT);
    EXPECT_EQ(send(list, LB_GETCOUNT), 0);
    EXPECT_TRUE(heard().commands.empty());
}

TEST(ListBox, AsHighAsItsWholeItems) {
    const TestWindow w;
    const HWND fitted = w.add("listbox", "", list_style, {10, 10, 110, 99});
    const HWND free = w.add("listbox", "", list_style | LBS_NOINTEGRALHEIGHT, {10, 100, 110, 189});
    const LRESULT each = send(fitted, LB_GETITEMHEIGHT);
    EXPECT_LE(each, 16);
    RECT rect;
    GetClientRect(fitted, rect);
    EXPECT_EQ(rect.height() % each, 0);
    GetWindowRect(free, rect);
    EXPECT_EQ(rect.height(), 89);
}

TEST(ListBox, ClicksAndKeysChooseOne) {
    const TestWindow w;
    const HWND list = w.add("listbox", "", list_style, {10, 10, 110, 100}, 3);
    add_items(list, {"alpha", "beta", "bravo", "gamma", "delta"});
    click(list, on(list, 2));
    EXPECT_EQ(send(list, LB_GETCURSEL), 2);
    EXPECT_EQ(codes(), (Codes{LBN_SETFOCUS, LBN_SELCHANGE}));
    // A second click is a double click, and one on the chosen item is told too.
    click(list, on(list, 2));
    EXPECT_EQ(codes(), Codes{LBN_DBLCLK});
    key(VK_DOWN);
    EXPECT_EQ(send(list, LB_GETCURSEL), 3);
    key(VK_END);
    key(VK_END);
    EXPECT_EQ(send(list, LB_GETCURSEL), 4);
    EXPECT_EQ(codes(), (Codes{LBN_SELCHANGE, LBN_SELCHANGE}));
    type("br");
    EXPECT_EQ(send(list, LB_GETCURSEL), 2);
    // Dragging takes the choice along.
    press(list, on(list, 0));
    move_to(list, on(list, 3), mod_left);
    EXPECT_EQ(send(list, LB_GETCURSEL), 3);
    release(list, on(list, 3));
    EXPECT_EQ(codes().back(), static_cast<std::int32_t>(LBN_SELCHANGE));
}

TEST(ListBox, ManyAreChosenByStyle) {
    struct Step {
        char what;  // c click, k key
        std::int32_t which;
        std::uint32_t modifiers;
        const char* after;
    };
    const struct {
        std::uint32_t style;
        std::vector<Step> steps;
    } cases[] = {
        {LBS_MULTIPLESEL,
         {{'c', 1, 0, ".#..."},
          {'c', 3, 0, ".#.#."},
          {'c', 1, 0, "...#."},
          {'k', VK_DOWN, 0, "...#."},
          {'k', VK_SPACE, 0, "..##."}}},
        {LBS_EXTENDEDSEL,
         {{'c', 1, 0, ".#..."},
          {'c', 3, 0, "...#."},
          {'c', 0, mod_control, "#..#."},
          {'c', 2, mod_shift, "###.."},
          {'k', VK_DOWN, mod_shift, "####."},
          {'k', VK_UP, 0, "..#.."},
          {'k', 'A', mod_control, "#####"}}},
    };
    for (const auto& c : cases) {
        const TestWindow w;
        const HWND list = w.add("listbox", "", list_style | c.style, {10, 10, 110, 100});
        add_items(list, {"a", "b", "c", "d", "e"});
        for (const Step& step : c.steps) {
            if (step.what == 'c') {
                click(list, on(list, step.which), step.modifiers);
                const DWORD until = GetTickCount() + 550;  // no double clicks
                while (GetTickCount() < until) settle();
            } else {
                key(step.which, step.modifiers, step.which == VK_SPACE ? " " : "");
            }
            EXPECT_EQ(selected(list), step.after) << step.what << step.which;
        }
    }
}

TEST(ListBox, ScrollsToWhatIsChosen) {
    const TestWindow w;
    const HWND list = w.add("listbox", "", list_style, {10, 10, 110, 100});
    for (int i = 0; i < 100000; ++i) send(list, LB_ADDSTRING, 0, std::to_string(i).c_str());
    settle();
    send(list, LB_SETCURSEL, 99999);
    RECT rect;
    GetClientRect(list, rect);
    const LRESULT shown = rect.height() / send(list, LB_GETITEMHEIGHT);
    EXPECT_EQ(send(list, LB_GETTOPINDEX), 100000 - shown);
    SCROLLINFO info;
    info.fMask = SIF_ALL;
    GetScrollInfo(list, SB_VERT, info);
    EXPECT_EQ(info.nMax, 99999);
    EXPECT_EQ(info.nPos, info.nMax - shown + 1);
    const LRESULT hit = send(list, LB_ITEMFROMPOINT, 0, MAKELPARAM(5, 2));
    EXPECT_EQ(hit, static_cast<LRESULT>((100000 - shown) & 0xFFFF));
    SetFocus(list);
    key(VK_HOME);
    EXPECT_EQ(send(list, LB_GETTOPINDEX), 0);
    send(list, WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA));
    EXPECT_EQ(send(list, LB_GETTOPINDEX), 3);
    // Behind the last item there is nothing to hit.
    send(list, LB_RESETCONTENT);
    EXPECT_NE(send(list, LB_ITEMFROMPOINT, 0, MAKELPARAM(5, 2)) >> 16, 0);
}

TEST(ListBox, ItsOwnerDrawsNumbersOrTexts) {
    const TestWindow w;
    static std::vector<std::uintptr_t> drawn;
    drawn.clear();
    heard().item_height = 24;
    heard().on_draw = [](const DRAWITEMSTRUCT& d) { drawn.push_back(d.itemData); };
    const HWND numbers = w.add("listbox", "", list_style | LBS_OWNERDRAWFIXED, {10, 10, 110, 100});
    send(numbers, LB_ADDSTRING, 0, LPARAM{1234});
    EXPECT_EQ(send(numbers, LB_GETITEMHEIGHT), 24);
    EXPECT_EQ(send(numbers, LB_GETITEMDATA, 0), 1234);
    settle();
    EXPECT_EQ(drawn, std::vector<std::uintptr_t>{1234});
    const HWND texts =
        w.add("listbox", "", list_style | LBS_OWNERDRAWFIXED | LBS_HASSTRINGS, {120, 10, 220, 100});
    add_items(texts, {"one"});
    EXPECT_EQ(item(texts, 0), "one");
}

// ---- Combo boxes -------------------------------------------------------------------------------

HWND combo_with_items(const TestWindow& w, std::uint32_t style) {
    const HWND combo = w.add("combobox", "", WS_BORDER | style, {10, 10, 130, 110}, 9);
    add_items(combo, {"alpha", "beta", "gamma", "delta"}, CB_ADDSTRING);
    return combo;
}
HWND dropped_list() {
    for (HWND top = first_window(); top != 0; top = next_top_level(top)) {
        char name[32];
        GetClassNameA(top, name, sizeof name);
        if (std::string{name} == "combolbox") return top;
    }
    return HWND{};
}
HWND field_of(HWND combo) {
    return GetWindow(combo, GW_CHILD);
}

TEST(ComboBox, IsAsHighAsItsFieldAndKeepsTheHeightOfItsList) {
    const TestWindow w;
    const HWND combo = combo_with_items(w, CBS_DROPDOWNLIST);
    RECT rect;
    GetWindowRect(combo, rect);
    EXPECT_LE(rect.height(), 20);
    EXPECT_GE(rect.height(), 16);
    const std::int32_t height = rect.height();
    MoveWindow(combo, 10, 10, 150, 110, true);
    GetWindowRect(combo, rect);
    EXPECT_EQ(rect.height(), height);
    EXPECT_EQ(rect.width(), 150);
    send(combo, CB_SHOWDROPDOWN, 1);
    const HWND list = dropped_list();
    ASSERT_NE(list, HWND{});
    RECT below;
    GetWindowRect(list, below);
    EXPECT_EQ(below.width(), 150);
    EXPECT_GE(below.top, rect.bottom);
    EXPECT_EQ(below.height(), 4 * send(combo, CB_GETITEMHEIGHT) + 2);
}

TEST(ComboBox, ItsListStaysOnTheMonitorOfTheBox) {
    const TestWindow w;
    const HWND combo = combo_with_items(w, CBS_DROPDOWNLIST);
    RECT box;
    GetWindowRect(combo, box);
    struct {
        POINT box;
        bool above;
    } cases[] = {
        {{1300, 300}, false}, {{1300, 960}, true}, {{2750, 300}, false}, {{400, 900}, false}};
    for (const auto& c : cases) {
        // The window is moved so that its box is there.
        RECT whole;
        GetWindowRect(w.hwnd, whole);
        MoveWindow(w.hwnd, c.box.x - box.left + 20, c.box.y - box.top + 20, whole.width(),
                   whole.height(), true);
        settle();
        send(combo, CB_SETDROPPEDWIDTH, 300);
        RECT list;
        send(combo, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&list));
        const RECT screen = display().work_area(c.box);
        EXPECT_EQ(moved_inside(list, screen), list) << c.box.x << "," << c.box.y;
        EXPECT_EQ(list.bottom <= c.box.y, c.above) << c.box.x << "," << c.box.y;
    }
}

TEST(ComboBox, ChoosingTellsInOrder) {
    for (const std::uint32_t style : {CBS_DROPDOWNLIST, CBS_DROPDOWN}) {
        SCOPED_TRACE(style);
        const TestWindow w;
        const HWND combo = combo_with_items(w, style);
        static LRESULT at_accept;
        at_accept = -2;
        heard().on_command = [](HWND parent, std::int32_t id, std::int32_t code) {
            if (code == static_cast<std::int32_t>(CBN_SELENDOK)) {
                at_accept = send(GetDlgItem(parent, id), CB_GETCURSEL);
            }
        };
        click(combo, {110, 8});
        EXPECT_EQ(send(combo, CB_GETDROPPEDSTATE), 1);
        EXPECT_EQ(codes(), (Codes{CBN_SETFOCUS, CBN_DROPDOWN}));
        const HWND list = dropped_list();
        ASSERT_NE(list, HWND{});
        move_to(list, on(list, 2));
        EXPECT_EQ(send(combo, CB_GETCURSEL), LB_ERR);
        click(list, on(list, 2));
        EXPECT_EQ(at_accept, 2);
        EXPECT_EQ(codes(), (Codes{CBN_SELENDOK, CBN_CLOSEUP, CBN_SELCHANGE}));
        EXPECT_EQ(text_of(combo), "gamma");
        EXPECT_EQ(dropped_list(), HWND{});
        // Keys choose without the list.
        key(VK_DOWN);
        EXPECT_EQ(codes(), (Codes{CBN_SELENDOK, CBN_SELCHANGE}));
        EXPECT_EQ(text_of(combo), "delta");
        key(VK_DOWN);
        EXPECT_EQ(codes(), Codes{});
        // Escape takes back what was chosen in the list.
        key(VK_F4);
        key(VK_UP);
        EXPECT_EQ(text_of(combo), "gamma");
        EXPECT_EQ(codes(), (Codes{CBN_DROPDOWN, CBN_SELCHANGE}));
        key(VK_ESCAPE);
        EXPECT_EQ(text_of(combo), "delta");
        EXPECT_EQ(codes(), (Codes{CBN_SELENDCANCEL, CBN_CLOSEUP, CBN_SELCHANGE}));
        key(VK_DOWN, mod_alt);
        EXPECT_EQ(send(combo, CB_GETDROPPEDSTATE), 1);
        key(VK_UP, mod_alt);
        EXPECT_EQ(send(combo, CB_GETDROPPEDSTATE), 0);
        EXPECT_EQ(codes(), (Codes{CBN_DROPDOWN, CBN_SELENDOK, CBN_CLOSEUP}));
        // A press anywhere else closes it.
        key(VK_F4);
        codes();
        click(w.hwnd, {300, 250});
        EXPECT_EQ(codes(), (Codes{CBN_SELENDCANCEL, CBN_CLOSEUP}));
        EXPECT_EQ(GetCapture(), HWND{});
        SetFocus(HWND{});
        EXPECT_EQ(codes(), Codes{CBN_KILLFOCUS});
    }
}

TEST(ComboBox, TypingInItsFieldIsTold) {
    const TestWindow w;
    const HWND combo = combo_with_items(w, CBS_DROPDOWN);
    send(combo, CB_SETCURSEL, 1);
    EXPECT_EQ(text_of(combo), "beta");
    EXPECT_TRUE(heard().commands.empty());
    SetFocus(combo);
    EXPECT_EQ(GetFocus(), field_of(combo));
    codes();
    type("g");
    EXPECT_EQ(text_of(combo), "g");
    EXPECT_EQ(codes(), (Codes{CBN_EDITUPDATE, CBN_EDITCHANGE}));
    EXPECT_EQ(send(combo, CB_GETCURSEL), CB_ERR);
    send(combo, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
    EXPECT_EQ(send(combo, CB_GETEDITSEL), MAKELPARAM(0, 1));
    send(combo, CB_LIMITTEXT, 3);
    type("wxyz");
    EXPECT_EQ(text_of(combo), "wxy");
    send(combo, CB_RESETCONTENT);
    EXPECT_EQ(text_of(combo), "");
}

TEST(ComboBox, LettersChooseInABoxWithoutField) {
    const TestWindow w;
    const HWND combo = combo_with_items(w, CBS_DROPDOWNLIST);
    SetFocus(combo);
    codes();
    type("g");
    EXPECT_EQ(text_of(combo), "gamma");
    EXPECT_EQ(codes(), (Codes{CBN_SELENDOK, CBN_SELCHANGE}));
    EXPECT_EQ(send(combo, CB_FINDSTRINGEXACT, WPARAM(-1), "ALPHA"), 0);
    EXPECT_EQ(send(combo, CB_SETCURSEL, 99), CB_ERR);
    EXPECT_EQ(text_of(combo), "");
}

TEST(ComboBox, MayGoWhileItsListIsDown) {
    const TestWindow w;
    const HWND combo = combo_with_items(w, CBS_DROPDOWNLIST);
    send(combo, CB_SHOWDROPDOWN, 1);
    ASSERT_NE(dropped_list(), HWND{});
    DestroyWindow(combo);
    settle();
    EXPECT_EQ(dropped_list(), HWND{});
    const HWND second = combo_with_items(w, CBS_DROPDOWNLIST);
    send(second, CB_SHOWDROPDOWN, 1);
    heard().on_command = [](HWND parent, std::int32_t id, std::int32_t code) {
        if (code == static_cast<std::int32_t>(CBN_SELENDOK)) DestroyWindow(GetDlgItem(parent, id));
    };
    const HWND list = dropped_list();
    move_to(list, on(list, 1));
    click(list, on(list, 1));
    EXPECT_FALSE(IsWindow(second));
    EXPECT_EQ(dropped_list(), HWND{});
}

TEST(ComboBox, ASimpleOneShowsItsList) {
    const TestWindow w;
    const HWND combo = w.add("combobox", "", CBS_SIMPLE, {10, 10, 130, 110}, 9);
    add_items(combo, {"alpha", "beta", "gamma"}, CB_ADDSTRING);
    settle();
    const HWND list = GetWindow(field_of(combo), GW_HWNDNEXT);
    ASSERT_NE(list, HWND{});
    click(list, on(list, 1));
    EXPECT_EQ(text_of(combo), "beta");
    EXPECT_EQ(heard().commands.back(), (Told{9, static_cast<std::int32_t>(CBN_SELCHANGE)}));
}

}  // namespace
