// The connection to an X server: what is asked of it once, atoms, properties.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace tarn::x11 {

// What xcb hands out is freed by the C library.
struct Free {
    void operator()(void* what) const { std::free(what); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

// In the order of the names in connection.cpp.
enum class Atom : std::uint8_t {
    wm_protocols,
    wm_delete_window,
    wm_take_focus,
    wm_state,
    wm_change_state,
    wm_client_leader,
    net_wm_ping,
    net_wm_name,
    net_wm_icon_name,
    net_wm_icon,
    net_wm_pid,
    net_wm_user_time,
    net_wm_window_type,
    net_wm_window_type_normal,
    net_wm_window_type_dialog,
    net_wm_window_type_utility,
    net_wm_window_type_popup_menu,
    net_wm_state,
    net_wm_state_modal,
    net_wm_state_above,
    net_wm_state_hidden,
    net_wm_state_fullscreen,
    net_wm_state_maximized_vert,
    net_wm_state_maximized_horz,
    net_active_window,
    net_frame_extents,
    net_workarea,
    net_current_desktop,
    net_supported,
    net_supporting_wm_check,
    motif_wm_hints,
    utf8_string,
    text_plain_utf8,
    text_plain,
    text,
    image_png,
    text_uri_list,
    clipboard,
    clipboard_manager,
    save_targets,
    targets,
    timestamp,
    multiple,
    atom_pair,
    incr,
    incoming,  // the property of our own in which selections arrive
    xdnd_aware,
    xdnd_enter,
    xdnd_position,
    xdnd_status,
    xdnd_leave,
    xdnd_drop,
    xdnd_finished,
    xdnd_type_list,
    xdnd_selection,
    xdnd_action_copy,
    wm_save_yourself,
    net_startup_id,
    net_startup_info_begin,
    net_startup_info,
    manager,
    xsettings,
    xsettings_selection,  // of the screen in use
    count
};

struct Connection {
    xcb_connection_t* xcb = nullptr;
    xcb_screen_t* screen = nullptr;
    int screen_number = 0;
    xcb_window_t helper = 0;  // never seen: owns selections and receives them
    std::uint8_t depth = 0;
    xcb_visualid_t visual = 0;
    xcb_colormap_t colormap = 0;
    std::size_t longest_request = 0;          // bytes
    xcb_timestamp_t time = XCB_CURRENT_TIME;  // of the user's last event
    xcb_atom_t atoms[static_cast<std::size_t>(Atom::count)] = {};

    xcb_atom_t operator[](Atom atom) const { return atoms[static_cast<std::size_t>(atom)]; }
    xcb_window_t root() const { return screen->root; }
};

// Connects to the server that DISPLAY names. False: `why_not` says why.
bool connect(Connection& connection, std::string& why_not);

struct Property {
    xcb_atom_t type = XCB_NONE;
    std::uint8_t format = 0;  // bits of an item
    std::string bytes;

    // The items of a property of 32 bits each; none when it is another kind.
    std::vector<std::uint32_t> words() const;
};
// All of it, or its first `most` bytes.
Property get_property(const Connection& connection, xcb_window_t window, xcb_atom_t name,
                      std::size_t most = std::size_t{1} << 20);
void set_words(const Connection& connection, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
               const std::uint32_t* words, std::size_t count);
void set_bytes(const Connection& connection, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
               std::string_view bytes);
// A message of 32-bit words about `window`, sent to `to`: the root for the manager.
void send_message(const Connection& connection, xcb_window_t to, xcb_window_t window,
                  xcb_atom_t type, const std::uint32_t (&words)[5], std::uint32_t mask = 0);

// The entry `name` of a resource database ("Xft.dpi:\t96"), empty for none.
std::string_view resource_value(std::string_view database, std::string_view name);
// The factor of the desktop: its resolution in quarters, by the resource database or else as the
// settings program says (0: it doesn't); 1 when nobody tells one.
double desktop_scale(const Connection& connection, double settings_dpi);

}  // namespace tarn::x11
