// Reading a call-back from the arguments of a call: a function, or the name of a standard action
// with the action's own arguments behind it.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "winio/actions.h"
#include "winio/code_address.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::size_t longest_text = 512;

// The argument as a text, cut to what a name with its options can be.
struct text_view {
    char bytes[longest_text];
    std::size_t length = 0;
    bool counted = false;  // a length of the call's own belongs to it
    std::string_view view() const { return {bytes, length}; }
};

text_view text_at(word pointer, const argument_source& from) {
    text_view text;
    text.length = copy_readable(reinterpret_cast<const void*>(pointer), text.bytes, longest_text);
    const bool has_length = from.fortran && from.lengths &&
                            (from.length_count < 0 || from.next_length < from.length_count);
    if (has_length) {
        text.counted = true;
        const std::int32_t length = std::max(from.lengths[from.next_length], 0);
        text.length = std::min(text.length, static_cast<std::size_t>(length));
    }
    text.length = strnlen(text.bytes, text.length);
    while (text.length > 0 && text.bytes[text.length - 1] == ' ') --text.length;
    return text;
}

call_back to_function(word pointer) {
    return reinterpret_cast<call_back>(pointer);
}

// ---- The arguments of an action ----------------------------------------------------------------
struct thunk_reader {
    argument_source& from;
    const char* message;
    thunk& into;
    int words = 0;
    int call_backs = 0;

    void store(word value) {
        word* const cells[] = {&into.a, &into.b, &into.c, &into.d, &into.e, &into.f};
        if (words < 6) *cells[words++] = value;
    }
    void read(char kind);
};

word pointer_word(const void* pointer) {
    return reinterpret_cast<word>(pointer);
}

void thunk_reader::read(char kind) {
    switch (kind) {
        case 'S':
            return store(pointer_word(user_string(from)));
        case 'I':
            return store(user_integer(from));
        case 'i':
            return store(pointer_word(user_int_pointer(from)));
        case 'F':
            into.value = user_float(from, "Invalid number passed to SETF");
            return;
        case 'f':
            return store(pointer_word(user_float_pointer(from)));
        case 'C':
        case 'V':
            store(pointer_word(user_char_pointer(from)));
            into.length = from.fortran ? building().last_length : 0;
            if (kind == 'V' && !from.fortran) into.length = user_integer(from);
            return;
        case 'U':
            return store(from.fortran ? user_integer(from)
                                      : pointer_word(user_void_star_star_pointer(from)));
        default:
            (call_backs++ ? into.second : into.further) = get_callback_function(from, message);
    }
}

// BEEP's sound, by what stands behind its name.
std::int32_t beep_kind(std::string_view option) {
    constexpr struct {
        char name[12];
        std::int32_t kind;
    } kinds[] = {
        {"EXCLAMATION", 0x30}, {"ASTERISK", 0x40}, {"QUESTION", 0x20}, {"HAND", 0x10}, {"OK", 0}};
    if (option.empty()) return 0;
    for (const auto& each : kinds)
        if (option.size() == std::strlen(each.name) &&
            strncasecmp(option.data(), each.name, option.size()) == 0)
            return each.kind;
    quillpan_error("Invalid beep option ");
    return 0;
}

bool needs_thunk(const standard_action& action) {
    return action.arguments[0] || action.takes_options || action.selector ||
           action.function == action_absent;
}

void keep_file_settings(thunk& into) {
    const fancy_window& window = *current_window();
    if (window.file_spec)
        into.file_spec = window_text_copy(window.file_spec, std::strlen(window.file_spec));
    if (!window.filters) return;
    into.filter_bytes = window.filter_bytes;
    into.filters = window_text_copy(window.filters, static_cast<std::size_t>(window.filter_bytes));
}

call_back make_thunk(const standard_action& action, std::string_view options,
                     argument_source& arguments, const char* message) {
    thunk fresh{};
    std::memcpy(fresh.magic, "THNK", sizeof fresh.magic);
    fresh.action = action.function;
    fresh.name = action.name;
    fresh.fortran = arguments.fortran;
    fresh.selector = action.function == action_beep ? beep_kind(options) : action.selector;
    thunk_reader reader{arguments, message, fresh};
    for (const char* kind = action.arguments; *kind; ++kind) reader.read(*kind);
    if (records().passive) return action.function;
    if (action.function == action_choose_file) keep_file_settings(fresh);
    if (!options.empty()) fresh.options = window_text_copy(options.data(), options.size());
    thunk* kept = new_record<thunk>();
    discard_with_window(kept, nullptr);
    *kept = fresh;
    return reinterpret_cast<call_back>(kept);
}

call_back standard_call_back(std::int32_t index, std::string_view options,
                             argument_source& arguments, const char* message) {
    const standard_action& action = action_at(index);
    return needs_thunk(action) ? make_thunk(action, options, arguments, message) : action.function;
}

// ---- What the argument is ----------------------------------------------------------------------
std::string printable(std::string_view text) {
    constexpr std::size_t shown = 200;
    std::string result(text.substr(0, shown));
    for (char& c : result)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F) c = '?';
    return result;
}

// A reader's text may have been written as a format, with its percent signs doubled.
std::string with_single_percents(const char* message) {
    std::string result;
    for (const char* at = message; *at; ++at) {
        result += *at;
        if (at[0] == '%' && at[1] == '%') ++at;
    }
    return result;
}

call_back refuse_text(std::string_view text, const char* message) {
    const fancy_window* window = current_window();
    quillpan_error("Argument number %d of winio%s\n%s - not the string \"%s\"",
                   window ? window->arg_number : 0, building().continuation.c_str(),
                   with_single_percents(message).c_str(), printable(text).c_str());
    return nullptr;
}

// What the call's types say: anything may stand there without them.
enum class told : std::uint8_t { nothing, function, text, wrong };

told read_token() {
    const fancy_window* window = current_window();
    if (!window || !window->descriptor) return told::nothing;
    if (accept_token("*E")) return told::function;
    if (accept_value("*C")) return told::text;
    return told::wrong;
}

void step_over_token() {
    const char*& at = current_window()->descriptor;
    while (*at == '*') ++at;
    if (*at) ++at;
}

bool argument_missing(const argument_source& arguments) {
    const fancy_window* window = current_window();
    const char* tokens = window ? window->descriptor : nullptr;
    if (tokens ? *tokens != 0 : !arguments.exhausted()) return false;
    check_arg_present();
    return true;
}

}  // namespace

// A name wins over code: the two can't be confused, since no function begins with the bytes of a
// name. In a Fortran call a text has a length of its own among the lengths, and a function none.
call_back get_callback_function(argument_source& arguments, const char* message) {
    count_argument();
    building().source = &arguments;
    if (argument_missing(arguments)) return nullptr;
    const word p = arguments.next();
    const told kind = read_token();
    if (kind == told::wrong) {
        report_argument_error("a call-back function", nullptr);
        step_over_token();
        return nullptr;
    }
    if (records().check_mode || p == 0) return nullptr;
    const bool raw = pending().raw_callback;
    pending().raw_callback = false;
    if (raw) return to_function(p);
    if (kind == told::function) {
        if (options().trust_descriptor_callbacks || is_code(reinterpret_cast<const void*>(p)))
            return to_function(p);
        quillpan_error("The function supplied as argument %d is corrupt ",
                       current_window()->arg_number);
        return nullptr;
    }
    const text_view text = text_at(p, arguments);
    std::string_view action_options;
    const std::int32_t action = find_action(text.view(), action_options);
    if (action < 0 && kind == told::nothing && is_code(reinterpret_cast<const void*>(p)))
        return to_function(p);
    if (text.counted) ++arguments.next_length;
    if (action < 0) return refuse_text(text.view(), message);
    return standard_call_back(action, action_options, arguments, message);
}

}  // namespace tarn::winio
