// Input editing in the gnu dialect: one field into one item. Pure functions over the characters
// of the field, which the caller has found and, under PAD='YES', may have cut at the record's end.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/gnu/fault.h"
#include "fio/gnu/item.h"
#include "fio/modes.h"

namespace tarn::fio {

// What a field routine found. `fault.number` 0: the item is stored; otherwise it is as it was.
struct FieldResult {
    Fault fault{0, 0};
    std::size_t position = 0;  // of the character at fault, in the field
};

// The length of the numeric or logical field that begins at `begin` and may take `width`
// characters: a comma ends it early, and the next field begins behind the comma. That holds for
// the records of files, and only while the decimal mark is the point. A record of an internal file
// has no such commas: there they are characters at fault. A CHARACTER field never ends early.
std::size_t field_end(const char* begin, std::size_t width, const EditModes& modes);

// Iw.m, and G for an INTEGER. kind: 1, 2, 4, 8, 16.
FieldResult get_integer(const char* field, std::size_t width, void* item, int kind,
                        const EditModes& modes);
// Bw, Ow, Zw into any item of `size` bytes. base: 2, 8, 16.
FieldResult get_bits(const char* field, std::size_t width, int base, void* item, std::size_t size,
                     const EditModes& modes);
// Lw, and G for a LOGICAL.
FieldResult get_logical(const char* field, std::size_t width, void* item, int kind);
// Fw.d, Ew.d, Dw.d, ENw.d, ESw.d, Gw.d. `scale` of the modes counts where no exponent stands.
FieldResult get_real(const char* field, std::size_t width, std::int32_t d, void* item, int kind,
                     const EditModes& modes);

}  // namespace tarn::fio
