// Reads numbers from bytes whose lengths nobody vouches for. Past the end everything is zero and
// `bad` is set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tarn::traceback {

struct ByteCursor {
    const unsigned char* at;
    const unsigned char* end;
    bool bad = false;

    ByteCursor(const void* from, const void* to)
        : at(static_cast<const unsigned char*>(from)), end(static_cast<const unsigned char*>(to)) {}

    std::size_t left() const { return static_cast<std::size_t>(end - at); }
    bool done() const { return bad || at >= end; }

    template <class Number>
    Number number() {
        Number value{};
        if (left() < sizeof value) {
            fail();
            return value;
        }
        std::memcpy(&value, at, sizeof value);
        at += sizeof value;
        return value;
    }
    std::uint8_t byte() { return number<std::uint8_t>(); }

    std::uint64_t unsigned_leb() {
        std::uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const std::uint8_t next = byte();
            if (bad) return 0;
            if (shift < 64) value |= std::uint64_t{next & 0x7Fu} << shift;
            if ((next & 0x80) == 0) return value;
        }
    }
    std::int64_t signed_leb() {
        std::uint64_t value = 0;
        unsigned shift = 0;
        std::uint8_t next = 0;
        do {
            next = byte();
            if (bad) return 0;
            if (shift < 64) value |= std::uint64_t{next & 0x7Fu} << shift;
            shift += 7;
        } while ((next & 0x80) != 0);
        if (shift < 64 && (next & 0x40) != 0) value |= ~std::uint64_t{0} << shift;
        return static_cast<std::int64_t>(value);
    }
    void skip(std::uint64_t count) {
        if (count > left())
            fail();
        else
            at += count;
    }
    // The bytes up to a zero, which is passed.
    const char* text() {
        const void* zero = std::memchr(at, 0, left());
        if (zero == nullptr) {
            fail();
            return "";
        }
        const char* start = reinterpret_cast<const char*>(at);
        at = static_cast<const unsigned char*>(zero) + 1;
        return start;
    }
    void fail() {
        bad = true;
        at = end;
    }
};

}  // namespace tarn::traceback
