// What the server says, as events of the display.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <poll.h>
#include <time.h>
#include <unistd.h>
#include <xcb/randr.h>

#include "platform/display/geometry.h"
#include "platform/x11/x11_display.h"

namespace tarn::x11 {
namespace {

std::int64_t now() {
    timespec at{};
    clock_gettime(CLOCK_MONOTONIC, &at);
    return std::int64_t{at.tv_sec} * 1000 + at.tv_nsec / 1000000;
}

template <class T>
const T& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event);
}

}  // namespace

// ---- The road from the socket ---------------------------------------------------------------

bool X11Display::next_event(Event& event, std::int32_t timeout) {
    if (injected_.take(event) || queue_.take(event)) return true;
    std::int64_t end = timeout > 0 ? now() + timeout : 0;
    for (;;) {
        drain();
        settle();
        if (drag_.dropped) finish_drop();
        if (queue_.take(event)) return true;
        if (xcb_connection_has_error(connection_.xcb)) {
            connection_lost(timeout);
            return false;
        }
        xcb_flush(connection_.xcb);
        std::int32_t left = timeout;
        if (timeout > 0) left = static_cast<std::int32_t>(std::max<std::int64_t>(end - now(), 0));
        if (left == 0 || !wait(left)) return false;
    }
}

// False: nothing came from the server in that time; a signal did, or a watched file can be read.
bool X11Display::wait(std::int32_t timeout) {
    std::vector<pollfd> files{{xcb_get_file_descriptor(connection_.xcb), POLLIN, 0}};
    for (int file : watched_) files.push_back({file, POLLIN, 0});
    return poll(files.data(), files.size(), timeout) > 0 && files[0].revents != 0;
}

void X11Display::drain() {
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_.xcb)) {
        // Errors are answers to requests about windows that have just gone: of no weight.
        if (event->response_type != 0) handle(*event);
        std::free(event);
    }
}

// Reports once what changed several times.
void X11Display::settle() {
    for (auto& window : windows_) {
        if (window->state_changed) report_state(*window);
        if (window->configured) report_configure(*window);
    }
}

void X11Display::connection_lost(std::int32_t timeout) {
    if (!gone_) {
        gone_ = true;
        if (lost_) lost_("The desktop has gone away: the connection to its display is broken.");
    }
    // The program is ending. Whoever waits for an event meanwhile would wait for ever.
    if (timeout < 0) _exit(1);
    if (timeout > 0) poll(nullptr, 0, timeout);
}

Event X11Display::about(Event::Kind kind, const Window* window) const {
    Event event;
    event.kind = kind;
    event.scale = scale_;
    event.time =
        connection_.time != XCB_CURRENT_TIME ? connection_.time : static_cast<DWORD>(now());
    if (!window) return event;
    event.window = window->id;
    event.rect = client(*window);
    event.state = window->state;
    return event;
}

void X11Display::inject(const Event& event) {
    switch (event.kind) {
        case Event::Kind::button_down:
            if (Window* window = find(event.window); window && !window->focused) focus(window->id);
            [[fallthrough]];
        case Event::Kind::button_up:
        case Event::Kind::pointer_move:
        case Event::Kind::wheel:
        case Event::Kind::drop_files:
            pointer_injected_ = true;
            injected_pointer_ = event.screen;
            break;
        case Event::Kind::configure:
            place(event.window, event.rect);
            return;
        case Event::Kind::state:
            set_state(event.window, event.state);
            return;
        default:
            break;
    }
    Event made = event;
    if (made.time == 0) made.time = static_cast<DWORD>(now());
    injected_.push(std::move(made), true);
}

// ---- Events by kind -------------------------------------------------------------------------

void X11Display::handle(xcb_generic_event_t& event) {
    if (input_method_.filter(event)) return take_answers();
    int kind = event.response_type & 0x7F;
    auto lost = Selections::Lost::none;
    if (selections_.handle(connection_, event, lost)) {
        if (lost == Selections::Lost::none) return;
        Event told = about(Event::Kind::selection_lost, nullptr);
        told.primary = lost == Selections::Lost::primary;
        queue_.push(std::move(told));
        return;
    }
    if (keyboard_.handle(event)) return;
    if (randr_event_ != 0 && kind == randr_event_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY) {
        monitors_changed();
        return;
    }
    switch (kind) {
        case XCB_GE_GENERIC:
            handle_device(event);
            break;
        case XCB_MOTION_NOTIFY:
        case XCB_ENTER_NOTIFY:
        case XCB_LEAVE_NOTIFY:
            handle_pointer(event);
            break;
        case XCB_BUTTON_PRESS:
        case XCB_BUTTON_RELEASE:
            handle_button(as<xcb_button_press_event_t>(event), kind == XCB_BUTTON_PRESS);
            break;
        case XCB_KEY_PRESS:
        case XCB_KEY_RELEASE:
            if (!input_method_.take_key(as<xcb_key_press_event_t>(event)))
                handle_key(as<xcb_key_press_event_t>(event));
            break;
        case XCB_FOCUS_IN:
        case XCB_FOCUS_OUT:
            handle_focus(as<xcb_focus_in_event_t>(event), kind == XCB_FOCUS_IN);
            break;
        case XCB_CONFIGURE_NOTIFY:
            handle_configure(as<xcb_configure_notify_event_t>(event));
            break;
        case XCB_CLIENT_MESSAGE:
            handle_message(as<xcb_client_message_event_t>(event));
            break;
        case XCB_PROPERTY_NOTIFY:
            handle_property(as<xcb_property_notify_event_t>(event));
            break;
        default:
            handle_window_event(event);
    }
}

void X11Display::handle_window_event(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_EXPOSE: {
            const auto& expose = as<xcb_expose_event_t>(event);
            Window* window = find_handle(expose.window);
            if (!window) return;
            Event told = about(Event::Kind::expose, window);
            told.rect = {logical_pixel(expose.x, scale_), logical_pixel(expose.y, scale_),
                         logical_pixel(expose.x + expose.width - 1, scale_) + 1,
                         logical_pixel(expose.y + expose.height - 1, scale_) + 1};
            queue_.push(std::move(told));
            break;
        }
        case XCB_MAP_NOTIFY:
            if (Window* window = find_handle(as<xcb_map_notify_event_t>(event).window))
                mapped(*window);
            break;
        case XCB_UNMAP_NOTIFY:
            if (Window* window = find_handle(as<xcb_unmap_notify_event_t>(event).window))
                window->viewable = false;
            break;
        case XCB_DESTROY_NOTIFY:
            if (as<xcb_destroy_notify_event_t>(event).window == settings_owner_)
                settings_owner_ = 0;
            break;
        case XCB_REPARENT_NOTIFY: {
            const auto& moved = as<xcb_reparent_notify_event_t>(event);
            Window* window = find_handle(moved.window);
            if (!window) return;
            window->reparented = moved.parent != connection_.root();
            window->position_unknown = window->configured = true;
            break;
        }
        case XCB_MAPPING_NOTIFY:
        default:
            break;
    }
}

void X11Display::mapped(Window& window) {
    window.viewable = true;
    window.configured = true;
    window.position_unknown |= window.reparented;
    if (!startup_id_.empty() && window.options.role != Role::popup) finish_start();
    if (window.focus_when_mapped) {
        window.focus_when_mapped = false;
        if (!is_managed()) {
            if (Window* target = focus_target(window.id); target && target->viewable)
                take_focus(*target, XCB_CURRENT_TIME);
        }
    }
    if (grab_due_ && grab_ == window.id) grab_pointer(grab_);
    xcb_flush(connection_.xcb);
}

void X11Display::place_pointer(Event& event, const Window& window, std::int32_t x, std::int32_t y,
                               std::uint16_t state) const {
    event.point = {logical_pixel(x, scale_), logical_pixel(y, scale_)};
    RECT at = client(window);
    event.screen = {at.left + event.point.x, at.top + event.point.y};
    event.modifiers = Keyboard::modifiers(state);
}

void X11Display::handle_pointer(const xcb_generic_event_t& event) {
    // The three kinds have the same layout where it counts.
    const auto& motion = as<xcb_motion_notify_event_t>(event);
    Window* window = find_handle(motion.event);
    if (!window) return;
    connection_.time = motion.time;
    pointer_injected_ = false;
    int kind = event.response_type & 0x7F;
    if (kind != XCB_MOTION_NOTIFY) {
        const auto& crossing = as<xcb_enter_notify_event_t>(event);
        if (crossing.mode != XCB_NOTIFY_MODE_NORMAL ||
            crossing.detail == XCB_NOTIFY_DETAIL_INFERIOR)
            return;
    }
    if (kind == XCB_ENTER_NOTIFY) pointer_came();
    bool leaves = kind == XCB_LEAVE_NOTIFY;
    Event told = about(leaves ? Event::Kind::pointer_leave : Event::Kind::pointer_move, window);
    place_pointer(told, *window, motion.event_x, motion.event_y, motion.state);
    queue_.push(std::move(told));
}

// Only a program that the pointer comes to asks for the extension.
void X11Display::pointer_came() {
    if (pointer_input_.started()) return pointer_input_.entered(connection_);
    pointer_input_.start(connection_);
    for (auto& window : windows_) pointer_input_.select(connection_, window->handle);
}

// Events of the X Input extension become the core ones that they stand for; scrolling comes
// besides.
void X11Display::handle_device(const xcb_generic_event_t& event) {
    switch (pointer_input_.kind_of(event)) {
        case XCB_INPUT_HIERARCHY:
        case XCB_INPUT_DEVICE_CHANGED:
            pointer_input_.devices_changed(connection_);
            return;
        case XCB_INPUT_MOTION:
        case XCB_INPUT_BUTTON_PRESS:
        case XCB_INPUT_BUTTON_RELEASE:
            break;
        default:
            return;
    }
    constexpr int fraction_bits = 16;
    const auto& told = as<xcb_input_button_press_event_t>(event);
    xcb_button_press_event_t core{};
    core.time = told.time;
    core.event = told.event;
    core.event_x = static_cast<std::int16_t>(told.event_x >> fraction_bits);
    core.event_y = static_cast<std::int16_t>(told.event_y >> fraction_bits);
    core.state = core_state(told);
    Window* window = find_handle(told.event);
    if (!window) return;
    if (told.event_type == XCB_INPUT_MOTION) {
        core.response_type = XCB_MOTION_NOTIFY;
        handle_pointer(reinterpret_cast<const xcb_generic_event_t&>(core));
        for (const Scroll& by : pointer_input_.scrolled(told)) scroll(*window, core, by);
    } else if (!pointer_input_.is_told_twice(told) && told.detail <= UINT8_MAX) {
        core.detail = static_cast<xcb_button_t>(told.detail);
        handle_button(core, told.event_type == XCB_INPUT_BUTTON_PRESS);
    }
}

void X11Display::scroll(const Window& window, const xcb_button_press_event_t& at,
                        const Scroll& by) {
    Event told = about(Event::Kind::wheel, &window);
    place_pointer(told, window, at.event_x, at.event_y, at.state);
    told.delta = by.delta;
    told.horizontal = by.horizontal;
    queue_.push(std::move(told));
}

void X11Display::handle_button(const xcb_button_press_event_t& button, bool down) {
    Window* window = find_handle(button.event);
    if (!window) return;
    connection_.time = button.time;
    pointer_injected_ = false;
    constexpr int wheel_up = 4, wheel_down = 5, wheel_left = 6, wheel_right = 7;
    bool wheel = button.detail >= wheel_up && button.detail <= wheel_right;
    if (wheel && !down) return;
    if (wheel) {
        constexpr std::int32_t notch = 120;
        bool back = button.detail == wheel_down || button.detail == wheel_right;
        return scroll(*window, button, {back ? -notch : notch, button.detail >= wheel_left});
    }
    Event told = about(down ? Event::Kind::button_down : Event::Kind::button_up, window);
    place_pointer(told, *window, button.event_x, button.event_y, button.state);
    told.button = button.detail;
    const std::uint32_t held = button.detail == 1   ? mod_left
                               : button.detail == 2 ? mod_middle
                               : button.detail == 3 ? mod_right
                                                    : 0u;
    told.modifiers = down ? told.modifiers | held : told.modifiers & ~held;
    if (down && !window->focused && !is_managed()) {
        if (Window* target = focus_target(window->id); target && target->viewable) {
            raise(target->id);
            take_focus(*target, XCB_CURRENT_TIME);
        }
    }
    queue_.push(std::move(told));
}

// Texts that an input method made, and keys that it has no use for.
void X11Display::take_answers() {
    for (MethodAnswer answer; input_method_.next_answer(answer);) {
        if (answer.is_key) {
            handle_key(answer.key);
            continue;
        }
        Event told = about(Event::Kind::text, find_handle(answer.window));
        told.text = std::move(answer.text);
        queue_.push(std::move(told));
    }
}

void X11Display::handle_key(const xcb_key_press_event_t& key) {
    bool down = (key.response_type & 0x7F) == XCB_KEY_PRESS;
    Window* window = find_handle(key.event);
    if (!window) return;
    connection_.time = key.time;
    Event told = about(down ? Event::Kind::key_down : Event::Kind::key_up, window);
    place_pointer(told, *window, key.event_x, key.event_y, key.state);
    keyboard_.translate(connection_, key, down, told);
    queue_.push(std::move(told));
}

void X11Display::handle_focus(const xcb_focus_in_event_t& focus, bool in) {
    Window* window = find_handle(focus.event);
    // A grab takes the keys for a moment, not the focus.
    if (!window || focus.mode == XCB_NOTIFY_MODE_GRAB || focus.mode == XCB_NOTIFY_MODE_UNGRAB ||
        focus.detail == XCB_NOTIFY_DETAIL_POINTER || focus.detail == XCB_NOTIFY_DETAIL_INFERIOR)
        return;
    if (window->focused == in) return;
    window->focused = in;
    keyboard_.reset();
    input_method_.focus(window->handle, in);
    queue_.push(about(in ? Event::Kind::focus_in : Event::Kind::focus_out, window));
}

void X11Display::handle_property(const xcb_property_notify_event_t& change) {
    if (change.window == connection_.root()) {
        if (change.atom == XCB_ATOM_RESOURCE_MANAGER) change_scale();
        return;
    }
    if (settings_owner_ != 0 && change.window == settings_owner_) return settings_changed();
    Window* window = find_handle(change.window);
    if (!window) return;
    if (change.atom == connection_[Atom::wm_state] ||
        change.atom == connection_[Atom::net_wm_state])
        window->state_changed = true;
}

void X11Display::handle_message(const xcb_client_message_event_t& message) {
    if (handle_drag(message)) return;
    if (message.type == connection_[Atom::manager] && message.format == 32 &&
        message.data.data32[1] == connection_[Atom::xsettings_selection]) {
        settings_owner_ = find_settings_owner(connection_);
        return settings_changed();
    }
    Window* window = find_handle(message.window);
    if (!window || message.type != connection_[Atom::wm_protocols] || message.format != 32) return;
    xcb_atom_t protocol = message.data.data32[0];
    if (protocol == connection_[Atom::wm_delete_window]) {
        queue_.push(about(Event::Kind::close, window));
    } else if (protocol == connection_[Atom::wm_take_focus]) {
        if (Window* target = focus_target(window->id)) take_focus(*target, message.data.data32[1]);
    } else if (protocol == connection_[Atom::wm_save_yourself]) {
        save_yourself(*window);
    } else if (protocol == connection_[Atom::net_wm_ping]) {
        xcb_client_message_event_t answer = message;
        answer.response_type = XCB_CLIENT_MESSAGE;
        answer.window = connection_.root();
        xcb_send_event(connection_.xcb, 0, connection_.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&answer));
    }
    xcb_flush(connection_.xcb);
}

// ---- Place and state ------------------------------------------------------------------------

void X11Display::handle_configure(const xcb_configure_notify_event_t& change) {
    // Monitors that are only divided anew are told by this alone.
    if (change.window == connection_.root()) return monitors_changed();
    Window* window = find_handle(change.window);
    if (!window) return;
    bool from_manager = (change.response_type & 0x80) != 0;  // then in coordinates of the screen
    RECT& real = window->real;
    if (from_manager || !window->reparented) {
        real.left = change.x;
        real.top = change.y;
        window->position_unknown = false;
    } else {
        window->position_unknown = true;
    }
    real.right = real.left + change.width;
    real.bottom = real.top + change.height;
    window->configured = true;
}

void X11Display::report_configure(Window& window) {
    window.configured = false;
    if (window.position_unknown) {
        window.position_unknown = false;
        Reply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
            connection_.xcb,
            xcb_translate_coordinates(connection_.xcb, window.handle, connection_.root(), 0, 0),
            nullptr));
        if (place) {
            SIZE size{window.real.width(), window.real.height()};
            window.real = {place->dst_x, place->dst_y, place->dst_x + size.cx,
                           place->dst_y + size.cy};
        }
    }
    if (window.viewable && !window.frame_checked) check_frame(window);
    Event told = about(Event::Kind::configure, &window);
    if (told.rect == window.reported && !window.answer_due) return;
    window.answer_due = false;
    window.reported = told.rect;
    queue_.push(std::move(told));
}

// A place counts for the client area, so a window wanted at the top of the screen would have its
// caption above it: it is moved down once.
void X11Display::check_frame(Window& window) {
    window.frame_checked = true;
    if (!window.reparented || !window.options.position_given) return;
    std::vector<std::uint32_t> words =
        get_property(connection_, window.handle, connection_[Atom::net_frame_extents]).words();
    if (words.size() < 4) return;
    constexpr std::uint32_t most = 1000;
    Frame frame{static_cast<std::int32_t>(std::min(words[0], most)),
                static_cast<std::int32_t>(std::min(words[1], most)),
                static_cast<std::int32_t>(std::min(words[2], most)),
                static_cast<std::int32_t>(std::min(words[3], most))};
    RECT area = real_work_area({window.real.left, window.real.top});
    std::int32_t right = std::max(area.left + frame.left - window.real.left, 0);
    std::int32_t down = std::max(area.top + frame.top - window.real.top, 0);
    if (window.state != WindowState::normal || (right == 0 && down == 0)) return;
    RECT wish = client(window);
    wish.left += static_cast<std::int32_t>(std::ceil(right / scale_));
    wish.right += static_cast<std::int32_t>(std::ceil(right / scale_));
    wish.top += static_cast<std::int32_t>(std::ceil(down / scale_));
    wish.bottom += static_cast<std::int32_t>(std::ceil(down / scale_));
    configure(window, wish);
}

void X11Display::report_state(Window& window) {
    constexpr std::uint32_t iconic_state = 3;
    window.state_changed = false;
    if (!window.shown) return;
    WindowState state = WindowState::normal;
    xcb_window_t handle = window.handle;
    Property property = get_property(connection_, handle, connection_[Atom::wm_state]);
    // Without a manager's word the state is what we made it.
    if (property.type == XCB_NONE) return;
    std::vector<std::uint32_t> states =
        get_property(connection_, handle, connection_[Atom::net_wm_state]).words();
    auto has = [&](Atom atom) {
        return std::find(states.begin(), states.end(), connection_[atom]) != states.end();
    };
    std::vector<std::uint32_t> words = property.words();
    bool iconic = !words.empty() && words[0] == iconic_state;
    // Some managers call windows of other desktops iconic.
    if (iconic && manager_supports(Atom::net_wm_state_hidden))
        iconic = has(Atom::net_wm_state_hidden);
    if (iconic) {
        state = WindowState::minimized;
    } else if (has(Atom::net_wm_state_fullscreen)) {
        state = WindowState::full_screen;
    } else if (has(Atom::net_wm_state_maximized_vert) && has(Atom::net_wm_state_maximized_horz)) {
        state = WindowState::maximized;
    }
    if (state == window.state) return;
    window.state = state;
    write_size_hints(window);
    queue_.push(about(Event::Kind::state, &window));
}

void X11Display::settings_changed() {
    settings_ = fetch_settings(connection_, settings_owner_);
    change_scale();
    bool dark = looks_dark(settings_);
    if (dark == dark_) return;
    dark_ = dark;
    queue_.push(about(Event::Kind::theme, nullptr));
}

void X11Display::change_scale() {
    if (own_scale_) return;
    double scale = desktop_scale(connection_, settings_.dpi);
    if (scale == scale_) return;
    std::vector<RECT> wishes;
    for (auto& window : windows_) wishes.push_back(client(*window));
    scale_ = scale;
    scale_monitors();
    for (std::size_t i = 0; i < windows_.size(); ++i) {
        Window& window = *windows_[i];
        queue_.push(about(Event::Kind::scale, &window));
        // It stays where it is and keeps its logical size.
        RECT wish = wishes[i];
        RECT place = logical_rect(window.real);
        window.answer_due = true;
        configure(window,
                  {place.left, place.top, place.left + wish.width(), place.top + wish.height()});
        write_size_hints(window);
    }
    xcb_flush(connection_.xcb);
}

}  // namespace tarn::x11
