// How wide and how deep texts are, in layout units.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/gdi/gdi.h"
#include "platform/kernel/config.h"
#include "platform/user/user.h"
#include "winio/layout.h"
#include "winio/layout_state.h"
#include "winio/text_layer.h"

namespace tarn::winio {
namespace {

using namespace platform;

HDC device_with(HFONT font) {
    HDC dc = measuring_dc();
    if (font && font != layout().device_font) {
        SelectObject(dc, font);
        layout().device_font = font;
    }
    return dc;
}

std::int32_t pixel_width(HFONT font, std::string_view text) {
    SIZE size;
    GetTextExtentPoint32AW(device_with(font), text.data(), static_cast<std::int32_t>(text.size()),
                           size);
    return size.cx;
}

HFONT font_of(const window_control* control) {
    if (control) return control->font;
    return current_window() ? current_window()->font : records().default_font;
}

std::string_view without_trailing_blanks(std::string_view text) {
    const std::size_t last = text.find_last_not_of(' ');
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

// The widest item of a string list: a table of texts, or in Fortran elements of one length.
std::int32_t widest_item(const window_control* control) {
    std::int32_t widest = 0;
    if (!control->data) return 0;
    if (control->flags.fortran_string) {
        const auto* element = reinterpret_cast<const char*>(control->data);
        const std::int32_t length = std::max(control->string_length, 0);
        for (word i = 0; i < control->data2; ++i, element += length)
            widest = std::max(
                widest,
                pixel_width(control->font,
                            without_trailing_blanks({element, static_cast<std::size_t>(length)})));
        return widest;
    }
    for (auto item = reinterpret_cast<const char* const*>(control->data); *item; ++item)
        widest = std::max(widest, pixel_width(control->font, without_trailing_blanks(*item)));
    return widest;
}

}  // namespace

HDC measuring_dc() {
    layout_state& all = layout();
    if (!all.device) {
        all.device = CreateCompatibleDC(HDC{});
        SelectObject(all.device, CreateCompatibleBitmap(all.device, 8, 8));
    }
    return all.device;
}

std::int32_t string_width(const window_control* control, const char* text) {
    layout().string_pixels = pixel_width(font_of(control), text ? text : "");
    return pixels_to_units_x(layout().string_pixels);
}
std::int32_t string_width(const window_control* control) {
    return string_width(control, control->text);
}
std::int32_t last_string_pixels() {
    return layout().string_pixels;
}

void get_text_dimensions(HFONT font, const char* text, std::int32_t& width, std::int32_t& depth) {
    const bool empty = !text || !*text;
    RECT room{0, 0, 1000, 1000};
    DrawTextAW(device_with(font), empty ? " " : text, -1, room, DT_CALCRECT);
    width = empty ? 0 : pixels_to_units_x(room.width());
    depth = pixels_to_units_y(room.height());
}

void text_size(const char* text, std::int32_t& columns, std::int32_t& lines) {
    columns = 0;
    lines = 1;
    std::int32_t column = 0;
    for (const char* at = text ? text : ""; *at; ++at) {
        if (*at == '\n') {
            ++lines;
            column = 0;
        } else if (*at != '\r') {
            columns = std::max(columns, ++column);
        }
    }
}

std::int32_t strlena(const char* text) {
    std::int32_t length = 0;
    for (const char* at = text; *at; ++at) {
        if (*at == '&' && *++at != '&') {
            if (!*at) break;
        }
        ++length;
    }
    return length;
}

std::int32_t font_descent(HFONT font) {
    return font_metric(font).tmDescent;
}

std::int32_t font_depth(HDC device) {
    TEXTMETRIC metric;
    if (!GetTextMetricsA(device, metric)) return 0;
    return metric.tmHeight + metric.tmExternalLeading;
}

void check_combo_width(window_control* control) {
    const std::int32_t letter = pixel_width(control->font, "M");
    const std::int32_t wanted = widest_item(control) + GetSystemMetrics(SM_CXVSCROLL) +
                                2 * GetSystemMetrics(SM_CXBORDER) + letter + 2;
    const std::int32_t units = pixels_to_units_x(wanted);
    if (control->width < units && units > pixels_to_units_x(3 * letter)) control->width = units;
}

// The system's version is beyond those that take the number from the desktop's device; a user who
// set none has the 96 of the desktop's logical pixels.
std::int32_t dpiScale(std::int32_t value) {
    const auto text = config_value("Control Panel\\Desktop", "AppliedDPI");
    const std::int32_t dpi = text ? std::atoi(text->c_str()) : 96;
    return dpi >= 91 && dpi <= 168 ? dpi / 3 : value;
}

}  // namespace tarn::winio
