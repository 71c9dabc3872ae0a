// "button": everything that is pressed, and the box that goes around a group.
#include <algorithm>

#include "platform/controls/letters.h"
#include "platform/controls/look.h"

namespace tarn::platform {

struct NMBCDROPDOWN {
    NMHDR hdr;
    RECT rcButton;
};

namespace {

constexpr std::uint32_t type_mask = 0x0F;
constexpr std::int32_t split_width = 18;  // of the arrow's part
constexpr std::int32_t mark_size = 14;    // of check boxes and radio buttons
constexpr std::int32_t mark_gap = 5;
constexpr std::int32_t image_gap = 6;

enum class Shape : std::uint8_t { push, check, radio, group, owner, split, link };

struct Button : Control {
    std::string text, note;
    std::uint32_t type = BS_PUSHBUTTON;
    std::uint32_t check = 0;
    bool pushed = false;    // drawn pressed
    bool tracking = false;  // the mouse went down here and is held
    bool space_held = false;
    bool on_arrow = false;  // the mouse is over a split button's arrow
    std::int32_t icon = 0, bitmap = 0;

    Shape shape() const;
    bool three_states() const { return type == BS_3STATE || type == BS_AUTO3STATE; }
    bool is_default() const {
        return type == BS_DEFPUSHBUTTON || type == BS_DEFSPLITBUTTON || type == BS_DEFCOMMANDLINK;
    }
    bool looks_pushed() const { return pushed || (has(BS_PUSHLIKE) && check != 0); }
    RECT arrow_rect() const;

    LRESULT handle(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_mouse(UINT message, LPARAM lparam);
    LRESULT handle_own(UINT message, WPARAM wparam, LPARAM lparam);
    void key(UINT message, WPARAM key, LPARAM lparam);
    void set_pushed(bool on);
    void set_check(std::uint32_t to);
    void release(bool inside);
    void click();
    void check_radio();
    void drop_down();
    bool focus_ring() const { return focused && keyboard_focus_visible(); }

    void paint();
    void paint_push(HDC dc, const RECT& rect);
    void paint_link(HDC dc, const RECT& rect);
    void paint_mark(HDC dc, const RECT& rect, const Colours& colours);
    void paint_group(HDC dc, const RECT& rect, const Colours& colours);
    void paint_by_owner(HDC dc, const RECT& rect);
    void draw_label(HDC dc, RECT rect, COLORREF colour, std::uint32_t align);
};

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

// ---- Pressing
// ------------------------------------------------------------------------------------

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
            if (!dead && tracking) set_pushed(true);
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

// ---- Painting
// ------------------------------------------------------------------------------------

// The label in `rect`: centred down it, on one line unless more were asked for and fit.
void Button::draw_label(HDC dc, RECT rect, COLORREF colour, std::uint32_t align) {
    SetTextColor(dc, colour);
    const bool many = has(BS_MULTILINE) || text.find('\n') != std::string::npos;
    if (!many) return draw_line(dc, text, rect, align);
    RECT needed = rect;
    draw_text(dc, text, needed, DT_CALCRECT | DT_WORDBREAK | align);
    rect.top += std::max(0, (rect.height() - needed.height()) / 2);
    draw_text(dc, text, rect, DT_WORDBREAK | align);
}

void draw_bitmap(HDC dc, std::int32_t bitmap, const RECT& area) {
    SIZE size;
    if (!GetBitmapSize(HBITMAP{bitmap}, size)) return;
    const HDC memory = CreateCompatibleDC(dc);
    const HGDIOBJ old = SelectObject(memory, HBITMAP{bitmap});
    BitBlt(dc, area.left + (area.width() - size.cx) / 2, area.top + (area.height() - size.cy) / 2,
           size.cx, size.cy, memory, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
}

void Button::paint_push(HDC dc, const RECT& rect) {
    const FaceState state{enabled(), hovered, looks_pushed(), is_default()};
    draw_button_face(dc, rect, state);
    RECT label = rect;
    if (shape() == Shape::split) {
        label.right = arrow_rect().left;
        const COLORREF colour = button_text_colour(state);
        const float x = static_cast<float>(label.right);
        RectF rule{x, static_cast<float>(rect.top + 4), x + 1, static_cast<float>(rect.bottom - 4)};
        fill_rounded(dc, rule, 0, colour, 0.3F);
        draw_chevron(dc, {x + split_width / 2.0F - 0.5F, static_cast<float>(rect.height()) / 2}, 7,
                     Direction::down, colour);
    }
    if (has(BS_BITMAP) && bitmap != 0) return draw_bitmap(dc, bitmap, label);
    const std::uint32_t where = style() & BS_CENTER;
    std::uint32_t align = where == BS_LEFT ? DT_LEFT : where == BS_RIGHT ? DT_RIGHT : DT_CENTER;
    SIZE size;
    if (icon != 0 && GetIconSize(HICON{icon}, size)) {
        const bool alone = has(BS_ICON) || text.empty();
        SIZE words{};
        if (!alone) words = text_extent(dc, without_mnemonics(text));
        const std::int32_t together = alone ? size.cx : size.cx + image_gap + words.cx;
        const std::int32_t x = label.left + std::max(4, (label.width() - together) / 2);
        DrawIconEx(dc, x, rect.top + (rect.height() - size.cy) / 2, HICON{icon}, size.cx, size.cy,
                   !state.enabled);
        if (alone) return;
        label.left = x + size.cx + image_gap;
        align = DT_LEFT;
    } else {
        const std::int32_t pad = align == DT_CENTER ? 2 : 8;
        label.left += pad;
        label.right -= pad;
    }
    draw_label(dc, label, button_text_colour(state), align);
}

// A command link: an arrow, what it does in larger letters, and a note below.
void Button::paint_link(HDC dc, const RECT& rect) {
    const Theme& look = theme();
    const bool live = enabled();
    const RectF r = to_f(rect);
    if (live && (hovered || looks_pushed())) {
        fill_rounded(dc, r, look.corner, looks_pushed() ? look.button_pressed : look.button_hover);
    }
    if (live && (is_default() || hovered)) {
        stroke_rounded(dc, r, look.corner, 1, is_default() ? look.accent : look.border_strong);
    }
    const COLORREF colour = live ? look.text : look.text_disabled;
    RECT needed{0, 0, std::max(1, rect.width() - 36), 1000};
    const HGDIOBJ small = SelectObject(dc, control_font(*this));
    std::int32_t note_height = 0;
    if (!note.empty()) note_height = draw_text(dc, note, needed, DT_CALCRECT | DT_WORDBREAK);
    LOGFONT big;
    HFONT title{};
    if (GetObjectFont(control_font(*this), big) && rect.height() >= 36) {
        big.lfHeight = big.lfHeight * 5 / 4;
        title = CreateFontIndirectA(big);
        SelectObject(dc, title);
    }
    TEXTMETRIC metric;
    GetTextMetricsA(dc, metric);
    const std::int32_t both = metric.tmHeight + (note_height != 0 ? note_height + 2 : 0);
    const std::int32_t top = rect.top + std::max(0, (rect.height() - both) / 2);
    const auto arrow_y = static_cast<float>(top) + static_cast<float>(metric.tmHeight) / 2;
    const COLORREF arrow = live ? look.accent : look.text_disabled;
    const auto x = static_cast<float>(rect.left + 9);
    const PointF shaft[] = {{x, arrow_y}, {x + 13, arrow_y}};
    const PointF head[] = {{x + 8, arrow_y - 5}, {x + 13, arrow_y}, {x + 8, arrow_y + 5}};
    stroke_path(dc, shaft, 1.7F, arrow);
    stroke_path(dc, head, 1.7F, arrow);
    SetTextColor(dc, colour);
    RECT label{rect.left + 30, top, rect.right - 6, top + metric.tmHeight};
    draw_line(dc, text, label, DT_LEFT);
    SelectObject(dc, small);
    if (title != 0) DeleteObject(title);
    if (note_height != 0) {
        SetTextColor(dc, live ? look.text_muted : look.text_disabled);
        RECT below{rect.left + 30, label.bottom + 2, rect.right - 6, rect.bottom};
        draw_text(dc, note, below, DT_WORDBREAK);
    }
}

void Button::paint_mark(HDC dc, const RECT& rect, const Colours& colours) {
    const Theme& look = theme();
    const bool live = enabled();
    const std::int32_t size = std::min({mark_size, rect.height(), rect.width()});
    const bool right = has(BS_LEFTTEXT);
    RECT box;
    box.left = right ? rect.right - size : rect.left;
    box.top = rect.top + (rect.height() - size) / 2;
    box.right = box.left + size;
    box.bottom = box.top + size;

    const bool round = shape() == Shape::radio;
    const RectF b = to_f(box);
    const float radius = round ? (b.right - b.left) / 2 : look.small_corner;
    if (check != 0) {
        COLORREF face = looks_pushed() ? look.accent_pressed
                        : hovered      ? look.accent_hover
                                       : look.accent;
        if (!live) face = look.text_disabled;
        fill_rounded(dc, b, radius, face);
        const COLORREF mark = live ? look.accent_text : look.window;
        if (round) {
            fill_circle(dc, {(b.left + b.right) / 2, (b.top + b.bottom) / 2}, radius * 0.4F, mark);
        } else if (check == BST_INDETERMINATE) {
            const float cy = (b.top + b.bottom) / 2;
            fill_rounded(dc, {b.left + 3.5F, cy - 1, b.right - 3.5F, cy + 1}, 0, mark);
        } else {
            draw_check_mark(dc, box, mark);
        }
    } else {
        COLORREF face = look.window;
        if (!live)
            face = look.button_disabled;
        else if (looks_pushed())
            face = look.button_pressed;
        COLORREF edge = !live ? look.border : look.border_strong;
        if (live && looks_pushed()) edge = look.accent;
        fill_rounded(dc, b, radius, face);
        stroke_rounded(dc, b, radius, 1, edge);
    }

    RECT label = rect;
    if (right) {
        label.right = box.left - mark_gap;
    } else {
        label.left = box.right + mark_gap;
    }
    if (!text.empty()) {
        draw_label(dc, label, live ? colours.text : disabled_text(colours), DT_LEFT);
    }
    if (!focus_ring()) return;
    if (text.empty()) {
        stroke_rounded(dc, b, radius, 2, look.focus_ring);
        return;
    }
    const SIZE words = text_extent(dc, without_mnemonics(text));
    RECT ring = label;
    ring.left -= 3;
    ring.right = std::min(rect.right, label.left + words.cx + 3);
    const std::int32_t spare = std::max(0, (rect.height() - words.cy - 2) / 2);
    if (!has(BS_MULTILINE)) {
        ring.top += spare;
        ring.bottom -= spare;
    }
    stroke_rounded(dc, to_f(ring), look.small_corner, 1, look.focus_ring);
}

void Button::paint_group(HDC dc, const RECT& rect, const Colours& colours) {
    const Theme& look = theme();
    TEXTMETRIC metric;
    GetTextMetricsA(dc, metric);
    RectF frame = to_f(rect);
    if (!text.empty()) frame.top += static_cast<float>(metric.tmHeight / 2);
    const SIZE words = text_extent(dc, without_mnemonics(text));
    RECT label{rect.left + 9, rect.top, std::min(rect.right - 9, rect.left + 9 + words.cx),
               rect.top + metric.tmHeight};
    const std::int32_t state = SaveDC(dc);
    if (!text.empty()) {
        ExcludeClipRect(dc, {label.left - 4, label.top, label.right + 4, label.bottom});
    }
    stroke_rounded(dc, frame, look.corner, 1, look.border);
    RestoreDC(dc, state);
    if (text.empty()) return;
    SetTextColor(dc, enabled() ? colours.text : disabled_text(colours));
    draw_text(dc, text, label, DT_SINGLELINE | DT_LEFT);
}

void Button::paint_by_owner(HDC dc, const RECT& rect) {
    DRAWITEMSTRUCT item;
    item.CtlType = ODT_BUTTON;
    item.CtlID = static_cast<UINT>(GetDlgCtrlID(hwnd));
    item.itemAction = ODA_DRAWENTIRE;
    if (pushed) item.itemState |= ODS_SELECTED;
    if (focused) item.itemState |= ODS_FOCUS;
    if (!enabled()) item.itemState |= ODS_DISABLED;
    item.hwndItem = hwnd;
    item.hDC = dc;
    item.rcItem = rect;
    SetBkMode(dc, OPAQUE);
    send_message(GetParent(hwnd), WM_DRAWITEM, item.CtlID, reinterpret_cast<LPARAM>(&item));
}

void Button::paint() {
    const Paint painting{*this};
    const HDC dc = painting.dc();
    const RECT rect = client();
    const Shape kind = shape();
    const bool on_face = kind == Shape::check || kind == Shape::radio || kind == Shape::group;
    const Theme& look = theme();
    const Colours colours =
        ask_colours(*this, dc, on_face ? WM_CTLCOLORSTATIC : WM_CTLCOLORBTN, look.text, look.face);
    if (dead) return;
    fill_back(dc, rect, colours);
    switch (kind) {
        case Shape::push:
        case Shape::split:
            paint_push(dc, rect);
            if (focus_ring()) {
                draw_focus_ring(dc, rect, look.corner);
            }
            break;
        case Shape::link:
            paint_link(dc, rect);
            if (focus_ring()) draw_focus_ring(dc, rect, look.corner);
            break;
        case Shape::check:
        case Shape::radio:
            paint_mark(dc, rect, colours);
            break;
        case Shape::group:
            paint_group(dc, rect, colours);
            break;
        case Shape::owner:
            paint_by_owner(dc, rect);
            break;
    }
}

// ---- Messages
// ------------------------------------------------------------------------------------

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
            if (const std::string_view to = text_argument(lparam); to != text) {
                text = to;
                repaint();
            }
            return 1;
        case WM_GETTEXT:
            return copy_text(text, wparam, lparam);
        case WM_GETTEXTLENGTH:
            return static_cast<LRESULT>(text.size());
        case WM_SETFONT:
            font = HFONT{static_cast<std::int32_t>(wparam)};
            if (LOWORD(static_cast<std::uintptr_t>(lparam)) != 0) repaint();
            return 0;
        case WM_GETFONT:
            return font;
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

}  // namespace

LRESULT button_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return control_procedure<Button>(hwnd, message, wparam, lparam);
}

}  // namespace tarn::platform
