#include "fio/gnu/thread_state.h"

#include <cstdlib>
#include <pthread.h>

#include "fio/gnu/namelist.h"

namespace tarn::fio {
namespace {

// The key only runs the destructor at the thread's end.
pthread_key_t key;
pthread_once_t key_made = PTHREAD_ONCE_INIT;

void discard(void* state) {
    ThreadState::current = nullptr;
    delete static_cast<ThreadState*>(state);
}

void make_key() {
    pthread_key_create(&key, discard);
}

}  // namespace

constinit thread_local ThreadState* ThreadState::current = nullptr;

ThreadState& make_thread_state() {
    pthread_once(&key_made, make_key);
    ThreadState::current = new ThreadState;
    pthread_setspecific(key, ThreadState::current);
    return *ThreadState::current;
}

ThreadState::~ThreadState() {
    while (stock != nullptr) {
        Statement* statement = stock;
        stock = statement->below;
        std::free(statement->scratch);
        std::free(statement->saved_text);
        delete statement;
    }
    while (groups != nullptr) {
        NamelistGroup* group = groups;
        groups = group->below;
        delete group;
    }
}

Statement* make_statement() {
    return new Statement;
}

}  // namespace tarn::fio
