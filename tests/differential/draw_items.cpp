#include "draw_items.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <type_traits>

#include "draw_random.h"

using std::string;
using Quad = __float128;
using UInt128 = unsigned __int128;

namespace {

string escaped(const string& text) {
    string word;
    for (unsigned char c : text) {
        if (c <= ' ' || c == '%' || c > '~') {
            char code[4];
            std::snprintf(code, sizeof code, "%%%02x", c);
            word += code;
        } else {
            word += static_cast<char>(c);
        }
    }
    return word;
}

}  // namespace

string quoted(const string& text) {
    return '"' + escaped(text);
}

namespace {

string hex(const void* value, int bytes) {
    string text;
    char code[3];
    while (bytes-- > 0) {
        std::snprintf(code, sizeof code, "%02x", static_cast<const unsigned char*>(value)[bytes]);
        text += code;
    }
    return text;
}

template <class T>
struct Layout;
template <>
struct Layout<float> {
    static constexpr int bytes = 4, exponent_bits = 8, digits = 9, range = 38;
};

template <>
struct Layout<double> {
    static constexpr int bytes = 8, exponent_bits = 11, digits = 17, range = 308;
};

template <>
struct Layout<long double> {
    static constexpr int bytes = 10, exponent_bits = 15, digits = 21, range = 4932;
};

template <>
struct Layout<Quad> {
    static constexpr int bytes = 16, exponent_bits = 15, digits = 36, range = 4932;
};

template <class T>
T from_bits(UInt128 bits) {
    T value = 0;
    std::memcpy(&value, &bits, Layout<T>::bytes);
    return value;
}

template <class T>
UInt128 to_bits(T value) {
    UInt128 bits = 0;
    std::memcpy(&bits, &value, Layout<T>::bytes);
    return bits;
}

// Sign, exponent and fraction put together; an x87 value gets its leading bit.
template <class T>
T composed(bool negative, unsigned exponent, UInt128 fraction) {
    constexpr bool x87 = std::is_same_v<T, long double>;
    constexpr int fraction_bits = x87 ? 64 : Layout<T>::bytes * 8 - 1 - Layout<T>::exponent_bits;
    fraction &= (UInt128{1} << (x87 ? 63 : fraction_bits)) - 1;
    if (x87 && exponent != 0) fraction |= UInt128{1} << 63;
    UInt128 bits = fraction | UInt128{exponent} << fraction_bits;
    if (negative) bits |= UInt128{1} << (Layout<T>::bytes * 8 - 1);
    return from_bits<T>(bits);
}

template <class T>
T power_of_ten(int n) {
    Quad power = 1, base = 10;
    for (int m = n < 0 ? -n : n; m != 0; m >>= 1, base *= base)
        if (m & 1) power *= base;
    return static_cast<T>(n < 0 ? 1 / power : power);
}

// Of the magnitude that F editing shows whole, or of any.
template <class T>
T draw_real() {
    constexpr unsigned top = (1u << Layout<T>::exponent_bits) - 1;
    const UInt128 noise = UInt128{draw64()} << 64 | draw64();
    const bool negative = chance(35);
    const T sign = negative ? T(-1) : T(1);
    switch (below(20)) {
        case 0:
            return composed<T>(negative, 0, 0);
        case 1:  // the ends of the range, infinities, NaNs
            switch (below(8)) {
                case 0:
                    return composed<T>(negative, top, 0);
                case 1:
                    return composed<T>(negative, top, ~UInt128{0} >> 1);
                case 2:
                    return composed<T>(negative, top - 1, ~UInt128{0});
                case 3:
                    return composed<T>(negative, 1, 0);
                case 4:
                    return composed<T>(negative, 0, 1);
                case 5:
                    return composed<T>(negative, 0, ~UInt128{0});
                case 6:
                    return composed<T>(negative, 0, noise);
                default:
                    return composed<T>(negative, top, 0);
            }
        case 2:  // any bits
        case 3:
            return composed<T>(negative, static_cast<unsigned>(draw64() % top), noise);
        case 4:
        case 5: {  // small whole numbers and halves
            const T half = T(below(chance(50) ? 24 : 4000));
            return sign * half / T(2);
        }
        case 6: {  // exact binary fractions: ties at a decimal digit
            return sign * T(static_cast<std::int64_t>(draw64() % 100000)) / T(1 << between(1, 16));
        }
        case 7:
        case 8: {  // powers of ten and their neighbours
            T value = power_of_ten<T>(chance(70) ? between(-8, 12)
                                                 : between(-Layout<T>::range, Layout<T>::range));
            UInt128 bits = to_bits(value);
            if (bits != 0) bits += static_cast<UInt128>(between(-2, 2));
            return sign * from_bits<T>(bits);
        }
        case 9: {  // 9.9995 and the like: carries
            T value = power_of_ten<T>(between(-4, 9));
            value -= value * power_of_ten<T>(-between(1, 8)) * (chance(50) ? T(0.5) : T(1));
            UInt128 bits = to_bits(value) + static_cast<UInt128>(between(-1, 1));
            return sign * from_bits<T>(bits);
        }
        case 10: {  // d.ddd5 as nearly as the type has it
            const T whole = T(static_cast<std::int64_t>(draw64() % 1000000) * 10 + 5);
            return sign * whole * power_of_ten<T>(-between(1, 12));
        }
        case 11:  // G's boundaries: 0.1, 10**d - 0.5*10**-1
            return sign * (chance(50) ? power_of_ten<T>(between(0, 8)) - T(0.5)
                                      : T(0.1) * (T(1) - T(0.5) * power_of_ten<T>(-between(1, 7))));
        case 12:
            return sign * power_of_ten<T>(3 * between(-5, 5)) * T(999.5);
        case 13: {
            const T whole = T(static_cast<std::int64_t>(draw64() >> between(1, 63)));
            return sign * whole;
        }
        default: {  // a few significant digits, some magnitude
            T value = T(static_cast<std::int64_t>(draw64() % (chance(50) ? 1000u : 100000000u)));
            return sign * value * power_of_ten<T>(between(-14, 8));
        }
    }
}

__int128 draw_integer(int bytes) {
    const UInt128 noise = UInt128{draw64()} << 64 | draw64();
    const UInt128 top = UInt128{1} << (bytes * 8 - 1);
    switch (below(8)) {
        case 0:
            return 0;
        case 1:
            return static_cast<__int128>(top - 1);
        case 2:
            return static_cast<__int128>(top);  // the most negative, cut to the kind
        case 3:
            return between(-9, 9);
        case 4: {
            __int128 value = 1;
            for (int n = below(bytes == 16 ? 39 : bytes * 5 / 2); n > 0; --n) value *= 10;
            return value + between(-1, 0);
        }
        case 5:
            return between(-20000, 20000);
        default: {
            const __int128 value = static_cast<__int128>(noise >> below(127) >> 1);
            return chance(50) ? value : -value;
        }
    }
}

string real_hex(int kind) {
    switch (kind) {
        case 4: {
            float v = draw_real<float>();
            return hex(&v, 4);
        }
        case 8: {
            double v = draw_real<double>();
            return hex(&v, 8);
        }
        case 10: {
            long double v = draw_real<long double>();
            return hex(&v, 10);
        }
        default: {
            Quad v = draw_real<Quad>();
            return hex(&v, 16);
        }
    }
}

const char* real_letter(int kind) {
    return kind == 4 ? "4" : kind == 8 ? "8" : kind == 10 ? "a" : "q";
}

int draw_real_kind() {
    return one_of({4, 4, 8, 8, 8, 10, 16, 16});
}

}  // namespace

string draw_text(int length) {
    string text;
    while (length-- > 0)
        text += chance(80) ? static_cast<char>('a' + below(26))
                           : *pick({" ", " ", "'", "\"", ",", "/", ";", "*", "&", "0", "."});
    return text;
}

Item draw_item(Class type) {
    switch (type) {
        case integers: {
            const int bytes = one_of({1, 2, 4, 4, 4, 8, 16});
            const __int128 value = draw_integer(bytes);
            return {(bytes == 16 ? "iq:" : "i" + num(bytes) + ":") + hex(&value, bytes), type,
                    bytes};
        }
        case logicals: {
            const int bytes = one_of({1, 2, 4, 4, 8});
            const std::int64_t value = below(2);
            return {"l" + num(bytes) + ":" + hex(&value, bytes), type, bytes};
        }
        case reals: {
            const int kind = draw_real_kind();
            return {string("r") + real_letter(kind) + ":" + real_hex(kind), type, kind};
        }
        case complexes: {
            const int kind = draw_real_kind();
            return {string("z") + real_letter(kind) + ":" + real_hex(kind) + real_hex(kind), type,
                    kind};
        }
        case characters: {
            const int length = chance(10) ? 0 : chance(90) ? between(1, 12) : between(30, 120);
            return {"c1" + quoted(draw_text(length)), type, length};
        }
        default: {
            const int length = between(0, 8);
            string word = "c4:";
            for (int i = 0; i < length; ++i) {
                const std::uint32_t c = chance(70) ? static_cast<unsigned>(between(' ', '~'))
                                                   : static_cast<unsigned>(between(128, 0x3000));
                word += hex(&c, 4);
            }
            return {word, type, length};
        }
    }
}

Class draw_class() {
    return one_of({integers, integers, integers, logicals, reals, reals, reals, reals, complexes,
                   characters, characters});
}

// What a READ finds in its items before it runs.
Item blank_item(Class type) {
    const unsigned char ones[16] = {0xa5, 0xa5, 0xa5, 0xa5, 0xa5, 0xa5, 0xa5, 0xa5,
                                    0xa5, 0xa5, 0xa5, 0xa5, 0xa5, 0xa5, 0xa5, 0xa5};
    const unsigned char zeros[16] = {};
    switch (type) {
        case integers: {
            const int bytes = one_of({1, 2, 4, 4, 4, 8, 16});
            return {(bytes == 16 ? "iq:" : "i" + num(bytes) + ":") + hex(ones, bytes), type, bytes};
        }
        case logicals: {
            const int bytes = one_of({1, 2, 4, 4, 8});
            return {"l" + num(bytes) + ":" + hex(zeros, bytes), type, bytes};
        }
        case reals: {
            const int kind = draw_real_kind();
            return {string("r") + real_letter(kind) + ":" + hex(zeros, kind), type, kind};
        }
        case complexes: {
            const int kind = draw_real_kind();
            return {string("z") + real_letter(kind) + ":" + hex(zeros, kind) + hex(zeros, kind),
                    type, kind};
        }
        case characters: {
            const int length = chance(10) ? 0 : between(1, 12);
            return {"c1" + quoted(string(static_cast<std::size_t>(length), '?')), type, length};
        }
        default: {
            const int length = between(0, 6);
            string word = "c4:";
            for (int i = 0; i < length; ++i) word += "0000003f";
            return {word, type, length};
        }
    }
}
