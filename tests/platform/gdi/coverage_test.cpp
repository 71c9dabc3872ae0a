#include <cmath>
#include <gtest/gtest.h>

#include "canvas.h"
#include "platform/gdi/theme.h"

namespace tarn::platform {
namespace {

constexpr double pi = 3.14159265358979;

void star(HDC dc, float x, float y, float size) {
    std::vector<PointF> points;
    for (int i = 0; i < 5; ++i) {
        const auto angle = static_cast<float>(i * 4 * pi / 5 - pi / 2);
        points.push_back({x + size * std::cos(angle), y + size * std::sin(angle)});
    }
    fill_path(dc, points, black);
}

// The ink of a shape is its area, wherever between the pixels it lies.
TEST(Coverage, AreasAreExact) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        const double s2 = scale * scale;
        for (const float shift : {0.0F, 0.3F, 0.77F}) {
            Canvas canvas(60, 60, scale);
            fill_circle(canvas.dc, {30 + shift, 30 - shift}, 12, black);
            EXPECT_NEAR(canvas.ink(), pi * 144 * s2, 3.0 * scale) << scale << ' ' << shift;
            canvas.clear();
            const PointF triangle[] = {{5 + shift, 5}, {45, 12 + shift}, {17, 50}};
            fill_path(canvas.dc, triangle, black);
            const double area = std::fabs((40 - shift) * 45 - (12 - shift) * (7 + shift)) / 2;
            EXPECT_NEAR(canvas.ink(), area * s2, 1.5 * scale);
            canvas.clear();
            const PointF bar[] = {{10, 10 + shift}, {40, 10 + shift}};
            stroke_path(canvas.dc, bar, 3, black);
            EXPECT_NEAR(canvas.ink(), (30 * 3 + pi * 1.5 * 1.5) * s2, 1.0 * scale);
        }
    }
}

TEST(Coverage, RoundedShapes) {
    Canvas canvas(80, 40);
    fill_rounded(canvas.dc, {4, 4, 76, 36}, 6, black);
    EXPECT_NEAR(canvas.ink(), 72 * 32 - (4 - pi) * 36, 1.0);
    canvas.clear();
    stroke_rounded(canvas.dc, {4, 4, 76, 36}, 6, 2, black);
    EXPECT_NEAR(canvas.ink(), (72 * 32 - (4 - pi) * 36) - (68 * 28 - (4 - pi) * 16), 1.0);
    EXPECT_EQ(canvas.at(40, 20), paper);
    EXPECT_EQ(canvas.at(40, 5), 0xFF000000u);
    EXPECT_EQ(canvas.at(40, 6), paper);
    canvas.clear();
    canvas.no_pen();
    canvas.brush(black);
    Ellipse(canvas.dc, 10, 5, 71, 36);
    EXPECT_NEAR(canvas.ink(), pi * 30 * 15, 2.0);
}

// Where parts of a shape lie over each other it isn't darker, nor lighter.
TEST(Coverage, OverlapsCountOnce) {
    Canvas canvas(40, 40);
    star(canvas.dc, 20, 20, 18);
    EXPECT_EQ(canvas.at(20, 20), 0xFF000000u);
    canvas.clear();
    const PointF zigzag[] = {{5, 20}, {30, 20}, {10, 20}, {35, 20}};
    stroke_path(canvas.dc, zigzag, 4, black, 0.5F);
    EXPECT_EQ(canvas.at(20, 20), 0xFF7F7F7Fu);
}

// A picture painted in pieces is the picture painted at once: damage leaves no seams.
TEST(Coverage, ClippingNeverChangesAPixel) {
    const auto draw = [](HDC dc) {
        star(dc, 31.3F, 28.6F, 26);
        fill_rounded(dc, {3, 4, 61, 50}, 9, red, 0.4F);
        stroke_rounded(dc, {3, 4, 61, 50}, 9, 2, blue);
        stroke_rounded(dc, {8.5F, 9.25F, 50, 40}, 5, 1.5F, green, 0.7F);
        const PointF curve[] = {{2, 60}, {20, 3}, {40, 55}, {63, 1}};
        stroke_path(dc, curve, 3.3F, black);
        DrawIconEx(dc, 20, 20, LoadSystemIcon(IDI_QUESTION), 32, 32);
        Ellipse(dc, 5, 30, 60, 63);
        draw_shadow(dc, {20, 20, 44, 40}, 4, 9, 0.5F);
        text_out(dc, 3, 5, "Kerning & clip");
    };
    for (const double scale : {1.0, 1.25, 2.0}) {
        Canvas whole(64, 64, scale), pieces(64, 64, scale);
        draw(whole.dc);
        DeleteDC(pieces.dc);
        for (const RECT& r : {RECT{0, 0, 13, 64}, RECT{13, 0, 64, 22}, RECT{13, 22, 47, 37},
                              RECT{47, 22, 64, 37}, RECT{13, 37, 64, 64}}) {
            pieces.dc = create_surface_dc(pieces.surface, {0, 0}, std::array{r});
            draw(pieces.dc);
            DeleteDC(pieces.dc);
        }
        pieces.dc = HDC{};
        EXPECT_TRUE(whole.pixels == pieces.pixels) << scale;
        EXPECT_TRUE(whole.opaque());
    }
}

TEST(Coverage, NothingComesOfBadNumbers) {
    Canvas canvas(10, 10);
    const float bad = std::nanf(""), endless = INFINITY;
    fill_circle(canvas.dc, {bad, 5}, 3, black);
    fill_circle(canvas.dc, {5, 5}, endless, black);
    fill_circle(canvas.dc, {5, 5}, -1, black);
    fill_rounded(canvas.dc, {bad, 0, 5, 5}, 2, black);
    fill_rounded(canvas.dc, {5, 5, 2, 2}, 2, black);
    stroke_rounded(canvas.dc, {0, 0, endless, 5}, 2, 1, black);
    draw_shadow(canvas.dc, {bad, bad, bad, bad}, 2, 2, 1);
    const PointF points[] = {{endless, 1}, {2, bad}, {3, 3}};
    fill_path(canvas.dc, points, black);
    stroke_path(canvas.dc, points, 2, black);
    EXPECT_EQ(canvas.ink(), 0);
    // Larger than the surface by far is fine, though.
    fill_circle(canvas.dc, {5, 5}, 50000, black);
    EXPECT_EQ(canvas.ink(), 100);
}

TEST(Icons, AreDrawnAtEverySize) {
    const HICON icons[] = {LoadSystemIcon(IDI_HAND), LoadSystemIcon(IDI_APPLICATION),
                           LoadNamedIcon("WARNicon"), LoadNamedIcon("checkicon")};
    for (const HICON icon : icons) {
        for (const std::int32_t size : {1, 16, 32, 48, 100}) {
            std::vector<std::uint32_t> pixels(std::size_t(size) * size, 0x12345678);
            ASSERT_TRUE(GetIconPixels(icon, size, size, pixels.data()));
            if (size < 16) continue;
            EXPECT_EQ(pixels[0] >> 24, 0u) << "corners are clear";
            EXPECT_EQ(pixels[std::size_t(size / 2) * size + size / 2] >> 24, 255u);
        }
    }
    EXPECT_EQ(LoadNamedIcon("elsewhere"), HICON{});
    EXPECT_EQ(LoadNamedIcon(nullptr), HICON{});
    EXPECT_TRUE(DestroyIcon(LoadSystemIcon(IDI_HAND)));
    EXPECT_NE(LoadSystemIcon(IDI_HAND), HICON{});
    EXPECT_EQ(LoadSystemIcon(7), HICON{});
}

TEST(Icons, PicturesKeepTheirAlpha) {
    const std::uint32_t pixels[] = {0xFF0000FFu, 0x000000FFu, 0x800000FFu, 0xFF00FF00u};
    const HICON icon = CreateIconFromPixels(2, 2, pixels);
    Canvas canvas(2, 2);
    ASSERT_TRUE(DrawIconEx(canvas.dc, 0, 0, icon, 2, 2));
    EXPECT_EQ(canvas.picture(), "b.\n?g\n");
    EXPECT_EQ(canvas.at(0, 1), 0xFF7F7FFFu);
    std::uint32_t large[16] = {};
    ASSERT_TRUE(GetIconPixels(icon, 4, 4, large));
    EXPECT_EQ(large[0], 0xFF0000FFu);
    EXPECT_EQ(large[3] >> 24, 0u);
    EXPECT_TRUE(DestroyIcon(icon));
    EXPECT_FALSE(DestroyIcon(icon));
    EXPECT_FALSE(DrawIconEx(canvas.dc, 0, 0, icon, 2, 2));
    EXPECT_EQ(CreateIconFromPixels(0, 5, pixels), HICON{});
    EXPECT_EQ(CreateIconFromPixels(1 << 20, 1 << 20, pixels), HICON{});
}

}  // namespace
}  // namespace tarn::platform
