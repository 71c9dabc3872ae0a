// Painting: lines stand on the bottom of the view; new ones are scrolled in where they can be.
#include <algorithm>
#include <cstring>
#include <string>

#include "platform/base/text.h"
#include "platform/gdi/theme.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

struct Colours {
    COLORREF text, background;
    HBRUSH brush;
    bool filled = false;  // the brush has put the background there: text needs none of its own
};

Colours colours_of(const window_info& window) {
    const textwin_state& s = state();
    if (window.embedded) return {window.text_colour, window.background, window.brush};
    if (s.colours_set) return {s.text_colour, s.background, s.window_brush};
    return {GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW), s.class_brush};
}

// One walk through the text of a line: runs of one font, without their escapes.
// `visit(descriptor, start, end)` gets bytes of the stored text.
template <class Visit>
void walk_runs(const window_info& window, const window_line& line, Visit visit) {
    const text_descriptor* in_force = line.start;
    const char* text = line.text();
    const char* run = text;
    while (*text != 0) {
        if (*text != window.escape) {
            ++text;
            continue;
        }
        std::int32_t number = 0;
        const std::int32_t length = font_escape(window, text, number);
        if (length == 0) {
            const bool doubled = text[1] == window.escape;
            ++text;
            if (!doubled) continue;
            if (!visit(in_force, run, text)) return;
            run = ++text;  // the second one isn't shown
            continue;
        }
        if (run < text && !visit(in_force, run, text)) return;
        text += length;
        run = text;
        const text_descriptor* wanted = descriptor_of(window, number);
        if (wanted != nullptr) in_force = wanted;
    }
    if (run < text) visit(in_force, run, text);
}

const char* next_character(const window_info& window, const char* at) {
    ++at;
    while (window.utf8 && (static_cast<unsigned char>(*at) & 0xC0) == 0x80) ++at;
    return at;
}

// Columns that a character takes: a tab goes to the next multiple of eight, as on a terminal.
std::int32_t columns_of(char character, std::int32_t column) {
    constexpr std::int32_t tab = 8;
    return character == '\t' ? tab - column % tab : 1;
}

// A run as it is shown, in UTF-8; `column` goes on behind it.
std::string shown_run(const window_info& window, const char* start, const char* end,
                      std::int32_t& column) {
    std::string shown;
    while (start < end) {
        const char* next = std::min(next_character(window, start), end);
        const std::int32_t columns = columns_of(*start, column);
        if (*start == '\t')
            shown.append(static_cast<std::size_t>(columns), ' ');
        else
            shown.append(start, next);
        column += columns;
        start = next;
    }
    return window.utf8 ? shown : utf8_from_page(shown);
}

// Passes over `skip` columns; of a tab its last ones may be left.
const char* skip_columns(const window_info& window, const char* start, const char* end,
                         std::int32_t& skip, std::int32_t& column) {
    while (skip > 0 && start < end) {
        const std::int32_t columns = columns_of(*start, column);
        column += std::min(columns, skip);
        if (columns > skip) {
            skip = 0;
            break;
        }
        skip -= columns;
        start = next_character(window, start);
    }
    return start;
}

// Where the selection stands with respect to the line being drawn.
struct Selection {
    bool inside = false;  // at the line's start
    const char *from = nullptr, *to = nullptr;
    bool covers(const char* at) const {
        return (inside || (from != nullptr && at >= from)) && (to == nullptr || at <= to);
    }
};

Selection selection_in(const window_info& window, const window_line& line, bool inside) {
    Selection s;
    s.inside = inside;
    if (window.selected_first == &line) s.from = window.selected_first_character;
    if (window.selected_last == &line) s.to = window.selected_last_character;
    return s;
}

// Draws [start, end) piece by piece, selected ones in changed colours.
void out_selected(const window_info& window, HDC dc, const Colours& colours,
                  const Selection& selection, const char* start, const char* end,
                  std::int32_t& column) {
    while (start < end) {
        const bool selected = selection.covers(start);
        const char* stop = next_character(window, start);
        while (stop < end && selection.covers(stop) == selected)
            stop = next_character(window, stop);
        if (selected) {
            SetTextColor(dc, GetSysColor(COLOR_HIGHLIGHTTEXT));
            SetBkColor(dc, GetSysColor(COLOR_HIGHLIGHT));
            if (colours.filled) SetBkMode(dc, OPAQUE);
        }
        text_out(dc, 0, 0, shown_run(window, start, std::min(stop, end), column));
        SetTextColor(dc, colours.text);
        SetBkColor(dc, colours.background);
        if (selected && colours.filled) SetBkMode(dc, TRANSPARENT);
        start = stop;
    }
}

void out_line(window_info& window, HDC dc, window_line& line, std::int32_t y,
              const Colours& colours, bool inside_selection) {
    if (window.graphics_dc == 0) FillRect(dc, {0, y, window.width, y + line.height}, colours.brush);
    const Selection selection = selection_in(window, line, inside_selection);
    const bool any_selected = inside_selection || selection.from != nullptr;
    std::int32_t skip = window.column - 1, column = 0;
    MoveToEx(dc, window.left_margin, y);
    walk_runs(window, line, [&](const text_descriptor* font, const char* start, const char* end) {
        start = skip_columns(window, start, end, skip, column);
        if (start >= end) return true;
        SelectObject(dc, font->font);
        const COLORREF own = font == window.descriptors ? colours.text : font->colour;
        SetTextColor(dc, own);
        POINT at;
        GetCurrentPositionEx(dc, at);
        MoveToEx(dc, at.x, y + line.height - font->height);  // all text stands on the line's bottom
        if (any_selected)
            out_selected(window, dc, {own, colours.background, colours.brush, colours.filled},
                         selection, start, end, column);
        else
            text_out(dc, 0, 0, shown_run(window, start, end, column));
        return true;
    });
    POINT at;
    GetCurrentPositionEx(dc, at);
    line.right_edge = at.x;
}

// The line at the top when `bottom` stands at the bottom.
window_line* find_top(const window_info& window) {
    window_line* top = window.bottom;
    std::int32_t room = window.height - window.top_margin - top->height;
    while (top->previous != nullptr) {
        room -= top->previous->height;
        if (room < window.top_margin) break;
        top = top->previous;
    }
    return top;
}

// How many lines below `from` stands `line`, at most `limit`; -1 if it isn't among them.
std::int32_t lines_between(const window_line* from, const window_line* line, std::int64_t limit) {
    for (std::int32_t count = 0; line != nullptr && count <= limit; ++count, line = line->previous)
        if (line == from) return count;
    return -1;
}

// Moves what is on the screen up and says from which line on to draw; null: draw everything.
window_line* scroll_in(window_info& window, HDC dc, window_line* top) {
    if (!window.painted || window.escape_used || window.graphics_dc != 0 || window.repaint_all ||
        window.top == nullptr || window.selected_first != nullptr)
        return nullptr;
    const std::int64_t added = window.lines_added - window.painted_lines;
    const std::int32_t gone = lines_between(window.top, top, added);
    if (gone < 0 || gone >= window.lines_on_view) return nullptr;
    const std::int32_t height = window.descriptors->height;
    if (gone > 0) {
        const RECT area{0, window.top_margin, window.width,
                        window.top_margin + window.lines_on_view * height};
        RECT uncovered;
        if (!ScrollDC(dc, 0, -gone * height, &area, &area, &uncovered)) return nullptr;
        if (uncovered.top < area.bottom - gone * height) {  // something lay over it
            window.repaint_all = true;
            return nullptr;
        }
    }
    window_line* first = window.bottom;
    for (std::int64_t back = added; back > 0 && first->previous != nullptr; --back)
        first = first->previous;
    return first;
}

bool starts_inside_selection(const window_info& window, const window_line* top) {
    const window_line* line = window.selected_first;
    if (line == nullptr) return false;
    for (; line != nullptr && line != window.selected_last; line = line->next)
        if (line == top) return line != window.selected_first;
    return line == top && line != window.selected_first;
}

void erase_below(window_info& window, HDC dc, std::int32_t y, const Colours& colours) {
    FillRect(dc, {0, y, window.width, window.height}, colours.brush);
    if (window.top_margin > 0) FillRect(dc, {0, 0, window.width, window.top_margin}, colours.brush);
}

void measure_caret(window_info& window, HDC dc, std::int32_t bottom_y) {
    const window_line* last = window.last;
    if (last == nullptr) return;
    window.caret_x = last->right_edge;
    window.caret_y = bottom_y + last->height - last->end->height;
    (void)dc;
}

}  // namespace

void place_caret(window_info& window) {
    if (!window.caret_exists) return;
    SetCaretPos(window.caret_x, window.caret_y);
    if (window.bottom == window.last)
        ShowCaret(window.hwnd);
    else
        HideCaret(window.hwnd);
}

void paint_window(window_info& window, HDC dc, bool incremental) {
    Colours colours = colours_of(window);
    COLORREF brush_colour = 0;
    colours.filled = window.graphics_dc == 0 && GetObjectBrush(colours.brush, brush_colour) &&
                     brush_colour == colours.background;
    SetTextColor(dc, colours.text);
    SetBkColor(dc, colours.background);
    SetBkMode(dc, colours.filled ? TRANSPARENT : OPAQUE);
    if (window.graphics_dc != 0) {
        incremental = false;
        BitBlt(dc, 0, 0, window.width, window.height, window.graphics_dc, 1, 1, SRCCOPY);
        SetBkMode(dc, TRANSPARENT);
    }
    window.column_page = 8;
    window.changed = false;
    const std::uint32_t align = SetTextAlign(dc, TA_UPDATECP);
    std::int32_t y = window.top_margin;
    std::int32_t bottom_y = y;
    std::int32_t count = 0;
    if (window.bottom == nullptr) {
        erase_below(window, dc, y, colours);
        window.caret_x = window.left_margin;
        window.caret_y = y;
    } else {
        window_line* top = find_top(window);
        window_line* draw_from = incremental ? scroll_in(window, dc, top) : nullptr;
        bool draw = draw_from == nullptr;
        const bool all = draw;
        window.top = top;
        bool inside = starts_inside_selection(window, top);
        for (window_line* line = top; line != nullptr; line = line->next) {
            if (count > 0 && y + line->height > window.height - window.top_margin) break;
            if (line == draw_from) draw = true;
            if (draw) out_line(window, dc, *line, y, colours, inside);
            if (line == window.selected_first) inside = true;
            if (line == window.selected_last) inside = false;
            bottom_y = y;
            y += line->height;
            ++count;
            if (line == window.bottom) break;
        }
        if (all && window.graphics_dc == 0) erase_below(window, dc, y, colours);
        measure_caret(window, dc, bottom_y);
    }
    SetTextAlign(dc, align);
    const bool changed_count = window.lines_on_view != count;
    window.lines_on_view = count;
    window.painted = true;
    window.painted_lines = window.lines_added;
    if (window.bar_pending || changed_count)
        set_vert_scroll_bar(window, std::max(1, window.bottom_number - count + 1), true);
    place_caret(window);
}

bool character_at(window_info& window, HDC dc, POINT at, window_line*& line,
                  const char*& character) {
    line = window.top != nullptr ? window.top : window.first;
    if (line == nullptr) return false;
    std::int32_t y = window.top_margin;
    while (line != window.bottom && line->next != nullptr && at.y >= y + line->height) {
        y += line->height;
        line = line->next;
    }
    character = line->text();
    std::int32_t x = window.left_margin;
    std::int32_t skip = window.column - 1, column = 0;
    walk_runs(window, *line, [&](const text_descriptor* font, const char* start, const char* end) {
        start = skip_columns(window, start, end, skip, column);
        SelectObject(dc, font->font);
        for (; start < end; start = next_character(window, start)) {
            character = start;
            x +=
                text_extent(dc, shown_run(window, start, next_character(window, start), column)).cx;
            if (at.x < x) return false;
        }
        return true;
    });
    return true;
}

}  // namespace tarn::textwin
