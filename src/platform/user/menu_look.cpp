// How menus look: sizes and drawing. One flat style for bars and pop-ups.
#include <algorithm>

#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "platform/user/menu_table.h"

namespace tarn::platform {

namespace {

constexpr std::int32_t item_height = 24, separator_height = 9, edge = 4;
constexpr std::int32_t check_column = 28, end_column = 28, shortcut_gap = 28;
constexpr std::int32_t bar_padding = 10, bar_inset = 2, system_width = 30;

// A context for measuring, with the menus' font.
class Measure {
  public:
    Measure() : dc_(GetDC(HWND{})) { SelectObject(dc_, GetStockObject(DEFAULT_GUI_FONT)); }
    ~Measure() { ReleaseDC(HWND{}, dc_); }
    Measure(const Measure&) = delete;
    Measure& operator=(const Measure&) = delete;
    std::int32_t width(std::string_view text) const {
        return text.empty() ? 0 : text_extent(dc_, text).cx;
    }

  private:
    HDC dc_;
};

SIZE ask_owner(HWND owner, MenuItem& item) {
    if (item.measured.cx >= 0) return item.measured;
    MEASUREITEMSTRUCT measure;
    measure.CtlType = ODT_MENU;
    measure.itemID = static_cast<UINT>(item.id);
    measure.itemData = item.data;
    measure.itemHeight = item_height;
    const HMENU sub = item.sub;
    SendMessageA(owner, WM_MEASUREITEM, 0, reinterpret_cast<LPARAM>(&measure));
    (void)sub;
    constexpr UINT most = 2000;
    return {static_cast<std::int32_t>(std::min(measure.itemWidth, most)),
            static_cast<std::int32_t>(std::clamp(measure.itemHeight, 1U, most))};
}

SIZE picture_size(const MenuItem& item) {
    SIZE size;
    return GetBitmapSize(item.bitmap, size) ? size : SIZE{0, 0};
}

void draw_check(HDC dc, const RECT& item, COLORREF colour, bool radio) {
    const auto x = static_cast<float>(item.left) + 14.0F;
    const float y = static_cast<float>(item.top + item.bottom) / 2;
    if (radio) return fill_circle(dc, {x, y}, 3.0F, colour);
    const PointF tick[] = {{x - 4.5F, y + 0.2F}, {x - 1.4F, y + 3.2F}, {x + 4.6F, y - 3.4F}};
    stroke_path(dc, tick, 1.6F, colour);
}

void draw_arrow(HDC dc, const RECT& item, COLORREF colour) {
    const auto x = static_cast<float>(item.right) - 14.0F;
    const float y = static_cast<float>(item.top + item.bottom) / 2;
    const PointF arrow[] = {{x - 1.8F, y - 3.6F}, {x + 1.8F, y}, {x - 1.8F, y + 3.6F}};
    stroke_path(dc, arrow, 1.4F, colour);
}

RectF inner(const RECT& rect, float inset) {
    return {static_cast<float>(rect.left) + inset, static_cast<float>(rect.top) + inset,
            static_cast<float>(rect.right) - inset, static_cast<float>(rect.bottom) - inset};
}

void draw_owner_item(HDC dc, HWND owner, const MenuItem& item, const RECT& rect, bool selected) {
    DRAWITEMSTRUCT draw;
    draw.CtlType = ODT_MENU;
    draw.itemID = static_cast<UINT>(item.id);
    draw.itemAction = ODA_DRAWENTIRE;
    if (selected) draw.itemState |= ODS_SELECTED;
    if (!item.enabled()) draw.itemState |= ODS_GRAYED;
    if ((item.flags & MF_CHECKED) != 0) draw.itemState |= ODS_CHECKED;
    draw.hDC = dc;
    draw.rcItem = rect;
    draw.itemData = item.data;
    SendMessageA(owner, WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&draw));
}

void draw_picture(HDC dc, HBITMAP bitmap, std::int32_t x, std::int32_t y) {
    SIZE size;
    if (!GetBitmapSize(bitmap, size)) return;
    const HDC memory = CreateCompatibleDC(dc);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(dc, x, y, size.cx, size.cy, memory, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
}

void draw_item(HDC dc, const MenuItem& item, RECT rect, std::int32_t shortcut_end, bool selected) {
    const Theme& t = theme();
    if (item.separator()) {
        const std::int32_t y = (rect.top + rect.bottom) / 2;
        const HBRUSH brush = CreateSolidBrush(t.menu_border);
        FillRect(dc, {rect.left + 8, y, rect.right - 8, y + 1}, brush);
        DeleteObject(brush);
        return;
    }
    if (selected) fill_rounded(dc, inner(rect, 0), t.corner, t.menu_hover);
    const COLORREF colour = item.enabled() ? t.text : t.text_disabled;
    if ((item.flags & MF_CHECKED) != 0)
        draw_check(dc, rect, item.enabled() ? t.accent : colour,
                   (item.flags & MFT_RADIOCHECK) != 0);
    if (item.bitmap != 0) {
        const SIZE size = picture_size(item);
        draw_picture(dc, item.bitmap, rect.left + check_column,
                     (rect.top + rect.bottom - size.cy) / 2);
    }
    SetTextColor(dc, colour);
    RECT text = rect;
    text.left += check_column;
    text.right -= edge;
    draw_text(dc, item.label(), text, DT_SINGLELINE | DT_VCENTER | DT_LEFT);
    if (!item.shortcut().empty()) {
        SetTextColor(dc, item.enabled() ? t.text_muted : t.text_disabled);
        RECT at = rect;
        at.right = shortcut_end;
        draw_text(dc, item.shortcut(), at, DT_SINGLELINE | DT_VCENTER | DT_RIGHT | DT_NOPREFIX);
    }
    if (item.sub != 0) draw_arrow(dc, rect, colour);
}

// Three lines: the system's own commands are the manager's, what a program added stands here.
void draw_system_button(HDC dc, const RECT& rect, bool lit) {
    const Theme& t = theme();
    if (lit) fill_rounded(dc, inner(rect, bar_inset), t.corner, t.menu_hover);
    const auto x = static_cast<float>(rect.left + rect.right) / 2;
    const auto y = static_cast<float>(rect.top + rect.bottom) / 2;
    for (float dy : {-4.0F, 0.0F, 4.0F}) {
        const PointF line[] = {{x - 6, y + dy}, {x + 6, y + dy}};
        stroke_path(dc, line, 1.2F, t.text);
    }
}

}  // namespace

MenuLayout layout_popup(HMENU menu, HWND owner) {
    MenuLayout layout;
    if (find_menu(menu) == nullptr) return layout;
    const Measure measure;
    std::int32_t label = 0, shortcut = 0, y = edge;
    std::vector<std::int32_t> heights;
    // The owner may change the menu while it is asked for sizes.
    for (std::size_t i = 0; find_menu(menu) != nullptr && i < find_menu(menu)->items.size(); ++i) {
        MenuItem item = find_menu(menu)->items[i];
        std::int32_t height = item.separator() ? separator_height : item_height;
        if ((item.flags & MF_OWNERDRAW) != 0) {
            item.measured = ask_owner(owner, item);
            Menu* again = find_menu(menu);
            if (again == nullptr || i >= again->items.size()) break;
            again->items[i].measured = item.measured;
            label = std::max(label, item.measured.cx);
            height = item.measured.cy;
        } else if (!item.separator()) {
            const SIZE picture = picture_size(item);
            label = std::max({label, measure.width(without_mnemonic(item.label())), picture.cx});
            shortcut = std::max(shortcut, measure.width(item.shortcut()));
            height = std::max(height, picture.cy + 4);
        }
        heights.push_back(height);
    }
    const std::int32_t width = edge + check_column + label +
                               (shortcut > 0 ? shortcut_gap + shortcut : 0) + end_column + edge;
    for (const std::int32_t height : heights) {
        layout.items.push_back({edge, y, width - edge, y + height});
        y += height;
    }
    layout.shortcut_x = width - edge - end_column;
    layout.size = {width, y + edge};
    return layout;
}

MenuStrips menu_strips(const MenuLayout& layout, std::int32_t offset, std::int32_t height) {
    MenuStrips strips{};
    const std::int32_t width = layout.size.cx;
    if (offset > 0) strips.up = {1, 1, width - 1, menu_strip_height};
    if (offset + height < layout.size.cy)
        strips.down = {1, height - menu_strip_height, width - 1, height - 1};
    return strips;
}

namespace {

void draw_strip(HDC dc, const RECT& strip, bool up) {
    if (strip.empty()) return;
    const Theme& t = theme();
    const HBRUSH face = CreateSolidBrush(t.menu);
    FillRect(dc, strip, face);
    DeleteObject(face);
    const auto x = static_cast<float>(strip.left + strip.right) / 2;
    const auto y = static_cast<float>(strip.top + strip.bottom) / 2;
    const float dy = up ? 2.0F : -2.0F;
    const PointF chevron[] = {{x - 4.5F, y + dy}, {x, y - dy}, {x + 4.5F, y + dy}};
    stroke_path(dc, chevron, 1.4F, t.text_muted);
}

}  // namespace

void draw_popup(HDC dc, HMENU menu, HWND owner, const MenuLayout& layout, std::int32_t selected,
                std::int32_t offset, std::int32_t height) {
    const Theme& t = theme();
    const HBRUSH face = CreateSolidBrush(t.menu);
    FillRect(dc, {0, 0, layout.size.cx, height}, face);
    DeleteObject(face);
    SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    for (std::size_t i = 0; i < layout.items.size(); ++i) {
        const Menu* found = find_menu(menu);
        if (found == nullptr || i >= found->items.size()) break;
        RECT rect = layout.items[i];
        rect.top -= offset;
        rect.bottom -= offset;
        if (rect.bottom <= 0 || rect.top >= height) continue;
        const bool lit = static_cast<std::int32_t>(i) == selected;
        const MenuItem item = found->items[i];
        if ((item.flags & MF_OWNERDRAW) != 0)
            draw_owner_item(dc, owner, item, rect, lit);
        else
            draw_item(dc, item, rect, layout.shortcut_x, lit);
    }
    const MenuStrips strips = menu_strips(layout, offset, height);
    draw_strip(dc, strips.up, true);
    draw_strip(dc, strips.down, false);
    const HBRUSH border = CreateSolidBrush(t.menu_border);
    FrameRect(dc, {0, 0, layout.size.cx, height}, border);
    DeleteObject(border);
}

MenuLayout layout_bar(HMENU menu, HWND owner, std::int32_t width, RECT& system_button) {
    MenuLayout layout;
    const Measure measure;
    const std::int32_t row = GetSystemMetrics(SM_CYMENU);
    std::int32_t x = bar_inset, y = 0;
    system_button = {};
    if (system_menu_of(owner) != 0) {
        system_button = {x, y, x + system_width, y + row};
        x += system_width;
    }
    const Menu* found = find_menu(menu);
    const std::size_t count = found != nullptr ? found->items.size() : 0;
    for (std::size_t i = 0; i < count; ++i) {
        const MenuItem& item = found->items[i];
        std::int32_t w = item.separator() ? bar_padding : 2 * bar_padding;
        if (item.bitmap != 0)
            w += picture_size(item).cx;
        else
            w += measure.width(without_mnemonic(item.label()));
        if (x + w > width && x > bar_inset) {
            x = bar_inset;
            y += row;
        }
        // At the right end of its row, if it is the last one.
        if ((item.flags & MF_RIGHTJUSTIFY) != 0 && i + 1 == count)
            x = std::max(x, width - bar_inset - w);
        layout.items.push_back({x, y, x + w, y + row});
        x += w;
    }
    layout.size = {width, y + row};
    return layout;
}

void draw_bar(HDC dc, HMENU menu, HWND owner, const RECT& bar, std::int32_t selected,
              std::int32_t hovered, bool open, bool cues) {
    const Theme& t = theme();
    const HBRUSH face = CreateSolidBrush(t.face);
    FillRect(dc, bar, face);
    DeleteObject(face);
    const HBRUSH line = CreateSolidBrush(t.border);
    FillRect(dc, {bar.left, bar.bottom - 1, bar.right, bar.bottom}, line);
    DeleteObject(line);
    SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    RECT button;
    const MenuLayout layout = layout_bar(menu, owner, bar.width(), button);
    const auto moved = [&](RECT r) {
        return RECT{r.left + bar.left, r.top + bar.top, r.right + bar.left, r.bottom + bar.top};
    };
    if (!button.empty())
        draw_system_button(dc, moved(button), selected == system_item || hovered == system_item);
    const Menu* found = find_menu(menu);
    for (std::size_t i = 0; found != nullptr && i < layout.items.size(); ++i) {
        const MenuItem& item = found->items[i];
        RECT rect = moved(layout.items[i]);
        const auto index = static_cast<std::int32_t>(i);
        const bool lit = index == selected || (!open && index == hovered && item.enabled());
        if (lit) {
            RECT pill = rect;
            pill.top += 1;
            pill.bottom -= 1;
            fill_rounded(dc, inner(pill, bar_inset), t.corner,
                         index == selected ? blend(t.menu_hover, t.accent, 0.12F) : t.menu_hover);
        }
        if (item.bitmap != 0) {
            draw_picture(dc, item.bitmap, rect.left + bar_padding, rect.top + 4);
            continue;
        }
        SetTextColor(dc, item.enabled() ? t.text : t.text_disabled);
        std::uint32_t how = DT_SINGLELINE | DT_VCENTER | DT_CENTER;
        if (!cues) how |= DT_HIDEPREFIX;
        draw_text(dc, item.label(), rect, how);
    }
}

}  // namespace tarn::platform
