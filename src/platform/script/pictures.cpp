#include "platform/script/pictures.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "platform/gdi/paint.h"
#include "platform/kernel/console.h"
#include "platform/script/targets.h"
#include "platform/user/user.h"

namespace tarn::platform {
namespace {

std::string failure(const std::string& path) {
    return path + " can't be written: " + std::strerror(errno);
}

void add_place(std::string& line, const RECT& rect) {
    line += " " + std::to_string(rect.left) + "," + std::to_string(rect.top) + " " +
            std::to_string(rect.width()) + "x" + std::to_string(rect.height());
}

std::string line_of(HWND top, const std::vector<ScriptControl>& all, const ScriptControl& control) {
    const ControlFacts& facts = control.facts;
    std::string line(static_cast<std::size_t>(control.depth) * 2, ' ');
    line += facts.role;
    if (std::string name = name_of(all, control); !name.empty()) line += " " + quoted(name);
    if (!facts.value.empty()) line += " = " + quoted(facts.value);
    if (facts.checked) line += " checked";
    if (!facts.enabled) line += " disabled";
    if (facts.focused) line += " focused";
    if (!facts.visible) line += " hidden";
    if (std::string code = code_name_of(control.hwnd); !code.empty()) line += " [" + code + "]";
    if (control.number != 0) line += " #" + std::to_string(control.number);
    RECT rect;
    if (GetWindowRect(control.hwnd, rect)) {
        POINT corners[2] = {{rect.left, rect.top}, {rect.right, rect.bottom}};
        MapWindowPoints(HWND{}, top, corners, 2);
        add_place(line, {corners[0].x, corners[0].y, corners[1].x, corners[1].y});
    }
    return line + "\n";
}

// Several surfaces where they stand on the screen, the last over the others; clear between them.
bool write_together(const std::vector<HWND>& windows, const std::string& path) {
    struct Piece {
        const Surface* surface;
        RECT place;  // real pixels
    };
    std::vector<Piece> pieces;
    RECT bounds;
    for (HWND each : windows) {
        const Surface* surface = window_surface(each);
        RECT rect;
        if (!surface || !surface->pixels || !window_surface_rect(each, rect)) continue;
        const std::int32_t left = surface->to_real(rect.left), top = surface->to_real(rect.top);
        const RECT place{left, top, left + surface->width, top + surface->height};
        if (pieces.empty()) bounds = place;
        bounds = {std::min(bounds.left, place.left), std::min(bounds.top, place.top),
                  std::max(bounds.right, place.right), std::max(bounds.bottom, place.bottom)};
        pieces.push_back({surface, place});
    }
    const std::int32_t width = bounds.width(), height = bounds.height();
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) *
                                      static_cast<std::size_t>(height));
    for (const Piece& piece : pieces) {
        for (std::int32_t y = 0; y < piece.surface->height; ++y) {
            const std::uint32_t* from =
                piece.surface->pixels + std::ptrdiff_t{y} * piece.surface->stride;
            const std::ptrdiff_t row = piece.place.top - bounds.top + y;
            std::copy_n(from, piece.surface->width,
                        pixels.data() + row * width + (piece.place.left - bounds.left));
        }
    }
    return write_png(path.c_str(), {pixels.data(), width, height, width, 1.0});
}

}  // namespace

bool save_picture(HWND top, const std::string& path, std::string& why_not) {
    const Surface* surface = window_surface(top);
    if (!surface || !surface->pixels) {
        why_not = "the window has no picture";
        return false;
    }
    std::vector<HWND> over = popups_over(top);
    bool written = false;
    if (over.empty()) {
        written = write_png(path.c_str(), *surface);
    } else {
        over.insert(over.begin(), top);
        written = write_together(over, path);
    }
    if (!written) why_not = failure(path);
    return written;
}

std::string tree_of(HWND top) {
    RECT client;
    GetClientRect(top, client);
    std::string text = "window " + quoted(window_text(top));
    if (!IsWindowEnabled(top)) text += " disabled";
    if (top == GetActiveWindow()) text += " active";
    text += " " + std::to_string(client.width()) + "x" + std::to_string(client.height()) + "\n";
    std::vector<ScriptControl> all = controls_of(top);
    for (const ScriptControl& control : all) text += line_of(top, all, control);
    return text;
}

bool write_tree(HWND top, const std::string& path, bool append, std::string& why_not) {
    int file =
        open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | (append ? O_APPEND : O_TRUNC), 0666);
    bool written = file >= 0 && write_descriptor(file, tree_of(top));
    if (!written) why_not = failure(path);
    if (file >= 0) close(file);
    return written;
}

std::string file_name_of(const std::string& title) {
    constexpr std::size_t longest = 60;
    std::string name;
    for (char c : title) {
        auto code = static_cast<unsigned char>(c);
        bool begins = (code & 0xC0) != 0x80;  // a character, not its rest
        if (begins && name.size() >= longest) break;
        bool plain = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                     (code >= 'a' && code <= 'z') || code >= 0x80 || code == '-' || code == '.';
        name.push_back(plain ? c : code == ' ' ? '-' : '_');
    }
    return name.empty() ? "window" : name;
}

}  // namespace tarn::platform
