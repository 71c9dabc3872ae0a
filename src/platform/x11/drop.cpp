// Files dragged here from other programs, by the protocol of dragging between X programs.
#include <algorithm>

#include "platform/display/geometry.h"
#include "platform/x11/x11_display.h"

namespace tarn::x11 {

bool X11Display::handle_drag(const xcb_client_message_event_t& message) {
    if (message.format != 32) return false;
    if (message.type == connection_[Atom::xdnd_enter]) {
        drag_enter(message);
    } else if (message.type == connection_[Atom::xdnd_position]) {
        drag_over(message);
    } else if (message.type == connection_[Atom::xdnd_leave]) {
        drag_ = {};
    } else if (message.type == connection_[Atom::xdnd_drop]) {
        if (message.data.data32[0] == drag_.source && drag_.source != 0) {
            drag_.time = message.data.data32[2];
            drag_.dropped = true;
        }
    } else {
        return false;
    }
    return true;
}

void X11Display::drag_enter(const xcb_client_message_event_t& message) {
    constexpr std::uint32_t more_in_list = 1;
    const std::uint32_t* data = message.data.data32;
    Window* window = find_handle(message.window);
    drag_ = {};
    if (!window || !window->options.accepts_files) return;
    drag_.source = data[0];
    drag_.window = window->id;
    std::vector<std::uint32_t> types(data + 2, data + 5);
    if ((data[1] & more_in_list) != 0)
        types = get_property(connection_, drag_.source, connection_[Atom::xdnd_type_list]).words();
    drag_.files =
        std::find(types.begin(), types.end(), connection_[Atom::text_uri_list]) != types.end();
}

void X11Display::drag_over(const xcb_client_message_event_t& message) {
    const std::uint32_t* data = message.data.data32;
    if (drag_.source == 0 || data[0] != drag_.source) return;
    drag_.screen = {static_cast<std::int16_t>(data[2] >> 16), static_cast<std::int16_t>(data[2])};
    // Accept, anywhere in the window, a copy.
    std::uint32_t copy = drag_.files ? connection_[Atom::xdnd_action_copy] : XCB_NONE;
    send_message(connection_, drag_.source, drag_.source, connection_[Atom::xdnd_status],
                 {message.window, drag_.files ? 1u : 0u, 0, 0, copy});
    xcb_flush(connection_.xcb);
}

void X11Display::finish_drop() {
    constexpr std::int32_t patience = 2000;
    Drag drag = std::exchange(drag_, {});
    Window* window = find(drag.window);
    std::string paths;
    if (window && drag.files) {
        Property list = fetch(connection_[Atom::xdnd_selection], connection_[Atom::text_uri_list],
                              patience, drag.time);
        paths = paths_from_uris(list.bytes);
    }
    std::uint32_t done = paths.empty() ? 0 : 1;
    send_message(
        connection_, drag.source, drag.source, connection_[Atom::xdnd_finished],
        {window ? window->handle : 0, done, done ? connection_[Atom::xdnd_action_copy] : 0, 0, 0});
    xcb_flush(connection_.xcb);
    if (!window || paths.empty()) return;
    Event told = about(Event::Kind::drop_files, window);
    place_pointer(told, *window, drag.screen.x - window->real.left,
                  drag.screen.y - window->real.top, 0);
    told.text = std::move(paths);
    queue_.push(std::move(told));
}

}  // namespace tarn::x11
