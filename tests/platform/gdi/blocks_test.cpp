#include <gtest/gtest.h>
#include <numeric>

#include "canvas.h"

namespace tarn::platform {
namespace {

// A memory context with a bitmap of these pixels.
struct Memory {
    HDC dc = CreateCompatibleDC(HDC{});
    HBITMAP bitmap;
    Memory(std::int32_t width, std::int32_t height, const std::vector<std::uint32_t>& pixels)
        : bitmap(CreateBitmapFromPixels(width, height, pixels.data(), width)) {
        SelectObject(dc, bitmap);
    }
    ~Memory() {
        DeleteDC(dc);
        DeleteObject(bitmap);
    }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
};

// All 256 codes of three operands, against their meaning bit by bit.
TEST(Blocks, EveryRasterCode) {
    constexpr std::uint32_t pattern = 0xF0, source = 0xCC, under = 0xAA;
    Memory memory(1, 1, {0xFF000000u | source * 0x010101u});
    for (std::uint32_t code = 0; code < 256; ++code) {
        Canvas canvas(1, 1);
        canvas.pixels[0] = 0xFF000000u | under * 0x010101u;
        canvas.brush(pattern * 0x010101u);
        ASSERT_TRUE(BitBlt(canvas.dc, 0, 0, 1, 1, memory.dc, 0, 0, code << 16));
        // The operands hold each combination once, so the result is the code itself.
        EXPECT_EQ(canvas.at(0, 0), 0xFF000000u | code * 0x010101u) << code;
    }
}

TEST(Blocks, PatternsRepeatFromTheOrigin) {
    const std::uint32_t r = 0xFFFF0000u, g = 0xFF00FF00u;
    const std::vector<std::uint32_t> checks = {r, r, g, g, r, g};
    const HBITMAP bitmap = CreateBitmapFromPixels(3, 2, checks.data(), 3);
    Canvas canvas(7, 4);
    const HBRUSH brush = CreatePatternBrush(bitmap);
    EXPECT_TRUE(DeleteObject(bitmap));
    FillRect(canvas.dc, {1, 1, 7, 4}, brush);
    EXPECT_EQ(canvas.picture(),
              ".......\n"
              ".rggrgg\n"
              ".rgrrgr\n"
              ".rggrgg\n");
    EXPECT_EQ(CreatePatternBrush(bitmap), HBRUSH{});
    COLORREF colour = 0;
    EXPECT_FALSE(GetObjectBrush(brush, colour));
}

std::vector<std::uint32_t> numbered(std::int32_t count) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(count));
    std::iota(pixels.begin(), pixels.end(), 0xFF000000u);
    return pixels;
}

// A block moved upon itself is what a copy of the block would have been, in every direction.
TEST(Blocks, OverlappingCopies) {
    for (std::int32_t dx = -2; dx <= 2; ++dx) {
        for (std::int32_t dy = -2; dy <= 2; ++dy) {
            for (const std::uint32_t code : {SRCCOPY, SRCINVERT}) {
                Canvas canvas(8, 8);
                canvas.pixels = numbered(64);
                canvas.surface.pixels = canvas.pixels.data();
                reset_surface_dc(canvas.dc, canvas.surface, {0, 0}, std::array{RECT{0, 0, 8, 8}});
                const auto before = canvas.pixels;
                BitBlt(canvas.dc, 2 + dx, 2 + dy, 4, 4, canvas.dc, 2, 2, code);
                for (std::int32_t y = 0; y < 8; ++y) {
                    for (std::int32_t x = 0; x < 8; ++x) {
                        const bool inside = RECT{2 + dx, 2 + dy, 6 + dx, 6 + dy}.contains({x, y});
                        const std::uint32_t old = before[std::size_t(y) * 8 + x];
                        std::uint32_t wanted = old;
                        if (inside) {
                            wanted = before[std::size_t(y - dy) * 8 + (x - dx)];
                            if (code == SRCINVERT) wanted = (wanted ^ old) | 0xFF000000u;
                        }
                        ASSERT_EQ(canvas.at(x, y), wanted) << dx << ' ' << dy;
                    }
                }
            }
        }
    }
}

TEST(Blocks, OutsideTheSourceNothingChanges) {
    Memory memory(2, 2, std::vector<std::uint32_t>(4, 0xFFFF0000u));
    Canvas canvas(6, 4);
    EXPECT_TRUE(BitBlt(canvas.dc, 1, 1, 5, 3, memory.dc, -1, -1, SRCCOPY));
    EXPECT_EQ(canvas.picture(), "......\n......\n..rr..\n..rr..\n");
    EXPECT_TRUE(StretchBlt(canvas.dc, 0, 0, 6, 2, memory.dc, 1, 0, 3, 1, SRCCOPY));
    EXPECT_EQ(canvas.picture(), "rr....\nrr....\n..rr..\n..rr..\n");
    EXPECT_TRUE(BitBlt(canvas.dc, 0, 0, INT32_MAX, INT32_MAX, memory.dc, 0, 0, SRCCOPY));
}

TEST(Blocks, StretchedAndMirrored) {
    Memory memory(2, 2, {0xFFFF0000u, 0xFF00FF00u, 0xFF0000FFu, 0xFF000000u});
    Canvas canvas(4, 4);
    StretchBlt(canvas.dc, 0, 0, 4, 4, memory.dc, 0, 0, 2, 2, SRCCOPY);
    EXPECT_EQ(canvas.picture(), "rrgg\nrrgg\nbb##\nbb##\n");
    StretchBlt(canvas.dc, 4, 0, -4, 4, memory.dc, 0, 0, 2, 2, SRCCOPY);
    EXPECT_EQ(canvas.picture(), "ggrr\nggrr\n##bb\n##bb\n");
    StretchBlt(canvas.dc, 0, 0, 4, 4, memory.dc, 0, 2, 2, -2, SRCCOPY);
    EXPECT_EQ(canvas.picture(), "bb##\nbb##\nrrgg\nrrgg\n");
    StretchBlt(canvas.dc, 0, 0, 0, 4, memory.dc, 0, 0, 2, 2, SRCCOPY);
}

// A bitmap of one factor fills its logical size on a surface of another.
TEST(Blocks, BitmapsKeepTheirLogicalSize) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        Memory memory(8, 8, std::vector<std::uint32_t>(64, 0xFF000000u));
        Canvas canvas(16, 16, scale);
        BitBlt(canvas.dc, 4, 4, 8, 8, memory.dc, 0, 0, SRCCOPY);
        EXPECT_EQ(canvas.ink(), 64 * scale * scale);
        const HDC own = CreateCompatibleDC(canvas.dc);
        const HBITMAP bitmap = CreateCompatibleBitmap(canvas.dc, 8, 8);
        SelectObject(own, bitmap);
        BitBlt(own, 0, 0, 8, 8, canvas.dc, 4, 4, SRCCOPY);
        EXPECT_EQ(surface_of(own)->scale, scale);
        EXPECT_EQ(surface_of(own)->width, surface_of(own)->to_real(8));
        canvas.clear();
        BitBlt(canvas.dc, 0, 0, 8, 8, own, 0, 0, SRCCOPY);
        EXPECT_EQ(canvas.ink(), 64 * scale * scale);
        DeleteDC(own);
        DeleteObject(bitmap);
    }
}

TEST(Blocks, ScrollingMovesAndTellsWhatIsLeft) {
    struct Case {
        std::int32_t dx, dy;
        RECT uncovered;
    };
    for (const Case& c : {Case{0, 2, {1, 1, 7, 3}}, Case{0, -2, {1, 5, 7, 7}},
                          Case{3, 0, {1, 1, 4, 7}}, Case{-3, 0, {4, 1, 7, 7}},
                          Case{1, 1, {1, 1, 7, 7}}, Case{0, 20, {1, 1, 7, 7}}, Case{0, 0, {}}}) {
        Canvas canvas(8, 8);
        canvas.pixels = numbered(64);
        canvas.surface.pixels = canvas.pixels.data();
        reset_surface_dc(canvas.dc, canvas.surface, {0, 0}, std::array{RECT{0, 0, 8, 8}});
        const auto before = canvas.pixels;
        const RECT area{1, 1, 7, 7};
        RECT uncovered;
        ASSERT_TRUE(ScrollDC(canvas.dc, c.dx, c.dy, &area, &area, &uncovered));
        EXPECT_EQ(uncovered, c.uncovered);
        for (std::int32_t y = 0; y < 8; ++y) {
            for (std::int32_t x = 0; x < 8; ++x) {
                const POINT from{x - c.dx, y - c.dy};
                if (uncovered.contains({x, y})) continue;
                const bool moved = area.contains({x, y}) && area.contains(from);
                const POINT source = moved ? from : POINT{x, y};
                ASSERT_EQ(canvas.at(x, y), before[std::size_t(source.y) * 8 + source.x]);
            }
        }
    }
}

// A step that is no whole number of real pixels can't be moved without a blur.
TEST(Blocks, ScrollingByPartsOfAPixelPaintsAnew) {
    Canvas canvas(20, 20, 1.25);
    RECT uncovered;
    ASSERT_TRUE(ScrollDC(canvas.dc, 0, 3, nullptr, nullptr, &uncovered));
    EXPECT_EQ(uncovered, (RECT{0, 0, 20, 20}));
    ASSERT_TRUE(ScrollDC(canvas.dc, 0, 4, nullptr, nullptr, &uncovered));
    EXPECT_EQ(uncovered, (RECT{0, 0, 20, 4}));
}

TEST(Blocks, FloodsStopAtTheBorderAndAtTheClip) {
    Canvas canvas(9, 7);
    canvas.no_brush();
    Rectangle(canvas.dc, 1, 1, 8, 6);
    canvas.brush(red);
    IntersectClipRect(canvas.dc, {0, 0, 6, 7});
    EXPECT_TRUE(ExtFloodFill(canvas.dc, 3, 3, black, 0));
    EXPECT_EQ(canvas.picture(),
              ".........\n"
              ".#######.\n"
              ".#rrrr.#.\n"
              ".#rrrr.#.\n"
              ".#rrrr.#.\n"
              ".#######.\n"
              ".........\n");
    canvas.brush(blue);
    EXPECT_TRUE(ExtFloodFill(canvas.dc, 0, 0, white, 1));
    EXPECT_EQ(canvas.picture(),
              "bbbbbb...\n"
              "b#######.\n"
              "b#rrrr.#.\n"
              "b#rrrr.#.\n"
              "b#rrrr.#.\n"
              "b#######.\n"
              "bbbbbb...\n");
    EXPECT_FALSE(ExtFloodFill(canvas.dc, 3, 3, white, 1));
    EXPECT_FALSE(ExtFloodFill(canvas.dc, 50, 3, white, 1));
}

TEST(Blocks, SinglePixels) {
    Canvas canvas(4, 4, 2.0);
    EXPECT_EQ(SetPixel(canvas.dc, 1, 1, 0x123456), 0x123456u);
    EXPECT_EQ(GetPixel(canvas.dc, 1, 1), 0x123456u);
    EXPECT_EQ(canvas.at(3, 3), 0xFF563412u);
    for (const std::int32_t outside : {-1, 4, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(GetPixel(canvas.dc, outside, 0), CLR_INVALID);
        EXPECT_EQ(SetPixel(canvas.dc, 0, outside, red), CLR_INVALID);
    }
}

}  // namespace
}  // namespace tarn::platform
