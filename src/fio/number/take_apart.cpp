#include <cstring>

#include "fio/number/decimal.h"

namespace tarn::fio {

namespace {

// A format with a hidden leading bit, taken from its bits.
template <typename Bits, int fraction_bits, int exponent_bits>
BinaryReal take_apart_bits(Bits bits) {
    constexpr Bits fraction_mask = (Bits{1} << fraction_bits) - 1;
    constexpr int top_exponent = (1 << exponent_bits) - 1;
    constexpr int bias = top_exponent / 2 + fraction_bits;
    BinaryReal result;
    result.negative = (bits >> (fraction_bits + exponent_bits)) != 0;
    const Bits fraction = bits & fraction_mask;
    const int exponent = static_cast<int>(bits >> fraction_bits) & top_exponent;
    result.significand = fraction;
    if (exponent == top_exponent) {
        result.kind = fraction == 0 ? RealClass::infinite : RealClass::nan;
    } else if (exponent == 0) {
        result.exponent = 1 - bias;
    } else {
        result.significand |= Bits{1} << fraction_bits;
        result.exponent = exponent - bias;
    }
    return result;
}

template <typename Bits, typename Value>
Bits bits_of(Value value) {
    static_assert(sizeof(Bits) == sizeof(Value));
    Bits bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

}  // namespace

BinaryReal take_apart(float value) {
    return take_apart_bits<std::uint32_t, 23, 8>(bits_of<std::uint32_t>(value));
}

BinaryReal take_apart(double value) {
    return take_apart_bits<std::uint64_t, 52, 11>(bits_of<std::uint64_t>(value));
}

BinaryReal take_apart(__float128 value) {
    return take_apart_bits<unsigned __int128, 112, 15>(bits_of<unsigned __int128>(value));
}

// The leading bit stands in the significand.
BinaryReal take_apart(long double value) {
    std::uint64_t significand;
    std::uint16_t head;
    std::memcpy(&significand, &value, sizeof significand);
    std::memcpy(&head, reinterpret_cast<const char*>(&value) + sizeof significand, sizeof head);
    BinaryReal result;
    result.negative = (head >> 15) != 0;
    result.significand = significand;
    const int exponent = head & 0x7FFF;
    const bool leading = (significand >> 63) != 0;
    if (exponent == 0x7FFF && significand << 1 == 0 && leading) {
        result.kind = RealClass::infinite;
    } else if (exponent == 0x7FFF || (exponent != 0 && !leading)) {
        result.kind = RealClass::nan;  // without its leading bit the processor takes no value
    } else {
        result.exponent = (exponent == 0 ? 1 : exponent) - 0x3FFF - 63;
    }
    return result;
}

BinaryReal take_apart(const void* value, int kind) {
    const auto load = [value]<typename Value>(Value target) {
        std::memcpy(&target, value, sizeof target);
        return take_apart(target);
    };
    switch (kind) {
        case 4:
            return load(float{});
        case 8:
            return load(double{});
        case 10: {
            long double target = 0;
            std::memcpy(&target, value, 10);
            return take_apart(target);
        }
        default:
            return load(__float128{});
    }
}

}  // namespace tarn::fio
