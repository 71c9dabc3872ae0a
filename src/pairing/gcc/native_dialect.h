// gfortran's statements in the native dialect: what `tarnfc --dialect=native` turns a program's
// statement openings into. The items and the end of such a statement come through the entries of
// all data transfers, which tell it by the owner of its block.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/gnu/item.h"

namespace tarn::gcc {

// One item; false: the statement has failed, and what follows is ignored.
bool native_transfer(void* block, fio::ItemType type, void* item, int kind, std::size_t length);
// Items `stride` bytes apart.
void native_row(void* block, fio::ItemType type, void* items, int kind, std::size_t size,
                std::int64_t stride, std::int64_t count);
// An item with a procedure of its own: the dialect has none of that.
void native_refuse_derived(void* block);
void native_done(void* block);

}  // namespace tarn::gcc
