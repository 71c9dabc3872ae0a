// Threads that help with one computation at a time. They are started when one first asks for them,
// and sleep in between.
#pragma once

namespace tarn::platform {

// How many processors this process may run on.
int processor_count();

// Calls part(context, i) for every i below `count`, on the calling thread and on helpers, at most
// `threads` of them together, and comes back when all have returned. While a computation has the
// helpers, others run alone, one part after the other: those of other threads, and one that a part
// starts itself. It is the same where no thread can be started.
//
// A part runs with the caller's floating-point control, and the exceptions that it raises become
// the caller's. A part must not fail: a report would tell of a thread that the program has never
// seen.
void run_parts(int count, int threads, void (*part)(void* context, int index), void* context);

}  // namespace tarn::platform
