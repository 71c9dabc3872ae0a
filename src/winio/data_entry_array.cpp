// %tx, a screen of character cells with an attribute each, and %ty, its colours.
#include <algorithm>
#include <cstdlib>

#include "platform/gdi/gdi.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/data_entry.h"
#include "winio/layout.h"
#include "winio/menus.h"
#include "winio/options.h"
#include "winio/report.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

enum : std::uint8_t {
    full_mouse = 1,
    full_keys = 2,
    tabs_too = 4,
    painted = 8,
    no_popup = 0x10,
};
constexpr std::int32_t key_released = static_cast<std::int32_t>(0x80000000);

template <typename Block>
Block* new_block() {
    auto* block = static_cast<Block*>(std::calloc(1, sizeof(Block)));
    if (!block) heap_exhausted();
    discard_with_window(block, nullptr);
    return block;
}

text_array* array_of(const window_control* control) {
    return static_cast<text_array*>(control->block);
}

void measure_cells(window_control* control, text_array* array) {
    HDC dc = measuring_dc();
    HGDIOBJ before = SelectObject(dc, control->font);
    SIZE size;
    TEXTMETRIC metric;
    GetTextExtentPoint32A(dc, "@@@@@@@@@@", 10, size);
    GetTextMetricsA(dc, metric);
    SelectObject(dc, before);
    array->cell_width = std::max(size.cx / 10, 1);
    array->cell_height = std::max(metric.tmHeight + metric.tmExternalLeading, 1);
}

const colour_pair* pair_of(const text_array* array, std::uint8_t attribute) {
    for (const colour_pair* pair = array->colours; pair; pair = pair->next)
        if (pair->attribute == attribute) return pair;
    defered_quillpan_error("Invalid attribute %d in text array", attribute);
    return array->colours;
}

std::int32_t columns_in(const text_array* array, std::int32_t width) {
    return std::clamp(width / array->cell_width, 0, std::max(array->row_length, 0));
}

std::int32_t rows_in(const text_array* array, std::int32_t height) {
    return std::clamp(height / array->cell_height, 0, std::max(array->rows, 0));
}

void draw_row(HDC dc, const text_array* array, std::int32_t row, std::int32_t columns) {
    std::size_t start = static_cast<std::size_t>(row) * static_cast<std::size_t>(array->row_length);
    const char* text = array->text + start;
    const auto* attributes = reinterpret_cast<const std::uint8_t*>(array->attributes) + start;
    for (std::int32_t column = 0; column < columns;) {
        std::int32_t end = column + 1;
        while (end < columns && attributes[end] == attributes[column]) ++end;
        if (const colour_pair* pair = pair_of(array, attributes[column])) {
            SetTextColor(dc, pair->text);
            SetBkColor(dc, pair->background);
        }
        TextOutAW(dc, column * array->cell_width, row * array->cell_height, text + column,
                  end - column);
        column = end;
    }
}

void paint_array(window_control* control, HWND hwnd) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, paint);
    if (!dc) return;
    text_array* array = array_of(control);
    RECT client;
    GetClientRect(hwnd, client);
    SelectObject(dc, control->font);
    SetBkMode(dc, OPAQUE);
    std::int32_t columns = columns_in(array, client.width());
    std::int32_t rows = rows_in(array, client.height());
    if (array->text && array->attributes)
        for (std::int32_t row = 0; row < rows; ++row) draw_row(dc, array, row, columns);
    else
        columns = rows = 0;
    ExcludeClipRect(dc, {0, 0, columns * array->cell_width, rows * array->cell_height});
    FillRect(dc, client, get_brush(control->background));
    EndPaint(hwnd, paint);
    array->flags |= painted;
}

void run(window_control* control, const char* reason) {
    if (!control->callback) return;
    HWND parent = control->window->hwnd;
    act_on_result(parent, call_function(control, reason, true));
}

void array_sized(window_control* control, LPARAM size) {
    text_array* array = array_of(control);
    if ((array->flags & painted) == 0 || !control->callback) return;
    auto both = static_cast<std::uintptr_t>(size);
    parameter_set& context = callbacks().context;
    context.text_array_resizing = 1;
    context.text_array_width = columns_in(array, LOWORD(both));
    context.text_array_depth = rows_in(array, HIWORD(both));
    run(control, "RESIZE");
    callbacks().context.text_array_resizing = 0;
}

void character_typed(window_control* control, std::int32_t character) {
    callbacks().context.text_array_char = character;
    run(control, "CHARACTER_INPUT");
}

const char* mouse_reason(UINT message) {
    switch (message) {
        case WM_LBUTTONDOWN:
            return "MOUSE_LEFT_CLICK";
        case WM_LBUTTONUP:
            return "MOUSE_LEFT_RELEASE";
        case WM_RBUTTONDOWN:
            return "MOUSE_RIGHT_CLICK";
        case WM_RBUTTONUP:
            return "MOUSE_RIGHT_RELEASE";
        case WM_MBUTTONDOWN:
            return "MOUSE_MIDDLE_CLICK";
        case WM_MBUTTONUP:
            return "MOUSE_MIDDLE_RELEASE";
        case WM_LBUTTONDBLCLK:
            return "MOUSE_DOUBLE_CLICK";
        case WM_MOUSEMOVE:
            return "MOUSE_MOVE";
        default:
            return nullptr;
    }
}

void mouse_event(window_control* control, const char* reason, WPARAM keys, LPARAM place) {
    const text_array* array = array_of(control);
    parameter_set& context = callbacks().context;
    context.text_array_x = GET_X_LPARAM(place) / array->cell_width;
    context.text_array_y = GET_Y_LPARAM(place) / array->cell_height;
    context.text_array_mouse_flags = static_cast<std::int32_t>(keys & 0xFF);
    run(control, reason);
}

// True: the message has been dealt with.
bool key_message(window_control* control, UINT message, WPARAM wparam) {
    bool alt = GetKeyState(VK_MENU) < 0;
    bool keys = (array_of(control)->flags & full_keys) != 0;
    auto key = static_cast<std::int32_t>(wparam);
    switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            if (!keys || alt) return false;
            character_typed(control, key);
            return true;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            if (!keys || alt) return false;
            character_typed(control, key + key_released);
            return true;
        case WM_CHAR:
        case WM_SYSCHAR:
            if (keys || alt) return false;
            character_typed(control, key);
            return true;
        default:
            return false;
    }
}

bool popup_message(window_control* control, LPARAM place) {
    if ((array_of(control)->flags & no_popup) != 0) return true;
    POINT at;
    GetCursorPos(at);
    LPARAM where = place == -1 ? -1 : MAKELPARAM(at.x, at.y);
    return display_popup_menu1(control->window, control->hwnd, where, place != -1);
}

}  // namespace

HFONT get_text_array_font(const fancy_window* window) {
    HFONT stock = GetStockObject(SYSTEM_FIXED_FONT);
    if (!window->font || !window->flags.font_named) return stock;
    HDC dc = measuring_dc();
    HGDIOBJ before = SelectObject(dc, window->font);
    TEXTMETRIC metric;
    GetTextMetricsA(dc, metric);
    SelectObject(dc, before);
    bool proportional = (metric.tmPitchAndFamily & 1) != 0;
    if (!proportional) return window->font;
    LOGFONT description = window->font_spec;
    description.lfWidth = 0;
    constexpr char face[] = "FIXEDSYS";
    std::fill(std::begin(description.lfFaceName), std::end(description.lfFaceName), '\0');
    std::copy(std::begin(face), std::end(face), description.lfFaceName);
    return get_font(description);
}

void handle_tx(code_call& call) {
    std::int32_t columns = call.n, rows = call.m;
    if (columns < 1 || rows < 1) {
        quillpan_error("?Width and height (>1) parameters must be specified for %%TX");
        columns = std::max(columns, 1);
        rows = std::max(rows, 1);
    }
    fancy_window* window = current_window();
    window_control* control = new_window_control(control_type::text_array);
    auto* array = new_block<text_array>();
    control->block = array;
    collect_tx_options(call, control);
    read_resource_id(call, *control);
    array->text = user_char_pointer(call.arguments);
    array->attributes = user_char_pointer(call.arguments);
    array->row_length = user_integer(call.arguments);
    array->rows = user_integer(call.arguments);
    control->variable = array->text;
    read_grey_variable(call, *control);
    read_callback(call, *control, "should be a list-box call-back function");
    auto* first = new_block<colour_pair>();
    first->text = control->text_colour;
    first->background = control->background;
    array->colours = first;
    control->font = get_text_array_font(window);
    measure_cells(control, array);
    control->width = pixels_to_units_x(std::min(columns, 10000) * array->cell_width);
    control->height = pixels_to_units_y(std::min(rows, 10000) * array->cell_height);
    pending().text_array_seen = true;
    locate(control, 0);
}

void handle_ty(code_call& call) {
    COLORREF background = user_colour(call);
    window_control* control = current_window()->last_control;
    if (!pending().text_array_seen || !control || control->type != control_type::text_array) {
        quillpan_error("?%%TY must immediately follow %%TX");
        return;
    }
    colour_pair** end = &array_of(control)->colours;
    std::int32_t number = 0;
    for (; *end; end = &(*end)->next) number = (*end)->attribute + 1;
    auto* pair = new_block<colour_pair>();
    pair->attribute = number;
    pair->background = GetNearestColor(measuring_dc(), background);
    pair->text = current_window()->text_colour;
    *end = pair;
}

LRESULT text_array_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    window_control* control = control_from_window(hwnd, false);
    if (!control || !control->block) return DefWindowProcA(hwnd, message, wparam, lparam);
    if (key_message(control, message, wparam)) return 0;
    const char* reason = mouse_reason(message);
    if (message == WM_LBUTTONDOWN) {
        window_watch watch(control->window);
        SetFocus(hwnd);
        if (watch.gone() || !IsWindow(hwnd)) return 0;
    }
    if (reason && (array_of(control)->flags & full_mouse) != 0) {
        mouse_event(control, reason, wparam, lparam);
        return 0;
    }
    switch (message) {
        case WM_RBUTTONDOWN:
            return popup_message(control, lparam) ? 0
                                                  : DefWindowProcA(hwnd, message, wparam, lparam);
        case WM_CONTEXTMENU:
            return popup_message(control, lparam) ? 0
                                                  : DefWindowProcA(hwnd, message, wparam, lparam);
        case WM_GETDLGCODE:
            return (array_of(control)->flags & tabs_too) != 0 ? 0x83 : 0x81;
        case WM_SIZE:
            array_sized(control, lparam);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint_array(control, hwnd);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

}  // namespace tarn::winio
