// A window whose boxes grow with it.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/base/types.h"

namespace tarn::diagnostics {

// What a control does when its window gets wider and higher.
struct Anchor {
    std::int32_t id;
    bool moves_right, moves_down, widens, heightens;
};

class Stretch {
  public:
    // At the window's start: as it is now, it is smallest.
    void begin(platform::HWND window, const std::vector<Anchor>& anchors);
    // For WM_SIZE and WM_GETMINMAXINFO; false for other messages.
    bool take(platform::HWND window, platform::UINT message, platform::LPARAM lparam) const;

  private:
    void lay_out(platform::HWND window) const;

    struct Control {
        Anchor anchor;
        platform::RECT place;
    };
    std::vector<Control> controls_;
    platform::SIZE client_, outer_;
};

}  // namespace tarn::diagnostics
