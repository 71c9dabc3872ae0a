// Call-backs, the standard actions, and how variables and the screen are kept in step.
#pragma once

#include <cstdint>

#include "winio/builder.h"

namespace tarn::winio {

// A standard action with arguments. Recognised by its first four bytes, so a call-back is either
// one of these or a function.
struct thunk {
    char magic[4];  // "THNK"
    std::int32_t selector;
    std::int32_t (*action)();
    word a, b, c, d, e, f;
    double value;
    std::int32_t length;
    bool fortran;
    const char* name;  // of the action
    char* options;     // what stood in brackets behind the action's name
    // %fs and %ft as they were: of the actions that choose files.
    const char* file_spec;
    const char* filters;
    std::int32_t filter_bytes;
    call_back further;
    call_back second;  // of "+"
};
bool is_thunk(call_back function);
// What runs in the end: the thunk's action, or the function itself.
call_back action_of(call_back function);

// What a call-back can ask for (parameters.h). A deferred call takes a copy of it.
struct parameter_set {
    const char* reason;
    std::int32_t window_handle, control_handle;
    window_control* control;
    fancy_window* window;
    word user_data;
    std::int32_t latest_window;
    word latest_variable;
    std::int32_t action_x, action_y;
    std::int32_t button_number;
    std::int32_t row_number, column_number;
    std::int32_t keyboard_key;
    std::int32_t cursor_window, focussed_window;
    std::int32_t message_hwnd;
    word message_lparam, message_wparam;
    std::int32_t message_msg;
    std::int32_t graphics_dc;
    std::int32_t graphics_width, graphics_depth, graphics_resizing;
    std::int32_t graphics_mouse_x, graphics_mouse_y, graphics_mouse_flags;
    std::int32_t mousewheel_rotation;  // also INTERMEDIATE_SCROLL
    std::int32_t gif_mouse_x, gif_mouse_y;
    std::int32_t opengl_width, opengl_depth;
    std::int32_t text_array_width, text_array_depth, text_array_resizing, text_array_x,
        text_array_y, text_array_char, text_array_mouse_flags;
    std::int32_t filter_item_selected;
    std::int32_t editable_listbox_index;
    std::int32_t listbox_item_selected;
    std::int32_t treeview_item_selected;
    std::int32_t sheet_no;
    std::int32_t spin_control_used;
    std::int32_t gaining_focus, losing_focus;
    const char *current_text_item, *current_text_document, *current_text_title;
    char* url_name;
};

struct deferred_call {
    deferred_call* next;
    const char* reason;
    parameter_set context;
    window_control* control;
    fancy_window* window;
    std::int32_t window_second_number;
    call_back function;
    HWND handle;
    word user_data;
};

struct switch_gang {
    switch_gang* next;
    std::int32_t count;
    bool one_always_on;
    std::int32_t** members;
};

struct callback_state {
    parameter_set context;
    std::int32_t last_callback_result;
    bool window_gone;
    thunk* current_thunk;
    deferred_call *first_pending, *last_pending, *free_records;
    window_control* no_update_control;
    std::int32_t update_depth;  // inside careful_window_update
    bool control_update;        // __control_update runs
    bool adjusting_grey;        // a grey test is asked: what it updates asks no tests
    bool clipboard_refresh;     // a cut or paste runs: the window listens though it is busy
    std::int32_t callback_depth;
    // What the call-back at work was called with, for actions that call others.
    HWND call_handle;
    bool call_from_user;
    char reason[64];  // private copy
};
callback_state& callbacks();

call_back get_callback_function(argument_source& arguments, const char* message);
std::int32_t call_function(call_back function, const char* reason, HWND handle, bool raw,
                           bool from_user);
std::int32_t call_function(window_control* control, const char* reason, bool from_user);
void call_function_with_standard_action(window_control* control, const char* reason);
deferred_call* defer_call_back(window_control* control, const char* reason);
void perform_pending_calls();
// What every caller does with a result: 0 closes, 1 brings the window up to date. Tests
// `window_gone` first.
void act_on_result(HWND handle, std::int32_t result);

void window_close(fancy_window* window);
void safe_window_close(fancy_window* window);
std::int32_t action_exit();  // the actions that other rooms hand out by themselves
std::int32_t action_version();

void initialise_controls(HWND handle, bool first);
void initialise_control(HWND handle, window_control* control, bool first);
void window_update(void* variable);    // __window_update
void window_update_f(void* variable);  // __window_update_f
void control_update(void* variable);   // __control_update
void careful_window_update(window_control* control, void* variable);
void adjust_grey_controls(std::int32_t what);
// 1: grey, 0: not. A test may do what any call-back may: look the window up again behind it.
std::int32_t run_grey_test(call_back test);
call_back GetGreyControlCheckFunction(call_back function);
void AddGreyControlCheckFunctions();
void gang_check(HWND handle, const std::int32_t* variable);
switch_gang* find_gang(const fancy_window* window, const std::int32_t* variable);
void handle_ga(code_call& call);
void get_action_coordinates(window_control* control);

// ---- Run-time parameters
// ---------------------------------------------------------------------------
word quillpan_info(const char* name);
const char* quillpan_string(const char* name);
double quillpan_float(const char* name);
void set_quillpan_info(const char* name, word value);
void set_quillpan_string(const char* name, const char* text);
void set_quillpan_float(const char* name, double value);
// GRAPHICS_MOUSE_X and its like lie in callbacks().context; a room that learns of an event stores
// them there.
void set_quillpan_option(const char* text);  // __quillpan_option
struct options_state {
    bool rgb_colours, alt_open_save, undefined_tests, rewrite_read_only, limit_errors, gdi_images,
        no_plot_depth_limit, overwrite_prompt;
    bool trust_descriptor_callbacks = true;  // safe_cb
    std::int32_t error_level;
};
options_state& options();

}  // namespace tarn::winio
