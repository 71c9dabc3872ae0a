#include "intrinsics/characters/assignment.h"

#include <algorithm>
#include <cstring>

#include "failure/failure.h"
#include "intrinsics/characters/strings.h"

namespace tarn::intrinsics {
namespace {

constexpr int illegal_assignment = 13;
constexpr int overlapping_right_side = 38;
constexpr int undefined_character = 405;

// The address that the last checked copy of a single character read. A variable that is copied
// twice in a row isn't looked at again.
constinit const char* last_single_source = nullptr;

std::size_t counted(std::intptr_t length) {
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

const std::uint8_t* bytes(const char* text) {
    return reinterpret_cast<const std::uint8_t*>(text);
}

bool overlaps(const char* one, std::size_t one_length, const char* two, std::size_t two_length) {
    return one_length != 0 && two_length != 0 && one < two + two_length && two < one + one_length;
}

void require_defined(const char* source, std::size_t count) {
    if (count != 0 && std::memchr(source, undefined_byte, count) != nullptr)
        failure::fail(undefined_character);
}

void copy_forwards(const char* source, char* destination, std::size_t count) {
    const bool smears = source < destination && destination < source + count;
    if (!smears) {
        std::memmove(destination, source, count);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) destination[i] = source[i];
}

void move(const char* source, char* destination, std::size_t count, Overlap overlap) {
    if (count == 0) return;
    if (overlap == Overlap::safe) {
        std::memmove(destination, source, count);
    } else {
        copy_forwards(source, destination, count);
    }
}

void fill(char* text, std::size_t count) {
    if (count != 0) std::memset(text, ' ', count);
}

}  // namespace

void copy_characters(const char* source, char* destination, std::intptr_t source_length,
                     std::intptr_t destination_length, Overlap overlap, Undefined undefined) {
    const std::size_t length = counted(source_length);
    const std::size_t room = counted(destination_length);
    if (overlap == Overlap::failure && overlaps(source, length, destination, room))
        failure::fail(illegal_assignment);
    const std::size_t count = std::min(length, room);
    if (undefined == Undefined::failure) {
        if (length == 1 && room == 1) {
            if (source != last_single_source) require_defined(source, 1);
            last_single_source = source;
        } else {
            require_defined(source, count);
        }
    }
    move(source, destination, count, overlap);
    fill(destination + count, room - count);
}

void concatenate(Characters destination, const Characters* pieces, std::intptr_t count,
                 Overlap overlap, Undefined undefined) {
    const std::size_t room = counted(destination.length);
    std::size_t at = 0;
    for (std::intptr_t i = 0; i < count && at < room; ++i) {
        const std::size_t length = counted(pieces[i].length);
        if (overlap == Overlap::failure &&
            overlaps(pieces[i].address, length, destination.address, room))
            failure::fail(overlapping_right_side);
        const std::size_t taken = std::min(length, room - at);
        if (undefined == Undefined::failure) require_defined(pieces[i].address, taken);
        move(pieces[i].address, destination.address + at, taken, overlap);
        at += taken;
    }
    fill(destination.address + at, room - at);
}

int order_of(const char* one, std::intptr_t one_length, const char* two, std::intptr_t two_length) {
    const std::size_t length = counted(one_length);
    const std::size_t other_length = counted(two_length);
    const std::size_t common = std::min(length, other_length);
    const int order = common == 0 ? 0 : std::memcmp(one, two, common);
    if (order != 0 || length == other_length) return order;
    if (length > common) {
        const std::size_t at =
            other_than(bytes(one) + common, length - common, blank<std::uint8_t>, From::start);
        if (at == none) return 0;
        return static_cast<signed char>(one[common + at]) < ' ' ? -1 : 1;
    }
    const std::size_t at =
        other_than(bytes(two) + common, other_length - common, blank<std::uint8_t>, From::start);
    if (at == none) return 0;
    return bytes(two)[common + at] < ' ' ? 1 : -1;
}

}  // namespace tarn::intrinsics
