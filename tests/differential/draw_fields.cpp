#include "draw_fields.h"

#include "draw_formats.h"
#include "draw_random.h"

using std::string;

namespace {

string blanks(string text, int percent) {
    if (chance(percent))
        text.insert(static_cast<std::size_t>(below(static_cast<int>(text.size()) + 1)), " ");
    return text;
}

}  // namespace

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

namespace {

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

}  // namespace

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
