// What needs no server: texts and numbers that come from other programs.
#include <cmath>
#include <gtest/gtest.h>

#include "platform/display/geometry.h"
#include "platform/display/keys.h"
#include "platform/x11/connection.h"
#include "platform/x11/keys.h"
#include "platform/x11/pointer_input.h"
#include "platform/x11/selections.h"
#include "platform/x11/settings.h"

namespace tarn::x11 {
namespace {

TEST(SelectionTextTest, LinesEndWithLfAndLatin1BecomesUtf8) {
    EXPECT_EQ(lines_from_outside("a\r\nb\rc\n", false), "a\nb\nc\n");
    EXPECT_EQ(lines_from_outside("a\r", false), "a\n");
    EXPECT_EQ(lines_from_outside(std::string_view("a\0\0", 3), false), "a");
    EXPECT_EQ(lines_from_outside("\xE9", true), "\xC3\xA9");
    EXPECT_EQ(lines_from_outside("\xC3\xA9", false), "\xC3\xA9");
    EXPECT_EQ(latin1_from_utf8("\xC3\xA9\xE2\x82\xAC!\xF0\x9F\x98\x80"), "\xE9?!?");
    EXPECT_EQ(latin1_from_utf8("\xC3"), "?");
}

TEST(SelectionTextTest, PathsAreFoundAmongAddresses) {
    EXPECT_EQ(paths_from_uris("file:///a%20b\r\n#comment\r\nfile://host/c\nfile:/d"),
              "/a b\n/c\n/d");
    EXPECT_EQ(paths_from_uris("http://a/b\nfile:relative\nfile://host\nfile:"), "");
    EXPECT_EQ(paths_from_uris("file:///a%0Ab\nfile:///a%00b\nfile:///ok%"), "/ok%");
    EXPECT_EQ(paths_from_uris("file:///%zz%4"), "/%zz%4");
}

TEST(ScrollAxesTest, PartsOfANotchAddUpAndTurningBackBeginsAnew) {
    ScrollAxes axes;
    axes.add({5, 2, false, 15.0, 0.0, false, 0.0});   // 15 a notch, down
    axes.add({5, 3, true, -40.0, 100.0, true, 0.0});  // to the left
    EXPECT_TRUE(axes.scrolls(5, false) && axes.scrolls(5, true) && !axes.scrolls(6, false));
    EXPECT_FALSE(axes.changed(5, 1, 7.0));
    EXPECT_FALSE(axes.changed(6, 2, 7.0));
    struct {
        std::uint16_t number;
        double value;
        std::int32_t delta;
    } steps[] = {
        {2, 1000.0, 0},  // where it stood isn't known
        {2, 1015.0, -120}, {2, 1015.1, 0},       {2, 1015.25, -2}, {2, 1015.2, 0}, {2, 1000.2, 120},
        {2, 1e6, 0},       {2, 1e6 - 15.0, 120}, {2, 1e300, 0},    {2, NAN, 0},    {2, 0.0, 0},
        {2, 15.0, -120},   {3, 80.0, -60},       {3, 120.0, 120},
    };
    for (auto& step : steps) {
        auto scroll = axes.changed(5, step.number, step.value);
        ASSERT_TRUE(scroll);
        EXPECT_EQ(scroll->delta, step.delta) << step.value;
        EXPECT_EQ(scroll->horizontal, step.number == 3);
    }
}

TEST(ResourceTest, FindsAnEntryByItsWholeName) {
    std::string_view database = "Xft.dpix:\t1\nOther.Xft.dpi: 2\nXft.dpi:\t 120 \nXft.dpi: 3";
    EXPECT_EQ(resource_value(database, "Xft.dpi"), "120");
    EXPECT_EQ(resource_value(database, "Xft.dp"), "");
    EXPECT_EQ(resource_value("Xft.dpi", "Xft.dpi"), "");
}

TEST(SettingsTest, AreReadAsFarAsTheyMakeSense) {
    auto number = [](std::uint32_t value, std::size_t bytes, bool swapped) {
        std::string text;
        for (std::size_t i = 0; i < bytes; ++i)
            text.push_back(static_cast<char>(value >> 8 * (swapped ? bytes - 1 - i : i)));
        return text;
    };
    for (bool swapped : {false, true}) {
        auto padded = [](std::string text) {
            return text += std::string((4 - text.size() % 4) % 4, '\0');
        };
        auto setting = [&](char kind, const std::string& name, const std::string& value) {
            std::uint32_t length = static_cast<std::uint32_t>(name.size());
            return std::string{kind, 0} + number(length, 2, swapped) + padded(name) +
                   number(7, 4, swapped) + value;
        };
        std::string theme = "Quiet-Dark!";
        std::string all = std::string(1, swapped ? '\1' : '\0') + std::string(7, '\0') +
                          number(4, 4, swapped) + setting(2, "A/Colour", std::string(8, 'x')) +
                          setting(0, "Xft/DPI", number(144 * 1024, 4, swapped)) +
                          setting(1, "Net/ThemeName", number(11, 4, swapped) + padded(theme)) +
                          setting(1, "Last", number(0xFFFFFFF0, 4, swapped));
        Settings settings = read_settings(all);
        EXPECT_EQ(settings.theme, theme);
        EXPECT_EQ(settings.dpi, 144.0);
        EXPECT_TRUE(looks_dark(settings));
        // Cut off anywhere, it is no more than what was whole.
        for (std::size_t length = 0; length < all.size(); ++length) {
            Settings part = read_settings(std::string_view(all).substr(0, length));
            EXPECT_TRUE(part.theme.empty() || part.theme == theme);
            EXPECT_TRUE(part.dpi == 0.0 || part.dpi == 144.0);
        }
    }
    EXPECT_FALSE(looks_dark({}));
}

TEST(GeometryTest, LogicalPixelsAndRealOnesAgree) {
    using namespace platform;
    for (double scale : {0.5, 0.75, 1.0, 1.1, 1.25, 1.5, 1.75, 2.0, 3.0, 4.0}) {
        for (std::int32_t logical = -300; logical <= 3000; ++logical) {
            std::int32_t begin = real_edge(logical, scale), end = real_edge(logical + 1, scale);
            for (std::int32_t real = begin; real < end; ++real)
                ASSERT_EQ(logical_pixel(real, scale), logical) << scale << " " << real;
            if (logical >= 0) {
                ASSERT_EQ(logical_length(begin, logical, scale), logical) << scale;
            }
            // A length that somebody else chose is filled.
            if (logical > 0) {
                ASSERT_GE(real_edge(logical_length(logical, 0, scale), scale), logical) << scale;
            }
        }
    }
    EXPECT_EQ(scale_of_dpi(96), 1.0);
    EXPECT_EQ(scale_of_dpi(110), 1.25);
    EXPECT_EQ(scale_of_dpi(144), 1.5);
    EXPECT_EQ(scale_of_dpi(1), 0.5);
    EXPECT_EQ(scale_of_dpi(9999), 4.0);
}

TEST(KeyTableTest, UsBoardByPlace) {
    EXPECT_EQ(key_of_scan(16), 'Q');
    EXPECT_EQ(key_of_scan(38), 'L');
    EXPECT_EQ(key_of_scan(50), 'M');
    EXPECT_EQ(key_of_scan(53), platform::VK_OEM_2);
    EXPECT_EQ(key_of_scan(-3), 0);
    EXPECT_EQ(key_of_scan(54), 0);
}

}  // namespace
}  // namespace tarn::x11
