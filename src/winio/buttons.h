// The blocks of buttons, and what the library draws of them itself.
#pragma once

#include <cstdint>

#include "winio/builder.h"

namespace tarn::winio {

struct button_face {  // %bt, %bb, %tt, %tb
    char* icon;
    char *bitmap_up, *bitmap_down, *bitmap_on, *bitmap_grey;
    COLORREF *face_colour, *text_colour;
    std::int32_t value;
    std::int32_t lines;
    std::uint8_t accelerator;
    std::uint8_t flags;  // 1 default, 0x10 keep the icon's colours
};
struct Xbutton {  // %bn
    char* caption;
    char* icon;
    char* note;
    HFONT font;
    double font_size;
    double vfill;
    COLORREF colour, text_colour, floodfill_colour;
    std::int32_t return_value;
    std::uint32_t flags;  // 1 default, 2 split, 4 coloured
};
Xbutton* new_button_block();
std::int32_t take_button_value();  // %id's, or the next number

struct button_cell {
    char* label;
    char* help;
    std::int32_t* state;  // 1 up, 2 down, 3 grey, 4 and 5 up; others show nothing
    call_back callback;
    call_back grey_test;
    platform::HBITMAP picture;
    std::int32_t left, top, right, bottom;  // pixels in the control
    std::int32_t grey_now;
    bool hovered, pressed;
};
struct constructed_button {  // %ib
    std::int32_t count;
    std::int32_t current;  // cell under the pointer, -1 none
    std::uint32_t flags;   // 1 flat, 2 const_width, 4 const_height, 8 coloured, 0x20 mouse_hover
    button_cell* cells;
};
struct multibutton {  // %mb
    std::int32_t *enable, *styles, *images, *order;
    HMENU menu;
    std::uint32_t style, ilc_flags;
    std::int32_t standard_set, count, button_width, button_height;
    std::uint32_t position;
    COLORREF mask;
    std::uint8_t flags;  // 1 standard images, 2 arrows, 8 adjustable, 0x20 strings, 0x40 list
    char *strip, *texts, *help;
};

// ---- Pictures: built-in ones by name, and the program's files.
// A name is a resource's, or the byte 0xFF and a system icon's number of 16 bits.
HICON find_icon(const char* name);
std::int32_t GetIconSize(const char* name);  // pixels; 0: none
platform::HBITMAP load_resource(const char* name);
// The bitmap's size, or that of the sign that stands for one that isn't found.
platform::SIZE size_bitmap(const char* name);
void draw_missing_picture(platform::HDC dc, const RECT& place);
// In the middle of `place`; 0 is drawn as a missing picture.
void draw_bitmap(platform::HDC dc, const RECT& place, platform::HBITMAP bitmap);
// What a button shows of its bitmap: what isn't background; that as one grey; that without colours.
enum class picture_look : std::uint8_t { plain, grey, colourless, count };
// Light grey (0xC0C0C0) is background; with `corner` the colour of the first pixel is too.
void draw_button_picture(platform::HDC dc, const RECT& place, platform::HBITMAP bitmap,
                         picture_look look, bool corner);

// A button with its picture, label and edges as a bitmap (include/tarn/winio.h). The sizes are what
// it shall have at least, and what it has.
platform::HBITMAP make_button_image(platform::HBITMAP shown, std::int32_t state, std::int32_t style,
                                    bool coloured, const char* text, std::int32_t& width,
                                    std::int32_t& height, std::int32_t min_lines,
                                    bool measure_only);

// ---- Drawing
struct button_look {
    COLORREF behind;  // at the corners
    COLORREF face;    // no_colour: the theme's
    COLORREF text;    // no_colour: the theme's
    bool enabled, pressed, hovered, focused, is_default, flat;
};
// The face of a button without its label; the result is the colour to write with. `flat`: nothing
// but the label shows until the pointer comes.
COLORREF draw_button(platform::HDC dc, const RECT& place, const button_look& look);

}  // namespace tarn::winio
