#include "draw_formats.h"

#include "draw_random.h"

using std::string;

namespace {

struct Width {
    int w = 0, d = -1, e = -1;
};

}  // namespace

string mixed_case(string text) {
    if (chance(10))
        for (char& c : text)
            if (c >= 'A' && c <= 'Z' && chance(50)) c = static_cast<char>(c + 32);
    return text;
}

namespace {

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

}  // namespace

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
            switch (below(7)) {
                case 0:
                case 1:
                    return "A";
                case 2:
                    return "G0";
                case 3:
                    return "G" + num(between(1, 12));
                default:
                    return "A" + num(between(chance(3) ? 0 : 1, 14));
            }
    }
}

namespace {

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

}  // namespace

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
        if (chance(8)) {
            text += ",*(" + string(pick({"", "", "1X,'<',", "/,", "'a',:,", "2('['),", "SP,"}));
            text += draw_descriptor(items.back()) + pick({")", ",1X)", ",:,',')", ",'>')", ",/)"});
        }
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
