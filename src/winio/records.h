// The records of format windows. Every window that the library builds is one `fancy_window` with a
// chain of `window_control`s: the scanner fills them, layout places them, the window procedures and
// call-backs work from them for as long as the window lives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <type_traits>

#include "platform/base/types.h"

namespace tarn::winio {

using platform::COLORREF;
using platform::HBRUSH;
using platform::HCURSOR;
using platform::HFONT;
using platform::HGDIOBJ;
using platform::HICON;
using platform::HMENU;
using platform::HPEN;
using platform::HWND;
using platform::LOGFONT;
using platform::RECT;

using word = std::intptr_t;  // pointer or word

// What makes a control. The values are also those of design files.
enum class control_type : std::int32_t {
    text = 0,
    button = 1,           // %bt, %tt, %bb
    system_icon = 2,      // %si
    integer_box = 3,      // %rd
    float_box = 4,        // %rf
    list_box = 5,         // %ls
    combo_box = 6,        // %`ls
    group_box = 7,        // %gb
    bitmap_switch = 8,    // %tb cell
    edit_box = 9,         // %eb
    radio = 0x0A,         // %rb
    box_frame = 0x0B,     // from %cb
    owner_draw = 0x0C,    // %dw
    child_window = 0x0D,  // %ch, a sheet page
    marker = 0x0E,        // %gp
    bar = 0x0F,           // %br, drawn
    icon = 0x10,          // %ic
    text_window = 0x11,   // %cw
    line_end = 0x12,
    bitmap = 0x13,        // %bm, %im
    string_box = 0x14,    // %rs
    mdi_frame = 0x15,     // %fr
    fancy_button = 0x16,  // %bt or %bb with colour, icon or several lines
    palette = 0x17,       // %cl
    help_line = 0x18,     // %he
    spin = 0x19,          // internal box end, spin control
    parameter_block = 0x1A,
    sheet = 0x1B,   // %ps, drawn
    slider = 0x1C,  // %sl, drawn
    hypertext = 0x1D,
    text_array = 0x1E,
    button_block = 0x1F,  // %ib
    multi_select = 0x20,  // %ms
    graphics = 0x21,
    static_string = 0x22,  // %st
    tree_view = 0x23,
    foreign = 0x24,  // %uw
    led = 0x25,
    status_bar = 0x26,
    equation = 0x27,
    buffer_box = 0x28,  // %re
    opengl = 0x29,
    animation = 0x2A,
    edit_list = 0x2B,      // %el
    option_button = 0x2C,  // %bn
    blank = 0x2D,          // blank text; empty preload marker
    picture = 0x2E,        // %fi
    plot = 0x2F,
    list_view = 0x31,
    branch_view = 0x32,
    by_class = 0x33,
    native_sheet = 0x34,
    native_bar = 0x35,
    native_slider = 0x36,
    date_time = 0x37,
    month = 0x38,
    toolbar = 0x39,  // %mb
    browser = 0x3A,
    count = 0x3B,
};

// Bits of the property table, one word a type.
enum : std::uint16_t {
    takes_focus = 0x01,
    reports_position = 0x02,
    can_resize = 0x04,
    framed_in_3d = 0x08,
    dialog_colour_in_3d = 0x10,
    tall_item = 0x20,
    data_for_design = 0x40,
    pickable = 0x80,
    date_field = 0x100,
};
std::uint16_t type_properties(control_type type);

struct fancy_window;
struct window_control;

// A call-back: a function of no arguments, or a thunk (callbacks.h). 0: none.
using call_back = std::int32_t (*)();

struct menu_info;    // menus.h
struct accelerator;  // menus.h
struct switch_gang;  // callbacks.h
struct text_array;   // data_entry.h
struct button_face;  // buttons.h
struct Xbutton;      // buttons.h

// Storage that dies with the window: strings, blocks, tables.
struct garbage_entry {
    garbage_entry* next;
    void* storage;
};
struct message_trap {  // %mg, %wm
    message_trap* next;
    call_back callback;
    std::uint32_t message;
};
struct timer_entry {  // every %dl behind the first, and __set_timer's
    timer_entry* next;
    call_back callback;
    std::uintptr_t id;
    std::uint32_t milliseconds;
};
struct script_level {  // an open %su or %sd
    script_level* next;
    double text_scale;
    std::int32_t baseline_shift;
    bool superscript;
};
struct cursor_association {  // %cu, %dc
    cursor_association* next;
    window_control* control;  // null: the window
    std::int32_t count;
    HCURSOR* cursors;
    std::int32_t* variable;
};
struct class_record {
    class_record* next;
    std::string name;
    bool remove;
};
struct grey_check {  // %gc
    grey_check* next;
    call_back callback;
    call_back test;
};
struct window_location {  // %`lo
    std::int32_t x, y, width, height;
};
struct string_binding {  // a Fortran string that a control shows
    string_binding* next;
    char* copy;
    std::size_t copy_size;
    const char* variable;
    std::int32_t length;
    fancy_window* window;
};

struct window_flags {
    bool mixed_font : 1;  // on the line
    bool font_named : 1;  // %fn seen
    bool leave : 1;       // %lw
    bool sheet : 1;       // %sh
    bool grid : 1;        // %gd
    bool open : 1;        // from creation to close
    bool modal : 1;       // the default; cleared by %ww, %sh, %aw
    bool help_wanted : 1;
    bool centre_all_lines : 1;
    bool child : 1;
    bool mdi_child : 1;
    bool mouse_hook_wanted : 1;
    bool caption : 1;
    bool system_menu : 1;
    bool is_volatile : 1;
    bool maximise : 1, minimise : 1;  // requests
    bool sizable : 1;
    bool minimise_box : 1, maximise_box : 1;
    bool help_opened : 1;
    bool explicit_position : 1;
    bool fortran : 1;  // language
    bool busy : 1;
    bool permit : 1;
    bool explicit_pen : 1;
    bool icon_done : 1;    // %mi
    bool fixed_place : 1;  // a %lw child
    bool mdi_maximised : 1;
    bool top_child : 1;
    bool own_background : 1;  // %bg
    // The default words of %co:
    bool data_border : 1, focus_loss_check : 1, right_justify : 1, read_only : 1, client_edge : 1;
    bool full_check : 1;
    bool no_data_frame : 1;  // no_data_border was said, and isn't only the look's default
    bool no_right_move : 1, no_down_move : 1;  // %nr, %nd
    bool horizontal_bar : 1, vertical_bar : 1;
    bool super_maximised : 1;
    bool screen_saver : 1, no_screen_saver : 1;  // %sv, %ns
    bool scroll_always : 1;                      // call-back at every scroll change
    bool casts_shadow : 1, shadowed : 1;
    bool close_pending : 1, closing : 1;
    bool inactive : 1;
    bool maximised : 1;
    bool block_needs_help : 1;  // %ib needs %th
    bool default_button_seen : 1;
    bool just_resized : 1;
    bool invisible : 1;
    bool fixed_size : 1;
    bool focus_pending : 1;  // %if
    bool pane : 1;           // %bx
    bool changing_menu_buttons : 1;
    bool three_d : 1;
    bool status_bar : 1;
    bool independent : 1;
    bool menu_buttons_shown : 1;
    bool dragged : 1;  // %dg
    bool isolate : 1;
    bool size_seen : 1;
    bool popup_off : 1;
    bool za_open : 1;
    bool utf8 : 1;
    bool transparent_on_wallpaper : 1;  // %~wp
    bool wallpaper_sizes : 1;           // %`wp
    bool design : 1;
    bool margins_given : 1;
    bool design_read : 1;
    bool close_is_sent : 1;  // %wt
    bool menu_help : 1;
    bool ready : 1;  // inside WM_CREATE finished
    bool no_frame : 1, no_edge : 1, naked : 1, topmost : 1, tool_window : 1;
    bool owned : 1;              // %lw[owned]
    bool has_ww : 1;             // %ww seen
    bool nw_mark : 1;            // %nw
    bool start_posted : 1;       // message 0x406 is on its way or was
    bool multi_button : 1;       // %mb
    bool multi_button_left : 1;  // %mb[left]
    bool min_height : 1;         // %co[min_height]
    bool retired : 1;            // its record goes when its procedure is left
    bool close_asked : 1;        // the %cc call-back runs
};

struct fancy_window {
    fancy_window* next;
    fancy_window *first_child, *next_sibling, *top_child;  // MDI
    fancy_window* disabled_by;
    fancy_window* frame_window;
    fancy_window* previous;
    window_control* first_focus;
    window_control* open_combo;
    window_control* status_control;
    window_control *first_control, *last_control;
    window_control** controls_by_id;  // of the real window: by their children's numbers, from 300
    std::int32_t controls_by_id_count;
    window_control* found_control;  // by control_of_handle, where the next search begins
    window_control* mdi_frame;
    window_control *centre_first, *right_first;
    window_control* sheet_host;
    window_control* hypertext;
    window_control* help_control;
    window_control* text_control;
    window_control* scrolled_child;
    struct tool_properties* tool_props;
    HWND hwnd;  // -1 for a child awaiting creation
    word disable_window;
    HWND focus_before;
    HWND shadow_window;
    std::int32_t* user_hwnd_var;
    std::int64_t* user_hwnd_var_wide;
    word mouse_hook;
    HICON main_icon;
    word tray_icon;
    HFONT font;
    HFONT button_font;
    HMENU enhanced_menu, enhanced_popup;
    HMENU menu, popup_menu, system_menu;
    LOGFONT font_spec;
    accelerator* accelerators;
    garbage_entry* garbage;
    message_trap* message_traps;
    class_record* class_rec;
    switch_gang* gangs;
    struct menu_settings* menu_options;
    script_level* script_stack;
    menu_info* menu_items;
    cursor_association* cursors;
    timer_entry* timers;
    char* file_spec;
    char* filters;
    char* class_name;
    char* caption;
    const char* caption_variable;  // what a caption is bound to, for updates
    const char* descriptor;        // cursor in the call's type descriptor
    char* icon_name;
    char* wallpaper;
    char* tray_help;
    char* settings_key;
    char **enhanced_paths, **enhanced_help, **popup_paths, **popup_help;
    call_back horizontal_callback, vertical_callback;
    call_back timer_callback, receiver_callback, tray_callback, end_callback, enhanced_callback,
        popup_callback, resize_callback, move_callback, start_callback, close_callback,
        closed_callback, drop_callback;
    double* tab_stops;  // layout units
    std::int32_t* control_var;
    std::int32_t* settings_var;
    std::int32_t *size_x_var, *size_y_var;
    window_location* location;
    double spin_step;
    double text_scale;
    double saved_text_scale;  // before the last %ts
    std::int32_t *h_scroll_var, *h_scroll_page, *h_scroll_range, *v_scroll_var, *v_scroll_page,
        *v_scroll_range;
    word user_data;
    std::int32_t result;
    std::int32_t h_page, h_range, v_page, v_range;
    COLORREF background, text_colour;
    std::int32_t menu_width, menu_height;
    std::int32_t base_font_height;
    std::int32_t centre_col, right_col;
    std::int32_t dialog_resource;
    std::int32_t design_number;
    std::int32_t help_width, help_depth;
    std::int32_t window_number, second_number;
    std::int32_t timer_ms;
    std::int32_t own_control_word;
    std::int32_t border_3d;
    std::int32_t filter_bytes;
    std::uint32_t ex_style, style;
    std::int32_t arg_number;
    std::int32_t tray_id;
    std::int32_t left, top, right, bottom;  // pixels
    std::int32_t pivot_x, pivot_y;
    std::int32_t base_width, base_height;
    std::int32_t min_width, min_height;
    std::int32_t margin_left, margin_top, margin_right, margin_bottom;
    std::int32_t status_row;
    std::int32_t continuations;
    std::int32_t baseline_shift;
    std::int32_t pane_height;
    std::int32_t size_state;
    std::int32_t next_width, next_depth;
    std::int32_t tab_count;
    std::uint32_t update_policy;
    HWND parent_hwnd;            // %pa
    HWND owner_hwnd;             // %ph
    HWND raw_parent;             // %`pa
    std::uint16_t* code_counts;  // of name_control: one a pair of letters
    std::int32_t control_count;
    HWND focus_kept;              // the control that had the focus when another window took over
    std::int32_t entered;         // activations of its procedure on the stack
    std::int32_t drag_x, drag_y;  // %dg
    window_flags flags;
};

struct control_flags {
    bool takes_focus : 1;
    bool centred : 1, right : 1;          // %cn, %rj
    bool box_centred : 1, box_right : 1;  // within a cell
    bool pivot : 1;
    bool no_right_move : 1, no_down_move : 1;
    bool full_width : 1;  // %ln
    bool undrawn : 1;     // frame of a no_border box
    bool data_control : 1, read_form : 1, data_border : 1, focus_loss_check : 1, full_check : 1;
    bool right_justify : 1, read_only : 1, client_edge : 1, no_data_frame : 1;
    bool wide : 1, bound_limits : 1, initially_blank : 1, has_data : 1;
    bool prompt_shown : 1, prompt_hidden : 1, spin_used : 1, being_set : 1, password : 1;
    bool keep_focus : 1, h_bar : 1, v_bar : 1, no_h_scroll : 1, no_v_scroll : 1;
    bool centre_text : 1, right_text : 1, no_additional_depth : 1;
    bool fortran_string : 1;
    bool default_button : 1, colour_button : 1, icon_button : 1, toolbar_button : 1;
    bool grave : 1;                    // the code had a grave
    bool native : 1, static_look : 1;  // %bm[static]
    bool user_resize : 1, metafile_resize : 1, parent_relative : 1;
    bool no_prefix : 1;
    bool placeholder : 1;  // its control isn't built yet: a frame with its code
    bool owner_drawn : 1, icons : 1, colours : 1, sorted : 1, hover : 1, confirm : 1;
    bool constant_data : 1, fixed_width : 1, no_box : 1, multi_column : 1, extended : 1;
    bool limit_height : 1, drop_border : 1, local_font : 1, has_border : 1;
    bool update_source : 1;         // careful_window_update's mark
    bool shown_valid : 1;           // the field holds what `shown` says
    bool spin_run : 1;              // the spin acts at every second tick
    bool pressed : 1, hovered : 1;  // of a button that the library draws
};

struct window_control {
    window_control* next;
    control_type type;
    void* block;  // the type's own record, or a small value
    word data, data2;
    void* gcb;
    void* variable;
    double low;
    word user_data;
    double move_x, grow_x, move_y, grow_y;
    double high;
    char name[6];  // two letters and %3.3i
    fancy_window* window;
    window_control* spin;
    window_control* box;
    char* text;
    char* save_key;
    char* save_name;
    char* help;
    word system_icon;
    std::int32_t* settings;
    std::int32_t* grey;
    std::int32_t* hwnd_var;
    std::int64_t* hwnd_var_wide;
    call_back callback;
    struct scroll_block* scrolls;
    struct edit_buffer* edit;
    call_back grey_test;
    HFONT font;
    HWND hwnd;
    HMENU popup_menu;
    std::int32_t string_length;
    std::int32_t id;
    std::int32_t resource_id;
    std::int32_t x, y, width;  // layout units
    std::int32_t x_extra;      // pixels
    std::int32_t height;
    std::int32_t y_extra;
    std::int32_t inset;
    std::int32_t left, top, right, bottom;  // pixels
    std::int32_t fixed_w, fixed_h, fixed_x, fixed_y;
    std::int32_t centre_span;
    std::int32_t base_line;
    std::int32_t right_col;
    std::int32_t baseline_shift;
    std::int32_t help_width, help_depth;
    COLORREF background, text_colour;
    COLORREF prompt_colour;
    std::uint32_t style, ex_style;
    std::int32_t case_mode;
    std::uint32_t update_policy;
    std::uint16_t code;
    control_flags flags;
    // Data-entry boxes:
    char* prompt;
    std::int32_t digits;
    double step;
    word shown;      // %rd, %rf: the value in the field, as bits
    word blank_for;  // initially_blank: the value that shows as nothing
    HWND alert;
    COLORREF saved_text_colour;
    std::int32_t item_height;  // %ls[height=]
    double vertical_fill;
    std::int32_t font_request;  // %ls[font_pitch=, font_set=]
    double height_limit;        // limit_height
};

// %hx, %vx of one control.
struct scroll_block {
    struct bar {
        std::int32_t *page, *range, *position;
        call_back callback;
        HWND hwnd;
        std::int32_t hidden_size;
        bool wanted, hidden, grave;
    } horizontal, vertical;
};

// Caches of drawing objects, newest first. Fonts stay for the life of the process.
struct font_entry;
struct brush_entry {
    brush_entry* next;
    HBRUSH handle;
    COLORREF colour;
};
struct pen_entry {
    pen_entry* next;
    HPEN handle;
    std::int32_t style, width;
    COLORREF colour;
};
// What __winclass sets for the class of all windows.
struct class_settings {
    char* name;
    HICON icon;
    HCURSOR cursor;
    char* font;
    bool has_background;
    COLORREF background;
    double text_scale;  // 0: not set
};

// Process-wide: the lists of all windows and what is current.
struct records_state {
    fancy_window* windows;  // newest first
    fancy_window* current;  // current_window
    class_record* classes;
    string_binding* bindings;
    std::int32_t next_window_number;
    std::int32_t next_second_number;
    std::int32_t gdi_limit;  // __max_gdi_objects; 0: none
    std::int32_t brush_and_pen_count, font_count;
    bool utf8_default;
    bool utf8_chosen;                      // the locale isn't asked any more
    bool passive;                          // handlers count instead of store
    bool check_mode;                       // __winio_check
    bool creating;                         // CreateWindowExAW runs
    bool at_exit;                          // ATEXIT: exit_cleanup has passed the point of no return
    bool used;                             // __initialise_quillpan_plus ran
    std::int32_t char_width, char_height;  // of GetDialogBaseUnits
    std::int32_t occupancy_width, occupancy_height;
    bool old_resize;  // the switch new_resize, turned round: 0 is on
    HFONT default_font;
    LOGFONT default_spec;  // of the default font
    font_entry* fonts;
    brush_entry* brushes;
    pen_entry* pens;
    window_control* offered;  // offer_control's
    class_settings class_defaults;
    std::int32_t class_counter;      // behind the name of a private class
    unsigned char ids_in_use[2500];  // get_id: one bit a number from 4000
};
records_state& records();
inline fancy_window*& current_window() {
    return records().current;
}

// ---- Making and finding ------------------------------------------------------------------------
// Zeroed storage for one record, freed with free(). Never null.
void* allocate_zeroed(std::size_t size);
template <class Record>
Record* new_record() {
    static_assert(std::is_trivially_destructible_v<Record>);
    return static_cast<Record*>(allocate_zeroed(sizeof(Record)));
}
fancy_window* new_fancy_window();
// Frees what the window owns and the record. Controls that are still in its chain (the window was
// never made real) go with it: whoever frees the controls of a real window empties the chain.
void destroy_fancy_window(fancy_window* window);
// In a passive pass the record is in no chain, and the code that asked for it frees it.
window_control* new_window_control(control_type type);
void name_control(window_control* control);
// Makes the next new_window_control use a record made before.
void offer_control(window_control* control);
// A zeroed record that no chain holds.
window_control* allocate_control();
void confirm(const void* pointer, const char* where);
void confirm_handle(std::int32_t handle, const char* where);
[[noreturn]] void heap_exhausted();
void discard_with_window(void* storage, void* old);
void discard_with_window(fancy_window* window, void* storage, void* old);
void discard_with_window(window_control* control, void* storage, void* old);
void* discard_with_garbage(void* fresh, void* old);
// A copy that dies with the current window.
char* window_text_copy(const char* text, std::size_t length);
std::int32_t get_id();
void free_id(std::int32_t id);
fancy_window* fancy_window_from_handle(HWND hwnd);
bool fancy_window_exists(const fancy_window* window);
window_control* control_from_window(HWND hwnd, bool closed_too);
window_control* control_of_handle(fancy_window* window, HWND hwnd);
inline constexpr std::int32_t first_child_id = 300;
fancy_window* window_from_control_variable(const std::int32_t* variable);
HWND first_quillpan_hwnd();
HWND hwnd_from_fortran_unit(std::int32_t unit);
// The address of a routine of a module, which is loaded if it isn't there yet; also tried with "32"
// behind the module's name. Null: there is none.
void* get_proc_addr(const char* name, const char* module);
fancy_window* our_window(HWND hwnd);  // the window itself, or the one that holds the control

// ---- Fonts, brushes, pens
// ------------------------------------------------------------------------
HFONT get_font(LOGFONT description);
const platform::TEXTMETRIC& font_metric(HFONT font);  // from the cache where it is there
HFONT get_font_for_point_size(LOGFONT description, std::int32_t points, double& scale);
HFONT adjust_font(LOGFONT description, bool italic, bool underline, bool bold);
HFONT make_font(const char* name, LOGFONT& description);
HFONT make_font_c(const char* name, LOGFONT& description);
HBRUSH get_brush(COLORREF colour);
HPEN get_pen(std::int32_t style, std::int32_t width, COLORREF colour);
void monitor_gdi_resources();
bool utf8_enabled();
// The locale's encoding, where the program has chosen none.
void settle_encoding();

// Text by the default colours: what a program didn't set.
COLORREF dialog_colour();  // behind everything
COLORREF data_colour();    // behind what the user edits
COLORREF default_text_colour();

// ---- First use
// ------------------------------------------------------------------------------------
void initialise_quillpan_plus();  // __initialise_quillpan_plus
class_record* register_class(const char* name, platform::WNDPROC procedure, std::uint32_t style,
                             HCURSOR cursor, HBRUSH brush, HICON icon);

}  // namespace tarn::winio
