// Font files: FreeType, loaded when the first text is measured, and the faces that it opened.
#pragma once

#include <cstdint>
#include <vector>

namespace tarn::platform {

// One face of a font file. Numbers are in the font's own units, `units` to the em.
struct Face {
    void* handle = nullptr;  // FreeType's
    std::int32_t units = 1000;
    std::int32_t ascent = 0, descent = 0, external_leading = 0;
    std::int32_t average_width = 0, widest = 0, weight = 400;
    std::int32_t underline_top = 0, underline_thickness = 0, strike_top = 0;
    bool bold = false, italic = false, fixed_pitch = false, symbolic = false;
    // The size that the engine stands at, in 64ths of a pixel.
    std::int32_t set_width = 0, set_height = 0;
};

// The face of a file, opened at most once; null when there is no such sound file or no FreeType.
Face* open_face(const char* path, std::int32_t index);

// The glyph of a code point; 0 is none.
std::uint32_t glyph_index(const Face& face, char32_t code);
// Its advance in font units.
std::int32_t glyph_advance(const Face& face, std::uint32_t glyph);

struct GlyphRequest {
    Face* face;
    std::uint32_t glyph;
    float width, height;  // of the em, in real pixels
    float shift;          // to the right, part of a pixel
    bool embolden, slant;
};
// A glyph's coverage, a byte a pixel: its rows, and where they lie from the pen's point.
struct GlyphImage {
    std::int32_t left = 0, top = 0, width = 0, height = 0;
    std::vector<std::uint8_t> coverage;
};
bool render_glyph(const GlyphRequest& request, GlyphImage& image);

}  // namespace tarn::platform
