// The entries of bits and kinds. What each does is told in include/tarn/numbers.h.
#include "frame/link_name.h"
#include "intrinsics/marks.h"
#include "intrinsics/numbers/bits.h"
#include "intrinsics/numbers/kinds.h"
#include "tarn/numbers.h"

using namespace tarn::intrinsics::numbers;

namespace {

std::int32_t value_or_0(const std::int32_t* argument) {
    return tarn::intrinsics::present(argument) ? *argument : 0;
}

}  // namespace

#define SHIFT(letter, name, Integer, function)                                              \
    TARN_EXPORT Integer letter##name##_h(const Integer* value, const std::int32_t* count) { \
        return function(*value, *count);                                                    \
    }
#define BIT_COUNT(letter, name, Integer, function)                    \
    TARN_EXPORT std::int32_t letter##name##_d(const Integer* value) { \
        return function(*value);                                      \
    }

extern "C" {

TARN_SHIFTS(SHIFT)
TARN_BIT_COUNTS(BIT_COUNT)

TARN_EXPORT std::int32_t __ISHFTC(std::int32_t value, std::int32_t shift, std::int32_t size) {
    return circular_shift_of_any_size(value, shift, size);
}
TARN_EXPORT std::int8_t __HISHFTC(std::int8_t value, std::int32_t shift, std::int32_t size) {
    return circular_shift(value, shift, size);
}
TARN_EXPORT std::int16_t __IISHFTC(std::int16_t value, std::int32_t shift, std::int32_t size) {
    return circular_shift(value, shift, size);
}
TARN_EXPORT std::int32_t __JISHFTC(std::int32_t value, std::int32_t shift, std::int32_t size) {
    return circular_shift(value, shift, size);
}
TARN_EXPORT std::int64_t __QISHFTC(std::int64_t value, std::int32_t shift, std::int32_t size) {
    return circular_shift(value, shift, size);
}

TARN_EXPORT void MVBITSI1_h(const std::int8_t* from, const std::int32_t* from_place,
                            const std::int32_t* length, std::int8_t* to,
                            const std::int32_t* to_place) {
    move_bits(*from, *from_place, *length, *to, *to_place);
}
TARN_EXPORT void MVBITSI2_h(const std::int16_t* from, const std::int32_t* from_place,
                            const std::int32_t* length, std::int16_t* to,
                            const std::int32_t* to_place) {
    move_bits(*from, *from_place, *length, *to, *to_place);
}
TARN_EXPORT void MVBITSI4_h(const std::int32_t* from, const std::int32_t* from_place,
                            const std::int32_t* length, std::int32_t* to,
                            const std::int32_t* to_place) {
    move_bits(*from, *from_place, *length, *to, *to_place);
}

TARN_EXPORT std::int32_t SELECTED_INT_KIND_h(const std::int32_t* range) {
    return selected_int_kind(value_or_0(range));
}
TARN_EXPORT std::int32_t SELECTED_INT_KIND1_h(const std::int32_t* range) {
    return selected_int_kind_wide(value_or_0(range));
}
TARN_EXPORT std::int32_t SELECTED_INT_KINDA_h(const std::int32_t* range) {
    return selected_int_size(value_or_0(range));
}
TARN_EXPORT std::int32_t SELECTED_REAL_KIND_h(const std::int32_t* precision,
                                              const std::int32_t* range) {
    return selected_real_kind(value_or_0(precision), value_or_0(range));
}
TARN_EXPORT std::int32_t SELECTED_REAL_KIND2_h(const std::int32_t* precision,
                                               const std::int32_t* range) {
    return selected_real_kind(value_or_0(precision), value_or_0(range), 4);
}
TARN_EXPORT std::int32_t SELECTED_REAL_KINDA_h(const std::int32_t* precision,
                                               const std::int32_t* range) {
    return selected_real_size(value_or_0(precision), value_or_0(range));
}
}
