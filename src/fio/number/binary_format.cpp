#include "fio/number/binary_format.h"

#include "fio/number/wide_decimal.h"

namespace tarn::fio {

namespace {

int bit_length(Wide value) {
    const auto high = static_cast<Word>(value >> 64);
    const auto low = static_cast<Word>(value);
    if (high != 0) return 128 - __builtin_clzll(high);
    return low == 0 ? 0 : 64 - __builtin_clzll(low);
}

// Biased exponent field; 0 for a subnormal or a zero.
int exponent_field(const BinaryFormat& format, Wide significand, int exponent) {
    const bool normal = (significand >> (format.precision - 1)) != 0;
    return normal ? exponent - format.least_exponent + 1 : 0;
}

void store_fields(int kind, bool negative, int field, Wide significand, void* target) {
    switch (kind) {
        case 4: {
            const std::uint32_t bits = static_cast<std::uint32_t>(negative) << 31 |
                                       static_cast<std::uint32_t>(field) << 23 |
                                       (static_cast<std::uint32_t>(significand) & 0x7F'FFFF);
            std::memcpy(target, &bits, sizeof bits);
            break;
        }
        case 8: {
            const Word bits = static_cast<Word>(negative) << 63 | static_cast<Word>(field) << 52 |
                              (static_cast<Word>(significand) & 0xF'FFFF'FFFF'FFFF);
            std::memcpy(target, &bits, sizeof bits);
            break;
        }
        case 10: {
            const auto bits = static_cast<Word>(significand);
            const auto head = static_cast<std::uint16_t>(field | (negative ? 0x8000 : 0));
            std::memcpy(target, &bits, sizeof bits);
            std::memcpy(static_cast<char*>(target) + sizeof bits, &head, sizeof head);
            break;
        }
        default: {
            const Wide bits = static_cast<Wide>(negative) << 127 | static_cast<Wide>(field) << 112 |
                              (significand & ((Wide{1} << 112) - 1));
            std::memcpy(target, &bits, sizeof bits);
            break;
        }
    }
}

}  // namespace

void store_real(int kind, bool negative, Wide significand, int exponent, void* target) {
    const int field = exponent_field(binary_format(kind), significand, exponent);
    store_fields(kind, negative, field, significand, target);
}

void store_infinity(int kind, bool negative, void* target) {
    const BinaryFormat& format = binary_format(kind);
    const int field = format.greatest_exponent - format.least_exponent + 2;
    store_fields(kind, negative, field, Wide{1} << (format.precision - 1), target);
}

ConvertResult store_overflow(int kind, bool negative, Rounding round, void* target) {
    if (rounds_up(Tail::above_half, false, negative, round)) {
        store_infinity(kind, negative, target);
    } else {
        const BinaryFormat& format = binary_format(kind);
        const Wide all_ones = (Wide{1} << (format.precision - 1) << 1) - 1;
        store_real(kind, negative, all_ones, format.greatest_exponent, target);
    }
    return ConvertResult::overflow;
}

ConvertResult store_underflow(int kind, bool negative, Rounding round, void* target) {
    const bool up = rounds_up(Tail::below_half, false, negative, round);
    store_real(kind, negative, up ? 1 : 0, binary_format(kind).least_exponent, target);
    return ConvertResult::underflow;
}

ConvertResult round_and_store(int kind, bool negative, Wide significand, std::int64_t exponent,
                              bool more, Rounding round, void* target) {
    const BinaryFormat& format = binary_format(kind);
    const int length = bit_length(significand);
    std::int64_t drop = length - format.precision;
    if (exponent + drop < format.least_exponent) drop = format.least_exponent - exponent;
    if (exponent + drop > format.greatest_exponent) {
        return store_overflow(kind, negative, round, target);
    }
    Tail tail = more ? Tail::below_half : Tail::zero;
    if (drop > length) {
        significand = 0;
        tail = Tail::below_half;
    } else if (drop > 0) {
        const int bits = static_cast<int>(drop);
        const bool half = (significand >> (bits - 1) & 1) != 0;
        const bool rest = more || (significand & ((Wide{1} << (bits - 1)) - 1)) != 0;
        tail =
            half ? (rest ? Tail::above_half : Tail::half) : (rest ? Tail::below_half : Tail::zero);
        significand = bits >= 128 ? 0 : significand >> bits;
    } else {
        significand <<= static_cast<int>(-drop);
    }
    exponent += drop;
    if (rounds_up(tail, (significand & 1) != 0, negative, round)) {
        ++significand;
        if (bit_length(significand) > format.precision) {
            significand >>= 1;
            ++exponent;
            if (exponent > format.greatest_exponent) {
                return store_overflow(kind, negative, round, target);
            }
        }
    }
    store_real(kind, negative, significand, static_cast<int>(exponent), target);
    const bool small = (significand >> (format.precision - 1)) == 0;
    return small && tail != Tail::zero ? ConvertResult::underflow : ConvertResult::ok;
}

}  // namespace tarn::fio
