// Draws the cases of a differential run: `draw SEED COUNT [KINDS]` prints COUNT cases in the
// form that executor_io.c reads. KINDS, letters of `wlrdWRnmu`, limits what is drawn; u stands for
// sequences of statements on units.
//
// Values and fields are drawn near the places where editing goes wrong: halves, carries into a
// new digit, the ends of a type's range, fields that just fit or just don't.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "draw_fields.h"
#include "draw_formats.h"
#include "draw_items.h"
#include "draw_namelist.h"
#include "draw_random.h"

namespace {

using std::string;

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
                num(recl) + " " +
                (connection.form == "unformatted" ? pick({"native", "native", "big_endian", "swap"})
                 : connection.utf8                ? "utf-8"
                                                  : "default"));
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
    const string kinds = argc > 3 ? argv[3] : "wwwwwwwwlllrrrrrdddddWRnnmmuuu";
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
            case 'n':
                line = "n " + namelist_write_words();
                break;
            case 'm':
                line = "m " + namelist_read_words();
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
