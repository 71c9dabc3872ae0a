#include "platform/base/text.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "canvas.h"

// The desktop's font library keeps what it reads at its start, in a way that looks lost.
extern "C" const char* __lsan_default_suppressions();   // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "leak:libfontconfig";
}

namespace tarn::platform {
namespace {

LOGFONT described(const char* face, std::int32_t height) {
    LOGFONT font;
    font.lfHeight = height;
    std::strncpy(font.lfFaceName, face, sizeof font.lfFaceName - 1);
    return font;
}

struct TextTest : testing::Test {
    Canvas canvas{400, 200};
    HDC dc = canvas.dc;

    TextTest() { SetBkMode(dc, TRANSPARENT); }
    void select(const LOGFONT& font) const { SelectObject(dc, CreateFontIndirectA(font)); }
    TEXTMETRIC metric() const {
        TEXTMETRIC m;
        EXPECT_TRUE(GetTextMetricsA(dc, m));
        return m;
    }
    // The block of the surface that isn't paper.
    RECT inked() const {
        RECT all{canvas.surface.width, canvas.surface.height, 0, 0};
        for (std::int32_t y = 0; y < canvas.surface.height; ++y) {
            for (std::int32_t x = 0; x < canvas.surface.width; ++x) {
                if (canvas.at(x, y) == paper) continue;
                all = {std::min(all.left, x), std::min(all.top, y), std::max(all.right, x + 1),
                       std::max(all.bottom, y + 1)};
            }
        }
        return all;
    }
};

TEST_F(TextTest, StockFonts) {
    for (const std::int32_t which : {SYSTEM_FONT, DEFAULT_GUI_FONT, ANSI_VAR_FONT}) {
        SelectObject(dc, GetStockObject(which));
        const TEXTMETRIC m = metric();
        EXPECT_EQ(m.tmHeight, 14);
        EXPECT_EQ(m.tmAscent, 11);
        EXPECT_EQ(m.tmInternalLeading, 2);
        EXPECT_EQ(m.tmAveCharWidth, 6);
        EXPECT_EQ(m.tmPitchAndFamily & 1, 1) << "proportional";
    }
    for (const std::int32_t which : {SYSTEM_FIXED_FONT, ANSI_FIXED_FONT, OEM_FIXED_FONT}) {
        SelectObject(dc, GetStockObject(which));
        const TEXTMETRIC m = metric();
        EXPECT_EQ(m.tmHeight, 15);
        EXPECT_EQ(m.tmAveCharWidth, 8);
        EXPECT_EQ(m.tmPitchAndFamily & 1, 0) << "fixed";
        EXPECT_EQ(text_extent(dc, std::string(100, 'i')).cx, 800);
        EXPECT_EQ(text_extent(dc, "WäΩ").cx, 24);
    }
}

// Below 0 the height is the em's, above 0 the cell's, and the width counts too.
TEST_F(TextTest, HeightsAndWidths) {
    for (const std::int32_t size : {8, 12, 13, 16, 24, 37, 100}) {
        select(described("Arial", size));
        EXPECT_EQ(metric().tmHeight, size);
        select(described("Arial", -size));
        EXPECT_EQ(metric().tmHeight - metric().tmInternalLeading, size);
        LOGFONT wide = described("Courier New", -size);
        wide.lfWidth = size;
        select(wide);
        EXPECT_EQ(metric().tmAveCharWidth, size);
        EXPECT_EQ(text_extent(dc, "0123456789").cx, 10 * size);
    }
    for (const std::int32_t odd : {0, INT32_MIN, INT32_MAX}) {
        LOGFONT font = described("Arial", odd);
        font.lfWidth = odd;
        select(font);
        EXPECT_GT(metric().tmHeight, 0);
        text_out(dc, 0, 0, "odd");
    }
}

// Widths are those of the font's table, rounded once for the whole text.
TEST_F(TextTest, WidthsComeFromTheTable) {
    select(described("Helvetica", -2048));  // 2048 units to the em
    EXPECT_EQ(text_extent(dc, "x").cx, 1024);
    EXPECT_EQ(text_extent(dc, "WW").cx, 2 * 1933);
    select(described("Helvetica", -12));
    EXPECT_EQ(text_extent(dc, std::string(100, 'i')).cx, std::lround(100 * 455 * 12 / 2048.0));
    EXPECT_EQ(text_extent(dc, "").cx, 0);
    EXPECT_EQ(text_extent(dc, "").cy, 14);
    SIZE a, w;
    EXPECT_TRUE(GetTextExtentPoint32A(dc, "na\xEFve \x80", 7, a));
    EXPECT_TRUE(GetTextExtentPoint32W(dc, u"naïve €", 7, w));
    EXPECT_EQ(a, w);
    EXPECT_EQ(a, text_extent(dc, "naïve €"));
    EXPECT_FALSE(GetTextExtentPoint32A(dc, nullptr, 7, a));
    EXPECT_FALSE(GetTextExtentPoint32A(dc, "x", -1, a));
}

TEST_F(TextTest, AliasesAreOfOneFamily) {
    struct Case {
        const char *alias, *family;
    };
    for (const Case& c : {Case{"arial", "Liberation Sans"}, Case{"SEGOE UI", "Liberation Sans"},
                          Case{"Tahoma", "Liberation Sans"}, Case{"Consolas", "Liberation Mono"},
                          Case{"fixedsys", "Liberation Mono"}, Case{"Georgia", "Liberation Serif"},
                          Case{"times new roman", "Liberation Serif"}}) {
        select(described(c.alias, -50));
        const SIZE alias = text_extent(dc, "Handgloves");
        select(described(c.family, -50));
        EXPECT_EQ(alias, text_extent(dc, "Handgloves")) << c.alias;
    }
    LOGFONT unknown = described("No Such Face At All", -20);
    unknown.lfPitchAndFamily = 0x31;  // fixed
    select(unknown);
    EXPECT_EQ(metric().tmPitchAndFamily & 1, 0);
}

TEST_F(TextTest, EnumerationFindsNamesAndAliases) {
    struct Found {
        int count = 0;
        LOGFONT font;
    };
    const FONTENUMPROC keep = [](const LOGFONT& font, const TEXTMETRIC&, DWORD,
                                 LPARAM parameter) -> std::int32_t {
        auto* found = reinterpret_cast<Found*>(parameter);
        ++found->count;
        found->font = font;
        return 7;
    };
    Found found;
    const auto parameter = reinterpret_cast<LPARAM>(&found);
    EXPECT_EQ(EnumFontFamiliesA(dc, "courier NEW", keep, parameter), 7);
    EXPECT_EQ(found.count, 1);
    EXPECT_STREQ(found.font.lfFaceName, "Courier New");
    EXPECT_EQ(found.font.lfPitchAndFamily & 3, 1);
    EXPECT_GT(found.font.lfHeight, 0);
    EXPECT_EQ(EnumFontFamiliesA(dc, "No Such Face At All", keep, parameter), 0);
    EXPECT_EQ(found.count, 1);
    EXPECT_EQ(EnumFontFamiliesA(dc, nullptr, keep, parameter), 7);
    EXPECT_GT(found.count, 20);
}

TEST_F(TextTest, StylesChangeTheInk) {
    const auto ink_of = [&](const LOGFONT& font) {
        canvas.clear();
        select(font);
        text_out(dc, 10, 10, "Illinois");
        return canvas.ink();
    };
    const LOGFONT plain = described("Arial", -20);
    LOGFONT bold = plain, underlined = plain, struck = plain, italic = plain;
    bold.lfWeight = 700;
    italic.lfItalic = 1;
    underlined.lfUnderline = 1;
    struck.lfStrikeOut = 1;
    const double ink = ink_of(plain);
    EXPECT_GT(ink_of(bold), ink * 1.3);
    EXPECT_EQ(metric().tmWeight, 700);
    const double line = text_extent(dc, "Illinois").cx * 0.9;
    EXPECT_GT(ink_of(underlined), ink + line * 0.8);
    EXPECT_EQ(metric().tmUnderlined, 1);
    EXPECT_GT(ink_of(struck), ink + line * 0.4);
    EXPECT_NEAR(ink_of(italic), ink, ink * 0.2);
    EXPECT_EQ(metric().tmItalic, 1);
}

// Where the ink lies, at every factor: the letter's box in the font times the size.
TEST_F(TextTest, GlyphsStandWhereTheFontSays) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        Canvas scaled(200, 100, scale);
        SelectObject(scaled.dc, CreateFontIndirectA(described("Arial", -40)));
        SetBkMode(scaled.dc, TRANSPARENT);
        text_out(scaled.dc, 20, 10, "HH");
        double left = 1e9, right = 0, top = 1e9, bottom = 0;
        for (std::int32_t y = 0; y < scaled.surface.height; ++y) {
            for (std::int32_t x = 0; x < scaled.surface.width; ++x) {
                if ((scaled.at(x, y) & 0xFF) > 128) continue;
                left = std::min<double>(left, x), right = std::max<double>(right, x + 1);
                top = std::min<double>(top, y), bottom = std::max<double>(bottom, y + 1);
            }
        }
        // H: 168 to 1311 of 2048 units, 1409 high, 1479 wide; the ascent is 36 pixels.
        EXPECT_NEAR(left, (20 + 168 * 40 / 2048.0) * scale, 1.0);
        EXPECT_NEAR(right, (20 + (1479 + 1311) * 40 / 2048.0) * scale, 1.0);
        EXPECT_NEAR(bottom, 46 * scale, 1.0);
        EXPECT_NEAR(bottom - top, 1409 * 40 / 2048.0 * scale, 1.5);
    }
}

TEST_F(TextTest, Alignment) {
    const std::int32_t width = text_extent(dc, "Word").cx;
    const TEXTMETRIC m = metric();
    const auto box = [&](std::uint32_t align) {
        canvas.clear();
        SetTextAlign(dc, align);
        text_out(dc, 100, 50, "Word");
        return inked();
    };
    const RECT left = box(TA_LEFT);
    const auto shifted = [&](std::int32_t dx, std::int32_t dy) {
        return RECT{left.left + dx, left.top + dy, left.right + dx, left.bottom + dy};
    };
    EXPECT_EQ(box(TA_RIGHT), shifted(-width, 0));
    EXPECT_EQ(box(TA_CENTER), shifted(-(width / 2), 0));
    EXPECT_EQ(box(TA_BASELINE), shifted(0, -m.tmAscent));
    EXPECT_EQ(box(TA_BOTTOM), shifted(0, -m.tmHeight));
    MoveToEx(dc, 100, 50);
    EXPECT_EQ(box(TA_UPDATECP), left);
    POINT at;
    GetCurrentPositionEx(dc, at);
    EXPECT_EQ(at, (POINT{100 + width, 50}));
}

TEST_F(TextTest, OpaqueTextFillsItsCell) {
    SetBkMode(dc, OPAQUE);
    SetBkColor(dc, red);
    SetTextColor(dc, red);
    text_out(dc, 10, 10, "Cell");
    const SIZE size = text_extent(dc, "Cell");
    EXPECT_EQ(inked(), (RECT{10, 10, 10 + size.cx, 10 + size.cy}));
    EXPECT_TRUE(canvas.opaque());
}

TEST_F(TextTest, PositionsRiseToTheWidth) {
    const std::string text = "aé€😀\xC3 z";
    std::vector<float> positions(text.size() + 1, -1);
    text_positions(dc, text, positions.data());
    EXPECT_EQ(positions.front(), 0);
    EXPECT_EQ(std::lround(positions.back()), text_extent(dc, text).cx);
    for (std::size_t i = 0; i < text.size(); ++i) EXPECT_LE(positions[i], positions[i + 1]);
    EXPECT_EQ(positions[1], positions[2]) << "both bytes of a character are at its left edge";
    EXPECT_LT(positions[2], positions[3]);
    for (std::size_t i = 1; i < text.size(); ++i) {
        std::size_t at = 0, begin = 0;
        while (at <= i && at < text.size()) begin = at, next_code_point(text, at);
        if (begin != i) continue;
        EXPECT_NEAR(positions[i], text_extent(dc, text.substr(0, i)).cx, 0.51);
    }
}

TEST_F(TextTest, SymbolFontsShowUnicodeGlyphs) {
    select(described("Symbol", -20));
    const SIZE alpha = text_extent(dc, "a\xC2\xA5");
    select(described("Times New Roman", -20));
    EXPECT_EQ(alpha, text_extent(dc, "α∞"));
}

TEST_F(TextTest, ControlCharactersTakeNoRoom) {
    EXPECT_EQ(text_extent(dc, "a\t\n\x01 b").cx, text_extent(dc, "a b").cx);
    text_out(dc, 0, 0, std::string_view("\0\x7F\xFF", 3));
}

struct DrawCase {
    const char* text;
    std::uint32_t format;
    RECT rect;
    std::int32_t lines;  // that it takes
};

TEST_F(TextTest, DrawTextMeasures) {
    const std::int32_t high = metric().tmHeight;
    const auto wide = [&](const char* text) { return text_extent(dc, text).cx; };
    const std::int32_t word = wide("word");
    for (const DrawCase& c : {
             DrawCase{"one", 0, {5, 5, 200, 100}, 1},
             DrawCase{"one\ntwo", 0, {5, 5, 200, 100}, 2},
             DrawCase{"one\r\ntwo\r\n\r\nfour", 0, {5, 5, 200, 100}, 4},
             DrawCase{"one\ntwo", DT_SINGLELINE, {5, 5, 200, 100}, 1},
             DrawCase{"", 0, {5, 5, 200, 100}, 0},
             DrawCase{"\n\n", 0, {5, 5, 200, 100}, 2},
             DrawCase{"word word word", DT_WORDBREAK, {0, 0, 2 * word + 8, 9}, 2},
             DrawCase{"word word word", DT_WORDBREAK, {0, 0, word, 9}, 3},
             DrawCase{"word word word", DT_WORDBREAK, {0, 0, 3, 9}, 3},
             DrawCase{"word   word", DT_WORDBREAK, {0, 0, word + 1, 9}, 2},
             DrawCase{"word ", DT_WORDBREAK, {0, 0, word, 9}, 1},
             DrawCase{"  word", DT_WORDBREAK, {0, 0, word, 9}, 1},
         }) {
        RECT rect = c.rect;
        EXPECT_EQ(draw_text(dc, c.text, rect, c.format | DT_CALCRECT), c.lines * high) << c.text;
        EXPECT_EQ(rect.bottom, c.rect.top + c.lines * high) << c.text;
        EXPECT_EQ(rect.left, c.rect.left);
        EXPECT_EQ(canvas.ink(), 0);
        rect = c.rect;
        EXPECT_EQ(draw_text(dc, c.text, rect, c.format), c.lines * high) << c.text;
        EXPECT_EQ(rect, c.rect);
        canvas.clear();
    }
    struct Width {
        const char* text;
        std::uint32_t format;
        std::int32_t width;
    };
    for (const Width& c :
         {Width{"&File", 0, wide("File")}, Width{"&File", DT_NOPREFIX, wide("&File")},
          Width{"A && B", 0, wide("A & B")}, Width{"end&", 0, wide("end")},
          Width{"a\tb", DT_EXPANDTABS, 48 + wide("b")},
          Width{"a\tb\tc", DT_EXPANDTABS, 96 + wide("c")},
          Width{"ab\nlonger", 0, wide("longer")}}) {
        RECT rect{10, 10, 10, 10};
        draw_text(dc, c.text, rect, c.format | DT_CALCRECT);
        EXPECT_EQ(rect.width(), c.width) << c.text;
    }
    RECT rect{0, 0, 100, 50};
    EXPECT_EQ(DrawTextA(dc, nullptr, 3, rect, 0), 0);
    EXPECT_EQ(DrawTextA(dc, "x", -2, rect, 0), 0);
    EXPECT_EQ(DrawTextW(dc, u"x", -1, rect, DT_SINGLELINE | DT_VCENTER), (50 + high) / 2);
    RECT odd{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    draw_text(dc, "word word", odd, DT_WORDBREAK | DT_CENTER);
    draw_text(dc, "word word", odd, DT_SINGLELINE | DT_VCENTER | DT_RIGHT | DT_NOCLIP);
}

TEST_F(TextTest, DrawTextPlacesAndClips) {
    const RECT rect{50, 40, 150, 100};
    const auto box = [&](const char* text, std::uint32_t format, RECT in) {
        canvas.clear();
        draw_text(dc, text, in, format);
        return inked();
    };
    const RECT left = box("word", DT_SINGLELINE, rect);
    const SIZE size = text_extent(dc, "word");
    EXPECT_EQ(box("word", DT_SINGLELINE | DT_RIGHT, rect).left, left.left + 100 - size.cx);
    EXPECT_EQ(box("word", DT_SINGLELINE | DT_CENTER, rect).left, left.left + (100 - size.cx) / 2);
    EXPECT_EQ(box("word", DT_SINGLELINE | DT_BOTTOM, rect).top, left.top + 60 - size.cy);
    EXPECT_EQ(box("word", DT_SINGLELINE | DT_VCENTER, rect).top, left.top + (60 - size.cy) / 2);
    EXPECT_EQ(box("word", DT_VCENTER, rect), left) << "only one line is centred";
    const RECT narrow{50, 40, 60, 46};
    const RECT clipped = box("wwwwww", DT_SINGLELINE, narrow);
    EXPECT_LE(clipped.right, 60);
    EXPECT_LE(clipped.bottom, 46);
    EXPECT_GT(box("wwwwww", DT_SINGLELINE | DT_NOCLIP, narrow).right, 80);
    // The line under a mnemonic is there, and isn't when it is hidden.
    const RECT marked = box("n&x", DT_SINGLELINE, rect), plain = box("nx", DT_SINGLELINE, rect);
    EXPECT_GT(marked.bottom, plain.bottom);
    EXPECT_EQ(box("n&x", DT_SINGLELINE | DT_HIDEPREFIX, rect), plain);
}

TEST_F(TextTest, AnEllipsisShortensWhatIsTooLong) {
    const auto ink = [&](const char* text, std::int32_t width) {
        canvas.clear();
        RECT rect{10, 10, 10 + width, 40};
        draw_text(dc, text, rect, DT_SINGLELINE | DT_END_ELLIPSIS);
        return canvas.pixels;
    };
    const std::int32_t all = text_extent(dc, "Shortened text").cx;
    EXPECT_EQ(ink("Shortened text", all), ink("Shortened text", all + 50));
    const std::int32_t some = text_extent(dc, "Shortened...").cx;
    EXPECT_EQ(ink("Shortened text", some), ink("Shortened...", some + 50));
    ink("Shortened text", 3);
    ink("Shortened text", -30);
}

// A broken font file is no font; the face that stands in for it draws.
TEST_F(TextTest, BrokenFontFilesAreRefused) {
    pid_t child = fork();
    if (child == 0) {
        const std::string folder = testing::TempDir() + "tarn_broken_fonts";
        static_cast<void>(std::system(("mkdir -p " + folder + "/fonts").c_str()));
        std::ofstream(folder + "/fonts/LiberationSerif-Regular.ttf") << "not a font";
        std::ofstream(folder + "/fonts/LiberationSerif-Bold.ttf") << "";
        setenv("TARN_RESOURCES", folder.c_str(), 1);
        execl("/proc/self/exe", "gdi_test", "--gtest_filter=BrokenFonts.*",
              "--gtest_also_run_disabled_tests", "--gtest_brief=1", nullptr);
        _exit(99);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(BrokenFonts, DISABLED_InAFolderOfItsOwn) {
    Canvas canvas(100, 40);
    for (const std::int32_t weight : {400, 700}) {
        LOGFONT font = described("Georgia", -20);
        font.lfWeight = weight;
        SelectObject(canvas.dc, CreateFontIndirectA(font));
        TEXTMETRIC metric;
        ASSERT_TRUE(GetTextMetricsA(canvas.dc, metric));
        EXPECT_GT(metric.tmHeight, 10);
        EXPECT_GT(text_extent(canvas.dc, "text").cx, 10);
        EXPECT_TRUE(text_out(canvas.dc, 0, 0, "text"));
    }
}

}  // namespace
}  // namespace tarn::platform
