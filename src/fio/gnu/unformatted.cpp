#include "fio/gnu/unformatted.h"

#include <algorithm>

#include "fio/unit.h"

namespace tarn::fio {
namespace {

// Items that don't lie one behind the other, or have the other byte order, pass through here.
constexpr std::size_t chunk_size = 4096;

// What an item is for the file: `unit` bytes are turned around as one.
struct Layout {
    std::size_t bytes;  // of an item
    std::size_t unit;
};

Layout layout_of(ItemType type, int kind, std::size_t size) {
    switch (type) {
        case ItemType::character:
            return {size * static_cast<std::size_t>(kind), static_cast<std::size_t>(kind)};
        case ItemType::complex:
            return {size, size / 2};
        default:
            return {size, size};
    }
}

std::uint16_t turned(std::uint16_t value) {
    return __builtin_bswap16(value);
}
std::uint32_t turned(std::uint32_t value) {
    return __builtin_bswap32(value);
}
std::uint64_t turned(std::uint64_t value) {
    return __builtin_bswap64(value);
}

template <class Word>
void turn(char* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, bytes += sizeof(Word)) {
        Word value;
        std::memcpy(&value, bytes, sizeof value);
        value = turned(value);
        std::memcpy(bytes, &value, sizeof value);
    }
}

void turn_128(char* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, bytes += 16) {
        std::uint64_t half[2];
        std::memcpy(half, bytes, sizeof half);
        const std::uint64_t whole[2] = {turned(half[1]), turned(half[0])};
        std::memcpy(bytes, whole, sizeof whole);
    }
}

// Turns `count` units of bytes around. REAL(10) is turned with the bytes that pad it.
void turn_bytes(char* bytes, std::size_t unit, std::size_t count) {
    switch (unit) {
        case 2:
            return turn<std::uint16_t>(bytes, count);
        case 4:
            return turn<std::uint32_t>(bytes, count);
        case 8:
            return turn<std::uint64_t>(bytes, count);
        case 16:
            return turn_128(bytes, count);
        default:
            break;
    }
}

void write_turned(Statement& s, const char* bytes, std::size_t unit, std::size_t count) {
    alignas(16) char chunk[chunk_size];
    while (count > 0 && !s.failed) {
        const std::size_t some = std::min(count, chunk_size / unit);
        std::memcpy(chunk, bytes, some * unit);
        turn_bytes(chunk, unit, some);
        put_raw(s, chunk, some * unit);
        bytes += some * unit;
        count -= some;
    }
}

void write_run(Statement& s, const char* bytes, std::size_t count, std::size_t unit, bool turn) {
    if (turn) return write_turned(s, bytes, unit, count / unit);
    put_raw(s, bytes, count);
}

void read_run(Statement& s, char* bytes, std::size_t count, std::size_t unit, bool turn) {
    const std::size_t got = take_raw(s, bytes, count);
    if (turn) turn_bytes(bytes, unit, got / unit);
}

void write_scattered(Statement& s, const char* items, const Layout& layout, bool turn,
                     std::ptrdiff_t stride, std::size_t count) {
    alignas(16) char chunk[chunk_size];
    const std::size_t most = chunk_size / layout.bytes;
    while (count > 0 && !s.failed) {
        const std::size_t some = std::min(count, most);
        char* to = chunk;
        for (std::size_t i = 0; i < some; ++i, items += stride, to += layout.bytes) {
            copy_item(to, items, layout.bytes);
        }
        const auto bytes = static_cast<std::size_t>(to - chunk);
        if (turn) turn_bytes(chunk, layout.unit, bytes / layout.unit);
        put_raw(s, chunk, bytes);
        count -= some;
    }
}

void read_scattered(Statement& s, char* items, const Layout& layout, bool turn,
                    std::ptrdiff_t stride, std::size_t count) {
    alignas(16) char chunk[chunk_size];
    const std::size_t most = chunk_size / layout.bytes;
    while (count > 0 && !s.failed) {
        const std::size_t some = std::min(count, most);
        const std::size_t got = take_raw(s, chunk, some * layout.bytes);
        if (turn) turn_bytes(chunk, layout.unit, got / layout.unit);
        const char* from = chunk;
        for (std::size_t i = 0; i < got / layout.bytes; ++i, items += stride) {
            copy_item(items, from, layout.bytes);
            from += layout.bytes;
        }
        if (got < some * layout.bytes) return;
        count -= some;
    }
}

}  // namespace

void begin_unformatted(Statement& s) {
    const GnuConnection& gnu = s.unit->gnu;
    s.raw.native = gnu.native_records;
    s.raw.swapped = gnu.endian == Endian::swap;
    if (s.reading) return begin_raw_input(s);
    begin_raw_output(s);
}

void transfer_unformatted(Statement& s, ItemType type, char* items, int kind, std::size_t size,
                          std::ptrdiff_t stride, std::size_t count) {
    const Layout layout = layout_of(type, kind, size);
    if (layout.bytes == 0 || count == 0) return;
    const bool turn = s.raw.swapped && layout.unit > 1;
    const bool dense = count == 1 || stride == static_cast<std::ptrdiff_t>(layout.bytes);
    if (dense) {
        if (s.reading) return read_run(s, items, layout.bytes * count, layout.unit, turn);
        return write_run(s, items, layout.bytes * count, layout.unit, turn);
    }
    if (layout.bytes <= chunk_size / 2) {
        if (s.reading) return read_scattered(s, items, layout, turn, stride, count);
        return write_scattered(s, items, layout, turn, stride, count);
    }
    for (; count > 0 && !s.failed; --count, items += stride) {
        if (s.reading) {
            read_run(s, items, layout.bytes, layout.unit, turn);
        } else {
            write_run(s, items, layout.bytes, layout.unit, turn);
        }
    }
}

void end_unformatted(Statement& s) {
    if (s.reading) {
        end_raw_input(s);
    } else {
        end_raw_output(s);
    }
}

}  // namespace tarn::fio
