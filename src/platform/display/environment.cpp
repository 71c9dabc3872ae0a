#include "platform/display/environment.h"

#include <charconv>
#include <cstdlib>
#include <dlfcn.h>
#include <string_view>

#include "platform/kernel/console.h"

namespace tarn::platform {
namespace {

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

void complain(const char* name, std::string_view value, const char* wanted) {
    std::string line = "Warning: ";
    line.append(name).append("=").append(value).append(" is ignored: ").append(wanted);
    line.append(" is expected there.\n");
    write_error_output(line);
}

// A whole number at the front of `text`, which is cut off it; -1 when there is none.
std::int32_t take_number(std::string_view& text) {
    std::int32_t value = 0;
    auto [stop, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc{} || value < 0) return -1;
    text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
    return value;
}

// A place along an axis, with its sign. Clears `sound` when there is none.
std::int32_t take_place(std::string_view& text, bool& sound) {
    constexpr std::int32_t farthest = 16384;
    bool negative = !text.empty() && text[0] == '-';
    sound &= negative || (!text.empty() && text[0] == '+');
    if (!sound) return 0;
    text.remove_prefix(1);
    std::int32_t place = take_number(text);
    sound &= place >= 0 && place <= farthest;
    return negative ? -place : place;
}

// "1280x1024" with "+0-200" behind it, or `beside` where there is no place.
bool take_monitor(std::string_view& text, POINT beside, RECT& monitor) {
    constexpr std::int32_t least = 160, most = 16384;
    std::int32_t width = take_number(text);
    if (text.empty() || (text[0] != 'x' && text[0] != 'X')) return false;
    text.remove_prefix(1);
    std::int32_t height = take_number(text);
    if (width < least || width > most || height < least || height > most) return false;
    bool sound = true;
    if (!text.empty() && text[0] != ',') {
        beside.x = take_place(text, sound);
        beside.y = take_place(text, sound);
    }
    monitor = {beside.x, beside.y, beside.x + width, beside.y + height};
    return sound;
}

// Digits with a point among them or none; independent of the program's locale. -1 for others.
double parse_scale(std::string_view text) {
    double value = 0.0, place = 0.0;
    bool digits = false;
    for (char c : text) {
        if (c == '.' && place == 0.0) {
            place = 1.0;
        } else if (c >= '0' && c <= '9') {
            digits = true;
            if (place == 0.0) {
                value = value * 10 + (c - '0');
            } else {
                value += (c - '0') * (place /= 10);
            }
        } else {
            return -1.0;
        }
    }
    return digits ? value : -1.0;
}

}  // namespace

DisplayChoice wanted_display() {
    std::string_view value = variable("TARN_DISPLAY");
    if (value.empty()) return DisplayChoice::automatic;
    if (value == "memory") return DisplayChoice::memory;
    if (value == "x11") return DisplayChoice::x11;
    complain("TARN_DISPLAY", value, "memory or x11");
    return DisplayChoice::automatic;
}

double wanted_scale() {
    std::string_view value = variable("TARN_SCALE");
    if (value.empty()) return 0.0;
    double scale = parse_scale(value);
    if (scale >= 0.5 && scale <= 4.0) return scale;
    complain("TARN_SCALE", value, "a factor from 0.5 to 4");
    return 1.0;
}

std::vector<RECT> wanted_monitors() {
    constexpr std::size_t most = 16;
    constexpr RECT usual{0, 0, 1280, 1024};
    std::string_view value = variable("TARN_SCREEN"), rest = value;
    if (value.empty()) return {usual};
    std::vector<RECT> monitors;
    while (monitors.size() < most) {
        RECT monitor;
        POINT beside{monitors.empty() ? 0 : monitors.back().right, 0};
        if (!take_monitor(rest, beside, monitor)) break;
        monitors.push_back(monitor);
        if (rest.empty() && monitors[0].left == 0 && monitors[0].top == 0) return monitors;
        if (rest.empty() || rest[0] != ',') break;
        rest.remove_prefix(1);
    }
    complain("TARN_SCREEN", value,
             "a size like 1280x1024, from 160 to 16384, or several with commas between");
    return {usual};
}

std::string resource_folder() {
    std::string_view wanted = variable("TARN_RESOURCES");
    while (wanted.size() > 1 && wanted.back() == '/') wanted.remove_suffix(1);
    if (!wanted.empty()) return std::string(wanted);
    Dl_info info;
    std::string folder;
    if (dladdr(reinterpret_cast<const void*>(&wanted_monitors), &info) && info.dli_fname) {
        folder = info.dli_fname;
        std::size_t slash = folder.rfind('/');
        folder.resize(slash == std::string::npos ? 0 : slash + 1);
    }
    return folder + "tarnlibc";
}

}  // namespace tarn::platform
