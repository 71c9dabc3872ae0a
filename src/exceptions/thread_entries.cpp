// Every thread of the process gets a stack for the reports of its faults. So the library stands in
// front of the system's pthread_create, also for OpenMP's workers and C++'s threads; a thread that
// starts before the library is up, or is started past this name, has its faults reported on its own
// stack.
#include <cstdlib>
#include <dlfcn.h>
#include <pthread.h>

#include "frame/link_name.h"
#include "platform/kernel/fault.h"

namespace {

using Routine = void* (*)(void*);
using Create = int (*)(pthread_t*, const pthread_attr_t*, Routine, void*);

struct Start {
    Routine routine;
    void* argument;
    std::size_t stack_size;
};

void* start_thread(void* data) {
    auto* start = static_cast<Start*>(data);
    const Start own = *start;
    std::free(start);
    tarn::platform::set_stack_bounds(__builtin_frame_address(0), own.stack_size);
    tarn::platform::give_handler_stack();
    return own.routine(own.argument);
}

std::size_t stack_size_of(const pthread_attr_t* attributes) {
    std::size_t size = 0;
    if (attributes != nullptr) {
        pthread_attr_getstacksize(attributes, &size);
        return size;
    }
    pthread_attr_t defaults;
    if (pthread_attr_init(&defaults) != 0) return 0;
    pthread_attr_getstacksize(&defaults, &size);
    pthread_attr_destroy(&defaults);
    return size;
}

Create system_create() {
    static const Create create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    return create;
}

}  // namespace

extern "C" {

TARN_EXPORT int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, Routine routine,
                               void* argument) noexcept {
    const Create create = system_create();
    if (!tarn::platform::faults_are_watched()) return create(thread, attributes, routine, argument);
    auto* start = static_cast<Start*>(std::malloc(sizeof(Start)));
    if (start == nullptr) return create(thread, attributes, routine, argument);
    *start = {routine, argument, stack_size_of(attributes)};
    const int result = create(thread, attributes, start_thread, start);
    if (result != 0) std::free(start);
    return result;
}
}
