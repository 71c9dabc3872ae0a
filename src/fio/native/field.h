// Fields of the record, as the item routines see them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "fio/native/format.h"
#include "fio/native/record.h"
#include "fio/native/transfer.h"

namespace tarn::fio::native {

constexpr char fold(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Bytes from one element to the next; the elements of a REAL*10 lie apart.
inline std::ptrdiff_t stride_of(const IO_type& io) {
    return io.item_size == 10 ? static_cast<std::ptrdiff_t>(sizeof(long double)) : io.item_size;
}

// Takes `count` elements through `listed(io, element, size)` in a list-directed statement, else
// through the format and `edited`. False: one of them failed.
template <class Element, class Listed, class Edited>
[[nodiscard]] bool transfer_elements(IO_type& io, Element* element, std::int64_t count,
                                     Listed listed, Edited edited) {
    const std::int32_t size = io.item_size;
    for (; count > 0; --count, element += stride_of(io)) {
        if (io.format_ptr == nullptr) {
            if (!listed(io, element, size)) return false;
        } else if (!IO_process_format() || !edited(io, element, size)) {
            return false;
        }
    }
    return true;
}

// ---- Output ----

// Moves on behind an output field, and with it the place where a stream unit writes.
inline void pass_output(IO_type& io, std::int64_t width) {
    io.record_cursor += width;
    if (is_stream(io)) io.unit->file.stream_write_position += width;
}
// A field that its value doesn't fit.
inline void put_asterisks(IO_type& io, std::int64_t width) {
    std::memset(io.record_cursor, '*', static_cast<std::size_t>(width));
}

// ---- Input ----

// An input field on its way through a conversion.
struct InputField {
    const char* begin = nullptr;
    const char* end = nullptr;  // no further than the data of the record
    const char* next = nullptr;

    bool at_end() const { return next == end; }
    char take() { return *next++; }
};

inline InputField input_field(const IO_type& io, std::int64_t width) {
    const char* const begin = io.record_cursor;
    const std::int64_t there = data_end(io) - begin;
    const char* const end =
        begin + std::clamp<std::int64_t>(width, 0, std::max<std::int64_t>(there, 0));
    return {begin, end, begin};
}

// Ends an input field of `width` columns: the cursor goes behind it, or behind the comma that cut
// it short; a non-advancing READ that ran out of its record ends.
[[nodiscard]] bool pass_input(IO_type& io, const InputField& field, std::int64_t width, bool comma);

// A comma ends a field before its width does, except in strict mode.
inline bool ends_field(char c) {
    return c == ',' && !state().ansi_mode;
}

// Numeric and logical items under A editing.
[[nodiscard]] bool IO_write_numeric_into_char(IO_type& io, const void* item, std::int64_t size);
[[nodiscard]] bool IO_read_char_into_numeric(IO_type& io, void* item, std::int64_t size);

// B, O and Z input: the value of the field at the cursor, for an item of `size` bytes.
[[nodiscard]] bool IO_read_bin_oct_hex(IO_type& io, std::int64_t size, unsigned __int128& value);

// B, O and Z output of the bits of an item.
[[nodiscard]] bool write_bits_field(IO_type& io, unsigned __int128 bits);
// Opcodes 30, 31 and 32.
[[nodiscard]] bool IO_handle_ITx_format(IO_type& io, std::int64_t value);

}  // namespace tarn::fio::native
