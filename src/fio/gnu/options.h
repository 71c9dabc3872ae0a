// What a gfortran program chose for its run, at compile time and in its environment.
//
// The compiled program hands over its choices at the start of MAIN; a program without one (a C
// main that calls Fortran) keeps the defaults. The environment is read once, by whoever asks for
// the record first.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fio/format/program.h"
#include "fio/modes.h"

namespace tarn::fio {

// CONVERT= of unformatted files, by the compiled program's numbers. The last one is ours: records
// as the native dialect lays them out.
enum class Convert : std::int32_t {
    native = 0,
    swap = 1,
    big_endian = 2,
    little_endian = 3,
    native_records = 4,
};

// A range of units, both ends included, that the environment gives a conversion of their own.
struct UnitConvert {
    std::int32_t first;
    std::int32_t last;
    Convert convert;
};

// Bits of `allow_std`.
inline constexpr std::int32_t std_gnu = 1 << 5;
inline constexpr std::int32_t std_f2008 = 1 << 7;
inline constexpr std::int32_t std_f2018 = 1 << 9;

// Bits of `fpe_summary` and of the traps that -ffpe-trap asks for.
inline constexpr std::int32_t fpe_invalid = 1;
inline constexpr std::int32_t fpe_denormal = 2;
inline constexpr std::int32_t fpe_zero = 4;
inline constexpr std::int32_t fpe_overflow = 8;
inline constexpr std::int32_t fpe_underflow = 16;
inline constexpr std::int32_t fpe_inexact = 32;

struct GnuOptions {
    // -fconvert, -frecord-marker, -fmax-subrecord-length.
    Convert convert = Convert::native;
    std::int32_t record_marker = 4;
    std::int64_t max_subrecord_length = 2147483639;  // bytes between two record markers

    // The option words of the main program.
    std::int32_t warn_std = 0;
    std::int32_t allow_std = -1;
    bool pedantic = false;
    bool backtrace = false;
    bool sign_zero = true;
    bool bounds_check = false;
    std::int32_t fpe_summary = 0;  // exceptions that STOP and ERROR STOP name
    FormatRules formats;           // as the words about standards have them; some do more

    // GFORTRAN_STDIN_UNIT, GFORTRAN_STDOUT_UNIT, GFORTRAN_STDERR_UNIT.
    std::int32_t stdin_unit = 5;
    std::int32_t stdout_unit = 6;
    std::int32_t stderr_unit = 0;
    bool unbuffered_all = false;            // GFORTRAN_UNBUFFERED_ALL
    bool unbuffered_preconnected = false;   // GFORTRAN_UNBUFFERED_PRECONNECTED
    bool show_locus = true;                 // GFORTRAN_SHOW_LOCUS
    bool optional_plus = false;             // GFORTRAN_OPTIONAL_PLUS
    std::int64_t default_recl = 0;          // GFORTRAN_DEFAULT_RECL; 0: none given
    std::int64_t formatted_buffer = 0;      // GFORTRAN_FORMATTED_BUFFER_SIZE; 0: ours
    std::int64_t unformatted_buffer = 0;    // GFORTRAN_UNFORMATTED_BUFFER_SIZE; 0: ours
    std::string list_separator = " ";       // GFORTRAN_LIST_SEPARATOR
    bool convert_from_environment = false;  // GFORTRAN_CONVERT_UNIT names a default
    Convert environment_convert = Convert::native;
    std::vector<UnitConvert> unit_converts;  // the later of two that overlap wins
    std::string temporary_folder = "/tmp";   // TMPDIR
};

// Read from the environment by the first who asks.
extern std::atomic<GnuOptions*> the_gnu_options;
GnuOptions& read_gnu_options();

inline GnuOptions& gnu_options() {
    GnuOptions* options = the_gnu_options.load(std::memory_order_acquire);
    return options != nullptr ? *options : read_gnu_options();
}

// Whether positive numbers show their sign when neither the program nor the format says so.
inline SignMode processor_sign() {
    return gnu_options().optional_plus ? SignMode::plus : SignMode::processor;
}

// What the environment says of an unformatted unit: it wins over CONVERT= of the OPEN, which wins
// over the program's `convert`. False: it says nothing.
bool environment_convert(std::int32_t unit, Convert& convert);

// Reads a value of GFORTRAN_CONVERT_UNIT; false, and nothing changed, when it makes no sense.
bool parse_convert_unit(std::string_view text, GnuOptions& options);

}  // namespace tarn::fio
