// Output editing in the gnu dialect: one item into one field. Pure functions over a buffer: no
// record, no statement. Each writes at `out` and returns the end of what it wrote; the caller has
// asked for the room before.
//
// Every field is what gfortran 12 prints, its habits at the edges included. Where its run-time
// writes beyond its own buffers (a scale factor far below -d, hundreds of digits under ROUND=), the
// field is what the rules say.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/format/program.h"
#include "fio/gnu/item.h"
#include "fio/modes.h"

namespace tarn::fio {

// The most bytes that the put_ function of the same item can write.
std::size_t real_field_bound(const FieldEdit& edit, const void* value, int kind,
                             const EditModes& modes);
// F, E, D, EN, ES, EX, G of a REAL (one part of a COMPLEX). Null when E or D, also as G chooses it,
// has no digit to show (d = 0 under a scale factor of 0) or the scale factor k isn't within
// -d < k < d + 2: a fault of the format.
char* put_real(char* out, const void* value, int kind, const FieldEdit& edit,
               const EditModes& modes);

// I of an INTEGER; G too.
char* put_integer(char* out, Int128 value, int kind, const FieldEdit& edit, const EditModes& modes);
std::size_t integer_field_bound(const FieldEdit& edit, int kind);
// B, O, Z of any item of `size` bytes, little-endian as it lies in memory.
char* put_bits(char* out, const void* value, std::size_t size, const FieldEdit& edit);
std::size_t bits_field_bound(const FieldEdit& edit, std::size_t size);
char* put_logical(char* out, bool value, const FieldEdit& edit);

// The items of list-directed output, without the separator before them: the fixed widths of the
// dialect (INTEGER(4) 11, REAL(8) 25 ...), a COMPLEX as "(re,im)" right-justified as the dialect
// has it.
constexpr int list_integer_width(int kind) {
    switch (kind) {
        case 1:
            return 4;
        case 2:
            return 6;
        case 4:
            return 11;
        case 8:
            return 20;
        default:
            return 40;
    }
}
char* put_list_integer(char* out, Int128 value, int kind, const EditModes& modes);
char* put_list_logical(char* out, bool value, int kind);
char* put_list_real(char* out, const void* value, int kind, const EditModes& modes);
char* put_list_complex(char* out, const void* value, int kind, const EditModes& modes);
inline constexpr std::size_t list_item_bound = 128;  // enough for each of these four

}  // namespace tarn::fio
