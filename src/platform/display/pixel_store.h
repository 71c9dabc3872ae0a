// The pixels of a window's surface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/base/surface.h"

namespace tarn::platform {

inline constexpr std::int32_t largest_side = 16384;

class PixelStore {
  public:
    PixelStore() = default;
    PixelStore(const PixelStore&) = delete;
    PixelStore& operator=(const PixelStore&) = delete;
    ~PixelStore() { std::free(pixels_); }

    // What `fit` made last.
    const Surface& surface() const { return surface_; }
    // Black, or what was there before; no pixels when there is no storage or the size is absurd.
    const Surface& fit(std::int32_t width, std::int32_t height, double scale) {
        surface_ = {};
        surface_.scale = scale;
        if (width <= 0 || height <= 0 || width > largest_side || height > largest_side)
            return surface_;
        std::size_t wanted = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        // What grew is likely to grow on; what shrank a lot gives its storage back.
        if (wanted > capacity_ || wanted < capacity_ / 4) {
            std::size_t capacity = pixels_ ? wanted + wanted / 4 : wanted;
            std::free(pixels_);
            pixels_ = static_cast<std::uint32_t*>(std::calloc(capacity, sizeof(std::uint32_t)));
            capacity_ = pixels_ ? capacity : 0;
            if (!pixels_) return surface_;
        }
        surface_.pixels = pixels_;
        surface_.width = width;
        surface_.height = height;
        surface_.stride = width;
        return surface_;
    }

  private:
    Surface surface_;
    std::uint32_t* pixels_ = nullptr;
    std::size_t capacity_ = 0;
};

}  // namespace tarn::platform
