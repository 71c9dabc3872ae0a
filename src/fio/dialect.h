// The two sets of rules a statement can follow.
//
// native: the system's own rules, for its own entries. gnu: Fortran 2018 as gfortran 12 does it,
// byte for byte, for the entries that gfortran's code calls. The dialect of a statement is chosen
// by the entry that opened it, and a connection keeps the dialect of its OPEN: how records stand
// on a file goes by the connection, how items are edited by the statement.
#pragma once

#include <string_view>

namespace tarn::fio {

struct Dialect {
    // Records of a formatted file.
    std::string_view line_end;    // what ends a record
    bool cuts_trailing_blanks;    // from each record of an ordinary text file
    bool drops_control_z;         // byte 26 vanishes from what is read
    bool expands_tabs;            // to multiples of 8 columns, on reading
    bool drops_carriage_returns;  // wherever they stand; otherwise only directly before LF

    // Names of files.
    std::string_view scratch_prefix;  // how the name of a scratch file begins
};

extern const Dialect native_dialect;
extern const Dialect gnu_dialect;

}  // namespace tarn::fio
