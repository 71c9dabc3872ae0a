// Settings for later windows (__winstyle, __winclass), and the ways to scan without a window: check
// mode for a compiler, and the passive window.
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "platform/user/user.h"
#include "textwin/error_report.h"
#include "winio/buttons.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/report.h"
#include "winio/resources.h"
#include "winio/scanner.h"

namespace tarn::winio {
namespace {

// Walks a format that holds nothing but codes with their values in the format itself.
class settings_reader {
  public:
    settings_reader(const char* format, const char* missing_percent)
        : cursor_(format), missing_percent_(missing_percent) {}

    bool next() {
        while (*cursor_ == ' ' || *cursor_ == '\n' || *cursor_ == '\t') ++cursor_;
        if (*cursor_ == 0 || *cursor_ == '&') return false;
        if (*cursor_ != '%') {
            quillpan_error("%s", missing_percent_);
            return false;
        }
        ++cursor_;
        while (*cursor_ == '`') ++cursor_;
        const int first = std::toupper(static_cast<unsigned char>(*cursor_));
        const int second = first ? std::toupper(static_cast<unsigned char>(cursor_[1])) : 0;
        if (std::isalpha(first) == 0 || std::isalpha(second) == 0) {
            quillpan_error("%s", missing_percent_);
            return false;
        }
        code_ = code_of(static_cast<char>(first), static_cast<char>(second));
        cursor_ += 2;
        return true;
    }
    std::uint16_t code() const { return code_; }
    const char*& cursor() { return cursor_; }
    // The bracketed text at the cursor.
    bool text(std::string& value) {
        if (*cursor_ != '[') return false;
        const char* end = std::strchr(cursor_, ']');
        if (!end) return false;
        value.assign(cursor_ + 1, end);
        cursor_ = end + 1;
        return true;
    }

  private:
    const char* cursor_;
    const char* missing_percent_;
    std::uint16_t code_ = 0;
};

std::string code_text(std::uint16_t code) {
    return {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
}

// ---- __winstyle --------------------------------------------------------------------------------
constexpr std::size_t style_format_size = 1024;

enum class style_value : std::uint8_t { none, text, number, options };
struct style_code {
    std::uint16_t code;
    style_value value;
    const char* name;  // in the message of a missing one
};
constexpr style_code style_codes[] = {
    {code_of('B', 'G'), style_value::text, "%bg colour"},
    {code_of('T', 'C'), style_value::text, "%tc colour"},
    {code_of('B', 'F'), style_value::none, ""},
    {code_of('I', 'T'), style_value::none, ""},
    {code_of('U', 'L'), style_value::none, ""},
    {code_of('F', 'B'), style_value::none, ""},
    {code_of('E', 'S'), style_value::none, ""},
    {code_of('F', 'N'), style_value::text, "%fn font"},
    {code_of('S', 'Y'), style_value::options, ""},
    {code_of('T', 'S'), style_value::number, "%ts size"},
    {code_of('W', 'W'), style_value::options, ""},
};

const style_code* find_style_code(std::uint16_t code) {
    for (const style_code& entry : style_codes) {
        if (entry.code == code) return &entry;
    }
    return nullptr;
}

// Steps over the codes; false after a report.
bool style_is_right(const char* format, std::size_t& length) {
    settings_reader reader(format, "% expected in call to winstyle@");
    while (reader.next()) {
        const style_code* entry = find_style_code(reader.code());
        if (!entry) {
            quillpan_error("Inaddmissible format code '%s' for call to winstyle@",
                           code_text(reader.code()).c_str());
            return false;
        }
        const bool has_value = *reader.cursor() == '[';
        if (!has_value &&
            (entry->value == style_value::text || entry->value == style_value::number)) {
            quillpan_error("The %s must be given in the format of winstyle@", entry->name);
            return false;
        }
        double size = 0.0;
        std::string value;
        if (entry->value == style_value::number && !get_float(reader.cursor(), size)) {
            quillpan_error("The %s must be given in the format of winstyle@", entry->name);
            return false;
        }
        if (entry->value == style_value::text || entry->value == style_value::options) {
            if (has_value && !reader.text(value)) {
                quillpan_error("Missing ']' in string for %s", code_text(reader.code()).c_str());
                return false;
            }
        }
    }
    length = static_cast<std::size_t>(reader.cursor() - format);
    return true;
}

// The codes' own checks, in a pass that stores nothing.
void check_passively(const std::string& format) {
    builder_state& state = building();
    const window_builder outer_builder = builder();
    fancy_window* const outer = current_window();
    const bool outer_passive = records().passive, outer_fortran = state.fortran_call;
    builder() = {};
    builder().next_background = no_colour;
    fancy_window* scratch = new_fancy_window();
    scratch->previous = outer;
    current_window() = scratch;
    records().passive = true;
    state.fortran_call = false;
    argument_source none;
    none.word_count = 0;
    scan_format(format.c_str(), none);
    records().passive = outer_passive;
    state.fortran_call = outer_fortran;
    destroy_fancy_window(scratch);
    current_window() = outer;
    builder() = outer_builder;
}

}  // namespace

void winstyle(const char* format) {
    if (!format) return;
    initialise_quillpan_plus();
    std::size_t length = 0;
    if (!style_is_right(format, length)) return;
    const std::string codes(format, length);
    check_passively(codes);
    std::string& pending_format = building().style_format;
    if (pending_format.size() + codes.size() + 1 >= style_format_size) {
        quillpan_error("Buffer overflow in call to winstyle@");
        return;
    }
    if (!pending_format.empty() && pending_format.back() == '&') pending_format.pop_back();
    pending_format += codes + "&";
}

// ---- __winclass --------------------------------------------------------------------------------
namespace {

char* kept(const std::string& text) {
    auto* copy = static_cast<char*>(allocate_zeroed(text.size() + 1));
    std::memcpy(copy, text.data(), text.size());
    return copy;
}

void take_class_setting(std::uint16_t code, const std::string& value) {
    class_settings& settings = records().class_defaults;
    switch (code) {
        case code_of('M', 'I'):
            settings.icon = find_icon(value.c_str());
            if (settings.icon == HICON{}) {
                quillpan_error("?winclass@: %%MI icon %s not found", value.c_str());
            }
            break;
        case code_of('C', 'U'):
            settings.cursor = load_cursor_resource(value.c_str());
            if (settings.cursor == HCURSOR{}) {
                quillpan_error("?winclass@: %%CU cursor %s not found", value.c_str());
            }
            break;
        case code_of('F', 'N'): {
            LOGFONT description{};
            if (!font_exists(value.c_str(), description)) {
                quillpan_error("?winclass@: %%FN font %s not found", value.c_str());
            } else {
                settings.font = kept(value);
            }
            break;
        }
        case code_of('N', 'C'):
            settings.name = kept(value);
            break;
        case code_of('B', 'G'): {
            const COLORREF colour = get_quillpan_colour(value.c_str());
            if (colour == no_colour) {
                quillpan_error("?Invalid winclass@ %%BG back colour");
            } else {
                settings.has_background = true;
                settings.background = colour;
            }
            break;
        }
        case code_of('T', 'S'): {
            const double size = std::strtod(value.c_str(), nullptr);
            if (!(size > 0.1 && size < 10.0)) {
                quillpan_error("?winclass@ %%TS text size is out of range");
            } else {
                settings.text_scale = size;
            }
            break;
        }
        default:
            quillpan_error("?Inaddmissible format code '%s' for call to winclass@",
                           code_text(code).c_str());
    }
}

}  // namespace

void winclass(const char* format) {
    if (!format) return;
    if (records().used) {
        quillpan_error("?winclass@ must be called before other Quillpan+ routines.");
        return;
    }
    settings_reader reader(format, "% expected in winclass@ format string");
    while (reader.next()) {
        if (*reader.cursor() == '@') {
            quillpan_error("@ is not permitted in winclass@ format string");
            return;
        }
        std::string value;
        reader.text(value);
        take_class_setting(reader.code(), value);
    }
}

// ---- Without a window --------------------------------------------------------------------------
namespace {

bool check_takes(const char* text) {
    builder_state& state = building();
    if (state.passive_hook && state.passive_window) return true;  // the hook has it
    if (!records().check_mode) return false;
    if (state.check_report && state.check_report[0] == 0) {
        const std::size_t length = strnlen(text, check_report_size - 1);
        std::memcpy(state.check_report, text, length);
        state.check_report[length] = 0;
    }
    return true;
}

void tell_passive_hook(const char* text) {
    builder_state& state = building();
    if (!state.passive_hook) return;
    abandon_construction();
    state.passive_hook(text);
}

void install_error_hooks() {
    textwin::error_hooks().takes_text = check_takes;
    textwin::error_hooks().passive = tell_passive_hook;
}

void drop_partial_windows() {
    drop_constructions();
    while (current_window() && !current_window()->flags.open && current_window()->hwnd == HWND{}) {
        destroy_fancy_window(current_window());
    }
    queued_arguments().clear();
    drop_preloaded_block();
    building().abandoned = false;
}

}  // namespace

void winio_check(char* buffer, const char* const* names, bool wide) {
    records_state& state = records();
    install_error_hooks();
    if (!buffer) {
        if (state.check_mode) drop_partial_windows();
        state.check_mode = false;
        building().check_report = nullptr;
        building().argument_names = nullptr;
        building().wide_handles = false;
        return;
    }
    buffer[0] = 0;
    state.check_mode = true;
    building().check_report = buffer;
    building().argument_names = names;
    building().wide_handles = wide;
}

void set_passive_winio(void (*hook)(const char* text)) {
    install_error_hooks();
    building().passive_hook = hook;
    building().passive_window = true;
}

}  // namespace tarn::winio
