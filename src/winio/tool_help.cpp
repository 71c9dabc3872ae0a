// Help of controls, the text behind `?`: a tip at the pointer (%th, %bh), or a line of the window
// (%he, or the one that a window gets of itself). F1 shows the tip of the control with the focus.
#include <algorithm>
#include <cstring>
#include <string>

#include "platform/display/display.h"
#include "platform/gdi/theme.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/options.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr UINT first_delay = 500, next_delay = 80;  // milliseconds
constexpr UINT shown_at_least = 6000, shown_a_character = 60;
constexpr std::int32_t widest_tip = 360, pad_x = 8, pad_y = 5, below_pointer = 20,
                       below_control = 4;

tool_help_state& state() {
    return procedures().tool_help;
}

bool is_on(const tool_properties* props) {
    return props && (props->variable ? *props->variable != 0 : props->bubble || props->native);
}

RECT place_of(const help_target& target) {
    const window_control* control = target.control;
    RECT place{control->left, control->top, control->right + 1, control->bottom + 1};
    if (target.cell >= 0) {
        const button_cell& cell =
            static_cast<const constructed_button*>(control->block)->cells[target.cell];
        place = {place.left + cell.left, place.top + cell.top, place.left + cell.right,
                 place.top + cell.bottom};
    }
    return place;
}

std::int32_t cell_under(const window_control* control, POINT at) {
    const auto* block = static_cast<const constructed_button*>(control->block);
    for (std::int32_t i = 0; i < block->count; ++i) {
        const button_cell& cell = block->cells[i];
        const RECT place{cell.left, cell.top, cell.right, cell.bottom};
        if (cell.help && place.contains({at.x - control->left, at.y - control->top})) return i;
    }
    return -1;
}

bool has_help(const window_control* control) {
    if (control->type != control_type::button_block) return control->help && *control->help;
    const auto* block = static_cast<const constructed_button*>(control->block);
    for (std::int32_t i = 0; i < block->count; ++i)
        if (block->cells[i].help) return true;
    return false;
}

// The smallest control with help at a point of the window's client area. The pointer is over its
// parent where a control is disabled, or has no window.
help_target target_at(fancy_window* window, POINT at) {
    help_target found;
    std::int64_t smallest = INT64_MAX;
    for (window_control* control = window->first_control; control; control = control->next) {
        if (!has_help(control)) continue;
        const RECT place{control->left, control->top, control->right + 1, control->bottom + 1};
        const std::int64_t area = std::int64_t{place.width()} * place.height();
        if (!place.contains(at) || area > smallest) continue;
        if (control->hwnd && !IsWindowVisible(control->hwnd)) continue;
        std::int32_t cell = -1;
        if (control->type == control_type::button_block) {
            cell = cell_under(control, at);
            if (cell < 0) continue;
        }
        smallest = area;
        found = {window, control, cell};
    }
    return found;
}

const char* text_of(const help_target& target) {
    if (!target.control) return "";
    const char* text = target.control->help;
    if (target.cell >= 0)
        text =
            static_cast<const constructed_button*>(target.control->block)->cells[target.cell].help;
    return text ? text : "";
}

void stop_timer() {
    if (state().timer != 0) KillTimer(HWND{}, state().timer);
    state().timer = 0;
}

void hide_tip() {
    stop_timer();
    HWND tip = state().tip;
    if (!tip) return;
    state().tip = HWND{};
    state().gone_since = GetTickCount();
    DestroyWindow(tip);
}

// ---- The tip -----------------------------------------------------------------------------------
HFONT tip_font(const tool_properties* props) {
    if (!props || props->scaling == 1.0) return records().default_font;
    LOGFONT description = records().default_spec;
    description.lfHeight = static_cast<std::int32_t>(description.lfHeight * props->scaling);
    description.lfWidth = 0;
    return get_font(description);
}

UINT text_format(const tool_properties* props) {
    return DT_WORDBREAK | (props && props->no_prefix ? UINT{DT_NOPREFIX} : 0);
}

// Texts are in the encoding of their window.
struct as_window {
    explicit as_window(fancy_window* window) : before(current_window()) {
        current_window() = window;
    }
    ~as_window() { current_window() = before && window_listed(before) ? before : nullptr; }
    as_window(const as_window&) = delete;
    as_window& operator=(const as_window&) = delete;
    fancy_window* before;
};

SIZE tip_size(const help_target& target) {
    const as_window encoding(target.window);
    const tool_properties* props = target.window->tool_props;
    HDC dc = measuring_dc();
    HGDIOBJ before = SelectObject(dc, tip_font(props));
    RECT measured{0, 0, static_cast<std::int32_t>(widest_tip * (props ? props->scaling : 1.0)), 0};
    DrawTextAW(dc, text_of(target), -1, measured, text_format(props) | DT_CALCRECT);
    SelectObject(dc, before);
    return {measured.width() + 2 * pad_x, measured.height() + 2 * pad_y};
}

POINT tip_place(const help_target& target, SIZE size, bool at_control) {
    const tool_properties* props = target.window->tool_props;
    RECT place = place_of(target);
    POINT corners[] = {{place.left, place.top}, {place.right, place.bottom}};
    MapWindowPoints(target.window->hwnd, HWND{}, corners, 2);
    POINT pointer;
    GetCursorPos(pointer);
    const bool at_cursor = props && props->at_cursor && !at_control;
    POINT at{pointer.x, at_cursor ? pointer.y + below_pointer : corners[1].y + below_control};
    // A control that is deep, such as a list, has its tip where the pointer is.
    if (!at_control) at.y = std::min(at.y, pointer.y + 2 * below_pointer);
    if (!at_cursor && props && props->centre) at.x = (corners[0].x + corners[1].x - size.cx) / 2;
    if (at_control || (!at_cursor && props && props->left_align)) at.x = corners[0].x;

    const RECT area = display().work_area(at_control ? at : pointer);
    at.x = std::clamp(at.x, area.left, std::max(area.left, area.right - size.cx));
    if (at.y + size.cy > area.bottom)
        at.y = (at_cursor ? pointer.y : corners[0].y) - size.cy - below_control;
    at.y = std::max(at.y, area.top);
    return at;
}

void expire(HWND, UINT, std::uintptr_t, DWORD) {
    hide_tip();
    state().gone_since = 0;  // the next one takes its time again
}

void show_tip(const help_target& target, bool at_control) {
    hide_tip();
    const SIZE size = tip_size(target);
    const POINT at = tip_place(target, size, at_control);
    state().over = target;
    HWND tip;
    {
        const as_window encoding(target.window);
        tip = CreateWindowExAW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | WS_EX_TOPMOST,
                               "TarnickBubbleHelp", text_of(target), WS_POPUP, at.x, at.y, size.cx,
                               size.cy, target.window->hwnd, HMENU{});
    }
    if (!tip) return;
    state().tip = tip;
    ShowWindow(tip, SW_SHOWNA);
    const auto length = static_cast<UINT>(std::min<std::size_t>(std::strlen(text_of(target)), 500));
    state().timer = SetTimer(HWND{}, 0, shown_at_least + length * shown_a_character, expire);
}

bool may_show(const fancy_window* window) {
    const tool_properties* props = window->tool_props;
    if (!window->flags.open || !is_on(props)) return false;
    if (props->always) return true;
    HWND active = GetActiveWindow();
    return active && (active == window->hwnd || IsChild(active, window->hwnd));
}

void pointer_rested(HWND, UINT, std::uintptr_t, DWORD) {
    stop_timer();
    const help_target& target = state().over;
    if (target.control && may_show(target.window)) show_tip(target, false);
}

COLORREF text_colour_of(const tool_properties* props, COLORREF ground) {
    if (props && props->text != no_colour) return props->text;
    // On a ground that the program chose: dark or light, whichever can be read.
    constexpr COLORREF dark = RGB(0x20, 0x24, 0x28);
    const COLORREF light = theme().tooltip_text;
    return contrast(dark, ground) > contrast(light, ground) ? dark : light;
}

void paint_tip(HWND hwnd) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, paint);
    if (!dc) return;
    RECT client;
    GetClientRect(hwnd, client);
    const help_target& target = state().over;
    const tool_properties* props = target.window ? target.window->tool_props : nullptr;
    const Theme& look = theme();
    const bool own = props && props->background != no_colour;
    const COLORREF ground = own ? props->background : look.tooltip;
    const COLORREF ink = text_colour_of(props, ground);
    FillRect(dc, client, get_brush(blend(ground, ink, 0.25F)));
    FillRect(dc, {client.left + 1, client.top + 1, client.right - 1, client.bottom - 1},
             get_brush(ground));
    if (target.control) {
        const as_window encoding(target.window);
        SelectObject(dc, tip_font(props));
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, ink);
        RECT text{client.left + pad_x, client.top + pad_y, client.right, client.bottom};
        DrawTextAW(dc, text_of(target), -1, text, text_format(props));
    }
    EndPaint(hwnd, paint);
}

// ---- Following the pointer ---------------------------------------------------------------------
void show_in_line(const fancy_window* window, const char* text) {
    const window_control* line = window->help_control;
    if (!line || !line->hwnd || line->flags.placeholder) return;
    if (window_text(line->hwnd) != text) SetWindowTextAW(line->hwnd, text);
}

void go_over(const help_target& target) {
    tool_help_state& s = state();
    if (s.over == target) return;
    const help_target before = s.over;
    const bool was_shown = s.tip || GetTickCount() - s.gone_since < first_delay;
    hide_tip();
    s.over = target;
    if (before.window && before.window != target.window && window_listed(before.window) &&
        before.window->flags.open)
        show_in_line(before.window, "");
    fancy_window* window = target.window;
    if (!window || !window_listed(window)) return;
    if (!is_on(window->tool_props)) {
        const as_window encoding(window);
        show_in_line(window, text_of(target));
        return;
    }
    if (!target.control) return;
    const tool_properties* props = window->tool_props;
    UINT delay = was_shown ? next_delay : first_delay;
    if (props->delay && !was_shown) delay = static_cast<UINT>(std::clamp(*props->delay, 0, 60000));
    s.timer = SetTimer(HWND{}, 0, std::max(delay, 1U), pointer_rested);
}

}  // namespace

void follow_pointer_for_help(const MSG& message) {
    if (message.message != WM_MOUSEMOVE && message.message != WM_MOUSELEAVE) return;
    fancy_window* window = our_window(message.hwnd);
    if (!window || !window->flags.open || window->flags.closing) return go_over({});
    if (!window->flags.help_wanted && state().over.window == nullptr) return;
    if (message.message == WM_MOUSELEAVE) return go_over({window, nullptr, -1});
    POINT at{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    MapWindowPoints(message.hwnd, window->hwnd, &at, 1);
    help_target target = target_at(window, at);
    target.window = window;
    go_over(target);
}

void hide_tool_help() {
    hide_tip();
    state().gone_since = 0;
}

bool help_requested(fancy_window* window) {
    window_control* control = control_of_handle(window, GetFocus());
    if (!control || !has_help(control) || !control->help) return false;
    const help_target target{window, control, -1};
    show_in_line(window, text_of(target));
    show_tip(target, true);
    return true;
}

void tool_help_updated(const void* variable) {
    const help_target& target = state().over;
    if (!variable || !target.control || text_of(target) != variable) return;
    if (state().tip)
        show_tip(target, false);
    else if (!is_on(target.window->tool_props))
        show_in_line(target.window, text_of(target));
}

void forget_tool_help(const fancy_window* window) {
    if (state().over.window != window) return;
    hide_tip();
    state().over = {};
}

HWND tool_help_window(const fancy_window* window) {
    return state().over.window == window && IsWindow(state().tip) ? state().tip : HWND{};
}

LRESULT bubble_help_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    constexpr UINT hide = 0x402, help_key = 0x403;
    switch (message) {
        case WM_PAINT:
            paint_tip(hwnd);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_NCHITTEST:
            return HTTRANSPARENT;
        case hide:
            hide_tool_help();
            return 0;
        case help_key:
            if (fancy_window* window = state().over.window) help_requested(window);
            return 0;
        case WM_DESTROY:
            if (state().tip == hwnd) state().tip = HWND{};
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

}  // namespace tarn::winio
