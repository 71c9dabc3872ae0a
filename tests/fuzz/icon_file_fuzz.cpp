// Any bytes are an icon or cursor file, one of whose pictures is then all there, or are refused.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/gdi/gdi.h"

using namespace tarn::platform;

static void require(bool holds) {
    if (!holds) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
    for (const bool cursor : {false, true}) {
        POINT hot;
        const HICON icon = CreateIconFromFile(data, length, cursor, hot);
        if (icon == HICON{}) continue;
        SIZE size;
        require(GetIconSize(icon, size) && size.cx > 0 && size.cy > 0);
        std::vector<std::uint32_t> pixels(std::size_t(size.cx) * size.cy);
        require(GetIconPixels(icon, size.cx, size.cy, pixels.data()));
        require(GetIconPixels(icon, 1, 1, pixels.data()));
        require(DestroyIcon(icon));
    }
    return 0;
}
