// The list of units: order, look-up, lifetime under threads.
#include "fio/unit.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace tarn::fio {
namespace {

TEST(UnitList, NewestFirstAndFoundByNumber) {
    for (int n = 0; n < 3000; n++) UnitList_insert(Unit_create(n * 7 - 500, false));
    EXPECT_EQ(UnitList_first()->number, 2999 * 7 - 500);
    for (int n = 0; n < 3000; n++) {
        ASSERT_EQ(UnitList_getUnit(n * 7 - 500)->number, n * 7 - 500);
        ASSERT_EQ(UnitList_getUnit(n * 7 - 499), nullptr);
    }
    Unit* some = UnitList_getUnit(200);
    EXPECT_EQ(UnitList_getFUnit(some->handle_number), some);
    UnitList_destroy(200);
    EXPECT_EQ(UnitList_getUnit(200), nullptr);
    UnitList_destroyAll();
    EXPECT_EQ(UnitList_first(), nullptr);
}

TEST(UnitList, PacksTheFlags) {
    Unit* unit = Unit_create(1, false);
    EXPECT_EQ(Unit_iostatus(*unit), 0x80000000U);
    unit->status.connected = unit->status.read_only = true;
    unit->kind = UnitKind::full;
    unit->share = 4;
    unit->status.pad_no = unit->status.may_read = true;
    EXPECT_EQ(Unit_iostatus(*unit), 0x80000000U | 1U << 27 | 8U << 19 | 1U << 8);
    EXPECT_EQ(Unit_iostatus1(*unit), 4U | 1U << 3 | 1U << 7);
    Unit_free(unit);
}

// Threads use a unit while others close it and make it anew: nobody meets a freed record, and
// nobody holds one that is out of the list.
TEST(UnitList, ClosedWhileOthersWait) {
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int t = 0; t < 8; t++) {
        threads.emplace_back([t] {
            for (int i = 0; i < 3000; i++) {
                bool created = false;
                Unit* unit = acquire_or_create_unit(i % 3, created);
                ASSERT_TRUE(unit->listed);
                unit->current_record++;
                if ((i + t) % 5 == 0) UnitList_destroy(unit);
                release_unit(unit);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    UnitList_destroyAll();
}

}  // namespace
}  // namespace tarn::fio
