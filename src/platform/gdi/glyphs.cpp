#include "platform/gdi/glyphs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "platform/base/text.h"

namespace tarn::platform {

namespace {

constexpr std::size_t most_glyph_bytes = std::size_t{24} << 20;

// What two descriptions must have in common to share an instance.
struct FontKey {
    std::int32_t height = 0, width = 0, weight = 0;
    bool italic = false;
    std::uint8_t pitch = 0;
    std::array<char, 32> face{};
    bool operator==(const FontKey&) const = default;
};

struct FontCache {
    std::vector<std::pair<FontKey, std::unique_ptr<FontInstance>>> instances;
    std::size_t glyph_bytes = 0;
};

FontCache& font_cache() {
    static auto* cache = new FontCache;
    return *cache;
}

FontKey key_of(const LOGFONT& description) {
    FontKey key;
    key.height = description.lfHeight;
    key.width = description.lfWidth;
    key.weight = description.lfWeight;
    key.italic = description.lfItalic != 0;
    key.pitch = description.lfPitchAndFamily;
    std::memcpy(key.face.data(), description.lfFaceName, strnlen(description.lfFaceName, 31));
    return key;
}

std::int32_t rounded(float value) {
    return static_cast<std::int32_t>(std::lround(value));
}

// A height below 0 is the em's, above 0 that of the cell, 0 the default of 9 points.
void set_size(FontInstance& font, const LOGFONT& description) {
    constexpr float default_em = 12, largest = 4000;
    const Face* face = font.choice.face;
    const float ascent = face == nullptr ? 0.9F : float(face->ascent) / float(face->units);
    const float descent = face == nullptr ? 0.2F : float(face->descent) / float(face->units);
    const float height = std::clamp(static_cast<float>(description.lfHeight), -largest, largest);
    font.em = height < 0 ? -height : height > 0 ? height / (ascent + descent) : default_em;
    font.ascent = rounded(ascent * font.em);
    font.descent = height > 0 ? rounded(height) - font.ascent : rounded(descent * font.em);
    const float natural =
        font.em * (face == nullptr ? 0.5F : float(face->average_width) / float(face->units));
    if (description.lfWidth != 0) {
        const float width = std::fabs(static_cast<float>(description.lfWidth));
        font.stretch = std::clamp(width / natural, 0.05F, 20.0F);
    }
    TEXTMETRIC& metric = font.metric;
    metric.tmHeight = font.ascent + font.descent;
    metric.tmAscent = font.ascent;
    metric.tmDescent = font.descent;
    metric.tmInternalLeading = std::max(metric.tmHeight - rounded(font.em), 0);
    metric.tmAveCharWidth = std::max(rounded(natural * font.stretch), 1);
    metric.tmMaxCharWidth = metric.tmAveCharWidth;
    if (face == nullptr) return;
    const float unit = font.em / float(face->units);
    metric.tmExternalLeading = rounded(float(face->external_leading) * unit);
    metric.tmMaxCharWidth =
        std::max(rounded(float(face->widest) * unit * font.stretch), metric.tmAveCharWidth);
}

std::unique_ptr<FontInstance> make_instance(const LOGFONT& description) {
    auto font = std::make_unique<FontInstance>();
    font->choice = choose_face(description);
    set_size(*font, description);
    const Face* face = font->choice.face;
    TEXTMETRIC& metric = font->metric;
    metric.tmWeight = face != nullptr && (face->bold || font->choice.embolden) ? 700 : 400;
    metric.tmItalic = description.lfItalic != 0 ? 1 : 0;
    const bool proportional = face != nullptr && !face->fixed_pitch;
    constexpr std::uint8_t vector_font = 2, outline_font = 4;
    metric.tmPitchAndFamily =
        static_cast<std::uint8_t>((proportional ? 1 : 0) | vector_font | outline_font |
                                  (description.lfPitchAndFamily & 0xF0));
    metric.tmFirstChar = 0x20;
    metric.tmCharSet = description.lfCharSet;
    return font;
}

// Characters that take no room and show nothing.
bool invisible(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0xAD ||
           (code >= 0x200B && code <= 0x200F) || (code >= 0x202A && code <= 0x202E) ||
           code == 0xFEFF;
}

// A symbol font is addressed by bytes: by those of the code page, or by their private twins.
char32_t shown_code(FontEncoding encoding, char32_t code) {
    if (encoding == FontEncoding::unicode) return code;
    if (code >= 0xF000 && code < 0xF100) return symbol_code(encoding, code & 0xFF);
    std::string utf8;
    append_utf8(utf8, code);
    const std::string page = page_from_utf8(utf8);
    if (page == "?" && code != '?') return code;
    const char32_t symbol = symbol_code(encoding, static_cast<unsigned char>(page[0]));
    return symbol != 0 ? symbol : code;
}

}  // namespace

FontInstance& instance_of(Font& font) {
    if (font.instance != nullptr) return *font.instance;
    const FontKey key = key_of(font.description);
    auto& instances = font_cache().instances;
    const auto found = std::find_if(instances.begin(), instances.end(),
                                    [&](const auto& entry) { return entry.first == key; });
    if (found != instances.end()) {
        font.instance = found->second.get();
    } else {
        instances.emplace_back(key, make_instance(font.description));
        font.instance = instances.back().second.get();
    }
    return *font.instance;
}

TEXTMETRIC metric_of(Font& font) {
    TEXTMETRIC metric = instance_of(font).metric;
    metric.tmUnderlined = font.description.lfUnderline != 0 ? 1 : 0;
    metric.tmStruckOut = font.description.lfStrikeOut != 0 ? 1 : 0;
    return metric;
}

void trim_glyphs() {
    FontCache& cache = font_cache();
    if (cache.glyph_bytes < most_glyph_bytes) return;
    for (auto& [key, font] : cache.instances) font->sets.clear();
    cache.glyph_bytes = 0;
}

const CodeGlyph& FontInstance::look_up(char32_t code_point) {
    CodeGlyph& entry = code_point < GlyphSet::direct ? latin[code_point] : others[code_point];
    if (entry.advance >= 0) return entry;
    entry.advance = 0;
    const char32_t code = shown_code(choice.encoding, code_point);
    if (invisible(code)) return entry;
    if (choice.face == nullptr) {  // no fonts: at least the measures are of the right order
        entry.advance = em * stretch * 0.5F;
        return entry;
    }
    entry.face = choice.face;
    entry.glyph = glyph_index(*choice.face, code);
    if (entry.glyph == 0) {
        if (Face* other = fallback_face(choice.face, code)) {
            entry.face = other;
            entry.glyph = glyph_index(*other, code);
        }
    }
    const float unit = em / static_cast<float>(entry.face->units);
    entry.advance = static_cast<float>(glyph_advance(*entry.face, entry.glyph)) * unit * stretch;
    if (choice.embolden && entry.advance > 0) entry.advance += em / 24;
    return entry;
}

GlyphSet& FontInstance::at_scale(double scale) {
    for (const auto& set : sets) {
        if (set->scale == scale) return *set;
    }
    sets.push_back(std::make_unique<GlyphSet>());
    sets.back()->scale = scale;
    sets.back()->latin.resize(std::size_t{GlyphSet::direct} * 4);
    font_cache().glyph_bytes += sets.back()->latin.size() * sizeof(CachedGlyph);
    return *sets.back();
}

const CachedGlyph& FontInstance::other_glyph(GlyphSet& set, const CodeGlyph& code,
                                             std::uint32_t quarter) {
    // A glyph's number counts within its face, so the face is part of the key.
    const std::uint64_t key = (reinterpret_cast<std::uintptr_t>(code.face) >> 4 << 20) ^
                              (std::uint64_t{code.glyph} << 2 | quarter);
    CachedGlyph& cached = set.others[key];
    if (!cached.drawn) draw(set, code, quarter, cached);
    return cached;
}

void FontInstance::draw(GlyphSet& set, const CodeGlyph& code, std::uint32_t quarter,
                        CachedGlyph& cached) {
    cached.drawn = true;
    if (code.face == nullptr) return;
    const auto scale = static_cast<float>(set.scale);
    const GlyphRequest request{code.face,
                               code.glyph,
                               em * stretch * scale,
                               em * scale,
                               static_cast<float>(quarter) / 4,
                               choice.embolden,
                               choice.slant};
    GlyphImage image;
    if (!render_glyph(request, image)) return;
    cached.left = static_cast<std::int16_t>(image.left);
    cached.top = static_cast<std::int16_t>(image.top);
    cached.width = static_cast<std::uint16_t>(image.width);
    cached.height = static_cast<std::uint16_t>(image.height);
    cached.offset = static_cast<std::uint32_t>(set.bytes.size());
    set.bytes.insert(set.bytes.end(), image.coverage.begin(), image.coverage.end());
    font_cache().glyph_bytes += image.coverage.size() + sizeof cached;
}

float text_width(FontInstance& font, std::string_view utf8) {
    float width = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto byte = static_cast<unsigned char>(utf8[at]);
        const char32_t code = byte < 0x80 ? (++at, byte) : next_code_point(utf8, at);
        width += font.code(code).advance;
    }
    return width;
}

}  // namespace tarn::platform
