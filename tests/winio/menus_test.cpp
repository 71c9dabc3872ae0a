// Menus of formats and keys: the lists that are read, what they build, and what a choice runs.
#include "platform/user/menus.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "form.h"
#include "scanner_call.h"
#include "winio/callbacks.h"
#include "winio/menus.h"

namespace tarn::winio::test {
namespace {

using namespace platform;

std::vector<std::string> chosen;

std::int32_t note_choice() {
    chosen.emplace_back(quillpan_string("CURRENT_MENU_ITEM"));
    return 2;
}

std::int32_t grey_and_checked() {
    return 2;  // not enabled, checked
}

// A menu as text: captions, sub-menus in brackets, marks for grey and checked items.
std::string shape(HMENU menu) {
    std::string out;
    for (std::int32_t i = 0; i < GetMenuItemCount(menu); ++i) {
        if (i > 0) out += ',';
        const UINT state = GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION);
        if ((state & MF_SEPARATOR) != 0) out += '|';
        if ((state & MF_CHECKED) != 0) out += '#';
        if ((state & MF_GRAYED) != 0) out += '~';
        out += menu_text(menu, i);
        if (const HMENU sub = GetSubMenu(menu, i)) out += '[' + shape(sub) + ']';
    }
    return out;
}

TEST(Keys, HaveNames) {
    const struct {
        const char* name;
        std::int32_t code;
    } cases[] = {
        {"a", 'A'},
        {"Ctrl+S", 0x253},
        {"alt+ctrl+x", 0x358},
        {"ctrl-alt_x", 0x358},
        {"ctrl+m", 0x20D},
        {"ctrl+h", 0x208},
        {"f10", 0x79},
        {"F10", 0x79},
        {"shift+f1", 0x470},
        {"enter", 0x0D},
        {"ESC", 0x1B},
        {"pgdn", 0x22},
        {"space", 0x20},
        {"keypad_centre", 0x0C},
        {"f13", 0},
        {"", 0},
    };
    for (const auto& c : cases) EXPECT_EQ(char_from_name(c.name, false), c.code) << c.name;
}

TEST(Menus, PlainListsBuildBarsAndPopups) {
    static std::int32_t control, grey = 0, check = 1;
    form("%ca[Menus]%mn[Help,&File[&Open,~Save^Ctrl+S, | ,100%%]]&", "*E*E*I*E*E",
         {w(note_choice), w(note_choice), w(&grey), w(note_choice), w(note_choice)});
    form("%mn[[Late]]%mn[View[#Big,^State]]&", "*E*I*E*E*E",
         {w(note_choice), w(&check), w(note_choice), w(grey_and_checked), w(note_choice)});
    form("%pm[Cut,Copy]text%lw", "*E*E*I", {w(note_choice), w(note_choice), w(&control)});
    fancy_window* window = newest();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(shape(window->menu),
              "Help,&File[&Open,~Save\tCtrl+S,|,100%,Late],View[#Big,#~State]");
    EXPECT_EQ(shape(window->popup_menu), "Cut,Copy");

    // A choice runs its call-back with its text; a grey item does nothing, not by its key either.
    const HMENU file = GetSubMenu(window->menu, 1);
    chosen.clear();
    for (const std::int32_t item : {0, 1, 3})
        PostMessageA(window->hwnd, WM_COMMAND, GetMenuItemID(file, item), 0);
    settle();
    EXPECT_EQ(chosen, (std::vector<std::string>{"&Open", "100%"}));
    grey = 1;
    window_update(&grey);
    settle();
    EXPECT_EQ(GetMenuState(file, 1, MF_BYPOSITION) & MF_GRAYED, 0U);

    // Items come and go while the window is open.
    const std::int32_t added = add_menu_item(file, "Recent", nullptr, nullptr, note_choice);
    EXPECT_EQ(menu_text(file, 5), "Recent");
    chosen.clear();
    PostMessageA(window->hwnd, WM_COMMAND, static_cast<WPARAM>(added), 0);
    settle();
    EXPECT_EQ(chosen, std::vector<std::string>{"Recent"});
    EXPECT_TRUE(remove_menu_item(added));
    EXPECT_FALSE(remove_menu_item(added));
    EXPECT_EQ(GetMenuItemCount(file), 5);

    control = 0;
    window_update(&control);
    settle();
    EXPECT_FALSE(IsMenu(file));
}

TEST(Menus, OfAnOpenWindowAreReplacedOverSeveralCalls) {
    static std::int32_t control, hwnd;
    form("%ca[Old]%mn[Old[Gone]]%hw%lw", "*E*I*I", {w(note_choice), w(&hwnd), w(&control)});
    fancy_window* window = newest();
    settle();
    EXPECT_EQ(form("%nw&", "I", {hwnd}), -1);
    EXPECT_EQ(form("%mn[New[One]]&", "*E", {w(note_choice)}), -1);
    EXPECT_EQ(form("%mn[[Two]]", "*E", {w(note_choice)}), -1);
    EXPECT_EQ(shape(window->menu), "New[One,Two]");
    chosen.clear();
    PostMessageA(window->hwnd, WM_COMMAND, GetMenuItemID(GetSubMenu(window->menu, 0), 1), 0);
    settle();
    EXPECT_EQ(chosen, std::vector<std::string>{"Two"});
    EXPECT_EQ(newest(), window);

    // Items of a resource are known by its numbers; a command has its call-back by %rc.
    window->menu_items->resource_id = 7;  // "Two"
    insert_menu_item("Before\tCtrl+B", 8, 7);
    insert_menu_item(nullptr, 0, 7);
    insert_menu_item("Last", 7, 7);
    insert_menu_item("Nowhere", 9, 99);
    EXPECT_EQ(shape(window->menu), "New[One,Before\tCtrl+B,|,Last]");
    control = 0;
    window_update(&control);
    settle();
}

// The Enter and the Escape key send the commands 1 and 2, which are items there.
TEST(Menus, KeysDontChooseItemsOfEnhancedMenus) {
    static std::int32_t control;
    form("%ca[Enhanced]%`mn%^bt[OK]%lw", "*C*E*C*I",
         {w("[One,Two]"), w(note_choice), w("CONTINUE"), w(&control)});
    fancy_window* window = newest();
    ASSERT_NE(window, nullptr);
    chosen.clear();
    const HWND button = nth(window, control_type::button)->hwnd;
    SetFocus(button);
    for (const int key : {VK_ESCAPE, VK_RETURN}) PostMessageA(button, WM_KEYDOWN, WPARAM(key), 0);
    settle();
    EXPECT_TRUE(chosen.empty());
    for (const std::int32_t item : {0, 1})
        PostMessageA(window->hwnd, WM_COMMAND, GetMenuItemID(window->enhanced_menu, item), 0);
    settle();
    EXPECT_EQ(chosen, (std::vector<std::string>{"One", "Two"}));
    close_all();
}

TEST(Menus, HelpIsReadWhereNoMenuIsBuilt) {
    checking check;
    const char text[] = "help";
    check.call("%?mn[A,B[C,|]]@@[x]&", "*E*E*C*C",
               {w(note_choice), w(note_choice), w(text), w(text)});
    EXPECT_EQ(check.report(), "");
}

TEST(Menus, EnhancedDefinitionsAreOneText) {
    static std::int32_t control;
    form("%ca[Enhanced]%`mntext%lw", "*C*E*I",
         {w("[File[-ch Open, -se, -gr Close[-rc Now, Later]],Help]"), w(note_choice), w(&control)});
    fancy_window* window = newest();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(shape(window->enhanced_menu), "File[#Open,|,~Close[#Now,Later]],Help");
    EXPECT_STREQ(enhanced_text(window->enhanced_paths, 2), "File~Open");
    EXPECT_STREQ(enhanced_text(window->enhanced_paths, 6), "File~Close~Later");
    EXPECT_EQ(enhanced_text(window->enhanced_paths, 8), nullptr);
    chosen.clear();
    PostMessageA(window->hwnd, WM_COMMAND, 6, 0);
    settle();
    EXPECT_EQ(chosen, std::vector<std::string>{"File~Close~Later"});
    control = 0;
    window_update(&control);
    settle();
}

TEST(MenuDefinitions, ThatCannotBeReadEndTheProgram) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"File", "Syntax error in enhanced menu"},
        {"[File", "Brackets not paired in enhanced menu definition"},
        {"[File,,Help]", "Comma found where not expected in enhanced menu definition"},
        {"[File] x", "Enhanced menu definition does not end correctly"},
        {"[-xx File]", "Unrecognised option in enhanced menu definition"},
        {"[-he File]", "-he must be folowed by"},
        {"[-he[ File]", "Brackets not paired"},
        {"[-he[ File", "Closing '.' missing on -he in enhanced menu definition"},
        {"[-bm disk]", "Missing '.' after -bm in enhanced menu definition"},
        {"[-bm[disk", "Brackets not paired in enhanced menu definition"},
        {"[File[Open] Help]", "Syntax error in enhanced menu"},
        {"[File\nHelp]", "Syntax error in enhanced menu"},
    };
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (const auto& c : cases)
        EXPECT_EXIT(form("%`mn&", "*C*E", {w(c.text), w(note_choice)}), testing::ExitedWithCode(1),
                    c.message)
            << c.text;
    const struct {
        const char* format;
        const char* message;
    } lists[] = {
        {"%mn[,x]&", "Invalid menu - missing name"},
        {"%mn[A[B]&", "Square brackets not paired in MN format"},
        {"%mn[A& B]&", "followed by an illegal character in string - 'A& B'"},
        {"%mn[|]&", "Menu separator not permitted at the top level"},
        {"%mn[#A]&", "Attempt to check a menu item in the menu bar"},
    };
    for (const auto& c : lists)
        EXPECT_EXIT(form(c.format, nullptr, {0, 0, 0, 0}), testing::ExitedWithCode(1), c.message)
            << c.format;
}

}  // namespace
}  // namespace tarn::winio::test
