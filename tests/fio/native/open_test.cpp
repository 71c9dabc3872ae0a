// OPEN: its words, its refusals, and what it makes of the unit.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "packed.h"

namespace tarn::fio::native::test {
namespace {

struct Specifier {
    IOCode code;
    std::string_view text;
};

class Open : public testing::Test {
  protected:
    ~Open() override { close_unit(40); }
    static std::int32_t open(std::initializer_list<Specifier> texts, std::int32_t recl = 0,
                             std::int32_t unit = 40) {
        Packed statement;
        statement.unit(unit);
        for (const Specifier& s : texts) statement.text(s.code, s.text);
        if (recl != 0) statement.integer(IOCode::recl, recl);
        return statement.run(OPEN_hh);
    }
    Folder folder_;
};

TEST(Words, MatchByTheirBeginning) {
    constexpr std::string_view list = "UNKNOWN MODIFY NEW APPEND SCRATCH OLD READONLY REPLACE ";
    const struct {
        std::string_view value;
        std::int32_t place;
    } cases[] = {
        {"rep", 8}, {"", 1},        {"X", -1},        {"   ", 1},
        {"OLD", 6}, {"Read   ", 7}, {"REPLACED", -1}, {"NEWER", -1},
        {"n", 3},   {" OLD", -1},   {"RE", 7},        {"UNKNOWNUNKNOWNUNKNOWN", -1},
    };
    for (const auto& c : cases) EXPECT_EQ(IO_find_list_entry(c.value, list), c.place) << c.value;
}

TEST_F(Open, RefusesWithTheMessageOfTheSpecifier) {
    put_file("there", "abc\r\n");
    put_file("hundred", std::string(100, 'x'));
    ASSERT_EQ(mkdir("folder", 0777), 0);
    const struct {
        std::vector<Specifier> texts;
        std::int32_t recl;
        std::int32_t message;
    } cases[] = {
        {{{IOCode::status, "X"}}, 0, 152},
        {{{IOCode::form, "BOLD"}}, 0, 151},
        {{{IOCode::access, "RANDOM"}}, 0, 80},
        {{{IOCode::blank, "ONE"}}, 0, 153},
        {{{IOCode::filetype, "DISC"}}, 0, 98},
        {{{IOCode::share, "ALL"}}, 0, 207},
        {{{IOCode::action, "EXECUTE"}}, 0, 209},
        {{{IOCode::position, "END"}}, 0, 210},
        {{{IOCode::delim, "STAR"}}, 0, 211},
        {{{IOCode::pad, "MAYBE"}}, 0, 212},
        {{{IOCode::status, "X"}, {IOCode::form, "X"}, {IOCode::pad, "X"}}, 0, 152},
        {{{IOCode::pad, "X"}, {IOCode::access, "X"}}, 0, 80},
        {{{IOCode::access, "APPEND"}, {IOCode::status, "NEW"}, {IOCode::file, "a"}}, 0, 80},
        {{{IOCode::form, "PRINTER"}, {IOCode::access, "DIRECT"}}, 0, 81},
        {{{IOCode::form, "PRINTER"}, {IOCode::action, "READ"}}, 0, 81},
        {{{IOCode::filetype, "TTY"}, {IOCode::form, "UNFORMATTED"}}, 0, 80},
        {{{IOCode::filetype, "TTY"}, {IOCode::status, "OLD"}}, 0, 152},
        {{{IOCode::filetype, "MPC"}, {IOCode::file, "a"}}, 0, 81},
        {{{IOCode::blank, "ZERO"}, {IOCode::form, "UNFORMATTED"}}, 0, 153},
        {{{IOCode::status, "MODIFY"}}, 0, 103},
        {{{IOCode::position, "APPEND"}}, 0, 103},
        {{{IOCode::status, "OLD"}}, 0, 103},
        {{{IOCode::position, "APPEND"}, {IOCode::access, "DIRECT"}, {IOCode::file, "there"}},
         5,
         81},
        {{{IOCode::status, "NEW"}, {IOCode::file, "there"}}, 0, 107},
        {{{IOCode::status, "OLD"}, {IOCode::file, "nowhere"}}, 0, 128},
        {{{IOCode::status, "READONLY"}, {IOCode::file, "nowhere"}}, 0, 128},
        {{{IOCode::status, "SCRATCH"}, {IOCode::file, "a"}}, 0, 81},
        {{{IOCode::access, "DIRECT"}, {IOCode::file, "hundred"}}, 0, 106},
        {{{IOCode::access, "DIRECT"}, {IOCode::file, "hundred"}}, 7, 108},
        {{{IOCode::access, "DIRECT"}, {IOCode::form, "FORMATTED"}, {IOCode::file, "hundred"}},
         10,
         108},
        {{{IOCode::file, "a"}}, -3, 69},
        {{{IOCode::pad, "NO"}, {IOCode::form, "UNFORMATTED"}, {IOCode::file, "a"}}, 0, 81},
        {{{IOCode::status, "READONLY"}, {IOCode::action, "WRITE"}, {IOCode::file, "there"}}, 0, 81},
        {{{IOCode::file, "   "}}, 0, 144},
        {{{IOCode::file, "missing/a"}}, 0, 146},
        {{{IOCode::status, "OLD"}, {IOCode::file, "missing/a"}}, 0, 146},
        {{{IOCode::action, "READ"}, {IOCode::file, "nowhere"}}, 0, 10002},
        {{{IOCode::file, "folder"}}, 0, 10005},
    };
    for (const auto& c : cases) {
        Packed statement;
        statement.unit(40);
        std::string what;
        for (const Specifier& s : c.texts) {
            statement.text(s.code, s.text);
            what += std::string(s.text) + " ";
        }
        if (c.recl != 0) statement.integer(IOCode::recl, c.recl);
        EXPECT_EQ(statement.run(OPEN_hh), c.message) << what;
        EXPECT_EQ(UnitList_getUnit(40), nullptr) << what;
    }
    EXPECT_EQ(get_file("hundred").size(), 100U);
    EXPECT_EQ(Packed().text(IOCode::file, "a").run(OPEN_hh), 60);
    EXPECT_EQ(Packed().unit(-5).text(IOCode::file, "a").run(OPEN_hh), 60);
}

TEST_F(Open, StrictModeKnowsNoExtensions) {
    put_file("there", "");
    const std::vector<Specifier> extended[] = {
        {{IOCode::status, "MODIFY"}}, {{IOCode::status, "READONLY"}}, {{IOCode::status, "REPLACE"}},
        {{IOCode::access, "APPEND"}}, {{IOCode::action, "READ"}},     {{IOCode::position, "ASIS"}},
        {{IOCode::delim, "QUOTE"}},   {{IOCode::pad, "YES"}},
    };
    std::int32_t none = 0;
    for (const auto& texts : extended) {
        Packed statement;
        statement.unit(40).text(IOCode::file, "there").result(IOCode::strict, none);
        for (const Specifier& s : texts) statement.text(s.code, s.text);
        EXPECT_EQ(statement.run(OPEN_hh), 126) << texts[0].text;
    }
    EXPECT_EQ(
        Packed().unit(40).text(IOCode::file, "there").result(IOCode::strict, none).run(OPEN_hh), 0);
}

TEST_F(Open, GivesTheUnitItsKindAndRights) {
    put_file("there", "abc\r\n");
    put_file("records", std::string(40, 'x'));
    const struct {
        std::vector<Specifier> texts;
        std::int32_t recl;
        UnitKind kind;
        bool reads, writes, formatted, direct, transparent;
    } cases[] = {
        {{{IOCode::file, "there"}}, 0, UnitKind::text, true, true, true, false, false},
        {{{IOCode::file, "there"}}, 80, UnitKind::full, true, true, true, false, false},
        {{{IOCode::file, "there"}, {IOCode::action, "READ"}},
         0,
         UnitKind::text,
         true,
         false,
         true,
         false,
         false},
        {{{IOCode::file, "there"}, {IOCode::status, "READONLY"}},
         0,
         UnitKind::text,
         true,
         false,
         true,
         false,
         false},
        {{{IOCode::file, "out"}, {IOCode::action, "WRITE"}},
         0,
         UnitKind::text,
         false,
         true,
         true,
         false,
         false},
        {{{IOCode::file, "out"}, {IOCode::action, "WRITE"}, {IOCode::position, "APPEND"}},
         0,
         UnitKind::text,
         true,
         true,
         true,
         false,
         false},
        {{{IOCode::file, "records"}, {IOCode::access, "dir"}},
         10,
         UnitKind::full,
         true,
         true,
         false,
         true,
         false},
        {{{IOCode::file, "records"}, {IOCode::access, "dir"}, {IOCode::form, "f"}},
         8,
         UnitKind::full,
         true,
         true,
         true,
         true,
         false},
        {{{IOCode::file, "records"}, {IOCode::access, "trans"}},
         0,
         UnitKind::text,
         true,
         true,
         false,
         false,
         true},
        {{{IOCode::file, "records"}, {IOCode::access, "STREAM"}, {IOCode::form, "FORMATTED"}},
         0,
         UnitKind::text,
         true,
         true,
         true,
         false,
         true},
        {{{IOCode::file, "list"}, {IOCode::form, "PRINTER"}},
         0,
         UnitKind::printer,
         true,
         true,
         true,
         false,
         false},
        {{{IOCode::file, "list"}, {IOCode::filetype, "FSU"}},
         0,
         UnitKind::full,
         true,
         true,
         true,
         false,
         false},
        {{}, 0, UnitKind::text, true, true, true, false, false},
        {{{IOCode::filetype, "TTY"}}, 0, UnitKind::console, true, true, true, false, false},
        {{{IOCode::filetype, "MLP"}}, 0, UnitKind::device6, true, true, true, false, false},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const auto& c = cases[i];
        Packed statement;
        statement.unit(40);
        for (const Specifier& s : c.texts) statement.text(s.code, s.text);
        if (c.recl != 0) statement.integer(IOCode::recl, c.recl);
        ASSERT_EQ(statement.run(OPEN_hh), 0) << i;
        const Unit* const unit = UnitList_getUnit(40);
        ASSERT_NE(unit, nullptr) << i;
        EXPECT_EQ(unit->kind, c.kind) << i;
        EXPECT_EQ(unit->status.may_read, c.reads) << i;
        EXPECT_EQ(unit->status.may_write, c.writes) << i;
        EXPECT_EQ(unit->status.formatted, c.formatted) << i;
        EXPECT_EQ(unit->status.direct, c.direct) << i;
        EXPECT_EQ(unit->status.transparent, c.transparent) << i;
        EXPECT_EQ(unit->highest_record, c.direct ? 4 : 0) << i;
        EXPECT_EQ(close_unit(40), 0) << i;
        EXPECT_EQ(UnitList_getUnit(40), nullptr) << i;
    }
}

TEST_F(Open, ScratchFileGoesAtItsClose) {
    ASSERT_EQ(open({}), 0);
    const Unit* const unit = UnitList_getUnit(40);
    const std::string path = unit->file.path;
    EXPECT_NE(path.find("F$"), std::string::npos);
    EXPECT_TRUE(unit->status.scratch);
    EXPECT_TRUE(exists(path));
    EXPECT_EQ(Packed().unit(40).text(IOCode::status, "KEEP").run(CLOS_hh), 92);
    EXPECT_TRUE(exists(path));
    EXPECT_EQ(close_unit(40), 0);
    EXPECT_FALSE(exists(path));
}

TEST_F(Open, ConnectionOfTheSameFileGoesOn) {
    put_file("a", "1\r\n2\r\n");
    ASSERT_EQ(symlink("a", "other"), 0);
    ASSERT_EQ(open({{IOCode::file, "a"}, {IOCode::status, "OLD"}}), 0);
    const std::int32_t handle = UnitList_getUnit(40)->handle_number;
    EXPECT_EQ(open({{IOCode::file, "other"}, {IOCode::status, "OLD"}, {IOCode::blank, "ZERO"}}), 0);
    EXPECT_EQ(UnitList_getUnit(40)->handle_number, handle);
    EXPECT_FALSE(UnitList_getUnit(40)->status.blank_null);
    EXPECT_EQ(open({{IOCode::file, "a"}, {IOCode::status, "OLD"}, {IOCode::form, "UNFORMATTED"}}),
              84);
    EXPECT_EQ(open({{IOCode::file, "a"}, {IOCode::status, "REPLACE"}}), 0);
    EXPECT_EQ(get_file("a"), "1\r\n2\r\n");
    EXPECT_EQ(open({{IOCode::file, "a"}, {IOCode::status, "OLD"}}, 0, 41), 134);
    // Another file takes the unit over.
    EXPECT_EQ(open({{IOCode::file, "b"}, {IOCode::status, "NEW"}}), 0);
    EXPECT_NE(UnitList_getUnit(40)->handle_number, handle);
    EXPECT_EQ(open({{IOCode::file, "a"}, {IOCode::status, "OLD"}}, 0, 41), 0);
    EXPECT_EQ(close_unit(41), 0);
    // What a failing OPEN had closed stays closed.
    EXPECT_EQ(open({{IOCode::file, "missing/c"}}), 146);
    EXPECT_EQ(UnitList_getUnit(40), nullptr);
}

TEST_F(Open, SharesAFileWhereSHARESaysSo) {
    put_file("a", "");
    ASSERT_EQ(open({{IOCode::file, "a"}, {IOCode::share, "DENYNONE"}}), 0);
    EXPECT_EQ(UnitList_getUnit(40)->share, 4);
    EXPECT_FALSE(UnitList_getUnit(40)->file.buffered);
    EXPECT_EQ(open({{IOCode::file, "a"}, {IOCode::share, "DENYNONE"}}, 0, 41), 0);
    EXPECT_EQ(close_unit(41), 0);
    EXPECT_EQ(open({{IOCode::file, "a"}, {IOCode::share, "DENYRW"}}, 0, 41), 134);
}

TEST_F(Open, TwoReadersMayHaveOneFile) {
    put_file("a", "x\r\n");
    EXPECT_EQ(open({{IOCode::file, "a"}, {IOCode::action, "READ"}}), 0);
    EXPECT_EQ(open({{IOCode::file, "a"}, {IOCode::status, "READONLY"}}, 0, 41), 0);
    close_unit(41);
}

TEST_F(Open, ReplacesAndRenames) {
    put_file("a", "old");
    ASSERT_EQ(open({{IOCode::file, "  a"}, {IOCode::status, "REPLACE"}}), 0);
    EXPECT_EQ(get_file("a"), "");
    put_file("taken", "");
    EXPECT_EQ(Packed().unit(40).text(IOCode::new_name, "taken").run(CLOS_hh), 125);
    EXPECT_EQ(UnitList_getUnit(40), nullptr);
    ASSERT_EQ(open({{IOCode::file, "a"}}), 0);
    EXPECT_EQ(Packed().unit(40).text(IOCode::new_name, "new").run(CLOS_hh), 0);
    EXPECT_TRUE(exists("new"));
    EXPECT_FALSE(exists("a"));
    ASSERT_EQ(open({{IOCode::file, "new"}, {IOCode::status, "READONLY"}}), 0);
    EXPECT_EQ(Packed().unit(40).text(IOCode::status, "DELETE").run(CLOS_hh), 173);
    EXPECT_EQ(UnitList_getUnit(40), nullptr);
    ASSERT_EQ(open({{IOCode::file, "new"}}), 0);
    EXPECT_EQ(Packed().unit(40).text(IOCode::status, "D").run(CLOS_hh), 0);
    EXPECT_FALSE(exists("new"));
    EXPECT_EQ(Packed().unit(40).text(IOCode::status, "D").run(CLOS_hh), 0);  // not connected
    EXPECT_EQ(Packed().unit(40).text(IOCode::status, "LOSE").run(CLOS_hh), 152);
    EXPECT_EQ(Packed().unit(40).run(FLUSH_hh), 94);
}

TEST_F(Open, WriteProtectedFileIsOpenedForReading) {
    if (geteuid() == 0) GTEST_SKIP() << "root may write everywhere";
    put_file("a", "x\r\n");
    ASSERT_EQ(chmod("a", 0444), 0);
    ASSERT_EQ(open({{IOCode::file, "a"}}), 0);
    EXPECT_FALSE(UnitList_getUnit(40)->status.may_write);
    EXPECT_TRUE(UnitList_getUnit(40)->status.read_only);
}

TEST_F(Open, TakesAPreconnectedUnit) {
    EXPECT_EQ(open({{IOCode::file, "two"}}, 0, 2), 0);
    EXPECT_EQ(UnitList_getUnit(2)->kind, UnitKind::text);
    EXPECT_FALSE(UnitList_getUnit(2)->native_console);
    EXPECT_EQ(close_unit(2), 0);
    EXPECT_EQ(UnitList_getUnit(2), nullptr);
}

TEST_F(Open, LargeRecordsGrowTheBuffer) {
    ASSERT_EQ(open({{IOCode::file, "wide"}}, 100000), 0);
    EXPECT_GE(current().buffer_size, 100000);
}

}  // namespace
}  // namespace tarn::fio::native::test
