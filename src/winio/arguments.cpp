// Reading the arguments of a call: by value, by reference, from the preload queue, each checked
// against the call's type descriptor where it has one.
#include <cmath>
#include <cstring>
#include <string>

#include "winio/builder.h"
#include "winio/callbacks.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

// The cursor in the descriptor of the call at work; null when the call has none.
const char*& descriptor() {
    static const char* none;
    fancy_window* window = current_window();
    if (window) return window->descriptor;
    none = nullptr;
    return none;
}

bool in_fortran() {
    return building().fortran_call;
}

const char* token_end(const char* at) {
    while (*at == '*') ++at;
    return *at ? at + 1 : at;
}

// Says what the argument should have been, and steps over what it is.
// Where checking goes on, a reader gives null: in a variable of another type nothing may be read or
// stored.
void refuse(const char* fortran_text, const char* c_text) {
    report_argument_error(fortran_text, c_text);
    if (const char*& at = descriptor(); at) at = token_end(at);
}

// Both forms of a token that depends on the language.
bool accept_scalar(char letter) {
    const char token[3] = {'*', letter, 0};
    return in_fortran() ? accept_value(token) : accept_token(token + 1);
}

const char* words_of(char letter) {
    switch (letter) {
        case 'I':
            return "an INTEGER(4) variable";
        case 'J':
            return "an INTEGER(8) variable";
        case 'K':
            return "a short INTEGER variable";
        case 'R':
            return "a REAL(4) variable";
        case 'F':
            return "a REAL(8) variable";
        case 'C':
            return "a CHARACTER variable";
        case 'S':
            return "a variable of a derived type";
        case 'E':
            return "a procedure";
        case 'i':
            return "an INTEGER(4) value, no variable";
        case 'j':
            return "an INTEGER(8) value, no variable";
        case 'k':
            return "a short INTEGER value";
        case 'r':
            return "a REAL(4) value";
        case 'f':
            return "a REAL(8) value, no variable";
        case 'c':
            return "a CHARACTER value, no variable";
        default:
            return "of another type";
    }
}

// What the source has there, where the call's record tells it.
std::string passed_instead(std::int32_t number) {
    const builder_state& state = building();
    const char* at = descriptor();
    if (!state.source || !state.source->spellings || !at || at[0] != '*' || number < 2) return {};
    if (number - 2 >= state.source->word_count) return {};
    return std::string("\nIt is ") + state.source->spellings[number - 2] + ": " + words_of(at[1]) +
           ".";
}

// Begins a reader: counts, and with a descriptor makes sure that it has a token left. False: there
// is no argument to read.
bool begin_reader(argument_source& arguments) {
    count_argument();
    building().source = &arguments;
    if (const char* at = descriptor(); at) {
        check_arg_present();
        return *at != 0;
    }
    if (!arguments.exhausted()) return true;
    check_arg_present();
    return false;
}

template <class Value>
Value behind(word reference) {
    Value value{};
    if (reference != 0) std::memcpy(&value, reinterpret_cast<const void*>(reference), sizeof value);
    return value;
}

std::int32_t take_length(argument_source& from) {
    if (from.length_list) return static_cast<std::int32_t>(va_arg(*from.length_list, word));
    if (!from.lengths || (from.length_count >= 0 && from.next_length >= from.length_count)) {
        quillpan_error("Internal error in C_string.");
        return -1;
    }
    return from.lengths[from.next_length++];
}

// What a reader of text says of the last one.
void note_string(const char* variable, std::int32_t length) {
    building().last_string_variable = variable;
    building().last_length = length;
}

// A null pointer constant has no type of its own.
bool accept_null(const void* value) {
    return !value && !in_fortran() && accept_token("V");
}

template <class Value>
Value* pointer_argument(argument_source& arguments, char letter, const char* fortran_text,
                        const char* c_text) {
    if (!begin_reader(arguments)) return nullptr;
    auto* value = reinterpret_cast<Value*>(arguments.next());
    const char token[3] = {'*', letter, 0};
    if (accept_token(token) || accept_null(value)) return value;
    refuse(fortran_text, c_text);
    return nullptr;
}

}  // namespace

// ---- The source --------------------------------------------------------------------------------
word argument_source::next() {
    if (exhausted()) return 0;
    if (from == kind::c_list) {
        ++next_word;
        return va_arg(*list, word);
    }
    return words ? words[next_word++] : 0;
}

double argument_source::next_double() {
    if (exhausted()) return 0.0;
    if (from == kind::c_list) {
        ++next_word;
        return va_arg(*list, double);
    }
    double value = 0.0;
    const word bits = next();
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// ---- Counting and checking ---------------------------------------------------------------------
void count_argument() {
    if (fancy_window* window = current_window()) ++window->arg_number;
}

bool accept_token(const char* token) {
    const char*& at = descriptor();
    if (!at) return true;
    const std::size_t length = std::strlen(token);
    if (std::strncmp(at, token, length) != 0) return false;
    at += length;
    return true;
}

bool accept_value(const char* token) {
    if (accept_token(token)) return true;
    const char*& at = descriptor();
    if (!in_fortran() || at[0] != '*' || token[0] != '*' || at[1] != (token[1] | 0x20))
        return false;
    at += 2;
    return true;
}

void check_arg_present() {
    const char* at = descriptor();
    if (at && *at) return;
    const char* where = building().continuation.c_str();
    if (in_fortran()) {
        quillpan_error("Too few arguments to satisfy WINIO@ format%s", where);
    } else {
        quillpan_error("Too few arguments to satisfy winio format%s", where);
    }
}

void report_argument_error(const char* fortran_text, const char* c_text) {
    const builder_state& state = building();
    const std::int32_t number = current_window() ? current_window()->arg_number : 0;
    const char* where = state.continuation.c_str();
    const char* should = in_fortran() || !c_text ? fortran_text : c_text;
    if (!in_fortran()) {
        quillpan_error("Argument number %d of winio%s\nshould be %s", number, where, should);
        return;
    }
    if (!records().check_mode) {
        quillpan_error("Argument number %d of WINIO@%s\nshould be %s%s", number, where, should,
                       passed_instead(number).c_str());
        return;
    }
    // Names begin with the first argument behind the format, which is number 2.
    const char* name =
        state.argument_names && number >= 2 ? state.argument_names[number - 2] : nullptr;
    if (name) {
        quillpan_error("Argument number %d (%s) of WINIO@%s should be %s", number, name, where,
                       should);
    } else {
        quillpan_error("Argument number %d of WINIO@%s should be %s", number, where, should);
    }
}

bool valid_double(double value) {
    return std::isfinite(value);
}

// ---- Numbers -----------------------------------------------------------------------------------
word user_thing(argument_source& arguments, bool allow_int) {
    if (!begin_reader(arguments)) return 0;
    const char*& at = descriptor();
    const word given = arguments.next();
    bool narrow = !arguments.wide_handles;
    bool by_reference = in_fortran();
    if (at) {
        const bool starred = *at == '*';
        const char letter = starred ? at[1] : *at;
        const char kind = in_fortran() && letter >= 'a' ? static_cast<char>(letter - 0x20) : letter;
        // A pointer's own star is its value's: in C it came by value.
        const bool number = kind == 'I' || kind == 'J';
        const bool known = kind == 'V' || kind == 'C' || (kind == 'I' && allow_int) ||
                           kind == 'J' || (starred && kind != 0 && !in_fortran()) || kind == '*';
        if (!known) {
            refuse("an INTEGER(7)", "a pointer");
            return 0;
        }
        if (number) narrow = kind == 'I';
        if (!number && !in_fortran()) narrow = false;
        at = token_end(at);
    } else if (!in_fortran()) {
        narrow = false;
    }
    if (!by_reference) return narrow ? static_cast<std::int32_t>(given) : given;
    return narrow ? behind<std::int32_t>(given) : behind<word>(given);
}

std::int32_t user_integer(argument_source& arguments) {
    if (!begin_reader(arguments)) return 0;
    const word given = arguments.next();
    // A character by value is an integer to C.
    if (!accept_scalar('I') && (in_fortran() || !accept_token("C"))) {
        refuse("an 32 bit integer", "an integer");
        return 0;
    }
    return in_fortran() ? behind<std::int32_t>(given) : static_cast<std::int32_t>(given);
}

double user_float(argument_source& arguments, const char* message) {
    if (!begin_reader(arguments)) return 0.0;
    if (!accept_scalar('F')) {
        arguments.next();
        refuse("a REAL*8", "a double");
        return 0.0;
    }
    const double value = in_fortran() ? behind<double>(arguments.next()) : arguments.next_double();
    if (valid_double(value)) return value;
    if (in_fortran()) {
        quillpan_error("?%s\nAre you sure it is DOUBLE PRECISION?", message);
    } else {
        quillpan_error("?%s\nAre you sure it is a double?", message);
    }
    return 0.0;
}

// ---- Pointers ----------------------------------------------------------------------------------
std::int32_t* user_int_pointer(argument_source& arguments) {
    auto* value = pointer_argument<std::int32_t>(arguments, 'I', "a 32 bit integer", "an int*");
    // `*I*`: an integer that is a pointer's target in turn.
    if (const char*& at = descriptor();
        at && value && !in_fortran() && at[-1] == 'I' && at[0] == '*' && at[1] == 0) {
        ++at;
    }
    return value;
}

std::int64_t* user_int64_pointer(argument_source& arguments) {
    return pointer_argument<std::int64_t>(arguments, 'J', "a 64 bit integer", "a long long*");
}

word* user_hwnd_pointer(argument_source& arguments) {
    return arguments.wide_handles ? reinterpret_cast<word*>(user_int64_pointer(arguments))
                                  : reinterpret_cast<word*>(user_int_pointer(arguments));
}

handle_variable user_handle_variable(argument_source& arguments) {
    const char* at = descriptor();
    const bool wide = at && *at ? std::strncmp(at, "*J", 2) == 0 : arguments.wide_handles;
    if (wide) return {nullptr, user_int64_pointer(arguments)};
    return {user_int_pointer(arguments), nullptr};
}

double* user_float_pointer(argument_source& arguments) {
    return pointer_argument<double>(arguments, 'F', "a REAL*8", "a double*");
}

char** user_char_star_star_pointer(argument_source& arguments) {
    if (!begin_reader(arguments)) return nullptr;
    auto* value = reinterpret_cast<char**>(arguments.next());
    if (accept_token("**C") || accept_null(value)) return value;
    refuse("a char**", "a char**");
    return nullptr;
}

void** user_void_star_star_pointer(argument_source& arguments) {
    if (!begin_reader(arguments)) return nullptr;
    auto* value = reinterpret_cast<void**>(arguments.next());
    const char*& at = descriptor();
    if (!at) return value;
    if (at[0] == '*' && at[1] == '*') {
        at = token_end(at);
    } else if (!accept_null(value)) {
        refuse("a void**", "a void**");
        return nullptr;
    }
    return value;
}

void* user_struct_pointer(argument_source& arguments, bool allow_j) {
    if (!begin_reader(arguments)) return nullptr;
    auto* value = reinterpret_cast<void*>(arguments.next());
    const bool right = accept_token(in_fortran() ? "*I" : "*S") ||
                       (allow_j && accept_token("*J")) || accept_null(value);
    if (right) return value;
    refuse("an integer array", "a pointer to a structure");
    return nullptr;
}

void* user_struct_star_star_pointer(argument_source& arguments) {
    if (!begin_reader(arguments)) return nullptr;
    auto* value = reinterpret_cast<void*>(arguments.next());
    const bool right = accept_token("**S") || (!value && accept_token("I")) || accept_null(value);
    if (right) return value;
    refuse("a ** pointer to a structure", "a ** pointer to a structure");
    return nullptr;
}

// ---- Texts -------------------------------------------------------------------------------------
char* user_char_pointer(argument_source& arguments) {
    if (!begin_reader(arguments)) return nullptr;
    auto* value = reinterpret_cast<char*>(arguments.next());
    // A null pointer in C may have been written as a plain 0.
    const bool right =
        accept_token("*C") || (!in_fortran() && !value && accept_token("I")) || accept_null(value);
    if (!right) {
        refuse("a character variable", "a char*");
        value = nullptr;
    }
    // Only a text brings a length.
    note_string(value, in_fortran() && right ? take_length(arguments) : 0);
    return value;
}

char* user_string(argument_source& arguments) {
    if (!begin_reader(arguments)) return nullptr;
    auto* value = reinterpret_cast<char*>(arguments.next());
    if (!accept_value("*C") && !accept_null(value)) {
        refuse("a character variable or array", "a character array or a character pointer");
        note_string(nullptr, -1);
        return nullptr;
    }
    std::int32_t length = in_fortran() ? take_length(arguments) : -1;
    note_string(value, length);
    if (!in_fortran()) return value;
    if (!value || length < 0) return nullptr;
    // Room for all of the variable: the copy follows it when the window is updated.
    auto* copy = static_cast<char*>(allocate_zeroed(static_cast<std::size_t>(length) + 1));
    discard_with_window(copy, nullptr);
    std::memcpy(copy, value, static_cast<std::size_t>(length));
    while (length > 0 && copy[length - 1] == ' ') copy[--length] = 0;
    return copy;
}

char* get_standard_string(code_call& call, const char* what) {
    static char empty[1];
    empty[0] = 0;
    const char*& cursor = call.format;
    if (*cursor == '[') {
        ++cursor;
        const char* end = std::strchr(cursor, ']');
        if (!end) {
            quillpan_error("Missing ']' in string for %s", what);
            return empty;
        }
        const char* start = cursor;
        cursor = end + 1;
        note_string(nullptr, static_cast<std::int32_t>(end - start));
        if (records().passive) return empty;
        return window_text_copy(start, static_cast<std::size_t>(end - start));
    }
    if (*cursor == '@') {
        ++cursor;
        char* text = user_string(call.arguments);
        return text ? text : empty;
    }
    quillpan_error("Missing character string for %s", what);
    return empty;
}

void save_fortran_string_binding(char* copy, const char* variable, std::int32_t length) {
    if (!copy || !variable || length < 0 || records().passive || !current_window()) return;
    auto* binding = new_record<string_binding>();
    binding->next = records().bindings;
    binding->copy = copy;
    binding->copy_size = static_cast<std::size_t>(length) + 1;
    binding->variable = variable;
    binding->length = length;
    binding->window = current_window();
    records().bindings = binding;
}

char* get_shown_string(code_call& call, const char* what) {
    const bool argument = *call.format == '@';
    char* text = get_standard_string(call, what);
    const builder_state& state = building();
    if (argument && state.fortran_call)
        save_fortran_string_binding(text, state.last_string_variable, state.last_length);
    return text;
}

// ---- The usual ends of a code -------------------------------------------------------------------
void read_resource_id(code_call& call, window_control& control) {
    const fancy_window* window = current_window();
    if (window && window->dialog_resource > 0) {
        control.resource_id = user_integer(call.arguments);
    } else if (pending().design_id != 0) {
        control.resource_id = pending().design_id;
        pending().design_id = 0;
    }
}

void read_grey_variable(code_call& call, window_control& control) {
    if (!call.tilde) return;
    call.tilde = false;
    control.grey = user_int_pointer(call.arguments);
}

void read_callback(code_call& call, window_control& control, const char* message) {
    if (!call.caret) return;
    call.caret = false;
    control.callback = get_callback_function(call.arguments, message);
}

}  // namespace tarn::winio
