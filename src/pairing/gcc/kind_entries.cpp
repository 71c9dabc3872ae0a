// gfortran's inquiries of kinds and sizes, and its operations on bits.
#include <algorithm>
#include <cstring>
#include <strings.h>

#include "frame/link_name.h"
#include "intrinsics/numbers/gnu_powers.h"
#include "pairing/gcc/data_block.h"

namespace tarn::gcc {
namespace {

// ---- Kinds ----

struct IntegerKind {
    int kind;
    int range;
};
constexpr IntegerKind integer_kinds[] = {{1, 2}, {2, 4}, {4, 9}, {8, 18}, {16, 38}};

struct RealKind {
    int kind;
    int precision;
    int range;
};
constexpr RealKind real_kinds[] = {{4, 6, 37}, {8, 15, 307}, {10, 18, 4931}, {16, 33, 4931}};

int selected_int_kind(int range) {
    for (const IntegerKind& row : integer_kinds)
        if (row.range >= range) return row.kind;
    return -1;
}

// Below 0: what can't be had. 1 the precision, 2 the range, 3 both, 4 both at once, 5 the radix.
int selected_real_kind(int precision, int range, int radix) {
    if (radix > 0 && radix != 2) return -5;
    bool precise = false;
    bool wide = false;
    for (const RealKind& row : real_kinds) {
        const bool enough = row.precision >= precision;
        const bool reaches = row.range >= range;
        if (enough && reaches) return row.kind;
        precise |= enough;
        wide |= reaches;
    }
    if (precise && wide) return -4;
    if (wide) return -1;
    return precise ? -2 : -3;
}

int value_or_0(const int* argument) {
    return argument != nullptr ? *argument : 0;
}

int selected_char_kind(const char* name, std::size_t length) {
    while (length > 0 && name[length - 1] == ' ') --length;
    const auto is = [&](const char* word) {
        return length == std::strlen(word) && strncasecmp(name, word, length) == 0;
    };
    if (is("ascii") || is("default")) return 1;
    return is("iso_10646") ? 4 : -1;
}

// ---- Bits ----

// The lowest `size` bits turn left by `shift`; the others stay.
template <class Integer>
Integer circular_shift(Integer value, std::int32_t shift, std::int32_t size) {
    using Bits = intrinsics::Unsigned<Integer>;
    constexpr int width = 8 * sizeof(Integer);
    if (shift < 0) shift += size;
    if (shift == 0 || shift == size) return value;
    const auto bits = static_cast<Bits>(value);
    const Bits mask = size < width ? (Bits{1} << size) - 1 : ~Bits{0};
    const Bits turned = bits << shift | (bits & mask) >> (size - shift);
    return static_cast<Integer>((bits & ~mask) | (turned & mask));
}

template <class Bits>
void move_bits(const Bits* from, std::int32_t from_place, std::int32_t length, Bits* to,
               std::int32_t to_place) {
    constexpr int width = 8 * sizeof(Bits);
    const Bits mask =
        length < width ? static_cast<Bits>((Bits{1} << length) - 1) : static_cast<Bits>(~Bits{0});
    const Bits moved = static_cast<Bits>((*from >> from_place & mask) << to_place);
    *to = static_cast<Bits>((*to & ~static_cast<Bits>(mask << to_place)) | moved);
}

std::int64_t size_of_array(const ArrayDescriptor& array) {
    std::int64_t size = 1;
    for (int i = 0; i < array.rank; ++i) size *= array.dimension[i].extent();
    return size;
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

TARN_EXPORT int _gfortran_selected_int_kind(const int* range) {
    return selected_int_kind(*range);
}
TARN_EXPORT int _gfortran_selected_real_kind(const int* precision, const int* range) {
    return selected_real_kind(value_or_0(precision), value_or_0(range), 0);
}
TARN_EXPORT int _gfortran_selected_real_kind2008(const int* precision, const int* range,
                                                 const int* radix) {
    return selected_real_kind(value_or_0(precision), value_or_0(range), value_or_0(radix));
}
TARN_EXPORT int _gfortran_selected_char_kind(std::size_t length, const char* name) {
    return selected_char_kind(name, length);
}

TARN_EXPORT std::int64_t _gfortran_size0(const ArrayDescriptor* array) {
    return size_of_array(*array);
}
TARN_EXPORT std::int64_t _gfortran_size1(const ArrayDescriptor* array, std::size_t dimension) {
    if (dimension < 1 || dimension > static_cast<std::size_t>(array->rank)) return 0;
    return array->dimension[dimension - 1].extent();
}

TARN_EXPORT std::int32_t _gfortran_ishftc4(std::int32_t value, std::int32_t shift,
                                           std::int32_t size) {
    return circular_shift(value, shift, size);
}
TARN_EXPORT std::int64_t _gfortran_ishftc8(std::int64_t value, std::int32_t shift,
                                           std::int32_t size) {
    return circular_shift(value, shift, size);
}
TARN_EXPORT __int128 _gfortran_ishftc16(__int128 value, std::int32_t shift, std::int32_t size) {
    return circular_shift(value, shift, size);
}
TARN_EXPORT void _gfortran_mvbits_i1(const std::uint8_t* from, const std::int32_t* from_place,
                                     const std::int32_t* length, std::uint8_t* to,
                                     const std::int32_t* to_place) {
    move_bits(from, *from_place, *length, to, *to_place);
}
TARN_EXPORT void _gfortran_mvbits_i2(const std::uint16_t* from, const std::int32_t* from_place,
                                     const std::int32_t* length, std::uint16_t* to,
                                     const std::int32_t* to_place) {
    move_bits(from, *from_place, *length, to, *to_place);
}
TARN_EXPORT void _gfortran_mvbits_i4(const std::uint32_t* from, const std::int32_t* from_place,
                                     const std::int32_t* length, std::uint32_t* to,
                                     const std::int32_t* to_place) {
    move_bits(from, *from_place, *length, to, *to_place);
}
TARN_EXPORT void _gfortran_mvbits_i8(const std::uint64_t* from, const std::int32_t* from_place,
                                     const std::int32_t* length, std::uint64_t* to,
                                     const std::int32_t* to_place) {
    move_bits(from, *from_place, *length, to, *to_place);
}
TARN_EXPORT void _gfortran_mvbits_i16(const unsigned __int128* from, const std::int32_t* from_place,
                                      const std::int32_t* length, unsigned __int128* to,
                                      const std::int32_t* to_place) {
    move_bits(from, *from_place, *length, to, *to_place);
}
}
