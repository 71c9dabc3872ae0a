// The window's own area: its background, and the frames of boxes. All flat: a box is a fine line,
// a panel a tinted border around its content, relief a change of tone.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"
#include "winio/layout.h"
#include "winio/layout_state.h"
#include "winio/text_layer.h"

namespace tarn::winio {
namespace {

using namespace platform;

constexpr float rounded_radius = 8.0F;

// ---- Background --------------------------------------------------------------------------------
void fill(HDC dc, const RECT& area, COLORREF colour) {
    if (!area.empty()) FillRect(dc, area, get_brush(colour));
}

// The picture of %wp: a bitmap file. The last one is kept, since every paint asks for it.
HBITMAP wallpaper_bitmap(const char* name) {
    struct kept_picture {
        std::string name;
        HBITMAP bitmap{};
    };
    static kept_picture* kept;
    if (!kept) kept = new kept_picture;
    if (kept->name == name) return kept->bitmap;
    if (kept->bitmap) DeleteObject(kept->bitmap);
    kept->name = name;
    kept->bitmap = HBITMAP{};
    std::FILE* file = std::fopen(name, "rbe");
    if (!file) return kept->bitmap;
    std::vector<unsigned char> bytes;
    constexpr std::size_t largest = 64u << 20;
    unsigned char part[16384];
    while (const std::size_t count = std::fread(part, 1, sizeof part, file)) {
        bytes.insert(bytes.end(), part, part + count);
        if (bytes.size() > largest) break;
    }
    std::fclose(file);
    if (bytes.size() <= largest) kept->bitmap = CreateDIBitmap(bytes.data(), bytes.size());
    return kept->bitmap;
}

bool tile_wallpaper(const fancy_window* window, HDC dc, const RECT& area) {
    if (!window->wallpaper) return false;
    const HBITMAP bitmap = wallpaper_bitmap(window->wallpaper);
    SIZE size;
    if (!bitmap || !GetBitmapSize(bitmap, size) || size.cx < 1 || size.cy < 1) return false;
    HDC from = CreateCompatibleDC(dc);
    const HGDIOBJ old = SelectObject(from, bitmap);
    for (std::int32_t y = area.top; y < area.bottom; y += size.cy)
        for (std::int32_t x = area.left; x < area.right; x += size.cx)
            BitBlt(dc, x, y, size.cx, size.cy, from, 0, 0, SRCCOPY);
    SelectObject(from, old);
    DeleteDC(from);
    return true;
}

// The pane of %bx; what is left below it.
RECT fill_pane(HDC dc, RECT area, std::int32_t height) {
    const RECT pane{area.left, area.top, area.right, std::min(height, area.bottom)};
    fill(dc, pane, theme().face);
    const auto line = [&](std::int32_t y, COLORREF colour) {
        if (y >= area.top && y < area.bottom) fill(dc, {area.left, y, area.right, y + 1}, colour);
    };
    line(0, blend(theme().face, RGB(255, 255, 255), theme().dark ? 0.08F : 0.6F));
    line(height - 2, theme().border);
    line(height - 1, theme().border_strong);
    area.top = std::max(area.top, height);
    return area;
}

// Tones of the frame around a control in the three-dimensional look: four kinds by four steps, the
// outermost first.
enum class tone : std::uint8_t { face, light, shade, dark };
using tone_steps = std::array<tone, 4>;
constexpr tone_steps top_left_tones[4] = {
    {tone::light, tone::face, tone::face, tone::shade},  // 3d: a ridge with a sunken field
    {tone::face, tone::face, tone::shade, tone::dark},   // depressed
    {tone::face, tone::light, tone::light, tone::face},  // raised
    {tone::face, tone::face, tone::face, tone::shade},   // thin
};
constexpr tone_steps bottom_right_tones[4] = {
    {tone::shade, tone::face, tone::face, tone::light},
    {tone::face, tone::face, tone::light, tone::face},
    {tone::face, tone::dark, tone::shade, tone::face},
    {tone::face, tone::face, tone::face, tone::light},
};

COLORREF colour_of(tone which) {
    const Theme& look = theme();
    switch (which) {
        case tone::light:
            return blend(look.face, RGB(255, 255, 255), look.dark ? 0.07F : 0.8F);
        case tone::shade:
            return look.border;
        case tone::dark:
            return look.dark ? blend(look.face, RGB(0, 0, 0), 0.55F) : look.border_strong;
        case tone::face:
            break;
    }
    return look.face;
}

void draw_edges(HDC dc, const RECT& at, COLORREF top_left, COLORREF bottom_right) {
    fill(dc, {at.left, at.top, at.right - 1, at.top + 1}, top_left);
    fill(dc, {at.left, at.top, at.left + 1, at.bottom - 1}, top_left);
    fill(dc, {at.left, at.bottom - 1, at.right, at.bottom}, bottom_right);
    fill(dc, {at.right - 1, at.top, at.right, at.bottom}, bottom_right);
}

RECT area_with_bars(const window_control* control) {
    RECT area{control->left, control->top, control->right + 1, control->bottom + 1};
    if (control->spin) area.right = std::max(area.right, control->spin->right + 1);
    if (!control->scrolls) return area;
    if (control->scrolls->vertical.hwnd) area.right += GetSystemMetrics(SM_CXVSCROLL);
    if (control->scrolls->horizontal.hwnd) area.bottom += GetSystemMetrics(SM_CYHSCROLL);
    return area;
}

void draw_control_frame(HDC dc, const window_control* control, std::int32_t kind) {
    const auto row = static_cast<std::size_t>(kind & 3);
    const RECT area = area_with_bars(control);
    // The control covers its own pixels: the innermost edge stands beside them.
    for (std::int32_t outside = 4; outside >= 1; --outside) {
        const auto step = static_cast<std::size_t>(4 - outside);
        draw_edges(
            dc,
            {area.left - outside, area.top - outside, area.right + outside, area.bottom + outside},
            colour_of(top_left_tones[row][step]), colour_of(bottom_right_tones[row][step]));
    }
    ExcludeClipRect(dc, {area.left - 4, area.top - 4, area.right + 4, area.bottom + 4});
}

bool has_frame(const window_control* control) {
    return control->hwnd && type_properties(control->type) & framed_in_3d &&
           control->type != control_type::spin &&
           !(control->flags.data_control && control->flags.no_data_frame);
}

// ---- Boxes -------------------------------------------------------------------------------------
struct cell_look {
    RECT area;
    COLORREF background;
    const frame_block* block;
};

RectF to_float(const RECT& r) {
    return {static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
            static_cast<float>(r.bottom)};
}

// A quarter of a circle around (x, y), from `start` quarter turns on; y grows downward.
void add_quarter(std::vector<PointF>& path, float x, float y, float radius, int start) {
    constexpr int steps = 8;
    for (int i = 0; i <= steps; ++i) {
        const float angle = (static_cast<float>(start) + static_cast<float>(i) / steps) *
                            std::numbers::pi_v<float> / 2.0F;
        path.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
    }
}

// The outline with the corners that `corners` marks rounded.
std::vector<PointF> outline(RectF r, float radius, std::int32_t corners) {
    std::vector<PointF> path;
    const auto corner = [&](std::int32_t bit, float x, float y, float in_x, float in_y, int start) {
        if (corners & bit)
            add_quarter(path, x + in_x, y + in_y, radius, start);
        else
            path.push_back({x, y});
    };
    corner(1, r.left, r.top, radius, radius, 2);
    corner(2, r.right, r.top, -radius, radius, 3);
    corner(4, r.right, r.bottom, -radius, -radius, 0);
    corner(8, r.left, r.bottom, radius, -radius, 1);
    return path;
}

// The corners of a cell that are corners of its whole box.
std::int32_t outer_corners(std::int32_t flags) {
    const bool left = !(flags & not_first_column);
    const bool top = !(flags & not_first_row);
    const bool right = !(flags & not_last_column);
    const bool bottom = !(flags & not_last_row);
    return (left && top ? 1 : 0) | (right && top ? 2 : 0) | (right && bottom ? 4 : 0) |
           (left && bottom ? 8 : 0);
}

float radius_of(const frame_block& block) {
    return block.corners ? rounded_radius : theme().corner;
}

// A status row reaches from edge to edge: a line above it, and one between its cells.
void draw_status_line(HDC dc, const cell_look& cell, COLORREF colour) {
    constexpr std::int32_t gap = 4;
    const RECT& a = cell.area;
    fill(dc, {a.left, a.top, a.right, a.top + 1}, colour);
    if (cell.block->flags & not_first_column)
        fill(dc, {a.left, a.top + gap, a.left + 1, a.bottom - gap}, colour);
}

// One line along each side that this cell draws, meeting in the rounded corners. Sides between two
// cells are drawn once, by the cell before them.
void draw_line(HDC dc, const cell_look& cell, COLORREF colour) {
    const std::int32_t flags = cell.block->flags;
    if (flags & status_frame) return draw_status_line(dc, cell, colour);
    const std::int32_t corners = outer_corners(flags);
    const float radius = radius_of(*cell.block);
    if (corners == 15) {
        stroke_rounded(dc, to_float(cell.area), radius, 1.0F, colour);
        return;
    }
    const auto inset = static_cast<std::int32_t>(std::ceil(radius));
    const RECT& a = cell.area;
    const auto from = [&](std::int32_t bit, std::int32_t value) {
        return corners & bit ? value + inset : value;
    };
    const auto to = [&](std::int32_t bit, std::int32_t value) {
        return corners & bit ? value - inset : value;
    };
    if (!(flags & not_first_row))
        fill(dc, {from(1, a.left), a.top, to(2, a.right), a.top + 1}, colour);
    if (!(flags & not_first_column))
        fill(dc, {a.left, from(1, a.top), a.left + 1, to(8, a.bottom)}, colour);
    fill(dc, {from(8, a.left), a.bottom - 1, to(4, a.right), a.bottom}, colour);
    fill(dc, {a.right - 1, from(2, a.top), a.right, to(4, a.bottom)}, colour);
    const RectF line{static_cast<float>(a.left) + 0.5F, static_cast<float>(a.top) + 0.5F,
                     static_cast<float>(a.right) - 0.5F, static_cast<float>(a.bottom) - 0.5F};
    const auto reach = static_cast<float>(inset) - 0.5F;
    const auto corner = [&](std::int32_t bit, float x, float y, int start) {
        if (!(corners & bit)) return;
        std::vector<PointF> path;
        add_quarter(path, x, y, reach, start);
        stroke_path(dc, path, 1.0F, colour);
    };
    corner(1, line.left + reach, line.top + reach, 2);
    corner(2, line.right - reach, line.top + reach, 3);
    corner(4, line.right - reach, line.bottom - reach, 0);
    corner(8, line.left + reach, line.bottom - reach, 1);
}

void fill_cell(HDC dc, const cell_look& cell) {
    const std::int32_t corners = outer_corners(cell.block->flags);
    if (cell.block->kind == 0 && corners && !(cell.block->flags & status_frame))
        fill_path(dc, outline(to_float(cell.area), radius_of(*cell.block), corners),
                  cell.background);
    else
        fill(dc, cell.area, cell.background);
}

// A tinted band around a content field: `thin` at half the width, flatter in a status row.
void draw_panel(HDC dc, const cell_look& cell, bool thin) {
    const double scale = thin ? 0.5 : 1.0;
    const double gap = cell.block->flags & status_frame ? 5 * 0.7 : 5.0;
    const double edge_x = records().char_width * scale / 4;
    const double edge_y = records().char_height * scale / 8;
    const auto band_x = static_cast<std::int32_t>(edge_x * (1 + gap));
    const auto band_y = static_cast<std::int32_t>(edge_y * (1 + gap));
    const Theme& look = theme();
    const RectF outer = to_float(cell.area);
    fill_rounded(dc, outer, look.corner, blend(cell.background, look.border, 0.35F));
    stroke_rounded(dc, outer, look.corner, 1.0F, look.border);
    // Later cells keep their content nearer to the cell before them than a band is wide.
    constexpr std::int32_t hairline = 2;
    const std::int32_t flags = cell.block->flags;
    const RECT inner{cell.area.left + (flags & not_first_column ? hairline : band_x),
                     cell.area.top + (flags & not_first_row ? hairline : band_y),
                     cell.area.right - band_x, cell.area.bottom - band_y};
    if (inner.empty()) return;
    fill_rounded(dc, to_float(inner), look.corner, cell.background);
    stroke_rounded(dc, to_float(inner), look.corner, 1.0F, look.border);
}

// A groove: the line and, one pixel behind it, light.
void draw_scored(HDC dc, const cell_look& cell) {
    const RECT& a = cell.area;
    const std::int32_t flags = cell.block->flags;
    const auto rectangle = [&](const RECT& r, COLORREF colour) {
        if (!(flags & not_first_row)) fill(dc, {r.left, r.top, r.right, r.top + 1}, colour);
        if (!(flags & not_first_column)) fill(dc, {r.left, r.top, r.left + 1, r.bottom}, colour);
        fill(dc, {r.left, r.bottom - 1, r.right, r.bottom}, colour);
        fill(dc, {r.right - 1, r.top, r.right, r.bottom}, colour);
    };
    rectangle({a.left + 1, a.top + 1, a.right, a.bottom}, colour_of(tone::light));
    rectangle({a.left, a.top, a.right - 1, a.bottom - 1}, colour_of(tone::shade));
}

void draw_relief(HDC dc, const cell_look& cell, bool raised) {
    const COLORREF light = colour_of(tone::light);
    const COLORREF dark = colour_of(tone::dark);
    draw_edges(dc, cell.area, raised ? light : dark, raised ? dark : light);
}

void draw_cell_lines(HDC dc, const cell_look& cell) {
    const frame_block& block = *cell.block;
    switch (block.kind) {
        case 1:
        case 2:
            return draw_panel(dc, cell, block.kind == 2);
        case 3:
            return draw_scored(dc, cell);
        case 4:
        case 5:
            return draw_relief(dc, cell, block.kind == 4);
        default:
            return draw_line(dc, cell, block.line_colour ? block.line_colour : theme().border);
    }
}

// On the upper line, with a gap around it.
void draw_name(HDC dc, const window_control* frame, const cell_look& cell) {
    constexpr std::int32_t from_side = 10;
    const std::string text = std::string(" ") + frame->text + " ";
    const auto length = static_cast<std::int32_t>(text.size());
    const HGDIOBJ old = SelectObject(dc, frame->font);
    SIZE size;
    GetTextExtentPoint32AW(dc, text.c_str(), length, size);
    std::int32_t x = cell.area.left + from_side;
    if (cell.block->name_place == 1)
        x = cell.area.left + (cell.area.width() - size.cx) / 2;
    else if (cell.block->name_place == 2)
        x = cell.area.right - from_side - size.cx;
    const std::int32_t y = cell.area.top - font_depth(dc) / 2;
    fill(dc, {x, cell.area.top, x + size.cx, cell.area.top + 2}, cell.background);
    const COLORREF line = cell.block->line_colour;
    SetTextColor(dc, readable(line ? line : frame->text_colour, cell.background));
    const std::int32_t mode = SetBkMode(dc, TRANSPARENT);
    TextOutAW(dc, x, y, text.c_str(), length);
    SetBkMode(dc, mode);
    SelectObject(dc, old);
}

RECT cell_area(const window_control* frame, const frame_block& block) {
    RECT area{frame->left, frame->top, frame->right + 1, frame->bottom + 1};
    RECT client;
    if (block.flags & status_frame && GetClientRect(frame->window->hwnd, client))
        area.bottom = std::max(area.bottom, client.bottom);
    return area;
}

}  // namespace

COLORREF scale_colour(COLORREF colour, double factor) {
    const auto part = [&](unsigned shift) {
        const double value = (colour >> shift & 0xFF) * factor;
        return static_cast<unsigned>(std::clamp(value, 0.0, 255.0));
    };
    return RGB(part(0), part(8), part(16));
}

void fill_main_window(fancy_window* window, HDC device, const RECT& rectangle) {
    RECT area = rectangle;
    if (tile_wallpaper(window, device, area)) return;
    if (window->flags.pane) area = fill_pane(device, area, window->pane_height);
    if (window->flags.three_d) {
        for (const window_control* c = window->first_control; c; c = c->next)
            if (has_frame(c)) draw_control_frame(device, c, window->border_3d);
        fill(device, area, window->flags.own_background ? window->background : theme().face);
        return;
    }
    fill(device, area, window->background);
}

void draw_box(window_control* frame, HDC device) {
    const auto* block = static_cast<const frame_block*>(frame->block);
    if (!block) return;
    const cell_look cell{cell_area(frame, *block), frame->background, block};
    if (cell.area.empty() || !RectVisible(device, {cell.area.left, cell.area.top - 16,
                                                   cell.area.right + 4, cell.area.bottom + 4}))
        return;
    if (block->shaded)
        draw_shadow(device, to_float(cell.area), theme().corner, 3.0F, theme().dark ? 0.5F : 0.18F);
    if (block->shaded || cell.background != frame->window->background || frame->window->wallpaper)
        fill_cell(device, cell);
    draw_cell_lines(device, cell);
    if (frame->text && *frame->text) draw_name(device, frame, cell);
}

}  // namespace tarn::winio
