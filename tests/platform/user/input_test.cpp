// Pointer, keys, focus, activation, timers.
#include "platform/user/desk.h"

namespace tarn::platform {
namespace {

class Pointer : public Desk {};
class Keys : public Desk {};
class Focus : public Desk {};
class Waits : public Desk {};

TEST_F(Pointer, PressesGoToTheInnermostEnabledWindow) {
    const HWND w = top(WS_POPUP);
    const HWND a = child(w, {10, 10, 100, 100});
    const HWND b = child(a, {5, 5, 50, 50}, WS_VISIBLE | WS_DISABLED);
    click(b, {3, 4});
    ASSERT_EQ(count(a, WM_LBUTTONDOWN), 1);
    EXPECT_EQ(last(a, WM_LBUTTONDOWN)->lparam, MAKELPARAM(8, 9));
    EXPECT_EQ(last(a, WM_LBUTTONDOWN)->wparam, WPARAM{MK_LBUTTON});
    EXPECT_EQ(last(a, WM_LBUTTONUP)->wparam, WPARAM{0});
    EXPECT_EQ(count(b, WM_LBUTTONDOWN), 0);
    EnableWindow(b, true);
    handlers()[WM_NCHITTEST] = [&](const Sent& s, LRESULT& r) {
        return s.hwnd == b ? (r = HTTRANSPARENT, true) : false;
    };
    click(b, {3, 4});
    EXPECT_EQ(count(b, WM_LBUTTONDOWN), 0);
    EXPECT_EQ(count(a, WM_LBUTTONDOWN) + count(a, WM_LBUTTONDBLCLK), 2);
}

TEST_F(Pointer, TwoPressesAtOnePlaceAreADoubleClick) {
    const HWND w = top(WS_POPUP);
    click(w, {50, 50});
    click(w, {53, 48});
    click(w, {50, 50});
    EXPECT_EQ(messages(w, {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}),
              (std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_LBUTTONDOWN}));
    log().clear();
    click(w, {100, 50});
    click(w, {106, 50});
    EXPECT_EQ(count(w, WM_LBUTTONDBLCLK), 0);
    log().clear();
    click(w, {150, 50});
    click(w, {150, 50}, 3);
    EXPECT_EQ(count(w, WM_RBUTTONDBLCLK), 0);
}

TEST_F(Pointer, LeavingIsTold) {
    const HWND w = top(WS_POPUP);
    const HWND a = child(w, {10, 10, 50, 50});
    const HWND b = child(w, {60, 10, 100, 50});
    press(Event::Kind::pointer_move, a, {5, 5});
    settle();
    press(Event::Kind::pointer_move, b, {5, 5});
    settle();
    EXPECT_EQ(count(a, WM_MOUSELEAVE), 1);
    EXPECT_EQ(count(b, WM_MOUSEMOVE), 1);
    press(Event::Kind::pointer_leave, w, {0, 0});
    settle();
    EXPECT_EQ(count(b, WM_MOUSELEAVE), 1);
}

TEST_F(Pointer, CaptureTakesEverything) {
    const HWND w = top(WS_POPUP);
    const HWND a = child(w, {10, 10, 50, 50});
    SetCapture(a);
    press(Event::Kind::pointer_move, w, {200, 5});
    settle();
    ASSERT_NE(last(a, WM_MOUSEMOVE), nullptr);
    EXPECT_EQ(last(a, WM_MOUSEMOVE)->lparam, MAKELPARAM(190, -5));
    EXPECT_EQ(count(a, WM_SETCURSOR), 0);
    SetCapture(w);
    EXPECT_EQ(last(a, WM_CAPTURECHANGED)->lparam, static_cast<LPARAM>(w));
    DestroyWindow(w);
    EXPECT_EQ(GetCapture(), HWND{});
}

// Finer wheels than notches are added up; turning back begins anew.
TEST_F(Pointer, WheelRemaindersAreKept) {
    const HWND w = top(WS_POPUP);
    const HWND a = child(w, {10, 10, 50, 50});
    const auto notches = [&] {
        int sum = 0;
        for (const Sent& s : log())
            if (s.hwnd == a && s.message == WM_MOUSEWHEEL)
                sum += static_cast<std::int16_t>(HIWORD(s.wparam));
        return sum;
    };
    for (const int delta : {50, 50}) wheel(a, {5, 5}, delta);
    EXPECT_EQ(notches(), 0);
    wheel(a, {5, 5}, 50);
    EXPECT_EQ(notches(), 120);
    wheel(a, {5, 5}, 220);
    EXPECT_EQ(notches(), 360);
    wheel(a, {5, 5}, -100);
    EXPECT_EQ(notches(), 360);
    wheel(a, {5, 5}, -30);
    EXPECT_EQ(notches(), 240);
    EXPECT_EQ(count(w, WM_MOUSEWHEEL), 3);  // which a passed on to its parent
    wheel(a, {5, 5}, INT32_MAX);            // nobody turns that far
}

TEST_F(Pointer, AWindowWithABarScrollsByTheWheel) {
    const HWND w = top(WS_POPUP | WS_VSCROLL);
    SetScrollRange(w, SB_VERT, 0, 100, true);
    wheel(w, {50, 50}, -120);
    EXPECT_EQ(count(w, WM_VSCROLL), wheel_scroll_lines() + 1);
    EXPECT_EQ(last(w, WM_VSCROLL)->wparam, WPARAM{SB_ENDSCROLL});
}

TEST_F(Pointer, ContextMenusComeFromTheButtonAndTheKeys) {
    const HWND w = top(WS_POPUP);
    const HWND a = child(w, {10, 10, 50, 50});
    click(a, {3, 4}, 3);
    ASSERT_EQ(count(w, WM_CONTEXTMENU), 1);  // the child left it to its parent
    EXPECT_EQ(last(w, WM_CONTEXTMENU)->wparam, static_cast<WPARAM>(a));
    EXPECT_EQ(last(w, WM_CONTEXTMENU)->lparam, MAKELPARAM(113, 114));
    SetFocus(a);
    key(VK_APPS);
    EXPECT_EQ(last(w, WM_CONTEXTMENU)->lparam, -1);
    key(VK_F10, "", mod_shift);
    EXPECT_EQ(count(w, WM_CONTEXTMENU), 3);
}

TEST_F(Keys, TextBecomesCharactersOfThePageOrCodePoints) {
    const HWND w = top();
    key('A', "a");
    key(0xBA, "é");
    key('W', "Ω");
    key('E', "€", mod_altgr | mod_control);
    key('C', "c", mod_control);
    key(VK_RETURN, "\r");
    key(VK_DELETE, "\x7F");
    key(VK_BACK, "\b", mod_control);
    std::vector<std::pair<UINT, WPARAM>> typed;
    for (const Sent& s : log())
        if (s.message == WM_CHAR || s.message == WM_UNICHAR || s.message == WM_SYSCHAR)
            typed.emplace_back(s.message, s.wparam);
    EXPECT_EQ(typed, (std::vector<std::pair<UINT, WPARAM>>{{WM_CHAR, 'a'},
                                                           {WM_CHAR, 0xE9},
                                                           {WM_UNICHAR, 0x3A9},
                                                           {WM_CHAR, 0x80},
                                                           {WM_CHAR, 3},
                                                           {WM_CHAR, 13},
                                                           {WM_CHAR, 127}}));
    EXPECT_EQ(GetFocus(), w);
}

TEST_F(Keys, WordsCarryScanRepeatAndContext) {
    const HWND w = top();
    key(VK_LEFT, "", 0, false);
    EXPECT_EQ(last(w, WM_KEYDOWN)->lparam, 0x14B0001);
    EXPECT_LT(GetKeyState(VK_LEFT), 0);
    key(VK_LEFT, "", 0, true);
    EXPECT_EQ(last(w, WM_KEYDOWN)->lparam, 0x414B0001);
    EXPECT_EQ(static_cast<std::uint32_t>(last(w, WM_KEYUP)->lparam), 0xC14B0001u);
    EXPECT_GE(GetKeyState(VK_LEFT), 0);
    key(VK_F1 + 4);
    EXPECT_EQ(last(w, WM_KEYDOWN)->lparam >> 16 & 0xFF, 63);
    key('X', "x", mod_alt);
    EXPECT_EQ(last(w, WM_SYSKEYDOWN)->lparam >> 29 & 1, 1);
    EXPECT_EQ(last(w, WM_SYSCHAR)->wparam, WPARAM{'x'});
}

// ALT and F10 alone open the menu; ALT that did something else doesn't.
TEST_F(Keys, AltAloneIsTheMenuKey) {
    const HWND w = top();
    handlers()[WM_SYSCOMMAND] = [](const Sent&, LRESULT&) { return true; };
    key(VK_MENU, "", mod_alt);
    EXPECT_EQ(count(w, WM_SYSCOMMAND), 1);
    EXPECT_EQ(last(w, WM_SYSCOMMAND)->wparam, WPARAM{SC_KEYMENU});
    key(VK_MENU, "", mod_alt, false);
    key('X', "x", mod_alt);
    log().clear();
    Event up;
    up.kind = Event::Kind::key_up;
    up.window = static_cast<TopLevel>(w);
    up.key = VK_MENU;
    inject_event(up);
    settle();
    EXPECT_EQ(count(w, WM_SYSCOMMAND), 0);
    key(VK_F10);
    EXPECT_EQ(count(w, WM_SYSCOMMAND), 1);
    key(VK_MENU, "", mod_altgr);
    EXPECT_EQ(count(w, WM_SYSCOMMAND), 1);
    key(VK_F4, "", mod_alt);
    EXPECT_EQ(last(w, WM_SYSCOMMAND)->wparam, WPARAM{SC_CLOSE});
}

// A key made by a program is translated by the plain board.
TEST_F(Keys, PostedKeysTypeToo) {
    const HWND w = top();
    PostMessageA(w, WM_KEYDOWN, 'Q', 1);
    PostMessageA(w, WM_KEYDOWN, '7', 1);
    settle();
    std::string typed;
    for (const Sent& s : log())
        if (s.message == WM_CHAR) typed.push_back(static_cast<char>(s.wparam));
    EXPECT_EQ(typed, "q7");
}

TEST_F(Focus, MovesWithItsMessages) {
    const HWND w = top();
    const HWND a = child(w, {0, 0, 9, 9});
    const HWND b = child(w, {0, 0, 9, 9});
    SetFocus(a);
    log().clear();
    EXPECT_EQ(SetFocus(b), a);
    std::vector<std::pair<HWND, UINT>> told;
    for (const Sent& s : log())
        if (s.message == WM_SETFOCUS || s.message == WM_KILLFOCUS)
            told.emplace_back(s.hwnd, s.message);
    EXPECT_EQ(told, (std::vector<std::pair<HWND, UINT>>{{a, WM_KILLFOCUS}, {b, WM_SETFOCUS}}));
    EXPECT_EQ(last(b, WM_SETFOCUS)->wparam, static_cast<WPARAM>(a));
    EnableWindow(a, false);
    SetFocus(a);
    EXPECT_EQ(GetFocus(), b);
    ShowWindow(b, SW_HIDE);
    EXPECT_EQ(GetFocus(), w);
}

TEST_F(Focus, ComesBackToWhereItWas) {
    const HWND w = top();
    const HWND a = child(w, {0, 0, 9, 9});
    SetFocus(a);
    const HWND other = top();
    EXPECT_EQ(GetActiveWindow(), other);
    EXPECT_EQ(GetFocus(), other);
    EXPECT_EQ(LOWORD(last(w, WM_ACTIVATE)->wparam), WA_INACTIVE);
    SetActiveWindow(w);
    EXPECT_EQ(GetFocus(), a);
    SetActiveWindow(other);
    click(w, {100, 100});
    EXPECT_EQ(GetActiveWindow(), w);
    DestroyWindow(w);
    EXPECT_EQ(GetActiveWindow(), other);
}

TEST_F(Focus, AModalWindowBlocksAndComesUp) {
    const HWND w = top();
    const HWND modal = top(WS_OVERLAPPEDWINDOW, w);
    const HWND third = top();
    EnableWindow(w, false);
    SetActiveWindow(third);
    log().clear();
    click(w, {50, 50});
    EXPECT_EQ(count(w, WM_LBUTTONDOWN), 0);
    EXPECT_EQ(GetActiveWindow(), modal);
    key('A', "a");
    EXPECT_EQ(count(w, WM_CHAR), 0);
    EXPECT_EQ(count(modal, WM_CHAR), 1);
    Event close;
    close.kind = Event::Kind::close;
    close.window = static_cast<TopLevel>(w);
    inject_event(close);
    settle();
    EXPECT_TRUE(IsWindow(w));
    EnableWindow(w, true);
    DestroyWindow(modal);
    EXPECT_EQ(GetActiveWindow(), w);
    inject_event(close);
    settle();
    EXPECT_FALSE(IsWindow(w));
}

TEST_F(Focus, PopUpsThatDoNotActivateLeaveItAlone) {
    const HWND w = top();
    const HWND pop = CreateWindowExA(WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW, "Desk", "", WS_POPUP, 5,
                                     5, 60, 60, w, HMENU{});
    ShowWindow(pop, SW_SHOWNA);
    settle();
    click(pop, {10, 10});
    EXPECT_EQ(count(pop, WM_LBUTTONDOWN), 1);
    EXPECT_EQ(GetFocus(), w);
    EXPECT_EQ(GetActiveWindow(), w);
}

TEST_F(Waits, FiltersTakeOnlyTheirRange) {
    const HWND w = top();
    SetTimer(w, 1, 10, nullptr);
    Event e;
    e.kind = Event::Kind::key_down;
    e.window = static_cast<TopLevel>(w);
    e.key = 'A';
    inject_event(e);
    press(Event::Kind::button_down, w, {5, 5});
    InvalidateRect(w, nullptr, true);
    const DWORD start = GetTickCount();
    std::vector<UINT> seen;
    MSG m;
    while (GetTickCount() - start < 60) {
        if (!PeekMessageA(m, HWND{}, 0, 0xFF, PM_REMOVE)) continue;
        seen.push_back(m.message);
        DispatchMessageA(m);
    }
    EXPECT_EQ(seen, (std::vector<UINT>{WM_PAINT}));
    ASSERT_TRUE(PeekMessageA(m, HWND{}, WM_TIMER, WM_TIMER, PM_REMOVE));
    EXPECT_EQ(m.message, UINT{WM_TIMER});
    ASSERT_TRUE(PeekMessageA(m, HWND{}, WM_KEYDOWN, WM_CHAR, PM_NOREMOVE));
    ASSERT_TRUE(PeekMessageA(m, HWND{}, WM_KEYDOWN, WM_CHAR, PM_REMOVE));
    EXPECT_EQ(m.wParam, WPARAM{'A'});
    EXPECT_FALSE(PeekMessageA(m, HWND{}, WM_KEYDOWN, WM_CHAR, PM_REMOVE));
    KillTimer(w, 1);
    settle();
    EXPECT_EQ(count(w, WM_LBUTTONDOWN), 1);
}

TEST_F(Waits, PostedComesBeforeInputBeforePaintBeforeTimers) {
    const HWND w = top();
    SetTimer(w, 7, 10, nullptr);
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 40) {
    }
    InvalidateRect(w, nullptr, true);
    press(Event::Kind::button_down, w, {5, 5});
    PostMessageA(w, WM_USER + 1, 0, 0);
    log().clear();
    WaitMessage();
    settle();
    EXPECT_EQ(messages(w, {WM_USER + 1, WM_LBUTTONDOWN, WM_PAINT, WM_TIMER}),
              (std::vector<UINT>{WM_USER + 1, WM_LBUTTONDOWN, WM_PAINT, WM_TIMER}));
    KillTimer(w, 7);
}

TEST_F(Waits, TimersCoalesceAndDieWithTheirWindow) {
    const HWND w = top();
    static int called;
    called = 0;
    SetTimer(w, 5, 10,
             [](HWND, UINT m, std::uintptr_t id, DWORD) { called += m == WM_TIMER && id == 5; });
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 55) {
    }
    MSG m;
    int due = 0;
    while (PeekMessageA(m, w, WM_TIMER, WM_TIMER, PM_REMOVE)) {
        ++due;
        DispatchMessageA(m);
    }
    EXPECT_EQ(due, 1);
    EXPECT_EQ(called, 1);
    DestroyWindow(w);
    while (GetTickCount() - start < 80) {
    }
    EXPECT_FALSE(PeekMessageA(m, HWND{}, WM_TIMER, WM_TIMER, PM_REMOVE));
    EXPECT_FALSE(KillTimer(w, 5));
    // What a program posts isn't taken for a procedure.
    m = {HWND{}, WM_TIMER, 1, 12345, 0, {}};
    EXPECT_EQ(DispatchMessageA(m), 0);
}

TEST_F(Waits, AModalLoopEndsWithItsWindowOrWithTheProgram) {
    const HWND w = top();
    static const auto never = [](void*) { return false; };
    handlers()[WM_USER] = [](const Sent& s, LRESULT&) { return DestroyWindow(s.hwnd); };
    PostMessageA(w, WM_USER, 0, 0);
    EXPECT_FALSE(modal_loop(w, nullptr, never, nullptr));
    const HWND v = top();
    PostQuitMessage(3);
    EXPECT_FALSE(modal_loop(v, nullptr, never, nullptr));
    MSG m;
    ASSERT_TRUE(PeekMessageA(m, HWND{}, 0, 0, PM_REMOVE));
    EXPECT_EQ(m.message, UINT{WM_QUIT});
    EXPECT_EQ(m.wParam, WPARAM{3});
    bool done = true;
    EXPECT_TRUE(modal_loop(
        v, nullptr, [](void* flag) { return *static_cast<bool*>(flag); }, &done));
}

TEST_F(Waits, NobodyToAnswerEndsTheProgram) {
    const HWND w = top();
    EXPECT_EXIT(WaitMessage(), testing::ExitedWithCode(70), "the window \"Top\"");
    EXPECT_EXIT(
        {
            setenv("TARN_TIMEOUT", "0.1", 1);
            SetTimer(w, 1, 20, nullptr);
            MSG m;
            for (;;) {
                while (PeekMessageA(m, HWND{}, 0, 0, PM_REMOVE)) DispatchMessageA(m);
                WaitMessage();
            }
        },
        testing::ExitedWithCode(70), "");
    unanswered_wait = [](const char*) { std::exit(9); };
    EXPECT_EXIT(WaitMessage(), testing::ExitedWithCode(9), "");
    unanswered_wait = nullptr;
}

TEST_F(Waits, AFloodOfPostsIsBounded) {
    const HWND w = top();
    int taken = 0;
    while (PostMessageA(w, WM_USER + 9, 0, 0)) ++taken;
    EXPECT_EQ(taken, 10000);
    handlers()[WM_USER + 9] = [](const Sent&, LRESULT&) { return true; };
    MSG m;
    while (PeekMessageA(m, w, WM_USER + 9, WM_USER + 9, PM_REMOVE)) --taken;
    EXPECT_EQ(taken, 0);
}

TEST_F(Waits, DroppedFilesReachTheWindowThatTakesThem) {
    const HWND w = top(WS_POPUP);
    const HWND a = child(w, {10, 10, 50, 50});
    DragAcceptFiles(w, true);
    Event e;
    e.kind = Event::Kind::drop_files;
    e.window = static_cast<TopLevel>(w);
    e.point = {20, 30};
    e.text = "/tmp/a b\n\n/home/x/é\n";
    inject_event(e);
    settle();
    EXPECT_EQ(count(a, WM_DROPFILES), 0);
    ASSERT_EQ(count(w, WM_DROPFILES), 1);
    const auto drop = static_cast<HDROP>(last(w, WM_DROPFILES)->wparam);
    char name[64];
    POINT p;
    EXPECT_EQ(DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0), 2);
    EXPECT_EQ(DragQueryFileA(drop, 1, name, sizeof name), 10);
    EXPECT_STREQ(name, "/home/x/é");
    EXPECT_EQ(DragQueryFileA(drop, 0, name, 4), 3);
    EXPECT_STREQ(name, "/tm");
    EXPECT_TRUE(DragQueryPoint(drop, p));
    EXPECT_EQ(p, (POINT{20, 30}));
    DragFinish(drop);
    EXPECT_EQ(DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0), 0);
}

TEST_F(Waits, TheClipboardKnowsLineFeedsInside) {
    std::string text;
    EXPECT_TRUE(set_clipboard_text("one\r\ntwo\nthree\r"));
    ASSERT_TRUE(clipboard_text(text));
    EXPECT_EQ(text, "one\ntwo\nthree\r");
    EXPECT_EQ(with_cr_lf("a\nb\r\nc"), "a\r\nb\r\nc");
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_TEXT));
    set_primary_text("p");
    ASSERT_TRUE(primary_text(text));
    EXPECT_EQ(text, "p");
    ASSERT_TRUE(clipboard_text(text));
    EXPECT_EQ(text, "one\ntwo\nthree\r");
}

}  // namespace
}  // namespace tarn::platform
