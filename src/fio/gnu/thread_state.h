// What a thread keeps for its gnu statements: a stock of statement records and its formats.
#pragma once

#include "fio/format/cache.h"
#include "fio/gnu/statement.h"

namespace tarn::fio {

struct ThreadState {
    FormatCache formats;
    Statement* stock = nullptr;  // records that no statement uses, linked by `below`
    ~ThreadState();
};

ThreadState& thread_state();

// A record as a new statement finds it; given back at its end.
Statement* take_statement();
void give_back(Statement* statement);

}  // namespace tarn::fio
