// What all standard controls share: the record behind a window, how it is found and freed, its
// text, its font, and how it speaks to its parent.
//
// A control tells its parent things in the middle of its work, and the parent may do anything
// meanwhile, destroying the control included. So a record outlives its window until the outermost
// message to it has returned, and every routine that told somebody something asks `dead` next.
#pragma once

#include <string>
#include <string_view>

#include "platform/base/constants.h"
#include "platform/base/types.h"
#include "platform/controls/controls.h"
#include "platform/user/scroll_bar.h"
#include "platform/user/user.h"

namespace tarn::platform {

// Beyond the messages of the platform, within this room.
enum : UINT {
    // To a list: its items changed behind its back (they belong to its combo box).
    list_items_changed = WM_USER + 0x1F0,
    // To a combo box, from its list: w = item, l = 1 when it was chosen, 0 when only passed over.
    combo_list_pick = WM_USER + 0x1F1,
    // To a combo box, from its list or its edit field: close, the choice cancelled.
    combo_cancel = WM_USER + 0x1F2,
    // To an edit field: it is the field of a combo box.
    edit_in_combo = WM_USER + 0x1F3,
};

struct Control {
    HWND hwnd{};
    HFONT font{};
    std::int32_t depth = 0;  // messages being handled
    bool dead = false;       // the window has gone
    bool hovered = false;
    bool focused = false;

    std::uint32_t style() const {
        return static_cast<std::uint32_t>(GetWindowLong(hwnd, GWL_STYLE));
    }
    bool has(std::uint32_t bits) const { return (style() & bits) != 0; }
    bool enabled() const { return IsWindowEnabled(hwnd); }
    RECT client() const {
        RECT rect;
        GetClientRect(hwnd, rect);
        return rect;
    }
    void repaint() const { InvalidateRect(hwnd, nullptr, false); }
    void repaint(const RECT& rect) const {
        if (!rect.empty()) InvalidateRect(hwnd, &rect, false);
    }
};

// The font that a control draws with: its own, or the system's.
HFONT control_font(const Control& control);

// Sends WM_COMMAND with `code` to the parent. False when the control died of it.
bool notify(const Control& control, std::int32_t code);

// WM_GETTEXT into a buffer of `size` bytes: whole characters only, always ended. The bytes copied.
LRESULT copy_text(std::string_view text, WPARAM size, LPARAM buffer);
inline std::string_view text_argument(LPARAM lparam) {
    const auto* text = reinterpret_cast<const char*>(lparam);
    return text == nullptr ? std::string_view{} : std::string_view{text};
}

// A context to measure with, the control's font in it.
class Measure {
  public:
    explicit Measure(const Control& control);
    ~Measure();
    Measure(const Measure&) = delete;
    Measure& operator=(const Measure&) = delete;
    HDC dc() const { return dc_; }
    std::int32_t line_height() const;
    SIZE extent(std::string_view utf8) const { return text_extent(dc_, utf8); }

  private:
    HWND hwnd_;
    HDC dc_;
    HGDIOBJ old_;
};

// Between BeginPaint and EndPaint, the control's font selected.
class Paint {
  public:
    explicit Paint(const Control& control);
    ~Paint();
    Paint(const Paint&) = delete;
    Paint& operator=(const Paint&) = delete;
    HDC dc() const { return paint_.hdc; }
    const RECT& damaged() const { return paint_.rcPaint; }

  private:
    HWND hwnd_;
    PAINTSTRUCT paint_;
};

// The window procedure of a class whose record is T: T holds a Control as its base and has
// `LRESULT handle(UINT, WPARAM, LPARAM)`. The record's address stands in the window's extra bytes.
template <class T>
T* record_of(HWND hwnd) {
    return reinterpret_cast<T*>(GetWindowLong(hwnd, 0));
}

// A message at work in a control, whose record outlives it: also when an exception of the program
// ends the message.
template <class T>
class MessageAtWork {
  public:
    explicit MessageAtWork(T* control) : control_(control) { ++control_->depth; }
    ~MessageAtWork() {
        if (--control_->depth == 0 && control_->dead) delete control_;
    }
    MessageAtWork(const MessageAtWork&) = delete;
    MessageAtWork& operator=(const MessageAtWork&) = delete;

  private:
    T* control_;
};

template <class T>
LRESULT control_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    T* control = record_of<T>(hwnd);
    if (control == nullptr) {
        if (message != WM_NCCREATE) return DefWindowProcA(hwnd, message, wparam, lparam);
        control = new T;
        control->hwnd = hwnd;
        SetWindowLong(hwnd, 0, reinterpret_cast<LPARAM>(control));
    }
    // Help is the same everywhere, also in controls that keep all other keys.
    if (message == WM_KEYDOWN && wparam == VK_F1)
        return DefWindowProcA(hwnd, message, wparam, lparam);
    const MessageAtWork<T> work(control);
    const LRESULT result = control->handle(message, wparam, lparam);
    if (message == WM_NCDESTROY) {
        control->dead = true;
        SetWindowLong(hwnd, 0, 0);
    }
    return result;
}

// WM_SETTEXT, WM_GETTEXT, WM_GETTEXTLENGTH, WM_SETFONT and WM_GETFONT of a control that shows one
// `text` of its own.
template <class T>
LRESULT handle_label(T& control, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SETTEXT:
            if (const std::string_view to = text_argument(lparam); to != control.text) {
                control.text = to;
                control.repaint();
            }
            return 1;
        case WM_GETTEXT:
            return copy_text(control.text, wparam, lparam);
        case WM_GETTEXTLENGTH:
            return static_cast<LRESULT>(control.text.size());
        case WM_SETFONT:
            control.font = HFONT{static_cast<std::int32_t>(wparam)};
            if (LOWORD(static_cast<std::uintptr_t>(lparam)) != 0) control.repaint();
            return 0;
        default:
            return control.font;
    }
}

inline constexpr std::int32_t scroll_step = 16;  // pixels of a step across
// The position behind one message of a bar. A thumb's comes from the bar itself: the message's 16
// bits don't reach over a long text.
std::int32_t scrolled_to(HWND hwnd, std::int32_t bar, std::int32_t code, ScrollValues values,
                         std::int32_t line);

inline bool key_down(std::int32_t key) {
    return GetKeyState(key) < 0;
}

// The code point of a WM_CHAR: a character of the code page, or one beyond it as it is.
char32_t typed_character(UINT message, WPARAM wparam);

LRESULT button_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT static_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT edit_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT listbox_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT combobox_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT scrollbar_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);

}  // namespace tarn::platform
