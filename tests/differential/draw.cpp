// Draws the cases of a differential run: `draw SEED COUNT [KINDS]` prints COUNT cases in the
// form that executor_io.c reads. KINDS, letters of `wlrdWRu`, limits what is drawn; u stands for
// sequences of statements on units.
//
// Values and fields are drawn near the places where editing goes wrong: halves, carries into a
// new digit, the ends of a type's range, fields that just fit or just don't.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using std::string;
using Quad = __float128;
using UInt128 = unsigned __int128;

std::uint64_t random_state;

std::uint64_t draw64() {
    std::uint64_t z = random_state += 0x9e3779b97f4a7c15u;
    z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9u;
    z = (z ^ z >> 27) * 0x94d049bb133111ebu;
    return z ^ z >> 31;
}
int below(int n) {
    return static_cast<int>(draw64() % static_cast<unsigned>(n));
}
int between(int low, int high) {
    return low + below(high - low + 1);
}
bool chance(int percent) {
    return below(100) < percent;
}
template <class T>
T one_of(std::initializer_list<T> list) {
    return list.begin()[below(static_cast<int>(list.size()))];
}
const char* pick(std::initializer_list<const char*> list) {
    return one_of(list);
}
string digits(int n) {
    string text;
    while (n-- > 0) text += static_cast<char>('0' + below(10));
    return text;
}
string num(long long n) {
    return std::to_string(n);
}

// ---- The form of a case ----

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
string quoted(const string& text) {
    return '"' + escaped(text);
}
string hex(const void* value, int bytes) {
    string text;
    char code[3];
    while (bytes-- > 0) {
        std::snprintf(code, sizeof code, "%02x", static_cast<const unsigned char*>(value)[bytes]);
        text += code;
    }
    return text;
}

// ---- Values ----

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

enum Class { integers, logicals, reals, complexes, characters, wide };

struct Item {
    string word;
    Class type;
    int bytes;  // of one part; characters: the length
};

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

// ---- Formats ----

struct Width {
    int w = 0, d = -1, e = -1;
};

string mixed_case(string text) {
    if (chance(10))
        for (char& c : text)
            if (c >= 'A' && c <= 'Z' && chance(50)) c = static_cast<char>(c + 32);
    return text;
}

// w, w.d or w.dEe as it may be, mostly near what the value needs.
string real_widths(const char* letters, int kind, bool exponents) {
    const int needed = kind == 4 ? 9 : kind == 8 ? 17 : kind == 10 ? 21 : 36;
    string text = letters;
    int d = chance(60) ? below(8) : chance(70) ? below(needed + 1) : between(0, 60);
    int w = chance(8) ? 0 : chance(70) ? d + between(0, 12) : between(1, 40);
    if (!exponents && chance(20)) w = d + between(0, 30);
    if (*letters == 'G' && chance(15)) w = 0;
    text += num(w);
    if (chance(97)) text += "." + num(d);
    if (exponents && chance(30)) text += "E" + num(chance(95) ? between(1, 5) : below(20));
    return text;
}
string integer_widths(const char* letter) {
    string text = letter;
    if (chance(97)) text += num(chance(15) ? 0 : chance(90) ? between(1, 14) : between(15, 140));
    if (chance(35)) text += "." + num(chance(90) ? below(10) : below(45));
    return text;
}

// One data edit descriptor for an item; now and then for an item of another type.
string draw_descriptor(const Item& item) {
    Class type = item.type;
    if (chance(2)) type = one_of({integers, reals, characters});
    switch (type) {
        case integers:
            switch (below(12)) {
                case 0:
                    return integer_widths("B");
                case 1:
                    return integer_widths("O");
                case 2:
                    return integer_widths("Z");
                case 3:
                    return "G" + num(chance(50) ? 0 : between(1, 20)) +
                           (chance(30) ? "." + num(below(8)) : "");
                default:
                    return integer_widths("I");
            }
        case logicals:
            return chance(80) ? "L" + num(between(chance(5) ? 0 : 1, 9))
                              : "G" + num(between(0, 9)) + (chance(30) ? ".3" : "");
        case reals:
        case complexes:
            switch (below(20)) {
                case 0:
                case 1:
                case 2:
                    return real_widths("E", item.bytes, true);
                case 3:
                case 4:
                    return real_widths("ES", item.bytes, true);
                case 5:
                case 6:
                    return real_widths("EN", item.bytes, true);
                case 7:
                case 8:
                    return real_widths("D", item.bytes, false);
                case 9:
                case 10:
                case 11:
                case 12:
                    return real_widths("G", item.bytes, true);
                case 13:
                    return chance(50) ? "G0" : "G0." + num(below(20));
                case 14:
                    return chance(80) ? integer_widths("Z") : integer_widths("B");
                default:
                    return real_widths("F", item.bytes, false);
            }
        default:
            switch (below(6)) {
                case 0:
                    return "A";
                case 1:
                    return "G0";
                case 2:
                    return "G" + num(between(1, 12));
                default:
                    return "A" + num(between(chance(3) ? 0 : 1, 14));
            }
    }
}

string draw_control() {
    switch (below(16)) {
        case 0:
            return num(between(1, 5)) + "X";
        case 1:
            return "T" + num(between(1, 30));
        case 2:
            return "TL" + num(between(1, 12));
        case 3:
            return "TR" + num(between(1, 12));
        case 4:
            return chance(50) ? "SP" : "SS";
        case 5:
            return "S";
        case 6:
            return "'" + string(pick({"a", "it''s", "  ", "x=", "%", "(", ")"})) + "'";
        case 7:
            return string("\"") + pick({"q", "say \"\"hi\"\"", "", "'"}) + "\"";
        case 8:
            return num(between(-3, 4)) + "P";
        case 9:
            return pick({"BN", "BZ"});
        case 10:
            return pick({"RU", "RD", "RZ", "RN", "RC", "RP"});
        case 11:
            return pick({"DC", "DP"});
        case 12:
            return "/";
        case 13:
            return num(between(1, 3)) + "/";
        case 14:
            return pick({":", "3Habc", "1H'", "$", "X"});
        default:
            return "1X";
    }
}

// A list of edits for some items, with groups, repeats and controls between them.
string draw_format_list(const std::vector<Item>& items, std::size_t& next, int depth) {
    string text;
    bool behind_data = false;
    const int parts = between(1, 5);
    for (int part = 0; part < parts; ++part) {
        if (part > 0) text += ",";
        const bool moved = !behind_data;
        behind_data = false;
        if (chance(30)) {
            string control = draw_control();
            // The peer adds a move to the right, when nothing has filled it yet, to the place that
            // T or TL would go to at its left.
            while (moved && control[0] == 'T' && control[1] != 'R' &&
                   (control[1] == 'L' || part + depth > 0))
                control = draw_control();
            text += control;
        } else if (depth < 3 && chance(20)) {
            if (chance(60)) text += num(between(1, 4));
            text += "(" + draw_format_list(items, next, depth + 1) + ")";
        } else {
            const Item& item = items[next < items.size() ? next : items.size() - 1];
            ++next;
            if (chance(15)) text += num(between(2, 4));
            text += draw_descriptor(item);
            behind_data = true;
        }
    }
    return text;
}
// One slip in a format: a letter less, one more, another.
string spoiled(string text) {
    if (text.empty()) return text;
    const std::size_t at = static_cast<std::size_t>(below(static_cast<int>(text.size())));
    switch (below(4)) {
        case 0:
            text.erase(at, 1);
            break;
        case 1:
            text.insert(at, pick({",", "(", ")", ".", "9", "E", "'", " ", "*", "P", "/"}));
            break;
        case 2:
            text[at] = *pick({"Q", "1", "0", ".", ",", "E", "(", ")", "F"});
            break;
        default:
            text.resize(at);
            break;
    }
    // The peer looks for ever for the digits of an exponent at the end of a format.
    if (!text.empty() && text.back() > '9') text += ')';
    return text;
}
string draw_format(const std::vector<Item>& items, bool structured) {
    string text = "(";
    if (!structured || items.empty()) {
        if (chance(12)) text += num(between(-4, 5)) + "P" + pick({"", ","});
        if (chance(8)) text += pick({"SP,", "SS,", "RU,", "RD,", "RZ,", "RN,", "RC,", "DC,"});
        if (items.empty())
            text += draw_control();
        else
            text += draw_descriptor(items[0]);
        text += ")";
    } else {
        std::size_t next = 0;
        text += draw_format_list(items, next, 0);
        if (chance(8))
            text += ",*(" + draw_descriptor(items.back()) + pick({")", ",1X)", ",:,',')"});
        text += ")";
    }
    text = mixed_case(text);
    if (chance(3)) text = spoiled(text);
    if (chance(5)) text.insert(text.size() / 2, " ");
    if (chance(2)) text += " and more";
    return text;
}

string draw_modes() {
    string modes;
    modes += *pick({"n", "z"});
    modes += *pick({"p", "p", "c"});
    modes += *pick({"n", "a", "q"});
    modes += *pick({"y", "y", "y", "n"});
    modes += *pick({"u", "d", "z", "n", "c", "p"});
    modes += *pick({"p", "+", "s"});
    return modes;
}
string join(const std::vector<Item>& items) {
    string text;
    for (const Item& item : items) text += " " + item.word;
    return text;
}

// ---- Fields to read ----

string blanks(string text, int percent) {
    if (chance(percent))
        text.insert(static_cast<std::size_t>(below(static_cast<int>(text.size()) + 1)), " ");
    return text;
}
string integer_field() {
    string text = pick({"", "", "", "-", "+"});
    text += chance(70) ? digits(between(1, 6))
                       : pick({"127", "128", "32767", "32768", "2147483647", "2147483648", "0",
                               "9223372036854775807", "9223372036854775808", "129", "255", "256",
                               "170141183460469231731687303715884105727",
                               "170141183460469231731687303715884105728", "00000000001"});
    if (chance(6)) text = pick({"1.5", "abc", "-", "+", "", "1e3", "--1", "1-", "$", "1,2", "\t7"});
    return text;
}
string real_field(bool comma) {
    string text = pick({"", "", "", "-", "+"});
    switch (below(12)) {
        case 0:
            text += pick({"inf", "Infinity", "INF", "nan", "NaN", "NAN(x12)", "+nan", "infinit",
                          "infi", "nan(", "nan()", "in", "n"});
            break;
        case 1:
            text += digits(between(20, 60));
            break;
        case 2:
            text += "." + string(static_cast<std::size_t>(below(30)), '0') + digits(between(1, 40));
            break;
        case 3:
            text += pick({".", "", "e5", ".e5", "1e", "1e+", "1d", "1.5.5", "1e5e5", "1e5.", "x"});
            break;
        case 4:
            text += pick({"1.7976931348623157", "1.7976931348623159", "4.9406564584124654",
                          "2.2250738585072011", "3.4028235", "3.4028236", "1.40129846", "8.5",
                          "0.5", "9007199254740993", "1.00000005960464477540"});
            break;
        default:
            text += digits(between(0, 4)) + (chance(80) ? "." + digits(between(0, 8)) : "");
            break;
    }
    if (chance(45)) {
        text += pick({"e", "E", "d", "D", "q", "Q", "", "e"});
        text += pick({"+", "-", "", "+", "-"});
        text += chance(70) ? num(below(40)) : chance(60) ? num(below(400)) : num(below(4800));
    }
    if (comma && chance(80))
        for (char& c : text)
            if (c == '.') c = ',';
    return text;
}
// The peer looks behind a field that holds no letter, so there is always one.
string logical_field() {
    return pick({"T",   "F",      ".T.", ".F.", ".TRUE.", ".false.", "true", "false",
                 "t",   "f",      ".t",  ".f",  "Tomato", "Fish",    "x",    ".x",
                 "  T", " .true", "yes", "1",   "0",      "tr ue"});
}
string bits_field(char letter) {
    string text;
    const int n = between(1, chance(80) ? 8 : 34);
    for (int i = 0; i < n; ++i)
        text += letter == 'B'   ? static_cast<char>('0' + below(2))
                : letter == 'O' ? static_cast<char>('0' + below(8))
                                : "0123456789abcdefABCDEF"[below(22)];
    if (chance(5)) text = pick({"2", "8", "g", "-1", "+1", " ", "1.0", "-", "", "f f"});
    return text;
}

string fitted(string text, int width) {
    const std::size_t w = static_cast<std::size_t>(width);
    if (text.size() > w) return text.substr(0, w);
    if (chance(70)) return string(w - text.size(), ' ') + text;
    return text + string(w - text.size(), ' ');
}

// A descriptor for an item to read and the field that it meets.
string read_edit(const Item& item, string& field, bool comma) {
    Class type = item.type;
    if (chance(1)) type = draw_class();
    int width = 0;
    string edit;
    switch (type) {
        case integers:
            if (chance(20)) {
                const char letter = *pick({"B", "O", "Z"});
                field = bits_field(letter);
                edit = letter;
            } else {
                field = integer_field();
                edit = chance(85) ? "I" : "G";
            }
            break;
        case logicals:
            field = logical_field();
            edit = chance(85) ? "L" : "G";
            break;
        case reals:
        case complexes:
            if (chance(4)) {
                field = bits_field('Z');
                edit = "Z";
            } else {
                field = real_field(comma);
                edit = pick({"F", "F", "F", "E", "D", "G", "EN", "ES"});
            }
            break;
        default:
            field = draw_text(between(0, 14));
            edit = pick({"A", "A", "A", "G"});
            if (edit == "A" && chance(30)) {
                field = fitted(field, item.bytes);
                return edit;
            }
            break;
    }
    field = blanks(field, 6);
    width = chance(60) ? static_cast<int>(field.size()) + below(4) : between(1, 20);
    if (width == 0 && (type == logicals || !chance(30))) width = 1;
    if (chance(1) && type != logicals) width = 0;
    field = fitted(field, width);
    if (type == logicals && width > 0 && field.find_first_not_of(" .") == string::npos)
        field.back() = 'T';
    string text = edit + num(width);
    if (edit[0] == 'F' || edit[0] == 'E' || edit[0] == 'D' || (edit[0] == 'G' && type == reals))
        text += "." + num(chance(70) ? below(4) : below(12));
    if (edit[0] == 'E' && chance(20)) text += "E" + num(between(1, 4));
    return text;
}

void cut_short(string& record) {
    if (chance(12))
        record.resize(static_cast<std::size_t>(below(static_cast<int>(record.size()) + 1)));
}

// ---- Cases ----

std::vector<Item> draw_items(int count, bool to_read, int wide_percent) {
    std::vector<Item> items;
    const Class same = draw_class();
    const bool mixed = chance(70);
    for (int i = 0; i < count; ++i) {
        Class type = mixed ? draw_class() : same;
        if (type == characters && chance(wide_percent)) type = wide;
        items.push_back(to_read ? blank_item(type) : draw_item(type));
    }
    // The peer dies when L meets a REAL of kind 10.
    bool kind_10 = false;
    for (const Item& item : items) kind_10 |= item.bytes == 10 && item.type >= reals;
    for (Item& item : items)
        if (kind_10 && item.type == logicals)
            item = to_read ? blank_item(integers) : draw_item(integers);
    return items;
}

string write_case() {
    const bool structured = chance(30);
    const int count = chance(2) ? 0 : structured ? between(1, 6) : chance(85) ? 1 : between(2, 3);
    const std::vector<Item> items = draw_items(count, false, 5);
    const int records = structured && chance(70) ? between(1, 8) : 1;
    const int size = chance(80) ? 80 : chance(50) ? between(1, 30) : between(81, 300);
    return "w " + (chance(25) ? draw_modes() : string("-")) + " " +
           quoted(draw_format(items, structured)) + " " + num(records) + " " + num(size) +
           join(items);
}
string list_write_case() {
    const string modes = chance(35) ? draw_modes() : "-";
    // The peer dies of delimited characters of kind 4 in a record of kind 1.
    const std::vector<Item> items =
        draw_items(chance(50) ? 1 : between(0, 7), false, modes == "-" ? 5 : 0);
    const int size = chance(80) ? 200 : between(1, 100);
    return "l " + modes + " " + num(between(1, 4)) + " " + num(size) + join(items);
}
// The peer reads with ROUND='COMPATIBLE' as with 'NEAREST'.
string draw_read_modes() {
    string modes = draw_modes();
    if (modes[4] == 'c') modes[4] = 'n';
    return modes;
}
string read_case() {
    const string modes = chance(30) ? draw_read_modes() : "-";
    const bool comma = modes[0] != '-' && modes[1] == 'c';
    const int count = chance(60) ? 1 : between(0, 5);
    const std::vector<Item> items = draw_items(count, true, 3);
    std::vector<string> records(1);
    string format = "(";
    if (chance(10)) format += num(between(-3, 3)) + "P,";
    if (chance(8)) format += pick({"BN,", "BZ,", "DC,", "DP,", "RU,", "RZ,"});
    for (const Item& item : items) {
        for (int part = item.type == complexes ? 2 : 1; part > 0; --part) {
            string field;
            if (format.back() != '(' && format.back() != ',') format += ",";
            if (chance(12) && item.type != logicals) {
                const int n = between(1, 4);
                switch (below(4)) {
                    case 0:
                        format += num(n) + "X,";
                        records.back() += draw_text(n);
                        break;
                    case 1:
                        format += "/";
                        records.emplace_back();
                        break;
                    case 2:
                        format += "TL" + num(n) + ",";
                        break;
                    default:
                        format += "T" + num(between(1, 10)) + ",";
                        break;
                }
            }
            format += read_edit(item, field, comma);
            records.back() += field;
        }
    }
    if (format.size() == 1) format += chance(50) ? "/" : "1X";
    format += ")";
    if (chance(25)) {  // fewer edits than items: reversion
        records.push_back(records.front());
        records.push_back(records.front());
        const std::size_t comma_at = format.rfind(',');
        if (comma_at != string::npos && comma_at > 2) format = format.substr(0, comma_at) + ")";
    }
    format = mixed_case(format);
    std::size_t size = 1;
    bool whole = false;
    for (const Item& item : items) whole |= item.type == logicals;
    for (string& record : records) {
        if (!whole) cut_short(record);
        if (record.size() > size) size = record.size();
    }
    if (chance(50)) size += static_cast<std::size_t>(below(6));
    string text = "r " + modes + " " + quoted(format) + " " +
                  num(static_cast<long long>(records.size())) + " " +
                  num(static_cast<long long>(size));
    for (const string& record : records) text += " " + quoted(record);
    return text + join(items);
}

string list_value(Class type, bool comma) {
    switch (type) {
        case integers:
            return integer_field();
        case logicals:
            // A word of letters makes the peer take a comma behind a blank for one more value.
            return pick({"T", "F", ".T.", ".F.", ".TRUE.", ".false.", "t", "f", ".t", ".f", "x",
                         ".x", "1", "0"});
        case reals:
            return chance(70) ? real_field(comma) : integer_field();
        case complexes: {
            const string gap = pick({"", "", "", " ", "  "});
            string text = "(" + gap + real_field(comma) + gap + (comma ? ";" : ",") + gap +
                          real_field(comma) + gap + ")";
            if (chance(4)) text = spoiled(text);
            return text;
        }
        default: {
            string text = draw_text(between(0, 8));
            if (chance(50)) return text.empty() ? "x" : text;
            const char mark = *pick({"'", "\""});
            string result(1, mark);
            for (char c : text) result.append(c == mark ? 2 : 1, c);
            if (chance(95)) result += mark;
            return result;
        }
    }
}
std::vector<string> list_records(const std::vector<Item>& items, bool comma) {
    std::vector<string> records(1);
    const auto separate = [&] {
        switch (below(12)) {
            case 0:
                records.emplace_back();
                break;
            case 1:
                records.back() += comma ? " ; " : " , ";
                break;
            case 2:
                records.back() += "  ";
                break;
            case 3:
            case 4:
            case 5:
                records.back() += comma ? ";" : ",";
                break;
            case 6:
                records.back() += pick({";", ",", "\t", ",,", ";;", " / ", ",/"});
                break;
            default:
                records.back() += " ";
                break;
        }
    };
    if (chance(15)) separate();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) separate();
        if (chance(12)) {
            int repeat = chance(90) ? between(1, 4) : below(12);
            // The peer repeats a value of one kind into an item of another as its bytes lie.
            for (std::size_t j = i + 1;
                 j < items.size() && j < i + static_cast<std::size_t>(repeat); ++j)
                if (items[j].type == items[i].type && items[j].bytes != items[i].bytes) repeat = 1;
            // It repeats no value of kind 10.
            if (items[i].bytes == 10 && (items[i].type == reals || items[i].type == complexes))
                repeat = 1;
            records.back() += num(repeat) + "*";
            if (chance(25)) continue;
            i += static_cast<std::size_t>(repeat > 0 ? repeat - 1 : 0);
            if (i >= items.size()) i = items.size() - 1;
        }
        records.back() +=
            chance(97) ? list_value(items[i].type, comma) : list_value(draw_class(), comma);
    }
    if (chance(10)) separate();
    if (chance(6)) records.back() += "/";
    if (chance(6)) cut_short(records.back());
    return records;
}
string list_read_case() {
    const string modes = chance(25) ? draw_read_modes() : "-";
    const bool comma = modes[0] != '-' && modes[1] == 'c';
    // The peer puts bytes where characters of kind 4 belong.
    const std::vector<Item> items = draw_items(chance(50) ? 1 : between(0, 6), true, 0);
    const std::vector<string> records = list_records(items, comma);
    std::size_t size = 1;
    for (const string& record : records)
        if (record.size() > size) size = record.size();
    if (chance(60)) size += static_cast<std::size_t>(below(8));
    string text = "d " + modes + " " + num(static_cast<long long>(records.size())) + " " +
                  num(static_cast<long long>(size));
    for (const string& record : records) text += " " + quoted(record);
    return text + join(items);
}

// Internal files of character kind 4. Where the peer goes astray is left out: it writes behind the
// last record, writes any memory for digits of another base that don't fit, takes the bytes of a
// number under A for signed, and ignores the width of A for characters of kind 4.
bool goes_astray(const string& format, const std::vector<Item>& items) {
    for (const Item& item : items)
        if (item.type != characters && format.find_first_of("Aa") != string::npos) return true;
    return format.find_first_of("BOZboz") != string::npos;
}
string wide_case(bool reading) {
    const bool list = chance(40);
    const std::vector<Item> items = draw_items(between(1, 3), reading, !reading || !list ? 50 : 0);
    if (!reading) {
        string format = list ? "*" : "(";
        if (!list) {
            for (const Item& item : items) {
                if (format.size() > 1) format += ",";
                format += draw_descriptor(item);
                if (item.type == complexes) format += ",1X," + draw_descriptor(item);
            }
            format += ")";
        }
        if (goes_astray(format, items)) format = "(*(G0,:,1X))";
        return "W " + quoted(format) + " 3 " + num(between(100, 300)) + join(items);
    }
    std::vector<string> records(1);
    string format = list ? "*" : "(";
    if (list) {
        records = list_records(items, false);
    } else {
        for (const Item& item : items) {
            for (int part = item.type == complexes ? 2 : 1; part > 0; --part) {
                string field;
                if (format.size() > 1) format += ",";
                format += read_edit(item, field, false);
                records[0] += field;
            }
        }
        format += ")";
    }
    std::size_t size = 1;
    for (const string& record : records)
        if (record.size() > size) size = record.size();
    string text = "R " + quoted(format) + " " + num(static_cast<long long>(records.size())) + " " +
                  num(static_cast<long long>(size) + below(5));
    for (const string& record : records) text += " " + quoted(record);
    return text + join(items);
}

// ---- Sequences of statements on units ----

struct Connection {
    string access, form;
    bool utf8 = false;
};

string file_text(bool formatted) {
    string text;
    for (int n = between(0, 6); n > 0; --n) {
        if (formatted) {
            std::vector<Item> items = draw_items(between(0, 3), true, 0);
            for (const string& record : list_records(items, false)) text += record + " ";
            text += pick({"\n", "\n", "\n", "\r\n", "\n\n", "\r"});
        } else {
            text += draw_text(between(0, 12));
        }
    }
    // A last record without a line end is left to the programs: the peer has an end of file in
    // place of such a record when no item asks for its characters.
    return text;
}
string simple_format(const std::vector<Item>& items, bool reading = false) {
    string format = draw_format(items, items.size() > 1);
    // Text in a format that reads is an error at another moment in the peer.
    while (reading && format.find_first_of("'\"Hh") != string::npos)
        format = draw_format(items, items.size() > 1);
    return format;
}
string sequence_statement(int unit, const Connection& connection) {
    const string u = num(unit);
    const std::vector<Item> to_write = draw_items(between(0, 3), false, connection.utf8 ? 60 : 3);
    const std::vector<Item> to_read = draw_items(between(0, 3), true, connection.utf8 ? 60 : 3);
    const string advance = chance(25) ? "no" : "yes";
    const int what = below(100);
    if (what < 10) return "p " + u + " rewind";
    if (what < 20) return "p " + u + (connection.access == "stream" ? " rewind" : " backspace");
    if (what < 24) return "p " + u + (connection.access == "stream" ? " flush" : " endfile");
    if (what < 27) return "p " + u + " flush";
    if (what < 33) return "q " + u;
    if (what < 36) return "p " + u + " flush\ng " + u;
    const bool other = chance(3);  // a statement that doesn't fit the connection
    const bool formatted = (connection.form == "formatted") != other;
    const bool writes = chance(50);
    const string place = connection.access == "direct"   ? "rec"
                         : connection.access == "stream" ? (chance(40) ? "pos" : "-")
                                                         : "-";
    if (!formatted) {
        const string at = " " + place + " " +
                          num(chance(95) ? between(1, place == "pos" ? 40 : 6) : between(-1, 300));
        return (writes ? "u " : "v ") + u + at + join(writes ? to_write : to_read);
    }
    if (place != "-") {
        const string at = " " + place + " " +
                          num(chance(95) ? between(1, place == "pos" ? 40 : 6) : between(-1, 300));
        return (writes
                    ? "a " + u + at + " " + quoted(simple_format(to_write)) + join(to_write)
                    : "b " + u + at + " " + quoted(simple_format(to_read, true)) + join(to_read));
    }
    // A list-directed READ of a UTF-8 file never ends in the peer when the file has.
    if (chance(35) && (writes || !connection.utf8))
        return writes ? "X " + u + join(to_write) : "Y " + u + join(to_read);
    return writes
               ? "x " + u + " " + advance + " " + quoted(simple_format(to_write)) + join(to_write)
               : "y " + u + " " + advance + " " + quoted(simple_format(to_read, true)) +
                     join(to_read);
}

int print_sequence(int most) {
    const int unit = between(10, 13);
    const string u = num(unit);
    int printed = 0;
    const auto say = [&](const string& line) {
        std::puts(line.c_str());
        ++printed;
    };
    Connection connection;
    bool open = false;
    // What isn't made of unformatted records can send the peer on an endless search for one.
    const bool records = chance(15);
    if (!records && chance(60)) say("f " + u + " " + quoted(file_text(chance(90))));
    for (int step = between(5, 16); step > 0 && printed < most - 1; --step) {
        if (!open) {
            connection.access =
                records ? "sequential" : pick({"sequential", "sequential", "stream", "direct"});
            connection.form = records ? "unformatted"
                              : connection.access == "sequential"
                                  ? "formatted"
                                  : pick({"formatted", "formatted", "unformatted"});
            connection.utf8 = connection.form == "formatted" && chance(10);
            const bool direct = connection.access == "direct";
            const int recl = direct                          ? between(1, 60)
                             : connection.access == "stream" ? 0
                             : chance(5)                     ? between(10, 100)
                                                             : 0;
            say("o " + u + " " + (chance(25) ? draw_read_modes() : "npnypp") + " " +
                pick({"unknown", "unknown", "unknown", "old", "new", "replace"}) + " " +
                connection.access + " " + connection.form + " " +
                pick({"readwrite", "readwrite", "readwrite", "readwrite", "read", "write"}) + " " +
                (direct ? "asis" : pick({"asis", "asis", "asis", "append", "rewind"})) + " " +
                num(recl) + " " + (connection.utf8 ? "utf-8" : "default"));
            open = true;
        } else if (chance(4)) {
            say("c " + u + " " + pick({"keep", "keep", "delete"}));
            open = false;
        } else {
            say(sequence_statement(unit, connection));
        }
    }
    if (open && chance(70)) {
        say("c " + u + " keep");
        say("g " + u);
    }
    say("e");
    return printed;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: draw SEED COUNT [KINDS]\n", stderr);
        return 2;
    }
    random_state = std::strtoull(argv[1], nullptr, 0);
    const long count = std::atol(argv[2]);
    const string kinds = argc > 3 ? argv[3] : "wwwwwwwwlllrrrrrdddddWRuuu";
    for (long i = 0; i < count;) {
        const char kind = kinds[static_cast<std::size_t>(below(static_cast<int>(kinds.size())))];
        string line;
        switch (kind) {
            case 'w':
                line = write_case();
                break;
            case 'l':
                line = list_write_case();
                break;
            case 'r':
                line = read_case();
                break;
            case 'd':
                line = list_read_case();
                break;
            case 'W':
                line = wide_case(false);
                break;
            case 'R':
                line = wide_case(true);
                break;
            default:
                i += print_sequence(30);
                continue;
        }
        std::puts(line.c_str());
        ++i;
    }
    return 0;
}
