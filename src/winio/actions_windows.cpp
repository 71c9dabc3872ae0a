// Standard actions that show windows or arrange them.
#include <algorithm>
#include <string>

#include "frame/records.h"
#include "platform/user/user.h"
#include "winio/actions.h"
#include "winio/procedures.h"
#include "winio/winproc.h"

namespace tarn::winio {
namespace {

using namespace platform;

word text_argument() {
    const thunk* current = callbacks().current_thunk;
    return current ? current->a : 0;
}

// A window of the library's own that shows one text; its result.
std::int32_t show_text(const char* format, const char* text) {
    const word arguments[1] = {reinterpret_cast<word>(text ? text : "")};
    return internal_winio(format, "*C", arguments, 1);
}
std::int32_t show_text(const char* format) {
    return show_text(format, reinterpret_cast<const char*>(text_argument()));
}

std::int32_t show_current(std::int32_t how) {
    if (const fancy_window* window = current_window()) ShowWindow(window->hwnd, how);
    return 2;
}

// The frame window whose children an arrangement is about: the current one, or the one around it.
fancy_window* mdi_host() {
    fancy_window* window = current_window();
    if (window && !window->mdi_frame) window = window->frame_window;
    return window && window->mdi_frame && window->mdi_frame->hwnd ? window : nullptr;
}

// The children as handles: moving one may run call-backs that close others.
struct mdi_children {
    static constexpr std::int32_t most = 256;
    HWND handles[most];
    std::int32_t count = 0;
    RECT client;
};
bool collect_children(mdi_children& into) {
    fancy_window* host = mdi_host();
    if (host && host->flags.menu_buttons_shown) mdi_menu_command(host, mdi_restore);
    host = mdi_host();
    if (!host || !GetClientRect(host->mdi_frame->hwnd, into.client)) return false;
    const fancy_window* top = host->top_child;
    const auto add = [&](const fancy_window* child) {
        if (child->flags.open && !IsIconic(child->hwnd) && into.count < into.most)
            into.handles[into.count++] = child->hwnd;
    };
    for (const fancy_window* child = host->first_child; child; child = child->next_sibling)
        if (child != top) add(child);
    std::reverse(into.handles, into.handles + into.count);
    if (top && fancy_window_exists(top)) add(top);
    return into.count > 0;
}

std::int32_t tile(bool side_by_side, std::int32_t result) {
    mdi_children children;
    if (!collect_children(children)) return result;
    const RECT& client = children.client;
    for (std::int32_t i = 0; i < children.count; ++i) {
        if (!IsWindow(children.handles[i])) continue;
        const auto edge = [&](std::int32_t size, std::int32_t which) {
            return size * which / children.count;
        };
        if (side_by_side)
            MoveWindow(children.handles[i], edge(client.width(), i), 0,
                       edge(client.width(), i + 1) - edge(client.width(), i), client.height(),
                       true);
        else
            MoveWindow(children.handles[i], 0, edge(client.height(), i), client.width(),
                       edge(client.height(), i + 1) - edge(client.height(), i), true);
    }
    return result;
}

}  // namespace

std::int32_t action_text() {
    show_text("%ww[no_caption,volatile,no_edge,casts_shadow]%ws");
    return 1;
}

std::int32_t action_about() {
    show_text("%ca[About]%`cn%ws\n\n%`bt[&OK]");
    return 2;
}

std::int32_t action_confirm_exit() {
    const std::int32_t button =
        show_text("%si?%ca[WARNING]%`cn%ws\n\n     %bt[&Yes]\t%`bt[&No]     ");
    return button == 1 ? 0 : 1;
}

std::int32_t action_version() {
    const std::string text = "Quillpan+ run-time library\nVersion " +
                             std::to_string(frame::library_version / 1000) + "." +
                             std::to_string(frame::library_version % 1000);
    show_text("%ca[Version]%`cn%ws\n\n%`bt[&OK]", text.c_str());
    return 1;
}

std::int32_t action_maximise() {
    return show_current(SW_SHOWMAXIMIZED);
}
std::int32_t action_minimise() {
    return show_current(SW_SHOWMINIMIZED);
}
std::int32_t action_restore() {
    return show_current(SW_SHOWNORMAL);
}
std::int32_t action_super_maximise() {
    if (const fancy_window* window = current_window())
        SendMessageA(window->hwnd, msg_super_maximise, 0, 0);
    return 2;
}

std::int32_t action_cascade() {
    mdi_children children;
    if (!collect_children(children)) return 2;
    const std::int32_t step = GetSystemMetrics(SM_CYFRAME) + GetSystemMetrics(SM_CYCAPTION);
    for (std::int32_t i = 0; i < children.count; ++i)
        if (IsWindow(children.handles[i]))
            SetWindowPos(children.handles[i], HWND{}, i * step, i * step, 0, 0, SWP_NOSIZE);
    return 2;
}
std::int32_t action_tile_horizontally() {
    return tile(false, 1);
}
std::int32_t action_tile_vertically() {
    return tile(true, 1);
}

}  // namespace tarn::winio
