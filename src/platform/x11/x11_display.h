// Windows on an X desktop. Real pixels are the server's; what is logical is so named or comes from
// the interface.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

#include "platform/display/display.h"
#include "platform/display/event_queue.h"
#include "platform/display/pixel_store.h"
#include "platform/x11/connection.h"
#include "platform/x11/input_method.h"
#include "platform/x11/keyboard.h"
#include "platform/x11/pointer_input.h"
#include "platform/x11/selections.h"
#include "platform/x11/settings.h"
#include "platform/x11/staging.h"

namespace tarn::x11 {

using namespace tarn::platform;

struct Frame {
    std::int32_t left = 0, right = 0, top = 0, bottom = 0;
};

struct Window {
    TopLevel id = 0;
    xcb_window_t handle = 0;
    TopLevelOptions options;
    RECT asked;     // client, logical: the last wish
    RECT real;      // client on the screen, real
    RECT wanted;    // the same, as the server was asked last
    RECT reported;  // client, logical: the last configure event
    RECT restored;  // logical; what a state that we make ourselves goes back to
    WindowState state = WindowState::normal;
    TopLevel disabled_by = 0;
    bool shown = false;       // asked to be visible
    bool viewable = false;    // mapped
    bool reparented = false;  // in a frame of the manager's
    bool focused = false;
    bool focus_when_mapped = false;
    bool frame_checked = false;     // its caption is on the screen
    bool position_unknown = false;  // moved with its frame
    bool configured = false;        // a configure event is due
    bool answer_due = false;        // even when nothing changed
    bool state_changed = false;     // a look at the manager's properties is due
    CursorShape cursor = CursorShape::arrow;
    PixelStore pixels;
};

// A drag of another program that is over one of our windows.
struct Drag {
    xcb_window_t source = 0;
    TopLevel window = 0;
    bool files = false;
    bool dropped = false;  // the files are still to be fetched
    POINT screen;          // real
    xcb_timestamp_t time = 0;
};

class X11Display final : public Display {
  public:
    X11Display(const DisplaySetup& setup, Connection& connection);

    const char* name() const override { return "x11"; }
    std::span<const RECT> monitors() const override { return monitors_; }
    RECT work_area(POINT near) const override;
    double scale() const override { return scale_; }
    bool headless() const override { return false; }
    bool dark() const override { return dark_; }

    bool open(TopLevel id, const TopLevelOptions& options) override;
    void close(TopLevel id) override;
    void show(TopLevel id, bool visible, bool activate) override;
    void place(TopLevel id, const RECT& client) override;
    void set_state(TopLevel id, WindowState state) override;
    void set_options(TopLevel id, const TopLevelOptions& options) override;
    void set_title(TopLevel id, std::string_view utf8) override;
    void set_icon(TopLevel id, std::int32_t width, std::int32_t height,
                  const std::uint32_t* pixels) override;
    void set_modal(TopLevel id, TopLevel disabled_by) override;
    void raise(TopLevel id) override;
    void focus(TopLevel id) override;

    Surface surface(TopLevel id, std::int32_t width, std::int32_t height) override;
    void present(TopLevel id, std::span<const RECT> rects, const CaretOverlay& caret) override;

    void set_cursor(TopLevel id, CursorShape shape) override;
    POINT pointer() const override;
    void warp_pointer(POINT screen) override;
    void grab_pointer(TopLevel id) override;
    void beep() override;

    void offer_text(bool primary, std::string_view utf8) override;
    bool request_text(bool primary, std::string& utf8) override;
    void offer_image(std::string_view png) override;
    bool has_text(bool primary) override;

    bool next_event(Event& event, std::int32_t timeout) override;
    void watch(std::span<const int> files) override { watched_.assign(files.begin(), files.end()); }
    void set_input_place(TopLevel id, const RECT& caret) override;
    void flush() override;
    void inject(const Event& event) override;
    bool injected_waiting() const override { return !injected_.empty(); }

    // At the end of the process: a clipboard manager keeps what was copied.
    void leave();

  private:
    Window* find(TopLevel id);
    Window* find_handle(xcb_window_t handle);

    // windows.cpp
    void announce_start(const Window& window) const;
    void finish_start();
    void save_yourself(const Window& window) const;
    void write_hints(const Window& window);
    void write_size_hints(const Window& window);
    void write_state_property(const Window& window);
    void withdraw(const Window& window);
    void ask_manager_state(const Window& window, bool add, Atom first, Atom second);
    void make_state(Window& window, WindowState state);
    void configure(Window& window, const RECT& client);
    bool is_modal(TopLevel id) const;
    void set_topmost(const Window& window);
    Window* focus_target(TopLevel id);
    void take_focus(Window& window, xcb_timestamp_t time);
    void focus_another(TopLevel owner);

    // events.cpp
    void drain();
    void settle();
    bool wait(std::int32_t timeout);
    void handle(xcb_generic_event_t& event);
    void handle_window_event(const xcb_generic_event_t& event);
    void handle_pointer(const xcb_generic_event_t& event);
    void handle_button(const xcb_button_press_event_t& button, bool down);
    void pointer_came();
    void handle_device(const xcb_generic_event_t& event);
    void scroll(const Window& window, const xcb_button_press_event_t& at, const Scroll& by);
    void handle_key(const xcb_key_press_event_t& key);
    void take_answers();
    void handle_focus(const xcb_focus_in_event_t& focus, bool in);
    void handle_configure(const xcb_configure_notify_event_t& change);
    void handle_message(const xcb_client_message_event_t& message);
    void handle_property(const xcb_property_notify_event_t& change);
    void mapped(Window& window);
    void report_configure(Window& window);
    void check_frame(Window& window);
    void report_state(Window& window);
    void change_scale();
    void settings_changed();
    Event about(Event::Kind kind, const Window* window) const;
    void place_pointer(Event& event, const Window& window, std::int32_t x, std::int32_t y,
                       std::uint16_t state) const;
    void connection_lost(std::int32_t timeout);

    // drop.cpp
    bool handle_drag(const xcb_client_message_event_t& message);
    void drag_enter(const xcb_client_message_event_t& message);
    void drag_over(const xcb_client_message_event_t& message);
    void finish_drop();

    // x11_display.cpp
    bool is_managed() const;
    bool manager_supports(Atom feature) const;
    void read_monitors();
    void monitors_changed();
    void scale_monitors();
    RECT real_monitor(POINT real) const;
    RECT real_work_area(POINT real) const;
    RECT client(const Window& window) const;
    RECT logical_rect(const RECT& real) const;
    POINT logical_point(POINT real) const;
    POINT real_point(POINT logical) const;
    RECT real_rect(const RECT& logical) const;
    xcb_cursor_t cursor(CursorShape shape);
    Property fetch(xcb_atom_t selection, xcb_atom_t target, std::int32_t patience,
                   xcb_timestamp_t time = XCB_CURRENT_TIME);
    void wait_for_answer(std::int32_t patience);

    Connection connection_;
    void (*lost_)(const char* message) = nullptr;
    bool gone_ = false;       // the server is
    bool left_ = false;       // the process ends
    bool own_scale_ = false;  // the user's wish, not the desktop's
    double scale_ = 1.0;
    std::string startup_id_;  // until the first window is there
    xcb_window_t settings_owner_ = 0;
    Settings settings_;
    bool dark_ = false;
    Keyboard keyboard_;
    InputMethod input_method_;
    PointerInput pointer_input_;
    Selections selections_;
    Staging staging_;
    Drag drag_;
    std::vector<std::unique_ptr<Window>> windows_;
    std::vector<RECT> real_monitors_;  // the primary one first
    std::vector<RECT> monitors_;       // the same, logical
    std::uint8_t randr_event_ = 0;
    xcb_cursor_t cursors_[static_cast<std::size_t>(CursorShape::none) + 1] = {};
    std::vector<int> watched_;
    TopLevel grab_ = 0;
    bool grab_due_ = false;  // its window wasn't there yet
    POINT injected_pointer_;
    bool pointer_injected_ = false;
    EventQueue injected_, queue_;
};

}  // namespace tarn::x11
