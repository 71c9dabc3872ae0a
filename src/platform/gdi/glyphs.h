// A font at a size: what its characters measure, and their pictures once they were drawn.
#pragma once

#include <algorithm>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/gdi/font_names.h"
#include "platform/gdi/objects.h"

namespace tarn::platform {

// How a code point is shown: by which face's glyph, and how far the pen goes (logical pixels).
struct CodeGlyph {
    Face* face = nullptr;
    std::uint32_t glyph = 0;
    float advance = -1;  // below 0: not looked up yet
};

// Coverage of a glyph at one quarter of a pixel; `left` and `top` from the pen.
struct CachedGlyph {
    std::int16_t left = 0, top = 0;
    std::uint16_t width = 0, height = 0;
    std::uint32_t offset = 0;  // of its bytes in the set
    bool drawn = false;
};

// The glyphs of one font at one scale. Latin ones have their place, others are looked up.
struct GlyphSet {
    static constexpr char32_t direct = 0x180;
    double scale = 1;
    std::vector<CachedGlyph> latin;
    std::unordered_map<std::uint64_t, CachedGlyph> others;
    std::vector<std::uint8_t> bytes;
};

struct FontInstance {
    FaceChoice choice;
    float em = 12, stretch = 1;  // logical pixels of the em, and of its width to its height
    std::int32_t ascent = 0, descent = 0;
    TEXTMETRIC metric;
    CodeGlyph latin[GlyphSet::direct];
    std::unordered_map<char32_t, CodeGlyph> others;
    std::vector<std::unique_ptr<GlyphSet>> sets;

    const CodeGlyph& code(char32_t code_point) {
        if (code_point < GlyphSet::direct && latin[code_point].advance >= 0) {
            return latin[code_point];
        }
        return look_up(code_point);
    }
    GlyphSet& at_scale(double scale);
    const CachedGlyph& glyph(GlyphSet& set, char32_t code_point, const CodeGlyph& code,
                             std::uint32_t quarter) {
        if (code_point < GlyphSet::direct) {
            CachedGlyph& cached = set.latin[code_point * 4 + quarter];
            if (!cached.drawn) draw(set, code, quarter, cached);
            return cached;
        }
        return other_glyph(set, code, quarter);
    }

  private:
    const CodeGlyph& look_up(char32_t code_point);
    const CachedGlyph& other_glyph(GlyphSet& set, const CodeGlyph& code, std::uint32_t quarter);
    void draw(GlyphSet& set, const CodeGlyph& code, std::uint32_t quarter, CachedGlyph& cached);
};

// The instance that draws `font`, shared by all that are described alike.
FontInstance& instance_of(Font& font);
TEXTMETRIC metric_of(Font& font);
// Frees the pictures of all glyphs when they have become many. No glyph may be in use.
void trim_glyphs();

// The width of a text, not rounded.
float text_width(FontInstance& font, std::string_view utf8);
// Rounded, once for the whole text.
inline std::int32_t whole_width(float width) {
    constexpr float most = 1 << 24;
    return static_cast<std::int32_t>(std::min(width, most) + 0.5F);
}

}  // namespace tarn::platform
