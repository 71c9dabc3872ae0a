// "combobox": a field, or the chosen item, with a list that is always there or drops down.
#include "platform/controls/combobox.h"

#include <algorithm>

#include "platform/base/text.h"

namespace tarn::platform {
namespace {

constexpr std::uint32_t type_mask = 3;
constexpr std::int32_t arrow_width = 18;
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

}  // namespace tarn::platform
