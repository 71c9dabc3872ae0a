// Bytes of a unit's file, and where they stand: what the older routines FGETC, FPUTC, FSEEK, FTELL
// and their kin do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn::fio {

// The next byte into a CHARACTER variable, blanks behind it. 0; -1 at the end of the file or
// without a connection; else an errno value.
int get_byte(std::int32_t number, char* text, std::size_t length);
// The first byte of `text`. 0; -1 without a connection; else an errno value.
int put_byte(std::int32_t number, const char* text, std::size_t length);
// `whence`: 0 from the start, 1 from where the file stands, 2 from its end. 0, or -1.
int seek_unit(std::int32_t number, std::int64_t offset, std::int32_t whence);
// Bytes before the position; -1 without a connection.
std::int64_t tell_unit(std::int32_t number);
// The descriptor, -1 without a connection.
int descriptor_of_unit(std::int32_t number);
bool unit_is_terminal(std::int32_t number);
// The terminal's name into a CHARACTER variable: blank when the unit stands on none.
void terminal_name(std::int32_t number, char* text, std::size_t length);
// Writes out one unit.
void flush_one_unit(std::int32_t number);

}  // namespace tarn::fio
