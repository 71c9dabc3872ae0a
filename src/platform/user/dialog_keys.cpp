// Moving among the controls of a window by the keyboard.
#include "platform/base/text.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

// Numbers that controls and dialogs answer to.
constexpr UINT DM_GETDEFID = WM_USER;
constexpr WPARAM DC_HASDEFID = 0x534B;
constexpr UINT EM_SETSEL = 0xB1;
constexpr UINT BM_CLICK = 0xF5;
constexpr DWORD no_prefix = 0x80;  // of a label: an ampersand is one

bool usable(const Window& window) {
    return (window.style & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE;
}

bool is_panel(const Window& window) {
    return (window.ex_style & WS_EX_CONTROLPARENT) != 0 && window.first_child != nullptr;
}

// All controls in tab order; panels are walked into.
void list_controls(const Window& parent, std::vector<Window*>& all) {
    for (Window* w = parent.first_child; w != nullptr; w = w->below) {
        if (is_panel(*w)) {
            if (usable(*w)) list_controls(*w, all);
        } else {
            all.push_back(w);
        }
    }
}

bool tab_stop(const Window& window) {
    return usable(window) && (window.style & WS_TABSTOP) != 0;
}

std::ptrdiff_t place_in(const std::vector<Window*>& all, const Window* window) {
    // A part of a control (the field of a combo box) stands for the control.
    for (; window != nullptr; window = window->parent)
        for (std::size_t i = 0; i < all.size(); ++i)
            if (all[i] == window) return static_cast<std::ptrdiff_t>(i);
    return -1;
}

}  // namespace

HWND GetNextDlgTabItem(HWND dialog, HWND from, bool previous) {
    const Window* const window = find(dialog);
    if (window == nullptr) return {};
    std::vector<Window*> all;
    list_controls(*window, all);
    const auto count = static_cast<std::ptrdiff_t>(all.size());
    std::ptrdiff_t at = place_in(all, find(from));
    if (at < 0) at = previous ? count : -1;
    for (std::ptrdiff_t step = 1; step <= count; ++step) {
        const std::ptrdiff_t i = ((at + (previous ? -step : step)) % count + count) % count;
        if (tab_stop(*all[static_cast<std::size_t>(i)]))
            return all[static_cast<std::size_t>(i)]->handle;
    }
    return from;
}

HWND GetNextDlgGroupItem(HWND dialog, HWND from, bool previous) {
    const Window* const window = find(dialog);
    if (window == nullptr) return {};
    std::vector<Window*> all;
    list_controls(*window, all);
    const auto count = static_cast<std::ptrdiff_t>(all.size());
    const std::ptrdiff_t at = place_in(all, find(from));
    if (at < 0) return {};
    // The group runs from a control with WS_GROUP to before the next one.
    std::ptrdiff_t begin = at;
    while (begin > 0 && (all[static_cast<std::size_t>(begin)]->style & WS_GROUP) == 0) --begin;
    std::ptrdiff_t end = at + 1;
    while (end < count && (all[static_cast<std::size_t>(end)]->style & WS_GROUP) == 0) ++end;
    const std::ptrdiff_t size = end - begin;
    for (std::ptrdiff_t step = 1; step < size; ++step) {
        const std::ptrdiff_t i =
            begin + ((at - begin + (previous ? -step : step)) % size + size) % size;
        if (usable(*all[static_cast<std::size_t>(i)]))
            return all[static_cast<std::size_t>(i)]->handle;
    }
    return from;
}

namespace {

// The character behind the first single ampersand, folded; 0 for none.
char32_t mnemonic_of(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '&') continue;
        if (++at >= text.size()) return 0;
        if (text[at] == '&') continue;
        return next_code_point(text, at);
    }
    return 0;
}

char32_t folded(char32_t c) {
    if (c >= U'A' && c <= U'Z') return c + 32;
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
    return c;
}

LRESULT codes_of(HWND hwnd, LPARAM message = 0) {
    return call(hwnd, WM_GETDLGCODE, 0, message);
}

void move_focus(HWND hwnd) {
    if (find(hwnd) == nullptr) return;
    set_keyboard_cues(true);
    SetFocus(hwnd);
    if (find(hwnd) != nullptr && (codes_of(hwnd) & DLGC_HASSETSEL) != 0)
        call(hwnd, EM_SETSEL, 0, -1);
}

// Panels don't hide a label's control: the search runs over all controls, from behind the focus.
bool follow_mnemonic(HWND dialog, char32_t key) {
    const Window* const window = find(dialog);
    if (window == nullptr || key <= 32) return false;
    std::vector<Window*> all;
    list_controls(*window, all);
    std::vector<HWND> order;
    order.reserve(all.size());
    for (const Window* w : all) order.push_back(w->handle);
    const std::ptrdiff_t from = place_in(all, find(GetFocus()));
    const auto count = static_cast<std::ptrdiff_t>(order.size());
    for (std::ptrdiff_t step = 1; step <= count; ++step) {
        const HWND hwnd = order[static_cast<std::size_t>((from + step + count) % count)];
        const Window* const w = find(hwnd);
        if (w == nullptr || !usable(*w)) continue;
        const LRESULT codes = codes_of(hwnd);
        const bool label = (codes & DLGC_STATIC) != 0;
        if (!label && (codes & DLGC_BUTTON) == 0 &&
            (codes & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON | DLGC_RADIOBUTTON)) == 0)
            continue;
        if (label && (w->style & no_prefix) != 0) continue;
        if (folded(mnemonic_of(window_text(hwnd))) != folded(key)) continue;
        set_keyboard_cues(true);
        if (label) {
            move_focus(GetNextDlgTabItem(dialog, hwnd, false));
            return true;
        }
        SetFocus(hwnd);
        call(hwnd, BM_CLICK, 0, 0);
        return true;
    }
    return false;
}

void send_command(HWND dialog, std::int32_t id, HWND control) {
    call(dialog, WM_COMMAND, MAKEWPARAM(id, 0), static_cast<LPARAM>(control));
}

// Enter presses the button with the focus, or the default button, or means OK.
void press_enter(HWND dialog) {
    const HWND focus = GetFocus();
    constexpr LRESULT push = DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON;
    if (IsChild(dialog, focus) && (codes_of(focus) & push) != 0)
        return send_command(dialog, GetDlgCtrlID(focus), focus);
    const LRESULT answer = call(dialog, DM_GETDEFID, 0, 0);
    const bool known = HIWORD(static_cast<std::uintptr_t>(answer)) == DC_HASDEFID;
    const std::int32_t id =
        known ? static_cast<std::int16_t>(LOWORD(static_cast<std::uintptr_t>(answer))) : +IDOK;
    const HWND button = GetDlgItem(dialog, id);
    if (button == HWND{} || IsWindowEnabled(button)) send_command(dialog, id, button);
}

void press_escape(HWND dialog) {
    const HWND button = GetDlgItem(dialog, IDCANCEL);
    if (button == HWND{} || IsWindowEnabled(button)) send_command(dialog, IDCANCEL, button);
}

void move_in_group(HWND dialog, HWND from, bool back) {
    const HWND next = GetNextDlgGroupItem(dialog, from, back);
    if (next == from || find(next) == nullptr) return;
    const bool radio = (codes_of(next) & DLGC_RADIOBUTTON) != 0;
    move_focus(next);
    if (radio && find(next) != nullptr) call(next, BM_CLICK, 0, 0);
}

// True: the key was for moving about.
bool dialog_key(HWND dialog, const MSG& m, LRESULT codes) {
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    const bool control = GetKeyState(VK_CONTROL) < 0;
    switch (m.wParam) {
        case VK_TAB:
            if ((codes & DLGC_WANTTAB) != 0 || control) return false;
            move_focus(GetNextDlgTabItem(dialog, GetFocus(), shift));
            return true;
        case VK_LEFT:
        case VK_UP:
        case VK_RIGHT:
        case VK_DOWN:
            if ((codes & DLGC_WANTARROWS) != 0 || control) return false;
            move_in_group(dialog, m.hwnd, m.wParam == VK_LEFT || m.wParam == VK_UP);
            return true;
        case VK_RETURN:
            press_enter(dialog);
            return true;
        case VK_ESCAPE:
        case VK_CANCEL:
            press_escape(dialog);
            return true;
        default:
            return false;
    }
}

}  // namespace

bool IsDialogMessageA(HWND dialog, MSG& m) {
    Pinned window(dialog);
    if (!window || (m.hwnd != dialog && !IsChild(dialog, m.hwnd))) return false;
    switch (m.message) {
        case WM_KEYDOWN: {
            const LRESULT codes = codes_of(m.hwnd, reinterpret_cast<LPARAM>(&m));
            if ((codes & DLGC_WANTALLKEYS) == 0 && dialog_key(dialog, m, codes)) return true;
            break;
        }
        case WM_CHAR: {
            constexpr LRESULT wants = DLGC_WANTALLKEYS | DLGC_WANTCHARS;
            const LRESULT codes = codes_of(m.hwnd, reinterpret_cast<LPARAM>(&m));
            if ((codes & wants) != 0) break;
            const char byte = static_cast<char>(m.wParam);
            std::size_t at = 0;
            const std::string text = utf8_from_page({&byte, 1});
            if (follow_mnemonic(dialog, next_code_point(text, at))) return true;
            break;
        }
        case WM_SYSCHAR: {
            const char byte = static_cast<char>(m.wParam);
            std::size_t at = 0;
            const std::string text = utf8_from_page({&byte, 1});
            if (follow_mnemonic(dialog, next_code_point(text, at))) return true;
            break;
        }
        default:
            break;
    }
    TranslateMessage(m);
    DispatchMessageA(m);
    return true;
}

}  // namespace tarn::platform
