#include "platform/user/region.h"

namespace tarn::platform {

namespace {

constexpr std::size_t most_kept = 8;

std::int64_t area(const RECT& r) {
    return static_cast<std::int64_t>(r.width()) * r.height();
}

// One rectangle instead of two: they overlap, or the hull holds hardly more than both.
bool better_together(const RECT& a, const RECT& b) {
    return overlap(a, b) || area(bounds_of(a, b)) <= area(a) + area(b) + 64;
}

}  // namespace

RECT Region::bounds() const {
    if (rects_.empty()) return {};
    RECT all = rects_.front();
    for (const RECT& r : rects_) all = bounds_of(all, r);
    return all;
}

bool Region::touches(const RECT& rect) const {
    return std::any_of(rects_.begin(), rects_.end(),
                       [&](const RECT& r) { return overlap(r, rect); });
}

void Region::include(RECT rect) {
    if (rect.empty()) return;
    for (std::size_t i = 0; i < rects_.size();) {
        if (covers(rects_[i], rect)) return;
        if (better_together(rects_[i], rect)) {
            rect = bounds_of(rects_[i], rect);
            rects_[i] = rects_.back();
            rects_.pop_back();
            i = 0;  // the grown one may meet those that were passed
        } else {
            ++i;
        }
    }
    rects_.push_back(rect);
    if (rects_.size() > most_kept) rects_.assign(1, bounds());
}

void Region::subtract(const RECT& hole) {
    if (hole.empty()) return;
    const std::size_t count = rects_.size();
    std::size_t kept = 0;
    // Pieces go to the end; what is untouched moves down over what was cut.
    for (std::size_t i = 0; i < count; ++i) {
        const RECT r = rects_[i];
        if (!overlap(r, hole)) {
            rects_[kept++] = r;
            continue;
        }
        const RECT cut = intersection(r, hole);
        const RECT pieces[] = {{r.left, r.top, r.right, cut.top},
                               {r.left, cut.top, cut.left, cut.bottom},
                               {cut.right, cut.top, r.right, cut.bottom},
                               {r.left, cut.bottom, r.right, r.bottom}};
        for (const RECT& piece : pieces)
            if (!piece.empty()) rects_.push_back(piece);
    }
    if (kept != count)
        rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(kept),
                     rects_.begin() + static_cast<std::ptrdiff_t>(count));
}

void Region::intersect(const RECT& window) {
    std::size_t kept = 0;
    for (const RECT& rect : rects_) {
        const RECT r = intersection(rect, window);
        if (!r.empty()) rects_[kept++] = r;
    }
    rects_.resize(kept);
}

void Region::intersect(const Region& other) {
    if (other.rects_.size() == 1) return intersect(other.rects_.front());
    std::vector<RECT> both;
    for (const RECT& a : rects_)
        for (const RECT& b : other.rects_)
            if (overlap(a, b)) both.push_back(intersection(a, b));
    rects_.swap(both);
}

void Region::move(std::int32_t dx, std::int32_t dy) {
    for (RECT& r : rects_) r = moved(r, dx, dy);
}

}  // namespace tarn::platform
