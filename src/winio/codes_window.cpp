// Codes that say what the window is like: caption, style, place, name, and how it belongs to
// others.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "platform/base/constants.h"
#include "platform/user/user.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/procedures.h"
#include "winio/report.h"
#include "winio/resources.h"

namespace tarn::winio {
namespace {

HWND hwnd_of(word handle) {
    return static_cast<HWND>(static_cast<std::int32_t>(handle));
}

char* kept_copy(const char* text) {
    auto* copy = static_cast<char*>(allocate_zeroed(std::strlen(text) + 1));
    std::strcpy(copy, text);
    return copy;
}

}  // namespace

// ---- Caption and style -------------------------------------------------------------------------
void handle_ca(code_call& call) {
    const bool variable = *call.format == '@';
    char* caption = get_standard_string(call, "%CA");
    const bool widen = !call.grave;
    call.grave = false;
    if (records().passive) return;
    fancy_window& window = *current_window();
    const builder_state& state = building();
    window.caption = caption;
    std::int32_t length = static_cast<std::int32_t>(std::strlen(caption));
    if (variable) {
        window.caption_variable = state.last_string_variable;
        if (state.fortran_call) {
            save_fortran_string_binding(caption, state.last_string_variable, state.last_length);
            length = state.last_length;
        }
    }
    constexpr std::int32_t widest = 2000;
    if (widen) builder().max_x = std::max(builder().max_x, (std::min(length, widest) + 8) * 4);
}

void handle_sy(code_call& call) {
    if (current_window()->first_control) {
        quillpan_error("%%SY must come before any controls are created");
    }
    if (*call.format != '[') {
        quillpan_error("?%%SY must be followed by [style(s)]");
        return;
    }
    collect_sy_options(call);
}

void handle_ww(code_call& call) {
    collect_ww_options(call);
    if (records().passive) return;
    current_window()->flags.modal = false;
    current_window()->flags.has_ww = true;
}

void handle_mi(code_call& call) {
    fancy_window& window = *current_window();
    const bool by_handle = call.grave;
    call.grave = false;
    HICON icon{};
    char name[80];
    if (by_handle) {
        icon = static_cast<HICON>(user_thing(call.arguments, true));
        std::snprintf(name, sizeof name, "TarnickDialog_-%8.8x", static_cast<unsigned>(icon));
    } else {
        const char* text = get_standard_string(call, "%MI");
        icon = find_icon(text);
        window.icon_name = window_text_copy(text, std::strlen(text));
        std::snprintf(name, sizeof name, "TarnickDialog_%.40s", text);
    }
    if (records().passive || records().check_mode) return;
    if (window.class_rec && !window.flags.icon_done) {
        quillpan_error("?Invalid format code order %%NC cannot precede %%MI");
        return;
    }
    window.main_icon = icon;
    window.flags.icon_done = true;
    const std::string numbered = name + std::to_string(++records().class_counter);
    platform::WNDCLASS standard;
    const char* base = window.class_name ? window.class_name : "TarnickDialog";
    if (!platform::GetClassInfoA(base, standard)) {
        quillpan_error("Cannot get class information for %%MI.");
        return;
    }
    window.class_rec = register_class(numbered.c_str(), winio_winproc, standard.style,
                                      standard.hCursor, standard.hbrBackground, icon);
    window.class_name = window_text_copy(numbered.data(), numbered.size());
}

void handle_nc(code_call& call) {
    const char* name = get_standard_string(call, "%NC");
    fancy_window& window = *current_window();
    if (records().passive || records().check_mode || !*name) return;
    platform::WNDCLASS standard;
    const char* base = window.class_name ? window.class_name : "TarnickDialog";
    if (!platform::GetClassInfoA(base, standard)) return;
    platform::WNDCLASS known;
    window.class_name = window_text_copy(name, std::strlen(name));
    // Two windows may bear one class.
    if (platform::GetClassInfoA(name, known)) return;
    window.class_rec = register_class(name, winio_winproc, standard.style, standard.hCursor,
                                      standard.hbrBackground, standard.hIcon);
}

// ---- Size and place ----------------------------------------------------------------------------
void handle_sz(code_call& call) {
    std::int32_t* width = user_int_pointer(call.arguments);
    std::int32_t* height = user_int_pointer(call.arguments);
    if (records().passive) return;
    fancy_window& window = *current_window();
    window.size_x_var = width;
    window.size_y_var = height;
    if (!width || records().check_mode) return;
    constexpr std::int32_t maximised = 0x7FFFFFFF;
    if (*width != 1 && *width != maximised) return;
    window.flags.minimise = *width == 1;
    window.flags.maximise = *width == maximised;
}

namespace {

// A place on the screen, or far beyond it.
std::int32_t moved(std::int32_t place, std::int32_t by) {
    constexpr std::int64_t reach = 1000000;
    return static_cast<std::int32_t>(std::clamp(std::int64_t{place} + by, -reach, reach));
}

}  // namespace

void handle_sp(code_call& call) {
    const std::int32_t x = user_integer(call.arguments);
    const std::int32_t y = user_integer(call.arguments);
    fancy_window& window = *current_window();
    window.left = moved(window.left, x);
    window.top = moved(window.top, y);
    if (call.grave) {
        call.grave = false;
        window.left = moved(window.left, callbacks().context.action_x);
        window.top = moved(window.top, callbacks().context.action_y);
    }
    window.flags.explicit_position = true;
}

void handle_dg(code_call& call) {
    const std::int32_t x = user_integer(call.arguments);
    const std::int32_t y = user_integer(call.arguments);
    if (records().passive) return;
    fancy_window& window = *current_window();
    platform::POINT at;
    if (!records().check_mode) platform::GetCursorPos(at);
    window.left = moved(at.x, x);
    window.top = moved(at.y, y);
    window.drag_x = at.x;
    window.drag_y = at.y;
    window.flags.explicit_position = window.flags.dragged = true;
}

void handle_gd(code_call&) {
    current_window()->flags.grid = true;
}
void handle_sv(code_call&) {
    current_window()->flags.screen_saver = true;
}
void handle_ns(code_call&) {
    current_window()->flags.no_screen_saver = true;
}
void handle_wt(code_call&) {
    current_window()->flags.close_is_sent = true;
}
void handle_nr(code_call& call) {
    current_window()->flags.no_right_move = !call.grave;
    call.grave = false;
}
void handle_nd(code_call& call) {
    current_window()->flags.no_down_move = !call.grave;
    call.grave = false;
}

void handle_wp(code_call& call) {
    const char* name = get_standard_string(call, "%WP");
    fancy_window& window = *current_window();
    window.flags.wallpaper_sizes = call.grave;
    window.flags.transparent_on_wallpaper = call.tilde;
    call.grave = call.tilde = false;
    if (!records().passive) window.wallpaper = window_text_copy(name, std::strlen(name));
}

// ---- Windows and their owners -------------------------------------------------------------------
namespace {

// The window's variable: -1 while it is open.
void take_control_variable(std::int32_t* variable) {
    if (!variable || records().passive) return;
    fancy_window& window = *current_window();
    window.control_var = variable;
    if (!records().check_mode) *variable = -1;
}

}  // namespace

void handle_lw(code_call& call) {
    collect_lw_options(call);
    take_control_variable(user_int_pointer(call.arguments));
    const bool child = call.grave;
    call.grave = false;
    if (records().passive) return;
    current_window()->flags.leave = true;
    current_window()->flags.child = current_window()->flags.fixed_place = child;
}

void handle_cv(code_call& call) {
    take_control_variable(user_int_pointer(call.arguments));
}

void handle_aw(code_call& call) {
    const std::int32_t* variable = user_int_pointer(call.arguments);
    if (records().passive) return;
    fancy_window& window = *current_window();
    window.flags.mdi_child = true;
    window.flags.modal = false;
    if (!variable) return;  // the %pa window is the parent
    const fancy_window* host = window_from_control_variable(variable);
    if (host && host != &window) {
        window.parent_hwnd = host->hwnd;
    } else if (!records().check_mode) {
        quillpan_error("?The argument of %%AW is not the control variable of an open window.");
    }
}

void handle_sh(code_call& call) {
    take_control_variable(user_int_pointer(call.arguments));
    fancy_window& window = *current_window();
    if (call.question) {
        call.question = false;
        window.icon_name = get_standard_string(call, "help");
    }
    if (records().passive) return;
    window.flags.sheet = true;
    window.flags.child = true;
    window.flags.modal = false;
}

void handle_pa(code_call& call) {
    const word handle = user_thing(call.arguments, true);
    call.grave = false;  // there is one kind of handle
    if (!records().passive) current_window()->parent_hwnd = hwnd_of(handle);
}

void handle_ph(code_call& call) {
    const word handle = user_thing(call.arguments, true);
    if (!records().passive) current_window()->owner_hwnd = hwnd_of(handle);
}

void handle_de(code_call& call) {
    const word handle = user_thing(call.arguments, true);
    if (!records().passive) current_window()->disable_window = handle;
}

// ---- Handles handed back, data handed in
namespace {

// The last control that the program asked for.
window_control* last_own_control() {
    window_control* last = nullptr;
    window_control* at = current_window()->first_control;
    for (; at; at = at->next) {
        const bool internal =
            at->type == control_type::line_end || at->type == control_type::spin ||
            at->type == control_type::box_frame || at->type == control_type::blank;
        if (!internal) last = at;
    }
    return last;
}

}  // namespace

void handle_hw(code_call& call) {
    const handle_variable variable = user_handle_variable(call.arguments);
    if (records().passive) return;
    current_window()->user_hwnd_var = variable.narrow;
    current_window()->user_hwnd_var_wide = variable.wide;
}

void handle_lc(code_call& call) {
    const handle_variable variable = user_handle_variable(call.arguments);
    if (records().passive) return;
    if (window_control* control = last_own_control()) {
        control->hwnd_var = variable.narrow;
        control->hwnd_var_wide = variable.wide;
    }
}

void handle_ud(code_call& call) {
    const handle_variable variable = user_handle_variable(call.arguments);
    if (records().passive || !variable || records().check_mode) return;
    const word data = variable.wide ? static_cast<word>(*variable.wide) : *variable.narrow;
    if (window_control* control = last_own_control()) {
        control->user_data = data;
    } else {
        current_window()->user_data = data;
    }
}

void handle_if(code_call&) {
    current_window()->flags.focus_pending = true;
}

void handle_id(code_call& call) {
    builder().pending_id = user_integer(call.arguments);
}

// ---- Files, settings, dialog resources
void handle_fs(code_call& call) {
    const char* text = get_standard_string(call, "%FS");
    if (records().passive) return;
    std::free(current_window()->file_spec);
    current_window()->file_spec = kept_copy(text);
}

// Pairs of texts, each ended by a zero, and one more zero behind them all.
void handle_ft(code_call& call) {
    const std::string name = get_standard_string(call, "%FT");
    const std::string filter = get_standard_string(call, "%FT");
    const bool clears = call.grave;
    call.grave = false;
    if (records().passive) return;
    fancy_window& window = *current_window();
    if (clears) {
        std::free(window.filters);
        window.filters = nullptr;
        window.filter_bytes = 0;
    }
    const std::size_t old = window.filters ? static_cast<std::size_t>(window.filter_bytes - 1) : 0;
    const std::size_t size = old + name.size() + 1 + filter.size() + 1 + 1;
    auto* all = static_cast<char*>(allocate_zeroed(size));
    if (old != 0) std::memcpy(all, window.filters, old);
    std::memcpy(all + old, name.data(), name.size());
    std::memcpy(all + old + name.size() + 1, filter.data(), filter.size());
    std::free(window.filters);
    window.filters = all;
    window.filter_bytes = static_cast<std::int32_t>(size);
}

void handle_ss(code_call& call) {
    const char* key = get_standard_string(call, "%SS");
    std::int32_t* variable = user_int_pointer(call.arguments);
    if (records().passive) return;
    current_window()->settings_key = window_text_copy(key, std::strlen(key));
    current_window()->settings_var = variable;
}

void handle_di(code_call& call) {
    const std::int32_t id = user_integer(call.arguments);
    fancy_window& window = *current_window();
    if (window.dialog_resource < 0 || window.first_control) {
        quillpan_error("?%%DI must come before any controls and places.");
        return;
    }
    if (records().passive) return;
    // Programs carry no dialog resources yet: the codes read what they would, at no place.
    if (!records().check_mode) quillpan_error("?Dialog resource %d is not available", id);
    window.dialog_resource = std::max(id, 0);
}

// A layout that comes from a resource leaves nothing to place; and what has been placed excludes
// such a layout.
bool QuitIfDlgResource(const char* code_name) {
    fancy_window& window = *current_window();
    if (window.dialog_resource <= 0) {
        window.dialog_resource = -1;
        return false;
    }
    quillpan_error("?%s cannot be used in a window that is built from a dialog resource",
                   code_name);
    return true;
}

// ---- Nothing of their own
void handle_ex(code_call&) {}  // the call began with it: a nested window
void handle_zb(code_call&) {}

void handle_za(code_call&) {
    current_window()->flags.za_open = true;
}
void handle_zz(code_call&) {
    if (!current_window()->flags.za_open) quillpan_error("?%%ZZ used without %%ZA.");
    current_window()->flags.za_open = false;
}

// ---- Menus of an existing window
// ----------------------------------------------------------------- The target is current until the
// call ends, so that the menu codes work on it.
void handle_nw(code_call& call) {
    const HWND handle = hwnd_of(user_thing(call.arguments, true));
    builder().nw_mode |= 1;
    if (records().passive || records().check_mode) return;
    fancy_window* workspace = current_window();
    fancy_window* target = handle == HWND{} ? workspace : fancy_window_from_handle(handle);
    window_control* control = nullptr;
    if (!target) {
        control = control_from_window(handle, false);
        target = control ? control->window : nullptr;
    }
    if (handle == HWND{} && target && !target->flags.open) target = target->previous;
    if (!target) {
        quillpan_error("Invalid handle for %%NW.");
        return;
    }
    pending().nw_target_window = target->hwnd;
    pending().nw_target_control = control;
    if (target == workspace) return;
    std::swap(target->descriptor, workspace->descriptor);
    target->arg_number = workspace->arg_number;
    current_window() = target;
}

}  // namespace tarn::winio
