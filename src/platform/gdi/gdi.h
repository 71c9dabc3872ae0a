// The raster: device contexts, pens, brushes, fonts, bitmaps, and what draws with them. All
// coordinates are logical pixels; the surface behind the context knows the factor.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/base/surface.h"
#include "platform/base/types.h"

namespace tarn::platform {

enum : std::int32_t {  // pens
    PS_SOLID = 0,
    PS_DASH = 1,
    PS_DOT = 2,
    PS_DASHDOT = 3,
    PS_DASHDOTDOT = 4,
    PS_NULL = 5,
    PS_INSIDEFRAME = 6,
    PS_GEOMETRIC = 0x10000,
};
enum : std::int32_t {  // stock objects
    WHITE_BRUSH = 0,
    LTGRAY_BRUSH = 1,
    GRAY_BRUSH = 2,
    DKGRAY_BRUSH = 3,
    BLACK_BRUSH = 4,
    NULL_BRUSH = 5,
    WHITE_PEN = 6,
    BLACK_PEN = 7,
    NULL_PEN = 8,
    OEM_FIXED_FONT = 10,
    ANSI_FIXED_FONT = 11,
    ANSI_VAR_FONT = 12,
    SYSTEM_FONT = 13,
    DEVICE_DEFAULT_FONT = 14,
    SYSTEM_FIXED_FONT = 16,
    DEFAULT_GUI_FONT = 17,
};
enum : std::int32_t {
    TRANSPARENT = 1,
    OPAQUE = 2,
    LOGPIXELSX = 88,
    LOGPIXELSY = 90,
    NUMCOLORS = 24,
    HORZRES = 8,
    VERTRES = 10,
    BITSPIXEL = 12,
    TA_LEFT = 0,
    TA_UPDATECP = 1,
    TA_RIGHT = 2,
    TA_CENTER = 6,
    TA_BOTTOM = 8,
    TA_BASELINE = 24,
};
enum : std::uint32_t {  // DrawText
    DT_TOP = 0,
    DT_LEFT = 0,
    DT_CENTER = 1,
    DT_RIGHT = 2,
    DT_VCENTER = 4,
    DT_BOTTOM = 8,
    DT_WORDBREAK = 0x10,
    DT_SINGLELINE = 0x20,
    DT_EXPANDTABS = 0x40,
    DT_NOCLIP = 0x100,
    DT_CALCRECT = 0x400,
    DT_NOPREFIX = 0x800,
    DT_END_ELLIPSIS = 0x8000,
    DT_HIDEPREFIX = 0x100000,
};
enum : std::uint32_t {  // raster codes
    SRCCOPY = 0x00CC0020,
    SRCPAINT = 0x00EE0086,
    SRCAND = 0x008800C6,
    SRCINVERT = 0x00660046,
    PATCOPY = 0x00F00021,
    DSTINVERT = 0x00550009,
    BLACKNESS = 0x00000042,
    WHITENESS = 0x00FF0062,
    R2_COPYPEN = 13,
    R2_XORPEN = 7,
    R2_NOT = 6,
};
inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFFu;
enum : std::int32_t { ERROR_REGION = 0, NULLREGION = 1, SIMPLEREGION = 2, COMPLEXREGION = 3 };

// ---- Device contexts ---------------------------------------------------------------------------
HDC CreateCompatibleDC(HDC like);  // a memory context with a 1 x 1 bitmap
bool DeleteDC(HDC dc);
std::int32_t SaveDC(HDC dc);
bool RestoreDC(HDC dc, std::int32_t level);
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);  // the one it replaces
HGDIOBJ GetStockObject(std::int32_t which);
bool DeleteObject(HGDIOBJ object);
std::int32_t GetDeviceCaps(HDC dc, std::int32_t which);
COLORREF GetNearestColor(HDC dc, COLORREF colour);
COLORREF SetTextColor(HDC dc, COLORREF colour);
COLORREF SetBkColor(HDC dc, COLORREF colour);
COLORREF GetTextColor(HDC dc);
COLORREF GetBkColor(HDC dc);
std::int32_t SetBkMode(HDC dc, std::int32_t mode);
std::uint32_t SetTextAlign(HDC dc, std::uint32_t align);
std::int32_t SetROP2(HDC dc, std::int32_t code);
bool SetWindowOrg(HDC dc, POINT origin);  // logical (x, y) is drawn at the context's top left

// ---- Objects -----------------------------------------------------------------------------------
HPEN CreatePen(std::int32_t style, std::int32_t width, COLORREF colour);
HPEN ExtCreatePen(std::uint32_t style, std::uint32_t width, COLORREF colour);  // a solid brush
HBRUSH CreateSolidBrush(COLORREF colour);
HBRUSH CreatePatternBrush(HBITMAP bitmap);
HFONT CreateFontIndirectA(const LOGFONT& description);
HBITMAP CreateCompatibleBitmap(HDC like, std::int32_t width, std::int32_t height);
// Rows from the top, 32 bits a pixel as on a surface, `stride` pixels from row to row.
HBITMAP CreateBitmapFromPixels(std::int32_t width, std::int32_t height, const std::uint32_t* pixels,
                               std::int32_t stride);
// A packed bitmap file image (what stands behind "BM" as in a file); 0 when it isn't a sound one.
HBITMAP CreateDIBitmap(const unsigned char* file, std::size_t length);
bool GetBitmapSize(HBITMAP bitmap, SIZE& size);
bool GetObjectFont(HFONT font, LOGFONT& description);
bool GetObjectBrush(HBRUSH brush, COLORREF& colour);
bool IsGdiObject(HGDIOBJ object);
using FONTENUMPROC = std::int32_t (*)(const LOGFONT&, const TEXTMETRIC&, DWORD type, LPARAM);
std::int32_t EnumFontFamiliesA(HDC dc, const char* family, FONTENUMPROC proc, LPARAM parameter);

// ---- Lines, shapes, blocks
// -----------------------------------------------------------------------
bool MoveToEx(HDC dc, std::int32_t x, std::int32_t y, POINT* old = nullptr);
bool LineTo(HDC dc, std::int32_t x, std::int32_t y);
bool GetCurrentPositionEx(HDC dc, POINT& at);
bool Rectangle(HDC dc, std::int32_t left, std::int32_t top, std::int32_t right,
               std::int32_t bottom);
bool RoundRect(HDC dc, std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom,
               std::int32_t width, std::int32_t height);
bool Ellipse(HDC dc, std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom);
bool Polygon(HDC dc, const POINT* points, std::int32_t count);
bool Polyline(HDC dc, const POINT* points, std::int32_t count);
bool FillRect(HDC dc, const RECT& rect, HBRUSH brush);
bool FrameRect(HDC dc, const RECT& rect, HBRUSH brush);
bool DrawFocusRect(HDC dc, const RECT& rect);
bool PatBlt(HDC dc, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
            std::uint32_t code);
bool BitBlt(HDC to, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, HDC from,
            std::int32_t from_x, std::int32_t from_y, std::uint32_t code);
bool StretchBlt(HDC to, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, HDC from,
                std::int32_t from_x, std::int32_t from_y, std::int32_t from_w, std::int32_t from_h,
                std::uint32_t code);
COLORREF GetPixel(HDC dc, std::int32_t x, std::int32_t y);
COLORREF SetPixel(HDC dc, std::int32_t x, std::int32_t y, COLORREF colour);
bool ExtFloodFill(HDC dc, std::int32_t x, std::int32_t y, COLORREF colour, std::uint32_t kind);
// Moves `scroll` (null: all) by (dx, dy) within `clip`; `uncovered` receives the bounds of what
// must be painted anew.
bool ScrollDC(HDC dc, std::int32_t dx, std::int32_t dy, const RECT* scroll, const RECT* clip,
              RECT* uncovered);

// ---- Clip
// ----------------------------------------------------------------------------------------
std::int32_t ExcludeClipRect(HDC dc, const RECT& rect);
// The same for many at once.
void exclude_clip_rects(HDC dc, std::span<const RECT> rects);
std::int32_t IntersectClipRect(HDC dc, const RECT& rect);
std::int32_t GetClipBox(HDC dc, RECT& box);
bool RectVisible(HDC dc, const RECT& rect);

// ---- Text
// ----------------------------------------------------------------------------------------
bool GetTextMetricsA(HDC dc, TEXTMETRIC& metric);
bool GetTextExtentPoint32A(HDC dc, const char* text, std::int32_t length, SIZE& size);
bool GetTextExtentPoint32W(HDC dc, const char16_t* text, std::int32_t length, SIZE& size);
bool GetTextExtentPointA(HDC dc, const char* text, std::int32_t length, SIZE& size);
bool GetTextExtentPointW(HDC dc, const char16_t* text, std::int32_t length, SIZE& size);
bool TextOutA(HDC dc, std::int32_t x, std::int32_t y, const char* text, std::int32_t length);
bool TextOutW(HDC dc, std::int32_t x, std::int32_t y, const char16_t* text, std::int32_t length);
// The height of the text; length -1 is a terminated text. With DT_CALCRECT only `rect` changes.
std::int32_t DrawTextA(HDC dc, const char* text, std::int32_t length, RECT& rect,
                       std::uint32_t format);
std::int32_t DrawTextW(HDC dc, const char16_t* text, std::int32_t length, RECT& rect,
                       std::uint32_t format);
// The same for UTF-8, which is what the platform's own rooms use.
SIZE text_extent(HDC dc, std::string_view utf8);
bool text_out(HDC dc, std::int32_t x, std::int32_t y, std::string_view utf8);
std::int32_t draw_text(HDC dc, std::string_view utf8, RECT& rect, std::uint32_t format);
// x of each boundary between characters of `utf8`, in logical pixels with fractions: entry i is
// the left edge of the character that begins at byte i (bytes within a character repeat it), and
// the last entry, at utf8.size(), is the width. For carets and selections.
void text_positions(HDC dc, std::string_view utf8, float* positions);

// ---- Icons and cursors
// --------------------------------------------------------------------------- A picture with alpha,
// 32 bits a pixel, not multiplied.
HICON CreateIconFromPixels(std::int32_t width, std::int32_t height, const std::uint32_t* pixels);
// From the image of an icon or cursor file: of its pictures the one that suits best; `hot` is a
// cursor's. Pictures that are packed can't be read. 0: none can.
HICON CreateIconFromFile(const unsigned char* bytes, std::size_t length, bool cursor, POINT& hot);
// How long such a file says that it is, where nothing else tells; its directory of pictures is
// taken to be there as a whole. 0: more than any has.
std::size_t icon_file_length(const unsigned char* bytes);
bool DestroyIcon(HICON icon);
bool GetIconSize(HICON icon, SIZE& size);
// Drawn at the surface's own resolution where the icon is one of the built-in drawings.
bool DrawIconEx(HDC dc, std::int32_t x, std::int32_t y, HICON icon, std::int32_t w, std::int32_t h,
                bool greyed = false);
enum : std::int32_t {  // built-in icons of the system
    IDI_APPLICATION = 0x7F00,
    IDI_HAND = 0x7F01,
    IDI_QUESTION = 0x7F02,
    IDI_EXCLAMATION = 0x7F03,
    IDI_ASTERISK = 0x7F04,
    IDI_WINLOGO = 0x7F05,
};
HICON LoadSystemIcon(std::int32_t which);
// A built-in picture by its name, without regard to case: "warnIcon", "errorIcon", "infoIcon",
// "questionIcon", "appIcon", "checkIcon"; 0 for any other name. Icons of the system aren't
// destroyed: DestroyIcon on one does nothing and returns true.
HICON LoadNamedIcon(const char* name);
// The icon's picture at any size, `width` x `height` real pixels with alpha, not multiplied.
bool GetIconPixels(HICON icon, std::int32_t width, std::int32_t height, std::uint32_t* pixels);

}  // namespace tarn::platform
