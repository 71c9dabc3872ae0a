// The look, as numbers: one clean flat theme, light and dark, from which system colours and all
// drawing of controls take theirs.
#pragma once

#include "platform/base/types.h"

namespace tarn::platform {

struct Theme {
    bool dark;
    COLORREF window;  // behind data: fields, lists
    COLORREF face;    // behind everything else
    COLORREF text, text_muted, text_disabled, text_placeholder;
    COLORREF border, border_strong, border_hover;
    COLORREF accent, accent_hover, accent_pressed, accent_text;
    COLORREF button, button_hover, button_pressed, button_disabled;
    COLORREF selection, selection_text, selection_inactive;
    COLORREF menu, menu_hover, menu_border;
    COLORREF caption, caption_text, caption_inactive, caption_inactive_text;
    COLORREF scroll_track, scroll_thumb, scroll_thumb_hover;
    COLORREF focus_ring;
    COLORREF tooltip, tooltip_text;
    COLORREF danger, warning, success, information;
    float corner;        // of buttons and fields
    float small_corner;  // of check boxes and items
};
// `TARN_THEME` = `light` or `dark` chooses; otherwise the desktop.
const Theme& theme();
bool theme_is_chosen();            // by the user, for this program
extern bool (*desktop_is_dark)();  // null: there is no desktop yet
// Another one from now on: what was drawn must be drawn again.
void set_theme(bool dark);
// A colour that was one of the other theme's grounds or texts, as it is in this one; others stay.
COLORREF in_this_theme(COLORREF colour);
COLORREF GetSysColor(std::int32_t which);
HBRUSH GetSysColorBrush(std::int32_t which);

// A mixture, `part` of `b` in `a`, and the contrast (1 to 21) of two colours.
COLORREF blend(COLORREF a, COLORREF b, float part);
float contrast(COLORREF a, COLORREF b);
// `text` where it can be read on `background`, otherwise moved towards black or white until it can.
// What a control draws with when a program set only one of the two.
COLORREF readable(COLORREF text, COLORREF background);

}  // namespace tarn::platform
