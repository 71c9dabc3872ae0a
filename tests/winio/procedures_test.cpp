// The life of windows: how they open, serve, close, and what survives.
#include "winio/procedures.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/display/display.h"
#include "platform/gdi/theme.h"
#include "winio/callbacks.h"
#include "winio/form.h"
#include "winio/text_channel.h"
#include "winio/winproc.h"

namespace tarn::winio {
namespace {

using namespace platform;
using namespace test;

class Windows : public testing::Test {
  protected:
    void SetUp() override { calls = 0; }
    void TearDown() override { close_all(); }
    static std::int32_t calls;
    std::int32_t control_of[2] = {-1, -1};
};
std::int32_t Windows::calls;

// What a call-back of a test does next; a modal window is worked from its start call-back.
void (*work)();
std::int32_t do_work() {
    if (work) work();
    return 2;
}
void press_first_button() {
    press_later(nth(newest(), control_type::button));
}

// ---- Places

TEST_F(Windows, OpenOnTheMonitorOfTheWindowThatTheyComeFrom) {
    form("First%lw%bt[OK]", "*I", {w(&control_of[0])});
    // Another test of this process may have made the display.
    if (display().monitors().size() < 2) GTEST_SKIP() << "there is one monitor";
    const HWND first = newest()->hwnd;
    RECT place;
    GetWindowRect(first, place);
    EXPECT_EQ(middle_of(place).x / 2, 1280 / 4);
    MoveWindow(first, 1300, 600, place.width(), place.height(), true);
    form("Second%lw%bt[OK]", "*I", {w(&control_of[1])});
    GetWindowRect(newest()->hwnd, place);
    EXPECT_EQ(middle_of(place).x / 2, (1280 + 1600 / 2) / 2);
    EXPECT_EQ(middle_of(place).y / 4, (100 + 900 / 2) / 4);
}

TEST_F(Windows, TakeTheColoursOfAnotherThemeExceptThoseThatWereChosen) {
    static std::int32_t value = 1;
    form("Text%lw%rd%`rd%bt[OK]", "*I*I*I*I", {w(&control_of[0]), w(&value), w(&value), w(&value)});
    form("%bg[red]Text%lw", "*I", {w(&control_of[1])});
    fancy_window* red = newest();
    fancy_window* plain = red->next;
    ASSERT_TRUE(plain);
    const COLORREF chosen = red->background;
    for (const bool dark : {true, false}) {
        set_theme(dark);
        for (fancy_window* each : {plain, red}) SendMessageA(each->hwnd, WM_SYSCOLORCHANGE, 0, 0);
        EXPECT_EQ(plain->background, dialog_colour());
        EXPECT_EQ(plain->text_colour, default_text_colour());
        EXPECT_EQ(nth(plain, control_type::integer_box)->background, data_colour());
        EXPECT_EQ(red->background, chosen);
    }
}

// ---- Results

struct result_case {
    const char* format;
    int button;
    std::int32_t result;
};

TEST_F(Windows, AButtonReturnsItsNumber) {
    const result_case cases[] = {
        {"%sc%bt[OK]", 0, 1},
        {"%sc%bt[One]%bt[Two]", 1, 2},
        {"%sc%id%bt[One]%bt[Two]", 0, 7},
        {"%sc%id%bt[One]%bt[Two]", 1, 1},
    };
    static int which;
    work = [] { press_later(nth(newest(), control_type::button, which)); };
    for (const result_case& each : cases) {
        which = each.button;
        bool numbered = std::strstr(each.format, "%id") != nullptr;
        std::int32_t result = numbered ? form(each.format, "*EI", {w(do_work), 7})
                                       : form(each.format, "*E", {w(do_work)});
        EXPECT_EQ(result, each.result) << each.format << each.button;
        EXPECT_EQ(open_windows(), 0);
    }
}

std::int32_t give(std::int32_t value) {
    return value;
}
template <std::int32_t value>
std::int32_t giving() {
    return give(value);
}

TEST_F(Windows, ACallbackResultDecides) {
    work = press_first_button;
    EXPECT_EQ(form("%sc%^bt[A]", "*E*E", {w(do_work), w(giving<-7>)}), 7);
    EXPECT_EQ(form("%sc%^bt[A]", "*E*E", {w(do_work), w(giving<0>)}), 1);
    std::int32_t window = 0;
    form("%lw%^bt[A]", "*I*E", {w(&window), w(giving<2>)});
    click(nth(newest(), control_type::button));
    EXPECT_EQ(open_windows(), 1);
    EXPECT_EQ(window, -1);
}

TEST_F(Windows, EnterPressesTheDefaultButton) {
    std::int32_t window = 0, grey = 1;
    form("%lw%bt[No]%~`bt[Yes]", "*I*I", {w(&window), w(&grey)});
    grey = 0;
    window_update(&grey);
    SendMessageA(newest()->hwnd, WM_COMMAND, IDOK, 0);
    settle();
    EXPECT_EQ(window, -1);
    grey = 1;
    window_update(&grey);
    SendMessageA(newest()->hwnd, WM_COMMAND, IDOK, 0);
    settle();
    EXPECT_EQ(window, 2);
}

// ---- Closing

std::int32_t asked;
std::int32_t refuse_twice() {
    return ++asked <= 2 ? 1 : 0;
}

TEST_F(Windows, ACloseCallbackMayRefuse) {
    std::int32_t window = 0;
    asked = 0;
    form("%lw%cc", "*I*E", {w(&window), w(refuse_twice)});
    HWND hwnd = newest()->hwnd;
    for (int i = 1; i <= 2; ++i) {
        SendMessageA(hwnd, WM_CLOSE, 0, 0);
        EXPECT_EQ(asked, i);
        EXPECT_TRUE(IsWindow(hwnd));
    }
    SendMessageA(hwnd, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(hwnd));
    EXPECT_EQ(window, 0);
}

std::int32_t close_again() {
    ++asked;
    SendMessageA(newest()->hwnd, WM_CLOSE, 0, 0);
    return 0;
}

TEST_F(Windows, ACloseWithinItsCloseCallbackIsOne) {
    std::int32_t window = 0;
    asked = 0;
    form("%lw%cc", "*I*E", {w(&window), w(close_again)});
    SendMessageA(newest()->hwnd, WM_CLOSE, 0, 0);
    settle();
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(open_windows(), 0);
}

TEST_F(Windows, StoringIntoTheControlVariableCloses) {
    std::int32_t window = 0;
    form("%lw%bt[A]", "*I", {w(&window)});
    EXPECT_EQ(window, -1);
    window_update(&window);
    settle();
    EXPECT_EQ(open_windows(), 1);
    window = 0;
    window_update(&window);
    settle();
    EXPECT_EQ(open_windows(), 0);
}

TEST_F(Windows, AModalWindowGivesBackWhatItTook) {
    std::int32_t first = 0, second = 0;
    form("%lw%ww%bt[A]", "*I", {w(&first)});
    HWND one = newest()->hwnd;
    form("%lw%ww%bt[B]", "*I", {w(&second)});
    static HWND two, three;
    two = newest()->hwnd;
    static HWND other;
    other = one;
    work = [] {
        three = newest()->hwnd;
        EXPECT_FALSE(IsWindowEnabled(other));
        EXPECT_FALSE(IsWindowEnabled(two));
        EXPECT_TRUE(IsWindowEnabled(three));
        // A window on top of the modal one takes only what is left.
        static void (*outer)();
        outer = work;
        work = [] {
            EXPECT_FALSE(IsWindowEnabled(three));
            press_first_button();
        };
        form("%sc%bt[Inner]", "*E", {w(do_work)});
        work = outer;
        EXPECT_TRUE(IsWindowEnabled(three));
        EXPECT_FALSE(IsWindowEnabled(other));
        press_first_button();
    };
    form("%sc%bt[Modal]", "*E", {w(do_work)});
    EXPECT_TRUE(IsWindowEnabled(one));
    EXPECT_TRUE(IsWindowEnabled(two));
}

std::int32_t ticks;
std::int32_t close_on_tick() {
    ++ticks;
    return 0;
}

TEST_F(Windows, ATimerMayCloseItsWindow) {
    ticks = 0;
    std::int32_t window = 0;
    form("%lw", "*I", {w(&window)});
    HWND hwnd = newest()->hwnd;
    set_timer(hwnd, 0.01, close_on_tick);
    for (int i = 0; i < 500 && window < 0; ++i) {
        WaitMessage();
        textwin::yield_program_control(1);
    }
    EXPECT_EQ(ticks, 1);
    EXPECT_EQ(window, 0);
}

// ---- Radio buttons and gangs

TEST_F(Windows, RadioButtonsFlipTheirVariables) {
    std::int32_t window = 0, a = 0, b = 1;
    form("%lw%2ga%^rb[A]%rb[B]", "*I*I*I*I*E*I",
         {w(&window), w(&a), w(&b), w(&a), w(giving<0>), w(&b)});
    click(nth(newest(), control_type::radio));
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(open_windows(), 1);  // a result of 0 doesn't close
    EXPECT_EQ(SendMessageA(nth(newest(), control_type::radio, 1)->hwnd, BM_GETCHECK, 0, 0), 0);
    click(nth(newest(), control_type::radio));
    EXPECT_EQ(a, 0);
}

// ---- Sizes

TEST_F(Windows, SizeVariablesFollow) {
    std::int32_t window = 0, width = 0, height = 0;
    static char text[20];
    form("%lw%sz%pv%re", "*I*I*I*CI", {w(&window), w(&width), w(&height), w(text), 20});
    HWND hwnd = newest()->hwnd;
    window_control* control = nth(newest(), control_type::buffer_box);
    RECT before;
    GetWindowRect(control->hwnd, before);
    RECT outer;
    GetWindowRect(hwnd, outer);
    MoveWindow(hwnd, outer.left, outer.top, outer.width() + 50, outer.height() + 20, true);
    settle();
    EXPECT_EQ(width, outer.width() + 50);
    RECT after;
    GetWindowRect(control->hwnd, after);
    EXPECT_EQ(after.width(), before.width() + 50);
    EXPECT_EQ(after.height(), before.height() + 20);
    ShowWindow(hwnd, SW_MINIMIZE);
    settle();
    EXPECT_EQ(width, 1);
    EXPECT_EQ(height, 1);
    ShowWindow(hwnd, SW_SHOWMAXIMIZED);
    settle();
    EXPECT_EQ(width, 0x7FFFFFFF);
}

// ---- Keys

TEST_F(Windows, TheQueueHoldsTwoHundredKeys) {
    flush_keys();
    for (int i = 0; i < 300; ++i) put_char('a' + i % 26);
    EXPECT_EQ(keys_waiting(), 200);
    EXPECT_EQ(get_char(false), 'a');
    flush_keys();
    EXPECT_EQ(get_char(false), 0);
}

std::int32_t monitored;
void forget_yourself();
void forget_yourself() {
    ++monitored;
    procedures().keyboard.remove(forget_yourself);
}

TEST_F(Windows, AMonitorMayRemoveItself) {
    monitored = 0;
    procedures().keyboard.add(forget_yourself);
    put_char('x');
    put_char('y');
    EXPECT_EQ(monitored, 1);
    EXPECT_EQ(keys_waiting(), 1);
    flush_keys();
}

// ---- Text messages

std::int32_t answer() {
    reply_to_text_message(quillpan_string("MESSAGE_TEXT"));
    return 2;
}

TEST_F(Windows, TextGoesToAClassAndBack) {
    char reply[256] = "";
    EXPECT_FALSE(send_text_message("NoSuchClass", "x", reply));
    std::int32_t window = 0;
    form("%lw%nc[Listener]%rm", "*I*E", {w(&window), w(answer)});
    std::string text(600, 'm');
    EXPECT_TRUE(send_text_message("Listener", text.c_str(), reply));
    EXPECT_EQ(std::string(reply), std::string(255, 'm'));
    // A number that nobody is sending is nothing.
    EXPECT_EQ(SendMessageA(newest()->hwnd, msg_text_message, 0, 1234), 0);
}

std::int32_t answer_other_program() {
    std::string both = std::string("heard ") + quillpan_string("MESSAGE_TEXT");
    reply_to_text_message(both.c_str());
    return 2;
}

// The child is another program; it is the one that has no windows.
TEST_F(Windows, TextComesFromAnotherProgramOfTheUser) {
    char folder[] = "/tmp/tarn-winio-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    setenv("XDG_RUNTIME_DIR", folder, 1);
    std::string path = std::string(folder) + "/tarn-window-My%20Window";
    std::int32_t window = 0;
    form("%lw%nc[My Window]%rm", "*I*E", {w(&window), w(answer_other_program)});
    ASSERT_EQ(access(path.c_str(), F_OK), 0);
    pid_t child = fork();
    if (child == 0) {
        text_message text{"hello"}, reply{};
        bool sent = send_through_channel("My Window", text, reply);
        bool silent = send_through_channel("Nobody", text, reply);
        _exit(sent && !silent && std::string(reply) == "heard hello" ? 0 : 1);
    }
    int status = -1;
    for (int i = 0; i < 5000 && waitpid(child, &status, WNOHANG) == 0; ++i) {
        settle();
        usleep(1000);
    }
    EXPECT_EQ(status, 0);
    close_all();
    EXPECT_NE(access(path.c_str(), F_OK), 0);
    chmod(folder, 0777);  // others could put their own there
    text_message text{"hello"}, reply{};
    EXPECT_FALSE(send_through_channel("My Window", text, reply));
    rmdir(folder);
    unsetenv("XDG_RUNTIME_DIR");
}

// ---- Call-backs that end windows within messages

std::int32_t destroy_newest() {
    DestroyWindow(newest()->hwnd);
    return 1;
}

TEST_F(Windows, AWindowMayEndInAnyCallback) {
    const char* formats[] = {"%lw%^bt[A]", "%lw%^`bt[A]", "%lw%^bn[A]", "%lw%^rb[A]", "%lw%^si!"};
    const control_type types[] = {control_type::button, control_type::button,
                                  control_type::option_button, control_type::radio,
                                  control_type::system_icon};
    for (std::size_t i = 0; i < std::size(formats); ++i) {
        std::int32_t window = 0, flag = 0;
        if (types[i] == control_type::radio)
            form(formats[i], "*I*I*E", {w(&window), w(&flag), w(destroy_newest)});
        else
            form(formats[i], "*I*E", {w(&window), w(destroy_newest)});
        ASSERT_EQ(open_windows(), 1) << formats[i];
        click(nth(newest(), types[i]));
        EXPECT_EQ(open_windows(), 0) << formats[i];
    }
    EXPECT_EQ(records().windows, nullptr);
}

TEST_F(Windows, AThousandWindowsLeaveNoRecord) {
    for (int i = 0; i < 1000; ++i) {
        std::int32_t window = 0, value = i;
        form("%lw%ca[Many]%rd%bt[A]", "*I*I", {w(&window), w(&value)});
        SendMessageA(newest()->hwnd, WM_CLOSE, 0, 0);
        if (i % 50 == 0) settle();
    }
    EXPECT_EQ(records().windows, nullptr);
    EXPECT_EQ(current_window(), nullptr);
}

}  // namespace
}  // namespace tarn::winio
