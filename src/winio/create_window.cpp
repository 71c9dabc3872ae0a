// The real window of a finished record: how it comes up, waits and leaves the list.
#include "textwin/textwin.h"
#include "winio/callbacks.h"
#include "winio/layout.h"
#include "winio/menus.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

bool opened_from_a_window(const fancy_window* window) {
    if (window->flags.independent) return false;
    return !window->flags.leave || window->flags.owned;
}

HWND make_window(fancy_window* window, HWND parent, HMENU id) {
    DWORD style = window->style, ex_style = window->ex_style;
    if (window->owner_hwnd) ex_style |= WS_EX_TOPMOST;
    if (!window->flags.caption && !window->flags.child && !window->flags.mdi_child)
        style |= WS_POPUP;
    if (window->flags.horizontal_bar) style |= WS_HSCROLL;
    if (window->flags.vertical_bar) style |= WS_VSCROLL;
    bool was_creating = records().creating;
    records().creating = true;
    HWND hwnd = CreateWindowExAW(ex_style, class_of(window), window->caption ? window->caption : "",
                                 style, window->left, window->top, window->right - window->left + 1,
                                 window->bottom - window->top + 1, parent, id, window);
    records().creating = was_creating;
    return hwnd;
}

bool size_requested(const fancy_window* window) {
    if (!window->size_x_var || !window->size_y_var) return false;
    std::int32_t width = *window->size_x_var;
    return width > 1 && width != 0x7FFFFFFF && *window->size_y_var > 0;
}

void show_window(fancy_window* window) {
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    if (window->flags.invisible) {
        post_start_up(window);
        return;
    }
    std::int32_t how = SW_SHOW;
    if (window->flags.minimise)
        how = SW_SHOWMINIMIZED;
    else if (window->flags.maximise)
        how = SW_SHOWMAXIMIZED;
    else if (window->flags.inactive)
        how = SW_SHOWNA;
    ShowWindow(hwnd, how);
    if (watch.gone()) return;
    if (size_requested(window)) {
        MoveWindow(hwnd, window->left, window->top, *window->size_x_var, *window->size_y_var, true);
        if (watch.gone()) return;
    }
    UpdateWindow(hwnd);
    const bool goes_on = !watch.gone() && window->control_var != &window->own_control_word;
    if (goes_on) await_first_sight(hwnd);
}

// Each child a caption further than the last, and after a while from the corner again.
void cascade(fancy_window* window, const fancy_window* host) {
    constexpr std::int32_t steps = 8;
    std::int32_t count = 0;
    for (const fancy_window* child = host->first_child; child; child = child->next_sibling) ++count;
    std::int32_t offset = count % steps * GetSystemMetrics(SM_CYCAPTION);
    window->right += offset - window->left;
    window->bottom += offset - window->top;
    window->left = window->top = offset;
}

void create_mdi_child(fancy_window* window) {
    fancy_window* host = fancy_window_from_handle(window->parent_hwnd);
    window_control* frame = host ? host->mdi_frame : nullptr;
    if (!frame || !frame->hwnd) return;
    window->frame_window = host;
    window->style |= WS_CHILD | WS_CLIPSIBLINGS;
    if (!window->flags.explicit_position) cascade(window, host);
    HWND hwnd = make_window(window, frame->hwnd, HMENU{0x1FE});
    if (!hwnd) return;
    window->next_sibling = host->first_child;
    host->first_child = window;
    show_window(window);
    if (!window_listed(window) || !window->flags.open) return;
    BringWindowToTop(hwnd);
    SetFocus(hwnd);
    if (window_listed(window) && window->flags.open) mdi_child_made(window);
}

// A modal window takes the input of every other top-level window that nobody else has taken.
void disable_the_others(fancy_window* window) {
    for (fancy_window* other = records().windows; other; other = other->next) {
        if (other == window || !other->flags.open || other->disabled_by) continue;
        if (other->flags.child || other->flags.mdi_child) continue;
        if (!other->hwnd || other->hwnd == HWND{-1}) continue;
        other->disabled_by = window;
        EnableWindow(other->hwnd, false);
    }
}

void attach_menus(fancy_window* window, HWND hwnd) {
    HMENU bar = window->enhanced_menu ? window->enhanced_menu : window->menu;
    if (bar && !window->flags.sheet) SetMenu(hwnd, bar);
    if (window->system_menu) copy_system_menu(window);
}

void send_group_boxes_down(fancy_window* window) {
    for (window_control* control = window->first_control; control; control = control->next)
        if (control->type == control_type::group_box && control->hwnd)
            SetWindowPos(control->hwnd, to_hwnd(HWND_BOTTOM), 0, 0, 0, 0,
                         SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

}  // namespace

HWND owner_of(const fancy_window* window) {
    if (window->owner_hwnd) return window->owner_hwnd;
    if (window->raw_parent) return IsWindow(window->raw_parent) ? window->raw_parent : HWND{};
    if (!opened_from_a_window(window)) return HWND{};
    if (window->parent_hwnd) return IsWindow(window->parent_hwnd) ? window->parent_hwnd : HWND{};
    if (callbacks().callback_depth == 0) return HWND{};
    fancy_window* previous = window->previous;
    if (!previous || !window_listed(previous) || !previous->flags.open) return HWND{};
    HWND owner = previous->hwnd;
    while (GetWindowLong(owner, GWL_STYLE) & static_cast<LPARAM>(WS_CHILD)) {
        HWND parent = GetParent(owner);
        if (!parent) break;
        owner = parent;
    }
    return owner;
}

const char* class_of(const fancy_window* window) {
    if (window->class_name) return window->class_name;
    const char* own = records().class_defaults.name;
    return own ? own : "TarnickDialog";
}

bool window_listed(const fancy_window* window) {
    for (const fancy_window* each = records().windows; each; each = each->next)
        if (each == window) return true;
    return false;
}

bool window_watch::gone() const {
    return !window_listed(window_) || window_->second_number != number_ || !window_->flags.open;
}

void create_real_window(fancy_window* window) {
    install_window_procedures();
    window_size_and_position(window);
    if (window->control_var) *window->control_var = -1;
    if (window->flags.mdi_child) {
        create_mdi_child(window);
        return;
    }
    if (window->flags.child) {
        // The WM_CREATE of the window that it sits in makes it, without a frame.
        window->right = window->left + units_to_pixels_x(builder().max_x) - 1;
        window->bottom = window->top + units_to_pixels_y(builder().max_y) - 1;
        window->hwnd = HWND{-1};
        return;
    }
    window_watch watch(window);
    make_window(window, owner_of(window), HMENU{});
    if (watch.gone()) return;
    show_window(window);
}

LRESULT window_created(fancy_window* window, HWND hwnd) {
    window_watch watch(window);
    window->hwnd = hwnd;
    window->flags.open = true;
    if (window->owner_hwnd) BringWindowToTop(window->owner_hwnd);
    if (window->user_hwnd_var) *window->user_hwnd_var = static_cast<std::int32_t>(hwnd);
    if (window->user_hwnd_var_wide) *window->user_hwnd_var_wide = static_cast<std::int32_t>(hwnd);
    shuffle_boxes(window);
    if (window->drop_callback) DragAcceptFiles(hwnd, true);
    window->focus_before = GetFocus();
    if (window->flags.inactive) EnableWindow(hwnd, false);
    callbacks().context.latest_window = static_cast<std::int32_t>(hwnd);
    attach_menus(window, hwnd);
    if (window->disable_window) EnableWindow(to_hwnd(window->disable_window), false);
    if (window->flags.modal && !window->flags.child) disable_the_others(window);

    restore_settings(window);
    create_controls(window);
    if (watch.gone()) return -1;
    send_group_boxes_down(window);
    initialise_controls(hwnd, true);
    if (watch.gone()) return -1;
    if (window->first_focus && !window->flags.inactive) {
        window->flags.permit = false;
        set_focus_on_control(window->first_focus);
        if (watch.gone()) return -1;
    }
    window->flags.ready = true;
    adjust_grey_controls(3);
    if (watch.gone()) return -1;
    set_window_scroll_bars(window);
    RECT client;
    if (GetClientRect(hwnd, client)) {
        window->base_width = client.width();
        window->base_height = client.height();
    }
    start_timers(window);
    listen_for_texts(window);
    if (window->flags.super_maximised) PostMessageA(hwnd, msg_super_maximise, 0, 0);
    if (window->flags.dragged || window->flags.screen_saver) {
        POINT at;
        GetCursorPos(at);
        window->drag_x = at.x;
        window->drag_y = at.y;
        ShowCursor(false);
        if (window->flags.dragged) SetCapture(hwnd);
    }
    return 0;
}

void set_focus_on_control(window_control* control) {
    if (!control->hwnd || !IsWindowEnabled(control->hwnd)) return;
    SetFocus(control->hwnd);
}

bool start_up_wanted(const fancy_window* window) {
    if (window->flags.start_posted) return false;
    if (window->start_callback) return true;
    for (const window_control* control = window->first_control; control; control = control->next)
        if (control->prompt_colour != 0 && control->prompt) return true;
    return false;
}

void post_start_up(fancy_window* window) {
    if (!start_up_wanted(window)) return;
    window->flags.start_posted = true;
    PostMessageA(window->hwnd, msg_start_up, 0, 0);
}

void window_started(fancy_window* window) {
    window_watch watch(window);
    show_prompts(window);
    if (watch.gone() || !window->start_callback) return;
    HWND hwnd = window->hwnd;
    std::int32_t result =
        call_function(window->start_callback, "WINDOW_STARTUP", hwnd, false, false);
    act_on_result(hwnd, result);
}

std::int32_t wait_for_window(fancy_window* window) {
    while (window->flags.open) {
        WaitMessage();
        textwin::yield_program_control(1);
    }
    return window->result;
}

void cleanup_winio(fancy_window* window) {
    if (window->closed_callback && !records().at_exit) {
        call_back closed = window->closed_callback;
        window->closed_callback = nullptr;
        window_watch watch(window);
        call_function(closed, "WINDOW_CLOSED", HWND{}, true, false);
        if (!window_listed(window)) return;
    }
    for (fancy_window* each = records().windows; each; each = each->next) {
        if (each->previous == window) each->previous = window->previous;
        if (each->disabled_by == window) each->disabled_by = nullptr;
        if (each->frame_window == window) each->frame_window = nullptr;
    }
    if (current_window() == window) {
        fancy_window* previous = window->previous;
        current_window() = previous && window_listed(previous) ? previous : nullptr;
    }
    retire_window(window);
}

void retire_window(fancy_window* window) {
    if (window->entered > 0) {
        window->flags.retired = true;
        return;
    }
    destroy_fancy_window(window);
}

}  // namespace tarn::winio
