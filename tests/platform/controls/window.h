// A window to put controls in, on the memory display, with the notifications that it gets.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/controls/controls.h"
#include "platform/display/display.h"
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"

namespace tarn::platform {

struct Told {
    std::int32_t id, code;
    bool operator==(const Told&) const = default;
};

// What the test window does and heard; one for the process, as tests run one after the other.
struct Heard {
    std::vector<Told> commands;
    std::vector<std::int32_t> scrolls;
    std::int32_t notified = 0;  // the last WM_NOTIFY's code
    void (*on_command)(HWND, std::int32_t id, std::int32_t code) = nullptr;
    LRESULT (*on_colour)(UINT message, HDC dc, HWND control) = nullptr;
    void (*on_draw)(const DRAWITEMSTRUCT& item) = nullptr;
    std::int32_t item_height = 0;
};
inline Heard& heard() {
    static Heard record;
    return record;
}

inline LRESULT test_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    Heard& h = heard();
    switch (message) {
        case WM_COMMAND:
            h.commands.push_back({LOWORD(wparam), HIWORD(wparam)});
            if (h.on_command != nullptr) h.on_command(hwnd, LOWORD(wparam), HIWORD(wparam));
            return 0;
        case WM_NOTIFY:
            h.notified = reinterpret_cast<const NMHDR*>(lparam)->code;
            return 0;
        case WM_HSCROLL:
        case WM_VSCROLL:
            h.scrolls.push_back(LOWORD(wparam));
            return 0;
        case WM_MEASUREITEM:
            if (h.item_height == 0) break;
            reinterpret_cast<MEASUREITEMSTRUCT*>(lparam)->itemHeight =
                static_cast<UINT>(h.item_height);
            return 1;
        case WM_DRAWITEM:
            if (h.on_draw != nullptr) h.on_draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
            return 1;
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORSTATIC:
            if (h.on_colour == nullptr) break;
            return h.on_colour(message, HDC{static_cast<std::int32_t>(wparam)},
                               HWND{static_cast<std::int32_t>(lparam)});
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

// Runs all that is queued, paints included.
inline void settle() {
    MSG message;
    for (int guard = 0; guard < 100000; ++guard) {
        if (!PeekMessageA(message, HWND{}, 0, 0, PM_REMOVE)) {
            if (queue_is_idle()) return;
            continue;
        }
        TranslateMessage(message);
        DispatchMessageA(message);
    }
}

struct TestWindow {
    HWND hwnd{};

    explicit TestWindow(std::int32_t width = 400, std::int32_t height = 300) {
        setenv("TARN_DISPLAY", "memory", 1);
        setenv("TARN_SCREEN", "1280x1024,1600x900+1280+100", 1);  // two monitors
        register_standard_controls();
        WNDCLASS description;
        description.lpfnWndProc = test_procedure;
        description.lpszClassName = "ControlsTest";
        description.hbrBackground = HBRUSH{COLOR_BTNFACE + 1};
        RegisterClassA(description);
        heard() = {};
        hwnd = CreateWindowExA(0, "ControlsTest", "Controls", WS_POPUP | WS_CLIPCHILDREN, 20, 20,
                               width, height, HWND{}, HMENU{});
        ShowWindow(hwnd, SW_SHOW);
        settle();
    }
    ~TestWindow() {
        DestroyWindow(hwnd);
        settle();
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    HWND add(const char* class_name, const char* text, std::uint32_t style, RECT place,
             std::int32_t id = 100) const {
        return CreateWindowExA(0, class_name, text, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | style,
                               place.left, place.top, place.width(), place.height(), hwnd,
                               HMENU{id});
    }
};

// ---- Input, as a display would deliver it ------------------------------------------------------

inline HWND top_level_of(HWND hwnd) {
    while (hwnd != 0 && (GetWindowLong(hwnd, GWL_STYLE) & WS_CHILD) != 0) hwnd = GetParent(hwnd);
    return hwnd;
}
inline Event pointer_event(Event::Kind kind, HWND hwnd, POINT at, std::uint32_t modifiers) {
    ClientToScreen(hwnd, at);
    const HWND top = top_level_of(hwnd);
    Event event;
    event.kind = kind;
    event.window = top;
    event.screen = at;
    RECT rect;
    GetWindowRect(top, rect);
    event.point = {at.x - rect.left, at.y - rect.top};
    event.modifiers = modifiers;
    event.time = GetTickCount();
    return event;
}
inline void move_to(HWND hwnd, POINT at, std::uint32_t modifiers = 0) {
    inject_event(pointer_event(Event::Kind::pointer_move, hwnd, at, modifiers));
    settle();
}
inline void press(HWND hwnd, POINT at, std::uint32_t modifiers = 0, std::int32_t button = 1) {
    Event event = pointer_event(Event::Kind::button_down, hwnd, at, modifiers);
    event.button = button;
    event.modifiers |= button == 1 ? mod_left : button == 2 ? mod_middle : mod_right;
    inject_event(event);
    settle();
}
inline void release(HWND hwnd, POINT at, std::uint32_t modifiers = 0, std::int32_t button = 1) {
    Event event = pointer_event(Event::Kind::button_up, hwnd, at, modifiers);
    event.button = button;
    inject_event(event);
    settle();
}
inline void click(HWND hwnd, POINT at, std::uint32_t modifiers = 0, std::int32_t button = 1) {
    press(hwnd, at, modifiers, button);
    release(hwnd, at, modifiers, button);
}
inline void key(std::int32_t code, std::uint32_t modifiers = 0, std::string text = {}) {
    Event event;
    event.kind = Event::Kind::key_down;
    event.key = code;
    event.modifiers = modifiers;
    event.text = std::move(text);
    event.window = top_level_of(GetFocus());
    event.time = GetTickCount();
    inject_event(event);
    settle();
    event.kind = Event::Kind::key_up;
    event.text.clear();
    inject_event(event);
    settle();
}
// Text that no key stands for.
inline void compose(std::string_view text) {
    Event event;
    event.kind = Event::Kind::text;
    event.window = top_level_of(GetFocus());
    event.text = text;
    inject_event(event);
    settle();
}
// Each character as a key of its own.
inline void type(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
        const char c = text[at];
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (c == '\n') {
            key(VK_RETURN, 0, "\r");
        } else if (letter) {
            key(c & ~0x20, 0, std::string{c});
        } else {
            compose(text.substr(at, end - at));
        }
        at = end;
    }
}

inline std::string text_of(HWND hwnd) {
    return window_text(hwnd);
}
inline LRESULT send(HWND hwnd, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
    return send_message(hwnd, message, wparam, lparam);
}
inline LRESULT send(HWND hwnd, UINT message, WPARAM wparam, const char* text) {
    return send_message(hwnd, message, wparam, reinterpret_cast<LPARAM>(text));
}

}  // namespace tarn::platform
