// A picture as the bytes of a PNG file, for other programs to paste. Stored, not packed: it lives
// only as long as the paste takes, and needs no library.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace tarn::x11 {

// `pixels` are rows without gaps, colours as on a surface.
std::string png_bytes(std::span<const std::uint32_t> pixels, std::uint32_t width,
                      std::uint32_t height);

}  // namespace tarn::x11
