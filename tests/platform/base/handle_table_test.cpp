#include "platform/base/handle_table.h"

#include <gtest/gtest.h>
#include <set>

namespace tarn::platform {
namespace {

enum Handle : std::int32_t {};
using Table = HandleTable<int, Handle>;

TEST(HandleTable, ASmallPositiveNumberForEach) {
    Table table;
    std::set<Handle> seen;
    for (int i = 0; i < 100; ++i) {
        const Handle handle = table.add(std::make_unique<int>(i));
        // No number that could be a system colour, and the place in the low half.
        EXPECT_GT(handle, 0xFFFF);
        EXPECT_LE(handle & 0xFFFF, 100);
        EXPECT_TRUE(seen.insert(handle).second);
        EXPECT_EQ(*table.find(handle), i);
    }
}

// A place is used again, its old handles stay dead.
TEST(HandleTable, StaleHandlesAreRecognised) {
    Table table;
    std::vector<Handle> old;
    for (int i = 0; i < 5000; ++i) {
        const Handle handle = table.add(std::make_unique<int>(i));
        ASSERT_GT(handle, 0);
        EXPECT_EQ(*table.remove(handle), i);
        EXPECT_EQ(table.remove(handle), nullptr);
        old.push_back(handle);
    }
    const Handle live = table.add(std::make_unique<int>(7));
    for (const Handle handle : old) EXPECT_EQ(table.find(handle), nullptr);
    EXPECT_EQ(*table.find(live), 7);
    EXPECT_LT(live & 0xFFFF, 200) << "places are used again";
    for (const int wrong : {0, -1, INT32_MIN, INT32_MAX, 0x10000, 0xFFFF}) {
        EXPECT_EQ(table.find(static_cast<Handle>(wrong)), nullptr);
    }
}

TEST(HandleTable, AFullTableRefuses) {
    Table table;
    Handle last{};
    for (int i = 0; i < 0xFFFF; ++i) last = table.add(std::make_unique<int>(i));
    EXPECT_GT(last, 0);
    EXPECT_EQ(table.add(std::make_unique<int>(0)), 0);
    table.remove(last);
    EXPECT_GT(table.add(std::make_unique<int>(0)), 0);
}

}  // namespace
}  // namespace tarn::platform
