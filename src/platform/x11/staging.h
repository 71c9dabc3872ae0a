// How pictures reach the server: through memory shared with it, or over the socket. Surfaces are
// copied first, so that a program may paint on while the server still reads, and the caret is
// drawn on the copy.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>
#include <xcb/xcb.h>

#include "platform/base/surface.h"
#include "platform/x11/connection.h"

namespace tarn::x11 {

class Staging {
  public:
    void start(const Connection& connection);
    // Shows a rectangle (real pixels) of the surface; `caret` (real pixels, may be empty) is
    // inverted where it meets the rectangle.
    void put(const Connection& connection, xcb_window_t window, const platform::Surface& surface,
             platform::RECT rect, const platform::RECT& caret);

  private:
    bool map(const Connection& connection, std::size_t bytes);
    void put_shared(const Connection& connection, xcb_window_t window,
                    const platform::Surface& surface, const platform::RECT& rect,
                    const platform::RECT& caret);
    void put_plain(const Connection& connection, xcb_window_t window,
                   const platform::Surface& surface, const platform::RECT& rect,
                   const platform::RECT& caret);

    bool shared_ = false;
    std::uint32_t segment_ = 0;
    std::uint32_t* memory_ = nullptr;
    std::size_t size_ = 0, used_ = 0;  // bytes; `used_` may still be read by the server
    xcb_gcontext_t context_ = 0;
    std::vector<std::uint32_t> plain_;  // a band on its way over the socket
};

}  // namespace tarn::x11
