// Buttons that the library draws itself: coloured ones, those with an icon, and labels of several
// lines.
#include <cstring>

#include "platform/controls/controls.h"
#include "platform/controls/look.h"
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/layout.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t icon_left = 8, icon_gap = 6;
constexpr std::int32_t split_width = 16;
constexpr std::uint32_t option_split = 2;

struct button_view {
    const char* label;
    HICON icon;
    bool keep_colours, split;
    button_look look;
};

button_view view_of(const window_control* control, HWND hwnd) {
    button_view view{};
    view.label = button_label(control);
    button_look& look = view.look;
    look.behind = control->background;
    look.face = look.text = no_colour;
    look.enabled = IsWindowEnabled(hwnd);
    LRESULT state = SendMessageA(hwnd, BM_GETSTATE, 0, 0);
    look.pressed = (state & BST_PUSHED) != 0;
    look.hovered = (state & BST_HOT) != 0;
    look.focused = (state & BST_FOCUS) != 0 && keyboard_focus_visible();
    look.is_default = is_default_button(control);
    if (control->type == control_type::option_button) {
        const auto* button = static_cast<const Xbutton*>(control->block);
        look.face = button->colour;
        look.text = button->text_colour;
        view.split = (button->flags & option_split) != 0;
        return view;
    }
    const auto* face = static_cast<const button_face*>(control->block);
    if (!face) return view;
    if (face->face_colour) look.face = *face->face_colour;
    if (face->text_colour) look.text = *face->text_colour;
    view.icon = find_icon(face->icon);
    view.keep_colours = (face->flags & 0x10) != 0;
    return view;
}

COLORREF shade(COLORREF colour, float part) {
    bool light = contrast(colour, RGB(0, 0, 0)) > contrast(colour, RGB(255, 255, 255));
    return blend(colour, light ? RGB(0, 0, 0) : RGB(255, 255, 255), part);
}

COLORREF strongest_on(COLORREF face) {
    constexpr COLORREF ink = RGB(0x1B, 0x1F, 0x24), paper = RGB(255, 255, 255);
    return contrast(ink, face) > contrast(paper, face) ? ink : paper;
}

COLORREF own_face(const button_look& look) {
    if (!look.enabled) return blend(look.face, look.behind, 0.55F);
    if (look.pressed) return shade(look.face, 0.18F);
    return look.hovered ? shade(look.face, 0.08F) : look.face;
}

// Of a program's two colours one may be missing: a face alone gets black or white, whichever stands
// out; a text alone gives way until it can be read.
COLORREF text_on(const button_look& look, COLORREF face) {
    if (look.face == no_colour) {
        if (look.enabled && look.text != no_colour) return readable(look.text, face);
        return button_text_colour({look.enabled, look.hovered, look.pressed, look.is_default});
    }
    COLORREF text = look.text != no_colour ? look.text : strongest_on(face);
    return look.enabled ? text : blend(text, face, 0.5F);
}

void draw_label(HDC dc, const window_control* control, const char* label, RECT room,
                COLORREF colour) {
    if (!*label) return;
    if (control->font) SelectObject(dc, control->font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colour);
    RECT measured{0, 0, room.width(), 0};
    DrawTextAW(dc, label, -1, measured, DT_CALCRECT | DT_CENTER);
    std::int32_t slack = room.height() - measured.height();
    room.top += slack > 0 ? slack / 2 : 0;
    DrawTextAW(dc, label, -1, room, DT_CENTER);
}

void paint_button(const window_control* control, HWND hwnd) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, paint);
    if (!dc) return;
    RECT client;
    GetClientRect(hwnd, client);
    button_view view = view_of(control, hwnd);
    COLORREF colour = draw_button(dc, client, view.look);
    RECT room{client.left + 4, client.top + 2, client.right - 4, client.bottom - 2};
    SIZE size;
    if (view.icon && platform::GetIconSize(view.icon, size)) {
        bool alone = !*view.label;
        std::int32_t x = alone ? (client.width() - size.cx) / 2 : icon_left;
        DrawIconEx(dc, x, (client.height() - size.cy) / 2, view.icon, size.cx, size.cy,
                   !view.look.enabled && !view.keep_colours);
        room.left = x + size.cx + icon_gap;
    }
    if (view.split) {
        room.right -= split_width;
        PointF centre{static_cast<float>(client.right - split_width / 2 - 2),
                      static_cast<float>(client.height()) / 2.0F};
        draw_chevron(dc, centre, 7.0F, Direction::down, colour);
    }
    draw_label(dc, control, view.label, room, colour);
    EndPaint(hwnd, paint);
}

// The platform's button in everything but its picture.
LRESULT SubButtonProc(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    WNDPROC original = procedures().button_procedure;
    window_control* control = control_from_window(hwnd, false);
    if (!control) return CallWindowProcA(original, hwnd, message, wparam, lparam);
    switch (message) {
        case WM_PAINT:
            paint_button(control, hwnd);
            return 0;
        case WM_RBUTTONDOWN:
            if (!control->callback) break;
            call_function(control, "MOUSE_RIGHT_CLICK", false);
            return 0;
        case msg_button_accelerator:
            if (IsWindowEnabled(hwnd)) SendMessageA(hwnd, BM_CLICK, 0, 0);
            return 0;
        default:
            break;
    }
    return CallWindowProcA(original, hwnd, message, wparam, lparam);
}

}  // namespace

COLORREF draw_button(HDC dc, const RECT& place, const button_look& look) {
    const Theme& colours = theme();
    FillRect(dc, place, get_brush(look.behind));
    bool bare = look.flat && !look.hovered && !look.pressed;
    COLORREF face = look.behind;
    if (look.face != no_colour) {
        face = own_face(look);
        RectF shape = to_f(place);
        fill_rounded(dc, shape, colours.corner, face);
        stroke_rounded(dc, shape, colours.corner, look.is_default ? 2.0F : 1.0F,
                       look.is_default ? colours.accent : shade(face, 0.22F));
    } else if (!bare) {
        draw_button_face(dc, place, {look.enabled, look.hovered, look.pressed, look.is_default});
        face = look.is_default ? colours.accent : colours.button;
    }
    if (look.focused) draw_focus_ring(dc, place, colours.corner);
    return text_on(look, face);
}

void subclass_button(window_control* control) {
    LPARAM before =
        SetWindowLong(control->hwnd, GWL_WNDPROC, reinterpret_cast<LPARAM>(&SubButtonProc));
    if (!procedures().button_procedure)
        procedures().button_procedure = reinterpret_cast<WNDPROC>(before);
}

}  // namespace tarn::winio
