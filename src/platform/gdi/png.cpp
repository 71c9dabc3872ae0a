// Pictures as PNG files. The compressor is the system's when it is there; without it the pixels
// are stored as they are, which is as valid.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <vector>

#include "platform/gdi/paint.h"
#include "platform/gdi/raster.h"

namespace tarn::platform {

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::array<std::uint32_t, 256> crc_table = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int k = 0; k < 8; ++k) c = (c & 1) != 0 ? 0xEDB88320u ^ c >> 1 : c >> 1;
        table[i] = c;
    }
    return table;
}();

void put_u32(Bytes& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        out.push_back(static_cast<unsigned char>(value >> shift));
    }
}

void put_chunk(Bytes& out, const char* name, const Bytes& content) {
    put_u32(out, static_cast<std::uint32_t>(content.size()));
    const std::size_t begin = out.size();
    out.insert(out.end(), name, name + 4);
    out.insert(out.end(), content.begin(), content.end());
    std::uint32_t crc = 0xFFFFFFFFu;
    for (std::size_t i = begin; i < out.size(); ++i) {
        crc = crc_table[(crc ^ out[i]) & 0xFF] ^ crc >> 8;
    }
    put_u32(out, ~crc);
}

// The rows with a filter byte each: the difference to the row above, which for drawn pictures is
// mostly nothing.
Bytes filtered_rows(const Surface& surface, bool with_alpha) {
    const int channels = with_alpha ? 4 : 3;
    const std::size_t length = std::size_t(surface.width) * channels;
    Bytes rows, row(length), above(length, 0);
    rows.reserve((length + 1) * surface.height);
    for (std::int32_t y = 0; y < surface.height; ++y) {
        const std::uint32_t* pixels = pixel_row(surface, y);
        unsigned char* to = row.data();
        for (std::int32_t x = 0; x < surface.width; ++x) {
            *to++ = static_cast<unsigned char>(pixels[x] >> 16);
            *to++ = static_cast<unsigned char>(pixels[x] >> 8);
            *to++ = static_cast<unsigned char>(pixels[x]);
            if (with_alpha) *to++ = static_cast<unsigned char>(pixels[x] >> 24);
        }
        constexpr unsigned char filter_up = 2;
        rows.push_back(filter_up);
        for (std::size_t i = 0; i < length; ++i) {
            rows.push_back(static_cast<unsigned char>(row[i] - above[i]));
        }
        row.swap(above);
    }
    return rows;
}

using Compress = int (*)(unsigned char*, unsigned long*, const unsigned char*, unsigned long, int);
using Bound = unsigned long (*)(unsigned long);

bool deflate(const Bytes& raw, Bytes& packed) {
    void* zlib = dlopen("libz.so.1", RTLD_NOW | RTLD_LOCAL);
    if (zlib == nullptr) return false;
    const auto compress = reinterpret_cast<Compress>(dlsym(zlib, "compress2"));
    const auto bound = reinterpret_cast<Bound>(dlsym(zlib, "compressBound"));
    if (compress == nullptr || bound == nullptr) return false;
    unsigned long length = bound(raw.size());
    packed.resize(length);
    constexpr int level = 6;
    if (compress(packed.data(), &length, raw.data(), raw.size(), level) != 0) return false;
    packed.resize(length);
    return true;
}

void store(const Bytes& raw, Bytes& packed) {
    packed = {0x78, 0x01};
    constexpr std::size_t largest = 65535;
    std::size_t at = 0;
    do {
        const std::size_t length = std::min(raw.size() - at, largest);
        const bool last = at + length == raw.size();
        const auto low = static_cast<unsigned char>(length);
        const auto high = static_cast<unsigned char>(length >> 8);
        packed.insert(packed.end(),
                      {static_cast<unsigned char>(last ? 1 : 0), low, high,
                       static_cast<unsigned char>(~low), static_cast<unsigned char>(~high)});
        packed.insert(packed.end(), raw.begin() + static_cast<std::ptrdiff_t>(at),
                      raw.begin() + static_cast<std::ptrdiff_t>(at + length));
        at += length;
    } while (at < raw.size());
    std::uint32_t a = 1, b = 0;
    for (const unsigned char byte : raw) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    put_u32(packed, b << 16 | a);
}

bool has_alpha(const Surface& surface) {
    for (std::int32_t y = 0; y < surface.height; ++y) {
        const std::uint32_t* row = pixel_row(surface, y);
        if (!std::all_of(row, row + surface.width, [](auto p) { return p >= 0xFF000000u; })) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<unsigned char> encode_png(const Surface& surface) {
    Bytes file;
    if (surface.pixels == nullptr || surface.width <= 0 || surface.height <= 0) return file;
    const bool with_alpha = has_alpha(surface);
    constexpr unsigned char signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    file.assign(std::begin(signature), std::end(signature));
    Bytes header;
    put_u32(header, static_cast<std::uint32_t>(surface.width));
    put_u32(header, static_cast<std::uint32_t>(surface.height));
    constexpr unsigned char colours = 2, colours_and_alpha = 6;
    header.insert(header.end(), {8, with_alpha ? colours_and_alpha : colours, 0, 0, 0});
    put_chunk(file, "IHDR", header);
    const Bytes raw = filtered_rows(surface, with_alpha);
    Bytes packed;
    if (!deflate(raw, packed)) store(raw, packed);
    put_chunk(file, "IDAT", packed);
    put_chunk(file, "IEND", {});
    return file;
}

bool write_png(const char* path, const Surface& surface) {
    const Bytes bytes = encode_png(surface);
    if (bytes.empty()) {
        errno = EINVAL;
        return false;
    }
    std::FILE* file = std::fopen(path, "wbe");
    if (file == nullptr) return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    const int error = errno;
    const bool closed = std::fclose(file) == 0;
    if (!written) errno = error;
    return written && closed;
}

}  // namespace tarn::platform
