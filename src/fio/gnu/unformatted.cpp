#include "fio/gnu/unformatted.h"

#include <algorithm>

#include "fio/gnu/byte_order.h"
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
    return {raw_size(type, kind, size), turned_size(type, kind, size)};
}

// Turned on the way into the buffer, a load at a time.
void write_turned(Statement& s, const char* bytes, std::size_t unit, std::size_t count) {
    alignas(16) char chunk[chunk_size];
    while (count > 0 && !s.failed) {
        const std::size_t room = static_cast<std::size_t>(s.limit - s.cursor) / unit;
        std::size_t some = std::min(count, room);
        if (some > 0) {
            copy_turned(s.cursor, bytes, unit, some);
            s.cursor += some * unit;
        } else {
            some = std::min(count, chunk_size / unit);
            copy_turned(chunk, bytes, unit, some);
            put_raw(s, chunk, some * unit);
        }
        bytes += some * unit;
        count -= some;
    }
}

void write_run(Statement& s, const char* bytes, std::size_t count, std::size_t unit, bool turn) {
    if (turn) return write_turned(s, bytes, unit, count / unit);
    put_raw(s, bytes, count);
}

void read_run(Statement& s, char* bytes, std::size_t count, std::size_t unit, bool turn) {
    if (!turn) {
        take_raw(s, bytes, count);
        return;
    }
    // By pieces that are still in the processor's cache when they are turned.
    constexpr std::size_t piece = std::size_t{1} << 18;
    while (count > 0 && !s.failed) {
        const std::size_t some = std::min(count, piece);
        const std::size_t got = take_raw(s, bytes, some);
        copy_turned(bytes, bytes, unit, got / unit);
        if (got < some) return;
        bytes += some;
        count -= some;
    }
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
        if (turn) copy_turned(chunk, chunk, layout.unit, bytes / layout.unit);
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
        if (turn) copy_turned(chunk, chunk, layout.unit, got / layout.unit);
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

void put_raw_item(Statement& s, ItemType type, void* item, int kind, std::size_t size) {
    if (!s.failed) put_raw(s, static_cast<const char*>(item), raw_size(type, kind, size));
}

void take_raw_item(Statement& s, ItemType type, void* item, int kind, std::size_t size) {
    if (!s.failed) take_raw(s, static_cast<char*>(item), raw_size(type, kind, size));
}

void begin_unformatted(Statement& s) {
    const GnuConnection& gnu = s.unit->gnu;
    s.raw.native = gnu.native_records;
    s.raw.swapped = gnu.endian == Endian::swap;
    if (!s.raw.swapped) s.transfer_item = s.reading ? take_raw_item : put_raw_item;
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
