// Codes of the current font and of colours.
#include <cstring>

#include "platform/gdi/gdi.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/report.h"
#include "winio/resources.h"

namespace tarn::winio {
namespace {

// The window's font follows its description.
void renew_font(fancy_window& window) {
    window.font_spec.lfWidth = 0;
    window.font = get_font(window.font_spec);
    window.flags.mixed_font = true;
}

void set_text_scale(fancy_window& window, double scale) {
    window.text_scale = scale;
    window.font_spec.lfHeight = static_cast<std::int32_t>(window.base_font_height * scale);
    renew_font(window);
}

void use_default_font(fancy_window& window) {
    window.font_spec = records().default_spec;
    window.font = records().default_font;
    window.text_scale = 1.0;
    window.base_font_height = window.font_spec.lfHeight;
    window.flags.font_named = false;
    window.flags.mixed_font = true;
}

// The size of a font that came from outside, as a factor on the base font.
void take_foreign_font(fancy_window& window, HFONT font) {
    window.font = font;
    platform::GetObjectFont(font, window.font_spec);
    if (window.font_spec.lfHeight < 0 && window.base_font_height < 0) {
        window.text_scale =
            static_cast<double>(window.font_spec.lfHeight) / window.base_font_height;
    }
    window.flags.font_named = true;
    window.flags.mixed_font = true;
}

bool needs_named_font(const char* code_name) {
    if (current_window()->flags.font_named) return true;
    quillpan_error(
        "?The %%FN format must be used before %%%s\nto select a font other than the "
        "system font",
        code_name);
    return false;
}

COLORREF nearest(COLORREF colour) {
    return platform::GetNearestColor(measuring_dc(), colour);
}

}  // namespace

// ---- Fonts -------------------------------------------------------------------------------------
void handle_fn(code_call& call) {
    const char* name = get_standard_string(call, "%FN");
    if (records().passive) return;
    fancy_window& window = *current_window();
    if (strcasecmp(name, "user_default") == 0) {
        use_default_font(window);
        window.flags.font_named = true;
        return;
    }
    window.font_spec.lfHeight =
        static_cast<std::int32_t>(window.base_font_height * window.text_scale);
    window.font = make_font(name, window.font_spec);
    window.flags.font_named = window.flags.mixed_font = true;
}

void handle_bf(code_call& call) {
    current_window()->font_spec.lfWeight = call.grave ? 400 : 700;
    call.grave = false;
    renew_font(*current_window());
}

void handle_it(code_call& call) {
    current_window()->font_spec.lfItalic = call.grave ? 0 : 1;
    call.grave = false;
    renew_font(*current_window());
}

void handle_ul(code_call& call) {
    current_window()->font_spec.lfUnderline = call.grave ? 0 : 1;
    call.grave = false;
    renew_font(*current_window());
}

void handle_ts(code_call& call) {
    constexpr double smallest = 0.01, largest = 100.0;
    fancy_window& window = *current_window();
    double scale = window.saved_text_scale;
    if (call.grave) {
        call.grave = false;
    } else if (!get_float(call.format, scale)) {
        scale = user_float(call.arguments, "Invalid number passed to %ts format");
    }
    if (!(scale >= smallest && scale <= largest)) return;
    window.saved_text_scale = window.text_scale;
    set_text_scale(window, scale);
}

void handle_pt(code_call& call) {
    constexpr std::int32_t most_points = 1000;
    const std::int32_t points = user_integer(call.arguments);
    if (!needs_named_font("PT") || points < 1 || points > most_points) return;
    fancy_window& window = *current_window();
    double scale = 1.0;
    window.font = get_font_for_point_size(window.font_spec, points, scale);
    window.font_spec.lfHeight = -(96 * points / 72);
    window.text_scale = scale;
    window.flags.mixed_font = true;
}

void handle_cs(code_call& call) {
    const std::int32_t set = user_integer(call.arguments);
    if (!needs_named_font("CS")) return;
    current_window()->font_spec.lfCharSet = static_cast<std::uint8_t>(set);
    renew_font(*current_window());
}

// Back to the standard font. There is one look, so the grave form is the same.
void handle_sf(code_call& call) {
    call.grave = false;
    use_default_font(*current_window());
}

void handle_fd(code_call&) {
    use_default_font(*current_window());
    current_window()->flags.font_named = true;
}

void handle_fh(code_call& call) {
    const auto font = static_cast<HFONT>(user_thing(call.arguments, true));
    LOGFONT description;
    if (font == HFONT{} || !platform::GetObjectFont(font, description)) {
        if (!records().passive && !records().check_mode) {
            quillpan_error("?Invalid font handle for %%FH.");
        }
        return;
    }
    take_foreign_font(*current_window(), font);
}

void handle_fx(code_call& call) {
    const char* name = get_standard_string(call, "%FX");
    if (records().passive) return;
    fancy_window& window = *current_window();
    window.font = make_font(name, window.font_spec);
    window.flags.font_named = window.flags.mixed_font = true;
}

void handle_fb(code_call&) {
    current_window()->button_font = current_window()->font;
}

void handle_gf(code_call& call) {
    const handle_variable variable = user_handle_variable(call.arguments);
    if (!records().passive) variable.store(current_window()->font);
}

// ---- Colours -----------------------------------------------------------------------------------
void handle_tc(code_call& call) {
    fancy_window& window = *current_window();
    if (call.grave) {
        call.grave = false;
        const std::int32_t* variable = user_int_pointer(call.arguments);
        if (!variable) {
            quillpan_error("You must supply an integer* argument");
            return;
        }
        if (!records().passive) pending().text_colour_variable = variable;
        return;
    }
    const COLORREF colour = user_colour(call);
    window.text_colour =
        static_cast<std::int32_t>(colour) < 0 ? default_text_colour() : nearest(colour);
}

void handle_bg(code_call& call) {
    const COLORREF given = user_colour(call);
    const COLORREF colour = given == no_colour ? given : nearest(given);
    fancy_window& window = *current_window();
    if (call.grave) {
        call.grave = false;
        builder().next_background = colour;
        return;
    }
    if (call.tilde) {
        call.tilde = false;
        if (builder().box && colour != no_colour) builder().box->background = colour;
        return;
    }
    if (window.flags.multi_button_left) {
        quillpan_error("?%%BG can't be used with %%MB[left]");
        return;
    }
    if (colour == no_colour) return;
    window.background = colour;
    window.flags.own_background = true;
}

}  // namespace tarn::winio
