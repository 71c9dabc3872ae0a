#include "fio/gnu/thread_state.h"

#include <cstdlib>
#include <pthread.h>

namespace tarn::fio {
namespace {

// A plain pointer of the initial TLS block is the cheapest to reach; the key only runs the
// destructor at the thread's end.
thread_local ThreadState* current __attribute__((tls_model("initial-exec"))) = nullptr;
pthread_key_t key;
pthread_once_t key_made = PTHREAD_ONCE_INIT;

void discard(void* state) {
    current = nullptr;
    delete static_cast<ThreadState*>(state);
}

void make_key() {
    pthread_key_create(&key, discard);
}

__attribute__((noinline)) ThreadState& make_state() {
    pthread_once(&key_made, make_key);
    current = new ThreadState;
    pthread_setspecific(key, current);
    return *current;
}

}  // namespace

ThreadState::~ThreadState() {
    while (stock != nullptr) {
        Statement* statement = stock;
        stock = statement->below;
        std::free(statement->scratch);
        std::free(statement->list.saved_text);
        delete statement;
    }
}

ThreadState& thread_state() {
    return current != nullptr ? *current : make_state();
}

Statement* take_statement() {
    ThreadState& state = thread_state();
    Statement* statement = state.stock;
    if (statement == nullptr) return new Statement;
    state.stock = statement->below;
    // The buffers stay with the record: a statement that has run once allocates nothing again.
    reset_statement(*statement);
    return statement;
}

void give_back(Statement* statement) {
    ThreadState& state = thread_state();
    statement->below = state.stock;
    state.stock = statement;
}

}  // namespace tarn::fio
