#include "winio/placeholders.h"

#include <algorithm>
#include <cstring>

#include "winio/layout.h"

namespace tarn::winio {
namespace {

std::int32_t scaled(std::int32_t units) {
    return static_cast<std::int32_t>(units * current_window()->text_scale);
}

// Wider than any map; a size beyond is as good.
constexpr std::int32_t largest_size = 1000000;

}  // namespace

window_control* new_placeholder(control_type type) {
    window_control* control = new_window_control(type);
    control->flags.placeholder = true;
    return control;
}

void place_control(window_control* control, std::int32_t extra_depth) {
    if (records().passive) {
        std::free(control);
        return;
    }
    locate(control, extra_depth);
}

void finish_control(code_call& call, window_control* control, const char* message,
                    std::int32_t extra_depth) {
    if (call.grave) control->flags.grave = true;
    call.grave = false;
    read_grey_variable(call, *control);
    read_callback(call, *control, message);
    place_control(control, extra_depth);
}

void size_in_characters(window_control& control, std::int32_t columns, std::int32_t rows) {
    control.width = scaled(columns * 4);
    control.height = scaled(rows * 8);
}

void size_in_pixels(window_control& control, std::int32_t width, std::int32_t height) {
    control.width = pixels_to_units_x(std::clamp(width, 1, largest_size));
    control.height = pixels_to_units_y(std::clamp(height, 1, largest_size));
}

bool in_dialog_resource() {
    return current_window()->dialog_resource > 0;
}

string_list read_string_list(code_call& call) {
    string_list list{};
    if (building().fortran_call) {
        list.array = user_char_pointer(call.arguments);
        list.width = std::max(building().last_length, 0);
        list.count = std::max(user_integer(call.arguments), 0);
        if (!list.array) list.count = 0;
        return list;
    }
    list.table = user_char_star_star_pointer(call.arguments);
    if (records().check_mode) return list;
    for (const char* const* text = list.table; text && *text; ++text) {
        const std::size_t length = strnlen(*text, largest_size);
        list.width = std::max(list.width, static_cast<std::int32_t>(length));
        ++list.count;
    }
    return list;
}

}  // namespace tarn::winio
