// The records of text windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <pthread.h>

#include "platform/user/menus.h"
#include "platform/user/user.h"
#include "textwin/textwin.h"

namespace tarn::textwin {

using platform::HDC;
using platform::HFONT;
using platform::LPARAM;
using platform::LRESULT;
using platform::POINT;
using platform::RECT;
using platform::UINT;
using platform::WPARAM;

inline constexpr std::int32_t line_limit = 255;            // bytes of a line
inline constexpr std::int32_t no_selection = -16777216;    // in all four coordinates
inline constexpr std::int32_t copy_command = 218;          // "Copy to Cli&pboard"
inline constexpr std::int32_t default_maximum_floor = 50;  // the least a limit of lines can be

struct text_descriptor {
    text_descriptor* next;
    COLORREF colour;
    HFONT font;
    std::int32_t height;
};

// A stored line: raw text with its escapes, terminated, directly behind the record. Finished lines
// have their exact size; the one working line at the tail has room for the longest.
struct window_line {
    window_line *next, *previous;
    text_descriptor *start, *end;  // in force at its start and its end
    std::int32_t right_edge;       // pixels
    std::int32_t height;
    char* text() { return reinterpret_cast<char*>(this + 1); }
    const char* text() const { return reinterpret_cast<const char*>(this + 1); }
};

using message_callback = std::int32_t (*)(HWND, std::int32_t, WPARAM, LPARAM);
using fortran_callback = std::int32_t (*)(HWND*, std::int32_t*, WPARAM*, LPARAM*);
struct callback_entry {
    callback_entry* next;
    UINT message;
    message_callback function;
    fortran_callback by_reference;
};

struct window_info {
    window_info* next;
    HWND hwnd;
    window_line *first, *last, *bottom, *top;
    text_descriptor* descriptors;
    callback_entry* callbacks;
    std::int32_t bottom_number;
    std::int32_t top_margin, left_margin;
    std::int32_t height, width;
    std::int32_t lines_on_view;
    std::int32_t column_page;
    std::int32_t line_count;
    std::int32_t maximum_lines;
    std::int32_t column;
    std::int32_t last_command;
    HBRUSH brush;
    COLORREF background, text_colour;
    HDC graphics_dc;
    platform::HBITMAP graphics_bitmap, saved_bitmap;
    POINT anchor, end;  // of the selection, pixels
    std::int32_t caret_x, caret_y;
    window_line* selected_first;
    const char* selected_first_character;
    window_line* selected_last;
    const char* selected_last_character;
    HMENU popup;
    char pending[4];  // of one character typed
    std::uint8_t pending_length;
    char escape;
    std::size_t working_length;  // of the working line's text
    bool line_full;              // what else comes for the line is dropped
    // State:
    bool update_at_once, has_focus, waiting, caret_exists, changed, event_waiting, repaint_all,
        embedded;
    // Options:
    bool horizontal_bar, vertical_bar, escape_used, display_owed, copy_on_menu, input_started,
        bar_pending, utf8;
    // What stands on the screen since the last paint, so that new lines can be scrolled in.
    std::int64_t lines_added, painted_lines;  // ever, and when it was painted
    bool painted;
    window_line* anchor_line;  // where a drag began
    const char* anchor_character;
};

struct textwin_state {
    window_info* windows;  // newest first
    HWND main_window;
    HWND default_window;
    HFONT default_font;  // 0: the fixed one
    char default_escape = '@';
    std::int32_t default_maximum_lines;
    std::uint32_t default_style =
        platform::WS_OVERLAPPEDWINDOW | platform::WS_HSCROLL | platform::WS_VSCROLL;
    std::uint32_t extra_style;  // one-shot, of the next embedded window
    struct {
        HWND parent;
        HBRUSH brush;
        COLORREF background, text;
        HMENU popup;
        RECT place;
        bool horizontal, vertical;
    } embedding;
    bool colours_set;
    HBRUSH window_brush;
    COLORREF text_colour, background;
    HBRUSH class_brush;
    std::int32_t show_command = 10;
    bool class_registered;
    bool win_exit_enabled;
    bool quiet_write;   // __win_coua_f
    bool hold_display;  // the next line's display is held back; one-shot
    bool destroying;
    std::int32_t bar_countdown;
    std::int32_t selection_phase;  // 0, 1 dragging, 2 finished
    std::uint64_t last_poll;       // when a writing program looked at the queue last
    bool show_wanted;              // some window has output that isn't on the screen
    std::uint32_t yield_mask;
    std::int32_t upper_limit;
    bool key_taken;  // a key came for a read that waits: the pump leaves the next ones in the queue
};
textwin_state& state();

window_info* find_window(HWND hwnd);
std::uint64_t now_nanoseconds();

// ---- Lines (lines.cpp) -------------------------------------------------------------------------
void add_window_line(window_info& window, const char* text, std::size_t length);
void remove_excess_lines(window_info& window, bool normal);
void scan_line(window_info& window, window_line& line);
void free_lines(window_info& window);
// Bytes of a font escape at `text` (0: none); `number` is its descriptor's.
std::int32_t font_escape(const window_info& window, const char* text, std::int32_t& number);
text_descriptor* descriptor_of(const window_info& window, std::int32_t number);
void write_bytes(window_info& window, const char* bytes, std::size_t count);
// Bytes of the character that begins with `lead`: more than one in UTF-8 only.
std::size_t character_length(const window_info& window, char lead);
// The last character of a text begins at this offset.
std::size_t last_character(const window_info& window, const char* text, std::size_t length);
// Takes the last character off the working line.
void take_back_character(window_info& window);
void live_while_writing();
void mark_changed(window_info& window);
void show_output(window_info& window);
void show_all_output();

// ---- Painting (paint.cpp) ----------------------------------------------------------------------
void paint_window(window_info& window, HDC dc, bool incremental);
void place_caret(window_info& window);

// The character at a place in the client area: the nearest one where there is none.
bool character_at(window_info& window, HDC dc, POINT at, window_line*& line,
                  const char*& character);

// ---- Scrolling (scrolling.cpp)
// -------------------------------------------------------------------
void set_vert_scroll_bar(window_info& window, std::int32_t position, bool forced);
void count_down_bars();
void scrollv(window_info& window, std::int32_t amount, std::int32_t update_option, bool absolute);
void show_full_page(window_info& window);
void scrollh(window_info& window, std::int32_t amount, std::int32_t update_option);
void scroll_message(window_info& window, UINT message, WPARAM wparam);
void wheel(window_info& window, WPARAM wparam);

// ---- Input, selection, clipboard (input.cpp, selection.cpp)
// -----------------------------------------
// A byte of the code page (WM_CHAR), or a code point that it lacks (WM_UNICHAR).
void key_typed(window_info& window, UINT message, WPARAM wparam);
void mouse_selection(window_info& window, UINT message, WPARAM wparam, POINT at);
void cancel_selection(window_info& window);
void copy_window(window_info& window);
void copy_selection(window_info& window);

// ---- Windows (windows.cpp), the pump (pump.cpp)
// ----------------------------------------------------
void register_text_class();
bool pump_started();
pthread_t pump_thread();  // that started it: windows are its own
void start_pump();        // the class, the script; harmless when done before
void destroy_text_window(HWND hwnd);
void register_message_loop_hook(void (*function)());
void register_modeless_dialog(HWND dialog);
void unregister_modeless_dialog(HWND dialog);

LRESULT main_windows_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
void release_window(HWND hwnd);  // WM_DESTROY: unlinks and frees the record
void enable_winexit();           // the end of the program waits until every text window is closed
void clear_window(window_info& window);

}  // namespace tarn::textwin
