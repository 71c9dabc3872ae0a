// Windows and controls: making, naming, finding and freeing their records.
#include "winio/records.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>

#include "frame/console_lines.h"
#include "platform/kernel/module.h"
#include "platform/user/user.h"
#include "winio/builder.h"
#include "winio/layout.h"
#include "winio/menus.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

// A format can ask for more controls than any window shows (a million empty lines). Past this
// number they share one record that is in no chain.
constexpr std::int32_t most_controls = 50000;

constinit records_state the_state{};

constexpr std::array<std::uint16_t, static_cast<std::size_t>(control_type::count)> properties = {
    0x32, 0x21, 0x90, 0x129, 0x129, 0x0D,  0x129, 0x21, 0xC0, 0x4F, 0x31,  0,    0xCE, 0x05, 0x20,
    0x48, 0x90, 0x4D, 0x20,  0x80,  0x129, 0x46,  0x21, 0xC8, 0x08, 0x28,  0x48, 0x56, 0x49, 0x4F,
    0x4F, 0xC0, 0x0D, 0x4E,  0x12,  0xCD,  0x4F,  0x20, 0x80, 0x3A, 0x0D,  0x4F, 0x80, 0x29, 0x21,
    0x30, 0,    0x4E, 0xCF,  0x5F,  0x5F,  0x16,  0x16, 0x48, 0x49, 0x109, 0x09, 0x80, 0x4F};

template <class... Types>
constexpr bool is_one_of(control_type type, Types... types) {
    return ((type == types) || ...);
}

// The grave form of a box only shows: it lies on the window like text.
bool shows_only(control_type type) {
    using enum control_type;
    return is_one_of(type, integer_box, float_box, string_box, buffer_box) && building().call &&
           building().call->grave;
}

bool holds_data_colour(control_type type) {
    return !shows_only(type) && (type_properties(type) & framed_in_3d) != 0 &&
           !is_one_of(type, control_type::help_line, control_type::bar, control_type::palette,
                      control_type::native_bar, control_type::native_slider, control_type::slider);
}

void apply_pending_pivot(window_control& control, control_type type, fancy_window& window) {
    if (builder().pivot_pending == 0) return;
    builder().pivot_pending = 0;
    if (!records().old_resize && (type_properties(type) & can_resize) == 0) {
        quillpan_error("?Pivot applied to control which cannot re-size ");
        return;
    }
    window.flags.fixed_size = false;
    control.flags.pivot = true;
}

void note_first_of_line(window_control& control, fancy_window& window) {
    if (box* in = builder().box) {
        if (in->centre_col >= 0 && !in->centre_first) in->centre_first = &control;
        if (in->right_col >= 0 && !in->right_first) in->right_first = &control;
    }
    if (window.centre_col >= 0 && !window.centre_first) window.centre_first = &control;
    if (window.right_col >= 0 && !window.right_first) window.right_first = &control;
}

void choose_colours(window_control& control, control_type type, fancy_window& window) {
    const box* in = builder().box;
    control.background = in ? in->background : window.background;
    control.box = in ? in->frame_record : nullptr;
    const bool standard = control.background == dialog_colour();
    if (standard && !window.flags.own_background && holds_data_colour(type)) {
        control.background = data_colour();
    }
    control.text_colour = window.text_colour;
    if (type == control_type::line_end) return;
    if (builder().next_background != no_colour) {
        control.background = builder().next_background;
        builder().next_background = no_colour;
    }
    if (const std::int32_t*& variable = pending().text_colour_variable; variable) {
        control.text_colour =
            *variable < 0 ? default_text_colour() : static_cast<COLORREF>(*variable);
        variable = nullptr;
    }
    if (type != control_type::text && pending().context_menu != HMENU{}) {
        control.popup_menu = pending().context_menu;
        pending().context_menu = HMENU{};
    }
}

// The words of %co, by the types that they touch.
void copy_data_words(window_control& control, control_type type, const fancy_window& window) {
    using enum control_type;
    const window_flags& from = window.flags;
    control.flags.data_border = from.data_border;
    control.flags.no_data_frame = from.no_data_frame;
    control.flags.right_justify = from.right_justify;
    const bool numeric = is_one_of(type, integer_box, float_box);
    const bool textual = is_one_of(type, string_box, buffer_box);
    if (numeric) control.update_policy = window.update_policy;
    if (numeric || textual) control.flags.full_check = from.full_check;
    const bool checked = numeric || textual || type == edit_list;
    if (checked) control.flags.focus_loss_check = from.focus_loss_check;
    if (checked || is_one_of(type, list_box, combo_box, parameter_block, multi_select, list_view,
                             native_bar, native_slider)) {
        control.flags.client_edge = from.client_edge;
    }
    if (textual) control.flags.read_only = from.read_only;
}

// The last text seen, letters and digits only: the name under which %ss keeps the value.
char* prepare_save_name(const char* text) {
    if (!text) return nullptr;
    std::string kept;
    for (const char* p = text; *p; ++p) {
        if (std::isalnum(static_cast<unsigned char>(*p)) != 0) kept.push_back(*p);
    }
    return window_text_copy(kept.data(), kept.size());
}

}  // namespace

records_state& records() {
    return the_state;
}

std::uint16_t type_properties(control_type type) {
    const auto at = static_cast<std::size_t>(type);
    return at < properties.size() ? properties[at] : 0;
}

// ---- Storage -----------------------------------------------------------------------------------
void heap_exhausted() {
    quillpan_error("'winio' has run out of heap memory");
    std::exit(1);
}

void* allocate_zeroed(std::size_t size) {
    void* storage = std::calloc(1, size);
    if (!storage) heap_exhausted();
    return storage;
}

void confirm(const void* pointer, const char* where) {
    if (pointer) return;
    char text[256];
    std::snprintf(text, sizeof text, "Windows heap exhausted in %s", where);
    frame::console_line(text);
    quillpan_error("%s", text);
}

void confirm_handle(std::int32_t handle, const char* where) {
    if (handle == 0) quillpan_error("Failed to create Windows HANDLE in %s", where);
}

namespace {

void add_garbage(fancy_window& window, void* storage) {
    auto* entry = new_record<garbage_entry>();
    entry->next = window.garbage;
    entry->storage = storage;
    window.garbage = entry;
}

garbage_entry* find_garbage(fancy_window& window, const void* storage) {
    for (garbage_entry* entry = window.garbage; entry; entry = entry->next) {
        if (entry->storage == storage) return entry;
    }
    return nullptr;
}

void discard_with(fancy_window* window, void* storage, void* old) {
    if (!window) return;
    if (old) {
        if (garbage_entry* entry = find_garbage(*window, old)) {
            entry->storage = storage;
            if (storage != old) std::free(old);
            return;
        }
    }
    if (storage) add_garbage(*window, storage);
}

}  // namespace

void discard_with_window(void* storage, void* old) {
    discard_with(current_window(), storage, old);
}

void discard_with_window(fancy_window* window, void* storage, void* old) {
    discard_with(window, storage, old);
}

void discard_with_window(window_control* control, void* storage, void* old) {
    discard_with(control->window, storage, old);
}

void* discard_with_garbage(void* fresh, void* old) {
    for (fancy_window* window = records().windows; window && old; window = window->next) {
        if (garbage_entry* entry = find_garbage(*window, old)) {
            entry->storage = fresh;
            if (fresh != old) std::free(old);
            return fresh;
        }
    }
    return fresh;
}

char* window_text_copy(const char* text, std::size_t length) {
    auto* copy = static_cast<char*>(allocate_zeroed(length + 1));
    if (length != 0) std::memcpy(copy, text, length);
    discard_with_window(copy, nullptr);
    return copy;
}

// ---- Windows -----------------------------------------------------------------------------------
fancy_window* new_fancy_window() {
    records_state& state = records();
    auto* window = new_record<fancy_window>();
    window->next = state.windows;
    state.windows = window;
    window->window_number = ++state.next_window_number;
    window->second_number = ++state.next_second_number;
    window->code_counts =
        static_cast<std::uint16_t*>(allocate_zeroed(26 * 26 * sizeof(std::uint16_t)));
    window->control_var = &window->own_control_word;
    window->own_control_word = -1;
    window->text_scale = window->saved_text_scale = 1.0;
    window->centre_col = window->right_col = -1;
    window->design_number = -1;
    window->pivot_x = window->pivot_y = 10000000;
    window->base_width = window->base_height = -1;
    window->margin_left = window->margin_top = window->margin_right = window->margin_bottom = 10;
    window->status_row = 100000000;
    window->next_width = window->next_depth = -1;
    window->background =
        state.class_defaults.has_background ? state.class_defaults.background : dialog_colour();
    window->text_colour = default_text_colour();
    window->font = state.default_font;
    window->font_spec = state.default_spec;
    window->base_font_height = state.default_spec.lfHeight;
    window_flags& flags = window->flags;
    flags.modal = flags.caption = flags.system_menu = flags.sizable = true;
    flags.minimise_box = flags.maximise_box = true;
    flags.data_border = true;
    flags.utf8 = state.utf8_default;
    flags.fixed_size = !state.old_resize;
    flags.own_background = state.class_defaults.has_background;
    window->class_name = state.class_defaults.name;
    return window;
}

namespace {

void forget_bindings(const fancy_window* window) {
    string_binding** link = &records().bindings;
    while (string_binding* binding = *link) {
        if (binding->window == window) {
            *link = binding->next;
            std::free(binding);
        } else {
            link = &binding->next;
        }
    }
}

template <class Entry>
void free_chain(Entry*& head) {
    while (head) {
        Entry* gone = head;
        head = head->next;
        std::free(gone);
    }
}

}  // namespace

void destroy_fancy_window(fancy_window* window) {
    records_state& state = records();
    for (fancy_window** link = &state.windows; *link; link = &(*link)->next) {
        if (*link == window) {
            *link = window->next;
            break;
        }
    }
    for (fancy_window* other = state.windows; other; other = other->next) {
        if (other->previous == window) other->previous = window->previous;
        if (other->frame_window == window) other->frame_window = nullptr;
        if (other->disabled_by == window) other->disabled_by = nullptr;
    }
    if (state.current == window) state.current = window->previous;
    if (window->window_number == state.next_window_number) --state.next_window_number;
    forget_bindings(window);
    destroy_all_menus(window);
    while (script_level* level = window->script_stack) {
        window->script_stack = level->next;
        delete level;
    }
    free_chain(window->first_control);
    free_chain(window->message_traps);
    free_chain(window->timers);
    std::free(window->file_spec);
    std::free(window->filters);
    while (garbage_entry* entry = window->garbage) {
        window->garbage = entry->next;
        std::free(entry->storage);
        std::free(entry);
    }
    std::free(window->code_counts);
    std::free(window);
}

// ---- Controls ----------------------------------------------------------------------------------
window_control* allocate_control() {
    return new_record<window_control>();
}

void offer_control(window_control* control) {
    records().offered = control;
}

void name_control(window_control* control) {
    fancy_window* window = control->window ? control->window : current_window();
    // What is made beside the control that a code asks for has no name of its own.
    const bool internal =
        control->type == control_type::line_end || control->type == control_type::spin;
    const code_call* call = internal ? nullptr : building().call;
    const std::uint16_t code = call ? call->code : code_of('.', '.');
    const int first = code >> 8, second = code & 0xFF;
    std::uint16_t number = 0;
    if (window && std::isupper(first) != 0 && std::isupper(second) != 0) {
        std::uint16_t& count = window->code_counts[(first - 'A') * 26 + second - 'A'];
        if (count < 0xFFFF) ++count;
        number = count;
    }
    // A fourth digit is cut away.
    char name[12];
    std::snprintf(name, sizeof name, "%c%c%3.3i", first, second, number);
    std::memcpy(control->name, name, sizeof control->name - 1);
    control->name[sizeof control->name - 1] = 0;
}

namespace {

window_control* take_record(const fancy_window* window) {
    records_state& state = records();
    if (window_control* offered = state.offered) {
        state.offered = nullptr;
        return offered;
    }
    if (!state.passive && window && window->control_count >= most_controls) {
        static window_control overflow;
        overflow = window_control{};
        return &overflow;
    }
    return allocate_control();
}

void chain(window_control& control, fancy_window& window) {
    if (window.control_count >= most_controls) {
        if (window.control_count++ == most_controls) {
            quillpan_error("?Too many controls in one window.");
        }
        return;
    }
    ++window.control_count;
    if (window.last_control) {
        window.last_control->next = &control;
    } else {
        window.first_control = &control;
    }
    window.last_control = &control;
}

}  // namespace

window_control* new_window_control(control_type type) {
    fancy_window* window = current_window();
    window_control* control = take_record(window);
    control->window = window;
    control->type = type;
    if (records().passive || !window) {
        return control;
    }
    const bool internal = type == control_type::line_end || type == control_type::spin ||
                          type == control_type::box_frame;
    name_control(control);
    apply_pending_pivot(*control, type, *window);
    chain(*control, *window);
    control->id = builder().next_control_id++;
    note_first_of_line(*control, *window);
    control->flags.takes_focus = (type_properties(type) & takes_focus) != 0;
    if (window->flags.focus_pending && control->flags.takes_focus) {
        window->first_focus = control;
        window->flags.focus_pending = false;
    }
    if (type == control_type::text && window->dialog_resource > 0) {
        control->code = code_of('.', '.');
    }
    if (type != control_type::text && !internal) {
        control->scrolls = pending().scrolls;
        pending().scrolls = nullptr;
    }
    control->font = window->font;
    control->fixed_w = control->fixed_h = -1;
    control->fixed_x = control->fixed_y = -100000;
    control->centre_span = control->right_col = -1;
    choose_colours(*control, type, *window);
    copy_data_words(*control, type, *window);
    control->save_key = window->settings_key;
    if (window->settings_key) control->save_name = prepare_save_name(builder().last_text);
    control->settings = window->settings_var;
    control->baseline_shift = window->baseline_shift;
    if (pending().cursor && !internal) {
        pending().cursor->control = control;
        pending().cursor = nullptr;
    }
    control->flags.no_right_move = window->flags.no_right_move;
    control->flags.no_down_move = window->flags.no_down_move;
    return control;
}

// ---- Numbers of menu items and the like ---------------------------------------------------------
namespace {
constexpr std::int32_t first_id = 4000;
constexpr std::int32_t last_id = 23999;
}  // namespace

std::int32_t get_id() {
    for (std::size_t at = 0; at < sizeof records().ids_in_use; ++at) {
        unsigned char& byte = records().ids_in_use[at];
        if (byte == 0xFF) continue;
        int bit = 0;
        while ((byte >> bit & 1) != 0) ++bit;
        byte = static_cast<unsigned char>(byte | 1 << bit);
        return static_cast<std::int32_t>(at * 8) + bit + first_id;
    }
    quillpan_error("Maximum number of controls/menu items exceeded ");
    return 0;
}

void free_id(std::int32_t id) {
    if (id < first_id || id > last_id) return;
    unsigned char& byte = records().ids_in_use[(id - first_id) / 8];
    byte = static_cast<unsigned char>(byte & ~(1 << (id - first_id) % 8));
}

// ---- Finding -----------------------------------------------------------------------------------
fancy_window* fancy_window_from_handle(HWND hwnd) {
    if (hwnd == HWND{}) return nullptr;
    for (fancy_window* window = records().windows; window; window = window->next) {
        if (window->hwnd == hwnd) return window;
    }
    return nullptr;
}

bool fancy_window_exists(const fancy_window* window) {
    for (const fancy_window* at = records().windows; at; at = at->next) {
        if (at == window) return at->flags.open;
    }
    return false;
}

// Controls are asked for one by one in the order of the list, each several times: the one found
// last or the one behind it is nearly always meant. A window's controls live as long as it does.
window_control* control_of_handle(fancy_window* window, HWND hwnd) {
    const std::int32_t index = platform::GetDlgCtrlID(hwnd) - first_child_id;
    if (index >= 0 && index < window->controls_by_id_count) {
        window_control* numbered = window->controls_by_id[index];
        if (numbered && numbered->hwnd == hwnd) return numbered;
    }
    window_control* const last = window->found_control;
    if (last && last->hwnd == hwnd) return last;
    window_control* control = last ? last->next : nullptr;
    if (!control || control->hwnd != hwnd) {
        control = window->first_control;
        while (control && control->hwnd != hwnd) control = control->next;
    }
    if (control) window->found_control = control;
    return control;
}

window_control* control_from_window(HWND hwnd, bool closed_too) {
    if (hwnd == HWND{}) return nullptr;
    for (fancy_window* window = records().windows; window; window = window->next) {
        if (!window->flags.open && !closed_too) continue;
        if (window_control* control = control_of_handle(window, hwnd)) return control;
    }
    return nullptr;
}

fancy_window* window_from_control_variable(const std::int32_t* variable) {
    for (fancy_window* window = records().windows; window; window = window->next) {
        if (window->control_var == variable) return window;
    }
    return nullptr;
}

HWND first_quillpan_hwnd() {
    const fancy_window* window = current_window();
    for (window_control* control = window ? window->first_control : nullptr; control;
         control = control->next) {
        if (control->type == control_type::text_window) return control->hwnd;
    }
    return HWND{};
}

HWND hwnd_from_fortran_unit(std::int32_t unit) {
    for (fancy_window* window = records().windows; window; window = window->next) {
        if (!window->flags.open) continue;
        for (window_control* control = window->first_control; control; control = control->next) {
            if (control->type == control_type::text_window && control->data2 == unit) {
                return control->hwnd;
            }
        }
    }
    return HWND{};
}

fancy_window* our_window(HWND hwnd) {
    if (fancy_window* window = fancy_window_from_handle(hwnd)) return window;
    window_control* control = control_from_window(hwnd, false);
    return control ? control->window : nullptr;
}

void* get_proc_addr(const char* name, const char* module) {
    if (!name || !module) return nullptr;
    for (const std::string& tried : {std::string(module), std::string(module) + "32"}) {
        void* handle = platform::module_handle(tried.c_str());
        if (!handle) handle = platform::load_library(tried.c_str());
        if (handle) return platform::procedure_address(handle, name);
    }
    return nullptr;
}

bool utf8_enabled() {
    settle_encoding();
    return records().utf8_default;
}

}  // namespace tarn::winio
