#include "platform/x11/settings.h"

#include <cctype>
#include <cstdint>
#include <cstdlib>

namespace tarn::x11 {
namespace {

// Takes values off the front of bytes that another program wrote; `sound` falls at the first that
// isn't all there.
struct Reader {
    std::string_view rest;
    bool swapped = false;  // most significant byte first
    bool sound = true;

    std::string_view take(std::size_t count) {
        sound &= count <= rest.size();
        if (!sound) return {};
        std::string_view taken = rest.substr(0, count);
        rest.remove_prefix(count);
        return taken;
    }
    std::uint32_t number(std::size_t bytes) {
        std::uint32_t value = 0;
        std::string_view taken = take(bytes);
        for (std::size_t i = 0; i < taken.size(); ++i) {
            auto byte = static_cast<unsigned char>(taken[swapped ? i : taken.size() - 1 - i]);
            value = value << 8 | byte;
        }
        return value;
    }
    // With the bytes behind it that fill it up to a multiple of four.
    std::string_view text(std::size_t length) {
        std::string_view taken = take(length);
        take((4 - length % 4) % 4);
        return sound ? taken : std::string_view();
    }
};

bool says_dark(std::string_view name) {
    std::string lower;
    for (char c : name)
        lower.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    return lower.find("dark") != std::string::npos;
}

}  // namespace

Settings read_settings(std::string_view bytes) {
    enum : std::uint32_t { whole_number = 0, text = 1, colour = 2 };
    Settings settings;
    Reader reader{bytes};
    reader.swapped = reader.number(1) == 1;
    reader.take(3 + 4);  // unused, and a serial number
    std::uint32_t count = reader.number(4);
    for (; count > 0 && reader.sound; --count) {
        std::uint32_t kind = reader.number(1);
        reader.take(1);
        std::string_view name = reader.text(reader.number(2));
        reader.take(4);  // when it changed
        if (kind == whole_number) {
            constexpr double parts = 1024.0;
            auto value = static_cast<std::int32_t>(reader.number(4));
            if (reader.sound && name == "Xft/DPI" && value > 0) settings.dpi = value / parts;
        } else if (kind == text) {
            std::string_view value = reader.text(reader.number(4));
            if (reader.sound && name == "Net/ThemeName") settings.theme = value;
        } else if (kind == colour) {
            reader.take(8);
        } else {
            break;
        }
    }
    return settings;
}

bool looks_dark(const Settings& settings) {
    const char* wish = std::getenv("GTK_THEME");
    return says_dark(wish && *wish ? std::string_view(wish) : settings.theme);
}

xcb_window_t find_settings_owner(const Connection& connection) {
    xcb_get_selection_owner_cookie_t asked =
        xcb_get_selection_owner(connection.xcb, connection[Atom::xsettings_selection]);
    Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection.xcb, asked, nullptr));
    if (!reply || reply->owner == XCB_NONE) return 0;
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection.xcb, reply->owner, XCB_CW_EVENT_MASK, &events);
    return reply->owner;
}

Settings fetch_settings(const Connection& connection, xcb_window_t owner) {
    if (owner == 0) return {};
    return read_settings(get_property(connection, owner, connection[Atom::xsettings]).bytes);
}

}  // namespace tarn::x11
