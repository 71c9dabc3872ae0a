// The entries on character values. What each does is told in include/tarn/characters.h.
#include <algorithm>
#include <cstdarg>
#include <cstring>

#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/characters/assignment.h"
#include "intrinsics/characters/sorting.h"
#include "intrinsics/characters/strings.h"
#include "intrinsics/characters/text.h"
#include "intrinsics/marks.h"
#include "tarn/characters.h"

namespace {

using namespace tarn::intrinsics;

std::size_t counted(std::intptr_t length) {
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

Text text_of(char* address, std::intptr_t length) {
    return {address, counted(length)};
}
ConstText text_of(const char* address, std::intptr_t length) {
    return {address, counted(length)};
}
const std::uint8_t* bytes(const char* text) {
    return reinterpret_cast<const std::uint8_t*>(text);
}

From from(const std::int32_t* back) {
    return present(back) && *back != 0 ? From::end : From::start;
}

std::int32_t position(const char* text, const char* set, const std::int32_t* back,
                      std::intptr_t length, std::intptr_t set_length, Stop stop) {
    const std::size_t count = counted(set_length);
    if (count == 0) return 0;
    return static_cast<std::int32_t>(
        position_of_set(bytes(text), counted(length), bytes(set), count, stop, from(back)));
}

std::int32_t place(const char* text, const char* part, std::intptr_t length,
                   std::intptr_t part_length, From from) {
    return static_cast<std::int32_t>(
        index_of(bytes(text), counted(length), bytes(part), counted(part_length), from));
}

void concatenate_listed(std::intptr_t count, char* destination, std::intptr_t length,
                        va_list arguments, Undefined undefined) {
    // A piece after the other, each into what the ones before it have left.
    std::intptr_t at = 0;
    for (std::intptr_t i = 0; i < count && at < length; ++i) {
        Characters piece{};
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the caller has started it
        piece.address = va_arg(arguments, char*);
        piece.length = va_arg(arguments, std::intptr_t);
        const std::intptr_t taken = std::min(std::max<std::intptr_t>(piece.length, 0), length - at);
        concatenate({destination + at, taken}, &piece, 1, Overlap::safe, undefined);
        at += taken;
    }
    std::ranges::fill(text_of(destination + at, length - at), ' ');
}

void concatenate_values(std::intptr_t count, const tarn_characters* values, Overlap overlap) {
    static_assert(sizeof(tarn_characters) == sizeof(Characters));
    const auto* const all = reinterpret_cast<const Characters*>(values);
    concatenate(all[0], all + 1, count, overlap, Undefined::allowed);
}

}  // namespace

using tarn::frame::ensure_up;

extern "C" {

// ---- Assignment and concatenation ----

TARN_EXPORT void __CCOPY(const char* source, char* destination, std::intptr_t source_length,
                         std::intptr_t destination_length) {
    copy_characters(source, destination, source_length, destination_length, Overlap::safe,
                    Undefined::allowed);
}
TARN_EXPORT void __CCOPY_U(const char* source, char* destination, std::intptr_t source_length,
                           std::intptr_t destination_length) {
    ensure_up();
    copy_characters(source, destination, source_length, destination_length, Overlap::safe,
                    Undefined::failure);
}
TARN_EXPORT void CCOPY_h(const char* source, char* destination, std::intptr_t source_length,
                         std::intptr_t destination_length) {
    copy_characters(source, destination, source_length, destination_length, Overlap::plain,
                    Undefined::allowed);
}
TARN_EXPORT void CHECK_CCOPY_h(const char* source, char* destination, std::intptr_t source_length,
                               std::intptr_t destination_length) {
    ensure_up();
    copy_characters(source, destination, source_length, destination_length, Overlap::failure,
                    Undefined::allowed);
}
TARN_EXPORT void tarn_concat(std::intptr_t count, char* destination, std::intptr_t length, ...) {
    va_list arguments;
    va_start(arguments, length);
    concatenate_listed(count, destination, length, arguments, Undefined::allowed);
    va_end(arguments);
}
TARN_EXPORT void tarn_concat_u(std::intptr_t count, char* destination, std::intptr_t length, ...) {
    ensure_up();
    va_list arguments;
    va_start(arguments, length);
    concatenate_listed(count, destination, length, arguments, Undefined::failure);
    va_end(arguments);
}
TARN_EXPORT void CONCAT_h(std::intptr_t count, const tarn_characters* values) {
    ensure_up();
    concatenate_values(count, values, Overlap::failure);
}
TARN_EXPORT void NCK_CONCAT_h(std::intptr_t count, const tarn_characters* values) {
    concatenate_values(count, values, Overlap::plain);
}

// ---- Comparison and Fortran's functions ----

TARN_EXPORT std::int32_t CCOMP_h(const char* one, const char* two, std::intptr_t one_length,
                                 std::intptr_t two_length) {
    return order_of(one, one_length, two, two_length);
}
TARN_EXPORT std::intptr_t JLEN_h(const char*, std::intptr_t length) {
    return length;
}
TARN_EXPORT std::int32_t SCAN_h(const char* text, const char* set, const std::int32_t* back,
                                std::intptr_t length, std::intptr_t set_length) {
    return position(text, set, back, length, set_length, Stop::at_member);
}
TARN_EXPORT std::int32_t VERIFY_h(const char* text, const char* set, const std::int32_t* back,
                                  std::intptr_t length, std::intptr_t set_length) {
    return position(text, set, back, length, set_length, Stop::at_stranger);
}
TARN_EXPORT std::int32_t INDEX9_h(const char* text, const char* part, const std::int32_t* back,
                                  std::intptr_t length, std::intptr_t part_length) {
    return place(text, part, length, part_length, from(back));
}
TARN_EXPORT std::int32_t INDEX_h(const char* text, const char* part, std::intptr_t length,
                                 std::intptr_t part_length) {
    return place(text, part, length, part_length, From::start);
}
TARN_EXPORT std::int32_t JNDEX_h(const char* text, const char* part, std::intptr_t length,
                                 std::intptr_t part_length) {
    return place(text, part, length, part_length, From::start);
}
TARN_EXPORT void ADJUSTL_h(char* result, std::intptr_t result_length, const char* text,
                           std::intptr_t length) {
    adjust_left(text_of(result, result_length), text_of(text, length));
}
TARN_EXPORT void ADJUSTR_h(char* result, std::intptr_t result_length, const char* text,
                           std::intptr_t length) {
    adjust_right(text_of(result, result_length), text_of(text, length));
}
TARN_EXPORT void REPEAT_h(char* result, std::intptr_t, const char* text, const std::int32_t* copies,
                          std::intptr_t length) {
    const std::size_t count = counted(length);
    if (count == 0) return;
    for (std::int32_t i = 0; i < *copies; ++i, result += count) std::memcpy(result, text, count);
}

// ---- The library's routines ----

TARN_EXPORT void UPCASE_h(char* text, std::intptr_t length) {
    to_upper_case(text_of(text, length));
}
TARN_EXPORT void UPCASE(char* text, std::intptr_t length) {
    to_upper_case(text_of(text, length));
}
TARN_EXPORT void LCASE_h(char* text, std::intptr_t length) {
    to_lower_case(text_of(text, length));
}
TARN_EXPORT void LCASE(char* text, std::intptr_t length) {
    to_lower_case(text_of(text, length));
}
TARN_EXPORT void TRIM_h(char* text, std::intptr_t length) {
    move_left(text_of(text, length));
}
TARN_EXPORT void TRIM(char* text, std::intptr_t length) {
    move_left(text_of(text, length));
}
TARN_EXPORT void TRIMR_h(char* text, std::intptr_t length) {
    move_right(text_of(text, length));
}
TARN_EXPORT void CENTRE_h(char* result, std::intptr_t result_length, const char* source,
                          const std::int16_t* width, std::intptr_t source_length) {
    centre(text_of(result, result_length), text_of(source, source_length), *width);
}
TARN_EXPORT void CHAR_FILL_h(char* text, const char* value, std::intptr_t length) {
    std::ranges::fill(text_of(text, length), *value);
}
TARN_EXPORT std::int32_t NONBLK_h(const char* text, std::intptr_t length) {
    return first_nonblank(text_of(text, length));
}
TARN_EXPORT std::int32_t NONBLK(const char* text, std::intptr_t length) {
    return first_nonblank(text_of(text, length));
}
TARN_EXPORT void APPEND_STRING_h(char* text, const char* addition, std::intptr_t length,
                                 std::intptr_t addition_length) {
    append(text_of(text, length), text_of(addition, addition_length));
}
TARN_EXPORT void CNUM_h(char* result, std::intptr_t result_length, const std::int32_t* value) {
    write_digits(text_of(result, result_length), *value);
}
TARN_EXPORT void CNUM(char* result, std::intptr_t result_length, const std::int32_t* value) {
    write_digits(text_of(result, result_length), *value);
}
TARN_EXPORT void SAYINT_h(char* result, std::intptr_t result_length, const std::int32_t* value) {
    write_words(text_of(result, result_length), *value);
}
TARN_EXPORT void SAYINT(char* result, std::intptr_t result_length, const std::int32_t* value) {
    write_words(text_of(result, result_length), *value);
}

// ---- Sorting ----

TARN_EXPORT void ISORT_h(std::int32_t* index, const std::int32_t* values,
                         const std::int32_t* count) {
    sort_index(index, values, *count);
}
TARN_EXPORT void RSORT_h(std::int32_t* index, const float* values, const std::int32_t* count) {
    sort_index(index, values, *count);
}
TARN_EXPORT void DSORT_h(std::int32_t* index, const double* values, const std::int32_t* count) {
    sort_index(index, values, *count);
}
TARN_EXPORT void CHSORT_h(std::int32_t* index, const char* values, const std::int32_t* count,
                          std::intptr_t length) {
    sort_characters(index, values, *count, counted(length));
}
TARN_EXPORT void CHSORT(std::int32_t* index, const char* values, const std::int32_t* count,
                        std::int32_t* status, std::intptr_t length) {
    *status = *count < 1 ? 4 : 0;
    sort_characters(index, values, *count, counted(length));
}
TARN_EXPORT void CHSEEK_h(const char* key, const char* values, const std::int32_t* count,
                          std::int32_t* position, std::intptr_t key_length, std::intptr_t length) {
    *position =
        find_sorted(key, key_length, values, *count, static_cast<std::intptr_t>(counted(length)));
}
}
