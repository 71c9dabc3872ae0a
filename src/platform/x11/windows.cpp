// Top-level windows: what a manager is told of them, and what is done where there is none.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "platform/display/geometry.h"
#include "platform/x11/x11_display.h"

namespace tarn::x11 {
namespace {

constexpr std::uint32_t window_events =
    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE |
    XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW |
    XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
constexpr std::uint32_t for_manager =
    XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
constexpr std::uint32_t from_application = 1;
constexpr std::uint32_t normal_state = 1, iconic_state = 3;
constexpr std::uint32_t static_gravity = 10;  // a place is that of the client area
constexpr std::uint32_t drag_version = 5;

Atom type_of(Role role) {
    switch (role) {
        case Role::dialog:
            return Atom::net_wm_window_type_dialog;
        case Role::utility:
            return Atom::net_wm_window_type_utility;
        case Role::popup:
            return Atom::net_wm_window_type_popup_menu;
        default:
            return Atom::net_wm_window_type_normal;
    }
}

std::string program_name() {
    char path[4096];
    ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    std::string_view name(path, length > 0 ? static_cast<std::size_t>(length) : 0);
    name.remove_prefix(name.rfind('/') + 1);
    return name.empty() ? "program" : std::string(name);
}

}  // namespace

// ---- Making and ending ----------------------------------------------------------------------

bool X11Display::open(TopLevel id, const TopLevelOptions& options) {
    if (find(id) || gone_) return false;
    auto window = std::make_unique<Window>();
    window->id = id;
    window->options = options;
    window->asked = options.client;
    window->real = window->wanted = real_rect(options.client);
    window->handle = xcb_generate_id(connection_.xcb);
    // No background: the server never paints what the program is going to paint.
    const std::uint32_t values[] = {0, XCB_GRAVITY_NORTH_WEST,
                                    options.role == Role::popup ? 1u : 0u, window_events,
                                    connection_.colormap};
    xcb_create_window(connection_.xcb, connection_.depth, window->handle, connection_.root(),
                      static_cast<std::int16_t>(window->real.left),
                      static_cast<std::int16_t>(window->real.top),
                      static_cast<std::uint16_t>(window->real.width()),
                      static_cast<std::uint16_t>(window->real.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, connection_.visual,
                      XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values);
    pointer_input_.select(connection_, window->handle);
    const std::uint32_t protocols[] = {
        connection_[Atom::wm_delete_window], connection_[Atom::wm_take_focus],
        connection_[Atom::net_wm_ping], connection_[Atom::wm_save_yourself]};
    set_words(connection_, window->handle, connection_[Atom::wm_protocols], XCB_ATOM_ATOM,
              protocols, std::size(protocols));
    const auto process = static_cast<std::uint32_t>(getpid());
    set_words(connection_, window->handle, connection_[Atom::net_wm_pid], XCB_ATOM_CARDINAL,
              &process, 1);
    char host[256] = {};
    if (gethostname(host, sizeof host - 1) == 0)
        set_bytes(connection_, window->handle, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, host);
    set_words(connection_, window->handle, connection_[Atom::wm_client_leader], XCB_ATOM_WINDOW,
              &connection_.helper, 1);
    std::string name = program_name();
    std::string names =
        name + '\0' + (options.class_name.empty() ? name : options.class_name) + '\0';
    set_bytes(connection_, window->handle, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, names);
    write_hints(*window);
    windows_.push_back(std::move(window));
    set_title(id, options.title);
    return true;
}

void X11Display::close(TopLevel id) {
    Window* window = find(id);
    if (!window) return;
    TopLevel owner = window->options.owner;
    bool focused = window->focused;
    input_method_.forget(window->handle);
    xcb_destroy_window(connection_.xcb, window->handle);
    std::erase_if(windows_, [id](const auto& each) { return each->id == id; });
    queue_.drop(id);
    injected_.drop(id);
    if (grab_ == id) grab_ = 0;
    if (drag_.window == id) drag_ = {};
    for (auto& other : windows_) {
        if (other->disabled_by == id) other->disabled_by = 0;
    }
    if (focused && !is_managed()) focus_another(owner);
    xcb_flush(connection_.xcb);
}

// ---- Start and end of the program -----------------------------------------------------------

// Whoever started the program learns which window the start was for, and when it is there.
void X11Display::announce_start(const Window& window) const {
    for (xcb_window_t each : {connection_.helper, window.handle})
        set_bytes(connection_, each, connection_[Atom::net_startup_id],
                  connection_[Atom::utf8_string], startup_id_);
}

void X11Display::finish_start() {
    std::string message = "remove: ID=\"";
    for (char c : std::exchange(startup_id_, {})) {
        if (c == '"' || c == '\\') message.push_back('\\');
        message.push_back(c);
    }
    message += '"';
    message.push_back('\0');
    Atom type = Atom::net_startup_info_begin;
    for (std::size_t at = 0; at < message.size();) {
        xcb_client_message_event_t piece{};
        piece.response_type = XCB_CLIENT_MESSAGE;
        piece.format = 8;
        piece.window = connection_.helper;
        piece.type = connection_[type];
        at += message.copy(reinterpret_cast<char*>(piece.data.data8), sizeof piece.data.data8, at);
        xcb_send_event(connection_.xcb, 0, connection_.root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
                       reinterpret_cast<const char*>(&piece));
        type = Atom::net_startup_info;
    }
}

// A manager that is about to end the session asks what starts the program again; writing it is the
// answer.
void X11Display::save_yourself(const Window& window) const {
    constexpr std::size_t most = 4096;
    std::string words(most, '\0');
    int file = ::open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
    ssize_t length = file >= 0 ? read(file, words.data(), words.size()) : 0;
    if (file >= 0) ::close(file);
    words.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    set_bytes(connection_, window.handle, XCB_ATOM_WM_COMMAND, XCB_ATOM_STRING, words);
}

// ---- Hints ----------------------------------------------------------------------------------

void X11Display::write_size_hints(const Window& window) {
    enum : std::uint32_t {
        user_position = 1,
        user_size = 2,
        program_position = 4,
        program_size = 8,
        least_size = 16,
        most_size = 32,
        gravity = 512,
    };
    const TopLevelOptions& options = window.options;
    const RECT& real = window.real;
    std::uint32_t hints[18] = {};
    hints[0] = program_size | gravity;
    if (options.position_given) hints[0] |= user_position | program_position;
    hints[1] = static_cast<std::uint32_t>(real.left);
    hints[2] = static_cast<std::uint32_t>(real.top);
    hints[3] = static_cast<std::uint32_t>(real.width());
    hints[4] = static_cast<std::uint32_t>(real.height());
    if (!options.resizable && window.state == WindowState::normal) {
        RECT fixed = real_rect(window.asked);
        hints[0] |= least_size | most_size;
        hints[5] = hints[7] = static_cast<std::uint32_t>(fixed.width());
        hints[6] = hints[8] = static_cast<std::uint32_t>(fixed.height());
    } else if (options.minimum.cx > 0 || options.minimum.cy > 0) {
        hints[0] |= least_size;
        hints[5] = static_cast<std::uint32_t>(real_edge(std::max(options.minimum.cx, 1), scale_));
        hints[6] = static_cast<std::uint32_t>(real_edge(std::max(options.minimum.cy, 1), scale_));
    }
    if (options.resizable && (options.maximum.cx > 0 || options.maximum.cy > 0)) {
        constexpr std::int32_t unlimited = 32000;
        auto real = [&](std::int32_t most) {
            return static_cast<std::uint32_t>(most > 0 ? real_edge(most, scale_) : unlimited);
        };
        hints[0] |= most_size;
        hints[7] = real(options.maximum.cx);
        hints[8] = real(options.maximum.cy);
    }
    hints[17] = static_gravity;
    set_words(connection_, window.handle, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints,
              std::size(hints));
}

void X11Display::write_hints(const Window& window) {
    const TopLevelOptions& options = window.options;
    write_size_hints(window);

    enum : std::uint32_t { input = 1, initial_state = 2, window_group = 64 };
    std::uint32_t hints[9] = {input | initial_state | window_group};
    hints[1] = options.accepts_focus ? 1 : 0;
    hints[2] = window.state == WindowState::minimized ? iconic_state : normal_state;
    hints[8] = connection_.helper;
    set_words(connection_, window.handle, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, hints,
              std::size(hints));

    enum : std::uint32_t {
        functions = 1,
        decorations = 2,
        can_resize = 2,
        can_move = 4,
        can_minimize = 8,
        can_maximize = 16,
        can_close = 32,
    };
    std::uint32_t motif[5] = {functions | decorations};
    motif[1] = can_move | (options.resizable ? can_resize : 0u) |
               (options.minimizable ? can_minimize : 0u) |
               (options.maximizable && options.resizable ? can_maximize : 0u) |
               (options.closable ? can_close : 0u);
    motif[2] = options.framed ? 1 : 0;
    xcb_atom_t motif_hints = connection_[Atom::motif_wm_hints];
    set_words(connection_, window.handle, motif_hints, motif_hints, motif, std::size(motif));

    const std::uint32_t type = connection_[type_of(options.role)];
    set_words(connection_, window.handle, connection_[Atom::net_wm_window_type], XCB_ATOM_ATOM,
              &type, 1);
    if (Window* owner = find(options.owner)) {
        set_words(connection_, window.handle, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW,
                  &owner->handle, 1);
    } else {
        xcb_delete_property(connection_.xcb, window.handle, XCB_ATOM_WM_TRANSIENT_FOR);
    }
    if (options.accepts_files) {
        set_words(connection_, window.handle, connection_[Atom::xdnd_aware], XCB_ATOM_ATOM,
                  &drag_version, 1);
    } else {
        xcb_delete_property(connection_.xcb, window.handle, connection_[Atom::xdnd_aware]);
    }
}

void X11Display::set_options(TopLevel id, const TopLevelOptions& options) {
    Window* window = find(id);
    if (!window) return;
    bool topmost = window->options.topmost;
    bool placed = window->options.position_given;
    window->options = options;
    window->options.position_given |= placed;
    write_hints(*window);
    if (topmost != options.topmost) set_topmost(*window);
    xcb_flush(connection_.xcb);
}

void X11Display::set_title(TopLevel id, std::string_view utf8) {
    Window* window = find(id);
    if (!window) return;
    window->options.title = utf8;
    xcb_atom_t text = connection_[Atom::utf8_string];
    set_bytes(connection_, window->handle, connection_[Atom::net_wm_name], text, utf8);
    set_bytes(connection_, window->handle, connection_[Atom::net_wm_icon_name], text, utf8);
    std::string plain = latin1_from_utf8(utf8);
    set_bytes(connection_, window->handle, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, plain);
    set_bytes(connection_, window->handle, XCB_ATOM_WM_ICON_NAME, XCB_ATOM_STRING, plain);
    xcb_flush(connection_.xcb);
}

void X11Display::set_icon(TopLevel id, std::int32_t width, std::int32_t height,
                          const std::uint32_t* pixels) {
    constexpr std::int32_t largest = 512;
    Window* window = find(id);
    if (!window) return;
    xcb_atom_t icon = connection_[Atom::net_wm_icon];
    if (!pixels || width <= 0 || height <= 0 || width > largest || height > largest) {
        xcb_delete_property(connection_.xcb, window->handle, icon);
        return;
    }
    std::vector<std::uint32_t> words{static_cast<std::uint32_t>(width),
                                     static_cast<std::uint32_t>(height)};
    words.insert(words.end(), pixels, pixels + static_cast<std::ptrdiff_t>(width) * height);
    if (words.size() * sizeof(std::uint32_t) + 256 > connection_.longest_request) return;
    set_words(connection_, window->handle, icon, XCB_ATOM_CARDINAL, words.data(), words.size());
}

bool X11Display::is_modal(TopLevel id) const {
    return std::any_of(windows_.begin(), windows_.end(),
                       [id](const auto& window) { return window->disabled_by == id; });
}

// ---- States ---------------------------------------------------------------------------------

// What the manager finds when the window is shown.
void X11Display::write_state_property(const Window& window) {
    std::vector<std::uint32_t> states;
    if (window.state == WindowState::maximized) {
        states.push_back(connection_[Atom::net_wm_state_maximized_vert]);
        states.push_back(connection_[Atom::net_wm_state_maximized_horz]);
    }
    if (window.state == WindowState::full_screen)
        states.push_back(connection_[Atom::net_wm_state_fullscreen]);
    if (window.options.topmost) states.push_back(connection_[Atom::net_wm_state_above]);
    if (is_modal(window.id)) states.push_back(connection_[Atom::net_wm_state_modal]);
    set_words(connection_, window.handle, connection_[Atom::net_wm_state], XCB_ATOM_ATOM,
              states.data(), states.size());
}

void X11Display::ask_manager_state(const Window& window, bool add, Atom first, Atom second) {
    std::uint32_t other = second == Atom::count ? 0 : connection_[second];
    send_message(connection_, connection_.root(), window.handle, connection_[Atom::net_wm_state],
                 {add ? 1u : 0u, connection_[first], other, from_application, 0}, for_manager);
}

void X11Display::set_topmost(const Window& window) {
    if (window.shown)
        ask_manager_state(window, window.options.topmost, Atom::net_wm_state_above, Atom::count);
}

void X11Display::set_modal(TopLevel id, TopLevel disabled_by) {
    Window* window = find(id);
    if (!window) return;
    TopLevel before = window->disabled_by;
    window->disabled_by = disabled_by;
    if (before == disabled_by) return;
    for (TopLevel modal : {before, disabled_by}) {
        Window* changed = find(modal);
        if (changed && changed->shown)
            ask_manager_state(*changed, is_modal(modal), Atom::net_wm_state_modal, Atom::count);
    }
    xcb_flush(connection_.xcb);
}

void X11Display::set_state(TopLevel id, WindowState state) {
    Window* window = find(id);
    if (!window || window->state == state) return;
    if (!window->shown) {
        window->state = state;
        window->state_changed = true;
        write_hints(*window);
        return;
    }
    Atom asked = state == WindowState::full_screen ? Atom::net_wm_state_fullscreen
                                                   : Atom::net_wm_state_maximized_vert;
    if (!is_managed() || (state != WindowState::minimized && !manager_supports(asked))) {
        make_state(*window, state);
        return;
    }
    xcb_window_t root = connection_.root();
    if (state == WindowState::minimized) {
        send_message(connection_, root, window->handle, connection_[Atom::wm_change_state],
                     {iconic_state}, for_manager);
    } else {
        if (window->state == WindowState::minimized) {
            xcb_map_window(connection_.xcb, window->handle);
            send_message(connection_, root, window->handle, connection_[Atom::net_active_window],
                         {from_application, connection_.time}, for_manager);
        }
        bool full = state == WindowState::full_screen;
        if (full || window->state == WindowState::full_screen)
            ask_manager_state(*window, full, Atom::net_wm_state_fullscreen, Atom::count);
        ask_manager_state(*window, state == WindowState::maximized,
                          Atom::net_wm_state_maximized_vert, Atom::net_wm_state_maximized_horz);
    }
    xcb_flush(connection_.xcb);
}

// With nobody who would do it.
void X11Display::make_state(Window& window, WindowState state) {
    auto fills = [](WindowState each) {
        return each == WindowState::maximized || each == WindowState::full_screen;
    };
    bool filled = fills(window.state);
    if (fills(state) && !filled) window.restored = client(window);
    WindowState before = window.state;
    window.state = state;
    queue_.push(about(Event::Kind::state, &window));
    if (state == WindowState::minimized) {
        bool focused = window.focused;
        xcb_unmap_window(connection_.xcb, window.handle);
        if (focused) focus_another(window.options.owner);
    } else if (before == WindowState::minimized) {
        xcb_map_window(connection_.xcb, window.handle);
        window.focus_when_mapped = true;
    }
    RECT area = window.restored;
    if (fills(state)) {
        POINT middle = middle_of(window.real);
        area = logical_rect(state == WindowState::full_screen ? real_monitor(middle)
                                                              : real_work_area(middle));
    }
    if (fills(state) || (filled && state == WindowState::normal)) configure(window, area);
    xcb_flush(connection_.xcb);
}

// ---- Showing and placing --------------------------------------------------------------------

void X11Display::show(TopLevel id, bool visible, bool activate) {
    Window* window = find(id);
    if (!window) return;
    if (window->shown == visible) {
        if (visible && activate) focus(id);
        return;
    }
    window->shown = visible;
    if (!visible) {
        withdraw(*window);
        return;
    }
    bool popup = window->options.role == Role::popup;
    if (popup) {
        raise(id);
    } else {
        // A window that isn't to be activated says that no user asked for it.
        const std::uint32_t time = activate ? connection_.time : 0;
        if (activate && time == XCB_CURRENT_TIME) {
            xcb_delete_property(connection_.xcb, window->handle,
                                connection_[Atom::net_wm_user_time]);
        } else {
            set_words(connection_, window->handle, connection_[Atom::net_wm_user_time],
                      XCB_ATOM_CARDINAL, &time, 1);
        }
        write_hints(*window);
        write_state_property(*window);
        if (!startup_id_.empty()) announce_start(*window);
    }
    window->focus_when_mapped = activate && !popup && window->options.accepts_focus;
    window->answer_due = true;
    xcb_map_window(connection_.xcb, window->handle);
    if (!popup &&
        (window->state == WindowState::maximized || window->state == WindowState::full_screen) &&
        !is_managed()) {
        WindowState state = window->state;
        window->state = WindowState::normal;
        make_state(*window, state);
    }
    xcb_flush(connection_.xcb);
}

void X11Display::withdraw(const Window& window) {
    TopLevel owner = window.options.owner;
    bool focused = window.focused;
    xcb_unmap_window(connection_.xcb, window.handle);
    if (window.options.role != Role::popup) {
        // A manager that shows an icon for it hears only this.
        xcb_unmap_notify_event_t notice{};
        notice.response_type = XCB_UNMAP_NOTIFY;
        notice.event = connection_.root();
        notice.window = window.handle;
        xcb_send_event(connection_.xcb, 0, connection_.root(), for_manager,
                       reinterpret_cast<const char*>(&notice));
    }
    if (focused && !is_managed()) focus_another(owner);
    xcb_flush(connection_.xcb);
}

void X11Display::place(TopLevel id, const RECT& client_rect) {
    Window* window = find(id);
    if (!window) return;
    window->answer_due = true;
    if (client_rect.left != window->asked.left || client_rect.top != window->asked.top)
        window->options.position_given = true;
    bool filled =
        window->state == WindowState::maximized || window->state == WindowState::full_screen;
    if (filled && window->shown && !is_managed()) {
        window->restored = client_rect;  // it keeps filling the screen
        window->configured = true;
    } else {
        configure(*window, client_rect);
    }
    xcb_flush(connection_.xcb);
}

void X11Display::configure(Window& window, const RECT& client_rect) {
    window.asked = client_rect;
    RECT real = real_rect(client_rect);
    if (!window.options.resizable || !window.shown) {
        RECT before = window.real;
        if (!window.shown) window.real = real;
        write_size_hints(window);
        window.real = before;
    }
    if (real == window.real && real == window.wanted) {
        window.configured = true;  // no event would come of it
        return;
    }
    window.wanted = real;
    const std::uint32_t values[] = {
        static_cast<std::uint32_t>(real.left), static_cast<std::uint32_t>(real.top),
        static_cast<std::uint32_t>(real.width()), static_cast<std::uint32_t>(real.height())};
    xcb_configure_window(connection_.xcb, window.handle,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    if (!window.shown) window.real = real;
}

void X11Display::raise(TopLevel id) {
    Window* window = find(id);
    if (!window) return;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_.xcb, window->handle, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(connection_.xcb);
}

// ---- Focus ----------------------------------------------------------------------------------

// A window that is disabled passes the focus on to its modal one.
Window* X11Display::focus_target(TopLevel id) {
    Window* window = find(id);
    for (std::size_t steps = 0; window && window->disabled_by != 0 && steps < windows_.size();
         ++steps) {
        Window* modal = find(window->disabled_by);
        if (!modal || !modal->shown) break;
        window = modal;
    }
    bool fits = window && window->shown && window->options.accepts_focus &&
                window->options.role != Role::popup;
    return fits ? window : nullptr;
}

void X11Display::take_focus(Window& window, xcb_timestamp_t time) {
    xcb_set_input_focus(connection_.xcb, XCB_INPUT_FOCUS_POINTER_ROOT, window.handle, time);
}

void X11Display::focus(TopLevel id) {
    Window* window = focus_target(id);
    if (!window) return;
    if (is_managed()) {
        send_message(connection_, connection_.root(), window->handle,
                     connection_[Atom::net_active_window], {from_application, connection_.time},
                     for_manager);
    } else if (window->viewable) {
        raise(window->id);
        take_focus(*window, XCB_CURRENT_TIME);
    } else {
        window->focus_when_mapped = true;
    }
    xcb_flush(connection_.xcb);
}

// The focused window went away, and no manager chooses the next.
void X11Display::focus_another(TopLevel owner) {
    Window* next = focus_target(owner);
    for (std::size_t i = windows_.size(); (!next || !next->viewable) && i-- > 0;)
        next = windows_[i]->viewable ? focus_target(windows_[i]->id) : nullptr;
    if (next && next->viewable) take_focus(*next, XCB_CURRENT_TIME);
}

}  // namespace tarn::x11
