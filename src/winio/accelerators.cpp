// Keys: their names, the marks in texts, and what a pressed one does.
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/base/constants.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/menus.h"
#include "winio/procedures.h"
#include "winio/report.h"

namespace tarn::winio {

using namespace platform;

namespace {

struct KeyName {
    const char* name;
    std::int32_t code;
};
constexpr KeyName key_names[] = {
    {"enter", 0x0D}, {"esc", 0x1B},    {"tab", 0x09},
    {"home", 0x24},  {"end", 0x23},    {"del", 0x2E},
    {"ins", 0x2D},   {"pgup", 0x21},   {"pgdn", 0x22},
    {"left", 0x25},  {"up", 0x26},     {"right", 0x27},
    {"down", 0x28},  {"f1", 0x70},     {"f2", 0x71},
    {"f3", 0x72},    {"f4", 0x73},     {"f5", 0x74},
    {"f6", 0x75},    {"f7", 0x76},     {"f8", 0x77},
    {"f9", 0x78},    {"f10", 0x79},    {"f11", 0x7A},
    {"f12", 0x7B},   {"backspace", 8}, {"keypad_centre", 0x0C},
    {"space", 0x20},
};

struct Prefix {
    const char* name;
    std::int32_t flag;
};
constexpr Prefix prefixes[] = {{"alt", key_alt}, {"ctrl", key_control}, {"shift", key_shift}};

std::int32_t take_prefixes(const char*& name) {
    std::int32_t flags = 0;
    for (bool found = true; found;) {
        found = false;
        for (const Prefix& prefix : prefixes) {
            const std::size_t length = std::strlen(prefix.name);
            if (std::strncmp(name, prefix.name, length) != 0) continue;
            const char mark = name[length];
            if (mark != '+' && mark != '-' && mark != '_') continue;
            flags |= prefix.flag;
            name += length + 1;
            found = true;
        }
    }
    return flags;
}

// With Ctrl these letters are the keys whose characters they are.
std::int32_t single(std::int32_t letter, std::int32_t flags) {
    const std::int32_t code = letter | flags;
    switch (code) {
        case 0x24D:
            return 0x20D;
        case 0x24C:
            return 0x20C;
        case 0x249:
            return 0x209;
        case 0x248:
            return 0x208;
        default:
            return code;
    }
}

std::string folded(const char* text, int (*fold)(int)) {
    std::string out = text;
    for (char& c : out) c = static_cast<char>(fold(static_cast<unsigned char>(c)));
    return out;
}

accelerator* find_key(fancy_window* window, std::int32_t key) {
    accelerator* entry = window->accelerators;
    while (entry != nullptr && entry->key != key) entry = entry->next;
    return entry;
}

// The keys that type signs: with Ctrl held they type nothing, and are known by the key itself. A
// sign that needs Shift may be had with it or without, as Ctrl++ on a key that says "=".
struct SignKey {
    char plain, shifted;
    std::int32_t key;
};
constexpr SignKey sign_keys[] = {
    {'=', '+', 0xBB},  {'-', '_', 0xBD},  {',', '<', 0xBC}, {'.', '>', 0xBE},      {'/', '?', 0xBF},
    {';', ':', 0xBA},  {'`', '~', 0xC0},  {'`', '@', 0xC0}, {'[', '{', 0xDB},      {']', '}', 0xDD},
    {'\\', '|', 0xDC}, {'\'', '"', 0xDE}, {0, '+', VK_ADD}, {0, '-', VK_SUBTRACT},
};

// The word of Ctrl+Tab isn't that of Ctrl+I.
bool matches(std::int32_t stored, std::int32_t pressed) {
    if (stored == pressed) return true;
    if (pressed == key_control_tab) return stored == (std::int32_t{VK_TAB} | key_control);
    if ((stored & key_control) == 0 || (pressed & key_control) == 0) return false;
    const std::int32_t flags = stored & ~0xFF, sign = stored & 0xFF;
    for (const SignKey& each : sign_keys) {
        if (sign == each.plain && pressed == (flags | each.key)) return true;
        if (sign == each.shifted && (pressed | key_shift) == (flags | key_shift | each.key))
            return true;
    }
    return false;
}

void remove_key(fancy_window* window, std::int32_t key) {
    for (accelerator** link = &window->accelerators; *link != nullptr;) {
        if ((*link)->key != key || (*link)->message != msg_accelerator) {
            link = &(*link)->next;
            continue;
        }
        accelerator* gone = *link;
        *link = gone->next;
        std::free(gone);
    }
}

void push_key(fancy_window* window, std::uint32_t message, std::int32_t key, word lparam,
              word wparam) {
    auto* entry = static_cast<accelerator*>(std::calloc(1, sizeof(accelerator)));
    if (entry == nullptr) heap_exhausted();
    *entry = {window->accelerators, wparam, lparam, message, key};
    window->accelerators = entry;
}

void refuse_mnemonic(const char* text) {
    quillpan_error(
        "The accelerator/continuation character, '&' is\n"
        "followed by an illegal character in string - '%s'",
        text);
}

word as_word(call_back callback) {
    return reinterpret_cast<word>(callback);
}

}  // namespace

std::int32_t char_from_name(const char* text, bool report) {
    const std::string lower = folded(text != nullptr ? text : "", std::tolower);
    const char* name = lower.c_str();
    const std::int32_t flags = take_prefixes(name);
    if (name[0] != 0 && name[1] == 0)
        return single(std::toupper(static_cast<unsigned char>(name[0])), flags);
    for (std::size_t i = std::size(key_names); i-- > 0;)
        if (std::strcmp(name, key_names[i].name) == 0) return key_names[i].code | flags;
    if (report)
        quillpan_error("?Invalid accelerator key [%s]",
                       folded(lower.c_str(), std::toupper).c_str());
    return 0;
}

void new_accelerator(std::uint32_t message, std::int32_t key, word lparam, word wparam) {
    if (records().passive || records().check_mode) return;
    push_key(current_window(), message, key, lparam, wparam);
}

std::int32_t seek_accelerators(const char* text, fancy_window* window, bool fold, bool peek) {
    std::int32_t result = 0;
    for (const char* at = std::strchr(text, '&'); at != nullptr; at = std::strchr(at, '&')) {
        ++at;
        if (*at == '&') {
            ++at;
            continue;
        }
        const auto character = static_cast<unsigned char>(*at);
        if (!peek && character < 0x21) {
            refuse_mnemonic(text);
            return result;
        }
        result = std::toupper(character);
        if (peek || records().passive || records().check_mode) continue;
        push_key(window, WM_SYSCHAR, (fold ? result : character) | key_alt, 0, character);
    }
    return result;
}

// The mnemonics of a menu bar are its own matter.
void check_mnemonics(const char* text) {
    for (const char* at = std::strchr(text, '&'); at != nullptr; at = std::strchr(at, '&')) {
        ++at;
        if (*at == '&')
            ++at;
        else if (static_cast<unsigned char>(*at) < 0x21)
            return refuse_mnemonic(text);
    }
}

// A character message keeps its form: the window finds the control of a mnemonic.
bool apply_accelerator(fancy_window* window, MSG& message) {
    if (window->accelerators == nullptr) return false;
    const std::int32_t key = key_word_of(message);
    if (key == 0) return false;
    for (const accelerator* entry = window->accelerators; entry != nullptr; entry = entry->next) {
        if (!matches(entry->key, key)) continue;
        if (entry->message == WM_SYSCHAR) return message.message == WM_SYSCHAR;
        message.hwnd = window->hwnd;
        message.message = entry->message;
        message.wParam = static_cast<WPARAM>(entry->wparam);
        message.lParam = entry->lparam;
        return true;
    }
    return false;
}

void add_menu_key(fancy_window* window, std::int32_t key, std::int32_t id) {
    push_key(window, WM_COMMAND, key, 0, id);
}

bool add_accelerator(HWND handle, std::int32_t key, call_back callback) {
    fancy_window* window = our_window(handle);
    if (window == nullptr) {
        quillpan_error("Invalid window");
        return false;
    }
    if (key == 0) return false;
    remove_key(window, key);
    if (callback != nullptr) push_key(window, msg_accelerator, key, as_word(callback), key);
    return true;
}

bool add_accelerator(HWND handle, const char* name, call_back callback) {
    if (our_window(handle) == nullptr) {
        quillpan_error("Invalid window");
        return false;
    }
    return add_accelerator(handle, char_from_name(name, true), callback);
}

bool remove_accelerator(HWND handle, const char* name) {
    return add_accelerator(handle, name, nullptr);
}

bool send_accelerator(const char* name) {
    fancy_window* window = current_window();
    const std::int32_t key = char_from_name(name, true);
    const accelerator* entry = window != nullptr && key != 0 ? find_key(window, key) : nullptr;
    if (entry == nullptr) return false;
    const HWND handle = window->hwnd;
    call_back callback = nullptr;
    if (entry->message == msg_accelerator) {
        callback = reinterpret_cast<call_back>(entry->lparam);
    } else {
        for (const menu_info* item = window->menu_items; item != nullptr; item = item->next)
            if (item->id == entry->wparam) callback = item->callback;
    }
    if (callback == nullptr) return false;
    act_on_result(handle, call_function(callback, "SEND_ACCELERATOR", handle, false, true));
    return true;
}

void handle_ac(code_call& call) {
    const char* name = get_standard_string(call, "accelerator key");
    const call_back callback =
        get_callback_function(call.arguments, "should be an accelerator call-back function");
    const std::int32_t key = char_from_name(name, true);
    if (key != 0) new_accelerator(msg_accelerator, key, as_word(callback), key);
}

void handle_es(code_call&) {
    const std::int32_t key = char_from_name("ESC", false);
    new_accelerator(msg_accelerator, key, as_word(action_exit), key);
}

void handle_av(code_call&) {
    const std::int32_t key = char_from_name("ALT+V", false);
    new_accelerator(msg_accelerator, key, as_word(action_version), key);
}

}  // namespace tarn::winio
