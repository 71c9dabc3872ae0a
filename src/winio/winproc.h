// What the files of the window procedure share: their state, and how a window is watched over a
// call out.
#pragma once

#include <cstdint>

#include "platform/base/constants.h"
#include "platform/user/user.h"
#include "winio/procedures.h"
#include "winio/records.h"

namespace tarn::winio {

using monitor = void (*)();

// A list of functions that a program asked to be called.
struct monitor_list {
    static constexpr std::int32_t capacity = 32;
    monitor functions[capacity];
    std::int32_t count;

    bool add(monitor function);
    bool remove(monitor function);
    void run();  // copes with functions that add or remove one
    bool empty() const { return count == 0; }
};

// A control with help, or one button of a %ib.
struct help_target {
    fancy_window* window = nullptr;
    window_control* control = nullptr;
    std::int32_t cell = -1;

    bool operator==(const help_target&) const = default;
};
struct tool_help_state {
    help_target over;  // under the pointer; a window alone: nothing with help is
    platform::HWND tip;
    std::uintptr_t timer;        // until the tip comes, or goes
    platform::DWORD gone_since;  // when a tip went because the pointer moved on; 0: long ago
};

struct procedures_state {
    bool installed;
    bool input_seen;    // since quillpan_idle ran last
    bool trap_f10;      // __trap_special_funkey(1, ...)
    bool exit_cleaned;  // exit_cleanup ran
    std::int32_t window_depth;
    std::uintptr_t last_timer;
    platform::WNDPROC edit_procedure;    // of "edit", before ours
    platform::WNDPROC button_procedure;  // of "button", before ours
    platform::WPARAM last_key;           // the last character typed into a box
    bool (*interception)(platform::MSG*);
    monitor_list idle, cursor, focus, keyboard;
    platform::HWND cursor_window, focus_window;  // as they were last
    bool dialog_key;             // the command that comes is the Enter or the Escape key's
    platform::HWND last_client;  // of the clipboard: the field or text window that had the focus
    platform::LRESULT message_result;  // __set_mg_return_value
    tool_help_state tool_help;
    struct text_exchange *sending, *exchange;  // text messages: on its way, being answered
};
procedures_state& procedures();

// A window before a call out. Every call of a program's function, and every message sent, may
// close the window and destroy its record: nothing of it is touched again until gone() says no.
class window_watch {
  public:
    explicit window_watch(const fancy_window* window)
        : window_(window), number_(window->second_number) {}
    bool gone() const;

  private:
    const fancy_window* window_;
    std::int32_t number_;
};

inline platform::HWND to_hwnd(std::intptr_t value) {
    return static_cast<platform::HWND>(static_cast<std::int32_t>(value));
}
bool window_listed(const fancy_window* window);
// Destroys the record of a window, at once or when its procedure is left.
void retire_window(fancy_window* window);

// ---- Creation (create_window.cpp, create_controls.cpp)
platform::LRESULT window_created(fancy_window* window, platform::HWND hwnd);
void create_controls(fancy_window* window);
void create_text_window(fancy_window* window, window_control* control);
const char* class_of(const fancy_window* window);
bool start_up_wanted(const fancy_window* window);
void window_started(fancy_window* window);  // message 0x406
void post_start_up(fancy_window* window);

// ---- Serving (command.cpp, winproc_paint.cpp, window_scroll.cpp, timers.cpp)
void window_command(fancy_window* window, platform::WPARAM wparam, platform::LPARAM lparam);
// What is seen around the control: the colour of its box, or of the window.
platform::COLORREF ground_behind(const window_control* control);
void take_theme(fancy_window* window);
platform::LRESULT control_colours(fancy_window* window, platform::HDC dc, platform::HWND child);
void paint_window(fancy_window* window);
bool draw_item(fancy_window* window, const platform::DRAWITEMSTRUCT& item);
void window_scrolled(fancy_window* window, bool vertical, platform::WPARAM wparam,
                     platform::HWND bar);
bool wheel_scrolled(fancy_window* window, std::int32_t turn);
void set_window_scroll_bars(fancy_window* window);
void create_scroll_bars(window_control* control, std::int32_t& next_id);
void show_scroll_bars(window_control* control);  // as its variables say
void window_timer(fancy_window* window, std::uintptr_t id);
void start_timers(fancy_window* window);
void set_timer(platform::HWND hwnd, double seconds, call_back function);
void kill_timer(platform::HWND hwnd, call_back function);
void change_timer_interval(platform::HWND hwnd, double seconds);

// ---- MDI (winproc_mdi.cpp)
inline constexpr std::int32_t mdi_restore = 0xF00, mdi_minimise = 0xF01;  // commands of the menu
void mdi_child_made(fancy_window* child);
void mdi_child_sized(fancy_window* child, platform::WPARAM kind);
void change_topmost_mdi_child(fancy_window* host);
platform::HWND mdi_child_below(const fancy_window* child);  // that is next when it goes; 0: none
void mdi_page_turned(const fancy_window* host);
bool mdi_menu_command(fancy_window* host, std::int32_t id);
void next_mdi_child(fancy_window* host, bool back);

// ---- Closing (close.cpp)
// True when the window may be destroyed now.
bool close_window(fancy_window* window);
void window_destroyed(fancy_window* window);
void monitor_pending_close();
void close_all_windows();

// ---- Data entry and buttons
void show_prompts(fancy_window* window);
void subclass_edit(window_control* control);
void subclass_button(window_control* control);
// A button that the library draws: which class procedure serves it, and its label.
bool drawn_button(const window_control* control);
const char* button_label(const window_control* control);
bool is_default_button(const window_control* control);
std::int32_t button_value(const window_control* control);
window_control* IsAlert(fancy_window* window, platform::HWND mark);
void draw_alert(const window_control* owner, const platform::DRAWITEMSTRUCT& item);
void keep_alert_with(window_control* control);  // the box moved

// ---- Help of controls (tool_help.cpp)
void follow_pointer_for_help(const platform::MSG& message);
void hide_tool_help();
bool help_requested(fancy_window* window);  // F1; false: the control with the focus has no help
void tool_help_updated(const void* variable);
void forget_tool_help(const fancy_window* window);
platform::HWND tool_help_window(const fancy_window* window);

// ---- Settings of %ss (settings.cpp)
void restore_settings(const fancy_window* window);  // into the variables
void save_settings(const fancy_window* window);

// ---- Text messages between programs (text_messages.cpp)
void text_message_arrived(fancy_window* window, platform::LPARAM exchange);
void listen_for_texts(fancy_window* window);  // from other programs
void texts_from_outside(platform::HWND hwnd);
bool send_text_message(const char* class_name, const char* text, char* reply);
void reply_to_text_message(const char* text);

// ---- Keys (keyboard_queue.cpp)
void keyboard_filter(const platform::MSG& message);
void put_char(std::int32_t key);
std::int32_t get_char(bool wait);  // 0: none is there
std::int32_t keys_waiting();
void flush_keys();

}  // namespace tarn::winio
