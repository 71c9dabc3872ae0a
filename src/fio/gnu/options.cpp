#include "fio/gnu/options.h"

#include <cctype>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <optional>
#include <string_view>

#include "platform/kernel/console.h"

namespace tarn::fio {
namespace {

// A variable that the program's user got wrong is named once, and its default stays.
void complain(const char* name, std::string_view value, std::string_view wanted) {
    std::string line = "Warning: ";
    line.append(name).append("=").append(value).append(" is ignored: ").append(wanted);
    line.append(" is expected there.\n");
    platform::write_error_output(line);
}

std::optional<std::int64_t> parse_number(std::string_view digits, std::int64_t least,
                                         std::int64_t most) {
    std::int64_t value = 0;
    const char* end = digits.data() + digits.size();
    auto [stop, failure] = std::from_chars(digits.data(), end, value);
    if (failure != std::errc{} || stop != end || value < least || value > most) return {};
    return value;
}

void read_number(const char* name, std::int64_t& target, std::int64_t least, std::int64_t most) {
    const char* value = std::getenv(name);
    if (!value || !*value) return;
    if (auto number = parse_number(value, least, most)) {
        target = *number;
    } else {
        complain(name, value,
                 "a number from " + std::to_string(least) + " to " + std::to_string(most));
    }
}

void read_unit(const char* name, std::int32_t& target) {
    std::int64_t unit = target;
    read_number(name, unit, 0, std::numeric_limits<std::int32_t>::max());
    target = static_cast<std::int32_t>(unit);
}

// The first letter decides, as gfortran's users are used to.
void read_switch(const char* name, bool& target) {
    const char* value = std::getenv(name);
    if (!value || !*value) return;
    switch (std::tolower(static_cast<unsigned char>(*value))) {
        case '1':
        case 'y':
        case 't':
            target = true;
            return;
        case '0':
        case 'n':
        case 'f':
            target = false;
            return;
        default:
            complain(name, value, "yes or no");
    }
}

void read_separator(std::string& target) {
    const char* name = "GFORTRAN_LIST_SEPARATOR";
    const char* value = std::getenv(name);
    if (!value || !*value) return;
    std::string_view text = value;
    int commas = 0;
    bool good = true;
    for (char c : text) {
        if (c == ',') {
            ++commas;
        } else if (c != ' ') {
            good = false;
        }
    }
    if (good && commas <= 1) {
        target = text;
    } else {
        complain(name, text, "a row of blanks with at most one comma");
    }
}

void read_environment(GnuOptions& options) {
    constexpr std::int64_t largest_record = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t largest_buffer = 1 << 30;
    read_unit("GFORTRAN_STDIN_UNIT", options.stdin_unit);
    read_unit("GFORTRAN_STDOUT_UNIT", options.stdout_unit);
    read_unit("GFORTRAN_STDERR_UNIT", options.stderr_unit);
    read_switch("GFORTRAN_UNBUFFERED_ALL", options.unbuffered_all);
    read_switch("GFORTRAN_UNBUFFERED_PRECONNECTED", options.unbuffered_preconnected);
    read_switch("GFORTRAN_SHOW_LOCUS", options.show_locus);
    read_switch("GFORTRAN_OPTIONAL_PLUS", options.optional_plus);
    read_number("GFORTRAN_DEFAULT_RECL", options.default_recl, 1, largest_record);
    read_number("GFORTRAN_FORMATTED_BUFFER_SIZE", options.formatted_buffer, 1, largest_buffer);
    read_number("GFORTRAN_UNFORMATTED_BUFFER_SIZE", options.unformatted_buffer, 1, largest_buffer);
    read_separator(options.list_separator);
    if (const char* value = std::getenv("GFORTRAN_CONVERT_UNIT"); value && *value) {
        if (!parse_convert_unit(value, options)) {
            complain("GFORTRAN_CONVERT_UNIT", value,
                     "a list like big_endian;native:10-20,25 of native, swap, big_endian, "
                     "little_endian or tarn "
                     "and their units");
        }
    }
    if (const char* folder = std::getenv("TMPDIR"); folder && *folder) {
        options.temporary_folder = folder;
    }
}

// Reads GFORTRAN_CONVERT_UNIT: an optional default, then exceptions, `;` between them.
class ConvertReader {
  public:
    explicit ConvertReader(std::string_view text) : rest(text) {}

    bool read(GnuOptions& options) {
        for (bool first = true;; first = false) {
            Convert convert;
            if (!word(convert)) return false;
            if (take(':')) {
                if (!units(convert, options)) return false;
            } else {
                if (!first) return false;
                options.convert_from_environment = true;
                options.environment_convert = convert;
            }
            if (rest.empty()) return true;
            if (!take(';')) return false;
        }
    }

  private:
    bool take(char c) {
        if (rest.empty() || rest.front() != c) return false;
        rest.remove_prefix(1);
        return true;
    }

    bool word(Convert& convert) {
        struct Word {
            std::string_view text;
            Convert convert;
        };
        static constexpr Word words[] = {{"native", Convert::native},
                                         {"swap", Convert::swap},
                                         {"big_endian", Convert::big_endian},
                                         {"little_endian", Convert::little_endian},
                                         {"tarn", Convert::native_records}};
        for (const Word& candidate : words) {
            if (rest.size() < candidate.text.size()) continue;
            bool same = true;
            for (std::size_t i = 0; i < candidate.text.size(); ++i) {
                same &= std::tolower(static_cast<unsigned char>(rest[i])) == candidate.text[i];
            }
            if (!same) continue;
            rest.remove_prefix(candidate.text.size());
            convert = candidate.convert;
            return true;
        }
        return false;
    }

    bool number(std::int32_t& value) {
        auto [stop, failure] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
        if (failure != std::errc{} || value < 0) return false;
        rest.remove_prefix(stop - rest.data());
        return true;
    }

    bool units(Convert convert, GnuOptions& options) {
        do {
            UnitConvert range{0, 0, convert};
            if (!number(range.first)) return false;
            range.last = range.first;
            if (take('-') && !number(range.last)) return false;
            options.unit_converts.push_back(range);
        } while (take(','));
        return true;
    }

    std::string_view rest;
};

}  // namespace

bool parse_convert_unit(std::string_view text, GnuOptions& options) {
    GnuOptions read = options;
    if (!ConvertReader(text).read(read)) return false;
    options = std::move(read);
    return true;
}

// Never destroyed: units are closed after the library's last static destructor.
constinit std::atomic<GnuOptions*> the_gnu_options{nullptr};

GnuOptions& read_gnu_options() {
    static std::once_flag once;
    std::call_once(once, [] {
        auto* options = new GnuOptions;
        read_environment(*options);
        the_gnu_options.store(options, std::memory_order_release);
    });
    return *the_gnu_options.load(std::memory_order_acquire);
}

bool environment_convert(std::int32_t unit, Convert& convert) {
    const GnuOptions& options = gnu_options();
    for (auto range = options.unit_converts.rbegin(); range != options.unit_converts.rend();
         ++range) {
        if (unit < range->first || unit > range->last) continue;
        convert = range->convert;
        return true;
    }
    if (options.convert_from_environment) convert = options.environment_convert;
    return options.convert_from_environment;
}

}  // namespace tarn::fio
