// Bitmap files: rows of 1, 4, 8, 16, 24 or 32 bits, some of them run-length coded. They come from
// outside, so that every length and offset is checked against what is really there.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <optional>
#include <vector>

#include "platform/gdi/objects.h"

namespace tarn::platform {

namespace {

constexpr std::int32_t longest_side = 32767;
constexpr std::int64_t most_pixels = std::int64_t{1} << 26;

enum Compression : std::uint32_t { plain, rle8, rle4, bit_fields, alpha_fields = 6 };

class Bytes {
  public:
    Bytes(const unsigned char* bytes, std::size_t size) : bytes_(bytes), size_(size) {}
    std::size_t size() const { return size_; }
    const unsigned char* at(std::size_t offset) const { return bytes_ + offset; }
    // Zero behind the end: what matters is checked by itself.
    std::uint32_t u8(std::size_t offset) const { return offset < size_ ? bytes_[offset] : 0; }
    std::uint32_t u16(std::size_t offset) const { return u8(offset) | u8(offset + 1) << 8; }
    std::uint32_t u32(std::size_t offset) const { return u16(offset) | u16(offset + 2) << 16; }
    std::int32_t i32(std::size_t offset) const { return static_cast<std::int32_t>(u32(offset)); }

  private:
    const unsigned char* bytes_;
    std::size_t size_;
};

// Where a colour lies in a pixel, and how it becomes a byte.
struct Channel {
    std::uint32_t mask = 0;
    int shift = 0;
    std::uint32_t most = 0;

    void set(std::uint32_t bits) {
        mask = bits;
        shift = bits == 0 ? 0 : std::countr_zero(bits);
        most = bits >> shift;
    }
    std::uint32_t byte(std::uint32_t pixel) const {
        if (most == 0) return 0;
        const std::uint64_t value = (pixel & mask) >> shift;
        return static_cast<std::uint32_t>((value * 255 + most / 2) / most);
    }
};

struct Header {
    std::int32_t width = 0, height = 0;
    bool from_top = false;
    std::uint32_t bits = 0, compression = plain;
    std::size_t data = 0;  // where the rows begin
    Channel channels[3];   // red, green, blue
    std::array<std::uint32_t, 256> palette{};
};

bool sound_depth(std::uint32_t bits, std::uint32_t compression) {
    switch (compression) {
        case plain:
            return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
        case rle8:
            return bits == 8;
        case rle4:
            return bits == 4;
        case bit_fields:
        case alpha_fields:
            return bits == 16 || bits == 32;
        default:
            return false;
    }
}

void read_palette(const Bytes& file, std::size_t at, std::uint32_t count, std::size_t entry,
                  Header& header) {
    header.palette.fill(0xFF000000u);
    for (std::uint32_t i = 0; i < count; ++i, at += entry) {
        header.palette[i] =
            0xFF000000u | file.u8(at + 2) << 16 | file.u8(at + 1) << 8 | file.u8(at);
    }
}

std::optional<Header> read_header(const Bytes& file) {
    constexpr std::size_t file_header = 14, core_header = 12, info_header = 40;
    const bool whole_file = file.size() >= file_header && file.u8(0) == 'B' && file.u8(1) == 'M';
    const std::size_t at = whole_file ? file_header : 0;
    if (file.size() < at + core_header) return std::nullopt;
    const std::size_t length = file.u32(at);
    const bool core = length == core_header;
    if (!core && (length < info_header || length > 1024)) return std::nullopt;
    if (file.size() < at + length) return std::nullopt;
    Header header;
    header.width = core ? static_cast<std::int32_t>(file.u16(at + 4)) : file.i32(at + 4);
    header.height = core ? static_cast<std::int32_t>(file.u16(at + 6)) : file.i32(at + 8);
    header.bits = file.u16(at + (core ? 10 : 14));
    header.compression = core ? 0 : file.u32(at + 16);
    if (header.height < 0 && header.height >= -longest_side) {
        header.from_top = true;
        header.height = -header.height;
    }
    if (header.width <= 0 || header.width > longest_side || header.height <= 0 ||
        header.height > longest_side || std::int64_t{header.width} * header.height > most_pixels ||
        !sound_depth(header.bits, header.compression)) {
        return std::nullopt;
    }
    std::size_t behind = at + length;
    const bool fields = header.compression == bit_fields || header.compression == alpha_fields;
    if (fields) {
        // Behind a short header, or a part of a long one: at the same place.
        for (int i = 0; i < 3; ++i) header.channels[i].set(file.u32(at + info_header + 4 * i));
        if (length == info_header) behind += header.compression == alpha_fields ? 16 : 12;
    } else if (header.bits == 16) {
        header.channels[0].set(0x7C00), header.channels[1].set(0x3E0), header.channels[2].set(0x1F);
    }
    const std::uint32_t used = core ? 0 : file.u32(at + 32);
    // Colours for screens with few of them.
    if (header.bits > 8 && used <= 256) behind += std::size_t{used} * 4;
    if (header.bits <= 8) {
        const std::uint32_t most = 1u << header.bits;
        const std::uint32_t count = used == 0 ? most : std::min(used, most);
        const std::size_t entry = core ? 3 : 4;
        read_palette(file, behind, count, entry, header);
        behind += count * entry;
    }
    header.data = whole_file ? file.u32(10) : behind;
    if (header.data < at + length || header.data >= file.size()) return std::nullopt;
    return header;
}

std::uint32_t* row_of(const Header& header, const Surface& surface, std::int32_t y) {
    const std::int32_t row = header.from_top ? y : header.height - 1 - y;
    return surface.pixels + std::int64_t{row} * surface.stride;
}

std::uint32_t masked_pixel(const Header& header, std::uint32_t value) {
    return 0xFF000000u | header.channels[0].byte(value) << 16 |
           header.channels[1].byte(value) << 8 | header.channels[2].byte(value);
}

void read_row(const Header& header, const Bytes& file, std::size_t at, std::uint32_t* row) {
    const bool masked = header.compression != plain;
    for (std::int32_t x = 0; x < header.width; ++x) {
        const auto i = static_cast<std::size_t>(x);
        switch (header.bits) {
            case 1:
                row[x] = header.palette[file.u8(at + i / 8) >> (7 - i % 8) & 1];
                break;
            case 4:
                row[x] = header.palette[file.u8(at + i / 2) >> (i % 2 == 0 ? 4 : 0) & 15];
                break;
            case 8:
                row[x] = header.palette[file.u8(at + i)];
                break;
            case 16:
                row[x] = masked_pixel(header, file.u16(at + 2 * i));
                break;
            case 24:
                row[x] = 0xFF000000u | file.u16(at + 3 * i) | file.u8(at + 3 * i + 2) << 16;
                break;
            default:
                row[x] = masked ? masked_pixel(header, file.u32(at + 4 * i))
                                : 0xFF000000u | file.u32(at + 4 * i);
        }
    }
}

bool read_rows(const Header& header, const Bytes& file, const Surface& surface) {
    const std::size_t stride = (std::size_t(header.width) * header.bits + 31) / 32 * 4;
    if ((file.size() - header.data) / stride < std::size_t(header.height)) return false;
    for (std::int32_t y = 0; y < header.height; ++y) {
        read_row(header, file, header.data + stride * std::size_t(y), row_of(header, surface, y));
    }
    return true;
}

// Runs and literal stretches; what goes beyond a row or the picture makes the file unsound, what
// is skipped over stays black.
class RunReader {
  public:
    RunReader(const Header& header, const Bytes& file, const Surface& surface)
        : header_(header), file_(file), surface_(surface), at_(header.data) {}

    bool read() {
        while (at_ + 2 <= file_.size()) {
            const std::uint32_t count = file_.u8(at_), value = file_.u8(at_ + 1);
            at_ += 2;
            if (count > 0) {
                for (std::uint32_t i = 0; i < count; ++i) {
                    if (!put(nibbles() ? value >> (i % 2 == 0 ? 4 : 0) & 15 : value)) return false;
                }
            } else if (value == 0) {
                x_ = 0;
                ++y_;
            } else if (value == 1) {
                return true;
            } else if (value == 2) {
                x_ += static_cast<std::int32_t>(file_.u8(at_));
                y_ += static_cast<std::int32_t>(file_.u8(at_ + 1));
                at_ += 2;
            } else if (!literal(value)) {
                return false;
            }
        }
        return false;
    }

  private:
    bool nibbles() const { return header_.compression == rle4; }

    bool put(std::uint32_t index) {
        if (x_ >= header_.width || y_ >= header_.height) return false;
        row_of(header_, surface_, y_)[x_++] = header_.palette[index];
        return true;
    }

    bool literal(std::uint32_t count) {
        const std::size_t bytes = nibbles() ? (count + 1) / 2 : count;
        if (file_.size() - at_ < bytes) return false;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t byte = file_.u8(at_ + (nibbles() ? i / 2 : i));
            if (!put(nibbles() ? byte >> (i % 2 == 0 ? 4 : 0) & 15 : byte)) return false;
        }
        at_ += bytes + bytes % 2;
        return true;
    }

    const Header& header_;
    const Bytes& file_;
    const Surface& surface_;
    std::size_t at_;
    std::int32_t x_ = 0, y_ = 0;
};

// ---- Icons and cursors: a picture, and below it a mask of what lies outside its shape
// ------------
constexpr std::int32_t largest_icon_side = 1024;
constexpr std::size_t directory_header = 6, directory_entry = 16;

struct DirectoryEntry {
    std::int32_t width, height;
    POINT hot;
    std::uint32_t colours;  // bits of a pixel
    std::size_t length, offset;
};

DirectoryEntry read_entry(const Bytes& file, std::uint32_t index) {
    const std::size_t at = directory_header + index * directory_entry;
    const auto side = [&](std::size_t offset) {
        const std::uint32_t size = file.u8(offset);
        return size == 0 ? 256 : static_cast<std::int32_t>(size);
    };
    return {
        side(at),
        side(at + 1),
        {static_cast<std::int32_t>(file.u16(at + 4)), static_cast<std::int32_t>(file.u16(at + 6))},
        file.u16(at + 6),
        file.u32(at + 8),
        file.u32(at + 12)};
}

// The picture whose size is nearest to the usual one, and of those the one with most colours. What
// a cursor has in the place of its colours is its hot spot.
std::optional<DirectoryEntry> best_entry(const Bytes& file, bool cursor) {
    constexpr std::int32_t usual = 32;
    std::optional<DirectoryEntry> best;
    for (std::uint32_t i = 0; i < file.u16(4); ++i) {
        const DirectoryEntry entry = read_entry(file, i);
        if (entry.offset > file.size() || entry.length > file.size() - entry.offset) continue;
        const auto off = [](const DirectoryEntry& e) { return std::abs(e.width - usual); };
        const bool nearer = !best || off(entry) < off(*best);
        const bool richer = best && off(entry) == off(*best) && entry.colours > best->colours;
        if (nearer || (!cursor && richer)) best = entry;
    }
    return best;
}

struct ShapeMask {
    const Bytes& file;
    std::size_t data, stride;
    bool outside(std::int32_t x, std::int32_t y) const {
        const auto column = static_cast<std::size_t>(x);
        const std::size_t at = data + stride * static_cast<std::size_t>(y) + column / 8;
        return (file.u8(at) >> (7 - column % 8) & 1) != 0;
    }
};

// Pixels of 32 bits may bring their own opacity; where none does, the mask tells the shape.
void give_shape(const Header& header, const Bytes& file, const Surface& surface) {
    const std::size_t stride = (std::size_t(header.width) * header.bits + 31) / 32 * 4;
    const std::size_t rows = std::size_t(header.height);
    const ShapeMask mask{file, header.data + stride * rows,
                         (std::size_t(header.width) + 31) / 32 * 4};
    const auto opacity = [&](std::int32_t x, std::int32_t y) {
        return file.u8(header.data + stride * std::size_t(y) + 4 * std::size_t(x) + 3);
    };
    bool own = false;
    for (std::int32_t y = 0; header.bits == 32 && y < header.height && !own; ++y)
        for (std::int32_t x = 0; x < header.width && !own; ++x) own = opacity(x, y) != 0;
    for (std::int32_t y = 0; y < header.height; ++y) {
        std::uint32_t* row = row_of(header, surface, y);
        for (std::int32_t x = 0; x < header.width; ++x) {
            const std::uint32_t alpha = own ? opacity(x, y) : mask.outside(x, y) ? 0 : 255;
            row[x] = (row[x] & 0xFFFFFF) | alpha << 24;
        }
    }
}

}  // namespace

HICON CreateIconFromFile(const unsigned char* bytes, std::size_t length, bool cursor, POINT& hot) {
    const Bytes directory(bytes, bytes == nullptr ? 0 : length);
    const std::optional<DirectoryEntry> entry = best_entry(directory, cursor);
    if (!entry) return HICON{};
    const Bytes file(bytes + entry->offset, entry->length);
    if (file.u8(0) == 'B') return HICON{};
    std::optional<Header> header = read_header(file);
    if (!header || header->compression != plain || header->from_top ||
        header->width > largest_icon_side || header->height > 2 * largest_icon_side)
        return HICON{};
    header->height /= 2;
    if (header->height == 0) return HICON{};
    std::vector<std::uint32_t> pixels(std::size_t(header->width) * std::size_t(header->height));
    Surface picture{};
    picture.pixels = pixels.data();
    picture.stride = header->width;
    if (!read_rows(*header, file, picture)) return HICON{};
    give_shape(*header, file, picture);
    hot = entry->hot;
    return CreateIconFromPixels(header->width, header->height, pixels.data());
}

std::size_t icon_file_length(const unsigned char* bytes) {
    const std::uint32_t count = bytes[4] | static_cast<std::uint32_t>(bytes[5]) << 8;
    constexpr std::uint32_t most_pictures = 64;
    if (count > most_pictures) return 0;
    std::size_t end = directory_header + count * directory_entry;
    const Bytes directory(bytes, end);
    for (std::uint32_t i = 0; i < count; ++i) {
        const DirectoryEntry entry = read_entry(directory, i);
        end = std::max(end, entry.offset + entry.length);
    }
    constexpr std::size_t largest = std::size_t{1} << 24;
    return end <= largest ? end : 0;
}

HBITMAP CreateDIBitmap(const unsigned char* bytes, std::size_t length) {
    if (bytes == nullptr) return HBITMAP{};
    const Bytes file(bytes, length);
    const std::optional<Header> header = read_header(file);
    if (!header) return HBITMAP{};
    const bool runs = header->compression == rle8 || header->compression == rle4;
    // A short file doesn't get storage for a large picture: rows are as long as they say, and runs
    // that make thousands of pixels of each byte are nobody's.
    const std::uint64_t pixels = std::uint64_t(header->width) * std::uint64_t(header->height);
    const std::uint64_t least = runs ? pixels / 4096 : pixels * header->bits / 8;
    if (least > length) return HBITMAP{};
    std::unique_ptr<Bitmap> bitmap = make_bitmap({header->width, header->height}, 1.0);
    if (bitmap == nullptr) return HBITMAP{};
    const bool sound = runs ? RunReader(*header, file, bitmap->surface).read()
                            : read_rows(*header, file, bitmap->surface);
    return sound ? add_object(bitmap.release()) : HBITMAP{};
}

}  // namespace tarn::platform
