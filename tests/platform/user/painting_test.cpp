// Update regions, clips, and when things are painted and presented.
#include <chrono>

#include "platform/gdi/theme.h"
#include "platform/user/desk.h"
#include "platform/user/region.h"
#include "platform/user/window.h"

namespace tarn::platform {
namespace {

class Painting : public Desk {
  protected:
    // Every window fills itself with the colour of its identifier when it is painted.
    static void paint_by_id() {
        handlers()[WM_ERASEBKGND] = [](const Sent&, LRESULT& r) { return r = 1, true; };
        handlers()[WM_PAINT] = [](const Sent& s, LRESULT&) {
            PAINTSTRUCT paint;
            BeginPaint(s.hwnd, paint);
            painted().push_back({s.hwnd, paint.rcPaint});
            const HBRUSH brush = CreateSolidBrush(colour_of(s.hwnd));
            FillRect(paint.hdc, {-1000, -1000, 5000, 5000}, brush);
            DeleteObject(brush);
            EndPaint(s.hwnd, paint);
            return true;
        };
        painted().clear();
    }
    static COLORREF colour_of(HWND hwnd) {
        return RGB(static_cast<unsigned>(GetDlgCtrlID(hwnd)) * 16, 40, 80);
    }
    static std::vector<std::pair<HWND, RECT>>& painted() {
        static std::vector<std::pair<HWND, RECT>> all;
        return all;
    }
};

TEST_F(Painting, ParentsComeFirstAndClipWhatTheyShouldNotTouch) {
    paint_by_id();
    const HWND w = top(WS_POPUP, HWND{}, {0, 0, 100, 100});
    const HWND a = child(w, {10, 10, 40, 40}, WS_VISIBLE | WS_CLIPCHILDREN, 1);
    const HWND b = child(a, {5, 5, 50, 15}, WS_VISIBLE, 2);  // partly outside its parent
    const HWND c = child(w, {30, 30, 60, 60}, WS_VISIBLE | WS_CLIPSIBLINGS, 3);  // below a
    painted().clear();
    settle();
    const auto index = [&](HWND hwnd) {
        for (std::size_t i = 0; i < painted().size(); ++i)
            if (painted()[i].first == hwnd) return static_cast<int>(i);
        return -1;
    };
    EXPECT_LT(index(w), index(a));
    EXPECT_LT(index(a), index(b));
    EXPECT_LT(index(w), index(c));
    const struct {
        int x, y;
        HWND owner;
    } places[] = {{5, 5, w},   {12, 12, a}, {20, 20, b}, {39, 20, b},
                  {40, 20, w}, {35, 35, a}, {50, 50, c}, {70, 70, w}};
    for (const auto& p : places) EXPECT_EQ(pixel(w, p.x, p.y), colour_of(p.owner)) << p.x;
}

TEST_F(Painting, AmongManyBrothersEachPaintsWhatNothingLiesOver) {
    paint_by_id();
    const HWND w = top(WS_POPUP, HWND{}, {0, 0, 200, 200});
    std::uint32_t seed = 7;
    const auto random = [&](std::int32_t below) {
        seed = seed * 1664525 + 1013904223;
        return static_cast<std::int32_t>(seed >> 8) % below;
    };
    const auto somewhere = [&] {
        const std::int32_t x = random(220) - 20, y = random(220) - 20;
        return RECT{x, y, x + 5 + random(50), y + 5 + random(50)};
    };
    std::vector<HWND> children;
    for (int i = 0; i < 60; ++i)
        children.push_back(child(w, somewhere(), WS_VISIBLE | WS_CLIPSIBLINGS, i % 15 + 1));
    settle();
    const auto owner_at = [&](POINT at) {
        for (HWND c = GetWindow(w, GW_CHILD); c != HWND{}; c = GetWindow(c, GW_HWNDNEXT)) {
            RECT place;
            GetWindowRect(c, place);
            if (IsWindowVisible(c) && place.contains(at)) return c;
        }
        return w;
    };
    for (int round = 0; round < 40; ++round) {
        const HWND changed = children[static_cast<std::size_t>(random(60))];
        const RECT to = somewhere();
        switch (round % 4) {
            case 0:
                MoveWindow(changed, to.left, to.top, to.width(), to.height(), true);
                break;
            case 1:
                BringWindowToTop(changed);
                break;
            case 2:
                ShowWindow(changed, IsWindowVisible(changed) ? SW_HIDE : SW_SHOW);
                break;
            default:
                InvalidateRect(changed, nullptr, false);
        }
        settle();
        for (std::int32_t y = 1; y < 200; y += 13)
            for (std::int32_t x = 1; x < 200; x += 13)
                ASSERT_EQ(pixel(w, x, y), colour_of(owner_at({x, y})))
                    << round << ' ' << x << ' ' << y;
    }
}

TEST_F(Painting, OnlyTheUpdateRegionIsPaintedAndValidated) {
    paint_by_id();
    const HWND w = top(WS_POPUP | WS_CLIPCHILDREN, HWND{}, {0, 0, 100, 100});
    const HWND a = child(w, {10, 10, 60, 60}, WS_VISIBLE, 1);
    settle();
    painted().clear();
    const RECT part{5, 5, 20, 20};
    InvalidateRect(a, &part, false);
    RECT update;
    EXPECT_TRUE(GetUpdateRect(a, update));
    EXPECT_EQ(update, part);
    EXPECT_FALSE(GetUpdateRect(w, update));
    const RECT outside{200, 200, 300, 300};
    InvalidateRect(w, &outside, false);
    settle();
    ASSERT_EQ(painted().size(), 1u);
    EXPECT_EQ(painted()[0].first, a);
    EXPECT_EQ(painted()[0].second, part);
    InvalidateRect(a, &part, false);
    ValidateRect(a, &part);
    settle();
    EXPECT_EQ(painted().size(), 1u);
    ShowWindow(a, SW_HIDE);
    settle();
    EXPECT_EQ(pixel(w, 30, 30), colour_of(w));
    painted().clear();
    InvalidateRect(a, nullptr, true);
    EXPECT_FALSE(GetUpdateRect(a, update));
    settle();
    EXPECT_TRUE(painted().empty());
}

TEST_F(Painting, MovingUncoversParentsAndBrothers) {
    paint_by_id();
    const HWND w = top(WS_POPUP | WS_CLIPCHILDREN, HWND{}, {0, 0, 100, 100});
    const HWND a = child(w, {10, 10, 40, 40}, WS_VISIBLE | WS_CLIPSIBLINGS, 1);
    const HWND b = child(w, {20, 20, 60, 60}, WS_VISIBLE | WS_CLIPSIBLINGS, 2);
    settle();
    EXPECT_EQ(pixel(w, 30, 30), colour_of(a));
    MoveWindow(a, 60, 60, 30, 30, true);
    settle();
    EXPECT_EQ(pixel(w, 30, 30), colour_of(b));
    EXPECT_EQ(pixel(w, 12, 12), colour_of(w));
    EXPECT_EQ(pixel(w, 70, 70), colour_of(a));
    SetWindowPos(b, HWND{HWND_TOP}, 50, 50, 0, 0, SWP_NOSIZE);
    settle();
    EXPECT_EQ(pixel(w, 70, 70), colour_of(b));
    DestroyWindow(b);
    settle();
    EXPECT_EQ(pixel(w, 70, 70), colour_of(a));
    EXPECT_EQ(pixel(w, 55, 55), colour_of(w));
}

// A child that updates itself first isn't painted over by a parent that waits.
TEST_F(Painting, UpdateWindowPaintsWaitingParentsFirst) {
    paint_by_id();
    const HWND w = top(WS_POPUP, HWND{}, {0, 0, 100, 100});
    const HWND a = child(w, {10, 10, 40, 40}, WS_VISIBLE, 1);
    settle();
    InvalidateRect(w, nullptr, true);
    painted().clear();
    UpdateWindow(a);
    ASSERT_EQ(painted().size(), 2u);
    EXPECT_EQ(painted()[0].first, w);
    EXPECT_EQ(painted()[1].first, a);
    settle();
    EXPECT_EQ(painted().size(), 2u);
    EXPECT_EQ(pixel(w, 20, 20), colour_of(a));
}

TEST_F(Painting, ClassBrushErasesAndFramesAreDrawn) {
    const HWND w = top(WS_POPUP | WS_BORDER, HWND{}, {0, 0, 100, 100});
    const HWND field = CreateWindowExA(WS_EX_CLIENTEDGE, "Desk", "", WS_CHILD | WS_VISIBLE, 20, 20,
                                       40, 20, w, HMENU{1});
    settle();
    EXPECT_EQ(pixel(w, 50, 70), GetSysColor(COLOR_WINDOW));
    EXPECT_NE(pixel(w, 0, 50), GetSysColor(COLOR_WINDOW));
    EXPECT_EQ(pixel(w, 21, 30), theme().border_strong);  // its first column
    EXPECT_TRUE(IsWindow(field));
}

TEST_F(Painting, ContextsDrawAtOnceWithinTheirWindow) {
    const HWND w = top(WS_POPUP, HWND{}, {0, 0, 100, 100});
    const HWND a = child(w, {10, 10, 40, 40}, WS_VISIBLE, 1);
    settle();
    const HDC dc = GetDC(a);
    const HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
    FillRect(dc, {-5, -5, 500, 500}, red);
    EXPECT_EQ(pixel(w, 12, 12), RGB(255, 0, 0));
    EXPECT_EQ(pixel(w, 9, 9), GetSysColor(COLOR_WINDOW));
    EXPECT_EQ(pixel(w, 40, 40), GetSysColor(COLOR_WINDOW));
    EXPECT_EQ(ReleaseDC(a, dc), 1);
    FillRect(dc, {0, 0, 500, 500}, red);  // given back: nothing happens
    EXPECT_EQ(pixel(w, 60, 60), GetSysColor(COLOR_WINDOW));
    // One that is kept follows its window's new surface, and survives the window.
    const HDC kept = GetDC(w);
    MoveWindow(w, 0, 0, 200, 200, true);
    settle();
    FillRect(kept, {150, 150, 160, 160}, red);
    EXPECT_EQ(pixel(w, 155, 155), RGB(255, 0, 0));
    DestroyWindow(w);
    FillRect(kept, {0, 0, 160, 160}, red);
    DeleteObject(red);
    const HDC measure = GetDC(HWND{});
    EXPECT_NE(measure, HDC{});
    SIZE size;
    EXPECT_TRUE(GetTextExtentPoint32A(measure, "M", 1, size));
    EXPECT_EQ(ReleaseDC(HWND{}, measure), 1);
}

TEST_F(Painting, AWindowThatMarksItselfWhilePaintingLeavesTheQueueAlive) {
    const HWND w = top(WS_POPUP, HWND{}, {0, 0, 100, 100});
    int paints = 0;
    handlers()[WM_PAINT] = [&](const Sent& s, LRESULT&) {
        PAINTSTRUCT paint;
        BeginPaint(s.hwnd, paint);
        EndPaint(s.hwnd, paint);
        ++paints;
        InvalidateRect(s.hwnd, nullptr, false);
        return true;
    };
    InvalidateRect(w, nullptr, false);
    int ticks = 0;
    handlers()[WM_TIMER] = [&](const Sent&, LRESULT&) { return ++ticks, true; };
    SetTimer(w, 1, 20, nullptr);
    const DWORD start = GetTickCount();
    MSG m;
    while (ticks < 3 && GetTickCount() - start < 2000) {
        while (PeekMessageA(m, HWND{}, 0, 0, PM_REMOVE)) DispatchMessageA(m);
        WaitMessage();
    }
    EXPECT_EQ(ticks, 3);
    EXPECT_LT(paints, 20);
    EXPECT_GE(paints, 2);
    handlers().erase(WM_PAINT);
    KillTimer(w, 1);
}

// A procedure that never calls BeginPaint isn't asked for ever.
TEST_F(Painting, AnIgnoredUpdateIsForgotten) {
    const HWND w = top(WS_POPUP, HWND{}, {0, 0, 100, 100});
    handlers()[WM_PAINT] = [](const Sent&, LRESULT&) { return true; };
    InvalidateRect(w, nullptr, true);
    settle();
    RECT r;
    EXPECT_FALSE(GetUpdateRect(w, r));
}

TEST_F(Painting, RedrawCanBeHeldBack) {
    paint_by_id();
    const HWND w = top(WS_POPUP | WS_CLIPCHILDREN, HWND{}, {0, 0, 100, 100});
    const HWND a = child(w, {10, 10, 40, 40}, WS_VISIBLE, 1);
    settle();
    painted().clear();
    SendMessageA(a, WM_SETREDRAW, 0, 0);
    InvalidateRect(a, nullptr, true);
    settle();
    EXPECT_TRUE(painted().empty());
    SendMessageA(a, WM_SETREDRAW, 1, 0);
    settle();
    EXPECT_EQ(painted().size(), 1u);
}

TEST_F(Painting, RegionsAddUp) {
    Region r(RECT{0, 0, 100, 100});
    r.subtract({20, 20, 40, 40});
    r.subtract({30, 30, 60, 60});
    r.intersect(RECT{10, 10, 90, 90});
    // Counted by pixels against the plain definition.
    int wrong = 0;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) {
            const POINT p{x, y};
            const bool wanted = RECT{10, 10, 90, 90}.contains(p) &&
                                !RECT{20, 20, 40, 40}.contains(p) &&
                                !RECT{30, 30, 60, 60}.contains(p);
            int covered = 0;
            for (const RECT& part : r.rects()) covered += part.contains(p);
            wrong += covered != (wanted ? 1 : 0);
        }
    }
    EXPECT_EQ(wrong, 0);
    Region few;
    for (int i = 0; i < 100; ++i)
        few.include({i * 37 % 500, i * 91 % 700, i * 37 % 500 + 3, i * 91 % 700 + 3});
    EXPECT_LE(few.rects().size(), 9u);
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(few.touches({i * 37 % 500, i * 91 % 700, i * 37 % 500 + 3, i * 91 % 700 + 3}));
    for (std::size_t i = 0; i < few.rects().size(); ++i)
        for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(overlap(few.rects()[i], few.rects()[j]));
}

// A program that computes sees every change, a flood not more often than it can look.
TEST_F(Painting, WhatABurstChangesIsShownAtOnce) {
    paint_by_id();
    const HWND w = top(WS_POPUP, HWND{}, {0, 0, 100, 100});
    settle();
    painted().clear();
    const auto begin = std::chrono::steady_clock::now();
    for (std::size_t i = 1; i <= 3000; ++i) {
        InvalidateRect(w, nullptr, false);
        paint_now();
        if (i > 20) continue;
        EXPECT_EQ(painted().size(), i);
        EXPECT_FALSE(anything_to_present());
    }
    const auto end = std::chrono::steady_clock::now();
    const std::chrono::duration<double, std::milli> taken = end - begin;
    EXPECT_LE(painted().size(), 101 + static_cast<std::size_t>(taken.count() / 2));
}

}  // namespace
}  // namespace tarn::platform
