#include "platform/x11/png.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tarn::x11 {
namespace {

constexpr std::array<std::uint32_t, 256> crc_table() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1) != 0 ? 0xEDB88320U ^ (value >> 1) : value >> 1;
        table[i] = value;
    }
    return table;
}

std::uint32_t crc(std::string_view bytes) {
    static constexpr auto table = crc_table();
    std::uint32_t value = 0xFFFFFFFF;
    for (unsigned char byte : bytes) value = table[(value ^ byte) & 0xFF] ^ (value >> 8);
    return ~value;
}

std::uint32_t adler(std::string_view bytes) {
    std::uint32_t low = 1, high = 0;
    for (unsigned char byte : bytes) {
        low = (low + byte) % 65521;
        high = (high + low) % 65521;
    }
    return high << 16 | low;
}

void put_number(std::string& to, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) to.push_back(static_cast<char>(value >> shift));
}

void put_chunk(std::string& to, std::string_view kind, std::string_view data) {
    put_number(to, static_cast<std::uint32_t>(data.size()));
    std::size_t start = to.size();
    to.append(kind).append(data);
    put_number(to, crc(std::string_view(to).substr(start)));
}

// The data as blocks that aren't packed, with the frame that packed data has.
std::string stored(std::string_view data) {
    constexpr std::size_t block = 65535;
    std::string all = "\x78\x01";
    for (std::size_t at = 0; at < data.size(); at += block) {
        auto length = static_cast<std::uint16_t>(std::min(block, data.size() - at));
        all.push_back(at + block >= data.size() ? 1 : 0);
        for (std::uint16_t word : {length, static_cast<std::uint16_t>(~length)}) {
            all.push_back(static_cast<char>(word));
            all.push_back(static_cast<char>(word >> 8));
        }
        all.append(data.substr(at, length));
    }
    put_number(all, adler(data));
    return all;
}

}  // namespace

std::string png_bytes(std::span<const std::uint32_t> pixels, std::uint32_t width,
                      std::uint32_t height) {
    std::string rows;
    rows.reserve(std::size_t{height} * (std::size_t{width} * 3 + 1));
    for (std::size_t y = 0; y < height; ++y) {
        rows.push_back(0);  // no filter
        for (std::uint32_t pixel : pixels.subspan(y * width, width)) {
            for (int shift : {16, 8, 0}) rows.push_back(static_cast<char>(pixel >> shift));
        }
    }
    std::string head;
    put_number(head, width);
    put_number(head, height);
    head.append("\x08\x02\0\0\0", 5);  // eight bits, three colours
    std::string file = "\x89PNG\r\n\x1A\n";
    put_chunk(file, "IHDR", head);
    put_chunk(file, "IDAT", stored(rows));
    put_chunk(file, "IEND", {});
    return file;
}

}  // namespace tarn::x11
