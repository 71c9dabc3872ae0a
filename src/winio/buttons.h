// The blocks of buttons.
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
    std::uint8_t flags;  // 1 default, 4 pressed, 8 has the focus, 0x10 keep the icon's colours
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

}  // namespace tarn::winio
