// A group that gfortran tells variable by variable, as the table of a native NAMELIST statement.
#pragma once

#include <string>
#include <string_view>

#include "fio/gnu/namelist.h"
#include "fio/native/namelist_table.h"

namespace tarn::gcc {

std::string upper_name(std::string_view name);
// What the group has and a table can't tell, as a sentence; empty: nothing, and the table is made.
std::string describe_group(const fio::NamelistGroup& group,
                           fio::native::NamelistTableBuilder& builder);

}  // namespace tarn::gcc
