// The record of a window and the tables that all files of this room work on. No other room sees
// this header.
//
// Any message sent may destroy any window. A function that sends holds its windows by `Pinned`,
// which keeps the record (not the window) alive, and asks `alive()` afterwards; it walks children
// by a copied list of handles.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/display/display.h"
#include "platform/user/region.h"
#include "platform/user/scroll_bar.h"
#include "platform/user/user.h"

namespace tarn::platform {

struct WindowClass {
    std::string name;
    UINT style = 0;
    WNDPROC procedure = nullptr;
    std::int32_t class_extra = 0, window_extra = 0;
    HICON icon{};
    HCURSOR cursor{};
    HBRUSH background{};
    bool utf8 = false;
    std::int32_t windows = 0;  // alive
};

struct Insets {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

// What only a top-level window has.
struct Top {
    Surface surface;             // pixels null until it was shown
    Region damage;               // on the surface, logical: drawn and not yet presented
    bool opened = false;         // the display knows it
    bool shown = false;          // and shows it
    bool settled = true;         // window_settled was told, or needn't be
    bool placed = false;         // somebody chose its place
    bool size_owed = false;      // WM_SIZE and WM_MOVE wait for the first showing
    bool accepts_files = false;  // it or a window in it once did
    CursorShape cursor = CursorShape::arrow;
    WindowState state = WindowState::normal;
    std::int64_t state_asked_until = 0;  // the display hasn't answered: what it says is old news
    HWND last_focus{};                   // the focus when it was last active
    HWND disabled_by{};                  // what the display was told
    HICON icon{};
    HWND newer{}, older{};  // in order of creation
};

struct WindowScroll {
    ScrollValues values;
    bool disabled = false;
};

struct Window {
    HWND handle{};
    WindowClass* cls = nullptr;
    WNDPROC procedure = nullptr;
    Window* parent = nullptr;  // null: a top-level
    Window* owner = nullptr;   // of a top-level
    // Z order: first is at the top.
    Window *first_child = nullptr, *last_child = nullptr, *above = nullptr, *below = nullptr;
    RECT rect;         // outer; in the parent's client area, or on the screen
    RECT client;       // counted from the outer rectangle's corner
    RECT normal_rect;  // to come back to from maximised
    DWORD style = 0, ex_style = 0;
    LPARAM id = 0;
    LPARAM user_data = 0;
    HMENU menu{};
    std::unique_ptr<unsigned char[]> extra;
    std::string title;
    Region update;                 // client coordinates
    std::int32_t dirty_below = 0;  // windows to paint in this tree, itself included
    std::int32_t pins = 0;
    std::unique_ptr<WindowScroll> bars[2];  // SB_HORZ, SB_VERT; made when first used
    std::unique_ptr<Top> top;
    bool dirty : 1 = false;        // counted in dirty_below: update, frame_dirty or both
    bool erase : 1 = false;        // the update region must be erased first
    bool frame_dirty : 1 = false;  // border, bars, menu bar
    bool paint_taken : 1 = false;  // BeginPaint came since WM_PAINT was sent
    bool no_redraw : 1 = false;    // WM_SETREDRAW off
    bool dying : 1 = false;        // DestroyWindow runs
    bool dead : 1 = false;         // its handle is stale
    bool has_timers : 1 = false;
    bool accepts_files : 1 = false;
    bool covered_known : 1 = false;  // `covered` of its children holds
    bool covered : 1 = false;        // by a brother above it

    bool is_child() const { return parent != nullptr; }
    bool shows() const { return (style & WS_VISIBLE) != 0 && !no_redraw; }
    SIZE client_size() const { return {client.width(), client.height()}; }
};

// ---- Handles -----------------------------------------------------------------------------------
Window* find(HWND hwnd);  // null for a stale one
inline HWND handle_of(const Window* window) {
    return window != nullptr ? window->handle : HWND{};
}
inline TopLevel display_id(const Window& top) {
    return static_cast<TopLevel>(top.handle);
}
Window* new_window();       // in the table; null when it is full
void bury(Window& window);  // its handle is stale from here on
void release_pin(Window& window);

class Pinned {
  public:
    explicit Pinned(HWND hwnd) : Pinned(find(hwnd)) {}
    explicit Pinned(Window* window) : window_(window) {
        if (window_ != nullptr) ++window_->pins;
    }
    ~Pinned() {
        if (window_ != nullptr) release_pin(*window_);
    }
    Pinned(const Pinned&) = delete;
    Pinned& operator=(const Pinned&) = delete;
    explicit operator bool() const { return window_ != nullptr; }
    bool alive() const { return window_ != nullptr && !window_->dead; }
    Window* operator->() const { return window_; }
    Window& operator*() const { return *window_; }
    Window* get() const { return window_; }

  private:
    Window* window_;
};

WindowClass* find_class(std::string_view name);

// ---- Tree --------------------------------------------------------------------------------------
Window& top_of(Window& window);
bool is_within(const Window* window, const Window& ancestor);  // itself included
bool is_visible(const Window& window);                         // with all its ancestors
bool can_paint(const Window& window);                          // and redrawing is on, not an icon
void link_child(Window& window, Window* parent, Window* after, bool at_bottom);
void unlink_child(Window& window);
// A brother that can be seen lies over some of the window.
bool has_something_over(const Window& window);
void children_changed(Window* parent);                // their places, order, styles
std::vector<HWND> children_of(const Window& window);  // from the top, safe to walk while sending
Window*& top_levels();                                // the top of the Z order of all top-levels
HWND oldest_top_level();
void join_creation_order(Window& window);
void leave_creation_order(Window& window);

// ---- Geometry ----------------------------------------------------------------------------------
bool manager_frames(const Window& window);        // caption and border belong to the window manager
Insets hidden_frame(const Window& window);        // what of the outer rectangle the manager draws
std::int32_t border_width(const Window& window);  // of the border that we draw
bool has_caption_of_ours(const Window& window);   // a child with a caption
RECT frame_client(const Window& window, SIZE outer);
void update_client(Window& window);  // after a change of size, style, bars or menu; asks the window
std::int32_t longest_side(bool child);  // of a window
RECT surface_rect(const Window& top);   // on the screen
POINT client_origin_on_surface(const Window& window);
POINT client_origin_on_screen(const Window& window);

// ---- Messages ----------------------------------------------------------------------------------
LRESULT call(Window& window, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT call(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);

enum class Encoding : std::uint8_t { page, wide, utf8 };
LRESULT default_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam, Encoding encoding);
LRESULT send_text_message(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam, Encoding encoding);
LRESULT default_text(Window& window, UINT message, WPARAM wparam, LPARAM lparam, Encoding encoding);
void title_changed(Window& window);

// ---- Painting ----------------------------------------------------------------------------------
void invalidate(Window& window, const RECT& client, bool erase);
void invalidate_all(Window& window);  // frame, client and children
void invalidate_frame(Window& window);
void expose_parent(Window& window, const RECT& outer);  // what lay under the window
void forget_updates(Window& window);                    // of its whole tree
bool anything_dirty();
Window* next_to_paint();
void paint_tree(Window& window);     // now, parents first
LRESULT send_paint(Window& window);  // WM_PAINT to one
void paint_frame_if_marked(Window& window);
HDC frame_context(Window& window);         // of the window without its client area
void paint_frame(Window& window, HDC dc);  // default WM_NCPAINT
void release_contexts(Window& window);     // it dies
void surface_changed(Window& top);         // contexts of the old one are turned over

// ---- Top-levels and the display ----------------------------------------------------------------
void open_top(Window& top);
void close_top(Window& top);
void fit_surface(Window& top);
void add_damage(Window& top, const RECT& surface);
bool anything_to_present();
void present_all();
void options_changed(Window& top);
void limit_surface_size(Window& top, SIZE& least, SIZE& most);

// ---- Place and state ---------------------------------------------------------------------------
// The outer rectangle changes: messages, painting, and unless it came from there the display.
void set_window_rect(Window& window, const RECT& rect, UINT flags, bool from_display);
void send_size(Window& window);
void send_move(Window& window);
void hide_window(Window& window);

// ---- Focus -------------------------------------------------------------------------------------
void activate(Window* top, UINT how);
void give_focus(Window* window);
void leave_window(Window& window);  // it is hidden or dies: focus, capture, activation go elsewhere
void display_focus(Window& top, bool in);
Window* modal_of(const Window& disabled);
void raise_modal_of(Window& disabled);
void forget_window(Window& window);  // all state of input that names it

// ---- Hooks of the menus ------------------------------------------------------------------------
// Filled by the menus when the first one is made; the bar is part of the frame.
struct MenuHooks {
    std::int32_t (*bar_height)(HWND hwnd, HMENU menu, std::int32_t width) = nullptr;
    void (*draw_bar)(HWND hwnd, HMENU menu, HDC dc, const RECT& bar) = nullptr;
    // A press on the bar (screen), or the pointer over it; -1, -1 when it left.
    void (*bar_pressed)(HWND hwnd, POINT screen) = nullptr;
    void (*bar_hover)(HWND hwnd, POINT screen) = nullptr;
    // ALT or F10 alone (0), or ALT with a character; false: nothing of that name.
    bool (*open_by_key)(HWND hwnd, char32_t key) = nullptr;
    void (*window_destroyed)(HWND hwnd, HMENU menu) = nullptr;
};
MenuHooks& menu_hooks();
// The menu bar of a top-level, in its window coordinates; empty for none.
RECT menu_bar_rect(const Window& window);
// Gives the window a bar or takes it: the frame is laid out anew.
bool set_window_menu(HWND hwnd, HMENU menu);

}  // namespace tarn::platform
