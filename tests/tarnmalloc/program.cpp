// A program on libtarnmalloc.so: does what its first argument says.
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <map>
#include <new>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

#define CHECK(condition)                                                 \
    do {                                                                 \
        if (!(condition)) {                                              \
            std::fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
            std::_Exit(99);                                              \
        }                                                                \
    } while (false)

// The compiler knows malloc and new too well; it must not see what comes of a block.
template <class T>
T* hidden(T* pointer) {
    asm volatile("" : "+r"(pointer));
    return pointer;
}

bool aligned(const void* block, std::size_t to) {
    return reinterpret_cast<std::uintptr_t>(block) % to == 0;
}

void ordinary() {
    void* low = hidden(std::malloc(1));
    CHECK(reinterpret_cast<std::uintptr_t>(low) < 0x80000000);
    CHECK(aligned(low, 16));
    low = std::realloc(low, 100000);
    CHECK(malloc_usable_size(low) == 100000);
    std::free(low);
    for (std::size_t to = 8; to <= 1 << 16; to *= 2) {
        void* block = nullptr;
        CHECK(posix_memalign(&block, to, 10) == 0 && aligned(block, to));
        std::free(block);
        block = aligned_alloc(to, to);
        CHECK(aligned(block, to));
        std::free(block);
    }
    void* block = nullptr;
    CHECK(posix_memalign(&block, 24, 10) == EINVAL);
    CHECK(aligned(block = valloc(1), 4096));
    std::free(block);
    CHECK(calloc(hidden(&errno) ? SIZE_MAX / 2 : 0, 4) == nullptr && errno == ENOMEM);
    CHECK(hidden(std::malloc(std::size_t{1} << 40)) == nullptr);
    struct alignas(128) Wide {
        char bytes[256];
    };
    Wide* wide = hidden(new Wide);
    CHECK(aligned(wide, 128));
    delete wide;

    std::map<std::string, std::vector<int>> table;
    for (int i = 0; i < 20000; ++i) table[std::to_string(i * 7919)].resize(i % 50);
    table.clear();
}

int calls = 0;

void shortage() {
    constexpr std::size_t huge = std::size_t{1} << 40;
    bool caught = false;
    try {
        hidden(operator new(huge));
    } catch (const std::bad_alloc&) {
        caught = true;
    }
    CHECK(caught);
    CHECK(hidden(operator new(huge, std::nothrow)) == nullptr);
    CHECK(hidden(operator new(huge, std::align_val_t(64), std::nothrow)) == nullptr);
    std::set_new_handler([] {
        if (++calls == 3) throw std::bad_alloc();
    });
    CHECK(hidden(operator new(huge, std::nothrow)) == nullptr);
    CHECK(calls == 3);
}

// Threads allocate while the process forks: no child may find the heap held.
void forks() {
    std::vector<std::thread> threads;
    std::atomic<bool> done{false};
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            while (!done) std::free(hidden(std::malloc(100)));
        });
    }
    for (int i = 0; i < 200; ++i) {
        pid_t child = fork();
        if (child == 0) {
            alarm(10);
            std::free(hidden(std::malloc(50)));
            _exit(0);
        }
        int status = 1;
        waitpid(child, &status, 0);
        CHECK(status == 0);
    }
    done = true;
    for (std::thread& thread : threads) thread.join();
}

}  // namespace

int main(int, char** argv) {
    std::string what = argv[1];
    if (what == "ordinary") ordinary();
    if (what == "shortage") shortage();
    if (what == "forks") forks();
    if (what == "twice") {
        void* block = hidden(std::malloc(10));
        std::free(block);
        std::free(hidden(block));
    }
    if (what == "free-of-new") std::free(hidden(new int));
    if (what == "delete-of-malloc") operator delete(hidden(std::malloc(10)));
    if (what == "delete-of-nothing") operator delete(hidden(static_cast<void*>(&what)));
    std::puts("done");
}
