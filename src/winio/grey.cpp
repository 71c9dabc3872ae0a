// Which controls and menu items can be used, by their grey variables and tests.
#include "platform/user/menus.h"
#include "platform/user/user.h"
#include "winio/actions.h"
#include "winio/call_out.h"
#include "winio/menus.h"

namespace tarn::winio {
namespace {

using namespace platform;

// The window while tests run, which may close it.
class watched_window {
  public:
    explicit watched_window(fancy_window* window)
        : window_(window), number_(window->second_number) {}
    bool gone() const { return !fancy_window_exists(window_) || window_->second_number != number_; }

  private:
    fancy_window* window_;
    std::int32_t number_;
};

// ---- Menu items --------------------------------------------------------------------------------
constexpr std::uint32_t test_gives_check = 8;

struct item_state {
    bool enabled = true;
    bool known = false;  // something decides it
};

item_state decide_item(menu_info* item, const watched_window& window) {
    item_state state;
    if (item->grey_test) {
        const std::int32_t result = run_grey_test(item->grey_test);
        if (window.gone()) return state;
        state.known = true;
        if (item->flags & test_gives_check) {
            CheckMenuItem(item->menu, static_cast<UINT>(item->id), result & 2 ? MF_CHECKED : 0u);
            state.enabled = (result & 1) != 0;
            return state;
        }
        state.enabled = result == 0;
        if (item->grey) *item->grey = state.enabled;
    } else if (item->grey) {
        state.known = true;
        state.enabled = *item->grey != 0;
    }
    return state;
}

// Was its look changed?
bool adjust_item(menu_info* item, const watched_window& window) {
    const bool test_checks = item->grey_test && item->flags & test_gives_check;
    if (item->check && !test_checks)
        CheckMenuItem(item->menu, static_cast<UINT>(item->id), *item->check ? MF_CHECKED : 0u);
    const item_state state = decide_item(item, window);
    if (window.gone() || !state.known || item->grey_state == state.enabled) return false;
    item->grey_state = state.enabled;
    EnableMenuItem(item->menu, static_cast<UINT>(item->id), state.enabled ? MF_ENABLED : MF_GRAYED);
    return true;
}

void adjust_menus(fancy_window* window) {
    const watched_window watch(window);
    bool changed = false;
    for (menu_info* item = window->menu_items; item; item = item->next) {
        if (!item->check && !item->grey && !item->grey_test) continue;
        changed |= adjust_item(item, watch);
        if (watch.gone()) return;
    }
    if (changed && window->menu) DrawMenuBar(window->hwnd);
}

// ---- Controls ----------------------------------------------------------------------------------
void enable_control(const fancy_window* window, const window_control* control, bool enabled) {
    const HWND frame = window->hwnd;
    const HWND spin = control->spin ? control->spin->hwnd : HWND{};
    const bool loses_focus = !enabled && GetFocus() == control->hwnd;
    if (loses_focus) SetFocus(frame);
    EnableWindow(control->hwnd, enabled);
    if (spin) EnableWindow(spin, enabled);
}

void adjust_control(fancy_window* window, window_control* control, const watched_window& watch) {
    bool enabled;
    if (control->grey_test) {
        enabled = run_grey_test(control->grey_test) == 0;
        if (watch.gone()) return;
        if (control->grey) *control->grey = enabled;
    } else {
        enabled = *control->grey != 0;
    }
    if (control->hwnd && IsWindowEnabled(control->hwnd) != enabled)
        enable_control(window, control, enabled);
}

void adjust_window(fancy_window* window, std::int32_t what) {
    const watched_window watch(window);
    if (what & 1 && window->menu_items) adjust_menus(window);
    if (!(what & 2) || watch.gone()) return;
    for (window_control* c = window->first_control; c; c = c->next) {
        if (!c->grey && !c->grey_test) continue;
        adjust_control(window, c, watch);
        if (watch.gone()) return;
    }
}

// ---- Standard tests: 1 is grey -----------------------------------------------------------------
std::int32_t nothing_to_undo() {
    return can_undo_edit() ? 0 : 1;
}
std::int32_t nothing_to_paste() {
    const bool picture = get_clipboard_client() == clipboard_client::graphics;
    return IsClipboardFormatAvailable(picture ? CF_BITMAP : CF_TEXT) ? 0 : 1;
}
std::int32_t nothing_selected() {
    return test_selection() ? 0 : 1;
}
// Until hypertext is built there are no pages to go back to.
std::int32_t no_hypertext() {
    return 1;
}

bool has_standard_test(const window_control* control) {
    return control->callback && !control->grey_test;
}

}  // namespace

std::int32_t run_grey_test(call_back test) {
    callback_state& state = callbacks();
    const call_frame frame =
        enter_call(test, nullptr, state.context.reason, state.call_handle, false);
    return call_out(action_of(test), frame);
}

// A window in a frame has the frame's menus above it: those follow too.
void adjust_grey_controls(std::int32_t what) {
    callback_state& state = callbacks();
    fancy_window* window = current_window();
    if (!window || !window->flags.open || window->flags.closing || state.adjusting_grey) return;
    state.adjusting_grey = true;
    while (window) {
        const watched_window watch(window);
        adjust_window(window, what);
        if (watch.gone()) break;
        fancy_window* const inner = window;
        window = window->flags.child || window->flags.mdi_child ? window->frame_window : nullptr;
        if (window == inner || !fancy_window_exists(window)) break;
    }
    state.adjusting_grey = false;
}

call_back GetGreyControlCheckFunction(call_back function) {
    for (const grey_check* pair = builder().grey_checks; pair; pair = pair->next)
        if (pair->callback == function) return pair->test;
    const call_back action = action_of(function);
    if (!action) return nullptr;
    if (action == action_edit_undo) return nothing_to_undo;
    if (action == action_paste) return nothing_to_paste;
    if (action == action_cut || action == action_copy) return nothing_selected;
    if (action == action_previous_text || action == action_copy_text) return no_hypertext;
    return nullptr;
}

void AddGreyControlCheckFunctions() {
    const fancy_window* window = current_window();
    if (!window) return;
    for (menu_info* item = window->menu_items; item; item = item->next)
        if (item->callback && !item->grey_test)
            item->grey_test = GetGreyControlCheckFunction(item->callback);
    for (window_control* c = window->first_control; c; c = c->next)
        if (has_standard_test(c)) c->grey_test = GetGreyControlCheckFunction(c->callback);
    while (grey_check* pair = builder().grey_checks) {
        builder().grey_checks = pair->next;
        std::free(pair);
    }
}

}  // namespace tarn::winio
