// CUT, COPY, PASTE and their kin, on whatever has the focus.
#include <cstdlib>
#include <strings.h>

#include "platform/controls/controls.h"
#include "platform/user/user.h"
#include "textwin/textwin.h"
#include "winio/actions.h"
#include "winio/text_layer.h"

namespace tarn::winio {
namespace {

using namespace platform;

bool is_edit(HWND hwnd) {
    char name[16];
    return hwnd && GetClassNameA(hwnd, name, sizeof name) > 0 && strcasecmp(name, "edit") == 0;
}

// The change is the user's own: the window hears of it though a call-back runs.
void send_to_focus(UINT message) {
    callbacks().clipboard_refresh = true;
    SendMessageA(GetFocus(), message, 0, 0);
    callbacks().clipboard_refresh = false;
}

HWND text_window_at_hand() {
    const HWND focus = GetFocus();
    return textwin::is_text_window(focus) ? focus : first_quillpan_hwnd();
}

bool has_selection(HWND edit) {
    const auto range = static_cast<std::uintptr_t>(SendMessageA(edit, EM_GETSEL, 0, 0));
    return LOWORD(range) != HIWORD(range);
}

}  // namespace

clipboard_client get_clipboard_client() {
    const HWND focus = GetFocus();
    if (is_edit(focus)) return clipboard_client::edit;
    if (text_window_at_hand()) return clipboard_client::text_window;
    return clipboard_client::none;
}

bool test_selection() {
    switch (get_clipboard_client()) {
        case clipboard_client::edit:
            return has_selection(GetFocus());
        case clipboard_client::text_window:
            return textwin::selected_text(text_window_at_hand(), true) != nullptr;
        default:
            return false;
    }
}

std::int32_t action_cut() {
    if (get_clipboard_client() == clipboard_client::edit) send_to_focus(WM_CUT);
    return 2;
}

std::int32_t action_copy() {
    const clipboard_client client = get_clipboard_client();
    if (client == clipboard_client::edit) SendMessageA(GetFocus(), WM_COPY, 0, 0);
    if (client == clipboard_client::text_window) {
        char* text = textwin::selected_text(text_window_at_hand(), false);
        if (text) copy_text_to_clipboardAW(text);
        std::free(text);
    }
    return 1;
}

std::int32_t action_paste() {
    if (get_clipboard_client() == clipboard_client::edit) send_to_focus(WM_PASTE);
    return 2;
}

std::int32_t action_select_all() {
    if (is_edit(GetFocus()))
        SendMessageA(GetFocus(), EM_SETSEL, 0, -1);
    else
        MessageBeep(0);
    return 1;
}

std::int32_t action_edit_undo() {
    if (is_edit(GetFocus())) send_to_focus(EM_UNDO);
    return 2;
}

}  // namespace tarn::winio
