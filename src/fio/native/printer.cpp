// FORM='PRINTER': the first character of a record is carriage control, and the line end of each
// line is kept back until it is known what follows.
#include <string>

#include "fio/native/connect.h"

namespace tarn::fio::native {

void write_printer_line_end(Unit& unit, int& err) {
    err = 0;
    if (!unit.status.line_pending) return;
    unit.status.line_pending = false;
    sys_fileWrite(unit, "\n", 1, err);
}

void write_printer_record(Unit& unit, const char* text, std::size_t length, int& err) {
    const char control = length > 0 ? text[0] : ' ';
    bool& pending = unit.status.line_pending;
    std::string line;
    bool keep_line_end = true;
    switch (control) {
        case '0':
            line = pending ? "\n\r" : "\r\n";
            break;
        case '-':
            line = pending ? "\r\n\n" : "\n\r\n";
            break;
        case '1':
            line = pending ? "\n\f" : "\f";
            keep_line_end = !pending;
            pending = false;
            break;
        case '+':
            pending = false;
            break;
        default:
            break;
    }
    if (pending) line += '\n';
    if (length > 1) line.append(text + 1, length - 1);
    line += '\r';
    pending = keep_line_end;
    // One write: a record of a shared file leaves whole.
    sys_fileWrite(unit, line.data(), line.size(), err);
}

}  // namespace tarn::fio::native
