// "static": labels, rules, frames and pictures.
#include <algorithm>

#include "platform/controls/look.h"

namespace tarn::platform {
namespace {

constexpr std::uint32_t type_mask = 0x1F;

struct Static : Control {
    std::string text;
    std::int32_t image = 0;  // an icon or a bitmap

    std::uint32_t type() const { return style() & type_mask; }
    bool shows_text() const {
        const std::uint32_t t = type();
        return t <= SS_RIGHT || t == SS_SIMPLE || t == SS_LEFTNOWORDWRAP;
    }
    LRESULT handle(UINT message, WPARAM wparam, LPARAM lparam);
    void paint();
    void draw_words(HDC dc, const RECT& client, const Colours& colours) const;
    void draw_image(HDC dc, const RECT& rect) const;
    void draw_by_parent(HDC dc, const RECT& rect) const;
    LRESULT set_image(std::int32_t handle);
};

// A label a line high stands on one line whatever its width: words that went on below would not be
// seen at all.
void Static::draw_words(HDC dc, const RECT& client, const Colours& colours) const {
    constexpr std::int32_t from_border = 2;
    RECT rect = client;
    if (has(WS_BORDER)) {
        rect.left += from_border;
        rect.right -= from_border;
    }
    SetTextColor(dc, enabled() ? colours.text : disabled_text(colours));
    TEXTMETRIC metric;
    GetTextMetricsA(dc, metric);
    const std::uint32_t t = type();
    std::uint32_t format = t == SS_CENTER ? DT_CENTER : t == SS_RIGHT ? DT_RIGHT : DT_LEFT;
    if (has(SS_NOPREFIX)) format |= DT_NOPREFIX;
    if (has(SS_ENDELLIPSIS)) format |= DT_END_ELLIPSIS;
    const bool one_line = rect.height() < 2 * metric.tmHeight || t == SS_SIMPLE;
    if (one_line && text.find('\n') == std::string::npos) {
        draw_line(dc, text, rect, format | DT_EXPANDTABS);
        return;
    }
    format |= DT_EXPANDTABS;
    if (t <= SS_RIGHT && !one_line) format |= DT_WORDBREAK;
    draw_text(dc, text, rect, format);
}

void Static::draw_image(HDC dc, const RECT& rect) const {
    SIZE size;
    const bool is_icon = type() == SS_ICON;
    if (is_icon ? !GetIconSize(HICON{image}, size) : !GetBitmapSize(HBITMAP{image}, size)) return;
    POINT at{rect.left, rect.top};
    if (has(SS_CENTERIMAGE)) {
        at.x += (rect.width() - size.cx) / 2;
        at.y += (rect.height() - size.cy) / 2;
    }
    if (is_icon) {
        DrawIconEx(dc, at.x, at.y, HICON{image}, size.cx, size.cy, !enabled());
        return;
    }
    const HDC memory = CreateCompatibleDC(dc);
    const HGDIOBJ old = SelectObject(memory, HBITMAP{image});
    BitBlt(dc, at.x, at.y, size.cx, size.cy, memory, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
}

void Static::draw_by_parent(HDC dc, const RECT& rect) const {
    DRAWITEMSTRUCT item;
    item.CtlType = ODT_STATIC;
    item.CtlID = static_cast<UINT>(GetDlgCtrlID(hwnd));
    item.itemAction = ODA_DRAWENTIRE;
    if (!enabled()) item.itemState = ODS_DISABLED;
    item.hwndItem = hwnd;
    item.hDC = dc;
    item.rcItem = rect;
    send_message(GetParent(hwnd), WM_DRAWITEM, item.CtlID, reinterpret_cast<LPARAM>(&item));
}

void Static::paint() {
    const Paint painting{*this};
    const HDC dc = painting.dc();
    const RECT rect = client();
    const Theme& look = theme();
    const Colours colours = ask_colours(*this, dc, WM_CTLCOLORSTATIC, look.text, look.face);
    if (dead) return;
    const std::uint32_t t = type();
    const auto solid = [&](COLORREF colour) { fill_rounded(dc, to_f(rect), 0, colour); };
    const auto frame = [&](COLORREF colour) {
        fill_back(dc, rect, colours);
        stroke_rounded(dc, to_f(rect), 0, 1, colour);
    };
    switch (t) {
        case SS_BLACKRECT:
            return solid(look.text);
        case SS_GRAYRECT:
            return solid(look.border_strong);
        case SS_WHITERECT:
            return solid(look.window);
        case SS_BLACKFRAME:
            return frame(look.text);
        case SS_GRAYFRAME:
        case SS_ETCHEDFRAME:
            return frame(look.border);
        case SS_WHITEFRAME:
            return frame(look.window);
        case SS_ETCHEDHORZ:
        case SS_ETCHEDVERT: {
            fill_back(dc, rect, colours);
            RectF line = to_f(rect);
            if (t == SS_ETCHEDHORZ) {
                line.bottom = line.top + 1;
            } else {
                line.right = line.left + 1;
            }
            fill_rounded(dc, line, 0, look.border);
            return;
        }
        case SS_OWNERDRAW:
            fill_back(dc, rect, colours);
            return draw_by_parent(dc, rect);
        case SS_ICON:
        case SS_BITMAP:
            fill_back(dc, rect, colours);
            return draw_image(dc, rect);
        default:
            fill_back(dc, rect, colours);
            if (shows_text()) draw_words(dc, rect, colours);
    }
}

LRESULT Static::set_image(std::int32_t handle) {
    const std::int32_t before = image;
    image = handle;
    repaint();
    return before;
}

LRESULT Static::handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_NCCREATE:
            text = text_argument(
                reinterpret_cast<LPARAM>(reinterpret_cast<const CREATESTRUCT*>(lparam)->lpszName));
            break;
        case WM_SETTEXT:
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
        case WM_SETFONT:
        case WM_GETFONT:
            return handle_label(*this, message, wparam, lparam);
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint();
            return 0;
        case WM_ENABLE:
        case WM_SIZE:
        case WM_SYSCOLORCHANGE:
            repaint();
            return 0;
        case WM_GETDLGCODE:
            return DLGC_STATIC;
        case WM_NCHITTEST:
            // A label lets clicks through to what it stands on, unless somebody asked for them.
            return has(SS_NOTIFY) ? static_cast<LRESULT>(HTCLIENT) : -1;
        case WM_LBUTTONDOWN:
            if (has(SS_NOTIFY)) notify(*this, STN_CLICKED);
            return 0;
        case WM_LBUTTONDBLCLK:
            if (has(SS_NOTIFY)) notify(*this, STN_DBLCLK);
            return 0;
        case STM_SETICON:
            return set_image(static_cast<std::int32_t>(wparam));
        case STM_SETIMAGE:
            return set_image(static_cast<std::int32_t>(lparam));
        case STM_GETICON:
        case STM_GETIMAGE:
            return image;
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

}  // namespace

LRESULT static_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return control_procedure<Static>(hwnd, message, wparam, lparam);
}

}  // namespace tarn::platform
