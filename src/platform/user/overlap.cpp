// Which children of a window have something over them. Asked for each child that is painted, so it
// is worked out for all brothers at once and kept until one of them changes.
#include <array>

#include "platform/user/state.h"

namespace tarn::platform {

namespace {

// The children from the topmost down, filed by the cells that they touch: a window is compared
// with those in its own cells only. What lies outside the grid is filed at its edge.
class Cells {
  public:
    // True: something filed before lies over `window`. Files it.
    bool covered_and_filed(const Window& window) {
        const RECT& r = window.rect;
        const Span across = span(r.left, r.right), down = span(r.top, r.bottom);
        bool covered = false;
        for (std::int32_t y = down.first; y <= down.last && !covered; ++y)
            for (std::int32_t x = across.first; x <= across.last && !covered; ++x)
                for (const Window* over : cell(x, y))
                    if (overlap(over->rect, r)) {
                        covered = true;
                        break;
                    }
        if ((window.ex_style & WS_EX_TRANSPARENT) != 0) return covered;
        for (std::int32_t y = down.first; y <= down.last; ++y)
            for (std::int32_t x = across.first; x <= across.last; ++x)
                cell(x, y).push_back(&window);
        return covered;
    }

  private:
    static constexpr std::int32_t side = 48, count = 32;
    struct Span {
        std::int32_t first, last;
    };
    static Span span(std::int32_t from, std::int32_t to) {
        const auto place = [](std::int32_t at) { return std::clamp(at / side, 0, count - 1); };
        return {place(from), place(std::max(to - 1, from))};
    }
    std::vector<const Window*>& cell(std::int32_t x, std::int32_t y) {
        return cells_[static_cast<std::size_t>(y) * count + static_cast<std::size_t>(x)];
    }

    std::array<std::vector<const Window*>, std::size_t{count} * count> cells_;
};

bool walk_above(const Window& window) {
    for (const Window* over = window.above; over != nullptr; over = over->above)
        if ((over->style & WS_VISIBLE) != 0 && (over->ex_style & WS_EX_TRANSPARENT) == 0 &&
            overlap(over->rect, window.rect))
            return true;
    return false;
}

void look_at_all(Window& parent) {
    Cells cells;
    for (Window* c = parent.first_child; c != nullptr; c = c->below)
        c->covered = (c->style & WS_VISIBLE) != 0 && cells.covered_and_filed(*c);
    parent.covered_known = true;
}

}  // namespace

void children_changed(Window* parent) {
    if (parent != nullptr) parent->covered_known = false;
}

bool has_something_over(const Window& window) {
    constexpr std::int32_t few = 8;
    Window* const parent = window.parent;
    if (parent == nullptr || window.above == nullptr) return false;
    if (!parent->covered_known) {
        std::int32_t above = 0;
        for (const Window* w = window.above; w != nullptr && above < few; w = w->above) ++above;
        if (above < few) return walk_above(window);
        look_at_all(*parent);
    }
    return window.covered;
}

}  // namespace tarn::platform
