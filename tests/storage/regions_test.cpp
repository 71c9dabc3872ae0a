#include "storage/regions.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tarn/virtual_storage.h"

namespace {

constexpr std::intptr_t gib = std::intptr_t{1} << 30;
constexpr std::intptr_t page = 4096;

long resident_pages() {
    long size = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident;
}

unsigned char* bytes(void* address) {
    return static_cast<unsigned char*>(address);
}

struct Info {
    std::uintptr_t address = 7;
    std::intptr_t size = 7, commit_size = 7, committed = 7;
    int found = 0;
    explicit Info(const char* name)
        : found(__get_virtual_common_info(name, &address, &size, &commit_size, &committed)) {}
};

TEST(Regions, TakeMemoryWhereTheyAreTouchedAlsoBySystemCalls) {
    auto* region = bytes(setup_virtual_region("folder/HUGE", 64 * gib, nullptr));
    ASSERT_NE(region, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(region) % 0x40000, 0U);
    resident_pages();
    const long before = resident_pages();
    region[0] = 1;
    region[32 * gib] = 2;
    region[64 * gib - 1] = 3;
    EXPECT_EQ(resident_pages() - before, 3);
    EXPECT_EQ(region[5 * gib], 0);

    const int zeros = open("/proc/self/exe", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(read(zeros, region + 40 * gib - 10, 2 * page), 2 * page);
    EXPECT_EQ(std::memcmp(region + 40 * gib - 9, "ELF", 3), 0);
    close(zeros);

    const Info info("/elsewhere/huge");
    EXPECT_EQ(info.found, 1);
    EXPECT_EQ(info.address, reinterpret_cast<std::uintptr_t>(region));
    EXPECT_EQ(info.size, 64 * gib);
    EXPECT_EQ(info.commit_size, page);
    EXPECT_GE(info.committed, 6 * page);
    EXPECT_LE(info.committed, 8 * page);
    EXPECT_NE(remove_virtual_region(region, TARN_RELEASE), 0);
    EXPECT_EQ(Info("huge").found, 0);
}

TEST(Regions, AreGivenBackWithOrWithoutTheirAddresses) {
    auto* region = bytes(setup_virtual_region("R", 10 * page, nullptr));
    region[0] = 1;
    EXPECT_EQ(remove_virtual_region(region, 0x1000), 0);
    EXPECT_EQ(remove_virtual_region(region + page, TARN_RELEASE), 0);
    EXPECT_EQ(setup_virtual_region("taken", page, region), nullptr);
    EXPECT_NE(remove_virtual_region(region, TARN_DECOMMIT), 0);
    EXPECT_EQ(remove_virtual_region(region, TARN_RELEASE), 0);
    // The addresses are ours still: nobody else gets them, and no more of them than there were.
    EXPECT_EQ(
        mmap(region, page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0),
        MAP_FAILED);
    EXPECT_EQ(setup_virtual_region("R", 11 * page, region), nullptr);
    EXPECT_EQ(setup_virtual_region("R", 9 * page, region), region);
    EXPECT_EQ(region[0], 0);
    EXPECT_NE(remove_virtual_region(region, TARN_RELEASE), 0);
}

TEST(Regions, RefuseWhatIsNoRange) {
    static char own[2 * page];
    const struct {
        std::intptr_t size;
        std::uintptr_t address;
    } cases[] = {{0, 0},
                 {-1, 0},
                 {INTPTR_MIN, 0},
                 {INTPTR_MAX, 0},
                 {INTPTR_MAX, 0x300000000000},
                 {page, 0x300000000001},
                 {page, ~std::uintptr_t{0} - 4095},
                 {page, reinterpret_cast<std::uintptr_t>(own) & -std::uintptr_t{page}}};
    for (const auto& each : cases) {
        EXPECT_EQ(setup_virtual_region("X", each.size, reinterpret_cast<void*>(each.address)),
                  nullptr)
            << each.size << ' ' << each.address;
    }
    EXPECT_EQ(Info("X").found, 0);
}

TEST(Regions, MeetTheirEndsAtOnce) {
    auto* region = bytes(setup_virtual_region("E", 100 * page, nullptr));
    const auto missed = [&](std::intptr_t offset) {
        return tarn::storage::find_missed_region(reinterpret_cast<std::uintptr_t>(region) +
                                                 static_cast<std::uintptr_t>(offset)) != nullptr;
    };
    EXPECT_TRUE(missed(-1));
    EXPECT_TRUE(missed(100 * page));
    EXPECT_FALSE(missed(50 * page));
    EXPECT_FALSE(missed(1000 * page));
    EXPECT_DEATH(region[100 * page] = 1, "");
    EXPECT_DEATH(region[-1] = 1, "");
    remove_virtual_region(region, TARN_RELEASE);
}

TEST(Regions, HalveWhatIsNotThere) {
    auto* region = bytes(setup_expanding_region(nullptr, std::intptr_t{1} << 50));
    ASSERT_NE(region, nullptr);
    const Info info("no name");
    EXPECT_GE(info.size, std::intptr_t{1} << 45);
    region[info.size - 1] = 1;
    remove_virtual_region(region, TARN_RELEASE);
    const auto limited = [] {
        const rlimit limit{1 << 20, 1 << 20};
        setrlimit(RLIMIT_AS, &limit);
        setup_expanding_region("C", gib);
    };
    EXPECT_EXIT(
        limited(), testing::ExitedWithCode(1),
        "Insufficient memory available for CHECK mode\n.*`ulimit -v`.*\nFatal run-time error");
}

// Enough at once that the system must sort out who commits a page.
TEST(Regions, TakeManyThreadsAndGoOnInAChild) {
    constexpr int threads = 8;
    constexpr int pages = 2000;
    auto* region = bytes(setup_virtual_region("T", gib, nullptr));
    std::vector<std::thread> all;
    for (int t = 0; t < threads; ++t) {
        all.emplace_back([=] {
            for (int i = 0; i < pages; ++i)
                region[i * page + t] = static_cast<unsigned char>(t + 1);
            auto* own = bytes(setup_virtual_region("own", gib, nullptr));
            own[t] = 1;
            remove_virtual_region(own, t % 2 == 0 ? TARN_RELEASE : TARN_DECOMMIT);
        });
    }
    for (std::thread& each : all) each.join();
    int right = 0;
    for (int i = 0; i < pages; ++i) {
        for (int t = 0; t < threads; ++t) right += region[i * page + t] == t + 1;
    }
    EXPECT_EQ(right, threads * pages);
    const pid_t child = fork();
    if (child == 0) {
        region[0] = 99;
        region[gib - 1] = 1;
        auto* more = bytes(setup_virtual_region("more", gib, nullptr));
        _exit(region[page] == 1 && more != nullptr ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(region[0], 1);
    EXPECT_EQ(region[gib - 1], 0);
    remove_virtual_region(region, TARN_RELEASE);
}

tarn_virtual_common record_of(std::uintptr_t address, std::intptr_t size, std::uintptr_t undefined,
                              std::intptr_t length) {
    return {reinterpret_cast<void*>(address),   size,  0, TARN_VIRTUAL_COMMON_TAG, 0, 1,
            reinterpret_cast<void*>(undefined), length};
}

TEST(VirtualCommon, ReadsAsUndefinedWhereTheRecordSaysSo) {
    constexpr std::uintptr_t start = 0x310000000000;
    // Half a page at either end, and more between than could be filled.
    tarn_virtual_common record = record_of(start, 64 * gib, start + 2000, 40 * gib);
    EXPECT_EQ(__get_virtual_common_block(nullptr, &record), &record);
    EXPECT_EQ(record.size, 0);
    auto* common = bytes(reinterpret_cast<void*>(start));
    const long before = resident_pages();
    const struct {
        std::intptr_t at;
        int value;
    } cases[] = {{0, 0},
                 {1999, 0},
                 {2000, 0x80},
                 {page, 0x80},
                 {20 * gib, 0x80},
                 {40 * gib, 0x80},
                 {40 * gib + 1999, 0x80},
                 {40 * gib + 2000, 0},
                 {64 * gib - 1, 0}};
    for (const auto& each : cases) EXPECT_EQ(common[each.at], each.value) << each.at;
    common[20 * gib] = 1;
    EXPECT_EQ(common[20 * gib + 1], 0x80);
    const int null = open("/dev/zero", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(read(null, common + 10 * gib, 10), 10);
    close(null);
    EXPECT_EQ(common[10 * gib + 9], 0);
    EXPECT_EQ(common[10 * gib + 10], 0x80);
    EXPECT_LT(resident_pages() - before, 5000);

    // The second module's record of the same range: only its own part is filled, at once.
    tarn_virtual_common second = record_of(start, 0, start + 60 * gib, 10);
    __get_virtual_common_block(nullptr, &second);
    EXPECT_EQ(common[60 * gib + 9], 0x80);
    EXPECT_EQ(common[60 * gib + 10], 0);
    remove_virtual_region(common, TARN_RELEASE);
}

TEST(VirtualCommon, KeepsAWildRecordWithinItsRange) {
    constexpr std::uintptr_t start = 0x320000000000;
    const struct {
        std::uintptr_t undefined;
        std::intptr_t length;
        int first, last;
    } cases[] = {{start - page, 2 * page, 0x80, 0},
                 {start, INTPTR_MAX, 0x80, 0x80},
                 {start + 9 * page, gib, 0, 0x80},
                 {start + gib, gib, 0, 0},
                 {start, -1, 0, 0},
                 {0, page, 0, 0}};
    for (const auto& each : cases) {
        tarn_virtual_common record = record_of(start, 10 * page, each.undefined, each.length);
        __get_virtual_common_block(nullptr, &record);
        const auto* common = bytes(reinterpret_cast<void*>(start));
        EXPECT_EQ(common[0], each.first) << each.length;
        EXPECT_EQ(common[10 * page - 1], each.last) << each.length;
        EXPECT_NE(remove_virtual_region(reinterpret_cast<void*>(start), TARN_RELEASE), 0);
    }
}

TEST(VirtualCommon, EndsTheProgramWhereItsRangeIsTaken) {
    const auto twice = [](std::uintptr_t first, std::uintptr_t second, std::intptr_t size) {
        setup_common_block_region("/bin/one", reinterpret_cast<void*>(first), gib, 0);
        ::dup2(STDERR_FILENO, STDOUT_FILENO);
        std::printf("printed before, ");
        setup_common_block_region("/bin/two", reinterpret_cast<void*>(second), size, 0);
    };
    EXPECT_EXIT(twice(0x330000000000, 0x330000001000, page), testing::ExitedWithCode(1),
                "printed before, Virtual common address 0x330000001000 of size 4096\\(bytes\\)\n"
                "has been allocated to /bin/one,\n"
                "which uses addresses from 0x330000000000 to 0x330040000000.\n"
                "Please re-link program /bin/two\n with a different virtual common address.\n"
                "Fatal run-time error");
    EXPECT_EXIT(twice(0x330000000000, 0x340000000000, -5), testing::ExitedWithCode(1),
                "Unable to allocate -5\\(bytes\\) of \nvirtual common memory at address "
                "0x340000000000.\nLast error is 487.\nFatal run-time error");
}

TEST(VirtualScratch, GivesSlotsWhoseAddressesSurviveAClose) {
    const std::intptr_t small = 1;
    SET_VIRTUAL_SCRATCH_FILE_SIZE_h(&small);
    std::int16_t handles[33];
    std::int16_t status = 7;
    for (int i = 0; i < 32; ++i) {
        OPEN_VIRTUAL_SCRATCH_h(&handles[i], &status);
        ASSERT_EQ(status, 0);
        ASSERT_EQ(static_cast<std::uint16_t>(handles[i]), 0x8000 + i + 1);
    }
    OPEN_VIRTUAL_SCRATCH_h(&handles[32], &status);
    EXPECT_EQ(status, -13);

    const std::int32_t slot = 32;
    std::uintptr_t address = 0;
    std::intptr_t size = 0, commit = 0, committed = 0;
    GET_VIRTUAL_SCRATCH_FILE_INFO_h(&slot, &address, &size, &commit, &committed);
    EXPECT_EQ(size, 0x10000);
    EXPECT_EQ(Info("SCRATCH_P").address, address);  // the character of 48 + 32
    bytes(reinterpret_cast<void*>(address))[0xFFFF] = 5;

    CLOSE_VIRTUAL_SCRATCH_h(&handles[31]);
    std::uintptr_t again = 1;
    GET_VIRTUAL_SCRATCH_FILE_INFO_h(&slot, &again, &size, &commit, &committed);
    EXPECT_EQ(again, 0U);
    OPEN_VIRTUAL_SCRATCH_h(&handles[31], &status);
    GET_VIRTUAL_SCRATCH_FILE_INFO_h(&slot, &again, &size, &commit, &committed);
    EXPECT_EQ(again, address);
    EXPECT_EQ(bytes(reinterpret_cast<void*>(address))[0xFFFF], 0);

    // A longer region doesn't fit where the closed one was.
    const std::intptr_t large = gib;
    SET_VIRTUAL_SCRATCH_FILE_SIZE_h(&large);
    const std::int16_t bare = 32;
    CLOSE_VIRTUAL_SCRATCH_h(&bare);
    OPEN_VIRTUAL_SCRATCH_h(&handles[31], &status);
    GET_VIRTUAL_SCRATCH_FILE_INFO_h(&slot, &address, &size, &commit, &committed);
    EXPECT_EQ(size, 0x1F400000);
    bytes(reinterpret_cast<void*>(address))[size - 1] = 1;
    for (const std::int16_t handle : handles) RELEASE_VIRTUAL_SCRATCH_h(&handle);
    EXPECT_EQ(Info("SCRATCH_1").found, 0);
    void* none = nullptr;
    for (const std::int32_t wrong : {0, 33, -1, 1000}) {
        CREATE_VIRTUAL_SCRATCH_FILE_h(&wrong, &none, &status);
        EXPECT_EQ(status, 1) << wrong;
    }
}

}  // namespace
