// Work that only a certain thread may do, while another needs it.
#pragma once

#include <pthread.h>

namespace tarn::platform {

// Runs a routine on another thread, in the middle of whatever that one does, and waits for its end.
// False where that thread doesn't take it up within so many seconds. One at a time. The routine
// runs in a signal's handler.
bool run_on_thread(pthread_t thread, unsigned seconds, void (*routine)(void* data), void* data);

template <class Routine>
bool run_on_thread(pthread_t thread, unsigned seconds, Routine routine) {
    return run_on_thread(
        thread, seconds, [](void* data) { (*static_cast<Routine*>(data))(); }, &routine);
}

}  // namespace tarn::platform
