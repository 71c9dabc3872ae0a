// How buttons look.
#include <algorithm>

#include "platform/controls/button.h"

namespace tarn::platform {
namespace {

constexpr std::int32_t mark_size = 14;  // of check boxes and radio buttons
constexpr std::int32_t mark_gap = 5;
constexpr std::int32_t image_gap = 6;

void draw_bitmap(HDC dc, std::int32_t bitmap, const RECT& area) {
    SIZE size;
    if (!GetBitmapSize(HBITMAP{bitmap}, size)) return;
    const HDC memory = CreateCompatibleDC(dc);
    const HGDIOBJ old = SelectObject(memory, HBITMAP{bitmap});
    BitBlt(dc, area.left + (area.width() - size.cx) / 2, area.top + (area.height() - size.cy) / 2,
           size.cx, size.cy, memory, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
}

}  // namespace

// The label in `rect`: centred down it, on one line unless more were asked for and fit.
void Button::draw_label(HDC dc, RECT rect, COLORREF colour, std::uint32_t align) {
    SetTextColor(dc, colour);
    const bool many = has(BS_MULTILINE) || text.find('\n') != std::string::npos;
    if (!many) return draw_line(dc, text, rect, align);
    RECT needed = rect;
    draw_text(dc, text, needed, DT_CALCRECT | DT_WORDBREAK | align);
    rect.top += std::max(0, (rect.height() - needed.height()) / 2);
    draw_text(dc, text, rect, DT_WORDBREAK | align);
}

void Button::paint_push(HDC dc, const RECT& rect) {
    const FaceState state{enabled(), hovered, looks_pushed(), is_default()};
    draw_button_face(dc, rect, state);
    RECT label = rect;
    if (shape() == Shape::split) {
        label.right = arrow_rect().left;
        const COLORREF colour = button_text_colour(state);
        const float x = static_cast<float>(label.right);
        RectF rule{x, static_cast<float>(rect.top + 4), x + 1, static_cast<float>(rect.bottom - 4)};
        fill_rounded(dc, rule, 0, colour, 0.3F);
        draw_chevron(dc,
                     {x + static_cast<float>(rect.right - label.right) / 2 - 0.5F,
                      static_cast<float>(rect.height()) / 2},
                     7, Direction::down, colour);
    }
    if (has(BS_BITMAP) && bitmap != 0) return draw_bitmap(dc, bitmap, label);
    const std::uint32_t where = style() & BS_CENTER;
    std::uint32_t align = where == BS_LEFT ? DT_LEFT : where == BS_RIGHT ? DT_RIGHT : DT_CENTER;
    SIZE size;
    if (icon != 0 && GetIconSize(HICON{icon}, size)) {
        const bool alone = has(BS_ICON) || text.empty();
        SIZE words{};
        if (!alone) words = text_extent(dc, without_mnemonics(text));
        const std::int32_t together = alone ? size.cx : size.cx + image_gap + words.cx;
        const std::int32_t x = label.left + std::max(4, (label.width() - together) / 2);
        DrawIconEx(dc, x, rect.top + (rect.height() - size.cy) / 2, HICON{icon}, size.cx, size.cy,
                   !state.enabled);
        if (alone) return;
        label.left = x + size.cx + image_gap;
        align = DT_LEFT;
    } else {
        const std::int32_t pad = align == DT_CENTER ? 2 : 8;
        label.left += pad;
        label.right -= pad;
    }
    draw_label(dc, label, button_text_colour(state), align);
}

// A command link: an arrow, what it does in larger letters, and a note below.
void Button::paint_link(HDC dc, const RECT& rect) {
    const Theme& look = theme();
    const bool live = enabled();
    const RectF r = to_f(rect);
    if (live && (hovered || looks_pushed())) {
        fill_rounded(dc, r, look.corner, looks_pushed() ? look.button_pressed : look.button_hover);
    }
    if (live && (is_default() || hovered)) {
        stroke_rounded(dc, r, look.corner, 1, is_default() ? look.accent : look.border_strong);
    }
    const COLORREF colour = live ? look.text : look.text_disabled;
    RECT needed{0, 0, std::max(1, rect.width() - 36), 1000};
    const HGDIOBJ small = SelectObject(dc, control_font(*this));
    std::int32_t note_height = 0;
    if (!note.empty()) note_height = draw_text(dc, note, needed, DT_CALCRECT | DT_WORDBREAK);
    LOGFONT big;
    HFONT title{};
    if (GetObjectFont(control_font(*this), big) && rect.height() >= 36) {
        big.lfHeight = big.lfHeight * 5 / 4;
        title = CreateFontIndirectA(big);
        SelectObject(dc, title);
    }
    TEXTMETRIC metric;
    GetTextMetricsA(dc, metric);
    const std::int32_t both = metric.tmHeight + (note_height != 0 ? note_height + 2 : 0);
    const std::int32_t top = rect.top + std::max(0, (rect.height() - both) / 2);
    const auto arrow_y = static_cast<float>(top) + static_cast<float>(metric.tmHeight) / 2;
    const COLORREF arrow = live ? look.accent : look.text_disabled;
    const auto x = static_cast<float>(rect.left + 9);
    const PointF shaft[] = {{x, arrow_y}, {x + 13, arrow_y}};
    const PointF head[] = {{x + 8, arrow_y - 5}, {x + 13, arrow_y}, {x + 8, arrow_y + 5}};
    stroke_path(dc, shaft, 1.7F, arrow);
    stroke_path(dc, head, 1.7F, arrow);
    SetTextColor(dc, colour);
    RECT label{rect.left + 30, top, rect.right - 6, top + metric.tmHeight};
    draw_line(dc, text, label, DT_LEFT);
    SelectObject(dc, small);
    if (title != 0) DeleteObject(title);
    if (note_height != 0) {
        SetTextColor(dc, live ? look.text_muted : look.text_disabled);
        RECT below{rect.left + 30, label.bottom + 2, rect.right - 6, rect.bottom};
        draw_text(dc, note, below, DT_WORDBREAK);
    }
}

void Button::paint_mark(HDC dc, const RECT& rect, const Colours& colours) {
    const Theme& look = theme();
    const bool live = enabled();
    const std::int32_t size = std::min({mark_size, rect.height(), rect.width()});
    const bool right = has(BS_LEFTTEXT);
    RECT box;
    box.left = right ? rect.right - size : rect.left;
    box.top = rect.top + (rect.height() - size) / 2;
    box.right = box.left + size;
    box.bottom = box.top + size;

    const bool round = shape() == Shape::radio;
    const RectF b = to_f(box);
    const float radius = round ? (b.right - b.left) / 2 : look.small_corner;
    if (check != 0) {
        COLORREF face = looks_pushed() ? look.accent_pressed
                        : hovered      ? look.accent_hover
                                       : look.accent;
        if (!live) face = look.text_disabled;
        fill_rounded(dc, b, radius, face);
        const COLORREF mark = live ? look.accent_text : look.window;
        if (round) {
            fill_circle(dc, {(b.left + b.right) / 2, (b.top + b.bottom) / 2}, radius * 0.4F, mark);
        } else if (check == BST_INDETERMINATE) {
            const float cy = (b.top + b.bottom) / 2;
            fill_rounded(dc, {b.left + 3.5F, cy - 1, b.right - 3.5F, cy + 1}, 0, mark);
        } else {
            draw_check_mark(dc, box, mark);
        }
    } else {
        COLORREF face = look.window;
        if (!live)
            face = look.button_disabled;
        else if (looks_pushed())
            face = look.button_pressed;
        COLORREF edge = !live ? look.border : look.border_strong;
        if (live && looks_pushed()) edge = look.accent;
        fill_rounded(dc, b, radius, face);
        stroke_rounded(dc, b, radius, 1, edge);
    }

    RECT label = rect;
    if (right) {
        label.right = box.left - mark_gap;
    } else {
        label.left = box.right + mark_gap;
    }
    if (!text.empty()) {
        draw_label(dc, label, live ? colours.text : disabled_text(colours), DT_LEFT);
    }
    if (!focus_ring()) return;
    if (text.empty()) {
        stroke_rounded(dc, b, radius, 2, look.focus_ring);
        return;
    }
    const SIZE words = text_extent(dc, without_mnemonics(text));
    RECT ring = label;
    ring.left -= 3;
    ring.right = std::min(rect.right, label.left + words.cx + 3);
    const std::int32_t spare = std::max(0, (rect.height() - words.cy - 2) / 2);
    if (!has(BS_MULTILINE)) {
        ring.top += spare;
        ring.bottom -= spare;
    }
    stroke_rounded(dc, to_f(ring), look.small_corner, 1, look.focus_ring);
}

void Button::paint_group(HDC dc, const RECT& rect, const Colours& colours) {
    const Theme& look = theme();
    TEXTMETRIC metric;
    GetTextMetricsA(dc, metric);
    RectF frame = to_f(rect);
    if (!text.empty()) frame.top += static_cast<float>(metric.tmHeight / 2);
    const SIZE words = text_extent(dc, without_mnemonics(text));
    RECT label{rect.left + 9, rect.top, std::min(rect.right - 9, rect.left + 9 + words.cx),
               rect.top + metric.tmHeight};
    const std::int32_t state = SaveDC(dc);
    if (!text.empty()) {
        ExcludeClipRect(dc, {label.left - 4, label.top, label.right + 4, label.bottom});
    }
    stroke_rounded(dc, frame, look.corner, 1, look.border);
    RestoreDC(dc, state);
    if (text.empty()) return;
    SetTextColor(dc, enabled() ? colours.text : disabled_text(colours));
    draw_text(dc, text, label, DT_SINGLELINE | DT_LEFT);
}

void Button::paint_by_owner(HDC dc, const RECT& rect) {
    DRAWITEMSTRUCT item;
    item.CtlType = ODT_BUTTON;
    item.CtlID = static_cast<UINT>(GetDlgCtrlID(hwnd));
    item.itemAction = ODA_DRAWENTIRE;
    if (pushed) item.itemState |= ODS_SELECTED;
    if (focused) item.itemState |= ODS_FOCUS;
    if (!enabled()) item.itemState |= ODS_DISABLED;
    item.hwndItem = hwnd;
    item.hDC = dc;
    item.rcItem = rect;
    SetBkMode(dc, OPAQUE);
    send_message(GetParent(hwnd), WM_DRAWITEM, item.CtlID, reinterpret_cast<LPARAM>(&item));
}

void Button::paint() {
    const Paint painting{*this};
    const HDC dc = painting.dc();
    const RECT rect = client();
    const Shape kind = shape();
    const bool on_face = kind == Shape::check || kind == Shape::radio || kind == Shape::group;
    const Theme& look = theme();
    const Colours colours =
        ask_colours(*this, dc, on_face ? WM_CTLCOLORSTATIC : WM_CTLCOLORBTN, look.text, look.face);
    if (dead) return;
    fill_back(dc, rect, colours);
    switch (kind) {
        case Shape::push:
        case Shape::split:
            paint_push(dc, rect);
            if (focus_ring()) {
                draw_focus_ring(dc, rect, look.corner);
                // On a face of the ring's own colour a line within tells it.
                if (is_default()) {
                    stroke_rounded(dc, inset(to_f(rect), 2), 2, 1, look.accent_text);
                }
            }
            break;
        case Shape::link:
            paint_link(dc, rect);
            if (focus_ring()) draw_focus_ring(dc, rect, look.corner);
            break;
        case Shape::check:
        case Shape::radio:
            paint_mark(dc, rect, colours);
            break;
        case Shape::group:
            paint_group(dc, rect, colours);
            break;
        case Shape::owner:
            paint_by_owner(dc, rect);
            break;
    }
}

}  // namespace tarn::platform
