// gfortran's operations on CHARACTER values, of kind 1 and 4. Results of a length that isn't known
// when the program is compiled come in storage that the program gives back with `free`, unless
// their length is 0.
#include <algorithm>
#include <cstdarg>
#include <cstdlib>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/characters/strings.h"

namespace tarn::gcc {
namespace {

using intrinsics::From;
using intrinsics::Stop;
using Narrow = std::uint8_t;
using Wide = std::uint32_t;

From from(std::uint32_t back) {
    return back != 0 ? From::end : From::start;
}

// Never null, for the program frees what it gets.
template <class Char>
Char* storage_for(std::size_t length) {
    std::size_t bytes = 0;
    const bool too_long = __builtin_mul_overflow(length, sizeof(Char), &bytes);
    void* const block = too_long ? nullptr : std::malloc(std::max<std::size_t>(bytes, 1));
    if (block == nullptr) {
        frame::ensure_up();
        failure::fail(408);
    }
    return static_cast<Char*>(block);
}

template <class Char>
Char* empty() {
    static Char nothing;
    return &nothing;
}

template <class Char>
void concatenate(std::size_t room, Char* result, std::size_t one_length, const Char* one,
                 std::size_t two_length, const Char* two) {
    const std::size_t first = std::min(room, one_length);
    intrinsics::assign(result, first, one, first);
    intrinsics::assign(result + first, room - first, two, two_length);
}

template <class Char>
void trim(std::size_t* length, Char** result, std::size_t text_length, const Char* text) {
    *length = intrinsics::trimmed_length(text, text_length);
    *result = *length == 0 ? empty<Char>() : storage_for<Char>(*length);
    intrinsics::assign(*result, *length, text, *length);
}

// MAX (`sign` 1) and MIN (-1). Arguments that are absent count for nothing; of equal ones the
// first is the result, padded to the length of the longest.
template <class Char>
void extreme(std::size_t* length, Char** result, int sign, int count, va_list arguments) {
    const Char* best = nullptr;
    std::size_t best_length = 0;
    *length = 0;
    for (int i = 0; i < count; ++i) {
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the caller has started it
        const std::size_t next_length = va_arg(arguments, std::size_t);
        const Char* const next = va_arg(arguments, const Char*);
        if (next == nullptr) continue;
        *length = std::max(*length, next_length);
        if (best == nullptr ||
            intrinsics::compare(next, next_length, best, best_length) * sign > 0) {
            best = next;
            best_length = next_length;
        }
    }
    *result = *length == 0 ? empty<Char>() : storage_for<Char>(*length);
    if (best != nullptr) intrinsics::assign(*result, *length, best, best_length);
}

// A SELECT CASE of characters: ranges that don't overlap, in ascending order. One without any
// bound is the default and stands first.
template <class Char>
struct Case {
    const Char* low;  // null: no bound below
    std::size_t low_length;
    const Char* high;  // null: no bound above
    std::size_t high_length;
    std::int32_t target;
};

template <class Char>
int select(const Case<Char>* cases, int count, const Char* text, std::size_t length) {
    int otherwise = -1;
    const Case<Char>* const end = cases + count;
    if (cases != end && cases->low == nullptr && cases->high == nullptr) {
        otherwise = cases->target;
        ++cases;
    }
    const auto begins_behind = [&](const Char*, const Case<Char>& range) {
        return range.low != nullptr &&
               intrinsics::compare(text, length, range.low, range.low_length) < 0;
    };
    const Case<Char>* const behind = std::upper_bound(cases, end, text, begins_behind);
    if (behind == cases) return otherwise;
    const Case<Char>& range = behind[-1];
    const bool inside = range.high == nullptr ||
                        intrinsics::compare(text, length, range.high, range.high_length) <= 0;
    return inside ? range.target : otherwise;
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;
namespace intrinsics = tarn::intrinsics;

extern "C" {

// ---- Comparison ----

TARN_EXPORT int _gfortran_compare_string(std::size_t one_length, const Narrow* one,
                                         std::size_t two_length, const Narrow* two) {
    return intrinsics::compare(one, one_length, two, two_length);
}
TARN_EXPORT int _gfortran_compare_string_char4(std::size_t one_length, const Wide* one,
                                               std::size_t two_length, const Wide* two) {
    return intrinsics::compare(one, one_length, two, two_length);
}
TARN_EXPORT int _gfortran_select_string(const Case<Narrow>* cases, int count, const Narrow* text,
                                        std::size_t length) {
    return select(cases, count, text, length);
}
TARN_EXPORT int _gfortran_select_string_char4(const Case<Wide>* cases, int count, const Wide* text,
                                              std::size_t length) {
    return select(cases, count, text, length);
}

// ---- Searching ----

TARN_EXPORT std::size_t _gfortran_string_len_trim(std::size_t length, const Narrow* text) {
    return intrinsics::trimmed_length(text, length);
}
TARN_EXPORT std::size_t _gfortran_string_len_trim_char4(std::size_t length, const Wide* text) {
    return intrinsics::trimmed_length(text, length);
}
TARN_EXPORT std::size_t _gfortran_string_index(std::size_t length, const Narrow* text,
                                               std::size_t part_length, const Narrow* part,
                                               std::uint32_t back) {
    return intrinsics::index_of(text, length, part, part_length, from(back));
}
TARN_EXPORT std::size_t _gfortran_string_index_char4(std::size_t length, const Wide* text,
                                                     std::size_t part_length, const Wide* part,
                                                     std::uint32_t back) {
    return intrinsics::index_of(text, length, part, part_length, from(back));
}
TARN_EXPORT std::size_t _gfortran_string_scan(std::size_t length, const Narrow* text,
                                              std::size_t count, const Narrow* set,
                                              std::uint32_t back) {
    return intrinsics::position_of_set(text, length, set, count, Stop::at_member, from(back));
}
TARN_EXPORT std::size_t _gfortran_string_scan_char4(std::size_t length, const Wide* text,
                                                    std::size_t count, const Wide* set,
                                                    std::uint32_t back) {
    return intrinsics::position_of_set(text, length, set, count, Stop::at_member, from(back));
}
TARN_EXPORT std::size_t _gfortran_string_verify(std::size_t length, const Narrow* text,
                                                std::size_t count, const Narrow* set,
                                                std::uint32_t back) {
    return intrinsics::position_of_set(text, length, set, count, Stop::at_stranger, from(back));
}
TARN_EXPORT std::size_t _gfortran_string_verify_char4(std::size_t length, const Wide* text,
                                                      std::size_t count, const Wide* set,
                                                      std::uint32_t back) {
    return intrinsics::position_of_set(text, length, set, count, Stop::at_stranger, from(back));
}

// ---- New values ----

TARN_EXPORT void _gfortran_concat_string(std::size_t room, Narrow* result, std::size_t one_length,
                                         const Narrow* one, std::size_t two_length,
                                         const Narrow* two) {
    concatenate(room, result, one_length, one, two_length, two);
}
TARN_EXPORT void _gfortran_concat_string_char4(std::size_t room, Wide* result,
                                               std::size_t one_length, const Wide* one,
                                               std::size_t two_length, const Wide* two) {
    concatenate(room, result, one_length, one, two_length, two);
}
TARN_EXPORT void _gfortran_string_trim(std::size_t* length, Narrow** result,
                                       std::size_t text_length, const Narrow* text) {
    trim(length, result, text_length, text);
}
TARN_EXPORT void _gfortran_string_trim_char4(std::size_t* length, Wide** result,
                                             std::size_t text_length, const Wide* text) {
    trim(length, result, text_length, text);
}
TARN_EXPORT void _gfortran_adjustl(Narrow* result, std::size_t length, const Narrow* text) {
    intrinsics::adjust_left(result, text, length);
}
TARN_EXPORT void _gfortran_adjustl_char4(Wide* result, std::size_t length, const Wide* text) {
    intrinsics::adjust_left(result, text, length);
}
TARN_EXPORT void _gfortran_adjustr(Narrow* result, std::size_t length, const Narrow* text) {
    intrinsics::adjust_right(result, text, length);
}
TARN_EXPORT void _gfortran_adjustr_char4(Wide* result, std::size_t length, const Wide* text) {
    intrinsics::adjust_right(result, text, length);
}
TARN_EXPORT void _gfortran_string_minmax(std::size_t* length, Narrow** result, int sign, int count,
                                         ...) {
    va_list arguments;
    va_start(arguments, count);
    extreme(length, result, sign, count, arguments);
    va_end(arguments);
}
TARN_EXPORT void _gfortran_string_minmax_char4(std::size_t* length, Wide** result, int sign,
                                               int count, ...) {
    va_list arguments;
    va_start(arguments, count);
    extreme(length, result, sign, count, arguments);
    va_end(arguments);
}

// ---- From one kind to the other; of a character that kind 1 doesn't have, the low byte stays ----

TARN_EXPORT void _gfortran_convert_char1_to_char4(Wide** result, std::size_t length,
                                                  const Narrow* text) {
    *result = storage_for<Wide>(length);
    std::copy_n(text, length, *result);
}
TARN_EXPORT void _gfortran_convert_char4_to_char1(Narrow** result, std::size_t length,
                                                  const Wide* text) {
    *result = storage_for<Narrow>(length);
    std::transform(text, text + length, *result, [](Wide c) { return static_cast<Narrow>(c); });
}
}
