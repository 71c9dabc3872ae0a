// The variables of a NAMELIST group, which gfortran tells one by one before the statement opens.
#pragma once

#include "fio/gnu/namelist.h"
#include "pairing/gcc/data_block.h"

namespace tarn::gcc {

// The group of the block's statement; made where the block has none.
fio::NamelistGroup& group_of(DataBlock& block);
// At the statement's end. Without a group: nothing.
void release_group(DataBlock& block);

}  // namespace tarn::gcc
