// A lock that a thread may take again while it holds it.
//
// Every statement on a unit takes two of them, so the road of one thread alone is a handful of
// plain instructions: while the process has one thread there is nobody to keep out, and the mark
// that is left is all that a thread born later needs to see.
#pragma once

#include <atomic>
#include <cstdint>
#include <sys/single_threaded.h>

namespace tarn::platform {

class Lock {
  public:
    void lock() {
        const std::int32_t self = thread_id();
        if (owner_.load(std::memory_order_relaxed) == self) {
            ++depth_;
            return;
        }
        if (!take()) wait();
        owner_.store(self, std::memory_order_relaxed);
        depth_ = 1;
    }

    bool try_lock() {
        const std::int32_t self = thread_id();
        if (owner_.load(std::memory_order_relaxed) == self) {
            ++depth_;
            return true;
        }
        if (!take()) return false;
        owner_.store(self, std::memory_order_relaxed);
        depth_ = 1;
        return true;
    }

    void unlock() {
        if (--depth_ > 0) return;
        owner_.store(0, std::memory_order_relaxed);
        if (__libc_single_threaded != 0) {
            state_.store(unlocked, std::memory_order_relaxed);
        } else if (state_.exchange(unlocked, std::memory_order_release) == contended) {
            wake_one();
        }
    }

  private:
    static constexpr std::uint32_t unlocked = 0;
    static constexpr std::uint32_t locked = 1;
    static constexpr std::uint32_t contended = 2;

    static std::int32_t thread_id() {
        const std::int32_t id = current_thread;
        return id != 0 ? id : find_thread_id();
    }
    static std::int32_t find_thread_id();

    bool take() {
        std::uint32_t expected = unlocked;
        if (__libc_single_threaded != 0 && state_.load(std::memory_order_relaxed) == unlocked) {
            state_.store(locked, std::memory_order_relaxed);
            return true;
        }
        return state_.compare_exchange_strong(expected, locked, std::memory_order_acquire,
                                              std::memory_order_relaxed);
    }
    void wait();
    void wake_one();

    // `constinit` here, too: every user knows then that there is nothing to initialise.
    static constinit thread_local std::int32_t current_thread
        __attribute__((tls_model("initial-exec")));

    std::atomic<std::uint32_t> state_{unlocked};
    std::atomic<std::int32_t> owner_{0};
    std::int32_t depth_ = 0;
};

}  // namespace tarn::platform
