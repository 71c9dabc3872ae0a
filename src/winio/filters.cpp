// What stands around the message pump: filters before and after each message, monitors, idling.
#include "frame/end.h"
#include "platform/controls/controls.h"
#include "platform/script/script.h"
#include "textwin/textwin.h"
#include "winio/actions.h"
#include "winio/callbacks.h"
#include "winio/menus.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

bool key_down(std::int32_t key) {
    return GetKeyState(key) < 0;
}

bool is_key_message(UINT message) {
    return message >= WM_KEYDOWN && message <= WM_UNICHAR;
}

bool is_press(UINT message) {
    return message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN || message == WM_MBUTTONDOWN ||
           message == WM_LBUTTONDBLCLK || message == WM_NCLBUTTONDOWN;
}

void adjust_grey_of(fancy_window* window) {
    if (!window || !window->flags.open || !window->flags.ready) return;
    fancy_window* before = current_window();
    current_window() = window;
    adjust_grey_controls(3);
    current_window() = before && window_listed(before) ? before : nullptr;
}

fancy_window* window_above(const fancy_window* window) {
    if (!window->flags.child && !window->flags.mdi_child) return nullptr;
    HWND parent = GetParent(window->hwnd);
    return parent ? our_window(parent) : nullptr;
}

// The keys that move between controls, press the default button, open mnemonics.
bool navigated(fancy_window* window, MSG& message) {
    if (GetFocus() == window->hwnd) return false;
    procedures().dialog_key = true;
    const bool served = IsDialogMessageA(window->hwnd, message);
    procedures().dialog_key = false;
    return served;
}

// Ctrl+F6 and Ctrl+Tab go through the children of an MDI frame, Ctrl+F4 closes one.
bool mdi_key(const fancy_window* inner, const MSG& message) {
    if (message.message != WM_KEYDOWN || !key_down(VK_CONTROL)) return false;
    const fancy_window* child = inner;
    while (child && !child->flags.mdi_child) child = window_above(child);
    if (!child) return false;
    if (message.wParam == VK_F4) {
        PostMessageA(child->hwnd, WM_CLOSE, 0, 0);
        return true;
    }
    if (message.wParam != VK_F6 && message.wParam != VK_TAB) return false;
    const WPARAM way = key_down(VK_SHIFT) ? SC_PREVWINDOW : SC_NEXTWINDOW;
    PostMessageA(child->hwnd, WM_SYSCOMMAND, way, 0);
    return true;
}

bool key_served(MSG& message) {
    fancy_window* inner = our_window(message.hwnd);
    if (!inner || !inner->flags.open) return false;
    for (fancy_window* window = inner; window; window = window_above(window)) {
        if (!apply_accelerator(window, message)) continue;
        // A mnemonic stays the character that it was, and its window finds the control.
        return is_key_message(message.message) && navigated(window, message);
    }
    return mdi_key(inner, message) || navigated(inner, message);
}

bool sets_control_key(std::int32_t key) {
    return key == VK_BACK || key == VK_TAB || key == VK_CLEAR || key == VK_RETURN;
}

bool key_may_accelerate(std::int32_t key, bool control) {
    if (sets_control_key(key) || key == VK_ESCAPE) return true;
    if (key >= VK_PRIOR && key <= VK_DOWN) return true;
    if (key == VK_INSERT || key == VK_DELETE || key > VK_MULTIPLY) return true;
    return control && key >= '0' && key <= '9';
}

std::int32_t modifiers() {
    return (key_down(VK_CONTROL) ? key_control : 0) | (key_down(VK_SHIFT) ? key_shift : 0);
}

std::int32_t word_of_key(std::int32_t key, bool alt) {
    std::int32_t flags = modifiers();
    const bool control = (flags & key_control) != 0;
    const bool letter = key >= 'A' && key <= 'Z';
    // With Ctrl and another one held a letter types no character that could be looked at instead.
    const bool typeless = letter && control && (alt || (flags & key_shift) != 0);
    if (!alt && !typeless && !key_may_accelerate(key, control)) return 0;
    if (alt && letter && !control) return 0;  // its WM_SYSCHAR follows
    if (key == VK_TAB && flags == key_control && !alt) return key_control_tab;
    return key | flags | (alt ? key_alt : 0);
}

std::int32_t word_of_character(std::int32_t character) {
    std::int32_t flags = modifiers();
    if ((flags & key_control) == 0) return 0;
    if (sets_control_key(character))
        return (flags & key_shift) != 0 ? character + 0x640 : character | key_control;
    if (character < 27) character += 0x40;
    return character | flags;
}

std::int32_t upper(std::int32_t character) {
    return character >= 'a' && character <= 'z' ? character - 0x20 : character;
}

void note_input(const MSG& message) {
    if (is_press(message.message) || is_key_message(message.message)) {
        procedures().input_seen = true;
        if (message.message != WM_KEYUP && message.message != WM_SYSKEYUP) hide_tool_help();
    }
    follow_pointer_for_help(message);
    if (message.message == WM_KEYUP || message.message == WM_LBUTTONUP)
        adjust_grey_of(our_window(message.hwnd));
}

void cursor_moved(const MSG& message) {
    procedures_state& state = procedures();
    if (message.message != WM_MOUSEMOVE || state.cursor.empty()) return;
    if (message.hwnd == state.cursor_window) return;
    state.cursor_window = message.hwnd;
    callbacks().context.cursor_window = static_cast<std::int32_t>(message.hwnd);
    state.cursor.run();
}

void focus_moved() {
    procedures_state& state = procedures();
    HWND focus = GetFocus();
    if (focus == state.focus_window) return;
    state.focus_window = focus;
    note_clipboard_client(focus);
    if (state.focus.empty()) return;
    callbacks().context.focussed_window = static_cast<std::int32_t>(focus);
    state.focus.run();
}

// "RD001", for scripts and the tree of controls; texts have none.
std::string code_name(HWND hwnd) {
    const window_control* control = control_from_window(hwnd, false);
    return control && control->name[0] != '.' ? control->name : "";
}

}  // namespace

bool monitor_list::add(monitor function) {
    if (!function || count == capacity) return false;
    functions[count++] = function;
    return true;
}

bool monitor_list::remove(monitor function) {
    for (std::int32_t i = 0; i < count; ++i) {
        if (functions[i] != function) continue;
        for (std::int32_t j = i + 1; j < count; ++j) functions[j - 1] = functions[j];
        --count;
        return true;
    }
    return false;
}

void monitor_list::run() {
    monitor copy[capacity];
    std::int32_t copied = count;
    for (std::int32_t i = 0; i < copied; ++i) copy[i] = functions[i];
    for (std::int32_t i = 0; i < copied; ++i) copy[i]();
}

std::int32_t key_word_of(const MSG& message) {
    auto key = static_cast<std::int32_t>(message.wParam);
    switch (message.message) {
        case WM_KEYDOWN:
            return word_of_key(key,
                               (message.lParam >> 29 & 1) != 0);  // with Ctrl it's no system key
        case WM_SYSKEYDOWN:
            return word_of_key(key, key_down(VK_MENU));
        case WM_CHAR:
            return word_of_character(key);
        case WM_SYSCHAR:
            return upper(key) | key_alt | modifiers();
        default:
            return 0;
    }
}

bool pre_message_loop_filter(MSG& message) {
    procedures_state& state = procedures();
    state.dialog_key = false;  // this one may come within a call-back that a key started
    if (message.message == WM_PAINT) return false;
    if (state.interception && state.interception(&message)) return true;
    note_input(message);
    if (!is_key_message(message.message)) return false;
    keyboard_filter(message);
    if (message.message == WM_SYSKEYDOWN && message.wParam == VK_F10 && state.trap_f10) return true;
    return key_served(message);
}

void post_message_loop_filter(const MSG& message) {
    cursor_moved(message);
    focus_moved();
    if (callbacks().first_pending) perform_pending_calls();
}

void quillpan_idle() {
    procedures_state& state = procedures();
    if (!state.input_seen) return;
    state.input_seen = false;
    state.idle.run();
}

void install_window_procedures() {
    procedures_state& state = procedures();
    if (state.installed) return;
    state.installed = true;
    register_standard_controls();
    textwin::PumpHooks& hooks = textwin::pump_hooks();
    hooks.pre_filter = pre_message_loop_filter;
    hooks.post_filter = post_message_loop_filter;
    hooks.idle = quillpan_idle;
    hooks.end = exit_cleanup;
    control_code_name = code_name;
    frame::add_exit_routine(exit_cleanup);
}

}  // namespace tarn::winio
