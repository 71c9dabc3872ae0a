// From gfortran's parameter blocks to statements of the engine.
#pragma once

#include "fio/gnu/child.h"
#include "fio/gnu/statement.h"
#include "pairing/gcc/data_block.h"

namespace tarn::gcc {

void begin_data_transfer(DataBlock& block, bool reading);
void begin_measuring(DataBlock& block);
// The outcome goes into the block's flags.
void end_data_transfer(DataBlock& block);

// The statement of a block that is the engine's; a quick record becomes one.
fio::Statement& statement_of(DataBlock& block);
// One scalar item that isn't COMPLEX. `size`: its bytes; of a CHARACTER its length.
void transfer_item(DataBlock& block, fio::ItemType type, void* item, int kind, std::size_t size);
void transfer_complex(DataBlock& block, void* item, int kind);
// All elements of an array of any rank and stride, in array order.
void transfer_array(DataBlock& block, const ArrayDescriptor& array, int kind,
                    std::size_t character_length);

// By the number of a descriptor.
fio::ItemType item_type(std::int8_t type);

// An item that goes through a procedure of its type. `object` is the compiled program's class
// container, of which only the procedure knows more.
void transfer_derived(DataBlock& block, void* object, void* routine);

// Gives the engine the way to the procedures of variables in namelist groups.
void transfer_namelists_by_procedures();

// The procedure with that item as the engine calls it.
fio::ItemProcedure item_procedure(void* object, void* routine);

// What statements of the other dialect do with their items and their end; filled where they are
// opened. Null: none was ever opened.
struct NativeRoad {
    bool (*transfer)(void* block, fio::ItemType type, void* item, int kind,
                     std::size_t length) = nullptr;
    // `count` items `stride` bytes apart.
    void (*row)(void* block, fio::ItemType type, void* items, int kind, std::size_t size,
                std::int64_t stride, std::int64_t count) = nullptr;
    void (*refuse_derived)(void* block) = nullptr;
    void (*done)(void* block) = nullptr;
};
NativeRoad& native_road();

}  // namespace tarn::gcc
