// The types in which the rooms above speak to the platform: handles, points, messages and the
// records of fonts, all in logical pixels at 96 dpi. Names and meanings are the platform's own.
//
// A handle is a small positive 32-bit number (index and generation), never an address: a Fortran
// program keeps it in a default INTEGER, and one that outlived its object is recognised.
// Each kind is a type of its own, so that a device context can't be passed for a window; a handle
// is tested like a pointer, made from an integer with braces, and 0 is none.
#pragma once

#include <cstdint>

namespace tarn::platform {

enum HWND : std::int32_t {};
enum HDC : std::int32_t {};
enum HMENU : std::int32_t {};
enum HICON : std::int32_t {};
enum HGDIOBJ : std::int32_t {};  // pens, brushes, fonts, bitmaps, regions
enum HACCEL : std::int32_t {};
using HCURSOR = HICON;
using HPEN = HGDIOBJ;
using HBRUSH = HGDIOBJ;
using HFONT = HGDIOBJ;
using HBITMAP = HGDIOBJ;
using HRGN = HGDIOBJ;

using COLORREF = std::uint32_t;  // 0x00BBGGRR
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using UINT = std::uint32_t;
using DWORD = std::uint32_t;
using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);
using TIMERPROC = void (*)(HWND, UINT, std::uintptr_t, DWORD);
using DLGPROC = std::intptr_t (*)(HWND, UINT, WPARAM, LPARAM);

struct POINT {
    std::int32_t x = 0, y = 0;
    bool operator==(const POINT&) const = default;
};
struct SIZE {
    std::int32_t cx = 0, cy = 0;
    bool operator==(const SIZE&) const = default;
};
// Right and bottom are one beyond.
struct RECT {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
    bool operator==(const RECT&) const = default;
    std::int32_t width() const { return right - left; }
    std::int32_t height() const { return bottom - top; }
    bool empty() const { return right <= left || bottom <= top; }
    bool contains(POINT p) const {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }
};

struct MSG {
    HWND hwnd{};
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    DWORD time = 0;  // GetTickCount at its making
    POINT pt;        // pointer on the screen
};

// The description of a font, 60 bytes: fonts are cached by comparing all of it.
struct LOGFONT {
    std::int32_t lfHeight = 0;  // below 0: of the em; above 0: of the cell
    std::int32_t lfWidth = 0;   // 0: the font's own
    std::int32_t lfEscapement = 0, lfOrientation = 0;
    std::int32_t lfWeight = 0;
    std::uint8_t lfItalic = 0, lfUnderline = 0, lfStrikeOut = 0, lfCharSet = 0;
    std::uint8_t lfOutPrecision = 0, lfClipPrecision = 0, lfQuality = 0, lfPitchAndFamily = 0;
    char lfFaceName[32] = {};
};
static_assert(sizeof(LOGFONT) == 60);

struct TEXTMETRIC {
    std::int32_t tmHeight = 0, tmAscent = 0, tmDescent = 0;
    std::int32_t tmInternalLeading = 0, tmExternalLeading = 0;
    std::int32_t tmAveCharWidth = 0, tmMaxCharWidth = 0, tmWeight = 0;
    std::int32_t tmOverhang = 0, tmDigitizedAspectX = 96, tmDigitizedAspectY = 96;
    std::uint8_t tmFirstChar = 0, tmLastChar = 255, tmDefaultChar = '?', tmBreakChar = ' ';
    std::uint8_t tmItalic = 0, tmUnderlined = 0, tmStruckOut = 0;
    std::uint8_t tmPitchAndFamily = 0;  // bit 0 set: proportional
    std::uint8_t tmCharSet = 0;
};

constexpr std::uint16_t LOWORD(std::uintptr_t v) {
    return static_cast<std::uint16_t>(v);
}
constexpr std::uint16_t HIWORD(std::uintptr_t v) {
    return static_cast<std::uint16_t>(v >> 16);
}
// The signed halves of an LPARAM that holds a point.
constexpr std::int32_t GET_X_LPARAM(LPARAM v) {
    return static_cast<std::int16_t>(v);
}
constexpr std::int32_t GET_Y_LPARAM(LPARAM v) {
    return static_cast<std::int16_t>(v >> 16);
}
constexpr LPARAM MAKELPARAM(std::int32_t low, std::int32_t high) {
    return static_cast<LPARAM>(static_cast<std::uint16_t>(low) |
                               static_cast<std::uint32_t>(static_cast<std::uint16_t>(high)) << 16);
}
constexpr WPARAM MAKEWPARAM(std::int32_t low, std::int32_t high) {
    return static_cast<WPARAM>(MAKELPARAM(low, high));
}
constexpr COLORREF RGB(unsigned r, unsigned g, unsigned b) {
    return r | g << 8 | b << 16;
}

}  // namespace tarn::platform
