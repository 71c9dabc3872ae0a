#include "failure/failure.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>

#include "failure/catalogue.h"
#include "failure/fortran_messages.h"
#include "failure/managed_report.h"
#include "failure/report.h"
#include "frame/link_name.h"
#include "frame/state.h"

extern "C" {
void FAIL_h(const std::int16_t*) LINK_NAME("FAIL#");
void FAIL95_hh(std::intptr_t, std::intptr_t, std::intptr_t, std::intptr_t, std::intptr_t,
               std::intptr_t) LINK_NAME("FAIL95##");
void C_FAIL_h(const std::int32_t*) LINK_NAME("C_FAIL#");
void ORV2_ERROR_h(const char*, std::ptrdiff_t) LINK_NAME("ORV2_ERROR#");
void SET_ERRSTRG_h(const char*, std::ptrdiff_t) LINK_NAME("SET_ERRSTRG#");
void FORTRAN_ERROR_MESSAGE_h(const std::int16_t*, char*, std::ptrdiff_t)
    LINK_NAME("FORTRAN_ERROR_MESSAGE#");
void NT_FAIL_AT(const void*, const char*, const std::int32_t*);
void __set_user_failure_handler(void (*)(int));
const char* getRuntimeErrorMessage(std::int32_t);
}

namespace tarn::failure {
namespace {

TEST(Catalogue, NumbersAndTheirTexts) {
    EXPECT_STREQ(text(0), "Undefined error");
    EXPECT_STREQ(text(161), "\"*\" must precede \"$\" or \"Z\" in business editing descriptor");
    EXPECT_STREQ(text(275), "Reference through NULL pointer %F");
    EXPECT_STREQ(text(496), "abs(x) < 1 is required in ATANH(x)");
    EXPECT_STREQ(text(497), "");
    EXPECT_STREQ(getRuntimeErrorMessage(498), "Undefined error");
    EXPECT_STREQ(getRuntimeErrorMessage(-1), "Undefined error");
    EXPECT_EQ(plain_text(275), "Reference through NULL pointer ");
    EXPECT_EQ(plain_text(345), "");
}

TEST(Catalogue, TheFortranFormDiffersInItsRows) {
    int different = 0;
    for (int number = 0; number <= last_fortran_number; ++number) {
        different += fortran_text(number) != text(number);
    }
    EXPECT_EQ(different, 14);
    EXPECT_EQ(fortran_text(18), "This routine has been entered recursively (-ANSI mode)");
    EXPECT_EQ(fortran_text(356), "Variable \\\"%1\\\" has not yet been defined");
    EXPECT_EQ(fortran_text(457), "Negative SHIFT count for SHIFTL or SHIFTR");
    EXPECT_EQ(fortran_text(-5), "Undefined error");
}

TEST(Neaten, DropsPaddingAndSubstitutes) {
    struct Case {
        const char* text;
        const char* expected;
    };
    const Case cases[] = {
        {"Error: Undefined error", "Error: Undefined error"},
        {"unit  12:Error:  x", "unit 12:Error: x"},
        {"a (  b , c )", "a (b ,c)"},
        {"file: name", "file:name"},
        {": x", ": x"},  // too early for the rule
        {"Error: %1", "Error: stop here"},
        {"%1%1 50% of %2", "stop herestop here 50% of %2"},
    };
    for (const Case& c : cases) {
        std::string neat = neaten(c.text, "stop here   ");
        neat.resize(neat.find_last_not_of(' ') + 1);
        EXPECT_EQ(neat, c.expected);
    }
    EXPECT_LE(neaten(std::string(2000, 'x'), {}).size(), 600u);
}

TEST(CallMismatch, Words) {
    struct Case {
        CallMismatch mismatch;
        bool newer;
        const char* expected;
    };
    const Case cases[] = {
        {{4, 3, 0, 0, 0},
         true,
         "Error: Attempt to call a routine with 3 arguments when 2 were expected"},
        {{3, 3, 0, 4, 0},
         true,
         "Error: Attempt to call a real(kind=2) function as if it were a subroutine"},
        {{3, 3, 2, 3, 1},
         true,
         "Error: Attempt to call a routine with argument number 1 as an integer(kind=3) when a "
         "real(kind=1) was expected"},
        {{3, 3, 0x12, 0x10, 2},
         true,
         "Error: Attempt to call a routine with argument number 2 as a complex(kind=3) when a TYPE "
         "was expected"},
        {{3, 3, 0x12, 9, 2},
         false,
         "Error: Attempt to call a routine with argument number 2 as an integer*4 when a character "
         "was expected"},
        {{3, 3, 0x20, 15, 0},
         false,
         "Error: Attempt to call a label function as if it were a subroutine"},
    };
    for (const Case& c : cases) EXPECT_EQ(call_mismatch(c.mismatch, c.newer), c.expected);
    std::uint8_t type = 0x1F;
    EXPECT_EQ(newer_type_name(type), "");
    EXPECT_EQ(type, 15);
}

TEST(Report, WordsWithAndWithoutADebugger) {
    EXPECT_EQ(report_text(275, {}, nullptr, nullptr),
              "*** Error  275, Reference through NULL pointer \n");
    EXPECT_EQ(report_text(free_text, "as it is", nullptr, nullptr), "as it is");
    EXPECT_EQ(report_text(29, {}, "sub", reinterpret_cast<void*>(0x1234)),
              "Call to missing routine : sub at 0x0000000000001234.\n"
              "*** Error   29, Call to missing routine - \n");
    __debugged = 2;
    EXPECT_EQ(report_text(1, {}, nullptr, nullptr),
              "CPPFAIL@ Error    1, Floating point arithmetic overflow");
    EXPECT_EQ(report_text(free_text, "x", nullptr, nullptr), "CPPFAIL@ x");
    EXPECT_EQ(report_text(fortran_free_text, "x", nullptr, nullptr), "ORV90FAIL@ x");
    __debugged = 0;
}

TEST(Report, EntriesAndTheirEnd) {
    auto status = testing::ExitedWithCode(1);
    EXPECT_EXIT(fail(117), status, "^\\*\\*\\* Error  117, Disk full\n$");
    EXPECT_EXIT(fail(51, "    on unit 7\n"), status,
                "^\\*\\*\\* Error   51, Format/data mismatch\n    on unit 7\n$");
    EXPECT_EXIT(fail_text("own words"), status, "^own words\n$");
    std::int16_t none = -3;
    EXPECT_EXIT(FAIL_h(&none), status, "^Error: Undefined error\n$");
    EXPECT_EXIT(
        {
            hooks().current_io_unit = [] { return 12; };
            std::int16_t number = 52;
            FAIL_h(&number);
        },
        status, "^I/O error on Fortran unit 12:Error: Invalid character in field\n$");
    EXPECT_EXIT(
        {
            hooks().current_io_unit = [] { return -1; };
            std::int16_t number = 89;
            FAIL_h(&number);
        },
        status, "^I/O error on internal file:Error: Attempt to write past end of internal file\n$");
    EXPECT_EXIT(
        {
            SET_ERRSTRG_h("stop here   ", 12);
            std::int16_t number = 345;
            FAIL_h(&number);
        },
        status, "^Error: stop here\n$");
    EXPECT_EXIT(
        {
            std::string text(300, 'y');
            ORV2_ERROR_h(text.c_str(), 300);
        },
        status, "^y{253}\n$");
    EXPECT_EXIT(
        {
            const char* types = "a matrix a vector";
            auto at = reinterpret_cast<std::intptr_t>(types);
            FAIL95_hh(393, 8, 8, at, at + 9, 2);
        },
        status, "argument number 2 as a matrix when a vector was expected");
    std::int32_t number = 275;
    EXPECT_EXIT(NT_FAIL_AT(nullptr, nullptr, &number), status,
                "^\\*\\*\\* Error  275, Reference through NULL pointer \n$");
}

TEST(Report, AUserHandlerThatReturnsMeansAbort) {
    EXPECT_EXIT(
        {
            __set_user_failure_handler([](int number) { dprintf(2, "handler %d\n", number); });
            std::int32_t number = 30;
            C_FAIL_h(&number);
        },
        testing::ExitedWithCode(1), "^handler 30\n$");
}

TEST(Report, FilesAreWrittenOutFirst) {
    EXPECT_EXIT(
        {
            hooks().flush_everything = [] { dprintf(2, "flushed\n"); };
            fail(1);
        },
        testing::ExitedWithCode(1), "^flushed\n\\*\\*\\* Error    1, ");
}

TEST(Report, AFailureInsideAFailureTellsBoth) {
    EXPECT_EXIT(
        {
            hooks().flush_everything = [] { fail(117); };
            fail(1);
        },
        testing::ExitedWithCode(1),
        "^\\*\\*\\* Error    1, Floating point arithmetic overflow\n\\*\\*\\* Error  117, Disk "
        "full\n$");
}

TEST(Report, TwoThreadsMakeOneReport) {
    EXPECT_EXIT(
        {
            hooks().flush_everything = [] { usleep(20000); };
            std::thread others[4];
            for (std::thread& other : others) other = std::thread([] { fail(2); });
            others[0].join();
        },
        testing::ExitedWithCode(1), "^\\*\\*\\* Error    2, Integer arithmetic overflow\n[^*]*$");
}

TEST(Report, MayGoToStandardOutput) {
    EXPECT_EXIT(
        {
            frame::ensure_up();
            dup2(2, 1);
            close(2);
            frame::traceback_flags() |= frame::tb_kill_dialogbox;
            fail(2);
        },
        testing::ExitedWithCode(1), "Error    2");
}

TEST(Messages, OfTheSystemAndTheCatalogue) {
    char text[40];
    std::int16_t number = 10002;
    FORTRAN_ERROR_MESSAGE_h(&number, text, 40);
    EXPECT_EQ(std::string(text, 40), "Win32 ERROR: No such file or directory  ");
    number = 1;
    FORTRAN_ERROR_MESSAGE_h(&number, text, 8);
    EXPECT_EQ(std::string(text, 8), "Floating");
}

TEST(ManagedReport, ParametersVanish) {
    ManagedReport report = managed_report("Tarnick.X", "123 went wrong",
                                          "at A.B(Int32 n) in f.f95:line 3\r\n"
                                          "at Tarnick.Fortran.RTLibrary.C(X x) in g:line 4\n"
                                          "at Main\n");
    EXPECT_EQ(report.title, "Orvex exception");
    EXPECT_EQ(report.heading, "Error 123 went wrong");
    EXPECT_EQ(report.stack, "at A.B) in f.f95:line 3\nat Main\n");
    report = managed_report("Other", "text", "at Tarnick.Fortran.RTLibrary.C(X x)");
    EXPECT_EQ(report.title, "Common Language Runtime exception");
    EXPECT_EQ(report.stack, "at Tarnick.Fortran.RTLibrary.C\n");
}

}  // namespace
}  // namespace tarn::failure
