// Steps of a report that may themselves fail: what they look at may be broken, and a lock that they
// need may be held by the very code that faulted. A step that faults or takes too long is left, and
// the report goes on with the next.
#pragma once

namespace tarn::exceptions {

// False when the step was left. One thread at a time; steps may nest.
bool attempt(unsigned seconds, void (*step)(void* data), void* data);

template <class Step>
bool attempt(unsigned seconds, Step step) {
    return attempt(
        seconds, [](void* data) { (*static_cast<Step*>(data))(); }, &step);
}

// For a step that has come to where it waits for the user: it may take as long as it likes.
void lift_limit();

// For the handler of a fault: leaves the step that this thread is in. Returns where it is in none.
void leave_attempt();

}  // namespace tarn::exceptions
