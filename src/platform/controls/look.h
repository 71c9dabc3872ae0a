// The drawing that controls share: faces, frames, rings and marks, from the theme's colours alone.
#pragma once

#include <string_view>

#include "platform/controls/control.h"
#include "platform/gdi/gdi.h"
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"

namespace tarn::platform {

// What a control is drawn in after its parent was asked (WM_CTLCOLOR...). A parent that set only
// one of the two colours gets the other one so that the text can be read.
struct Colours {
    COLORREF text = 0, back = 0;
    HBRUSH brush{};                           // 0: none was given
    bool hollow = false;                      // the parent wants its own picture to be seen behind
    bool own_text = false, own_back = false;  // chosen by the program
};
// `asker`: the window that the parent is told, for a part of a control.
Colours ask_colours(const Control& control, HDC dc, UINT message, COLORREF text, COLORREF back);
void fill_back(HDC dc, const RECT& rect, const Colours& colours);
// The text's colour in a disabled control.
COLORREF disabled_text(const Colours& colours);

enum class Direction : std::uint8_t { up, down, left, right };

// The outline of what can be used; the pointer over it brings out the theme's stronger one.
COLORREF edge_colour();

RectF to_f(const RECT& rect);
RectF inset(RectF rect, float by);

// The outline of a field: its edge tells hover and focus.
struct FieldState {
    bool enabled = true, hovered = false, focused = false;
};
void draw_field_outline(HDC dc, const RECT& rect, FieldState state, float radius);
// Paints what the parent shows around the control into the four corners of `rect`, which a rounded
// shape then leaves open.
void fill_behind_corners(const Control& control, HDC dc, const RECT& rect);
// A ring for the keyboard focus, just inside `rect`.
void draw_focus_ring(HDC dc, const RECT& rect, float radius);
void draw_chevron(HDC dc, PointF centre, float size, Direction direction, COLORREF colour);
void draw_check_mark(HDC dc, const RECT& box, COLORREF colour);

// A push button's face.
struct FaceState {
    bool enabled = true, hovered = false, pressed = false, is_default = false;
};
void draw_button_face(HDC dc, const RECT& rect, FaceState state);
COLORREF button_text_colour(FaceState state);

// Text on one line, centred down the rectangle, and cut with an ellipsis only when it is wider.
void draw_line(HDC dc, std::string_view utf8, RECT rect, std::uint32_t format);
// `text` with its mnemonic marks taken out.
std::string without_mnemonics(std::string_view text);

// The border (WS_BORDER, WS_EX_CLIENTEDGE) of a field or a list, drawn over what the window's frame
// drew: rounded, in the state's colour.
void draw_window_border(const Control& control, FieldState state);
// The same from within: what of the rounded corners lies in the client area, after it was painted.
void draw_inner_edge(const Control& control, const RECT& damaged, FieldState state);

}  // namespace tarn::platform
