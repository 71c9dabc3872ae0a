#include <chrono>
#include <gtest/gtest.h>

#include "scanner_call.h"
#include "tarn/winio.h"
#include "winio/callbacks.h"

namespace tarn::winio::test {
namespace {

struct scanned {
    const char* format;
    const char* shown;
};

TEST(Scanner, ReducesLiteralTextAndFormatsValues) {
    const double number = 3.14159;
    struct value_case {
        const char* format;
        const char* descriptor;
        std::vector<word> words;
        const char* shown;
    };
    const value_case cases[] = {
        {"100%%&", "", {}, "100%"},
        {"%%&", "", {}, "%"},
        {"a\nb&", "", {}, "a|b"},
        {"[%08.3wf]&", "F", {bits_of(number)}, "[0003.142]"},
        {"%*.*wf&", "IIF", {8, 2, bits_of(number)}, "    3.14"},
        {"%wd and %wx&", "II", {-7, 255}, "-7 and ff"},
        {"%`wx %+wd %-4wd|&", "III", {255, 5, 6}, "FF +5 6   |"},
        {"%#wd&", "I", {3}, "3"},
        {"<%6ws>&", "*C", {text("abc")}, "<   abc>"},
        {"<%-6ws>&", "*C", {text("abc")}, "<abc   >"},
        {"%wc%wc&", "II", {'o', 'k'}, "ok"},
        {"x%we&", "F", {bits_of(1.5)}, "x|1.500000e+00"},
        {"%wf%wd", "FI", {bits_of(1.0), 2}, ""},
    };
    for (const value_case& each : cases) {
        checking check;
        check.call(each.format, each.descriptor, each.words);
        EXPECT_EQ(check.report(), "") << each.format;
        EXPECT_EQ(shown_text(), each.shown) << each.format;
    }
}

TEST(Scanner, ReportsWhatAFormatHasWrong) {
    struct wrong {
        const char* format;
        const char* report;
    };
    const wrong cases[] = {
        {"%", "Missing 2-character format code after '%'"},
        {"%8+wd", "Missing 2-character format code after '%'"},
        {"%r", "Missing 2-character format code after '%'"},
        {"%~?jj", "Unrecognised format code -%~?jj "},
        {"%`nl", "Unexpected use of ` character in 'NL' format"},
        {"%^nl", "Unexpected use of ^ character (call-back specifier)\nin 'NL' format"},
        {"%~ff", "Unexpected use of ~ character (grey control specifier)\nin 'FF' format"},
        {"x%?bf", "Missing help string"},
        {"%ca", "Missing character string for %CA"},
        {"%ca[abc", "Missing ']' in string for %CA"},
        {"%ob text", "Unclosed box"},
        {"%za", "%ZA does not have matching %ZZ."},
        {"%zz", "%ZZ used without %ZA."},
        {"%cw", "Width and height (>1) parameters must be specified for %CW"},
        {"%st", "Size must be specified for string format"},
        {"%tv", "Treeview control must have size"},
        {"%pb", "Missing size information on %n.mPB format"},
        {"%300sb", "Too many %SB parts"},
        {"%mb", "Invalid button count in %MB"},
        {"%eo", "%eo error:Matching %bo is missing."},
        {"%bo%bo", "%bo error:%bo repeated without matching %eo."},
        {"%bo%nl", "%bo/%eo does not currently support this format code."},
        {"%bo%bn[a]%eo%cd[saving]", "%bo/%eo error: Invalid sequence."},
        {"x%sy[3d]", "%SY must come before any controls are created"},
        {"%sy", "%SY must be followed by [style(s)]"},
        {"%qd[name]", "%Q* requires %WI or %WR"},
        {"%wr text", "Unexpected text and/or controls in %WR data"},
        {"%20000001nl%", "Missing 2-character format code after '%'"},
        {"%dt", "%DT can only be used with %DI."},
    };
    for (const wrong& each : cases) {
        checking check;
        EXPECT_EQ(check.reports(each.format), each.report) << each.format;
    }
}

TEST(Scanner, ChecksLimitsOfBoxes) {
    struct limits {
        const char* format;
        const char* descriptor;
        std::vector<word> words;
        const char* report;
    };
    const limits cases[] = {
        {"%il", "II", {5, 5}, "Negative or zero range implied by %IL format."},
        {"%il", "II", {1, 5}, ""},
        {"%fl", "FF", {bits_of(2), bits_of(1)}, "Negative or zero range implied by %FL format."},
        {"%gr", "II", {0, 10}, "Unreasonable graphics dimensions - 0 x 10"},
        {"%gr", "II", {10, 10001}, "Unreasonable graphics dimensions - 10 x 10001"},
        {"%gr", "II", {10000, 1}, ""},
        {"%pr", "*CI", {text("prompt"), 1}, "%PR can only come after %RD, %RF or %RS."},
        {"%wi", "I", {0}, "%WI value must be positive"},
        {"%wi%wi", "II", {1, 2}, "%WI may only be used once for each window"},
    };
    for (const limits& each : cases) {
        checking check;
        EXPECT_EQ(check.reports(each.format, each.descriptor, each.words), each.report)
            << each.format;
    }
}

// ---- Arguments ---------------------------------------------------------------------------------
TEST(ScannerArguments, NamesTheArgumentThatHasTheWrongType) {
    struct wrong {
        const char* format;
        const char* descriptor;
        language in;
        const char* report;
    };
    const wrong cases[] = {
        {"%rd", "*F", c, "Argument number 2 of winio\nshould be an int*"},
        {"%rf", "*I", c, "Argument number 2 of winio\nshould be a double*"},
        {"%rd%rf", "*I*I", c, "Argument number 3 of winio\nshould be a double*"},
        {"%wd", "F", c, "Argument number 2 of winio\nshould be an integer"},
        {"%wf", "I", c, "Argument number 2 of winio\nshould be a double"},
        {"%ca@", "I", c,
         "Argument number 2 of winio\nshould be a character array or a character pointer"},
        {"%rs", "*I", c, "Argument number 2 of winio\nshould be a char*"},
        {"%ls", "*C", c, "Argument number 2 of winio\nshould be a char**"},
        {"%20.3`eb", "*CI*I", c, "Argument number 4 of winio\nshould be a pointer to a structure"},
        {"%uw[class]", "IIII*S", c, "Argument number 6 of winio\nshould be an int*"},
        {"%20.3cw", "*S", c, "Argument number 2 of winio\nshould be a ** pointer to a structure"},
        {"%rd", "*F", fortran, "Argument number 2 of WINIO@ should be a 32 bit integer"},
        {"%wd", "I", fortran, "Argument number 2 of WINIO@ should be an 32 bit integer"},
        {"%rf", "*I", fortran, "Argument number 2 of WINIO@ should be a REAL*8"},
        {"%rd", "", c, "Too few arguments to satisfy winio format"},
        {"%rd", "", fortran, "Too few arguments to satisfy WINIO@ format"},
        {"text", "I", c, "Unused arguments in winio call"},
        {"%wd", "*I*I", fortran, "Unused arguments in WINIO@ call"},
        {"%sc", "*I", c, "Argument number 2 of winio\nshould be a call-back function"},
        {"%ph", "*F", fortran, "Argument number 2 of WINIO@ should be an INTEGER(7)"},
        {"%ph", "F", c, "Argument number 2 of winio\nshould be a pointer"},
        {"%ca@", "*I", fortran,
         "Argument number 2 of WINIO@ should be a character variable or array"},
        {"%rs", "*I", fortran, "Argument number 2 of WINIO@ should be a character variable"},
        {"%20.3`eb", "*C*I*F", fortran, "Argument number 4 of WINIO@ should be an integer array"},
    };
    std::int32_t integer = 1;
    for (const wrong& each : cases) {
        checking check;
        // What each token of the descriptor stands for doesn't matter: the report comes first.
        std::vector<word> words(8, 0);
        if (each.in.fortran) words.assign(8, address(&integer));
        EXPECT_EQ(check.reports(each.format, each.descriptor, words, each.in, {8, 8, 8}),
                  each.report)
            << each.format << " " << each.descriptor;
    }
}

TEST(ScannerArguments, TextsNeedTheTableOfLengths) {
    checking check;
    argument_source source;
    const word name = text("name");
    source.words = &name;
    source.word_count = 1;
    source.lengths = nullptr;
    source.fortran = true;
    winio("%ca@", 4, nullptr, source);
    EXPECT_EQ(check.report(), "Internal error in C_string.");
}

TEST(ScannerArguments, UsesTheTableOfNamesInCheckMode) {
    const char* const names[] = {"count", "rate"};
    checking check(names);
    double real = 1.0;
    EXPECT_EQ(check.reports("%rd", "*F", {address(&real)}, fortran),
              "Argument number 2 (count) of WINIO@ should be a 32 bit integer");
    std::int32_t integer = 1;
    check.call("%rd&", "*I", {address(&integer)}, fortran);
    EXPECT_EQ(check.reports("%rf", "*I", {address(&integer)}, fortran),
              "Argument number 2 (count) of WINIO@(continuation 1) should be a REAL*8");
}

TEST(ScannerArguments, FollowsFortranReferencesAndTrimsTexts) {
    checking check;
    const std::int32_t number = 42;
    const double real = 2.5;
    const char name[] = "Width     ";
    check.call("%wd %4.1wf %ws&   ", "*I*F*C",
               {text(reinterpret_cast<const char*>(&number)),
                text(reinterpret_cast<const char*>(&real)), text(name)},
               fortran, {10});
    EXPECT_EQ(check.report(), "");
    EXPECT_EQ(shown_text(), "42  2.5 Width");
    EXPECT_TRUE(current_window()->flags.fortran);
}

TEST(ScannerArguments, RefusesNumbersThatAreNoDoubles) {
    checking check;
    const float single[] = {1.0F, 1.0F};
    double wrong;
    static_assert(sizeof single == sizeof wrong);
    std::memcpy(&wrong, single, sizeof wrong);
    wrong = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(check.reports("%fl", "*F*F", {address(&wrong), address(&wrong)}, fortran),
              "Invalid number passed to %fl format\nAre you sure it is DOUBLE PRECISION?");
}

TEST(ScannerArguments, TakesTheQueueForTheNextCallOnly) {
    checking check;
    queued_arguments().clear();
    *get_aux_arg_pointer(sizeof(word), "I") = 7;
    *get_aux_arg_pointer(sizeof(word), "F") = bits_of(0.5);
    check.call("%wd %3.1wf&");
    EXPECT_EQ(check.report(), "");
    EXPECT_EQ(shown_text(), "7 0.5");
    EXPECT_TRUE(queued_arguments().empty());
    *get_aux_arg_pointer(sizeof(word), "I") = 7;
    EXPECT_EQ(check.reports("%wd&", "I", {1}), "Arguments already supplied to this winio call");
}

// ---- Calls -------------------------------------------------------------------------------------
TEST(ScannerCalls, AnAmpersandLeavesTheWindowOpenForTheNextCall) {
    checking check;
    EXPECT_EQ(check.call("first &"), -1);
    EXPECT_TRUE(window_is_continued());
    const fancy_window* window = current_window();
    EXPECT_EQ(check.call("&"), -1);
    EXPECT_EQ(check.call("second&"), -1);
    EXPECT_EQ(current_window(), window);
    EXPECT_EQ(shown_text(), "first |second");
    EXPECT_EQ(check.call(""), 0);
    EXPECT_FALSE(window_is_continued());
    EXPECT_EQ(current_window(), nullptr);
}

TEST(ScannerCalls, RefusesToContinueFromAnotherLanguage) {
    checking check;
    check.call("a&", nullptr, {}, fortran);
    EXPECT_EQ(check.reports("b&", nullptr, {}, c),
              "Attempt to continue a formatted window from a different programming language");
}

TEST(ScannerCalls, ANestedWindowKeepsWhatWasBuiltSoFar) {
    checking check;
    check.call("outer %nl&");
    const fancy_window* outer = current_window();
    const std::int32_t row = builder().row;
    EXPECT_EQ(check.call("%exinner &"), -1);
    EXPECT_NE(current_window(), outer);
    check.call("more");
    EXPECT_EQ(current_window(), outer);
    EXPECT_EQ(builder().row, row);
    EXPECT_TRUE(window_is_continued());
    check.call("rest&");
    EXPECT_EQ(shown_text(), "outer |rest");
    EXPECT_EQ(check.report(), "");
}

TEST(ScannerCalls, APassiveWindowTellsItsHookAndGoes) {
    static std::string told;
    const auto hook = [](const char* report) { told = report; };
    set_passive_winio(hook);
    argument_source none;
    none.word_count = 0;
    EXPECT_EQ(winio("ok", 2, "", none), 0);
    EXPECT_EQ(told, "");
    set_passive_winio(hook);
    const std::string wrong = "text %^nl and more%nl&";
    EXPECT_EQ(winio(wrong.data(), wrong.size(), "", none), -1);
    EXPECT_EQ(told, "Unexpected use of ^ character (call-back specifier)\nin 'NL' format");
    EXPECT_EQ(current_window(), nullptr);
    EXPECT_FALSE(window_is_continued());
}

TEST(ScannerCalls, HelpGoesToEveryControlOfItsCode) {
    checking check;
    std::int32_t number = 1;
    check.call("%?rd[How many]&", "*I", {address(&number)});
    EXPECT_EQ(check.report(), "");
    ASSERT_FALSE(controls().empty());
    EXPECT_STREQ(controls()[0]->help, "How many");
    EXPECT_EQ(current_window()->help_width, 8);
    EXPECT_TRUE(current_window()->flags.help_wanted);
}

// ---- The frames of compiled code ----------------------------------------------------------------
TEST(ScannerEntries, FortranBringsItsLengthsBehindTheArguments) {
    char report[check_report_size];
    __winio_check(report, nullptr);
    const std::int32_t number = 7;
    const char format[] = "%ca@%ws %wd&";
    constexpr word rubbish = 0x7FFFFFFF;
    EXPECT_EQ(WINIO_h(4, format, "Title   rest", "name  rest", &number, word{12}, word{8}, word{6},
                      rubbish),
              -1);
    EXPECT_STREQ(report, "");
    EXPECT_STREQ(current_window()->caption, "Title");
    EXPECT_EQ(shown_text(), "name 7");
    EXPECT_EQ(WINDOW_PRINTF_hh("*C*I", 2, "%wd", &number, word{3}), 0);
    EXPECT_STREQ(report, "");
    __winio_check(nullptr, nullptr);
}

TEST(ScannerEntries, ADescriptorBeginsWithTheFormat) {
    char report[check_report_size];
    __winio_check(report, nullptr);
    double number = 0.0;
    __winio__("*C*F", "%rd", &number);
    EXPECT_STREQ(report, "Argument number 2 of WINIO@ should be a 32 bit integer");
    __winio_check(nullptr, nullptr);
    __add_winio_integer(3);
    __winio_check(report, nullptr);
    __winio_check(nullptr, nullptr);  // the end of checking empties the queue
    EXPECT_TRUE(queued_arguments().empty());
}

// ---- Bad input ---------------------------------------------------------------------------------
TEST(ScannerBadInput, HugeFormatsAndNumbersEndSoon) {
    const auto start = std::chrono::steady_clock::now();
    const std::string formats[] = {
        std::string(1000000, 'x'),
        std::string(1000000, '\n'),
        std::string(500000, '%') + "nl",
        "%1000000000nl",
        "%99999999999999999999ta",
        "%ob[" + std::string(1000000, 'a') + "]",
        std::string(300000, '['),
        "%ca[" + std::string(1000000, 'y') + "]",
        "%" + std::string(1000000, '9') + "wd",
    };
    for (const std::string& format : formats) {
        checking check;
        check.call(format, nullptr, {1});
    }
    std::string tabs;
    for (int i = 0; i < 300000; ++i) tabs += "a\t";
    checking check;
    check.call(tabs);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_LT(taken.count(), 20.0);  // a hang, not a measurement
}

}  // namespace
}  // namespace tarn::winio::test
