// "combobox": a field, or the chosen item, with a list that is always there or drops down.
#include "platform/controls/combobox.h"

#include <algorithm>

#include "platform/base/text.h"

namespace tarn::platform {
namespace {

constexpr std::uint32_t type_mask = 3;
constexpr std::int32_t arrow_width = 18;
constexpr std::int32_t field_inset = 2;
constexpr std::int32_t field_id = 1001, list_id = 1000;

}  // namespace

// ---- Geometry ----------------------------------------------------------------------------------

RECT ComboBox::arrow_rect() const {
    RECT rect = client();
    rect.left = std::max(rect.left, rect.right - arrow_width);
    return rect;
}

RECT ComboBox::text_rect() const {
    RECT rect = client();
    rect.left += field_inset;
    rect.top += field_inset;
    rect.bottom = std::min(rect.bottom, field_height) - field_inset;
    rect.right -= drops() ? arrow_width : field_inset;
    return rect;
}

// As low as a line of a window allows: the text and two pixels around it.
std::int32_t ComboBox::natural_height() const {
    return Measure{*this}.line_height() + 2 * field_inset;
}

// A box that drops down is as high as its field: a greater height is that of box and list together.
void ComboBox::fit_height() {
    if (!drops()) return place_children();
    RECT rect;
    GetWindowRect(hwnd, rect);
    if (rect.height() > field_height) drop_height = rect.height();
    if (rect.height() != field_height) {
        SetWindowPos(hwnd, HWND{}, 0, 0, rect.width(), field_height,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (!dead) place_children();
}

void ComboBox::place_children() {
    const RECT text = text_rect();
    if (field != 0) MoveWindow(field, text.left, text.top, text.width(), text.height(), true);
    if (drops() || list == 0) return;
    const RECT rect = client();
    MoveWindow(list, 0, field_height + 1, rect.width(),
               std::max(0, rect.height() - field_height - 1), true);
}

void ComboBox::measure_by_owner() {
    if (!has(CBS_OWNERDRAWFIXED)) return;
    MEASUREITEMSTRUCT item;
    item.CtlType = ODT_COMBOBOX;
    item.CtlID = static_cast<UINT>(GetDlgCtrlID(hwnd));
    item.itemWidth = static_cast<UINT>(std::max(0, client().width()));
    item.itemHeight = static_cast<UINT>(list_item_height(Measure{*this}.line_height()));
    send_message(GetParent(hwnd), WM_MEASUREITEM, item.CtlID, reinterpret_cast<LPARAM>(&item));
    if (item.itemHeight >= 1 && item.itemHeight <= 1024) {
        item_height = static_cast<std::int32_t>(item.itemHeight);
    }
}

void ComboBox::create(const CREATESTRUCT& made) {
    type = style() & type_mask;
    if (type == 0) type = CBS_SIMPLE;
    field_height = natural_height();
    measure_by_owner();
    if (dead) return;
    void* const self = reinterpret_cast<void*>(static_cast<std::intptr_t>(hwnd));
    if (has_field()) {
        field = CreateWindowExA(0, "edit", "", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 0, 0,
                                hwnd, HMENU{field_id});
        send_message(field, edit_in_combo, 0, 0);
        if (made.lpszName != nullptr) set_field_text(made.lpszName);
        if (!enabled()) EnableWindow(field, false);
    }
    if (type == CBS_SIMPLE) {
        list = CreateWindowExA(
            0, "listbox", "",
            WS_CHILD | WS_VISIBLE | WS_BORDER | WS_VSCROLL | LBS_NOINTEGRALHEIGHT | LBS_NOTIFY, 0,
            0, 0, 0, hwnd, HMENU{list_id}, self);
    }
    fit_height();
}

void ComboBox::set_font(HFONT to) {
    font = to;
    if (!field_height_set) field_height = natural_height();
    if (field != 0) send_message(field, WM_SETFONT, static_cast<WPARAM>(to), 1);
    if (list != 0) send_message(list, WM_SETFONT, static_cast<WPARAM>(to), 1);
    fit_height();
}

// ---- Items and choice --------------------------------------------------------------------------

std::string ComboBox::current_text() const {
    return items.has(items.current) ? items[items.current].text : std::string{};
}

void ComboBox::set_field_text(std::string_view to) {
    if (field == 0) return;
    const bool was = quiet;
    quiet = true;
    const std::string copy{to};
    send_message(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(copy.c_str()));
    if (!dead && GetFocus() == field) send_message(field, EM_SETSEL, 0, -1);
    quiet = was;
}

void ComboBox::items_changed() {
    if (list != 0) send_message(list, list_items_changed, 0, 0);
    if (!dead && !has_field()) repaint();
}

void ComboBox::set_current(std::int32_t index, bool at_field) {
    if (!items.has(index)) index = -1;
    if (list != 0) {
        send_message(list, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
        if (dead) return;
    }
    items.current = index;
    if (at_field && field != 0) set_field_text(current_text());
    if (!dead && !has_field()) repaint();
}

// By a key: told at once, and as accepted when no list is down that could still be left.
void ComboBox::choose(std::int32_t index) {
    if (items.count() == 0) return;
    index = std::clamp(index, 0, items.count() - 1);
    if (index == items.current) return;
    set_current(index, true);
    if (!dead && !dropped && drops() && !notify(*this, CBN_SELENDOK)) return;
    if (!dead) notify(*this, CBN_SELCHANGE);
}

// By the pointer in the list.
void ComboBox::pick(std::int32_t index) {
    set_current(index, true);
    if (dead) return;
    if (drops()) close(true);
    if (!dead) notify(*this, CBN_SELCHANGE);
}

// ---- Keys and focus ----------------------------------------------------------------------------

bool ComboBox::key(WPARAM code, bool alt) {
    const std::int32_t at = items.current;
    const std::int32_t page = default_combo_rows - 1;
    if (alt && (code == VK_UP || code == VK_DOWN)) {
        if (dropped) {
            close(true);
        } else {
            drop();
        }
        return true;
    }
    switch (code) {
        case VK_UP:
            choose(at < 0 ? 0 : at - 1);
            return true;
        case VK_DOWN:
            choose(at + 1);
            return true;
        case VK_PRIOR:
            choose(std::max(0, at) - page);
            return true;
        case VK_NEXT:
            choose(std::max(0, at) + page);
            return true;
        case VK_HOME:
            choose(0);
            return true;
        case VK_END:
            choose(items.count() - 1);
            return true;
        case VK_F4:
            if (dropped) {
                close(true);
            } else {
                drop();
            }
            return true;
        case VK_RETURN:
            if (dropped) close(true);
            return true;
        case VK_ESCAPE:
            if (dropped) close(false);
            return true;
        case VK_SPACE:
            if (!has_field() && !dropped) drop();
            return true;
        default:
            return false;
    }
}

void ComboBox::focus_came() {
    if (focused) return;
    focused = true;
    repaint();
    notify(*this, CBN_SETFOCUS);
}

void ComboBox::focus_went() {
    if (!focused) return;
    focused = false;
    if (dropped) {
        // What the keys chose was told already.
        const bool changed = items.current != before;
        close(changed);
        if (dead) return;
    }
    repaint();
    notify(*this, CBN_KILLFOCUS);
}

void ComboBox::field_told(std::int32_t code) {
    switch (code) {
        case EN_SETFOCUS:
            return focus_came();
        case EN_KILLFOCUS:
            return focus_went();
        case EN_UPDATE:
            if (quiet) return;
            // The text is the user's now, and no item of the list.
            items.current = -1;
            if (list != 0) send_message(list, WM_NULL, 0, 0);
            notify(*this, CBN_EDITUPDATE);
            return;
        case EN_CHANGE:
            if (!quiet) notify(*this, CBN_EDITCHANGE);
            return;
        default:
            return;
    }
}

// ---- Painting ----------------------------------------------------------------------------------

// The chosen item in a box without a field.
void ComboBox::paint_chosen(HDC dc, const Colours& colours) {
    const RECT rect = text_rect();
    const bool live = enabled();
    if (has(CBS_OWNERDRAWFIXED) && items.has(items.current)) {
        DRAWITEMSTRUCT item;
        item.CtlType = ODT_COMBOBOX;
        item.CtlID = static_cast<UINT>(GetDlgCtrlID(hwnd));
        item.itemID = static_cast<UINT>(items.current);
        item.itemAction = ODA_DRAWENTIRE;
        item.itemState = ODS_COMBOBOXEDIT;
        if (!live) item.itemState |= ODS_DISABLED;
        item.hwndItem = hwnd;
        item.hDC = dc;
        item.rcItem = rect;
        item.itemData = items[items.current].data;
        SetBkColor(dc, colours.back);
        const std::int32_t state = SaveDC(dc);
        IntersectClipRect(dc, rect);
        send_message(GetParent(hwnd), WM_DRAWITEM, item.CtlID, reinterpret_cast<LPARAM>(&item));
        RestoreDC(dc, state);
        return;
    }
    SetTextColor(dc, live ? colours.text : disabled_text(colours));
    RECT words = rect;
    words.left += 3;
    draw_line(dc, current_text(), words, DT_LEFT | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void ComboBox::paint() {
    const Paint painting{*this};
    const HDC dc = painting.dc();
    const Theme& look = theme();
    const bool live = enabled();
    RECT box = client();
    box.bottom = std::min(box.bottom, field_height);
    // As the field in it asks, so that they have one background.
    const bool still = has_field() && !live;
    const COLORREF in_use = has_field() ? look.window : look.button;
    const COLORREF own = live ? in_use : still ? look.face : look.button_disabled;
    const Colours colours =
        ask_colours(*this, dc, still ? WM_CTLCOLORSTATIC : WM_CTLCOLOREDIT, look.text, own);
    if (dead) return;
    SelectObject(dc, control_font(*this));
    fill_behind_corners(*this, dc, client());
    COLORREF face = colours.back;
    if (!colours.own_back && live && !has_field()) {
        face = dropped ? look.button_pressed : hovered ? look.button_hover : look.button;
    }
    fill_rounded(dc, to_f(box), look.corner, face);
    draw_field_outline(dc, box, {live, hovered, focused}, look.corner);
    if (drops()) {
        const RECT arrow = arrow_rect();
        const PointF centre{static_cast<float>(arrow.left) + 8.0F,
                            static_cast<float>(box.top + box.bottom) / 2};
        draw_chevron(dc, centre, 7, Direction::down,
                     live ? readable(look.text_muted, face) : look.text_disabled);
    }
    if (has_field()) return;
    paint_chosen(dc, colours);
    if (focused && keyboard_focus_visible()) draw_focus_ring(dc, box, look.corner);
}

// ---- Messages ----------------------------------------------------------------------------------

LRESULT ComboBox::handle_items(UINT message, WPARAM wparam, LPARAM lparam) {
    const auto index = static_cast<std::int32_t>(wparam);
    switch (message) {
        case CB_ADDSTRING:
        case CB_INSERTSTRING: {
            const bool number = holds_numbers(*this, CBS_OWNERDRAWFIXED, CBS_HASSTRINGS);
            const std::string_view text = number ? std::string_view{} : text_argument(lparam);
            if (message == CB_INSERTSTRING && index > items.count()) return CB_ERR;
            const std::int32_t at = message == CB_ADDSTRING && has(CBS_SORT) && !number
                                        ? items.insert_sorted(text)
                                        : items.insert(message == CB_ADDSTRING ? -1 : index, text);
            if (number) items[at].data = static_cast<std::uintptr_t>(lparam);
            if (list != 0) send_message(list, list_items_changed, 0, 0);
            return at;
        }
        case CB_DELETESTRING:
            if (!items.has(index)) return CB_ERR;
            items.remove(index);
            items_changed();
            return items.count();
        case CB_RESETCONTENT:
            items.clear();
            set_field_text({});
            if (!dead) items_changed();
            return 0;
        case CB_GETCOUNT:
            return items.count();
        case CB_GETLBTEXT:
            if (!items.has(index) || lparam == 0) return CB_ERR;
            if (holds_numbers(*this, CBS_OWNERDRAWFIXED, CBS_HASSTRINGS)) {
                *reinterpret_cast<std::uintptr_t*>(lparam) = items[index].data;
                return sizeof(std::uintptr_t);
            }
            return copy_text(items[index].text, items[index].text.size() + 1, lparam);
        case CB_GETLBTEXTLEN:
            if (!items.has(index)) return CB_ERR;
            if (holds_numbers(*this, CBS_OWNERDRAWFIXED, CBS_HASSTRINGS)) {
                return sizeof(std::uintptr_t);
            }
            return static_cast<LRESULT>(items[index].text.size());
        case CB_FINDSTRING:
        case CB_FINDSTRINGEXACT:
            if (holds_numbers(*this, CBS_OWNERDRAWFIXED, CBS_HASSTRINGS)) {
                return items.find_data(index, static_cast<std::uintptr_t>(lparam));
            }
            return items.find(index, text_argument(lparam), message == CB_FINDSTRINGEXACT);
        case CB_SELECTSTRING: {
            const std::int32_t found = items.find(index, text_argument(lparam), false);
            if (found >= 0) set_current(found, true);
            return found;
        }
        case CB_GETCURSEL:
            return items.current;
        case CB_SETCURSEL:
            set_current(index, true);
            return items.current;
        case CB_GETITEMDATA:
            return items.has(index) ? static_cast<LRESULT>(items[index].data) : CB_ERR;
        case CB_SETITEMDATA:
            if (!items.has(index)) return CB_ERR;
            items[index].data = static_cast<std::uintptr_t>(lparam);
            return 0;
        default:
            return CB_ERR;
    }
}

LRESULT ComboBox::handle_box(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case CB_SHOWDROPDOWN:
            if (wparam != 0) {
                drop();
            } else {
                close(true);
            }
            return 1;
        case CB_GETDROPPEDSTATE:
            return dropped ? 1 : 0;
        case CB_GETDROPPEDCONTROLRECT:
            if (lparam == 0) return CB_ERR;
            if (list != 0) {
                GetWindowRect(list, *reinterpret_cast<RECT*>(lparam));
            } else {
                *reinterpret_cast<RECT*>(lparam) = list_place();
            }
            return 1;
        case CB_SETDROPPEDWIDTH:
            dropped_width = std::clamp(static_cast<std::int32_t>(wparam), 0, 10000);
            return std::max(dropped_width, client().width());
        case CB_GETDROPPEDWIDTH:
            return std::max(dropped_width, client().width());
        case CB_SETITEMHEIGHT:
            if (lparam < 1 || lparam > 1024) return CB_ERR;
            if (static_cast<std::int32_t>(wparam) == -1) {
                field_height = static_cast<std::int32_t>(lparam) + 2 * field_inset;
                field_height_set = true;
                fit_height();
            } else {
                item_height = static_cast<std::int32_t>(lparam);
                if (list != 0) send_message(list, LB_SETITEMHEIGHT, 0, lparam);
            }
            return 0;
        case CB_GETITEMHEIGHT:
            if (static_cast<std::int32_t>(wparam) == -1) return field_height - 2 * field_inset;
            return item_height > 0 ? item_height : list_item_height(Measure{*this}.line_height());
        case CB_LIMITTEXT:
            return field != 0 ? send_message(field, EM_LIMITTEXT, wparam, 0) : 1;
        case CB_GETEDITSEL:
            return field != 0 ? send_message(field, EM_GETSEL, wparam, lparam) : CB_ERR;
        case CB_SETEDITSEL: {
            if (field == 0) return CB_ERR;
            const auto half = [](std::uint16_t v) { return v == 0xFFFF ? -1 : std::int32_t{v}; };
            const auto from = half(LOWORD(static_cast<std::uintptr_t>(lparam)));
            const auto to = half(HIWORD(static_cast<std::uintptr_t>(lparam)));
            send_message(field, EM_SETSEL, static_cast<WPARAM>(static_cast<std::intptr_t>(from)),
                         to);
            return 1;
        }
        default:
            return CB_ERR;
    }
}

LRESULT ComboBox::handle_text(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SETTEXT:
            if (field != 0) return send_message(field, message, wparam, lparam);
            return items.has(items.find(-1, text_argument(lparam), true)) ? 1 : CB_ERR;
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
        case WM_CUT:
        case WM_COPY:
        case WM_PASTE:
        case WM_CLEAR:
        case WM_UNDO:
            if (field != 0) return send_message(field, message, wparam, lparam);
            if (message == WM_GETTEXT) return copy_text(current_text(), wparam, lparam);
            if (message == WM_GETTEXTLENGTH) return static_cast<LRESULT>(current_text().size());
            return 0;
        default:
            return 0;
    }
}

LRESULT ComboBox::handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_NCCREATE: {
            // The frame is drawn around the field, and the bars are the list's.
            const std::uint32_t bits = style() & ~(WS_BORDER | WS_VSCROLL | WS_HSCROLL);
            SetWindowLong(hwnd, GWL_STYLE, static_cast<LPARAM>(bits));
            break;
        }
        case WM_CREATE:
            create(*reinterpret_cast<const CREATESTRUCT*>(lparam));
            return 0;
        case WM_WINDOWPOSCHANGING: {
            auto* place = reinterpret_cast<WINDOWPOS*>(lparam);
            if (drops() && field_height > 0 && (place->flags & SWP_NOSIZE) == 0) {
                if (place->cy > field_height) drop_height = place->cy;
                place->cy = field_height;
            }
            return 0;
        }
        case WM_SIZE:
            if (dropped) close(false);
            if (!dead) place_children();
            if (!dead) repaint();
            return 0;
        case WM_MOVE:
            if (dropped) close(false);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint();
            return 0;
        case WM_SETFONT:
            set_font(HFONT{static_cast<std::int32_t>(wparam)});
            if (!dead && LOWORD(static_cast<std::uintptr_t>(lparam)) != 0) repaint();
            return 0;
        case WM_GETFONT:
            return font;
        case WM_ENABLE:
            if (dropped) close(false);
            if (!dead && field != 0) EnableWindow(field, wparam != 0);
            if (!dead) repaint();
            return 0;
        case WM_SYSCOLORCHANGE:
            repaint();
            return 0;
        case WM_SHOWWINDOW:
            if (wparam == 0 && dropped) close(false);
            break;
        case WM_SETFOCUS:
            if (field != 0) {
                SetFocus(field);
                if (!dead && field != 0) send_message(field, EM_SETSEL, 0, -1);
            } else {
                focus_came();
            }
            return 0;
        case WM_KILLFOCUS:
            if (field == 0) focus_went();
            return 0;
        case WM_COMMAND:
            if (field != 0 && lparam == field) {
                field_told(HIWORD(wparam));
            } else if (list != 0 && lparam == list && HIWORD(wparam) == LBN_DBLCLK) {
                notify(*this, CBN_DBLCLK);
            }
            return 0;
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORLISTBOX:
            // The parent knows the box, not its parts.
            return send_message(GetParent(hwnd), message, wparam, hwnd);
        case WM_GETDLGCODE: {
            LRESULT code = DLGC_WANTARROWS | DLGC_WANTCHARS;
            const auto* about = reinterpret_cast<const MSG*>(lparam);
            if (about != nullptr && dropped && about->message == WM_KEYDOWN &&
                (about->wParam == VK_RETURN || about->wParam == VK_ESCAPE)) {
                code |= DLGC_WANTALLKEYS;
            }
            return code;
        }
        case WM_KEYDOWN:
            if (key(wparam, false)) return 0;
            break;
        case WM_SYSKEYDOWN:
            if ((wparam == VK_UP || wparam == VK_DOWN) && key(wparam, true)) return 0;
            break;
        case WM_CHAR:
        case WM_UNICHAR: {
            const char32_t code = typed_character(message, wparam);
            if (has_field() || code <= 0x20 || key_down(VK_CONTROL)) return 0;
            if (const std::int32_t found = letters.find(items, items.current, code, GetTickCount());
                found >= 0) {
                choose(found);
            }
            return 0;
        }
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: {
            const HWND wants = field != 0 ? field : hwnd;
            if (GetFocus() != wants) SetFocus(hwnd);
            if (dead) return 0;
            const POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
            if (!has_field() || arrow_rect().contains(at)) {
                if (dropped) {
                    close(true);
                } else {
                    drop();
                }
            }
            return 0;
        }
        case WM_MOUSEMOVE:
            if (!hovered) repaint();
            hovered = true;
            return 0;
        case WM_MOUSELEAVE:
            if (hovered) repaint();
            hovered = false;
            return 0;
        case WM_MOUSEWHEEL:
            if (dropped && list != 0) return send_message(list, message, wparam, lparam);
            if (focused && items.count() > 0) {
                const std::int32_t step = static_cast<std::int16_t>(HIWORD(wparam)) > 0 ? -1 : 1;
                choose(items.current < 0 ? 0 : items.current + step);
                return 0;
            }
            break;
        case combo_list_pick:
            pick(static_cast<std::int32_t>(wparam));
            return 0;
        case combo_cancel:
            close(false);
            return 0;
        case WM_DESTROY:
            if (dropped) {
                dropped = false;
                const HWND gone = list;
                list = HWND{};
                DestroyWindow(gone);
            }
            break;
        case CB_ADDSTRING:
        case CB_INSERTSTRING:
        case CB_DELETESTRING:
        case CB_RESETCONTENT:
        case CB_GETCOUNT:
        case CB_GETLBTEXT:
        case CB_GETLBTEXTLEN:
        case CB_FINDSTRING:
        case CB_FINDSTRINGEXACT:
        case CB_SELECTSTRING:
        case CB_GETCURSEL:
        case CB_SETCURSEL:
        case CB_GETITEMDATA:
        case CB_SETITEMDATA:
            return handle_items(message, wparam, lparam);
        case CB_SHOWDROPDOWN:
        case CB_GETDROPPEDSTATE:
        case CB_GETDROPPEDCONTROLRECT:
        case CB_SETDROPPEDWIDTH:
        case CB_GETDROPPEDWIDTH:
        case CB_SETITEMHEIGHT:
        case CB_GETITEMHEIGHT:
        case CB_LIMITTEXT:
        case CB_GETEDITSEL:
        case CB_SETEDITSEL:
            return handle_box(message, wparam, lparam);
        case WM_SETTEXT:
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
        case WM_CUT:
        case WM_COPY:
        case WM_PASTE:
        case WM_CLEAR:
        case WM_UNDO:
            return handle_text(message, wparam, lparam);
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

LRESULT combobox_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return control_procedure<ComboBox>(hwnd, message, wparam, lparam);
}

}  // namespace tarn::platform
