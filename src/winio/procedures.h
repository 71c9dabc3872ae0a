// The window procedure of format windows, what makes and closes them, and the filters around the
// message pump.
#pragma once

#include <cstdint>

#include "platform/base/types.h"
#include "winio/records.h"

namespace tarn::winio {

// Private messages.
enum : std::uint32_t {
    msg_tool_hide = 0x402,
    msg_tool_help = 0x403,
    msg_edit_gained = 0x404,
    msg_accelerator = 0x405,
    msg_start_up = 0x406,
    msg_shadow_follow = 0x407,
    msg_sheet_closed = 0x408,
    msg_edit_lost = 0x409,
    msg_text_selection = 0x40B,
    msg_super_maximise = 0x40C,
    msg_text_message = 0x40F,
    msg_pending_calls = 0x410,
    msg_defered_error = 0x412,
    msg_mdi_page = 0x415,
    msg_static_click = 0x417,
    msg_topmost_mdi = 0x418,
    msg_control_accelerator = 0x419,
    msg_tray = 0x41A,
    msg_button_accelerator = 0x41C,
    msg_graphics_mouse = 0x421,
    msg_text_channel = 0x426,
};

platform::LRESULT winio_winproc(platform::HWND hwnd, platform::UINT message,
                                platform::WPARAM wparam, platform::LPARAM lparam);
// The procedures of the library's own control classes, for their registration.
platform::LRESULT mdi_frame_procedure(platform::HWND hwnd, platform::UINT message,
                                      platform::WPARAM wparam, platform::LPARAM lparam);
platform::LRESULT constructed_button_procedure(platform::HWND hwnd, platform::UINT message,
                                               platform::WPARAM wparam, platform::LPARAM lparam);
platform::LRESULT bitmap_button_procedure(platform::HWND hwnd, platform::UINT message,
                                          platform::WPARAM wparam, platform::LPARAM lparam);
platform::LRESULT text_array_procedure(platform::HWND hwnd, platform::UINT message,
                                       platform::WPARAM wparam, platform::LPARAM lparam);
platform::LRESULT spin_control_procedure(platform::HWND hwnd, platform::UINT message,
                                         platform::WPARAM wparam, platform::LPARAM lparam);
platform::LRESULT bubble_help_procedure(platform::HWND hwnd, platform::UINT message,
                                        platform::WPARAM wparam, platform::LPARAM lparam);
platform::LRESULT shadow_procedure(platform::HWND hwnd, platform::UINT message,
                                   platform::WPARAM wparam, platform::LPARAM lparam);
// Part of the first use of the library: filters and hooks of the message pump, the end of the
// program. Harmless when done before.
void install_window_procedures();

// The last step of a `winio` call: the real window of a finished record, shown. Works out its
// size and place first (layout.h).
void create_real_window(fancy_window* window);
// The window named by %pa; without one, a window that a call-back opens belongs to the window of
// the call-back, so that it stays in front of it.
HWND owner_of(const fancy_window* window);
// The modal wait: until the window has closed. The result is the window's; the record stays for
// cleanup_winio.
std::int32_t wait_for_window(fancy_window* window);
// Runs the call-back after closing, makes the previous window current and destroys the record.
void cleanup_winio(fancy_window* window);
// The number of the next timer of %dl or SET_TIMER@.
std::uintptr_t next_timer_id();
// The key word of a key message, as accelerators are stored with; 0: it can't be one.
std::int32_t key_word_of(const platform::MSG& message);
void set_focus_on_control(window_control* control);
// Places the bars of %hx and %vx beside a control that was moved.
void re_size_scroll_bars(window_control* control);
// Text and class of the control's real window, by its type.
void create_control_window(fancy_window* window, window_control* control, std::int32_t child_id);

bool pre_message_loop_filter(platform::MSG& message);
void post_message_loop_filter(const platform::MSG& message);
void quillpan_idle();
void exit_cleanup();

// ---- Data entry and buttons
// ------------------------------------------------------------------------ WM_COMMAND of a %rd,
// %rf, %rs or %re box.
void data_entry_event(window_control* control, std::int32_t notification, bool from_library);
void float_to_char(char* buffer, double value, std::int32_t width);
void remove00(char* text);
bool undef_int_check(std::int32_t* variable, const char* code_text, std::int32_t value);
bool undef_double_check(double* variable, const char* code_text, double value);
void CreateAlert(window_control* control, bool from_update);
void DestroyAlert(window_control* control);
// Variable to field, for initialise_control.
void show_integer(window_control* control, bool first);
void show_float(window_control* control, bool first);
void show_string(window_control* control, bool first);
void copy_from_fstring(char* target, const char* source, std::int32_t length);
void copy_to_fstring(char* target, std::int32_t length, const char* source);

}  // namespace tarn::winio
