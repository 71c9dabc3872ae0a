#include "traceback/routine_map.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarn::traceback {
namespace {

// Two routines at 0x1000; the second holds a call of `inner` that was inlined, which holds another.
struct Section {
    MapHeader header{};
    MapRoutine routines[2]{{0, 0x40, 1, 0}, {0x40, 0x40, 5, routine_is_main}};
    MapInline inlined[2]{{0x50, 0x70, 9, 0, 7, 0}, {0x58, 0x60, 9, 0, 8, 1}};
    MapLine lines[4]{{0, 0, 3}, {0x40, 0, 6}, {0x58, 0, 2}, {0x80, 0, 0}};
    MapFile files[1]{{15}};
    char names[24] = "\0one\0two\0inner\0a.f90";

    Section() {
        std::memcpy(header.magic, map_magic, sizeof map_magic);
        header.version = map_version;
        header.size = sizeof *this;
        header.low = 0x1000;
        header.routine_count = header.inline_count = 2;
        header.line_count = 4;
        header.file_count = 1;
        header.routines = offsetof(Section, routines);
        header.inlines = offsetof(Section, inlined);
        header.lines = offsetof(Section, lines);
        header.files = offsetof(Section, files);
        header.names = offsetof(Section, names);
    }
    Bytes bytes() const { return {reinterpret_cast<const char*>(this), sizeof *this}; }
};

TEST(RoutineMap, FindsRoutinesLinesAndInlinedCalls) {
    const Section section;
    RoutineMap map;
    ASSERT_TRUE(map.open(section.bytes()));
    EXPECT_EQ(map.routine_at(0xFFF), nullptr);
    EXPECT_EQ(map.routine_at(0x1080), nullptr);
    EXPECT_EQ(map.name(map.routine_at(0x103F)->name), "one");
    const MapRoutine* two = map.routine_at(0x105A);
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(map.name(two->name), "two");
    EXPECT_EQ(map.line_at(0x105A).line, 2u);
    EXPECT_EQ(map.file(map.line_at(0x105A).file), "a.f90");
    EXPECT_EQ(map.line_at(0x1100).line, 0u);
    const MapInline* found[4];
    ASSERT_EQ(map.inlines_at(*two, 0x105A, found, 4), 2u);
    EXPECT_EQ(found[0]->call_line, 7u);
    EXPECT_EQ(found[1]->call_line, 8u);
    EXPECT_EQ(map.inlines_at(*two, 0x1065, found, 4), 1u);
    EXPECT_EQ(map.inlines_at(*two, 0x1048, found, 4), 0u);
}

TEST(RoutineMap, RefusesWhatIsCutShortOrLies) {
    const Section good;
    RoutineMap map;
    for (std::size_t size = 0; size < sizeof good; ++size)
        EXPECT_FALSE(map.open({reinterpret_cast<const char*>(&good), size}));
    auto refused = [&](auto change) {
        Section section;
        change(section.header);
        return !map.open(section.bytes());
    };
    EXPECT_TRUE(refused([](MapHeader& header) { header.magic[0] = 'X'; }));
    EXPECT_TRUE(refused([](MapHeader& header) { header.version = 2; }));
    EXPECT_TRUE(refused([](MapHeader& header) { header.routine_count = 0x10000000; }));
    EXPECT_TRUE(refused([](MapHeader& header) { header.inline_count = 0xFFFFFFFF; }));
    EXPECT_TRUE(refused([](MapHeader& header) { header.lines = 0xFFFFFFF0; }));
    EXPECT_TRUE(refused([](MapHeader& header) { header.names = sizeof(Section) + 1; }));
    // Numbers of names and files that lead out give nothing.
    Section section;
    section.routines[0].name = 1000;
    section.files[0].name = 1000;
    ASSERT_TRUE(map.open(section.bytes()));
    EXPECT_EQ(map.name(map.routine_at(0x1000)->name), "");
    EXPECT_EQ(map.file(0), "");
    EXPECT_EQ(map.file(1), "");
}

}  // namespace
}  // namespace tarn::traceback
