// %tb, a grid of bitmap switches; %ib, a block of buttons with a picture and a label each; %mb, the
// record of a toolbar.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/gdi/theme.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/procedures.h"
#include "winio/report.h"
#include "winio/scanner.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t most_cells = 1000;
constexpr std::int32_t stand_in_size_of_cell = 24;  // a picture that is not there

template <typename Block>
Block* new_block(std::int32_t count = 1) {
    auto* block = static_cast<Block*>(std::calloc(static_cast<std::size_t>(count), sizeof(Block)));
    if (!block) heap_exhausted();
    discard_with_window(block, nullptr);
    return block;
}

struct grid {
    std::int32_t columns, rows;
};

grid grid_of(const code_call& call) {
    grid cells{std::clamp(call.n, 1, most_cells), std::clamp(call.m, 1, most_cells)};
    cells.rows = std::min(cells.rows, most_cells / cells.columns);
    cells.rows = std::max(cells.rows, 1);
    return cells;
}

// ---- %tb

button_face* read_switch(code_call& call, window_control* control) {
    auto* face = new_block<button_face>();
    control->block = face;
    face->bitmap_up = user_string(call.arguments);
    face->bitmap_down = user_string(call.arguments);
    face->bitmap_on = user_string(call.arguments);
    if (call.tilde) face->bitmap_grey = user_string(call.arguments);
    control->variable = user_int_pointer(call.arguments);
    if (call.tilde) control->grey = user_int_pointer(call.arguments);
    if (call.caret)
        control->callback =
            get_callback_function(call.arguments, "should be a tool-bar call-back function");
    face->value = take_button_value();
    return face;
}

SIZE largest(SIZE a, SIZE b) {
    return {std::max(a.cx, b.cx), std::max(a.cy, b.cy)};
}

SIZE switch_size(const button_face* face) {
    SIZE size;
    for (const char* name : {face->bitmap_up, face->bitmap_down, face->bitmap_on})
        size = largest(size, size_bitmap(name));
    return face->bitmap_grey ? largest(size, size_bitmap(face->bitmap_grey)) : size;
}

const char* switch_picture(const window_control* control, bool enabled) {
    const auto* face = static_cast<const button_face*>(control->block);
    if (!enabled && face->bitmap_grey) return face->bitmap_grey;
    if (control->flags.pressed) return face->bitmap_down;
    const auto* variable = static_cast<const std::int32_t*>(control->variable);
    return variable && *variable != 0 ? face->bitmap_on : face->bitmap_up;
}

void paint_switch(const window_control* control, HWND hwnd) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, paint);
    if (!dc) return;
    RECT client;
    GetClientRect(hwnd, client);
    bool enabled = !(control->grey && *control->grey == 0);
    const auto* variable = static_cast<const std::int32_t*>(control->variable);
    button_look look{};
    look.behind = control->background;
    look.face = look.text = no_colour;
    look.enabled = enabled;
    look.pressed = control->flags.pressed || (variable && *variable != 0);
    look.hovered = control->flags.hovered;
    look.flat = true;
    HBITMAP bitmap = load_resource(switch_picture(control, enabled));
    draw_button(dc, client, look);
    draw_button_picture(dc, client, bitmap, picture_look::plain, false);
    EndPaint(hwnd, paint);
}

bool inside(HWND hwnd, LPARAM place) {
    RECT client;
    GetClientRect(hwnd, client);
    return client.contains({GET_X_LPARAM(place), GET_Y_LPARAM(place)});
}

void post_click(HWND hwnd) {
    PostMessageA(GetParent(hwnd), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(hwnd), 0),
                 static_cast<LPARAM>(hwnd));
}

void release_switch(window_control* control, bool over) {
    HWND hwnd = control->hwnd;
    bool pressed = control->flags.pressed;
    control->flags.pressed = false;
    if (GetCapture() == hwnd) ReleaseCapture();
    InvalidateRect(hwnd, nullptr, false);
    auto* variable = static_cast<std::int32_t*>(control->variable);
    if (!pressed || !over || !variable) return;
    window_watch watch(control->window);
    *variable = *variable == 0 ? 1 : 0;
    gang_check(control->window->hwnd, variable);
    if (!watch.gone()) post_click(hwnd);
}

void track_switch(window_control* control, bool over, bool down) {
    bool pressed = down && over && GetCapture() == control->hwnd;
    if (control->flags.pressed == pressed && control->flags.hovered == over) return;
    control->flags.pressed = pressed;
    control->flags.hovered = over;
    InvalidateRect(control->hwnd, nullptr, false);
}

// ---- %ib

constexpr std::int32_t label_gap = 3, cell_margin = 5, label_margin = 10;
constexpr std::uint32_t block_flat = 1, block_const_width = 2, block_const_height = 4,
                        block_coloured = 8, block_hover = 0x20;

std::int32_t pixels_of(std::int32_t units, std::int32_t unit, std::int32_t parts) {
    return units * unit / parts;
}

SIZE cell_size(const button_cell& cell) {
    SIZE size{stand_in_size_of_cell, stand_in_size_of_cell};
    if (cell.picture) GetBitmapSize(cell.picture, size);
    if (!cell.label || !*cell.label) return {size.cx + cell_margin, size.cy + cell_margin};
    std::int32_t width = 0, depth = 0;
    get_text_dimensions(current_window()->font, cell.label, width, depth);
    std::int32_t text = pixels_of(width, records().char_width, 4) + label_margin;
    std::int32_t lines = pixels_of(depth, records().char_height, 8) + 4;
    return {std::max(size.cx, text) + cell_margin, size.cy + lines + cell_margin + label_gap};
}

button_cell read_cell(code_call& call) {
    button_cell cell{};
    char* picture = user_string(call.arguments);
    if (picture) {
        if (char* slash = std::strchr(picture, '/')) {
            cell.label = window_text_copy(slash + 1, std::strlen(slash + 1));
            picture = window_text_copy(picture, static_cast<std::size_t>(slash - picture));
        }
        cell.picture = load_resource(picture);
        if (!cell.picture && *picture)
            quillpan_error("?Bitmap %s is not available as a resource for %%IB", picture);
    }
    cell.state = user_int_pointer(call.arguments);
    cell.callback =
        get_callback_function(call.arguments, "should be an individual %IB call-back function");
    cell.grey_test = GetGreyControlCheckFunction(cell.callback);
    return cell;
}

void equalise(std::vector<std::int32_t>& sizes) {
    std::int32_t most = *std::max_element(sizes.begin(), sizes.end());
    std::fill(sizes.begin(), sizes.end(), most);
}

// The program may change the sizes that the pictures and labels gave.
void adjust_sizes(const window_control* control, std::vector<std::int32_t>& widths,
                  std::vector<std::int32_t>& heights) {
    if (!control->callback || records().passive || records().check_mode) return;
    set_quillpan_info("IB_COLUMNS", static_cast<std::int32_t>(widths.size()));
    set_quillpan_info("IB_ROWS", static_cast<std::int32_t>(heights.size()));
    set_quillpan_info("IB_WIDTHS", reinterpret_cast<word>(widths.data()));
    set_quillpan_info("IB_HEIGHTS", reinterpret_cast<word>(heights.data()));
    const std::size_t depth = suspended_constructions();
    call_function(control->callback, "SIZE_ADJUST", HWND{}, true, false);
    return_to_construction(depth);
    set_quillpan_info("IB_WIDTHS", 0);
    set_quillpan_info("IB_HEIGHTS", 0);
    constexpr std::int32_t largest_cell = 2000;
    for (std::vector<std::int32_t>* sizes : {&widths, &heights})
        for (std::int32_t& size : *sizes) size = std::clamp(size, 1, largest_cell);
}

void place_cells(window_control* control, constructed_button* block, grid cells) {
    std::vector<std::int32_t> widths(static_cast<std::size_t>(cells.columns), 0);
    std::vector<std::int32_t> heights(static_cast<std::size_t>(cells.rows), 0);
    for (std::int32_t i = 0; i < block->count; ++i) {
        SIZE size = cell_size(block->cells[i]);
        auto& width = widths[static_cast<std::size_t>(i % cells.columns)];
        auto& height = heights[static_cast<std::size_t>(i / cells.columns)];
        width = std::max(width, size.cx);
        height = std::max(height, size.cy);
    }
    adjust_sizes(control, widths, heights);
    if ((block->flags & block_const_width) != 0) equalise(widths);
    if ((block->flags & block_const_height) != 0) equalise(heights);
    std::int32_t top = 0, right = 0;
    for (std::int32_t row = 0; row < cells.rows; ++row) {
        std::int32_t left = 0, height = heights[static_cast<std::size_t>(row)];
        for (std::int32_t column = 0; column < cells.columns; ++column) {
            button_cell& cell = block->cells[row * cells.columns + column];
            std::int32_t width = widths[static_cast<std::size_t>(column)];
            cell.left = left;
            cell.top = top;
            cell.right = left + width;
            cell.bottom = top + height;
            left += width;
        }
        right = left;
        top += height;
    }
    control->width = pixels_to_units_x(right);
    control->height = pixels_to_units_y(top);
}

void read_block_help(code_call& call, window_control* control, constructed_button* block) {
    if (!call.question) return;
    call.question = false;
    fancy_window* window = current_window();
    window->flags.help_wanted = window->flags.block_needs_help = true;
    for (std::int32_t i = 0; i < block->count; ++i) {
        if (*call.format != '[' && *call.format != '@') {
            quillpan_error("Missing help string");
            return;
        }
        char* help = get_standard_string(call, "help");
        block->cells[i].help = help;
        std::int32_t columns = 0, lines = 0;
        text_size(help ? help : "", columns, lines);
        control->help_width = std::max(control->help_width, columns);
        control->help_depth = std::max(control->help_depth, lines);
    }
    window->help_width = std::max(window->help_width, control->help_width);
    window->help_depth = std::max(window->help_depth, control->help_depth);
}

constructed_button* block_of(window_control* control) {
    return static_cast<constructed_button*>(control->block);
}

bool cell_is_grey(const button_cell& cell) {
    return cell.grey_now != 0 || (cell.state && *cell.state == 3);
}

bool cell_shows(const button_cell& cell) {
    return !cell.state || (*cell.state >= 1 && *cell.state <= 5);
}

void draw_cell(HDC dc, const window_control* control, const constructed_button* block,
               const button_cell& cell) {
    RECT place{cell.left, cell.top, cell.right, cell.bottom};
    button_look look{};
    look.behind = control->background;
    look.face = look.text = no_colour;
    look.enabled = !cell_is_grey(cell);
    look.pressed = cell.pressed || (cell.state && *cell.state == 2);
    look.hovered = cell.hovered;
    look.flat = (block->flags & block_flat) != 0;
    COLORREF text = draw_button(dc, place, look);
    RECT label = place;
    RECT picture = place;
    if (cell.label && *cell.label) {
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, text);
        if (control->font) SelectObject(dc, control->font);
        RECT measured{0, 0, place.width(), 0};
        DrawTextAW(dc, cell.label, -1, measured, DT_CALCRECT | DT_CENTER);
        label.top = place.bottom - measured.height() - label_gap;
        picture.bottom = label.top;
        DrawTextAW(dc, cell.label, -1, label, DT_CENTER | DT_END_ELLIPSIS);
    }
    // A flat block has its colours only under the pointer.
    const bool colourless = look.flat && (block->flags & block_coloured) == 0 && !cell.hovered;
    draw_button_picture(dc, picture, cell.picture,
                        !look.enabled ? picture_look::grey
                        : colourless  ? picture_look::colourless
                                      : picture_look::plain,
                        true);
}

void paint_block(window_control* control, HWND hwnd) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, paint);
    if (!dc) return;
    RECT client;
    GetClientRect(hwnd, client);
    FillRect(dc, client, get_brush(control->background));
    const constructed_button* block = block_of(control);
    for (std::int32_t i = 0; i < block->count; ++i)
        if (cell_shows(block->cells[i])) draw_cell(dc, control, block, block->cells[i]);
    EndPaint(hwnd, paint);
}

std::int32_t cell_at(const constructed_button* block, POINT at) {
    for (std::int32_t i = 0; i < block->count; ++i) {
        const button_cell& cell = block->cells[i];
        RECT place{cell.left, cell.top, cell.right, cell.bottom};
        if (place.contains(at) && cell_shows(cell)) return i;
    }
    return -1;
}

// "MOUSE_ENTER", "MOUSE_LEAVE". False: the window has gone.
bool tell_hover(window_control* control, std::int32_t cell, const char* reason) {
    const constructed_button* block = block_of(control);
    if ((block->flags & block_hover) == 0 || cell < 0 || !control->callback) return true;
    window_watch watch(control->window);
    callbacks().context.button_number = cell + 1;
    HWND parent = control->window->hwnd;
    std::int32_t result = call_function(control, reason, true);
    if (watch.gone()) return false;
    act_on_result(parent, result);
    return !watch.gone();
}

bool hover_over(window_control* control, std::int32_t cell) {
    constructed_button* block = block_of(control);
    if (block->current == cell) return true;
    std::int32_t before = block->current;
    block->current = cell;
    for (std::int32_t i = 0; i < block->count; ++i) {
        block->cells[i].hovered = i == cell;
        if (i != cell) block->cells[i].pressed = false;
    }
    InvalidateRect(control->hwnd, nullptr, false);
    return tell_hover(control, before, "MOUSE_LEAVE") && tell_hover(control, cell, "MOUSE_ENTER");
}

void release_cell(window_control* control, std::int32_t index) {
    constructed_button* block = block_of(control);
    if (index < 0 || !block->cells[index].pressed) return;
    button_cell& cell = block->cells[index];
    cell.pressed = false;
    if (cell.state && (*cell.state == 1 || *cell.state == 2)) *cell.state = 3 - *cell.state;
    InvalidateRect(control->hwnd, nullptr, false);
    callbacks().context.button_number = index + 1;
    fancy_window* before = current_window();
    current_window() = control->window;
    deferred_call* call = defer_call_back(control, "BUTTON_PRESS");
    current_window() = before;
    if (call) {
        call->function = cell.callback;
        call->context.button_number = index + 1;
    }
}

void block_mouse(window_control* control, HWND hwnd, UINT message, LPARAM place) {
    constructed_button* block = block_of(control);
    std::int32_t index = cell_at(block, {GET_X_LPARAM(place), GET_Y_LPARAM(place)});
    if (!hover_over(control, index)) return;
    if (message == WM_LBUTTONDOWN && index >= 0 && !cell_is_grey(block->cells[index])) {
        block->cells[index].pressed = true;
        SetCapture(hwnd);
        InvalidateRect(hwnd, nullptr, false);
    } else if (message == WM_LBUTTONUP) {
        release_cell(control, index);
        if (GetCapture() == hwnd) ReleaseCapture();
    }
}

// ---- %mb

char* required_list(code_call& call, const char* missing, const char* what) {
    if (*call.format == '[' || *call.format == '@') return get_standard_string(call, what);
    quillpan_error("%s", missing);
    return nullptr;
}

constexpr std::uint8_t bar_standard = 1, bar_adjustable = 8, bar_strings = 0x20, bar_list = 0x40;

}  // namespace

void handle_tb(code_call& call) {
    grid cells = grid_of(call);
    window_control* first = nullptr;
    SIZE size;
    for (std::int32_t i = 0; i < cells.columns * cells.rows; ++i) {
        window_control* control = new_window_control(control_type::bitmap_switch);
        if (!first) {
            first = control;
            read_resource_id(call, *control);
        }
        size = largest(size, switch_size(read_switch(call, control)));
    }
    call.tilde = call.caret = false;
    std::int32_t width = pixels_to_units_x(size.cx), height = pixels_to_units_y(size.cy);
    first->width = width * cells.columns;
    first->height = height * cells.rows;
    locate(first, 0);
    std::int32_t index = 0;
    for (window_control* control = first; control; control = control->next, ++index) {
        control->x = first->x;
        control->y = first->y;
        control->width = width;
        control->height = height;
        control->x_extra = index % cells.columns * size.cx;
        control->y_extra = index / cells.columns * size.cy;
    }
}

void handle_ib(code_call& call) {
    grid cells = grid_of(call);
    window_control* control = new_window_control(control_type::button_block);
    auto* block = new_block<constructed_button>();
    block->current = -1;
    block->count = cells.columns * cells.rows;
    block->cells = new_block<button_cell>(block->count);
    control->block = block;
    collect_other_options(call, control);
    read_resource_id(call, *control);
    for (std::int32_t i = 0; i < block->count; ++i) block->cells[i] = read_cell(call);
    read_callback(call, *control, "should be an overall %IB call-back function");
    place_cells(control, block, cells);
    deepen_line(control->height);
    locate(control, 0);
    read_block_help(call, control, block);
}

void handle_mb(code_call& call) {
    std::int32_t count = call.n;
    if (count < 1) {
        quillpan_error("?Invalid button count in %%MB");
        count = 1;
    }
    window_control* control = new_window_control(control_type::toolbar);
    fancy_window* window = current_window();
    window->flags.multi_button = true;
    if (!window->flags.own_background) window->background = GetSysColor(COLOR_BTNFACE);
    auto* block = new_block<multibutton>();
    block->style = 1;
    block->ilc_flags = 0x21;
    block->count = count;
    block->button_width = block->button_height = 16;
    block->position = 1;
    block->mask = 0xC0C0C0;
    control->block = block;
    control->flags.placeholder = true;
    collect_other_options(call, control);
    block->styles = user_int_pointer(call.arguments);
    block->images = user_int_pointer(call.arguments);
    if (call.grave) {
        call.grave = false;
        block->strip = user_string(call.arguments);
    } else {
        block->flags |= bar_standard;
    }
    if (call.tilde) {
        call.tilde = false;
        block->enable = user_int_pointer(call.arguments);
    }
    if ((block->flags & bar_adjustable) != 0) block->order = user_int_pointer(call.arguments);
    read_callback(call, *control, "should be a %MB call-back function");
    if ((block->flags & bar_strings) != 0) {
        block->texts = required_list(call, "Missing button text", "button text");
        if (call.question) quillpan_error("?%%MB cannot have both text and help strings.");
        block->style |= (block->flags & bar_list) != 0 ? 0x1000 : 0;
    } else if (call.question) {
        block->help = required_list(call, "Missing help string", "help");
        block->style |= 0x100;
    }
    call.question = false;
    control->width = pixels_to_units_x(std::min(count, 200) * (block->button_width + 8));
    control->height = pixels_to_units_y(block->button_height + 10);
    locate(control, 0);
}

LRESULT bitmap_button_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    window_control* control = control_from_window(hwnd, false);
    if (!control || !control->block) return DefWindowProcA(hwnd, message, wparam, lparam);
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (control->grey && *control->grey == 0) return 0;
            SetCapture(hwnd);
            track_switch(control, true, true);
            return 0;
        case WM_LBUTTONUP:
            release_switch(control, inside(hwnd, lparam));
            return 0;
        case WM_MOUSEMOVE:
            track_switch(control, inside(hwnd, lparam), (wparam & MK_LBUTTON) != 0);
            return 0;
        case WM_MOUSELEAVE:
        case WM_CAPTURECHANGED:
            track_switch(control, false, false);
            return 0;
        case WM_ENABLE:
            InvalidateRect(hwnd, nullptr, false);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint_switch(control, hwnd);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

LRESULT constructed_button_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    window_control* control = control_from_window(hwnd, false);
    if (!control || !control->block) return DefWindowProcA(hwnd, message, wparam, lparam);
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_MOUSEMOVE:
            block_mouse(control, hwnd, message, lparam);
            return 0;
        case WM_MOUSELEAVE:
        case WM_CAPTURECHANGED:
            if (message == WM_MOUSELEAVE || GetCapture() != hwnd) hover_over(control, -1);
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTCHARS;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint_block(control, hwnd);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

}  // namespace tarn::winio
