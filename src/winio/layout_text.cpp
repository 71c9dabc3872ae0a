// Literal text: how it is gathered, placed, and set on a common base line.
#include <algorithm>
#include <cstring>

#include "winio/callbacks.h"
#include "winio/layout.h"
#include "winio/layout_state.h"
#include "winio/menus.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::size_t accumulator_limit = 999;

// What doesn't fit any more is dropped; a character of several bytes isn't cut.
void accumulate(std::string& text, const char* from, const char* end) {
    std::size_t count = static_cast<std::size_t>(end - from);
    const std::size_t room = accumulator_limit - std::min(text.size(), accumulator_limit);
    if (count > room) {
        count = room;
        if (utf8_enabled())
            while (count > 0 && (from[count] & 0xC0) == 0x80) --count;
    }
    text.append(from, count);
}

bool is_text(const window_control* control) {
    return control->type == control_type::text || control->type == control_type::blank;
}

bool only_blanks(const std::string& text) {
    return text.find_first_not_of(' ') == std::string::npos;
}

// The record of a text piece at the pen.
void place_text(const std::string& text, std::int32_t resource_id) {
    fancy_window* window = current_window();
    window_control* control = new_window_control(control_type::text);
    control->resource_id = resource_id;
    if (!text.empty() && pending().design_id) {
        control->resource_id = pending().design_id;
        pending().design_id = 0;
    }
    control->text = window_text_copy(text.data(), text.size());
    if (only_blanks(text)) control->type = control_type::blank;
    if (!text.empty()) builder().last_text = control->text;
    seek_accelerators(control->text, window, true, false);
    control->width = string_width(control);
    control->height = within_reach(window->text_scale * 8.0 + 0.5);
    locate(control, 0);
    control->base_line = control->height - font_descent(control->font) / 2 + control->y;
    control->y += window->baseline_shift;
    if (window->flags.mixed_font) align_text_base(control);
}

}  // namespace

// Text below the map is let go: it lies beyond every screen, and a format may hold a million lines.
void flush_text(bool force, std::int32_t resource_id) {
    std::string* text = building().accumulator;
    if (records().passive || !text || (text->empty() && !force)) return;
    if (builder().row < records().occupancy_height) place_text(*text, resource_id);
    text->clear();
}

void handle_text(const char* start, const char* end, bool hold, bool percent_escape) {
    if (records().passive || !building().accumulator) return;
    std::string& text = *building().accumulator;
    const char* piece = start;
    for (const char* at = start; at < end; ++at) {
        const bool percent = percent_escape && *at == '%';
        if (!percent && *at != '\n' && *at != '\f' && *at != '\t') continue;
        accumulate(text, piece, percent ? at + 1 : at);
        piece = at + 1;
        if (percent) {
            piece = ++at + 1;
            continue;
        }
        flush_text(false, 0);
        if (*at == '\n') next_line();
        if (*at == '\f') bottom_line();
        if (*at == '\t') tabulate();
    }
    if (piece < end) accumulate(text, piece, end);
    if (!hold) flush_text(false, 0);
}

void align_text_base(window_control* control) {
    // Below the map nothing is seen, and no line ends there.
    if (control->y >= records().occupancy_height) return;
    window_control* first = nullptr;
    std::int32_t lowest = 0;
    const fancy_window* window = control->window;
    auto& known = layout().before_text;
    if (known.window_number != window->second_number || !known.control)
        known = {window->second_number, window->first_control};
    for (window_control* c = known.control; c; c = c->next) {
        if (!is_text(c)) {
            first = nullptr;
            known.control = c;
            continue;
        }
        lowest = first ? std::max(lowest, c->base_line) : c->base_line;
        if (!first) first = c;
    }
    for (window_control* c = first; c; c = c->next) {
        if (c->base_line >= lowest) continue;
        c->y += lowest - c->base_line;
        c->base_line = lowest;
    }
}

namespace {

// The font of the present scale.
void use_scaled_font(fancy_window* window) {
    window->font_spec.lfHeight = within_reach(window->base_font_height * window->text_scale);
    window->font_spec.lfWidth = 0;
    window->font = get_font(window->font_spec);
    window->flags.mixed_font = true;
}

void open_level(fancy_window* window, bool superscript) {
    auto* level = new script_level{window->script_stack, window->text_scale, window->baseline_shift,
                                   superscript};
    window->script_stack = level;
    window->baseline_shift += within_reach(window->text_scale * (superscript ? -3.2 : 1.6));
    window->text_scale *= 0.7;
}

void close_level(fancy_window* window, bool superscript) {
    script_level* level = window->script_stack;
    if (!level || level->superscript != superscript) {
        quillpan_error("Superscript/subscript not open");
        return;
    }
    window->script_stack = level->next;
    window->text_scale = level->text_scale;
    window->baseline_shift = level->baseline_shift;
    delete level;
}

// A line that ended with raised text keeps the room above it: an empty text half as deep again
// stands at its end.
void keep_room_above(fancy_window* window) {
    const double scale = window->text_scale;
    window->text_scale = scale * 1.5;
    flush_text(true, 0);
    window->text_scale = scale;
    builder().line_extra = std::max(builder().line_extra, within_reach(scale * 4.0));
}

void shift_script(code_call& call, bool superscript) {
    const bool closes = call.grave;
    call.grave = false;
    if (records().passive) return;
    fancy_window* window = current_window();
    if (!window->flags.font_named) {
        quillpan_error(
            "The %%FN format must be used before %%SU/%%SD\n"
            "to select a font other than the system font");
        return;
    }
    if (closes) {
        close_level(window, superscript);
        if (superscript && !window->script_stack) keep_room_above(window);
    } else {
        open_level(window, superscript);
    }
    use_scaled_font(window);
}

}  // namespace

void handle_su(code_call& call) {
    shift_script(call, true);
}
void handle_sd(code_call& call) {
    shift_script(call, false);
}

}  // namespace tarn::winio
