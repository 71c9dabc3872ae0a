#include "platform/x11/connection.h"

#include <algorithm>
#include <cstring>

#include "platform/display/geometry.h"

namespace tarn::x11 {
namespace {

constexpr const char* atom_names[] = {
    "WM_PROTOCOLS",
    "WM_DELETE_WINDOW",
    "WM_TAKE_FOCUS",
    "WM_STATE",
    "WM_CHANGE_STATE",
    "WM_CLIENT_LEADER",
    "_NET_WM_PING",
    "_NET_WM_NAME",
    "_NET_WM_ICON_NAME",
    "_NET_WM_ICON",
    "_NET_WM_PID",
    "_NET_WM_USER_TIME",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_WM_WINDOW_TYPE_POPUP_MENU",
    "_NET_WM_STATE",
    "_NET_WM_STATE_MODAL",
    "_NET_WM_STATE_ABOVE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_FULLSCREEN",
    "_NET_WM_STATE_MAXIMIZED_VERT",
    "_NET_WM_STATE_MAXIMIZED_HORZ",
    "_NET_ACTIVE_WINDOW",
    "_NET_FRAME_EXTENTS",
    "_NET_WORKAREA",
    "_NET_CURRENT_DESKTOP",
    "_NET_SUPPORTED",
    "_NET_SUPPORTING_WM_CHECK",
    "_MOTIF_WM_HINTS",
    "UTF8_STRING",
    "text/plain;charset=utf-8",
    "text/plain",
    "TEXT",
    "image/png",
    "text/uri-list",
    "CLIPBOARD",
    "CLIPBOARD_MANAGER",
    "SAVE_TARGETS",
    "TARGETS",
    "TIMESTAMP",
    "MULTIPLE",
    "ATOM_PAIR",
    "INCR",
    "_TARN_INCOMING",
    "XdndAware",
    "XdndEnter",
    "XdndPosition",
    "XdndStatus",
    "XdndLeave",
    "XdndDrop",
    "XdndFinished",
    "XdndTypeList",
    "XdndSelection",
    "XdndActionCopy",
    "WM_SAVE_YOURSELF",
    "_NET_STARTUP_ID",
    "_NET_STARTUP_INFO_BEGIN",
    "_NET_STARTUP_INFO",
    "MANAGER",
    "_XSETTINGS_SETTINGS",
    "_XSETTINGS_S0",
};
constexpr std::size_t atom_count = static_cast<std::size_t>(Atom::count);
static_assert(std::size(atom_names) == atom_count);

void intern_atoms(Connection& connection) {
    const std::string settings = "_XSETTINGS_S" + std::to_string(connection.screen_number);
    xcb_intern_atom_cookie_t asked[atom_count];
    for (std::size_t i = 0; i < atom_count; ++i) {
        std::string_view name = atom_names[i];
        if (i == static_cast<std::size_t>(Atom::xsettings_selection)) name = settings;
        asked[i] = xcb_intern_atom(connection.xcb, 0, static_cast<std::uint16_t>(name.size()),
                                   name.data());
    }
    for (std::size_t i = 0; i < atom_count; ++i) {
        Reply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection.xcb, asked[i], nullptr));
        if (reply) connection.atoms[i] = reply->atom;
    }
}

// Surfaces are presented as they are: 24 bits of colour in words of 32, blue lowest.
bool find_visual(Connection& connection) {
    const xcb_setup_t* setup = xcb_get_setup(connection.xcb);
    if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) return false;
    bool wide = false;
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem;
         xcb_format_next(&format))
        wide |= format.data->depth == 24 && format.data->bits_per_pixel == 32;
    for (auto depth = xcb_screen_allowed_depths_iterator(connection.screen); depth.rem && wide;
         xcb_depth_next(&depth)) {
        if (depth.data->depth != 24) continue;
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem;
             xcb_visualtype_next(&visual)) {
            const xcb_visualtype_t& type = *visual.data;
            if (type._class != XCB_VISUAL_CLASS_TRUE_COLOR || type.red_mask != 0xff0000 ||
                type.green_mask != 0xff00 || type.blue_mask != 0xff)
                continue;
            bool preferred = type.visual_id == connection.screen->root_visual;
            if (connection.visual == 0 || preferred) connection.visual = type.visual_id;
        }
    }
    connection.depth = 24;
    return connection.visual != 0;
}

}  // namespace

bool connect(Connection& connection, std::string& why_not) {
    connection.xcb = xcb_connect(nullptr, &connection.screen_number);
    if (xcb_connection_has_error(connection.xcb)) {
        const char* name = std::getenv("DISPLAY");
        why_not = name && *name ? std::string("no desktop answers at DISPLAY=") + name
                                : "DISPLAY isn't set";
        xcb_disconnect(connection.xcb);
        return false;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection.xcb));
    for (int i = 0; i < connection.screen_number && screens.rem; ++i) xcb_screen_next(&screens);
    connection.screen = screens.data;
    if (!screens.rem || !find_visual(connection)) {
        why_not = "the desktop has no colours of 24 bits";
        xcb_disconnect(connection.xcb);
        return false;
    }
    connection.longest_request =
        std::size_t{xcb_get_maximum_request_length(connection.xcb)} * sizeof(std::uint32_t);
    intern_atoms(connection);
    connection.colormap = connection.screen->default_colormap;
    if (connection.visual != connection.screen->root_visual) {
        connection.colormap = xcb_generate_id(connection.xcb);
        xcb_create_colormap(connection.xcb, XCB_COLORMAP_ALLOC_NONE, connection.colormap,
                            connection.root(), connection.visual);
    }
    connection.helper = xcb_generate_id(connection.xcb);
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection.xcb, XCB_COPY_FROM_PARENT, connection.helper, connection.root(),
                      -10, -10, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      XCB_CW_EVENT_MASK, &events);
    return true;
}

std::vector<std::uint32_t> Property::words() const {
    std::vector<std::uint32_t> all;
    if (format != 32) return all;
    all.resize(bytes.size() / sizeof(std::uint32_t));
    if (!all.empty()) std::memcpy(all.data(), bytes.data(), all.size() * sizeof(std::uint32_t));
    return all;
}

Property get_property(const Connection& connection, xcb_window_t window, xcb_atom_t name,
                      std::size_t most) {
    constexpr std::uint32_t piece = 1 << 16;  // words
    Property property;
    for (std::uint32_t offset = 0; property.bytes.size() < most;) {
        Reply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection.xcb,
                                   xcb_get_property(connection.xcb, 0, window, name,
                                                    XCB_GET_PROPERTY_TYPE_ANY, offset, piece),
                                   nullptr));
        if (!reply) break;
        property.type = reply->type;
        property.format = reply->format;
        auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
        property.bytes.append(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              std::min(length, most - property.bytes.size()));
        if (reply->bytes_after == 0 || length == 0) break;
        offset += static_cast<std::uint32_t>(length / sizeof(std::uint32_t));
    }
    return property;
}

void set_words(const Connection& connection, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
               const std::uint32_t* words, std::size_t count) {
    xcb_change_property(connection.xcb, XCB_PROP_MODE_REPLACE, window, name, type, 32,
                        static_cast<std::uint32_t>(count), words);
}

void set_bytes(const Connection& connection, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
               std::string_view bytes) {
    xcb_change_property(connection.xcb, XCB_PROP_MODE_REPLACE, window, name, type, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.data());
}

void send_message(const Connection& connection, xcb_window_t to, xcb_window_t window,
                  xcb_atom_t type, const std::uint32_t (&words)[5], std::uint32_t mask) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::memcpy(message.data.data32, words, sizeof words);
    xcb_send_event(connection.xcb, 0, to, mask, reinterpret_cast<const char*>(&message));
}

std::string_view resource_value(std::string_view database, std::string_view name) {
    while (!database.empty()) {
        std::size_t end = database.find('\n');
        std::string_view line = database.substr(0, end);
        database.remove_prefix(end == std::string_view::npos ? database.size() : end + 1);
        if (line.substr(0, name.size()) != name) continue;
        line.remove_prefix(name.size());
        if (line.empty() || line[0] != ':') continue;
        line.remove_prefix(1);
        while (!line.empty() && (line[0] == ' ' || line[0] == '\t')) line.remove_prefix(1);
        while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.remove_suffix(1);
        return line;
    }
    return {};
}

double desktop_scale(const Connection& connection, double settings_dpi) {
    Property database = get_property(connection, connection.root(), XCB_ATOM_RESOURCE_MANAGER);
    double dpi = 0.0;
    for (char c : resource_value(database.bytes, "Xft.dpi")) {
        if (c < '0' || c > '9' || dpi > 10000) break;  // a fraction of a dpi is of no weight
        dpi = dpi * 10 + (c - '0');
    }
    if (dpi <= 0.0) dpi = settings_dpi;
    return dpi > 0.0 ? platform::scale_of_dpi(dpi) : 1.0;
}

}  // namespace tarn::x11
