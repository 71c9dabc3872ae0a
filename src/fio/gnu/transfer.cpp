#include <string>

#include "fio/gnu/child.h"
#include "fio/gnu/format_run.h"
#include "fio/gnu/items.h"
#include "fio/gnu/list_scan.h"
#include "fio/gnu/records.h"
#include "fio/gnu/thread_state.h"
#include "fio/gnu/unformatted.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

const char* type_name(ItemType type) {
    switch (type) {
        case ItemType::integer:
            return "INTEGER";
        case ItemType::logical:
            return "LOGICAL";
        case ItemType::real:
            return "REAL";
        case ItemType::complex:
            return "COMPLEX";
        case ItemType::character:
            return "CHARACTER";
    }
    return "";
}

const char* edit_name(Edit edit) {
    constexpr const char* names[] = {"I",  "B",  "O",  "Z", "F", "E", "D",
                                     "EN", "ES", "EX", "G", "L", "A", "DT"};
    return is_data_edit(edit) ? names[static_cast<int>(edit)] : "";
}

void measure(Statement& s, ItemType type, int kind, std::size_t size, std::size_t count) {
    std::size_t bytes = size;
    if (type == ItemType::character) bytes = size * static_cast<std::size_t>(kind);
    s.length_count += static_cast<std::int64_t>(bytes * count);
}

void read_list(Statement& s, ItemType type, char* items, int kind, std::size_t size,
               std::ptrdiff_t stride, std::size_t count) {
    for (; count > 0 && !s.failed; --count, items += stride) {
        read_list_item(s, type, items, kind, size);
    }
}

// What the format still has to say when the last item has passed.
void finish_format(Statement& s) {
    if (s.format == nullptr || s.failed || is_at_end_of_format(s)) return;
    run_format(s, false);
}

// A list-directed child has passed the separator behind its last value: at the end of the record
// that is the record itself, for a parent with a format.
void pass_last_separator(Statement& s) {
    const Statement& parent = *s.parent;
    if (!s.list_directed || s.failed || parent.list_directed || parent.namelist != nullptr) return;
    if (!s.record_at_hand) return;
    skip_list_blanks(s);
    if (s.cursor == s.limit) leave_record(s);
}

// The rest of a child's format. The record stays open, unless a field has run into its end.
void end_child(Statement& s) {
    finish_format(s);
    if (s.reading && !s.unformatted) {
        if (!s.failed && s.end_of_record) fail_end_of_record(s);
        if (s.end_of_record) leave_record(s);
        pass_last_separator(s);
        if (s.size != nullptr) *s.size = s.size_count;
        s.parent->size_count += s.size_count;
    }
    give_record_back(s);
    if (s.cached != nullptr) FormatCache::release(s.cached);
}

void finish_input(Statement& s) {
    if (!s.failed && s.list_directed) finish_list_read(s);
    if (!s.failed && s.non_advancing && s.end_of_record) fail_end_of_record(s);
    if (!s.failed && s.behind_end) fail_end_of_file(s);
    if (s.unit != nullptr || s.internal) end_input(s);
}

}  // namespace

void transfer_items(Statement& s, ItemType type, void* items, int kind, std::size_t size,
                    std::ptrdiff_t stride, std::size_t count) {
    if (s.failed) return;
    auto* at = static_cast<char*>(items);
    if (s.measuring) return measure(s, type, kind, size, count);
    if (s.unformatted) return transfer_unformatted(s, type, at, kind, size, stride, count);
    if (!s.reading) {
        if (s.list_directed) return write_list(s, type, at, kind, size, stride, count);
        return write_formatted(s, type, at, kind, size, stride, count);
    }
    if (s.list_directed) return read_list(s, type, at, kind, size, stride, count);
    read_formatted(s, type, at, kind, size, stride, count);
}

void transfer_any_item(Statement& s, ItemType type, void* item, int kind, std::size_t size) {
    transfer_items(s, type, item, kind, size, 0, 1);
}

void end_transfer(Statement* statement) {
    Statement& s = *statement;
    if (s.measuring) {
        if (s.iolength != nullptr) *s.iolength = s.length_count;
        return give_back(statement);
    }
    if (s.parent != nullptr) {
        end_child(s);
        return give_back(statement);
    }
    if (s.unformatted) {
        end_unformatted(s);
        if (s.unit != nullptr) release_unit(s.unit);
        return give_back(statement);
    }
    finish_format(s);
    if (s.reading) {
        finish_input(s);
        if (s.size != nullptr) *s.size = s.size_count;
    } else if (!s.failed || s.internal) {
        end_output(s);
    }
    if (s.cached != nullptr) FormatCache::release(s.cached);
    end_parent(s);
    const bool to_window = s.unit != nullptr && s.unit->file.window != nullptr;
    // What the user types comes behind whatever was written.
    if (to_window) s.unit->gnu.end = EndState::before;
    if (s.unit != nullptr) release_unit(s.unit);
    give_back(statement);
    // Call-backs may run now, and write to the same unit.
    if (to_window) window_stream().settle();
}

void fail(Statement& s, Fault fault, std::string_view detail) {
    s.failed = true;
    raise_fault(*s.caller, fault, detail);
}

void fail_system(Statement& s, int errno_value) {
    s.failed = true;
    raise_system_fault(*s.caller, errno_value);
}

// The end of a sequential file is met once; the statement after that is told that it stands
// behind the end.
void fail_end_of_file(Statement& s) {
    s.failed = true;
    if (s.unit != nullptr && !s.direct && !s.stream) {
        s.unit->gnu.end = EndState::after;
        s.unit->status.end_of_file = true;
    }
    if (s.unit != nullptr && !s.direct) s.unit->file.position_state = place_append;
    raise_end_of_file(*s.caller);
}

void fail_end_of_record(Statement& s) {
    s.failed = true;
    raise_end_of_record(*s.caller);
}

void fail_mismatch(Statement& s, const FormatNode& node, ItemType type) {
    std::string detail = "FORMAT mismatch: ";
    detail.append(edit_name(node.edit)).append("-Format with ").append(type_name(type));
    detail.append(" item (at data position ").append(std::to_string(s.items)).append(")");
    fail(s, {51, iostat_format}, detail);
}

// The text with a mark where the parser stopped.
void fail_format(Statement& s, const FormatError& error, std::string_view text) {
    constexpr std::size_t shown = 60;
    std::size_t from = error.position > shown / 2 ? error.position - shown / 2 : 0;
    if (from > text.size()) from = text.size();
    std::string detail = "format \"";
    detail.append(text.substr(from, shown)).append("\" at character ");
    detail.append(std::to_string(error.position + 1));
    fail(s, {error.number, iostat_format}, detail);
}

}  // namespace tarn::fio
