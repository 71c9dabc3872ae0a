#include "platform/dialogs/program_resources.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/constants.h"
#include "platform/kernel/module.h"
#include "platform/user/menus.h"

namespace tarn::platform {

namespace {

constexpr long largest_file = 64L << 20;
constexpr int deepest_include = 8, deepest_menu = 100;
constexpr int most_includes = 1000;  // a file that includes itself often would never end

bool read_file(const std::string& path, std::string& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return false;
    bool sound = std::fseek(file, 0, SEEK_END) == 0;
    const long size = sound ? std::ftell(file) : 0;
    sound = size > 0 && size <= largest_file && std::fseek(file, 0, SEEK_SET) == 0;
    if (sound) {
        bytes.resize(static_cast<std::size_t>(size));
        sound = std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
    }
    std::fclose(file);
    return sound;
}

bool same(const std::string& a, const char* b) {
    return strcasecmp(a.c_str(), b) == 0;
}

// ---- The script as tokens ----------------------------------------------------------------------
struct Token {
    enum class Kind : std::uint8_t { word, text, sign, end } kind = Kind::end;
    std::string text;
    bool line_start = false;  // the first of its line
};

struct Scanner {
    const std::string& source;
    std::size_t at = 0;
    bool line_start = true;

    char peek(std::size_t ahead = 0) const {
        return at + ahead < source.size() ? source[at + ahead] : '\0';
    }
    void skip_blanks();
    std::string rest_of_line();
    Token text();
    Token next();
};

void Scanner::skip_blanks() {
    for (; at < source.size(); ++at) {
        if (peek() == '/' && peek(1) == '*') {
            const std::size_t end = source.find("*/", at + 2);
            at = end == std::string::npos ? source.size() - 1 : end + 1;
        } else if (peek() == '/' && peek(1) == '/') {
            at = std::min(source.find('\n', at), source.size()) - 1;
        } else if (peek() == '\n') {
            line_start = true;
        } else if (static_cast<unsigned char>(peek()) > ' ') {
            return;
        }
    }
}

std::string Scanner::rest_of_line() {
    const std::size_t end = std::min(source.find('\n', at), source.size());
    std::string rest = source.substr(at, end - at);
    at = end;
    return rest;
}

// A quote is doubled; \t, \n and \a (the shortcut stands at the right) as in C.
Token Scanner::text() {
    Token token{Token::Kind::text, "", false};
    for (++at; at < source.size(); ++at) {
        if (peek() == '"' && peek(1) != '"') {
            ++at;
            break;
        }
        if (peek() == '"') ++at;
        const bool escape = peek() == '\\' && at + 1 < source.size();
        const char c = escape ? source[++at] : peek();
        if (escape && (c == 't' || c == 'a'))
            token.text += '\t';
        else
            token.text += escape && c == 'n' ? '\n' : c;
    }
    return token;
}

Token Scanner::next() {
    skip_blanks();
    Token token;
    const bool first = line_start;
    line_start = false;
    if (at >= source.size()) return token;
    if (peek() == '"') {
        token = text();
    } else if (std::string_view("{},|()+-#").find(peek()) != std::string_view::npos) {
        token = {Token::Kind::sign, std::string(1, source[at++]), false};
    } else {
        token.kind = Token::Kind::word;
        while (at < source.size() && static_cast<unsigned char>(peek()) > ' ' &&
               std::string_view("{},|()+\"").find(peek()) == std::string_view::npos)
            token.text += source[at++];
    }
    token.line_start = first;
    return token;
}

// ---- What the tokens say -----------------------------------------------------------------------
struct Reader {
    std::string folder;
    std::map<std::string, std::string> defined;
    std::vector<ProgramResource> found;
    int included = 0;

    void read(const std::string& source, int depth);
    void directive(Scanner& scanner, int depth);
    std::string resolved(const std::string& word) const;
    std::int32_t number(const Token& token) const;
    bool resource(Scanner& scanner, const Token& name, Token& ahead);
    bool picture(Scanner& scanner, ProgramResource& into, Token& ahead);
    bool menu(Scanner& scanner, ProgramResource& into, Token& ahead);
    bool menu_item(Scanner& scanner, MenuLine& line, Token& ahead) const;
    UINT menu_flags(Scanner& scanner, Token& ahead) const;
};

bool is(const Token& token, const char* word) {
    return token.kind != Token::Kind::text && same(token.text, word);
}

bool begins(const Token& token) {
    return is(token, "BEGIN") || is(token, "{");
}

bool ends(const Token& token) {
    return is(token, "END") || is(token, "}");
}

std::string Reader::resolved(const std::string& word) const {
    const auto entry = defined.find(word);
    const std::string value = entry == defined.end() ? word : entry->second;
    char* end = nullptr;
    const long digits = std::strtol(value.c_str(), &end, 0);
    return !value.empty() && *end == 0 ? std::to_string(digits) : word;
}

std::int32_t Reader::number(const Token& token) const {
    return static_cast<std::int32_t>(std::strtol(resolved(token.text).c_str(), nullptr, 10));
}

// #define NAME NUMBER and #include "FILE" count; conditions are taken as met.
void Reader::directive(Scanner& scanner, int depth) {
    const Token what = scanner.next();
    const std::string rest = scanner.rest_of_line();
    Scanner words{rest, 0, false};
    if (is(what, "define")) {
        const std::string name = words.next().text;
        defined[name] = words.next().text;
    } else if (is(what, "include") && depth < deepest_include && included++ < most_includes) {
        const Token file = words.next();
        std::string text;
        if (file.kind == Token::Kind::text && read_file(folder + file.text, text))
            read(text, depth + 1);
    }
}

bool is_memory_flag(const Token& token) {
    for (const char* flag :
         {"PRELOAD", "LOADONCALL", "FIXED", "MOVEABLE", "DISCARDABLE", "PURE", "IMPURE"})
        if (is(token, flag)) return true;
    return false;
}

bool Reader::picture(Scanner& scanner, ProgramResource& into, Token& ahead) {
    if (ahead.kind != Token::Kind::text && ahead.kind != Token::Kind::word) return false;
    into.file = ahead.text[0] == '/' ? ahead.text : folder + ahead.text;
    std::replace(into.file.begin(), into.file.end(), '\\', '/');
    ahead = scanner.next();
    return true;
}

UINT Reader::menu_flags(Scanner& scanner, Token& ahead) const {
    UINT flags = 0;
    while (!ahead.line_start && ahead.kind != Token::Kind::end && !begins(ahead) && !ends(ahead)) {
        if (is(ahead, "CHECKED")) flags |= MF_CHECKED;
        if (is(ahead, "GRAYED") || is(ahead, "INACTIVE")) flags |= MF_GRAYED;
        ahead = scanner.next();
    }
    return flags;
}

bool Reader::menu_item(Scanner& scanner, MenuLine& line, Token& ahead) const {
    ahead = scanner.next();
    line.form = MenuLine::Form::separator;
    if (is(ahead, "SEPARATOR")) {
        ahead = scanner.next();
        return true;
    }
    if (ahead.kind != Token::Kind::text) return false;
    line.form = MenuLine::Form::item;
    line.text = ahead.text;
    ahead = scanner.next();
    if (is(ahead, ",")) ahead = scanner.next();
    line.id = number(ahead);
    ahead = scanner.next();
    line.flags = menu_flags(scanner, ahead);
    return true;
}

bool Reader::menu(Scanner& scanner, ProgramResource& into, Token& ahead) {
    while (!begins(ahead)) {
        if (ahead.kind == Token::Kind::end) return false;
        ahead = scanner.next();
    }
    ahead = scanner.next();
    for (int depth = 1; depth > 0;) {
        MenuLine line{MenuLine::Form::end, "", 0, 0};
        if (is(ahead, "MENUITEM")) {
            if (!menu_item(scanner, line, ahead)) return false;
        } else if (is(ahead, "POPUP") && depth < deepest_menu) {
            line.form = MenuLine::Form::popup;
            line.text = (ahead = scanner.next()).text;
            ahead = scanner.next();
            while (!begins(ahead) && ahead.kind != Token::Kind::end) {
                if (is(ahead, "GRAYED") || is(ahead, "INACTIVE")) line.flags |= MF_GRAYED;
                ahead = scanner.next();
            }
            ahead = scanner.next();
            ++depth;
        } else if (ends(ahead)) {
            ahead = scanner.next();
            if (--depth == 0) break;
        } else {
            return false;
        }
        into.menu.push_back(std::move(line));
    }
    return true;
}

// `ahead` stands on the kind; true leaves it behind the resource.
bool Reader::resource(Scanner& scanner, const Token& name, Token& ahead) {
    constexpr struct {
        char word[8];
        resource_kind kind;
    } kinds[] = {{"ICON", resource_kind::icon},     {"CURSOR", resource_kind::cursor},
                 {"BITMAP", resource_kind::bitmap}, {"SOUND", resource_kind::sound},
                 {"WAVE", resource_kind::sound},    {"MENU", resource_kind::menu},
                 {"MENUEX", resource_kind::menu}};
    for (const auto& each : kinds) {
        if (!is(ahead, each.word)) continue;
        ProgramResource fresh{each.kind, resolved(name.text), "", {}};
        do ahead = scanner.next();
        while (is_memory_flag(ahead));
        const bool sound = each.kind == resource_kind::menu ? menu(scanner, fresh, ahead)
                                                            : picture(scanner, fresh, ahead);
        if (sound) found.push_back(std::move(fresh));
        return sound;
    }
    return false;
}

// A resource begins a line with its name and its kind. Whatever else there is is passed over.
void Reader::read(const std::string& source, int depth) {
    Scanner scanner{source};
    int inside = 0;  // what isn't understood may hold lines that look like resources
    for (Token token = scanner.next(); token.kind != Token::Kind::end;) {
        if (is(token, "#") && token.line_start) {
            directive(scanner, depth);
            token = scanner.next();
            continue;
        }
        if (begins(token)) ++inside;
        if (ends(token) && inside > 0) --inside;
        Token ahead = scanner.next();
        if (inside == 0 && token.line_start && !ahead.line_start) resource(scanner, token, ahead);
        token = std::move(ahead);
    }
}

// ---- The program's own -------------------------------------------------------------------------
const std::string& program_folder() {
    static const std::string* folder = [] {
        const std::string& path = program_path();
        const std::size_t slash = path.rfind('/');
        return new std::string(slash == std::string::npos ? "" : path.substr(0, slash + 1));
    }();
    return *folder;
}

const std::vector<ProgramResource>& program_resources() {
    static const std::vector<ProgramResource>* all = [] {
        std::string text;
        const bool there = read_file(program_path() + ".rc", text);
        return new std::vector<ProgramResource>(there ? read_resource_script(text, program_folder())
                                                      : std::vector<ProgramResource>{});
    }();
    return *all;
}

const ProgramResource* find_resource(resource_kind kind, const std::string& name) {
    for (const ProgramResource& each : program_resources())
        if (each.kind == kind && same(name, each.name.c_str())) return &each;
    return nullptr;
}

const char* ending_of(resource_kind kind) {
    switch (kind) {
        case resource_kind::icon:
            return ".ico";
        case resource_kind::cursor:
            return ".cur";
        case resource_kind::sound:
            return ".wav";
        default:
            return ".bmp";
    }
}

bool is_file(const std::string& path) {
    struct stat found;
    return stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) &&
           access(path.c_str(), R_OK) == 0;
}

// The level's lines go to `into`; the result is the line behind them.
std::size_t fill_menu(HMENU into, const std::vector<MenuLine>& lines, std::size_t at) {
    while (at < lines.size()) {
        const MenuLine& line = lines[at++];
        switch (line.form) {
            case MenuLine::Form::item:
                AppendMenuA(into, MF_STRING | line.flags, static_cast<std::uintptr_t>(line.id),
                            line.text.c_str());
                break;
            case MenuLine::Form::separator:
                AppendMenuA(into, MF_SEPARATOR, 0, nullptr);
                break;
            case MenuLine::Form::popup: {
                const HMENU sub = CreatePopupMenu();
                AppendMenuA(into, MF_POPUP | line.flags, static_cast<std::uintptr_t>(sub),
                            line.text.c_str());
                at = fill_menu(sub, lines, at);
                break;
            }
            case MenuLine::Form::end:
                return at;
        }
    }
    return at;
}

}  // namespace

std::vector<ProgramResource> read_resource_script(const std::string& text,
                                                  const std::string& folder) {
    Reader reader{folder, {}, {}, 0};
    reader.read(text, 0);
    return std::move(reader.found);
}

std::string resource_file(resource_kind kind, const std::string& name) {
    if (name.empty()) return {};
    const ProgramResource* resource = find_resource(kind, name);
    if (resource != nullptr && is_file(resource->file)) return resource->file;
    const bool absolute = name[0] == '/';
    for (const std::string& folder : {std::string(), program_folder()}) {
        std::string path = folder + name;
        if (is_file(path)) return path;
        path += ending_of(kind);
        if (is_file(path)) return path;
        if (absolute) break;
    }
    return {};
}

bool read_picture_resource(resource_kind kind, const std::string& name, std::string& bytes) {
    const std::string path = resource_file(kind, name);
    return !path.empty() && read_file(path, bytes);
}

HMENU LoadMenuA(const char* name) {
    constexpr std::uintptr_t numbers = 0x10000;
    const auto number = reinterpret_cast<std::uintptr_t>(name);
    const ProgramResource* resource = find_resource(
        resource_kind::menu, number < numbers ? std::to_string(number) : std::string(name));
    if (resource == nullptr) return HMENU{};
    const HMENU menu = CreateMenu();
    fill_menu(menu, resource->menu, 0);
    return menu;
}

}  // namespace tarn::platform
