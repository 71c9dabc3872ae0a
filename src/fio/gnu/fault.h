// What can go wrong in a gnu statement, and how the program hears of it.
//
// Each fault has a catalogue number, whose sentence is the message, and the IOSTAT value that
// gfortran's programs expect. A statement that fails keeps its outcome; the items that follow are
// ignored, and the statement's end entry returns the outcome to the compiled code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn::fio {

// The IOSTAT values of gfortran's programs.
inline constexpr std::int32_t iostat_end = -1;
inline constexpr std::int32_t iostat_eor = -2;
inline constexpr std::int32_t iostat_option_conflict = 5001;
inline constexpr std::int32_t iostat_bad_option = 5002;
inline constexpr std::int32_t iostat_missing_option = 5003;
inline constexpr std::int32_t iostat_open_failed = 5004;
inline constexpr std::int32_t iostat_bad_unit = 5005;
inline constexpr std::int32_t iostat_format = 5006;
inline constexpr std::int32_t iostat_bad_action = 5007;
inline constexpr std::int32_t iostat_endfile = 5008;
inline constexpr std::int32_t iostat_bad_us = 5009;
inline constexpr std::int32_t iostat_read_value = 5010;
inline constexpr std::int32_t iostat_read_overflow = 5011;
inline constexpr std::int32_t iostat_internal = 5012;
inline constexpr std::int32_t iostat_internal_unit = 5013;
inline constexpr std::int32_t iostat_allocation = 5014;
inline constexpr std::int32_t iostat_direct_eor = 5015;
inline constexpr std::int32_t iostat_short_record = 5016;
inline constexpr std::int32_t iostat_corrupt_file = 5017;
inline constexpr std::int32_t iostat_inquire_internal_unit = 5018;
inline constexpr std::int32_t iostat_bad_wait_id = 5019;

struct Fault {
    std::int32_t number;  // of the catalogue
    std::int32_t iostat;
};

// How a statement ends, in the two low bits of its flags word.
enum class Outcome : std::uint32_t { ok = 0, error = 1, end = 2, eor = 3 };

// The part of a statement that meets its failures. Filled by the pairing from the compiled
// program's parameter block.
struct Caller {
    const char* source_file = nullptr;  // as compiled, terminated
    std::int32_t line = 0;
    std::int32_t* iostat = nullptr;
    char* iomsg = nullptr;
    std::size_t iomsg_length = 0;
    bool catches_error = false;  // ERR= or IOSTAT=
    bool catches_end = false;    // END= or IOSTAT=
    bool catches_eor = false;    // EOR= or IOSTAT=
    std::int32_t unit = 0;
    bool has_unit = false;  // an external unit: named in the report
    bool internal = false;  // an internal file: said in the report
    Outcome outcome = Outcome::ok;
    std::int32_t fault_number = 0;  // of the first fault, in the catalogue
    int system_error = 0;           // errno, where it came from the system
};

// Reports a fault. Returns when the program catches it, with the outcome and IOSTAT= and IOMSG=
// stored; otherwise writes out all units, prints the report and ends the process with status 1.
// `detail` (may be empty) follows the sentence in parentheses: what stood where in the input.
void raise_fault(Caller& caller, Fault fault, std::string_view detail = {});

// The same for a failure of the operating system: IOSTAT is the errno value, the sentence is the
// catalogue's where it has one (a missing file, a full disk ...), else the system's own text.
void raise_system_fault(Caller& caller, int errno_value, std::string_view detail = {});

// A fault that a procedure of the program has told by its IOSTAT and IOMSG, which may be blank.
// What it has put into the statement's own IOMSG= stays.
void raise_procedure_fault(Caller& caller, std::int32_t iostat, std::string_view message);

void raise_end_of_file(Caller& caller);
void raise_end_of_record(Caller& caller);

}  // namespace tarn::fio
