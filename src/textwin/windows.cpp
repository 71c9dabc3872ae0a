// Making, finding and ending text windows.
#include <cstdlib>
#include <cstring>
#include <string>

#include "failure/failure.h"
#include "platform/base/text.h"
#include "platform/dialogs/dialogs.h"
#include "platform/gdi/theme.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

constexpr const char* class_name = "TarnickClass";
constexpr int out_of_storage = 199;
constexpr std::int32_t embedded_id = 1000;
constexpr std::int32_t page_columns = 80, last_column = 255;

HFONT default_font() {
    return state().default_font != 0 ? state().default_font : GetStockObject(SYSTEM_FIXED_FONT);
}

std::int32_t font_height(HWND hwnd, HFONT font) {
    const HDC dc = GetWindowDC(hwnd);
    const HGDIOBJ old = SelectObject(dc, font);
    TEXTMETRIC metric;
    GetTextMetricsA(dc, metric);
    SelectObject(dc, old);
    ReleaseDC(hwnd, dc);
    return metric.tmHeight + metric.tmExternalLeading;
}

// A control keeps its text off its edges by less than a window does; %cw makes room for that.
void set_margins(window_info& window) {
    if (window.embedded) {
        window.top_margin = embedded_margin_y;
        window.left_margin = embedded_margin_x;
        return;
    }
    const HDC dc = GetDC(window.hwnd);
    window.top_margin = GetDeviceCaps(dc, LOGPIXELSY) / 4;
    window.left_margin = GetDeviceCaps(dc, LOGPIXELSX) / 4;
    ReleaseDC(window.hwnd, dc);
}

void set_bars(window_info& window) {
    if (window.vertical_bar) set_vert_scroll_bar(window, 1, true);
    if (!window.horizontal_bar) return;
    SCROLLINFO info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMin = 1;
    info.nMax = last_column;
    info.nPage = page_columns;
    info.nPos = 1;
    SetScrollInfo(window.hwnd, SB_HORZ, info, true);
}

window_info* new_record(HWND hwnd, std::uint32_t style, bool embedded) {
    textwin_state& s = state();
    auto* window = static_cast<window_info*>(std::calloc(1, sizeof(window_info)));
    if (window == nullptr) failure::fail(out_of_storage);
    window->hwnd = hwnd;
    window->embedded = embedded;
    window->escape = s.default_escape;
    window->horizontal_bar = (style & WS_HSCROLL) != 0;
    window->vertical_bar = (style & WS_VSCROLL) != 0;
    window->maximum_lines = window->vertical_bar ? s.default_maximum_lines : default_maximum_floor;
    window->anchor = window->end = {no_selection, no_selection};
    window->caret_x = window->caret_y = -1;
    window->column = 1;
    window->height = window->width = -1;
    window->update_at_once = true;
    window->utf8 = text_is_utf8 != nullptr && text_is_utf8();
    if (embedded) {
        window->brush = s.embedding.brush;
        window->background = s.embedding.background;
        window->text_colour = s.embedding.text;
        window->popup = s.embedding.popup;
    }
    window->next = s.windows;
    s.windows = window;
    return window;
}

void unlink(const window_info* window) {
    for (window_info** link = &state().windows; *link != nullptr; link = &(*link)->next) {
        if (*link != window) continue;
        *link = window->next;
        return;
    }
}

HWND make_window(const char* title, std::int32_t x, std::int32_t y, std::int32_t width,
                 std::int32_t height, bool embedded) {
    textwin_state& s = state();
    yield_program_control(1);
    std::uint32_t style = s.default_style;
    HWND parent = s.main_window;
    HMENU id{};
    if (embedded) {
        style = s.extra_style | WS_CHILD;
        if (s.embedding.horizontal) style |= WS_HSCROLL;
        if (s.embedding.vertical) style |= WS_VSCROLL;
        s.extra_style = 0;
        parent = s.embedding.parent;
        id = HMENU{embedded_id};
    }
    if (title == nullptr) title = "";
    const bool utf8 = text_is_utf8 != nullptr && text_is_utf8();
    const std::u16string caption = wide_from_utf8(utf8 ? title : utf8_from_page(title));
    const HWND hwnd = CreateWindowExW(0, wide_from_utf8(class_name).c_str(), caption.c_str(), style,
                                      x, y, width, height, parent, id);
    if (hwnd == 0) return hwnd;
    const bool is_main = s.windows == nullptr && !embedded;
    window_info* window = new_record(hwnd, style, embedded);
    if (s.windows->next == nullptr) enable_winexit();
    if (is_main) s.main_window = hwnd;
    const COLORREF text = embedded ? window->text_colour : GetSysColor(COLOR_WINDOWTEXT);
    add_text_descriptor(hwnd, default_font(), text);
    RECT client;
    GetClientRect(hwnd, client);
    window->width = client.right;
    window->height = client.bottom;
    set_margins(*window);
    set_bars(*window);  // before they are seen: a program that computes next doesn't paint again
    ShowWindow(hwnd, is_main ? s.show_command : SW_SHOW);
    UpdateWindow(hwnd);
    if (find_window(hwnd) == nullptr) return HWND{};
    if (!embedded) await_first_sight(hwnd);
    yield_program_control(1);
    return hwnd;
}

void free_graphics(window_info& window) {
    if (window.graphics_dc == 0) return;
    SelectObject(window.graphics_dc, window.saved_bitmap);
    DeleteDC(window.graphics_dc);
    DeleteObject(window.graphics_bitmap);
    window.graphics_dc = HDC{};
    window.graphics_bitmap = HBITMAP{};
}

void free_callbacks(window_info& window) {
    while (window.callbacks != nullptr) {
        callback_entry* entry = window.callbacks;
        window.callbacks = entry->next;
        std::free(entry);
    }
}

void free_descriptors(text_descriptor*& head) {
    while (head != nullptr) {
        text_descriptor* entry = head;
        head = entry->next;
        std::free(entry);
    }
}

}  // namespace

bool (*text_is_utf8)() = nullptr;

textwin_state& state() {
    static textwin_state all;
    return all;
}

window_info* find_window(HWND hwnd) {
    if (hwnd == 0) return nullptr;
    window_info* window = state().windows;
    while (window != nullptr && window->hwnd != hwnd) window = window->next;
    return window;
}

bool is_text_window(HWND hwnd) {
    return find_window(hwnd) != nullptr;
}

void register_text_class() {
    textwin_state& s = state();
    if (s.class_registered) return;
    s.class_registered = true;
    s.class_brush = s.colours_set ? s.window_brush : GetSysColorBrush(COLOR_WINDOW);
    WNDCLASS description;
    description.style = CS_HREDRAW | CS_VREDRAW;
    description.lpfnWndProc = main_windows_procedure;
    description.hIcon = LoadSystemIcon(IDI_APPLICATION);
    description.hCursor = LoadSystemCursor(IDC_ARROW);
    description.hbrBackground = s.class_brush;
    description.lpszClassName = class_name;
    if (!RegisterClassA(description)) failure::fail(out_of_storage);
}

void add_text_descriptor(HWND hwnd, HFONT font, COLORREF colour) {
    window_info* window = find_window(hwnd);
    if (window == nullptr) return;
    auto* entry = static_cast<text_descriptor*>(std::calloc(1, sizeof(text_descriptor)));
    if (entry == nullptr) failure::fail(out_of_storage);
    LOGFONT description;
    entry->font = GetObjectFont(font, description) ? font : default_font();
    entry->colour = colour;
    entry->height = font_height(hwnd, entry->font);
    text_descriptor** tail = &window->descriptors;
    while (*tail != nullptr) tail = &(*tail)->next;
    *tail = entry;
}

HWND create_window(const char* title, std::int32_t x, std::int32_t y, std::int32_t width,
                   std::int32_t height) {
    return make_window(title, x, y, width, height, false);
}

HWND create_default_window() {
    const std::int32_t w = GetSystemMetrics(SM_CXSCREEN), h = GetSystemMetrics(SM_CYSCREEN);
    return create_window("Output", w / 10, h / 10, w - 2 * w / 10, h - 2 * h / 10);
}

HWND get_default_window() {
    textwin_state& s = state();
    if (s.default_window == 0 || find_window(s.default_window) == nullptr)
        s.default_window = create_default_window();
    return s.default_window;
}

HWND create_embeded_window_x(HWND parent, bool horizontal_bar, bool vertical_bar, std::int32_t x,
                             std::int32_t y, std::int32_t width, std::int32_t height, HBRUSH brush,
                             COLORREF background, COLORREF text, HMENU popup) {
    state().embedding = {parent, brush, background, text, popup, {}, horizontal_bar, vertical_bar};
    return make_window("", x, y, width, height, true);
}

void set_default_font(HFONT font) {
    if (font != 0) state().default_font = font;
}

HFONT exchange_default_font(HFONT font) {
    const HFONT before = state().default_font;
    state().default_font = font;
    return before;
}

void set_one_shot_style(std::uint32_t style) {
    state().extra_style = style;
}

void clear_window(window_info& window) {
    free_descriptors(window.descriptors->next);
    free_graphics(window);
    free_lines(window);
    free_callbacks(window);
    window.escape_used = false;
    window.painted = false;
    window.changed = false;
    if (state().destroying) return;
    set_vert_scroll_bar(window, 1, true);
    InvalidateRect(window.hwnd, nullptr, true);
    yield_program_control(1);
}

void destroy_text_window(HWND hwnd) {
    window_info* window = find_window(hwnd);
    if (window == nullptr) return;
    const bool is_main = hwnd == state().main_window;
    state().destroying = true;
    clear_window(*window);
    if (is_main) state().destroying = false;
    DestroyWindow(hwnd);
    state().destroying = false;
}

void release_window(HWND hwnd) {
    textwin_state& s = state();
    window_info* window = find_window(hwnd);
    if (window == nullptr) return;
    if (s.default_window == hwnd) s.default_window = HWND{};
    free_graphics(*window);
    free_lines(*window);
    free_callbacks(*window);
    free_descriptors(window->descriptors);
    unlink(window);
    std::free(window);
    if (s.main_window == hwnd) {
        s.main_window = HWND{};
        return;
    }
    if (s.main_window != 0 && !IsWindowVisible(s.main_window)) return;
    if (s.main_window != 0)
        SetWindowPos(s.main_window, HWND{HWND_TOP}, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
}

}  // namespace tarn::textwin
