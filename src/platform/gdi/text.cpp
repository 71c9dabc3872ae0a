#include "platform/base/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <emmintrin.h>

#include "platform/gdi/raster.h"
#include "platform/gdi/text_run.h"

namespace tarn::platform {

namespace {

using Contrast = std::array<std::uint8_t, 256>;

// Coverage bent for the text's brightness. Mixing is done in the bytes of the screen, which makes
// light strokes on dark look thinner than dark ones on light: they get more, dark ones a little
// for the softness of unhinted stems.
const Contrast& contrast_for(COLORREF colour) {
    constexpr int steps = 8;
    static Contrast tables[steps];
    static bool made[steps];
    const std::uint32_t bright =
        ((colour & 0xFF) * 54 + (colour >> 8 & 0xFF) * 183 + (colour >> 16 & 0xFF) * 19) >> 8;
    const std::uint32_t step = bright * steps / 256;
    if (!made[step]) {
        made[step] = true;
        const float exponent = 0.82F - 0.16F * static_cast<float>(step) / (steps - 1);
        for (int i = 0; i < 256; ++i) {
            const float part = std::pow(static_cast<float>(i) / 255.0F, exponent);
            tables[step][i] = static_cast<std::uint8_t>(std::lround(part * 255.0F));
        }
    }
    return tables[step];
}

// What a text's colour adds for each coverage, and how many of 256 parts are left of what was
// there, for the four bytes of a pixel in lanes of 16 bits: the result is that of mix(), and what
// isn't covered stays as it is.
struct alignas(16) Blend {
    std::uint64_t ink, rest;
};
struct BlendTable {
    std::uint32_t pixel = 0;
    const Contrast* contrast = nullptr;
    std::array<Blend, 256> blends;
};

std::uint64_t in_lanes(std::uint32_t pixel) {
    std::uint64_t spread = 0;
    for (int i = 0; i < 4; ++i) spread |= std::uint64_t{pixel >> 8 * i & 0xFF} << 16 * i;
    return spread;
}

// Texts in a row mostly have one colour.
const BlendTable& blends_of(std::uint32_t pixel, const Contrast& contrast) {
    static BlendTable table;
    if (table.pixel == pixel && table.contrast == &contrast) return table;
    table.pixel = pixel;
    table.contrast = &contrast;
    for (std::size_t i = 0; i < table.blends.size(); ++i) {
        constexpr std::uint64_t each = 0x0001000100010001, colours = 0x0000FFFFFFFFFFFF;
        const std::uint64_t part = contrast[i] + (contrast[i] >> 7);
        Blend& blend = table.blends[i];
        blend = {in_lanes(pixel) * part + each * 0x80, each * (256 - part)};
        if (i == 0) continue;
        blend.ink = (blend.ink & colours) | std::uint64_t{0xFF00} << 48;
        blend.rest &= colours;
    }
    return table;
}

struct PlacedGlyph {
    const CachedGlyph* glyph;
    std::int32_t x, y;  // of its top left, real pixels
};

// Two pixels, in lanes of 16 bits.
__m128i blended(__m128i under, const Blend& first, const Blend& second) {
    const __m128i a = _mm_load_si128(reinterpret_cast<const __m128i*>(&first));
    const __m128i b = _mm_load_si128(reinterpret_cast<const __m128i*>(&second));
    const __m128i ink = _mm_unpacklo_epi64(a, b), rest = _mm_unpackhi_epi64(a, b);
    return _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(under, rest), ink), 8);
}

void blend_four(std::uint32_t* row, const std::uint8_t* coverage, const BlendTable& table) {
    const __m128i under = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row));
    const __m128i zero = _mm_setzero_si128();
    const auto& blends = table.blends;
    const __m128i low =
        blended(_mm_unpacklo_epi8(under, zero), blends[coverage[0]], blends[coverage[1]]);
    const __m128i high =
        blended(_mm_unpackhi_epi8(under, zero), blends[coverage[2]], blends[coverage[3]]);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(row), _mm_packus_epi16(low, high));
}

void blend_one(std::uint32_t* pixel, std::uint8_t coverage, const BlendTable& table) {
    const __m128i under = _mm_cvtsi32_si128(static_cast<int>(*pixel));
    const Blend& blend = table.blends[coverage];
    const __m128i mixed = blended(_mm_unpacklo_epi8(under, _mm_setzero_si128()), blend, blend);
    *pixel = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(mixed, mixed)));
}

void blend_glyph(const Surface& surface, const RECT& clip, const PlacedGlyph& placed,
                 const std::uint8_t* bytes, const BlendTable& table) {
    const CachedGlyph& glyph = *placed.glyph;
    const std::int32_t left = std::max(clip.left - placed.x, 0);
    const std::int32_t right = std::min(clip.right - placed.x, std::int32_t{glyph.width});
    const std::int32_t top = std::max(clip.top - placed.y, 0);
    const std::int32_t bottom = std::min(clip.bottom - placed.y, std::int32_t{glyph.height});
    for (std::int32_t y = top; y < bottom; ++y) {
        const std::uint8_t* coverage = bytes + std::ptrdiff_t{y} * glyph.width;
        std::uint32_t* row = pixel_row(surface, placed.y + y) + placed.x;
        // Edges and gaps of strokes alternate too fast for a jump to be foreseen.
        std::int32_t x = left;
        for (; x + 4 <= right; x += 4) blend_four(row + x, coverage + x, table);
        for (; x < right; ++x) blend_one(row + x, coverage[x], table);
    }
}

// Text is drawn in pieces of so many characters, placed first and then blended clip by clip.
constexpr std::size_t piece_length = 128;

void draw_piece(const DeviceContext& dc, const GlyphSet& set, std::span<const PlacedGlyph> glyphs,
                const RECT& area, std::uint32_t pixel, const Contrast& contrast) {
    const BlendTable& table = blends_of(pixel, contrast);
    for_each_visible(dc, area, [&](const RECT& clip) {
        for (const PlacedGlyph& placed : glyphs) {
            if (placed.x >= clip.right || placed.x + placed.glyph->width <= clip.left) continue;
            blend_glyph(dc.surface, clip, placed, set.bytes.data() + placed.glyph->offset, table);
        }
    });
}

// Between these columns a line's text can matter.
RECT text_bounds(const DeviceContext& dc, const RECT* bounds) {
    return bounds == nullptr ? dc.real_bounds : intersection(*bounds, dc.real_bounds);
}

// Logical x with a fraction, in real pixels.
double real_x(const DeviceContext& dc, float x) {
    return (double(x) + dc.place(0, 0)) * dc.surface.scale;
}

std::int32_t rounded(double value) {
    constexpr double most = 1 << 30;
    return static_cast<std::int32_t>(std::clamp(std::floor(value + 0.5), -most, most));
}

void text_rule(DeviceContext& dc, float x, std::int32_t top, std::int32_t thickness, float width,
               const RECT* bounds) {
    const RECT line{rounded(real_x(dc, x)), top, rounded(real_x(dc, x + width)), top + thickness};
    const RECT part = bounds == nullptr ? line : intersection(line, *bounds);
    if (part.empty()) return;
    paint_block(dc, part, {pixel_of(dc.state.text_colour), rop_pattern, nullptr});
}

// Thickness of a rule in real pixels.
std::int32_t rule_thickness(const DeviceContext& dc, const FontInstance& font) {
    const Face* face = font.choice.face;
    const double part =
        face == nullptr ? 0.07 : double(face->underline_thickness) / double(face->units);
    return std::max(1, rounded(part * font.em * dc.surface.scale));
}

std::int32_t baseline(const DeviceContext& dc, const FontInstance& font, std::int32_t y) {
    return dc.y(y + font.ascent);
}

void strike_out(DeviceContext& dc, float x, std::int32_t y, float width, const RECT* bounds) {
    const FontInstance& font = instance_of(*dc.state.font);
    const Face* face = font.choice.face;
    const double part = face == nullptr ? 0.3 : double(face->strike_top) / double(face->units);
    const std::int32_t top = baseline(dc, font, y) - rounded(part * font.em * dc.surface.scale);
    text_rule(dc, x, top, rule_thickness(dc, font), width, bounds);
}

// The left end and the top of a text drawn at (x, y) as the context aligns it.
struct Anchor {
    float x;
    std::int32_t y;
};

Anchor anchor_of(const DeviceContext& dc, const FontInstance& font, std::int32_t x, std::int32_t y,
                 float width) {
    const std::uint32_t across = dc.state.align & TA_CENTER;
    const std::uint32_t down = dc.state.align & TA_BASELINE;
    Anchor anchor{static_cast<float>(x), y};
    const float whole = std::floor(width + 0.5F);
    if (across == TA_CENTER) anchor.x -= std::floor(whole / 2);
    if (across == TA_RIGHT) anchor.x -= whole;
    if (down == TA_BASELINE) anchor.y -= font.ascent;
    if (down == TA_BOTTOM) anchor.y -= font.ascent + font.descent;
    return anchor;
}

bool text_out_in(DeviceContext& dc, std::int32_t x, std::int32_t y, std::string_view utf8) {
    const bool moves = (dc.state.align & TA_UPDATECP) != 0;
    if (moves) x = dc.state.at.x, y = dc.state.at.y;
    x = tame(x), y = tame(y);
    FontInstance& font = instance_of(*dc.state.font);
    const float width = text_width(font, utf8);
    const Anchor anchor = anchor_of(dc, font, x, y, width);
    if (dc.state.back_mode == OPAQUE) fill_text_background(dc, anchor.x, anchor.y, width);
    draw_line(dc, anchor.x, anchor.y, utf8);
    if (moves) {
        const std::int32_t step = whole_width(width);
        const std::uint32_t across = dc.state.align & TA_CENTER;
        if (across == TA_LEFT) dc.state.at.x = x + step;
        if (across == TA_RIGHT) dc.state.at.x = x - step;
    }
    return true;
}

// Texts by pointer and length, none of them trusted.
template <typename Char>
bool text_of(const Char* text, std::int32_t length, std::basic_string_view<Char>& view) {
    if (length < 0 || (text == nullptr && length > 0)) return false;
    view = {text, static_cast<std::size_t>(length)};
    return true;
}

bool extent_in(HDC handle, std::string_view utf8, SIZE& size) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    FontInstance& font = instance_of(*dc->state.font);
    size = {whole_width(text_width(font, utf8)), font.ascent + font.descent};
    return true;
}

}  // namespace

float draw_line(DeviceContext& dc, float x, std::int32_t y, std::string_view utf8,
                const RECT* bounds) {
    trim_glyphs();
    FontInstance& font = instance_of(*dc.state.font);
    const RECT area = text_bounds(dc, bounds);
    const std::uint32_t pixel = pixel_of(dc.state.text_colour);
    const Contrast& contrast = contrast_for(dc.state.text_colour);
    const double scale = dc.surface.scale;
    const std::int32_t base = baseline(dc, font, y);
    const double begin = real_x(dc, x);
    // Glyphs may reach out of their cells by about an em.
    const double reach = 2 * font.em * font.stretch * scale + 2;
    const bool seen = !area.empty() && base + reach > area.top && base - reach < area.bottom;
    GlyphSet* set = seen ? &font.at_scale(scale) : nullptr;
    std::array<PlacedGlyph, piece_length> piece;
    std::size_t count = 0;
    float width = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto byte = static_cast<unsigned char>(utf8[at]);
        const char32_t code = byte < 0x80 ? (++at, byte) : next_code_point(utf8, at);
        const CodeGlyph& shown = font.code(code);
        const double pen = begin + width * scale;
        width += shown.advance;
        if (!seen || shown.face == nullptr || pen + reach < area.left) continue;
        if (pen - reach > area.right) {
            width += text_width(font, utf8.substr(at));
            break;
        }
        const auto quarters = static_cast<std::int64_t>(std::floor(pen * 4 + 0.5));
        const CachedGlyph& glyph =
            font.glyph(*set, code, shown, static_cast<std::uint32_t>(quarters & 3));
        if (glyph.width == 0) continue;
        piece[count++] = {&glyph, static_cast<std::int32_t>(quarters >> 2) + glyph.left,
                          base + glyph.top};
        if (count == piece_length) {
            draw_piece(dc, *set, piece, area, pixel, contrast);
            count = 0;
        }
    }
    if (count > 0) draw_piece(dc, *set, {piece.data(), count}, area, pixel, contrast);
    if (dc.state.font->description.lfUnderline != 0) underline(dc, x, y, width, bounds);
    if (dc.state.font->description.lfStrikeOut != 0) strike_out(dc, x, y, width, bounds);
    return width;
}

void fill_text_background(DeviceContext& dc, float x, std::int32_t y, float width,
                          const RECT* bounds) {
    const FontInstance& font = instance_of(*dc.state.font);
    const float right = std::floor(x + width + 0.5F);
    const RECT cell{rounded(real_x(dc, x)), dc.y(y), rounded(real_x(dc, right)),
                    dc.y(y + font.ascent + font.descent)};
    const RECT part = bounds == nullptr ? cell : intersection(cell, *bounds);
    if (!part.empty()) {
        paint_block(dc, part, {pixel_of(dc.state.back_colour), rop_pattern, nullptr});
    }
}

// One pixel below the baseline, and within the cell.
void underline(DeviceContext& dc, float x, std::int32_t y, float width, const RECT* bounds) {
    const FontInstance& font = instance_of(*dc.state.font);
    const std::int32_t thickness = rule_thickness(dc, font);
    const std::int32_t bottom = dc.y(y + font.ascent + font.descent);
    const std::int32_t gap = dc.thickness(1);
    const std::int32_t top = std::min(baseline(dc, font, y) + gap, bottom - thickness);
    text_rule(dc, x, top, thickness, width, bounds);
}

bool GetTextMetricsA(HDC handle, TEXTMETRIC& metric) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    metric = metric_of(*dc->state.font);
    return true;
}

bool GetTextExtentPoint32A(HDC dc, const char* text, std::int32_t length, SIZE& size) {
    std::string_view view;
    return text_of(text, length, view) && extent_in(dc, utf8_from_page(view), size);
}

bool GetTextExtentPoint32W(HDC dc, const char16_t* text, std::int32_t length, SIZE& size) {
    std::u16string_view view;
    return text_of(text, length, view) && extent_in(dc, utf8_from_wide(view), size);
}

bool GetTextExtentPointA(HDC dc, const char* text, std::int32_t length, SIZE& size) {
    return GetTextExtentPoint32A(dc, text, length, size);
}

bool GetTextExtentPointW(HDC dc, const char16_t* text, std::int32_t length, SIZE& size) {
    return GetTextExtentPoint32W(dc, text, length, size);
}

bool TextOutA(HDC dc, std::int32_t x, std::int32_t y, const char* text, std::int32_t length) {
    std::string_view view;
    return text_of(text, length, view) && text_out(dc, x, y, utf8_from_page(view));
}

bool TextOutW(HDC dc, std::int32_t x, std::int32_t y, const char16_t* text, std::int32_t length) {
    std::u16string_view view;
    return text_of(text, length, view) && text_out(dc, x, y, utf8_from_wide(view));
}

SIZE text_extent(HDC dc, std::string_view utf8) {
    SIZE size;
    extent_in(dc, utf8, size);
    return size;
}

bool text_out(HDC handle, std::int32_t x, std::int32_t y, std::string_view utf8) {
    DeviceContext* dc = find_context(handle);
    return dc != nullptr && text_out_in(*dc, x, y, utf8);
}

void text_positions(HDC handle, std::string_view utf8, float* positions) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr) {
        std::fill_n(positions, utf8.size() + 1, 0.0F);
        return;
    }
    FontInstance& font = instance_of(*dc->state.font);
    float x = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t begin = at;
        const char32_t code = next_code_point(utf8, at);
        std::fill(positions + begin, positions + at, x);
        x += font.code(code).advance;
    }
    positions[utf8.size()] = x;
}

std::int32_t EnumFontFamiliesA(HDC, const char* family, FONTENUMPROC proc, LPARAM parameter) {
    if (proc == nullptr) return 0;
    std::vector<std::string> names;
    if (family == nullptr) {
        names = all_families();
    } else if (std::string name = known_family(family); !name.empty()) {
        names.push_back(std::move(name));
    }
    constexpr DWORD truetype = 4;
    std::int32_t answer = 0;
    for (const std::string& name : names) {
        Font font;
        std::strncpy(font.description.lfFaceName, name.c_str(),
                     sizeof font.description.lfFaceName - 1);
        const TEXTMETRIC metric = metric_of(font);
        font.description.lfHeight = metric.tmHeight;
        font.description.lfWidth = metric.tmAveCharWidth;
        font.description.lfWeight = metric.tmWeight;
        // Here the low bits are 1 for fixed and 2 for variable pitch.
        font.description.lfPitchAndFamily =
            static_cast<std::uint8_t>((metric.tmPitchAndFamily & 1) != 0 ? 2 : 1);
        answer = proc(font.description, metric, truetype, parameter);
        if (answer == 0) break;
    }
    return answer;
}

}  // namespace tarn::platform
