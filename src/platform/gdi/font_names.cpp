#include "platform/gdi/font_names.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <strings.h>

#include "platform/base/resources.h"
#include "platform/gdi/fontconfig.h"

namespace tarn::platform {

namespace {

enum Family : std::uint8_t { sans, mono, serif };

// Fixed arrays instead of pointers: such a table needs nothing done at loading.
struct Alias {
    char name[24];
    Family family;
    FontEncoding encoding = FontEncoding::unicode;
};
constexpr Alias aliases[] = {
    {"Liberation Sans", sans},
    {"Liberation Mono", mono},
    {"Liberation Serif", serif},
    {"Arial", sans},
    {"Calibri", sans},
    {"Consolas", mono},
    {"Courier", mono},
    {"Courier New", mono},
    {"Fixedsys", mono},
    {"Georgia", serif},
    {"Helvetica", sans},
    {"Lucida Console", mono},
    {"Microsoft Sans Serif", sans},
    {"MS Sans Serif", sans},
    {"MS Serif", serif},
    {"MS Shell Dlg", sans},
    {"MS Shell Dlg 2", sans},
    {"Segoe UI", sans},
    {"Symbol", serif, FontEncoding::symbol},
    {"System", sans},
    {"Tahoma", sans},
    {"Terminal", mono},
    {"Times", serif},
    {"Times New Roman", serif},
    {"Verdana", sans},
    {"Wingdings", sans, FontEncoding::wingdings},
};

constexpr char family_files[3][8] = {"Sans", "Mono", "Serif"};
constexpr char style_files[4][12] = {"Regular", "Bold", "Italic", "BoldItalic"};

bool same_name(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

const Alias* find_alias(std::string_view name) {
    const auto* found = std::find_if(std::begin(aliases), std::end(aliases),
                                     [&](const Alias& a) { return same_name(a.name, name); });
    return found == std::end(aliases) ? nullptr : found;
}

Face* own_face(Family family, bool bold, bool italic) {
    const std::string file = std::string("fonts/Liberation") + family_files[family] + '-' +
                             style_files[(bold ? 1 : 0) + (italic ? 2 : 0)] + ".ttf";
    return open_face(resource_path(file.c_str()).c_str(), 0);
}

// Of our own family; of whatever the desktop has when that isn't where it should be.
Face* own_or_any_face(Family family, bool bold, bool italic) {
    if (Face* face = own_face(family, bold, italic)) return face;
    constexpr char generic[3][12] = {"sans-serif", "monospace", "serif"};
    FontFile file;
    if (!fontconfig_match({generic[family], bold, italic, 0, false}, file)) return nullptr;
    return open_face(file.path.c_str(), file.index);
}

// A font nobody knows: fixed pitch and serifs as the description wants them.
Family family_like(std::uint8_t pitch_and_family) {
    constexpr std::uint8_t roman = 0x10, modern = 0x30;
    if ((pitch_and_family & 3) == 1 || (pitch_and_family & 0xF0) == modern) return mono;
    return (pitch_and_family & 0xF0) == roman ? serif : sans;
}

std::string_view face_name(const LOGFONT& description) {
    return {description.lfFaceName, strnlen(description.lfFaceName, sizeof description.lfFaceName)};
}

// The Greek letters and signs of the platform's symbol font, from 0x20 to 0xFE.
constexpr char16_t symbols[] = {
    0x0020, 0x0021, 0x2200, 0x0023, 0x2203, 0x0025, 0x0026, 0x220B, 0x0028, 0x0029, 0x2217, 0x002B,
    0x002C, 0x2212, 0x002E, 0x002F, 0x0030, 0x0031, 0x0032, 0x0033, 0x0034, 0x0035, 0x0036, 0x0037,
    0x0038, 0x0039, 0x003A, 0x003B, 0x003C, 0x003D, 0x003E, 0x003F, 0x2245, 0x0391, 0x0392, 0x03A7,
    0x0394, 0x0395, 0x03A6, 0x0393, 0x0397, 0x0399, 0x03D1, 0x039A, 0x039B, 0x039C, 0x039D, 0x039F,
    0x03A0, 0x0398, 0x03A1, 0x03A3, 0x03A4, 0x03A5, 0x03C2, 0x03A9, 0x039E, 0x03A8, 0x0396, 0x005B,
    0x2234, 0x005D, 0x22A5, 0x005F, 0x203E, 0x03B1, 0x03B2, 0x03C7, 0x03B4, 0x03B5, 0x03C6, 0x03B3,
    0x03B7, 0x03B9, 0x03D5, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BF, 0x03C0, 0x03B8, 0x03C1, 0x03C3,
    0x03C4, 0x03C5, 0x03D6, 0x03C9, 0x03BE, 0x03C8, 0x03B6, 0x007B, 0x007C, 0x007D, 0x223C, 0,
    0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,
    0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,
    0,      0,      0,      0,      0,      0,      0,      0,      0x20AC, 0x03D2, 0x2032, 0x2264,
    0x2044, 0x221E, 0x0192, 0x2663, 0x2666, 0x2665, 0x2660, 0x2194, 0x2190, 0x2191, 0x2192, 0x2193,
    0x00B0, 0x00B1, 0x2033, 0x2265, 0x00D7, 0x221D, 0x2202, 0x2022, 0x00F7, 0x2260, 0x2261, 0x2248,
    0x2026, 0x23D0, 0x23AF, 0x21B5, 0x2135, 0x2111, 0x211C, 0x2118, 0x2297, 0x2295, 0x2205, 0x2229,
    0x222A, 0x2283, 0x2287, 0x2284, 0x2282, 0x2286, 0x2208, 0x2209, 0x2220, 0x2207, 0x00AE, 0x00A9,
    0x2122, 0x220F, 0x221A, 0x22C5, 0x00AC, 0x2227, 0x2228, 0x21D4, 0x21D0, 0x21D1, 0x21D2, 0x21D3,
    0x25CA, 0x2329, 0x00AE, 0x00A9, 0x2122, 0x2211, 0x239B, 0x239C, 0x239D, 0x23A1, 0x23A2, 0x23A3,
    0x23A7, 0x23A8, 0x23A9, 0x23AA, 0,      0x232A, 0x222B, 0x2320, 0x23AE, 0x2321, 0x239E, 0x239F,
    0x23A0, 0x23A4, 0x23A5, 0x23A6, 0x23AB, 0x23AC, 0x23AD};

// The signs of the platform's picture font that Unicode fonts commonly have.
struct Ding {
    unsigned char byte;
    char16_t code;
};
constexpr Ding dings[] = {
    {0x20, 0x0020}, {0x22, 0x2702}, {0x23, 0x2701}, {0x28, 0x260E}, {0x29, 0x2706}, {0x2A, 0x2709},
    {0x36, 0x231B}, {0x37, 0x2328}, {0x3E, 0x2707}, {0x3F, 0x270D}, {0x41, 0x270C}, {0x45, 0x261C},
    {0x46, 0x261E}, {0x47, 0x261D}, {0x48, 0x261F}, {0x4A, 0x263A}, {0x4C, 0x2639}, {0x4E, 0x2620},
    {0x4F, 0x2690}, {0x51, 0x2708}, {0x52, 0x263C}, {0x54, 0x2744}, {0x56, 0x271E}, {0x58, 0x2720},
    {0x59, 0x2721}, {0x5A, 0x262A}, {0x5B, 0x262F}, {0x5C, 0x0950}, {0x5D, 0x2638}, {0x5E, 0x2648},
    {0x5F, 0x2649}, {0x60, 0x264A}, {0x61, 0x264B}, {0x62, 0x264C}, {0x63, 0x264D}, {0x64, 0x264E},
    {0x65, 0x264F}, {0x66, 0x2650}, {0x67, 0x2651}, {0x68, 0x2652}, {0x69, 0x2653}, {0x6A, 0x0026},
    {0x6B, 0x0026}, {0x6C, 0x25CF}, {0x6D, 0x274D}, {0x6E, 0x25A0}, {0x6F, 0x25A1}, {0x71, 0x2751},
    {0x72, 0x2752}, {0x73, 0x2B27}, {0x74, 0x29EB}, {0x75, 0x25C6}, {0x76, 0x2756}, {0x77, 0x2B25},
    {0x78, 0x2327}, {0x7A, 0x2318}, {0x7B, 0x2740}, {0x7C, 0x273F}, {0x7D, 0x275D}, {0x7E, 0x275E},
    {0x80, 0x24EA}, {0x81, 0x2460}, {0x82, 0x2461}, {0x83, 0x2462}, {0x84, 0x2463}, {0x85, 0x2464},
    {0x86, 0x2465}, {0x87, 0x2466}, {0x88, 0x2467}, {0x89, 0x2468}, {0x8A, 0x2469}, {0x8B, 0x24FF},
    {0x8C, 0x2776}, {0x8D, 0x2777}, {0x8E, 0x2778}, {0x8F, 0x2779}, {0x90, 0x277A}, {0x91, 0x277B},
    {0x92, 0x277C}, {0x93, 0x277D}, {0x94, 0x277E}, {0x95, 0x277F}, {0x9E, 0x00B7}, {0x9F, 0x2022},
    {0xA0, 0x25AA}, {0xA1, 0x25CB}, {0xA4, 0x25C9}, {0xA5, 0x25CE}, {0xA7, 0x25AA}, {0xA8, 0x25FB},
    {0xAA, 0x2726}, {0xAB, 0x2605}, {0xAC, 0x2736}, {0xAD, 0x2734}, {0xAE, 0x2739}, {0xAF, 0x2735},
    {0xB1, 0x2316}, {0xB2, 0x27E1}, {0xB3, 0x2311}, {0xB5, 0x272A}, {0xB6, 0x2730}, {0xD5, 0x232B},
    {0xD6, 0x2326}, {0xD8, 0x27A2}, {0xDC, 0x27B2}, {0xDF, 0x2190}, {0xE0, 0x2192}, {0xE1, 0x2191},
    {0xE2, 0x2193}, {0xE3, 0x2196}, {0xE4, 0x2197}, {0xE5, 0x2199}, {0xE6, 0x2198}, {0xE8, 0x2794},
    {0xEF, 0x21E6}, {0xF0, 0x21E8}, {0xF1, 0x21E7}, {0xF2, 0x21E9}, {0xF3, 0x2B04}, {0xF4, 0x21F3},
    {0xF5, 0x2B00}, {0xF6, 0x2B01}, {0xF7, 0x2B03}, {0xF8, 0x2B02}, {0xF9, 0x25AD}, {0xFA, 0x25AB},
    {0xFB, 0x2717}, {0xFC, 0x2713}, {0xFD, 0x2612}, {0xFE, 0x2611}};

}  // namespace

FaceChoice choose_face(const LOGFONT& description) {
    constexpr std::int32_t bold_from = 600;
    const bool bold = description.lfWeight >= bold_from, italic = description.lfItalic != 0;
    const std::string_view name = face_name(description);
    FaceChoice choice;
    const Alias* alias = find_alias(name);
    FontFile file;
    if (alias != nullptr) {
        choice.face = own_or_any_face(alias->family, bold, italic);
        choice.encoding = alias->encoding;
    } else if (!name.empty() && fontconfig_match({name, bold, italic, 0, true}, file)) {
        choice.face = open_face(file.path.c_str(), file.index);
    }
    if (choice.face == nullptr) {
        choice.face = own_or_any_face(family_like(description.lfPitchAndFamily), bold, italic);
    }
    if (choice.face != nullptr) {
        choice.embolden = bold && !choice.face->bold && choice.face->weight < bold_from;
        choice.slant = italic && !choice.face->italic;
    }
    return choice;
}

Face* fallback_face(const Face* like, char32_t code) {
    const bool bold = like != nullptr && like->bold, italic = like != nullptr && like->italic;
    const bool fixed = like != nullptr && like->fixed_pitch;
    Face* own = own_face(fixed ? mono : sans, bold, italic);
    if (own != nullptr && own != like && glyph_index(*own, code) != 0) return own;
    FontFile file;
    if (!fontconfig_match({fixed ? "monospace" : "sans-serif", bold, italic, code, false}, file)) {
        return nullptr;
    }
    Face* face = open_face(file.path.c_str(), file.index);
    return face != nullptr && glyph_index(*face, code) != 0 ? face : nullptr;
}

char32_t symbol_code(FontEncoding encoding, unsigned char byte) {
    if (encoding == FontEncoding::symbol) {
        const std::size_t at = static_cast<std::size_t>(byte) - 0x20;
        return byte >= 0x20 && at < std::size(symbols) ? symbols[at] : 0;
    }
    const auto* found = std::find_if(std::begin(dings), std::end(dings),
                                     [byte](const Ding& d) { return d.byte == byte; });
    return found == std::end(dings) ? 0 : found->code;
}

std::string known_family(std::string_view name) {
    if (const Alias* alias = find_alias(name)) return alias->name;
    FontFile file;
    if (name.empty() || !fontconfig_match({name, false, false, 0, true}, file)) return {};
    return file.family;
}

std::vector<std::string> all_families() {
    std::vector<std::string> names = fontconfig_families();
    for (const Alias& alias : aliases) names.emplace_back(alias.name);
    const auto before = [](const std::string& a, const std::string& b) {
        return strcasecmp(a.c_str(), b.c_str()) < 0;
    };
    std::sort(names.begin(), names.end(), before);
    names.erase(std::unique(names.begin(), names.end(),
                            [](const auto& a, const auto& b) { return same_name(a, b); }),
                names.end());
    return names;
}

}  // namespace tarn::platform
