// First use of the library: window classes, the base units, the default font.
#include <cstdlib>
#include <cstring>

#include "platform/base/constants.h"
#include "platform/controls/controls.h"
#include "platform/gdi/gdi.h"
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"
#include "winio/layout.h"
#include "winio/procedures.h"
#include "winio/records.h"
#include "winio/report.h"

namespace tarn::winio {

using platform::HDC;
using platform::LPARAM;
using platform::LRESULT;
using platform::UINT;
using platform::WNDPROC;
using platform::WPARAM;

namespace {

constexpr std::int32_t extra_bytes = 4;
constexpr std::uint32_t plain = platform::CS_VREDRAW | platform::CS_HREDRAW;
constexpr std::uint32_t clicks = plain | platform::CS_DBLCLKS;

// ---- Controls that are not built yet ------------------------------------------------------------
// A thin frame with the code's name, so that the window shows where the control will be.
void paint_placeholder(HWND hwnd) {
    platform::PAINTSTRUCT paint;
    const HDC dc = platform::BeginPaint(hwnd, paint);
    platform::RECT client;
    platform::GetClientRect(hwnd, client);
    const platform::Theme& look = platform::theme();
    platform::FillRect(dc, client, get_brush(look.face));
    const auto right = static_cast<float>(client.right), bottom = static_cast<float>(client.bottom);
    const float radius = right > 16 && bottom > 12 ? look.corner : 0.0F;
    platform::fill_rounded(dc, {0, 0, right, bottom}, radius, look.window);
    platform::stroke_rounded(dc, {0, 0, right, bottom}, radius, 1.0F, look.border);
    const window_control* control = control_from_window(hwnd, true);
    if (control && control->code != 0) {
        const char name[] = {'%', static_cast<char>(control->code >> 8 | 0x20),
                             static_cast<char>((control->code & 0xFF) | 0x20), 0};
        platform::SelectObject(dc, records().default_font);
        platform::SetBkMode(dc, platform::TRANSPARENT);
        platform::SetTextColor(dc, look.text_muted);
        platform::DrawTextA(dc, name, -1, client,
                            platform::DT_CENTER | platform::DT_VCENTER | platform::DT_SINGLELINE |
                                platform::DT_NOPREFIX);
    }
    platform::EndPaint(hwnd, paint);
}

LRESULT placeholder_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case platform::WM_PAINT:
            paint_placeholder(hwnd);
            return 0;
        case platform::WM_ERASEBKGND:
            return 1;
        default:
            return platform::DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

// ---- The table of classes ----------------------------------------------------------------------
enum class pointer_shape : std::uint8_t { none, arrow, beam, cross };

struct class_entry {
    char name[24];
    WNDPROC procedure;
    std::uint32_t style;
    pointer_shape cursor;
};

HCURSOR cursor_of(pointer_shape shape) {
    switch (shape) {
        case pointer_shape::arrow:
            return platform::LoadSystemCursor(platform::IDC_ARROW);
        case pointer_shape::beam:
            return platform::LoadSystemCursor(platform::IDC_IBEAM);
        case pointer_shape::cross:
            return platform::LoadSystemCursor(platform::IDC_CROSS);
        default:
            return HCURSOR{};
    }
}

void register_classes() {
    using enum pointer_shape;
    const class_entry classes[] = {
        {"TarnickMdi", mdi_frame_procedure, 0, arrow},
        {"TarnickEdit", placeholder_procedure, clicks, beam},
        {"TarnickGraphics", placeholder_procedure, clicks, cross},
        {"TarnickGIF", placeholder_procedure, clicks, arrow},
        {"TarnickOpenGL", placeholder_procedure, clicks, cross},
        {"TarnickBubbleHelp", bubble_help_procedure, plain, none},
        {"TarnickPalette", placeholder_procedure, plain, arrow},
        {"TarnickButtonBlock", constructed_button_procedure, plain, arrow},
        {"TarnickEquation", placeholder_procedure, plain, arrow},
        {"TarnickTreeview", placeholder_procedure, clicks, arrow},
        {"TarnickPs", placeholder_procedure, plain, arrow},
        {"TarnickBitmapButton", bitmap_button_procedure, plain, arrow},
        {"TarnickHypertext", placeholder_procedure, plain, arrow},
        {"MarrowgladeHypertext", placeholder_procedure, plain, none},
        {"TarnickTextArray", text_array_procedure, clicks, arrow},
        {"TarnickSlider", placeholder_procedure, plain, arrow},
        {"TarnickLed", placeholder_procedure, plain, arrow},
        {"TarnickBar", placeholder_procedure, plain, arrow},
        {"TarnickSpinControl", spin_control_procedure, plain, arrow},
        {"TarnickShadow", shadow_procedure, plain, arrow},
        {"TarnickPlaceholder", placeholder_procedure, plain, arrow},
    };
    for (const class_entry& entry : classes) {
        const bool shadow = entry.procedure == shadow_procedure;
        register_class(entry.name, entry.procedure, entry.style, cursor_of(entry.cursor),
                       shadow ? get_brush(0xE0E0E0) : HBRUSH{}, HICON{});
    }
    const class_settings& own = records().class_defaults;
    register_class(own.name ? own.name : "TarnickDialog", winio_winproc, plain,
                   own.cursor != HCURSOR{} ? own.cursor : cursor_of(arrow), HBRUSH{}, own.icon);
}

// The list is walked at every registration: a class whose window has gone goes too.
void drop_removed_classes() {
    class_record** link = &records().classes;
    while (class_record* record = *link) {
        if (record->remove && platform::UnregisterClassA(record->name.c_str())) {
            *link = record->next;
            delete record;
        } else {
            link = &record->next;
        }
    }
}

bool locale_is_utf8() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (!value || !*value) continue;
        return strcasestr(value, "utf-8") || strcasestr(value, "utf8");
    }
    return false;
}

void choose_default_font() {
    records_state& state = records();
    state.default_font = platform::GetStockObject(platform::DEFAULT_GUI_FONT);
    platform::GetObjectFont(state.default_font, state.default_spec);
    const class_settings& own = state.class_defaults;
    if (!own.font && own.text_scale == 0.0) return;
    if (own.text_scale != 0.0) {
        state.default_spec.lfHeight =
            static_cast<std::int32_t>(state.default_spec.lfHeight * own.text_scale);
    }
    state.default_font =
        own.font ? make_font(own.font, state.default_spec) : get_font(state.default_spec);
}

}  // namespace

void settle_encoding() {
    records_state& state = records();
    if (!state.utf8_chosen) state.utf8_default = locale_is_utf8();
    state.utf8_chosen = true;
}

class_record* register_class(const char* name, WNDPROC procedure, std::uint32_t style,
                             HCURSOR cursor, HBRUSH brush, HICON icon) {
    drop_removed_classes();
    auto* record = new class_record{};
    record->name = name;
    platform::WNDCLASS description;
    description.style = style;
    description.lpfnWndProc = procedure;
    description.cbWndExtra = extra_bytes;
    description.hIcon = icon;
    description.hCursor = cursor;
    description.hbrBackground = brush;
    description.lpszClassName = record->name;
    if (!platform::RegisterClassA(description)) {
        quillpan_error("Unable to register class %s", name);
    }
    record->next = records().classes;
    records().classes = record;
    return record;
}

void initialise_quillpan_plus() {
    records_state& state = records();
    if (state.used) return;
    state.used = true;
    settle_encoding();
    const std::uint32_t base = platform::GetDialogBaseUnits();
    state.char_width = static_cast<std::int32_t>(base & 0xFFFF);
    state.char_height = static_cast<std::int32_t>(base >> 16);
    choose_default_font();
    platform::register_standard_controls();
    register_classes();
    install_window_procedures();
}

}  // namespace tarn::winio
