// "listbox". The messages.
#include "platform/controls/listbox.h"

#include <algorithm>

#include "platform/controls/combobox.h"

namespace tarn::platform {

ListItems& ListBox::items() {
    if (combo == 0) return own_items;
    ListItems* theirs = combobox_items(combo);
    return theirs != nullptr ? *theirs : own_items;
}

bool ListBox::owner_drawn() const {
    if (combo != 0) return (GetWindowLong(combo, GWL_STYLE) & CBS_OWNERDRAWFIXED) != 0;
    return has(LBS_OWNERDRAWFIXED);
}

bool holds_numbers(const Control& control, std::uint32_t owner_drawn, std::uint32_t strings) {
    return control.has(owner_drawn) && !control.has(strings);
}

bool ListBox::is_selected(std::int32_t index) {
    if (multiple()) return items()[index].selected;
    if (combo != 0 && hot >= 0) return index == hot;
    return index == items().current;
}

std::int32_t list_item_height(std::int32_t line_height) {
    return line_height + std::max(1, line_height / 7);
}

// What the owner says of its items' height, or the font.
void ListBox::measure_items() {
    if (height_set) return;
    const Measure measure{*this};
    item_height = list_item_height(measure.line_height());
    if (columns() && column_width == 0) column_width = measure.extent("x").cx * 15;
    if (!has(LBS_OWNERDRAWFIXED) || combo != 0) return;
    MEASUREITEMSTRUCT item;
    item.CtlType = ODT_LISTBOX;
    item.CtlID = static_cast<UINT>(GetDlgCtrlID(hwnd));
    item.itemWidth = static_cast<UINT>(std::max(0, client().width()));
    item.itemHeight = static_cast<UINT>(item_height);
    send_message(GetParent(hwnd), WM_MEASUREITEM, item.CtlID, reinterpret_cast<LPARAM>(&item));
    if (item.itemHeight >= 1 && item.itemHeight <= 1024) {
        item_height = static_cast<std::int32_t>(item.itemHeight);
    }
}

// A list is as high as its whole items, unless its style says otherwise.
void ListBox::fit_height() {
    if (combo != 0 || has(LBS_NOINTEGRALHEIGHT)) return;
    const std::int32_t height = client().height();
    if (height < item_height || height % item_height == 0) return;
    RECT rect;
    GetWindowRect(hwnd, rect);
    SetWindowPos(hwnd, HWND{}, 0, 0, rect.width(), rect.height() - height % item_height,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void ListBox::create(const CREATESTRUCT& made) {
    combo = HWND{static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(made.lpCreateParams))};
    vertical_bar = has(WS_VSCROLL);
    horizontal_bar = has(WS_HSCROLL) && !columns();
    measure_items();
    if (dead) return;
    fit_height();
    bars_due = true;
    update_bars();
}

LRESULT ListBox::handle_items(UINT message, WPARAM wparam, LPARAM lparam) {
    ListItems& list = items();
    const auto index = static_cast<std::int32_t>(wparam);
    switch (message) {
        case LB_ADDSTRING:
        case LB_INSERTSTRING: {
            const bool number = holds_numbers(*this, LBS_OWNERDRAWFIXED, LBS_HASSTRINGS);
            const std::string_view text = number ? std::string_view{} : text_argument(lparam);
            const bool sort = message == LB_ADDSTRING && has(LBS_SORT) && !number;
            if (message == LB_INSERTSTRING && index > list.count()) return LB_ERR;
            const std::int32_t at = sort ? list.insert_sorted(text)
                                         : list.insert(message == LB_ADDSTRING ? -1 : index, text);
            if (number) list[at].data = static_cast<std::uintptr_t>(lparam);
            if (caret >= at && list.count() > 1) ++caret;
            items_changed();
            return at;
        }
        case LB_DELETESTRING:
            if (!list.has(index)) return LB_ERR;
            list.remove(index);
            if (caret > index) --caret;
            items_changed();
            return list.count();
        case LB_RESETCONTENT:
            list.clear();
            top = scroll_x = 0;
            items_changed();
            return 0;
        case LB_GETCOUNT:
            return list.count();
        case LB_GETTEXT:
            if (!list.has(index) || lparam == 0) return LB_ERR;
            if (holds_numbers(*this, LBS_OWNERDRAWFIXED, LBS_HASSTRINGS)) {
                *reinterpret_cast<std::uintptr_t*>(lparam) = list[index].data;
                return sizeof(std::uintptr_t);
            }
            return copy_text(list[index].text, list[index].text.size() + 1, lparam);
        case LB_GETTEXTLEN:
            if (!list.has(index)) return LB_ERR;
            if (holds_numbers(*this, LBS_OWNERDRAWFIXED, LBS_HASSTRINGS)) {
                return sizeof(std::uintptr_t);
            }
            return static_cast<LRESULT>(list[index].text.size());
        case LB_GETITEMDATA:
            return list.has(index) ? static_cast<LRESULT>(list[index].data) : LB_ERR;
        case LB_SETITEMDATA:
            if (!list.has(index)) return LB_ERR;
            list[index].data = static_cast<std::uintptr_t>(lparam);
            return 0;
        case LB_FINDSTRING:
        case LB_FINDSTRINGEXACT:
            if (holds_numbers(*this, LBS_OWNERDRAWFIXED, LBS_HASSTRINGS)) {
                return list.find_data(index, static_cast<std::uintptr_t>(lparam));
            }
            return list.find(index, text_argument(lparam), message == LB_FINDSTRINGEXACT);
        default:
            return LB_ERR;
    }
}

LRESULT ListBox::handle_selection(UINT message, WPARAM wparam, LPARAM lparam) {
    ListItems& list = items();
    const auto index = static_cast<std::int32_t>(wparam);
    switch (message) {
        case LB_GETCURSEL:
            if (!multiple()) return list.current;
            return list.has(caret) ? caret : LB_ERR;
        case LB_SETCURSEL:
            if (multiple()) return LB_ERR;
            if (index == -1 || !list.has(index)) {
                repaint_item(list.current);
                list.current = -1;
                return LB_ERR;
            }
            set_current(index);
            return index;
        case LB_SELECTSTRING: {
            const std::int32_t found = list.find(index, text_argument(lparam), false);
            if (found >= 0) set_current(found);
            return found;
        }
        case LB_GETSEL:
            if (!list.has(index)) return LB_ERR;
            return (multiple() ? list[index].selected : list.current == index) ? 1 : 0;
        case LB_SETSEL:
            if (!multiple()) return LB_ERR;
            if (lparam == -1) {
                list.select_all(wparam != 0);
                repaint();
                return 0;
            }
            if (!list.has(lparam)) return LB_ERR;
            list.select(static_cast<std::int32_t>(lparam), wparam != 0);
            repaint_item(static_cast<std::int32_t>(lparam));
            return 0;
        case LB_SELITEMRANGEEX: {
            if (!multiple()) return LB_ERR;
            const auto first = static_cast<std::int32_t>(wparam);
            const auto last = static_cast<std::int32_t>(lparam);
            const std::int32_t low = std::max(0, std::min(first, last));
            for (std::int32_t i = low; i <= std::min(std::max(first, last), list.count() - 1);
                 ++i) {
                list.select(i, first <= last);
            }
            repaint();
            return 0;
        }
        case LB_GETSELCOUNT:
            return multiple() ? list.selected_count() : LB_ERR;
        case LB_GETSELITEMS: {
            if (!multiple() || lparam == 0) return LB_ERR;
            auto* into = reinterpret_cast<std::int32_t*>(lparam);
            WPARAM stored = 0;
            for (std::int32_t i = 0; i < list.count() && stored < wparam; ++i) {
                if (list[i].selected) into[stored++] = i;
            }
            return static_cast<LRESULT>(stored);
        }
        case LB_SETCARETINDEX:
            if (!list.has(index)) return LB_ERR;
            repaint_item(caret);
            caret = index;
            repaint_item(caret);
            reveal(index);
            return 0;
        case LB_GETCARETINDEX:
            return multiple() ? caret : list.current;
        default:
            return LB_ERR;
    }
}

LRESULT ListBox::handle_view(UINT message, WPARAM wparam, LPARAM lparam) {
    const auto index = static_cast<std::int32_t>(wparam);
    switch (message) {
        case LB_GETTOPINDEX:
            return top;
        case LB_SETTOPINDEX:
            if (!items().has(index)) return LB_ERR;
            scroll_to(index);
            return 0;
        case LB_SETHORIZONTALEXTENT:
            extent = std::max(0, index);
            bars_due = true;
            update_bars();
            return 0;
        case LB_GETHORIZONTALEXTENT:
            return extent;
        case LB_SETCOLUMNWIDTH:
            column_width = std::max(1, index);
            bars_due = false;
            items_changed();
            return 0;
        case LB_GETITEMRECT:
            if (lparam == 0) return LB_ERR;
            *reinterpret_cast<RECT*>(lparam) = item_rect(index);
            return items().has(index) ? 0 : LB_ERR;
        case LB_SETITEMHEIGHT: {
            const std::int32_t height = LOWORD(static_cast<std::uintptr_t>(lparam));
            if (height < 1 || height > 1024) return LB_ERR;
            item_height = height;
            height_set = true;
            fit_height();
            bars_due = false;
            if (!dead) items_changed();
            return 0;
        }
        case LB_GETITEMHEIGHT:
            return item_height;
        case LB_ITEMFROMPOINT: {
            bool outside = false;
            const std::int32_t at = item_at({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}, outside);
            return MAKELPARAM(std::max(0, at), outside ? 1 : 0);
        }
        default:
            return LB_ERR;
    }
}

LRESULT ListBox::handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_CREATE:
            create(*reinterpret_cast<const CREATESTRUCT*>(lparam));
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint();
            return 0;
        case WM_NCPAINT: {
            const LRESULT result = DefWindowProcA(hwnd, message, wparam, lparam);
            draw_window_border(*this, {enabled(), hovered, focused});
            return result;
        }
        case WM_SETFONT:
            font = HFONT{static_cast<std::int32_t>(wparam)};
            if (!height_set && !owner_drawn()) {
                item_height = list_item_height(Measure{*this}.line_height());
                fit_height();
            }
            bars_due = false;
            if (!dead) items_changed();
            return 0;
        case WM_GETFONT:
            return font;
        case WM_SIZE:
            fit_height();
            if (dead) return 0;
            bars_due = true;
            update_bars();
            if (!dead) repaint();
            return 0;
        case WM_ENABLE:
        case WM_SYSCOLORCHANGE:
            repaint();
            draw_window_border(*this, {enabled(), hovered, focused});
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            focused = message == WM_SETFOCUS;
            if (focused && multiple() && caret < 0 && items().count() > 0) caret = 0;
            if (!focused && dragging) end_drag();
            repaint();
            draw_window_border(*this, {enabled(), hovered, focused});
            tell(focused ? LBN_SETFOCUS : LBN_KILLFOCUS);
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS | DLGC_WANTCHARS;
        case WM_KEYDOWN:
            key(wparam);
            return 0;
        case WM_CHAR:
        case WM_UNICHAR:
            type_ahead(typed_character(message, wparam));
            return 0;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: {
            const POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
            if (combo != 0 && combobox_list_pressed(*this, at)) return 0;
            press(at, wparam, message == WM_LBUTTONDBLCLK);
            return 0;
        }
        case WM_MOUSEMOVE: {
            const POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
            if (!hovered) {
                hovered = true;
                draw_window_border(*this, {enabled(), true, focused});
            }
            if (combo != 0 && combobox_list_moved(*this, at, (wparam & MK_LBUTTON) != 0)) return 0;
            if (dragging) drag(at);
            return 0;
        }
        case WM_MOUSELEAVE:
            hovered = false;
            draw_window_border(*this, {enabled(), false, focused});
            return 0;
        case WM_LBUTTONUP: {
            const POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
            if (combo != 0 && combobox_list_released(*this, at)) return 0;
            release(at);
            return 0;
        }
        case WM_CAPTURECHANGED:
            if (combo != 0 && combobox_list_lost_capture(*this, lparam)) return 0;
            if (dragging) {
                dragging = false;
                KillTimer(hwnd, scroll_timer);
            }
            return 0;
        case WM_TIMER:
            if (wparam != scroll_timer) break;
            if (combo != 0 && combobox_list_timer(*this)) return 0;
            if (dragging) {
                scroll_to(last_mouse.y < 0 ? top - 1 : top + 1);
                drag(last_mouse);
            }
            return 0;
        case WM_MOUSEWHEEL:
            if (items().count() <= in_view()) break;
            wheel(static_cast<std::int16_t>(HIWORD(wparam)));
            return 0;
        case WM_VSCROLL:
        case WM_HSCROLL:
            scroll(message == WM_VSCROLL, LOWORD(wparam));
            return 0;
        case WM_DESTROY:
            KillTimer(hwnd, scroll_timer);
            break;
        case list_items_changed:
            bars_due = false;
            items_changed();
            return 0;
        case LB_ADDSTRING:
        case LB_INSERTSTRING:
        case LB_DELETESTRING:
        case LB_RESETCONTENT:
        case LB_GETCOUNT:
        case LB_GETTEXT:
        case LB_GETTEXTLEN:
        case LB_GETITEMDATA:
        case LB_SETITEMDATA:
        case LB_FINDSTRING:
        case LB_FINDSTRINGEXACT:
            return handle_items(message, wparam, lparam);
        case LB_GETCURSEL:
        case LB_SETCURSEL:
        case LB_SELECTSTRING:
        case LB_GETSEL:
        case LB_SETSEL:
        case LB_SELITEMRANGEEX:
        case LB_GETSELCOUNT:
        case LB_GETSELITEMS:
        case LB_SETCARETINDEX:
        case LB_GETCARETINDEX:
            return handle_selection(message, wparam, lparam);
        case LB_GETTOPINDEX:
        case LB_SETTOPINDEX:
        case LB_SETHORIZONTALEXTENT:
        case LB_GETHORIZONTALEXTENT:
        case LB_SETCOLUMNWIDTH:
        case LB_GETITEMRECT:
        case LB_SETITEMHEIGHT:
        case LB_GETITEMHEIGHT:
        case LB_ITEMFROMPOINT:
            return handle_view(message, wparam, lparam);
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

LRESULT listbox_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return control_procedure<ListBox>(hwnd, message, wparam, lparam);
}

}  // namespace tarn::platform
