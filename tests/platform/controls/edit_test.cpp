// Edit fields, driven by what a display delivers and by messages: text, selection, notifications.
#include <gtest/gtest.h>
#include <string>

#include "platform/controls/window.h"

namespace {
using namespace tarn::platform;

constexpr std::uint32_t field_style = WS_BORDER | ES_AUTOHSCROLL;
constexpr std::uint32_t lines_style = WS_BORDER | ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL;

struct Selection {
    std::uint32_t from, to;
    bool operator==(const Selection&) const = default;
};
Selection selection(HWND hwnd) {
    Selection s{};
    send(hwnd, EM_GETSEL, reinterpret_cast<WPARAM>(&s.from), reinterpret_cast<LPARAM>(&s.to));
    return s;
}
std::ostream& operator<<(std::ostream& out, Selection s) {
    return out << s.from << ".." << s.to;
}

// `|` marks the caret, `[` and `]` the selection. Keys by letters:
//   l r u d  arrows      L R U D  with Shift      < >  with Control    { } with both
//   h e      Home, End   H E      with Shift      b x  Backspace, Delete
//   B X      with Control            z y   undo, redo     a c k v  all, copy, cut, paste
//   n        Return                  'text'  typed
void play(const char* script) {
    for (const char* p = script; *p != 0; ++p) {
        switch (*p) {
            case 'l':
                key(VK_LEFT);
                break;
            case 'r':
                key(VK_RIGHT);
                break;
            case 'u':
                key(VK_UP);
                break;
            case 'd':
                key(VK_DOWN);
                break;
            case 'L':
                key(VK_LEFT, mod_shift);
                break;
            case 'R':
                key(VK_RIGHT, mod_shift);
                break;
            case 'U':
                key(VK_UP, mod_shift);
                break;
            case 'D':
                key(VK_DOWN, mod_shift);
                break;
            case '<':
                key(VK_LEFT, mod_control);
                break;
            case '>':
                key(VK_RIGHT, mod_control);
                break;
            case '{':
                key(VK_LEFT, mod_control | mod_shift);
                break;
            case '}':
                key(VK_RIGHT, mod_control | mod_shift);
                break;
            case 'h':
                key(VK_HOME);
                break;
            case 'e':
                key(VK_END);
                break;
            case 'H':
                key(VK_HOME, mod_shift);
                break;
            case 'E':
                key(VK_END, mod_shift);
                break;
            case 'b':
                key(VK_BACK);
                break;
            case 'x':
                key(VK_DELETE);
                break;
            case 'B':
                key(VK_BACK, mod_control);
                break;
            case 'X':
                key(VK_DELETE, mod_control);
                break;
            case 'z':
                key('Z', mod_control);
                break;
            case 'y':
                key('Y', mod_control);
                break;
            case 'a':
                key('A', mod_control);
                break;
            case 'c':
                key('C', mod_control);
                break;
            case 'k':
                key('X', mod_control);
                break;
            case 'v':
                key('V', mod_control);
                break;
            case 'n':
                key(VK_RETURN, 0, "\r");
                break;
            case '\'': {
                const char* end = p + 1;
                while (*end != '\'') ++end;
                type({p + 1, static_cast<std::size_t>(end - p - 1)});
                p = end;
                break;
            }
            default:
                FAIL() << "unknown step " << *p;
        }
    }
}

struct Case {
    const char *before, *script, *text;
    Selection selected;
};

void run(const Case* cases, std::size_t count, std::uint32_t style) {
    for (std::size_t i = 0; i < count; ++i) {
        const Case& c = cases[i];
        SCOPED_TRACE(std::string{c.before} + " : " + c.script);
        const TestWindow w;
        const HWND edit = w.add("edit", "", style, {10, 10, 210, 90});
        send(edit, WM_SETTEXT, 0, c.before);
        SetFocus(edit);
        play(c.script);
        EXPECT_EQ(text_of(edit), c.text);
        EXPECT_EQ(selection(edit), c.selected);
    }
}

TEST(Edit, KeysOnOneLine) {
    const Case cases[] = {
        {"", "'hello'", "hello", {5, 5}},
        {"hello", "e'!'", "hello!", {6, 6}},
        {"hello", "ell'x'", "helxlo", {4, 4}},
        {"hello", "rrx", "helo", {2, 2}},
        {"hello", "rrb", "hllo", {1, 1}},
        {"hello", "RRR", "hello", {0, 3}},
        {"hello", "RRR'j'", "jlo", {1, 1}},
        {"hello", "eLLb", "hel", {3, 3}},
        {"hello", "RRl", "hello", {0, 0}},
        {"hello", "RRr", "hello", {2, 2}},
        {"hello", "ddu", "hello", {1, 1}},
        {"one two  three", ">", "one two  three", {4, 4}},
        {"one two  three", ">>", "one two  three", {9, 9}},
        {"one two  three", "e<<", "one two  three", {4, 4}},
        {"a.b+c", ">>>", "a.b+c", {3, 3}},
        {"one two three", "}", "one two three", {0, 4}},
        {"one two three", "eB", "one two ", {8, 8}},
        {"one two three", "X", "two three", {0, 0}},
        {"one two", "rrrEbz", "one two", {3, 7}},
        // Characters of several bytes go whole.
        {"h\u00E9\u4E2D\U0001F600!", "rrrr", "h\u00E9\u4E2D\U0001F600!", {10, 10}},
        {"h\u00E9\u4E2D\U0001F600!", "elbbb", "h!", {1, 1}},
        {"e\u0301x", "rb", "x", {0, 0}},
        {"", "'h\u00E9\u20AC\u4E2D'", "h\u00E9\u20AC\u4E2D", {9, 9}},
        // Typing is taken back by the run, and comes again.
        {"", "'abc'l'd'z", "abc", {2, 2}},
        {"", "'abc'l'd'zz", "", {0, 0}},
        {"", "'abc'l'd'zzyy", "abdc", {3, 3}},
        {"", "'abc'zz'x'yy", "x", {1, 1}},
        {"abcdef", "xxxz", "abcdef", {0, 0}},
        {"abcdef", "ebbbz", "abcdef", {6, 6}},
        {"abc", "abzz", "abc", {0, 3}},
        // The clipboard.
        {"word", "acev", "wordword", {8, 8}},
        {"word", "akvv", "wordword", {8, 8}},
        {"word", "aken", "", {0, 0}},
    };
    run(cases, std::size(cases), field_style);
}

TEST(Edit, KeysOnManyLines) {
    const Case cases[] = {
        {"", "'ab'n'cd'", "ab\r\ncd", {6, 6}},
        {"x\ny", "en", "x\n\ny", {2, 2}},
        {"ab\r\ncd", "er", "ab\r\ncd", {4, 4}},
        {"ab\r\ncd", "drr", "ab\r\ncd", {6, 6}},
        {"ab\r\ncd", "dhb", "abcd", {2, 2}},
        {"ab\r\ncd", "ex", "abcd", {2, 2}},
        {"ab\r\ncd", "exz", "ab\r\ncd", {2, 2}},
        {"long line\r\nx\r\nlong line", "erlluu", "long line\r\nx\r\nlong line", {0, 0}},
        // Up and Down keep their column over a shorter line.
        {"aaaa\r\na\r\naaaa", "rrrdd", "aaaa\r\na\r\naaaa", {12, 12}},
        {"ab\r\ncd\r\nef", "DD", "ab\r\ncd\r\nef", {0, 8}},
        {"ab\r\ncd\r\nef", "ddd", "ab\r\ncd\r\nef", {10, 10}},
        {"ab\r\ncd", "akvv", "ab\r\ncdab\r\ncd", {12, 12}},
    };
    run(cases, std::size(cases), lines_style);
}

TEST(Edit, WrapsAtWordsAndTellsItsLines) {
    const TestWindow w;
    const HWND edit =
        w.add("edit", "", WS_BORDER | ES_MULTILINE | ES_AUTOVSCROLL, {10, 10, 110, 90});
    const std::string text = "several words that are wrapped\r\nend";
    send(edit, WM_SETTEXT, 0, text.c_str());
    const LRESULT count = send(edit, EM_GETLINECOUNT);
    ASSERT_GT(count, 2);
    std::string together;
    for (LRESULT line = 0; line < count; ++line) {
        const auto start = send(edit, EM_LINEINDEX, static_cast<WPARAM>(line));
        EXPECT_EQ(send(edit, EM_LINEFROMCHAR, static_cast<WPARAM>(start)), line);
        if (line > 0) {
            const char before = text[static_cast<std::size_t>(start) - 1];
            EXPECT_TRUE(before == ' ' || before == '\n') << start;
        }
    }
    // A change makes the lines that setting the text would have made.
    const HWND other =
        w.add("edit", "", WS_BORDER | ES_MULTILINE | ES_AUTOVSCROLL, {10, 100, 110, 180});
    std::uint32_t random = 11;
    const auto next = [&random](std::uint32_t below) {
        random = random * 1664525 + 1013904223;
        return (random >> 8) % below;
    };
    const char* pieces[] = {"",     " ", "word ", "averyveryverylongwordthatfitsnowhere",
                            "\r\n", "x", "-"};
    for (int i = 0; i < 400; ++i) {
        const auto size = static_cast<std::uint32_t>(send(edit, WM_GETTEXTLENGTH));
        const std::uint32_t from = next(size + 1);
        send(edit, EM_SETSEL, from, static_cast<LPARAM>(std::min(size, from + next(12))));
        send(edit, EM_REPLACESEL, 1, pieces[next(std::size(pieces))]);
        send(other, WM_SETTEXT, 0, text_of(edit).c_str());
        ASSERT_EQ(send(edit, EM_GETLINECOUNT), send(other, EM_GETLINECOUNT)) << i;
        for (LRESULT l = 0; l < send(edit, EM_GETLINECOUNT); ++l) {
            ASSERT_EQ(send(edit, EM_LINEINDEX, WPARAM(l)), send(other, EM_LINEINDEX, WPARAM(l)))
                << i;
        }
    }
}

TEST(Edit, TellsItsParentInOrder) {
    const TestWindow w;
    const HWND edit = w.add("edit", "", field_style, {10, 10, 110, 30}, 7);
    const auto taken = [] {
        std::vector<std::int32_t> codes;
        for (const Told& told : heard().commands) {
            EXPECT_EQ(told.id, 7);
            codes.push_back(told.code);
        }
        heard().commands.clear();
        return codes;
    };
    using Codes = std::vector<std::int32_t>;
    const auto update = static_cast<std::int32_t>(EN_UPDATE);
    const auto change = static_cast<std::int32_t>(EN_CHANGE);
    SetFocus(edit);
    EXPECT_EQ(taken(), Codes{EN_SETFOCUS});
    type("a");
    EXPECT_EQ(taken(), (Codes{update, change}));
    send(edit, WM_SETTEXT, 0, "abc");
    EXPECT_EQ(taken(), (Codes{update, change}));
    EXPECT_EQ(send(edit, EM_GETMODIFY), 0);
    EXPECT_EQ(send(edit, EM_CANUNDO), 0);
    send(edit, EM_LIMITTEXT, 4);
    key(VK_END);
    type("de");
    EXPECT_EQ(text_of(edit), "abcd");
    EXPECT_EQ(taken(), (Codes{update, change, EN_MAXTEXT}));
    // A limit counts bytes and splits no character.
    send(edit, EM_LIMITTEXT, 5);
    type("\u00E9");
    EXPECT_EQ(text_of(edit), "abcd");
    EXPECT_EQ(taken(), Codes{EN_MAXTEXT});
    send(edit, EM_REPLACESEL, 1, "\u00E9");
    EXPECT_EQ(text_of(edit), "abcd");
    taken();
    SetFocus(HWND{});
    EXPECT_EQ(taken(), Codes{EN_KILLFOCUS});

    const HWND lines = w.add("edit", "", lines_style, {10, 40, 110, 90}, 7);
    send(lines, WM_SETTEXT, 0, "told of by nobody");
    EXPECT_EQ(taken(), Codes{});
    send(lines, EM_REPLACESEL, 1, "x");
    EXPECT_EQ(taken(), (Codes{update, change}));
}

TEST(Edit, RefusesWhatDoesNotFitWhereItDoesNotScroll) {
    const TestWindow w;
    const HWND edit = w.add("edit", "", WS_BORDER, {10, 10, 44, 30}, 7);
    SetFocus(edit);
    type("888888888888");
    const std::string kept = text_of(edit);
    EXPECT_GE(kept.size(), 3u);
    EXPECT_LE(kept.size(), 5u);
    EXPECT_EQ(heard().commands.back(), (Told{7, static_cast<std::int32_t>(EN_MAXTEXT)}));
    send(edit, WM_SETTEXT, 0, "set by the program, whatever it is");
    EXPECT_EQ(text_of(edit), "set by the program, whatever it is");
}

TEST(Edit, ItsParentMayRewriteOrDestroyItWhileItTells) {
    const TestWindow w;
    const HWND edit = w.add("edit", "", field_style, {10, 10, 110, 30}, 7);
    SetFocus(edit);
    heard().on_command = [](HWND parent, std::int32_t id, std::int32_t code) {
        if (code != static_cast<std::int32_t>(EN_UPDATE)) return;
        heard().on_command = nullptr;
        send(GetDlgItem(parent, id), WM_SETTEXT, 0, "12");
        send(GetDlgItem(parent, id), EM_SETSEL, 100, 100);
    };
    type("x");
    EXPECT_EQ(text_of(edit), "12");
    EXPECT_EQ(selection(edit), (Selection{2, 2}));
    heard().on_command = [](HWND parent, std::int32_t id, std::int32_t code) {
        if (code == static_cast<std::int32_t>(EN_UPDATE)) DestroyWindow(GetDlgItem(parent, id));
    };
    type("y");
    EXPECT_FALSE(IsWindow(edit));
    settle();
}

TEST(Edit, StylesChangeWhatIsTyped) {
    const struct {
        std::uint32_t style;
        const char *typed, *text;
    } cases[] = {
        {ES_UPPERCASE, "aB\u00E9", "AB\u00C9"},
        {ES_LOWERCASE, "aB\u00C9", "ab\u00E9"},
        {ES_NUMBER, "a1b2", "12"},
        {ES_READONLY, "abc", ""},
        {ES_PASSWORD, "abc", "abc"},
    };
    for (const auto& c : cases) {
        const TestWindow w;
        const HWND edit = w.add("edit", "", field_style | c.style, {10, 10, 110, 30});
        SetFocus(edit);
        type(c.typed);
        EXPECT_EQ(text_of(edit), c.text);
        key('A', mod_control);
        set_clipboard_text("before");
        key('C', mod_control);
        std::string clip;
        clipboard_text(clip);
        const bool copies = c.style != ES_PASSWORD && c.text[0] != 0;
        EXPECT_EQ(clip, copies ? c.text : "before");
    }
}

TEST(Edit, ThePointerSelects) {
    const TestWindow w;
    const HWND edit = w.add("edit", "one two three", field_style, {10, 10, 210, 30});
    const auto x = [edit](WPARAM offset) {
        return POINT{GET_X_LPARAM(send(edit, EM_POSFROMCHAR, offset)), 8};
    };
    const auto pause = [] {
        const DWORD until = GetTickCount() + 600;
        while (GetTickCount() < until) settle();
    };
    click(edit, x(5));
    EXPECT_EQ(GetFocus(), edit);
    EXPECT_EQ(selection(edit), (Selection{5, 5}));
    click(edit, x(9), mod_shift);
    EXPECT_EQ(selection(edit), (Selection{5, 9}));
    pause();
    press(edit, x(2));
    move_to(edit, x(6), mod_left);
    release(edit, x(6));
    EXPECT_EQ(selection(edit), (Selection{2, 6}));
    std::string primary;
    EXPECT_TRUE(primary_text(primary));
    EXPECT_EQ(primary, "e tw");
    pause();
    click(edit, x(5));
    click(edit, x(5));
    EXPECT_EQ(selection(edit), (Selection{4, 7}));
    click(edit, x(5));
    EXPECT_EQ(selection(edit), (Selection{0, 13}));
    pause();
    click(edit, x(5));
    press(edit, x(5));
    move_to(edit, x(9), mod_left);
    release(edit, x(9));
    EXPECT_EQ(selection(edit), (Selection{4, 13}));
    set_primary_text("<>");
    click(edit, x(3), 0, 2);
    EXPECT_EQ(text_of(edit), "one<> two three");
}

// A program may show another value while words of the last one are being selected.
TEST(Edit, ATextMayGetShorterUnderTheDraggingPointer) {
    const TestWindow w;
    const HWND edit = w.add("edit", "one two three", field_style, {10, 10, 210, 30});
    click(edit, {60, 8});
    press(edit, {60, 8});  // the second press: words
    send(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("a"));
    move_to(edit, {2, 8}, mod_left);
    release(edit, {2, 8});
    EXPECT_LE(selection(edit).to, 1);
    key(VK_END);
    key(VK_BACK);
    type("b");
    EXPECT_EQ(text_of(edit), "b");
}

TEST(Edit, ALongTextIsEditedInItsMiddle) {
    const TestWindow w;
    const HWND edit = w.add("edit", "", lines_style | WS_VSCROLL, {10, 10, 310, 200});
    std::string text;
    for (int i = 0; i < 100000; ++i) {
        text += "line " + std::to_string(i) + std::string(90, '.') + "\n";
    }
    send(edit, WM_SETTEXT, 0, text.c_str());
    EXPECT_EQ(send(edit, EM_GETLINECOUNT), 100001);
    SetFocus(edit);
    const auto middle = static_cast<WPARAM>(send(edit, EM_LINEINDEX, 50000));
    send(edit, EM_SETSEL, middle, static_cast<LPARAM>(middle));
    send(edit, EM_SCROLLCARET);
    settle();
    for (int i = 0; i < 500; ++i) type("x");
    EXPECT_EQ(send(edit, EM_LINEINDEX, 50001) - static_cast<LRESULT>(middle),
              static_cast<LRESULT>(std::string{"line 50000"}.size() + 90 + 1 + 500));
    send(edit, EM_UNDO);
    EXPECT_EQ(text_of(edit), text);
}

TEST(Edit, OnlyTheChangedStripIsPainted) {
    const TestWindow w;
    const HWND edit = w.add("edit", "several characters", field_style, {10, 10, 210, 30});
    SetFocus(edit);
    send(edit, EM_SETSEL, 8, 8);
    settle();
    send(edit, WM_CHAR, 'x');
    RECT marked;
    ASSERT_TRUE(GetUpdateRect(edit, marked));
    EXPECT_GE(marked.left, GET_X_LPARAM(send(edit, EM_POSFROMCHAR, 7)));
    EXPECT_LE(marked.height(), 16);
}

}  // namespace
