// Running a format: the walk from one data edit descriptor to the next.
#pragma once

#include "fio/gnu/statement.h"

namespace tarn::fio {

// Starts the format of a new statement. The outermost parenthesis is open already.
inline void start_format(Statement& statement) {
    statement.next = &statement.format->nodes[1];
    statement.counters[0] = 1;
}

// Runs the control edit descriptors up to the next data edit descriptor and returns that, taken as
// `data_edit_at_hand` takes it. Without
// an item in hand (`pending` false) it stops at the first data edit descriptor, colon or end of
// the format, and returns null; so it does when the statement has failed.
const FormatNode* run_format(Statement& statement, bool pending);

// Whether nothing but the end of the format is left.
inline bool is_at_end_of_format(const Statement& statement) {
    return statement.repeat_left == 0 && statement.next->edit == Edit::end;
}

// The data edit descriptor that the next item meets, if no control edit descriptor stands before
// it; null: `run_format` has to find it.
inline const FormatNode* data_edit_at_hand(Statement& statement) {
    if (statement.repeat_left > 0) {
        --statement.repeat_left;
        return statement.data_edit;
    }
    const FormatNode* node = statement.next;
    if (!is_data_edit(node->edit)) return nullptr;
    statement.next = node + 1;
    statement.repeat_left = node->repeat - 1;
    statement.data_edit = node;
    statement.data_used = true;
    return node;
}

}  // namespace tarn::fio
