// Where the items of a list stand, how it scrolls, and how it is painted.
#include <algorithm>

#include "platform/controls/combobox.h"
#include "platform/controls/listbox.h"

namespace tarn::platform {
namespace {

constexpr std::int32_t text_inset = 4;

}  // namespace

std::int32_t ListBox::rows() const {
    return std::max(1, client().height() / std::max(1, item_height));
}

std::int32_t ListBox::in_view() const {
    if (!columns()) return rows();
    return rows() * std::max(1, client().width() / std::max(1, column_width));
}

RECT ListBox::item_rect(std::int32_t index) const {
    RECT rect = client();
    const std::int32_t from_top = index - top;
    if (columns()) {
        const std::int32_t high = rows();
        const std::int32_t column =
            from_top >= 0 ? from_top / high : -((-from_top + high - 1) / high);
        rect.left = column * column_width;
        rect.right = rect.left + column_width;
        rect.top = (from_top - column * high) * item_height;
    } else {
        rect.top = std::clamp(from_top, -1000000, 1000000) * item_height;
        rect.right = std::max(rect.right, extent - scroll_x);
        rect.left -= scroll_x;
    }
    rect.bottom = rect.top + item_height;
    return rect;
}

// The item nearest to a place; `outside` when the place is on no item.
std::int32_t ListBox::item_at(POINT at, bool& outside) {
    const RECT rect = client();
    outside = !rect.contains(at);
    const std::int32_t count = items().count();
    if (count == 0) {
        outside = true;
        return -1;
    }
    at.y = std::clamp(at.y, rect.top, std::max(rect.top, rect.bottom - 1));
    std::int32_t index = top + at.y / item_height;
    if (columns()) {
        const std::int32_t column = std::max(0, at.x) / std::max(1, column_width);
        index = top + column * rows() + std::min(at.y / item_height, rows() - 1);
    }
    if (index >= count) {
        outside = true;
        index = count - 1;
    }
    return index;
}

// Many items come at once: the bars and the picture wait for the next painting.
void ListBox::items_changed() {
    const std::int32_t count = items().count();
    caret = std::min(caret, count - 1);
    anchor = std::min(anchor, count - 1);
    hot = std::min(hot, count - 1);
    if (bars_due) return;
    bars_due = true;
    repaint();
}

void ListBox::update_bars() {
    if (!bars_due) return;
    bars_due = false;
    const std::int32_t count = items().count();
    SCROLLINFO info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    if (has(LBS_DISABLENOSCROLL) && combo == 0) info.fMask |= SIF_DISABLENOSCROLL;
    if (columns()) {
        const std::int32_t high = rows();
        top = std::clamp(top / high * high, 0, std::max(0, (count - 1) / high * high));
        if (!has(WS_HSCROLL)) return;
        info.nMax = std::max(0, (count + high - 1) / high - 1);
        info.nPage = static_cast<UINT>(std::max(1, client().width() / std::max(1, column_width)));
        info.nPos = top / high;
        SetScrollInfo(hwnd, SB_HORZ, info, true);
        return;
    }
    top = std::clamp(top, 0, std::max(0, count - rows()));
    // Without its style a list scrolls all the same, but shows no bar.
    if (vertical_bar) {
        info.nMax = std::max(0, count - 1);
        info.nPage = static_cast<UINT>(rows());
        info.nPos = top;
        SetScrollInfo(hwnd, SB_VERT, info, true);
    }
    if (dead || !horizontal_bar) return;
    info.nMax = std::max(0, extent - 1);
    info.nPage = static_cast<UINT>(std::max(0, client().width()));
    info.nPos = scroll_x;
    SetScrollInfo(hwnd, SB_HORZ, info, true);
}

void ListBox::scroll_to(std::int32_t to) {
    const std::int32_t count = items().count();
    const std::int32_t high = rows();
    if (columns()) {
        to = std::clamp(to / high * high, 0, std::max(0, (count - 1) / high * high));
    } else {
        to = std::clamp(to, 0, std::max(0, count - high));
    }
    if (to == top) return;
    top = to;
    repaint();
    bars_due = true;
    update_bars();
}

void ListBox::scroll_across(std::int32_t to) {
    to = std::clamp(to, 0, std::max(0, extent - client().width()));
    if (to == scroll_x) return;
    scroll_x = to;
    repaint();
    bars_due = true;
    update_bars();
}

void ListBox::reveal(std::int32_t index) {
    if (!items().has(index)) return;
    const std::int32_t shown = in_view();
    if (index < top) {
        scroll_to(index);
    } else if (index >= top + shown) {
        scroll_to(columns() ? (index / rows() - shown / rows() + 1) * rows() : index - shown + 1);
    }
}

void ListBox::repaint_item(std::int32_t index) const {
    if (index >= 0) repaint(item_rect(index));
}

void ListBox::scroll(bool vertical, std::int32_t code) {
    const bool across = !vertical && !columns();
    // A list in columns scrolls by whole ones.
    const std::int32_t unit = columns() && !across ? rows() : 1;
    ScrollValues values;
    values.high = INT32_MAX / 4 / unit;
    values.position = (across ? scroll_x : top) / unit;
    values.page = static_cast<UINT>(across ? std::max(scroll_step, client().width() - scroll_step)
                                           : std::max(1, in_view() - (columns() ? 0 : 1)) / unit);
    const std::int32_t bar = vertical ? SB_VERT : SB_HORZ;
    const std::int32_t to = unit * scrolled_to(hwnd, bar, code, values, across ? scroll_step : 1);
    if (across) {
        scroll_across(to);
    } else {
        scroll_to(to);
    }
}

void ListBox::wheel(std::int32_t delta) {
    const std::int32_t lines = wheel_scroll_lines() * delta / WHEEL_DELTA;
    scroll_to(top - (columns() ? (lines > 0 ? rows() : -rows()) : lines));
}

// ---- Painting ----------------------------------------------------------------------------------

void ListBox::draw_by_owner(HDC dc, std::int32_t index, const RECT& rect, bool selected) {
    const HWND teller = combo != 0 ? combo : hwnd;
    DRAWITEMSTRUCT item;
    item.CtlType = combo != 0 ? ODT_COMBOBOX : ODT_LISTBOX;
    item.CtlID = static_cast<UINT>(GetDlgCtrlID(teller));
    item.itemID = static_cast<UINT>(index);
    item.itemAction = ODA_DRAWENTIRE;
    if (selected) item.itemState |= ODS_SELECTED;
    if (focused && index == caret) item.itemState |= ODS_FOCUS;
    if (!enabled()) item.itemState |= ODS_DISABLED;
    item.hwndItem = teller;
    item.hDC = dc;
    item.rcItem = rect;
    item.itemData = items()[index].data;
    const std::int32_t state = SaveDC(dc);
    IntersectClipRect(dc, rect);
    send_message(GetParent(teller), WM_DRAWITEM, item.CtlID, reinterpret_cast<LPARAM>(&item));
    RestoreDC(dc, state);
}

void ListBox::paint_item(HDC dc, std::int32_t index, const RECT& rect, const Colours& colours) {
    const Theme& look = theme();
    const bool selected = is_selected(index);
    if (owner_drawn()) {
        SetTextColor(dc, selected ? look.selection_text : colours.text);
        SetBkColor(dc, selected ? look.selection : colours.back);
        return draw_by_owner(dc, index, rect, selected);
    }
    COLORREF colour = enabled() ? colours.text : disabled_text(colours);
    if (selected && enabled()) {
        const bool strong = focused || combo != 0;
        const COLORREF back = strong ? look.selection : look.selection_inactive;
        fill_rounded(dc, to_f(rect), 0, back);
        colour = strong ? look.selection_text : readable(look.text, back);
    }
    SetTextColor(dc, colour);
    RECT words = rect;
    words.left += text_inset;
    words.right = columns() ? rect.right - 2 : std::max(rect.right, 32000);
    draw_line(dc, items()[index].text, words, DT_LEFT | DT_NOPREFIX | DT_EXPANDTABS);
    if (focused && multiple() && index == caret && keyboard_focus_visible()) {
        RECT ring = rect;
        stroke_rounded(dc, to_f(ring), 2, 1, selected ? look.selection_text : look.focus_ring);
    }
}

void ListBox::paint() {
    update_bars();
    if (dead) return;
    const Paint painting{*this};
    const HDC dc = painting.dc();
    const RECT damaged = painting.damaged();
    const Theme& look = theme();
    Control asker;
    asker.hwnd = combo != 0 ? combo : hwnd;
    const Colours colours = ask_colours(asker, dc, WM_CTLCOLORLISTBOX, look.text, look.window);
    if (dead) return;
    SelectObject(dc, control_font(*this));
    fill_back(dc, damaged, colours);
    const RECT inside = client();
    const std::int32_t count = items().count();
    const std::int32_t last = columns() ? top + in_view() + rows() : top + rows() + 1;
    for (std::int32_t i = top; i < std::min(last, count); ++i) {
        const RECT rect = item_rect(i);
        const bool seen = rect.top < damaged.bottom && rect.bottom > damaged.top &&
                          rect.left < damaged.right && rect.right > damaged.left;
        if (seen && rect.top < inside.bottom) paint_item(dc, i, rect, colours);
        if (dead) return;
        if (!items().has(i)) break;
    }
    draw_inner_edge(*this, damaged, {enabled(), hovered, focused});
}

}  // namespace tarn::platform
