// Sets of rectangles: what must be painted, what may be drawn on, what must be shown.
#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "platform/base/types.h"

namespace tarn::platform {

inline RECT intersection(const RECT& a, const RECT& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}
inline bool overlap(const RECT& a, const RECT& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}
inline RECT bounds_of(const RECT& a, const RECT& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}
inline bool covers(const RECT& outer, const RECT& inner) {
    return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
           outer.bottom >= inner.bottom;
}
inline RECT moved(const RECT& r, std::int32_t dx, std::int32_t dy) {
    return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
}

// The rectangles never overlap.
class Region {
  public:
    Region() = default;
    explicit Region(const RECT& rect) {
        if (!rect.empty()) rects_.push_back(rect);
    }
    bool empty() const { return rects_.empty(); }
    void clear() { rects_.clear(); }
    std::span<const RECT> rects() const { return rects_; }
    RECT bounds() const;
    bool touches(const RECT& rect) const;

    // Makes the set hold at least `rect`. Rectangles that meet grow together, and there are never
    // more than a few: painting a little too much is cheaper than keeping exact books.
    void include(RECT rect);
    // These are exact.
    void subtract(const RECT& hole);
    void intersect(const RECT& window);
    void intersect(const Region& other);
    void move(std::int32_t dx, std::int32_t dy);

  private:
    std::vector<RECT> rects_;
};

}  // namespace tarn::platform
