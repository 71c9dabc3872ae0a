#include <functional>
#include <gtest/gtest.h>

#include "canvas.h"

namespace tarn::platform {
namespace {

struct PictureCase {
    const char* name;
    std::int32_t width, height;
    std::function<void(const Canvas&)> draw;
    const char* expected;
};

void line(const Canvas& c, POINT a, POINT b) {
    MoveToEx(c.dc, a.x, a.y);
    LineTo(c.dc, b.x, b.y);
}

TEST(Lines, ExactPictures) {
    const std::vector<PictureCase> cases = {
        {"the last pixel of a line isn't drawn", 6, 3,
         [](const Canvas& c) {
             line(c, {1, 0}, {5, 0});
             line(c, {4, 2}, {0, 2});
         },
         ".####.\n"
         "......\n"
         ".####.\n"},
        {"a line without a length is nothing", 3, 1,
         [](const Canvas& c) {
             line(c, {1, 0}, {1, 0});
         },
         "...\n"},
        {"a tie goes to the smaller coordinate", 7, 4,
         [](const Canvas& c) {
             line(c, {0, 0}, {6, 3});
         },
         "##.....\n"
         "..##...\n"
         "....##.\n"
         ".......\n"},
        {"steep", 4, 6,
         [](const Canvas& c) {
             line(c, {0, 0}, {3, 5});
         },
         "#...\n"
         ".#..\n"
         ".#..\n"
         "..#.\n"
         "..#.\n"
         "....\n"},
        {"a rectangle is its outline and what is inside", 6, 4,
         [](const Canvas& c) {
             c.brush(red);
             Rectangle(c.dc, 1, 0, 6, 4);
         },
         ".#####\n"
         ".#rrr#\n"
         ".#rrr#\n"
         ".#####\n"},
        {"without a pen it is one smaller", 6, 4,
         [](const Canvas& c) {
             c.no_pen();
             c.brush(red);
             Rectangle(c.dc, 1, 0, 6, 4);
         },
         ".rrrr.\n"
         ".rrrr.\n"
         ".rrrr.\n"
         "......\n"},
        {"a wide pen lies around the edge", 8, 6,
         [](const Canvas& c) {
             c.pen(black, 2);
             c.brush(red);
             Rectangle(c.dc, 1, 1, 8, 6);
         },
         "########\n"
         "########\n"
         "##rrrr##\n"
         "##rrrr##\n"
         "########\n"
         "########\n"},
        {"an inside frame keeps within it", 8, 6,
         [](const Canvas& c) {
             c.pen(black, 2, PS_INSIDEFRAME);
             c.brush(red);
             Rectangle(c.dc, 0, 0, 7, 5);
         },
         "#######.\n"
         "#######.\n"
         "##rrr##.\n"
         "#######.\n"
         "#######.\n"
         "........\n"},
        {"a polygon takes left and top, not right and bottom", 6, 5,
         [](const Canvas& c) {
             c.no_pen();
             c.brush(green);
             const POINT diamond[] = {{2, 0}, {4, 2}, {2, 4}, {0, 2}};
             Polygon(c.dc, diamond, 4);
         },
         "......\n"
         ".gg...\n"
         "gggg..\n"
         ".gg...\n"
         "......\n"},
        {"crossed polygons fill alternately", 9, 5,
         [](const Canvas& c) {
             c.no_pen();
             c.brush(blue);
             const POINT twice[] = {{0, 0}, {8, 0}, {8, 4}, {0, 4}, {0, 0},
                                    {2, 1}, {6, 1}, {6, 3}, {2, 3}, {2, 1}};
             Polygon(c.dc, twice, 10);
         },
         "bbbbbbbb.\n"
         "bb....bb.\n"
         "bb....bb.\n"
         "bbbbbbbb.\n"
         ".........\n"},
        {"a polygon's outline is closed", 5, 4,
         [](const Canvas& c) {
             c.no_brush();
             const POINT box[] = {{0, 0}, {4, 0}, {4, 3}, {0, 3}};
             Polygon(c.dc, box, 4);
         },
         "#####\n"
         "#...#\n"
         "#...#\n"
         "#####\n"},
        {"dots, with gaps in the background's colour", 12, 2,
         [](const Canvas& c) {
             c.pen(black, 1, PS_DOT);
             SetBkColor(c.dc, green);
             line(c, {0, 0}, {12, 0});
             SetBkMode(c.dc, TRANSPARENT);
             line(c, {0, 1}, {12, 1});
         },
         "###ggg###ggg\n"
         "###...###...\n"},
        {"dashes go on around a corner", 9, 3,
         [](const Canvas& c) {
             c.pen(black, 1, PS_DOT);
             SetBkMode(c.dc, TRANSPARENT);
             const POINT bend[] = {{0, 2}, {7, 2}, {7, 0}};
             Polyline(c.dc, bend, 3);
         },
         ".........\n"
         ".......#.\n"
         "###...##.\n"},
        {"a frame of a brush", 5, 4,
         [](const Canvas& c) {
             FrameRect(c.dc, {0, 0, 5, 4}, CreateSolidBrush(red));
         },
         "rrrrr\n"
         "r...r\n"
         "r...r\n"
         "rrrrr\n"},
        {"a frame of dots", 5, 4,
         [](const Canvas& c) {
             DrawFocusRect(c.dc, {0, 0, 5, 4});
         },
         "#.#.#\n"
         ".....\n"
         "#...#\n"
         ".#.#.\n"},
        {"logical coordinates move with the origin", 4, 3,
         [](const Canvas& c) {
             SetWindowOrg(c.dc, {10, 20});
             FillRect(c.dc, {11, 21, 13, 22}, CreateSolidBrush(blue));
         },
         "....\n"
         ".bb.\n"
         "....\n"},
    };
    for (const PictureCase& c : cases) {
        Canvas canvas(c.width, c.height);
        c.draw(canvas);
        EXPECT_EQ(canvas.picture(), c.expected) << c.name;
        EXPECT_TRUE(canvas.opaque()) << c.name;
    }
}

// There and back, a line covers the same pixels but for its two ends.
TEST(Lines, DirectionDoesNotMatter) {
    for (std::int32_t x = -9; x <= 9; ++x) {
        for (std::int32_t y = -9; y <= 9; ++y) {
            const POINT a{10, 10}, b{10 + x, 10 + y};
            if (a == b) continue;
            Canvas there(21, 21), back(21, 21);
            line(there, a, b);
            SetPixel(there.dc, b.x, b.y, black);
            line(back, b, a);
            SetPixel(back.dc, a.x, a.y, black);
            ASSERT_EQ(there.picture(), back.picture()) << x << ' ' << y;
        }
    }
}

TEST(Lines, ARasterCodeAppliedTwiceRestores) {
    for (const std::int32_t code : {R2_XORPEN, R2_NOT}) {
        Canvas canvas(24, 24);
        Ellipse(canvas.dc, 2, 2, 20, 18);
        const auto before = canvas.pixels;
        SetROP2(canvas.dc, code);
        canvas.pen(0x123456);
        canvas.brush(0x654321);
        for (int pass = 0; pass < 2; ++pass) {
            EXPECT_EQ(canvas.pixels != before, pass == 1);
            line(canvas, {1, 2}, {20, 9});
            Rectangle(canvas.dc, 3, 3, 18, 20);
            Ellipse(canvas.dc, 0, 5, 23, 19);
            RoundRect(canvas.dc, 4, 1, 23, 21, 8, 8);
            const POINT triangle[] = {{2, 3}, {20, 7}, {9, 22}};
            canvas.no_pen();
            Polygon(canvas.dc, triangle, 3);
            canvas.pen(0x123456);
        }
        EXPECT_EQ(canvas.pixels, before);
        EXPECT_TRUE(canvas.opaque());
    }
}

// The sixteen codes of two operands, against their meaning bit by bit.
TEST(Lines, EveryCodeOfTwoOperands) {
    for (std::int32_t code = 1; code <= 16; ++code) {
        Canvas canvas(1, 1);
        canvas.pixels[0] = 0xFF0F0F0F;
        canvas.pen(0x333333);
        SetROP2(canvas.dc, code);
        line(canvas, {0, 0}, {1, 0});
        std::uint32_t expected = 0;
        for (int bit = 0; bit < 8; ++bit) {
            const int pen = 0x33 >> bit & 1, under = 0x0F >> bit & 1;
            expected |= ((code - 1) >> (2 * pen + under) & 1) << bit;
        }
        EXPECT_EQ(canvas.at(0, 0), 0xFF000000u | expected * 0x010101u) << code;
    }
}

// At any factor neighbours meet without a gap or an overlap, and outlines are whole pixels wide.
TEST(Lines, ScaledEdgesMeet) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        Canvas canvas(40, 3, scale);
        SetROP2(canvas.dc, R2_NOT);
        for (std::int32_t x = 0; x < 40; ++x) PatBlt(canvas.dc, x, 0, 1, 3, DSTINVERT);
        EXPECT_EQ(canvas.ink(), canvas.pixels.size()) << scale;
        Canvas framed(20, 20, scale);
        framed.no_brush();
        Rectangle(framed.dc, 2, 2, 18, 18);
        const auto pen = std::max(1, static_cast<int>(std::floor(scale + 0.5)));
        const int outer = framed.surface.to_real(18) - framed.surface.to_real(2);
        EXPECT_EQ(framed.ink(), outer * outer - (outer - 2 * pen) * (outer - 2 * pen)) << scale;
        EXPECT_EQ(framed.at(framed.surface.to_real(2), framed.surface.to_real(10)), 0xFF000000u);
        EXPECT_EQ(framed.at(framed.surface.to_real(18) - 1, framed.surface.to_real(10)),
                  0xFF000000u);
    }
}

TEST(Lines, AbsurdCoordinatesAreSurvived) {
    Canvas canvas(10, 10);
    for (const std::int32_t far : {INT32_MAX, INT32_MIN, 1 << 30}) {
        line(canvas, {far, 5}, {-far / 2, 5});
        line(canvas, {5, far}, {5, 0});
        line(canvas, {far, far}, {0, 0});
        Rectangle(canvas.dc, -5, -5, far, far);
        Ellipse(canvas.dc, far, far, 5, 5);
        RoundRect(canvas.dc, far, 0, 5, far, far, far);
        const POINT points[] = {{far, 0}, {0, far}, {-5, -5}};
        Polygon(canvas.dc, points, 3);
        canvas.pen(black, 5);
        line(canvas, {far, 3}, {0, 3});
        PatBlt(canvas.dc, 2, 2, far, far, BLACKNESS);
    }
    EXPECT_TRUE(canvas.opaque());
}

}  // namespace
}  // namespace tarn::platform
