// The mark beside a box whose value is out of its limits: red for an error, amber for a warning.
#include <algorithm>

#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "winio/data_entry.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t mark_size = 16, mark_left = 6, mark_rise = 8, mark_ids = 2000;
constexpr LPARAM warning = 1, error = 2;
constexpr COLORREF alert_red = 0x0000FF;

POINT mark_place(const window_control* control) {
    HWND beside = control->spin && control->spin->hwnd ? control->spin->hwnd : control->hwnd;
    RECT place;
    if (!GetWindowRect(beside, place)) return {};
    POINT corner{place.left, place.top};
    MapWindowPoints(HWND{}, control->window->hwnd, &corner, 1);
    // Over the corner, so that the value under it can be read.
    return {std::max(corner.x - mark_left, 0), std::max(corner.y - mark_rise, 0)};
}

LPARAM kind_of(const window_control* control, bool from_update) {
    std::uint32_t bit = from_update ? policy_warn_on_update : policy_warn_on_edit;
    return (control->update_policy & bit) != 0 ? warning : error;
}

// A sign of the mark's 16 units, moved to its place.
struct mark_canvas {
    HDC dc;
    float left, top;

    PointF at(float x, float y) const { return {left + x, top + y}; }
};

void draw_exclamation(const mark_canvas& canvas, float top, float bottom, COLORREF colour) {
    fill_rounded(canvas.dc,
                 {canvas.left + 7.1F, canvas.top + top, canvas.left + 8.9F, canvas.top + bottom},
                 0.9F, colour);
    fill_circle(canvas.dc, canvas.at(8.0F, bottom + 2.0F), 1.05F, colour);
}

}  // namespace

void CreateAlert(window_control* control, bool from_update) {
    if (control->alert || !control->hwnd) return;
    control->saved_text_colour = control->text_colour;
    control->text_colour = alert_red;
    show_box_again(control);
    POINT place = mark_place(control);
    HWND mark =
        CreateWindowExAW(0, "button", "", 0x4400000B, place.x, place.y, mark_size, mark_size,
                         control->window->hwnd, HMENU{GetDlgCtrlID(control->hwnd) + mark_ids});
    if (!mark) return;
    control->alert = mark;
    SetWindowLong(mark, GWL_USERDATA, kind_of(control, from_update));
    BringWindowToTop(mark);
    ShowWindow(mark, SW_SHOW);
}

void DestroyAlert(window_control* control) {
    if (!control->alert) return;
    HWND mark = control->alert;
    control->alert = HWND{};
    control->text_colour = control->saved_text_colour;
    control->saved_text_colour = 0;
    if (control->hwnd) show_box_again(control);
    DestroyWindow(mark);
}

window_control* IsAlert(fancy_window* window, HWND mark) {
    if (!mark) return nullptr;
    for (window_control* control = window->first_control; control; control = control->next)
        if (control->alert == mark) return control;
    return nullptr;
}

void keep_alert_with(window_control* control) {
    if (!control->alert) return;
    POINT place = mark_place(control);
    MoveWindow(control->alert, place.x, place.y, mark_size, mark_size, true);
}

void draw_alert(const window_control* owner, const DRAWITEMSTRUCT& item) {
    const Theme& look = theme();
    FillRect(item.hDC, item.rcItem, get_brush(ground_behind(owner)));
    mark_canvas canvas{item.hDC, static_cast<float>(item.rcItem.left),
                       static_cast<float>(item.rcItem.top)};
    if (GetWindowLong(item.hwndItem, GWL_USERDATA) == warning) {
        const PointF triangle[] = {canvas.at(8.0F, 1.6F), canvas.at(15.0F, 14.2F),
                                   canvas.at(1.0F, 14.2F)};
        fill_path(item.hDC, triangle, look.warning);
        draw_exclamation(canvas, 5.6F, 10.0F, readable(RGB(255, 255, 255), look.warning));
    } else {
        fill_circle(item.hDC, canvas.at(8.0F, 8.0F), 7.0F, look.danger);
        draw_exclamation(canvas, 3.8F, 9.2F, readable(RGB(255, 255, 255), look.danger));
    }
}

}  // namespace tarn::winio
