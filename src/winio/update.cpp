// __window_update and its kin: the program says that a variable has changed.
#include "winio/update.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "platform/user/user.h"
#include "textwin/textwin.h"
#include "winio/procedures.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {
namespace {

using enum control_type;

// ---- What a change does to a control -----------------------------------------------------------
// Types that show more than their text, variable and data.
constexpr bool has_further_pointers(control_type type) {
    return type == edit_list;
}

void update_scrolls(window_control* control, const void* variable) {
    const auto shows = [&](const scroll_block::bar& bar) {
        return bar.position == variable || bar.page == variable || bar.range == variable;
    };
    if (shows(control->scrolls->horizontal) || shows(control->scrolls->vertical))
        show_scroll_bars(control);
}

void set_text(const window_control* control) {
    if (control->hwnd) SetWindowTextAW(control->hwnd, control->text ? control->text : "");
}

void update_control(window_control* control) {
    constexpr std::uint32_t alert_on_update = 2;
    const HWND window = control->window->hwnd;
    switch (control->type) {
        case text:
            // A text of a control's own may have changed where the program keeps it.
            set_text(control);
            return;
        case line_end:
        case system_icon:
        case bitmap_switch:
        case bar:
        case icon:
        case bitmap:
        case slider:
        case hypertext:
        case text_array:
        case button_block:
        case graphics:
        case led:
        case picture:
        case owner_draw:
        case plot:
            redraw(control);
            return;
        case integer_box:
        case float_box:
            if (callbacks().control_update || control->update_policy & alert_on_update)
                DestroyAlert(control);
            initialise_control(window, control, false);
            return;
        case help_line:
        case static_string:
            set_text(control);
            return;
        default:
            initialise_control(window, control, false);
            return;
    }
}

bool shows(const window_control* control, const void* variable) {
    return control->variable == variable || control->text == variable ||
           control->data == reinterpret_cast<word>(variable) ||
           (has_further_pointers(control->type) &&
            reinterpret_cast<const void*>(control->data2) == variable);
}

// ---- What it does to a window ------------------------------------------------------------------
fancy_window* newest_before(std::int32_t second_number) {
    for (fancy_window* window = records().windows; window; window = window->next)
        if (window->second_number < second_number) return window;
    return nullptr;
}

bool still_open(const fancy_window* window, std::int32_t second_number) {
    return fancy_window_exists(window) && window->second_number == second_number;
}

// A program closes a window that it left open by storing a result in its variable.
bool closed_by_variable(const fancy_window* window, const void* variable) {
    return variable && window->control_var == variable && *window->control_var >= 0;
}

void update_window(fancy_window* window, const void* variable) {
    const std::int32_t number = window->second_number;
    if (!variable) {
        initialise_controls(window->hwnd, false);
        if (still_open(window, number)) platform::InvalidateRect(window->hwnd, nullptr, true);
        return;
    }
    if (window->caption == variable || window->caption_variable == variable) redraw_caption(window);
    tool_help_updated(variable);
    if (!still_open(window, number)) return;
    for (window_control* c = window->first_control; c; c = c->next) {
        if (c->scrolls && !c->flags.update_source) update_scrolls(c, variable);
        if (!shows(c, variable) || c->flags.update_source) continue;
        update_control(c);
        if (!still_open(window, number)) return;
    }
}

// Paint is what a yield under this mask does, so it is for when something is to be painted; and
// now and then for a display that has something to say. A loop of updates isn't slowed down by
// more than that.
bool worth_a_yield() {
    static long last_tick;
    timespec now;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    const long tick = now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
    if (tick == last_tick && platform::queue_is_idle()) return false;
    last_tick = tick;
    return true;
}

// Messages up to here pass: sizes, paint, activation; no input and no timers.
constexpr std::uint32_t paint_mask = 0xFF;

void update_windows(const void* variable) {
    std::int32_t number = INT32_MAX;
    while (fancy_window* window = newest_before(number)) {
        number = window->second_number;
        if (!window->flags.open) continue;
        if (closed_by_variable(window, variable)) {
            window_close(window);
            continue;
        }
        if (window->flags.closing) continue;
        current_window() = window;
        update_window(window, variable);
        if (still_open(window, number)) adjust_grey_controls(3);
    }
}

bool refresh_copy(const string_binding& binding) {
    const auto length = static_cast<std::size_t>(std::max(binding.length, 0));
    std::size_t used = length;
    while (used > 0 && binding.variable[used - 1] == ' ') --used;
    used = std::min(used, binding.copy_size ? binding.copy_size - 1 : 0);
    if (std::memcmp(binding.copy, binding.variable, used) == 0 && binding.copy[used] == 0)
        return false;
    std::memcpy(binding.copy, binding.variable, used);
    binding.copy[used] = 0;
    return true;
}

}  // namespace

void window_update(void* variable) {
    if (!records().windows) return;
    fancy_window* const outer = current_window();
    const std::int32_t outer_number = outer ? outer->second_number : 0;
    const std::uint32_t mask = textwin::yield_mask();
    textwin::yield_mask() = paint_mask;
    update_windows(variable);
    const auto restore_current = [&] {
        for (fancy_window* window = records().windows; window; window = window->next)
            if (window == outer && window->second_number == outer_number) {
                current_window() = outer;
                return;
            }
        current_window() = nullptr;
    };
    restore_current();
    if (callbacks().update_depth == 0) {
        platform::paint_now();
        if (worth_a_yield()) textwin::yield_program_control(1);
        restore_current();
    }
    textwin::yield_mask() = mask;
}

// Each copy is updated by itself; an update may end windows and their bindings, so that the walk
// begins anew behind each.
void window_update_f(void* variable) {
    std::int32_t done = 0;
    for (bool found = true; found;) {
        found = false;
        std::int32_t at = 0;
        for (string_binding* binding = records().bindings; binding; binding = binding->next) {
            if (variable && binding->variable != variable) continue;
            if (at++ < done) continue;
            ++done;
            if (!refresh_copy(*binding)) continue;
            found = true;
            window_update(binding->copy);
            break;
        }
    }
    window_update(variable);
}

void control_update(void* variable) {
    const bool before = callbacks().control_update;
    callbacks().control_update = true;
    window_update(variable);
    callbacks().control_update = before;
}

void careful_window_update(window_control* control, void* variable) {
    fancy_window* const window = control->window;
    const std::int32_t number = window->second_number;
    control->flags.update_source = true;
    ++callbacks().update_depth;
    window_update(variable);
    --callbacks().update_depth;
    if (still_open(window, number)) control->flags.update_source = false;
}

}  // namespace tarn::winio
