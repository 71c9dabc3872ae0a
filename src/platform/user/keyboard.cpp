// Keys: messages made of the display's events, and characters made of messages.
#include "platform/base/text.h"
#include "platform/display/keys.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

// Programs know the scan codes of the first set. Up to 88 the display's numbers are those; beyond,
// they are the codes that had a prefix, in the system's own order.
struct ExtendedKey {
    std::uint8_t from, scan;
};
constexpr ExtendedKey extended_keys[] = {
    {96, 0x1C},  {97, 0x1D},  {98, 0x35},  {99, 0x37},  {100, 0x38}, {102, 0x47}, {103, 0x48},
    {104, 0x49}, {105, 0x4B}, {106, 0x4D}, {107, 0x4F}, {108, 0x50}, {109, 0x51}, {110, 0x52},
    {111, 0x53}, {119, 0x46}, {125, 0x5B}, {126, 0x5C}, {127, 0x5D}, {139, 0x5D},
};

// For keys that come without a scan code (scripts): where they are on the usual board.
struct UsualKey {
    std::uint8_t key, scan;
    bool extended;
};
constexpr UsualKey usual_keys[] = {
    {VK_BACK, 14, false},     {VK_TAB, 15, false},     {VK_RETURN, 28, false},
    {VK_SHIFT, 42, false},    {VK_CONTROL, 29, false}, {VK_MENU, 56, false},
    {VK_PAUSE, 0x46, true},   {VK_CAPITAL, 58, false}, {VK_ESCAPE, 1, false},
    {VK_SPACE, 57, false},    {VK_PRIOR, 0x49, true},  {VK_NEXT, 0x51, true},
    {VK_END, 0x4F, true},     {VK_HOME, 0x47, true},   {VK_LEFT, 0x4B, true},
    {VK_UP, 0x48, true},      {VK_RIGHT, 0x4D, true},  {VK_DOWN, 0x50, true},
    {VK_INSERT, 0x52, true},  {VK_DELETE, 0x53, true}, {VK_APPS, 0x5D, true},
    {VK_MULTIPLY, 55, false}, {VK_ADD, 78, false},     {VK_SUBTRACT, 74, false},
    {VK_DIVIDE, 0x35, true},  {VK_NUMLOCK, 69, false}, {VK_SCROLL, 70, false},
};
constexpr char letter_rows[] = "QWERTYUIOP\0\0\0\0ASDFGHJKL\0\0\0\0\0ZXCVBNM";
constexpr std::int32_t first_letter_scan = 16;

struct Scan {
    std::int32_t code = 0;
    bool extended = false;
};

Scan usual_scan(std::int32_t key) {
    if (key >= '1' && key <= '9') return {key - '1' + 2, false};
    if (key == '0') return {11, false};
    if (key >= VK_F1 && key < VK_F1 + 10) return {59 + key - VK_F1, false};
    if (key == VK_F1 + 10 || key == VK_F12) return {87 + key - (VK_F1 + 10), false};
    for (const UsualKey& k : usual_keys)
        if (k.key == key) return {k.scan, k.extended};
    if (key < 'A' || key > 'Z') return {};
    for (std::size_t i = 0; i < sizeof letter_rows - 1; ++i)
        if (letter_rows[i] == key) return {first_letter_scan + static_cast<std::int32_t>(i), false};
    return {};
}

Scan scan_of(const Event& event) {
    if (event.scan <= 0) return usual_scan(event.key);
    if (event.scan <= 88) return {event.scan, false};
    for (const ExtendedKey& k : extended_keys)
        if (k.from == event.scan) return {k.scan, true};
    return {event.scan & 0xFF, true};
}

LPARAM key_word(const Scan& scan, bool alt, bool before, bool up) {
    const std::uint32_t bits = 1u | static_cast<std::uint32_t>(scan.code & 0xFF) << 16 |
                               (scan.extended ? 1u << 24 : 0) | (alt ? 1u << 29 : 0) |
                               (before ? 1u << 30 : 0) | (up ? 1u << 31 : 0);
    return static_cast<LPARAM>(bits);
}

void note_state(const Event& event, bool down) {
    Input& in = state().input;
    in.modifiers = event.modifiers;
    const auto set = [&](std::int32_t key, bool on) {
        in.keys[key] = static_cast<std::uint8_t>((in.keys[key] & 1) | (on ? 0x80 : 0));
    };
    const bool altgr = (event.modifiers & mod_altgr) != 0;
    set(VK_SHIFT, (event.modifiers & mod_shift) != 0);
    // What AltGr stands for on some boards must not look like a shortcut.
    set(VK_CONTROL, (event.modifiers & mod_control) != 0 && !altgr);
    set(VK_MENU, (event.modifiers & mod_alt) != 0 && !altgr);
    if (event.key > 0 && event.key < 256 && event.key != VK_SHIFT && event.key != VK_CONTROL &&
        event.key != VK_MENU) {
        std::uint8_t& key = in.keys[event.key];
        if (down && (key & 0x80) == 0) key ^= 1;
        key = static_cast<std::uint8_t>((key & 1) | (down ? 0x80 : 0));
    }
    in.keys[VK_CAPITAL] = static_cast<std::uint8_t>((in.keys[VK_CAPITAL] & 0x80) |
                                                    ((event.modifiers & mod_caps) != 0 ? 1 : 0));
    in.keys[VK_NUMLOCK] = static_cast<std::uint8_t>((in.keys[VK_NUMLOCK] & 0x80) |
                                                    ((event.modifiers & mod_num) != 0 ? 1 : 0));
}

// A character goes to its window as a byte of the code page, or where that lacks it by number.
void post_character(HWND hwnd, char32_t code, LPARAM lparam, bool system) {
    std::string utf8;
    append_utf8(utf8, code);
    const std::string page = page_from_utf8(utf8);
    const bool in_page = page.size() == 1 && (page[0] != '?' || code == U'?');
    MSG m{hwnd,
          system ? UINT{WM_SYSCHAR} : UINT{WM_CHAR},
          static_cast<unsigned char>(in_page ? page[0] : '?'),
          lparam,
          GetTickCount(),
          state().input.pointer};
    if (!in_page && !system) {
        m.message = WM_UNICHAR;
        m.wParam = code;
    }
    state().queue.posted.push_back(m);
}

// For keys that nobody gave a text: those that a program made itself.
char32_t plain_character(std::int32_t key) {
    const Input& in = state().input;
    const bool shift = (in.keys[VK_SHIFT] & 0x80) != 0;
    if (key == VK_SPACE || (key >= '0' && key <= '9')) return static_cast<char32_t>(key);
    if (key >= 'A' && key <= 'Z') {
        const bool upper = shift != ((in.keys[VK_CAPITAL] & 1) != 0);
        return static_cast<char32_t>(upper ? key : key + 32);
    }
    if (key >= VK_NUMPAD0 && key < VK_NUMPAD0 + 10)
        return static_cast<char32_t>('0' + key - VK_NUMPAD0);
    switch (key) {
        case VK_MULTIPLY:
            return U'*';
        case VK_ADD:
            return U'+';
        case VK_SUBTRACT:
            return U'-';
        case VK_DECIMAL:
            return U'.';
        case VK_DIVIDE:
            return U'/';
        default:
            return 0;
    }
}

// The newest first: keys of one millisecond look alike.
const InputMessage* recent_key(const MSG& m) {
    const Input& in = state().input;
    const std::size_t count = std::size(in.recent_keys);
    for (std::size_t i = 1; i <= count; ++i) {
        const InputMessage& k = in.recent_keys[(in.next_recent - i) % count];
        if (k.msg.message == m.message && k.msg.wParam == m.wParam && k.msg.lParam == m.lParam &&
            k.msg.time == m.time)
            return &k;
    }
    return nullptr;
}

}  // namespace

void take_key_event(const Event& event) {
    Input& in = state().input;
    if (event.kind == Event::Kind::text) {
        const HWND hwnd = in.focus != HWND{} ? in.focus : in.active;
        for (std::size_t at = 0; hwnd != HWND{} && at < event.text.size();)
            post_character(hwnd, next_code_point(event.text, at), 1, false);
        return;
    }
    const bool down = event.kind == Event::Kind::key_down;
    if (event.key <= 0 || event.key > 255) {
        // A key that has no number here still types.
        if (down && !event.text.empty()) {
            Event text = event;
            text.kind = Event::Kind::text;
            take_key_event(text);
        }
        return;
    }
    const bool before = (in.keys[event.key] & 0x80) != 0;
    note_state(event, down);
    const bool altgr = (event.modifiers & mod_altgr) != 0;
    const bool alt = (event.modifiers & mod_alt) != 0 && !altgr;
    const bool control = (event.modifiers & mod_control) != 0;
    const bool is_alt = event.key == VK_MENU && !altgr;
    const bool is_f10 = event.key == VK_F10 && !control;
    bool system = (alt && !control) || is_f10;
    if (down) {
        in.alt_alone = is_alt && !control && (in.alt_alone || !event.repeat);
        in.f10_alone = is_f10 && !alt && (event.modifiers & mod_shift) == 0;
        system = system || (is_alt && !control);
    } else {
        // ALT that worked with another key is an ordinary key when it goes up.
        system = system || (is_alt && in.alt_alone);
    }
    const UINT message = down ? (system ? UINT{WM_SYSKEYDOWN} : UINT{WM_KEYDOWN})
                              : (system ? UINT{WM_SYSKEYUP} : UINT{WM_KEYUP});
    queue_input(HWND{}, message, static_cast<WPARAM>(event.key),
                key_word(scan_of(event), alt, down ? before || event.repeat : true, !down),
                down ? event.text : std::string_view());
}

bool TranslateMessage(const MSG& m) {
    if (m.message != WM_KEYDOWN && m.message != WM_SYSKEYDOWN)
        return m.message == WM_KEYUP || m.message == WM_SYSKEYUP;
    const Input& in = state().input;
    const auto key = static_cast<std::int32_t>(m.wParam);
    const bool system = m.message == WM_SYSKEYDOWN;
    if (const std::string control = control_text(key, in.modifiers); !control.empty()) {
        post_character(m.hwnd, static_cast<unsigned char>(control[0]), m.lParam, system);
        return true;
    }
    const InputMessage* const made = recent_key(m);
    if (made == nullptr || (made->text.empty() && system)) {
        const bool with_control = (in.keys[VK_CONTROL] & 0x80) != 0;
        const char32_t c = with_control ? 0 : plain_character(key);
        if (c != 0) post_character(m.hwnd, c, m.lParam, system);
        return true;
    }
    const std::string text = made->text;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = next_code_point(text, at);
        if (c >= 32 && c != 127) post_character(m.hwnd, c, m.lParam, system);
    }
    return true;
}

std::int16_t GetKeyState(std::int32_t key) {
    if (key < 0 || key > 255) return 0;
    const std::uint8_t k = state().input.keys[key];
    return static_cast<std::int16_t>((k & 0x80 ? 0xFF80 : 0) | (k & 1));
}

std::int16_t GetAsyncKeyState(std::int32_t key) {
    if (key < 0 || key > 255) return 0;
    return static_cast<std::int16_t>((state().input.keys[key] & 0x80) != 0 ? 0x8000 : 0);
}

}  // namespace tarn::platform
