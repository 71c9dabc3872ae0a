// The standard actions: call-backs of the library's own, named by a text.
#pragma once

#include <cstdint>
#include <string_view>

#include "winio/callbacks.h"

namespace tarn::winio {

// What a name stands for. `arguments` says what the action reads from the call's argument list, a
// letter each: S text, I integer, i pointer to integer, F double, f pointer to double, C character
// variable (V: with its length behind it in C), B a further call-back, U a unit or stream.
struct standard_action {
    char name[24];
    char arguments[4];
    bool takes_options;  // `[...]` behind the name
    std::uint8_t selector;
    call_back function;
};

// The action with that name, without regard to case and behind an optional "QUILLPAN+"; -1: none.
// `options` receives what stands in brackets behind the name.
std::int32_t find_action(std::string_view text, std::string_view& options);
const standard_action& action_at(std::int32_t index);

// The functions, by the file that holds them.
std::int32_t action_close();
std::int32_t action_continue();
std::int32_t action_stop();
std::int32_t action_fatal();
std::int32_t action_both();
std::int32_t action_set();
std::int32_t action_set_float();
std::int32_t action_toggle();
std::int32_t action_increment();
std::int32_t action_decrement();
std::int32_t action_beep();
std::int32_t action_sound();

std::int32_t action_text();
std::int32_t action_about();
std::int32_t action_confirm_exit();
std::int32_t action_maximise();
std::int32_t action_minimise();
std::int32_t action_restore();
std::int32_t action_super_maximise();
std::int32_t action_cascade();
std::int32_t action_tile_horizontally();
std::int32_t action_tile_vertically();

std::int32_t action_cut();
std::int32_t action_copy();
std::int32_t action_paste();
std::int32_t action_select_all();
std::int32_t action_edit_undo();

std::int32_t action_hyperlink();
std::int32_t action_help();
std::int32_t action_previous_text();
std::int32_t action_text_history();
std::int32_t action_copy_text();
std::int32_t action_choose_file();  // FILE_OPENR, FILE_OPENW
std::int32_t action_print_abort();
std::int32_t action_absent();  // its room isn't built yet: says so

// What has the focus, as CUT, COPY and PASTE mean it.
enum class clipboard_client : std::uint8_t { none, edit, edit_box, text_window, graphics };
clipboard_client get_clipboard_client();
bool test_selection();
bool can_undo_edit();
void note_clipboard_client(platform::HWND focus);  // that `focus` has the keyboard now

}  // namespace tarn::winio
