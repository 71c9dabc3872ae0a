// Moving among controls by keys, and the bars of windows.
#include "platform/user/desk.h"
#include "platform/user/scroll_bar.h"

namespace tarn::platform {
namespace {

constexpr UINT BM_CLICK = 0xF5;

class DialogKeys : public Desk {
  protected:
    // What a control answers to WM_GETDLGCODE, by its identifier.
    static void answer_codes(std::map<std::int32_t, LRESULT> codes) {
        handlers()[WM_GETDLGCODE] = [codes](const Sent& s, LRESULT& result) {
            const auto found = codes.find(GetDlgCtrlID(s.hwnd));
            result = found != codes.end() ? found->second : 0;
            return true;
        };
    }
    static bool dialog_key(HWND dialog, std::int32_t vk, std::uint32_t modifiers = 0) {
        key(VK_SHIFT, "", modifiers, false);  // only sets the state of the modifiers
        MSG m{GetFocus(), WM_KEYDOWN, static_cast<WPARAM>(vk), 1, 0, {}};
        return IsDialogMessageA(dialog, m);
    }
    static bool dialog_char(HWND dialog, UINT message, char c) {
        MSG m{GetFocus(), message, static_cast<unsigned char>(c), 1 << 29, 0, {}};
        return IsDialogMessageA(dialog, m);
    }
};

TEST_F(DialogKeys, TabGoesRoundThroughPanelsAndLeavesOutWhatCannot) {
    const HWND w = top();
    const HWND a = child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP, 11);
    child(w, {0, 0, 9, 9}, WS_VISIBLE, 12);                             // no stop
    child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP | WS_DISABLED, 13);  // disabled
    const HWND panel = CreateWindowExA(WS_EX_CONTROLPARENT, "Desk", "", WS_CHILD | WS_VISIBLE, 0, 0,
                                       50, 50, w, HMENU{20});
    const HWND b = child(panel, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP, 21);
    child(w, {0, 0, 9, 9}, WS_TABSTOP, 14);  // hidden
    const HWND c = child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP, 15);
    SetFocus(a);
    for (const HWND next : {b, c, a}) {
        EXPECT_TRUE(dialog_key(w, VK_TAB));
        EXPECT_EQ(GetFocus(), next);
    }
    for (const HWND next : {c, b, a}) {
        dialog_key(w, VK_TAB, mod_shift);
        EXPECT_EQ(GetFocus(), next);
    }
    EXPECT_TRUE(keyboard_focus_visible());
    click(w, {100, 100});
    EXPECT_FALSE(keyboard_focus_visible());
    answer_codes({{11, DLGC_WANTTAB}});
    SetFocus(a);
    dialog_key(w, VK_TAB);
    EXPECT_EQ(GetFocus(), a);
    EXPECT_EQ(GetNextDlgTabItem(w, HWND{}, false), a);
    EXPECT_EQ(GetNextDlgTabItem(w, HWND{}, true), c);
}

TEST_F(DialogKeys, ArrowsStayInTheirGroupAndChooseRadioButtons) {
    const HWND w = top();
    const HWND a = child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_GROUP, 11);
    const HWND b = child(w, {0, 0, 9, 9}, WS_VISIBLE, 12);
    const HWND c = child(w, {0, 0, 9, 9}, WS_VISIBLE, 13);
    child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_GROUP, 14);
    answer_codes({{11, DLGC_RADIOBUTTON}, {12, DLGC_RADIOBUTTON}, {13, DLGC_RADIOBUTTON}});
    SetFocus(a);
    dialog_key(w, VK_DOWN);
    EXPECT_EQ(GetFocus(), b);
    EXPECT_EQ(count(b, BM_CLICK), 1);
    dialog_key(w, VK_RIGHT);
    dialog_key(w, VK_DOWN);
    EXPECT_EQ(GetFocus(), a);
    dialog_key(w, VK_UP);
    EXPECT_EQ(GetFocus(), c);
}

TEST_F(DialogKeys, EnterAndEscapeFindTheirButtons) {
    const HWND w = top();
    const HWND field = child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP, 11);
    const HWND button = child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP, 12);
    answer_codes({{12, DLGC_UNDEFPUSHBUTTON}});
    const auto sent = [&] {
        const Sent* const s = last(w, WM_COMMAND);
        return s != nullptr ? std::pair{static_cast<std::int32_t>(s->wparam),
                                        HWND{static_cast<std::int32_t>(s->lparam)}}
                            : std::pair{-1, HWND{}};
    };
    SetFocus(field);
    EXPECT_TRUE(dialog_key(w, VK_RETURN));
    EXPECT_EQ(sent(), (std::pair{std::int32_t{IDOK}, HWND{}}));
    SetFocus(button);
    dialog_key(w, VK_RETURN);
    EXPECT_EQ(sent(), (std::pair{std::int32_t{12}, button}));
    dialog_key(w, VK_ESCAPE);
    EXPECT_EQ(sent(), (std::pair{std::int32_t{IDCANCEL}, HWND{}}));
    // A dialog names its default button; a grey one does nothing.
    handlers()[WM_USER] = [](const Sent&, LRESULT& r) {
        return r = static_cast<LRESULT>(0x534B000C), true;
    };
    SetFocus(field);
    dialog_key(w, VK_RETURN);
    EXPECT_EQ(sent(), (std::pair{std::int32_t{12}, button}));
    EnableWindow(button, false);
    const int before = count(w, WM_COMMAND);
    dialog_key(w, VK_RETURN);
    EXPECT_EQ(count(w, WM_COMMAND), before);
    answer_codes({{11, DLGC_WANTALLKEYS}});
    dialog_key(w, VK_ESCAPE);
    EXPECT_EQ(count(w, WM_COMMAND), before);
}

TEST_F(DialogKeys, MnemonicsPressButtonsAndLeadFromLabels) {
    const HWND w = top();
    child(w, {0, 0, 9, 9}, WS_VISIBLE, 11, "&Name:");
    const HWND field = child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP, 12);
    const HWND button = child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP, 13, "Save && &Quit");
    child(w, {0, 0, 9, 9}, WS_VISIBLE | 0x80, 14, "&Zero");  // its ampersand is a character
    const HWND umlaut = child(w, {0, 0, 9, 9}, WS_VISIBLE | WS_TABSTOP, 15,
                              "&\xDC"
                              "ber");
    answer_codes({{11, DLGC_STATIC},
                  {13, DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON},
                  {14, DLGC_STATIC},
                  {15, DLGC_BUTTON}});
    EXPECT_TRUE(dialog_char(w, WM_SYSCHAR, 'n'));
    EXPECT_EQ(GetFocus(), field);
    dialog_char(w, WM_SYSCHAR, 'Q');
    EXPECT_EQ(GetFocus(), button);
    EXPECT_EQ(count(button, BM_CLICK), 1);
    dialog_char(w, WM_SYSCHAR, '\xFC');
    EXPECT_EQ(GetFocus(), umlaut);
    dialog_char(w, WM_SYSCHAR, 'z');
    EXPECT_EQ(GetFocus(), umlaut);
    EXPECT_EQ(count(w, WM_SYSCOMMAND), 1);  // nobody's: the menu may know it
    answer_codes({{12, DLGC_WANTCHARS}, {13, DLGC_BUTTON}});
    SetFocus(field);
    dialog_char(w, WM_CHAR, 'q');
    EXPECT_EQ(GetFocus(), field);
}

// ---- Bars --------------------------------------------------------------------------------------
class Bars : public Desk {};

TEST_F(Bars, PositionsAreKeptWithinThePage) {
    const struct {
        SCROLLINFO info;
        std::int32_t position, last;
        bool idle;
    } cases[] = {
        {{SIF_ALL, 0, 99, 10, 95, 0}, 90, 90, false},
        {{SIF_ALL, 0, 99, 0, 95, 0}, 95, 99, false},
        {{SIF_ALL, 1, 10, 10, 5, 0}, 1, 1, true},
        {{SIF_ALL, 5, 2, 3, 9, 0}, 5, 5, true},
        {{SIF_ALL, -50, 50, 1, -90, 0}, -50, 50, false},
        {{SIF_ALL, INT32_MIN, INT32_MAX, 1, 7, 0}, 7, INT32_MAX, false},
        {{SIF_ALL, 0, 10, 0xFFFFFFFFu, 5, 0}, 0, 0, true},
    };
    for (const auto& c : cases) {
        ScrollValues v;
        v.set(c.info);
        EXPECT_EQ(v.position, c.position);
        EXPECT_EQ(v.last(), c.last);
        EXPECT_EQ(v.idle(), c.idle);
        const ScrollLayout l = scroll_layout({0, 0, 16, 200}, true, v);
        EXPECT_TRUE(c.idle == l.thumb.empty());
        EXPECT_GE(l.thumb.top, c.idle ? 0 : l.track.top);
        EXPECT_LE(l.thumb.bottom, l.track.bottom);
    }
}

TEST_F(Bars, ComeAndGoWithTheNeedForThem) {
    const HWND w = top(WS_POPUP | WS_VSCROLL);
    RECT r;
    GetClientRect(w, r);
    EXPECT_EQ(r.width(), 400 - GetSystemMetrics(SM_CXVSCROLL));
    log().clear();
    SetScrollInfo(w, SB_VERT, {SIF_RANGE | SIF_PAGE, 0, 9, 10, 0, 0}, true);
    GetClientRect(w, r);
    EXPECT_EQ(r.width(), 400);
    EXPECT_EQ(count(w, WM_SIZE), 1);
    SetScrollInfo(w, SB_VERT, {SIF_RANGE | SIF_DISABLENOSCROLL, 0, 5, 0, 0, 0}, true);
    GetClientRect(w, r);
    EXPECT_EQ(r.width(), 400 - GetSystemMetrics(SM_CXVSCROLL));
    EXPECT_EQ(SetScrollPos(w, SB_VERT, 3, true), 0);
    EXPECT_EQ(GetScrollPos(w, SB_VERT), 0);
    SetScrollRange(w, SB_VERT, 0, 100, true);
    SetScrollPos(w, SB_VERT, 42, true);
    EXPECT_EQ(GetScrollPos(w, SB_VERT), 42);
    ShowScrollBar(w, SB_BOTH, false);
    GetClientRect(w, r);
    EXPECT_EQ(r.width(), 400);
}

TEST_F(Bars, FollowThePointer) {
    const HWND w = top(WS_POPUP | WS_VSCROLL, HWND{}, {100, 100, 300, 332});  // track of 200
    SetScrollInfo(w, SB_VERT, {SIF_RANGE | SIF_PAGE | SIF_POS, 0, 99, 20, 0, 0}, true);
    std::vector<std::pair<int, int>> codes;
    handlers()[WM_VSCROLL] = [&](const Sent& s, LRESULT&) {
        codes.emplace_back(LOWORD(s.wparam), static_cast<std::int16_t>(HIWORD(s.wparam)));
        if (LOWORD(s.wparam) == SB_THUMBTRACK) {
            SCROLLINFO info{.fMask = SIF_TRACKPOS | SIF_POS};
            GetScrollInfo(s.hwnd, SB_VERT, info);
            EXPECT_EQ(info.nTrackPos, static_cast<std::int16_t>(HIWORD(s.wparam)));
        }
        return true;
    };
    const POINT at_thumb{192, 20};
    press(Event::Kind::button_down, w, at_thumb, 1, mod_left);
    press(Event::Kind::pointer_move, w, {192, 100}, 1, mod_left);
    settle();
    press(Event::Kind::pointer_move, w, {192, 5000}, 1, mod_left);
    settle();
    press(Event::Kind::button_up, w, {192, 5000});
    settle();
    EXPECT_EQ(
        codes,
        (std::vector<std::pair<int, int>>{
            {SB_THUMBTRACK, 40}, {SB_THUMBTRACK, 80}, {SB_THUMBPOSITION, 80}, {SB_ENDSCROLL, 0}}));
    EXPECT_EQ(GetCapture(), HWND{});
    codes.clear();
    press(Event::Kind::button_down, w, {192, 225}, 1, mod_left);
    settle();
    press(Event::Kind::button_up, w, {192, 225});
    settle();
    press(Event::Kind::button_down, w, {192, 150}, 1, mod_left);
    settle();
    press(Event::Kind::button_up, w, {192, 150});
    settle();
    EXPECT_EQ(codes,
              (std::vector<std::pair<int, int>>{
                  {SB_LINEDOWN, 0}, {SB_ENDSCROLL, 0}, {SB_PAGEDOWN, 0}, {SB_ENDSCROLL, 0}}));
    EXPECT_EQ(count(w, WM_LBUTTONDOWN), 0);
}

TEST_F(Bars, RepeatWhileHeld) {
    const HWND w = top(WS_POPUP | WS_VSCROLL, HWND{}, {100, 100, 300, 332});
    SetScrollRange(w, SB_VERT, 0, 1000, true);
    press(Event::Kind::button_down, w, {192, 225}, 1, mod_left);
    settle();
    SetTimer(w, 1, 700, nullptr);
    MSG m;
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 600) {
        while (PeekMessageA(m, HWND{}, 0, 0, PM_REMOVE)) DispatchMessageA(m);
        WaitMessage();
    }
    press(Event::Kind::button_up, w, {192, 225});
    settle();
    KillTimer(w, 1);
    const int steps = count(w, WM_VSCROLL);
    EXPECT_GE(steps, 4);
    EXPECT_LE(steps, 10);
    settle();
    EXPECT_EQ(count(w, WM_VSCROLL), steps);
}

// ---- Frames of children ------------------------------------------------------------------------
class ChildFrames : public Desk {
  protected:
    static constexpr DWORD framed = WS_VISIBLE | WS_OVERLAPPEDWINDOW | WS_CLIPSIBLINGS;
    static void drag(HWND hwnd, POINT from, POINT to) {
        press(Event::Kind::button_down, hwnd, from, 1, mod_left);
        settle();
        // The window moves under the pointer: both places are told on its parent.
        MapWindowPoints(hwnd, GetParent(hwnd), &to, 1);
        press(Event::Kind::pointer_move, GetParent(hwnd), to, 1, mod_left);
        settle();
        press(Event::Kind::button_up, GetParent(hwnd), to);
        settle();
    }
    static RECT place(HWND hwnd) {
        RECT r;
        GetWindowRect(hwnd, r);
        MapWindowPoints(HWND{}, GetParent(hwnd), reinterpret_cast<POINT*>(&r), 2);
        return r;
    }
};

TEST_F(ChildFrames, AreMovedSizedAndClosedByThePointer) {
    const HWND w = top(WS_POPUP);
    const HWND a = child(w, {20, 30, 220, 180}, framed, 1);
    const HWND b = child(w, {20, 30, 220, 180}, framed, 2);
    settle();
    EXPECT_EQ(GetTopWindow(w), a);
    drag(b, {300, 300}, {0, 0});  // not on it
    drag(a, {20, -10}, {30, 10});
    EXPECT_EQ(place(a), (RECT{30, 50, 230, 200}));
    drag(a, {-2, 50}, {-12, 50});  // its left border
    EXPECT_EQ(place(a), (RECT{20, 50, 230, 200}));
    drag(a, {-2, 50}, {1000, 50});
    EXPECT_EQ(place(a).width(), 112);
    drag(b, {10, 10}, {10, 10});
    EXPECT_EQ(GetTopWindow(w), b);
    EXPECT_EQ(count(b, WM_CHILDACTIVATE), 1);
    handlers()[WM_WINDOWPOSCHANGING] = [](const Sent& s, LRESULT&) {
        reinterpret_cast<WINDOWPOS*>(s.lparam)->flags |= SWP_NOMOVE | SWP_NOSIZE;
        return false;
    };
    const RECT before = place(b);
    drag(b, {20, -10}, {90, 90});
    EXPECT_EQ(place(b), before);
    handlers().clear();
    RECT client;
    GetClientRect(b, client);
    const POINT cross{client.right - 10, -15};
    drag(b, cross, {cross.x, cross.y + 60});  // let go beside it
    EXPECT_TRUE(IsWindow(b));
    click(b, cross);
    EXPECT_FALSE(IsWindow(b));
}

TEST_F(ChildFrames, FillTheirParentWhenMaximised) {
    const HWND w = top(WS_POPUP, HWND{}, {0, 0, 400, 300});
    const HWND a = child(w, {20, 30, 220, 180}, framed, 1);
    ShowWindow(a, SW_SHOWMAXIMIZED);
    RECT client;
    GetClientRect(a, client);
    EXPECT_EQ(client, (RECT{0, 0, 400, 300}));
    POINT origin{};
    MapWindowPoints(a, w, &origin, 1);
    EXPECT_EQ(origin, (POINT{0, 0}));
    EXPECT_EQ(last(a, WM_SIZE)->wparam, WPARAM{SIZE_MAXIMIZED});
    ShowWindow(a, SW_RESTORE);
    EXPECT_EQ(place(a), (RECT{20, 30, 220, 180}));
}

}  // namespace
}  // namespace tarn::platform
