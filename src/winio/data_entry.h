// The text array's record.
#pragma once

#include <cstdint>

#include "winio/builder.h"

namespace tarn::winio {

struct colour_pair {
    colour_pair* next;
    std::int32_t attribute;
    COLORREF text, background;
};
struct text_array {
    colour_pair* colours;
    char *text, *attributes;
    std::int32_t row_length, rows;
    std::int32_t cell_width, cell_height;
    std::uint8_t
        flags;  // 1 full_mouse_input, 2 full_char_input, 4 use_tabs, 8 painted, 0x10 no popup
};

}  // namespace tarn::winio
