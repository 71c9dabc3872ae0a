// Selecting with the mouse, and the clipboard.
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/base/text.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

constexpr std::int32_t scroll_zone = 10;  // pixels at the top and bottom that scroll during a drag
constexpr std::uintptr_t scroll_timer = 0x5C;
constexpr UINT scroll_period = 50;  // milliseconds a line while the pointer rests there

void set_selection(window_info& window, window_line* line, const char* character, bool behind) {
    window.selected_first = behind ? window.anchor_line : line;
    window.selected_first_character = behind ? window.anchor_character : character;
    window.selected_last = behind ? line : window.anchor_line;
    window.selected_last_character = behind ? character : window.anchor_character;
}

// The end of the drag is at `at`. Which of the two ends comes first is told by where they stand.
void drag_to(window_info& window, POINT at) {
    const HDC dc = GetDC(window.hwnd);
    window_line* line = nullptr;
    const char* character = nullptr;
    const bool found = character_at(window, dc, at, line, character);
    ReleaseDC(window.hwnd, dc);
    window.end = at;
    if (!found || window.anchor_line == nullptr) return;
    bool behind = at.y > window.anchor.y;
    if (line == window.anchor_line) behind = character >= window.anchor_character;
    set_selection(window, line, character, behind);
    window.painted = false;
    InvalidateRect(window.hwnd, nullptr, false);
}

void begin_drag(window_info& window, POINT at) {
    if (state().selection_phase == 2) cancel_selection(window);
    const HDC dc = GetDC(window.hwnd);
    window_line* line = nullptr;
    const char* character = nullptr;
    if (character_at(window, dc, at, line, character)) {
        window.anchor_line = line;
        window.anchor_character = character;
    }
    ReleaseDC(window.hwnd, dc);
    window.anchor = window.end = at;
    state().selection_phase = 1;
    SetCapture(window.hwnd);
    InvalidateRect(window.hwnd, nullptr, true);
}

// Near the top and bottom, and beyond them, the text comes along.
void scroll_and_drag(window_info& window, POINT at) {
    const bool down = at.y > window.height - scroll_zone, up = at.y < scroll_zone;
    if (window.vertical_bar && (down || up)) {
        scrollv(window, down ? 1 : -1, 1, false);
        SetTimer(window.hwnd, scroll_timer, scroll_period, nullptr);
    } else {
        KillTimer(window.hwnd, scroll_timer);
    }
    drag_to(window, at);
}

void end_drag(window_info& window) {
    state().selection_phase = 2;
    KillTimer(window.hwnd, scroll_timer);
    if (GetCapture() == window.hwnd) ReleaseCapture();
    if (window.selected_first != nullptr) {
        char* text = selected_text(window.hwnd, false);
        if (text != nullptr) set_primary_text(window.utf8 ? text : utf8_from_page(text));
        std::free(text);
    }
    InvalidateRect(window.hwnd, nullptr, false);
}

std::string plain(const window_info& window, const char* text) {
    std::string result;
    while (*text != 0) {
        if (*text != window.escape) {
            result += *text++;
            continue;
        }
        ++text;
        if (*text != 't' && *text != 'T') continue;
        ++text;
        while (*text >= '0' && *text <= '9') ++text;
    }
    return result;
}

void to_clipboard(window_info& window, const std::string& text) {
    if (!OpenClipboard(window.hwnd)) return;
    EmptyClipboard();
    set_clipboard_text(window.utf8 ? text : utf8_from_page(text));
    CloseClipboard();
}

}  // namespace

void mouse_selection(window_info& window, UINT message, WPARAM wparam, POINT at) {
    if (!window.embedded) return;
    switch (message) {
        case WM_LBUTTONDOWN:
            if (window.display_owed) {
                window.display_owed = false;
                scrollv(window, -1, 1, false);
            }
            begin_drag(window, at);
            break;
        case WM_MOUSEMOVE:
            if ((wparam & MK_LBUTTON) == 0 || state().selection_phase != 1) break;
            scroll_and_drag(window, at);
            break;
        case WM_TIMER:
            if (wparam != scroll_timer || state().selection_phase != 1) break;
            GetCursorPos(at);
            ScreenToClient(window.hwnd, at);
            scroll_and_drag(window, at);
            break;
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            if (state().selection_phase == 1) end_drag(window);
            break;
        default:
            break;
    }
}

void cancel_selection(window_info& window) {
    window.anchor = window.end = {no_selection, no_selection};
    window.anchor_line = nullptr;
    const bool had = window.selected_first != nullptr;
    window.selected_first = window.selected_last = nullptr;
    window.painted = window.painted && !had;
    InvalidateRect(window.hwnd, nullptr, true);
}

char* selected_text(HWND hwnd, bool only_ask) {
    window_info* window = find_window(hwnd);
    if (window == nullptr || window->selected_first == nullptr || window->selected_last == nullptr)
        return nullptr;
    if (only_ask) return strdup("");
    std::string text;
    for (const window_line* line = window->selected_first; line != nullptr; line = line->next) {
        const char* from =
            line == window->selected_first ? window->selected_first_character : line->text();
        const char* to = line->text() + std::strlen(line->text());
        if (line == window->selected_last) {
            // Both ends are in: up to the end of the last character.
            const char* last = window->selected_last_character;
            if (*last != 0) ++last;
            while (window->utf8 && (static_cast<unsigned char>(*last) & 0xC0) == 0x80) ++last;
            to = last;
        }
        if (from < to) text.append(from, to);
        if (line == window->selected_last) break;
        text += "\r\n";
    }
    return strdup(text.c_str());
}

void copy_selection(window_info& window) {
    char* text = selected_text(window.hwnd, false);
    if (text == nullptr) return;
    to_clipboard(window, text);
    std::free(text);
}

// The whole text without its escapes, or the picture behind it.
void copy_window(window_info& window) {
    if (window.graphics_bitmap != 0) {
        const HDC dc = CreateCompatibleDC(window.graphics_dc);
        const HBITMAP copy =
            CreateCompatibleBitmap(window.graphics_dc, window.width, window.height);
        const HGDIOBJ old = SelectObject(dc, copy);
        BitBlt(dc, 0, 0, window.width, window.height, window.graphics_dc, 0, 0, SRCCOPY);
        SelectObject(dc, old);
        DeleteDC(dc);
        if (OpenClipboard(window.hwnd)) {
            EmptyClipboard();
            set_clipboard_bitmap(copy);
            CloseClipboard();
        }
        DeleteObject(copy);
        return;
    }
    std::string text;
    for (const window_line* line = window.first; line != nullptr; line = line->next)
        text += plain(window, line->text()) + "\r\n";
    to_clipboard(window, text);
}

}  // namespace tarn::textwin
