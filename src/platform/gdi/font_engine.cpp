#include "platform/gdi/font_engine.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <ft2build.h>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

namespace tarn::platform {

namespace {

struct FreeType {
    FT_Library engine = nullptr;
    decltype(&FT_Init_FreeType) init = nullptr;
    decltype(&FT_New_Memory_Face) new_memory_face = nullptr;
    decltype(&FT_Done_Face) done_face = nullptr;
    decltype(&FT_Set_Char_Size) set_char_size = nullptr;
    decltype(&FT_Get_Char_Index) get_char_index = nullptr;
    decltype(&FT_Get_Advance) get_advance = nullptr;
    decltype(&FT_Load_Glyph) load_glyph = nullptr;
    decltype(&FT_Render_Glyph) render_glyph = nullptr;
    decltype(&FT_Get_Sfnt_Table) get_sfnt_table = nullptr;
    decltype(&FT_Outline_Translate) outline_translate = nullptr;
    decltype(&FT_Outline_Transform) outline_transform = nullptr;
    decltype(&FT_Outline_Embolden) outline_embolden = nullptr;
};

struct OpenFace {
    std::string path;
    std::int32_t index;
    std::unique_ptr<Face> face;  // null: tried, and no good
};

struct Engine {
    bool tried = false;
    FreeType freetype;
    std::vector<OpenFace> faces;
};

Engine& engine() {
    static auto* state = new Engine;
    return *state;
}

template <typename Function>
bool find(void* module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(module, name));
    return function != nullptr;
}

bool load(FreeType& ft) {
    void* module = dlopen("libfreetype.so.6", RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) return false;
    return find(module, "FT_Init_FreeType", ft.init) &&
           find(module, "FT_New_Memory_Face", ft.new_memory_face) &&
           find(module, "FT_Done_Face", ft.done_face) &&
           find(module, "FT_Set_Char_Size", ft.set_char_size) &&
           find(module, "FT_Get_Char_Index", ft.get_char_index) &&
           find(module, "FT_Get_Advance", ft.get_advance) &&
           find(module, "FT_Load_Glyph", ft.load_glyph) &&
           find(module, "FT_Render_Glyph", ft.render_glyph) &&
           find(module, "FT_Get_Sfnt_Table", ft.get_sfnt_table) &&
           find(module, "FT_Outline_Translate", ft.outline_translate) &&
           find(module, "FT_Outline_Transform", ft.outline_transform) &&
           find(module, "FT_Outline_Embolden", ft.outline_embolden) && ft.init(&ft.engine) == 0;
}

// Null when the library is missing: said once, since every window then lacks its texts.
FreeType* freetype() {
    Engine& state = engine();
    if (!state.tried) {
        state.tried = true;
        if (!load(state.freetype)) {
            state.freetype.engine = nullptr;
            std::fputs("tarnlibc: libfreetype.so.6 can't be loaded, texts aren't drawn\n", stderr);
        }
    }
    return state.freetype.engine == nullptr ? nullptr : &state.freetype;
}

// A mapped file stays mapped as long as its face: for good.
struct Mapping {
    const unsigned char* bytes = nullptr;
    std::size_t length = 0;
};

Mapping map_file(const char* path) {
    Mapping mapping;
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return mapping;
    struct stat facts {};
    constexpr off_t largest = off_t{1} << 30;
    if (fstat(file, &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_size > 0 &&
        facts.st_size <= largest) {
        const auto length = static_cast<std::size_t>(facts.st_size);
        void* bytes = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, file, 0);
        if (bytes != MAP_FAILED) mapping = {static_cast<const unsigned char*>(bytes), length};
    }
    close(file);
    return mapping;
}

FT_Face ft_face(const Face& face) {
    return static_cast<FT_Face>(face.handle);
}

std::int32_t advance_of(const FreeType& ft, FT_Face face, std::uint32_t glyph) {
    FT_Fixed advance = 0;
    if (ft.get_advance(face, glyph, FT_LOAD_NO_SCALE, &advance) != 0) return 0;
    return static_cast<std::int32_t>(std::clamp<FT_Fixed>(advance, 0, 1 << 20));
}

// The tables of a font from outside may hold anything: what is absurd is replaced.
void read_metrics(const FreeType& ft, FT_Face from, Face& face) {
    face.units = from->units_per_EM;
    face.ascent = from->ascender;
    face.descent = -from->descender;
    std::int32_t leading = from->height - (from->ascender - from->descender);
    face.strike_top = face.units * 3 / 10;
    const auto* os2 = static_cast<const TT_OS2*>(ft.get_sfnt_table(from, FT_SFNT_OS2));
    if (os2 != nullptr && os2->version != 0xFFFF) {
        if (os2->usWinAscent + os2->usWinDescent > 0) {
            leading -= os2->usWinAscent + os2->usWinDescent - (face.ascent + face.descent);
            face.ascent = os2->usWinAscent;
            face.descent = os2->usWinDescent;
        }
        if (os2->yStrikeoutPosition > 0) face.strike_top = os2->yStrikeoutPosition;
        if (os2->usWeightClass >= 100) face.weight = std::min<int>(os2->usWeightClass, 900);
    }
    const std::int32_t most = 4 * face.units;
    if (face.ascent < 0 || face.ascent > most) face.ascent = face.units * 9 / 10;
    if (face.descent < 0 || face.descent > most) face.descent = face.units / 5;
    if (face.ascent + face.descent <= 0) face.ascent = face.units;
    face.external_leading = std::clamp(leading, 0, face.units);
    face.underline_thickness = std::clamp<std::int32_t>(from->underline_thickness, 1, face.units);
    face.underline_top = from->underline_position + face.underline_thickness / 2;
    face.widest = std::clamp<std::int32_t>(from->max_advance_width, 0, most);
    const std::uint32_t x = ft.get_char_index(from, 'x');
    face.average_width = x != 0 ? advance_of(ft, from, x) : 0;
    if (face.average_width <= 0) face.average_width = face.units / 2;
    face.bold = (from->style_flags & FT_STYLE_FLAG_BOLD) != 0;
    face.italic = (from->style_flags & FT_STYLE_FLAG_ITALIC) != 0;
    face.fixed_pitch = FT_IS_FIXED_WIDTH(from);
    face.symbolic = from->charmap != nullptr && from->charmap->encoding == FT_ENCODING_MS_SYMBOL;
}

std::unique_ptr<Face> load_face(const char* path, std::int32_t index) {
    const FreeType* ft = freetype();
    if (ft == nullptr) return nullptr;
    const Mapping file = map_file(path);
    if (file.bytes == nullptr) return nullptr;
    FT_Face opened = nullptr;
    if (ft->new_memory_face(ft->engine, file.bytes, static_cast<FT_Long>(file.length), index,
                            &opened) == 0) {
        if (FT_IS_SCALABLE(opened) && opened->units_per_EM > 0) {
            auto face = std::make_unique<Face>();
            face->handle = opened;
            read_metrics(*ft, opened, *face);
            return face;
        }
        ft->done_face(opened);
    }
    munmap(const_cast<unsigned char*>(file.bytes), file.length);
    return nullptr;
}

bool set_size(const FreeType& ft, Face& face, float width, float height) {
    constexpr float largest = 2000;  // pixels of the em: beyond that nobody reads
    const auto w = static_cast<std::int32_t>(std::lround(std::clamp(width, 1.0F, largest) * 64));
    const auto h = static_cast<std::int32_t>(std::lround(std::clamp(height, 1.0F, largest) * 64));
    if (face.set_width == w && face.set_height == h) return true;
    if (ft.set_char_size(ft_face(face), w, h, 72, 72) != 0) return false;
    face.set_width = w;
    face.set_height = h;
    return true;
}

void copy_bitmap(const FT_GlyphSlotRec& slot, GlyphImage& image) {
    const FT_Bitmap& bitmap = slot.bitmap;
    image.left = slot.bitmap_left;
    image.top = -slot.bitmap_top;
    image.width = static_cast<std::int32_t>(bitmap.width);
    image.height = static_cast<std::int32_t>(bitmap.rows);
    image.coverage.resize(std::size_t(bitmap.width) * bitmap.rows);
    for (std::int32_t y = 0; y < image.height; ++y) {
        const unsigned char* row = bitmap.buffer + std::ptrdiff_t{y} * bitmap.pitch;
        std::copy_n(row, image.width, image.coverage.begin() + std::ptrdiff_t{y} * image.width);
    }
}

}  // namespace

Face* open_face(const char* path, std::int32_t index) {
    for (const OpenFace& open : engine().faces) {
        if (open.index == index && open.path == path) return open.face.get();
    }
    engine().faces.push_back({path, index, load_face(path, index)});
    return engine().faces.back().face.get();
}

// Fonts with symbols of their own keep them in a page of private code points.
std::uint32_t glyph_index(const Face& face, char32_t code) {
    const FreeType* ft = freetype();
    if (ft == nullptr) return 0;
    if (face.symbolic && code < 0x100) code += 0xF000;
    return ft->get_char_index(ft_face(face), code);
}

std::int32_t glyph_advance(const Face& face, std::uint32_t glyph) {
    const FreeType* ft = freetype();
    return ft == nullptr ? 0 : advance_of(*ft, ft_face(face), glyph);
}

bool render_glyph(const GlyphRequest& request, GlyphImage& image) {
    const FreeType* ft = freetype();
    if (ft == nullptr || !set_size(*ft, *request.face, request.width, request.height)) return false;
    FT_FaceRec_* face = ft_face(*request.face);
    // Hinted across lines only: strokes get sharp feet and tops, and widths stay the font's own.
    constexpr FT_Int32 flags = FT_LOAD_NO_BITMAP | FT_LOAD_TARGET_LIGHT | FT_LOAD_FORCE_AUTOHINT;
    if (ft->load_glyph(face, request.glyph, flags) != 0) return false;
    if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) return false;
    FT_Outline& outline = face->glyph->outline;
    if (request.embolden) {
        ft->outline_embolden(&outline, std::lround(request.height * 64 / 24));
    }
    if (request.slant) {
        const FT_Matrix slanted{0x10000, 0x3800, 0, 0x10000};
        ft->outline_transform(&outline, &slanted);
    }
    ft->outline_translate(&outline, std::lround(request.shift * 64), 0);
    if (ft->render_glyph(face->glyph, FT_RENDER_MODE_NORMAL) != 0) return false;
    copy_bitmap(*face->glyph, image);
    return true;
}

}  // namespace tarn::platform
