// The pixels of a window's surface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "platform/base/surface.h"

namespace tarn::platform {

inline constexpr std::int32_t largest_side = 16384;

// The pixels of the window that closed last wait for the next one: fresh storage of that size comes
// from the system page by page, which takes longer than painting it.
class SparePixels {
  public:
    // At least `wanted` and not much more; null when there are none of that kind.
    std::uint32_t* take(std::size_t wanted, std::size_t& capacity) {
        if (!pixels_ || capacity_ < wanted || capacity_ > 2 * wanted) return nullptr;
        capacity = capacity_;
        capacity_ = 0;
        return std::exchange(pixels_, nullptr);
    }
    void give(std::uint32_t* pixels, std::size_t capacity) {
        constexpr std::size_t most = std::size_t{4} << 20;  // 16 MB
        if (!pixels) return;
        if (capacity > most || capacity <= capacity_) return std::free(pixels);
        std::free(pixels_);
        pixels_ = pixels;
        capacity_ = capacity;
    }

  private:
    std::uint32_t* pixels_ = nullptr;
    std::size_t capacity_ = 0;
};
inline constinit SparePixels spare_pixels;

class PixelStore {
  public:
    PixelStore() = default;
    PixelStore(const PixelStore&) = delete;
    PixelStore& operator=(const PixelStore&) = delete;
    ~PixelStore() { spare_pixels.give(pixels_, capacity_); }

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
            pixels_ = spare_pixels.take(capacity, capacity);
            if (!pixels_)
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
