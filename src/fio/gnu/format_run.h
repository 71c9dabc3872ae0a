// Running a format: the walk from one data edit descriptor to the next.
#pragma once

#include "fio/gnu/statement.h"

namespace tarn::fio {

// Starts the format of a statement from its beginning.
void start_format(Statement& statement);

// Runs the control edit descriptors up to the next data edit descriptor and returns that. Without
// an item in hand (`pending` false) it stops at the first data edit descriptor, colon or end of
// the format, and returns null; so it does when the statement has failed.
const FormatNode* run_format(Statement& statement, bool pending);

inline const FormatNode* next_data_edit(Statement& statement) {
    if (statement.repeat_left > 0) {
        --statement.repeat_left;
        return statement.data_edit;
    }
    return run_format(statement, true);
}

}  // namespace tarn::fio
