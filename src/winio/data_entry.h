// Number, text and buffer boxes with their spins, prompts and alerts, and the text array's record.
#pragma once

#include <cstdint>
#include <string>

#include "winio/builder.h"

namespace tarn::winio {

struct colour_pair {
    colour_pair* next;
    std::int32_t attribute;
    COLORREF text, background;
};
struct text_array {
    colour_pair* colours;
    char *text, *attributes;
    std::int32_t row_length, rows;
    std::int32_t cell_width, cell_height;
    std::uint8_t
        flags;  // 1 full_mouse_input, 2 full_char_input, 4 use_tabs, 8 painted, 0x10 no popup
};

// Bits of update_policy.
enum : std::uint32_t {
    policy_warn_on_edit = 1,
    policy_alert_on_update = 2,
    policy_warn_on_update = 4,
    policy_limit_on_update = 8,
    policy_stet_on_update = 0x10,
};

// The block of a spin control.
struct spin_block {
    std::int32_t direction;  // 1 up, -1 down, 0 idle
    std::int32_t timer;      // its ID, 0: none runs
    std::int32_t repeats;
    std::int32_t hover;  // the half under the pointer, as direction
};

// Numbers as a box reads and writes them, whatever the program's locale. The scanned ones leave
// `rest` at the first character that is no part of the number.
struct scanned_integer {
    std::int64_t value;
    bool out_of_range;
    const char* rest;
};
scanned_integer scan_integer(const char* text, std::int32_t radix);
double scan_float(const char* text, bool& out_of_range, const char*& rest);
// `radix` 2 to 36; other radices than 10 show the 32 bits unsigned.
std::string integer_text(std::int32_t value, std::int32_t radix);
std::string float_text(double value, std::int32_t width);
// One conversion of a double and nothing else that printf would read; what fmt= may be.
bool sound_float_format(const char* format);
std::string formatted_float(const char* format, double value);  // and remove00
double spin_value(double value, double step, bool up, double low, double high);

bool is_blank_text(const char* text);
std::int32_t radix_of(const window_control* control);
const char* format_of(const window_control* control);  // null: none
// What a numeric box shows for a value.
std::string box_text(const window_control* control, double value);
// Gives a box its text without that being an edit.
void set_box_text(window_control* control, const char* text);
std::string get_box_text(const window_control* control, std::size_t size);
void show_box_again(window_control* control);  // its colours have changed

// A box that is blank gives its prompt room, one that isn't takes it away.
void swap_prompt_colours(window_control* control);
// `text` loses the prompt in it; true when the field was rewritten.
bool take_prompt_away(window_control* control, std::string& text, std::size_t number_end);
void restore_prompt(window_control* control);

void set_integer_limits(HWND hwnd, std::int32_t low, std::int32_t high);
void set_float_limits(HWND hwnd, double low, double high);
double set_increment(HWND hwnd, double step);
void perform_spin_adjustment(window_control* spin);
HFONT get_text_array_font(const fancy_window* window);

}  // namespace tarn::winio
