// Scripts played on a program with windows, each in a process of its own: the log of what reached
// the program, or the message that ended it.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/script/script.h"
#include "platform/user/menus.h"
#include "platform/user/user.h"

namespace tarn::platform {
namespace {

enum : std::int32_t { id_area = 10, id_name, id_check, id_list, id_ok, id_grey, id_later, id_open };

struct Program {
    std::string log;
    HWND main{}, area{}, check{};
    DWORD pressed = 0;
};
Program& program() {
    static Program all;
    return all;
}

void note(const std::string& what) {
    program().log += what + ";";
}

LRESULT procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_COMMAND:
            switch (LOWORD(wparam)) {
                case id_ok:
                    if (HIWORD(wparam) != BN_CLICKED) break;
                    note(message_box(hwnd, "Really?", "Question", MB_YESNO) == IDYES ? "yes"
                                                                                     : "no");
                    break;
                case id_later:
                    if (HIWORD(wparam) == BN_CLICKED) SetTimer(hwnd, 7, 60, nullptr);
                    break;
                case id_open:
                    note("open");
                    break;
            }
            return 0;
        case WM_TIMER:
            KillTimer(hwnd, 7);
            set_window_text(program().area, "late");
            return 0;
        case WM_MOUSEWHEEL:
            note("wheel" + std::to_string(static_cast<std::int16_t>(HIWORD(wparam))));
            return 0;
        case WM_RBUTTONDOWN:
            note("right" + std::to_string(GET_X_LPARAM(lparam)) + "," +
                 std::to_string(GET_Y_LPARAM(lparam)));
            return 0;
        case WM_LBUTTONDBLCLK:
            note("double");
            return 0;
        case WM_LBUTTONDOWN:
            note((wparam & MK_SHIFT) != 0 ? "shift-down" : "down");
            program().pressed = GetTickCount();
            SetCapture(hwnd);
            return 0;
        case WM_LBUTTONUP:
            note("up" + std::to_string(GET_X_LPARAM(lparam)));
            if (GetTickCount() - program().pressed >= 150) note("held");
            ReleaseCapture();
            return 0;
        case WM_SIZE:
            if (program().main) note("size" + std::to_string(LOWORD(lparam)));
            return 0;
        case WM_DESTROY:
            if (hwnd == program().main) PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

HWND add(const char* kind, const char* text, std::uint32_t style, RECT place, std::int32_t id) {
    return CreateWindowExA(0, kind, text, WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                           place.width(), place.height(), program().main, HMENU{id});
}

void make_windows() {
    register_standard_controls();
    WNDCLASS description;
    description.lpfnWndProc = procedure;
    description.lpszClassName = "tester";
    description.style = CS_DBLCLKS;
    RegisterClassA(description);
    HWND main = CreateWindowExA(0, "tester", "Main window", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, 0,
                                400, 300, HWND{}, HMENU{});
    program().main = main;
    add("static", "&Area:", SS_LEFT, {10, 10, 60, 30}, 0);
    program().area =
        add("edit", "7", DWORD{WS_TABSTOP} | ES_AUTOHSCROLL, {70, 10, 200, 30}, id_area);
    add("static", "Name", SS_LEFT, {10, 60, 100, 76}, 0);
    add("button", "&Marked", DWORD{WS_TABSTOP} | BS_AUTOCHECKBOX, {220, 10, 320, 30}, id_check);
    add("edit", "", WS_TABSTOP, {10, 80, 150, 100}, id_name);
    add("button", "OK", WS_TABSTOP, {10, 110, 90, 135}, id_ok);
    add("button", "Grey", WS_TABSTOP | WS_DISABLED, {100, 110, 180, 135}, id_grey);
    add("button", "Later", WS_TABSTOP, {190, 110, 270, 135}, id_later);
    HMENU bar = CreateMenu(), file = CreatePopupMenu();
    AppendMenuA(file, MF_STRING, id_open, "&Open...\tCtrl+O");
    AppendMenuA(file, MF_STRING | MF_GRAYED, id_open + 1, "Save");
    AppendMenuA(bar, MF_POPUP, static_cast<std::uintptr_t>(file), "&File");
    SetMenu(main, bar);
    ShowWindow(main, SW_SHOW);
    SetFocus(program().area);
    program().log.clear();
}

// Plays the lines, then tells the log and ends with 0.
[[noreturn]] void play(const std::string& lines, const std::string& folder) {
    std::ofstream(folder + "/script.txt") << lines;
    setenv("TARN_DISPLAY", "memory", 0);  // or where the tester wants it
    setenv("TARN_EVENTS", (folder + "/script.txt").c_str(), 1);
    setenv("TARN_TIMEOUT", "0.3", 1);
    control_code_name = [](HWND hwnd) {
        return hwnd == program().area ? std::string("RD001") : std::string();
    };
    start_script();
    make_windows();
    MSG message;
    for (;;) {
        if (PeekMessageA(message, HWND{}, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) break;
            if (IsDialogMessageA(program().main, message)) continue;
            TranslateMessage(message);
            DispatchMessageA(message);
        } else {
            WaitMessage();
        }
    }
    std::fprintf(stderr, "log %s", program().log.c_str());
    std::_Exit(0);
}

std::string literally(const std::string& text) {
    std::string pattern;
    for (char c : text) {
        if (std::string_view("\\^$.|?*+()[]{}").find(c) != std::string_view::npos) pattern += '\\';
        pattern += c;
    }
    return pattern;
}

class PlayerTest : public testing::Test {
  protected:
    void SetUp() override {
        char name[] = "/tmp/tarn-script-XXXXXX";
        folder = mkdtemp(name);
    }
    void TearDown() override { ASSERT_EQ(std::system(("rm -r " + folder).c_str()), 0); }
    std::string read(const std::string& name) const {
        std::ostringstream all;
        all << std::ifstream(folder + "/" + name).rdbuf();
        return all.str();
    }
    std::string folder;
};

TEST_F(PlayerTest, DrivesControlsByLabelCodeNameAndNumber) {
    EXPECT_EXIT(play(R"(
        expect value "Area" "7"
        focus "Area"
        key Ctrl+A
        type "42.5"
        expect value "rd001" "42.5"
        expect value #1 "42.5"
        click "Name"
        type "A b\té"            # the tab leaves the field
        expect value "Name" "A b"
        expect focused "OK"
        expect text "Marked" "Marked"
        expect text "A b"
        expect not checked "Marked"
        click "Marked"
        expect checked "Marked"
        expect disabled "Grey"
        expect enabled "OK"
        close
    )",
                     folder),
                testing::ExitedWithCode(0), "");
}

TEST_F(PlayerTest, LinesGoToTheQuestionThatAClickOpens) {
    EXPECT_EXIT(play(R"(
        expect no window "Question"
        click "OK"
        expect window "Quest*"
        expect text "Really?"
        click "No"
        expect no window "Question"
        window "Main window"
        click "OK"
        key y                     # its mnemonic
        click "Later"
        expect value "Area" "late"
        window
        close
    )",
                     folder),
                testing::ExitedWithCode(0), "log no;yes;");
}

TEST_F(PlayerTest, MakesPointerEventsAndMenuCommands) {
    EXPECT_EXIT(play(R"(
        right click 300,200
        click 300,210
        click 300,210             # no double click
        double click 300,210
        press Shift
        click 300,210
        release Shift
        hold 300,210 150ms
        drag 300,210 to 320,215
        wheel 300,210 -2
        menu "File" "Open..."
        resize 500 300
        move 30 50
        wait 300ms             # a manager takes its time to answer
        wait idle
        close
    )",
                     folder),
                testing::ExitedWithCode(0),
                "log right300,200;down;up300;down;up300;down;up300;double;up300;shift-down;up300;"
                "down;up300;held;down;up320;wheel-120;wheel-120;open;size500;");
}

TEST_F(PlayerTest, WritesPicturesAndTrees) {
    std::string pictures = folder + "/pictures";
    setenv("TARN_SCREENSHOT", pictures.c_str(), 1);
    setenv("TARN_TREE", (folder + "/all.txt").c_str(), 1);
    EXPECT_EXIT(play("screenshot \"" + folder + "/one.png\"\ntree \"" + folder +
                         "/one.txt\"\nclick \"OK\"\nclick \"Yes\"\nclose\n",
                     folder),
                testing::ExitedWithCode(0), "log yes;");
    unsetenv("TARN_SCREENSHOT");
    unsetenv("TARN_TREE");
    for (const char* name : {"one.png", "pictures/01-Main-window.png", "pictures/02-Question.png",
                             "pictures/03-Question.png", "pictures/04-Main-window.png"})
        EXPECT_EQ(read(name).substr(0, 4), "\x89PNG") << name;
    std::string tree = read("one.txt");
    EXPECT_EQ(tree.substr(0, 29), "window \"Main window\" active 3") << tree;
    EXPECT_NE(tree.find("\n  text field \"Area\" = \"7\" focused [RD001] #1 70,10 130x20\n"),
              std::string::npos)
        << tree;
    EXPECT_NE(tree.find("\n  button \"Grey\" disabled #5 100,110 80x25\n"), std::string::npos)
        << tree;
    std::string all = read("all.txt");
    EXPECT_EQ(all.substr(0, tree.size()), tree);
    EXPECT_NE(all.find("window \"Question\""), std::string::npos) << all;
}

TEST_F(PlayerTest, EndsWithTheLineThatCantBeDone) {
    struct {
        const char* line;
        const char* message;
    } cases[] = {
        {"click \"Cancel\"",
         "no control is called \"Cancel\" in the window \"Main window\"; it has label \"Area:\", "
         "text field \"Area\" #1, label \"Name\", check box \"Marked\" #2, text field \"Name\" #3, "
         "button \"OK\" #4, button \"Grey\" #5, button \"Later\" #6\n"},
        {"click #9", "there is no control #9 in the window"},
        {"click \"Grey\"", "it is disabled\n"},
        {"expect value \"Area\" \"8\"", "it is \"7\"\n"},
        {"expect checked \"Marked\"", "it isn't checked\n"},
        {"expect focused \"OK\"", "it hasn't the focus; \"Area\" has it\n"},
        {"expect window \"Other\"", "open are \"Main window\"\n"},
        {"expect no window \"Main*\"", "open are \"Main window\"\n"},
        {"menu \"File\" \"Close\"",
         "no item is called \"Close\"; there are \"Open...\", \"Save\"\n"},
        {"menu \"File\" \"Save\"", "\"Save\" is disabled\n"},
        {"screenshot \"/nowhere/x.png\"", "/nowhere/x.png can't be written: No such file"},
    };
    for (auto& c : cases) {
        std::string message = std::string("script.txt:3: ") + c.line + ": " + c.message;
        EXPECT_EXIT(play(std::string("# first\nwait idle\n") + c.line + "\nclose\n", folder),
                    testing::ExitedWithCode(status_script_failed), literally(message))
            << c.line;
    }
}

TEST_F(PlayerTest, RefusesAScriptBeforeItsFirstLineRuns) {
    EXPECT_EXIT(play("click \"OK\"\nclick OK\n", folder),
                testing::ExitedWithCode(status_script_failed),
                "^[^\n]*script.txt:2: click OK: a control's name[^\n]*\n$");
    EXPECT_EXIT((setenv("TARN_EVENTS", "/nowhere/script", 1), start_script()),
                testing::ExitedWithCode(status_script_failed),
                "TARN_EVENTS=/nowhere/script can't be read: No such file");
}

}  // namespace
}  // namespace tarn::platform
