// The parameters that a call-back asks for by name.
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/dialogs/file_dialog.h"
#include "platform/gdi/gdi.h"
#include "platform/user/user.h"
#include "winio/callbacks.h"
#include "winio/report.h"
#include "winio/winproc.h"

namespace tarn::winio {
namespace {

using namespace platform;

constexpr std::size_t name_limit = 100;
constexpr std::size_t bucket_count = 256;

enum : std::uint8_t {
    integer_type = 0,
    float_type = 1,
    string_type = 2,
    type_bits = 7,
    bound = 8,        // the value lies in the context
    computed = 0x10,  // when it is asked for
    wide = 0x20,      // pointer-sized storage
};

enum class computation : std::uint16_t {
    user_window_data,
    graphics_hdc,
    active_edit_box,
    edit_key,
    focus_window,
    opengl_device_context,
    opengl_alive,
    system_font_height,
    tooltip_hwnd,
    extended_error,
    url_name,
};
// Values that are stored when the store is made.
enum class initial : std::uint16_t { zero, h_unit, v_unit, screen_width, screen_depth, colours };

struct known_parameter {
    char name[30];
    std::uint8_t flags;
    std::uint16_t where;  // offset in the context, computation or initial value
};

constexpr std::uint16_t at(computation which) {
    return static_cast<std::uint16_t>(which);
}
constexpr std::uint16_t at(initial which) {
    return static_cast<std::uint16_t>(which);
}

// offsetof is a macro, and so must be what takes a field's name.
#define CONTEXT(name, flags, field) \
    { name, (flags) | bound, static_cast<std::uint16_t>(offsetof(parameter_set, field)) }

// Plain bytes: the table costs a program's start nothing.
constexpr known_parameter known[] = {
    CONTEXT("CALL_BACK_REASON", string_type, reason),
    CONTEXT("CALLBACK_REASON", string_type, reason),
    CONTEXT("CALL_BACK_WINDOW", integer_type, window_handle),
    CONTEXT("CALLBACK_WINDOW", integer_type, window_handle),
    CONTEXT("CURRENT_CONTROL", integer_type, control_handle),
    CONTEXT("USER_DATA", wide, user_data),
    {"USER_WINDOW_DATA", computed, at(computation::user_window_data)},
    CONTEXT("LATEST_WINDOW", integer_type, latest_window),
    CONTEXT("LATEST_FORMATTED_WINDOW", integer_type, latest_window),
    CONTEXT("LATEST_VARIABLE", wide, latest_variable),
    CONTEXT("ACTION_X", integer_type, action_x),
    CONTEXT("ACTION_Y", integer_type, action_y),
    CONTEXT("BUTTON_NUMBER", integer_type, button_number),
    CONTEXT("ROW_NUMBER", integer_type, row_number),
    CONTEXT("COLUMN_NUMBER", integer_type, column_number),
    CONTEXT("KEYBOARD_KEY", integer_type, keyboard_key),
    CONTEXT("CURSOR_WINDOW", integer_type, cursor_window),
    CONTEXT("FOCUSSED_WINDOW", integer_type, focussed_window),
    CONTEXT("MESSAGE_HWND", integer_type, message_hwnd),
    CONTEXT("MESSAGE_LPARAM", wide, message_lparam),
    CONTEXT("MESSAGE_WPARAM", wide, message_wparam),
    CONTEXT("MESSAGE_MSG", integer_type, message_msg),
    CONTEXT("GRAPHICS_DC", integer_type, graphics_dc),
    CONTEXT("GRAPHICS_WIDTH", integer_type, graphics_width),
    CONTEXT("GRAPHICS_DEPTH", integer_type, graphics_depth),
    CONTEXT("GRAPHICS_RESIZING", integer_type, graphics_resizing),
    CONTEXT("GRAPHICS_MOUSE_X", integer_type, graphics_mouse_x),
    CONTEXT("GRAPHICS_MOUSE_Y", integer_type, graphics_mouse_y),
    CONTEXT("GRAPHICS_MOUSE_FLAGS", integer_type, graphics_mouse_flags),
    CONTEXT("GRAPHICS_MOUSEWHEEL_ROTATION", integer_type, mousewheel_rotation),
    CONTEXT("INTERMEDIATE_SCROLL", integer_type, mousewheel_rotation),
    CONTEXT("GIF_MOUSE_X", integer_type, gif_mouse_x),
    CONTEXT("GIF_MOUSE_Y", integer_type, gif_mouse_y),
    CONTEXT("OPENGL_WIDTH", integer_type, opengl_width),
    CONTEXT("OPENGL_DEPTH", integer_type, opengl_depth),
    CONTEXT("TEXT_ARRAY_WIDTH", integer_type, text_array_width),
    CONTEXT("TEXT_ARRAY_DEPTH", integer_type, text_array_depth),
    CONTEXT("TEXT_ARRAY_RESIZING", integer_type, text_array_resizing),
    CONTEXT("TEXT_ARRAY_X", integer_type, text_array_x),
    CONTEXT("TEXT_ARRAY_Y", integer_type, text_array_y),
    CONTEXT("TEXT_ARRAY_CHAR", integer_type, text_array_char),
    CONTEXT("TEXT_ARRAY_MOUSE_FLAGS", integer_type, text_array_mouse_flags),
    CONTEXT("FILTER_ITEM_SELECTED", integer_type, filter_item_selected),
    CONTEXT("EDITABLE_LISTBOX_INDEX", integer_type, editable_listbox_index),
    CONTEXT("LISTBOX_ITEM_SELECTED", integer_type, listbox_item_selected),
    CONTEXT("TREEVIEW_ITEM_SELECTED", integer_type, treeview_item_selected),
    CONTEXT("SHEET_NO", integer_type, sheet_no),
    CONTEXT("SPIN_CONTROL_USED", integer_type, spin_control_used),
    CONTEXT("GAINING_FOCUS", integer_type, gaining_focus),
    CONTEXT("LOSING_FOCUS", integer_type, losing_focus),
    CONTEXT("CURRENT_TEXT_ITEM", string_type, current_text_item),
    CONTEXT("CURRENT_TEXT_DOCUMENT", string_type, current_text_document),
    CONTEXT("CURRENT_TEXT_TITLE", string_type, current_text_title),
    {"URL_NAME", computed | string_type, at(computation::url_name)},
    {"POPUP_X", integer_type, 0},
    {"POPUP_Y", integer_type, 0},
    {"DRAGGED_ICON", integer_type, 0},
    {"DROPPED_ICON", integer_type, 0},
    {"DROPPED_COUNT", integer_type, 0},
    {"DROPPED_CURRENT", integer_type, 0},
    {"DROPPED_FILE", string_type, 0},
    {"PIXELS_PER_H_UNIT", integer_type, at(initial::h_unit)},
    {"PIXELS_PER_V_UNIT", integer_type, at(initial::v_unit)},
    {"SCREEN_WIDTH", integer_type, at(initial::screen_width)},
    {"SCREEN_DEPTH", integer_type, at(initial::screen_depth)},
    {"SCREEN_NUM_COLOURS", integer_type, at(initial::colours)},
    {"PRINTER_COPIES", integer_type, 0},
    {"PRINTER_COLLATE", integer_type, 0},
    {"PRINTER_SELECTION", integer_type, 0},
    {"PRINTER_PAGENUMBERS", integer_type, 0},
    {"PRINTER_DEFAULT_MIN_PAGE", integer_type, 0},
    {"PRINTER_DEFAULT_MAX_PAGE", integer_type, 0},
    {"PRINTER_DEFAULT_FROM_PAGE", integer_type, 0},
    {"PRINTER_DEFAULT_TO_PAGE", integer_type, 0},
    {"PRINTER_FIRST_PAGE", integer_type, 0},
    {"PRINTER_LAST_PAGE", integer_type, 0},
    {"PRINTER_DOCUMENT", string_type, 0},
    {"ERROR_REPORT", string_type, 0},
    {"CURRENT_MENU_ITEM", string_type, 0},
    {"CURRENT_URL", string_type, 0},
    {"EDITED_TEXT", string_type, 0},
    {"MESSAGE_TEXT", string_type, 0},
    {"SELECTION_BOX_ITEM", string_type, 0},
    {"CHECKING_DIRECTORY", string_type, 0},
    {"FILE_FOUND", string_type, 0},
    {"FIND_FILE_CALLBACK_REASON", string_type, 0},
    {"MB_BUTTON", integer_type, 0},
    {"GRAPHICS_HDC", computed, at(computation::graphics_hdc)},
    {"ACTIVE_EDIT_BOX", computed, at(computation::active_edit_box)},
    {"EDIT_KEY", computed, at(computation::edit_key)},
    {"FOCUS_WINDOW", computed, at(computation::focus_window)},
    {"OPENGL_DEVICE_CONTEXT", computed, at(computation::opengl_device_context)},
    {"OPENGL_ALIVE", computed, at(computation::opengl_alive)},
    {"SYSTEM_FONT_HEIGHT", computed, at(computation::system_font_height)},
    {"TOOLTIP_HWND", computed, at(computation::tooltip_hwnd)},
    {"EXTENDED_ERROR", computed, at(computation::extended_error)},
};
#undef CONTEXT

struct parameter {
    parameter* next;
    const char* name;
    union {
        word integer;
        double real;
        char* text;  // owned
    };
    std::uint16_t where;
    std::uint8_t flags;
    std::uint8_t type() const { return flags & type_bits; }
};

struct parameter_store {
    parameter** buckets;
    char url[256];
};
parameter_store& store() {
    static constinit parameter_store the_store{};
    return the_store;
}

// ---- Names -------------------------------------------------------------------------------------
struct folded_name {
    char text[name_limit];
    bool fits;
};

folded_name fold(const char* name) {
    folded_name result{};
    std::size_t length = 0;
    for (; name && name[length] && length < name_limit - 1; ++length) {
        const char c = name[length];
        result.text[length] = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    result.fits = name && !name[length];
    return result;
}

std::size_t bucket_of(const char* name) {
    std::uint32_t hash = 0;
    for (; *name; ++name) hash = hash * 3 + static_cast<unsigned char>(*name);
    return hash % bucket_count;
}

word initial_value(initial which) {
    switch (which) {
        case initial::h_unit:
            return records().char_width;
        case initial::v_unit:
            return records().char_height;
        case initial::screen_width:
            return GetSystemMetrics(SM_CXSCREEN);
        case initial::screen_depth:
            return GetSystemMetrics(SM_CYSCREEN);
        case initial::colours: {
            const HDC screen = GetDC(HWND{});
            const std::int32_t colours = GetDeviceCaps(screen, NUMCOLORS);
            ReleaseDC(HWND{}, screen);
            return colours < 0 ? 8192 : colours;
        }
        case initial::zero:
            break;
    }
    return 0;
}

parameter* insert(const char* name) {
    auto* fresh = new_record<parameter>();
    fresh->name = name;
    parameter*& head = store().buckets[bucket_of(name)];
    fresh->next = head;
    head = fresh;
    return fresh;
}

void fill_store() {
    initialise_quillpan_plus();
    store().buckets = static_cast<parameter**>(allocate_zeroed(bucket_count * sizeof(parameter*)));
    for (const known_parameter& each : known) {
        parameter* made = insert(each.name);
        made->flags = each.flags;
        made->where = each.where;
        if (each.flags == integer_type)
            made->integer = initial_value(static_cast<initial>(each.where));
    }
    set_quillpan_string("PRINTER_DOCUMENT", "Quillpan+ Output");
}

parameter* find(const folded_name& name) {
    if (!store().buckets) fill_store();
    if (!name.fits) return nullptr;
    for (parameter* p = store().buckets[bucket_of(name.text)]; p; p = p->next)
        if (std::strcmp(p->name, name.text) == 0) return p;
    return nullptr;
}

// The record that a new value goes to; null when it may not be set.
parameter* find_or_make(const char* name, const char* asking) {
    const folded_name folded = fold(name);
    parameter* p = find(folded);
    if (!folded.fits) {
        quillpan_error("The string %s\nis not known to %s", folded.text, asking);
        return nullptr;
    }
    if (!p) p = insert(strdup(folded.text));
    if (!(p->flags & computed)) return p;
    quillpan_error("This parameter may not be altered");
    return nullptr;
}

// ---- Values ------------------------------------------------------------------------------------
char* storage_of(const parameter& p) {
    return reinterpret_cast<char*>(&callbacks().context) + p.where;
}

word bound_integer(const parameter& p) {
    if (p.flags & wide) return *reinterpret_cast<word*>(storage_of(p));
    return *reinterpret_cast<std::int32_t*>(storage_of(p));
}

void set_bound_integer(const parameter& p, word value) {
    if (p.flags & wide)
        *reinterpret_cast<word*>(storage_of(p)) = value;
    else
        *reinterpret_cast<std::int32_t*>(storage_of(p)) = static_cast<std::int32_t>(value);
}

void drop_text(parameter& p) {
    if (p.type() == string_type && !(p.flags & bound)) {
        std::free(p.text);
        p.text = nullptr;
    }
}

void set_type(parameter& p, std::uint8_t type) {
    p.flags = static_cast<std::uint8_t>((p.flags & ~type_bits) | type);
}

word focused_format_window() {
    for (HWND at = GetFocus(); at; at = GetParent(at))
        if (fancy_window_from_handle(at)) return at;
    return 0;
}

word system_font_height() {
    const HDC screen = GetDC(HWND{});
    const HGDIOBJ old = SelectObject(screen, GetStockObject(SYSTEM_FONT));
    SIZE size;
    GetTextExtentPoint32A(screen, "M", 1, size);
    SelectObject(screen, old);
    ReleaseDC(HWND{}, screen);
    return size.cy;
}

// Edit boxes, drawing surfaces and tool tips of their own bring their values along when they are
// built.
word compute(computation which) {
    switch (which) {
        case computation::user_window_data:
            return current_window() ? current_window()->user_data : 0;
        case computation::focus_window:
            return focused_format_window();
        case computation::system_font_height:
            return system_font_height();
        case computation::extended_error:
            return static_cast<word>(CommDlgExtendedError());
        case computation::opengl_device_context:
            quillpan_error("No OpenGL buffers are open");
            return 0;
        case computation::graphics_hdc:
        case computation::active_edit_box:
        case computation::tooltip_hwnd:
            return current_window() ? static_cast<word>(tool_help_window(current_window())) : 0;
        case computation::edit_key:
        case computation::opengl_alive:
            return 0;
        case computation::url_name:
            break;
    }
    quillpan_error("Internal error in quillpan_info");
    return 0;
}

// A link is told once.
const char* take_url() {
    char* const url = store().url;
    char*& source = callbacks().context.url_name;
    url[0] = 0;
    if (source) std::strncpy(url, source, sizeof store().url - 1);
    std::free(source);
    source = nullptr;
    return url;
}

// ---- THIS --------------------------------------------------------------------------------------
// The control of the call-back that runs, if it is still there.
const window_control* current_control() {
    const window_control* control = callbacks().context.control;
    for (const fancy_window* window = records().windows; control && window; window = window->next)
        for (const window_control* c = window->first_control; c; c = c->next)
            if (c == control) return c->variable ? c : nullptr;
    return nullptr;
}

bool is_reason(const char* reason) {
    const char* now = callbacks().context.reason;
    return now && std::strcmp(now, reason) == 0;
}

const std::int32_t* this_integer() {
    const window_control* control = current_control();
    if (!control) return nullptr;
    bool fits = false;
    switch (control->type) {
        case control_type::integer_box:
            fits = is_reason("DATA_ALTERATION");
            break;
        case control_type::list_box:
        case control_type::combo_box:
            fits = is_reason("ITEM_SELECTED") || is_reason("ITEM_DOUBLE_CLICKED");
            break;
        case control_type::native_slider:
            fits = is_reason("SLIDER_MOTION");
            break;
        case control_type::radio:
            fits = is_reason("BUTTON_PRESS");
            break;
        default:
            break;
    }
    return fits ? static_cast<const std::int32_t*>(control->variable) : nullptr;
}

const double* this_float() {
    const window_control* control = current_control();
    if (!control) return nullptr;
    const bool fits = (control->type == control_type::slider && is_reason("SLIDER_MOTION")) ||
                      (control->type == control_type::float_box && is_reason("DATA_ALTERATION"));
    return fits ? static_cast<const double*>(control->variable) : nullptr;
}

bool asks_for_this(const folded_name& name) {
    return std::strcmp(name.text, "THIS") == 0;
}

}  // namespace

word quillpan_info(const char* name) {
    const folded_name folded = fold(name);
    const parameter* p = find(folded);
    if (asks_for_this(folded)) {
        if (const std::int32_t* value = this_integer()) return *value;
    }
    if (!p || p->type() != integer_type) {
        quillpan_error("The string %s\nis not known to quillpan_info", folded.text);
        return 0;
    }
    if (p->flags & computed) return compute(static_cast<computation>(p->where));
    return p->flags & bound ? bound_integer(*p) : p->integer;
}

double quillpan_float(const char* name) {
    const folded_name folded = fold(name);
    const parameter* p = find(folded);
    if (asks_for_this(folded)) {
        if (const double* value = this_float()) return *value;
    }
    if (p && p->type() == integer_type && p->flags & bound)
        return static_cast<double>(bound_integer(*p));
    if (p && p->type() == float_type) return p->real;
    if (std::strcmp(folded.text, "RF_EXP_LIMIT") != 0)
        quillpan_error("The string %s\nis not known to quillpan_float", folded.text);
    return 0.0;
}

const char* quillpan_string(const char* name) {
    const folded_name folded = fold(name);
    const parameter* p = find(folded);
    if (!p || p->type() != string_type) {
        quillpan_error("The string %s\nis not known to quillpan_string", folded.text);
        return "";
    }
    if (p->flags & computed) return take_url();
    const char* text =
        p->flags & bound ? *reinterpret_cast<const char* const*>(storage_of(*p)) : p->text;
    return text ? text : "";
}

void set_quillpan_info(const char* name, word value) {
    parameter* p = find_or_make(name, "quillpan_info");
    if (!p) return;
    drop_text(*p);
    if (p->type() != integer_type) p->flags &= ~bound;
    set_type(*p, integer_type);
    if (p->flags & bound)
        set_bound_integer(*p, value);
    else
        p->integer = value;
}

void set_quillpan_float(const char* name, double value) {
    parameter* p = find_or_make(name, "quillpan_float");
    if (!p) return;
    drop_text(*p);
    p->flags &= ~bound;
    set_type(*p, float_type);
    p->real = value;
}

// The text may be the parameter's own.
void set_quillpan_string(const char* name, const char* text) {
    parameter* p = find_or_make(name, "quillpan_string");
    if (!p) return;
    char* copy = text ? strdup(text) : nullptr;
    if (text && !copy) heap_exhausted();
    drop_text(*p);
    p->flags &= ~bound;
    set_type(*p, string_type);
    p->text = copy;
}

}  // namespace tarn::winio
