// The display on a real server: bare, and with a window manager.
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <xcb/xcb.h>

#include "desktop.h"
#include "platform/base/constants.h"

namespace tarn::x11_test {
namespace {

using Kind = Event::Kind;

// Each test runs on both kinds of desktop where it makes no difference.
class AnyDesktop : public Desktop, public testing::WithParamInterface<bool> {
  protected:
    void SetUp() override {
        Desktop::SetUp();
        if (IsSkipped()) return;
        server = std::make_unique<Server>();
        if (GetParam()) manage();
    }
    std::unique_ptr<Server> server;
};
INSTANTIATE_TEST_SUITE_P(Managed, AnyDesktop, testing::Bool(), [](const auto& managed) {
    return managed.param ? std::string("Openbox") : std::string("Bare");
});

TEST_P(AnyDesktop, ShowsWindowsWhereTheyAreWantedAndFocusesThem) {
    connect();
    shown(1, {200, 150, 500, 350});
    ASSERT_TRUE(until([&] { return focused == 1 && place[1] == RECT{200, 150, 500, 350}; }));
    EXPECT_EQ(screen_pixel(210, 160), 0x336699u);
    EXPECT_EQ(screen_pixel(499, 349), 0x336699u);
    display->place(1, {300, 250, 700, 400});
    ASSERT_TRUE(until([&] { return place[1] == RECT{300, 250, 700, 400}; }));
    ASSERT_TRUE(until([&] { return screen_pixel(690, 390) == 0x336699u; }));
    configures = 0;
    display->place(1, {300, 250, 700, 400});  // nothing changes, but an answer comes
    ASSERT_TRUE(until([&] { return configures == 1; }));
    // The caret is over the picture, not in it.
    caret.visible = true;
    caret.rect = {10, 10, 12, 20};
    paint(1);
    EXPECT_EQ(screen_pixel(310, 260), 0xCC9966u);
    EXPECT_EQ(screen_pixel(312, 260), 0x336699u);
    EXPECT_EQ(display->surface(1, 400, 150).pixels[10 * 400 + 10], 0xFF336699u);
}

TEST_P(AnyDesktop, KeepsTheFocusAmongOwnersAndModalWindows) {
    connect();
    shown(1, {100, 100, 400, 300});
    ASSERT_TRUE(until([&] { return focused == 1; }));
    TopLevelOptions dialog;
    dialog.role = Role::dialog;
    shown(2, {150, 150, 300, 250}, 1, dialog);
    display->set_modal(1, 2);
    ASSERT_TRUE(until([&] { return focused == 2; }));
    run("xdotool mousemove 380 290 click 1");  // on the disabled owner
    ASSERT_TRUE(until([&] { return last(Kind::button_down) && focused == 2; }));
    EXPECT_EQ(last(Kind::button_down)->window, 1);
    display->set_modal(1, 0);
    display->close(2);
    ASSERT_TRUE(until([&] { return focused == 1; }));
    shown(3, {500, 400, 700, 500});
    ASSERT_TRUE(until([&] { return focused == 3; }));
    run("xdotool mousemove 380 290 click 1");
    ASSERT_TRUE(until([&] { return focused == 1; }));
    display->focus(3);
    ASSERT_TRUE(until([&] { return focused == 3; }));
    display->show(3, false, false);
    ASSERT_TRUE(until([&] { return focused == 1; }));
}

TEST_P(AnyDesktop, DeliversThePointerInTheWindowsOwnPixels) {
    connect(1.5);
    shown(1, {100, 100, 300, 200});
    ASSERT_TRUE(until([&] { return place[1] == RECT{100, 100, 300, 200} && focused == 1; }));
    run("xdotool mousemove 165 181 click 1 click 4 click 7 click 3");
    ASSERT_TRUE(until([&] { return last(Kind::button_up) && last(Kind::button_up)->button == 3; }));
    const Event* press = last(Kind::button_down);
    EXPECT_EQ(press->point, (POINT{10, 20}));  // (15, 31) in real pixels
    EXPECT_EQ(press->screen, (POINT{110, 120}));
    EXPECT_EQ(press->modifiers & (mod_left | mod_right), std::uint32_t{mod_right});
    EXPECT_EQ(last(Kind::button_up)->modifiers & mod_right, 0u);
    std::vector<std::pair<int, bool>> wheel;
    for (const Event& event : seen) {
        if (event.kind == Kind::wheel) wheel.emplace_back(event.delta, event.horizontal);
    }
    EXPECT_EQ(wheel, (std::vector<std::pair<int, bool>>{{120, false}, {-120, true}}));
    EXPECT_EQ(display->pointer(), (POINT{110, 120}));
    display->warp_pointer({200, 150});
    ASSERT_TRUE(until([&] {
        return last(Kind::pointer_move) && last(Kind::pointer_move)->point == POINT{100, 50};
    }));
    // A grab reaches beyond all windows.
    display->grab_pointer(1);
    run("xdotool mousemove 1200 900");
    ASSERT_TRUE(until([&] { return last(Kind::pointer_move)->point.x == 700; }));
    display->grab_pointer(0);
    seen.clear();
    run("xdotool mousemove 1200 901 mousemove 165 181");
    ASSERT_TRUE(until([&] {
        return last(Kind::pointer_move) && last(Kind::pointer_move)->point == POINT{10, 20};
    }));
    for (const Event& event : seen) EXPECT_LE(event.point.x, 200);
}

TEST_P(AnyDesktop, TypesAsTheKeyboardSays) {
    setenv("LC_ALL", "C.UTF-8", 1);
    run("setxkbmap de");
    connect();
    shown(1, {100, 100, 300, 200});
    ASSERT_TRUE(until([&] { return focused == 1; }));
    auto press = [&](const std::string& keys, std::size_t count) {
        seen.clear();
        run("xdotool key " + keys);
        return until([&] {
            std::size_t ups = 0;
            for (const Event& event : seen) ups += event.kind == Kind::key_up;
            return ups >= count;
        });
    };
    ASSERT_TRUE(press("z udiaeresis A", 4));
    EXPECT_EQ(typed(),
              "z\xC3\xBC"
              "A");
    // By codes: dead acute and e, AltGr+e, Ctrl+Y where this keyboard has it.
    ASSERT_TRUE(press("21 26", 2));
    EXPECT_EQ(typed(), "\xC3\xA9");
    ASSERT_TRUE(press("108+26", 2));
    EXPECT_EQ(typed(), "\xE2\x82\xAC");
    for (const Event& event : seen) {
        EXPECT_EQ(event.modifiers & mod_alt, 0u);
        EXPECT_NE(event.key, VK_MENU);
    }
    ASSERT_TRUE(press("37+52", 2));
    const Event* key = last(Kind::key_down);
    EXPECT_EQ(key->key, 'Y');
    EXPECT_EQ(key->scan, 44);
    EXPECT_EQ(key->text, "\x19");
    EXPECT_EQ(key->modifiers, std::uint32_t{mod_control});
    ASSERT_TRUE(press("Return Tab Escape BackSpace Delete F5", 6));
    EXPECT_EQ(typed(), "\r\t\x1b\b");
    EXPECT_EQ(last(Kind::key_down)->key, VK_F1 + 4);
    // A keyboard without Latin letters: text of its own, shortcuts by place.
    run("setxkbmap ru");
    ASSERT_TRUE(press("54", 1));
    EXPECT_EQ(typed(), "\xD1\x81");
    ASSERT_TRUE(press("37+54", 2));
    EXPECT_EQ(last(Kind::key_down)->key, 'C');
    EXPECT_EQ(typed(), "\x03");
    run("setxkbmap fr");
    ASSERT_TRUE(press("10", 1));
    EXPECT_EQ(last(Kind::key_down)->key, '1');
    EXPECT_EQ(typed(), "&");
    // Held down, a key repeats with no release between.
    seen.clear();
    run("xset r rate 100 30; xdotool keydown 38; sleep 0.4; xdotool keyup 38");
    ASSERT_TRUE(until([&] { return last(Kind::key_up) != nullptr; }));
    int downs = 0, repeats = 0;
    for (const Event& event : seen) {
        downs += event.kind == Kind::key_down;
        repeats += event.repeat;
    }
    EXPECT_GT(repeats, 2);
    EXPECT_EQ(downs, repeats + 1);
}

#ifdef TARN_INPUT_METHOD
TEST_P(AnyDesktop, TakesTextFromAnInputMethodWhereTextIsTyped) {
    setenv("XMODIFIERS", "@im=tarntest", 1);
    std::string said = "/tmp/tarn-x11-method-" + std::to_string(getpid());
    auto method = [&] {
        int out = open(said.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        helpers.push_back(start({TARN_INPUT_METHOD}, -1, out));
        ::close(out);
    };
    auto heard = [&](const char* words) {
        return until([&] { return run("cat " + said).find(words) != std::string::npos; });
    };
    auto pressed = [&](const char* keys, const char* text) {
        seen.clear();
        run(std::string("xdotool key ") + keys);
        std::string all;
        auto result = until([&] {
            all.clear();
            for (const Event& event : seen) {
                if (event.kind == Kind::key_down || event.kind == Kind::text) all += event.text;
            }
            return all == text;
        });
        return result ? result : result << ", but: " << all;
    };
    method();
    ASSERT_TRUE(heard("ready"));
    connect(2.0);
    shown(1, {50, 50, 300, 200});
    ASSERT_TRUE(until([&] { return focused == 1; }));
    EXPECT_TRUE(pressed("a b", "ab"));  // nothing takes text
    display->set_input_place(1, {10, 20, 11, 36});
    ASSERT_TRUE(heard("spot 20,72"));
    ASSERT_TRUE(heard("focus"));
    EXPECT_TRUE(pressed("a b",
                        "\xE3\x81\x82"
                        "b"));
    EXPECT_TRUE(pressed("q z q x c",
                        "\xE6\xBC\xA2\xE5\xAD\x97\xE6\xBC\xA2\xE5\xAD\x97"
                        "c"));
    display->set_input_place(1, {30, 20, 31, 36});
    ASSERT_TRUE(heard("spot 60,72"));
    shown(2, {350, 50, 400, 100});
    ASSERT_TRUE(until([&] { return focused == 2; }));
    ASSERT_TRUE(heard("no focus"));
    EXPECT_TRUE(pressed("a", "a"));
    display->set_input_place(2, {1, 1, 2, 2});
    EXPECT_TRUE(until([&] { return pressed("a", "\xE3\x81\x82"); }));
    display->set_input_place(2, {});
    EXPECT_TRUE(pressed("a", "a"));
    display->close(2);
    ASSERT_TRUE(heard("gone"));
    ASSERT_TRUE(until([&] { return focused == 1; }));
    EXPECT_TRUE(pressed("a", "\xE3\x81\x82"));
    // It ends: keys are plain. Another one starts: it is used.
    stop(helpers.back());
    EXPECT_TRUE(until([&] { return pressed("a", "a"); }));
    method();
    ASSERT_TRUE(heard("focus"));
    EXPECT_TRUE(pressed("a", "\xE3\x81\x82"));
    run("rm -f " + said);
    unsetenv("XMODIFIERS");  // for the managers of other tests
}
#endif

TEST_P(AnyDesktop, ExchangesTextWithOtherPrograms) {
    connect();
    std::string text;
    EXPECT_FALSE(display->has_text(false));
    EXPECT_FALSE(display->request_text(false, text));
    beside("printf 'a\\303\\251\\r\\nb\\n' | xclip -quiet -selection clipboard -i");
    ASSERT_TRUE(until([&] { return display->has_text(false); }));
    ASSERT_TRUE(display->request_text(false, text));
    EXPECT_EQ(text, "a\xC3\xA9\nb\n");
    EXPECT_FALSE(display->has_text(true));

    // Ours, in every form, short and in pieces.
    display->offer_text(true, "sel\xC3\xA9");
    std::string out = "/tmp/tarn-x11-test-" + std::to_string(getpid());
    auto fetched = [&](const char* selection, const char* target) {
        run("rm -f " + out + " " + out + ".part");
        beside(std::string("sh -c 'timeout 5 xclip -o -selection ") + selection + " -t " + target +
               " >" + out + ".part; mv " + out + ".part " + out + "'");
        EXPECT_TRUE(until([&] { return access(out.c_str(), F_OK) == 0; }));
        return run("cat " + out);
    };
    EXPECT_EQ(fetched("primary", "UTF8_STRING"), "sel\xC3\xA9");
    EXPECT_EQ(fetched("primary", "STRING"), "sel\xE9");
    EXPECT_NE(fetched("primary", "TARGETS").find("text/plain;charset=utf-8"), std::string::npos);
    std::string lines;
    for (int i = 0; lines.size() < 3000000; ++i) lines += "line " + std::to_string(i) + "\n";
    display->offer_text(false, lines);
    EXPECT_TRUE(fetched("clipboard", "UTF8_STRING") == lines);
    Event lost;
    beside("xclip -quiet -selection clipboard -i " + out);
    ASSERT_TRUE(until([&] { return last(Kind::selection_lost) != nullptr; }));
    EXPECT_FALSE(last(Kind::selection_lost)->primary);
    ASSERT_TRUE(display->request_text(false, text));
    EXPECT_TRUE(text == lines);  // back in pieces

    display->offer_image("\x89PNG\r\n\x1A\nand more");
    EXPECT_FALSE(display->has_text(false));
    EXPECT_EQ(fetched("clipboard", "image/png"), "\x89PNG\r\n\x1A\nand more");
    run("rm -f " + out);
}

TEST_P(AnyDesktop, GoesThroughItsStates) {
    connect();
    shown(1, {200, 150, 500, 350});
    ASSERT_TRUE(until([&] { return place[1] == RECT{200, 150, 500, 350} && focused == 1; }));
    display->set_state(1, WindowState::maximized);
    ASSERT_TRUE(until([&] { return state == WindowState::maximized && place[1].width() > 1200; }));
    display->set_state(1, WindowState::full_screen);
    ASSERT_TRUE(until([&] { return place[1] == RECT{0, 0, 1280, 1024}; }));
    EXPECT_EQ(state, WindowState::full_screen);
    display->set_state(1, WindowState::normal);
    ASSERT_TRUE(until([&] {
        return state == WindowState::normal && place[1] == RECT{200, 150, 500, 350};
    }));
    display->set_state(1, WindowState::minimized);
    ASSERT_TRUE(until([&] { return state == WindowState::minimized && focused == 0; }));
    display->set_state(1, WindowState::normal);
    ASSERT_TRUE(until([&] { return state == WindowState::normal && focused == 1; }));
    ASSERT_TRUE(until([&] { return screen_pixel(210, 160) == 0x336699u; }));
}

TEST_P(AnyDesktop, PopupsAreWhereTheyAreWantedAndTakeNoFocus) {
    connect();
    shown(1, {200, 150, 500, 350});
    ASSERT_TRUE(until([&] { return focused == 1; }));
    TopLevelOptions popup;
    popup.role = Role::popup;
    popup.framed = false;
    popup.accepts_focus = false;
    colour = 0xAA0000;
    shown(2, {-20, 250, 280, 300}, 1, popup);
    display->grab_pointer(2);
    ASSERT_TRUE(until([&] { return place[2] == RECT{-20, 250, 280, 300}; }));
    ASSERT_TRUE(until([&] { return screen_pixel(0, 260) == 0xAA0000u; }));
    run("xdotool mousemove 1000 900 click 1");
    ASSERT_TRUE(until([&] { return last(Kind::button_up) != nullptr; }));
    EXPECT_EQ(last(Kind::button_up)->window, 2);
    display->grab_pointer(0);
    display->close(2);
    run("xdotool key x");
    ASSERT_TRUE(until([&] { return last(Kind::key_up) != nullptr; }));
    EXPECT_EQ(last(Kind::key_up)->window, 1);
}

TEST_P(AnyDesktop, FollowsTheScaleOfTheDesktop) {
    run("echo 'Xft.dpi: 144' | xrdb -merge");
    connect();
    EXPECT_EQ(display->scale(), 1.5);
    shown(1, {100, 100, 201, 161});
    ASSERT_TRUE(until([&] { return place[1] == RECT{100, 100, 201, 161}; }));
    EXPECT_EQ(run("xdotool search --name 'window 1' getwindowgeometry | grep -o '[0-9]*x[0-9]*$'"),
              "152x92\n");
    run("echo 'Xft.dpi: 192' | xrdb -merge");
    ASSERT_TRUE(until([&] { return last(Kind::scale) != nullptr; }));
    EXPECT_EQ(display->scale(), 2.0);
    ASSERT_TRUE(until([&] { return place[1].width() == 101 && place[1].height() == 61; }));
    ASSERT_TRUE(until([&] {
        return run("xdotool search --name 'window 1' getwindowgeometry | grep -o "
                   "'[0-9]*x[0-9]*$'") == "202x122\n";
    }));
}

std::string text_of(FILE* file) {
    std::string text;
    rewind(file);
    for (int c = getc(file); c != EOF; c = getc(file)) text.push_back(static_cast<char>(c));
    return text;
}

// Scripts give the same logs here as in memory: the script room's own tests, run again.
TEST_P(AnyDesktop, PlaysScriptsAsInMemory) {
#ifndef TARN_SCRIPT_TEST
    GTEST_SKIP() << "there is no test of scripts";
#else
    std::string library = TARN_X11_MODULE;
    setenv("TARN_RESOURCES", library.substr(0, library.rfind('/')).c_str(), 1);
    setenv("TARN_DISPLAY", "x11", 1);
    // Each run of that program is a user's session of its own on this desktop.
    FILE* said = tmpfile();
    pid_t tests = start({TARN_SCRIPT_TEST, "--gtest_filter=PlayerTest.*-*EndsWith*:*Refuses*"}, -1,
                        fileno(said));
    int status = 1;
    waitpid(tests, &status, 0);
    EXPECT_EQ(status, 0) << text_of(said);
    fclose(said);
#endif
}

class Managed : public Desktop {
  protected:
    void SetUp() override {
        Desktop::SetUp();
        if (IsSkipped()) return;
        server = std::make_unique<Server>();
        manage();
        connect();
    }
    std::unique_ptr<Server> server;
};

TEST_F(Managed, TellsTheManagerWhatAWindowIs) {
    TopLevelOptions options;
    options.title =
        "Gr\xC3\xB6\xC3\x9F"
        "e \xE2\x82\xAC";
    options.class_name = "Tester";
    options.resizable = false;
    options.closable = false;
    shown(1, {200, 150, 500, 350}, 0, options);
    std::uint32_t icon[] = {0xFF112233, 0, 0, 0xFF112233};
    display->set_icon(1, 2, 2, icon);
    ASSERT_TRUE(until([&] { return focused == 1; }));
    TopLevelOptions dialog;
    dialog.role = Role::dialog;
    dialog.topmost = true;
    dialog.minimum = {120, 80};
    shown(2, {250, 200, 450, 300}, 1, dialog);
    display->set_modal(1, 2);
    ASSERT_TRUE(until([&] { return focused == 2; }));
    std::string first =
        run("xprop -id $(xdotool search --class Tester | tail -1) "
            "_NET_WM_NAME WM_CLASS WM_NORMAL_HINTS _NET_WM_ICON _MOTIF_WM_HINTS");
    EXPECT_NE(first.find("\"Tester\""), std::string::npos) << first;
    EXPECT_NE(first.find("minimum size: 300 by 200"), std::string::npos) << first;
    EXPECT_NE(first.find("maximum size: 300 by 200"), std::string::npos) << first;
    EXPECT_NE(first.find("Icon (2 x 2)"), std::string::npos) << first;
    ASSERT_TRUE(until([&] {
        std::string second =
            run("xprop -name 'window 2' _NET_WM_STATE WM_TRANSIENT_FOR "
                "WM_NORMAL_HINTS _NET_WM_WINDOW_TYPE");
        return second.find("_NET_WM_STATE_MODAL") != std::string::npos &&
               second.find("_NET_WM_STATE_ABOVE") != std::string::npos &&
               second.find("window id # of group leader") == std::string::npos &&
               second.find("minimum size: 120 by 80") != std::string::npos &&
               second.find("_NET_WM_WINDOW_TYPE_DIALOG") != std::string::npos;
    }));
}

TEST_F(Managed, ClosesStaysOnTheScreenAndKeepsItsLeastSize) {
    TopLevelOptions options;
    options.minimum = {150, 100};
    shown(1, {0, 0, 300, 200}, 0, options);
    ASSERT_TRUE(until([&] { return place[1].top > 10 && focused == 1; }));  // below its caption
    EXPECT_EQ(place[1].width(), 300);
    run("xdotool search --name 'window 1' windowsize 40 40");
    ASSERT_TRUE(until([&] { return place[1].width() == 150 && place[1].height() == 100; }));
    run("xdotool search --name 'window 1' windowmove 400 300");
    ASSERT_TRUE(until([&] { return place[1].left > 390 && place[1].top > 290; }));
    RECT at = place[1];
    std::string told = run("xdotool search --name 'window 1' getwindowgeometry");
    run("xdotool mousemove " + std::to_string(at.left + 7) + " " + std::to_string(at.top + 9) +
        " click 1");
    ASSERT_TRUE(until([&] { return last(Kind::button_down) != nullptr; }));
    EXPECT_EQ(last(Kind::button_down)->point, (POINT{7, 9})) << told;
    run("xdotool key alt+F4");
    run("xdotool getactivewindow windowclose");  // politely, by the manager
    ASSERT_TRUE(until([&] { return true; }));
}

TEST_F(Managed, ChangesOfTheUsersOwnAreReported) {
    shown(1, {200, 150, 500, 350});
    ASSERT_TRUE(until([&] { return focused == 1; }));
    auto message = [&](const std::string& words) {
        return run("xdotool getactivewindow " + words);
    };
    message("windowminimize");
    ASSERT_TRUE(until([&] { return state == WindowState::minimized; }));
    run("xdotool search --name 'window 1' windowmap windowactivate");
    ASSERT_TRUE(until([&] { return state == WindowState::normal && focused == 1; }));
}

// ---- Without shared memory, and when the server goes ----------------------------------------

class Alone : public Desktop {};

TEST_F(Alone, PaintsOverTheSocketTooInBands) {
    Server server({"-extension", "MIT-SHM"});
    connect();
    shown(1, {0, 0, 1280, 1000});
    ASSERT_TRUE(until([&] { return focused == 1; }));
    EXPECT_EQ(screen_pixel(0, 0), 0x336699u);
    EXPECT_EQ(screen_pixel(1279, 999), 0x336699u);
}

TEST_F(Alone, EndsWhenTheServerGoes) {
    auto program = [&] {
        Server server;
        connect();
        shown(1, {0, 0, 300, 200});
        until([&] { return focused == 1; });
        stop(server.pid);
        RECT all{0, 0, 300, 200};
        for (int i = 0; i < 100; ++i) display->present(1, std::span(&all, 1), {});
        display->flush();
        display->pointer();
        std::string text;
        display->request_text(false, text);
        Event event;
        while (display->next_event(event, -1)) {
        }
        std::_Exit(4);
    };
    EXPECT_EXIT(program(), testing::ExitedWithCode(3), "");
}

TEST_F(Alone, PlacesCountFromThePrimaryMonitor) {
    if (!have("xrandr")) GTEST_SKIP() << "xrandr is missing";
    Server server;
    run("xrandr --setmonitor left 500/130x1024/270+0+0 screen");
    run("xrandr --setmonitor '*right' 780/200x900/240+500+50 none");
    connect();
    ASSERT_EQ(display->monitors().size(), 2u);
    EXPECT_EQ(display->monitors()[0], (RECT{0, 0, 780, 900}));
    EXPECT_EQ(display->monitors()[1], (RECT{-500, -50, 0, 974}));
    EXPECT_EQ(display->work_area({-10, 10}), (RECT{-500, -50, 0, 974}));
    shown(1, {10, 20, 210, 120});
    ASSERT_TRUE(until([&] { return focused == 1 && place[1] == RECT{10, 20, 210, 120}; }));
    EXPECT_EQ(screen_pixel(511, 71), 0x336699u);
    run("xdotool mousemove 515 77 click 1");
    ASSERT_TRUE(until([&] { return last(Kind::button_down) != nullptr; }));
    EXPECT_EQ(last(Kind::button_down)->point, (POINT{5, 7}));
    EXPECT_EQ(last(Kind::button_down)->screen, (POINT{15, 27}));
    EXPECT_EQ(display->pointer(), (POINT{15, 27}));
    display->place(1, {-300, 20, -100, 120});
    ASSERT_TRUE(until([&] { return place[1] == RECT{-300, 20, -100, 120}; }));
    display->set_state(1, WindowState::full_screen);
    ASSERT_TRUE(until([&] { return place[1] == RECT{-500, -50, 0, 974}; }));
    display->set_state(1, WindowState::normal);
    ASSERT_TRUE(until([&] { return place[1] == RECT{-300, 20, -100, 120}; }));
    // Another monitor becomes the primary one: windows stay, their places are told anew.
    run("xrandr --delmonitor right; xrandr --delmonitor left");
    ASSERT_TRUE(until([&] { return place[1] == RECT{200, 70, 400, 170}; }));
}

// Another program on the same server.
struct Peer {
    Peer() : xcb(xcb_connect(nullptr, nullptr)) {
        root = xcb_setup_roots_iterator(xcb_get_setup(xcb)).data->root;
        window = xcb_generate_id(xcb);
        xcb_create_window(xcb, 0, window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0,
                          nullptr);
    }
    ~Peer() { xcb_disconnect(xcb); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    xcb_atom_t atom(std::string_view name) const {
        auto* reply = xcb_intern_atom_reply(
            xcb, xcb_intern_atom(xcb, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr);
        xcb_atom_t result = reply ? reply->atom : 0;
        std::free(reply);
        return result;
    }
    // As the settings program of a desktop: one text.
    void tell_theme(const std::string& name) const {
        std::string bytes("\0\0\0\0\1\0\0\0\1\0\0\0\1\0\15\0Net/ThemeName\0\0\0\1\0\0\0", 36);
        bytes.push_back(static_cast<char>(name.size()));
        bytes += std::string(3, '\0') + name + std::string(8, '\0');
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, atom("_XSETTINGS_SETTINGS"),
                            atom("_XSETTINGS_SETTINGS"), 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
        xcb_set_selection_owner(xcb, window, atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = root;
        message.type = atom("MANAGER");
        message.data.data32[1] = atom("_XSETTINGS_S0");
        message.data.data32[2] = window;
        xcb_send_event(xcb, 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(xcb);
    }

    xcb_connection_t* xcb;
    xcb_window_t root = 0, window = 0;
};

TEST_F(Alone, FollowsTheLookOfTheDesktop) {
    Server server;
    connect();
    EXPECT_FALSE(display->dark());
    Peer desktop;
    desktop.tell_theme("Calm-dark");
    ASSERT_TRUE(until([&] { return last(Kind::theme) != nullptr; }));
    EXPECT_TRUE(display->dark());
    desktop.tell_theme("Calm");
    ASSERT_TRUE(until([&] { return !display->dark(); }));
}

TEST_F(Alone, TellsTheDesktopWhatItsWindowsAre) {
    Server server;
    Peer desktop;
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(desktop.xcb, desktop.root, XCB_CW_EVENT_MASK, &events);
    free(xcb_get_input_focus_reply(desktop.xcb, xcb_get_input_focus(desktop.xcb), nullptr));
    setenv("DESKTOP_STARTUP_ID", "menu/tarn/\"1\"_TIME5", 1);
    connect(2.0);
    EXPECT_EQ(getenv("DESKTOP_STARTUP_ID"), nullptr);
    TopLevelOptions options;
    options.minimum = {120, 80};
    options.maximum = {0, 300};
    options.class_name = "Form";
    shown(1, {50, 50, 250, 150}, 0, options);
    ASSERT_TRUE(until([&] { return focused == 1; }));
    TopLevelOptions dialog;
    dialog.role = Role::dialog;
    dialog.resizable = false;
    shown(2, {60, 60, 160, 110}, 1, dialog);
    const std::uint32_t icon[4] = {0xFFFF0000, 0xFF00FF00, 0x80000000, 0};
    display->set_icon(1, 2, 2, icon);
    ASSERT_TRUE(until([&] { return focused == 2; }));
    std::string first = run("xprop -name 'window 1'"), second = run("xprop -name 'window 2'");
    auto has = [](const std::string& all, const std::string& words) {
        return all.find(words) != std::string::npos ? testing::AssertionSuccess()
                                                    : testing::AssertionFailure() << all;
    };
    EXPECT_TRUE(has(first, "minimum size: 240 by 160"));
    EXPECT_TRUE(has(first, "by 600"));
    EXPECT_TRUE(has(first, "\"x11_test\", \"Form\""));
    EXPECT_TRUE(has(first, "_NET_WM_PID(CARDINAL) = " + std::to_string(getpid())));
    EXPECT_TRUE(has(first, "_NET_WM_WINDOW_TYPE_NORMAL"));
    EXPECT_TRUE(has(first, "WM_SAVE_YOURSELF"));
    EXPECT_TRUE(has(first, "Icon (2 x 2)"));
    EXPECT_TRUE(has(first, "_NET_STARTUP_ID(UTF8_STRING) = \"menu/tarn/"));
    EXPECT_TRUE(has(second, "_NET_WM_WINDOW_TYPE_DIALOG"));
    EXPECT_TRUE(has(second, "WM_TRANSIENT_FOR(WINDOW): window id # 0x"));
    EXPECT_TRUE(has(second, "maximum size: 200 by 100"));
    // Whoever started the program hears that it is there.
    std::string heard;
    while (xcb_generic_event_t* event = xcb_poll_for_event(desktop.xcb)) {
        const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
        if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE && message->format == 8)
            heard.append(reinterpret_cast<const char*>(message->data.data8), 20);
        free(event);
    }
    EXPECT_EQ(heard.substr(0, heard.find('\0')), "remove: ID=\"menu/tarn/\\\"1\\\"_TIME5\"");
}

TEST_F(Alone, SaysWhyThereIsNoDesktop) {
    setenv("DISPLAY", ":987", 1);
    void* module = dlopen(TARN_X11_MODULE, RTLD_NOW | RTLD_LOCAL);
    auto factory = reinterpret_cast<DisplayFactory>(dlsym(module, "tarn_x11_display"));
    std::string why_not;
    EXPECT_EQ(factory({}, why_not), nullptr);
    EXPECT_EQ(why_not, "no desktop answers at DISPLAY=:987");
}

}  // namespace
}  // namespace tarn::x11_test
