#include "frame/cores.h"

#include <atomic>

#include "frame/link_name.h"
#include "platform/kernel/workers.h"
#include "tarn/threads.h"

namespace tarn::frame {
namespace {

constinit std::atomic<std::int32_t> most{0};

}  // namespace

std::int32_t max_cores() {
    return most.load(std::memory_order_relaxed);
}

std::int32_t set_max_cores(std::int32_t count) {
    const std::int32_t processors = platform::processor_count();
    const std::int32_t chosen = count >= 1 && count <= processors ? count : processors;
    most.store(chosen, std::memory_order_relaxed);
    return chosen;
}

}  // namespace tarn::frame

extern "C" {
TARN_EXPORT std::int32_t SET_MAX_CORES_h(const std::int32_t* count) {
    return tarn::frame::set_max_cores(*count);
}
}
