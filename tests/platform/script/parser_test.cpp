// Which lines a script may have, and what is said about the others.
#include "platform/script/parser.h"

#include <gtest/gtest.h>

#include "platform/display/keys.h"
#include "platform/script/targets.h"

namespace tarn::platform {
namespace {

// The one line, or what is wrong with it.
std::string parsed(const std::string& text, ScriptLine& line) {
    std::vector<ScriptLine> lines;
    ScriptMistake mistake;
    if (!parse_script(text, lines, mistake)) return mistake.what;
    if (lines.size() != 1) return std::to_string(lines.size()) + " lines";
    line = lines[0];
    return "";
}

TEST(ScriptParserTest, ReadsTargets) {
    ScriptLine line;
    ASSERT_EQ(parsed(R"(  click "O\"K\\\t" # all right)", line), "");
    EXPECT_EQ(line.command, Command::click);
    EXPECT_EQ(line.target.name, "O\"K\\\t");
    EXPECT_EQ(line.source, R"(click "O\"K\\\t" # all right)");
    ASSERT_EQ(parsed("double click #12 3,-4", line), "");
    EXPECT_EQ(line.command, Command::double_click);
    EXPECT_EQ(line.target.number, 12);
    EXPECT_TRUE(line.target.has_offset);
    EXPECT_EQ(line.target.offset, (POINT{3, -4}));
    ASSERT_EQ(parsed("drag 10,20 to \"B\" 1,2", line), "");
    EXPECT_EQ(line.target.kind, Target::Kind::point);
    EXPECT_EQ(line.target.offset, (POINT{10, 20}));
    EXPECT_EQ(line.other.name, "B");
    EXPECT_EQ(line.other.offset, (POINT{1, 2}));
    ASSERT_EQ(parsed("wheel \"List\" -3\r\n\n# nothing\n", line), "");
    EXPECT_EQ(line.first, -3);
}

TEST(ScriptParserTest, ReadsTheOtherArguments) {
    ScriptLine line;
    struct {
        const char* text;
        Command command;
        std::int32_t first, second;
        std::size_t texts;
    } cases[] = {
        {"wait idle", Command::wait_idle, 0, 0, 0},
        {"wait 200ms", Command::wait, 200, 0, 0},
        {"wait 1.5s", Command::wait, 1500, 0, 0},
        {"key Tab", Command::key, 1, 0, 0},
        {"key Ctrl+Shift+End 3", Command::key, 3, 0, 0},
        {"resize 300 200", Command::resize, 300, 200, 0},
        {"move -5 +7", Command::move, -5, 7, 0},
        {"window", Command::window, 0, 0, 0},
        {"window \"A*\"", Command::window, 0, 0, 1},
        {"menu \"File\" \"Recent\" \"a.txt\"", Command::menu, 0, 0, 3},
        {"expect value #1 \"\"", Command::expect_value, 0, 0, 1},
        {"expect text \"Done\"", Command::expect_text, 0, 0, 1},
        {"expect text \"State\" \"Done\"", Command::expect_text, 0, 0, 1},
        {"expect not checked \"On\"", Command::expect_not_checked, 0, 0, 0},
        {"expect no window \"W\"", Command::expect_no_window, 0, 0, 1},
        {"close", Command::close, 0, 0, 0},
    };
    for (auto& c : cases) {
        line = {};
        EXPECT_EQ(parsed(c.text, line), "") << c.text;
        EXPECT_EQ(line.command, c.command) << c.text;
        EXPECT_EQ(line.first, c.first) << c.text;
        EXPECT_EQ(line.second, c.second) << c.text;
        EXPECT_EQ(line.texts.size(), c.texts) << c.text;
    }
}

TEST(ScriptParserTest, NamesWhatIsWrong) {
    struct {
        const char* text;
        const char* what;
    } cases[] = {
        {"clack \"OK\"", "there is no command clack"},
        {"\"OK\"", "there is no command \"OK\""},
        {"expect", "there is no command expect"},
        {"expect size 3", "there is no command expect"},
        {"click", "a control's name in quotes, its #number or a point X,Y is missing"},
        {"click OK", "a control's name in quotes, its #number or a point X,Y is missing before OK"},
        {"click #0", "a control's name in quotes, its #number or a point X,Y is missing before #0"},
        {"click \"OK\" 1,2 3", "nothing can stand here any more: 3"},
        {"click \"OK", "a text has no closing quote"},
        {"click \"OK\"5,5", "a blank is missing behind a text"},
        {"type \"\\x\"", "after a \\ in a text only n, t, \\ and \" can stand"},
        {"type \"a\\", "after a \\ in a text only n, t, \\ and \" can stand"},
        {"type abc", "a text in quotes is missing before abc"},
        {"key Ctrl+", "a key like Tab, F5 or Ctrl+A is missing before Ctrl+"},
        {"key Hyper+A", "a key like Tab, F5 or Ctrl+A is missing before Hyper+A"},
        {"key F25", "a key like Tab, F5 or Ctrl+A is missing before F25"},
        {"key Tab 0", "a key can be struck from 1 to 1000 times"},
        {"drag \"A\" \"B\"", "the word \"to\" is missing before \"B\""},
        {"wheel \"A\"", "a number is missing"},
        {"wheel \"A\" 0", "the wheel turns by 1 to 1000 notches, down with a minus"},
        {"wait", "\"idle\" or a time like 200ms or 2s is missing"},
        {"wait 5", "\"idle\" or a time like 200ms or 2s is missing before 5"},
        {"wait 1e3s", "\"idle\" or a time like 200ms or 2s is missing before 1e3s"},
        {"wait 99999999999999999999s",
         "\"idle\" or a time like 200ms or 2s is missing before 99999999999999999999s"},
        {"resize 0 5", "a size is above zero"},
        {"move 99999999999 1", "a number is missing before 99999999999"},
        {"focus 3,4", "a control is meant here, not a point"},
        {"expect text #3", "a text in quotes is missing"},
        {"menu", "a text in quotes is missing"},
    };
    ScriptLine line;
    for (auto& c : cases) EXPECT_EQ(parsed(c.text, line), c.what) << c.text;

    std::vector<ScriptLine> lines;
    ScriptMistake mistake;
    EXPECT_FALSE(parse_script("close\n\n  wrong  \n", lines, mistake));
    EXPECT_EQ(mistake.line, 3);
    EXPECT_EQ(mistake.source, "wrong");
}

TEST(ScriptKeysTest, KeysHaveNamesAndCharacters) {
    struct {
        const char* name;
        std::int32_t code;
        std::uint32_t modifiers;
        char32_t character;
    } cases[] = {
        {"Tab", VK_TAB, 0, 0},
        {"tab", VK_TAB, 0, 0},
        {"a", 'A', 0, U'a'},
        {"A", 'A', mod_shift, U'A'},
        {"Ctrl+A", 'A', mod_control, U'a'},
        {"ctrl+shift+a", 'A', mod_control | mod_shift, U'A'},
        {"Ctrl++", VK_OEM_PLUS, mod_control | mod_shift, U'+'},
        {"Ctrl+-", VK_OEM_MINUS, mod_control, U'-'},
        {"+", VK_OEM_PLUS, mod_shift, U'+'},
        {"Alt+F4", VK_F4, mod_alt, 0},
        {"F24", VK_F1 + 23, 0, 0},
        {"Num7", VK_NUMPAD0 + 7, 0, U'7'},
        {"Space", VK_SPACE, 0, U' '},
        {"\xC3\xA9", 0, 0, U'\u00E9'},
        {"(", '9', mod_shift, U'('},
    };
    for (auto& c : cases) {
        Key key;
        ASSERT_TRUE(parse_key(c.name, key)) << c.name;
        EXPECT_EQ(key.code, c.code) << c.name;
        EXPECT_EQ(key.modifiers, c.modifiers) << c.name;
        EXPECT_EQ(key.character, c.character) << c.name;
        EXPECT_FALSE(key.is_modifier) << c.name;
    }
    Key key;
    ASSERT_TRUE(parse_key("Shift", key));
    EXPECT_TRUE(key.is_modifier);
    for (const char* wrong : {"", "+A", "Tab+A", "Ctrl+Tabb", "F0", "F1x", "Num", "ab"})
        EXPECT_FALSE(parse_key(wrong, key)) << wrong;
}

TEST(ScriptNamesTest, TitlesAndLabelsAreComparedAsUsersReadThem) {
    EXPECT_TRUE(title_matches("Loan", "Loan"));
    EXPECT_FALSE(title_matches("Loan", "Loa"));
    EXPECT_TRUE(title_matches("Loan 12 of 13", "Loan * of *"));
    EXPECT_TRUE(title_matches("", "*"));
    EXPECT_FALSE(title_matches("ab", "*a"));
    EXPECT_TRUE(title_matches("aab", "*ab"));
    EXPECT_EQ(plain_label("&Save && quit: "), "Save & quit");
    EXPECT_EQ(plain_label("a&"), "a&");
    EXPECT_EQ(quoted("a\"b\\\n"), "\"a\\\"b\\\\\\n\"");
}

}  // namespace
}  // namespace tarn::platform
