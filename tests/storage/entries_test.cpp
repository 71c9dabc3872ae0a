// The storage entries as a program calls them. The mode is fixed once a process, so what needs the
// own heap runs in a child that chooses it.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "frame/state.h"
#include "storage/storage.h"
#include "storage/trace.h"
#include "tarn/storage.h"

namespace {

#define CHECK(condition)                                                 \
    do {                                                                 \
        if (!(condition)) {                                              \
            std::fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
            std::_Exit(99);                                              \
        }                                                                \
    } while (false)

[[noreturn]] void in_mode(const char* value, const std::function<void()>& body) {
    setenv("ORVEX_NEW_MEMORY", value, 1);
    tarn::storage::state().mode = tarn::storage::Mode::undecided;
    tarn::storage::state().passes_through = false;
    __initialise_storage_allocator();
    body();
    std::fflush(stdout);
    std::_Exit(0);
}

void expect_in_own_heap(const std::function<void()>& body) {
    EXPECT_EXIT(in_mode("false", body), testing::ExitedWithCode(0), "^$");
}

void expect_failure(const char* text, const std::function<void()>& body) {
    EXPECT_EXIT(in_mode("FALSE", body), testing::ExitedWithCode(1), text) << text;
}

TEST(StorageModes, TheEnvironmentChooses) {
    for (const char* value : {"false", "FALSE", "NEW=False;", "xfalsex"}) {
        EXPECT_EXIT(
            in_mode(value, [] { CHECK(tarn::storage::mode() == tarn::storage::Mode::own); }),
            testing::ExitedWithCode(0), "");
    }
    for (const char* value : {"", "TRUE", "FALS", "F ALSE", "0"}) {
        EXPECT_EXIT(
            in_mode(value, [] { CHECK(tarn::storage::mode() == tarn::storage::Mode::system); }),
            testing::ExitedWithCode(0), "");
    }
    EXPECT_EXIT(
        {
            tarn::frame::state().managed = true;
            in_mode("FALSE", [] { CHECK(tarn::storage::mode() == tarn::storage::Mode::system); });
        },
        testing::ExitedWithCode(0), "");
}

TEST(StorageModes, SystemMode) {
    void* block = tarn_malloc(100);
    ASSERT_NE(block, nullptr);
    EXPECT_GE(__find_memory_size(block), 100);
    block = tarn_realloc(block, 5000);
    EXPECT_EQ(tarn_realloc(block, 0), nullptr);
    EXPECT_EQ(tarn_calloc(SIZE_MAX / 2, 3), nullptr);
    auto* zeros = static_cast<char*>(tarn_calloc(10, 10));
    EXPECT_EQ(std::string(zeros, 100), std::string(100, '\0'));
    tarn_free(zeros);
    tarn_free(tarn_operator_new(0));  // nobody looks here
    tarn_free(nullptr);
    tarn_operator_delete(nullptr);
    void* core = __get_memory(12);
    __shrink_memory(core, 4);
    EXPECT_EQ(__seek_memory(core), 0);
    __release_memory(core);
    EXPECT_EQ(__get_memory(-1), nullptr);
    EXPECT_EQ(__total_allocated_memory(), 0);
    EXPECT_EQ(__report_memory_available(), 0);
    EXPECT_EQ(__report_largest_memory_block(), 0);
}

TEST(OwnHeap, Entries) {
    expect_in_own_heap([] {
        // The whole range is there, the spare records come with the first request.
        CHECK(__report_memory_available() == 0x6400000 - 1000);
        CHECK(__report_largest_memory_block() == 0x6400000 - 2000);
        void* block = __get_memory(100);
        CHECK(__report_memory_available() == 0x6400000 - 1000 - 104 - 604 + 4);
        CHECK(__total_allocated_memory() == 100);
        CHECK(__find_memory_size(block) == 100);
        CHECK(__seek_memory(block) == 1);
        CHECK(__seek_memory(&block) == 0);
        __shrink_memory(block, 50);
        CHECK(__total_allocated_memory() == 50);
        __release_memory(block);
        CHECK(__total_allocated_memory() == 0);
        CHECK(__get_memory(-1) == nullptr);

        void* nothing = tarn_malloc(0);
        CHECK(nothing != nullptr);
        for (std::size_t size = 1; size < 200; size += 7) {
            __get_memory(5);
            void* aligned = tarn_malloc(size);
            CHECK(reinterpret_cast<std::uintptr_t>(aligned) % 16 == 0);
            CHECK(__find_memory_size(aligned) == static_cast<std::intptr_t>(size));
            CHECK(tarn_realloc(aligned, size) == aligned);
            auto* longer = static_cast<char*>(tarn_realloc(aligned, size + 500));
            CHECK(reinterpret_cast<std::uintptr_t>(longer) % 16 == 0);
            CHECK(tarn_realloc(longer, 1) == longer);
            CHECK(tarn_realloc(longer, 0) == nullptr);
            CHECK(__seek_memory(longer) == 0);
            void* object = tarn_operator_new(size);
            CHECK(reinterpret_cast<std::uintptr_t>(object) % 16 == 0);
            tarn_operator_delete(object);
        }
        auto* text = static_cast<char*>(tarn_realloc(nullptr, 6));
        std::memcpy(text, "heaps", 6);
        text = static_cast<char*>(tarn_realloc(text, 100000));
        CHECK(std::string(text) == "heaps");
        CHECK(tarn_realloc(text, std::size_t{1} << 40) == nullptr);
        CHECK(std::string(text) == "heaps");
        char* zeros = static_cast<char*>(tarn_calloc(7, 3));
        for (int i = 0; i < 21; ++i) CHECK(zeros[i] == 0);
        CHECK(tarn_calloc(SIZE_MAX, 2) == nullptr);
        tarn_free(nullptr);
        tarn_operator_delete(nullptr);
    });
}

TEST(OwnHeap, Failures) {
    expect_failure("Error  377, Attempt to free unallocated storage", [] {
        void* block = tarn_malloc(10);
        tarn_free(block);
        tarn_free(block);
    });
    expect_failure("Error  376, Attempt to delete unallocated storage", [] {
        int local = 0;
        tarn_operator_delete(&local);
    });
    expect_failure("Error  302, .*free.*new.*delete", [] { tarn_free(tarn_operator_new(10)); });
    expect_failure("Error  303, ", [] { tarn_operator_delete(tarn_malloc(10)); });
    expect_failure("Error   30, Storage heap is corrupt",
                   [] { __find_memory_size(static_cast<char*>(__get_memory(10)) + 4); });
    expect_failure("Error   30, ", [] { __shrink_memory(__get_memory(10), 11); });
    expect_failure("Error   30, ", [] { __shrink_memory(__get_memory(10), -1); });
    expect_failure("Error   30, ", [] { __release_memory(nullptr); });
    expect_failure("Error  294, ", [] {
        CHECK(tarn_malloc(SIZE_MAX / 2) == nullptr);
        CHECK(fault_malloc_failure(1) == 0);
        CHECK(get_exception_mode() == 1);
        tarn_malloc(SIZE_MAX / 2);
    });
    expect_failure("Error  294, ", [] {
        CHECK(set_exception_mode(33) == 0);
        CHECK(reset_exception_mode(1) == 33);
        CHECK(fault_malloc_failure(0) == 0);
        tarn_operator_new(SIZE_MAX / 2);
    });
}

int handler_calls = 0;

TEST(StorageModes, AFailingMallocIsFatalInSystemModeToo) {
    EXPECT_EXIT(in_mode("TRUE",
                        [] {
                            CHECK(tarn_malloc(SIZE_MAX / 2) == nullptr);
                            CHECK(set_exception_mode(1) == 0);
                            CHECK(reset_exception_mode(1) == 1);
                            CHECK(tarn_malloc(SIZE_MAX / 2) == nullptr);
                            fault_malloc_failure(1);
                            tarn_malloc(SIZE_MAX / 2);
                        }),
                testing::ExitedWithCode(1), "Error  294, ");
}

TEST(OwnHeap, NewHandler) {
    expect_in_own_heap([] {
        CHECK(tarn_operator_new(SIZE_MAX / 2) == nullptr);
        // One that goes on gets called until it takes itself out; it is out while it runs.
        auto handler = [] {
            CHECK(tarn_operator_new(SIZE_MAX / 2) == nullptr);
            if (++handler_calls == 3) set_new_handler(nullptr);
        };
        CHECK(set_new_handler(handler) == nullptr);
        CHECK(tarn_operator_new(SIZE_MAX / 2) == nullptr);
        CHECK(handler_calls == 3);
        CHECK(set_new_handler(handler) == nullptr);
        CHECK(set_new_handler(nullptr) == static_cast<tarn_new_handler>(handler));
    });
}

TEST(OwnHeap, TraceFile) {
    std::string folder = testing::TempDir() + "tarn_trace_XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    expect_in_own_heap([&] {
        CHECK(chdir(folder.c_str()) == 0);
        dump_memory_info(1);
        void* block = __get_memory(33);
        __release_memory(block);
        dump_memory_info(0);
        __release_memory(__get_memory(44));
        char text[500] = "";
        int file = open("dumpmem.dbg", O_RDONLY);
        CHECK(read(file, text, sizeof text - 1) > 0);
        char expected[500];
        auto address = static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(block));
        std::snprintf(expected, sizeof expected,
                      "\n\n!!!!!!!!!!!!!New block of memory information\n"
                      "__get_memory length 33 pointer %x\n"
                      "__release_memory size 33 pointer %x\n",
                      address, address);
        CHECK(std::string(text) == expected);
    });
}

TEST(AllocationEvents, CountPrintAndBreak) {
    testing::internal::CaptureStdout();
    increment_allocate_event("not shown %d\n", 1);
    std::int32_t on = 1;
    SET_DEBUG_ALLOCATE_h(&on);
    std::int32_t before = get_allocate_event_count();
    increment_allocate_event("***DEALLOCATE Z'%x' (Event %d)\n", 16, 5);
    EXPECT_EQ(get_allocate_event_count(), before + 1);
    std::int32_t next = before + 2;
    SET_DEBUG_ALLOCATE_BREAK_NUMBER_h(&next);
    EXPECT_EXIT(increment_allocate_event("\n"), testing::KilledBySignal(SIGTRAP), "");
    on = 0;
    SET_DEBUG_ALLOCATE_h(&on);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "***DEALLOCATE Z'10' (Event 5)\n");
}

TEST(PolledSection, WaitersGetIt) {
    std::int32_t counter = 0;  // held
    std::atomic_ref<std::int32_t> value(counter);
    std::thread leaver([&] {
        usleep(3000);
        value.fetch_sub(1);
    });
    value.fetch_add(1);
    scs_enter1(&counter);
    scs_leave1(&counter);
    leaver.join();
    EXPECT_EQ(counter, 0);  // held once, by us
}

}  // namespace
