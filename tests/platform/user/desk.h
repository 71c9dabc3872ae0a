// A desk to test windows on: the memory display, a class whose procedure writes down what it gets,
// and a user made of events.
#pragma once

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "platform/display/display.h"
#include "platform/gdi/gdi.h"
#include "platform/user/user.h"

namespace tarn::platform {

struct Sent {
    HWND hwnd;
    UINT message;
    WPARAM wparam;
    LPARAM lparam;
};

class Desk : public testing::Test {
  protected:
    using Handler = std::function<bool(const Sent&, LRESULT&)>;

    static void SetUpTestSuite() {
        setenv("TARN_DISPLAY", "memory", 1);
        setenv("TARN_SCREEN", "1280x1024,1600x900+1280+100", 1);  // two monitors
        unsetenv("TARN_SCALE");
        WNDCLASS c;
        c.lpfnWndProc = procedure;
        c.lpszClassName = "Desk";
        c.style = CS_DBLCLKS;
        c.hbrBackground = HBRUSH{COLOR_WINDOW + 1};
        c.cbWndExtra = 16;
        RegisterClassA(c);
        c.lpszClassName = "DeskUtf8";
        c.utf8 = true;
        RegisterClassA(c);
    }
    void SetUp() override {
        log().clear();
        handlers().clear();
    }
    void TearDown() override {
        handlers().clear();
        while (first_window() != HWND{}) DestroyWindow(first_window());
        settle();
    }

    static HWND top(DWORD style = WS_OVERLAPPEDWINDOW, HWND owner = {},
                    RECT r = {100, 100, 500, 400}) {
        const HWND hwnd = CreateWindowExA(0, "Desk", "Top", style, r.left, r.top, r.width(),
                                          r.height(), owner, HMENU{});
        ShowWindow(hwnd, SW_SHOW);
        settle();
        return hwnd;
    }
    static HWND child(HWND parent, RECT r, DWORD style = WS_VISIBLE, std::int32_t id = 1,
                      const char* text = "") {
        return CreateWindowExA(0, "Desk", text, style | WS_CHILD, r.left, r.top, r.width(),
                               r.height(), parent, HMENU{id});
    }
    // Runs everything that waits.
    static void settle() {
        MSG m;
        for (int rounds = 0; rounds < 1000; ++rounds) {
            if (PeekMessageA(m, HWND{}, 0, 0, PM_REMOVE)) {
                TranslateMessage(m);
                DispatchMessageA(m);
            } else if (queue_is_idle()) {
                return;
            } else {
                WaitMessage();
            }
        }
        FAIL() << "the queue never runs empty";
    }
    static void press(Event::Kind kind, HWND hwnd, POINT client, std::int32_t button = 1,
                      std::uint32_t modifiers = 0) {
        HWND root = hwnd;
        while (IsWindow(GetParent(root)) && (GetWindowLong(root, GWL_STYLE) & WS_CHILD) != 0)
            root = GetParent(root);
        Event e;
        e.kind = kind;
        e.window = static_cast<TopLevel>(root);
        POINT p = client;
        MapWindowPoints(hwnd, HWND{}, &p, 1);
        e.screen = p;
        POINT origin{};
        MapWindowPoints(root, HWND{}, &origin, 1);
        e.point = {p.x - origin.x, p.y - origin.y};  // tests use windows without bars at the top
        e.button = button;
        e.modifiers = modifiers;
        inject_event(e);
    }
    static void click(HWND hwnd, POINT client, std::int32_t button = 1) {
        press(Event::Kind::pointer_move, hwnd, client);
        press(Event::Kind::button_down, hwnd, client, button, button == 1 ? mod_left : mod_right);
        press(Event::Kind::button_up, hwnd, client, button);
        settle();
    }
    static void wheel(HWND hwnd, POINT client, std::int32_t delta) {
        Event e;
        e.kind = Event::Kind::wheel;
        POINT p = client;
        HWND root = hwnd;
        while ((GetWindowLong(root, GWL_STYLE) & WS_CHILD) != 0) root = GetParent(root);
        MapWindowPoints(hwnd, root, &p, 1);
        e.window = static_cast<TopLevel>(root);
        e.point = p;
        e.delta = delta;
        inject_event(e);
        settle();
    }
    static void key(std::int32_t vk, const char* text = "", std::uint32_t modifiers = 0,
                    bool both = true) {
        Event e;
        e.kind = Event::Kind::key_down;
        e.window = static_cast<TopLevel>(GetActiveWindow());
        e.key = vk;
        e.text = text;
        e.modifiers = modifiers;
        inject_event(e);
        if (both) {
            e.kind = Event::Kind::key_up;
            e.text.clear();
            if (vk == VK_MENU) e.modifiers &= ~std::uint32_t{mod_alt};
            inject_event(e);
        }
        settle();
    }

    static std::vector<Sent>& log() {
        static std::vector<Sent> all;
        return all;
    }
    static std::map<UINT, Handler>& handlers() {
        static std::map<UINT, Handler> all;
        return all;
    }
    // The messages that came, of those asked for.
    static std::vector<UINT> messages(HWND hwnd, std::initializer_list<UINT> wanted) {
        std::vector<UINT> all;
        for (const Sent& s : log())
            for (const UINT w : wanted)
                if (s.message == w && (hwnd == HWND{} || s.hwnd == hwnd)) all.push_back(w);
        return all;
    }
    static int count(HWND hwnd, UINT message) {
        return static_cast<int>(messages(hwnd, {message}).size());
    }
    static const Sent* last(HWND hwnd, UINT message) {
        for (std::size_t i = log().size(); i-- > 0;)
            if (log()[i].hwnd == hwnd && log()[i].message == message) return &log()[i];
        return nullptr;
    }
    static COLORREF pixel(HWND top_level, std::int32_t x, std::int32_t y) {
        const Surface* const s = window_surface(top_level);
        if (s == nullptr || x >= s->width || y >= s->height) return 0xFFFFFFFF;
        const std::uint32_t p = s->pixels[y * s->stride + x];
        return RGB(p >> 16 & 0xFF, p >> 8 & 0xFF, p & 0xFF);
    }

  private:
    static LRESULT procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
        const Sent sent{hwnd, message, wparam, lparam};
        log().push_back(sent);
        const auto found = handlers().find(message);
        LRESULT result = 0;
        if (found != handlers().end()) {
            const Handler handler = found->second;  // it may change the table
            if (handler(sent, result)) return result;
        }
        return DefWindowProcA(hwnd, message, wparam, lparam);
    }
};

}  // namespace tarn::platform
