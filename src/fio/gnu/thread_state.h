// What a thread keeps for its gnu statements: stocks of statement records and namelist groups,
// and its formats.
#pragma once

#include <new>

#include "fio/format/cache.h"
#include "fio/gnu/statement.h"

namespace tarn::fio {

struct NamelistGroup;

struct ThreadState {
    FormatCache formats;
    Statement* stock = nullptr;       // records that no statement uses, linked by `below`
    NamelistGroup* groups = nullptr;  // the same of namelist groups
    // Statements that run a procedure of an item, the innermost first, linked by `parent_below`.
    Statement* parents = nullptr;
    ~ThreadState();

    // A plain pointer of the initial TLS block is the cheapest to reach. Null until the thread's
    // first statement.
    static constinit thread_local ThreadState* current __attribute__((tls_model("initial-exec")));
};

ThreadState& make_thread_state();
Statement* make_statement();

inline ThreadState& thread_state() {
    return ThreadState::current != nullptr ? *ThreadState::current : make_thread_state();
}

// A record as a new statement finds it; given back at its end. The buffers stay with it: a
// statement that has run once allocates nothing again.
inline Statement* take_statement() {
    ThreadState& state = thread_state();
    Statement* statement = state.stock;
    if (statement == nullptr) return make_statement();
    state.stock = statement->below;
    new (static_cast<StatementState*>(statement)) StatementState;
    return statement;
}
inline void give_back(Statement* statement) {
    ThreadState& state = thread_state();
    statement->below = state.stock;
    state.stock = statement;
}

}  // namespace tarn::fio
