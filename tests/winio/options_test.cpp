#include "winio/options.h"

#include <gtest/gtest.h>

#include "scanner_call.h"
#include "winio/data_entry.h"

namespace tarn::winio::test {
namespace {

// ---- The words of the codes --------------------------------------------------------------------
TEST(Options, EveryCodeWithWordsTellsThem) {
    const char* const codes[] = {"bn", "br", "bv", "cd", "ch", "cl", "co", "cw", "dw", "eb",
                                 "el", "em", "eq", "gr", "he", "ib", "ld", "ls", "lb", "lv",
                                 "lw", "mb", "ms", "ob", "og", "pb", "pl", "ps", "rd", "rf",
                                 "rs", "re", "sb", "sl", "sy", "th", "tv", "tx", "ws", "ww"};
    for (const char* code : codes) {
        const char* const* words = get_quillpan_options(code_of(code[0], code[1]));
        ASSERT_NE(words, nullptr) << code;
        EXPECT_NE(words[0], nullptr) << code;
    }
    EXPECT_EQ(get_quillpan_options(code_of('b', 't')), nullptr);
    EXPECT_EQ(get_quillpan_options(code_of('l', 's')), get_quillpan_options(code_of('l', 'b')));
    // A word is known by its position.
    const char* const* plot = get_quillpan_options(code_of('p', 'l'));
    EXPECT_STREQ(plot[9], "n_graphs=");
    EXPECT_STREQ(plot[55], "buffered");
    EXPECT_EQ(plot[56], nullptr);
    EXPECT_STREQ(get_quillpan_options(code_of('w', 'w'))[27], "shadowed");
}

// ---- Reading one word --------------------------------------------------------------------------
struct word_read {
    const char* list;
    std::vector<std::int32_t> positions;  // -1 and 0 end
    const char* value;                    // of the last one
    const char* rest;
};

TEST(Options, ReadsWordsAndTheirValues) {
    const word_read cases[] = {
        {"[hscrollbar , extended]x", {1, 2, 0}, "", "x"},
        {"[HScrollBar,Extended]", {1, 2, 0}, "", ""},
        {"[ no-box ]", {7, 0}, "", ""},
        {"[height= 20]", {6, 0}, "20", ""},
        {"[height='a,b]c']!", {6, 0}, "a,b]c", "!"},
        {"[height=\"a b  \" ,confirm]", {6, 9, 0}, "a b", ""},
        {"[height=*,hover]", {6, 8, 0}, "*", ""},
        {"[hover confirm]", {8, 9, 0}, "", ""},
        {"[,,hover,]", {8, 0}, "", ""},
        {"[]", {0}, "", ""},
        {"[height =20]", {-1}, "", " =20]"},
    };
    const char* const* words = get_quillpan_options(code_of('l', 's'));
    for (const word_read& each : cases) {
        checking check;
        option_value().clear();
        const char* cursor = each.list;
        std::vector<std::int32_t> positions;
        do {
            positions.push_back(get_format_option(cursor, words, "%LS", false));
        } while (positions.back() > 0);
        EXPECT_EQ(positions, each.positions) << each.list;
        EXPECT_EQ(option_value(), each.value) << each.list;
        EXPECT_STREQ(cursor, each.rest) << each.list;
    }
}

TEST(Options, ReportsWordsAndListsThatAreWrong) {
    struct wrong {
        const char* format;
        const char* report;
    };
    const wrong cases[] = {
        {"%ww[maximised]", "[maximised] is an invalid %WW option"},
        {"%ww[-topmost]", "[topmost] is an invalid %WW option"},
        {"%ww[topmost", "A %WW option list has not been terminated with a closing square bracket"},
        {"%ww[topmost,", "A %WW option list has not been terminated with a closing square bracket"},
        {"%em[height='20]", "Unterminated quoted string in option parameter"},
        {"%em[height=7]", "Height in %EM[height=v] is out of range."},
        {"%em[height=81]", "Height in %EM[height=v] is out of range."},
        {"%co[half_check]", "[half_check] is an invalid %CO option"},
        {"%th[scaling=8]", "%TH scaling out of range."},
        {"%ob[no_border,panelled]%cb",
         "The no_border box option is inconsistent with other options specified"},
        {"%ob[panelled,rounded]%cb", "Only simple and scored boxes can be rounded"},
        {"%ob[status,rounded]%cb", "Status and invisible boxes can not be rounded"},
        {"%ob[raised,thin_margin]%cb", "Only simple boxes can have a thin margin"},
        {"%ob[invisible,thin_margin]%cb", "Status and invisible boxes can not have a thin margin"},
        {"%ob[scored,line_colour]%cb", "Only simple boxes can be coloured"},
        {"%ob[invisible,line_colour]%cb", "Invisible boxes can not be coloured"},
        {"%bg[ff]", "The colour FF is not recognised"},
        {"%bg[red", "Invalid colour specification"},
        {"%bn", "Missing caption for %bn."},
        {"%bn[OK,default]", "[default] is an invalid %BN option"},
        {"%cd[filter=text]", "Missing '(*.' in %cd[filter]."},
        {"%cd[title=x]%nl",
         "The format code must not change with successive calls to winio@('%cd')"},
    };
    for (const wrong& each : cases) {
        checking check;
        EXPECT_EQ(check.reports(each.format, nullptr, {1, 1}), each.report) << each.format;
    }
}

TEST(Options, ChecksTheOptionsOfBoxesAndLists) {
    std::int32_t integer = 0;
    double real = 0.0;
    char characters[20] = "";
    const char* const table[] = {"one", "two", nullptr};
    const word list = address(table), number = address(&integer), value = address(&real);
    const word buffer = address(characters);
    const struct {
        const char* format;
        const char* descriptor;
        std::vector<word> words;
        const char* report;
    } cases[] = {
        {"%rd[radix=16]", "*I", {number}, ""},
        {"%rd[radix=37]", "*I", {number}, "%RD radix out of range."},
        {"%rd[fmt=f]", "*I", {number}, "[fmt] is an invalid %RD control option."},
        {"%rf[radix=2]", "*F", {value}, "[radix] is an invalid %RF control option."},
        {"%rf[fmt=5.2f]", "*F", {value}, "%rf[fmt] requires %co[check_on_focus_loss]"},
        {"%co[check_on_focus_loss]%rf[fmt=5.2f]", "*F", {value}, ""},
        {"%co[check_on_focus_loss]%rf[fmt=s]", "*F", {value}, "Invalid [fmt] specifier for %RF."},
        {"%co[check_on_focus_loss]%rf[fmt='f%n']",
         "*F",
         {value},
         "Invalid [fmt] specifier for %RF."},
        {"%rs[centre_text,right_text]",
         "*CI",
         {buffer, 20},
         "You have already selected centre_text."},
        {"%rs[right_text,centre_text]",
         "*CI",
         {buffer, 20},
         "You have already selected right_text."},
        {"%ls[height=7]", "**C*I", {list, number}, "%ls[height=v] v out of range."},
        {"%ls[height=81]", "**C*I", {list, number}, "%ls[height=v] v out of range."},
        {"%ls[height=*]", "I**C*I", {0, list, number}, ""},
        {"%ls[height=*]", "I**C*I", {5, list, number}, "%ls[height=*] value out of range."},
        {"%ls[vertical_fill=4]", "**C*I", {list, number}, "%ls vertical_fill value out of range."},
        {"%ls[vertical_fill=*]", "F**C*I", {bits_of(0.5), list, number}, ""},
        {"%ls[font_pitch=4]", "**C*I", {list, number}, "%ls[font_pitch=v] v out of range."},
        {"%ls[font_set=256]", "**C*I", {list, number}, "%ls[font_set=v] v out of range."},
        {"%ls[icons,colors]", "**C*I", {list, number}, "%LS cannot have both colors and icons."},
        {"%`ls[hover]", "**C*I", {list, number}, "The [hover] option is not available with %`LS"},
        {"%`ls[limit_height]",
         "**C*I",
         {list, number},
         "[limit_height] cannot be used with a grave accent and %ls."},
        {"%ls[limit_height]", "**C*IF", {list, number, bits_of(0.5)}, ""},
        {"%ms[height=7]", "**C*I", {list, number}, "%ms[height=v] v out of range."},
        {"%el[font_pitch=9]", "**C*CI", {list, buffer, 20}, "%el[font_pitch=v] v out of range."},
        {"%gr[red,blue]", "II", {10, 10}, "Graphics background colour already defined."},
        {"%dw[red,blue]", "I", {0}, "Graphics background colour already defined"},
        {"%gr[user_resize,metafile_resize]",
         "II",
         {10, 10},
         "A graphics box cannot be resized by both user and metafile"},
        {"%og[gibber]", "II", {10, 10}, "Gibber is an invalid graphics option"},
        {"%10br[percentage,top_bottom][red]",
         "*F",
         {value},
         "Percentage option only permitted on horizontal bars"},
        {"%pl[user_drawn,margin=(1,2,3,4)]", "II", {10, 10}, ""},
        {"%pl[user_drawn,margin=(1,2,3)]",
         "II",
         {10, 10},
         "Invalid margin value in %PL specification"},
        {"%pl[user_drawn,link=chain]", "II", {10, 10}, "Invalid link value in %PL specification"},
        {"%pl[user_drawn,symbol=14]", "II", {10, 10}, "Invalid symbol value in %PL specification"},
        {"%pl[user_drawn,plain]", "II", {10, 10}, "[plain] is an invalid %PL option"},
        {"%pl[user_drawn,graph=11]", "II", {10, 10}, "Invalid graph value in %PL specification"},
        {"%cd[file,maxfiles]", "*CII", {buffer, 20, 2}, "[maxFiles] must precede [file] for %cd"},
    };
    for (const auto& each : cases) {
        checking check;
        EXPECT_EQ(check.reports(each.format, each.descriptor, each.words), each.report)
            << each.format;
    }
}

// ---- What the words do -------------------------------------------------------------------------
TEST(Options, HelpAndOptionsShareABracket) {
    checking check;
    std::int32_t number = 0;
    check.call("%?rd[wide][Width]&", "*I", {address(&number)});
    check.call("%?rd[Height]&", "*I", {address(&number)});
    EXPECT_EQ(check.report(), "");
    ASSERT_EQ(controls().size(), 2U);
    EXPECT_TRUE(controls()[0]->flags.wide);
    EXPECT_STREQ(controls()[0]->help, "Width");
    EXPECT_FALSE(controls()[1]->flags.wide);
    EXPECT_STREQ(controls()[1]->help, "Height");
}

TEST(Options, WindowWordsSetTheWindow) {
    checking check;
    check.call("%ww[no_caption, thin-border,Casts_Shaddow]&");
    const fancy_window& window = *current_window();
    EXPECT_FALSE(window.flags.caption);
    EXPECT_FALSE(window.flags.modal);
    EXPECT_TRUE(window.flags.casts_shadow);
    EXPECT_EQ(window.margin_left, 5);
    check.call("%co[warn_on_update,limit_on_update,read_only]&");
    EXPECT_EQ(window.update_policy, 14U);
    check.call("%`co&");
    EXPECT_EQ(window.update_policy, 0U);
    EXPECT_FALSE(window.flags.read_only);
}

TEST(Options, TheRestOfAListBehindAnInvalidWordIsText) {
    checking check;
    check.call("%ww[wrong,topmost]&");
    EXPECT_EQ(check.report(), "[wrong] is an invalid %WW option");
    EXPECT_FALSE(current_window()->flags.topmost);
    EXPECT_EQ(shown_text(), ",topmost]");
}

TEST(Options, FindsColoursByNameAndNumber) {
    struct colour_case {
        const char* name;
        COLORREF colour;
    };
    const colour_case cases[] = {{"#FF0000", 0x0000FF},      {"#0a0B0c", 0x0C0B0A},
                                 {"red", 0x0000FF},          {"Blue", 0xFF0000},
                                 {"grey", 0xC0C0C0},         {"black", 0},
                                 {"button", dialog_colour()}};
    checking check;
    for (const colour_case& each : cases) {
        EXPECT_EQ(get_quillpan_colour(each.name), each.colour) << each.name;
    }
    EXPECT_EQ(get_quillpan_colour("mauve"), no_colour);
    EXPECT_EQ(check.report(), "The colour MAUVE is not recognised");
}

TEST(Options, SizesOfTextComeInBracketsOrAsAnArgument) {
    struct size_case {
        const char* text;
        double size;  // 0: none
    };
    const size_case cases[] = {{"[1.5]", 1.5}, {"[2]x", 2.0}, {"[1e0]", 1.0}, {"[0.1]", 0},
                               {"[10]", 0},    {"[-1]", 0},   {"[1.5", 0},    {"1.5", 0}};
    for (const size_case& each : cases) {
        const char* cursor = each.text;
        double size = 0.0;
        EXPECT_EQ(get_float(cursor, size), each.size != 0.0) << each.text;
        EXPECT_EQ(size, each.size) << each.text;
    }
}

TEST(Options, PreloadedOptionsGoToTheNextCode) {
    checking check;
    check.call("%bo%bn[text='From before',return=9]%eo%bn[split]&");
    EXPECT_EQ(check.report(), "");
    ASSERT_EQ(controls().size(), 1U);
    const auto* button = static_cast<const Xbutton*>(controls()[0]->block);
    EXPECT_STREQ(button->caption, "From before");
    EXPECT_EQ(button->return_value, 9);
    EXPECT_EQ(button->flags & 2, 2U);
    check.call("%bn[[return=4]]%bn[Go on]&");
    EXPECT_EQ(check.report(), "");
    ASSERT_EQ(controls().size(), 2U);
    button = static_cast<const Xbutton*>(controls()[1]->block);
    EXPECT_EQ(button->return_value, 4);
    EXPECT_STREQ(button->caption, "Go on");
}

TEST(Options, WinopChecksItsText) {
    struct wrong {
        const char* text;
        const char* report;
    };
    const wrong cases[] = {
        {"bn[x]", "Format code bn[x] must start with '%'"},
        {"%b", "Missing 2-character format code after '%'"},
        {"%bn", "Missing '[' after format code %bn in call to WINOPTS@"},
        {"%ls[hover]", "WINOPTS@ does not currently support %ls"},
        {"%bn[x] y", "Unexpected characters \"y\" in call to WINOPTS@"},
        {"%bn[x]  ", ""},
    };
    for (const wrong& each : cases) {
        char report[check_report_size];
        winio_check(report, nullptr, false);
        winop(each.text);
        EXPECT_STREQ(report, each.report) << each.text;
        std::free(get_preloaded_block(control_type::option_button));
        winio_check(nullptr, nullptr, false);
    }
}

TEST(Options, StylesWaitForTheNextWindow) {
    struct style_case {
        const char* format;
        const char* report;
    };
    const style_case cases[] = {
        {"%rd", "Inaddmissible format code 'RD' for call to winstyle@"},
        {"red", "% expected in call to winstyle@"},
        {"%ww[wide]", "[wide] is an invalid %WW option"},
        {"%bg[red]%it&", ""},
    };
    building().style_format.clear();
    for (const style_case& each : cases) {
        char report[check_report_size];
        winio_check(report, nullptr, false);
        building().style_format.clear();
        winstyle(each.format);
        EXPECT_STREQ(report, each.report) << each.format;
        winio_check(nullptr, nullptr, false);
    }
    checking check;
    check.call("text&");
    EXPECT_EQ(current_window()->background, 0x0000FFU);
    EXPECT_EQ(current_window()->font_spec.lfItalic, 1);
    EXPECT_EQ(shown_text(), "text");
    building().style_format.clear();
}

}  // namespace
}  // namespace tarn::winio::test
