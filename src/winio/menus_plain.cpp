// Menus written inside the format: `%mn[File[Open,Exit],Help]`, with one call-back argument for
// each leaf, in the order in which the items stand.
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/user/menus.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/menus.h"
#include "winio/options.h"
#include "winio/report.h"
#include "winio/text_layer.h"

namespace tarn::winio {

using namespace platform;

namespace {

enum : std::int32_t {
    kind_bar = 0,
    kind_system = 1,
    kind_nested = 2,
    kind_popup = 3,
    kind_more = 4
};

constexpr std::int32_t level_start = 16, character = 4, beyond_text = 4;
constexpr int deepest = 100;

// One code's list being read.
struct Reading {
    code_call& call;
    fancy_window* window;
    bool build;     // false in a passive pass: arguments are read, nothing is made
    bool in_popup;  // %pm, %cm: no mnemonics of the window, no width
    int depth = 0;
    std::int32_t leaves = 0;  // separators too
};

struct Item {
    std::string caption;
    std::int32_t *grey = nullptr, *check = nullptr;
    call_back state = nullptr;
    call_back callback = nullptr;
    bool grey_mark = false, check_mark = false, state_mark = false;
    std::int32_t resource_id = 0;
};

char at(const Reading& reading) {
    return *reading.call.format;
}

void skip_blanks(Reading& reading) {
    while (at(reading) == ' ') ++reading.call.format;
}

// In a window from a dialog resource the resource's ID of an item comes before its first argument.
void take_resource_id(Reading& reading, Item& item) {
    if (reading.window == nullptr || reading.window->dialog_resource <= 0) return;
    if (item.resource_id == 0) item.resource_id = user_integer(reading.call.arguments);
}

void read_prefixes(Reading& reading, Item& item, bool top_of_bar) {
    for (;; ++reading.call.format) {
        switch (at(reading)) {
            case ' ':
                break;
            case '~':
                take_resource_id(reading, item);
                item.grey = user_int_pointer(reading.call.arguments);
                item.grey_mark = true;
                break;
            case '#':
                if (top_of_bar) quillpan_error("Attempt to check a menu item in the menu bar");
                take_resource_id(reading, item);
                item.check = user_int_pointer(reading.call.arguments);
                item.check_mark = true;
                break;
            case '^':
                take_resource_id(reading, item);
                item.state = get_callback_function(reading.call.arguments,
                                                   "should be a menu state function");
                item.state_mark = true;
                break;
            default:
                if (item.state_mark && (item.grey_mark || item.check_mark))
                    quillpan_error(
                        "?Menu item modifiers '~' and '#' are redundant when used with '^'.");
                return;
        }
    }
}

void read_caption(Reading& reading, Item& item) {
    for (char c; (c = at(reading)) != 0 && c != '[' && c != ']' && c != ',';) {
        item.caption += c;
        reading.call.format += c == '%' && reading.call.format[1] == '%' ? 2 : 1;
    }
}

// The first of `^` or the control character 0x14, otherwise the pilcrow of the code page, parts the
// caption from the shortcut that is shown at the right.
void part_shortcut(std::string& caption) {
    std::size_t mark = caption.find_first_of("^\x14");
    if (mark == std::string::npos && !utf8_now()) mark = caption.find('\xB6');
    if (mark != std::string::npos) caption[mark] = '\t';
}

char* kept(const std::string& text) {
    return window_text_copy(text.c_str(), text.size());
}

menu_info* new_item(Reading& reading, HMENU menu, const Item& item, std::int32_t kind) {
    auto* info = static_cast<menu_info*>(std::calloc(1, sizeof(menu_info)));
    if (info == nullptr) heap_exhausted();
    info->window = reading.window;
    info->menu = menu;
    info->kind = kind;
    info->position = GetMenuItemCount(menu);
    info->grey = item.grey;
    info->check = item.check;
    info->callback = item.callback;
    info->grey_test =
        item.state != nullptr ? item.state : GetGreyControlCheckFunction(item.callback);
    if (item.state_mark) info->flags |= 8;
    info->grey_state = -1;
    info->resource_id = item.resource_id;
    info->text = kept(item.caption);
    info->next = reading.window->menu_items;
    reading.window->menu_items = info;
    return info;
}

// Mnemonics belong to the window's bar, shortcuts to the leaves behind it.
void note_keys(Reading& reading, const Item& item, const menu_info& info, bool top_of_bar) {
    if (reading.in_popup) return;
    if (top_of_bar) {
        check_mnemonics(item.caption.c_str());
        return;
    }
    const std::size_t tab = item.caption.find('\t');
    if (tab == std::string::npos || info.id == 0) return;
    const std::int32_t key = char_from_name(item.caption.c_str() + tab + 1, false);
    if (key != 0) new_accelerator(WM_COMMAND, key, 0, info.id);
}

HMENU read_level(Reading& reading, HMENU into, std::int32_t kind, bool top_of_bar);

void add_leaf(Reading& reading, HMENU menu, Item& item, std::int32_t kind, bool top_of_bar) {
    const bool separator =
        item.caption.find_first_not_of(' ', 1) == std::string::npos && item.caption[0] == '|';
    if (separator && top_of_bar) quillpan_error("Menu separator not permitted at the top level ");
    if (!separator) {
        take_resource_id(reading, item);
        item.callback =
            get_callback_function(reading.call.arguments, "should be a menu call-back function");
    }
    ++reading.leaves;
    if (!reading.build) return;
    menu_info* info = new_item(reading, menu, item, kind);
    if (separator) {
        AppendMenuAW(menu, MF_SEPARATOR, 0, nullptr);
        return;
    }
    info->id = get_id();
    AppendMenuAW(menu, MF_STRING, static_cast<std::uintptr_t>(info->id), item.caption.c_str());
    note_keys(reading, item, *info, top_of_bar);
}

void add_submenu(Reading& reading, HMENU menu, Item& item, std::int32_t kind, bool top_of_bar) {
    if (!reading.build) {
        read_level(reading, HMENU{}, kind_nested, false);
        return;
    }
    menu_info* info = new_item(reading, menu, item, kind);
    const HMENU sub = CreatePopupMenu();
    info->submenu = sub;
    AppendMenuAW(menu, MF_POPUP, static_cast<std::uintptr_t>(sub), item.caption.c_str());
    note_keys(reading, item, *info, top_of_bar);
    read_level(reading, sub, kind_nested, false);
}

// An empty caption with a list behind it, first in its list, goes on with the last sub-menu.
void continue_submenu(Reading& reading, HMENU menu) {
    const HMENU sub = reading.build ? GetSubMenu(menu, GetMenuItemCount(menu) - 1) : HMENU{};
    if (reading.build && sub == 0) quillpan_error("Invalid menu continuation ");
    read_level(reading, sub, kind_more, false);
}

void read_item(Reading& reading, HMENU menu, std::int32_t kind, bool top_of_bar, bool first,
               std::int32_t& width) {
    Item item;
    read_prefixes(reading, item, top_of_bar);
    read_caption(reading, item);
    if (item.caption.empty()) {
        if (first && at(reading) == '[') return continue_submenu(reading, menu);
        quillpan_error("Invalid menu - missing name ");
    }
    part_shortcut(item.caption);
    const auto length = static_cast<std::int32_t>(item.caption.size());
    width = std::max(width, (length + beyond_text) * character);
    if (at(reading) == '[')
        add_submenu(reading, menu, item, kind, top_of_bar);
    else
        add_leaf(reading, menu, item, kind, top_of_bar);
}

void note_width(Reading& reading, std::int32_t width, bool top_of_bar) {
    if (!reading.build || reading.in_popup) return;
    builder().max_x = std::max(builder().max_x, width);
    if (top_of_bar) reading.window->menu_width = width;
}

HMENU read_level(Reading& reading, HMENU into, std::int32_t kind, bool top_of_bar) {
    if (at(reading) != '[' || ++reading.depth > deepest) {
        quillpan_error("Invalid menu format ");
        return into;
    }
    ++reading.call.format;
    if (at(reading) == '*') {
        ++reading.call.format;
        const handle_variable handle = user_handle_variable(reading.call.arguments);
        if (reading.build) handle.store(into);
    }
    std::int32_t width = top_of_bar && reading.window != nullptr ? reading.window->menu_width : 0;
    width = std::max(width, level_start);
    bool first = true;
    while (at(reading) != ']') {
        if (at(reading) == 0) {
            quillpan_error("Invalid menu format ");
            return into;
        }
        read_item(reading, into, kind, top_of_bar, first, width);
        first = false;
        skip_blanks(reading);
        if (at(reading) == ',') {
            ++reading.call.format;
        } else if (at(reading) != ']') {
            quillpan_error("Invalid menu format ");
            return into;
        }
    }
    ++reading.call.format;
    --reading.depth;
    note_width(reading, width, top_of_bar);
    return into;
}

HMENU target_of(fancy_window* window, std::int32_t kind, HMENU existing) {
    if (existing != 0) return existing;
    (void)window;
    return kind == kind_popup ? CreatePopupMenu() : CreateMenu();
}

// `leaves` receives how many items can have help.
HMENU read_into(code_call& call, std::int32_t kind, HMENU existing, std::int32_t& leaves) {
    fancy_window* window = current_window();
    Reading reading{call, window, !records().passive && !records().check_mode, kind == kind_popup};
    const HMENU menu = reading.build ? target_of(window, kind, existing) : HMENU{};
    read_level(reading, menu, kind, kind == kind_bar);
    leaves = reading.leaves;
    return menu;
}

HMENU read_into(code_call& call, std::int32_t kind, HMENU existing) {
    std::int32_t leaves = 0;
    return read_into(call, kind, existing, leaves);
}

// The list of a menu from a dialog resource: one item with the code's modifiers and a text
// argument.
bool from_resource(const fancy_window* window) {
    return window != nullptr && window->dialog_resource > 0;
}

HMENU read_resource_menu(code_call& call, std::int32_t kind, HMENU existing) {
    std::string list = "[";
    if (call.tilde) list += '~';
    if (call.grave) list += '#';
    list += "@]";
    call.tilde = call.grave = false;
    const char* cursor = list.c_str();
    code_call inner{cursor, call.arguments, -1,    -1,    call.code, false,
                    false,  false,          false, false, false,     false};
    return read_into(inner, kind, existing);
}

// Null: there is none, and that was said.
char* menu_help(code_call& call) {
    if (*call.format == '[' || *call.format == '@') return get_standard_string(call, "menu help");
    quillpan_error("Missing menu help string");
    return nullptr;
}

// Where no items are made their texts are read all the same.
void help_of(code_call& call, menu_info* old_head, std::int32_t leaves) {
    if (!call.question) return;
    call.question = false;
    if (records().passive || records().check_mode) {
        while (leaves-- > 0) menu_help(call);
        return;
    }
    get_menu_help(old_head, current_window()->menu_items, call);
}

void read_help(menu_info* from, const menu_info* until, code_call& call) {
    if (from == nullptr || from == until) return;
    read_help(from->next, until, call);  // oldest first
    if (from->submenu != 0) return;
    from->help = menu_help(call);
    if (from->help == nullptr) return;
    std::int32_t columns = 0, lines = 0;
    text_size(from->help, columns, lines);
    fancy_window* window = current_window();
    window->help_width = std::max(window->help_width, columns);
    window->help_depth = std::max(window->help_depth, lines);
}

void destroy_replaced(fancy_window* window, HMENU& menu, std::int32_t bit) {
    if ((builder().nw_mode & bit) != 0) return;
    builder().nw_mode |= bit;
    if (menu == 0) return;
    DestroyMenu(menu);
    menu = HMENU{};
    for (menu_info** link = &window->menu_items; *link != nullptr;) {
        menu_info* item = *link;
        if (item->menu == 0 || IsMenu(item->menu)) {
            link = &item->next;
            continue;
        }
        *link = item->next;
        free_id(item->id);
        std::free(item);
    }
}

}  // namespace

HMENU read_menu(code_call& call, std::int32_t kind) {
    return read_into(call, kind, HMENU{});
}

void peek_menu(code_call& call, std::int32_t kind) {
    const bool passive = records().passive;
    records().passive = true;
    read_into(call, kind, HMENU{});
    records().passive = passive;
}

void get_menu_help(menu_info* old_head, menu_info* new_head, code_call& call) {
    current_window()->flags.menu_help = true;
    current_window()->flags.help_wanted = true;
    read_help(new_head, old_head, call);
}

void handle_mn(code_call& call) {
    fancy_window* window = current_window();
    if (from_resource(window)) {
        window->menu = read_resource_menu(call, kind_bar, window->menu);
        return;
    }
    if (call.grave) return read_enhanced_menu(call, false);
    if (window->enhanced_menu != 0)
        quillpan_error("A window cannot have a menu and an enhanced menu");
    window->menu_height = GetSystemMetrics(SM_CYMENU);
    check_sq_bra(call.format, "MN");
    menu_info* old_head = window->menu_items;
    std::int32_t leaves = 0;
    fancy_window* target = nullptr;
    if (builder().nw_mode != 0) {
        if (pending().nw_target_control != nullptr)
            quillpan_error("The handle used with %%NW must be for a main window.");
        target = fancy_window_from_handle(pending().nw_target_window);
        if (target != nullptr) {
            destroy_replaced(target, target->menu, 2);
            window->menu = target->menu;
        }
    }
    window->menu = read_into(call, kind_bar, window->menu, leaves);
    if (target != nullptr) target->menu = window->menu;
    help_of(call, old_head, leaves);
}

void handle_sm(code_call& call) {
    fancy_window* window = current_window();
    call.grave = false;  // the manager's own items aren't ours to delete
    check_sq_bra(call.format, "SM");
    menu_info* old_head = window->menu_items;
    std::int32_t leaves = 0;
    window->system_menu = read_into(call, kind_system, window->system_menu, leaves);
    help_of(call, old_head, leaves);
}

void handle_pm(code_call& call) {
    fancy_window* window = current_window();
    if (pending().context_menu != 0)
        quillpan_error("%%PM menu encountered before %%CM menu has been associated with a control");
    if (from_resource(window)) {
        if (window->popup_menu == 0) user_integer(call.arguments);
        window->popup_menu = read_resource_menu(call, kind_popup, window->popup_menu);
        return;
    }
    if (call.grave) return read_enhanced_menu(call, true);
    check_sq_bra(call.format, "PM");
    menu_info* old_head = window->menu_items;
    std::int32_t leaves = 0;
    if (builder().nw_mode != 0 && pending().nw_target_control != nullptr) {
        HMENU& menu = pending().nw_target_control->popup_menu;
        destroy_replaced(pending().nw_target_control->window, menu, 4);
        menu = read_into(call, kind_popup, menu, leaves);
    } else if (fancy_window* target = builder().nw_mode != 0
                                          ? fancy_window_from_handle(pending().nw_target_window)
                                          : nullptr) {
        destroy_replaced(target, target->popup_menu, 4);
        target->popup_menu = read_into(call, kind_popup, target->popup_menu, leaves);
    } else {
        window->popup_menu = read_into(call, kind_popup, window->popup_menu, leaves);
    }
    help_of(call, old_head, leaves);
}

void handle_cm(code_call& call) {
    if (builder().nw_mode != 0) quillpan_error("%%CM cannot be used with %%NW");
    if (call.grave) {
        call.grave = false;
        quillpan_error("?%%CM does not take a grave accent");
    }
    check_sq_bra(call.format, "CM");
    menu_info* old_head = current_window()->menu_items;
    std::int32_t leaves = 0;
    const HMENU menu = read_into(call, kind_popup, HMENU{}, leaves);
    if (menu != 0) pending().context_menu = menu;
    help_of(call, old_head, leaves);
}

// The look of this platform's menus is the same with and without; the options are kept.
void handle_em(code_call& call) {
    collect_em_options(call);
}

}  // namespace tarn::winio
