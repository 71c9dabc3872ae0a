// One call of `winio`: beginning or continuing a window, scanning, and finishing it.
#include <cctype>
#include <cstring>

#include "platform/user/menus.h"
#include "platform/user/user.h"
#include "winio/callbacks.h"
#include "winio/common_dialog.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/procedures.h"
#include "winio/report.h"
#include "winio/scanner.h"

namespace tarn::winio {
namespace {

constexpr std::int32_t continued = -1;

bool begins_with_code(const char* format, const char* code) {
    return strncasecmp(format, code, 3) == 0;
}

// ---- Nested windows (%ex) -----------------------------------------------------------------------
// A call-back builds a window of its own while another is under construction. What was built so far
// waits here until the nested window is finished.
struct suspended_construction {
    window_builder builder;
    pending_values pending;
    std::string* accumulator;  // of the format being scanned; null between two calls
    fancy_window* window;      // under construction
    fancy_window* nested;      // the window that it waits for; null until it exists
};
std::vector<suspended_construction>& suspended() {
    static auto* stack = new std::vector<suspended_construction>;
    return *stack;
}

void suspend_construction() {
    suspended().push_back(
        {builder(), pending(), building().accumulator, current_window(), nullptr});
    pending() = {};
    building().accumulator = nullptr;
    builder().continuing = 0;
    builder().nw_mode = 0;
    // The nested window makes its own.
    builder().occupancy = nullptr;
    builder().grey_checks = nullptr;
}

// The construction that waited for `nested` goes on.
void resume_construction(const fancy_window* nested) {
    if (suspended().empty() || suspended().back().nested != nested) return;
    const suspended_construction back = suspended().back();
    suspended().pop_back();
    builder() = back.builder;
    pending() = back.pending;
    building().accumulator = back.accumulator;
    current_window() = back.window;
    building().continuation.clear();
}

// ---- Beginning ---------------------------------------------------------------------------------
void reset_builder() {
    window_builder& fresh = builder();
    if (fresh.occupancy) end_construction();
    fresh = {};
    fresh.last_text = "UNKNOWN";
    fresh.next_control_id = 1000;
    fresh.next_button_value = 1;
    fresh.pending_id = -1;
    fresh.int_high = 0x7FFFFFFF;
    fresh.int_low = -0x7FFFFFFF - 1;
    fresh.float_high = 1.0E308;
    fresh.float_low = -1.0E308;
    fresh.next_background = no_colour;
    begin_layout();
}

bool begin_window() {
    if (records().at_exit) {
        quillpan_error("Attempt to call winio@ at program exit");
        return false;
    }
    building().continuation.clear();
    initialise_quillpan_plus();
    monitor_gdi_resources();
    fancy_window* window = new_fancy_window();
    window->previous = current_window();
    current_window() = window;
    if (!suspended().empty() && !suspended().back().nested) suspended().back().nested = window;
    reset_builder();
    return true;
}

// The style that __winstyle left for every window is a format of its own, scanned first.
void apply_style_format(fancy_window& window) {
    builder_state& state = building();
    if (state.style_format.empty()) return;
    const std::string style = state.style_format;
    argument_source none;
    none.word_count = 0;
    const preload_state outer = preloading();
    preloading() = {};
    const bool fortran = state.fortran_call;
    state.fortran_call = false;
    window.descriptor = nullptr;
    scan_format(style.c_str(), none);
    state.fortran_call = fortran;
    preloading() = outer;
}

bool continue_window(const argument_source& arguments) {
    builder_state& state = building();
    fancy_window* window = current_window();
    if (builder().nw_mode == 0 && window->flags.fortran != arguments.fortran) {
        quillpan_error(
            "Attempt to continue a formatted window from a different programming language");
    }
    if (!records().passive) {
        ++window->continuations;
        state.continuation = "(continuation " + std::to_string(window->continuations) + ")";
    }
    return true;
}

// ---- Arguments ---------------------------------------------------------------------------------
// The words of the preload queue, while a call reads them.
struct queued_call {
    argument_queue taken;
    argument_source source;
};

bool take_queue(queued_call& into, const char* descriptor, const argument_source& arguments) {
    argument_queue& queue = queued_arguments();
    if (queue.empty()) return false;
    if (descriptor && *descriptor) {
        quillpan_error("Arguments already supplied to this winio call");
        queue.clear();
        return false;
    }
    into.taken = std::move(queue);
    queue.clear();
    into.source.from = argument_source::kind::words;
    into.source.words = into.taken.words.data();
    into.source.word_count = static_cast<std::int32_t>(into.taken.words.size());
    into.source.lengths = into.taken.lengths.data();
    into.source.length_count = static_cast<std::int32_t>(into.taken.lengths.size());
    into.source.fortran = arguments.fortran;
    into.source.wide_handles = arguments.wide_handles;
    return true;
}

void report_unused(const fancy_window& window) {
    if (!window.descriptor || !*window.descriptor || building().abandoned) return;
    const char* where = building().continuation.c_str();
    if (building().fortran_call) {
        quillpan_error("?Unused arguments in WINIO@ call%s", where);
    } else {
        quillpan_error("?Unused arguments in winio call%s", where);
    }
}

bool window_is_listed(const fancy_window* window, std::int32_t second_number) {
    for (const fancy_window* at = records().windows; at; at = at->next) {
        if (at == window && at->second_number == second_number) return true;
    }
    return false;
}

// What one call sets aside of a call that it interrupts: the interrupted window's place in its
// arguments.
class call_scope {
  public:
    explicit call_scope(const argument_source& arguments)
        : fortran_(building().fortran_call), window_(current_window()) {
        building().fortran_call = arguments.fortran;
        if (!window_) return;
        number_ = window_->second_number;
        descriptor_ = window_->descriptor;
        argument_ = window_->arg_number;
    }
    ~call_scope() {
        building().fortran_call = fortran_;
        if (!window_ || !window_is_listed(window_, number_)) return;
        window_->descriptor = descriptor_;
        window_->arg_number = argument_;
    }
    call_scope(const call_scope&) = delete;
    call_scope& operator=(const call_scope&) = delete;

  private:
    bool fortran_;
    fancy_window* window_;
    std::int32_t number_ = 0, argument_ = 0;
    const char* descriptor_ = nullptr;
};

// ---- Finishing ---------------------------------------------------------------------------------
// Calls the scanner on a format of our own while the window is still under construction.
void add_to_window(const char* format, const char* descriptor, const word* words,
                   std::int32_t count) {
    fancy_window* window = current_window();
    builder_state& state = building();
    argument_source source;
    source.words = words;
    source.word_count = count;
    const bool fortran = state.fortran_call;
    state.fortran_call = false;
    window->descriptor = descriptor;
    scan_format(format, source);
    window->descriptor = nullptr;
    state.fortran_call = fortran;
}

void report_left_open(const fancy_window& window) {
    if (pending().scrolls) {
        quillpan_error("?%%HX/%%VX scrollbars not attached to a control");
        pending().scrolls = nullptr;
    }
    if (window.flags.za_open) quillpan_error("?%%ZA does not have matching %%ZZ.");
}

void add_help_line(fancy_window& window) {
    builder().col = 0;
    builder().row = builder().max_y;
    next_line();
    window_control* line = new_window_control(control_type::help_line);
    line->text = window_text_copy("", 0);
    line->width = window.help_width * 4;
    line->height = window.help_depth * 8;
    locate(line, 0);
    window.help_control = line;
}

// Help that no control shows goes to a line of its own, unless tool help shows it.
void arrange_help(fancy_window& window) {
    if (!window.flags.help_wanted || window.flags.design || window.help_control) return;
    const tool_properties* props = window.tool_props;
    if (props && (props->native || props->bubble || props->variable)) return;
    window.flags.mouse_hook_wanted = true;
    get_toolprops(&window);
    add_help_line(window);
}

void arrange_status_bars(fancy_window& window) {
    if (!window.flags.status_bar) return;
    const window_control* status = nullptr;
    for (const window_control* at = window.first_control; at; at = at->next) {
        if (at->type == control_type::status_bar) status = at;
    }
    if (!status) return;
    for (const window_control* at = window.first_control; at; at = at->next) {
        if (at->type != control_type::native_bar || at->data2 == 0) continue;
        if (at->data2 > status->data2) quillpan_error("More panels required in %%SB for %%BR");
    }
    builder().max_y += status->height;
}

void colour_texts(fancy_window& window) {
    const bool pane = window.flags.pane;
    if (!pane && window.dialog_resource <= 0) return;
    for (window_control* at = window.first_control; at; at = at->next) {
        const bool text = at->type == control_type::text || at->type == control_type::blank;
        if (text && !window.flags.own_background) at->background = dialog_colour();
    }
}

void lay_out(fancy_window& window) {
    centre_information();
    arrange_help(window);
    centre_all_information();
    align_information();
    apply_margins();
    arrange_status_bars(window);
    builder().max_x += window.margin_left + window.margin_right;
    builder().max_y += window.margin_top + window.margin_bottom;
    colour_texts(window);
    AddGreyControlCheckFunctions();
}

// %nw in a call before, which ended with `&`: its target is current for this call again.
void resume_menu_change(fancy_window* workspace) {
    fancy_window* target = fancy_window_from_handle(pending().nw_target_window);
    if (!target || target == workspace) return;
    std::swap(target->descriptor, workspace->descriptor);
    target->arg_number = workspace->arg_number;
    current_window() = target;
}

std::int32_t keep_menu_change(fancy_window* workspace, bool starts) {
    builder().continuing = 1;
    if (starts) pending().nw_has_workspace = true;
    current_window() = workspace;
    return continued;
}

// %nw: the new menu goes to its window, and whatever was current is so again.
std::int32_t finish_menu_change(fancy_window* before, bool workspace) {
    window_builder& state = builder();
    fancy_window* window = current_window();
    if ((state.nw_mode & 2) != 0 && window && window->hwnd != HWND{}) {
        platform::SetMenu(window->hwnd, window->menu);
    }
    if (pending().nw_has_workspace) workspace = true;
    pending().nw_target_window = HWND{};
    pending().nw_target_control = nullptr;
    pending().nw_has_workspace = false;
    state.nw_mode = 0;
    state.continuing = 0;
    current_window() = before;
    if (workspace) {
        end_construction();
        destroy_fancy_window(before);
        resume_construction(before);
    }
    return continued;
}

// %wr: a window that only carries data.
std::int32_t finish_data_window(fancy_window& window) {
    if (window.first_control) {
        quillpan_error("?Unexpected text and/or controls in %%WR data");
    }
    end_construction();
    destroy_fancy_window(&window);
    resume_construction(&window);
    return continued;
}

// In check mode, and in a window that is not to be created, its record ends here.
void drop_window(fancy_window* window) {
    window->closed_callback = nullptr;
    destroy_fancy_window(window);
    building().passive_window = false;
    building().passive_hook = nullptr;
}

std::int32_t open_and_wait(fancy_window* window, std::int32_t number) {
    end_layout();
    pending() = {};
    create_real_window(window);
    if (!window_is_listed(window, number)) return 0;
    if (window->flags.leave || window->flags.sheet) return 0;
    const std::int32_t result = wait_for_window(window);
    if (window_is_listed(window, number)) cleanup_winio(window);
    return result;
}

// An exception of the program passes through the wait: the window goes, with no further call-back.
struct open_guard {
    fancy_window* window;
    std::int32_t number;
    bool done = false;
    ~open_guard() {
        if (done || !window_is_listed(window, number)) return;
        window->start_callback = window->close_callback = window->closed_callback = nullptr;
        window->flags.busy = window->flags.closing = false;
        if (window->flags.open) platform::SendMessageA(window->hwnd, platform::WM_CLOSE, 0, 0);
        if (window_is_listed(window, number)) cleanup_winio(window);
        resume_construction(window);
    }
};

std::int32_t open_window(fancy_window* window) {
    const std::int32_t number = window->second_number;
    open_guard guard{window, number};
    const std::int32_t result = open_and_wait(window, number);
    guard.done = true;
    return result;
}

std::int32_t finish_window() {
    fancy_window* window = current_window();
    report_left_open(*window);
    if (window->mdi_frame && window->menu == HMENU{} && window->enhanced_menu == HMENU{} &&
        !window->menu_items) {
        static const char exit_action[] = "EXIT";
        const word words[] = {reinterpret_cast<word>(exit_action)};
        add_to_window("%mn[Exit]", "*C", words, 1);
    }
    if (builder().box) {
        quillpan_error("?Unclosed box");
        free_open_boxes();
    }
    if (window->design_number == 0 && !window->flags.design) return finish_data_window(*window);
    if (auto* dialog = static_cast<common_dialog*>(get_preloaded_block(control_type::line_end))) {
        const std::int32_t result = CallCommonDialog(dialog);
        end_construction();
        destroy_fancy_window(window);
        resume_construction(window);
        return result;
    }
    lay_out(*window);
    if (records().check_mode || building().passive_window) {
        window_size_and_position(window);
        end_construction();
        drop_window(window);
        resume_construction(window);
        return 0;
    }
    const std::int32_t result = open_window(window);
    resume_construction(window);
    return result;
}

// ---- The call ----------------------------------------------------------------------------------
// The window under construction and what belongs to it, when a report said that it must go.
std::int32_t abandon_window() {
    fancy_window* window = current_window();
    end_layout();
    end_construction();
    builder().continuing = 0;
    builder().nw_mode = 0;
    drop_preloaded_block();
    building().abandoned = false;
    building().passive_window = false;
    if (window && !window->flags.open) {
        destroy_fancy_window(window);
        resume_construction(window);
    }
    return continued;
}

// Which construction this call belongs to: the one at hand, or a nested one.
void choose_construction(const char* format, bool internal) {
    builder_state& state = building();
    const bool nested = begins_with_code(format, "%ex");
    if (nested) state.nested = true;
    const bool at_work = builder().continuing != 0 || builder().nw_mode != 0;
    // A call-back that runs while a format is scanned: of a %ib, or of a window that goes on while
    // a report waits for its answer. That format's window isn't to be continued yet.
    if (state.accumulator) {
        suspend_construction();
        if (begins_with_code(format, "%nw")) builder().nw_mode = 1;
        return;
    }
    if (!at_work) {
        if (begins_with_code(format, "%nw")) builder().nw_mode = 1;
        return;
    }
    // A window of the library's own never continues the program's.
    const bool foreign = internal && state.internal_window != current_window();
    if (nested || foreign) suspend_construction();
}

}  // namespace

void end_construction() {
    end_layout();
    pending() = {};
    while (grey_check* pair = builder().grey_checks) {
        builder().grey_checks = pair->next;
        std::free(pair);
    }
}

std::size_t suspended_constructions() {
    return suspended().size();
}

void return_to_construction(std::size_t depth) {
    while (suspended().size() > depth) {
        quillpan_error("?A call-back has left its formatted window incomplete");
        if (suspended().size() <= depth) return;
        fancy_window* nested = suspended().back().nested;
        end_construction();
        suspended().back().nested = nullptr;
        resume_construction(nullptr);
        if (nested) destroy_fancy_window(nested);
    }
}

void drop_constructions() {
    end_construction();
    while (!suspended().empty()) {
        builder() = suspended().back().builder;
        suspended().pop_back();
        end_construction();
    }
    builder().continuing = 0;
    builder().nw_mode = 0;
}

builder_state& building() {
    static auto* state = new builder_state{};
    return *state;
}

bool window_is_continued() {
    return builder().continuing != 0;
}

void abandon_construction() {
    building().abandoned = true;
}

namespace {

std::int32_t perform_call(const char* format, std::size_t length, const char* descriptor,
                          argument_source& arguments, bool internal) {
    builder_state& state = building();
    std::string text(format ? format : "", format ? length : 0);
    if (arguments.fortran) {
        while (!text.empty() && text.back() == ' ') text.pop_back();
    }
    text.resize(std::strlen(text.c_str()));  // a zero ends it
    choose_construction(text.c_str(), internal);
    if (state.nested) state.format_text = text;
    if (builder().nw_mode != 0 && !current_window() && records().check_mode) {
        builder().nw_mode = 0;
        return continued;
    }
    const call_scope scope(arguments);
    const bool starts = !current_window() || (builder().continuing == 0 && builder().nw_mode == 0);
    const std::int32_t nw_mode = builder().nw_mode;
    if (!(starts ? begin_window() : continue_window(arguments))) return continued;
    builder().nw_mode = nw_mode;
    fancy_window* window = current_window();
    if (internal) state.internal_window = window;
    if (starts) apply_style_format(*window);
    if (!records().passive) builder().continuing = 0;
    if (nw_mode == 0) window->flags.nw_mark = false;
    if (arguments.fortran && nw_mode == 0) window->flags.fortran = true;

    queued_call queued;
    argument_source* source = &arguments;
    if (take_queue(queued, descriptor, arguments)) {
        descriptor = queued.taken.descriptor.c_str();
        source = &queued.source;
    }
    window->descriptor = descriptor;
    window->arg_number = 1;
    if (nw_mode != 0 && !starts) resume_menu_change(window);
    const bool goes_on = scan_format(text.c_str(), *source);
    report_unused(*current_window());
    current_window()->descriptor = nullptr;
    window->descriptor = nullptr;
    if (state.abandoned) return abandon_window();
    if (builder().nw_mode != 0)
        return goes_on ? keep_menu_change(window, starts) : finish_menu_change(window, starts);
    if (records().passive) return continued;
    if (goes_on) {
        builder().continuing = 1;
        return continued_dialog(continued);
    }
    return finish_window();
}

}  // namespace

std::int32_t winio(const char* format, std::size_t length, const char* descriptor,
                   argument_source& arguments) {
    return perform_call(format, length, descriptor, arguments, false);
}

std::int32_t internal_winio(const char* format, const char* descriptor, const word* words,
                            std::int32_t count) {
    argument_source source;
    source.words = words;
    source.word_count = count;
    return perform_call(format, std::strlen(format), descriptor, source, true);
}

}  // namespace tarn::winio
