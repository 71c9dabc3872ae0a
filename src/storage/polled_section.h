// A critical section that is polled: one counter, -1 when free. Entering costs one atomic addition;
// nobody is woken, a waiter looks again by itself. Made for a lock that is hardly ever contended.
#pragma once

#include <atomic>
#include <cstdint>

namespace tarn::storage {

// The slow path: the caller has added 1 and found the section held. Returns when it holds it.
void enter_held_section(std::int32_t* counter);

struct PolledSection {
    std::int32_t counter = -1;

    void enter() {
        std::atomic_ref<std::int32_t> value(counter);
        if (value.fetch_add(1, std::memory_order_acquire) + 1 > 0) enter_held_section(&counter);
    }
    void leave() {
        std::atomic_ref<std::int32_t> value(counter);
        value.fetch_sub(1, std::memory_order_release);
    }
};

// Holds a section for a scope. No failure is raised while one lives: a report may itself allocate.
class InSection {
  public:
    explicit InSection(PolledSection& section) : section_(section) { section_.enter(); }
    ~InSection() { section_.leave(); }
    InSection(const InSection&) = delete;
    InSection& operator=(const InSection&) = delete;

  private:
    PolledSection& section_;
};

}  // namespace tarn::storage
