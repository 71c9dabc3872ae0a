#include <gtest/gtest.h>
#include <random>

#include "canvas.h"

namespace tarn::platform {
namespace {

TEST(Context, StaleHandlesDoNothing) {
    Surface surface;
    const HDC dead = create_surface_dc(surface, {0, 0}, {});
    EXPECT_TRUE(DeleteDC(dead));
    SIZE size;
    RECT rect{0, 0, 5, 5};
    for (const HDC dc : {dead, HDC{}, static_cast<HDC>(-7)}) {
        EXPECT_FALSE(DeleteDC(dc));
        EXPECT_EQ(SaveDC(dc), 0);
        EXPECT_FALSE(LineTo(dc, 1, 1));
        EXPECT_FALSE(FillRect(dc, rect, GetStockObject(BLACK_BRUSH)));
        EXPECT_FALSE(BitBlt(dc, 0, 0, 1, 1, dc, 0, 0, SRCCOPY));
        EXPECT_FALSE(TextOutA(dc, 0, 0, "x", 1));
        EXPECT_FALSE(GetTextExtentPoint32A(dc, "x", 1, size));
        EXPECT_EQ(draw_text(dc, "x", rect, 0), 0);
        EXPECT_EQ(SelectObject(dc, GetStockObject(BLACK_PEN)), HGDIOBJ{});
        EXPECT_EQ(GetClipBox(dc, rect), ERROR_REGION);
        EXPECT_EQ(surface_of(dc), nullptr);
        fill_circle(dc, {1, 1}, 5, black);
    }
    EXPECT_FALSE(DeleteObject(HGDIOBJ{}));
    EXPECT_FALSE(IsGdiObject(static_cast<HGDIOBJ>(12345678)));
}

// Drawing goes on with what was deleted while it was selected; its handle is dead at once.
TEST(Context, DeletedObjectsLiveUntilTheyArePutOut) {
    Canvas canvas(2, 1);
    const HBRUSH brush = CreateSolidBrush(red);
    const HGDIOBJ old = SelectObject(canvas.dc, brush);
    EXPECT_TRUE(DeleteObject(brush));
    EXPECT_FALSE(IsGdiObject(brush));
    PatBlt(canvas.dc, 0, 0, 1, 1, PATCOPY);
    SaveDC(canvas.dc);
    EXPECT_EQ(SelectObject(canvas.dc, old), brush);
    PatBlt(canvas.dc, 1, 0, 1, 1, PATCOPY);
    EXPECT_EQ(canvas.picture(), "r.\n");
    RestoreDC(canvas.dc, -1);
    PatBlt(canvas.dc, 1, 0, 1, 1, PATCOPY);
    EXPECT_EQ(canvas.picture(), "rr\n");
    EXPECT_EQ(SelectObject(canvas.dc, brush), HGDIOBJ{});
}

TEST(Context, StockObjectsStay) {
    for (const std::int32_t which : {WHITE_BRUSH, NULL_PEN, SYSTEM_FONT, SYSTEM_FIXED_FONT}) {
        const HGDIOBJ object = GetStockObject(which);
        EXPECT_TRUE(DeleteObject(object));
        EXPECT_TRUE(IsGdiObject(object));
        EXPECT_EQ(GetStockObject(which), object);
    }
    EXPECT_EQ(GetStockObject(-1), HGDIOBJ{});
    EXPECT_EQ(GetStockObject(99), HGDIOBJ{});
}

// A program that never deletes anything gets zeros in the end, and windows are drawn all the same.
TEST(Context, ThereIsAnEndOfHandles) {
    std::vector<HGDIOBJ> pens;
    while (pens.size() < 70000) {
        const HGDIOBJ pen = CreatePen(PS_SOLID, 1, black);
        if (pen == HGDIOBJ{}) break;
        pens.push_back(pen);
    }
    EXPECT_GT(pens.size(), 60000u);
    EXPECT_LT(pens.size(), 65536u);
    EXPECT_EQ(CreateSolidBrush(red), HGDIOBJ{});
    EXPECT_EQ(CreateCompatibleBitmap(HDC{}, 2, 2), HBITMAP{});
    EXPECT_EQ(CreateCompatibleDC(HDC{}), HDC{});
    {
        Canvas canvas(2, 1);
        EXPECT_EQ(FillRect(canvas.dc, {0, 0, 1, 1}, GetStockObject(BLACK_BRUSH)), true);
        EXPECT_EQ(canvas.picture(), "#.\n");
    }
    for (const HGDIOBJ pen : pens) EXPECT_TRUE(DeleteObject(pen));
    EXPECT_NE(CreateSolidBrush(red), HGDIOBJ{});
}

TEST(Context, SavingAndRestoring) {
    Canvas canvas(10, 10);
    const HDC dc = canvas.dc;
    EXPECT_EQ(SaveDC(dc), 1);
    SetTextColor(dc, red);
    SetBkMode(dc, TRANSPARENT);
    IntersectClipRect(dc, {0, 0, 5, 5});
    EXPECT_EQ(SaveDC(dc), 2);
    SetTextColor(dc, blue);
    IntersectClipRect(dc, {0, 0, 1, 1});
    EXPECT_FALSE(RestoreDC(dc, 3));
    EXPECT_FALSE(RestoreDC(dc, 0));
    EXPECT_TRUE(RestoreDC(dc, -1));
    EXPECT_EQ(GetTextColor(dc), red);
    RECT box;
    EXPECT_EQ(GetClipBox(dc, box), SIMPLEREGION);
    EXPECT_EQ(box, (RECT{0, 0, 5, 5}));
    EXPECT_TRUE(RestoreDC(dc, 1));
    EXPECT_EQ(GetTextColor(dc), black);
    EXPECT_EQ(SetBkMode(dc, OPAQUE), OPAQUE);
    GetClipBox(dc, box);
    EXPECT_EQ(box, (RECT{0, 0, 10, 10}));
    EXPECT_FALSE(RestoreDC(dc, -1));
}

TEST(Context, ABitmapIsInOneContextAndCantBeDeletedThere) {
    const HDC a = CreateCompatibleDC(HDC{}), b = CreateCompatibleDC(HDC{});
    const HBITMAP bitmap = CreateCompatibleBitmap(a, 4, 3);
    const HGDIOBJ first = SelectObject(a, bitmap);
    EXPECT_NE(first, HGDIOBJ{});
    EXPECT_EQ(SelectObject(b, bitmap), HGDIOBJ{});
    EXPECT_FALSE(DeleteObject(bitmap));
    RECT box;
    GetClipBox(a, box);
    EXPECT_EQ(box, (RECT{0, 0, 4, 3}));
    EXPECT_EQ(SelectObject(a, first), bitmap);
    EXPECT_NE(SelectObject(b, bitmap), HGDIOBJ{});
    EXPECT_TRUE(DeleteDC(b));
    SIZE size;
    EXPECT_TRUE(GetBitmapSize(bitmap, size));
    EXPECT_EQ(size, (SIZE{4, 3}));
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_TRUE(DeleteDC(a));
    EXPECT_FALSE(IsGdiObject(first));
    EXPECT_EQ(CreateCompatibleBitmap(HDC{}, 1 << 30, 1 << 30), HBITMAP{});
    EXPECT_EQ(CreateCompatibleBitmap(HDC{}, -1, 5), HBITMAP{});
}

// Any sequence of clips admits exactly the pixels that a mask of them admits.
TEST(Clip, EqualsItsMask) {
    std::mt19937 random(4711);
    const auto number = [&](std::int32_t most) {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(most));
    };
    constexpr std::int32_t size = 24;
    const auto rect = [&] {
        const std::int32_t x = number(size + 4) - 2, y = number(size + 4) - 2;
        return RECT{x, y, x + number(size), y + number(size)};
    };
    for (int round = 0; round < 300; ++round) {
        Canvas canvas(size, size);
        std::vector<RECT> start(1 + number(4));
        for (RECT& r : start) r = rect();
        DeleteDC(canvas.dc);
        const POINT origin{number(5), number(5)};
        canvas.dc = create_surface_dc(canvas.surface, origin, start);
        bool mask[size][size] = {};
        const auto each = [&](auto visit) {
            for (std::int32_t y = 0; y < size; ++y) {
                for (std::int32_t x = 0; x < size; ++x) visit(x, y);
            }
        };
        each([&](std::int32_t x, std::int32_t y) {
            for (const RECT& r : start) mask[y][x] |= r.contains({x, y});
        });
        for (int step = number(6); step > 0; --step) {
            const RECT r = rect();
            const bool exclude = number(3) > 0;
            const std::int32_t kind =
                exclude ? ExcludeClipRect(canvas.dc, r) : IntersectClipRect(canvas.dc, r);
            EXPECT_NE(kind, ERROR_REGION);
            each([&](std::int32_t x, std::int32_t y) {
                const bool inside = r.contains({x - origin.x, y - origin.y});
                mask[y][x] = mask[y][x] && inside != exclude;
            });
        }
        // Inverted once, so that rectangles that overlap would show.
        PatBlt(canvas.dc, -50, -50, 200, 200, DSTINVERT);
        each([&](std::int32_t x, std::int32_t y) {
            ASSERT_EQ(canvas.at(x, y), mask[y][x] ? 0xFF000000u : paper) << x << ' ' << y;
        });
    }
}

TEST(Clip, BoxAndVisibilityAreInLogicalCoordinates) {
    Canvas canvas(100, 100, 1.5);
    reset_surface_dc(canvas.dc, canvas.surface, {10, 20}, std::array{RECT{10, 20, 60, 70}});
    RECT box;
    EXPECT_EQ(GetClipBox(canvas.dc, box), SIMPLEREGION);
    EXPECT_EQ(box, (RECT{0, 0, 50, 50}));
    EXPECT_EQ(ExcludeClipRect(canvas.dc, {0, 0, 50, 10}), SIMPLEREGION);
    EXPECT_EQ(ExcludeClipRect(canvas.dc, {20, 20, 30, 30}), COMPLEXREGION);
    SetWindowOrg(canvas.dc, {100, 100});
    GetClipBox(canvas.dc, box);
    EXPECT_EQ(box, (RECT{100, 110, 150, 150}));
    EXPECT_TRUE(RectVisible(canvas.dc, {100, 100, 101, 111}));
    EXPECT_FALSE(RectVisible(canvas.dc, {120, 120, 130, 130}));
    EXPECT_EQ(IntersectClipRect(canvas.dc, {120, 120, 130, 130}), NULLREGION);
    EXPECT_EQ(GetClipBox(canvas.dc, box), NULLREGION);
    EXPECT_EQ(box, RECT{});
}

}  // namespace
}  // namespace tarn::platform
