// ALLOCATE and DEALLOCATE, shared and mapped storage, and the storage entries by name.
#include "tarn/allocate.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "storage/storage.h"
#include "tarn/storage.h"

namespace {

using Word = std::intptr_t;

Word number(const void* pointer) {
    return reinterpret_cast<Word>(pointer);
}

std::string pending_name() {
    return tarn::storage::state().pending_share_name;
}

void share(const std::string& name) {
    EXPECT_EQ(__ShareNextAllocate(name.data(), static_cast<Word>(name.size())),
              name.data() + name.size());
}

// Runs in a child with the own heap.
int in_own_heap(const std::function<bool()>& body) {
    setenv("ORVEX_NEW_MEMORY", "FALSE", 1);
    tarn::storage::state().mode = tarn::storage::Mode::undecided;
    tarn::storage::state().passes_through = false;
    __initialise_storage_allocator();
    std::_Exit(body() ? 0 : 9);
}

// What both modes have in common; the line that fails, or 0.
int check_statements() {
#define MUST(condition) \
    if (!(condition)) return __LINE__
    constexpr Word sizes[] = {-5, 0, 1, 4, 8, 13, 100, 5000};
    void* blocks[8];
    for (int i = 0; i < 8; ++i) {
        std::int32_t stat = 77;
        blocks[i] = __ALLOCATE(sizes[i], &stat);
        MUST(blocks[i] != nullptr && number(blocks[i]) % 16 == 0 && stat == 77);
    }
    for (void* block : blocks) __DEALLOCATE(block, nullptr);

    auto* undefined = static_cast<unsigned char*>(__ALLOCATE_U(9, nullptr));
    for (int i = 0; i < 9; ++i) MUST(undefined[i] == 0x80);
    __DEALLOCATE(undefined, nullptr);

    // A variable that is allocated already: the same length keeps block and contents.
    auto* text = static_cast<char*>(__ALLOCATE1(20, nullptr, nullptr));
    for (int i = 0; i < 20; ++i) MUST(text[i] == 0);
    std::strcpy(text, "stays");
    MUST(__ALLOCATE1(20, nullptr, text) == text && std::string(text) == "stays");
    text = static_cast<char*>(__ALLOCATE1(21, nullptr, text));
    MUST(text[0] == 0);
    std::int32_t stat = 0;
    MUST(__ALLOCATE1(21, &stat, text) == nullptr && stat == 2);
    __DEALLOCATE(text, &stat);
    MUST(stat == 2);
    stat = 0;
    void* undefined_before = __ALLOCATE1(8, &stat, reinterpret_cast<void*>(0x8080808080808080));
    MUST(undefined_before != nullptr && stat == 0);
    __DEALLOCATE(undefined_before, nullptr);
#undef MUST
    return 0;
}

TEST(Allocate, StatementsInBothModes) {
    EXPECT_EQ(check_statements(), 0);
    EXPECT_EXIT(in_own_heap([] {
                    const Word before = __total_allocated_memory();
                    const int line = check_statements();
                    if (line != 0) std::fprintf(stderr, "line %d\n", line);
                    // What was asked for and 4 bytes more: all of it has come back.
                    return line == 0 && __total_allocated_memory() == before;
                }),
                testing::ExitedWithCode(0), "^$");
}

TEST(Allocate, FailuresGoToStatAndErrmsg) {
    constexpr Word absurd = Word{1} << 60;
    for (const Word size : {absurd, INTPTR_MAX, Word{__alloc_times(65536, 65536)}}) {
        std::int32_t stat = 0;
        EXPECT_EQ(__ALLOCATE(size, &stat), nullptr);
        EXPECT_EQ(stat, 1);
        stat = 0;
        EXPECT_EQ(__ALLOCATE1(size, &stat, nullptr), nullptr);
        EXPECT_EQ(stat, 1);
    }
    char message[60];
    std::memset(message, 'x', sizeof message);
    __ErrMsgNextAllocate(message, 0);
    EXPECT_EQ(message[0], 'x');
    __ErrMsgNextAllocate(message, 59);
    EXPECT_EQ(std::string(message, 60), std::string(59, ' ') + "x");
    EXPECT_EQ(__ALLOCATE(absurd, nullptr), nullptr);
    EXPECT_EQ(std::string(message, 60),
              "ALLOCATE was unable to obtain sufficient storage           x");
    __ErrMsgNextAllocate(message, 9);
    __DEALLOCATE(nullptr, nullptr);
    EXPECT_EQ(std::string(message, 10), "DEALLOCATw");
}

TEST(Allocate, DeallocateOfNothing) {
    __DEALLOCATE(nullptr, nullptr);
    std::int32_t stat = 0;
    __DEALLOCATE(nullptr, &stat);
    EXPECT_EQ(stat, 1);
    EXPECT_EQ(report_stat_error(nullptr, 1, 407), 0);
    EXPECT_EQ(report_stat_error(&stat, 5, 407), 1);
    EXPECT_EQ(stat, 5);
}

TEST(Allocate, UntoldFailuresEndTheProgram) {
    const struct {
        const char* text;
        std::function<void()> body;
    } cases[] = {
        {"Error  408, ALLOCATE was unable", [] { __ALLOCATE(Word{1} << 60, nullptr); }},
        {"Error  408, ALLOCATE was unable", [] { __ALLOCATE1(0x7FFFFFFF, nullptr, nullptr); }},
        {"Error  432, ALLOCATABLE object", [] { report_stat_error(nullptr, 2, 432); }},
        {"Error  194, Reference through NULL", [] { RETURN_STORAGE1_h(nullptr); }},
        {"Error  195, Reference through invalid",
         [] { RETURN_STORAGE1_h(reinterpret_cast<void*>(-5)); }},
        {"Error   30, Storage heap is corrupt",
         [] {
             Word address = 0;
             const Word size = 5;
             SHRINK_STORAGE_h(&address, &size);
         }},
        {"Error   30, Storage heap is corrupt",
         [] {
             Word address = 0;
             const Word size = 5;
             const Word more = 50;
             GET_STORAGE_h(&address, &size);
             SHRINK_STORAGE_h(&address, &more);
         }},
        {"Error   30, Storage heap is corrupt",
         [] {
             in_own_heap([] {
                 void* block = __ALLOCATE(10, nullptr);
                 __DEALLOCATE(block, nullptr);
                 __DEALLOCATE(block, nullptr);
                 return true;
             });
         }},
    };
    for (const auto& one : cases) EXPECT_EXIT(one.body(), testing::ExitedWithCode(1), one.text);
}

TEST(Allocate, AllocTimes) {
    const struct {
        Word first, second;
        std::int32_t product;
    } cases[] = {{3, 4, 12},
                 {65536, 65536, 0x7FFFFFFF},
                 {65536, 32767, 65536 * 32767},
                 {0x7FFFFFFF, 1, 0x7FFFFFFF},
                 {Word{1} << 40, Word{1} << 40, 0x7FFFFFFF},
                 {0, 7, 0},
                 {-3, 5, -15}};
    for (const auto& one : cases) EXPECT_EQ(__alloc_times(one.first, one.second), one.product);
}

TEST(Allocate, EventsArePrinted) {
    EXPECT_EXIT(
        {
            const std::int32_t on = 1;
            SET_DEBUG_ALLOCATE_h(&on);
            dup2(2, 1);
            void* block = __ALLOCATE(24, nullptr);
            __DEALLOCATE(block, nullptr);
            std::fflush(stdout);
            std::_Exit(get_allocate_event_count());
        },
        testing::ExitedWithCode(2),
        "^\\*\\*\\*ALLOCATE Z'[0-9a-f]{16}' size 24 \\(hash [0-9]+\\) \\(Event 0|1\\)\n"
        "\\*\\*\\*DEALLOCATE Z'[0-9a-f]{16}' \\(Event 1|2\\)\n$");
}

class Mapped : public testing::Test {
  protected:
    std::string path = testing::TempDir() + "tarn_mapped_" + std::to_string(getpid());
    void TearDown() override { unlink(path.c_str()); }
    void write(const std::string& text) const { std::ofstream(path) << text; }
    std::string content() const {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(Mapped, ReadingAndWriting) {
    write("0123456789");
    share("r:" + path + "  \t");
    EXPECT_EQ(pending_name(), "r:" + path);
    auto* text = static_cast<char*>(__ALLOCATE(10, nullptr));
    EXPECT_EQ(pending_name(), "");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::string(text, 10), "0123456789");
    __DEALLOCATE(text, nullptr);  // not enabled: it stays
    EXPECT_EQ(text[3], '3');
    __enable_deallocate(text);
    __DEALLOCATE(text, nullptr);
    EXPECT_EQ(__unmap_file(text), 0);

    share("R:" + path);
    text = static_cast<char*>(__ALLOCATE1(14, nullptr, nullptr));
    ASSERT_NE(text, nullptr);
    std::memcpy(text + 8, "abcdef", 6);
    __enable_deallocate(text);
    __DEALLOCATE(text, nullptr);
    EXPECT_EQ(content(), "01234567abcdef");
}

TEST_F(Mapped, WhatCannotBeMapped) {
    write("0123456789");
    const struct {
        std::string name;
        Word size;
        std::int32_t status;
    } cases[] = {{"r:" + path, 11, 1002},  {"r:" + path + "/no", 4, 1002},
                 {"r:/dev/null", 4, 1002}, {"R:" + path + "/no", 4, 1003},
                 {"R:/", 4, 1003},         {"too large", Word{1} << 62, 1001}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        std::int32_t stat = 0;
        share(one.name);
        EXPECT_EQ(__ALLOCATE1(one.size, &stat, nullptr), nullptr);
        EXPECT_EQ(stat, one.status);
        stat = 0;
        void* result = nullptr;
        share(one.name);
        EXPECT_EQ(get_shared_memory(one.size, &result, &stat), 2);
        EXPECT_EQ(stat, one.status);
        EXPECT_EQ(get_shared_memory(one.size, &result, &stat), 0);
    }
    EXPECT_EQ(content(), "0123456789");
}

TEST(Shared, ProcessesSeeTheSameBytes) {
    const std::string name = "a/name % " + std::to_string(getpid());
    share(name);
    auto* words = static_cast<volatile int*>(__ALLOCATE(40, nullptr));
    ASSERT_NE(words, nullptr);
    EXPECT_EQ(words[3], 0);
    words[3] = 17;
    const pid_t child = fork();
    if (child == 0) {
        share(name);
        auto* same = static_cast<volatile int*>(__ALLOCATE(4000, nullptr));  // it grows
        const bool seen = same != nullptr && same[3] == 17 && same != words;
        same[4] = 18;
        same[999] = 1;
        std::_Exit(seen ? 0 : 1);  // without letting go
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(words[4], 18);
    // A child that ends in the usual way leaves the name to its parent.
    const pid_t heir = fork();
    if (heir == 0) std::exit(0);
    waitpid(heir, &status, 0);
    share(name);
    auto* again = static_cast<volatile int*>(__get_memory(40));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again[3], 17);
    __release_memory(const_cast<int*>(again));
    EXPECT_EQ(words[3], 17);
    __enable_deallocate(const_cast<int*>(words));
    __DEALLOCATE(const_cast<int*>(words), nullptr);
    // Nobody has it any more: the next one finds zeros.
    share(name);
    words = static_cast<volatile int*>(__ALLOCATE(40, nullptr));
    ASSERT_NE(words, nullptr);
    EXPECT_EQ(words[3], 0);
    __enable_deallocate(const_cast<int*>(words));
    __DEALLOCATE(const_cast<int*>(words), nullptr);
}

std::string listing(bool allocated, bool free) {
    char* text = nullptr;
    std::size_t size = 0;
    FILE* stream = open_memstream(&text, &size);
    _print_vheaps_fp(allocated, free, stream);
    std::fclose(stream);
    std::string result(text, size);
    std::free(text);
    // Addresses differ from run to run.
    for (std::size_t at = 0; (at = result.find("0000", at)) != result.npos; ++at) {
        if (result.find_first_not_of("0123456789ABCDEF", at) >= at + 16)
            result.replace(at, 16, "A");
    }
    return result;
}

TEST(LargeBlocks, PiecesAreCarvedAndMerged) {
    _freeup_empty_vmalloc_blocks();
    constexpr Word whole = 52428800;
    char* a = static_cast<char*>(__vmalloc(10));
    char* b = static_cast<char*>(__vmalloc(20));
    char* c = static_cast<char*>(__vmalloc(30));
    EXPECT_EQ(b - a, 12);
    EXPECT_EQ(c - b, 20);
    c[29] = 1;
    EXPECT_EQ(listing(true, true),
              "1 Virtual Block, @ 0xA, size 52428800\n  Allocated:\n"
              "    1 Region: A, size 0x20  32\n    2 Region: A, size 0x14  20\n"
              "    3 Region: A, size 0xc  12\n  Free:\n"
              "    1 Region: A, size 0x31fffc0  52428736\n"
              "1 Allocated 64, Free 52428736 (52428800)\n");
    // An exact fit goes before the first that is larger.
    __vfree(b);
    EXPECT_EQ(__vmalloc(17), b);
    EXPECT_EQ(__shrink_vmalloc(c, 8), c);
    EXPECT_EQ(__shrink_vmalloc(c, 8), c);
    EXPECT_EQ(__shrink_vmalloc(c, 9), nullptr);
    EXPECT_EQ(__shrink_vmalloc(c, 0), nullptr);
    EXPECT_EQ(__shrink_vmalloc(nullptr, 8), nullptr);
    EXPECT_EQ(__shrink_vmalloc(c + 4, 4), c + 4);  // no piece
    __vfree(c + 4);
    __vfree(nullptr);
    __vfree(&a);
    EXPECT_EQ(_freeup_empty_vmalloc_blocks(), 0);
    // In any order the free pieces become one.
    __vfree(c);
    __vfree(a);
    __vfree(b);
    EXPECT_EQ(listing(false, true),
              "1 Virtual Block, @ 0xA, size 52428800\n  Free:\n"
              "    1 Region: A, size 0x3200000  52428800\n"
              "1 Allocated 0, Free 52428800 (52428800)\n");
    void* exact = __vmalloc(whole);
    EXPECT_EQ(exact, a);
    void* more = __vmalloc(whole + 1);
    EXPECT_EQ(listing(false, true),
              "1 Virtual Block, @ 0xA, size 52494336\n  Free:\n"
              "    1 Region: A, size 0xfffc  65532\n"
              "1 Allocated 52428804, Free 65532 (52494336)\n"
              "2 Virtual Block, @ 0xA, size 52428800\n  Free:\n    No free regions\n"
              "2 Allocated 52428800, Free 0 (52428800)\n");
    __vfree(exact);
    __vfree(more);
    EXPECT_EQ(_freeup_empty_vmalloc_blocks(), whole + whole + 65536);
    EXPECT_EQ(__vmalloc(-1), nullptr);
    EXPECT_EQ(__vmalloc(INTPTR_MAX), nullptr);
    EXPECT_EQ(listing(true, true), "");
}

TEST(StorageByName, AddressesAndMinusOne) {
    const Word size = 1000;
    const Word less = 100;
    const Word absurd = Word{1} << 60;
    const struct {
        void (*get)(Word*, const Word*);
        void (*give)(const Word*);
        void (*shrink)(Word*, const Word*);
    } families[] = {{GET_STORAGE_h, RETURN_STORAGE_h, SHRINK_STORAGE_h},
                    {GET_MSTORAGE_h, RETURN_MSTORAGE_h, SHRINK_MSTORAGE_h},
                    {GET_GSTORAGE_h, RETURN_GSTORAGE_h, nullptr}};
    for (const auto& family : families) {
        Word address = 0;
        family.get(&address, &size);
        ASSERT_GT(address, 0);
        std::memset(reinterpret_cast<void*>(address), 1, 1000);
        if (family.shrink != nullptr) family.shrink(&address, &less);
        EXPECT_EQ(*reinterpret_cast<char*>(address + 99), 1);
        family.give(&address);
        family.get(&address, &absurd);
        EXPECT_EQ(address, -1);
    }
    void* temporary = GET_STORAGE2_h(50);
    RETURN_STORAGE1_h(temporary);
}

}  // namespace
