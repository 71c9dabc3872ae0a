// How scroll bars look, where their parts are and how they follow the pointer: for the bars of
// windows and for the "scrollbar" class alike.
#pragma once

#include "platform/base/constants.h"
#include "platform/gdi/gdi.h"
#include "platform/user/user.h"

namespace tarn::platform {

struct ScrollValues {
    std::int32_t low = 0, high = 100, position = 0;
    UINT page = 0;
    std::int32_t track = 0;  // where the thumb is while it is dragged

    // The last position: the page ends at `high`.
    std::int32_t last() const;
    // There is nowhere to go: the page shows it all.
    bool idle() const { return last() <= low; }
    std::int32_t clamp(std::int64_t position) const;
    // Takes what `info.fMask` names over, kept within bounds. True: something changed.
    bool set(const SCROLLINFO& info);
    void get(SCROLLINFO& info) const;
    // The position behind one step of a bar (SB_LINEUP ...), for those who scroll by themselves.
    std::int32_t after(std::int32_t code, std::int32_t line) const;
};

enum class ScrollPart : std::uint8_t { none, line_up, page_up, thumb, page_down, line_down };

struct ScrollLayout {
    RECT line_up, line_down, track, thumb;  // an empty thumb: nothing to scroll
};
ScrollLayout scroll_layout(const RECT& bar, bool vertical, const ScrollValues& values);
ScrollPart scroll_hit(const ScrollLayout& layout, bool vertical, POINT at);
std::int32_t scroll_code(ScrollPart part);  // SB_LINEUP ...; -1 for the thumb and none

struct ScrollLook {
    bool vertical = true, enabled = true;
    ScrollPart hover = ScrollPart::none, pressed = ScrollPart::none;
};
void draw_scroll_bar(HDC dc, const RECT& bar, const ScrollValues& values, const ScrollLook& look);

// The pointer at work on one bar. The owner captures the pointer, passes it on, keeps a timer of
// `interval()` milliseconds while `repeats()`, and sends what `notify` is given (SB_... and for
// the thumb its position) as WM_HSCROLL or WM_VSCROLL.
class ScrollTracker {
  public:
    using Notify = void (*)(HWND owner, std::int32_t code, std::int32_t position);
    bool active() const { return part_ != ScrollPart::none; }
    ScrollPart pressed() const { return over_ ? part_ : ScrollPart::none; }
    ScrollPart part() const { return part_; }
    bool repeats() const { return active() && part_ != ScrollPart::thumb; }
    UINT interval() const { return repeated_ ? 50 : 350; }
    // False: nothing to do there (the bar is disabled, or nothing was hit).
    bool press(HWND owner, const RECT& bar, bool vertical, ScrollValues& values, POINT at,
               Notify notify);
    // The bar and its values are given anew each time: a call-back may have changed them.
    void move(const RECT& bar, ScrollValues& values, POINT at);
    void repeat(const RECT& bar, ScrollValues& values);
    void release(ScrollValues& values);  // SB_THUMBPOSITION, SB_ENDSCROLL
    void forget() { part_ = ScrollPart::none; }

  private:
    HWND owner_{};
    Notify notify_ = nullptr;
    ScrollPart part_ = ScrollPart::none;
    POINT at_;
    std::int32_t grip_ = 0;   // from the thumb's start to the pointer
    std::int32_t start_ = 0;  // the position when the drag began
    bool vertical_ = true, over_ = false, repeated_ = false;
};

// What SetScrollInfo and its kin send to a "scrollbar" control; lparam: SCROLLINFO*.
enum : UINT { SBM_SETSCROLLINFO = 0xE9, SBM_GETSCROLLINFO = 0xEA };

}  // namespace tarn::platform
