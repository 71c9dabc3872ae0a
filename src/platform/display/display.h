// Where windows appear. A display presents rectangles of top-level surfaces and delivers events,
// no more: everything else about windows is decided above. Two backends: `memory`, which needs
// nothing, and `x11`, loaded only when it is used. Keep it narrow: more backends come.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/base/surface.h"
#include "platform/base/types.h"
#include "platform/display/geometry.h"

namespace tarn::platform {

using TopLevel = std::int32_t;  // chosen by the caller, positive

enum class Role : std::uint8_t {
    normal,   // framed and managed
    dialog,   // framed, owned
    utility,  // framed, small
    popup,    // not managed: menus, drop-downs, tips
};
enum class WindowState : std::uint8_t { normal, minimized, maximized, full_screen };
enum class CursorShape : std::uint8_t {
    arrow,
    ibeam,
    wait,
    cross,
    up_arrow,
    size_all,
    size_ns,
    size_we,
    size_nwse,
    size_nesw,
    hand,
    no,
    help,
    none
};

struct TopLevelOptions {
    Role role = Role::normal;
    TopLevel owner = 0;
    RECT client;                  // wanted place of the client area on the screen, logical
    bool position_given = false;  // false: wherever the manager likes
    bool framed = true;           // a caption and a border by the manager
    bool resizable = true, minimizable = true, maximizable = true;
    bool closable = true, topmost = false, accepts_focus = true;
    bool accepts_files = false;  // dropped from other programs
    SIZE minimum, maximum;       // 0: none
    std::string title;
    std::string class_name;
};

struct Event {
    enum class Kind : std::uint8_t {
        none,
        expose,     // rect: present again from the surface
        configure,  // rect: where the client area is now, logical; size and place granted
        state,      // state
        close,      // the manager or the user asks
        focus_in,
        focus_out,
        pointer_move,  // point (client, logical), modifiers
        pointer_leave,
        button_down,  // button 1 left, 2 middle, 3 right, 8 back, 9 forward
        button_up,
        wheel,     // delta (120 a notch, up and left positive), horizontal
        key_down,  // key (virtual), scan, text, modifiers, repeat
        key_up,
        text,            // text composed by an input method or a dead key, with no key of its own
        scale,           // scale
        selection_lost,  // primary: which one; another program owns it now
        drop_files,      // point, text: paths separated by line feeds
        session_end,     // the desktop is going down
        theme,           // the desktop became light or dark
    };
    Kind kind = Kind::none;
    TopLevel window = 0;
    RECT rect;
    POINT point;
    POINT screen;  // pointer on the screen, logical
    WindowState state = WindowState::normal;
    std::int32_t button = 0;
    std::int32_t delta = 0;
    bool horizontal = false;
    bool repeat = false;
    bool primary = false;
    std::int32_t key = 0;         // VK_ code
    std::int32_t scan = 0;        // keycode - 8
    std::uint32_t modifiers = 0;  // Modifier bits, after the event
    double scale = 1.0;
    DWORD time = 0;
    // UTF-8: what the key types, empty for none. Return types "\r", and control_text (keys.h) tells
    // what the other keys with control characters do.
    std::string text;
};
enum Modifier : std::uint32_t {
    mod_shift = 1,
    mod_control = 2,
    mod_alt = 4,
    mod_altgr = 8,
    mod_super = 16,
    mod_left = 0x100,
    mod_middle = 0x200,
    mod_right = 0x400,
    mod_caps = 0x1000,
    mod_num = 0x2000,
};

// What lies over the surface at present and never in it.
struct CaretOverlay {
    bool visible = false;
    RECT rect;  // client, logical
};

class Display {
  public:
    virtual const char* name() const = 0;  // "memory", "x11"
    // Logical, the primary one first. Places on the screen count from its top left corner, so that
    // others may lie left of 0 or above it.
    virtual std::span<const RECT> monitors() const = 0;
    // What panels leave free of the monitor at that place or nearest to it.
    virtual RECT work_area(POINT near) const = 0;
    // All of the monitor at that place or nearest to it.
    RECT monitor(POINT near) const { return monitors()[monitor_at(monitors(), near)]; }
    // Of the primary monitor.
    SIZE screen_size() const { return {monitors()[0].width(), monitors()[0].height()}; }
    virtual double scale() const = 0;
    // Nobody watches: a question without a script is answered as its caller's documents say.
    virtual bool headless() const = 0;
    // The desktop's other programs look dark.
    virtual bool dark() const = 0;

    virtual bool open(TopLevel window, const TopLevelOptions& options) = 0;
    virtual void close(TopLevel window) = 0;
    virtual void show(TopLevel window, bool visible, bool activate) = 0;
    // A request; the answer is a configure event.
    virtual void place(TopLevel window, const RECT& client) = 0;
    virtual void set_state(TopLevel window, WindowState state) = 0;
    virtual void set_options(TopLevel window, const TopLevelOptions& options) = 0;
    virtual void set_title(TopLevel window, std::string_view utf8) = 0;
    virtual void set_icon(TopLevel window, std::int32_t width, std::int32_t height,
                          const std::uint32_t* pixels) = 0;
    // Disabled by a modal window of its own: the manager shows it so where it can.
    virtual void set_modal(TopLevel window, TopLevel disabled_by) = 0;
    virtual void raise(TopLevel window) = 0;
    virtual void focus(TopLevel window) = 0;

    // The surface of a window, at least `width` x `height` real pixels, owned by the display; its
    // old content is lost. Null pixels when there is no storage.
    virtual Surface surface(TopLevel window, std::int32_t width, std::int32_t height) = 0;
    // Shows these rectangles (real pixels) of the surface.
    virtual void present(TopLevel window, std::span<const RECT> rects,
                         const CaretOverlay& caret) = 0;

    virtual void set_cursor(TopLevel window, CursorShape shape) = 0;
    virtual POINT pointer() const = 0;
    virtual void warp_pointer(POINT screen) = 0;
    // All pointer events go to `window` until 0 is given, also from outside the program.
    virtual void grab_pointer(TopLevel window) = 0;
    virtual void beep() = 0;

    // Clipboard and PRIMARY: text in UTF-8 with LF line ends.
    virtual void offer_text(bool primary, std::string_view utf8) = 0;
    virtual bool request_text(bool primary, std::string& utf8) = 0;
    // A picture as the bytes of a PNG file.
    virtual void offer_image(std::string_view png) = 0;
    virtual bool has_text(bool primary) = 0;

    // The next event, waiting at most `timeout` milliseconds (-1: for ever, 0: not at all).
    // False: none came.
    virtual bool next_event(Event& event, std::int32_t timeout) = 0;
    // A wait for events ends early when one of these files can be read.
    virtual void watch(std::span<const int> files) = 0;
    // Where the text caret is, in logical pixels of the surface, for input methods; empty where
    // keys aren't text.
    virtual void set_input_place(TopLevel window, const RECT& caret) = 0;
    // Reports what was sent so far; called once a batch of presents is out.
    virtual void flush() = 0;

    // What inject_event and injected_events_waiting ask of a backend: it behaves as if the event
    // had come from a user, pointer place and focus included.
    virtual void inject(const Event& event) = 0;
    virtual bool injected_waiting() const = 0;

  protected:
    ~Display() = default;
};

// The display of this process, made at the first call: `TARN_DISPLAY` = `memory` or `x11`,
// otherwise x11 when there is a desktop and it answers, memory when not. Never null.
Display& display();
// True when display() was called before.
bool display_open();

// For scripts and tests: an event as if a user had made it. It comes before those of the desktop
// that were not taken yet.
void inject_event(const Event& event);
// Events put in and not yet taken.
bool injected_events_waiting();

// The display stopped to answer (its server is gone): ends the process. Filled by the room that
// knows how to end it well; otherwise the message goes to standard error and exit(1) follows.
extern void (*display_lost)(const char* message);

// What a backend's module gets from the library, which it can't link: it may be loaded into a
// program that holds the library in any form.
struct DisplaySetup {
    double scale = 0.0;  // wanted by the user; 0: the desktop's own
    void (*lost)(const char* message) = nullptr;
};
// The factory that the backend's module exports under the name "tarn_x11_display". Null when there
// is no such desktop; `why_not` then says why, in words that stand behind a colon.
using DisplayFactory = Display* (*)(const DisplaySetup& setup, std::string& why_not);

}  // namespace tarn::platform
