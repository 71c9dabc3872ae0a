// Where the lines of an edit field are, how they scroll, and how they are painted.
#include <algorithm>
#include <cmath>

#include "platform/base/text.h"
#include "platform/controls/edit.h"
#include "platform/controls/letters.h"

namespace tarn::platform {
namespace {

constexpr float bullet_width = 8;
constexpr std::size_t none = SIZE_MAX;
constexpr int tab_characters = 8;

bool is_control(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

std::int32_t pixel(float x) {
    return static_cast<std::int32_t>(std::lround(x));
}

}  // namespace

// ---- The area and its lines --------------------------------------------------------------------

bool Edit::wraps() const {
    return multi_line && (has(ES_CENTER | ES_RIGHT) || !(has(ES_AUTOHSCROLL) || has(WS_HSCROLL)));
}

// Where the text stands. Together the margins leave a box that is one digit wider than its number
// room for all of its digits.
RECT Edit::area() const {
    RECT rect = client();
    if (multi_line) {
        rect.left += 3;
        rect.right -= 2;
        if (rect.height() >= line_height + 4) rect.top += 2;
        return rect;
    }
    const bool right = has(ES_RIGHT);
    const bool centre = has(ES_CENTER);
    rect.left += right ? 1 : centre ? 2 : 3;
    rect.right -= right ? 3 : centre ? 2 : 1;
    rect.top += (rect.height() - line_height) / 2;
    rect.bottom = rect.top + line_height;
    return rect;
}

std::size_t Edit::visible_lines() const {
    if (!multi_line) return 1;
    const RECT rect = area();
    return static_cast<std::size_t>(std::max(1, rect.height() / std::max(1, line_height)));
}

// Where the shown characters of a line end: its line end is not one of them.
std::size_t Edit::line_end(std::size_t line) const {
    if (line + 1 >= lines.count()) return text.size();
    std::size_t end = lines.start(line + 1);
    if (text[end - 1] != '\n') return end;
    --end;
    if (end > lines.start(line) && text[end - 1] == '\r') --end;
    return end;
}

std::size_t Edit::caret_line() const {
    if (!multi_line) return 0;
    const std::size_t line = lines.line_of(caret);
    return trails && line > 0 && lines.start(line) == caret ? line - 1 : line;
}

// Where the line behind the one at `from` begins; `none` behind the last.
std::size_t Edit::next_start(const Measure& measure, std::size_t from) {
    const std::size_t newline = text.find('\n', from);
    const std::size_t hard = newline < text.size() ? newline + 1 : none;
    if (wrap_width < 0) return hard;
    const auto room = static_cast<float>(wrap_width);
    LineLayout piece;
    std::size_t length = static_cast<std::size_t>(std::max(32, wrap_width / 3));
    for (;; length *= 2) {
        std::size_t end = std::min(newline, from + length);
        if (end < newline) end = std::max(boundary(end), from);
        piece.text = text.part(from, end);
        measure_line(measure, piece);
        if (piece.width() > room) break;
        if (end == newline) return hard;
    }
    // The first character that doesn't fit; blanks before it may hang over the edge.
    const std::string& words = piece.text;
    std::size_t over = 0;
    while (over < words.size() && piece.x[over + 1] <= room) ++over;
    std::size_t cut = over;
    while (cut > 0 && (static_cast<unsigned char>(words[cut]) & 0xC0) == 0x80) --cut;
    if (cut == 0) cut = character_end(words, 0);
    const auto blank = [&](std::size_t at) { return words[at] == ' ' || words[at] == '\t'; };
    std::size_t word = cut;
    if (!(cut < words.size() && blank(cut))) {
        while (word > 0 && !blank(word - 1) && words[word - 1] != '-') --word;
        if (word > 0) cut = word;
    }
    std::size_t start = from + cut;
    while (start < newline && (text[start] == ' ' || text[start] == '\t')) ++start;
    if (start < newline && text[start] == '\r' && start + 1 == newline) ++start;
    return start >= newline ? hard : start;
}

void Edit::rebuild_lines() {
    layout.start = SIZE_MAX;
    wrap_width = wraps() ? std::max(1, area().width()) : -1;
    std::vector<std::size_t> starts;
    if (multi_line) {
        const Measure measure{*this};
        for (std::size_t at = next_start(measure, 0); at != none; at = next_start(measure, at)) {
            starts.push_back(at);
        }
    }
    lines.reset(std::move(starts), text.size());
}

// After a change that began at `at` and reached into line `last_line` of before.
Edit::Changed Edit::update_lines(std::size_t at, std::size_t last_line) {
    if (!multi_line) {
        lines.set_text_size(text.size());
        return {0, 1, false};
    }
    std::size_t first = lines.line_of(at);
    // A word that became shorter may go up to the line above.
    const bool wrapped_into =
        wrap_width >= 0 && first > 0 && text.size() > 0 && text[lines.start(first) - 1] != '\n';
    if (wrapped_into) --first;
    const std::size_t before = lines.count();
    lines.replace(first + 1, last_line + 1, {}, text.size());
    const Measure measure{*this};
    std::vector<std::size_t> fresh;
    std::size_t kept = first + 1;
    std::size_t start = next_start(measure, lines.start(first));
    for (; start != none; start = next_start(measure, start)) {
        while (kept < lines.count() && lines.start(kept) < start) ++kept;
        if (kept < lines.count() && lines.start(kept) == start) break;
        fresh.push_back(start);
    }
    if (start == none) kept = lines.count();
    lines.replace(first + 1, kept, fresh, text.size());
    return {first, first + 1 + fresh.size(), lines.count() != before};
}

// ---- Places in a line --------------------------------------------------------------------------

void Edit::measure_line(const Measure& measure, LineLayout& of) const {
    const std::string_view shown = of.text;
    of.x.assign(shown.size() + 1, 0);
    if (password != 0) {
        float x = 0;
        for (std::size_t at = 0; at < shown.size(); x += bullet_width) {
            const std::size_t end = character_end(shown, at);
            while (at < end) of.x[at++] = x;
        }
        of.x[shown.size()] = x;
        return;
    }
    float x = 0;
    float tab = 0;
    for (std::size_t at = 0; at < shown.size();) {
        std::size_t end = at;
        while (end < shown.size() && !is_control(shown[end])) ++end;
        if (end > at) {
            text_positions(measure.dc(), shown.substr(at, end - at), of.x.data() + at);
            if (x != 0) {
                for (std::size_t i = at; i <= end; ++i) of.x[i] += x;
            }
            x = of.x[end];
            at = end;
            continue;
        }
        of.x[at] = x;
        if (shown[at] == '\t') {
            if (tab == 0) {
                TEXTMETRIC metric;
                GetTextMetricsA(measure.dc(), metric);
                tab = static_cast<float>(std::max(1, metric.tmAveCharWidth * tab_characters));
            }
            x = (std::floor(x / tab + 0.01F) + 1) * tab;
        }
        of.x[++at] = x;
    }
}

const LineLayout& Edit::line_layout(std::size_t line) {
    const std::size_t start = lines.start(line);
    const std::size_t end = line_end(line);
    if (layout.start == start && layout.end == end) return layout;
    layout.start = start;
    layout.end = end;
    layout.text.clear();
    text.append_to(layout.text, start, end);
    measure_line(Measure{*this}, layout);
    widest = std::max(widest, layout.width());
    return layout;
}

// x of the line's begin in the client area.
std::int32_t Edit::line_left(const LineLayout& of) const {
    const RECT rect = area();
    const std::int32_t spare = rect.width() - static_cast<std::int32_t>(std::ceil(of.width()));
    if (spare <= 0 || !has(ES_CENTER | ES_RIGHT)) return rect.left - scroll_x;
    return rect.left - scroll_x + (has(ES_RIGHT) ? spare : spare / 2);
}

POINT Edit::point_of(std::size_t offset, std::size_t line) {
    const LineLayout& of = line_layout(line);
    const std::size_t at = std::min(offset - of.start, of.text.size());
    const auto down = static_cast<std::ptrdiff_t>(line) - static_cast<std::ptrdiff_t>(top);
    return {line_left(of) + pixel(of.x[at]),
            area().top + static_cast<std::int32_t>(
                             std::clamp<std::ptrdiff_t>(down * line_height, -1000000, 1000000))};
}

// The place between characters that is nearest to `x` in the client area.
std::size_t Edit::offset_at_x(std::size_t line, float x) {
    const LineLayout& of = line_layout(line);
    x -= static_cast<float>(line_left(of));
    auto hit =
        static_cast<std::size_t>(std::upper_bound(of.x.begin(), of.x.end(), x) - of.x.begin());
    if (hit == 0) return of.start;
    if (hit >= of.x.size()) return of.start + of.text.size();
    --hit;
    while (hit > 0 && (static_cast<unsigned char>(of.text[hit]) & 0xC0) == 0x80) --hit;
    const std::size_t behind = character_end(of.text, hit);
    const bool right_half = x - of.x[hit] > of.x[behind] - x;
    return of.start + (right_half ? behind : hit);
}

std::size_t Edit::offset_at(POINT at, std::size_t* on_line) {
    std::size_t line = 0;
    if (multi_line) {
        const std::int32_t down = at.y - area().top;
        const std::int64_t row = static_cast<std::int64_t>(top) +
                                 (down >= 0 ? down / line_height : (down + 1) / line_height - 1);
        line = static_cast<std::size_t>(
            std::clamp<std::int64_t>(row, 0, static_cast<std::int64_t>(lines.count()) - 1));
    }
    if (on_line != nullptr) *on_line = line;
    return offset_at_x(line, static_cast<float>(at.x));
}

// ---- Selection and scrolling -------------------------------------------------------------------

void Edit::select(std::size_t new_anchor, std::size_t new_caret, bool at_line_end) {
    const std::size_t old_low = low();
    const std::size_t old_high = high();
    // The program may have given the field another text since a drag began.
    anchor = boundary(new_anchor);
    caret = boundary(new_caret);
    trails = at_line_end;
    if (old_low == low() && old_high == high()) return;
    const bool had = old_low != old_high;
    const bool has_now = low() != high();
    if (had && has_now && old_low == low()) {
        repaint_range(std::min(old_high, high()), std::max(old_high, high()));
    } else if (had && has_now && old_high == high()) {
        repaint_range(std::min(old_low, low()), std::max(old_low, low()));
    } else {
        if (had) repaint_range(old_low, old_high);
        if (has_now) repaint_range(low(), high());
    }
}

void Edit::repaint_lines(std::size_t first, std::size_t last) {
    const std::size_t bottom = top + visible_lines() + 2;
    if (last <= top || first >= bottom) return;
    RECT strip = client();
    const std::int32_t y = area().top;
    if (first > top || !multi_line) {
        strip.top = y + static_cast<std::int32_t>(multi_line ? first - top : 0) * line_height;
    }
    if (last < bottom) strip.bottom = y + static_cast<std::int32_t>(last - top) * line_height;
    repaint(strip);
}

void Edit::repaint_range(std::size_t from, std::size_t to) {
    const std::size_t first = multi_line ? lines.line_of(from) : 0;
    const std::size_t last = multi_line ? lines.line_of(to) : 0;
    if (first != last) return repaint_lines(first, last + 1);
    if (first < top || first > top + visible_lines()) return;
    RECT strip = client();
    strip.left = std::max(strip.left, point_of(from, first).x - 2);
    const POINT end = point_of(to, first);
    strip.right = std::min(strip.right, end.x + 3);
    strip.top = end.y;
    strip.bottom = end.y + line_height;
    repaint(strip);
}

void Edit::scroll_to(std::size_t new_top, std::int32_t new_x) {
    const std::size_t shown = visible_lines();
    new_top = lines.count() > shown ? std::min(new_top, lines.count() - shown) : 0;
    new_x = std::max(0, new_x);
    if (new_top == top && new_x == scroll_x) return;
    const bool down = new_top != top;
    const bool across = new_x != scroll_x;
    top = new_top;
    scroll_x = new_x;
    repaint();
    update_scroll_bars();
    show_caret(false);
    if (down && has(WS_VSCROLL)) notify(*this, EN_VSCROLL);
    if (!dead && across && has(WS_HSCROLL)) notify(*this, EN_HSCROLL);
}

void Edit::scroll_to_caret() {
    const std::size_t line = caret_line();
    const std::size_t shown = visible_lines();
    std::size_t to = top;
    if (line < top) to = line;
    if (line >= top + shown) to = line - shown + 1;
    std::int32_t x = scroll_x;
    if (wrap_width < 0) {
        const RECT rect = area();
        const std::int32_t room = std::max(1, rect.width());
        const std::int32_t at = point_of(caret, line).x;
        if (at < rect.left) {
            x -= rect.left - at + (scroll_x > 0 ? room / 4 : 0);
        } else if (at > rect.right) {
            x += at - rect.right;
        }
        // No emptiness at the end of a line that was scrolled, and became shorter.
        if (!multi_line) {
            const auto width = static_cast<std::int32_t>(std::ceil(line_layout(0).width()));
            x = std::min(x, std::max(0, width - room));
        }
    }
    scroll_to(to, x);
}

void Edit::update_scroll_bars() {
    if (!multi_line) return;
    SCROLLINFO info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    if (has(WS_VSCROLL)) {
        info.nMax = static_cast<std::int32_t>(std::min<std::size_t>(lines.count() - 1, INT32_MAX));
        info.nPage = static_cast<UINT>(visible_lines());
        info.nPos = static_cast<std::int32_t>(top);
        SetScrollInfo(hwnd, SB_VERT, info, true);
    }
    if (has(WS_HSCROLL) && wrap_width < 0) {
        info.nMax = static_cast<std::int32_t>(std::min(widest, 1e9F)) + 1;
        info.nPage = static_cast<UINT>(std::max(0, area().width()));
        info.nPos = scroll_x;
        SetScrollInfo(hwnd, SB_HORZ, info, true);
    }
}

void Edit::show_caret(bool scroll_there) {
    if (scroll_there) scroll_to_caret();
    if (!has_caret || dead) return;
    const POINT at = point_of(caret, caret_line());
    SetCaretPos(at.x, at.y);
}

void Edit::font_changed() {
    line_height = Measure{*this}.line_height();
    rebuild_lines();
    update_scroll_bars();
    if (has_caret) {
        make_caret();
        ShowCaret(hwnd);
        show_caret(true);
    }
}

// ---- Painting ----------------------------------------------------------------------------------

void Edit::draw_characters(HDC dc, const LineLayout& of, std::int32_t x, std::int32_t y,
                           const RECT& damaged, COLORREF colour) const {
    if (password != 0) {
        const float centre = static_cast<float>(y) + static_cast<float>(line_height) / 2 + 0.5F;
        const auto left = static_cast<float>(x);
        for (float at = 0; at < of.width(); at += bullet_width) {
            fill_circle(dc, {left + at + bullet_width / 2, centre}, 2.75F, colour);
        }
        return;
    }
    SetTextColor(dc, colour);
    // Pieces begin at fixed places, so that a piece stands on the same pixels however little of the
    // line is painted.
    constexpr std::size_t piece = 256;
    const std::string_view shown = of.text;
    for (std::size_t at = 0; at < shown.size();) {
        if (is_control(shown[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        const std::size_t stop = std::min(shown.size(), (at / piece + 1) * piece);
        while (end < stop && !is_control(shown[end])) ++end;
        while (end < shown.size() && (static_cast<unsigned char>(shown[end]) & 0xC0) == 0x80) ++end;
        const std::int32_t from = x + pixel(of.x[at]);
        const std::int32_t to = x + pixel(of.x[end]);
        if (from > damaged.right + 8) return;
        if (to >= damaged.left - 8) text_out(dc, from, y, shown.substr(at, end - at));
        at = end;
    }
}

void Edit::paint_line(HDC dc, std::size_t line, const RECT& damaged, const Colours& colours) {
    const LineLayout& of = line_layout(line);
    const std::int32_t x = line_left(of);
    const std::int32_t y = point_of(of.start, line).y;
    const bool live = enabled();
    const COLORREF plain = live ? colours.text : disabled_text(colours);
    const bool shows = anchor != caret && (focused || has(ES_NOHIDESEL));
    const std::size_t from = std::max(low(), of.start);
    const std::size_t to = std::min(high(), of.start + of.text.size());
    const bool over_end = high() > of.start + of.text.size() &&
                          low() <= of.start + of.text.size() && line + 1 < lines.count();
    if (!shows || (from >= to && !over_end)) {
        return draw_characters(dc, of, x, y, damaged, plain);
    }
    RECT mark{x + pixel(of.x[std::min(from, to) - of.start]), y, x + pixel(of.x[to - of.start]),
              y + line_height};
    if (over_end) mark.right += 5;
    const Theme& look = theme();
    std::int32_t state = SaveDC(dc);
    ExcludeClipRect(dc, mark);
    draw_characters(dc, of, x, y, damaged, plain);
    RestoreDC(dc, state);
    state = SaveDC(dc);
    IntersectClipRect(dc, mark);
    fill_rounded(dc, to_f(mark), 0, focused ? look.selection : look.selection_inactive);
    draw_characters(dc, of, x, y, damaged, focused ? look.selection_text : look.text);
    RestoreDC(dc, state);
}

void Edit::paint() {
    const Paint painting{*this};
    const HDC dc = painting.dc();
    const RECT damaged = painting.damaged();
    const Theme& look = theme();
    const bool still = read_only || !enabled();
    const Colours colours = ask_colours(*this, dc, still ? WM_CTLCOLORSTATIC : WM_CTLCOLOREDIT,
                                        look.text, still ? look.face : look.window);
    if (dead) return;
    SelectObject(dc, control_font(*this));
    fill_back(dc, damaged, colours);
    RECT inside = area();
    if (text.size() == 0 && !cue.empty() && (!focused || cue_with_focus)) {
        SetTextColor(dc, look.text_placeholder);
        if (multi_line) inside.bottom = inside.top + line_height;
        const std::uint32_t align = has(ES_RIGHT) ? DT_RIGHT : has(ES_CENTER) ? DT_CENTER : DT_LEFT;
        draw_line(dc, cue, inside, align | DT_NOPREFIX | DT_END_ELLIPSIS);
    } else if (!multi_line) {
        paint_line(dc, 0, damaged, colours);
    } else {
        paint_lines(dc, damaged, colours);
    }
    draw_inner_edge(*this, damaged, {enabled(), hovered, focused});
}

void Edit::paint_lines(HDC dc, const RECT& damaged, const Colours& colours) {
    const RECT inside = area();
    const std::int32_t height = std::max(1, line_height);
    const std::int32_t first = std::max(0, (damaged.top - inside.top) / height);
    const std::int32_t last = std::max(0, (damaged.bottom - inside.top + height - 1) / height);
    const float before = widest;
    for (auto i = static_cast<std::size_t>(first); i < static_cast<std::size_t>(last); ++i) {
        if (top + i >= lines.count()) break;
        paint_line(dc, top + i, damaged, colours);
    }
    if (widest != before) update_scroll_bars();
}

}  // namespace tarn::platform
