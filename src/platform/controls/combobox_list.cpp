// The list of a combo box: dropping, closing, and the pointer in it.
#include <algorithm>

#include "platform/controls/combobox.h"
#include "platform/display/display.h"

namespace tarn::platform {
namespace {

// Whether a list is one that dropped down, and is down.
bool is_down(const ListBox& list) {
    const ComboBox* box = record_of<ComboBox>(list.combo);
    return box != nullptr && box->dropped && box->list == list.hwnd;
}

}  // namespace

// Below the box, or above it where there is more room; on the box's monitor.
RECT ComboBox::list_place() const {
    RECT box;
    GetWindowRect(hwnd, box);
    const std::int32_t each =
        item_height > 0 ? item_height : list_item_height(Measure{*this}.line_height());
    std::int32_t most = drop_height - field_height;
    if (most < each) most = default_combo_rows * each + 2;
    const std::int32_t rows = std::clamp(items.count(), 1, std::max(1, (most - 2) / each));
    const std::int32_t height = rows * each + 2;
    const std::int32_t width = std::max(box.width(), dropped_width);
    const RECT screen = display().work_area(middle_of(box));
    std::int32_t y = box.bottom + 1;
    if (y + height > screen.bottom && box.top - screen.top > screen.bottom - box.bottom) {
        y = std::max(screen.top, box.top - 1 - height);
    }
    const std::int32_t x = std::max(std::min(box.left, screen.right - width), screen.left);
    return {x, y, x + width, y + height};
}

void ComboBox::drop() {
    if (!drops() || dropped || closing) return;
    if (!notify(*this, CBN_DROPDOWN)) return;
    if (dropped || !IsWindowVisible(hwnd)) return;
    if (has_field()) {
        const std::string typed = window_text(field);
        if (items.current < 0 || current_text() != typed)
            items.current = items.find(-1, typed, true);
        text_before = typed;
    }
    before = items.current;
    const RECT at = list_place();
    void* const self = reinterpret_cast<void*>(static_cast<std::intptr_t>(hwnd));
    list = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, "combolbox", "",
                           WS_POPUP | WS_BORDER | WS_VSCROLL | LBS_NOINTEGRALHEIGHT, at.left,
                           at.top, at.width(), at.height(), hwnd, HMENU{}, self);
    if (list == 0) return;
    dropped = true;
    if (font != 0) send_message(list, WM_SETFONT, static_cast<WPARAM>(font), 0);
    if (item_height > 0) send_message(list, LB_SETITEMHEIGHT, 0, item_height);
    if (items.current >= 0) {
        send_message(list, LB_SETTOPINDEX, static_cast<WPARAM>(items.current), 0);
    }
    ShowWindow(list, SW_SHOWNA);
    if (dead || list == 0) return;
    SetCapture(list);
    repaint();
}

// `accept`: what is chosen stays; otherwise it is again what it was when the list dropped.
void ComboBox::close(bool accept) {
    if (!dropped || closing) return;
    closing = true;
    bool taken_back = false;
    if (!accept && items.current != before) {
        taken_back = true;
        items.current = items.has(before) ? before : -1;
        if (field != 0) set_field_text(text_before);
    }
    if (!dead) notify(*this, accept ? CBN_SELENDOK : CBN_SELENDCANCEL);
    const HWND gone = list;
    list = HWND{};
    dropped = false;
    if (GetCapture() == gone) ReleaseCapture();
    DestroyWindow(gone);
    closing = false;
    if (dead) return;
    repaint();
    if (!notify(*this, CBN_CLOSEUP)) return;
    if (taken_back) notify(*this, CBN_SELCHANGE);
}

// ---- The pointer -------------------------------------------------------------------------------

ListItems* combobox_items(HWND combo) {
    ComboBox* box = record_of<ComboBox>(combo);
    return box != nullptr ? &box->items : nullptr;
}

bool combobox_list_pressed(ListBox& list, POINT at) {
    if (!is_down(list)) return false;
    if (list.client().contains(at)) {
        bool outside = false;
        list.press_item = list.item_at(at, outside);
        if (outside) list.press_item = -1;
        return true;
    }
    POINT screen = at;
    ClientToScreen(list.hwnd, screen);
    RECT whole;
    GetWindowRect(list.hwnd, whole);
    if (whole.contains(screen)) {
        // The pointer is captured, so that the list's own scroll bar is told by us.
        send_message(list.hwnd, WM_NCLBUTTONDOWN, HTVSCROLL, MAKELPARAM(screen.x, screen.y));
    } else {
        send_message(list.combo, combo_cancel, 0, 0);
    }
    return true;
}

bool combobox_list_moved(ListBox& list, POINT at, bool button_down) {
    if (!is_down(list)) return false;
    bool outside = false;
    const std::int32_t index = list.item_at(at, outside);
    list.last_mouse = at;
    const RECT rect = list.client();
    const bool beyond =
        button_down && list.press_item != -1 && (at.y < rect.top || at.y >= rect.bottom);
    if (beyond) {
        SetTimer(list.hwnd, ListBox::scroll_timer, 50, nullptr);
    } else {
        KillTimer(list.hwnd, ListBox::scroll_timer);
    }
    if (outside && !beyond) return true;
    if (button_down) list.press_item = index;
    if (index != list.hot) {
        const std::int32_t before = list.hot >= 0 ? list.hot : list.items().current;
        list.hot = index;
        if (list.items().has(before)) list.repaint_item(before);
        list.repaint_item(index);
    }
    return true;
}

bool combobox_list_released(ListBox& list, POINT at) {
    if (!is_down(list)) return false;
    KillTimer(list.hwnd, ListBox::scroll_timer);
    bool outside = false;
    const std::int32_t index = list.item_at(at, outside);
    const bool pressed_here = list.press_item >= 0;
    list.press_item = -1;
    if (!outside && pressed_here) {
        send_message(list.combo, combo_list_pick, static_cast<WPARAM>(index), 1);
    }
    return true;
}

// The bar gives the capture back when it is let go; anybody else who takes it closes the list.
bool combobox_list_lost_capture(ListBox& list, LPARAM to) {
    if (!is_down(list)) return false;
    if (to == list.hwnd) return true;
    if (to == 0) {
        SetCapture(list.hwnd);
    } else {
        send_message(list.combo, combo_cancel, 0, 0);
    }
    return true;
}

bool combobox_list_timer(ListBox& list) {
    if (!is_down(list)) return false;
    list.scroll_to(list.last_mouse.y < 0 ? list.top - 1 : list.top + 1);
    combobox_list_moved(list, list.last_mouse, true);
    return true;
}

}  // namespace tarn::platform
