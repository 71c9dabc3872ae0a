// Shifts, counts and moves of bits. Integers are taken as their bits.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "intrinsics/numbers/failures.h"

namespace tarn::intrinsics::numbers {

template <class Integer>
inline constexpr int bit_size = 8 * sizeof(Integer);

template <class Integer>
auto bits_of(Integer value) {
    return static_cast<std::make_unsigned_t<Integer>>(value);
}

// True when the count's magnitude reaches the size, so that nothing of the value stays. Any other
// negative count is failure 457.
template <class Integer>
bool shifts_all_out(std::int32_t count) {
    if (count >= bit_size<Integer> || count <= -bit_size<Integer>) return true;
    if (count < 0) fail(negative_shift);
    return false;
}

template <class Integer>
Integer shift_left(Integer value, std::int32_t count) {
    if (shifts_all_out<Integer>(count)) return 0;
    return static_cast<Integer>(bits_of(value) << count);
}
template <class Integer>
Integer shift_right(Integer value, std::int32_t count) {
    if (shifts_all_out<Integer>(count)) return 0;
    return static_cast<Integer>(bits_of(value) >> count);
}
// The sign fills from the left; a value that is shifted out as a whole leaves 0 here too, where
// Fortran 2008 would leave signs.
template <class Integer>
Integer arithmetic_shift(Integer value, std::int32_t count) {
    if (shifts_all_out<Integer>(count)) return 0;
    return static_cast<Integer>(value >> count);
}

// The lowest `size` bits turn left by `shift`, which is less than `size` in magnitude.
template <class Integer>
Integer rotate_low_bits(Integer value, std::int32_t shift, std::int32_t size) {
    using Bits = std::make_unsigned_t<Integer>;
    if (shift < 0) shift += size;
    if (shift == 0) return value;
    const Bits mask = size < bit_size<Integer> ? static_cast<Bits>((Bits{1} << size) - 1)
                                               : static_cast<Bits>(~Bits{0});
    const Bits bits = bits_of(value);
    const auto low = static_cast<Bits>(bits & mask);
    const auto turned = static_cast<Bits>((low << shift | low >> (size - shift)) & mask);
    return static_cast<Integer>((bits & static_cast<Bits>(~mask)) | turned);
}

// A shift or a size outside the bits of the type is failure 217.
template <class Integer>
Integer circular_shift(Integer value, std::int32_t shift, std::int32_t size) {
    constexpr int bits = bit_size<Integer>;
    if (shift < -bits || shift > bits || size < 0 || size > bits) fail(circular_shift_out_of_range);
    return size == 0 ? value : rotate_low_bits(value, shift % size, size);
}

// The form that takes any size.
inline std::int32_t circular_shift_of_any_size(std::int32_t value, std::int32_t shift,
                                               std::int32_t size) {
    if (size < 1) return value;
    if (size > 32) size = 32;
    return rotate_low_bits(value, shift % size, size);
}

template <class Integer>
std::int32_t leading_zeros(Integer value) {
    return std::countl_zero(bits_of(value));
}
template <class Integer>
std::int32_t trailing_zeros(Integer value) {
    return std::countr_zero(bits_of(value));
}
template <class Integer>
std::int32_t population(Integer value) {
    return std::popcount(bits_of(value));
}
template <class Integer>
std::int32_t parity(Integer value) {
    return population(value) & 1;
}

// Bits that lie past the end of `from` are zeros, and those past the end of `to` are lost. A place
// or a length that is negative or above the size is failure 386.
template <class Integer>
void move_bits(Integer from, std::int32_t from_place, std::int32_t length, Integer& to,
               std::int32_t to_place) {
    constexpr int bits = bit_size<Integer>;
    const auto outside = [](std::int32_t value) { return value < 0 || value > bits; };
    if (outside(from_place) || outside(length) || outside(to_place)) fail(move_bits_out_of_range);
    // In 64 bits a shift by the whole size of these types is defined.
    static_assert(bits < 64);
    const std::uint64_t mask = (std::uint64_t{1} << length) - 1;
    const std::uint64_t moved = (std::uint64_t{bits_of(from)} >> from_place & mask) << to_place;
    to = static_cast<Integer>((bits_of(to) & ~(mask << to_place)) | moved);
}

}  // namespace tarn::intrinsics::numbers
