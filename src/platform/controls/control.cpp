#include "platform/controls/control.h"

#include <algorithm>
#include <cstring>

#include "platform/base/text.h"
#include "platform/gdi/gdi.h"

namespace tarn::platform {

HFONT control_font(const Control& control) {
    return control.font != 0 ? control.font : GetStockObject(DEFAULT_GUI_FONT);
}

bool notify(const Control& control, std::int32_t code) {
    const HWND parent = GetParent(control.hwnd);
    if (parent != 0) {
        send_message(parent, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control.hwnd), code),
                     control.hwnd);
    }
    return !control.dead;
}

LRESULT copy_text(std::string_view text, WPARAM size, LPARAM buffer) {
    auto* target = reinterpret_cast<char*>(buffer);
    if (target == nullptr || size == 0) return 0;
    std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    if (length < text.size()) {
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
    }
    std::memcpy(target, text.data(), length);
    target[length] = 0;
    return static_cast<LRESULT>(length);
}

Measure::Measure(const Control& control)
    : hwnd_(control.hwnd),
      dc_(GetDC(control.hwnd)),
      old_(SelectObject(dc_, control_font(control))) {}

Measure::~Measure() {
    SelectObject(dc_, old_);
    ReleaseDC(hwnd_, dc_);
}

std::int32_t Measure::line_height() const {
    TEXTMETRIC metric;
    GetTextMetricsA(dc_, metric);
    return std::max(1, metric.tmHeight);
}

Paint::Paint(const Control& control) : hwnd_(control.hwnd) {
    BeginPaint(hwnd_, paint_);
    SelectObject(paint_.hdc, control_font(control));
    SetBkMode(paint_.hdc, TRANSPARENT);
}

Paint::~Paint() {
    EndPaint(hwnd_, paint_);
}

char32_t typed_character(UINT message, WPARAM wparam) {
    if (message == WM_UNICHAR || wparam < 0x80 || wparam > 0xFF) {
        return static_cast<char32_t>(wparam);
    }
    const char byte = static_cast<char>(wparam);
    const std::string utf8 = utf8_from_page({&byte, 1});
    std::size_t at = 0;
    return next_code_point(utf8, at);
}

std::int32_t scrolled_to(HWND hwnd, std::int32_t bar, std::int32_t code, ScrollValues values,
                         std::int32_t line) {
    if (code == SB_THUMBTRACK || code == SB_THUMBPOSITION) {
        SCROLLINFO info;
        info.fMask = SIF_TRACKPOS | SIF_POS;
        if (GetScrollInfo(hwnd, bar, info)) values.track = info.nTrackPos;
    }
    return values.after(code, line);
}

}  // namespace tarn::platform
