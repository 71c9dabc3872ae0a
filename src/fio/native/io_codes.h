// The numbers by which compiled code names data types, statements and specifiers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fio::native {

// A data type, in the descriptor word of a specifier and in compiled tables.
enum class TypeCode : std::int32_t {
    none = 0,
    integer2 = 1,
    integer4 = 2,
    real4 = 3,
    real8 = 4,
    complex8 = 5,
    complex16 = 6,
    logical2 = 7,
    logical4 = 8,
    character = 9,  // the length travels apart
    integer1 = 10,
    logical1 = 11,
    real10 = 12,
    complex20 = 13,
    reserved = 14,
    integer8 = 15,
};

// Bytes of an item of the type; 0 for CHARACTER and for a number outside the table.
std::int32_t type_size(TypeCode type);

// The kind of a statement, fixed by the entry that opened it.
enum class ActionCode : std::int32_t {
    none = 0,
    read_formatted = 1,
    write_formatted = 2,
    endfile = 3,
    rewind = 4,
    backspace = 5,
    open = 6,
    close = 7,
    inquire = 8,
    read_unformatted = 9,
    write_unformatted = 10,
    read_direct_formatted = 11,
    write_direct_formatted = 12,
    read_direct_unformatted = 13,
    write_direct_unformatted = 14,
    read_namelist = 15,
    write_namelist = 16,
    flush = 17,
};

bool is_read(ActionCode action);
bool is_write(ActionCode action);
bool is_sequential_formatted(ActionCode action);
bool is_direct_formatted(ActionCode action);
bool is_direct(ActionCode action);
bool is_sequential(ActionCode action);
// OPEN, CLOSE, INQUIRE, FLUSH and the positioning statements.
bool is_control(ActionCode action);

// The number of a specifier.
enum class IOCode : std::int32_t {
    access = 1,
    blank = 2,
    direct = 3,
    end = 4,
    err = 5,
    exist = 6,
    file = 7,
    fmt = 8,
    form = 9,
    formatted = 10,
    iostat = 11,
    name = 12,
    named = 13,
    nextrec = 14,
    number = 15,
    opened = 16,
    rec = 17,
    recl = 18,
    sequential = 19,
    status = 20,
    unformatted = 21,
    unit = 22,
    filetype = 23,
    handle = 24,
    new_name = 25,
    strict = 26,
    internal_file = 27,
    err_of_iostat = 28,
    count = 30,
    format_text = 31,
    format_variable = 32,
    internal_variable = 33,
    internal_records = 34,
    format_elements = 35,
    assigned_fmt = 36,
    driver = 37,
    namelist = 41,
    transparent = 42,
    share = 43,
    position = 44,
    action = 45,
    delim = 46,
    pad = 47,
    advance = 48,
    size = 49,
    eor = 50,
    readwrite = 51,
    read = 53,
    write = 54,
    frame_word = 55,
    status_end = 57,
    status_eor = 58,
    status_err = 59,
    fmt_table = 60,
    iomsg = 61,
    pos = 62,
    stream = 63,
};

}  // namespace tarn::fio::native
