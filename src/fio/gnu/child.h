// Items of derived types that have procedures of their own for input and output, and the child
// statements that such a procedure runs.
//
// The procedure gets the unit of the statement whose item it is: the parent. A data transfer on
// that unit, by the same thread and before the procedure returns, is a child: it goes on in the
// parent's record where that stands, doesn't end it, and hands it back. A child may have such items
// too and be a parent itself.
#pragma once

#include <cstdint>
#include <string_view>

#include "fio/gnu/statement.h"

namespace tarn::fio {

// What a procedure is given, and what comes back in `iostat` and `iomsg`.
struct ProcedureArguments {
    std::int32_t unit;           // of an internal file a number of its own, below zero
    std::string_view iotype;     // "LISTDIRECTED", "NAMELIST" or "DT" with what follows it
    const std::int32_t* values;  // the list of DT
    std::int32_t value_count;
    std::int32_t iostat;  // 0 when it is called
    char* iomsg;
    std::size_t iomsg_length;
    bool unformatted;  // has neither iotype nor list
};

// A procedure of the program with the item that it is to be called for. What the addresses mean is
// known to `call` alone.
struct ItemProcedure {
    void (*call)(const ItemProcedure& procedure, ProcedureArguments& arguments);
    void* routine;
    void* object;
};

// One item through its procedure, as the statement's kind and format have it.
void transfer_derived(Statement& statement, const ItemProcedure& procedure);

// Calls the procedure for an item of the statement at the place where the statement's record
// stands. A fault that comes back is the statement's outcome; the items that follow are still
// transferred.
void run_procedure(Statement& statement, std::string_view iotype, const std::int32_t* values,
                   std::int32_t value_count, const ItemProcedure& procedure);

// The statement of this thread that is running a procedure with this unit number; null: none is.
Statement* parent_of(std::int32_t unit);

// A child takes the parent's record, and gives it back. False: the parent can't have it, which has
// been reported.
bool take_record(Statement& parent, Statement& child);
void give_record_back(Statement& child);

// Puts an opened child where it is to read: in the next record when the one at hand has gone by,
// and between two values of a list-directed parent.
void bring_record(Statement& child);

// What a statement that has been a parent leaves to be done at its end.
void end_parent(Statement& statement);

}  // namespace tarn::fio
