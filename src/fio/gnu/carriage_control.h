// CARRIAGECONTROL='FORTRAN': the first character of a record says how paper moves before it is
// printed, and isn't printed itself. '0' moves by two lines, '1' to a new page, '+' not at all, any
// other by one. Behind the record stands a carriage return, so that '+' prints over it; not behind
// a prompt, which '$' begins on a new line and a zero byte goes on with.
//
// gfortran looks at the first character of each statement or even item. Here it is the record's,
// whatever wrote it; a record without characters moves by one line.
#pragma once

#include <cstddef>

#include "fio/gnu/statement.h"
#include "fio/unit.h"

namespace tarn::fio {

// The first `high - begin` bytes of the record at hand are its beginning, to be printed as the
// first of them says: it is replaced by the paper's moves. Afterwards there is room for a carriage
// return at `high`. False: there is no memory for it.
bool control_carriage(Statement& statement);

}  // namespace tarn::fio
