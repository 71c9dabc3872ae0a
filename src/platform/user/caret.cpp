// The text caret and the pointer's shape.
#include "platform/gdi/gdi.h"
#include "platform/user/state.h"

namespace tarn::platform {

// ---- Caret -------------------------------------------------------------------------------------
// It lies over the picture when that is presented and is never drawn into it. After ten seconds
// without a move it stands still, so that an idle program sleeps.
namespace {

constexpr UINT blink_ms = 500;
constexpr std::int64_t blink_for_us = 10000000;
constexpr std::uintptr_t blink_timer = 1;

bool caret_shows() {
    const Caret& caret = state().caret;
    const Window* const window = find(caret.hwnd);
    return window != nullptr && caret.hidden == 0 && caret.lit && can_paint(*window);
}

RECT caret_on_surface(const Window& window) {
    const RECT client{0, 0, window.client.width(), window.client.height()};
    const POINT origin = client_origin_on_surface(window);
    RECT r = intersection(state().caret.rect, client);
    if (r.empty()) return {};
    return moved(r, origin.x, origin.y);
}

void repaint_caret() {
    if (Window* const window = find(state().caret.hwnd))
        add_damage(top_of(*window), caret_on_surface(*window));
}

void blink(HWND, UINT, std::uintptr_t, DWORD) {
    Caret& caret = state().caret;
    const bool tired = clock_us() >= caret.still_from;
    caret.lit = tired || !caret.lit;
    if (tired) stop_timer(caret.hwnd, blink_timer, true);
    repaint_caret();
}

void restart_blinking() {
    Caret& caret = state().caret;
    caret.lit = true;
    if (caret.hwnd == HWND{} || caret.hidden > 0 || display().headless()) return;
    caret.still_from = clock_us() + blink_for_us;
    start_timer(caret.hwnd, blink_timer, blink_ms, blink, true);
}

}  // namespace

void tell_input_place() {
    const Caret& caret = state().caret;
    Window* const window = find(caret.hwnd);
    if (window == nullptr || !top_of(*window).top->shown) return;
    const RECT place = caret.takes_text ? caret_on_surface(*window) : RECT{};
    display().set_input_place(display_id(top_of(*window)), place);
}

bool CreateCaret(HWND hwnd, std::int32_t width, std::int32_t height) {
    if (find(hwnd) == nullptr) return false;
    DestroyCaret();
    Caret& caret = state().caret;
    caret.hwnd = hwnd;
    caret.rect = {0, 0, std::clamp(width, 1, 256), std::clamp(height, 1, 4096)};
    caret.hidden = 1;
    caret.lit = true;
    tell_input_place();
    return true;
}

void KeepInputMethodsOut() {
    state().caret.takes_text = false;
    tell_input_place();
}

bool DestroyCaret() {
    Caret& caret = state().caret;
    if (caret.hwnd == HWND{}) return false;
    KeepInputMethodsOut();
    repaint_caret();
    stop_timer(caret.hwnd, blink_timer, true);
    caret = {};
    return true;
}

void caret_owner_changed(HWND hwnd) {
    if (state().caret.hwnd == hwnd) DestroyCaret();
}

bool SetCaretPos(std::int32_t x, std::int32_t y) {
    Caret& caret = state().caret;
    Window* const window = find(caret.hwnd);
    if (window == nullptr) return false;
    if (caret.rect.left == x && caret.rect.top == y) {
        if (!caret.lit) repaint_caret();
        restart_blinking();
        return true;
    }
    if (caret.hidden == 0) repaint_caret();
    caret.rect = moved(caret.rect, x - caret.rect.left, y - caret.rect.top);
    restart_blinking();
    if (caret.hidden == 0) repaint_caret();
    tell_input_place();
    return true;
}

bool ShowCaret(HWND hwnd) {
    Caret& caret = state().caret;
    if (caret.hwnd == HWND{} || (hwnd != HWND{} && hwnd != caret.hwnd)) return false;
    if (caret.hidden > 0 && --caret.hidden == 0) {
        restart_blinking();
        repaint_caret();
    }
    return true;
}

bool HideCaret(HWND hwnd) {
    Caret& caret = state().caret;
    if (caret.hwnd == HWND{} || (hwnd != HWND{} && hwnd != caret.hwnd)) return false;
    if (caret.hidden++ == 0) {
        stop_timer(caret.hwnd, blink_timer, true);
        repaint_caret();
    }
    return true;
}

void caret_presented(Window& top, CaretOverlay& overlay) {
    overlay = {};
    if (!caret_shows()) return;
    const Window* const window = find(state().caret.hwnd);
    if (&top_of(*find(state().caret.hwnd)) != &top) return;
    overlay.rect = caret_on_surface(*window);
    overlay.visible = !overlay.rect.empty();
}

// ---- The pointer's shape -----------------------------------------------------------------------
// A system cursor's handle is its number. A program's own pictures can't be shown by a display yet:
// the arrow stands for them.
namespace {

struct Shape {
    std::int32_t which;
    CursorShape shape;
};
constexpr Shape shapes[] = {
    {IDC_ARROW, CursorShape::arrow},
    {IDC_IBEAM, CursorShape::ibeam},
    {IDC_WAIT, CursorShape::wait},
    {IDC_CROSS, CursorShape::cross},
    {IDC_UPARROW, CursorShape::up_arrow},
    {IDC_SIZENWSE, CursorShape::size_nwse},
    {IDC_SIZENESW, CursorShape::size_nesw},
    {IDC_SIZEWE, CursorShape::size_we},
    {IDC_SIZENS, CursorShape::size_ns},
    {IDC_SIZEALL, CursorShape::size_all},
    {IDC_NO, CursorShape::no},
    {IDC_HAND, CursorShape::hand},
    {IDC_HELP, CursorShape::help},
};

CursorShape shape_of(HCURSOR cursor) {
    if (cursor == HCURSOR{}) return CursorShape::none;
    for (const Shape& s : shapes)
        if (s.which == static_cast<std::int32_t>(cursor)) return s.shape;
    return CursorShape::arrow;
}

}  // namespace

void refresh_cursor() {
    const Input& in = state().input;
    Window* const under = find(in.capture != HWND{} ? in.capture : in.hover);
    Window* const window = under != nullptr ? under : find(in.active);
    if (window == nullptr) return;
    Window& top = top_of(*window);
    const CursorShape shape = in.cursor_count < 0 ? CursorShape::none : shape_of(in.cursor);
    if (!top.top->opened || top.top->cursor == shape) return;
    top.top->cursor = shape;
    display().set_cursor(display_id(top), shape);
}

HCURSOR SetCursor(HCURSOR cursor) {
    Input& in = state().input;
    const HCURSOR old = in.cursor;
    in.cursor = cursor;
    refresh_cursor();
    return old;
}

std::int32_t ShowCursor(bool show) {
    Input& in = state().input;
    in.cursor_count += show ? 1 : -1;
    refresh_cursor();
    return in.cursor_count;
}

HCURSOR LoadSystemCursor(std::int32_t which) {
    for (const Shape& s : shapes)
        if (s.which == which) return HCURSOR{which};
    return {};
}

HCURSOR CreateCursorFromPixels(std::int32_t width, std::int32_t height, const std::uint32_t* pixels,
                               POINT) {
    return CreateIconFromPixels(width, height, pixels);
}

bool DestroyCursor(HCURSOR cursor) {
    if (shape_of(cursor) != CursorShape::arrow || static_cast<std::int32_t>(cursor) == IDC_ARROW)
        return true;  // the system's own stay
    if (state().input.cursor == cursor) SetCursor(LoadSystemCursor(IDC_ARROW));
    return DestroyIcon(cursor);
}

bool MessageBeep(UINT) {
    display().beep();
    return true;
}

}  // namespace tarn::platform
