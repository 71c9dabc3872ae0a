// The life of windows: messages in order, stale handles, trees, sizes.
#include "platform/user/desk.h"
#include "platform/user/menus.h"

namespace tarn::platform {
namespace {

class Windows : public Desk {};

TEST_F(Windows, AChildHearsOfItsSizeWhenItIsMadeATopLevelWhenItIsShown) {
    const HWND parent =
        CreateWindowExA(0, "Desk", "Top", WS_OVERLAPPEDWINDOW, 10, 20, 300, 200, HWND{}, HMENU{});
    EXPECT_EQ(messages(parent, {WM_NCCREATE, WM_NCCALCSIZE, WM_CREATE, WM_SIZE, WM_MOVE}),
              (std::vector<UINT>{WM_NCCREATE, WM_NCCALCSIZE, WM_CREATE}));
    log().clear();
    const HWND c = child(parent, {0, 0, 50, 20}, 0);
    EXPECT_EQ(messages(c, {WM_NCCREATE, WM_NCCALCSIZE, WM_CREATE, WM_SIZE, WM_MOVE, WM_SHOWWINDOW}),
              (std::vector<UINT>{WM_NCCREATE, WM_NCCALCSIZE, WM_CREATE, WM_SIZE, WM_MOVE}));
    log().clear();
    ShowWindow(parent, SW_SHOW);
    EXPECT_EQ(messages(parent,
                       {WM_SHOWWINDOW, WM_NCACTIVATE, WM_ACTIVATE, WM_SETFOCUS, WM_SIZE, WM_MOVE}),
              (std::vector<UINT>{WM_SHOWWINDOW, WM_NCACTIVATE, WM_ACTIVATE, WM_SETFOCUS, WM_SIZE,
                                 WM_MOVE}));
    EXPECT_EQ(GetFocus(), parent);
}

TEST_F(Windows, MenusAndFilledScreensStayOnTheirMonitor) {
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 1280);
    EXPECT_EQ(GetSystemMetrics(SM_CXMAXTRACK), 2880 + 12);
    const HWND second = top(WS_OVERLAPPEDWINDOW, {}, {1400, 200, 1800, 500});
    static RECT menu_place;
    const HMENU menu = CreatePopupMenu();
    AppendMenuA(menu, MF_STRING, 1, "An item of a menu");
    for (const POINT at :
         {POINT{1290, 110}, POINT{2870, 990}, POINT{1270, 1020}, POINT{2870, 105}}) {
        SetTimer(second, 7, 1, [](HWND hwnd, UINT, std::uintptr_t, DWORD) {
            KillTimer(hwnd, 7);
            for (HWND each = first_window(); each != HWND{}; each = next_top_level(each))
                if (each != hwnd) GetWindowRect(each, menu_place);
            Event escape;  // for the menu's own loop
            escape.kind = Event::Kind::key_down;
            escape.window = static_cast<TopLevel>(hwnd);
            escape.key = VK_ESCAPE;
            inject_event(escape);
        });
        menu_place = {};
        TrackPopupMenu(menu, 0, at.x, at.y, second);
        settle();
        EXPECT_FALSE(menu_place.empty());
        EXPECT_EQ(moved_inside(menu_place, display().monitor(at)), menu_place) << at.x;
    }
    DestroyMenu(menu);
    ShowWindow(second, SW_SHOWMAXIMIZED);
    settle();
    RECT client;
    GetClientRect(second, client);
    EXPECT_EQ(client.width(), 1600 - 2);  // the manager's border
}

TEST_F(Windows, DestructionGoesDownAndRecordsGoUp) {
    const HWND parent = top();
    const HWND a = child(parent, {0, 0, 50, 50});
    const HWND inner = child(a, {0, 0, 10, 10});
    const HWND owned = top(WS_POPUP, parent);
    settle();
    log().clear();
    EXPECT_TRUE(DestroyWindow(parent));
    std::vector<std::pair<HWND, UINT>> order;
    for (const Sent& s : log())
        if (s.message == WM_DESTROY || s.message == WM_NCDESTROY)
            order.emplace_back(s.hwnd, s.message);
    EXPECT_EQ(order, (std::vector<std::pair<HWND, UINT>>{{owned, WM_DESTROY},
                                                         {owned, WM_NCDESTROY},
                                                         {parent, WM_DESTROY},
                                                         {a, WM_DESTROY},
                                                         {inner, WM_DESTROY},
                                                         {inner, WM_NCDESTROY},
                                                         {a, WM_NCDESTROY},
                                                         {parent, WM_NCDESTROY}}));
    for (const HWND gone : {parent, a, inner, owned}) EXPECT_FALSE(IsWindow(gone));
    EXPECT_EQ(GetFocus(), HWND{});
    EXPECT_EQ(GetActiveWindow(), HWND{});
}

TEST_F(Windows, StaleHandlesAreRefusedByEverything) {
    const HWND parent = top();
    const HWND gone = child(parent, {0, 0, 50, 50});
    DestroyWindow(gone);
    child(parent, {0, 0, 50, 50});  // may take its place in the table
    RECT r;
    PAINTSTRUCT paint;
    MSG m{gone, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_FALSE(IsWindow(gone));
    EXPECT_FALSE(DestroyWindow(gone));
    EXPECT_FALSE(GetWindowRect(gone, r));
    EXPECT_EQ(SendMessageA(gone, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("x")), 0);
    EXPECT_FALSE(PostMessageA(gone, WM_USER, 0, 0));
    EXPECT_EQ(BeginPaint(gone, paint), HDC{});
    EXPECT_EQ(GetDC(gone), HDC{});
    EXPECT_EQ(SetTimer(gone, 1, 10, nullptr), 0u);
    EXPECT_FALSE(SetWindowPos(gone, HWND{}, 0, 0, 1, 1, 0));
    EXPECT_FALSE(InvalidateRect(gone, nullptr, true));
    EXPECT_EQ(GetWindowLong(gone, GWL_STYLE), 0);
    EXPECT_EQ(SetFocus(gone), HWND{});
    EXPECT_FALSE(IsDialogMessageA(gone, m));
    EXPECT_EQ(DispatchMessageA(m), 0);
    EXPECT_FALSE(ShowWindow(gone, SW_SHOW));
    EXPECT_EQ(GetNextDlgTabItem(gone, gone, false), HWND{});
    for (const std::int32_t odd : {0, -1, 1, 0x7FFFFFFF, INT32_MIN})
        EXPECT_FALSE(IsWindow(HWND{odd})) << odd;
}

TEST_F(Windows, AHandleIsNotGivenAgainForLong) {
    const HWND parent = top();
    const HWND first = child(parent, {0, 0, 5, 5});
    DestroyWindow(first);
    for (int i = 0; i < 20000; ++i) {
        const HWND next = child(parent, {0, 0, 5, 5});
        ASSERT_NE(next, first);
        ASSERT_GT(static_cast<std::int32_t>(next), 0);
        DestroyWindow(next);
        log().clear();
    }
}

// Each message may be the one in which a window goes; none leaves anything half done.
TEST_F(Windows, AWindowMayGoInsideAnyOfItsMessages) {
    const UINT moments[] = {WM_NCCREATE,
                            WM_CREATE,
                            WM_SIZE,
                            WM_MOVE,
                            WM_SHOWWINDOW,
                            WM_ACTIVATE,
                            WM_NCACTIVATE,
                            WM_SETFOCUS,
                            WM_PAINT,
                            WM_ERASEBKGND,
                            WM_NCPAINT,
                            WM_NCHITTEST,
                            WM_SETCURSOR,
                            WM_KEYDOWN,
                            WM_LBUTTONDOWN,
                            WM_MOUSEMOVE,
                            WM_DESTROY,
                            WM_NCDESTROY,
                            WM_KILLFOCUS,
                            WM_TIMER,
                            WM_NCCALCSIZE,
                            WM_WINDOWPOSCHANGING,
                            WM_WINDOWPOSCHANGED,
                            WM_ENABLE,
                            WM_GETMINMAXINFO,
                            WM_MOUSEACTIVATE,
                            WM_CAPTURECHANGED,
                            WM_VSCROLL};
    for (const UINT moment : moments) {
        SCOPED_TRACE(moment);
        bool gone = false;
        handlers()[moment] = [&](const Sent& s, LRESULT&) {
            if (!gone) {
                gone = true;
                DestroyWindow(s.hwnd);
            }
            return false;
        };
        const HWND w = CreateWindowExA(0, "Desk", "Top", WS_OVERLAPPEDWINDOW | WS_VSCROLL, 10, 20,
                                       300, 200, HWND{}, HMENU{});
        const HWND c = child(w, {10, 10, 50, 50});
        ShowWindow(w, SW_SHOW);
        settle();
        SetCapture(w);
        MoveWindow(w, 20, 30, 310, 210, true);
        EnableWindow(w, false);
        EnableWindow(w, true);
        SetTimer(w, 1, 10, nullptr);
        if (IsWindow(w)) click(w, {100, 100});
        if (IsWindow(c)) click(c, {5, 5});
        key('A', "a");
        PostMessageA(w, WM_NCLBUTTONDOWN, HTVSCROLL, MAKELPARAM(20 + 300, 30 + 45));
        settle();
        SetFocus(c);
        SetFocus(w);
        DestroyWindow(w);
        while (first_window() != HWND{}) DestroyWindow(first_window());
        settle();
        handlers().clear();
        EXPECT_FALSE(IsWindow(w));
    }
}

TEST_F(Windows, CreationThatIsRefusedLeavesNothing) {
    handlers()[WM_NCCREATE] = [](const Sent&, LRESULT& result) { return result = 0, true; };
    EXPECT_EQ(CreateWindowExA(0, "Desk", "", WS_POPUP, 0, 0, 9, 9, HWND{}, HMENU{}), HWND{});
    handlers().clear();
    handlers()[WM_CREATE] = [](const Sent&, LRESULT& result) { return result = -1, true; };
    EXPECT_EQ(CreateWindowExA(0, "Desk", "", WS_POPUP, 0, 0, 9, 9, HWND{}, HMENU{}), HWND{});
    handlers().clear();
    EXPECT_EQ(first_window(), HWND{});
    EXPECT_EQ(CreateWindowExA(0, "Nobody", "", 0, 0, 0, 9, 9, HWND{}, HMENU{}), HWND{});
    EXPECT_EQ(CreateWindowExA(0, "Desk", "", WS_CHILD, 0, 0, 9, 9, HWND{}, HMENU{}), HWND{});
    EXPECT_EQ(CreateWindowExA(0, nullptr, "", 0, 0, 0, 9, 9, HWND{}, HMENU{}), HWND{});
}

// The client area is what a program reckons from the metrics.
TEST_F(Windows, FramesTakeWhatTheMetricsSay) {
    const std::int32_t caption = GetSystemMetrics(SM_CYCAPTION);
    const struct {
        DWORD style, ex_style;
        std::int32_t less_width, less_height;
    } cases[] = {
        {WS_OVERLAPPEDWINDOW, 0, 2 * GetSystemMetrics(SM_CXFRAME),
         2 * GetSystemMetrics(SM_CYFRAME) + caption},
        {WS_CAPTION | WS_DLGFRAME, WS_EX_DLGMODALFRAME, 2 * GetSystemMetrics(SM_CXBORDER),
         2 * GetSystemMetrics(SM_CYBORDER) + caption},
        {WS_CAPTION | WS_VSCROLL | WS_HSCROLL, 0,
         2 * GetSystemMetrics(SM_CXBORDER) + GetSystemMetrics(SM_CXVSCROLL),
         2 * GetSystemMetrics(SM_CYBORDER) + caption + GetSystemMetrics(SM_CYHSCROLL)},
        {WS_POPUP, 0, 0, 0},
        {WS_POPUP | WS_BORDER, 0, 2, 2},
        {WS_POPUP | WS_THICKFRAME, 0, 8, 8},
    };
    for (const auto& c : cases) {
        const HWND w =
            CreateWindowExA(c.ex_style, "Desk", "", c.style, 0, 0, 300, 200, HWND{}, HMENU{});
        RECT r;
        GetClientRect(w, r);
        EXPECT_EQ(r, (RECT{0, 0, 300 - c.less_width, 200 - c.less_height})) << std::hex << c.style;
        GetWindowRect(w, r);
        EXPECT_EQ(r, (RECT{0, 0, 300, 200}));
    }
    const HWND parent = top();
    const HWND edged =
        CreateWindowExA(WS_EX_CLIENTEDGE, "Desk", "", WS_CHILD, 0, 0, 100, 50, parent, HMENU{});
    RECT r;
    GetClientRect(edged, r);
    EXPECT_EQ(r, (RECT{0, 0, 96, 46}));
}

TEST_F(Windows, PointsAreMappedThroughFramesAndChildren) {
    const HWND w = top(WS_POPUP | WS_BORDER, HWND{}, {100, 50, 400, 300});
    const HWND a = child(w, {10, 20, 100, 100}, WS_VISIBLE | WS_BORDER);
    const HWND b = child(a, {5, 6, 30, 30});
    POINT p{1, 2};
    MapWindowPoints(b, HWND{}, &p, 1);
    EXPECT_EQ(p, (POINT{100 + 1 + 10 + 1 + 5 + 1, 50 + 1 + 20 + 1 + 6 + 2}));
    ScreenToClient(b, p);
    EXPECT_EQ(p, (POINT{1, 2}));
    RECT r;
    GetWindowRect(b, r);
    EXPECT_EQ(r, (RECT{117, 78, 142, 102}));
    EXPECT_EQ(WindowFromPoint({120, 80}), b);
    EXPECT_EQ(WindowFromPoint({112, 72}), a);
    EXPECT_EQ(WindowFromPoint({390, 290}), w);
}

TEST_F(Windows, ZOrderIsTabOrderAndCanBeChanged) {
    const HWND w = top();
    const HWND a = child(w, {0, 0, 10, 10}, WS_VISIBLE, 1);
    const HWND b = child(w, {0, 0, 10, 10}, WS_VISIBLE, 2);
    const HWND c = child(w, {0, 0, 10, 10}, WS_VISIBLE, 3);
    const auto order = [&] {
        std::vector<HWND> all;
        for (HWND h = GetWindow(w, GW_CHILD); h != HWND{}; h = GetWindow(h, GW_HWNDNEXT))
            all.push_back(h);
        return all;
    };
    EXPECT_EQ(order(), (std::vector<HWND>{a, b, c}));
    constexpr UINT only_order = SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE;
    SetWindowPos(a, HWND{HWND_BOTTOM}, 0, 0, 0, 0, only_order);
    EXPECT_EQ(order(), (std::vector<HWND>{b, c, a}));
    SetWindowPos(a, b, 0, 0, 0, 0, only_order);
    EXPECT_EQ(order(), (std::vector<HWND>{b, a, c}));
    BringWindowToTop(c);
    EXPECT_EQ(order(), (std::vector<HWND>{c, b, a}));
    EXPECT_EQ(GetDlgItem(w, 2), b);
    EXPECT_EQ(ChildWindowFromPoint(w, {5, 5}), c);
}

TEST_F(Windows, WordsAndProcedures) {
    const HWND w = top();
    SetWindowLong(w, 0, 0x123456789ABCDEF0);
    SetWindowLong(w, 12, 0x7FEEDDCC);  // only four bytes are left there
    EXPECT_EQ(GetWindowLong(w, 0), 0x123456789ABCDEF0);
    EXPECT_EQ(GetWindowLong(w, 12), 0x7FEEDDCC);
    SetWindowLong(w, 13, 1);
    SetWindowLong(w, 1000000, 1);
    EXPECT_EQ(GetWindowLong(w, 1000000), 0);
    SetWindowLong(w, GWL_USERDATA, 42);
    EXPECT_EQ(GetWindowLong(w, GWL_USERDATA), 42);
    static WNDPROC previous;
    previous = reinterpret_cast<WNDPROC>(SetWindowLong(
        w, GWL_WNDPROC,
        reinterpret_cast<LPARAM>(+[](HWND hwnd, UINT m, WPARAM wp, LPARAM lp) -> LRESULT {
            return m == WM_USER ? 77 : CallWindowProcA(previous, hwnd, m, wp, lp);
        })));
    EXPECT_EQ(SendMessageA(w, WM_USER, 0, 0), 77);
    EXPECT_TRUE(SetWindowTextA(w, "through"));
    EXPECT_EQ(window_text(w), "through");
}

TEST_F(Windows, ProgramsMayChangeWhereTheyGo) {
    const HWND w = top(WS_POPUP);
    handlers()[WM_WINDOWPOSCHANGING] = [](const Sent& s, LRESULT&) {
        reinterpret_cast<WINDOWPOS*>(s.lparam)->flags |= SWP_NOMOVE | SWP_NOSIZE;
        return false;
    };
    RECT before;
    RECT after;
    GetWindowRect(w, before);
    MoveWindow(w, 1, 2, 33, 44, true);
    settle();
    GetWindowRect(w, after);
    EXPECT_EQ(before, after);
}

TEST_F(Windows, StatesTellTheirSizes) {
    const HWND w = top();
    RECT normal;
    GetWindowRect(w, normal);
    log().clear();
    ShowWindow(w, SW_MINIMIZE);
    settle();
    EXPECT_TRUE(IsIconic(w));
    ASSERT_NE(last(w, WM_SIZE), nullptr);
    EXPECT_EQ(last(w, WM_SIZE)->wparam, WPARAM{SIZE_MINIMIZED});
    EXPECT_EQ(last(w, WM_SIZE)->lparam, 0);
    ShowWindow(w, SW_RESTORE);
    settle();
    EXPECT_EQ(last(w, WM_SIZE)->wparam, WPARAM{SIZE_RESTORED});
    ShowWindow(w, SW_SHOWMAXIMIZED);
    settle();
    EXPECT_TRUE(IsZoomed(w));
    EXPECT_EQ(last(w, WM_SIZE)->wparam, WPARAM{SIZE_MAXIMIZED});
    RECT full;
    GetClientRect(w, full);
    EXPECT_GT(full.width(), GetSystemMetrics(SM_CXSCREEN) - 20);
    ShowWindow(w, SW_RESTORE);
    settle();
    RECT again;
    GetWindowRect(w, again);
    EXPECT_EQ(again, normal);
    EXPECT_FALSE(IsZoomed(w));
}

// UTF-8 inside; the page outside for the A functions, UTF-16 for the W functions.
TEST_F(Windows, TextsKeepTheirMeaningOnEveryRoad) {
    for (const char* const cls : {"Desk", "DeskUtf8"}) {
        SCOPED_TRACE(cls);
        const HWND w = CreateWindowExA(0, cls, "caf\xE9", WS_POPUP, 0, 0, 9, 9, HWND{}, HMENU{});
        EXPECT_EQ(window_text(w), "café");
        char narrow[10];
        char16_t wide[10];
        EXPECT_EQ(GetWindowTextA(w, narrow, 10), 4);
        EXPECT_STREQ(narrow, "caf\xE9");
        EXPECT_EQ(GetWindowTextW(w, wide, 10), 4);
        EXPECT_EQ(std::u16string(wide), u"café");
        EXPECT_TRUE(SetWindowTextW(w, u"Größe Ω"));
        EXPECT_EQ(window_text(w), "Größe Ω");
        EXPECT_EQ(GetWindowTextLengthA(w), 7);
        EXPECT_EQ(GetWindowTextA(w, narrow, 5), 4);
        EXPECT_STREQ(narrow, "Gr\xF6\xDF");
        EXPECT_TRUE(SetWindowTextA(w, "\x80"));
        EXPECT_EQ(window_text(w), "€");
        EXPECT_TRUE(set_window_text(w, "日本"));
        EXPECT_EQ(GetWindowTextW(w, wide, 2), 1);
        EXPECT_EQ(std::u16string(wide), u"日");
        EXPECT_EQ(GetWindowTextA(w, narrow, 0), 0);
        DestroyWindow(w);
    }
    EXPECT_EQ(FindWindowA("desk", "no such title"), HWND{});
    const HWND w = top();
    EXPECT_EQ(FindWindowA("DESK", "Top"), w);
}

// Items of lists come and go in the caller's encoding; the procedure sees UTF-8.
TEST_F(Windows, ListTextsAreConvertedBothWays) {
    constexpr UINT LB_ADDSTRING = 0x180, LB_GETTEXT = 0x189, LB_GETTEXTLEN = 0x18A;
    const HWND list = CreateWindowExA(0, "DeskUtf8", "", WS_POPUP, 0, 0, 9, 9, HWND{}, HMENU{});
    std::string kept;
    handlers()[LB_ADDSTRING] = [&](const Sent& s, LRESULT& r) {
        kept = s.lparam > 0x10000 ? reinterpret_cast<const char*>(s.lparam) : "number";
        return r = 0, true;
    };
    handlers()[LB_GETTEXTLEN] = [&](const Sent& s, LRESULT& r) {
        return r = s.wparam == 0 ? static_cast<LRESULT>(kept.size()) : -1, true;
    };
    handlers()[LB_GETTEXT] = [&](const Sent& s, LRESULT& r) {
        kept.copy(reinterpret_cast<char*>(s.lparam), kept.size());
        reinterpret_cast<char*>(s.lparam)[kept.size()] = 0;
        return r = static_cast<LRESULT>(kept.size()), true;
    };
    SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("\xFCr \x80"));
    EXPECT_EQ(kept, "ür €");
    char page[8];
    char16_t wide[8];
    EXPECT_EQ(SendMessageA(list, LB_GETTEXTLEN, 0, 0), 4);
    EXPECT_EQ(SendMessageA(list, LB_GETTEXT, 0, reinterpret_cast<LPARAM>(page)), 4);
    EXPECT_STREQ(page, "\xFCr \x80");
    EXPECT_EQ(SendMessageW(list, LB_GETTEXT, 0, reinterpret_cast<LPARAM>(wide)), 4);
    EXPECT_EQ(std::u16string(wide), u"ür €");
    EXPECT_EQ(SendMessageA(list, LB_GETTEXTLEN, 1, 0), -1);
    EXPECT_EQ(SendMessageA(list, LB_GETTEXT, 1, reinterpret_cast<LPARAM>(page)), -1);
    // What the owner draws without strings is a number.
    SetWindowLong(list, GWL_STYLE, GetWindowLong(list, GWL_STYLE) | 0x10);
    SendMessageA(list, LB_ADDSTRING, 0, 5);
    EXPECT_EQ(kept, "number");
}

}  // namespace
}  // namespace tarn::platform
