#include "platform/script/parser.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace tarn::platform {
namespace {

constexpr std::int32_t largest_number = 100000;
constexpr std::int32_t most_times = 1000;
constexpr std::int32_t longest_wait = 3600 * 1000;  // milliseconds

// What follows a command's words, a letter each:
//   T target   O offset, if there   S text   L one or more texts   Q text, if there
//   I number   N times, if there    D duration   K keys   t the word "to"
struct Form {
    const char* words;
    Command command;
    const char* arguments;
};
constexpr Form forms[] = {
    {"click", Command::click, "TO"},
    {"double click", Command::double_click, "TO"},
    {"right click", Command::right_click, "TO"},
    {"middle click", Command::middle_click, "TO"},
    {"hold", Command::hold, "TOD"},
    {"type", Command::type, "S"},
    {"key", Command::key, "KN"},
    {"press", Command::press, "K"},
    {"release", Command::release, "K"},
    {"drag", Command::drag, "TOtTO"},
    {"wheel", Command::wheel, "TI"},
    {"hover", Command::hover, "TO"},
    {"drop", Command::drop, "TOL"},
    {"wait idle", Command::wait_idle, ""},
    {"wait", Command::wait, "D"},
    {"focus", Command::focus, "T"},
    {"expect value", Command::expect_value, "TS"},
    {"expect text", Command::expect_text, "TQ"},
    {"expect checked", Command::expect_checked, "T"},
    {"expect not checked", Command::expect_not_checked, "T"},
    {"expect enabled", Command::expect_enabled, "T"},
    {"expect disabled", Command::expect_disabled, "T"},
    {"expect focused", Command::expect_focused, "T"},
    {"expect window", Command::expect_window, "S"},
    {"expect no window", Command::expect_no_window, "S"},
    {"window", Command::window, "Q"},
    {"screenshot", Command::screenshot, "S"},
    {"tree", Command::tree, "S"},
    {"close", Command::close, ""},
    {"resize", Command::resize, "II"},
    {"move", Command::move, "II"},
    {"menu", Command::menu, "L"},
};

struct Token {
    bool quoted = false;
    std::string text;
};

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// A quoted text from its opening quote on; `at` moves behind it.
bool read_text(std::string_view line, std::size_t& at, std::string& text, std::string& what) {
    for (++at; at < line.size(); ++at) {
        if (line[at] == '"') {
            ++at;
            return true;
        }
        if (line[at] != '\\') {
            text.push_back(line[at]);
            continue;
        }
        char c = ++at < line.size() ? line[at] : '\0';
        if (c != 'n' && c != 't' && c != '\\' && c != '"') {
            what = R"(after a \ in a text only n, t, \ and " can stand)";
            return false;
        }
        text.push_back(c == 'n' ? '\n' : c == 't' ? '\t' : c);
    }
    what = "a text has no closing quote";
    return false;
}

// A `#` begins a comment, but one with a digit behind it is a control's number.
bool split(std::string_view line, std::vector<Token>& tokens, std::string& what) {
    for (std::size_t at = 0; at < line.size();) {
        if (is_blank(line[at])) {
            ++at;
            continue;
        }
        bool number = !tokens.empty() && at + 1 < line.size() && is_digit(line[at + 1]);
        if (line[at] == '#' && !number) return true;
        Token& token = tokens.emplace_back();
        if (line[at] == '"') {
            token.quoted = true;
            if (!read_text(line, at, token.text, what)) return false;
            if (at < line.size() && !is_blank(line[at])) {
                what = "a blank is missing behind a text";
                return false;
            }
        } else {
            while (at < line.size() && !is_blank(line[at])) token.text.push_back(line[at++]);
        }
    }
    return true;
}

bool read_number(std::string_view text, std::int32_t& number) {
    if (!text.empty() && text[0] == '+') text.remove_prefix(1);
    auto [stop, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc{} && stop == text.data() + text.size() &&
           number >= -largest_number && number <= largest_number;
}

bool read_point(std::string_view text, POINT& point) {
    std::size_t comma = text.find(',');
    return comma != std::string_view::npos && read_number(text.substr(0, comma), point.x) &&
           read_number(text.substr(comma + 1), point.y);
}

// 200ms, 2s or 0.5s.
bool read_duration(std::string_view text, std::int32_t& milliseconds) {
    std::int32_t unit = 0;
    if (text.ends_with("ms")) {
        unit = 1;
        text.remove_suffix(2);
    } else if (text.ends_with("s")) {
        unit = 1000;
        text.remove_suffix(1);
    }
    double value = 0.0, place = 0.0;
    bool digits = false;
    for (char c : text) {
        if (c == '.' && place == 0.0) {
            place = 1.0;
            continue;
        }
        if (!is_digit(c)) return false;
        digits = true;
        if (place == 0.0) {
            value = value * 10 + (c - '0');
        } else {
            value += (c - '0') * (place /= 10);
        }
        if (value > longest_wait) return false;
    }
    if (unit == 0 || !digits || value * unit > longest_wait) return false;
    milliseconds = static_cast<std::int32_t>(std::lround(value * unit));
    return true;
}

class LineReader {
  public:
    LineReader(std::vector<Token>& tokens, ScriptLine& line, std::string& what)
        : tokens_(tokens), line_(line), what_(what) {}

    bool read() {
        const Form* form = find_form();
        if (!form) return false;
        line_.command = form->command;
        for (const char* argument = form->arguments; *argument; ++argument) {
            if (!read_argument(*argument)) return false;
        }
        if (at_ < tokens_.size()) {
            what_ = "nothing can stand here any more: " + shown(tokens_[at_]);
            return false;
        }
        return finish();
    }

  private:
    static std::string shown(const Token& token) {
        return token.quoted ? "\"" + token.text + "\"" : token.text;
    }

    // The form whose words are the longest that the line begins with.
    const Form* find_form() {
        const Form* best = nullptr;
        for (const Form& form : forms) {
            std::size_t words = count_words(form.words);
            if (words > at_ && begins_with(form.words)) {
                best = &form;
                at_ = words;
            }
        }
        if (!best) what_ = "there is no command " + shown(tokens_[0]);
        return best;
    }
    static std::size_t count_words(std::string_view words) {
        std::size_t count = 1;
        for (char c : words) count += c == ' ' ? 1u : 0u;
        return count;
    }
    bool begins_with(std::string_view words) const {
        for (std::size_t i = 0; !words.empty(); ++i) {
            std::size_t end = std::min(words.find(' '), words.size());
            if (i >= tokens_.size() || tokens_[i].quoted || tokens_[i].text != words.substr(0, end))
                return false;
            words.remove_prefix(std::min(end + 1, words.size()));
        }
        return true;
    }

    const Token* next() { return at_ < tokens_.size() ? &tokens_[at_] : nullptr; }
    bool missing(const char* wanted) {
        const Token* token = next();
        what_ = std::string(wanted) + " is missing" + (token ? " before " + shown(*token) : "");
        return false;
    }

    bool read_argument(char kind) {
        const Token* token = next();
        bool word = token && !token->quoted;
        switch (kind) {
            case 'T':
                return read_target();
            case 'O':
                if (Target& target = last_target(); word && target.kind != Target::Kind::point &&
                                                    read_point(token->text, target.offset)) {
                    target.has_offset = true;
                    ++at_;
                }
                return true;
            case 'S':
            case 'L':
                if (!token || !token->quoted) return missing("a text in quotes");
                line_.texts.push_back(token->text);
                ++at_;
                while (kind == 'L' && next() && next()->quoted)
                    line_.texts.push_back(tokens_[at_++].text);
                return true;
            case 'Q':
                if (token && token->quoted) {
                    line_.texts.push_back(token->text);
                    line_.has_text = true;
                    ++at_;
                }
                return true;
            case 'I':
                if (!word ||
                    !read_number(token->text, numbers_++ == 0 ? line_.first : line_.second))
                    return missing("a number");
                ++at_;
                return true;
            case 'N':
                line_.first = 1;
                if (word && read_number(token->text, line_.first)) ++at_;
                if (line_.first >= 1 && line_.first <= most_times) return true;
                what_ = "a key can be struck from 1 to 1000 times";
                return false;
            case 'D':
                if (!word || !read_duration(token->text, line_.first))
                    return missing("\"idle\" or a time like 200ms or 2s");
                ++at_;
                return true;
            case 'K':
                if (!word || !parse_key(token->text, line_.key))
                    return missing("a key like Tab, F5 or Ctrl+A");
                ++at_;
                return true;
            default:
                if (!word || token->text != "to") return missing("the word \"to\"");
                ++at_;
                targets_ = 1;
                return true;
        }
    }

    Target& last_target() { return targets_ == 0 ? line_.target : line_.other; }

    bool read_target() {
        const Token* token = next();
        Target& target = last_target();
        if (!token) return missing("a control's name in quotes, its #number or a point X,Y");
        if (token->quoted) {
            target.kind = Target::Kind::name;
            target.name = token->text;
        } else if (token->text[0] == '#' && read_number(token->text.substr(1), target.number) &&
                   target.number > 0) {
            target.kind = Target::Kind::number;
        } else if (read_point(token->text, target.offset)) {
            target.kind = Target::Kind::point;
        } else {
            return missing("a control's name in quotes, its #number or a point X,Y");
        }
        ++at_;
        return true;
    }

    // What the arguments can't say one by one.
    bool finish() {
        bool control =
            line_.target.kind == Target::Kind::name || line_.target.kind == Target::Kind::number;
        switch (line_.command) {
            case Command::focus:
            case Command::expect_value:
            case Command::expect_checked:
            case Command::expect_not_checked:
            case Command::expect_enabled:
            case Command::expect_disabled:
            case Command::expect_focused:
                if (control) return true;
                what_ = "a control is meant here, not a point";
                return false;
            case Command::expect_text:
                if (line_.has_text && control) return true;
                // One text alone: it is shown somewhere.
                if (!line_.has_text && line_.target.kind == Target::Kind::name) {
                    line_.texts.push_back(line_.target.name);
                    line_.target = {};
                    return true;
                }
                what_ = "a text in quotes is missing";
                return false;
            case Command::wheel:
                if (line_.first != 0 && std::abs(line_.first) <= most_times) return true;
                what_ = "the wheel turns by 1 to 1000 notches, down with a minus";
                return false;
            case Command::resize:
                if (line_.first > 0 && line_.second > 0) return true;
                what_ = "a size is above zero";
                return false;
            default:
                return true;
        }
    }

    std::vector<Token>& tokens_;
    ScriptLine& line_;
    std::string& what_;
    std::size_t at_ = 0;
    int numbers_ = 0, targets_ = 0;
};

}  // namespace

bool parse_script(std::string_view text, std::vector<ScriptLine>& lines, ScriptMistake& mistake) {
    lines.clear();
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // a byte order mark
    std::vector<Token> tokens;
    for (std::int32_t number = 1; !text.empty(); ++number) {
        std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view source = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        while (!source.empty() && (is_blank(source.back()) || source.back() == '\r'))
            source.remove_suffix(1);
        while (!source.empty() && is_blank(source.front())) source.remove_prefix(1);
        ScriptLine line;
        line.number = number;
        line.source = source;
        tokens.clear();
        if (!split(source, tokens, mistake.what) ||
            (!tokens.empty() && !LineReader(tokens, line, mistake.what).read())) {
            mistake.line = number;
            mistake.source = source;
            return false;
        }
        if (!tokens.empty()) lines.push_back(std::move(line));
    }
    return true;
}

}  // namespace tarn::platform
