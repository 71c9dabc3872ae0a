// Fonts, brushes and pens: made once for each description and kept.
#include <cstring>

#include "platform/base/constants.h"
#include "platform/gdi/gdi.h"
#include "platform/gdi/theme.h"
#include "winio/layout.h"
#include "winio/records.h"
#include "winio/report.h"
#include "winio/resources.h"

namespace tarn::winio {

struct font_entry {
    font_entry* next;
    HFONT handle;
    platform::TEXTMETRIC metric;
    LOGFONT description;
};

namespace {

using platform::TEXTMETRIC;

TEXTMETRIC measure_font(HFONT font) {
    TEXTMETRIC metric;
    const platform::HDC dc = measuring_dc();
    const platform::HGDIOBJ before = platform::SelectObject(dc, font);
    platform::GetTextMetricsA(dc, metric);
    platform::SelectObject(dc, before);
    return metric;
}

// Everything behind the face name's end is zero, so that equal names make equal descriptions.
void pad_face_name(LOGFONT& description) {
    const std::size_t length = strnlen(description.lfFaceName, sizeof description.lfFaceName - 1);
    std::memset(description.lfFaceName + length, 0, sizeof description.lfFaceName - length);
}

HFONT find_font(const char* name, LOGFONT& description, bool reports) {
    LOGFONT found{};
    if (!font_exists(name, found)) {
        if (reports) quillpan_error("?Font %s not found", name);
        return records().default_font;
    }
    // The face is the family's; how large it is stays as asked for.
    if (description.lfHeight != 0) found.lfHeight = description.lfHeight;
    found.lfWidth = 0;
    description = found;
    const HFONT font = get_font(description);
    if (font == HFONT{} && reports) quillpan_error("?Unable to create font %s", name);
    return font;
}

template <class Entry>
void delete_all(Entry*& head) {
    while (head) {
        Entry* gone = head;
        head = head->next;
        platform::DeleteObject(gone->handle);
        std::free(gone);
    }
}

}  // namespace

// ---- Fonts -------------------------------------------------------------------------------------
HFONT get_font(LOGFONT description) {
    pad_face_name(description);
    records_state& state = records();
    for (font_entry* entry = state.fonts; entry; entry = entry->next) {
        if (std::memcmp(&entry->description, &description, sizeof description) == 0) {
            return entry->handle;
        }
    }
    const HFONT handle = platform::CreateFontIndirectA(description);
    if (handle == HFONT{}) return handle;
    auto* entry = new_record<font_entry>();
    entry->handle = handle;
    entry->metric = measure_font(handle);
    entry->description = description;
    entry->next = state.fonts;
    state.fonts = entry;
    ++state.font_count;
    return handle;
}

const TEXTMETRIC& font_metric(HFONT font) {
    for (font_entry* entry = records().fonts; entry; entry = entry->next) {
        if (entry->handle == font) return entry->metric;
    }
    static TEXTMETRIC other;
    other = measure_font(font);
    return other;
}

HFONT get_font_for_point_size(LOGFONT description, std::int32_t points, double& scale) {
    const TEXTMETRIC& standard = font_metric(records().default_font);
    const std::int32_t em =
        standard.tmHeight - (standard.tmInternalLeading + standard.tmExternalLeading);
    const std::int32_t per_inch = platform::GetDeviceCaps(measuring_dc(), platform::LOGPIXELSY);
    description.lfHeight = -(per_inch * points / 72);
    description.lfWidth = 0;
    scale = em > 0 ? -static_cast<double>(description.lfHeight) / em : 1.0;
    return get_font(description);
}

HFONT adjust_font(LOGFONT description, bool italic, bool underline, bool bold) {
    if (italic) description.lfItalic = 1;
    if (underline) description.lfUnderline = 1;
    if (bold) description.lfWeight = 700;
    description.lfWidth = 0;
    return get_font(description);
}

HFONT make_font(const char* name, LOGFONT& description) {
    return find_font(name, description, true);
}

HFONT make_font_c(const char* name, LOGFONT& description) {
    return find_font(name, description, false);
}

// ---- Brushes and pens --------------------------------------------------------------------------
HBRUSH get_brush(COLORREF colour) {
    records_state& state = records();
    for (brush_entry* entry = state.brushes; entry; entry = entry->next) {
        if (entry->colour == colour) return entry->handle;
    }
    const HBRUSH handle = platform::CreateSolidBrush(colour);
    confirm_handle(handle, "get_brush");
    if (handle == HBRUSH{}) return handle;
    auto* entry = new_record<brush_entry>();
    *entry = {state.brushes, handle, colour};
    state.brushes = entry;
    ++state.brush_and_pen_count;
    return handle;
}

HPEN get_pen(std::int32_t style, std::int32_t width, COLORREF colour) {
    records_state& state = records();
    for (pen_entry* entry = state.pens; entry; entry = entry->next) {
        if (entry->style == style && entry->width == width && entry->colour == colour) {
            return entry->handle;
        }
    }
    const HPEN handle = (style & platform::PS_GEOMETRIC) != 0
                            ? platform::ExtCreatePen(static_cast<std::uint32_t>(style),
                                                     static_cast<std::uint32_t>(width), colour)
                            : platform::CreatePen(style, width, colour);
    confirm_handle(handle, "get_pen");
    if (handle == HPEN{}) return handle;
    auto* entry = new_record<pen_entry>();
    *entry = {state.pens, handle, style, width, colour};
    state.pens = entry;
    ++state.brush_and_pen_count;
    return handle;
}

void monitor_gdi_resources() {
    records_state& state = records();
    if (state.gdi_limit <= 0) return;
    if (state.brush_and_pen_count + state.font_count < state.gdi_limit) return;
    delete_all(state.brushes);
    delete_all(state.pens);
    state.brush_and_pen_count = 0;
}

// ---- Default colours ---------------------------------------------------------------------------
COLORREF dialog_colour() {
    return platform::GetSysColor(platform::COLOR_BTNFACE);
}
COLORREF data_colour() {
    return platform::GetSysColor(platform::COLOR_WINDOW);
}
COLORREF default_text_colour() {
    return platform::GetSysColor(platform::COLOR_WINDOWTEXT);
}

}  // namespace tarn::winio
