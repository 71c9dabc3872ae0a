// What a combo box makes of its messages.
#include "platform/controls/combobox.h"

#include <algorithm>

#include "platform/base/text.h"

namespace tarn::platform {

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
