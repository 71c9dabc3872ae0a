// What the desktop's settings program tells all programs (XSETTINGS), as far as it is used here.
#pragma once

#include <string>
#include <string_view>
#include <xcb/xcb.h>

#include "platform/x11/connection.h"

namespace tarn::x11 {

struct Settings {
    std::string theme;  // its name
    double dpi = 0.0;   // 0: not told
};

// From the bytes of the property; what makes no sense ends the reading.
Settings read_settings(std::string_view bytes);
// Whether the desktop is to look dark: by GTK_THEME, else by the theme's name.
bool looks_dark(const Settings& settings);

// The window of the settings program, whose changes come as events; 0 when there is none.
xcb_window_t find_settings_owner(const Connection& connection);
Settings fetch_settings(const Connection& connection, xcb_window_t owner);

}  // namespace tarn::x11
