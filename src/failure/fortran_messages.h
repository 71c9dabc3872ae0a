// The words of a failure in a Fortran program.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::failure {

// "I/O error on Fortran unit 12:" while a statement is at work on a unit; -1 is an internal file,
// 0 no statement.
std::string io_prefix(std::int32_t unit);

// "Error: " and the Fortran form of the sentence.
std::string sentence(int number);

// Drops the padding of fields and puts `error_string` where %1 stands.
std::string neaten(std::string_view text, std::string_view error_string);

// A routine was called in another way than it was compiled. `caller` and `routine` are type bytes.
struct CallMismatch {
    std::intptr_t caller_count;  // arguments, plus one
    std::intptr_t routine_count;
    std::uint8_t caller;
    std::uint8_t routine;
    std::intptr_t position;  // of the argument; 0: the function itself
};
std::string call_mismatch(const CallMismatch& mismatch, bool newer_names);

// Names of types: the older table by the low 4 bits, the newer one by the whole byte, which is
// reduced to what names it.
std::string_view older_type_name(std::uint8_t type);
std::string_view newer_type_name(std::uint8_t& type);

}  // namespace tarn::failure
