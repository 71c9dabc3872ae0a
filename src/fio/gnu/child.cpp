#include "fio/gnu/child.h"

#include <cstring>
#include <string>
#include <utility>

#include "fio/gnu/connection.h"
#include "fio/gnu/format_run.h"
#include "fio/gnu/items.h"
#include "fio/gnu/records.h"
#include "fio/gnu/thread_state.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr Fault same_unit{433, iostat_option_conflict};
constexpr Fault wrong_direction{81, iostat_option_conflict};
constexpr Fault wrong_edit{51, iostat_format};
constexpr Fault out_of_memory{156, iostat_allocation};

// Room for the message of a procedure when the statement has none of its own.
constexpr std::size_t message_length = 256;

// Copies what tells where a record stands.
void copy_record(const Statement& from, Statement& to) {
    to.begin = from.begin;
    to.tab_limit = from.tab_limit;
    to.cursor = from.cursor;
    to.high = from.high;
    to.limit = from.limit;
    to.room_end = from.room_end;
    to.pending = from.pending;
    to.record_end = from.record_end;
    to.column_base = from.column_base;
    to.record_consumed = from.record_consumed;
    to.carriage_return = from.carriage_return;
    to.text_end = from.text_end;
    to.record_number = from.record_number;
    to.behind_scalar = from.behind_scalar;
    to.behind_end = from.behind_end;
    to.record_at_hand = from.record_at_hand;
    to.record_dropped = from.record_dropped;
    to.record_terminated = from.record_terminated;
    to.carriage_return_unknown = from.carriage_return_unknown;
    if (from.internal) to.file = from.file;
    if (from.unformatted) to.raw = from.raw;
}

// The number under which a procedure reaches the statement's record.
bool name_parent(Statement& s) {
    if (s.unit != nullptr) {
        s.child_unit = s.unit->number;
        return true;
    }
    if (s.child_unit != 0) return true;
    s.child_unit = take_new_unit_number();
    s.owns_child_unit = s.child_unit != 0;
    if (!s.owns_child_unit) fail(s, out_of_memory);
    return s.owns_child_unit;
}

void fail_wrong_edit(Statement& s, const FormatNode& node) {
    std::string detail = "FORMAT mismatch: an item with a procedure of its own needs DT, not \"";
    detail.append(s.cached->text, node.source, 1);
    detail.append("\" (at data position ").append(std::to_string(s.items)).append(")");
    fail(s, wrong_edit, detail);
}

void transfer_by_format(Statement& s, const ItemProcedure& procedure) {
    if (s.end_of_record && s.non_advancing) return;
    const FormatNode* node = data_edit_at_hand(s);
    if (node == nullptr) node = run_format(s, true);
    if (node == nullptr) return;
    ++s.items;
    if (node->edit != Edit::DT) return fail_wrong_edit(s, *node);
    if (s.reading && !has_input_record(s)) return fail_end_of_file(s);
    std::string iotype = "DT";
    iotype.append(s.format->literals, node->text, node->length);
    run_procedure(s, iotype, s.format->values.data() + node->d, node->w, procedure);
}

void transfer_in_list(Statement& s, const ItemProcedure& procedure) {
    constexpr std::string_view iotype = "LISTDIRECTED";
    ++s.items;
    if (!s.reading) {
        put_list_separator(s, false);
    } else if (!find_list_value(s)) {
        return;
    }
    run_procedure(s, iotype, nullptr, 0, procedure);
}

}  // namespace

void transfer_derived(Statement& s, const ItemProcedure& procedure) {
    if (s.failed) return;
    if (s.unformatted) {
        run_procedure(s, {}, nullptr, 0, procedure);
    } else if (s.list_directed) {
        transfer_in_list(s, procedure);
    } else {
        transfer_by_format(s, procedure);
    }
}

void run_procedure(Statement& s, std::string_view iotype, const std::int32_t* values,
                   std::int32_t value_count, const ItemProcedure& procedure) {
    if (s.failed || !name_parent(s)) return;
    char own_message[message_length];
    ProcedureArguments arguments{
        s.child_unit,           iotype,       values, value_count, 0, s.caller->iomsg,
        s.caller->iomsg_length, s.unformatted};
    if (arguments.iomsg == nullptr) {
        std::memset(own_message, ' ', sizeof own_message);
        arguments.iomsg = own_message;
        arguments.iomsg_length = sizeof own_message;
    }
    ThreadState& thread = thread_state();
    s.parent_below = thread.parents;
    thread.parents = &s;
    procedure.call(procedure, arguments);
    thread.parents = s.parent_below;
    if (arguments.iostat == 0) return;
    raise_procedure_fault(*s.caller, arguments.iostat, {arguments.iomsg, arguments.iomsg_length});
}

Statement* parent_of(std::int32_t unit) {
    if (ThreadState::current == nullptr) return nullptr;
    Statement* parent = ThreadState::current->parents;
    while (parent != nullptr && parent->child_unit != unit) parent = parent->parent_below;
    return parent;
}

bool take_record(Statement& parent, Statement& child) {
    if (parent.child_running) {
        fail(child, same_unit, "a child statement is running on it");
        return false;
    }
    if (parent.reading != child.reading) {
        fail(child, wrong_direction,
             child.reading ? "a READ inside a WRITE of its unit"
                           : "a WRITE inside a READ of its unit");
        return false;
    }
    child.parent = &parent;
    parent.child_running = true;
    child.unit = parent.unit;
    child.child_unit = parent.child_unit;
    child.internal = parent.internal;
    child.wide = parent.wide;
    child.utf8 = parent.utf8;
    child.direct = parent.direct;
    child.stream = parent.stream;
    child.record_limit = parent.record_limit;
    copy_record(parent, child);
    // The text of a record may lie in the scratch room.
    std::swap(parent.scratch, child.scratch);
    std::swap(parent.scratch_capacity, child.scratch_capacity);
    return true;
}

void bring_record(Statement& s) {
    if (!s.reading || s.unformatted) return;
    const Statement& parent = *s.parent;
    const bool passed = parent.list_directed && parent.list.record_passed;
    if (s.list_directed && parent.list_directed) {
        s.list = parent.list;
    } else if (passed || s.record_dropped) {
        next_input_record(s);
    }
}

namespace {

// The record has gone by: what held it may be gone too.
void forget_record(Statement& s) {
    s.begin = s.tab_limit = s.cursor = s.limit = s.carriage_return = s.text_end = nullptr;
    s.carriage_return_unknown = false;
}

// Where a list-directed READ stands between two values, after a child has moved on in its record.
void give_list_back(Statement& parent, const Statement& child) {
    ListState& list = parent.list;
    if (!parent.record_at_hand) {
        parent.record_dropped = false;
        list.at_line_end = list.record_passed = true;
    } else if (child.list_directed) {
        list.at_line_end = child.list.at_line_end;
        list.record_passed = child.list.record_passed;
        list.comma_seen = child.list.comma_seen;
    } else {
        list.at_line_end = parent.cursor == parent.limit;
        list.record_passed = list.comma_seen = false;
    }
    list.first = false;
}

}  // namespace

void give_record_back(Statement& child) {
    Statement* const parent = child.parent;
    if (parent == nullptr) return;
    copy_record(child, *parent);
    const bool by_records = parent->reading && !parent->unformatted;
    if (by_records && !parent->record_at_hand) forget_record(*parent);
    if (by_records && parent->list_directed) give_list_back(*parent, child);
    // The modes that belong to the connection stay as the child has left them; programs know that
    // from gfortran.
    parent->modes.decimal = child.modes.decimal;
    parent->modes.delim = child.modes.delim;
    parent->modes.pad = child.modes.pad;
    parent->modes.round = child.modes.round;
    std::swap(parent->scratch, child.scratch);
    std::swap(parent->scratch_capacity, child.scratch_capacity);
    parent->child_running = false;
}

void end_parent(Statement& s) {
    if (s.owns_child_unit) give_back_new_unit_number(s.child_unit);
}

}  // namespace tarn::fio
