// The real control of every record: which class and style it takes, and what it is told first.
#include "platform/controls/controls.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/layout.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr const char* place_holder_class = "TarnickPlaceholder";

struct control_look {
    const char* class_name = nullptr;  // null: no window
    DWORD style = 0, ex_style = 0;
    const char* text = "";
};

DWORD border_of(const window_control* control) {
    return control->flags.data_border ? DWORD{WS_BORDER} : 0;
}

control_look static_look(const fancy_window* window, const window_control* control) {
    DWORD style = control->style;
    if (control->flags.right) style |= SS_RIGHT;
    if (window->text_control) style |= SS_NOTIFY;
    if (control->flags.no_prefix) style |= SS_NOPREFIX;
    // A subscript or superscript reaches into its neighbour lines.
    const bool over = control->type == control_type::text && control->baseline_shift != 0;
    return {"static", style, over ? DWORD{WS_EX_TRANSPARENT} : 0,
            control->text ? control->text : ""};
}

control_look number_look(const window_control* control, DWORD style) {
    if (control->flags.read_form)
        return {"static", control->flags.right_justify ? DWORD{SS_RIGHT} : 0, 0, ""};
    style |= border_of(control);
    if (control->flags.right_justify) style |= ES_RIGHT;
    if (control->flags.read_only) style |= ES_READONLY;
    return {"edit", style, 0, ""};
}

control_look text_box_look(const window_control* control) {
    bool buffer = control->type == control_type::buffer_box;
    if (control->flags.read_form) return {"static", SS_LEFTNOWORDWRAP, 0, ""};
    DWORD style = WS_TABSTOP | border_of(control);
    if (control->flags.read_only || control->flags.read_form) style |= ES_READONLY;
    if (!control->flags.no_h_scroll) style |= ES_AUTOHSCROLL;
    if (control->flags.password) style |= ES_PASSWORD;
    if (control->flags.keep_focus) style |= ES_NOHIDESEL;
    if (control->flags.centre_text)
        style |= ES_CENTER;
    else if (control->flags.right_text || control->flags.right_justify)
        style |= ES_RIGHT;
    if (control->case_mode == 2) style |= ES_UPPERCASE;
    if (control->case_mode == 1) style |= ES_LOWERCASE;
    if (buffer) {
        style |= ES_MULTILINE | ES_WANTRETURN;
        if (!control->flags.no_v_scroll) style |= ES_AUTOVSCROLL;
        if (control->flags.v_bar) style |= WS_VSCROLL;
        if (control->flags.h_bar) style |= WS_HSCROLL;
    }
    return {"edit", style, 0, ""};
}

control_look option_button_look(const window_control* control) {
    const auto* button = static_cast<const Xbutton*>(control->block);
    bool is_default = is_default_button(control);
    DWORD style = is_default ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
    if (button && (button->flags & 2) != 0)
        style = is_default ? BS_DEFSPLITBUTTON : BS_SPLITBUTTON;
    else if (button && button->note)
        style = is_default ? BS_DEFCOMMANDLINK : BS_COMMANDLINK;
    if (button && button->icon && (!button->caption || !*button->caption)) style |= BS_ICON;
    return {"button", WS_TABSTOP | style, 0, button_label(control)};
}

control_look picture_look(const window_control* control) {
    if (!control->flags.native) return {"button", BS_OWNERDRAW, 0, ""};
    return {"static", control->type == control_type::icon ? DWORD{SS_ICON} : DWORD{SS_BITMAP}, 0,
            ""};
}

control_look look_of(const fancy_window* window, const window_control* control) {
    if (control->flags.placeholder) return {place_holder_class, 0, 0, ""};
    switch (control->type) {
        case control_type::text:
        case control_type::help_line:
        case control_type::static_string:
            return static_look(window, control);
        case control_type::button:
        case control_type::fancy_button:
            return {
                "button",
                WS_TABSTOP | DWORD{is_default_button(control) ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON},
                0, button_label(control)};
        case control_type::option_button:
            return option_button_look(control);
        case control_type::system_icon:
        case control_type::picture:
            return {"button", BS_OWNERDRAW, 0, ""};
        case control_type::icon:
        case control_type::bitmap:
            return picture_look(control);
        case control_type::integer_box:
            return number_look(control, 0x10400);
        case control_type::float_box:
            return number_look(control, WS_TABSTOP);
        case control_type::string_box:
        case control_type::buffer_box:
            return text_box_look(control);
        case control_type::group_box:
            return {"button", WS_TABSTOP | DWORD{BS_GROUPBOX}, 0,
                    control->text ? control->text : ""};
        case control_type::bitmap_switch:
            return {"TarnickBitmapButton", 0x0B, 0, ""};
        case control_type::radio:
            return {"button",
                    WS_TABSTOP | DWORD{control->flags.grave ? BS_CHECKBOX : BS_RADIOBUTTON}, 0,
                    control->text ? control->text : ""};
        case control_type::mdi_frame:
            return {"TarnickMdi", 0, 0, ""};
        case control_type::spin:
            return {"TarnickSpinControl", 0, 0, ""};
        case control_type::text_array:
            return {"TarnickTextArray", 0, 0, ""};
        case control_type::button_block:
            return {"TarnickButtonBlock", 0, 0, ""};
        case control_type::box_frame:
        case control_type::marker:
        case control_type::line_end:
        case control_type::blank:
        case control_type::child_window:
        case control_type::text_window:
            return {};
        default:
            return {place_holder_class, 0, 0, ""};
    }
}

void hand_out(window_control* control) {
    if (control->type == control_type::mdi_frame) return;  // it is told its topmost child
    std::int32_t handle = static_cast<std::int32_t>(control->hwnd);
    if (control->hwnd_var) *control->hwnd_var = handle;
    if (control->hwnd_var_wide) *control->hwnd_var_wide = handle;
}

// A page of %ch: its record waits for a parent.
void create_child(fancy_window* window, window_control* control, std::int32_t id) {
    fancy_window* child =
        window_from_control_variable(static_cast<std::int32_t*>(control->variable));
    if (!child || child == window || child->hwnd != HWND{-1}) return;
    child->hwnd = HWND{};
    child->frame_window = window;
    control->gcb = child;
    fancy_window* before = current_window();
    std::int32_t width = control->right - control->left + 1;
    std::int32_t height = control->bottom - control->top + 1;
    control->hwnd = CreateWindowExAW(child->ex_style, class_of(child), "",
                                     WS_CHILD | WS_CLIPSIBLINGS | WS_VISIBLE, control->left,
                                     control->top, width, height, window->hwnd, HMENU{id}, child);
    current_window() = before;
    post_start_up(child);
}

void tell_images(window_control* control) {
    if (control->type == control_type::bitmap && control->flags.native) {
        SendMessageA(control->hwnd, STM_SETIMAGE, IMAGE_BITMAP, control->data);
        return;
    }
    if (control->type != control_type::option_button || drawn_button(control)) return;
    const auto* button = static_cast<const Xbutton*>(control->block);
    if (!button) return;
    if (button->note)
        SendMessageA(control->hwnd, BCM_SETNOTE, 0, reinterpret_cast<LPARAM>(button->note));
    if (HICON icon = find_icon(button->icon))
        SendMessageA(control->hwnd, BM_SETIMAGE, 1, static_cast<LPARAM>(icon));
}

bool takes_system_font(control_type type) {
    switch (type) {
        case control_type::spin:
        case control_type::mdi_frame:
        case control_type::text_array:
        case control_type::button_block:
        case control_type::bitmap_switch:
            return false;
        default:
            return true;
    }
}

void tell_limits(window_control* control) {
    if (control->flags.read_form) return;
    WPARAM limit = 0;
    if (control->high < 1.0 || control->high > 1.0E9)
        limit = static_cast<WPARAM>(-1);
    else
        limit = static_cast<WPARAM>(control->high) - (control->flags.fortran_string ? 0 : 1);
    SendMessageA(control->hwnd, EM_LIMITTEXT, limit, 0);
}

bool can_take_focus(const window_control* control) {
    if (!control->hwnd || control->flags.read_form || control->flags.placeholder) return false;
    if (control->type == control_type::spin) return false;
    return (type_properties(control->type) & takes_focus) != 0;
}

bool is_button(const window_control* control) {
    return control->type == control_type::button || control->type == control_type::fancy_button ||
           control->type == control_type::option_button;
}

// The first control that can take the focus has it; a default button takes it from a button.
void offer_focus(fancy_window* window, window_control* control, bool named) {
    if (named || !can_take_focus(control)) return;
    window_control* first = window->first_focus;
    if (!first || (is_button(first) && is_button(control) && is_default_button(control) &&
                   !is_default_button(first)))
        window->first_focus = control;
}

}  // namespace

void create_control_window(fancy_window* window, window_control* control, std::int32_t child_id) {
    control_rectangle(control);
    control->hwnd = HWND{};
    if (control->type == control_type::child_window && !control->flags.placeholder) {
        create_child(window, control, child_id);
        return hand_out(control);
    }
    if (control->type == control_type::text_window && !control->flags.placeholder) {
        create_text_window(window, control);
        return hand_out(control);
    }
    control_look look = look_of(window, control);
    if (!look.class_name) return;
    DWORD style = look.style | WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS;
    DWORD ex_style = look.ex_style | control->ex_style;
    if (control->type != control_type::text) style |= control->style;
    if (control->flags.client_edge && (style & WS_BORDER) != 0) {
        style &= ~DWORD{WS_BORDER};
        ex_style |= WS_EX_CLIENTEDGE;
    }
    if (window->flags.three_d) style &= ~DWORD{WS_BORDER};
    control->hwnd =
        CreateWindowExAW(ex_style, look.class_name, look.text, style, control->left, control->top,
                         control->right - control->left + 1, control->bottom - control->top + 1,
                         window->hwnd, HMENU{child_id});
    if (!control->hwnd) return;
    tell_images(control);
    if (control->font && takes_system_font(control->type))
        SendMessageA(control->hwnd, WM_SETFONT, static_cast<WPARAM>(control->font), 0);
    switch (control->type) {
        case control_type::button:
        case control_type::fancy_button:
        case control_type::option_button:
            if (drawn_button(control)) subclass_button(control);
            break;
        case control_type::string_box:
        case control_type::buffer_box:
            tell_limits(control);
            [[fallthrough]];
        case control_type::integer_box:
        case control_type::float_box:
            if (!control->flags.placeholder && !control->flags.read_form) subclass_edit(control);
            break;
        default:
            break;
    }
    hand_out(control);
}

// A child tells its control by its number: messages of a window with many controls find it at once.
void make_room_for_numbers(fancy_window* window) {
    std::int32_t count = 0;
    for (const window_control* control = window->first_control; control; control = control->next)
        count += control->scrolls ? 3 : 1;  // its bars have numbers of their own
    if (count == 0) return;
    auto* table = static_cast<window_control**>(
        allocate_zeroed(static_cast<std::size_t>(count) * sizeof(window_control*)));
    fancy_window* before = current_window();
    current_window() = window;
    discard_with_window(table, nullptr);
    current_window() = before;
    window->controls_by_id = table;
    window->controls_by_id_count = count;
}

void create_controls(fancy_window* window) {
    window_watch watch(window);
    make_room_for_numbers(window);
    bool named = window->first_focus != nullptr;
    std::int32_t id = first_child_id;
    for (window_control* control = window->first_control; control; control = control->next) {
        if (id - first_child_id < window->controls_by_id_count)
            window->controls_by_id[id - first_child_id] = control;
        create_control_window(window, control, id++);
        if (watch.gone()) return;
        offer_focus(window, control, named);
        if (control->scrolls) create_scroll_bars(control, id);
    }
    if (window->first_focus) return;
    for (window_control* control = window->first_control; control; control = control->next)
        if (control->type == control_type::graphics && control->hwnd) {
            window->first_focus = control;
            return;
        }
}

}  // namespace tarn::winio
