// What a debugger or a puzzled programmer asks of the units.
#include "fio/native/debug.h"

#include <cstdio>
#include <string>

#include "fio/native/connect.h"
#include "fio/native/hooks.h"

namespace tarn::fio::native {
namespace {

const char* share_name(std::int32_t share) {
    constexpr const char* names[] = {"Compatibility", "DENYRW", "DENYWR", "DENYRD", "DENYNONE"};
    return share >= 0 && share < 5 ? names[share] : names[0];
}

template <typename... Values>
void add(std::string& text, const char* format, Values... values) {
    char line[256];
    std::snprintf(line, sizeof line, format, values...);
    text += line;
}

void add_connection(std::string& text, Unit& unit) {
    const IOStatus& s = unit.status;
    add(text, "SHARE='%s'\n", share_name(unit.share));
    text += s.blank_null ? "BLANK='NULL'\n" : "BLANK='ZERO'\n";
    text += s.formatted ? "FORM='FORMATTED'\n" : "FORM='UNFORMATTED'\n";
    text += s.direct        ? "ACCESS='DIRECT'\n"
            : s.transparent ? "ACCESS='TRANSPARENT'\n"
                            : "ACCESS='SEQUENTIAL'\n";
    add(text, "RECL=%lld\n", static_cast<long long>(unit.recl));
    add(text, "Current Record Number=%lld\n", static_cast<long long>(unit.current_record));
    if (s.end_of_file) text += "EOF flag is set\n";
    add(text, "File size=%lld\n", static_cast<long long>(unit.file.size));
    if (unit.file.buffered)
        add(text, "File position=%lld\n", static_cast<long long>(unit.file.logical_position));
}

}  // namespace

std::string unit_information(std::int32_t number) {
    std::string text;
    Unit* const unit = UnitList_getUnit(number);
    if (unit == nullptr || (number >= 0 && !is_connected(*unit))) {
        add(text, "Unit %d is not open\n", number);
        return text;
    }
    if (number < 0) {
        text = "Unit is connected to an internal file\n";
    } else if (unit->status.scratch) {
        text = "Unit is connected to a scratch file\n";
    } else {
        text = "File: " + unit->file.path + "\n";
    }
    add_connection(text, *unit);
    return text;
}

std::string unit_file_name(std::int32_t number) {
    const Unit* const unit = UnitList_getUnit(number);
    if (unit == nullptr || !is_connected(*unit)) return "UNDEFINED";
    if (unit->status.scratch) return "SCRATCH FILE\n";
    return unit->file.path.empty() ? "UNDEFINED" : unit->file.path;
}

std::string unit_list_text() {
    std::string text = "Unit list: ";
    const char* separator = "";
    for (const Unit* unit = UnitList_first(); unit != nullptr; unit = unit->next) {
        text += separator;
        void* const handle =
            unit->file.descriptor < 0
                ? nullptr
                : reinterpret_cast<void*>(static_cast<std::intptr_t>(unit->file.descriptor));
        add(text, "%d/%p", unit->number, handle);
        separator = ", ";
    }
    text += '\n';
    return text;
}

std::string io_buffer_text() {
    std::string text = "Contents of I/O buffer [";
    const IO_type* const io = state().current_io;
    if (io != nullptr && io->record_start != nullptr) {
        const char* const end = io->buffer_start + io->buffer_size;
        const char* place = io->record_start;
        const auto copy_to = [&](const char* limit) {
            if (limit > end) limit = end;
            if (limit > place) {
                text.append(place, limit);
                place = limit;
            }
        };
        copy_to(io->record_cursor);
        text += '\xF9';
        copy_to(io->record_last + 1);
        text += '\xDB';
        copy_to(io->record_end + 1);
    }
    text += "]\n";
    return text;
}

}  // namespace tarn::fio::native
