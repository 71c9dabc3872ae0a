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

SIZE wanted_screen() {
    constexpr std::int32_t least = 160, most = 16384;
    std::string_view value = variable("TARN_SCREEN"), rest = value;
    if (value.empty()) return {1280, 1024};
    SIZE size;
    size.cx = take_number(rest);
    bool sound = !rest.empty() && (rest[0] == 'x' || rest[0] == 'X');
    if (sound) {
        rest.remove_prefix(1);
        size.cy = take_number(rest);
        sound = rest.empty() && size.cx >= least && size.cx <= most && size.cy >= least &&
                size.cy <= most;
    }
    if (sound) return size;
    complain("TARN_SCREEN", value, "a size like 1280x1024, from 160 to 16384,");
    return {1280, 1024};
}

std::string resource_folder() {
    std::string_view wanted = variable("TARN_RESOURCES");
    while (wanted.size() > 1 && wanted.back() == '/') wanted.remove_suffix(1);
    if (!wanted.empty()) return std::string(wanted);
    Dl_info info;
    std::string folder;
    if (dladdr(reinterpret_cast<const void*>(&wanted_screen), &info) && info.dli_fname) {
        folder = info.dli_fname;
        std::size_t slash = folder.rfind('/');
        folder.resize(slash == std::string::npos ? 0 : slash + 1);
    }
    return folder + "tarnlibc";
}

}  // namespace tarn::platform
