// "button": everything that is pressed, and the box that goes around a group.
#include "platform/controls/button.h"

#include <algorithm>

namespace tarn::platform {

struct NMBCDROPDOWN {
    NMHDR hdr;
    RECT rcButton;
};

namespace {

constexpr std::uint32_t type_mask = 0x0F;
constexpr std::int32_t split_width = 18;  // of the arrow's part

}  // namespace

Shape Button::shape() const {
    switch (type) {
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX:
        case BS_3STATE:
        case BS_AUTO3STATE:
            return has(BS_PUSHLIKE) ? Shape::push : Shape::check;
        case BS_RADIOBUTTON:
        case BS_AUTORADIOBUTTON:
            return has(BS_PUSHLIKE) ? Shape::push : Shape::radio;
        case BS_GROUPBOX:
            return Shape::group;
        case BS_OWNERDRAW:
        case BS_OWNERDRAW_OLD:
            return Shape::owner;
        case BS_SPLITBUTTON:
        case BS_DEFSPLITBUTTON:
            return Shape::split;
        case BS_COMMANDLINK:
        case BS_DEFCOMMANDLINK:
            return Shape::link;
        default:
            return Shape::push;
    }
}

RECT Button::arrow_rect() const {
    RECT rect = client();
    rect.left = std::max(rect.left, rect.right - split_width);
    return rect;
}

// ---- Pressing ----------------------------------------------------------------------------------

void Button::set_pushed(bool on) {
    if (pushed == on) return;
    pushed = on;
    repaint();
}

void Button::set_check(std::uint32_t to) {
    to = std::min<std::uint32_t>(to, three_states() ? 2 : 1);
    if (check == to) return;
    check = to;
    repaint();
}

// Checks this radio button and clears the others of its group.
void Button::check_radio() {
    const HWND parent = GetParent(hwnd);
    const HWND self = hwnd;
    set_check(BST_CHECKED);
    HWND other = GetNextDlgGroupItem(parent, self, false);
    for (int guard = 0; other != 0 && other != self && guard < 4096; ++guard) {
        const LRESULT code = send_message(other, WM_GETDLGCODE, 0, 0);
        if ((code & DLGC_RADIOBUTTON) != 0) send_message(other, BM_SETCHECK, 0, 0);
        other = GetNextDlgGroupItem(parent, other, false);
    }
}

void Button::click() {
    switch (type) {
        case BS_AUTOCHECKBOX:
            set_check(check == 0 ? 1 : 0);
            break;
        case BS_AUTO3STATE:
            set_check(check == 2 ? 0 : check + 1);
            break;
        case BS_AUTORADIOBUTTON:
            check_radio();
            break;
        default:
            break;
    }
    if (!dead) notify(*this, BN_CLICKED);
}

void Button::drop_down() {
    NMBCDROPDOWN note_record;
    note_record.hdr.hwndFrom = hwnd;
    note_record.hdr.idFrom = static_cast<std::uintptr_t>(GetDlgCtrlID(hwnd));
    note_record.hdr.code = BCN_DROPDOWN;
    note_record.rcButton = client();
    send_message(GetParent(hwnd), WM_NOTIFY, note_record.hdr.idFrom,
                 reinterpret_cast<LPARAM>(&note_record));
}

void Button::release(bool inside) {
    const bool was_pushed = pushed;
    tracking = false;
    set_pushed(false);
    if (GetCapture() == hwnd) ReleaseCapture();
    if (!dead && was_pushed && inside) click();
}

LRESULT Button::handle_mouse(UINT message, LPARAM lparam) {
    const POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    const bool inside = client().contains(at);
    switch (message) {
        case WM_LBUTTONDBLCLK:
            // Those that have a use for a double click are told of it; to all others it is one
            // more press.
            if (has(BS_NOTIFY) || type == BS_RADIOBUTTON || shape() == Shape::owner) {
                notify(*this, BN_DOUBLECLICKED);
                return 0;
            }
            [[fallthrough]];
        case WM_LBUTTONDOWN:
            if (shape() == Shape::split && arrow_rect().contains(at)) {
                SetFocus(hwnd);
                if (!dead) drop_down();
                return 0;
            }
            tracking = true;
            SetCapture(hwnd);
            if (GetFocus() != hwnd) SetFocus(hwnd);
            if (dead) return 0;
            // A field that refuses what was typed takes the focus back, and with it the press.
            if (GetFocus() != hwnd) release(false);
            if (tracking) set_pushed(true);
            return 0;
        case WM_MOUSEMOVE: {
            const bool arrow = shape() == Shape::split && arrow_rect().contains(at);
            if (inside != hovered || arrow != on_arrow) {
                hovered = inside;
                on_arrow = arrow;
                repaint();
            }
            if (tracking) set_pushed(inside);
            return 0;
        }
        case WM_LBUTTONUP:
            if (tracking) release(inside);
            return 0;
        default:
            return 0;
    }
}

// Space presses while it is held and counts when it is let go, so that it can be taken back with
// Escape or Tab.
void Button::key(UINT message, WPARAM key_code, LPARAM lparam) {
    if (message == WM_KEYDOWN && key_code == VK_SPACE) {
        if (!space_held && !tracking) {
            space_held = true;
            set_pushed(true);
        }
    } else if (message == WM_KEYUP && key_code == VK_SPACE) {
        if (!space_held) return;
        space_held = false;
        set_pushed(false);
        click();
    } else if (message == WM_KEYDOWN && key_code == VK_ESCAPE && (space_held || tracking)) {
        space_held = false;
        tracking = false;
        set_pushed(false);
        if (GetCapture() == hwnd) ReleaseCapture();
    } else if (message == WM_KEYDOWN && key_code == VK_RETURN && shape() != Shape::group &&
               shape() != Shape::check && shape() != Shape::radio) {
        // Where no dialog handles Return it presses the button that has the focus.
        click();
    } else if (message == WM_KEYDOWN && key_code == VK_DOWN && shape() == Shape::split) {
        drop_down();
    } else {
        DefWindowProcA(hwnd, message, key_code, lparam);
    }
}

// ---- Messages ----------------------------------------------------------------------------------

LRESULT Button::handle_own(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case BM_GETCHECK:
            return check;
        case BM_SETCHECK:
            if (shape() != Shape::group && shape() != Shape::owner) {
                set_check(static_cast<std::uint32_t>(std::min<WPARAM>(wparam, 2)));
            }
            return 0;
        case BM_GETSTATE:
            return check | (pushed ? BST_PUSHED : 0u) | (focused ? BST_FOCUS : 0u) |
                   (hovered ? BST_HOT : 0u);
        case BM_SETSTATE:
            set_pushed(wparam != 0);
            return 0;
        case BM_SETSTYLE: {
            const std::uint32_t low = static_cast<std::uint32_t>(wparam) & 0xFFFF;
            SetWindowLong(hwnd, GWL_STYLE, static_cast<LPARAM>((style() & 0xFFFF0000u) | low));
            type = low & type_mask;
            if (lparam != 0) repaint();
            return 0;
        }
        case BM_CLICK:
            if (!enabled() || shape() == Shape::group) return 0;
            if (GetFocus() != hwnd) SetFocus(hwnd);
            if (!dead) click();
            return 0;
        case BM_SETIMAGE: {
            std::int32_t& image = wparam == IMAGE_BITMAP ? bitmap : icon;
            const std::int32_t before = image;
            image = static_cast<std::int32_t>(lparam);
            repaint();
            return before;
        }
        case BM_GETIMAGE:
            return wparam == IMAGE_BITMAP ? bitmap : icon;
        case BCM_SETNOTE:
            note = text_argument(lparam);
            repaint();
            return 1;
        case BCM_GETNOTE:
            return copy_text(note, wparam, lparam) >= 0 ? 1 : 0;
        case BCM_GETNOTELENGTH:
            return static_cast<LRESULT>(note.size());
        default:
            return 0;
    }
}

LRESULT Button::handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_NCCREATE:
            text = text_argument(
                reinterpret_cast<LPARAM>(reinterpret_cast<const CREATESTRUCT*>(lparam)->lpszName));
            type = style() & type_mask;
            break;
        case WM_STYLECHANGED:
            type = style() & type_mask;
            repaint();
            return 0;
        case WM_SETTEXT:
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
        case WM_SETFONT:
        case WM_GETFONT:
            return handle_label(*this, message, wparam, lparam);
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint();
            return 0;
        case WM_ENABLE:
            if (wparam == 0) {
                pushed = tracking = space_held = hovered = false;
                if (GetCapture() == hwnd) ReleaseCapture();
            }
            repaint();
            return 0;
        case WM_SIZE:
        case WM_SYSCOLORCHANGE:
            repaint();
            return 0;
        case WM_SETFOCUS:
            focused = true;
            repaint();
            if (has(BS_NOTIFY)) notify(*this, BN_SETFOCUS);
            return 0;
        case WM_KILLFOCUS:
            focused = space_held = false;
            if (!tracking) pushed = false;
            repaint();
            if (has(BS_NOTIFY)) notify(*this, BN_KILLFOCUS);
            return 0;
        case WM_CAPTURECHANGED:
        case WM_CANCELMODE:
            tracking = false;
            if (!space_held) set_pushed(false);
            return 0;
        case WM_MOUSELEAVE:
            if (hovered || on_arrow) repaint();
            hovered = on_arrow = false;
            return 0;
        case WM_NCHITTEST:
            // A group box is only seen: what lies within its frame gets the mouse.
            return shape() == Shape::group ? -1 : static_cast<LRESULT>(HTCLIENT);
        case WM_GETDLGCODE:
            switch (shape()) {
                case Shape::group:
                    return DLGC_STATIC;
                case Shape::radio:
                    return DLGC_BUTTON | DLGC_RADIOBUTTON;
                case Shape::check:
                case Shape::owner:
                    return DLGC_BUTTON;
                default:
                    if (type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON) {
                        return DLGC_BUTTON | DLGC_RADIOBUTTON;
                    }
                    return DLGC_BUTTON | (is_default() ? DLGC_DEFPUSHBUTTON : DLGC_UNDEFPUSHBUTTON);
            }
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_LBUTTONUP:
        case WM_MOUSEMOVE:
            if (shape() != Shape::group) return handle_mouse(message, lparam);
            break;
        case WM_KEYDOWN:
        case WM_KEYUP:
            key(message, wparam, lparam);
            return 0;
        case BM_GETCHECK:
        case BM_SETCHECK:
        case BM_GETSTATE:
        case BM_SETSTATE:
        case BM_SETSTYLE:
        case BM_CLICK:
        case BM_SETIMAGE:
        case BM_GETIMAGE:
        case BCM_SETNOTE:
        case BCM_GETNOTE:
        case BCM_GETNOTELENGTH:
            return handle_own(message, wparam, lparam);
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

LRESULT button_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return control_procedure<Button>(hwnd, message, wparam, lparam);
}

}  // namespace tarn::platform
