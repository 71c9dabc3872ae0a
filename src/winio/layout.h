// Layout: a pen walks through a grid of small cells, and every text and control takes a block of
// them. Pure arithmetic; of the platform it asks the base units, the screen's size, the metrics of
// frames and bars, and how wide a text is.
#pragma once

#include <cstdint>

#include "winio/builder.h"

namespace tarn::winio {

// One cell of a box: its frame, and the control behind which the cell's own controls begin.
struct frame_link {
    frame_link* next;  // the cell before it
    window_control* frame;
    window_control* start_control;
};
struct box {
    box* previous;
    window_control* start_control;
    frame_link* frames;  // newest first
    window_control *centre_first, *right_first;
    window_control* frame_record;
    char* name;
    std::int32_t cell_x, cell_y;
    std::int32_t inner_x, inner_y;
    std::int32_t origin_x, origin_y;
    std::int32_t start_x, start_y;
    std::int32_t columns, rows;
    std::int32_t column, row;
    std::int32_t max_x, max_y;
    std::int32_t all_max_x, all_max_y;
    std::int32_t kind;  // 0 simple, 1 panelled, 2 thin panelled, 3 scored, 4 raised, 5 depressed
    std::int32_t name_place;  // 0 left, 1 centred, 2 right
    std::int32_t centre_col, right_col;
    std::int32_t name_width;
    std::int32_t left, top, right, bottom;  // -1: unset
    std::int32_t inner_left, inner_top, inner_right, inner_bottom;
    COLORREF background;
    COLORREF line_colour;
    bool status, named, no_border, centre_all_lines, nameless, bottom_exit, shaded, pivot_inside;
    bool space, rounded, thin_margin, invisible, wants_line_colour;
};
// The block of a frame's control.
struct frame_block {
    std::int32_t corners;  // 1 top left, 2 top right, 4 bottom right, 8 bottom left
    COLORREF line_colour;
    std::int32_t name_place;
    std::int32_t kind;
    std::int32_t flags;  // status_frame ...
    bool shaded;
};

enum : std::int32_t {  // of frame_block
    status_frame = 1,
    not_first_column = 2,
    not_first_row = 4,
    not_last_row = 8,
    not_last_column = 0x10,
};

inline constexpr std::int32_t no_pivot = 10000000;

void begin_layout();  // gives the builder an empty map
void end_layout();    // takes it back; harmless when there is none
// The size of the map in cells, for windows begun from now on; refused once a window was begun.
void set_max_dialog_size(std::int32_t width, std::int32_t height);
// The one-shot values that the next locate uses up, as a window begins.
void reset_layout_values(fancy_window* window);

// Conversions: truncating towards zero, and the ceiling the other way.
std::int32_t units_to_pixels_x(std::int32_t units);
std::int32_t units_to_pixels_y(std::int32_t units);
std::int32_t pixels_to_units_x(std::int32_t pixels);
std::int32_t pixels_to_units_y(std::int32_t pixels);

void locate(window_control* control, std::int32_t extra_depth);
void next_line();
void bottom_line();
std::int32_t the_bottom();
bool block_is_occupied(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h);
void occupy_block(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h);
void tabulate();
void flush_text(bool force, std::int32_t resource_id);
void handle_text(const char* start, const char* end, bool hold, bool percent_escape);
void align_text_base(window_control* control);
void align_information();
void centre_information();
void centre_information_within_box();
void centre_all_information();
void apply_margins();
void re_centre_in_box(const frame_link& cell, std::int32_t extra);
void adjust_multi_boxes(box& of);
void shuffle_boxes(fancy_window* window);
void free_open_boxes();  // of a format that ended with one
// The dialog colour takes the place of a standard background.
void readjust_background(fancy_window* window);
void re_scale_window(fancy_window* window, std::int32_t width, std::int32_t height);
// Raises line_extra for a control deeper than text.
void deepen_line(std::int32_t height);
// Client and frame size, origin and style words of the finished window.
void window_size_and_position(fancy_window* window);
// The pixel rectangle of a control at creation, stored in the control. Right and bottom are its
// last pixels.
void control_rectangle(window_control* control);
RECT creation_rectangle(const window_control* control);

// ---- Measuring
// -----------------------------------------------------------------------------------
std::int32_t string_width(const window_control* control, const char* text);
std::int32_t string_width(const window_control* control);
std::int32_t last_string_pixels();
void get_text_dimensions(HFONT font, const char* text, std::int32_t& width, std::int32_t& depth);
void text_size(const char* text, std::int32_t& columns, std::int32_t& lines);
std::int32_t strlena(const char* text);
std::int32_t font_descent(HFONT font);
std::int32_t font_depth(platform::HDC device);
void check_combo_width(window_control* control);
std::int32_t dpiScale(std::int32_t value);
platform::HDC measuring_dc();

// ---- Painting
// ------------------------------------------------------------------------------------
void fill_main_window(fancy_window* window, platform::HDC device, const RECT& rectangle);
void draw_box(window_control* frame, platform::HDC device);
COLORREF scale_colour(COLORREF colour, double factor);

}  // namespace tarn::winio
