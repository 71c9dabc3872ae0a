// Enhanced menus: the whole menu arrives as one text, for instance from a file, and one call-back
// serves all its items, which it tells apart by their paths (`File~Open`).
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/user/menus.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/menus.h"
#include "winio/options.h"
#include "winio/report.h"
#include "winio/text_layer.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t popup_base = 2000, most_items = 2000, most_levels = 1000;
constexpr std::size_t longest_text = 999;

struct Decoder {
    const char* at;
    std::int32_t base;  // 0, or 2000 in a popup
    std::int32_t count = 0;
    std::vector<HMENU> levels;
    std::vector<std::string> paths, helps;
    std::string path;
    UINT flags = 0;
    std::string help;
    bool failed = false;
};

bool is_space(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

void skip_space(Decoder& d) {
    while (is_space(*d.at)) ++d.at;
}

bool take(Decoder& d, const char* token) {
    const std::size_t length = std::strlen(token);
    if (std::strncmp(d.at, token, length) != 0) return false;
    d.at += length;
    return true;
}

void fail(Decoder& d, const char* text) {
    d.failed = true;
    quillpan_error("%s", text);
}

// The text between brackets; the cursor stands on the first.
bool bracketed(Decoder& d, std::string& text, const char* missing, const char* unclosed) {
    if (*d.at != '[') {
        fail(d, missing);
        return false;
    }
    const char* end = std::strchr(d.at, ']');
    if (end == nullptr) {
        fail(d, unclosed);
        return false;
    }
    text.assign(d.at + 1, end);
    text.resize(std::min(text.size(), longest_text));
    d.at = end + 1;
    return true;
}

// Options of the next item; false when something else stands there.
bool take_option(Decoder& d) {
    if (take(d, "-ch"))
        d.flags |= MF_CHECKED;
    else if (take(d, "-rc"))
        d.flags |= MF_CHECKED | MFT_RADIOCHECK;
    else if (take(d, "-gr"))
        d.flags |= MF_GRAYED;
    else if (take(d, "-he"))
        return bracketed(d, d.help, "-he must be folowed by '[' in enhanced menu definition",
                         "Closing ']' missing on -he in enhanced menu definition");
    else
        return false;
    return true;
}

std::int32_t record(Decoder& d, const std::string& path) {
    d.paths.push_back(path.substr(0, longest_text));
    d.helps.push_back(d.help);
    return d.base + ++d.count;
}

void finish_item(Decoder& d) {
    d.flags = 0;
    d.help.clear();
}

void add_bitmap(Decoder& d) {
    std::string name;
    if (!bracketed(d, name, "Missing '[' after -bm in enhanced menu definition",
                   "Brackets not paired in enhanced menu definition"))
        return;
    const std::string path = d.path.empty() ? name : d.path + "~" + name;
    const std::int32_t id = record(d, path);
    const HBITMAP picture = load_resource(name.c_str());
    if (picture != 0)
        AppendMenuA(d.levels.back(), d.flags | MF_BITMAP, static_cast<std::uintptr_t>(id),
                    reinterpret_cast<const char*>(static_cast<word>(picture)));
    else  // its name says more than an empty item
        AppendMenuAW(d.levels.back(), d.flags, static_cast<std::uintptr_t>(id), name.c_str());
    finish_item(d);
}

std::string take_caption(Decoder& d) {
    std::string caption;
    while (*d.at != 0 && std::strchr(",[]\n\r", *d.at) == nullptr) caption += *d.at++;
    while (!caption.empty() && is_space(caption.back())) caption.pop_back();
    return caption;
}

void add_string(Decoder& d) {
    const std::string caption = take_caption(d);
    const std::string path = d.path.empty() ? caption : d.path + "~" + caption;
    const std::int32_t id = record(d, path);
    skip_space(d);
    if (*d.at != '[') {
        AppendMenuAW(d.levels.back(), d.flags, static_cast<std::uintptr_t>(id), caption.c_str());
        return finish_item(d);
    }
    if (d.levels.size() >= most_levels) return fail(d, "Syntax error in enhanced menu");
    const HMENU sub = CreatePopupMenu();
    AppendMenuAW(d.levels.back(), d.flags | MF_POPUP, static_cast<std::uintptr_t>(sub),
                 caption.c_str());
    finish_item(d);
    ++d.at;
    d.levels.push_back(sub);
    d.path = path;
}

void leave_level(Decoder& d) {
    d.levels.pop_back();
    const std::size_t cut = d.path.rfind('~');
    d.path.resize(cut == std::string::npos ? 0 : cut);
}

void read_item(Decoder& d) {
    if (d.count >= most_items) return fail(d, "Syntax error in enhanced menu");
    if (take(d, "-se")) {
        record(d, d.path);
        AppendMenuAW(d.levels.back(), MF_SEPARATOR, 0, nullptr);
        return finish_item(d);
    }
    if (take(d, "-bm")) return add_bitmap(d);
    // "-bs" has no meaning of its own and shows as text.
    if (*d.at == '-' && std::strncmp(d.at, "-bs", 3) != 0)
        return fail(d, "Unrecognised option in enhanced menu definition");
    add_string(d);
}

bool decode(Decoder& d, HMENU into) {
    skip_space(d);
    if (*d.at != '[') {
        fail(d, "Syntax error in enhanced menu");
        return false;
    }
    ++d.at;
    d.levels.push_back(into);
    bool expect_item = true;
    while (!d.failed && !d.levels.empty()) {
        skip_space(d);
        if (*d.at == 0) {
            fail(d, "Brackets not paired in enhanced menu definition");
        } else if (*d.at == ']') {
            ++d.at;
            leave_level(d);
            expect_item = false;
        } else if (*d.at == ',') {
            if (expect_item) fail(d, "Comma found where not expected in enhanced menu definition");
            ++d.at;
            expect_item = true;
        } else if (!expect_item) {
            fail(d, "Syntax error in enhanced menu");
        } else if (!take_option(d)) {
            const std::size_t depth = d.levels.size();
            if (!d.failed) read_item(d);
            expect_item = d.levels.size() > depth;
        }
    }
    skip_space(d);
    if (!d.failed && *d.at != 0) fail(d, "Enhanced menu definition does not end correctly");
    return !d.failed;
}

// A table indexed from the item number, with a null behind the last.
char** table_of(const std::vector<std::string>& texts) {
    std::size_t bytes = 0;
    for (const std::string& text : texts) bytes += text.size() + 1;
    auto** table = static_cast<char**>(std::malloc((texts.size() + 1) * sizeof(char*) + bytes));
    if (table == nullptr) heap_exhausted();
    char* to = reinterpret_cast<char*>(table + texts.size() + 1);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        table[i] = to;
        std::memcpy(to, texts[i].c_str(), texts[i].size() + 1);
        to += texts[i].size() + 1;
    }
    table[texts.size()] = nullptr;
    return table;
}

void keep_tables(fancy_window* window, const Decoder& d, bool popup) {
    char**& paths = popup ? window->popup_paths : window->enhanced_paths;
    char**& helps = popup ? window->popup_help : window->enhanced_help;
    std::free(paths);
    std::free(helps);
    paths = table_of(d.paths);
    helps = table_of(d.helps);
}

bool fill(fancy_window* window, const char* text, HMENU menu, bool popup) {
    Decoder d{text != nullptr ? text : "", popup ? popup_base : 0};
    if (!decode(d, menu)) return false;
    keep_tables(window, d, popup);
    return true;
}

fancy_window* window_for(std::int32_t handle) {
    return handle == 0 ? current_window() : fancy_window_from_handle(HWND{handle});
}

}  // namespace

bool decode_enhanced_menu(fancy_window* window, const char* text, bool popup) {
    HMENU& menu = popup ? window->enhanced_popup : window->enhanced_menu;
    const HMENU fresh = popup ? CreatePopupMenu() : CreateMenu();
    if (!fill(window, text, fresh, popup)) {
        DestroyMenu(fresh);
        return false;
    }
    menu = fresh;
    return true;
}

void read_enhanced_menu(code_call& call, bool popup) {
    call.grave = false;
    fancy_window* window = current_window();
    if (!popup && window->menu_options != nullptr)
        quillpan_error("A window cannot have a %%`MN menu with %%EM menus");
    if (!popup && window->menu != 0)
        quillpan_error("A window cannot have a menu and an enhanced menu");
    const char* text = user_string(call.arguments);
    const call_back callback =
        get_callback_function(call.arguments, "should be an enhanced menu call-back function");
    if (records().passive || records().check_mode) return;
    decode_enhanced_menu(window, text, popup);
    if (popup) {
        window->popup_callback = callback;
    } else {
        window->enhanced_callback = callback;
        window->menu_height = GetSystemMetrics(SM_CYMENU);
    }
}

void replace_enhanced_menu(std::int32_t handle, const char* text) {
    fancy_window* window = window_for(handle);
    if (window == nullptr || window->enhanced_menu == 0) {
        quillpan_error("This window was not created with an enhanced menu");
        return;
    }
    const HMENU old = window->enhanced_menu;
    window->menu_height = 2 * GetSystemMetrics(SM_CYMENU);
    if (!decode_enhanced_menu(window, text, false)) {
        window->enhanced_menu = old;
        return;
    }
    SetMenu(window->hwnd, window->enhanced_menu);
    DestroyMenu(old);
}

void replace_enhanced_popup_menu(std::int32_t handle, const char* text) {
    fancy_window* window = window_for(handle);
    if (window == nullptr || window->enhanced_popup == 0) {
        quillpan_error("This window was not created with an enhanced popup menu");
        return;
    }
    while (GetMenuItemCount(window->enhanced_popup) > 0)
        DeleteMenu(window->enhanced_popup, 0, MF_BYPOSITION);
    fill(window, text, window->enhanced_popup, true);
}

// The texts of an enhanced item; null when the number isn't one.
const char* enhanced_text(char* const* table, std::int32_t number) {
    if (table == nullptr || number < 1) return nullptr;
    for (std::int32_t i = 0; i < number; ++i)
        if (table[i] == nullptr) return nullptr;
    return table[number - 1];
}

}  // namespace tarn::winio
