#include "diagnostics/stretch.h"

#include "platform/user/user.h"

namespace tarn::diagnostics {

using namespace platform;

void Stretch::begin(HWND window, const std::vector<Anchor>& anchors) {
    RECT client;
    RECT outer;
    GetClientRect(window, client);
    GetWindowRect(window, outer);
    client_ = {client.width(), client.height()};
    outer_ = {outer.width(), outer.height()};
    POINT corner;
    ClientToScreen(window, corner);
    controls_.clear();
    for (const Anchor& each : anchors) {
        RECT place;
        if (!GetWindowRect(GetDlgItem(window, each.id), place)) continue;
        controls_.push_back({each,
                             {place.left - corner.x, place.top - corner.y, place.right - corner.x,
                              place.bottom - corner.y}});
    }
}

void Stretch::lay_out(HWND window) const {
    RECT client;
    GetClientRect(window, client);
    const std::int32_t more_x = client.width() - client_.cx;
    const std::int32_t more_y = client.height() - client_.cy;
    for (const Control& each : controls_) {
        const Anchor& anchor = each.anchor;
        const RECT& place = each.place;
        MoveWindow(GetDlgItem(window, anchor.id), place.left + (anchor.moves_right ? more_x : 0),
                   place.top + (anchor.moves_down ? more_y : 0),
                   place.width() + (anchor.widens ? more_x : 0),
                   place.height() + (anchor.heightens ? more_y : 0), true);
    }
    InvalidateRect(window, nullptr, true);
}

bool Stretch::take(HWND window, UINT message, LPARAM lparam) const {
    if (controls_.empty()) return false;
    if (message == WM_SIZE) {
        lay_out(window);
        return true;
    }
    if (message != WM_GETMINMAXINFO) return false;
    reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {outer_.cx, outer_.cy};
    return true;
}

}  // namespace tarn::diagnostics
