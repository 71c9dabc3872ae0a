// The process-wide state of this room, one record.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "platform/user/window.h"

namespace tarn::platform {

// Slots are used again in the order in which they were freed, so that a stale handle is
// recognised for as long as can be.
struct WindowTable {
    struct Slot {
        Window* window = nullptr;
        std::uint16_t generation = 1;
        std::int32_t next_free = -1;
    };
    std::vector<Slot> slots;
    std::int32_t first_free = -1, last_free = -1;
    std::vector<std::unique_ptr<WindowClass>> classes;
    Window* top = nullptr;  // the Z order of top-levels
    Window* bottom = nullptr;
    HWND oldest{}, newest{};  // top-levels in order of creation
};

struct InputMessage {
    MSG msg;
    std::string text;  // a key: what it types
};

struct Timer {
    HWND hwnd{};
    std::uintptr_t id = 0;
    UINT period = 0;
    std::int64_t due = 0;  // clock_us
    TIMERPROC procedure = nullptr;
    bool internal = false;  // of this room: never seen by a program
};

struct Watch {  // a file that others write to
    HWND hwnd{};
    int file = -1;
    UINT message = 0;
    bool told = false;  // and not looked at since
};

struct Queue {
    std::deque<MSG> posted;
    std::deque<Event> events;        // taken from the display, not yet looked at
    std::deque<InputMessage> input;  // made from an event, not yet taken
    std::vector<Timer> timers;       // the next one first
    std::vector<Watch> watches;
    std::uintptr_t next_timer_id = 0x7F00;
    std::int64_t last_poll = 0;   // of the display
    std::int64_t last_frame = 0;  // when something was painted or presented
    std::int64_t next_frame = 0;  // a program that doesn't wait is painted from then on
    std::int64_t frame_start = 0;
    std::int64_t shown_until = 0;   // time that showing at once has used up
    std::int64_t silent_since = 0;  // headless: since when only timers run; 0: not waiting
    std::int32_t quit_code = 0;
    bool quit = false;
    bool idle = false;             // a wait was reached: paint whatever the time
    bool in_frame = false;         // painting began, and goes on to its end
    bool unsettled = false;        // a window was shown and window_settled not told
    bool fresh_marks = false;      // something was marked, not by painting itself
    std::int32_t frame_left = 0;   // windows to paint until the frame ends
    std::int32_t paint_depth = 0;  // WM_PAINT is being handled
};

struct TextTransfer {  // a text on its way to a procedure that gets it as it is
    const void* text = nullptr;
    UINT message = 0;
    Encoding encoding = Encoding::page;
};

// A frame of ours that the pointer has hold of.
struct FrameDrag {
    HWND hwnd{};
    LRESULT hit = HTNOWHERE;
    RECT start;
    POINT from;         // screen
    bool over = false;  // a button: the pointer is on it
};

struct Input {
    HWND focus{}, active{}, capture{}, hover{};
    TopLevel display_focus = 0;  // the display says so
    TopLevel focus_asked = 0;    // the display was asked and hasn't answered
    std::int64_t focus_asked_until = 0;
    POINT pointer;  // screen
    bool pointer_known = false;
    std::uint32_t modifiers = 0;
    std::uint8_t keys[256] = {};  // bit 7 down, bit 0 toggled
    InputMessage recent_keys[8];  // for TranslateMessage
    std::uint32_t next_recent = 0;
    bool alt_alone = false, f10_alone = false;
    bool keyboard_cues = false;
    // The last press, for double clicks.
    HWND click_window{};
    std::int32_t click_button = 0;
    POINT click_at;
    DWORD click_time = 0;
    // What the wheel has turned that is less than a notch.
    HWND wheel_window{};
    std::int32_t wheel_rest[2] = {};
    // A bar of a window that is being dragged, or that the pointer is over.
    ScrollTracker scroll;
    HWND scroll_window{};
    std::int32_t scroll_bar = SB_VERT;
    HWND bar_hover_window{};
    std::int32_t bar_hover = SB_VERT;
    ScrollPart bar_hover_part = ScrollPart::none;
    HWND menu_hover{};
    FrameDrag frame_drag;
    HWND caption_hover{};  // with the pointer over this button of its caption
    LRESULT caption_hit = HTNOWHERE;
    HCURSOR cursor{};
    std::int32_t cursor_count = 0;  // ShowCursor
};

struct Caret {
    HWND hwnd{};
    RECT rect;                // client
    std::int32_t hidden = 1;  // HideCaret calls not undone
    bool lit = true;          // phase of the blinking
    bool takes_text = true;   // input methods may compose here
    std::int64_t still_from = 0;
};

struct Context {  // a device context given out
    HDC dc{};
    HWND hwnd{};
    bool in_use = false, painting = false, whole = false;
    Region clip;  // surface coordinates
};

struct Drop {
    std::int32_t id = 0;
    std::vector<std::string> paths;
    POINT at;
};

// Where the last search for a window to paint ended, and how many marks there were.
struct PaintSearch {
    HWND found{};
    std::uint64_t marks = 0;
};

struct UserState {
    WindowTable windows;
    Queue queue;
    Input input;
    Caret caret;
    TextTransfer transfer;
    std::vector<Context> contexts;
    std::vector<Drop> drops;
    std::int32_t next_drop = 1;
    std::int32_t dirty_windows = 0;  // to paint, in all trees
    std::uint64_t marks = 0;         // counts those that became so
    PaintSearch paint_search;
    std::int32_t damaged = 0;  // top-levels that may have something to present
    MenuHooks menus;
    HWND clipboard_owner{};
};
// Made when first used, and used until the process ends.
extern constinit UserState* state_record;
UserState& make_state();
inline UserState& state() {
    return state_record != nullptr ? *state_record : make_state();
}

// ---- Time and the queue, for the files of this room
// ----------------------------------------------
std::int64_t clock_us();  // CLOCK_MONOTONIC
inline constexpr std::int64_t frame_us = 16000;
// How long the display may take to do what it was asked; until then what it says is old news.
inline constexpr std::int64_t answer_us = 1000000;
void start_timer(HWND hwnd, std::uintptr_t id, UINT period, TIMERPROC procedure, bool internal);
void stop_timer(HWND hwnd, std::uintptr_t id, bool internal);
void stop_timers_of(HWND hwnd);
// Looks at an event of the display: what is no input happens now, input becomes messages.
void frame_done();  // painting or presenting ended now
void take_event(const Event& event);
void take_pointer_event(const Event& event);
void take_key_event(const Event& event);
void take_drop_event(const Event& event);
void forget_configures(HWND hwnd);  // asked for another place: older answers don't count
void queue_input(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam, std::string_view text = {});
// Input methods show what they compose at the caret, and have the keys only while there is one.
void tell_input_place();
void caret_presented(Window& top, CaretOverlay& overlay);
void caret_owner_changed(HWND hwnd);
void refresh_cursor();
void set_keyboard_cues(bool on);
// The bar of a window: its place in the outer rectangle, empty when it isn't there.
RECT window_bar_rect(const Window& window, std::int32_t bar);
WindowScroll& scroll_of(Window& window, std::int32_t bar);
void press_window_bar(Window& window, std::int32_t bar, POINT screen);
bool follow_window_bar(POINT screen, UINT message);  // true: the tracker has the pointer
void hover_window_bar(Window* window, std::int32_t bar, POINT screen);
void end_window_bar();
ScrollLook window_bar_look(const Window& window, std::int32_t bar);
LRESULT hit_frame(const Window& window, POINT screen);
// The same for frames that we draw: captions of children, sizable borders.
struct CaptionButtons {
    RECT close, maximize, minimize;  // empty where there is none
};
CaptionButtons caption_buttons(const Window& window);
LRESULT hit_own_frame(const Window& window, POINT at);  // counted from its outer corner
HCURSOR border_cursor(LRESULT hit);
void press_own_frame(Window& window, LRESULT hit, POINT screen, bool twice);
void follow_own_frame(POINT screen, UINT message);
void end_own_frame();
void hover_own_frame(Window* window, LRESULT hit);

}  // namespace tarn::platform
