// NAMELIST output: `NAME = value`, a line each, arrays four values to a line.
#include <cstring>

#include "fio/native/connect.h"
#include "fio/native/namelist.h"
#include "fio/native/namelist_body.h"
#include "fio/native/namelist_table.h"
#include "fio/native/record.h"
#include "fio/native/transfer.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t buffer_overflow = 200;
constexpr int bad_table = 42;
constexpr std::uintptr_t least_table = 1000;
constexpr int values_of_line = 4;

bool write_namelist_string_len(const char* text, std::size_t length) {
    IO_type& io = current();
    const auto count = static_cast<std::int64_t>(length);
    const std::int64_t end = io.record_cursor - io.record_start + count;
    const bool limited = io.unit->kind != UnitKind::console;
    if (limited && end > unit_record_length(*io.unit) && !IO_error(buffer_overflow)) return false;
    if (end > io.buffer_size) IO_allocate_buffer(io, end);
    if (length != 0) std::memcpy(io.record_cursor, text, length);
    io.record_cursor += count;
    return true;
}

bool write_namelist_string(std::string_view text) {
    return write_namelist_string_len(text.data(), text.size());
}

bool write_namelist_line() {
    IO_type& io = current();
    Unit& unit = *io.unit;
    const auto length = static_cast<std::size_t>(io.record_cursor - io.record_start);
    int err = 0;
    switch (unit.kind) {
        case UnitKind::console:
            err = sys_consoleWriteLine({io.record_start, length});
            break;
        case UnitKind::text:
        case UnitKind::full:
            ++unit.current_record;
            sys_fileWriteText(unit, io.record_start, length, err);
            break;
        default:
            // Windows, printers and drivers have roads of their own.
            io.high_water = io.record_cursor;
            if (!WSF3__()) return false;
            break;
    }
    if (err != 0) return IO_system_error(err, "write_namelist_line");
    return IO_initialise_formatted_io();
}

// A number goes out as a list-directed item of its size.
bool write_number(bool (*item)(const void*, std::int64_t), const char* address, std::int32_t size) {
    current().item_size = size;
    return item(address, 1);
}

bool write_logical(const char* address, std::size_t size) {
    bool set = false;
    for (std::size_t i = 0; i < size; ++i) set = set || address[i] != 0;
    return write_namelist_string(set ? "T" : "F");
}

bool write_namelist_value(NamelistType type, const char* address, std::int64_t length) {
    switch (type) {
        case NamelistType::integer1:
            return write_number(I_WSF_main, address, 1);
        case NamelistType::integer2:
            return write_number(I_WSF_main, address, 2);
        case NamelistType::integer4:
            return write_number(I_WSF_main, address, 4);
        case NamelistType::integer8:
            return write_number(I_WSF_main, address, 8);
        case NamelistType::real4:
            return write_number(R_WSF_main, address, 4);
        case NamelistType::real8:
            return write_number(R_WSF_main, address, 8);
        case NamelistType::real10:
            return write_number(R_WSF_main, address, 10);
        case NamelistType::complex8:
            return write_number(C_WSF_main, address, 4);
        case NamelistType::complex16:
            return write_number(C_WSF_main, address, 8);
        case NamelistType::complex20:
            return write_number(C_WSF_main, address, 10);
        case NamelistType::logical1:
        case NamelistType::logical2:
        case NamelistType::logical4:
            return write_logical(address, static_cast<std::size_t>(namelist_type_size(type)));
        case NamelistType::character: {
            const std::string_view mark = current().unit->status.delim_quote ? "\"" : "'";
            return write_namelist_string(mark) &&
                   write_namelist_string_len(address, static_cast<std::size_t>(length)) &&
                   write_namelist_string(mark);
        }
        default:
            return true;
    }
}

// The values on the line at hand.
class Line {
  public:
    bool count() { return ++values_ < values_of_line || end(); }
    bool end_if_begun() { return values_ == 0 || end(); }

  private:
    bool end() {
        values_ = 0;
        return write_namelist_line();
    }
    int values_ = 0;
};

bool write_array(const NamelistEntry& entry, std::ptrdiff_t base, Line& line) {
    const char* element = entry.address + base;
    for (std::int64_t left = entry.element_count(); left > 0; --left) {
        if (!write_namelist_value(entry.type, element, entry.length)) return false;
        if (!write_namelist_string(" ") || !line.count()) return false;
        element += entry.element_size();
    }
    return true;
}

bool is_logical(NamelistType type) {
    return type == NamelistType::logical1 || type == NamelistType::logical2 ||
           type == NamelistType::logical4;
}

bool write_struct_components(const char* cursor, int count, std::ptrdiff_t base, Line& line) {
    for (; count > 0; --count) {
        const NamelistEntry entry = read_namelist_component(cursor);
        if (entry.type == NamelistType::structure) {
            const std::int64_t elements = entry.element_count();
            for (std::int64_t i = 0; i < elements; ++i) {
                const std::ptrdiff_t element = base + i * entry.length;
                if (!write_struct_components(entry.behind, entry.components, element, line)) {
                    return false;
                }
            }
        } else if (entry.rank > 0) {
            if (!write_array(entry, base, line)) return false;
        } else {
            if (!write_namelist_value(entry.type, entry.address + base, entry.length)) return false;
            // Letters in a row couldn't be told apart.
            if (is_logical(entry.type) && !write_namelist_string(" ")) return false;
            if (!line.count()) return false;
        }
        cursor += entry.distance;
    }
    return true;
}

bool write_item(const NamelistItem& item) {
    const NamelistEntry& entry = item.entry;
    if (!write_namelist_string(item.name) || !write_namelist_string(" = ")) return false;
    Line line;
    if (entry.type == NamelistType::structure) {
        const std::int64_t elements = entry.element_count();
        for (std::int64_t i = 0; i < elements; ++i) {
            if (!write_struct_components(entry.behind, entry.components, i * entry.length, line)) {
                return false;
            }
        }
        return line.end_if_begun();
    }
    if (entry.rank == 0) {
        return write_namelist_value(entry.type, entry.address, entry.length) &&
               write_namelist_line();
    }
    if (entry.element_count() == 0) return write_namelist_line();
    return write_array(entry, 0, line) && line.end_if_begun();
}

}  // namespace

bool begin_namelist(std::int32_t mismatch) {
    IO_type& io = current();
    io.edit.no_repeat = true;
    io.internal_file = false;
    if (io.unit == nullptr) {
        if (!IO_error(94)) return false;
        io.unit = io.target_unit = nowhere_unit();
    }
    const IOStatus& status = io.unit->status;
    if ((!status.formatted || status.transparent) && !IO_error(mismatch)) return false;
    return take_direction(io) && IO_initialise_formatted_io();
}

bool WNML__() {
    IO_type& io = current();
    if (!begin_namelist(90)) return false;
    if (reinterpret_cast<std::uintptr_t>(io.namelist_table) < least_table) {
        return IO_system_error(bad_table, "WNML__");
    }
    const NamelistTable table = read_namelist_table(io.namelist_table);
    if (!write_namelist_string("&") || !write_namelist_string(table.name) ||
        !write_namelist_line()) {
        return false;
    }
    const char* at = table.first;
    for (std::int32_t left = table.count; left > 0; --left) {
        const NamelistItem item = read_namelist_item(at);
        if (item.name.empty()) return IO_system_error(bad_table, "WNML__");
        if (!write_item(item)) return false;
        at = item.next;
    }
    if (!write_namelist_string("/") || !write_namelist_line()) return false;
    hand_over_to_gnu(*io.unit);
    return true;
}

}  // namespace tarn::fio::native
