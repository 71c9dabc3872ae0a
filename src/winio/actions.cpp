// The table of standard actions, and those that work on variables and on the program's end.
#include "winio/actions.h"

#include <array>
#include <cstring>
#include <strings.h>
#include <unistd.h>

#include "frame/end.h"
#include "platform/user/user.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr standard_action table[] = {
    {"EXIT", "", false, 0, action_exit},
    {"CLOSE", "", false, 0, action_close},
    {"CONTINUE", "", false, 0, action_continue},
    {"STOP", "", false, 0, action_stop},
    {"FATAL", "", false, 0, action_fatal},
    {"+", "BB", false, 0, action_both},
    {"SET", "iI", false, 0, action_set},
    {"SETF", "fF", false, 0, action_set_float},
    {"TOGGLE", "i", false, 0, action_toggle},
    {"INC", "i", false, 0, action_increment},
    {"DEC", "i", false, 0, action_decrement},
    {"BEEP", "", true, 0, action_beep},
    {"SOUND", "S", false, 0, action_sound},
    {"TEXT", "S", false, 0, action_text},
    {"ABOUT", "S", false, 0, action_about},
    {"CONFIRM_EXIT", "S", false, 0, action_confirm_exit},
    {"VERSION", "", false, 0, action_version},
    {"CUT", "", false, 0, action_cut},
    {"COPY", "", false, 0, action_copy},
    {"PASTE", "", false, 0, action_paste},
    {"SELECT_ALL", "", false, 0, action_select_all},
    {"EDIT_UNDO", "", false, 0, action_edit_undo},
    {"EDIT_FILE", "C", false, 0, action_absent},
    {"EDIT_FILE_OPEN", "SC", false, 0, action_absent},
    {"EDIT_FILE_SAVE", "SC", false, 0, action_absent},
    {"EDIT_FILE_SAVE_AS", "SC", false, 0, action_absent},
    {"PREVIOUS_TEXT", "", false, 0, action_previous_text},
    {"TEXT_HISTORY", "", false, 0, action_text_history},
    {"COPY_TEXT", "", false, 0, action_copy_text},
    {"MAXIMISE", "", false, 0, action_maximise},
    {"MAXIMIZE", "", false, 0, action_maximise},
    {"MINIMISE", "", false, 0, action_minimise},
    {"MINIMIZE", "", false, 0, action_minimise},
    {"RESTORE", "", false, 0, action_restore},
    {"SUPER_MAXIMISE", "", false, 0, action_super_maximise},
    {"SUPER_MAXIMIZE", "", false, 0, action_super_maximise},
    {"CASCADE", "", false, 0, action_cascade},
    {"TILE_HORIZONTALLY", "", false, 0, action_tile_horizontally},
    {"TILE_VERTICALLY", "", false, 0, action_tile_vertically},
    {"INTERNET_HYPERLINK", "S", false, 0, action_hyperlink},
    {"HELP_CONTENTS", "S", false, 3, action_help},
    {"HELP_FINDER", "S", false, 11, action_help},
    {"HELP_ON_HELP", "S", false, 4, action_help},
    {"HELP_LOOKUP", "SC", false, 1, action_help},
    {"HELPLOOKUP", "SS", false, 1, action_help},
    {"PRINTER_OPEN", "UB", false, 1, action_absent},
    {"PRINTER_OPEN1", "UB", false, 1, action_absent},
    {"HTML_PRINTER_OPEN", "UB", false, 3, action_absent},
    {"HTML_PRINTER_OPEN1", "UB", false, 3, action_absent},
    {"GPRINTER_OPEN", "B", false, 2, action_absent},
    {"GPRINTER_OPEN1", "B", false, 2, action_absent},
    {"PRINTER_SELECT", "", false, 2, action_absent},
    {"PRINTER_SETUP", "", false, 3, action_absent},
    {"PRINT_ABORT", "", false, 0, action_print_abort},
    {"FILE_OPENR", "VB", true, 0, action_choose_file},
    {"FILE_OPENW", "VB", true, 1, action_choose_file},
    {"wbCopy", "", false, 0, action_absent},
    {"wbSelectAll", "", false, 0, action_absent},
    {"wbSaveAs", "", false, 0, action_absent},
    {"wbOpen", "", false, 0, action_absent},
    {"wbGoForward", "", false, 0, action_absent},
    {"wbGoBack", "", false, 0, action_absent},
    {"wbGoHome", "", false, 0, action_absent},
    {"wbRefresh", "", false, 0, action_absent},
    {"wbStop", "", false, 0, action_absent},
    {"wbHistory", "", false, 0, action_absent},
};
constexpr std::size_t count = std::size(table);

bool begins_folded(std::string_view text, std::string_view with) {
    return text.size() >= with.size() && strncasecmp(text.data(), with.data(), with.size()) == 0;
}

// `name`, then blanks to the end, or a `[` whose text ends the whole in `]`.
bool matches(std::string_view text, const standard_action& action, std::string_view& options) {
    if (!begins_folded(text, action.name)) return false;
    std::string_view rest = text.substr(std::strlen(action.name));
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    options = {};
    if (rest.empty()) return true;
    if (rest.front() != '[') return false;
    const std::size_t end = rest.find_last_not_of(' ');
    if (rest[end] != ']') return false;
    options = rest.substr(1, end - 1);
    return true;
}

thunk arguments_of_call() {
    const thunk* current = callbacks().current_thunk;
    return current ? *current : thunk{};
}

template <class Value>
Value* target(word pointer) {
    return reinterpret_cast<Value*>(pointer);
}

std::int32_t store_integer(std::int32_t* variable, std::int32_t value) {
    if (!variable) return 2;
    *variable = value;
    window_update(variable);
    return 2;
}

// Wraps round as the machine's own addition does.
std::int32_t add_to_variable(std::uint32_t amount) {
    auto* variable = target<std::int32_t>(arguments_of_call().a);
    if (!variable) return 2;
    return store_integer(variable,
                         static_cast<std::int32_t>(static_cast<std::uint32_t>(*variable) + amount));
}

}  // namespace

std::int32_t find_action(std::string_view text, std::string_view& options) {
    constexpr std::string_view prefix = "QUILLPAN+";
    if (begins_folded(text, prefix) && text.size() > prefix.size())
        text.remove_prefix(prefix.size());
    for (std::size_t i = 0; i < count; ++i)
        if (matches(text, table[i], options)) return static_cast<std::int32_t>(i);
    return -1;
}

const standard_action& action_at(std::int32_t index) {
    return table[index];
}

// ---- The end -----------------------------------------------------------------------------------
std::int32_t action_exit() {
    if (fancy_window* window = current_window()) window_close(window);
    return 1;
}

std::int32_t action_close() {
    if (fancy_window* window = current_window()) safe_window_close(window);
    return 1;
}

std::int32_t action_continue() {
    return 1;
}

std::int32_t action_stop() {
    if (const fancy_window* window = current_window())
        platform::SendMessageA(window->hwnd, platform::WM_CLOSE, 0, 0);
    frame::exit_program(0);
}

std::int32_t action_fatal() {
    _exit(0);
}

// ---- Chains and variables ----------------------------------------------------------------------
// The first may close the window, and the thunk goes with it: it is copied before.
std::int32_t action_both() {
    const thunk both = arguments_of_call();
    callback_state& state = callbacks();
    const char* reason = state.context.reason;
    const HWND handle = state.call_handle;
    const bool from_user = state.call_from_user;
    const std::int32_t result = call_function(both.further, reason, handle, false, from_user);
    if (result == 0 || state.window_gone) return result;
    return call_function(both.second, reason, handle, false, from_user);
}

std::int32_t action_set() {
    const thunk given = arguments_of_call();
    return store_integer(target<std::int32_t>(given.a), static_cast<std::int32_t>(given.b));
}

std::int32_t action_set_float() {
    const thunk given = arguments_of_call();
    auto* variable = target<double>(given.a);
    if (!variable) return 2;
    *variable = given.value;
    window_update(variable);
    return 2;
}

std::int32_t action_toggle() {
    auto* variable = target<std::int32_t>(arguments_of_call().a);
    return variable ? store_integer(variable, *variable == 0) : 2;
}

std::int32_t action_increment() {
    return add_to_variable(1);
}
std::int32_t action_decrement() {
    return add_to_variable(0xFFFFFFFFu);
}

// ---- Sounds ------------------------------------------------------------------------------------
std::int32_t action_beep() {
    platform::MessageBeep(static_cast<platform::UINT>(arguments_of_call().selector));
    return 2;
}

}  // namespace tarn::winio
