// The window under construction and one call of `winio`.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>
#include <string_view>

#include "winio/records.h"

namespace tarn::winio {

struct box;  // layout.h

// At most one window is under construction. Saved and restored as a whole by a nested `%ex` call.
struct window_builder {
    unsigned char* occupancy;
    const char* last_text;
    winio::box* box;
    grey_check* grey_checks;
    window_control* param_block;
    std::int32_t col, row;
    std::int32_t line_extra;
    std::int32_t max_y, max_x;
    std::int32_t row_floor;
    std::int32_t next_control_id;
    std::int32_t next_button_value;
    std::int32_t pending_id;
    std::int32_t int_high, int_low;
    std::int64_t high_water;
    std::int32_t popup_pending, menu_pending;
    double float_high, float_low;
    COLORREF next_background;  // no_colour: none
    std::int32_t nw_mode;
    std::int32_t continuing;
    std::int32_t pivot_pending;
};
inline constexpr COLORREF no_colour = 0xFFFFFFFFu;

// What is kept beside the builder and not saved by `%ex`: one-shot values for the next control.
struct pending_values {
    bool int_limits_bound, float_limits_bound;   // %~il, %~fl
    std::int32_t design_id;                      // %ci; 0: none
    scroll_block* scrolls;                       // %hx, %vx
    cursor_association* cursor;                  // %cu
    HMENU context_menu;                          // %cm
    COLORREF *face_colour, *button_text_colour;  // %bc, %bu; null: none
    bool face_by_variable, text_by_variable;     // they came with grave
    char* button_icon;                           // %bi
    std::int32_t place[4];                       // %pp: width 0 is none
    std::int32_t extra_x, extra_y;               // for locate
    bool raw_callback;                           // %zc
    bool text_array_seen;                        // %ty may follow
    const std::int32_t* text_colour_variable;    // %`tc, for one control
    HWND nw_target_window;                       // %nw
    window_control* nw_target_control;
    bool nw_has_workspace;  // a window of its own was begun for it
};

// Where a call's arguments come from. One cursor serves every frame: C's va_list, a Fortran
// program's references, words with a descriptor, and the preload queue.
struct argument_source {
    enum class kind : std::uint8_t { c_list, words } from = kind::words;
    std::va_list* list = nullptr;  // c_list
    const word* words = nullptr;   // words
    std::int32_t word_count = -1;  // -1: unknown
    std::int32_t next_word = 0;
    const std::int32_t* lengths = nullptr;  // Fortran: of its character arguments, in order
    std::int32_t length_count = 0;
    std::int32_t next_length = 0;
    std::va_list* length_list = nullptr;  // or they follow in a list of their own
    bool fortran = false;                 // every argument by reference
    // How the source spells each argument behind the format, for messages; null: not known. In such
    // a call the type of a constant or an expression, which nothing may be bound to, is told in
    // lower case: `*i` where a variable's is `*I`.
    const char* const* spellings = nullptr;
    bool wide_handles = false;  // handles are INTEGER*8
    word next();                // one word (a C double: next_double); 0 behind the last
    double next_double();
    bool exhausted() const { return word_count >= 0 && next_word >= word_count; }
};

// The code at hand. A handler clears each modifier that it consumes; one left over is reported.
struct code_call {
    const char*& format;  // behind the two letters; moves past option lists and text fields
    argument_source& arguments;
    std::int32_t n, m;   // -1: not given
    std::uint16_t code;  // first letter * 256 + second, upper case
    bool grave, tilde, caret, question, zero, plus, minus;
};
constexpr std::uint16_t code_of(char first, char second) {
    return static_cast<std::uint16_t>(first * 256 + second);
}

struct builder_state {
    window_builder builder;
    pending_values pending;
    std::string* accumulator;  // of the call being scanned: at most 1000 bytes
    code_call* call;           // being handled
    bool fortran_call;
    std::string continuation;           // "(continuation %d)" for messages
    std::string style_format;           // __winstyle
    const char* const* argument_names;  // of check mode
    void* preloaded_block;
    control_type preloaded_type = control_type::blank;
    const argument_source* source;     // that was read last, for messages
    std::int32_t last_length;          // of the last CHARACTER argument read
    const char* last_string_variable;  // and where it is
    bool nested;                       // %ex
    bool preload_open;                 // %bo: %bn and %pl only add to the preloaded block
    void (*passive_hook)(const char* text);
    bool passive_window;            // the window under construction is not to be created
    bool wide_handles;              // __winio_check_ex: handles have 64 bits
    char* check_report;             // of check mode: the first message goes there
    fancy_window* internal_window;  // begun by internal_winio
    bool abandoned;                 // abandon_construction was called during this call
    std::string format_text;        // of the call at work, kept for diagnostics once %ex was used
};
builder_state& building();
inline window_builder& builder() {
    return building().builder;
}
inline pending_values& pending() {
    return building().pending;
}

// The whole of a `winio` call. `descriptor` is null for none.
std::int32_t winio(const char* format, std::size_t length, const char* descriptor,
                   argument_source& arguments);
// A `winio` call of the library's own: words and a descriptor.
std::int32_t internal_winio(const char* format, const char* descriptor, const word* words,
                            std::int32_t count);

// The construction can't go on (a report went to the passive hook): the call that is being scanned
// stops at the next code, frees the window under construction and returns -1.
void abandon_construction();
// Is a window under construction, so that the next call continues it?
bool window_is_continued();

void do_format_code(code_call& call);
// The table of handlers; one function a code, in the file of its family.
using code_handler = void (*)(code_call&);
code_handler handler_of(std::uint16_t code);  // null: unknown

// True in a window built from a dialog resource: then the code is refused with its message.
bool QuitIfDlgResource(const char* code_name);

// ---- Argument readers
// ----------------------------------------------------------------------------
word user_thing(argument_source& arguments, bool allow_int);
std::int32_t user_integer(argument_source& arguments);
double user_float(argument_source& arguments, const char* message);
std::int32_t* user_int_pointer(argument_source& arguments);
std::int64_t* user_int64_pointer(argument_source& arguments);
word* user_hwnd_pointer(argument_source& arguments);
// The same, with the width that the caller's types tell. One of the two is set, or none.
struct handle_variable {
    std::int32_t* narrow;
    std::int64_t* wide;
    explicit operator bool() const { return narrow || wide; }
    void store(word value) const {
        if (wide) *wide = value;
        if (narrow) *narrow = static_cast<std::int32_t>(value);
    }
};
handle_variable user_handle_variable(argument_source& arguments);
double* user_float_pointer(argument_source& arguments);
char* user_char_pointer(argument_source& arguments);  // sets building().last_length in Fortran
char* user_string(argument_source& arguments);        // owned by the window; null for none
char** user_char_star_star_pointer(argument_source& arguments);
void** user_void_star_star_pointer(argument_source& arguments);
void* user_struct_pointer(argument_source& arguments, bool allow_j);
void* user_struct_star_star_pointer(argument_source& arguments);
// Every reader begins with these: counts the argument; and, where the call tells its types, moves
// past the token that the descriptor must hold next. With no descriptor every token is right.
void count_argument();
bool accept_token(const char* token);
// The same for what is only read: in a Fortran call a constant or an expression will do.
bool accept_value(const char* token);
void check_arg_present();
void report_argument_error(const char* fortran_text, const char* c_text);
char* get_standard_string(code_call& call, const char* what);
COLORREF user_colour(code_call& call);  // [spec] in the format, else an integer
bool valid_double(double value);
// A text field that shows for as long as the window lives: of a Fortran string behind `@` it is a
// copy that updates follow.
char* get_shown_string(code_call& call, const char* what);
void save_fortran_string_binding(char* copy, const char* variable, std::int32_t length);

// What most controls read first and last: the resource ID of a %di window, or a pending %ci; the
// grey variable of `~`; the call-back of `^`. A modifier that is absent reads nothing.
void read_resource_id(code_call& call, window_control& control);
void read_grey_variable(code_call& call, window_control& control);
void read_callback(code_call& call, window_control& control, const char* message);

void* get_preloaded_block(control_type type);
void set_preloaded_block(void* block, control_type type);

}  // namespace tarn::winio
