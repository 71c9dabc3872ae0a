// Which font file stands for a font that a program names.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi/font_engine.h"
#include "platform/gdi/gdi.h"

namespace tarn::platform {

enum class FontEncoding : std::uint8_t { unicode, symbol, wingdings };

struct FaceChoice {
    Face* face = nullptr;  // null: no font at all
    bool embolden = false, slant = false;
    FontEncoding encoding = FontEncoding::unicode;
};
// Never fails while there is a font: an unknown name gets a face of its kind.
FaceChoice choose_face(const LOGFONT& description);
// A face that has the code point, as like to `like` as there is; null without one.
Face* fallback_face(const Face* like, char32_t code);
// What a symbol font's byte shows, as Unicode; 0 when it shows nothing known.
char32_t symbol_code(FontEncoding encoding, unsigned char byte);

// The name as it is known, empty when no font has it. Without regard to case.
std::string known_family(std::string_view name);
std::vector<std::string> all_families();

}  // namespace tarn::platform
