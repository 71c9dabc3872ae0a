// Option lists of the data-entry codes, lists and buttons.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/base/constants.h"
#include "winio/data_entry.h"
#include "winio/options.h"
#include "winio/report.h"

namespace tarn::winio {

// ---- The reader --------------------------------------------------------------------------------
bool opens_options(const code_call& call) {
    if (*call.format != '[') return false;
    if (!call.question) return true;
    const char* end = std::strchr(call.format, ']');
    return end && (end[1] == '[' || end[1] == '@');
}

option_reader::option_reader(code_call& call, std::uint16_t code, const char* code_name, bool fatal)
    : call_(call),
      words_(get_quillpan_options(code)),
      code_name_(code_name),
      open_(*call.format == '['),
      fatal_(fatal) {}

bool option_reader::next() {
    if (!open_) return false;
    position_ = get_format_option(call_.format, words_, code_name_, fatal_);
    open_ = position_ > 0;
    if (open_) word_ = words_[position_ - 1];
    return open_;
}

namespace {

char* kept_value() {
    return window_text_copy(option_value().data(), option_value().size());
}

double option_double() {
    return std::strtod(option_value().c_str(), nullptr);
}

// A factor on a size: beyond this nothing fits a screen, and what is no number is none.
double option_factor() {
    constexpr double most = 100.0;
    const double factor = option_double();
    return factor > 0.0 ? std::min(factor, most) : 0.0;
}

// One conversion of a double and nothing that reads anything else.
bool is_double_format(const char* format) {
    const char* at = format + 1;
    at += std::strspn(at, "-+ #0");
    const std::size_t width = std::strspn(at, "0123456789");
    at += width;
    std::size_t precision = 0;
    if (*at == '.') {
        ++at;
        precision = std::strspn(at, "0123456789");
        at += precision;
    }
    if (width > 3 || precision > 3) return false;
    if (*at == 'l') ++at;
    if (*at == 0 || !std::strchr("eEfFgG", *at)) return false;
    for (++at; *at; ++at) {
        if (*at == '%' && *++at != '%') return false;
    }
    return true;
}

void take_radix(const code_call& call, window_control* control) {
    if (call.code == code_of('R', 'F')) {
        quillpan_error("?[radix] is an invalid %%RF control option.");
        return;
    }
    const std::int32_t radix = option_integer();
    if (radix < 2 || radix > 36) {
        quillpan_error("?%%RD radix out of range.");
    } else if (control) {
        control->block = reinterpret_cast<void*>(static_cast<word>(radix));
    }
}

void take_number_format(const code_call& call, window_control* control) {
    if (call.code == code_of('R', 'D')) {
        quillpan_error("?[fmt] is an invalid %%RD control option.");
        return;
    }
    const std::string format = "%" + option_value();
    if (!is_double_format(format.c_str())) {
        quillpan_error("?Invalid [fmt] specifier for %%RF.");
        return;
    }
    if (!current_window()->flags.focus_loss_check) {
        quillpan_error("?%%rf[fmt] requires %%co[check_on_focus_loss]");
    }
    if (control) control->block = window_text_copy(format.data(), format.size());
}

}  // namespace

void collect_rd_rf_options(code_call& call, window_control* control) {
    const bool integer = call.code == code_of('R', 'D');
    if (control) control->block = integer ? reinterpret_cast<void*>(word{10}) : nullptr;
    if (!opens_options(call)) return;
    option_reader words(call, code_of('R', 'D'), "%RD or %RF");
    while (words.next()) {
        if (words.is("radix=")) {
            take_radix(call, control);
        } else if (words.is("fmt=")) {
            take_number_format(call, control);
        } else if (!control) {
            continue;
        } else if (words.is("initially_blank")) {
            control->flags.initially_blank = true;
        } else if (words.is("wide")) {
            control->flags.wide = true;
        }
    }
}

void collect_rs_re_options(code_call& call, window_control* control) {
    if (!opens_options(call)) return;
    option_reader words(call, code_of('R', 'S'), "%RS or %RE");
    while (words.next()) {
        if (!control) continue;
        control_flags& flags = control->flags;
        if (words.is("password")) flags.password = true;
        if (words.is("lowercase")) control->case_mode = 1;
        if (words.is("uppercase")) control->case_mode = 2;
        if (words.is("no_hscroll")) flags.no_h_scroll = true;
        if (words.is("no_vscroll")) flags.no_v_scroll = true;
        if (words.is("hscrollbar")) flags.h_bar = true;
        if (words.is("vscrollbar")) flags.v_bar = true;
        if (words.is("keep_focus")) flags.keep_focus = true;
        if (words.is("no_additional_depth")) flags.no_additional_depth = true;
        if (words.is("centre_text")) {
            if (flags.right_text) {
                quillpan_error("?You have already selected right_text.");
            } else {
                flags.centre_text = true;
            }
        }
        if (words.is("right_text")) {
            if (flags.centre_text) {
                quillpan_error("?You have already selected centre_text.");
            } else {
                flags.right_text = true;
            }
        }
    }
}

// ---- Lists -------------------------------------------------------------------------------------
namespace {

struct list_code {
    const char* name;   // in messages of invalid words
    const char* lower;  // "ls": in the others
};

// A value that may come from the argument list instead. Read also in a counting pass.
bool value_is_argument() {
    return option_value() == "*";
}

void take_item_height(code_call& call, window_control* control, const list_code& of) {
    const bool argument = value_is_argument();
    const std::int32_t height = argument ? user_integer(call.arguments) : option_integer();
    if (!control) return;
    if ((argument && height == 0) || (height >= 8 && height <= 80)) {
        control->item_height = height;
    } else if (argument) {
        quillpan_error("?%%%s[height=*] value out of range.", of.lower);
    } else {
        quillpan_error("?%%%s[height=v] v out of range.", of.lower);
    }
}

void take_vertical_fill(code_call& call, window_control* control, const list_code& of) {
    char message[64];
    std::snprintf(message, sizeof message, "Invalid value passed for %%%s vertical_fill", of.lower);
    const double factor =
        value_is_argument() ? user_float(call.arguments, message) : option_double();
    if (!control) return;
    if (!(factor > 0.0 && factor < 4.0)) {
        quillpan_error("?%%%s vertical_fill value out of range.", of.lower);
        return;
    }
    control->vertical_fill = factor;
    control->item_height =
        static_cast<std::int32_t>(font_metric(current_window()->font).tmHeight * (factor + 1.0));
}

void take_font_request(window_control* control, const list_code& of, bool pitch) {
    const std::int32_t value = option_integer();
    const bool right = pitch ? value >= 1 && value <= 3 : value >= 0 && value <= 255;
    if (!right) {
        quillpan_error("?%%%s[%s=v] v out of range.", of.lower, pitch ? "font_pitch" : "font_set");
        return;
    }
    if (!control) return;
    std::int32_t& request = control->font_request;
    request |= 0x10000;
    request = pitch ? (request & ~0xFF) | value : (request & ~0xFF00) | value << 8;
    control->flags.owner_drawn = true;
}

void collect_list_options(code_call& call, window_control* control, const list_code& of,
                          std::uint16_t code) {
    if (!opens_options(call)) return;
    window_control ignored{};
    control_flags& flags = control ? control->flags : ignored.flags;
    option_reader words(call, code, of.name);
    while (words.next()) {
        if (words.is("hscrollbar")) flags.h_bar = true;
        if (words.is("extended")) flags.extended = true;
        if (words.is("multicolumn")) flags.multi_column = true;
        if (words.is("no_border")) flags.drop_border = true;
        if (words.is("no_box")) flags.no_box = true;
        if (words.is("confirm")) flags.confirm = true;
        if (words.is("fixed_width")) flags.fixed_width = true;
        if (words.is("constant_data")) flags.constant_data = true;
        if (words.is("sort")) flags.sorted = true;
        if (words.is("height=")) take_item_height(call, control, of);
        if (words.is("vertical_fill=")) take_vertical_fill(call, control, of);
        if (words.is("font_pitch=")) take_font_request(control, of, true);
        if (words.is("font_set=")) take_font_request(control, of, false);
        if (words.is("limit_height")) {
            if (call.grave && code == code_of('L', 'S')) {
                quillpan_error("?[limit_height] cannot be used with a grave accent and %%ls.");
            } else {
                flags.limit_height = true;
            }
        }
        if (words.is("hover")) {
            if (call.grave) {
                quillpan_error("?The [hover] option is not available with %%`LS");
            } else {
                flags.hover = true;
            }
        }
        if (words.is("icons") || words.is("colors")) {
            const bool other = words.is("icons") ? flags.colours : flags.icons;
            if (other) {
                quillpan_error("?%%LS cannot have both colors and icons.");
                continue;
            }
            if (words.is("icons")) flags.icons = true;
            if (words.is("colors")) flags.colours = true;
            flags.owner_drawn = true;
            if (control && control->item_height == 0) control->item_height = 16;
        }
    }
}

}  // namespace

void collect_ls_options(code_call& call, window_control* control) {
    collect_list_options(call, control, {"%LS", "ls"}, code_of('L', 'S'));
}
void collect_ms_options(code_call& call, window_control* control) {
    collect_list_options(call, control, {"%MS", "ms"}, code_of('M', 'S'));
}
void collect_el_options(code_call& call, window_control* control) {
    collect_list_options(call, control, {"%EL", "el"}, code_of('E', 'L'));
}

// ---- Buttons -----------------------------------------------------------------------------------
namespace {

// The first item of %bn's list, if it is no option word, is the caption, which runs to the first
// comma or bracket.
bool take_caption(const char*& cursor, Xbutton& button) {
    const char* start = cursor + 1;
    const std::size_t length = std::strcspn(start, ",]");
    if (length == 0) return false;
    const char* probe = cursor;
    const char* const* words = get_quillpan_options(code_of('B', 'N'));
    std::string first(start, length);
    if (const std::size_t equals = first.find('='); equals != std::string::npos) {
        first.resize(equals + 1);
    }
    for (char& c : first) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        if (c == '-') c = '_';
    }
    first.erase(0, first.find_first_not_of(' '));
    if (const std::size_t blank = first.find(' '); blank != std::string::npos) first.resize(blank);
    for (; *words; ++words) {
        if (first == *words) return false;
    }
    button.caption = window_text_copy(start, length);
    cursor = probe + 1 + length;
    return true;
}

}  // namespace

void collect_button_options(code_call& call, Xbutton& button, bool preload) {
    if (*call.format == '[') {
        option_reader words(call, code_of('B', 'N'), "%BN");
        if (take_caption(call.format, button)) words.resume();
        while (words.next()) {
            if (words.is("icon=")) button.icon = kept_value();
            if (words.is("notes=")) button.note = kept_value();
            if (words.is("text=")) button.caption = kept_value();
            if (words.is("font=")) button.font = static_cast<HFONT>(get_option_WPARAM());
            if (words.is("font_size=")) button.font_size = option_factor();
            if (words.is("vfill=")) button.vfill = option_factor();
            if (words.is("return=")) button.return_value = option_integer();
            if (words.is("split")) button.flags |= 2;
            if (words.is("colour=")) button.text_colour = get_option_colour();
            if (words.is("bk_colour=")) button.colour = get_option_colour();
        }
    }
    if (!button.caption && !preload) quillpan_error("?Missing caption for %%bn.");
}

// ---- Text arrays -------------------------------------------------------------------------------
void collect_tx_options(code_call& call, window_control* control) {
    option_reader words(call, code_of('T', 'X'), "%TX");
    auto* array = control ? static_cast<text_array*>(control->block) : nullptr;
    while (words.next()) {
        if (!array) continue;
        if (words.is("full_mouse_input")) array->flags |= 1;
        if (words.is("full_char_input")) array->flags |= 2;
        if (words.is("use_tabs")) array->flags |= 4;
        if (words.is("no_popup_menu")) array->flags |= 0x10;
    }
}

}  // namespace tarn::winio
