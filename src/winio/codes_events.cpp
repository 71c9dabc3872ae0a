// Codes that give the window call-backs, timers, scroll bars, cursors and help.
#include <algorithm>
#include <cstring>

#include "platform/user/user.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/menus.h"
#include "winio/options.h"
#include "winio/procedures.h"
#include "winio/report.h"
#include "winio/resources.h"

namespace tarn::winio {
namespace {

void take_callback(code_call& call, call_back fancy_window::*into, const char* message) {
    const call_back function = get_callback_function(call.arguments, message);
    if (!records().passive) current_window()->*into = function;
}

}  // namespace

// ---- Call-backs of the window
void handle_cc(code_call& call) {
    const bool after = call.grave;
    call.grave = false;
    take_callback(call, after ? &fancy_window::closed_callback : &fancy_window::close_callback,
                  "should be a closure call-back function");
}
void handle_sc(code_call& call) {
    take_callback(call, &fancy_window::start_callback, "should be a start-up call-back function");
}
void handle_mv(code_call& call) {
    const bool size = call.grave;
    call.grave = false;
    take_callback(call, size ? &fancy_window::resize_callback : &fancy_window::move_callback,
                  "should be a movement call-back function");
}
void handle_ew(code_call& call) {
    take_callback(call, &fancy_window::end_callback, "should be an end call-back function");
}
void handle_rm(code_call& call) {
    take_callback(call, &fancy_window::receiver_callback, "should be a message call-back function");
}
void handle_dr(code_call& call) {
    take_callback(call, &fancy_window::drop_callback,
                  "should be a drag-and-drop call-back function");
}

void handle_zc(code_call&) {
    pending().raw_callback = true;
}

void handle_mg(code_call& call) {
    const std::int32_t message = user_integer(call.arguments);
    const call_back function =
        get_callback_function(call.arguments, "should be a message call-back function");
    if (records().passive) return;
    auto* trap = new_record<message_trap>();
    *trap = {current_window()->message_traps, function, static_cast<std::uint32_t>(message)};
    current_window()->message_traps = trap;
}
void handle_wm(code_call& call) {
    handle_mg(call);
}

void handle_gc(code_call& call) {
    const call_back function =
        get_callback_function(call.arguments, "should be a call-back function");
    const call_back test = get_callback_function(call.arguments, "should be a grey test function");
    if (records().passive || !function) return;
    auto* pair = new_record<grey_check>();
    *pair = {builder().grey_checks, function, test};
    builder().grey_checks = pair;
}

// A menu command that a toolbar or another program sends by its number.
void handle_rc(code_call& call) {
    const std::int32_t id = user_integer(call.arguments);
    call_back test = nullptr;
    if (call.caret) {
        call.caret = false;
        test = get_callback_function(call.arguments, "should be a grey test function");
    }
    const call_back function =
        get_callback_function(call.arguments, "should be a command call-back function");
    if (records().passive) return;
    auto* item = new_record<menu_info>();
    item->next = current_window()->menu_items;
    item->window = current_window();
    item->text = window_text_copy("", 0);
    item->callback = function;
    item->grey_test = test;
    item->id = id;
    item->position = item->grey_state = -1;
    current_window()->menu_items = item;
}

// ---- Timers ------------------------------------------------------------------------------------
void handle_dl(code_call& call) {
    const double seconds = user_float(call.arguments, "Invalid number passed to %dl format");
    const call_back function =
        get_callback_function(call.arguments, "should be a timer call-back function");
    if (records().passive || records().check_mode) return;
    constexpr double longest = 2.0E9;
    const double wanted = seconds * 1000.0;
    const auto period = static_cast<std::int32_t>(std::min(std::max(wanted, 1.0), longest));
    fancy_window& window = *current_window();
    if (!window.timer_callback) {
        window.timer_callback = function;
        window.timer_ms = period;
        return;
    }
    auto* timer = new_record<timer_entry>();
    *timer = {window.timers, function, next_timer_id(), static_cast<std::uint32_t>(period)};
    window.timers = timer;
}

// ---- Scroll bars -------------------------------------------------------------------------------
namespace {

void window_bar(code_call& call, bool vertical) {
    const std::int32_t page = user_integer(call.arguments);
    const std::int32_t range = user_integer(call.arguments);
    std::int32_t* position = user_int_pointer(call.arguments);
    const bool always = call.grave;
    call.grave = false;
    call_back function = nullptr;
    if (call.caret) {
        call.caret = false;
        function = get_callback_function(call.arguments, "should be a scroll call-back function");
    }
    if (records().passive) return;
    fancy_window& window = *current_window();
    if (always) window.flags.scroll_always = true;
    if (vertical) {
        window.flags.vertical_bar = true;
        window.v_page = page;
        window.v_range = range;
        window.v_scroll_var = position;
        window.v_scroll_page = &window.v_page;
        window.v_scroll_range = &window.v_range;
        window.vertical_callback = function;
    } else {
        window.flags.horizontal_bar = true;
        window.h_page = page;
        window.h_range = range;
        window.h_scroll_var = position;
        window.h_scroll_page = &window.h_page;
        window.h_scroll_range = &window.h_range;
        window.horizontal_callback = function;
    }
}

void control_bar(code_call& call, bool vertical) {
    std::int32_t* page = user_int_pointer(call.arguments);
    std::int32_t* range = user_int_pointer(call.arguments);
    std::int32_t* position = user_int_pointer(call.arguments);
    const bool grave = call.grave;
    call.grave = false;
    call_back function = nullptr;
    if (call.caret) {
        call.caret = false;
        function = get_callback_function(call.arguments, "should be a scroll call-back function");
    }
    if (records().passive) return;
    if (!pending().scrolls) {
        pending().scrolls = new_record<scroll_block>();
        discard_with_window(pending().scrolls, nullptr);
    }
    scroll_block::bar& bar = vertical ? pending().scrolls->vertical : pending().scrolls->horizontal;
    bar.page = page;
    bar.range = range;
    bar.position = position;
    bar.callback = function;
    bar.grave = grave;
    bar.wanted = true;
}

}  // namespace

void handle_hs(code_call& call) {
    window_bar(call, false);
}
void handle_vs(code_call& call) {
    window_bar(call, true);
}
void handle_hx(code_call& call) {
    control_bar(call, false);
}
void handle_vx(code_call& call) {
    control_bar(call, true);
}

// ---- Cursors -----------------------------------------------------------------------------------
namespace {

cursor_association* read_cursors(code_call& call) {
    constexpr std::int32_t most_cursors = 256;
    const bool by_handle = call.grave;
    call.grave = false;
    const std::int32_t count = std::clamp(call.n, 1, most_cursors);
    auto* cursors =
        static_cast<HCURSOR*>(allocate_zeroed(static_cast<std::size_t>(count) * sizeof(HCURSOR)));
    discard_with_window(cursors, nullptr);
    for (std::int32_t i = 0; i < count; ++i) {
        if (by_handle) {
            cursors[i] = static_cast<HCURSOR>(user_thing(call.arguments, true));
        } else {
            cursors[i] = load_cursor_resource(get_standard_string(call, "cursor"));
        }
    }
    std::int32_t* variable = call.n > 0 ? user_int_pointer(call.arguments) : nullptr;
    if (records().passive) return nullptr;
    auto* association = new_record<cursor_association>();
    discard_with_window(association, nullptr);
    *association = {current_window()->cursors, nullptr, count, cursors, variable};
    current_window()->cursors = association;
    return association;
}

}  // namespace

void handle_cu(code_call& call) {
    if (cursor_association* association = read_cursors(call)) pending().cursor = association;
}
void handle_dc(code_call& call) {
    read_cursors(call);  // of no control: the window's
}

// ---- Help --------------------------------------------------------------------------------------
namespace {

void take_help_variables(code_call& call, bool bubble) {
    std::int32_t* variable = user_int_pointer(call.arguments);
    const tool_properties* old = current_window()->tool_props;
    std::int32_t* delay = old && old->reads_delay ? user_int_pointer(call.arguments) : nullptr;
    if (records().passive) return;
    tool_properties& props = *get_toolprops(current_window());
    props.variable = variable;
    if (delay) props.delay = delay;
    props.bubble = props.bubble || bubble;
}

}  // namespace

void handle_th(code_call& call) {
    collect_th_options(call);
    take_help_variables(call, false);
}

void handle_bh(code_call& call) {
    take_help_variables(call, true);
    if (call.grave && !records().passive) {
        static std::int32_t slow_delay = 1500;
        get_toolprops(current_window())->delay = &slow_delay;
    }
    call.grave = false;
}

void handle_ti(code_call& call) {
    fancy_window& window = *current_window();
    if (call.grave) {
        call.grave = false;
        window.tray_icon = user_thing(call.arguments, true);
    } else {
        window.tray_icon = find_icon(get_standard_string(call, "%TI"));
    }
    char* help = get_standard_string(call, "%TI");
    const call_back function =
        get_callback_function(call.arguments, "should be a task-bar icon call-back function");
    if (records().passive) return;
    window.tray_help = help;
    window.tray_callback = function;
}

}  // namespace tarn::winio
