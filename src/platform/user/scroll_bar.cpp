#include "platform/user/scroll_bar.h"

#include <algorithm>

#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"

namespace tarn::platform {

// ---- Values ------------------------------------------------------------------------------------
std::int32_t ScrollValues::last() const {
    const std::int64_t page_end = std::max<std::int64_t>(static_cast<std::int64_t>(page) - 1, 0);
    return static_cast<std::int32_t>(std::max<std::int64_t>(high - page_end, low));
}

std::int32_t ScrollValues::clamp(std::int64_t wanted) const {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(wanted, low, last()));
}

bool ScrollValues::set(const SCROLLINFO& info) {
    const ScrollValues old = *this;
    if ((info.fMask & SIF_RANGE) != 0) {
        low = info.nMin;
        high = std::max(info.nMin, info.nMax);
    }
    if ((info.fMask & SIF_PAGE) != 0) page = info.nPage;
    const std::int64_t span = static_cast<std::int64_t>(high) - low + 1;
    page = static_cast<UINT>(std::min<std::int64_t>(page, span));
    if ((info.fMask & SIF_POS) != 0) position = info.nPos;
    position = clamp(position);
    return low != old.low || high != old.high || page != old.page || position != old.position;
}

void ScrollValues::get(SCROLLINFO& info) const {
    if ((info.fMask & SIF_RANGE) != 0) {
        info.nMin = low;
        info.nMax = high;
    }
    if ((info.fMask & SIF_PAGE) != 0) info.nPage = page;
    if ((info.fMask & SIF_POS) != 0) info.nPos = position;
    if ((info.fMask & SIF_TRACKPOS) != 0) info.nTrackPos = track;
}

std::int32_t ScrollValues::after(std::int32_t code, std::int32_t line) const {
    const std::int64_t leap = std::max<std::int64_t>(page, 1);
    const std::int64_t at = position;
    switch (code) {
        case SB_LINEUP:
            return clamp(at - line);
        case SB_LINEDOWN:
            return clamp(at + line);
        case SB_PAGEUP:
            return clamp(at - leap);
        case SB_PAGEDOWN:
            return clamp(at + leap);
        case SB_THUMBPOSITION:
        case SB_THUMBTRACK:
            return clamp(track);
        case SB_TOP:
            return low;
        case SB_BOTTOM:
            return last();
        default:
            return position;
    }
}

// ---- Parts -------------------------------------------------------------------------------------
namespace {

constexpr std::int32_t arrow_length = 16;
constexpr std::int32_t shortest_thumb = 20;

std::int32_t start_of(const RECT& r, bool vertical) {
    return vertical ? r.top : r.left;
}
std::int32_t length_of(const RECT& r, bool vertical) {
    return vertical ? r.height() : r.width();
}
RECT slice(const RECT& bar, bool vertical, std::int32_t from, std::int32_t to) {
    return vertical ? RECT{bar.left, from, bar.right, to} : RECT{from, bar.top, to, bar.bottom};
}

// Rounded to the nearest: the thumb of the last position touches the end.
std::int32_t scaled(std::int64_t value, std::int64_t by, std::int64_t over) {
    return over > 0 ? static_cast<std::int32_t>((value * by + over / 2) / over) : 0;
}

}  // namespace

ScrollLayout scroll_layout(const RECT& bar, bool vertical, const ScrollValues& values) {
    ScrollLayout l;
    const std::int32_t start = start_of(bar, vertical);
    const std::int32_t length = length_of(bar, vertical);
    const std::int32_t arrow = std::min(arrow_length, length / 2);
    const std::int32_t from = start + arrow;
    const std::int32_t to = start + length - arrow;
    l.line_up = slice(bar, vertical, start, from);
    l.line_down = slice(bar, vertical, to, start + length);
    l.track = slice(bar, vertical, from, to);
    const std::int32_t room = to - from;
    if (values.idle() || room <= shortest_thumb) return l;
    const std::int64_t span = static_cast<std::int64_t>(values.high) - values.low + 1;
    const std::int32_t thumb = std::clamp(
        values.page > 0 ? scaled(room, values.page, span) : shortest_thumb, shortest_thumb, room);
    const std::int64_t steps = static_cast<std::int64_t>(values.last()) - values.low;
    const std::int32_t at =
        from + scaled(static_cast<std::int64_t>(values.position) - values.low, room - thumb, steps);
    l.thumb = slice(bar, vertical, at, at + thumb);
    return l;
}

ScrollPart scroll_hit(const ScrollLayout& l, bool vertical, POINT at) {
    if (l.line_up.contains(at)) return ScrollPart::line_up;
    if (l.line_down.contains(at)) return ScrollPart::line_down;
    if (!l.track.contains(at) || l.thumb.empty()) return ScrollPart::none;
    if (l.thumb.contains(at)) return ScrollPart::thumb;
    const std::int32_t along = vertical ? at.y : at.x;
    return along < start_of(l.thumb, vertical) ? ScrollPart::page_up : ScrollPart::page_down;
}

std::int32_t scroll_code(ScrollPart part) {
    switch (part) {
        case ScrollPart::line_up:
            return SB_LINEUP;
        case ScrollPart::line_down:
            return SB_LINEDOWN;
        case ScrollPart::page_up:
            return SB_PAGEUP;
        case ScrollPart::page_down:
            return SB_PAGEDOWN;
        default:
            return -1;
    }
}

// ---- The look ----------------------------------------------------------------------------------
namespace {

void fill(HDC dc, const RECT& r, COLORREF colour) {
    const RectF area{static_cast<float>(r.left), static_cast<float>(r.top),
                     static_cast<float>(r.right), static_cast<float>(r.bottom)};
    fill_rounded(dc, area, 0, colour);
}

// A small triangle that points along the bar.
void draw_arrow(HDC dc, const RECT& r, bool vertical, bool towards_end, COLORREF colour) {
    const float x = static_cast<float>(r.left + r.right) / 2;
    const float y = static_cast<float>(r.top + r.bottom) / 2;
    const float tip = towards_end ? 2.0F : -2.0F;
    const float base = towards_end ? -2.0F : 2.0F;
    const float half = 4.0F;
    if (vertical) {
        const PointF points[] = {{x - half, y + base}, {x + half, y + base}, {x, y + tip}};
        fill_path(dc, points, colour);
    } else {
        const PointF points[] = {{x + base, y - half}, {x + base, y + half}, {x + tip, y}};
        fill_path(dc, points, colour);
    }
}

}  // namespace

void draw_scroll_bar(HDC dc, const RECT& bar, const ScrollValues& values, const ScrollLook& look) {
    if (bar.empty()) return;
    const Theme& t = theme();
    fill(dc, bar, t.scroll_track);
    const ScrollLayout l = scroll_layout(bar, look.vertical, values);
    const bool works = look.enabled && !values.idle();
    const auto arrow_colour = [&](ScrollPart part) {
        if (!works) return blend(t.scroll_track, t.text_disabled, 0.6F);
        if (look.pressed == part) return t.text;
        return look.hover == part ? t.scroll_thumb_hover : t.scroll_thumb;
    };
    draw_arrow(dc, l.line_up, look.vertical, false, arrow_colour(ScrollPart::line_up));
    draw_arrow(dc, l.line_down, look.vertical, true, arrow_colour(ScrollPart::line_down));
    if (!works || l.thumb.empty()) return;
    const bool grown = look.hover == ScrollPart::thumb || look.pressed == ScrollPart::thumb;
    const float breadth = grown ? 8.0F : 6.0F;
    const float across = static_cast<float>(look.vertical ? bar.width() : bar.height());
    const float inset = std::max((across - breadth) / 2, 0.0F);
    RectF thumb{static_cast<float>(l.thumb.left), static_cast<float>(l.thumb.top),
                static_cast<float>(l.thumb.right), static_cast<float>(l.thumb.bottom)};
    if (look.vertical) {
        thumb.left += inset;
        thumb.right -= inset;
    } else {
        thumb.top += inset;
        thumb.bottom -= inset;
    }
    COLORREF colour = grown ? t.scroll_thumb_hover : t.scroll_thumb;
    if (look.pressed == ScrollPart::thumb) colour = blend(colour, t.text, 0.25F);
    fill_rounded(dc, thumb, breadth / 2, colour);
}

// ---- Following the pointer ---------------------------------------------------------------------
bool ScrollTracker::press(HWND owner, const RECT& bar, bool vertical, ScrollValues& values,
                          POINT at, Notify notify) {
    const ScrollLayout l = scroll_layout(bar, vertical, values);
    const ScrollPart part = scroll_hit(l, vertical, at);
    if (part == ScrollPart::none || values.idle()) return false;
    owner_ = owner;
    notify_ = notify;
    part_ = part;
    at_ = at;
    vertical_ = vertical;
    over_ = true;
    repeated_ = false;
    start_ = values.track = values.position;
    grip_ = (vertical ? at.y : at.x) - start_of(l.thumb, vertical);
    if (part != ScrollPart::thumb) notify(owner, scroll_code(part), 0);
    return true;
}

void ScrollTracker::move(const RECT& bar, ScrollValues& values, POINT at) {
    at_ = at;
    const ScrollLayout l = scroll_layout(bar, vertical_, values);
    if (part_ != ScrollPart::thumb) {
        over_ = scroll_hit(l, vertical_, at) == part_;
        return;
    }
    // Far off the bar the thumb goes back to where it was.
    constexpr std::int32_t leash = 150;
    const std::int32_t aside = vertical_ ? std::max(bar.left - at.x, at.x - bar.right)
                                         : std::max(bar.top - at.y, at.y - bar.bottom);
    std::int32_t wanted = start_;
    if (aside <= leash) {
        const std::int64_t room = length_of(l.track, vertical_) - length_of(l.thumb, vertical_);
        const std::int64_t steps = static_cast<std::int64_t>(values.last()) - values.low;
        const std::int64_t offset = std::clamp<std::int64_t>(
            (vertical_ ? at.y : at.x) - grip_ - start_of(l.track, vertical_), 0,
            std::max<std::int64_t>(room, 0));
        wanted = values.clamp(static_cast<std::int64_t>(values.low) + scaled(offset, steps, room));
    }
    if (wanted == values.track) return;
    values.track = wanted;
    notify_(owner_, SB_THUMBTRACK, wanted);
}

void ScrollTracker::repeat(const RECT& bar, ScrollValues& values) {
    if (!repeats()) return;
    repeated_ = true;
    // A page stops where the thumb has reached the pointer.
    over_ = scroll_hit(scroll_layout(bar, vertical_, values), vertical_, at_) == part_;
    if (over_) notify_(owner_, scroll_code(part_), 0);
}

void ScrollTracker::release(ScrollValues& values) {
    if (!active()) return;
    const bool thumb = part_ == ScrollPart::thumb;
    const HWND owner = owner_;
    const Notify notify = notify_;
    const std::int32_t track = values.track;
    forget();
    if (thumb) notify(owner, SB_THUMBPOSITION, track);
    if (IsWindow(owner)) notify(owner, SB_ENDSCROLL, 0);
}

}  // namespace tarn::platform
