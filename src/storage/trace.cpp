#include "storage/trace.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tarn::storage {

namespace {

// The file is written by plain system calls: the exit chain closes the program's streams, and a
// stream of the C library would allocate while an allocation is being told.
struct Trace {
    std::atomic<int> file{-1};
};
constinit Trace the_trace;
constinit AllocateEvents the_events;

void write_text(int file, const char* text, int length) {
    while (length > 0) {
        ssize_t wrote = write(file, text, static_cast<std::size_t>(length));
        if (wrote < 0 && errno == EINTR) continue;
        if (wrote <= 0) return;
        text += wrote;
        length -= static_cast<int>(wrote);
    }
}

void write_line(const char* format, std::size_t size, const void* pointer) {
    int file = the_trace.file.load(std::memory_order_relaxed);
    if (file < 0) [[likely]]
        return;
    char line[96];
    int length = std::snprintf(line, sizeof line, format, static_cast<int>(size),
                               static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pointer)));
    int saved_errno = errno;
    write_text(file, line, length);
    errno = saved_errno;
}

void open_trace() {
    if (the_trace.file.load(std::memory_order_relaxed) >= 0) return;
    int file = open("dumpmem.dbg", O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0) {
        std::perror("Failed to open memory dump file");
        return;
    }
    constexpr char heading[] = "\n\n!!!!!!!!!!!!!New block of memory information\n";
    write_text(file, heading, sizeof heading - 1);
    the_trace.file.store(file, std::memory_order_relaxed);
}

}  // namespace

void dump_memory_info(bool on) {
    if (on) {
        open_trace();
        return;
    }
    int file = the_trace.file.exchange(-1, std::memory_order_relaxed);
    if (file >= 0) close(file);
}

void trace_get(std::size_t length, const void* pointer) {
    write_line("__get_memory length %d pointer %x\n", length, pointer);
}

void trace_release(std::size_t size, const void* pointer) {
    write_line("__release_memory size %d pointer %x\n", size, pointer);
}

AllocateEvents& allocate_events() {
    return the_events;
}

void increment_allocate_event(const char* format, std::va_list arguments) {
    if (!the_events.allocate_debug) return;
    ++the_events.allocate_events;
    std::vprintf(format, arguments);
    if (the_events.allocate_events == the_events.allocate_break_number) asm volatile("int3");
}

}  // namespace tarn::storage
