// CUT, COPY, PASTE and their kin, on whatever has the focus.
#include <cstdlib>
#include <strings.h>

#include "platform/controls/controls.h"
#include "platform/user/user.h"
#include "textwin/textwin.h"
#include "winio/actions.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {
namespace {

using namespace platform;

bool is_edit(HWND hwnd) {
    char name[16];
    return hwnd && GetClassNameA(hwnd, name, sizeof name) > 0 && strcasecmp(name, "edit") == 0;
}

bool is_button(HWND hwnd) {
    const window_control* control = control_from_window(hwnd, false);
    if (!control) return false;
    switch (control->type) {
        case control_type::button:
        case control_type::fancy_button:
        case control_type::option_button:
        case control_type::button_block:
            return true;
        default:
            return false;
    }
}

// A button that is clicked takes the focus: what had it before in that window is meant.
HWND client_at_hand() {
    const HWND focus = GetFocus();
    const HWND before = procedures().last_client;
    if (!before || !IsWindow(before) || !is_button(focus)) return focus;
    return our_window(before) == our_window(focus) ? before : focus;
}

// The change is the user's own: the window hears of it though a call-back runs. The user goes on
// in the field.
void send_to_client(UINT message) {
    const HWND client = client_at_hand();
    callbacks().clipboard_refresh = true;
    if (client != GetFocus()) SetFocus(client);
    SendMessageA(client, message, 0, 0);
    callbacks().clipboard_refresh = false;
}

HWND text_window_at_hand() {
    const HWND client = client_at_hand();
    return textwin::is_text_window(client) ? client : first_quillpan_hwnd();
}

bool has_selection(HWND edit) {
    UINT start = 0, end = 0;
    SendMessageA(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return start != end;
}

}  // namespace

void note_clipboard_client(HWND focus) {
    if (is_edit(focus) || textwin::is_text_window(focus)) procedures().last_client = focus;
}

clipboard_client get_clipboard_client() {
    if (is_edit(client_at_hand())) return clipboard_client::edit;
    if (text_window_at_hand()) return clipboard_client::text_window;
    return clipboard_client::none;
}

bool can_undo_edit() {
    constexpr UINT can_undo = 0xC6;
    const HWND client = client_at_hand();
    return is_edit(client) && SendMessageA(client, can_undo, 0, 0) != 0;
}

bool test_selection() {
    switch (get_clipboard_client()) {
        case clipboard_client::edit:
            return has_selection(client_at_hand());
        case clipboard_client::text_window:
            return textwin::selected_text(text_window_at_hand(), true) != nullptr;
        default:
            return false;
    }
}

std::int32_t action_cut() {
    if (get_clipboard_client() == clipboard_client::edit) send_to_client(WM_CUT);
    return 2;
}

std::int32_t action_copy() {
    const clipboard_client client = get_clipboard_client();
    if (client == clipboard_client::edit) send_to_client(WM_COPY);
    if (client == clipboard_client::text_window) {
        char* text = textwin::selected_text(text_window_at_hand(), false);
        if (text) copy_text_to_clipboardAW(text);
        std::free(text);
    }
    return 1;
}

std::int32_t action_paste() {
    if (get_clipboard_client() == clipboard_client::edit) send_to_client(WM_PASTE);
    return 2;
}

std::int32_t action_select_all() {
    const HWND client = client_at_hand();
    if (is_edit(client)) {
        if (client != GetFocus()) SetFocus(client);
        SendMessageA(client, EM_SETSEL, 0, -1);
    } else {
        MessageBeep(0);
    }
    return 1;
}

std::int32_t action_edit_undo() {
    if (is_edit(client_at_hand())) send_to_client(EM_UNDO);
    return 2;
}

}  // namespace tarn::winio
