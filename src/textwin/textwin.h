// Text windows: scrolling windows of lines that a program writes to as to a terminal, and the one
// message pump through which every wait of the window library goes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/base/types.h"

namespace tarn::textwin {

using platform::COLORREF;
using platform::HBRUSH;
using platform::HMENU;
using platform::HWND;

HWND create_window(const char* title, std::int32_t x, std::int32_t y, std::int32_t width,
                   std::int32_t height);
HWND create_default_window();
HWND get_default_window();
HWND create_embeded_window_x(HWND parent, bool horizontal_bar, bool vertical_bar, std::int32_t x,
                             std::int32_t y, std::int32_t width, std::int32_t height, HBRUSH brush,
                             COLORREF background, COLORREF text, HMENU popup);
// Between an embedded window's edges and its text, in pixels: top and bottom, left.
inline constexpr std::int32_t embedded_margin_y = 2, embedded_margin_x = 3;
void win_coua(HWND hwnd, const char* bytes, std::size_t count);
void add_text_descriptor(HWND hwnd, platform::HFONT font, COLORREF colour);
void win_coua_f();  // the next write doesn't repaint at its end
void set_default_font(platform::HFONT font);
// The same, for a while: 0 is the stock font. Returns what it was.
platform::HFONT exchange_default_font(platform::HFONT font);
void set_one_shot_style(std::uint32_t style);  // extra style of the next embedded window
bool is_text_window(HWND hwnd);
// The selected text in new storage (free()), null for none.
char* selected_text(HWND hwnd, bool only_ask);

// Whether new windows hold UTF-8 text; set by the room above.
extern bool (*text_is_utf8)();

// mode 0 runs until WM_QUIT, 1 polls, 2 polls and lets WM_QUIT through, 3 waits for one batch.
void yield_program_control(std::int32_t mode);
std::uint32_t& yield_mask();  // the upper limit given to PeekMessageA; 0: all
// Around a wait for the user: keys and the pointer come through, also where a call-back that waits
// runs under a mask.
class unmasked_yield {
  public:
    unmasked_yield() : before_(yield_mask()) { yield_mask() = 0; }
    ~unmasked_yield() { yield_mask() = before_; }
    unmasked_yield(const unmasked_yield&) = delete;
    unmasked_yield& operator=(const unmasked_yield&) = delete;

  private:
    std::uint32_t before_;
};

// What the room above adds to the pump.
struct PumpHooks {
    bool (*pre_filter)(platform::MSG&) = nullptr;
    void (*post_filter)(const platform::MSG&) = nullptr;
    void (*loop_hook)() = nullptr;
    void (*idle)() = nullptr;
    void (*graphics_update)() = nullptr;
    void (*end)() = nullptr;                               // at the end of the program
    HWND (*control_of_unit)(std::int32_t unit) = nullptr;  // hwnd_from_fortran_unit
};
PumpHooks& pump_hooks();
// The desktop's server is gone: the program is ending, and nobody can close a window.
bool desktop_lost();

}  // namespace tarn::textwin
