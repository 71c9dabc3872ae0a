// The table of handles, for the files of this folder.
#pragma once

#include <array>

#include "fio/handles/handles.h"
#include "platform/kernel/lock.h"

namespace tarn::fio::handles {

struct State {
    platform::Lock lock;
    std::array<Handle*, 256> buckets{};  // by the low byte of the number
    Handle* free = nullptr;              // closed: each keeps its number and its buffer
    Number next_number = first_number;   // negative: none is left
    bool buffered = false;
};
State& state();

// Null: unknown. A handle is not locked: closing it in one thread and using it in another is the
// program's fault, and finds a file that isn't open.
Handle* look_up(Number number);
// Those that may be read or written; otherwise `error` is set.
Handle* look_up_for_reading(Number number, int& error);
Handle* look_up_for_writing(Number number, int& error, int error_if_not);

// The number that a full disk has here.
int own_number(int error);

}  // namespace tarn::fio::handles
