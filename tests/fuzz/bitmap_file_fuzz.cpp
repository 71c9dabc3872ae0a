// Any bytes are a bitmap, whose pixels are then all there and opaque, or are refused.
#include <cstdint>
#include <cstdlib>

#include "platform/gdi/paint.h"

using namespace tarn::platform;

static void require(bool holds) {
    if (!holds) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
    const HBITMAP bitmap = CreateDIBitmap(data, length);
    if (bitmap == HBITMAP{}) return 0;
    SIZE size;
    require(GetBitmapSize(bitmap, size) && size.cx > 0 && size.cy > 0);
    const HDC memory = CreateCompatibleDC(HDC{});
    require(SelectObject(memory, bitmap) != HGDIOBJ{});
    const Surface& surface = *surface_of(memory);
    require(surface.width == size.cx && surface.height == size.cy);
    for (std::int32_t y = 0; y < size.cy; y += 1 + size.cy / 64) {
        for (std::int32_t x = 0; x < size.cx; x += 1 + size.cx / 64) {
            require(surface.pixels[std::int64_t{y} * surface.stride + x] >> 24 == 255);
        }
    }
    require(DeleteDC(memory) && DeleteObject(bitmap));
    return 0;
}
