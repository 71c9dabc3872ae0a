// Keys and the pointer in a list.
#include <algorithm>

#include "platform/controls/listbox.h"

namespace tarn::platform {
bool ListBox::tell(std::int32_t code) {
    if (combo != 0) {
        if (code == LBN_SELCHANGE) {
            send_message(combo, combo_list_pick, static_cast<WPARAM>(items().current), 1);
        }
        return !dead;
    }
    return !has(LBS_NOTIFY) || notify(*this, code);
}

void ListBox::set_current(std::int32_t index) {
    const std::int32_t before = items().current;
    items().current = index;
    caret = anchor = index;
    if (before != index) {
        repaint_item(before);
        repaint_item(index);
    }
    reveal(index);
}

// The range and nothing else.
void ListBox::select_range(std::int32_t from, std::int32_t to) {
    ListItems& list = items();
    const std::int32_t low = std::min(from, to);
    const std::int32_t high = std::max(from, to);
    if (list.selected_count() > 0) {
        for (std::int32_t i = 0; i < list.count(); ++i) {
            if ((i < low || i > high) && list[i].selected) {
                list.select(i, false);
                repaint_item(i);
            }
        }
    }
    for (std::int32_t i = std::max(0, low); i <= std::min(high, list.count() - 1); ++i) {
        if (list[i].selected) continue;
        list.select(i, true);
        repaint_item(i);
    }
}

// The keyboard goes to an item: it is selected, unless items are picked one by one.
void ListBox::go(std::int32_t index) {
    ListItems& list = items();
    if (list.count() == 0) return;
    index = std::clamp(index, 0, list.count() - 1);
    if (!multiple()) {
        const bool changed = list.current != index;
        set_current(index);
        if (changed) tell(LBN_SELCHANGE);
        return;
    }
    const std::int32_t before = caret;
    caret = index;
    repaint_item(before);
    repaint_item(caret);
    if (extended() && !key_down(VK_CONTROL)) {
        if (!key_down(VK_SHIFT) || anchor < 0) anchor = index;
        select_range(anchor, index);
        reveal(index);
        tell(LBN_SELCHANGE);
        return;
    }
    reveal(index);
}

void ListBox::key(WPARAM code) {
    ListItems& list = items();
    const std::int32_t at = multiple() ? caret : list.current;
    const std::int32_t page = std::max(1, in_view() - 1);
    switch (code) {
        case VK_UP:
            return go(at < 0 ? 0 : at - 1);
        case VK_DOWN:
            return go(at + 1);
        case VK_LEFT:
            if (columns()) return go(std::max(0, at) - rows());
            if (horizontal_bar) return scroll_across(scroll_x - 16);
            return go(at < 0 ? 0 : at - 1);
        case VK_RIGHT:
            if (columns()) return go(std::max(0, at) + rows());
            if (horizontal_bar) return scroll_across(scroll_x + 16);
            return go(at + 1);
        case VK_PRIOR:
            return go(std::max(0, at) - page);
        case VK_NEXT:
            return go(std::max(0, at) + page);
        case VK_HOME:
            return go(0);
        case VK_END:
            return go(list.count() - 1);
        case 'A':
            if (!extended() || !key_down(VK_CONTROL)) return;
            list.select_all(true);
            repaint();
            tell(LBN_SELCHANGE);
            return;
        default:
            return;
    }
}

void ListBox::type_ahead(char32_t code) {
    ListItems& list = items();
    if (code == ' ' && multiple()) {
        if (!list.has(caret)) return;
        const bool on = !list[caret].selected;
        if (extended() && !key_down(VK_CONTROL)) {
            select_range(caret, caret);
        } else {
            list.select(caret, on);
        }
        anchor = caret;
        repaint_item(caret);
        tell(LBN_SELCHANGE);
        return;
    }
    if (code < 0x20 || key_down(VK_CONTROL)) return;
    const std::int32_t at = multiple() ? caret : list.current;
    const std::int32_t found = letters.find(list, at, code, GetTickCount());
    if (found >= 0) go(found);
}

// ---- The pointer -------------------------------------------------------------------------------

void ListBox::press(POINT at, WPARAM keys, bool again) {
    if (GetFocus() != hwnd) {
        SetFocus(hwnd);
        if (dead) return;
    }
    bool outside = false;
    const std::int32_t index = item_at(at, outside);
    press_item = outside ? -1 : index;
    twice = again;
    last_mouse = at;
    dragging = true;
    SetCapture(hwnd);
    if (outside || has(LBS_NOSEL)) return;
    ListItems& list = items();
    if (!multiple()) return set_current(index);
    const std::int32_t before = caret;
    caret = index;
    repaint_item(before);
    drag_selects = true;
    if (extended() && (keys & MK_SHIFT) != 0 && list.has(anchor)) {
        select_range(anchor, index);
    } else if (!extended() || (keys & MK_CONTROL) != 0) {
        if (!again) list.select(index, !list[index].selected);
        drag_selects = list[index].selected;
        anchor = index;
    } else {
        anchor = index;
        select_range(index, index);
    }
    repaint_item(index);
}

void ListBox::drag(POINT at) {
    last_mouse = at;
    const RECT rect = client();
    if (at.y < rect.top || at.y >= rect.bottom) {
        SetTimer(hwnd, scroll_timer, 50, nullptr);
    } else {
        KillTimer(hwnd, scroll_timer);
    }
    bool outside = false;
    const std::int32_t index = item_at(at, outside);
    if (index < 0 || press_item < 0 || has(LBS_NOSEL)) return;
    if (!multiple()) {
        if (index != items().current) set_current(index);
        return;
    }
    if (!extended() || index == caret) return;
    caret = index;
    if (drag_selects) select_range(anchor, index);
    reveal(index);
}

void ListBox::end_drag() {
    dragging = false;
    KillTimer(hwnd, scroll_timer);
    if (GetCapture() == hwnd) ReleaseCapture();
}

// The parent hears of a click when it is over, of one on the selected item too.
void ListBox::release(POINT at) {
    if (!dragging) return;
    last_mouse = at;
    end_drag();
    if (dead || press_item < 0) return;
    press_item = -1;
    tell(twice ? LBN_DBLCLK : LBN_SELCHANGE);
}

}  // namespace tarn::platform
