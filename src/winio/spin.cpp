// The spin beside a box: two arrows that step its value while they are held.
#include <cmath>
#include <cstdlib>

#include "platform/controls/controls.h"
#include "platform/controls/look.h"
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "winio/callbacks.h"
#include "winio/data_entry.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::uintptr_t repeat_timer = 0x2B;
constexpr UINT repeat_period = 70;
constexpr std::int32_t slow_repeats = 20;  // every second tick counts until then

spin_block* block_of(window_control* spin) {
    return static_cast<spin_block*>(spin->block);
}

double value_in_box(const window_control* box) {
    std::string text = get_box_text(box, 100);
    std::int32_t radix = radix_of(box);
    if (radix != 10) {
        // Beyond the highest integer the digits of another radix are a negative number's.
        return static_cast<std::int32_t>(scan_integer(text.c_str(), radix).value);
    }
    bool out_of_range = false;
    const char* rest = nullptr;
    double value = scan_float(text.c_str(), out_of_range, rest);
    return std::isfinite(value) ? value : 0.0;
}

std::string stepped_text(const window_control* box, double value) {
    if (box->type == control_type::integer_box && radix_of(box) != 10 && value < 0.0) value = 0.0;
    return box_text(box, value);
}

void step_box(window_control* box, bool up) {
    fancy_window* window = box->window;
    window_watch watch(window);
    double value = spin_value(value_in_box(box), box->step, up, box->low, box->high);
    if (box->flags.prompt_shown) {
        swap_prompt_colours(box);
        box->flags.prompt_shown = false;
        box->flags.prompt_hidden = true;
    }
    set_box_text(box, stepped_text(box, value).c_str());
    callbacks().context.spin_control_used = 1;
    box->flags.spin_used = true;
    SendMessageA(window->hwnd, WM_COMMAND, MAKEWPARAM(0, EN_UPDATE),
                 static_cast<LPARAM>(box->hwnd));
    callbacks().context.spin_control_used = 0;
    if (watch.gone()) return;
    box->flags.spin_used = false;  // at a limit nothing has changed
    if (box->type != control_type::float_box || !format_of(box)) return;
    // The rounding of the format doesn't stick.
    auto* variable = static_cast<double*>(box->variable);
    *variable = value;
    careful_window_update(box, variable);
}

void stop_repeating(HWND hwnd, spin_block* block) {
    if (block->timer != 0) KillTimer(hwnd, repeat_timer);
    block->timer = 0;
    block->repeats = 0;
}

void spin_repeat(HWND hwnd, UINT, std::uintptr_t, DWORD) {
    window_control* spin = control_from_window(hwnd, false);
    if (!spin || !spin->spin) {
        KillTimer(hwnd, repeat_timer);
        return;
    }
    ++block_of(spin)->repeats;
    perform_spin_adjustment(spin);
}

std::int32_t half_at(HWND hwnd, LPARAM place) {
    RECT client;
    GetClientRect(hwnd, client);
    POINT at{GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    if (!client.contains(at)) return 0;
    return at.y * 2 < client.height() ? 1 : -1;
}

void pressed(window_control* spin, LPARAM place) {
    HWND hwnd = spin->hwnd;
    spin_block* block = block_of(spin);
    window_watch watch(spin->window);
    if (spin->spin->hwnd) SetFocus(spin->spin->hwnd);
    if (watch.gone() || !spin->hwnd) return;
    if (block->timer == 0) {
        block->repeats = 0;
        block->timer = 1;
        spin->flags.spin_run = false;
        SetTimer(hwnd, repeat_timer, repeat_period, spin_repeat);
    }
    SetCapture(hwnd);
    block->direction = half_at(hwnd, place);
    InvalidateRect(hwnd, nullptr, false);
    perform_spin_adjustment(spin);
}

void pointer_moved(window_control* spin, UINT message, WPARAM keys, LPARAM place) {
    HWND hwnd = spin->hwnd;
    spin_block* block = block_of(spin);
    std::int32_t half = half_at(hwnd, place), direction = 0;
    if (message == WM_LBUTTONUP || (keys & MK_LBUTTON) == 0) {
        stop_repeating(hwnd, block);
        if (GetCapture() == hwnd) ReleaseCapture();
    } else if (block->timer != 0) {
        direction = half;
    }
    if (direction == block->direction && half == block->hover) return;
    block->direction = direction;
    block->hover = half;
    InvalidateRect(hwnd, nullptr, false);
}

// The two arrows share one rounded outline, a little off the box, whose edge it matches.
constexpr std::int32_t spin_gap = 1;

void draw_half(HDC dc, RECT half, bool up, bool down, bool hover, bool enabled) {
    const Theme& look = theme();
    if (enabled && (down || hover)) {
        fill_rounded(dc, to_f(half), look.small_corner - 1.0F,
                     down ? look.button_pressed : look.button_hover);
    }
    PointF centre{static_cast<float>(half.left + half.right) / 2.0F,
                  static_cast<float>(half.top + half.bottom) / 2.0F + (down ? 0.5F : 0.0F)};
    COLORREF arrow = down || hover ? look.text : look.text_muted;
    draw_chevron(dc, centre, 6.0F, up ? Direction::up : Direction::down,
                 enabled ? arrow : look.text_disabled);
}

void paint_spin(window_control* spin, HWND hwnd) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, paint);
    if (!dc) return;
    const Theme& look = theme();
    const spin_block* block = block_of(spin);
    RECT client;
    GetClientRect(hwnd, client);
    bool enabled = IsWindowEnabled(hwnd);
    FillRect(dc, client, get_brush(ground_behind(spin)));
    RECT whole{client.left + spin_gap, client.top, client.right, client.bottom};
    std::int32_t middle = (client.top + client.bottom) / 2;
    RECT upper{whole.left + 1, whole.top + 1, whole.right - 1, middle};
    RECT lower{whole.left + 1, middle, whole.right - 1, whole.bottom - 1};
    fill_rounded(dc, to_f(whole), look.small_corner, enabled ? look.button : look.button_disabled);
    draw_half(dc, upper, true, block->direction > 0, block->hover > 0, enabled);
    draw_half(dc, lower, false, block->direction < 0, block->hover < 0, enabled);
    stroke_rounded(dc, to_f(whole), look.small_corner, 1.0F, enabled ? edge_colour() : look.border);
    EndPaint(hwnd, paint);
}

}  // namespace

void perform_spin_adjustment(window_control* spin) {
    spin_block* block = block_of(spin);
    window_control* box = spin->spin;
    if (!box || !box->hwnd || block->direction == 0) return;
    if (box->flags.read_form || !IsWindowEnabled(box->hwnd)) return;
    if (block->repeats < slow_repeats) {
        spin->flags.spin_run = !spin->flags.spin_run;
        if (!spin->flags.spin_run) return;
    }
    bool up = block->direction > 0;
    if (box->type == control_type::string_box || box->type == control_type::buffer_box) {
        fancy_window* before = current_window();
        current_window() = box->window;
        defer_call_back(box, up ? "SPIN_UP" : "SPIN_DOWN");
        current_window() = before;
        return;
    }
    step_box(box, up);
}

LRESULT spin_control_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    window_control* spin = control_from_window(hwnd, false);
    if (!spin || !spin->spin || !spin->block) return DefWindowProcA(hwnd, message, wparam, lparam);
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            pressed(spin, lparam);
            return 0;
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
            pointer_moved(spin, message, wparam, lparam);
            return 0;
        case WM_MOUSELEAVE:
            block_of(spin)->hover = 0;
            InvalidateRect(hwnd, nullptr, false);
            return 0;
        case WM_CAPTURECHANGED:
            stop_repeating(hwnd, block_of(spin));
            block_of(spin)->direction = 0;
            InvalidateRect(hwnd, nullptr, false);
            return 0;
        case WM_ENABLE:
            InvalidateRect(hwnd, nullptr, false);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint_spin(spin, hwnd);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

}  // namespace tarn::winio
