// Option lists that set what a window is like, and its boxes.
#include <cstdlib>

#include "platform/base/constants.h"
#include "winio/options.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

void set_margins(fancy_window& window, std::int32_t units) {
    window.margin_left = window.margin_top = window.margin_right = window.margin_bottom = units;
    window.flags.margins_given = true;
}

}  // namespace

// ---- Window style ------------------------------------------------------------------------------
void collect_sy_options(code_call& call) {
    fancy_window* window = current_window();
    option_reader words(call, code_of('S', 'Y'), "%SY");
    while (words.next()) {
        if (records().passive || !window) continue;
        window_flags& flags = window->flags;
        const std::int32_t border = words.is("3d")             ? 0
                                    : words.is("3d_depressed") ? 1
                                    : words.is("3d_raised")    ? 2
                                    : words.is("3d_thin")      ? 3
                                                               : -1;
        if (border >= 0) {
            flags.three_d = true;
            window->border_3d = border;
            flags.data_border = false;
        }
        if (words.is("no_border")) set_margins(*window, 0);
        if (words.is("thin_border")) set_margins(*window, 5);
        if (words.is("independent")) flags.independent = true;
        if (words.is("no_sysmenu")) flags.system_menu = false;
        if (words.is("topmost")) {
            flags.topmost = true;
            window->ex_style |= platform::WS_EX_TOPMOST;
        }
        if (words.is("toolwindow")) {
            flags.tool_window = true;
            window->ex_style |= platform::WS_EX_TOOLWINDOW;
        }
    }
}

namespace {

void no_caption(window_flags& flags) {
    flags.caption = flags.system_menu = flags.minimise_box = flags.maximise_box = false;
}

void apply_ww_word(const option_reader& words, fancy_window& window) {
    window_flags& flags = window.flags;
    if (words.is("no_caption")) no_caption(flags);
    if (words.is("no_maxminbox")) flags.minimise_box = flags.maximise_box = false;
    if (words.is("no_maxbox")) flags.maximise_box = false;
    if (words.is("no_minbox")) flags.minimise_box = false;
    if (words.is("no_sysmenu")) flags.system_menu = false;
    if (words.is("maximise") || words.is("maximize")) {
        flags.maximise = true;
        flags.minimise = false;
    }
    if (words.is("minimise") || words.is("minimize")) {
        flags.minimise = true;
        flags.maximise = false;
    }
    if (words.is("super_maximise") || words.is("super_maximize")) flags.super_maximised = true;
    if (words.is("topmost")) {
        flags.topmost = true;
        window.ex_style |= platform::WS_EX_TOPMOST;
    }
    if (words.is("toolwindow")) {
        flags.tool_window = true;
        window.ex_style |= platform::WS_EX_TOOLWINDOW;
    }
    if (words.is("volatile")) {
        no_caption(flags);
        flags.is_volatile = true;
    }
    if (words.is("no_frame") || words.is("naked") || words.is("no_edge")) flags.sizable = false;
    if (words.is("no_edge")) flags.no_edge = true;
    if (words.is("no_frame")) flags.no_frame = true;
    if (words.is("naked")) {
        no_caption(flags);
        flags.naked = flags.no_frame = true;
    }
    if (words.is("no_frame") || words.is("no_border") || words.is("naked")) set_margins(window, 0);
    if (words.is("thin_border")) set_margins(window, 5);
    if (words.is("casts_shaddow") || words.is("casts_shadow")) flags.casts_shadow = true;
    if (words.is("shadowed")) flags.shadowed = true;
    if (words.is("inactive")) flags.inactive = true;
    if (words.is("invisible")) flags.invisible = true;
    if (words.is("fixed_size")) flags.fixed_size = true;
    if (words.is("not_fixed_size")) flags.fixed_size = false;
    if (words.is("independent")) flags.independent = true;
    if (words.is("isolate")) flags.isolate = true;
}

}  // namespace

void collect_ww_options(code_call& call) {
    fancy_window* window = current_window();
    option_reader words(call, code_of('W', 'W'), "%WW");
    while (words.next()) {
        if (!records().passive && window) apply_ww_word(words, *window);
    }
}

void collect_lw_options(code_call& call) {
    option_reader words(call, code_of('L', 'W'), "%LW");
    while (words.next()) {
        if (!records().passive && words.is("owned")) current_window()->flags.owned = true;
    }
}

void collect_ch_options(code_call& call, window_control* control) {
    option_reader words(call, code_of('C', 'H'), "%CH");
    fancy_window* window = current_window();
    while (words.next()) {
        if (!control || records().passive) continue;
        window->scrolled_child = control;
        set_margins(*window, 0);
        window->background = dialog_colour();
        auto* position = new_record<std::int32_t>();
        discard_with_window(position, nullptr);
        if (words.is("vscrollbar")) {
            window->flags.vertical_bar = true;
            window->v_scroll_var = position;
            window->v_scroll_page = &window->v_page;
            window->v_scroll_range = &window->v_range;
        } else {
            window->flags.horizontal_bar = true;
            window->h_scroll_var = position;
            window->h_scroll_page = &window->h_page;
            window->h_scroll_range = &window->h_range;
        }
    }
}

// ---- Data controls -----------------------------------------------------------------------------
void collect_co_reset(fancy_window& window) {
    window_flags& flags = window.flags;
    flags.data_border = true;
    flags.no_data_frame = false;
    flags.focus_loss_check = flags.right_justify = flags.read_only = flags.client_edge = false;
    window.update_policy = 0;
}

void collect_co_options(code_call& call) {
    struct policy_word {
        const char* word;
        std::uint32_t bits;
    };
    static constexpr policy_word policies[] = {{"warn_on_edit", 1},
                                               {"alert_on_update", 2},
                                               {"warn_on_update", 6},
                                               {"limit_on_update", 10},
                                               {"stet_on_update", 18}};
    fancy_window* window = current_window();
    option_reader words(call, code_of('C', 'O'), "%CO");
    while (words.next()) {
        if (records().passive || !window) continue;
        window_flags& flags = window->flags;
        for (const policy_word& policy : policies) {
            if (words.is(policy.word)) window->update_policy |= policy.bits;
        }
        if (words.is("data_border")) {
            flags.data_border = true;
            flags.no_data_frame = false;
        }
        if (words.is("no_data_border")) {
            flags.data_border = false;
            flags.no_data_frame = true;
        }
        if (words.is("full_check")) flags.full_check = true;
        if (words.is("check_on_focus_loss")) flags.focus_loss_check = true;
        if (words.is("right_justify")) flags.right_justify = true;
        if (words.is("left_justify")) flags.right_justify = false;
        if (words.is("read_only")) flags.read_only = true;
        if (words.is("not_read_only")) flags.read_only = false;
        if (words.is("client_edge")) flags.client_edge = true;
        if (words.is("no_client_edge")) flags.client_edge = false;
        if (words.is("min_height")) flags.min_height = true;
        if (words.is("no_min_height")) flags.min_height = false;
    }
}

void collect_cw_options(code_call& call, window_control* control) {
    option_reader words(call, code_of('C', 'W'), "%CW");
    while (words.next()) {
        if (!control) continue;
        if (words.is("hscroll")) control->flags.h_bar = true;
        if (words.is("vscroll")) control->flags.v_bar = true;
        if (words.is("local_font")) control->flags.local_font = true;
        if (words.is("border")) {
            control->flags.has_border = true;
            control->style |= platform::WS_BORDER;
        }
    }
}

void collect_he_options(code_call& call, window_control* control) {
    option_reader words(call, code_of('H', 'E'), "%HE");
    while (words.next()) {
        if (control) control->flags.full_width = true;
    }
}

// The platform's static styles, in table order; `border` stands last.
void collect_ws_options(code_call& call, window_control* control) {
    constexpr std::int32_t border_position = 13;
    option_reader words(call, code_of('W', 'S'), "%WS");
    while (words.next()) {
        if (!control) continue;
        if (words.position() == border_position) {
            control->style |= platform::WS_BORDER;
        } else {
            control->style =
                (control->style & ~0xFu) | static_cast<std::uint32_t>(words.position() - 1);
            control->data = words.position() - 1;
        }
    }
}

// ---- Boxes -------------------------------------------------------------------------------------
namespace {

struct box_word {
    const char* word;
    std::int32_t kind;
};
constexpr box_word box_kinds[] = {
    {"panelled", 1}, {"thin_panelled", 2}, {"scored", 3}, {"raised", 4}, {"depressed", 5}};

void apply_box_word(const option_reader& words, box& into) {
    for (const box_word& kind : box_kinds) {
        if (words.is(kind.word)) into.kind = kind.kind;
    }
    if (words.is("named_l") || words.is("named")) into.name_place = 0;
    if (words.is("named_c")) into.name_place = 1;
    if (words.is("named_r")) into.name_place = 2;
    if (words.is("named") || words.is("named_l") || words.is("named_c") || words.is("named_r")) {
        into.named = true;
    }
    if (words.is("shaded")) into.shaded = true;
    if (words.is("status")) into.status = true;
    if (words.is("no_border")) into.no_border = true;
    if (words.is("nameless")) into.nameless = true;
    if (words.is("bottom_exit")) into.bottom_exit = true;
    if (words.is("invisible")) into.invisible = true;
    if (words.is("space")) into.space = true;
    if (words.is("line_colour")) into.wants_line_colour = true;
    if (words.is("rounded")) into.rounded = true;
    if (words.is("thin_margin")) into.thin_margin = true;
}

// A word that doesn't go with another is dropped. The colour's argument is read all the same.
void check_box(box& into) {
    const bool hidden = into.status || into.invisible;
    // A name stands on the border. A box without one may still be nameless, to stand level with
    // boxes that have names.
    if (into.no_border &&
        (into.kind != 0 || into.rounded || into.wants_line_colour || into.named)) {
        quillpan_error("The no_border box option is inconsistent with other options specified");
        into.no_border = false;
    }
    if (into.wants_line_colour && into.kind != 0) {
        quillpan_error("?Only simple boxes can be coloured");
    }
    if (into.wants_line_colour && into.invisible) {
        quillpan_error("?Invisible boxes can not be coloured");
    }
    if (into.rounded && hidden) {
        quillpan_error("?Status and invisible boxes can not be rounded");
        into.rounded = false;
    } else if (into.rounded && into.kind != 0 && into.kind != 3) {
        quillpan_error("?Only simple and scored boxes can be rounded");
        into.rounded = false;
    }
    if (into.thin_margin && hidden) {
        quillpan_error("?Status and invisible boxes can not have a thin margin");
        into.thin_margin = false;
    } else if (into.thin_margin && into.kind != 0) {
        quillpan_error("?Only simple boxes can have a thin margin");
        into.thin_margin = false;
    }
}

}  // namespace

void collect_box_options(code_call& call, box& into) {
    option_reader words(call, code_of('O', 'B'), "%OB");
    bool any = false;
    while (words.next()) {
        apply_box_word(words, into);
        any = true;
    }
    if (any) check_box(into);
}

// ---- Menus and tool help -----------------------------------------------------------------------
namespace {

menu_settings* settings_of_menus(fancy_window& window) {
    if (!window.menu_options) {
        auto* settings = new_record<menu_settings>();
        *settings = {.margin_width = 16,
                     .margin = 0xF6EFEA,
                     .highlight = 0xF7CFAE,
                     .background = no_colour,
                     .highlight_border = no_colour};
        window.menu_options = settings;
        discard_with_window(settings, nullptr);
    }
    return window.menu_options;
}

char* copy_of(const char* text) {
    return window_text_copy(text, std::char_traits<char>::length(text));
}

void apply_em_word(const option_reader& words, menu_settings& settings) {
    if (words.is("height=")) {
        const std::int32_t height = option_integer();
        if (height < 8 || height > 80) {
            quillpan_error("?Height in %%EM[height=v] is out of range.");
        } else {
            settings.item_height = height;
        }
        return;
    }
    settings.enhanced = true;
    if (words.is("w8")) settings.look = 8;
    if (words.is("w7")) {
        settings.look = 7;
        settings.margin = 0xF2E2D1;
    }
    if (words.is("colour=")) settings.background = get_option_colour();
    if (words.is("background=")) settings.margin = get_option_colour();
    if (words.is("border=")) settings.highlight_border = get_option_colour();
    if (words.is("marginbits=")) settings.margin_bits = copy_of(option_value().c_str());
    if (words.is("bits=")) settings.body_bits = copy_of(option_value().c_str());
    if (words.is("theme1")) {
        settings.background = 0xFFFFFF;
        settings.highlight_border = 0xC56A31;
        settings.highlight = 0xEED2C1;
        settings.margin_bits = copy_of("marginbits");
    }
    if (words.is("theme2")) {
        settings.background = 0xE3E0DD;
        settings.highlight = 0x65C3E5;
        settings.body_bits = copy_of("vsbkbits");
        settings.margin_bits = copy_of("marginbits1");
    }
}

}  // namespace

void collect_em_options(code_call& call) {
    option_reader words(call, code_of('E', 'M'), "%EM");
    while (words.next()) {
        if (records().passive || !current_window()) continue;
        apply_em_word(words, *settings_of_menus(*current_window()));
    }
}

tool_properties* get_toolprops(fancy_window* window) {
    if (!window->tool_props) {
        auto* props = new_record<tool_properties>();
        props->scaling = 1.0;
        props->background = props->text = no_colour;
        window->tool_props = props;
        discard_with_window(props, nullptr);
    }
    return window->tool_props;
}

void collect_th_options(code_call& call) {
    tool_properties ignored{};
    tool_properties& props = records().passive ? ignored : *get_toolprops(current_window());
    option_reader words(call, code_of('T', 'H'), "%TH");
    while (words.next()) {
        if (words.is("at_cursor")) props.at_cursor = true;
        if (words.is("no_callback_hide")) props.no_callback_hide = true;
        if (words.is("delay")) props.reads_delay = true;
        if (words.is("ms_style")) props.native = true;
        if (words.is("always_tip")) props.always = true;
        if (words.is("no_prefix")) props.no_prefix = true;
        if (words.is("no_animate")) props.no_animate = true;
        if (words.is("no_fade")) props.no_fade = true;
        if (words.is("balloon")) props.balloon = true;
        if (words.is("centre_tip")) props.centre = true;
        if (words.is("left_align")) props.left_align = true;
        if (words.is("backcolor=")) props.background = get_option_colour();
        if (words.is("textcolor=")) props.text = get_option_colour();
        if (words.is("scaling=") || words.is("scale=")) {
            const double scaling = std::strtod(option_value().c_str(), nullptr);
            if (!(scaling > 0.0 && scaling < 8.0)) {
                quillpan_error("?%%TH scaling out of range.");
            } else {
                props.scaling = scaling;
            }
        }
    }
}

}  // namespace tarn::winio
