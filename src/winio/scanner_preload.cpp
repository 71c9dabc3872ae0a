// Options ahead of their code: %bo ... %eo, `[[ ... ]]`, and calls of the __winop family.
#include <cctype>
#include <cstring>

#include "winio/buttons.h"
#include "winio/codes.h"
#include "winio/common_dialog.h"
#include "winio/options.h"
#include "winio/report.h"
#include "winio/scanner.h"

namespace tarn::winio {
namespace {

constexpr std::uint16_t plot_code = code_of('P', 'L');
constexpr std::uint16_t button_code = code_of('B', 'N');

bool can_be_preloaded(std::uint16_t code) {
    return code == plot_code || code == button_code;
}

control_type type_of(std::uint16_t code) {
    return code == plot_code ? control_type::plot : control_type::option_button;
}

void* new_block(std::uint16_t code) {
    if (code == plot_code) return new_record<control_options>();
    auto* button = new_record<Xbutton>();
    button->colour = button->text_colour = 0xFFFFFF;
    button->floodfill_colour = no_colour;
    button->return_value = -1;
    return button;
}

void set_state(preload at) {
    preloading().at = at;
    building().preload_open = at == preload::adding;
}

// %bo and `[[`.
void open_preload() {
    if (building().preloaded_block) {
        quillpan_error("?%%bo/%%eo error: Invalid sequence.");
        return;
    }
    set_state(preload::opened);
}

void bracket_code(code_call& call) {
    preload_state& state = preloading();
    if (call.code == code_of('B', 'O')) {
        if (state.at == preload::idle) {
            open_preload();
        } else {
            quillpan_error("?%%bo error:%%bo repeated without matching %%eo.");
        }
        return;
    }
    if (state.at != preload::adding) {
        quillpan_error("?%%eo error:Matching %%bo is missing.");
    }
    set_state(preload::idle);
}

// Texts of options given outside a format belong to no window yet: this record holds them until the
// block goes to a control.
fancy_window& text_holder() {
    static constinit fancy_window holder{};
    return holder;
}

void give_texts_to(fancy_window& window) {
    garbage_entry*& held = text_holder().garbage;
    if (!held) return;
    garbage_entry** last = &held;
    while (*last) last = &(*last)->next;
    *last = window.garbage;
    window.garbage = held;
    held = nullptr;
}

// Adds the options at the cursor to a block.
void add_options(code_call& call, void* block) {
    if (call.code == button_code) {
        collect_button_options(call, *static_cast<Xbutton*>(block), true);
    } else {
        *static_cast<control_options*>(block) = collect_other_options(call);
    }
}

}  // namespace

preload_state& preloading() {
    static constinit preload_state state{};
    return state;
}

void* get_preloaded_block(control_type type) {
    builder_state& state = building();
    if (!state.preloaded_block || state.preloaded_type != type) return nullptr;
    void* block = state.preloaded_block;
    state.preloaded_block = nullptr;
    state.preloaded_type = control_type::blank;
    if (current_window()) give_texts_to(*current_window());
    return block;
}

void set_preloaded_block(void* block, control_type type) {
    building().preloaded_block = block;
    building().preloaded_type = type;
}

void process_preload_state(code_call& call) {
    if (call.code == code_of('B', 'O') || call.code == code_of('E', 'O')) {
        bracket_code(call);
        return;
    }
    const bool serves = can_be_preloaded(call.code);
    const bool doubled = serves && call.format[0] == '[' && call.format[1] == '[';
    preload_state& state = preloading();
    if (doubled && state.at == preload::idle) {
        ++call.format;
        open_preload();
    } else if (doubled && state.at == preload::adding) {
        ++call.format;
    }
    if (state.at != preload::opened) return;
    if (!serves) {
        quillpan_error("?%%bo/%%eo does not currently support this format code.");
        set_state(preload::idle);
        return;
    }
    set_preloaded_block(new_block(call.code), type_of(call.code));
    set_state(preload::adding);
}

void end_preload_at_bracket(code_call& call) {
    if (preloading().at != preload::adding || !can_be_preloaded(call.code)) return;
    const char* at = call.format;
    if (*at == ']') {
        ++call.format;
    } else if (!(at[-1] == ']' && at[-2] == ']')) {
        return;
    }
    set_state(preload::idle);
}

bool add_preloaded_options(code_call& call) {
    void* block = building().preloaded_block;
    if (preloading().at != preload::adding || !block || !can_be_preloaded(call.code)) return false;
    if (building().preloaded_type != type_of(call.code)) {
        quillpan_error("?The format code must not change with successive calls to WINOP@");
        return true;
    }
    fancy_window* const window = current_window();
    current_window() = &text_holder();
    add_options(call, block);
    current_window() = window;
    return true;
}

void drop_preloaded_block() {
    builder_state& state = building();
    if (state.preloaded_type == control_type::line_end) {
        delete static_cast<common_dialog*>(state.preloaded_block);
    } else {
        std::free(state.preloaded_block);
    }
    set_preloaded_block(nullptr, control_type::blank);
    set_state(preload::idle);
}

void handle_bo(code_call&) {}  // process_preload_state has done it
void handle_eo(code_call&) {}

// ---- The __winop family ------------------------------------------------------------------------
void winop(const char* text) {
    if (!text) return;
    const std::string shown(text, strnlen(text, 3));
    if (text[0] != '%') {
        quillpan_error("?Format code %s must start with '%%'", text);
        return;
    }
    if (std::isalpha(static_cast<unsigned char>(text[1])) == 0 ||
        std::isalpha(static_cast<unsigned char>(text[2])) == 0) {
        quillpan_error("?Missing 2-character format code after '%%'");
        return;
    }
    if (text[3] != '[') {
        quillpan_error("?Missing '[' after format code %s in call to WINOPTS@", shown.c_str());
        return;
    }
    const std::uint16_t code =
        code_of(static_cast<char>(std::toupper(text[1])), static_cast<char>(std::toupper(text[2])));
    if (!can_be_preloaded(code)) {
        quillpan_error("?WINOPTS@ does not currently support %s", shown.c_str());
        return;
    }
    builder_state& state = building();
    if (state.preloaded_block && state.preloaded_type != type_of(code)) {
        quillpan_error("?The format code must not change with successive calls to WINOP@");
        return;
    }
    if (!state.preloaded_block) set_preloaded_block(new_block(code), type_of(code));
    argument_source none;
    none.word_count = 0;
    const char* cursor = text + 3;
    code_call call{cursor, none, -1, -1, code, false, false, false, false, false, false, false};
    fancy_window* const window = current_window();
    current_window() = &text_holder();
    add_options(call, state.preloaded_block);
    current_window() = window;
    cursor += std::strspn(cursor, " \t\r\n");
    if (*cursor) quillpan_error("?Unexpected characters \"%s\" in call to WINOPTS@", cursor);
}

void winop_with(const char* text, const std::string& value, const char* routine) {
    const std::string given = text ? text : "";
    const std::size_t bracket = given.rfind(']');
    if (bracket == std::string::npos) {
        quillpan_error("?Missing ']' in %s@", routine);
        return;
    }
    std::string whole = given.substr(0, bracket);
    whole.append(1, '=').append(value).append(1, ']');
    winop(whole.c_str());
}

}  // namespace tarn::winio
