// What happens to a statement's outcome, and how statements and drivers nest.
#include <gtest/gtest.h>

#include "packed.h"

namespace tarn::fio::native::test {
namespace {

extern "C" {
void spec_Open(std::uint32_t, void*) LINK_NAME("_Open");
void spec_OpenC(std::uint32_t, void*, std::ptrdiff_t) LINK_NAME("_OpenC");
void spec_Close(std::uint32_t, void*) LINK_NAME("_Close");
void CLOSE_ALL_FORTRAN_UNITS_h() LINK_NAME("CLOSE_ALL_FORTRAN_UNITS#");
void __show_unit_list();
const char* W32STREAM_INFO_h(const std::int16_t*) LINK_NAME("W32STREAM_INFO#");
const char* W32STREAM_INQUIRE_NAME_h(const std::int16_t*) LINK_NAME("W32STREAM_INQUIRE_NAME#");
void __SetMaximumIOBufferSize(std::int32_t);
void GET_IOBUFFER_ADDRESS_h(void**, std::int32_t*) LINK_NAME("GET_IOBUFFER_ADDRESS#");
}

// An OPEN that fails with message 152.
Packed& bad_status(Packed& statement) {
    return statement.unit(40).text(IOCode::status, "X");
}

TEST(Outcome, IOSTATHoldsWhatItsTypeCan) {
    Packed wide, narrow, tiny, huge;
    std::int32_t four = -1;
    std::int16_t two[2] = {-1, -1};
    std::int8_t one[2] = {-1, -1};
    std::int64_t eight = -1;
    bad_status(wide).add(IOCode::iostat, TypeCode::integer4, &four).call(OPEN_hh);
    bad_status(narrow).add(IOCode::iostat, TypeCode::integer2, two).call(OPEN_hh);
    bad_status(tiny).add(IOCode::iostat, TypeCode::integer1, one).call(OPEN_hh);
    bad_status(huge).add(IOCode::iostat, TypeCode::integer8, &eight).call(OPEN_hh);
    EXPECT_EQ(four, 152);
    EXPECT_EQ(two[0], 152);
    EXPECT_EQ(one[0], 127);
    EXPECT_EQ(eight, 152);
    EXPECT_EQ(two[1], -1);
    EXPECT_EQ(one[1], -1);
    EXPECT_EQ(GET_LAST_IO_ERROR_h(), 152);
    Packed system;
    system.unit(40).text(IOCode::file, "/nowhere").text(IOCode::action, "READ");
    system.add(IOCode::iostat, TypeCode::integer2, two).call(OPEN_hh);
    EXPECT_EQ(two[0], 10002);
    EXPECT_EQ(GET_LAST_IO_ERROR_h(), 2);
}

TEST(Outcome, IOMSGHoldsTheSentence) {
    const struct {
        std::size_t size;
        std::string_view text;
    } cases[] = {{30, "Invalid STATUS specifier      "}, {7, "Invalid"}};
    for (const auto& c : cases) {
        std::string message(c.size, '?');
        Packed statement;
        bad_status(statement).fill(IOCode::iomsg, message);
        EXPECT_EQ(statement.run(OPEN_hh), 152);
        EXPECT_EQ(message, c.text);
    }
    std::string untouched(5, '?');
    EXPECT_EQ(Packed().unit(40).fill(IOCode::iomsg, untouched).run(CLOS_hh), 0);
    EXPECT_EQ(untouched, "     ");
}

TEST(Outcome, ERRIsTakenWithoutIOSTAT) {
    Packed statement;
    jmp_buf landing;
    bad_status(statement).add(IOCode::err, TypeCode::none, &landing);
    volatile bool came_back = false;
    const int road = setjmp(landing);
    if (road == 0) {
        statement.call(OPEN_hh);
        came_back = true;
    }
    EXPECT_EQ(road, 1);
    EXPECT_FALSE(came_back);
    EXPECT_FALSE(state().in_io);
}

TEST(OutcomeDeath, WhatNobodyCatchesEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            Packed statement;
            bad_status(statement).call(OPEN_hh);
        },
        testing::ExitedWithCode(1), "Error  152, Invalid STATUS specifier");
    EXPECT_EXIT(
        {
            Packed statement;
            statement.unit(40).text(IOCode::file, "/nowhere").text(IOCode::action, "READ");
            statement.call(OPEN_hh);
        },
        testing::ExitedWithCode(1), "Win32 error detected in IO_open : ");
    EXPECT_EXIT(
        {
            Packed statement;
            statement.unit(6).call(WSU1_hh);
        },
        testing::ExitedWithCode(1), "Error   90, ");
}

TEST(OutcomeDeath, AnInhibitedMessageIsPassedOver) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            __inhibit_iostat(94);
            __inhibit_iostat(0);
            __inhibit_iostat(453);
            const bool passed = Packed().unit(40).run(RWIN_hh) == 0;
            const bool others = Packed().unit(-1).run(RWIN_hh) == 60;
            std::_Exit(passed && others ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
}

// ---- Drivers ----

struct DriverLog {
    std::vector<int> operations;
    std::int16_t status = 0;
    bool does_io = false;
    std::int32_t inner_iostat = -1;
} driver_log;

void driver(char*, std::int32_t*, std::int32_t*, std::int32_t* operation, std::int16_t* status,
            std::size_t) {
    driver_log.operations.push_back(*operation);
    *status = driver_log.status;
    if (!driver_log.does_io) return;
    driver_log.does_io = false;
    driver_log.inner_iostat = Packed().unit(44).text(IOCode::status, "SCRATCH").run(OPEN_hh);
    driver_log.inner_iostat += close_unit(44);
}

Packed& with_driver(Packed& statement) {
    return statement.unit(43).add(IOCode::driver, TypeCode::none,
                                  reinterpret_cast<const void*>(driver));
}

TEST(Driver, HearsOfEveryStatement) {
    driver_log = {};
    driver_log.does_io = true;
    Packed open;
    ASSERT_EQ(with_driver(open).run(OPEN_hh), 0);
    EXPECT_EQ(driver_log.inner_iostat, 0);
    EXPECT_EQ(UnitList_getUnit(43)->kind, UnitKind::driver);
    EXPECT_EQ(Packed().unit(43).run(RWIN_hh), 0);
    EXPECT_EQ(Packed().unit(43).run(BACK_hh), 0);
    EXPECT_EQ(Packed().unit(43).run(ENDF_hh), 0);
    EXPECT_EQ(Packed().unit(43).run(INQR_hh), 0);
    EXPECT_EQ(close_unit(43), 0);
    EXPECT_EQ(driver_log.operations, (std::vector<int>{6, 4, 5, 3, 8, 7}));
}

TEST(Driver, ItsStatusIsMessage155) {
    driver_log = {};
    Packed open;
    ASSERT_EQ(with_driver(open).run(OPEN_hh), 0);
    driver_log.status = 3;
    EXPECT_EQ(Packed().unit(43).run(RWIN_hh), 155);
    EXPECT_EQ(close_unit(43), 155);
    EXPECT_EQ(UnitList_getUnit(43), nullptr);
    Packed again;
    EXPECT_EQ(with_driver(again).run(OPEN_hh), 155);
    EXPECT_EQ(UnitList_getUnit(43), nullptr);
    EXPECT_EQ(state().io_depth, 0);
}

// ---- The per-item form ----

constexpr std::uint32_t last = 1U << 31;
constexpr std::uint32_t by_status = 1U << 29;

std::uint32_t code(IOCode io, TypeCode type) {
    return static_cast<std::uint32_t>(io) | static_cast<std::uint32_t>(type) << 8;
}

TEST(PerItem, ReportsInTheStatusWordAndComesBack) {
    std::int32_t unit = 45;
    std::int32_t iostat = -1;
    std::int32_t word = -1;
    char scratch[] = "SCRATCH";
    char wrong[] = "X";
    spec_Open(code(IOCode::unit, TypeCode::integer4), &unit);
    spec_OpenC(code(IOCode::status, TypeCode::character) | last, scratch, 7);
    EXPECT_TRUE(UnitList_getUnit(45)->status.scratch);
    spec_Close(code(IOCode::unit, TypeCode::integer4) | last, &unit);
    EXPECT_EQ(UnitList_getUnit(45), nullptr);

    spec_Open(code(IOCode::status_err, TypeCode::integer4) | by_status, &word);
    EXPECT_EQ(word, 0);
    spec_Open(code(IOCode::unit, TypeCode::integer4), &unit);
    spec_Open(code(IOCode::iostat, TypeCode::integer4), &iostat);
    spec_OpenC(code(IOCode::status, TypeCode::character) | last, wrong, 1);
    EXPECT_EQ(word, 3);
    EXPECT_EQ(iostat, 152);
    EXPECT_EQ(UnitList_getUnit(45), nullptr);
    EXPECT_EQ(Packed().unit(45).run(INQR_hh), 0);  // nothing of it is left over
}

// ---- Units that are there, and services ----

TEST(ServicesDeath, FirstUnitsAndTheirEnd) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::int32_t opened = 0;
            bool good = Packed().unit(2).result(IOCode::opened, opened).run(INQR_hh) == 0;
            for (const int number : {1, 2, 5, 6}) {
                const Unit* const unit = UnitList_getUnit(number);
                good = good && unit != nullptr && unit->kind == UnitKind::console &&
                       unit->status.reading == (number == 1 || number == 5) &&
                       unit->status.writing == (number == 2 || number == 6);
            }
            good = good && opened == 1;
            CLOSE_ALL_FORTRAN_UNITS_h();
            good = good && UnitList_first() == nullptr && Packed().unit(6).run(RWIN_hh) == 94;
            std::_Exit(good ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
}

TEST(Services, TellADebuggerOfAUnit) {
    const Folder folder;
    std::int16_t unit = 46;
    EXPECT_STREQ(W32STREAM_INFO_h(&unit), "Unit 46 is not open\n");
    put_file("a", "abc\r\n");
    ASSERT_EQ(Packed().unit(46).text(IOCode::file, "a").run(OPEN_hh), 0);
    EXPECT_EQ(W32STREAM_INQUIRE_NAME_h(&unit), folder.path() + "/a");
    EXPECT_EQ(W32STREAM_INFO_h(&unit),
              "File: " + folder.path() +
                  "/a\nSHARE='Compatibility'\nBLANK='NULL'\nFORM='FORMATTED'\n"
                  "ACCESS='SEQUENTIAL'\nRECL=32767\nCurrent Record Number=0\nFile size=5\n"
                  "File position=0\n");
    close_unit(46);
    ASSERT_EQ(Packed().unit(46).run(OPEN_hh), 0);
    EXPECT_STREQ(W32STREAM_INQUIRE_NAME_h(&unit), "SCRATCH FILE\n");
    close_unit(46);
}

TEST(ServicesDeath, BufferSizeGrowsForNewRecordsOnly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            void* address = nullptr;
            std::int32_t size = 0;
            GET_IOBUFFER_ADDRESS_h(&address, &size);
            bool good = size == 32767;
            __SetMaximumIOBufferSize(32767);
            __SetMaximumIOBufferSize(32768);
            GET_IOBUFFER_ADDRESS_h(&address, &size);
            good = good && size == 32767;
            newIO();
            GET_IOBUFFER_ADDRESS_h(&address, &size);
            std::_Exit(good && size == 32768 ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace tarn::fio::native::test
