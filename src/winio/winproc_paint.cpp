// Painting of a window's own area, the colours of its controls, and what the owner draws for them.
#include <algorithm>
#include <vector>

#include "platform/gdi/theme.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/layout.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

// A subscript reaches into the line below, and a superscript into the one above: they leave what
// stands there as it is.
bool reaches_over(const window_control* control) {
    return control->type == control_type::text && control->baseline_shift != 0;
}

bool drawn_on_wallpaper(const fancy_window* window, const window_control* control) {
    return window->flags.transparent_on_wallpaper && window->wallpaper &&
           (control->type == control_type::text || control->type == control_type::static_string);
}

// Of a program's two colours one may be the system's own: then that one gives way until the text
// can be read.
COLORREF text_colour_on(const window_control* control, COLORREF background) {
    if (control->text_colour != default_text_colour()) return control->text_colour;
    return readable(control->text_colour, background);
}

bool is_child_area(const fancy_window* window, const window_control* control) {
    if (!control->hwnd || reaches_over(control) || drawn_on_wallpaper(window, control))
        return false;
    return (type_properties(control->type) & reports_position) != 0 ||
           control->type == control_type::graphics || control->type == control_type::edit_box ||
           control->type == control_type::mdi_frame;
}

bool overlaps(const RECT& a, const RECT& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

void exclude_children(fancy_window* window, HDC dc, const RECT& damage) {
    std::vector<RECT> areas;
    for (const window_control* control = window->first_control; control; control = control->next) {
        if (!is_child_area(window, control)) continue;
        RECT area{control->left, control->top, control->right + 1, control->bottom + 1};
        if (overlaps(area, damage) && IsWindowVisible(control->hwnd)) areas.push_back(area);
    }
    exclude_clip_rects(dc, areas);
}

void draw_frames(fancy_window* window, HDC dc) {
    for (window_control* control = window->first_control; control; control = control->next)
        if (control->type == control_type::box_frame && !control->flags.undrawn)
            draw_box(control, dc);
}

// %gd: lines every ten characters across and every line down, ticks between them.
void draw_grid(HDC dc, const fancy_window* window, const RECT& client) {
    HPEN pen = get_pen(PS_SOLID, 1, theme().border);
    HGDIOBJ old = SelectObject(dc, pen);
    std::int32_t unit_x = records().char_width, unit_y = records().char_height;
    std::int32_t left = window->margin_left * unit_x / 4, top = window->margin_top * unit_y / 8;
    for (std::int32_t x = left; x < client.right; x += 10 * unit_x) {
        MoveToEx(dc, x, client.top);
        LineTo(dc, x, client.bottom);
    }
    for (std::int32_t y = top; y < client.bottom; y += unit_y) {
        MoveToEx(dc, client.left, y);
        LineTo(dc, client.right, y);
        for (std::int32_t x = left; x < client.right; x += unit_x) {
            MoveToEx(dc, x, y - 2);
            LineTo(dc, x, y + 3);
        }
    }
    SelectObject(dc, old);
}

void draw_icon(const DRAWITEMSTRUCT& item, HICON icon, std::int32_t most) {
    const RECT& place = item.rcItem;
    const std::int32_t side = std::min({place.width(), place.height(), most});
    DrawIconEx(item.hDC, place.left + (place.width() - side) / 2,
               place.top + (place.height() - side) / 2, icon, side, side);
}

void draw_system_icon(const window_control* control, const DRAWITEMSTRUCT& item) {
    FillRect(item.hDC, item.rcItem, get_brush(control->background));
    if (control->grey && *control->grey == 0) return;
    constexpr std::int32_t any_size = 1024;
    draw_icon(item, LoadSystemIcon(static_cast<std::int32_t>(control->system_icon)), any_size);
}

// %ic, %bm, %im, %fi: the picture of that name, or that the program handed over.
void draw_named_picture(const window_control* control, const DRAWITEMSTRUCT& item) {
    FillRect(item.hDC, item.rcItem, get_brush(control->background));
    if (control->type == control_type::icon) {
        if (HICON icon = find_icon(control->text))
            draw_icon(item, icon, GetIconSize(control->text));
        else
            draw_missing_picture(item.hDC, item.rcItem);
        return;
    }
    const bool handed_over = control->data != 0;
    draw_bitmap(item.hDC, item.rcItem,
                handed_over ? static_cast<HBITMAP>(static_cast<std::int32_t>(control->data))
                            : load_resource(control->text));
}

}  // namespace

COLORREF ground_behind(const window_control* control) {
    return control->box ? control->box->background : control->window->background;
}

// Colours that nobody chose are the theme's, which has changed.
void take_theme(fancy_window* window) {
    const auto change = [](COLORREF& colour) { colour = in_this_theme(colour); };
    if (!window->flags.own_background) change(window->background);
    change(window->text_colour);
    for (window_control* each = window->first_control; each; each = each->next) {
        change(each->background);
        change(each->text_colour);
        change(each->prompt_colour);
        change(each->saved_text_colour);
    }
}

LRESULT control_colours(fancy_window* window, HDC dc, HWND child) {
    window_control* control = control_of_handle(window, child);
    if (!control) return 0;
    COLORREF background = control->background;
    // A field that can't be used doesn't stand out as one that waits for something.
    if (background == data_colour() && control->flags.data_control && !IsWindowEnabled(child))
        background = ground_behind(control);
    if (control->font) SelectObject(dc, control->font);
    SetBkColor(dc, background);
    SetTextColor(dc, text_colour_on(control, background));
    if (reaches_over(control) || drawn_on_wallpaper(window, control)) {
        SetBkMode(dc, TRANSPARENT);
        return static_cast<LRESULT>(GetStockObject(NULL_BRUSH));
    }
    return static_cast<LRESULT>(get_brush(background));
}

void paint_window(fancy_window* window) {
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, paint);
    if (dc) {
        RECT client;
        GetClientRect(hwnd, client);
        std::int32_t level = SaveDC(dc);
        exclude_children(window, dc, paint.rcPaint);
        fill_main_window(window, dc, client);
        RestoreDC(dc, level);
        draw_frames(window, dc);
        if (window->flags.grid) draw_grid(dc, window, client);
        EndPaint(hwnd, paint);
    }
    window->flags.just_resized = false;
    monitor_pending_close();
    if (!watch.gone()) post_start_up(window);
}

bool draw_item(fancy_window* window, const DRAWITEMSTRUCT& item) {
    if (const window_control* owner = IsAlert(window, item.hwndItem)) {
        draw_alert(owner, item);
        return true;
    }
    window_control* control = control_of_handle(window, item.hwndItem);
    if (!control) return false;
    switch (control->type) {
        case control_type::system_icon:
            draw_system_icon(control, item);
            return true;
        case control_type::icon:
        case control_type::bitmap:
        case control_type::picture:
            draw_named_picture(control, item);
            return true;
        default:
            return false;
    }
}

}  // namespace tarn::winio
