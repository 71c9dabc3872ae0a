// The entries of the scanner: each frame in which a program calls, and what it can say beforehand.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <vector>

#include "frame/link_name.h"
#include "winio/options.h"
#include "winio/scanner.h"

using namespace tarn::winio;

namespace {

// A descriptor begins with the two characters of the format itself.
const char* behind_format_token(const char* descriptor) {
    if (!descriptor) return nullptr;
    return std::strncmp(descriptor, "*C", 2) == 0 ? descriptor + 2 : descriptor;
}

std::int32_t c_call(const char* format, const char* descriptor, std::va_list* list) {
    argument_source source;
    source.from = argument_source::kind::c_list;
    source.list = list;
    source.fortran = records().check_mode;
    source.wide_handles = building().wide_handles;
    return winio(format, format ? std::strlen(format) : 0, descriptor, source);
}

// `count` arguments in all, the format's first; the lengths of the texts follow the last argument.
std::int32_t native_fortran_call(std::int32_t count, const char* format, const char* descriptor,
                                 std::va_list* list) {
    constexpr std::int32_t most_arguments = 100000;
    if (count < 1 || count > most_arguments) return 0;
    std::vector<word> words(static_cast<std::size_t>(count - 1));
    for (word& each : words) each = va_arg(*list, word);
    const auto length = static_cast<std::int32_t>(va_arg(*list, word));
    argument_source source;
    source.words = words.data();
    source.word_count = count - 1;
    source.length_list = list;
    source.fortran = true;
    source.wide_handles = building().wide_handles;
    return winio(format, length > 0 ? static_cast<std::size_t>(length) : 0, descriptor, source);
}

std::string printed(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string printed(const char* format, ...) {
    char text[64];
    std::va_list list;
    va_start(list, format);
    std::vsnprintf(text, sizeof text, format, list);
    va_end(list);
    return text;
}

template <class Value>
void queue(Value value, const char* token) {
    static_assert(sizeof value <= sizeof(word));
    std::memcpy(get_aux_arg_pointer(sizeof(word), token), &value, sizeof value);
}

// A blank or a comma would end the value, a bracket the list.
std::string quoted_where_needed(const std::string& value) {
    if (value.find_first_of(" ,]") == std::string::npos) return value;
    if (value[0] == '\'' || value[0] == '"') return value;
    const char quote = value.find('\'') == std::string::npos ? '\'' : '"';
    return quote + value + quote;
}

}  // namespace

namespace tarn::winio {

std::int32_t winio_fortran(const char* format, std::int32_t length, const word* words,
                           std::int32_t count, const std::int32_t* lengths,
                           std::int32_t length_count, const char* descriptor,
                           const char* const* spellings) {
    static constexpr std::int32_t none[1] = {};
    argument_source source;
    source.words = words;
    source.word_count = count;
    source.lengths = lengths ? lengths : none;
    source.length_count = lengths ? length_count : 0;
    source.spellings = spellings;
    source.fortran = true;
    source.wide_handles = building().wide_handles;
    return winio(format, length > 0 ? static_cast<std::size_t>(length) : 0, descriptor, source);
}

}  // namespace tarn::winio

extern "C" {

// ---- Calls -------------------------------------------------------------------------------------
TARN_EXPORT std::int32_t __winio(const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    const std::int32_t result = c_call(format, nullptr, &list);
    va_end(list);
    return result;
}

TARN_EXPORT std::int32_t __window_printf(const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    const std::int32_t result = c_call(format, nullptr, &list);
    va_end(list);
    return result;
}

TARN_EXPORT std::int32_t __winio__(const char* descriptor, const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    const std::int32_t result = c_call(format, behind_format_token(descriptor), &list);
    va_end(list);
    return result;
}

TARN_EXPORT std::int32_t __winio____C(const char* descriptor, const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    const std::int32_t result = c_call(format, behind_format_token(descriptor), &list);
    va_end(list);
    return result;
}

TARN_EXPORT std::int32_t WINIO_h(std::int32_t count, const char* format, ...) LINK_NAME("WINIO#");
TARN_EXPORT std::int32_t WINIO_h(std::int32_t count, const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    const std::int32_t result = native_fortran_call(count, format, nullptr, &list);
    va_end(list);
    return result;
}

TARN_EXPORT std::int32_t WINDOW_PRINTF_h(std::int32_t count, const char* format, ...)
    LINK_NAME("WINDOW_PRINTF#");
TARN_EXPORT std::int32_t WINDOW_PRINTF_h(std::int32_t count, const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    const std::int32_t result = native_fortran_call(count, format, nullptr, &list);
    va_end(list);
    return result;
}

TARN_EXPORT std::int32_t WINDOW_PRINTF_hh(const char* descriptor, std::int32_t count,
                                          const char* format, ...) LINK_NAME("WINDOW_PRINTF##");
TARN_EXPORT std::int32_t WINDOW_PRINTF_hh(const char* descriptor, std::int32_t count,
                                          const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    const std::int32_t result =
        native_fortran_call(count, format, behind_format_token(descriptor), &list);
    va_end(list);
    return result;
}

// ---- Without a window --------------------------------------------------------------------------
TARN_EXPORT void __winio_check(char* report, const char* const* names) {
    winio_check(report, names, false);
}
TARN_EXPORT void __winio_check_ex(char* report, const char* const* names, std::int32_t wide) {
    winio_check(report, names, wide != 0);
}
TARN_EXPORT void __set_passive_winio(void (*hook)(const char* text)) {
    set_passive_winio(hook);
}

// ---- Before a window ---------------------------------------------------------------------------
TARN_EXPORT void __winop(const char* text) {
    winop(text);
}
TARN_EXPORT void __winop_int(const char* text, std::int32_t value) {
    winop_with(text, printed("%d", value), "winop_int");
}
TARN_EXPORT void __winop_flt(const char* text, double value) {
    winop_with(text, printed("%0.10e", value), "winop_flt");
}
TARN_EXPORT void __winop_clr(const char* text, std::int32_t colour) {
    const auto given = static_cast<std::uint32_t>(colour);
    const std::uint32_t exchanged =
        (given & 0x00FF00) | (given & 0xFF) << 16 | (given >> 16 & 0xFF);
    // The `=` comes from winop_with.
    winop_with(text, printed("#%0x", exchanged), "winop_clr");
}
TARN_EXPORT void __winop_str(const char* text, const char* value) {
    winop_with(text, quoted_where_needed(value ? value : ""), "winop_str");
}
TARN_EXPORT void __winop_chr(const char* text, const char* value) {
    winop_with(text, printed("%lu", reinterpret_cast<unsigned long>(value)), "winop_chr");
}
TARN_EXPORT void __winop_hdl(const char* text, std::int32_t handle) {
    winop_with(text, printed("%d", handle), "winop_hdl");
}
TARN_EXPORT void __winop_fun(const char* text, void (*function)()) {
    winop_with(text, printed("%lu", reinterpret_cast<unsigned long>(function)), "winop_fun");
}
TARN_EXPORT void __winstyle(const char* format) {
    winstyle(format);
}
TARN_EXPORT void __winclass(const char* format) {
    winclass(format);
}

// ---- Arguments of the next call
TARN_EXPORT void __add_winio_integer(std::int32_t value) {
    queue(word{value}, "I");
}
TARN_EXPORT void __add_winio_integer_ptr(std::int32_t* variable) {
    queue(variable, "*I");
}
TARN_EXPORT void __add_winio_int64_ptr(long long* variable) {
    queue(variable, "*J");
}
TARN_EXPORT void __add_winio_float(double value) {
    queue(value, "F");
}
TARN_EXPORT void __add_winio_float_ptr(double* variable) {
    queue(variable, "*F");
}
TARN_EXPORT void __add_winio_character(const char* text, std::int32_t length) {
    queue_character(text, length);
}
TARN_EXPORT void ADD_WINIO_CHARACTER_h(const char* text, std::int32_t length)
    LINK_NAME("ADD_WINIO_CHARACTER#");
TARN_EXPORT void ADD_WINIO_CHARACTER_h(const char* text, std::int32_t length) {
    queue_character(text, length);
}
TARN_EXPORT void __add_winio_character_ptr(const char* text) {
    queue(text, "*C");
}
TARN_EXPORT void __add_winio_character_ptr_ptr(const char* const* texts) {
    queue(texts, "**C");
}
TARN_EXPORT void __add_winio_function_ptr(std::int32_t (*function)()) {
    queue(function, "*E");
}

// ---- Options and records
TARN_EXPORT const char* const* get_quillpan_options(std::int32_t code) {
    return tarn::winio::get_quillpan_options(static_cast<std::uint16_t>(code));
}
TARN_EXPORT std::int32_t __get_quillpan_colour(const char* name) {
    return static_cast<std::int32_t>(get_quillpan_colour(name));
}
TARN_EXPORT void __max_gdi_objects(std::int32_t limit) {
    records().gdi_limit = limit;
}
TARN_EXPORT void __enable_utf8(std::int32_t on) {
    records().utf8_default = on != 0;
    records().utf8_chosen = true;
}
TARN_EXPORT void __initialise_quillpan_plus() {
    initialise_quillpan_plus();
}

}  // extern "C"
