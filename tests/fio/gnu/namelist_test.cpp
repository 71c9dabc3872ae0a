// NAMELIST as a compiled program asks for it. That what is written and read is what gfortran writes
// and reads is shown by whole programs and by random groups on both run-times; here are the faults
// and their messages, and what we take beyond gfortran's reader.
#include "fio/gnu/namelist.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "fio/gnu/statement.h"

namespace tarn::fio {
namespace {

struct Point {
    float x = 0;
    float y = 0;
};

// The variables of a group as they lie in a program.
struct Variables {
    std::int32_t iterations = 0;
    std::int32_t grid[6] = {};  // (2, 0:2)
    double tolerance = 0;
    std::int32_t verbose = 0;
    char title[8] = {'?', '?', '?', '?', '?', '?', '?', '?'};
    char32_t wide[3] = {U'?', U'?', U'?'};
    Point points[2];
};

void add(NamelistGroup& group, const char* path, ItemType type, int kind, std::size_t size,
         void* address, std::size_t length = 0, int rank = 0) {
    NamelistVariable variable;
    variable.address = address;
    variable.path = path;
    variable.type = type;
    variable.derived = kind == 0;
    variable.kind = kind;
    variable.size = size;
    variable.length = length;
    variable.rank = rank;
    group.add(variable);
}

NamelistGroup* describe(Variables& v) {
    NamelistGroup* const group = take_namelist_group();
    group->name = "config";
    add(*group, "iterations", ItemType::integer, 4, 4, &v.iterations);
    add(*group, "grid", ItemType::integer, 4, 4, v.grid, 0, 2);
    group->set_dimension(0, {1, 1, 2});
    group->set_dimension(1, {2, 0, 2});
    add(*group, "tolerance", ItemType::real, 8, 8, &v.tolerance);
    add(*group, "verbose", ItemType::logical, 4, 4, &v.verbose);
    add(*group, "title", ItemType::character, 1, 8, v.title, 8);
    add(*group, "wide", ItemType::character, 4, 12, v.wide, 3);
    add(*group, "points", ItemType::integer, 0, sizeof(Point), v.points, 0, 1);
    group->set_dimension(0, {1, 1, 2});
    add(*group, "points%x", ItemType::real, 4, 4, &v.points[0].x);
    add(*group, "points%y", ItemType::real, 4, 4, &v.points[0].y);
    return group;
}

struct Outcome {
    std::int32_t iostat = 0;
    std::string message;
};

// Records of 80 characters, one a line of the text.
Outcome run(const std::string& text, NamelistGroup* group) {
    constexpr std::size_t length = 80;
    std::string records;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t end = std::min(text.find('\n', from), text.size());
        records += text.substr(from, end - from);
        records.append(length - (end - from), ' ');
        from = end + 1;
    }
    Outcome outcome;
    outcome.message.assign(300, ' ');
    Caller caller;
    caller.iostat = &outcome.iostat;
    caller.iomsg = outcome.message.data();
    caller.iomsg_length = outcome.message.size();
    caller.catches_error = caller.catches_end = true;
    InternalFile file;
    file.base = records.data();
    file.length = length;
    file.count = static_cast<std::int64_t>(records.size() / length);
    file.rank = 1;
    file.dimension[0] = {file.count, static_cast<std::int64_t>(length), 0};
    TransferSpecifiers specifiers;
    specifiers.reading = true;
    specifiers.namelist = group;
    specifiers.internal = &file;
    end_transfer(begin_transfer(caller, specifiers));
    give_back(group);
    outcome.message.erase(outcome.message.find_last_not_of(' ') + 1);
    return outcome;
}

Outcome read(const std::string& text, Variables& v) {
    return run(text, describe(v));
}

TEST(Namelist, FaultsTellLineColumnNameAndNearestName) {
    const struct {
        const char* text;
        std::int32_t iostat;
        const char* message;
    } cases[] = {
        {"&config\n iteratoins = 5 /", 5010,
         "Invalid identifier in namelist input group (group CONFIG, line 2, column 2: "
         "\"iteratoins\" is no variable of the group; the nearest is \"iterations\")"},
        {"&config qqqqq=1 /", 5010,
         "Invalid identifier in namelist input group (group CONFIG, line 1, column 9: "
         "\"qqqqq\" is no variable of the group)"},
        {"&config points(1)%z=1 /", 5010,
         "Invalid identifier in namelist input group (group CONFIG, line 1, column 19: \"z\" is no "
         "component of POINTS; the nearest is \"x\")"},
        {"&config title%x=1 /", 5010,
         "Invalid identifier in namelist input group (group CONFIG, line 1, column 15: "
         "title has no components)"},
        {"&config iterations=1.5 /", 5010,
         "Invalid character in field (group CONFIG, line 1, column 20: \"1.5\" for iterations is "
         "no INTEGER)"},
        {"&config iterations=99999999999 /", 5010,
         "Overflow detected by input/output routine (data out-of-range) (group CONFIG, line 1, "
         "column 20: \"99999999999\" for iterations is out of range)"},
        {"&config tolerance=small /", 5010,
         "Invalid character in field (group CONFIG, line 1, column 19: \"small\" for tolerance is "
         "no REAL)"},
        {"&config title=bare /", 5010,
         "Invalid character in field (group CONFIG, line 1, column 15: \"bare\" for title is no "
         "CHARACTER value: it needs quotes)"},
        {"&config grid(3,0)=1 /", 5010,
         "Subscript or substring out-of-range in namelist input (group CONFIG, line 1, column 14: "
         "subscript 1 of grid must lie in 1:2)"},
        {"&config grid(1)=1 /", 5010,
         "Incorrect number of subscripts in namelist input (group CONFIG, line 1, column 15: grid "
         "has 2 dimensions)"},
        {"&config title(3:9)='x' /", 5010,
         "Subscript or substring out-of-range in namelist input (group CONFIG, line 1, column 15: "
         "the substring of title must lie in 1:8)"},
        {"&config grid=1,2,3,4,5,6,7 /", 5010,
         "Too many values supplied for input array in namelist-directed input/output (group "
         "CONFIG, line 1, column 26: \"7\" behind the values of grid)"},
        {"&config grid=200000000*1 /", 5010,
         "Too many values supplied for input array in namelist-directed input/output (group "
         "CONFIG, line 1, column 26: the repeat count of grid is too large)"},
        {"&config grid=99999999999999*1 /", 5010,
         "Invalid or missing repeat count (group CONFIG, line 1, column 14: "
         "\"99999999999999*\")"},
        {"&config iterations 5 /", 5010,
         "Syntax error encountered while reading namelist group (group CONFIG, line 1, column 20: "
         "an equals sign must follow iterations)"},
        {"&config iterations=5\n&next /", 5010,
         "Syntax error encountered while reading namelist group (group CONFIG, line 2, column 1: "
         "the group has no / or &END in front of this)"},
        {"\n&config iterations=5", -1,
         "End-of-file in namelist input group (group CONFIG, which begins in line 2, has no / at "
         "its end)"},
        {"&confg iterations=5 /", -1,
         "Attempt to read past end-of-file (group CONFIG is not in what is left of the file; the "
         "nearest is CONFG)"},
    };
    for (const auto& c : cases) {
        Variables v;
        const Outcome outcome = read(c.text, v);
        EXPECT_EQ(outcome.iostat, c.iostat) << c.text;
        EXPECT_EQ(outcome.message, std::string(c.message) + ", on an internal file") << c.text;
    }
}

// A group cut anywhere ends in a fault, and what stands in front of the cut is assigned.
TEST(Namelist, CutAnywhere) {
    const std::string text =
        "&config iterations=12 grid(:,1)=2*7\n tolerance=1e-3 verbose=.true. title='ab''c' "
        "points(2)%y=5 /";
    for (std::size_t length = 0; length < text.size(); ++length) {
        Variables v;
        const Outcome outcome = read(text.substr(0, length), v);
        EXPECT_NE(outcome.iostat, 0) << length;
        EXPECT_EQ(v.iterations, length > 22 ? 12 : v.iterations) << length;
        EXPECT_EQ(v.grid[0], 0);
        EXPECT_EQ(v.points[0].y, 0);
    }
    Variables v;
    EXPECT_EQ(read(text, v).iostat, 0);
    EXPECT_EQ(v.grid[3], 7);
    EXPECT_EQ(v.points[1].y, 5);
    EXPECT_EQ(std::string(v.title, 8), "ab'c    ");
}

// gfortran 12 takes each of these for a fault, or for something else.
TEST(Namelist, BeyondGfortran) {
    Variables v;
    ASSERT_EQ(read("&config grid = 1, ! one\n 2,! two\n 3!three\n ! nothing\n ,, 6 /", v).iostat,
              0);
    EXPECT_EQ(v.grid[0], 1);
    EXPECT_EQ(v.grid[1], 2);
    EXPECT_EQ(v.grid[2], 3);
    EXPECT_EQ(v.grid[5], 6);

    v = {};
    ASSERT_EQ(read("&config points%x = 1, 2 grid( 1 : 2 , ::2 ) = 4*9 /", v).iostat, 0);
    EXPECT_EQ(v.points[1].x, 2);
    EXPECT_EQ(v.grid[1], 9);
    EXPECT_EQ(v.grid[2], 0);
    EXPECT_EQ(v.grid[4], 9);

    v = {};
    ASSERT_EQ(read("&config points=3*1.5 verbose=true/", v).iostat, 0);
    EXPECT_EQ(v.points[1].x, 1.5F);
    EXPECT_EQ(v.points[1].y, 0);
    EXPECT_EQ(v.verbose, 1);

    v = {};
    ASSERT_EQ(read("&config wide='abc' /", v).iostat, 0);
    EXPECT_EQ(v.wide[2], U'c');
}

TEST(Namelist, ProceduresOfATypeAreRefusedUntilTheyAreThere) {
    Variables v;
    NamelistGroup* const group = describe(v);
    group->items[0].procedure = &v;
    const Outcome outcome = run("&config iterations=1 /", group);
    EXPECT_EQ(outcome.iostat, 5012);
    EXPECT_NE(outcome.message.find("NAMELIST with a procedure of the type of iterations"),
              std::string::npos);
}

TEST(Namelist, WhatIsNotAllocatedIsAFault) {
    Variables v;
    NamelistGroup* const group = describe(v);
    group->items[1].address = nullptr;
    const Outcome outcome = run("&config iterations=1 grid=2 /", group);
    EXPECT_EQ(outcome.iostat, 5010);
    EXPECT_NE(outcome.message.find("column 22: grid is not allocated"), std::string::npos);
    EXPECT_EQ(v.iterations, 1);
}

}  // namespace
}  // namespace tarn::fio
