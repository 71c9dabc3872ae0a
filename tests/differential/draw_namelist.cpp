#include "draw_namelist.h"

#include <initializer_list>
#include <vector>

#include "draw_formats.h"
#include "draw_items.h"
#include "draw_random.h"

using std::string;

namespace {

struct Bounds {
    int lower, extent;
};

// A variable or component. What it holds lies in `bytes`, one element after another.
struct Node {
    string name;
    Class type = integers;
    bool derived = false;
    int kind = 0, length = 0, size = 0, offset = 0;
    int step = 1;  // elements from one to the next, as a pointer to a section has it
    std::vector<Bounds> bounds;
    std::vector<Node> components;

    int elements() const {
        int count = 1;
        for (const Bounds& b : bounds) count *= b.extent;
        return count;
    }
};

string draw_name(std::vector<string>& taken, std::initializer_list<const char*> beginnings) {
    for (;;) {
        string name = pick(beginnings);
        for (int n = chance(60) ? between(0, 4) : between(5, 30); n > 0; --n)
            name += *pick({"a", "b", "n", "_", "1", "7", "e", "x"});
        bool known = false;
        for (const string& other : taken) known |= other == name;
        if (known) continue;
        taken.push_back(name);
        return name;
    }
}
string draw_name(std::vector<string>& taken) {
    return draw_name(taken, {"a", "b", "c", "d", "e", "g", "h", "j", "k", "end", "x", "z", "e5"});
}
// The peer takes a name for a value unless the equals sign is next to it.
string draw_doubtful_name(std::vector<string>& taken) {
    return draw_name(taken, {"t_", "f_", "tr", "true", "inf1", "nan_", "fx"});
}
bool is_doubtful(const string& name) {
    return string("tfin").find(name[0]) != string::npos;
}

Node draw_node(const string& name, int depth, bool to_read) {
    Node node;
    node.name = name;
    for (int rank = chance(50) ? 0 : chance(80) ? 1 : between(2, 3); rank > 0; --rank)
        node.bounds.push_back({chance(70) ? 1 : between(-3, 3),
                               rank == 1 && chance(40) ? between(1, 14) : between(1, 3)});
    if (depth > 0 && chance(20)) {
        node.derived = true;
        std::vector<string> taken;
        for (int n = between(1, 4); n > 0; --n) {
            node.components.push_back(draw_node(draw_name(taken), depth - 1, to_read));
            node.components.back().offset = node.size;
            node.size += node.components.back().size * node.components.back().elements();
            node.size = (node.size + 15) / 16 * 16;
        }
        return node;
    }
    // An array without elements is written as nothing; one of a derived type kills the peer.
    if (depth == 2 && !to_read && !node.bounds.empty() && chance(3)) node.bounds[0].extent = 0;
    node.type = draw_class();
    const Item item = draw_item(node.type);
    node.kind = node.type == characters ? 1 : item.bytes;
    node.size = node.type == characters ? item.bytes : item.bytes == 10 ? 16 : item.bytes;
    if (node.type == complexes) node.size *= 2;
    node.length = node.type == characters ? item.bytes : 0;
    if (to_read && depth == 2 && !node.bounds.empty() && chance(10)) node.step = between(2, 3);
    return node;
}

std::vector<Node> draw_group(bool to_read) {
    std::vector<Node> nodes;
    std::vector<string> taken;
    int place = 0;
    for (int n = between(1, 6); n > 0;) {
        Node node = draw_node(draw_name(taken), 2, to_read);
        const int size = node.size * (node.elements() * node.step + 1);
        if (place + size > 20000) continue;
        if (chance(15) && !node.derived && node.bounds.empty())
            node.name = draw_doubtful_name(taken);
        node.offset = place;
        place += (size + 15) / 16 * 16;
        nodes.push_back(node);
        --n;
    }
    return nodes;
}

// ---- The words of a case ----

string hex_bytes(const string& bytes) {
    string text;
    for (const unsigned char c : bytes) {
        text += "0123456789abcdef"[c >> 4];
        text += "0123456789abcdef"[c & 15];
    }
    return text;
}

// The bytes of a value, from the hexadecimal word of an item.
string value_bytes(const Node& node) {
    Item item = draw_item(node.type);
    if (node.type == characters) {
        string text = draw_text(node.length);
        return text;
    }
    while (item.bytes != node.kind) item = draw_item(node.type);
    const string digits = item.word.substr(item.word.find(':') + 1);
    const int parts = node.type == complexes ? 2 : 1;
    const std::size_t part_digits = digits.size() / static_cast<std::size_t>(parts);
    string bytes;
    for (int part = 0; part < parts; ++part) {
        string piece;
        for (std::size_t i = part_digits; i > 0; i -= 2)
            piece += static_cast<char>(
                std::stoi(digits.substr(static_cast<std::size_t>(part) * part_digits + i - 2, 2),
                          nullptr, 16));
        piece.resize(static_cast<std::size_t>(node.size / parts));
        bytes += piece;
    }
    return bytes;
}

void fill(const Node& node, string& arena, std::size_t at) {
    string value;
    for (int i = 0; i < node.elements(); ++i, at += static_cast<std::size_t>(node.size)) {
        if (node.derived) {
            for (const Node& component : node.components)
                fill(component, arena, at + static_cast<std::size_t>(component.offset));
            continue;
        }
        if (value.empty() || chance(50)) value = value_bytes(node);
        arena.replace(at, value.size(), value);
    }
}

void describe(const Node& node, const string& prefix, int offset, string& words) {
    const string path = prefix + node.name;
    const int number = node.derived ? 5 : node.type == characters ? 6 : 1 + node.type;
    const int kind = node.derived ? 0 : node.kind;
    words += " " + path + "," + num(number) + "," + num(kind) + "," + num(node.length) + "," +
             num(node.size) + "," + num(offset) + "," + num(static_cast<int>(node.bounds.size()));
    int stride = node.step;
    for (const Bounds& b : node.bounds) {
        words += "," + num(stride) + "," + num(b.lower) + "," + num(b.lower + b.extent - 1);
        stride *= b.extent;
    }
    for (const Node& component : node.components)
        describe(component, path + "%", offset + component.offset, words);
}

string variable_words(const std::vector<Node>& nodes, bool to_read) {
    int size = 0;
    for (const Node& node : nodes)
        size = node.offset + node.size * (node.elements() * node.step + 1);
    // What a READ leaves alone is to be seen.
    string arena(static_cast<std::size_t>(size), to_read ? '?' : '\0');
    string words;
    for (const Node& node : nodes) {
        if (!to_read) fill(node, arena, static_cast<std::size_t>(node.offset));
        describe(node, "", node.offset, words);
    }
    return (arena.empty() ? "00" : hex_bytes(arena)) + words;
}

// ---- Text to read ----

class Text {
  public:
    explicit Text(bool comma) : comma_(comma) {}

    std::vector<string> lines{1};

    void put(const string& text) { lines.back() += text; }
    void new_line() { lines.emplace_back(); }
    char separator() const { return comma_ ? ';' : ','; }

    // Between values, of which none is followed by a comment behind a comma: the peer takes that
    // for a null value.
    void separate() {
        switch (below(14)) {
            case 0:
                new_line();
                break;
            case 1:
                put(" ");
                put(string(1, separator()));
                put(" ");
                break;
            case 2:
                put(string(1, separator()));
                new_line();
                break;
            case 3:
                put(string(1, separator()) + "  ");
                break;
            case 4:
                put(string(2, separator()));
                break;
            case 5:
                put(" ! a comment, with = and '");
                new_line();
                break;
            case 6:
            case 7:
            case 8:
            case 9:
                put(string(1, separator()));
                break;
            default:
                put(" ");
                break;
        }
    }

    bool comma() const { return comma_; }

  private:
    bool comma_;
};

string real_value(bool comma) {
    if (chance(5)) return pick({"inf", "Infinity", "-inf", "nan", "NaN", "+nan"});
    string text = pick({"", "", "-", "+"});
    text += digits(between(1, 12));
    if (chance(70)) text += (comma ? "," : ".") + digits(between(0, 10));
    if (chance(35)) text += pick({"e", "E", "d", "e+", "D-", "e-", "+", "-", "q"}) + num(below(25));
    return text;
}

string text_value(const Node& node, bool comma) {
    switch (node.type) {
        case integers: {
            const int most = node.kind == 1 ? 2 : node.kind == 2 ? 4 : node.kind == 4 ? 9 : 18;
            return string(pick({"", "", "-", "+"})) + digits(between(1, most));
        }
        case logicals:
            return pick({"T", "F", ".T.", ".F.", ".TRUE.", ".false.", "t", "f"});
        case reals:
            return real_value(comma);
        case complexes:
            return string("(") + pick({"", " "}) + digits(between(1, 5)) + pick({"", " "}) +
                   (comma ? ";" : ",") + pick({"", " "}) + "-" + digits(between(1, 9)) +
                   pick({"", " "}) + ")";
        default: {
            const char mark = *pick({"'", "\""});
            string result(1, mark);
            for (char c : draw_text(between(0, chance(90) ? 8 : 40)))
                result.append(c == mark ? 2 : 1, c);
            return result + mark;
        }
    }
}

string cased(string text) {
    if (chance(30))
        for (char& c : text)
            if (chance(50) && c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return text;
}

// Subscripts, and how many elements they select; a list for one element may go on to the end of
// each dimension.
string draw_subscripts(const Node& node, bool sections, int& count) {
    string text = "(";
    bool section = false;
    int selected = 1, behind = 1;
    for (const Bounds& b : node.bounds) {
        if (text.size() > 1) text += pick({",", ",", ", "});
        const int first = between(0, b.extent - 1), last = between(first, b.extent - 1);
        const int step = chance(70) ? 1 : between(1, 3);
        if (sections && chance(50)) {
            section = true;
            switch (below(4)) {
                case 0:
                    text += ":";
                    selected *= b.extent;
                    break;
                case 1:
                    text += num(b.lower + first) + ":";
                    selected *= b.extent - first;
                    break;
                default:
                    text += num(b.lower + first) + ":" + num(b.lower + last);
                    if (step != 1) text += ":" + num(step);
                    selected *= (last - first) / step + 1;
            }
        } else {
            text += num(b.lower + first);
            behind *= b.extent - first;
        }
    }
    count = section ? selected : behind;
    return text + ")";
}

// A variable and its components, up to one that values may be given to: `target` is where it
// leads, `count` how many elements of it.
string draw_target(const std::vector<Node>& nodes, const Node*& target, int& count) {
    string text;
    const std::vector<Node>* level = &nodes;
    for (;;) {
        const Node& node =
            (*level)[static_cast<std::size_t>(below(static_cast<int>(level->size())))];
        text += cased(node.name);
        const bool leaf = !node.derived || chance(30);
        count = node.elements();
        if (!node.bounds.empty() && (!leaf || chance(50))) {
            // Of an array of a derived type the peer wants one element.
            text += draw_subscripts(node, leaf && !node.derived, count);
            if (node.derived) count = 1;
        }
        if (leaf) {
            target = &node;
            return text;
        }
        text += "%";
        level = &node.components;
    }
}

void leaves_of(const Node& node, std::vector<const Node*>& leaves) {
    for (int i = 0; i < node.elements(); ++i) {
        if (!node.derived) leaves.push_back(&node);
        for (const Node& component : node.components) leaves_of(component, leaves);
    }
}

void put_values(Text& text, const Node& target, int count) {
    std::vector<const Node*> leaves;
    for (int i = 0; i < count; ++i) {
        if (!target.derived) leaves.push_back(&target);
        for (const Node& component : target.components) leaves_of(component, leaves);
    }
    std::size_t most = leaves.size();
    if (chance(30)) most = static_cast<std::size_t>(below(static_cast<int>(most) + 1));
    for (std::size_t i = 0; i < most;) {
        const Node& leaf = *leaves[i];
        std::size_t same = 1;
        while (i + same < most && leaves[i + same] == &leaf) ++same;
        // The peer doesn't repeat a value of kind 10, and no count goes beyond a component.
        const bool repeats = !target.derived && chance(15) && leaf.kind != 10;
        if (repeats) {
            const int n = between(1, static_cast<int>(same));
            text.put(num(n) + "*");
            if (chance(80)) text.put(text_value(leaf, text.comma()));
            i += static_cast<std::size_t>(n);
        } else {
            text.put(text_value(leaf, text.comma()));
            ++i;
        }
        if (i < most || chance(50)) {
            const std::size_t before = text.lines.back().size();
            const std::size_t lines = text.lines.size();
            text.separate();
            const string& line = text.lines.back();
            // Two separators: a null value.
            if (text.lines.size() == lines && line.size() == before + 2 &&
                line.substr(before) == string(2, text.separator()))
                ++i;
        }
    }
}

// `faulty`: now and then a text isn't what it should be.
std::vector<string> draw_group_text(const std::vector<Node>& nodes, bool comma, bool faulty) {
    Text text(comma);
    if (chance(10)) text.put("&other a=1, b='x' /"), text.new_line();
    if (chance(10)) text.put("! a comment &g"), text.new_line();
    text.put(pick({"&g ", "&G ", " &g ", "$g ", "&g", "&g\t"}));
    if (text.lines.back().back() == 'g') text.new_line();
    for (int n = between(0, 5); n > 0; --n) {
        const Node* target = nullptr;
        int count = 0;
        text.put(" " + draw_target(nodes, target, count));
        text.put(is_doubtful(target->name) ? "=" : pick({"=", "=", " = ", "= ", " ="}));
        put_values(text, *target, count);
        if (chance(20)) text.new_line();
    }
    if (faulty && chance(4)) {
        text.put(pick({" nosuch=1", " a b=2", " x(99)=1", " )5", " =5"}));
    }
    if (!faulty || chance(97)) text.put(pick({" /", " /", " /", " &end", " &END", " $end"}));
    if (chance(20)) text.new_line();
    return text.lines;
}

}  // namespace

string namelist_write_words() {
    const std::vector<Node> nodes = draw_group(false);
    const string modes = chance(30) ? draw_modes() : "-";
    const string variables = variable_words(nodes, false);
    // What doesn't fit into an internal file makes the peer write over it from its start.
    const string place = chance(60)                               ? "u 1 1"
                         : chance(50) || variables.size() > 10000 ? "i 1 60000"
                                                                  : "i 600 1500";
    return modes + " " + place + " " + variables;
}

string namelist_read_words() {
    const std::vector<Node> nodes = draw_group(true);
    string modes = chance(20) ? draw_modes() : "-";
    if (modes[0] != '-') modes[4] = 'p';
    const bool comma = modes[0] != '-' && modes[1] == 'c';
    std::vector<string> lines;
    // What fails on an internal file makes the peer leave the next one unread.
    const bool internal = chance(50);
    for (int n = chance(80) ? 1 : 2; n > 0; --n)
        for (const string& line : draw_group_text(nodes, comma, !internal)) lines.push_back(line);
    std::size_t size = 1;
    for (const string& line : lines)
        if (line.size() > size) size = line.size();
    string words = modes + (internal ? " i " : " u ") + num(static_cast<long long>(lines.size())) +
                   " " + num(static_cast<long long>(size) + below(4));
    for (const string& line : lines) words += " " + quoted(line);
    return words + " " + variable_words(nodes, true);
}
