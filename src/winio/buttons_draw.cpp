// Buttons that the library draws itself: coloured ones, those with an icon, and labels of several
// lines.
#include <cstring>

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

RectF grown(const RECT& place, float by) {
    return {static_cast<float>(place.left) - by, static_cast<float>(place.top) - by,
            static_cast<float>(place.right) + by, static_cast<float>(place.bottom) + by};
}

struct button_view {
    const char* label;
    HICON icon;
    bool keep_colours;
    button_look look;
};

bool has_focus(HWND hwnd) {
    return GetFocus() == hwnd;
}

button_view view_of(const window_control* control, HWND hwnd) {
    button_view view{};
    view.label = button_label(control);
    button_look& look = view.look;
    look.behind = control->background;
    look.face = look.text = no_colour;
    look.enabled = IsWindowEnabled(hwnd);
    look.pressed = control->flags.pressed;
    look.hovered = control->flags.hovered;
    look.focused = has_focus(hwnd) && keyboard_focus_visible();
    look.is_default = is_default_button(control);
    if (control->type == control_type::option_button) {
        const auto* button = static_cast<const Xbutton*>(control->block);
        look.face = button->colour;
        look.text = button->text_colour;
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

COLORREF own_face(const button_look& look) {
    if (!look.enabled) return blend(look.face, look.behind, 0.55F);
    if (look.pressed) return shade(look.face, 0.18F);
    return look.hovered ? shade(look.face, 0.08F) : look.face;
}

COLORREF theme_face(const button_look& look) {
    const Theme& colours = theme();
    if (!look.enabled) return look.flat ? look.behind : colours.button_disabled;
    if (look.is_default && !look.flat)
        return look.pressed   ? colours.accent_pressed
               : look.hovered ? colours.accent_hover
                              : colours.accent;
    if (look.pressed) return colours.button_pressed;
    if (look.hovered) return colours.button_hover;
    return look.flat ? look.behind : colours.button;
}

COLORREF text_on(const button_look& look, COLORREF face) {
    const Theme& colours = theme();
    if (!look.enabled)
        return look.face == no_colour ? colours.text_disabled
                                      : blend(readable(colours.text, face), face, 0.45F);
    if (look.text != no_colour) return look.text;
    if (look.face == no_colour && look.is_default && !look.flat) return colours.accent_text;
    return readable(colours.text, face);
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
    draw_label(dc, control, view.label, room, colour);
    EndPaint(hwnd, paint);
}

bool inside(HWND hwnd, LPARAM place) {
    RECT client;
    GetClientRect(hwnd, client);
    return client.contains({GET_X_LPARAM(place), GET_Y_LPARAM(place)});
}

void post_click(HWND hwnd) {
    PostMessageA(GetParent(hwnd), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(hwnd), 0),
                 static_cast<LPARAM>(hwnd));
}

void set_state(window_control* control, bool pressed, bool hovered) {
    if (control->flags.pressed == pressed && control->flags.hovered == hovered) return;
    control->flags.pressed = pressed;
    control->flags.hovered = hovered;
    InvalidateRect(control->hwnd, nullptr, false);
}

void button_down(window_control* control) {
    HWND hwnd = control->hwnd;
    window_watch watch(control->window);
    SetFocus(hwnd);
    if (watch.gone() || !IsWindow(hwnd)) return;
    SetCapture(hwnd);
    set_state(control, true, true);
}

void pointer_moved(window_control* control, UINT message, WPARAM keys, LPARAM place) {
    HWND hwnd = control->hwnd;
    bool over = inside(hwnd, place);
    bool captured = GetCapture() == hwnd;
    if (message == WM_LBUTTONUP || (keys & MK_LBUTTON) == 0) {
        bool clicked = message == WM_LBUTTONUP && control->flags.pressed && over;
        set_state(control, false, over);
        if (captured) ReleaseCapture();
        if (clicked && IsWindow(hwnd)) post_click(hwnd);
        return;
    }
    set_state(control, captured && over, over);
}

// Return presses the button that has the focus, and not the default one.
LRESULT dialog_code(LPARAM lparam) {
    const auto* message = reinterpret_cast<const MSG*>(lparam);
    bool key = message && message->message == WM_KEYDOWN && message->wParam == VK_RETURN;
    return key ? DLGC_WANTALLKEYS : DLGC_WANTCHARS;
}

}  // namespace

COLORREF draw_button(HDC dc, const RECT& place, const button_look& look) {
    const Theme& colours = theme();
    FillRect(dc, place, get_brush(look.behind));
    bool own = look.face != no_colour;
    COLORREF face = own ? own_face(look) : theme_face(look);
    RectF shape = grown(place, -1.0F);
    fill_rounded(dc, shape, colours.corner, face);
    bool bare = look.flat && !look.hovered && !look.pressed;
    if (!bare) {
        COLORREF edge = own                                             ? shade(face, 0.22F)
                        : look.is_default && !look.flat && look.enabled ? face
                        : look.hovered                                  ? colours.border_hover
                                                                        : colours.border;
        stroke_rounded(dc, shape, colours.corner, 1.0F, edge);
    }
    if (look.is_default && own && look.enabled)
        stroke_rounded(dc, shape, colours.corner, 2.0F, colours.accent);
    if (look.focused)
        stroke_rounded(dc, grown(place, 0.0F), colours.corner + 1.0F, 2.0F, colours.focus_ring);
    return text_on(look, face);
}

LRESULT fancy_button_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    window_control* control = control_from_window(hwnd, false);
    if (!control) return DefWindowProcA(hwnd, message, wparam, lparam);
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            button_down(control);
            return 0;
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
            pointer_moved(control, message, wparam, lparam);
            return 0;
        case WM_MOUSELEAVE:
            set_state(control, control->flags.pressed, false);
            return 0;
        case WM_CAPTURECHANGED:
            set_state(control, false, false);
            return 0;
        case WM_RBUTTONDOWN:
            if (control->callback) call_function(control, "MOUSE_RIGHT_CLICK", false);
            return 0;
        case WM_KEYDOWN:
            if ((wparam == VK_SPACE || wparam == VK_RETURN) && has_focus(hwnd)) post_click(hwnd);
            return 0;
        case WM_GETDLGCODE:
            return dialog_code(lparam);
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
        case WM_ENABLE:
            InvalidateRect(hwnd, nullptr, false);
            return 0;
        case msg_button_accelerator:
        case 0xF5:  // BM_CLICK
            if (IsWindowEnabled(hwnd)) post_click(hwnd);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint_button(control, hwnd);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

}  // namespace tarn::winio
